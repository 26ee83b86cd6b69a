// Runs MQSC commands on a queue manager.
//
// How to add a command
//   1. Write its function (mqsc_define.cpp is a short example) and declare it in mqsc_commands.h.
//   2. Add its row to the table in mqsc_interpreter.cpp; a new verb or object word goes to the tables beside it.
#pragma once

#include <string>
#include <vector>

#include "cmqcfc.h"
#include "qmgr/command/mqsc_reader.h"
#include "qmgr/store/attachment.h"

namespace mqrig::qmgr::command {

enum class CommandResult { Done, Failed, SyntaxError };

struct CommandAnswer {
    CommandResult result = CommandResult::Done;
    std::vector<std::string> lines; // message lines and attributes, without line ends
    MQLONG command = MQCMD_NONE;    // the command's number in command messages, once it is known
    std::string triggering = {};    // the local queue for which a trigger message may be due now (core/trigger.h)
};

// The attachment is the connection on which everything is done.
CommandAnswer runMqsc(store::Attachment &attachment, const CommandText &text);

} // namespace mqrig::qmgr::command
