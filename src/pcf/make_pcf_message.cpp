#include "pcf.h"

#include "common.h"

#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstring>

char *make_pcf_message(MQMD *md, const PcfDef *pcfDef, MQLONG *length)
{
    md->Version = pcfDef->MdVersion;
    std::memcpy(md->Format, pcfDef->Format, sizeof md->Format);
    md->MsgType = pcfDef->MsgType;
    std::memcpy(md->ReplyToQ, pcfDef->ReplyToQ, sizeof md->ReplyToQ);
    std::memcpy(md->ReplyToQMgr, pcfDef->ReplyToQMgr, sizeof md->ReplyToQMgr);

    Buffer<> message = checked_malloc(nullptr, sizeof(MQCFH), {"make_pcf_message"});
    if (message == nullptr) return nullptr;
    MQCFH cfh = pcfDef->Cfh;
    cfh.StrucLength = MQCFH_STRUC_LENGTH;
    std::memcpy(message.get(), &cfh, sizeof cfh);

    std::int64_t total = sizeof cfh;
    for (const PcfParamNode *node = pcfDef->Params; node != nullptr; node = node->next) {
        const MQLONG structureLength = node->structure[1]; // StrucLength, of every parameter structure
        const long long grown = static_cast<long long>(total) + structureLength;
        if (grown > INT_MAX) {
            report_failure(nullptr, {"make_pcf_message"}, "realloc()", ENOMEM, "realloc() failed. size=%lld\n",
                           grown + 1);
            return nullptr;
        }
        if (!checked_realloc(nullptr, message, static_cast<std::size_t>(grown) + 1, {"make_pcf_message"})) {
            return nullptr;
        }
        std::memcpy(message.get() + total, node->structure, static_cast<std::size_t>(structureLength));
        total = grown;
    }
    *length = static_cast<MQLONG>(total);
    return message.release();
}
