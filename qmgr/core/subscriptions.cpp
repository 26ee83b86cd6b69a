#include "qmgr/core/subscriptions.h"

#include <optional>
#include <utility>

namespace mqrig::qmgr::core {

std::shared_ptr<Subscriber> subscriberOf(store::QueueId id, objects::Subscription subscription)
{
    auto pattern = objects::TopicPattern::parse(subscription.topic, subscription.scheme);
    if (!pattern) return nullptr;
    std::shared_ptr<const MessageSelector> selector;
    if (!subscription.selector.empty() && MessageSelector::compile(subscription.selector, selector) != MQRC_NONE)
        return nullptr;
    return std::make_shared<Subscriber>(
        Subscriber{id, std::move(subscription), std::move(*pattern), std::move(selector), {}});
}

std::uint64_t Subscriptions::refresh(store::Attachment &attachment)
{
    // Read first: a change made meanwhile is seen at the next publication.
    const std::uint64_t version = attachment.subscriptionVersion();
    if (known_ && version_ == version) return version_;
    exact_.clear();
    wild_.clear();
    for (const store::Definition &stored : attachment.definitions(store::subscriptions))
        add(stored);
    known_ = true;
    version_ = version;
    return version_;
}

void Subscriptions::add(const store::Definition &stored)
{
    std::optional<objects::Subscription> subscription = objects::Subscription::decode(stored.bytes);
    if (!subscription) return;
    std::shared_ptr<Subscriber> subscriber = subscriberOf(stored.queue, std::move(*subscription));
    if (subscriber == nullptr) return;
    if (subscriber->pattern.hasWildcards())
        wild_.push_back(std::move(subscriber));
    else
        exact_.emplace(subscriber->pattern.topic(), subscriber);
}

Subscriptions::Found Subscriptions::matching(std::string_view topic, const objects::TopicAttributes &attributes) const
{
    Found found;
    const auto [first, last] = exact_.equal_range(std::string(topic));
    for (auto each = first; each != last; ++each)
        found.push_back(each->second);
    if (wild_.empty()) return found;
    const std::vector<std::string_view> levels = objects::topicLevels(topic);
    for (const auto &subscriber : wild_)
        if (attributes.reachedBy(subscriber->pattern) && subscriber->pattern.matches(topic, levels))
            found.push_back(subscriber);
    return found;
}

Subscriptions::Found Subscriptions::all() const
{
    Found found = wild_;
    for (const auto &[topic, subscriber] : exact_)
        found.push_back(subscriber);
    return found;
}

} // namespace mqrig::qmgr::core
