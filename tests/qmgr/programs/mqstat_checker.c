/* Puts messages without waiting for answers, more than the queue takes, and asks afterwards what became of them. */
#include "program.h"

int main(void)
{
    const MQHCONN hconn = connectToQM1();
    const MQHOBJ hobj = openQueue(hconn, "TWO", MQOO_OUTPUT | MQOO_INPUT_SHARED);
    MQSTS sts = {MQSTS_DEFAULT};
    char text[16];
    int i;
    for (i = 0; i < 5; ++i) {
        MQMD md = {MQMD_DEFAULT};
        MQPMO pmo = {MQPMO_DEFAULT};
        pmo.Options = MQPMO_NO_SYNCPOINT | MQPMO_ASYNC_RESPONSE | MQPMO_NEW_MSG_ID;
        md.Persistence = MQPER_NOT_PERSISTENT;
        OK(MQPUT(hconn, hobj, &md, &pmo, 2, "hi", &cc, &rc));
    }
    OK(MQSTAT(hconn, MQSTAT_TYPE_ASYNC_ERROR, &sts, &cc, &rc));
    CHECK(sts.CompCode == MQCC_FAILED && sts.Reason == MQRC_Q_FULL);
    CHECK(sts.PutSuccessCount == 2 && sts.PutWarningCount == 0 && sts.PutFailureCount == 3);
    CHECK(IS_NAME(sts.ObjectName, "TWO") && IS_NAME(sts.ResolvedObjectName, "TWO"));
    CHECK(IS_NAME(sts.ResolvedQMgrName, "QM1"));

    sts.Version = MQSTS_VERSION_2;
    OK(MQSTAT(hconn, MQSTAT_TYPE_ASYNC_ERROR, &sts, &cc, &rc));
    CHECK(sts.CompCode == MQCC_OK && sts.Reason == MQRC_NONE);
    CHECK(sts.PutSuccessCount == 0 && sts.PutFailureCount == 0);
    FAILS(MQRC_ENVIRONMENT_ERROR, MQSTAT(hconn, MQSTAT_TYPE_RECONNECTION, &sts, &cc, &rc));

    for (i = 0; i < 2; ++i) {
        getText(hconn, hobj, MQGMO_NO_SYNCPOINT, text, sizeof text);
        CHECK(cc == MQCC_OK && strcmp(text, "hi") == 0);
    }
    FAILS(MQRC_NO_MSG_AVAILABLE, getText(hconn, hobj, MQGMO_NO_SYNCPOINT, text, sizeof text));
    closeAndDisconnect(hconn, hobj);
    return 0;
}
