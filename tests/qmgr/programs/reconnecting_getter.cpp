// Follows its queue manager over an end and a start: what it waits for comes afterwards, its handles stay good, and
// what it had got in a unit of work is backed out and got again.
#include <string>
#include <thread>

#include "program.h"

namespace {

void administer(const char *command)
{
    const char *rigqm = std::getenv("RIGQM");
    CHECK(rigqm != nullptr);
    const std::string line = std::string(rigqm) + " " + command + " >/dev/null";
    CHECK(std::system(line.c_str()) == 0);
}

void restartAndPut(const char *body)
{
    administer("end -r QM1");
    administer("start QM1");
    const MQHCONN other = connectToQM1();
    const MQHOBJ hobj = openQueue(other, "Q1", MQOO_OUTPUT);
    putText(other, hobj, body);
    closeAndDisconnect(other, hobj);
}

} // namespace

int main()
{
    MQCNO cno = {MQCNO_DEFAULT};
    cno.Options = MQCNO_RECONNECT_Q_MGR;
    MQHCONN hconn = MQHC_UNUSABLE_HCONN;
    MQCHAR48 name;
    setName(name, sizeof name, "QM1");
    OK(MQCONNX(name, &cno, &hconn, &cc, &rc));
    const MQHOBJ input = openQueue(hconn, "Q1", MQOO_INPUT_SHARED);
    const MQHOBJ output = openQueue(hconn, "Q1", MQOO_OUTPUT);

    // It waits while the queue manager ends and comes back.
    char text[64];
    std::thread administrator([] { restartAndPut("after the restart"); });
    MQMD md = {MQMD_DEFAULT};
    MQGMO gmo = {MQGMO_DEFAULT};
    gmo.Options = MQGMO_WAIT | MQGMO_NO_SYNCPOINT;
    gmo.WaitInterval = 15000;
    MQLONG length = 0;
    MQLONG compCode = MQCC_FAILED;
    MQLONG reason = MQRC_NONE;
    MQGET(hconn, input, &md, &gmo, sizeof text, text, &length, &compCode, &reason);
    administrator.join();
    CHECK(compCode == MQCC_OK && reason == MQRC_NONE);
    CHECK(std::string(text, static_cast<std::size_t>(length)) == "after the restart");

    // A unit of work does not live on.
    MQMD persistent = {MQMD_DEFAULT};
    persistent.Persistence = MQPER_PERSISTENT;
    MQPMO pmo = {MQPMO_DEFAULT};
    pmo.Options = MQPMO_NO_SYNCPOINT;
    char kept[] = "kept";
    OK(MQPUT(hconn, output, &persistent, &pmo, 4, kept, &cc, &rc));
    getText(hconn, input, MQGMO_SYNCPOINT, text, sizeof text);
    CHECK(cc == MQCC_OK);
    administer("end -r QM1");
    administer("start QM1");
    WARNS(MQRC_BACKED_OUT, MQCMIT(hconn, &cc, &rc));
    getText(hconn, input, MQGMO_SYNCPOINT, text, sizeof text);
    CHECK(cc == MQCC_OK && std::string(text) == "kept");
    OK(MQCMIT(hconn, &cc, &rc));
    closeAndDisconnect(hconn, input);
    return 0;
}
