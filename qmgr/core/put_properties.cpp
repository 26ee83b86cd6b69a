#include "qmgr/core/put_properties.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include "qmgr/properties/record.h"

namespace mqrig::qmgr::core {
namespace {

// Whatever MAXPROPL says, no message has more.
constexpr std::size_t mostBytes = 104857600;

// The copy option that a property of the original message needs; 0: none.
MQLONG relationOf(MQLONG action)
{
    switch (action) {
    case MQACTP_FORWARD:
        return MQCOPY_FORWARD;
    case MQACTP_REPLY:
        return MQCOPY_REPLY;
    case MQACTP_REPORT:
        return MQCOPY_REPORT;
    default:
        return 0;
    }
}

bool isCopied(const properties::Property &property, MQLONG relation)
{
    return relation == 0 || (property.descriptor.copyOptions & (relation | MQCOPY_ALL)) != 0;
}

// `passed`: those of the saved context.
std::vector<const properties::Property *> combined(const PutHandles &handles,
                                                   const std::vector<properties::Property> &passed)
{
    const MQLONG relation = relationOf(handles.action);
    std::vector<const properties::Property *> all;
    if (handles.original != nullptr) {
        for (const properties::Property &property : handles.original->properties) {
            const bool replaced =
                handles.created != nullptr && handles.created->properties.find(property.name) != nullptr;
            if (!replaced && isCopied(property, relation)) all.push_back(&property);
        }
    }
    if (handles.created != nullptr)
        for (const properties::Property &property : handles.created->properties)
            all.push_back(&property);
    // What the handles say goes before the saved context.
    const auto isSaid = [&](const std::string &name) {
        if (handles.created != nullptr && handles.created->properties.find(name) != nullptr) return true;
        const auto *original = handles.original != nullptr ? handles.original->properties.find(name) : nullptr;
        return original != nullptr && isCopied(*original, relation);
    };
    for (const properties::Property &property : passed)
        if (!isSaid(property.name)) all.push_back(&property);
    return all;
}

// No property is one that this queue manager would have to act upon: what must be supported is refused.
bool isRefused(const properties::Property &property, Reach reach)
{
    const MQLONG refused =
        reach == Reach::Here ? MQPD_REJECT_UNSUP_MASK | MQPD_ACCEPT_UNSUP_IF_XMIT_MASK : MQPD_REJECT_UNSUP_MASK;
    return (property.descriptor.support & refused) != 0;
}

void copyId(MQBYTE24 &to, const MQBYTE24 &from)
{
    std::memcpy(to, from, sizeof to);
}

// The fields by which an answer belongs to its question, as the question's report options want them.
void answerTo(const MQMD &original, MQMD &md)
{
    if ((original.Report & MQRO_PASS_MSG_ID) != 0) copyId(md.MsgId, original.MsgId);
    copyId(md.CorrelId, (original.Report & MQRO_PASS_CORREL_ID) != 0 ? original.CorrelId : original.MsgId);
    md.Priority = original.Priority;
    md.Persistence = original.Persistence;
    if ((original.Report & MQRO_PASS_DISCARD_AND_EXPIRY) != 0) {
        md.Report = original.Report & MQRO_DISCARD_MSG;
        md.Expiry = original.Expiry;
    }
}

} // namespace

Reach reachOf(const DistributionList &list)
{
    const bool anyHere = std::ranges::any_of(list.destinations, [](const Destination &destination) {
        return destination.hold.queue != nullptr && !destination.hold.queue->remote;
    });
    return anyHere ? Reach::Here : Reach::Elsewhere;
}

MQMD descriptorFromHandles(const PutHandles &handles)
{
    MessageHandle base;
    if (handles.original != nullptr) {
        const MQMD &original = handles.original->md;
        if (handles.action == MQACTP_NEW || handles.action == MQACTP_FORWARD) {
            base.md = original;
        } else {
            answerTo(original, base.md);
            base.md.MsgType = handles.action == MQACTP_REPLY ? MQMT_REPLY : MQMT_REPORT;
        }
    }
    if (handles.created != nullptr)
        for (std::size_t i = 0; i < properties::descriptorFields; ++i)
            if (handles.created->fieldsSet.test(i))
                properties::copyField(handles.created->md, properties::descriptorFieldAt(i), base.md);
    return base.md;
}

Outcome attachProperties(Connection &connection, const PutHandles &handles, Reach reach, store::NewMessage &message,
                         std::vector<std::byte> &stored)
{
    std::vector<properties::Property> passed;
    (void)properties::readRecord(handles.userContext, passed);
    const auto all = combined(handles, passed);
    if (all.empty()) return success();
    std::size_t bytes = 0;
    for (const properties::Property *property : all) {
        if (isRefused(*property, reach)) return failure(MQRC_UNSUPPORTED_PROPERTY);
        bytes += property->name.size() + property->value.size();
    }
    const MQLONG limit = connection.queueManager().maxPropertiesLength;
    const bool limited = limit != MQPROP_UNRESTRICTED_LENGTH;
    if (bytes > mostBytes || (limited && bytes > static_cast<std::size_t>(limit)))
        return failure(MQRC_PROPERTIES_TOO_BIG);

    stored.clear();
    for (const properties::Property *property : all)
        properties::appendRecord(*property, stored);
    message.header.coreLength = static_cast<std::uint32_t>(stored.size());
    stored.insert(stored.end(), message.body.begin(), message.body.end());
    message.body = stored;
    return success();
}

void rememberPut(const PutHandles &handles, const MQMD &md, std::span<const std::byte> record) noexcept
{
    if (handles.original != nullptr) handles.original->properties.resetCursor();
    if (handles.created == nullptr) return;
    try {
        std::vector<properties::Property> put;
        (void)properties::readRecord(record, put);
        properties::PropertySet all;
        for (properties::Property &property : put)
            all.add(std::move(property));
        handles.created->properties = std::move(all);
        handles.created->md = md;
    } catch (const std::bad_alloc &) { // NOLINT(bugprone-empty-catch): see the header
    }
}

std::vector<std::byte> copiedProperties(std::span<const std::byte> stored, MQLONG relation)
{
    std::vector<properties::Property> all;
    (void)properties::readRecord(stored, all);
    std::vector<std::byte> copied;
    for (const properties::Property &property : all)
        if (isCopied(property, relation)) properties::appendRecord(property, copied);
    return copied;
}

} // namespace mqrig::qmgr::core
