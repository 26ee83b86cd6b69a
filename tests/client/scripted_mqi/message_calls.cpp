// The calls that move messages: put, put one, get.
#include "library.h"
#include "object_descriptor.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

using scripted::Call;
using scripted::library;

namespace {

// A message id that no program would have put there, so that a test sees whether it is carried on.
void writeNewMessageId(void *to)
{
    char id[40];
    std::snprintf(id, sizeof id, "SCRIPTED MESSAGE %07d", static_cast<int>(library().nextMessageId++));
    static_assert(sizeof id >= sizeof(MQBYTE24));
    std::memcpy(to, id, sizeof(MQBYTE24));
}

bool isNoMessageId(const void *at)
{
    const auto *id = static_cast<const char *>(at);
    return std::all_of(id, id + sizeof(MQBYTE24), [](char byte) { return byte == 0; });
}

// Visits the fields of the put-message records: the flagged ones in their order, without gaps.
template <class Visit>
void forEachPutMsgRecordField(const MQPMO *pmo, Visit &&visit)
{
    if (pmo->Version < MQPMO_VERSION_2 || pmo->RecsPresent <= 0 || pmo->PutMsgRecPtr == nullptr) return;
    struct Part {
        MQLONG flag;
        scripted::Field field;
    };
    using scripted::Kind;
    constexpr Part parts[] = {{MQPMRF_MSG_ID, {"MsgId", 0, 24, Kind::Bytes, 1}},
                              {MQPMRF_CORREL_ID, {"CorrelId", 0, 24, Kind::Bytes, 1}},
                              {MQPMRF_GROUP_ID, {"GroupId", 0, 24, Kind::Bytes, 1}},
                              {MQPMRF_FEEDBACK, {"Feedback", 0, 4, Kind::Long, 1}},
                              {MQPMRF_ACCOUNTING_TOKEN, {"AccountingToken", 0, 32, Kind::Bytes, 1}}};
    auto *at = static_cast<char *>(pmo->PutMsgRecPtr);
    for (MQLONG i = 0; i < pmo->RecsPresent; ++i) {
        for (const Part &part : parts) {
            if ((pmo->PutMsgRecFields & part.flag) == 0) continue;
            visit(i, part.flag, part.field, at);
            at += part.field.size;
        }
    }
}

void readPutMsgRecords(Call &call, const MQPMO *pmo)
{
    forEachPutMsgRecordField(pmo, [&](MQLONG number, MQLONG, const scripted::Field &field, const char *at) {
        call.detail("MQPMR[" + std::to_string(number) + "]." + std::string(field.name) + "=" + render(field, at));
    });
}

void checkMessageHandle(Call &call, MQHMSG handle)
{
    const scripted::Connection *owner = call.connectionState();
    if (handle != MQHM_NONE && owner != nullptr && !owner->messages.contains(handle)) call.refuse(MQRC_HMSG_ERROR);
}

bool readPutMsgOpts(Call &call, const MQPMO *pmo)
{
    if (!call.structure("MQPMO", pmo)) return false;
    readPutMsgRecords(call, pmo);
    if (pmo->Version >= MQPMO_VERSION_3) {
        checkMessageHandle(call, pmo->OriginalMsgHandle);
        checkMessageHandle(call, pmo->NewMsgHandle);
    }
    return true;
}

void writePutOutputs(Call &call, MQMD *md, MQPMO *pmo)
{
    if (call.succeeded()) {
        const bool wantsNewId = (pmo->Options & MQPMO_NEW_MSG_ID) != 0;
        if (wantsNewId || isNoMessageId(md->MsgId)) writeNewMessageId(md->MsgId);
        forEachPutMsgRecordField(pmo, [&](MQLONG, MQLONG flag, const scripted::Field &, char *at) {
            if (flag == MQPMRF_MSG_ID && (wantsNewId || isNoMessageId(at))) writeNewMessageId(at);
        });
    }
    call.writeBack("MQMD", md);
    call.writeBack("MQPMO", pmo);
    if (pmo->Version >= MQPMO_VERSION_2) {
        writeResponses(call, static_cast<MQRR *>(pmo->ResponseRecPtr), pmo->RecsPresent);
    }
}

// Length of the scripted body; what the caller's buffer takes of it.
MQLONG bodyLength(const scripted::Answer &answer)
{
    return answer.body ? static_cast<MQLONG>(answer.body->size()) : 0;
}

} // namespace

void MQPUT(MQHCONN Hconn, MQHOBJ Hobj, PMQVOID pMsgDesc, PMQVOID pPutMsgOpts, MQLONG BufferLength, PMQVOID pBuffer,
           PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    Call call("MQPUT", pCompCode, pReason);
    if (call.isNull()) return;
    call.connection(Hconn);
    call.object(Hobj);
    auto *md = static_cast<MQMD *>(pMsgDesc);
    auto *pmo = static_cast<MQPMO *>(pPutMsgOpts);
    const bool readable = call.structure("MQMD", md) && readPutMsgOpts(call, pmo);
    call.buffer(pBuffer, BufferLength);
    call.decide();
    if (readable) writePutOutputs(call, md, pmo);
    call.finish();
}

void MQPUT1(MQHCONN Hconn, PMQVOID pObjDesc, PMQVOID pMsgDesc, PMQVOID pPutMsgOpts, MQLONG BufferLength,
            PMQVOID pBuffer, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    Call call("MQPUT1", pCompCode, pReason);
    if (call.isNull()) return;
    call.connection(Hconn);
    auto *md = static_cast<MQMD *>(pMsgDesc);
    auto *pmo = static_cast<MQPMO *>(pPutMsgOpts);
    const bool readable = readObjectDescriptor(call, static_cast<const MQOD *>(pObjDesc)) &&
                          call.structure("MQMD", md) && readPutMsgOpts(call, pmo);
    call.buffer(pBuffer, BufferLength);
    call.decide();
    if (readable) writePutOutputs(call, md, pmo);
    call.finish();
}

void MQGET(MQHCONN Hconn, MQHOBJ Hobj, PMQVOID pMsgDesc, PMQVOID pGetMsgOpts, MQLONG BufferLength, PMQVOID pBuffer,
           PMQLONG pDataLength, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    Call call("MQGET", pCompCode, pReason);
    if (call.isNull()) {
        *pDataLength = 0;
        return;
    }
    call.connection(Hconn);
    call.object(Hobj);
    call.note("BufferLength", BufferLength);
    if (BufferLength < 0) call.refuse(MQRC_BUFFER_LENGTH_ERROR);
    if (pBuffer == nullptr && BufferLength > 0) call.refuse(MQRC_BUFFER_ERROR);
    auto *md = static_cast<MQMD *>(pMsgDesc);
    auto *gmo = static_cast<MQGMO *>(pGetMsgOpts);
    const bool readable = call.structure("MQMD", md) && call.structure("MQGMO", gmo);
    if (readable && gmo->Version >= MQGMO_VERSION_4) checkMessageHandle(call, gmo->MsgHandle);

    // Without a rule the queue is empty; a message longer than the buffer is cut as the options say.
    const bool hasRule = call.findAnswer();
    if (!hasRule) {
        call.decide(MQCC_FAILED, MQRC_NO_MSG_AVAILABLE);
    } else if (bodyLength(call.answer()) <= BufferLength) {
        call.decide();
    } else if (readable && (gmo->Options & MQGMO_ACCEPT_TRUNCATED_MSG) != 0) {
        call.decide(MQCC_WARNING, MQRC_TRUNCATED_MSG_ACCEPTED);
    } else {
        call.decide(MQCC_WARNING, MQRC_TRUNCATED_MSG_FAILED);
    }
    if (readable && call.succeeded()) {
        const MQLONG length = std::min(bodyLength(call.answer()), BufferLength);
        if (length > 0) std::memcpy(pBuffer, call.answer().body->data(), static_cast<std::size_t>(length));
        *pDataLength = call.answer().DataLength.value_or(bodyLength(call.answer()));
        writeNewMessageId(md->MsgId);
    }
    if (readable) {
        call.writeBack("MQMD", md);
        call.writeBack("MQGMO", gmo);
    }
    call.finish();
}
