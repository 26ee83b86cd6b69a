/* Publishes requests on topics, whoever may be subscribed there, and collects the answers on a queue of its own that a
   model makes. The request subscriber answers. */
#include <unistd.h>

#include "program.h"

static MQHOBJ openTopic(MQHCONN hconn, const char *topic)
{
    MQHOBJ hobj = MQHO_UNUSABLE_HOBJ;
    MQOD od = {MQOD_DEFAULT};
    char resolved[64];
    od.Version = MQOD_VERSION_4;
    od.ObjectType = MQOT_TOPIC;
    od.ObjectString.VSPtr = (PMQVOID)topic;
    od.ObjectString.VSLength = MQVS_NULL_TERMINATED;
    od.ResObjectString.VSPtr = resolved;
    od.ResObjectString.VSBufSize = sizeof resolved;
    OK(MQOPEN(hconn, &od, MQOO_OUTPUT | MQOO_FAIL_IF_QUIESCING, &hobj, &cc, &rc));
    CHECK(od.ResObjectString.VSLength == (MQLONG)strlen(topic));
    CHECK(memcmp(resolved, topic, strlen(topic)) == 0);
    return hobj;
}

/* Publishes until somebody is there to get it. */
static void publish(MQHCONN hconn, MQHOBJ topic, PMQMD md, const char *text)
{
    int attempt;
    for (attempt = 0; attempt < 3000; ++attempt) {
        MQPMO pmo = {MQPMO_DEFAULT};
        pmo.Options = MQPMO_NO_SYNCPOINT | MQPMO_NEW_MSG_ID | MQPMO_WARN_IF_NO_SUBS_MATCHED;
        MQPUT(hconn, topic, md, &pmo, (MQLONG)strlen(text), (PMQVOID)text, &cc, &rc);
        if (cc == MQCC_OK) return;
        CHECK(cc == MQCC_WARNING && rc == MQRC_NO_SUBS_MATCHED);
        usleep(10000);
    }
    CHECK(!"nobody subscribes");
}

int main(void)
{
    static const char *const topics[] = {"requests/red", "requests/green", "requests/blue/dark"};
    const MQHCONN hconn = connectToQM1();
    MQHOBJ replies = MQHO_UNUSABLE_HOBJ;
    MQHOBJ topic;
    MQMD stop = {MQMD_DEFAULT};
    MQOD od = {MQOD_DEFAULT};
    int i;
    NAME(od.ObjectName, "SYSTEM.DEFAULT.MODEL.QUEUE");
    NAME(od.DynamicQName, "ANSWERS.*");
    OK(MQOPEN(hconn, &od, MQOO_INPUT_EXCLUSIVE, &replies, &cc, &rc));

    for (i = 0; i < 3; ++i) {
        char answer[128];
        char expected[128];
        MQLONG length = 0;
        MQMD md = {MQMD_DEFAULT};
        MQMD reply = {MQMD_DEFAULT};
        MQGMO gmo = {MQGMO_DEFAULT};
        topic = openTopic(hconn, topics[i]);
        md.MsgType = MQMT_REQUEST;
        md.Report = MQRO_PASS_CORREL_ID;
        memcpy(md.Format, MQFMT_STRING, sizeof md.Format);
        memcpy(md.ReplyToQ, od.ObjectName, sizeof md.ReplyToQ);
        memset(md.CorrelId, 'a' + i, sizeof md.CorrelId);
        publish(hconn, topic, &md, "what is it?");

        gmo.Version = MQGMO_VERSION_2;
        gmo.MatchOptions = MQMO_MATCH_CORREL_ID;
        gmo.Options = MQGMO_WAIT | MQGMO_NO_SYNCPOINT | MQGMO_CONVERT;
        gmo.WaitInterval = 30000;
        memcpy(reply.CorrelId, md.CorrelId, sizeof reply.CorrelId);
        OK(MQGET(hconn, replies, &reply, &gmo, (MQLONG)sizeof answer - 1, answer, &length, &cc, &rc));
        answer[length] = '\0';
        CHECK(reply.MsgType == MQMT_REPLY);
        snprintf(expected, sizeof expected, "%s: what is it?", topics[i]);
        CHECK(strcmp(answer, expected) == 0);
        OK(MQCLOSE(hconn, &topic, MQCO_NONE, &cc, &rc));
    }
    topic = openTopic(hconn, "requests");
    publish(hconn, topic, &stop, "stop");
    OK(MQCLOSE(hconn, &topic, MQCO_NONE, &cc, &rc));
    closeAndDisconnect(hconn, replies);
    return 0;
}
