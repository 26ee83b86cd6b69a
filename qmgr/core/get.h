// MQGET on a local queue: selecting, browsing, taking, waiting.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "cmqc.h"
#include "qmgr/core/connection.h"
#include "qmgr/core/object_handles.h"
#include "qmgr/core/search.h"
#include "qmgr/core/selection.h"
#include "qmgr/store/message.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

struct GetRequest {
    MQLONG options = MQGMO_NONE; // checked: no two that exclude each other
    MQLONG waitInterval = 0;     // milliseconds or MQWI_UNLIMITED; with MQGMO_WAIT
    Selection selection;
    std::span<std::byte> buffer;
    bool hasMessageHandle = false; // MQGMO.MsgHandle
    // With a version-1 descriptor: the queue manager's, for what version 2 has beyond it (md_extension.h).
    std::optional<MQLONG> extensionCcsid{};
    // Made of the options and the handle's position (ordered_get.h).
    MQLONG needs = MQGMO_NONE;                 // MQGMO_ALL_MSGS_AVAILABLE or MQGMO_ALL_SEGMENTS_AVAILABLE for this look
    std::optional<store::MessageKey> behind{}; // MQGMO_BROWSE_NEXT with logical order: where to go on

    bool has(MQLONG anyOf) const { return (options & anyOf) != 0; }
    bool inUnitOfWork(bool persistent) const
    {
        return has(MQGMO_SYNCPOINT) || (has(MQGMO_SYNCPOINT_IF_PERSISTENT) && persistent);
    }
};

struct UnpackedMessage;

inline constexpr MQLONG browseOptions = MQGMO_BROWSE_FIRST | MQGMO_BROWSE_NEXT | MQGMO_BROWSE_MSG_UNDER_CURSOR;

struct GotMessage {
    store::MessageKey key;
    store::MessageHeader header; // as stored; when the get is over, md is what the program sees
    MQLONG dataLength = 0;       // of the whole message
    MQLONG returnedLength = 0;   // of what is in the buffer

    MQLONG propertyControl = MQPROP_COMPATIBILITY; // of the queue
    bool savesContext = false;                     // MQOO_SAVE_ALL_CONTEXT
    std::unique_ptr<UnpackedMessage> unpacked;     // of a message that is not returned as it is stored (delivery.h)
    std::vector<std::byte> userContext;            // its properties that a saved context has (context.h)

    GotMessage();
    ~GotMessage();
};

// Fills `got` and the buffer unless it fails. Warnings: MQRC_TRUNCATED_MSG_ACCEPTED and MQRC_TRUNCATED_MSG_FAILED (the
// message stays where it is, the cursor too). Failures: MQRC_NOT_OPEN_FOR_*, MQRC_GET_INHIBITED, MQRC_Q_DELETED,
// MQRC_NO_MSG_AVAILABLE, MQRC_NO_MSG_UNDER_CURSOR, MQRC_SYNCPOINT_LIMIT_REACHED, MQRC_Q_MGR_QUIESCING, and those of
// the store. Of groups and segments: ordered_get.h.
Outcome getMessage(Connection &connection, OpenObject &object, const GetRequest &request, GotMessage &got);

// ---- The two ways of looking once, without waiting ----

// MQRC_NO_MSG_AVAILABLE, with `held` when messages that others hold may have stood in the way.
struct Look {
    Outcome outcome;
    bool held = false;
    std::optional<std::int64_t> again = std::nullopt; // microseconds after which a mark is over that was in the way
};
Look takeMessage(Connection &connection, OpenObject &object, const GetRequest &request, GotMessage &got);
Look browseMessage(Connection &connection, OpenObject &object, const GetRequest &request, GotMessage &got);

// MQGMO_UNLOCK: ends the lock of the handle's last browse. Warning MQRC_NO_MSG_LOCKED.
Outcome unlockMessage(Connection &connection, OpenObject &object);

} // namespace mqrig::qmgr::core
