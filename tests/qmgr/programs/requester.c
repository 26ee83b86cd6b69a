/* Publishes requests and waits for the answer to each, on a queue of its own that a model makes. The replier answers.
 */
#include "program.h"

int main(void)
{
    const MQHCONN hconn = connectToQM1();
    const MQHOBJ requests = openQueue(hconn, "REQUESTS", MQOO_OUTPUT | MQOO_FAIL_IF_QUIESCING);
    MQHOBJ replies = MQHO_UNUSABLE_HOBJ;
    MQOD od = {MQOD_DEFAULT};
    int i;
    NAME(od.ObjectName, "SYSTEM.DEFAULT.MODEL.QUEUE");
    NAME(od.DynamicQName, "REPLIES.*");
    OK(MQOPEN(hconn, &od, MQOO_INPUT_EXCLUSIVE, &replies, &cc, &rc));
    CHECK(strncmp(od.ObjectName, "REPLIES.", 8) == 0);

    for (i = 0; i < 20; ++i) {
        char text[64];
        char answer[64] = "";
        char expected[80];
        MQLONG length = 0;
        MQMD md = {MQMD_DEFAULT};
        MQMD reply = {MQMD_DEFAULT};
        MQPMO pmo = {MQPMO_DEFAULT};
        MQGMO gmo = {MQGMO_DEFAULT};
        snprintf(text, sizeof text, "request %d", i);
        md.MsgType = MQMT_REQUEST;
        md.Report = MQRO_COPY_MSG_ID_TO_CORREL_ID;
        md.Expiry = 600;
        memcpy(md.Format, MQFMT_STRING, sizeof md.Format);
        memcpy(md.ReplyToQ, od.ObjectName, sizeof md.ReplyToQ);
        pmo.Options = MQPMO_NO_SYNCPOINT | MQPMO_NEW_MSG_ID;
        OK(MQPUT(hconn, requests, &md, &pmo, (MQLONG)strlen(text), text, &cc, &rc));
        CHECK(IS_NAME(md.ReplyToQMgr, "QM1") || md.ReplyToQMgr[0] == '\0' || md.ReplyToQMgr[0] == ' ');

        gmo.Version = MQGMO_VERSION_2;
        gmo.MatchOptions = MQMO_MATCH_CORREL_ID;
        gmo.Options = MQGMO_WAIT | MQGMO_NO_SYNCPOINT | MQGMO_CONVERT;
        gmo.WaitInterval = 30000;
        memcpy(reply.CorrelId, md.MsgId, sizeof reply.CorrelId);
        OK(MQGET(hconn, replies, &reply, &gmo, (MQLONG)sizeof answer - 1, answer, &length, &cc, &rc));
        CHECK(reply.MsgType == MQMT_REPLY);
        snprintf(expected, sizeof expected, "answer to %s", text);
        CHECK(strcmp(answer, expected) == 0);
    }
    putText(hconn, requests, "stop");
    closeAndDisconnect(hconn, replies);
    return 0;
}
