/* Connects under a name of its own choice, and is found under it, with the tag that the queue manager made. */
#include "program.h"

int main(void)
{
    MQCNO cno = {MQCNO_DEFAULT};
    MQHCONN hconn = MQHC_UNUSABLE_HCONN;
    MQCHAR48 name;
    const char *rigqm = getenv("RIGQM");
    char command[1024];
    char shown[4096];
    size_t length;
    FILE *output;
    CHECK(rigqm != NULL);
    setName(name, sizeof name, "QM1");
    cno.Version = MQCNO_VERSION_7;
    cno.Options = MQCNO_HANDLE_SHARE_BLOCK | MQCNO_GENERATE_CONN_TAG;
    NAME(cno.ApplName, "nightly billing");
    OK(MQCONNX(name, &cno, &hconn, &cc, &rc));
    CHECK(memcmp(cno.ConnectionId, "AMQCQM1", 7) == 0);
    CHECK(memcmp(cno.ConnTag, "MQCT", 4) == 0);

    snprintf(command, sizeof command, "%s mqsc QM1 -e \"DISPLAY CONN(*) CONNTAG WHERE(APPLTAG EQ 'nightly billing')\"",
             rigqm);
    output = popen(command, "r");
    CHECK(output != NULL);
    length = fread(shown, 1, sizeof shown - 1, output);
    shown[length] = '\0';
    CHECK(pclose(output) == 0);
    CHECK(strstr(shown, "APPLTAG(nightly billing)") != NULL);
    CHECK(strstr(shown, (const char *)cno.ConnTag) != NULL);

    /* Messages carry the name too. */
    {
        MQHOBJ hobj = openQueue(hconn, "Q1", MQOO_OUTPUT | MQOO_INPUT_SHARED);
        MQMD md = {MQMD_DEFAULT};
        MQGMO gmo = {MQGMO_DEFAULT};
        MQLONG dataLength = 0;
        char text[16];
        putText(hconn, hobj, "hello");
        gmo.Options = MQGMO_NO_SYNCPOINT;
        OK(MQGET(hconn, hobj, &md, &gmo, (MQLONG)sizeof text, text, &dataLength, &cc, &rc));
        CHECK(IS_NAME(md.PutApplName, "nightly billing"));
        closeAndDisconnect(hconn, hobj);
    }
    return 0;
}
