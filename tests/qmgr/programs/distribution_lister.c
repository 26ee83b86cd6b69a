/* Puts one message on several queues with one call, and lists what became of it at each. */
#include "program.h"

enum { destinations = 4 };

int main(void)
{
    const MQHCONN hconn = connectToQM1();
    static const char *const names[destinations] = {"Q1", "NO.SUCH.QUEUE", "Q2", "FULL"};
    static const MQLONG opened[destinations] = {MQRC_NONE, MQRC_UNKNOWN_OBJECT_NAME, MQRC_NONE, MQRC_NONE};
    static const MQLONG put[destinations] = {MQRC_NONE, MQRC_OPEN_FAILED, MQRC_NONE, MQRC_Q_FULL};
    MQOR objects[destinations];
    MQRR responses[destinations];
    struct {
        MQBYTE24 MsgId;
        MQBYTE24 CorrelId;
    } records[destinations]; /* of the fields that PutMsgRecFields names */
    MQOD od = {MQOD_DEFAULT};
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = {MQPMO_DEFAULT};
    MQHOBJ list = MQHO_UNUSABLE_HOBJ;
    int i;
    for (i = 0; i < destinations; ++i) {
        const MQOR object = {MQOR_DEFAULT};
        objects[i] = object;
        NAME(objects[i].ObjectName, names[i]);
        responses[i].CompCode = MQCC_UNKNOWN;
        memset(&records[i], 0, sizeof records[i]);
        records[i].CorrelId[0] = (MQBYTE)('a' + i);
    }
    od.Version = MQOD_VERSION_2;
    od.RecsPresent = destinations;
    od.ObjectRecPtr = objects;
    od.ResponseRecPtr = responses;
    WARNS(MQRC_MULTIPLE_REASONS, MQOPEN(hconn, &od, MQOO_OUTPUT, &list, &cc, &rc));
    CHECK(od.KnownDestCount == 3 && od.UnknownDestCount == 0 && od.InvalidDestCount == 1);
    for (i = 0; i < destinations; ++i)
        CHECK(responses[i].Reason == opened[i]);

    pmo.Version = MQPMO_VERSION_2;
    pmo.Options = MQPMO_NO_SYNCPOINT;
    pmo.RecsPresent = destinations;
    pmo.PutMsgRecFields = MQPMRF_MSG_ID | MQPMRF_CORREL_ID;
    pmo.PutMsgRecPtr = records;
    pmo.ResponseRecPtr = responses;
    WARNS(MQRC_MULTIPLE_REASONS, MQPUT(hconn, list, &md, &pmo, 5, "hello", &cc, &rc));
    CHECK(pmo.KnownDestCount == 2 && pmo.UnknownDestCount == 0 && pmo.InvalidDestCount == 2);
    for (i = 0; i < destinations; ++i)
        CHECK(responses[i].Reason == put[i]);

    for (i = 0; i < destinations; i += 2) {
        char text[16];
        MQLONG length = 0;
        MQMD got = {MQMD_DEFAULT};
        MQGMO gmo = {MQGMO_DEFAULT};
        MQHOBJ hobj = openQueue(hconn, names[i], MQOO_INPUT_SHARED);
        gmo.Options = MQGMO_NO_SYNCPOINT;
        OK(MQGET(hconn, hobj, &got, &gmo, (MQLONG)sizeof text, text, &length, &cc, &rc));
        CHECK(length == 5 && memcmp(text, "hello", 5) == 0);
        CHECK(memcmp(got.MsgId, records[i].MsgId, sizeof got.MsgId) == 0);
        CHECK(memcmp(got.CorrelId, records[i].CorrelId, sizeof got.CorrelId) == 0);
        OK(MQCLOSE(hconn, &hobj, MQCO_NONE, &cc, &rc));
    }
    CHECK(memcmp(records[0].MsgId, records[2].MsgId, sizeof records[0].MsgId) != 0);
    closeAndDisconnect(hconn, list);
    return 0;
}
