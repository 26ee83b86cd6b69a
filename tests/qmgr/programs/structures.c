/* A C99 program writes each structure of each version in the middle of a pattern, hands it to the library, and finds
   nothing changed but what the call returns: neither what is only read nor what lies behind the version. */
#include <cmqxc.h>

#include "program.h"

static const unsigned char pattern = 0xA5;

typedef union {
    unsigned char bytes[2048];
    MQINT64 number;
    void *pointer; /* aligned for every structure */
} Block;

/* The structure in the pattern: `length` bytes of it. */
static void *lay(Block *block, const void *structure, size_t length, MQLONG version)
{
    memset(block->bytes, pattern, sizeof block->bytes);
    memcpy(block->bytes, structure, length);
    memcpy(block->bytes + sizeof(MQCHAR4), &version, sizeof version);
    return block->bytes;
}

static int isPatternFrom(const Block *block, size_t length)
{
    size_t i;
    for (i = length; i < sizeof block->bytes; ++i)
        if (block->bytes[i] != pattern) return 0;
    return 1;
}

/* Nothing at all was written. */
static int isAsLaid(const Block *block, const void *structure, size_t length, MQLONG version)
{
    Block again;
    lay(&again, structure, length, version);
    return memcmp(again.bytes, block->bytes, sizeof again.bytes) == 0;
}

static MQCHAR48 qm1;

static void connectOptions(void)
{
    static const size_t lengths[] = {MQCNO_LENGTH_1, MQCNO_LENGTH_2, MQCNO_LENGTH_3, MQCNO_LENGTH_4,
                                     MQCNO_LENGTH_5, MQCNO_LENGTH_6, MQCNO_LENGTH_7, MQCNO_LENGTH_8};
    MQLONG version;
    for (version = MQCNO_VERSION_1; version <= MQCNO_CURRENT_VERSION; ++version) {
        const size_t length = lengths[version - 1];
        MQCNO cno = {MQCNO_DEFAULT};
        MQHCONN hconn = MQHC_UNUSABLE_HCONN;
        Block block;
        MQCNO *laid;
        cno.Options = MQCNO_HANDLE_SHARE_BLOCK | MQCNO_GENERATE_CONN_TAG;
        laid = lay(&block, &cno, length, version);
        OK(MQCONNX(qm1, laid, &hconn, &cc, &rc));
        CHECK(isPatternFrom(&block, length));
        CHECK(laid->Options == cno.Options);
        if (version >= MQCNO_VERSION_3) CHECK(laid->ConnTag[0] != 0);
        if (version >= MQCNO_VERSION_5) CHECK(memcmp(laid->ConnectionId, "AMQCQM1", 7) == 0);
        OK(MQDISC(&hconn, &cc, &rc));
    }
}

/* What a connection names and only reads: a channel without a host, and credentials. */
static void channelsAndCredentials(void)
{
    static const size_t lengths[] = {MQCD_LENGTH_1, MQCD_LENGTH_2,  MQCD_LENGTH_3,  MQCD_LENGTH_4,
                                     MQCD_LENGTH_5, MQCD_LENGTH_6,  MQCD_LENGTH_7,  MQCD_LENGTH_8,
                                     MQCD_LENGTH_9, MQCD_LENGTH_10, MQCD_LENGTH_11, MQCD_LENGTH_12};
    MQLONG version;
    for (version = MQCD_VERSION_1; version <= MQCD_CURRENT_VERSION; ++version) {
        const size_t length = lengths[version - 1];
        MQCNO cno = {MQCNO_DEFAULT};
        MQCD cd = {MQCD_CLIENT_CONN_DEFAULT};
        MQCSP csp = {MQCSP_DEFAULT};
        MQHCONN hconn = MQHC_UNUSABLE_HCONN;
        Block cdBlock;
        Block again;
        Block cspBlock;
        cd.Version = version;
        memset(cdBlock.bytes, pattern, sizeof cdBlock.bytes);
        memcpy(cdBlock.bytes, &cd, length);
        again = cdBlock;
        cno.Version = MQCNO_VERSION_5;
        cno.Options = MQCNO_HANDLE_SHARE_BLOCK;
        cno.ClientConnPtr = cdBlock.bytes;
        csp.AuthenticationType = MQCSP_AUTH_USER_ID_AND_PWD;
        csp.CSPUserIdPtr = "user";
        csp.CSPUserIdLength = 4;
        cno.SecurityParmsPtr = lay(&cspBlock, &csp, MQCSP_LENGTH_1, MQCSP_VERSION_1);
        OK(MQCONNX(qm1, &cno, &hconn, &cc, &rc));
        CHECK(memcmp(again.bytes, cdBlock.bytes, sizeof again.bytes) == 0);
        CHECK(isAsLaid(&cspBlock, &csp, MQCSP_LENGTH_1, MQCSP_VERSION_1));
        OK(MQDISC(&hconn, &cc, &rc));
    }
}

/* The arrays of a distribution list have no version: what lies around their elements is the program's. */
static void distributionList(MQHCONN hconn)
{
    MQOD od = {MQOD_DEFAULT};
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = {MQPMO_DEFAULT};
    MQOR names[2] = {{MQOR_DEFAULT}, {MQOR_DEFAULT}};
    MQRR none[2] = {{MQRR_DEFAULT}, {MQRR_DEFAULT}};
    MQBYTE24 ids[2];
    Block namesBlock;
    Block againNames;
    Block responses;
    Block records;
    NAME(names[0].ObjectName, "Q1");
    NAME(names[1].ObjectName, "NOT.THERE");
    memset(namesBlock.bytes, pattern, sizeof namesBlock.bytes);
    memcpy(namesBlock.bytes, names, sizeof names);
    againNames = namesBlock;
    memset(responses.bytes, pattern, sizeof responses.bytes);
    memcpy(responses.bytes, none, sizeof none);
    memset(records.bytes, pattern, sizeof records.bytes);
    memset(records.bytes, 0, sizeof ids);

    od.Version = MQOD_VERSION_2;
    od.RecsPresent = 2;
    od.ObjectRecPtr = namesBlock.bytes;
    od.ResponseRecPtr = responses.bytes;
    pmo.Version = MQPMO_VERSION_2;
    pmo.Options = MQPMO_NO_SYNCPOINT | MQPMO_NEW_MSG_ID;
    pmo.RecsPresent = 2;
    pmo.PutMsgRecFields = MQPMRF_MSG_ID;
    pmo.PutMsgRecPtr = records.bytes;
    pmo.ResponseRecPtr = responses.bytes;
    WARNS(MQRC_MULTIPLE_REASONS, MQPUT1(hconn, &od, &md, &pmo, 5, "hello", &cc, &rc));
    CHECK(memcmp(namesBlock.bytes, againNames.bytes, sizeof againNames.bytes) == 0);
    CHECK(isPatternFrom(&responses, sizeof none) && isPatternFrom(&records, sizeof ids));
    memcpy(none, responses.bytes, sizeof none);
    CHECK(none[0].CompCode == MQCC_OK && none[0].Reason == MQRC_NONE);
    CHECK(none[1].CompCode == MQCC_FAILED && none[1].Reason == MQRC_UNKNOWN_OBJECT_NAME);
    CHECK(memcmp(records.bytes, MQMI_NONE, MQ_MSG_ID_LENGTH) != 0);
    {
        MQHOBJ hobj = openQueue(hconn, "Q1", MQOO_INPUT_SHARED);
        MQGMO gmo = {MQGMO_DEFAULT};
        MQLONG length = 0;
        char buffer[16];
        gmo.Options = MQGMO_NO_SYNCPOINT;
        memcpy(md.MsgId, records.bytes, sizeof md.MsgId);
        OK(MQGET(hconn, hobj, &md, &gmo, (MQLONG)sizeof buffer, buffer, &length, &cc, &rc));
        OK(MQCLOSE(hconn, &hobj, MQCO_NONE, &cc, &rc));
    }
}

static const size_t odLengths[] = {MQOD_LENGTH_1, MQOD_LENGTH_2, MQOD_LENGTH_3, MQOD_LENGTH_4};
static const size_t mdLengths[] = {MQMD_LENGTH_1, MQMD_LENGTH_2};
static const size_t gmoLengths[] = {MQGMO_LENGTH_1, MQGMO_LENGTH_2, MQGMO_LENGTH_3, MQGMO_LENGTH_4};

/* The pattern behind the version does not travel with the message either. */
static void putAndGetWhole(MQHCONN hconn, MQLONG odVersion, MQLONG mdVersion, MQHOBJ hobj)
{
    MQOD od = {MQOD_DEFAULT};
    MQMD md = {MQMD_DEFAULT};
    MQMD got = {MQMD_DEFAULT};
    MQPMO pmo = {MQPMO_DEFAULT};
    MQGMO gmo = {MQGMO_DEFAULT};
    MQLONG length = 0;
    char buffer[16];
    Block odBlock;
    Block mdBlock;
    NAME(od.ObjectName, "Q1");
    pmo.Options = MQPMO_NO_SYNCPOINT;
    OK(MQPUT1(hconn, lay(&odBlock, &od, odLengths[odVersion - 1], odVersion),
              lay(&mdBlock, &md, mdLengths[mdVersion - 1], mdVersion), &pmo, 5, "hello", &cc, &rc));
    CHECK(isPatternFrom(&odBlock, odLengths[odVersion - 1]) && isPatternFrom(&mdBlock, mdLengths[mdVersion - 1]));
    gmo.Options = MQGMO_NO_SYNCPOINT;
    got.Version = MQMD_VERSION_2;
    OK(MQGET(hconn, hobj, &got, &gmo, (MQLONG)sizeof buffer, buffer, &length, &cc, &rc));
    CHECK(memcmp(got.GroupId, MQGI_NONE, sizeof got.GroupId) == 0);
    CHECK(got.MsgSeqNumber == 1 && got.Offset == 0 && got.MsgFlags == MQMF_NONE && got.OriginalLength == -1);
}

static void openAndPut(MQHCONN hconn)
{
    static const size_t pmoLengths[] = {MQPMO_LENGTH_1, MQPMO_LENGTH_2, MQPMO_LENGTH_3};
    MQLONG odVersion;
    MQLONG mdVersion;
    MQLONG pmoVersion;
    MQLONG gmoVersion;
    for (odVersion = MQOD_VERSION_1; odVersion <= MQOD_CURRENT_VERSION; ++odVersion) {
        MQOD od = {MQOD_DEFAULT};
        MQHOBJ hobj = MQHO_UNUSABLE_HOBJ;
        Block odBlock;
        MQOD *laidOd;
        NAME(od.ObjectName, "Q1");
        laidOd = lay(&odBlock, &od, odLengths[odVersion - 1], odVersion);
        OK(MQOPEN(hconn, laidOd, MQOO_INPUT_SHARED | MQOO_OUTPUT, &hobj, &cc, &rc));
        CHECK(isPatternFrom(&odBlock, odLengths[odVersion - 1]));
        CHECK(IS_NAME(laidOd->ObjectName, "Q1"));
        if (odVersion >= MQOD_VERSION_2) CHECK(laidOd->KnownDestCount == 1);
        if (odVersion >= MQOD_VERSION_3) CHECK(IS_NAME(laidOd->ResolvedQName, "Q1"));
        if (odVersion >= MQOD_VERSION_4) CHECK(laidOd->ResolvedType == MQOT_Q);

        for (mdVersion = MQMD_VERSION_1; mdVersion <= MQMD_CURRENT_VERSION; ++mdVersion)
            for (pmoVersion = MQPMO_VERSION_1; pmoVersion <= MQPMO_CURRENT_VERSION; ++pmoVersion)
                for (gmoVersion = MQGMO_VERSION_1; gmoVersion <= MQGMO_CURRENT_VERSION; ++gmoVersion) {
                    const size_t mdLength = mdLengths[mdVersion - 1];
                    const size_t pmoLength = pmoLengths[pmoVersion - 1];
                    const size_t gmoLength = gmoLengths[gmoVersion - 1];
                    MQMD md = {MQMD_DEFAULT};
                    MQPMO pmo = {MQPMO_DEFAULT};
                    MQGMO gmo = {MQGMO_DEFAULT};
                    Block mdBlock;
                    Block gotBlock;
                    Block optionsBlock;
                    MQMD *put;
                    MQMD *got;
                    MQLONG length = 0;
                    char buffer[16];
                    md.Feedback = 4711;
                    md.Priority = 3;
                    memcpy(md.Format, MQFMT_STRING, sizeof md.Format);
                    memset(md.CorrelId, 0x5A, sizeof md.CorrelId);
                    pmo.Options = MQPMO_NO_SYNCPOINT;
                    put = lay(&mdBlock, &md, mdLength, mdVersion);
                    OK(MQPUT(hconn, hobj, put, lay(&optionsBlock, &pmo, pmoLength, pmoVersion), 5, "hello", &cc, &rc));
                    CHECK(isPatternFrom(&mdBlock, mdLength) && isPatternFrom(&optionsBlock, pmoLength));
                    CHECK(IS_NAME(((MQPMO *)(void *)optionsBlock.bytes)->ResolvedQName, "Q1"));

                    gmo.Options = MQGMO_NO_SYNCPOINT;
                    memset(md.CorrelId, 0, sizeof md.CorrelId);
                    got = lay(&gotBlock, &md, mdLength, mdVersion);
                    OK(MQGET(hconn, hobj, got, lay(&optionsBlock, &gmo, gmoLength, gmoVersion), (MQLONG)sizeof buffer,
                             buffer, &length, &cc, &rc));
                    CHECK(isPatternFrom(&gotBlock, mdLength) && isPatternFrom(&optionsBlock, gmoLength));
                    CHECK(length == 5 && memcmp(buffer, "hello", 5) == 0);
                    CHECK(got->Version == mdVersion && got->Feedback == 4711 && got->Priority == 3);
                    CHECK(memcmp(got->MsgId, put->MsgId, sizeof got->MsgId) == 0 && got->CorrelId[23] == 0x5A);
                    CHECK(memcmp(got->PutTime, put->PutTime, sizeof got->PutTime) == 0);
                    if (mdVersion == MQMD_VERSION_2) CHECK(got->MsgSeqNumber == 1 && got->OriginalLength == -1);
                }
        for (mdVersion = MQMD_VERSION_1; mdVersion <= MQMD_CURRENT_VERSION; ++mdVersion)
            putAndGetWhole(hconn, odVersion, mdVersion, hobj);
        OK(MQCLOSE(hconn, &hobj, MQCO_NONE, &cc, &rc));
    }
}

static void status(MQHCONN hconn)
{
    static const size_t lengths[] = {MQSTS_LENGTH_1, MQSTS_LENGTH_2};
    MQLONG version;
    for (version = MQSTS_VERSION_1; version <= MQSTS_CURRENT_VERSION; ++version) {
        MQSTS sts = {MQSTS_DEFAULT};
        Block block;
        OK(MQSTAT(hconn, MQSTAT_TYPE_ASYNC_ERROR, lay(&block, &sts, lengths[version - 1], version), &cc, &rc));
        CHECK(isPatternFrom(&block, lengths[version - 1]));
    }
}

static void begin(MQHCONN hconn)
{
    MQBO bo = {MQBO_DEFAULT};
    Block block;
    WARNS(MQRC_NO_EXTERNAL_PARTICIPANTS, MQBEGIN(hconn, lay(&block, &bo, MQBO_LENGTH_1, MQBO_VERSION_1), &cc, &rc));
    CHECK(isAsLaid(&block, &bo, MQBO_LENGTH_1, MQBO_VERSION_1));
    OK(MQBACK(hconn, &cc, &rc));
}

/* Structures of the calls on message handles: all have one version, and all but MQIMPO and MQPD are only read. */
static void messageHandles(MQHCONN hconn)
{
    MQCMHO cmho = {MQCMHO_DEFAULT};
    MQDMHO dmho = {MQDMHO_DEFAULT};
    MQSMPO smpo = {MQSMPO_DEFAULT};
    MQIMPO impo = {MQIMPO_DEFAULT};
    MQDMPO dmpo = {MQDMPO_DEFAULT};
    MQMHBO mhbo = {MQMHBO_DEFAULT};
    MQBMHO bmho = {MQBMHO_DEFAULT};
    MQPD pd = {MQPD_DEFAULT};
    MQMD md = {MQMD_DEFAULT};
    MQCHARV name = {MQCHARV_DEFAULT};
    MQCHARV all = {MQCHARV_DEFAULT};
    MQHMSG hmsg = MQHM_NONE;
    MQLONG type = MQTYPE_AS_SET;
    MQLONG length = 0;
    MQLONG value = 42;
    MQLONG got = 0;
    MQLONG version;
    char buffer[256];
    Block block;
    Block mdBlock;
    Block pdBlock;
    name.VSPtr = "size";
    name.VSLength = 4;
    all.VSPtr = "%";
    all.VSLength = 1;
    OK(MQCRTMH(hconn, lay(&block, &cmho, MQCMHO_LENGTH_1, 1), &hmsg, &cc, &rc));
    CHECK(isAsLaid(&block, &cmho, MQCMHO_LENGTH_1, 1));
    OK(MQSETMP(hconn, hmsg, lay(&block, &smpo, MQSMPO_LENGTH_1, 1), &name, lay(&pdBlock, &pd, MQPD_LENGTH_1, 1),
               MQTYPE_INT32, (MQLONG)sizeof value, &value, &cc, &rc));
    CHECK(isAsLaid(&block, &smpo, MQSMPO_LENGTH_1, 1));
    CHECK(isPatternFrom(&pdBlock, MQPD_LENGTH_1));
    OK(MQINQMP(hconn, hmsg, lay(&block, &impo, MQIMPO_LENGTH_1, 1), &name, lay(&pdBlock, &pd, MQPD_LENGTH_1, 1), &type,
               (MQLONG)sizeof got, &got, &length, &cc, &rc));
    CHECK(type == MQTYPE_INT32 && length == 4 && got == 42);
    CHECK(isPatternFrom(&block, MQIMPO_LENGTH_1) && isPatternFrom(&pdBlock, MQPD_LENGTH_1));
    CHECK(((MQPD *)(void *)pdBlock.bytes)->Support == MQPD_SUPPORT_OPTIONAL);
    for (version = MQMD_VERSION_1; version <= MQMD_CURRENT_VERSION; ++version) {
        MQMD *laid = lay(&mdBlock, &md, mdLengths[version - 1], version);
        OK(MQMHBUF(hconn, hmsg, lay(&block, &mhbo, MQMHBO_LENGTH_1, 1), &all, laid, (MQLONG)sizeof buffer, buffer,
                   &length, &cc, &rc));
        CHECK(isAsLaid(&block, &mhbo, MQMHBO_LENGTH_1, 1));
        CHECK(isPatternFrom(&mdBlock, mdLengths[version - 1]) && memcmp(laid->Format, MQFMT_RF_HEADER_2, 8) == 0);
        CHECK(memcmp(buffer, MQRFH_STRUC_ID, 4) == 0);
    }
    OK(MQDLTMP(hconn, hmsg, lay(&block, &dmpo, MQDMPO_LENGTH_1, 1), &name, &cc, &rc));
    CHECK(isAsLaid(&block, &dmpo, MQDMPO_LENGTH_1, 1));
    memcpy(md.Format, MQFMT_RF_HEADER_2, sizeof md.Format);
    for (version = MQMD_VERSION_1; version <= MQMD_CURRENT_VERSION; ++version) {
        char copy[256];
        MQLONG left = 0;
        MQMD *laid = lay(&mdBlock, &md, mdLengths[version - 1], version);
        memcpy(copy, buffer, sizeof copy);
        OK(MQBUFMH(hconn, hmsg, lay(&block, &bmho, MQBMHO_LENGTH_1, 1), laid, length, copy, &left, &cc, &rc));
        CHECK(isAsLaid(&block, &bmho, MQBMHO_LENGTH_1, 1));
        CHECK(isPatternFrom(&mdBlock, mdLengths[version - 1]) && left == 0 && memcmp(laid->Format, MQFMT_NONE, 8) == 0);
    }
    OK(MQDLTMH(hconn, &hmsg, lay(&block, &dmho, MQDMHO_LENGTH_1, 1), &cc, &rc));
    CHECK(isAsLaid(&block, &dmho, MQDMHO_LENGTH_1, 1));
}

/* The queue manager returns fields of MQSD and MQSRO, and the text of the topic where the program wants it. */
static void subscription(MQHCONN hconn)
{
    MQSD sd = {MQSD_DEFAULT};
    MQSRO sro = {MQSRO_DEFAULT};
    MQHOBJ queue = MQHO_NONE;
    MQHOBJ hsub = MQHO_NONE;
    MQSD *laid;
    char topic[] = "fruit";
    Block block;
    Block sroBlock;
    Block text;
    memset(text.bytes, pattern, sizeof text.bytes);
    sd.Options = MQSO_CREATE | MQSO_MANAGED;
    sd.ObjectString.VSPtr = topic;
    sd.ObjectString.VSLength = 5;
    sd.ResObjectString.VSPtr = text.bytes;
    sd.ResObjectString.VSBufSize = 8;
    laid = lay(&block, &sd, MQSD_LENGTH_1, MQSD_VERSION_1);
    OK(MQSUB(hconn, laid, &queue, &hsub, &cc, &rc));
    CHECK(isPatternFrom(&block, MQSD_LENGTH_1));
    CHECK(isPatternFrom(&text, 8) && memcmp(text.bytes, "fruit", 5) == 0);
    CHECK(laid->Options == sd.Options && laid->ResObjectString.VSLength == 5);
    CHECK(memcmp(laid->SubCorrelId, MQCI_NONE, sizeof laid->SubCorrelId) != 0);
    CHECK(memcmp(topic, "fruit", sizeof topic) == 0);
    FAILS(MQRC_NO_RETAINED_MSG, MQSUBRQ(hconn, hsub, MQSR_ACTION_PUBLICATION,
                                        lay(&sroBlock, &sro, MQSRO_LENGTH_1, MQSRO_VERSION_1), &cc, &rc));
    CHECK(isPatternFrom(&sroBlock, MQSRO_LENGTH_1));
    OK(MQCLOSE(hconn, &hsub, MQCO_NONE, &cc, &rc));
    OK(MQCLOSE(hconn, &queue, MQCO_NONE, &cc, &rc));
}

static void handler(MQHCONN hconn, PMQVOID pMsgDesc, PMQVOID pGetMsgOpts, PMQVOID pBuffer, MQCBC *pContext)
{
    (void)hconn;
    (void)pMsgDesc;
    (void)pGetMsgOpts;
    (void)pBuffer;
    CHECK(memcmp(pContext->StrucId, MQCBC_STRUC_ID, 4) == 0 && pContext->Version >= MQCBC_VERSION_1);
}

static void callbacks(MQHCONN hconn)
{
    MQCBD cbd = {MQCBD_DEFAULT};
    MQCTLO ctlo = {MQCTLO_DEFAULT};
    MQMD md = {MQMD_DEFAULT};
    MQGMO gmo = {MQGMO_DEFAULT};
    MQHOBJ hobj = openQueue(hconn, "Q1", MQOO_INPUT_SHARED);
    MQCB_FUNCTION *function = handler;
    MQLONG mdVersion;
    MQLONG gmoVersion;
    Block block;
    Block mdBlock;
    Block gmoBlock;
    memcpy(&cbd.CallbackFunction, &function, sizeof function);
    gmo.Options = MQGMO_NO_SYNCPOINT;
    for (mdVersion = MQMD_VERSION_1; mdVersion <= MQMD_CURRENT_VERSION; ++mdVersion)
        for (gmoVersion = MQGMO_VERSION_1; gmoVersion <= MQGMO_CURRENT_VERSION; ++gmoVersion) {
            const size_t mdLength = mdLengths[mdVersion - 1];
            const size_t gmoLength = gmoLengths[gmoVersion - 1];
            OK(MQCB(hconn, MQOP_REGISTER, lay(&block, &cbd, MQCBD_LENGTH_1, 1), hobj,
                    lay(&mdBlock, &md, mdLength, mdVersion), lay(&gmoBlock, &gmo, gmoLength, gmoVersion), &cc, &rc));
            CHECK(isAsLaid(&block, &cbd, MQCBD_LENGTH_1, 1));
            CHECK(isAsLaid(&mdBlock, &md, mdLength, mdVersion) && isAsLaid(&gmoBlock, &gmo, gmoLength, gmoVersion));
        }
    OK(MQCTL(hconn, MQOP_START, lay(&block, &ctlo, MQCTLO_LENGTH_1, 1), &cc, &rc));
    CHECK(isAsLaid(&block, &ctlo, MQCTLO_LENGTH_1, 1));
    OK(MQCTL(hconn, MQOP_STOP, &ctlo, &cc, &rc));
    OK(MQCB(hconn, MQOP_DEREGISTER, &cbd, hobj, &md, &gmo, &cc, &rc));
    OK(MQCLOSE(hconn, &hobj, MQCO_NONE, &cc, &rc));
}

int main(void)
{
    MQHCONN hconn;
    setName(qm1, sizeof qm1, "QM1");
    hconn = connectToQM1();
    connectOptions();
    channelsAndCredentials();
    openAndPut(hconn);
    distributionList(hconn);
    status(hconn);
    begin(hconn);
    messageHandles(hconn);
    subscription(hconn);
    callbacks(hconn);
    OK(MQDISC(&hconn, &cc, &rc));
    return 0;
}
