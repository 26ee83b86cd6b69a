/* A subscriber that comes and goes: what is published while it is away waits for it. */
#include "program.h"

static const char name[] = "prices for the night";

/* Two connections of one thread at once. */
static MQHCONN connectShared(void)
{
    MQHCONN hconn = MQHC_UNUSABLE_HCONN;
    MQCNO cno = {MQCNO_DEFAULT};
    MQCHAR48 queueManager;
    NAME(queueManager, "QM1");
    cno.Options = MQCNO_HANDLE_SHARE_BLOCK;
    OK(MQCONNX(queueManager, &cno, &hconn, &cc, &rc));
    return hconn;
}

static void publish(MQHCONN hconn, const char *topic, const char *text, MQLONG options)
{
    MQOD od = {MQOD_DEFAULT};
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = {MQPMO_DEFAULT};
    od.Version = MQOD_VERSION_4;
    od.ObjectType = MQOT_TOPIC;
    od.ObjectString.VSPtr = (PMQVOID)topic;
    od.ObjectString.VSLength = (MQLONG)strlen(topic);
    md.Persistence = MQPER_PERSISTENT;
    memcpy(md.Format, MQFMT_STRING, sizeof md.Format);
    pmo.Options = MQPMO_NO_SYNCPOINT | options;
    OK(MQPUT1(hconn, &od, &md, &pmo, (MQLONG)strlen(text), (PMQVOID)text, &cc, &rc));
}

static void subscribe(MQHCONN hconn, MQLONG options, MQHOBJ *publications, MQHOBJ *subscription)
{
    MQSD sd = {MQSD_DEFAULT};
    char topic[64];
    sd.Options = options | MQSO_DURABLE | MQSO_MANAGED | MQSO_FAIL_IF_QUIESCING;
    sd.ObjectString.VSPtr = (PMQVOID) "prices/+/fruit";
    sd.ObjectString.VSLength = MQVS_NULL_TERMINATED;
    sd.SubName.VSPtr = (PMQVOID)name;
    sd.SubName.VSLength = MQVS_NULL_TERMINATED;
    sd.ResObjectString.VSPtr = topic;
    sd.ResObjectString.VSBufSize = sizeof topic;
    *publications = MQHO_NONE;
    MQSUB(hconn, &sd, publications, subscription, &cc, &rc);
    if (cc == MQCC_FAILED) return;
    CHECK(sd.ResObjectString.VSLength == 14 && memcmp(topic, "prices/+/fruit", 14) == 0);
}

static void expect(MQHCONN hconn, MQHOBJ publications, const char *text)
{
    char got[64];
    OK(getText(hconn, publications, MQGMO_NO_SYNCPOINT | MQGMO_NO_PROPERTIES, got, sizeof got));
    CHECK(strcmp(got, text) == 0);
}

int main(void)
{
    MQHCONN hconn = connectShared();
    const MQHCONN other = connectShared();
    MQHOBJ publications;
    MQHOBJ subscription = MQHO_UNUSABLE_HOBJ;
    MQHOBJ none = MQHO_NONE;
    MQSRO sro = {MQSRO_DEFAULT};
    char text[64];

    publish(other, "prices/rome/fruit", "apples 1", MQPMO_RETAIN);
    FAILS(MQRC_NO_SUBSCRIPTION, subscribe(hconn, MQSO_RESUME, &publications, &subscription));
    OK(subscribe(hconn, MQSO_CREATE | MQSO_RESUME, &publications, &subscription));
    expect(hconn, publications, "apples 1");
    OK(MQCLOSE(hconn, &subscription, MQCO_KEEP_SUB, &cc, &rc));
    OK(MQDISC(&hconn, &cc, &rc));

    publish(other, "prices/rome/fruit", "apples 2", MQPMO_RETAIN);
    publish(other, "prices/oslo/fruit", "pears 3", MQPMO_NONE);
    publish(other, "prices/oslo/fish", "cod 4", MQPMO_NONE);

    hconn = connectShared();
    FAILS(MQRC_SUB_ALREADY_EXISTS, subscribe(hconn, MQSO_CREATE, &publications, &subscription));
    OK(subscribe(hconn, MQSO_CREATE | MQSO_RESUME, &publications, &subscription));
    FAILS(MQRC_SUBSCRIPTION_IN_USE, subscribe(other, MQSO_RESUME, &none, &none));
    expect(hconn, publications, "apples 2");
    expect(hconn, publications, "pears 3");
    FAILS(MQRC_NO_MSG_AVAILABLE, getText(hconn, publications, MQGMO_NO_SYNCPOINT, text, sizeof text));

    OK(MQSUBRQ(hconn, subscription, MQSR_ACTION_PUBLICATION, &sro, &cc, &rc));
    CHECK(sro.NumPubs == 1);
    expect(hconn, publications, "apples 2");

    OK(MQCLOSE(hconn, &publications, MQCO_NONE, &cc, &rc));
    OK(MQCLOSE(hconn, &subscription, MQCO_REMOVE_SUB, &cc, &rc));
    FAILS(MQRC_NO_SUBSCRIPTION, subscribe(hconn, MQSO_RESUME, &publications, &subscription));
    OK(MQDISC(&hconn, &cc, &rc));
    hconn = other;
    OK(MQDISC(&hconn, &cc, &rc));
    return 0;
}
