#include "fake_mqi.h"

#include <algorithm>
#include <cstring>

FakeMqi fakeMqi;

long FakeMqi::count(const std::string &name) const
{
    return std::count(calls.begin(), calls.end(), name);
}

FakeCodes FakeMqi::answer(const std::string &name)
{
    calls.push_back(name);
    if (const auto action = during.find(name); action != during.end()) action->second();
    std::deque<FakeCodes> &queued = answers[name];
    if (queued.empty()) return {};
    const FakeCodes codes = queued.front();
    queued.pop_front();
    return codes;
}

namespace {

void give(const FakeCodes &codes, PMQLONG pCompCode, PMQLONG pReason)
{
    *pCompCode = codes.CompCode;
    *pReason = codes.Reason;
}

void give(const char *name, PMQLONG pCompCode, PMQLONG pReason)
{
    give(fakeMqi.answer(name), pCompCode, pReason);
}

/// MQPUT writes back what a queue manager makes up, so that tests see whether the next put starts afresh.
void record_put(PMQVOID pMsgDesc, PMQVOID pPutMsgOpts, MQLONG BufferLength, PMQVOID pBuffer)
{
    MQMD *md = static_cast<MQMD *>(pMsgDesc);
    MQPMO *pmo = static_cast<MQPMO *>(pPutMsgOpts);
    fakeMqi.md = *md;
    fakeMqi.mds.push_back(*md);
    fakeMqi.pmo = *pmo;
    fakeMqi.bodies.emplace_back(static_cast<const char *>(pBuffer), static_cast<std::size_t>(BufferLength));
    std::memset(md->MsgId, 0xAA, sizeof md->MsgId);
}

} // namespace

void MQCONN(PMQCHAR pQMgrName, PMQHCONN pHconn, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    fakeMqi.qmgrField.assign(pQMgrName, MQ_Q_MGR_NAME_LENGTH);
    *pHconn = FakeHconn;
    give("MQCONN", pCompCode, pReason);
}

void MQCONNX(PMQCHAR pQMgrName, PMQCNO pConnectOpts, PMQHCONN pHconn, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    fakeMqi.qmgrField.assign(pQMgrName, MQ_Q_MGR_NAME_LENGTH);
    fakeMqi.cno = *pConnectOpts;
    const MQSCO *sco = pConnectOpts->SSLConfigPtr;
    fakeMqi.authInfoRecs.clear();
    for (MQLONG i = 0; sco != nullptr && i < sco->AuthInfoRecCount; ++i) {
        fakeMqi.authInfoRecs.push_back(sco->AuthInfoRecPtr[i]);
    }
    *pHconn = FakeHconn;
    give("MQCONNX", pCompCode, pReason);
}

void MQDISC(PMQHCONN pHconn, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    *pHconn = MQHC_UNUSABLE_HCONN;
    give("MQDISC", pCompCode, pReason);
}

void MQOPEN(MQHCONN Hconn, PMQVOID pObjDesc, MQLONG Options, PMQHOBJ pHobj, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    fakeMqi.hconn = Hconn;
    fakeMqi.od = *static_cast<MQOD *>(pObjDesc);
    fakeMqi.openOptions = Options;
    *pHobj = FakeHobj;
    give("MQOPEN", pCompCode, pReason);
}

void MQCLOSE(MQHCONN Hconn, PMQHOBJ pHobj, MQLONG Options, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    fakeMqi.hconn = Hconn;
    fakeMqi.hobj = *pHobj;
    fakeMqi.closeOptions = Options;
    *pHobj = MQHO_UNUSABLE_HOBJ;
    give("MQCLOSE", pCompCode, pReason);
}

void MQPUT(MQHCONN Hconn, MQHOBJ Hobj, PMQVOID pMsgDesc, PMQVOID pPutMsgOpts, MQLONG BufferLength, PMQVOID pBuffer,
           PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    fakeMqi.hconn = Hconn;
    fakeMqi.hobj = Hobj;
    record_put(pMsgDesc, pPutMsgOpts, BufferLength, pBuffer);
    give("MQPUT", pCompCode, pReason);
}

void MQPUT1(MQHCONN Hconn, PMQVOID pObjDesc, PMQVOID pMsgDesc, PMQVOID pPutMsgOpts, MQLONG BufferLength,
            PMQVOID pBuffer, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    fakeMqi.hconn = Hconn;
    fakeMqi.od = *static_cast<MQOD *>(pObjDesc);
    record_put(pMsgDesc, pPutMsgOpts, BufferLength, pBuffer);
    give("MQPUT1", pCompCode, pReason);
}

void MQGET(MQHCONN Hconn, MQHOBJ Hobj, PMQVOID pMsgDesc, PMQVOID pGetMsgOpts, MQLONG BufferLength, PMQVOID pBuffer,
           PMQLONG pDataLength, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    fakeMqi.hconn = Hconn;
    fakeMqi.hobj = Hobj;
    fakeMqi.gmo = *static_cast<MQGMO *>(pGetMsgOpts);
    fakeMqi.mds.push_back(*static_cast<MQMD *>(pMsgDesc));
    fakeMqi.bufferLength = BufferLength;
    const FakeCodes asked = fakeMqi.answer("MQGET");
    if (asked.Reason != MQRC_NONE) return give(asked, pCompCode, pReason);
    if (fakeMqi.messages.empty()) return give({MQCC_FAILED, MQRC_NO_MSG_AVAILABLE}, pCompCode, pReason);

    const FakeMessage message = fakeMqi.messages.front();
    fakeMqi.messages.pop_front();
    const MQLONG length = static_cast<MQLONG>(message.body.size());
    std::memcpy(pBuffer, message.body.data(), static_cast<std::size_t>(std::min(length, BufferLength)));
    *static_cast<MQMD *>(pMsgDesc) = message.md;
    *pDataLength = message.reportedLength >= 0 ? message.reportedLength : length;
    give(message.codes, pCompCode, pReason);
}

void MQINQ(MQHCONN Hconn, MQHOBJ Hobj, MQLONG SelectorCount, PMQLONG pSelectors, MQLONG, PMQLONG, MQLONG, PMQCHAR,
           PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    fakeMqi.hconn = Hconn;
    fakeMqi.hobj = Hobj;
    fakeMqi.selectors.assign(pSelectors, pSelectors + SelectorCount);
    give("MQINQ", pCompCode, pReason);
}

void MQSET(MQHCONN Hconn, MQHOBJ Hobj, MQLONG SelectorCount, PMQLONG pSelectors, MQLONG, PMQLONG, MQLONG, PMQCHAR,
           PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    fakeMqi.hconn = Hconn;
    fakeMqi.hobj = Hobj;
    fakeMqi.selectors.assign(pSelectors, pSelectors + SelectorCount);
    give("MQSET", pCompCode, pReason);
}

void MQCMIT(MQHCONN Hconn, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    fakeMqi.hconn = Hconn;
    give("MQCMIT", pCompCode, pReason);
}

void MQBACK(MQHCONN Hconn, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    fakeMqi.hconn = Hconn;
    give("MQBACK", pCompCode, pReason);
}

void MQCRTMH(MQHCONN, PMQVOID, PMQHMSG pHmsg, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    *pHmsg = FakeHmsg;
    give("MQCRTMH", pCompCode, pReason);
}

void MQDLTMH(MQHCONN, PMQHMSG pHmsg, PMQVOID, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    fakeMqi.messageHandle = *pHmsg;
    *pHmsg = MQHM_UNUSABLE_HMSG;
    give("MQDLTMH", pCompCode, pReason);
}

void MQSETMP(MQHCONN, MQHMSG Hmsg, PMQVOID, PMQVOID, PMQVOID, MQLONG, MQLONG ValueLength, PMQVOID, PMQLONG pCompCode,
             PMQLONG pReason) noexcept
{
    fakeMqi.messageHandle = Hmsg;
    fakeMqi.propertyValueLength = ValueLength;
    give("MQSETMP", pCompCode, pReason);
}

void MQINQMP(MQHCONN, MQHMSG Hmsg, PMQVOID pInqPropOpts, PMQVOID pName, PMQVOID, PMQLONG, MQLONG ValueLength, PMQVOID,
             PMQLONG, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    const MQCHARV *name = static_cast<const MQCHARV *>(pName);
    fakeMqi.messageHandle = Hmsg;
    fakeMqi.propertyName.assign(static_cast<const char *>(name->VSPtr), static_cast<std::size_t>(name->VSLength));
    fakeMqi.propertyNameCcsid = name->VSCCSID;
    fakeMqi.propertyValueLength = ValueLength;
    fakeMqi.returnedNameSize = static_cast<const MQIMPO *>(pInqPropOpts)->ReturnedName.VSBufSize;
    give("MQINQMP", pCompCode, pReason);
}

void MQCB(MQHCONN, MQLONG Operation, PMQVOID pCallbackDesc, MQHOBJ Hobj, PMQVOID, PMQVOID, PMQLONG pCompCode,
          PMQLONG pReason) noexcept
{
    fakeMqi.hobj = Hobj;
    fakeMqi.cbOperation = Operation;
    fakeMqi.cbd = *static_cast<MQCBD *>(pCallbackDesc);
    give("MQCB", pCompCode, pReason);
}
