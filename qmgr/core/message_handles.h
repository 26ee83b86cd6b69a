// Message handles: the properties and the descriptor of a message in a program's hands.
//
// A handle made with a connection belongs to it and goes with it; one made with MQHC_UNASSOCIATED_HCONN belongs to the
// process and can be used with any connection, or with none. The number (MQHMSG) tells which: its upper half is the
// connection handle, or 0.
//
// The handles of a connection are guarded by its lock. One of the process has a lock of its own; a second call at the
// same time is answered with MQRC_MSG_HANDLE_IN_USE, as MQ does it. In a forked child no handle of its parent is valid.
#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "cmqc.h"
#include "qmgr/properties/descriptor_fields.h"
#include "qmgr/properties/property_name.h"
#include "qmgr/properties/property_set.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

struct Connection;

struct MessageHandle {
    properties::PropertySet properties;
    MQMD md;                                                   // version 2
    std::bitset<properties::descriptorFields> fieldsSet;       // by MQSETMP
    properties::NameCheck check = properties::NameCheck::Full; // of names that are set
    std::mutex inUse;                                          // of a handle of the process

    MessageHandle();
    // As it was created.
    void clear();
};

class MessageHandles {
public:
    // The lower half of the handle's number; 0 when there are too many.
    std::uint32_t add(std::unique_ptr<MessageHandle> handle);
    MessageHandle *find(std::uint32_t number) const;
    std::unique_ptr<MessageHandle> remove(std::uint32_t number);

private:
    static constexpr unsigned placeBits = 20;
    static constexpr std::uint32_t placeMask = (1U << placeBits) - 1;
    static constexpr std::uint32_t usesMask = (1U << (32 - placeBits)) - 1;

    struct Place {
        std::unique_ptr<MessageHandle> handle;
        std::uint32_t uses = 1;
    };
    std::vector<Place> places_;
    std::vector<std::uint32_t> free_;
};

// `connection` is that of `hconn`, null for MQHC_UNASSOCIATED_HCONN. MQRC_HMSG_NOT_AVAILABLE.
Outcome createMessageHandle(MQHCONN hconn, Connection *connection, properties::NameCheck check, MQHMSG &hmsg);
// MQRC_HMSG_ERROR, MQRC_MSG_HANDLE_IN_USE.
Outcome deleteMessageHandle(MQHCONN hconn, Connection *connection, MQHMSG hmsg);

// One call's use of a message handle.
class MessageHandleUse {
public:
    MessageHandleUse() = default;
    MessageHandleUse(MQHCONN hconn, Connection *connection, MQHMSG hmsg);

    // MQRC_HMSG_ERROR, MQRC_MSG_HANDLE_IN_USE.
    const Outcome &outcome() const { return outcome_; }
    explicit operator bool() const { return handle_ != nullptr; }
    MessageHandle &operator*() const { return *handle_; }
    MessageHandle *operator->() const { return handle_; }

private:
    std::shared_ptr<MessageHandle> shared_; // of the process: alive while it is used
    std::unique_lock<std::mutex> lock_;     // goes before what it locks
    MessageHandle *handle_ = nullptr;
    Outcome outcome_ = failure(MQRC_HMSG_ERROR);
};

} // namespace mqrig::qmgr::core
