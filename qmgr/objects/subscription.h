// A subscription: who gets which publications where. Its form on disk, and the key under which the store has it.
//
// Subscriptions are definitions of the store under a type of their own (store::subscriptions). A durable one is in the
// log, any other belongs to its connection and goes with it, as a temporary queue does. A name stands for one
// subscription: the store's key is made from it, so that two programs cannot make the same name at once.
//
// Bytes: 'S', format (1), then per field: number (1 byte), length (4 bytes, little-endian), value. Fields that this
// version does not know are passed over.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "cmqc.h"
#include "qmgr/objects/topic_string.h"

namespace mqrig::qmgr::objects {

using Identifier24 = std::array<MQBYTE, 24>;

struct Subscription {
    Identifier24 id{};
    std::string name;        // SubName; empty: none
    std::string topic;       // resolved, wildcards in it
    std::string topicObject; // that was named; empty: none
    std::string userData;
    std::string selector;        // SelectionString
    std::string queue;           // where publications go
    std::string queueManager;    // empty: this one
    std::array<char, 12> user{}; // blank-padded, like the next
    std::array<char, 32> applIdentityData{};
    std::array<MQBYTE, 32> accountingToken{};
    Identifier24 correlId{};        // of every publication; zeros with `keepsCorrelId`: that of the publisher
    std::int64_t created = 0;       // microseconds since 1970 UTC
    std::int64_t deadline = 0;      // when it expires; 0: never
    MQLONG expiry = MQEI_UNLIMITED; // tenths of a second, as it was asked for
    MQLONG priority = MQPRI_PRIORITY_AS_PUBLISHED;
    MQLONG level = 1;
    MQLONG properties = 3; // MQPSPROP_
    MQLONG type = 1;       // MQSUBTYPE_
    WildcardScheme scheme = WildcardScheme::Topic;
    bool durable = false;
    bool managed = false;   // the queue is made and removed with it
    bool onRequest = false; // publications only by MQSUBRQ
    bool grouped = false;
    bool keepsCorrelId = false;
    bool setsIdentity = false; // accounting token and identity data are the subscriber's own
    bool anyUser = false;
    bool scopeQueueManager = false;

    bool operator==(const Subscription &) const = default;

    std::string encode() const;
    // Empty where the bytes are none.
    static std::optional<Subscription> decode(std::string_view bytes);

    bool expired(std::int64_t now) const { return deadline != 0 && deadline <= now; }
};

// The key of a name, and of a subscription without one.
std::string subscriptionKey(std::string_view name);
std::string subscriptionKey(const Identifier24 &id);
std::string keyOf(const Subscription &subscription);

// 24 bytes that stand for a text, zeros for none: against chance, not against forgery.
Identifier24 digestOf(std::string_view text);

// "414D51...": 48 digits.
std::string hexadecimal(const Identifier24 &id);

} // namespace mqrig::qmgr::objects
