// Runs command messages (PCF) on a queue manager: the second face of the commands, beside MQSC.
//
// How to add a command
//   1. Write its function (pcf_ping.cpp is the shortest) and declare it in pcf_commands.h.
//   2. Add its row to the table in pcf_interpreter.cpp: the parameters it must have, in their order, and those it may
//      have. What the row says has been checked before the function runs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "cmqc.h"
#include "qmgr/command/pcf_reader.h"
#include "qmgr/store/attachment.h"

namespace mqrig::qmgr::command {

struct PcfRequest {
    std::span<const std::byte> message;
    MQLONG encoding = MQENC_NATIVE; // of the message
    std::int64_t putTime = 0;       // microseconds since 1970 UTC
    // It may have run before, wholly or in part, without an answer: what it asked to be made or deleted may be there
    // or gone because of itself.
    bool repeated = false;
};

// The messages to be sent in reply, in their order, native integers, strings in the queue manager's character set.
// The last of a failed command is its summary, MQRCCF_COMMAND_FAILED, after one for each error.
struct PcfAnswer {
    MQLONG CompCode = MQCC_OK; // of the command as a whole
    std::vector<std::string> replies;
    std::vector<std::string> triggering; // local queues for which trigger messages may be due now (core/trigger.h)
};

// The attachment is the connection on which everything is done.
PcfAnswer runPcf(store::Attachment &attachment, const PcfRequest &request);

// The answer to a message that is none to be run.
PcfAnswer refusePcf(const PcfFault &fault);

} // namespace mqrig::qmgr::command
