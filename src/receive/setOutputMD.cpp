#include "receive.h"

#include <cstddef>
#include <cstring>

namespace {

struct MdField {
    MQULONG bit;
    std::size_t offset;
    std::size_t size;
};

#define MD_FIELD(name)                                                                                                 \
    MdField                                                                                                            \
    {                                                                                                                  \
        MdField##name, offsetof(MQMD, name), sizeof(MQMD::name)                                                        \
    }

constexpr MdField FIELDS[] = {
    MD_FIELD(Version),         MD_FIELD(Report),           MD_FIELD(MsgType),        MD_FIELD(Expiry),
    MD_FIELD(Feedback),        MD_FIELD(Encoding),         MD_FIELD(CodedCharSetId), MD_FIELD(Format),
    MD_FIELD(Priority),        MD_FIELD(Persistence),      MD_FIELD(MsgId),          MD_FIELD(CorrelId),
    MD_FIELD(BackoutCount),    MD_FIELD(ReplyToQ),         MD_FIELD(ReplyToQMgr),    MD_FIELD(UserIdentifier),
    MD_FIELD(AccountingToken), MD_FIELD(ApplIdentityData), MD_FIELD(PutApplType),    MD_FIELD(PutApplName),
    MD_FIELD(PutDate),         MD_FIELD(PutTime),          MD_FIELD(ApplOriginData), MD_FIELD(GroupId),
    MD_FIELD(MsgSeqNumber),    MD_FIELD(Offset),           MD_FIELD(MsgFlags),       MD_FIELD(OriginalLength),
};

#undef MD_FIELD

/// A reply or report names the message that it answers, unless the user said otherwise.
void identify_answer(const MQMD &got, MQMD &put, const MQMD &user, MQULONG given)
{
    // The two rules look at different Report fields: the user's own here, and the inherited one below.
    if ((given & MdFieldMsgId) == 0 && (user.Report & MQRO_PASS_MSG_ID) == 0) {
        std::memset(put.MsgId, 0, sizeof put.MsgId); // the queue manager makes a new one
    }
    if ((given & MdFieldCorrelId) == 0 && (put.Report & MQRO_PASS_CORREL_ID) == 0) {
        std::memcpy(put.CorrelId, got.MsgId, sizeof put.CorrelId);
    }
}

} // namespace

// What the user gave wins over what was inherited from the message got.
Status setOutputMD(const RunParams *getParams, RunParams *putParams, const RunRecord *putSnapshot)
{
    const MQULONG given = putParams->MdFieldsSet;
    auto *target = reinterpret_cast<char *>(&putParams->Md);
    const auto *source = reinterpret_cast<const char *>(&putSnapshot->Md);
    for (const MdField &field : FIELDS) {
        if ((given & field.bit) != 0) std::memcpy(target + field.offset, source + field.offset, field.size);
    }
    const MQLONG type = putSnapshot->Md.MsgType;
    if (type == MQMT_REPLY || type == MQMT_REPORT) {
        identify_answer(getParams->Md, putParams->Md, putSnapshot->Md, given);
    }
    return StatusOk;
}
