#include "qmgr/objects/subscription.h"

#include <cstddef>
#include <cstring>
#include <span>
#include <type_traits>

#include "qmgr/store/checksum.h"

namespace mqrig::qmgr::objects {
namespace {

constexpr char formatMark = 'S';
constexpr char formatNumber = 1;
constexpr std::size_t fieldHeader = 5;

// Visits every field with its number: never renumber.
template <class Record, class Visit>
void forEachField(Record &record, Visit &&visit)
{
    visit(1, record.id);
    visit(2, record.name);
    visit(3, record.topic);
    visit(4, record.topicObject);
    visit(5, record.userData);
    visit(6, record.selector);
    visit(7, record.queue);
    visit(8, record.queueManager);
    visit(9, record.user);
    visit(10, record.applIdentityData);
    visit(11, record.accountingToken);
    visit(12, record.correlId);
    visit(13, record.created);
    visit(14, record.deadline);
    visit(15, record.expiry);
    visit(16, record.priority);
    visit(17, record.level);
    visit(18, record.properties);
    visit(19, record.type);
    visit(20, record.scheme);
    visit(21, record.durable);
    visit(22, record.managed);
    visit(23, record.onRequest);
    visit(24, record.grouped);
    visit(25, record.keepsCorrelId);
    visit(26, record.setsIdentity);
    visit(27, record.anyUser);
    visit(28, record.scopeQueueManager);
}

std::string_view bytesOf(const std::string &field)
{
    return field;
}

template <class Field>
std::string_view bytesOf(const Field &field)
{
    static_assert(std::is_trivially_copyable_v<Field>);
    return {reinterpret_cast<const char *>(&field), sizeof field};
}

bool load(std::string_view bytes, std::string &field)
{
    field = bytes;
    return true;
}

template <class Field>
bool load(std::string_view bytes, Field &field)
{
    if (bytes.size() != sizeof field) return false;
    if constexpr (std::is_same_v<Field, bool>)
        field = bytes[0] != 0;
    else if constexpr (std::is_same_v<Field, WildcardScheme>)
        field = bytes[0] == 0 ? WildcardScheme::Topic : WildcardScheme::Characters;
    else
        std::memcpy(&field, bytes.data(), sizeof field);
    return true;
}

} // namespace

std::string Subscription::encode() const
{
    std::string bytes{formatMark, formatNumber};
    forEachField(*this, [&](int number, const auto &field) {
        const std::string_view value = bytesOf(field);
        bytes += static_cast<char>(number);
        for (int shift = 0; shift < 32; shift += 8)
            bytes += static_cast<char>(value.size() >> shift & 0xFF);
        bytes += value;
    });
    return bytes;
}

std::optional<Subscription> Subscription::decode(std::string_view bytes)
{
    if (bytes.size() < 2 || bytes[0] != formatMark || bytes[1] != formatNumber) return std::nullopt;
    bytes.remove_prefix(2);
    Subscription subscription;
    bool whole = true;
    while (!bytes.empty()) {
        if (bytes.size() < fieldHeader) return std::nullopt;
        const int number = static_cast<unsigned char>(bytes[0]);
        std::size_t length = 0;
        for (std::size_t i = 0; i < 4; ++i)
            length |= static_cast<std::size_t>(static_cast<unsigned char>(bytes[1 + i])) << (8 * i);
        bytes.remove_prefix(fieldHeader);
        if (bytes.size() < length) return std::nullopt;
        forEachField(subscription, [&](int known, auto &field) {
            if (known == number) whole &= load(bytes.substr(0, length), field);
        });
        bytes.remove_prefix(length);
    }
    return whole ? std::optional(std::move(subscription)) : std::nullopt;
}

std::string hexadecimal(const Identifier24 &id)
{
    std::string text;
    for (const MQBYTE byte : id) {
        text += "0123456789ABCDEF"[byte >> 4];
        text += "0123456789ABCDEF"[byte & 0xF];
    }
    return text;
}

Identifier24 digestOf(std::string_view text)
{
    Identifier24 digest{};
    std::uint64_t seed = 0x4d51746f70696373;
    for (std::size_t part = 0; part < 3; ++part) {
        seed = store::checksumOf(std::as_bytes(std::span(text)), seed + part);
        std::memcpy(digest.data() + 8 * part, &seed, sizeof seed);
    }
    // Zeros mean that there is none.
    if (digest == Identifier24{}) digest[0] = 1;
    return digest;
}

std::string subscriptionKey(std::string_view name)
{
    return hexadecimal(digestOf(name));
}

std::string subscriptionKey(const Identifier24 &id)
{
    return hexadecimal(id);
}

std::string keyOf(const Subscription &subscription)
{
    return subscription.name.empty() ? subscriptionKey(subscription.id) : subscriptionKey(subscription.name);
}

} // namespace mqrig::qmgr::objects
