// The replies to one command message, as they are made.
#pragma once

#include <string>
#include <vector>

#include "cmqc.h"
#include "cmqcfc.h"
#include "qmgr/command/pcf_interpreter.h"
#include "qmgr/command/pcf_reader.h"
#include "qmgr/command/pcf_writer.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::command {

class PcfReplies {
public:
    // The header of the command; of a message that has none, a header of zeros.
    explicit PcfReplies(const MQCFH &command);

    // A reply with data; valid until the next is added. Its header says MQCC_OK until it is told otherwise.
    PcfWriter &add();
    // A reply that says what is wrong; the command has failed.
    void fail(const PcfFault &fault);
    // The same from the outcome of an operation on the object that `parameter` names; nothing where it is a success.
    void judge(const Outcome &outcome, MQLONG parameter);
    // The text of a command inside the command has failed: its replies say so, and so will the summary.
    void setFailed() { failed_ = true; }

    // The command has touched the triggering of that queue; nothing where the name is empty.
    void noteTriggering(std::string queue);

    bool failed() const { return failed_; }
    bool empty() const { return replies_.empty(); }

    // The whole sequence, numbered: what was added, or one that says MQCC_OK where there was nothing; behind errors
    // the summary.
    PcfAnswer finish();

private:
    MQCFH header_;
    std::vector<PcfWriter> replies_;
    std::vector<std::string> triggering_;
    bool failed_ = false;
};

} // namespace mqrig::qmgr::command
