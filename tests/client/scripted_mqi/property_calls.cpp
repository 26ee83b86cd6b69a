// The calls on message handles and properties.
#include "library.h"

#include <algorithm>
#include <cstring>

using scripted::Call;
using scripted::library;

namespace {

void readName(Call &call, PMQVOID pName)
{
    if (pName == nullptr) {
        call.refuse(MQRC_PROPERTY_NAME_ERROR);
        return;
    }
    const scripted::Field whole{"Name", 0, sizeof(MQCHARV), scripted::Kind::Variable, 1};
    call.note("Name", render(whole, pName));
}

// Copies the scripted body as far as the caller's buffer takes it and gives its full length.
void writeBody(const Call &call, MQLONG BufferLength, PMQVOID pBuffer, PMQLONG pDataLength)
{
    const std::string body = call.answer().body.value_or("");
    const std::size_t length = std::min(body.size(), static_cast<std::size_t>(std::max(BufferLength, 0)));
    if (length > 0) std::memcpy(pBuffer, body.data(), length);
    *pDataLength = call.answer().DataLength.value_or(static_cast<MQLONG>(body.size()));
}

// The property's name into the buffer that MQIMPO.ReturnedName describes.
void writeReturnedName(const Call &call, MQIMPO *impo)
{
    const std::string name = call.answer().name.value_or("");
    MQCHARV &returned = impo->ReturnedName;
    returned.VSLength = static_cast<MQLONG>(name.size());
    if (returned.VSPtr == nullptr || returned.VSBufSize <= 0) return;
    const std::size_t length = std::min(name.size(), static_cast<std::size_t>(returned.VSBufSize));
    std::memcpy(returned.VSPtr, name.data(), length);
}

} // namespace

void MQCRTMH(MQHCONN Hconn, PMQVOID pCrtMsgHOpts, PMQHMSG pHmsg, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    Call call("MQCRTMH", pCompCode, pReason);
    if (call.isNull()) {
        *pHmsg = 1;
        return;
    }
    call.connection(Hconn);
    call.structure("MQCMHO", pCrtMsgHOpts);
    call.decide();
    *pHmsg = call.succeeded() ? call.newHandle(library().nextMessage) : MQHM_UNUSABLE_HMSG;
    if (call.succeeded()) call.connectionState()->messages.insert(*pHmsg);
    call.finish();
}

void MQDLTMH(MQHCONN Hconn, PMQHMSG pHmsg, PMQVOID pDltMsgHOpts, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    Call call("MQDLTMH", pCompCode, pReason);
    if (call.isNull()) {
        *pHmsg = MQHM_UNUSABLE_HMSG;
        return;
    }
    call.connection(Hconn);
    call.message(*pHmsg);
    call.structure("MQDMHO", pDltMsgHOpts);
    call.decide();
    if (call.succeeded()) {
        call.connectionState()->messages.erase(*pHmsg);
        *pHmsg = MQHM_UNUSABLE_HMSG;
    }
    call.finish();
}

void MQSETMP(MQHCONN Hconn, MQHMSG Hmsg, PMQVOID pSetPropOpts, PMQVOID pName, PMQVOID pPropDesc, MQLONG Type,
             MQLONG ValueLength, PMQVOID pValue, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    Call call("MQSETMP", pCompCode, pReason);
    if (call.isNull()) return;
    call.connection(Hconn);
    call.message(Hmsg);
    readName(call, pName);
    call.note("Type", Type);
    call.note("ValueLength", ValueLength);
    MQLONG length = ValueLength;
    if (ValueLength == MQVL_NULL_TERMINATED && pValue != nullptr) {
        length = static_cast<MQLONG>(std::strlen(static_cast<const char *>(pValue)));
    }
    if (length < 0) call.refuse(MQRC_BUFFER_LENGTH_ERROR);
    call.noteBytes("Value", pValue, length);
    call.structure("MQSMPO", pSetPropOpts);
    call.structure("MQPD", pPropDesc);
    call.decide();
    call.writeBack("MQPD", pPropDesc);
    call.finish();
}

void MQINQMP(MQHCONN Hconn, MQHMSG Hmsg, PMQVOID pInqPropOpts, PMQVOID pName, PMQVOID pPropDesc, PMQLONG pType,
             MQLONG ValueLength, PMQVOID pValue, PMQLONG pDataLength, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    Call call("MQINQMP", pCompCode, pReason);
    if (call.isNull()) {
        *pDataLength = 0;
        return;
    }
    call.connection(Hconn);
    call.message(Hmsg);
    readName(call, pName);
    call.note("Type", *pType);
    call.note("ValueLength", ValueLength);
    auto *impo = static_cast<MQIMPO *>(pInqPropOpts);
    if (call.structure("MQIMPO", impo)) call.detail("MQIMPO.ReturnedName.VSBufSize=" + std::to_string(impo->ReturnedName.VSBufSize));
    call.optionalStructure("MQPD", pPropDesc);
    const bool hasRule = call.findAnswer();
    call.decide(hasRule ? MQCC_OK : MQCC_FAILED, hasRule ? MQRC_NONE : MQRC_PROPERTY_NOT_AVAILABLE);
    if (call.answer().body) writeBody(call, ValueLength, pValue, pDataLength);
    if (call.answer().name && impo != nullptr) writeReturnedName(call, impo);
    if (call.answer().Type) *pType = *call.answer().Type;
    call.writeBack("MQIMPO", impo);
    call.writeBack("MQPD", pPropDesc);
    call.finish();
}

void MQDLTMP(MQHCONN Hconn, MQHMSG Hmsg, PMQVOID pDltPropOpts, PMQVOID pName, PMQLONG pCompCode,
             PMQLONG pReason) noexcept
{
    Call call("MQDLTMP", pCompCode, pReason);
    if (call.isNull()) return;
    call.connection(Hconn);
    call.message(Hmsg);
    readName(call, pName);
    call.structure("MQDMPO", pDltPropOpts);
    call.decide();
    call.finish();
}

void MQBUFMH(MQHCONN Hconn, MQHMSG Hmsg, PMQVOID pBufMsgHOpts, PMQVOID pMsgDesc, MQLONG BufferLength,
             PMQVOID pBuffer, PMQLONG pDataLength, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    Call call("MQBUFMH", pCompCode, pReason);
    if (call.isNull()) {
        *pDataLength = BufferLength;
        return;
    }
    call.connection(Hconn);
    call.message(Hmsg);
    call.structure("MQBMHO", pBufMsgHOpts);
    call.structure("MQMD", pMsgDesc);
    call.buffer(pBuffer, BufferLength);
    call.decide();
    if (call.succeeded()) {
        *pDataLength = BufferLength;
        if (call.answer().body) writeBody(call, BufferLength, pBuffer, pDataLength);
    }
    call.finish();
}

void MQMHBUF(MQHCONN Hconn, MQHMSG Hmsg, PMQVOID pMsgHBufOpts, PMQVOID pName, PMQVOID pMsgDesc, MQLONG BufferLength,
             PMQVOID pBuffer, PMQLONG pDataLength, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    Call call("MQMHBUF", pCompCode, pReason);
    if (call.isNull()) {
        *pDataLength = 0;
        return;
    }
    call.connection(Hconn);
    call.message(Hmsg);
    readName(call, pName);
    call.structure("MQMHBO", pMsgHBufOpts);
    call.structure("MQMD", pMsgDesc);
    call.note("BufferLength", BufferLength);
    call.decide();
    if (call.succeeded()) writeBody(call, BufferLength, pBuffer, pDataLength);
    call.finish();
}
