/* Subscribes to requests on any topic, on a queue that the queue manager makes, and answers them until it is told to
   stop. The answer names the topic, a property of every publication. */
#include "program.h"

/* The topic that the message was published on. */
static void topicOf(MQHCONN hconn, MQHMSG message, char *topic, MQLONG size)
{
    MQIMPO impo = {MQIMPO_DEFAULT};
    MQPD pd = {MQPD_DEFAULT};
    MQCHARV name = {MQCHARV_DEFAULT};
    MQLONG type = MQTYPE_AS_SET;
    MQLONG length = 0;
    name.VSPtr = (PMQVOID) "MQTopicString";
    name.VSLength = MQVS_NULL_TERMINATED;
    impo.Options = MQIMPO_INQ_FIRST | MQIMPO_CONVERT_VALUE;
    OK(MQINQMP(hconn, message, &impo, &name, &pd, &type, size - 1, topic, &length, &cc, &rc));
    CHECK(type == MQTYPE_STRING);
    topic[length] = '\0';
}

int main(void)
{
    const MQHCONN hconn = connectToQM1();
    MQHOBJ publications = MQHO_NONE;
    MQHOBJ subscription = MQHO_UNUSABLE_HOBJ;
    MQHMSG message = MQHM_UNUSABLE_HMSG;
    MQCMHO cmho = {MQCMHO_DEFAULT};
    MQDMHO dmho = {MQDMHO_DEFAULT};
    MQSD sd = {MQSD_DEFAULT};
    sd.Options = MQSO_CREATE | MQSO_MANAGED | MQSO_SET_CORREL_ID | MQSO_FAIL_IF_QUIESCING;
    sd.ObjectString.VSPtr = (PMQVOID) "requests/#";
    sd.ObjectString.VSLength = MQVS_NULL_TERMINATED;
    OK(MQSUB(hconn, &sd, &publications, &subscription, &cc, &rc));
    OK(MQCRTMH(hconn, &cmho, &message, &cc, &rc));

    for (;;) {
        char text[64];
        char topic[64];
        char answer[160];
        MQMD md = {MQMD_DEFAULT};
        MQMD reply = {MQMD_DEFAULT};
        MQOD od = {MQOD_DEFAULT};
        MQGMO gmo = {MQGMO_DEFAULT};
        MQPMO pmo = {MQPMO_DEFAULT};
        MQLONG length = 0;
        gmo.Version = MQGMO_VERSION_4;
        gmo.Options = MQGMO_WAIT | MQGMO_NO_SYNCPOINT | MQGMO_PROPERTIES_IN_HANDLE | MQGMO_FAIL_IF_QUIESCING;
        gmo.WaitInterval = 30000;
        gmo.MsgHandle = message;
        OK(MQGET(hconn, publications, &md, &gmo, (MQLONG)sizeof text - 1, text, &length, &cc, &rc));
        text[length] = '\0';
        CHECK(md.PutApplType == MQAT_BROKER);
        topicOf(hconn, message, topic, (MQLONG)sizeof topic);
        if (md.MsgType != MQMT_REQUEST) {
            CHECK(strcmp(text, "stop") == 0 && strcmp(topic, "requests") == 0);
            break;
        }
        CHECK((md.Report & MQRO_PASS_CORREL_ID) != 0);
        memcpy(od.ObjectName, md.ReplyToQ, sizeof od.ObjectName);
        memcpy(od.ObjectQMgrName, md.ReplyToQMgr, sizeof od.ObjectQMgrName);
        reply.MsgType = MQMT_REPLY;
        memcpy(reply.Format, MQFMT_STRING, sizeof reply.Format);
        memcpy(reply.CorrelId, md.CorrelId, sizeof reply.CorrelId);
        snprintf(answer, sizeof answer, "%s: %s", topic, text);
        pmo.Options = MQPMO_NO_SYNCPOINT;
        OK(MQPUT1(hconn, &od, &reply, &pmo, (MQLONG)strlen(answer), answer, &cc, &rc));
    }
    OK(MQDLTMH(hconn, &message, &dmho, &cc, &rc));
    OK(MQCLOSE(hconn, &subscription, MQCO_NONE, &cc, &rc));
    closeAndDisconnect(hconn, publications);
    return 0;
}
