// Answers requests with MQPUT1, in the unit of work in which it got them, until it is told to stop.
#include <cstring>
#include <string>

#include "program.h"

int main()
{
    const MQHCONN hconn = connectToQM1();
    const MQHOBJ requests = openQueue(hconn, "REQUESTS", MQOO_INPUT_SHARED | MQOO_FAIL_IF_QUIESCING);
    for (;;) {
        char buffer[256];
        MQMD md = {MQMD_DEFAULT};
        MQGMO gmo = {MQGMO_DEFAULT};
        MQLONG length = 0;
        gmo.Options = MQGMO_WAIT | MQGMO_SYNCPOINT | MQGMO_FAIL_IF_QUIESCING;
        gmo.WaitInterval = 30000;
        OK(MQGET(hconn, requests, &md, &gmo, sizeof buffer, buffer, &length, &cc, &rc));
        std::string text(buffer, static_cast<size_t>(length));
        if (md.MsgType != MQMT_REQUEST) {
            CHECK(text == "stop");
            OK(MQCMIT(hconn, &cc, &rc));
            break;
        }
        text.insert(0, "answer to ");
        MQOD od = {MQOD_DEFAULT};
        std::memcpy(od.ObjectName, md.ReplyToQ, sizeof od.ObjectName);
        std::memcpy(od.ObjectQMgrName, md.ReplyToQMgr, sizeof od.ObjectQMgrName);
        MQMD reply = {MQMD_DEFAULT};
        reply.MsgType = MQMT_REPLY;
        reply.Persistence = md.Persistence;
        std::memcpy(reply.Format, MQFMT_STRING, sizeof reply.Format);
        CHECK((md.Report & MQRO_PASS_MSG_ID) == 0 && (md.Report & MQRO_PASS_CORREL_ID) == 0);
        std::memcpy(reply.CorrelId, md.MsgId, sizeof reply.CorrelId);
        MQPMO pmo = {MQPMO_DEFAULT};
        pmo.Options = MQPMO_SYNCPOINT;
        OK(MQPUT1(hconn, &od, &reply, &pmo, static_cast<MQLONG>(text.size()), text.data(), &cc, &rc));
        CHECK(IS_NAME(pmo.ResolvedQMgrName, "QM1"));
        OK(MQCMIT(hconn, &cc, &rc));
    }
    closeAndDisconnect(hconn, requests);
    return 0;
}
