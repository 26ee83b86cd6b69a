// Puts two groups of messages whose members come mixed, and reads them group by group in logical order, each only when
// it is complete.
#include <cstring>
#include <string>
#include <vector>

#include "program.h"

namespace {

void putMember(MQHCONN hconn, MQHOBJ hobj, const char *group, int number, bool last)
{
    MQMD md = {MQMD_DEFAULT};
    md.Version = MQMD_VERSION_2;
    std::memset(md.GroupId, 0, sizeof md.GroupId);
    std::memcpy(md.GroupId, group, std::strlen(group));
    md.MsgSeqNumber = number;
    md.MsgFlags = last ? MQMF_LAST_MSG_IN_GROUP : MQMF_MSG_IN_GROUP;
    MQPMO pmo = {MQPMO_DEFAULT};
    pmo.Options = MQPMO_NO_SYNCPOINT;
    std::string text = std::string(group) + std::to_string(number);
    OK(MQPUT(hconn, hobj, &md, &pmo, static_cast<MQLONG>(text.size()), text.data(), &cc, &rc));
}

} // namespace

int main()
{
    const MQHCONN hconn = connectToQM1();
    const MQHOBJ output = openQueue(hconn, "Q1", MQOO_OUTPUT);
    const MQHOBJ input = openQueue(hconn, "Q1", MQOO_INPUT_EXCLUSIVE);
    putMember(hconn, output, "A", 2, false);
    putMember(hconn, output, "B", 1, false);
    putMember(hconn, output, "A", 1, false);
    putMember(hconn, output, "B", 2, true);

    std::vector<std::string> read;
    const auto next = [&](MQLONG wait) {
        char buffer[64];
        MQMD md = {MQMD_DEFAULT};
        md.Version = MQMD_VERSION_2;
        MQGMO gmo = {MQGMO_DEFAULT};
        gmo.Version = MQGMO_VERSION_2;
        gmo.MatchOptions = MQMO_NONE;
        gmo.Options = MQGMO_LOGICAL_ORDER | MQGMO_ALL_MSGS_AVAILABLE | MQGMO_SYNCPOINT | wait;
        gmo.WaitInterval = 10000;
        MQLONG length = 0;
        MQGET(hconn, input, &md, &gmo, sizeof buffer, buffer, &length, &cc, &rc);
        if (cc == MQCC_FAILED) return MQGS_NOT_IN_GROUP;
        read.emplace_back(buffer, static_cast<std::size_t>(length));
        return gmo.GroupStatus;
    };
    CHECK(next(MQGMO_WAIT) == MQGS_MSG_IN_GROUP);
    CHECK(next(MQGMO_WAIT) == MQGS_LAST_MSG_IN_GROUP);
    FAILS(MQRC_NO_MSG_AVAILABLE, next(MQGMO_NO_WAIT)); // the other one lacks its last message
    putMember(hconn, output, "A", 3, true);
    CHECK(next(MQGMO_WAIT) == MQGS_MSG_IN_GROUP);
    CHECK(next(MQGMO_WAIT) == MQGS_MSG_IN_GROUP);
    CHECK(next(MQGMO_WAIT) == MQGS_LAST_MSG_IN_GROUP);
    OK(MQCMIT(hconn, &cc, &rc));
    CHECK((read == std::vector<std::string>{"B1", "B2", "A1", "A2", "A3"}));

    MQHOBJ hobj = output;
    OK(MQCLOSE(hconn, &hobj, MQCO_NONE, &cc, &rc));
    closeAndDisconnect(hconn, input);
    return 0;
}
