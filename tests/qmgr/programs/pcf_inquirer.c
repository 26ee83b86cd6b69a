/* Asks the command server for the depths of some queues, and walks the answers structure by structure. */
#include "program.h"

#include <cmqcfc.h>

typedef struct {
    MQCFH header;
    MQLONG type;
    MQLONG length;
    MQLONG parameter;
    MQLONG ccsid;
    MQLONG stringLength;
    char name[8];
} Request; /* as it stands in the message */

/* The answer for one queue: its name and depth. */
static void readAnswer(const char *buffer, const MQCFH *header, char *name, MQLONG *depth)
{
    const char *at = buffer + header->StrucLength;
    MQLONG i;
    for (i = 0; i < header->ParameterCount; ++i) {
        const MQLONG *head = (const MQLONG *)(const void *)at; /* Type, StrucLength, Parameter */
        CHECK(head[1] >= 16 && head[1] % 4 == 0);
        if (head[0] == MQCFT_STRING && head[2] == MQCA_Q_NAME) {
            CHECK(head[4] <= 48);
            memcpy(name, at + MQCFST_STRUC_LENGTH_FIXED, (size_t)head[4]);
            name[head[4]] = '\0';
            while (strlen(name) > 0 && name[strlen(name) - 1] == ' ')
                name[strlen(name) - 1] = '\0';
        }
        if (head[0] == MQCFT_INTEGER && head[2] == MQIA_CURRENT_Q_DEPTH) *depth = head[3];
        at += head[1];
    }
}

int main(void)
{
    const MQHCONN hconn = connectToQM1();
    const MQHOBJ queue = openQueue(hconn, "PCF.1", MQOO_OUTPUT);
    MQHOBJ replies = MQHO_UNUSABLE_HOBJ;
    MQOD od = {MQOD_DEFAULT};
    MQOD commands = {MQOD_DEFAULT};
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = {MQPMO_DEFAULT};
    Request request;
    const MQCFH header = {MQCFH_DEFAULT};
    int answers = 0;
    int last = 0;

    putText(hconn, queue, "one");
    putText(hconn, queue, "two");
    NAME(od.ObjectName, "SYSTEM.DEFAULT.MODEL.QUEUE");
    NAME(od.DynamicQName, "*");
    OK(MQOPEN(hconn, &od, MQOO_INPUT_EXCLUSIVE, &replies, &cc, &rc));

    memset(&request, 0, sizeof request);
    request.header = header;
    request.header.Command = MQCMD_INQUIRE_Q;
    request.header.ParameterCount = 1;
    request.type = MQCFT_STRING;
    request.length = MQCFST_STRUC_LENGTH_FIXED + 8;
    request.parameter = MQCA_Q_NAME;
    request.ccsid = MQCCSI_DEFAULT;
    request.stringLength = 5;
    memcpy(request.name, "PCF.*", 5);
    md.MsgType = MQMT_REQUEST;
    memcpy(md.Format, MQFMT_ADMIN, sizeof md.Format);
    memcpy(md.ReplyToQ, od.ObjectName, sizeof md.ReplyToQ);
    NAME(commands.ObjectName, "SYSTEM.ADMIN.COMMAND.QUEUE");
    pmo.Options = MQPMO_NO_SYNCPOINT;
    OK(MQPUT1(hconn, &commands, &md, &pmo, (MQLONG)sizeof request, &request, &cc, &rc));
    while (!last) {
        MQLONG buffer[1024];
        MQLONG length = 0;
        MQLONG depth = -1;
        char name[49] = "";
        MQMD reply = {MQMD_DEFAULT};
        MQGMO gmo = {MQGMO_DEFAULT};
        const MQCFH *answer = (const MQCFH *)(const void *)buffer;
        gmo.Options = MQGMO_WAIT | MQGMO_NO_SYNCPOINT | MQGMO_CONVERT;
        gmo.WaitInterval = 15000;
        OK(MQGET(hconn, replies, &reply, &gmo, (MQLONG)sizeof buffer, buffer, &length, &cc, &rc));
        CHECK(memcmp(reply.Format, MQFMT_ADMIN, sizeof reply.Format) == 0);
        CHECK(memcmp(reply.CorrelId, md.MsgId, sizeof md.MsgId) == 0);
        CHECK(answer->Type == MQCFT_RESPONSE && answer->Command == MQCMD_INQUIRE_Q);
        CHECK(answer->CompCode == MQCC_OK && answer->Reason == MQRC_NONE);
        readAnswer((const char *)buffer, answer, name, &depth);
        CHECK((strcmp(name, "PCF.1") == 0 && depth == 2) || (strcmp(name, "PCF.2") == 0 && depth == 0));
        ++answers;
        CHECK(answer->MsgSeqNumber == answers);
        last = answer->Control == MQCFC_LAST;
    }
    CHECK(answers == 2);
    closeAndDisconnect(hconn, replies);
    return 0;
}
