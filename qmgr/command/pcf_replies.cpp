#include "qmgr/command/pcf_replies.h"

#include <algorithm>
#include <utility>

namespace mqrig::qmgr::command {

PcfReplies::PcfReplies(const MQCFH &command) : header_{MQCFH_DEFAULT}
{
    header_.Type = MQCFT_RESPONSE;
    header_.Version = std::clamp(command.Version, MQLONG{MQCFH_VERSION_1}, MQLONG{MQCFH_VERSION_3});
    header_.Command = command.Command;
}

PcfWriter &PcfReplies::add()
{
    return replies_.emplace_back(header_);
}

void PcfReplies::fail(const PcfFault &fault)
{
    failed_ = true;
    PcfWriter &reply = add();
    reply.header().CompCode = MQCC_FAILED;
    reply.header().Reason = fault.reason;
    if (fault.about != 0) reply.integer(fault.about, fault.value);
}

void PcfReplies::judge(const Outcome &outcome, MQLONG parameter)
{
    if (outcome.ok()) return;
    fail(faultOf(outcome.Reason, parameter));
}

void PcfReplies::noteTriggering(std::string queue)
{
    if (!queue.empty()) triggering_.push_back(std::move(queue));
}

PcfAnswer PcfReplies::finish()
{
    if (failed_) {
        PcfWriter &summary = add();
        summary.header().CompCode = MQCC_FAILED;
        summary.header().Reason = MQRCCF_COMMAND_FAILED;
    } else if (replies_.empty()) {
        add();
    }
    PcfAnswer answer;
    answer.CompCode = failed_ ? MQCC_FAILED : MQCC_OK;
    answer.triggering = std::move(triggering_);
    answer.replies.reserve(replies_.size());
    for (PcfWriter &reply : replies_) {
        const bool last = answer.replies.size() + 1 == replies_.size();
        reply.header().MsgSeqNumber = static_cast<MQLONG>(answer.replies.size() + 1);
        reply.header().Control = last ? MQCFC_LAST : MQCFC_NOT_LAST;
        answer.replies.push_back(reply.message());
    }
    return answer;
}

} // namespace mqrig::qmgr::command
