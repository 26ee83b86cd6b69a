#include "send/split.h"

#include <cstring>

void add_msg_flag(RunParams *params, MQLONG flag)
{
    // A sum, not a union: a flag that the user gave as well gives a combination that the queue manager refuses.
    params->Md.MsgFlags = static_cast<MQLONG>(static_cast<MQULONG>(params->Md.MsgFlags) + static_cast<MQULONG>(flag));
}

void describe_without_header(RunParams *params)
{
    MQMD &md = params->Md;
    if (std::memcmp(md.Format, MQFMT_RF_HEADER_2, MQ_FORMAT_LENGTH) != 0) return;
    md.CodedCharSetId = params->Rfh2.CodedCharSetId;
    md.Encoding = params->Rfh2.Encoding;
    std::memcpy(md.Format, params->Rfh2.Format, MQ_FORMAT_LENGTH);
}
