/* Sends what is on the dead-letter queue to where it was to go, as far as that is possible now. The queue manager
   brings a report there that nobody has a queue for; the program itself brings a message for a queue that was full. */
#include "program.h"

static void putDeadLetter(MQHCONN hconn, MQHOBJ dead, const char *queue, MQLONG reason, const char *text)
{
    struct {
        MQDLH header;
        char text[32];
    } letter;
    const MQDLH defaults = {MQDLH_DEFAULT};
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = {MQPMO_DEFAULT};
    memset(&letter, 0, sizeof letter);
    letter.header = defaults;
    letter.header.Reason = reason;
    NAME(letter.header.DestQName, queue);
    NAME(letter.header.DestQMgrName, "QM1");
    letter.header.Encoding = MQENC_NATIVE;
    letter.header.CodedCharSetId = 1208;
    memcpy(letter.header.Format, MQFMT_STRING, sizeof letter.header.Format);
    memcpy(letter.text, text, strlen(text));
    memcpy(md.Format, MQFMT_DEAD_LETTER_HEADER, sizeof md.Format);
    pmo.Options = MQPMO_NO_SYNCPOINT;
    OK(MQPUT(hconn, dead, &md, &pmo, (MQLONG)(sizeof letter.header + strlen(text)), &letter, &cc, &rc));
}

int main(void)
{
    const MQHCONN hconn = connectToQM1();
    MQHOBJ qmgr = MQHO_UNUSABLE_HOBJ;
    MQHOBJ dead;
    MQHOBJ q1;
    MQHOBJ hobj;
    MQOD od = {MQOD_DEFAULT};
    MQLONG selector = MQCA_DEAD_LETTER_Q_NAME;
    MQCHAR48 deadName;
    char name[49];
    char text[64];
    int delivered = 0;
    int hopeless = 0;

    od.ObjectType = MQOT_Q_MGR;
    OK(MQOPEN(hconn, &od, MQOO_INQUIRE, &qmgr, &cc, &rc));
    OK(MQINQ(hconn, qmgr, 1, &selector, 0, NULL, sizeof deadName, deadName, &cc, &rc));
    CHECK(IS_NAME(deadName, "DEAD"));
    memcpy(name, deadName, 48);
    name[4] = '\0';
    dead = openQueue(hconn, name, MQOO_INPUT_EXCLUSIVE | MQOO_OUTPUT);
    q1 = openQueue(hconn, "Q1", MQOO_INPUT_SHARED | MQOO_OUTPUT);

    putDeadLetter(hconn, dead, "Q1", MQRC_Q_FULL, "late mail");
    {
        MQMD md = {MQMD_DEFAULT};
        MQPMO pmo = {MQPMO_DEFAULT};
        md.Report = MQRO_COA;
        NAME(md.ReplyToQ, "NO.SUCH.QUEUE");
        pmo.Options = MQPMO_NO_SYNCPOINT;
        OK(MQPUT(hconn, q1, &md, &pmo, 8, "reported", &cc, &rc));
        getText(hconn, q1, MQGMO_NO_SYNCPOINT, text, sizeof text);
        CHECK(cc == MQCC_OK && strcmp(text, "reported") == 0);
    }
    for (;;) {
        struct {
            MQDLH header;
            char text[256];
        } letter;
        MQMD md = {MQMD_DEFAULT};
        MQGMO gmo = {MQGMO_DEFAULT};
        MQPMO pmo = {MQPMO_DEFAULT};
        MQOD destination = {MQOD_DEFAULT};
        MQLONG length = 0;
        gmo.Options = MQGMO_SYNCPOINT;
        MQGET(hconn, dead, &md, &gmo, (MQLONG)sizeof letter, &letter, &length, &cc, &rc);
        if (cc == MQCC_FAILED) break;
        CHECK(memcmp(md.Format, MQFMT_DEAD_LETTER_HEADER, sizeof md.Format) == 0);
        CHECK(memcmp(letter.header.StrucId, MQDLH_STRUC_ID, 4) == 0 && length >= (MQLONG)sizeof letter.header);
        memcpy(destination.ObjectName, letter.header.DestQName, 48);
        memcpy(md.Format, letter.header.Format, sizeof md.Format);
        md.Encoding = letter.header.Encoding;
        md.CodedCharSetId = letter.header.CodedCharSetId;
        pmo.Options = MQPMO_SYNCPOINT;
        MQPUT1(hconn, &destination, &md, &pmo, length - (MQLONG)sizeof letter.header, letter.text, &cc, &rc);
        if (cc == MQCC_FAILED) {
            CHECK(rc == MQRC_UNKNOWN_OBJECT_NAME && letter.header.Reason == MQRC_UNKNOWN_OBJECT_NAME);
            CHECK(md.MsgType == MQMT_REPORT && md.Feedback == MQFB_COA);
            ++hopeless;
        } else {
            CHECK(letter.header.Reason == MQRC_Q_FULL);
            ++delivered;
        }
        OK(MQCMIT(hconn, &cc, &rc));
    }
    CHECK(rc == MQRC_NO_MSG_AVAILABLE && delivered == 1 && hopeless == 1);
    getText(hconn, q1, MQGMO_NO_SYNCPOINT, text, sizeof text);
    CHECK(cc == MQCC_OK && strcmp(text, "late mail") == 0);

    hobj = q1;
    OK(MQCLOSE(hconn, &hobj, MQCO_NONE, &cc, &rc));
    OK(MQCLOSE(hconn, &qmgr, MQCO_NONE, &cc, &rc));
    closeAndDisconnect(hconn, dead);
    return 0;
}
