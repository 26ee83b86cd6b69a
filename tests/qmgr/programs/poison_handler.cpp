// Works on messages in units of work. One of them makes the work fail every time: when it has been backed out as often
// as the queue's threshold says, it goes to the queue's backout queue with the context that it came with.
#include <cstring>
#include <string>

#include "program.h"

namespace {

struct Limits {
    MQLONG threshold = 0;
    std::string queue;
};

Limits limitsOf(MQHCONN hconn, MQHOBJ hobj)
{
    MQLONG selectors[] = {MQIA_BACKOUT_THRESHOLD, MQCA_BACKOUT_REQ_Q_NAME};
    Limits limits;
    char name[MQ_Q_NAME_LENGTH];
    OK(MQINQ(hconn, hobj, 2, selectors, 1, &limits.threshold, sizeof name, name, &cc, &rc));
    limits.queue.assign(name, sizeof name);
    limits.queue.erase(limits.queue.find_last_not_of(' ') + 1);
    return limits;
}

} // namespace

int main()
{
    const MQHCONN hconn = connectToQM1();
    const MQHOBJ work =
        openQueue(hconn, "WORK", MQOO_INPUT_SHARED | MQOO_OUTPUT | MQOO_INQUIRE | MQOO_SAVE_ALL_CONTEXT);
    const Limits limits = limitsOf(hconn, work);
    CHECK(limits.threshold == 3 && limits.queue == "WORK.BACKOUT");
    const MQHOBJ poisoned = openQueue(hconn, limits.queue.c_str(), MQOO_OUTPUT | MQOO_PASS_ALL_CONTEXT);
    for (const char *text : {"good 1", "poison", "good 2"})
        putText(hconn, work, text);

    int done = 0;
    int backouts = 0;
    MQMD poison = {MQMD_DEFAULT};
    for (;;) {
        char buffer[64];
        MQMD md = {MQMD_DEFAULT};
        MQGMO gmo = {MQGMO_DEFAULT};
        gmo.Options = MQGMO_SYNCPOINT | MQGMO_NO_WAIT;
        MQLONG length = 0;
        MQGET(hconn, work, &md, &gmo, sizeof buffer, buffer, &length, &cc, &rc);
        if (cc == MQCC_FAILED) break;
        const std::string text(buffer, static_cast<std::size_t>(length));
        if (md.BackoutCount >= limits.threshold) {
            poison = md;
            MQPMO pmo = {MQPMO_DEFAULT};
            pmo.Options = MQPMO_SYNCPOINT | MQPMO_PASS_ALL_CONTEXT;
            pmo.Context = work;
            OK(MQPUT(hconn, poisoned, &md, &pmo, length, buffer, &cc, &rc));
            OK(MQCMIT(hconn, &cc, &rc));
        } else if (text == "poison") {
            CHECK(md.BackoutCount == backouts);
            ++backouts;
            OK(MQBACK(hconn, &cc, &rc));
        } else {
            ++done;
            OK(MQCMIT(hconn, &cc, &rc));
        }
    }
    CHECK(rc == MQRC_NO_MSG_AVAILABLE);
    CHECK(done == 2 && backouts == 3);

    const MQHOBJ check = openQueue(hconn, "WORK.BACKOUT", MQOO_INPUT_SHARED);
    char buffer[64];
    MQMD md = {MQMD_DEFAULT};
    MQGMO gmo = {MQGMO_DEFAULT};
    gmo.Options = MQGMO_NO_SYNCPOINT;
    MQLONG length = 0;
    OK(MQGET(hconn, check, &md, &gmo, sizeof buffer, buffer, &length, &cc, &rc));
    CHECK(std::string(buffer, static_cast<std::size_t>(length)) == "poison");
    CHECK(std::memcmp(md.MsgId, poison.MsgId, sizeof md.MsgId) == 0);
    CHECK(std::memcmp(md.PutDate, poison.PutDate, sizeof md.PutDate) == 0);
    CHECK(std::memcmp(md.PutTime, poison.PutTime, sizeof md.PutTime) == 0);
    CHECK(std::memcmp(md.PutApplName, poison.PutApplName, sizeof md.PutApplName) == 0);
    CHECK(md.BackoutCount == 0);
    for (MQHOBJ hobj : {poisoned, check})
        OK(MQCLOSE(hconn, &hobj, MQCO_NONE, &cc, &rc));
    closeAndDisconnect(hconn, work);
    return 0;
}
