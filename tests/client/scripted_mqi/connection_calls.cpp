// The calls of a connection: connect, disconnect, units of work, callbacks.
#include "library.h"

#include <cmqxc.h>

#include <cstring>

using scripted::Call;
using scripted::Connection;
using scripted::library;

namespace {

std::string textAt(MQPTR text, MQLONG length)
{
    if (text == nullptr || length <= 0) return "\"\"";
    return scripted::quoted({static_cast<const char *>(text), static_cast<std::size_t>(length)});
}

void readChannel(Call &call, const MQCD *cd)
{
    if (!call.structure("MQCD", cd) || cd->Version < MQCD_VERSION_7) return;
    if (cd->SSLPeerNamePtr != nullptr) {
        call.detail("MQCD.SSLPeerName=" + textAt(cd->SSLPeerNamePtr, cd->SSLPeerNameLength));
    }
}

void readTlsOptions(Call &call, const MQSCO *sco)
{
    if (!call.structure("MQSCO", sco)) return;
    if (sco->AuthInfoRecCount < 0) call.refuse(MQRC_AUTH_INFO_REC_COUNT_ERROR);
    if (sco->AuthInfoRecCount > 0 && sco->AuthInfoRecPtr == nullptr) {
        call.refuse(MQRC_AUTH_INFO_REC_ERROR);
        return;
    }
    for (MQLONG i = 0; i < sco->AuthInfoRecCount; ++i) {
        call.structure("MQAIR", sco->AuthInfoRecPtr + i, "MQAIR[" + std::to_string(i) + "]");
    }
}

void readSecurityParms(Call &call, const MQCSP *csp)
{
    if (!call.structure("MQCSP", csp)) return;
    if (csp->CSPUserIdPtr != nullptr) {
        call.detail("MQCSP.CSPUserId=" + textAt(csp->CSPUserIdPtr, csp->CSPUserIdLength));
    }
    if (csp->CSPPasswordPtr != nullptr) {
        call.detail("MQCSP.CSPPassword=" + textAt(csp->CSPPasswordPtr, csp->CSPPasswordLength));
    }
}

// What MQCONNX follows from its options, as far as their Version says that it is there.
void readConnectOptions(Call &call, const MQCNO *cno)
{
    if (!call.structure("MQCNO", cno)) return;
    if (cno->Version >= MQCNO_VERSION_2 && cno->ClientConnPtr != nullptr) {
        readChannel(call, static_cast<const MQCD *>(cno->ClientConnPtr));
    }
    if (cno->Version >= MQCNO_VERSION_4 && cno->SSLConfigPtr != nullptr) readTlsOptions(call, cno->SSLConfigPtr);
    if (cno->Version >= MQCNO_VERSION_5 && cno->SecurityParmsPtr != nullptr) {
        readSecurityParms(call, cno->SecurityParmsPtr);
    }
}

void connect(Call &call, PMQHCONN pHconn)
{
    *pHconn = call.succeeded() ? call.newHandle(library().nextConnection) : MQHC_UNUSABLE_HCONN;
    if (call.succeeded()) library().connections[*pHconn];
    call.finish();
}

void onConnection(const char *name, MQHCONN Hconn, PMQLONG pCompCode, PMQLONG pReason)
{
    Call call(name, pCompCode, pReason);
    if (call.isNull()) return;
    call.connection(Hconn);
    call.decide();
    call.finish();
}

} // namespace

void MQCONN(PMQCHAR pQMgrName, PMQHCONN pHconn, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    Call call("MQCONN", pCompCode, pReason);
    if (call.isNull()) {
        *pHconn = 1;
        return;
    }
    call.noteName("QMgrName", pQMgrName);
    call.decide();
    connect(call, pHconn);
}

void MQCONNX(PMQCHAR pQMgrName, PMQCNO pConnectOpts, PMQHCONN pHconn, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    Call call("MQCONNX", pCompCode, pReason);
    if (call.isNull()) {
        *pHconn = 1;
        return;
    }
    call.noteName("QMgrName", pQMgrName);
    readConnectOptions(call, pConnectOpts);
    call.decide();
    call.writeBack("MQCNO", pConnectOpts);
    connect(call, pHconn);
}

void MQDISC(PMQHCONN pHconn, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    Call call("MQDISC", pCompCode, pReason);
    if (call.isNull()) {
        *pHconn = MQHC_UNUSABLE_HCONN;
        return;
    }
    call.connection(*pHconn);
    call.decide();
    if (call.succeeded()) {
        library().connections.erase(*pHconn);
        *pHconn = MQHC_UNUSABLE_HCONN;
    }
    call.finish();
}

void MQCMIT(MQHCONN Hconn, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    onConnection("MQCMIT", Hconn, pCompCode, pReason);
}

void MQBACK(MQHCONN Hconn, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    onConnection("MQBACK", Hconn, pCompCode, pReason);
}

void MQBEGIN(MQHCONN Hconn, PMQVOID pBeginOptions, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    Call call("MQBEGIN", pCompCode, pReason);
    if (call.isNull()) return;
    call.connection(Hconn);
    call.optionalStructure("MQBO", pBeginOptions);
    call.decide();
    call.finish();
}

void MQCB(MQHCONN Hconn, MQLONG Operation, PMQVOID pCallbackDesc, MQHOBJ Hobj, PMQVOID pMsgDesc, PMQVOID pGetMsgOpts,
          PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    Call call("MQCB", pCompCode, pReason);
    if (call.isNull()) return;
    call.connection(Hconn);
    call.noteBits("Operation", Operation);
    if (Hobj == MQHO_NONE) {
        call.note("Hobj", Hobj);
    } else {
        call.object(Hobj);
    }
    call.optionalStructure("MQCBD", pCallbackDesc);
    call.optionalStructure("MQMD", pMsgDesc);
    call.optionalStructure("MQGMO", pGetMsgOpts);
    call.decide();
    Connection *owner = call.connectionState();
    const auto *cbd = static_cast<const MQCBD *>(pCallbackDesc);
    if (call.succeeded() && owner != nullptr && cbd != nullptr && (Operation & MQOP_REGISTER) != 0) {
        owner->eventHandler = reinterpret_cast<MQCB_FUNCTION *>(cbd->CallbackFunction);
        owner->callbackArea = cbd->CallbackArea;
    }
    call.finish();
}

void MQCTL(MQHCONN Hconn, MQLONG Operation, PMQVOID pControlOpts, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    Call call("MQCTL", pCompCode, pReason);
    if (call.isNull()) return;
    call.connection(Hconn);
    call.noteBits("Operation", Operation);
    call.optionalStructure("MQCTLO", pControlOpts);
    call.decide();
    call.finish();
}

void MQSTAT(MQHCONN Hconn, MQLONG Type, PMQVOID pStatus, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    Call call("MQSTAT", pCompCode, pReason);
    if (call.isNull()) return;
    call.connection(Hconn);
    call.note("Type", Type);
    call.structure("MQSTS", pStatus);
    call.decide();
    if (call.succeeded()) call.writeBack("MQSTS", pStatus);
    call.finish();
}
