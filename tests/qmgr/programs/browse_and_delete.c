/* Browses a queue and removes the messages that it does not want, each under the browse cursor. */
#include "program.h"

int main(void)
{
    const MQHCONN hconn = connectToQM1();
    const MQHOBJ hobj = openQueue(hconn, "Q1", MQOO_BROWSE | MQOO_INPUT_SHARED | MQOO_OUTPUT);
    char text[32];
    int i;
    int removed = 0;
    int kept = 0;
    for (i = 0; i < 30; ++i) {
        snprintf(text, sizeof text, "%s %d", i % 3 == 0 ? "junk" : "mail", i);
        putText(hconn, hobj, text);
    }
    for (i = 0;; ++i) {
        getText(hconn, hobj, i == 0 ? MQGMO_BROWSE_FIRST : MQGMO_BROWSE_NEXT, text, sizeof text);
        if (cc == MQCC_FAILED) break;
        if (strncmp(text, "junk", 4) != 0) continue;
        getText(hconn, hobj, MQGMO_MSG_UNDER_CURSOR | MQGMO_NO_SYNCPOINT, text, sizeof text);
        CHECK(cc == MQCC_OK && strncmp(text, "junk", 4) == 0);
        ++removed;
        FAILS(MQRC_NO_MSG_UNDER_CURSOR,
              getText(hconn, hobj, MQGMO_MSG_UNDER_CURSOR | MQGMO_NO_SYNCPOINT, text, sizeof text));
    }
    CHECK(rc == MQRC_NO_MSG_AVAILABLE);
    CHECK(removed == 10);

    for (;; ++kept) {
        getText(hconn, hobj, MQGMO_NO_SYNCPOINT, text, sizeof text);
        if (cc == MQCC_FAILED) break;
        CHECK(strncmp(text, "mail", 4) == 0);
    }
    CHECK(rc == MQRC_NO_MSG_AVAILABLE && kept == 20);
    closeAndDisconnect(hconn, hobj);
    return 0;
}
