// Two getters with selection strings share a queue; a third one takes what neither wanted.
#include <string>

#include "program.h"

namespace {

MQHOBJ openSelecting(MQHCONN hconn, const std::string &selector)
{
    MQOD od = {MQOD_DEFAULT};
    od.Version = MQOD_VERSION_4;
    NAME(od.ObjectName, "Q1");
    od.SelectionString.VSPtr = const_cast<char *>(selector.c_str());
    od.SelectionString.VSLength = MQVS_NULL_TERMINATED;
    MQHOBJ hobj = MQHO_UNUSABLE_HOBJ;
    MQOPEN(hconn, &od, MQOO_INPUT_SHARED | MQOO_FAIL_IF_QUIESCING, &hobj, &cc, &rc);
    return hobj;
}

void putOrder(MQHCONN hconn, MQHOBJ hobj, const char *country, MQLONG amount, MQLONG priority)
{
    MQHMSG hmsg = MQHM_NONE;
    MQCMHO cmho = {MQCMHO_DEFAULT};
    MQDMHO dmho = {MQDMHO_DEFAULT};
    MQSMPO smpo = {MQSMPO_DEFAULT};
    MQPD pd = {MQPD_DEFAULT};
    OK(MQCRTMH(hconn, &cmho, &hmsg, &cc, &rc));
    MQCHARV name = {MQCHARV_DEFAULT};
    name.VSLength = MQVS_NULL_TERMINATED;
    name.VSPtr = const_cast<char *>("country");
    OK(MQSETMP(hconn, hmsg, &smpo, &name, &pd, MQTYPE_STRING, MQVL_NULL_TERMINATED, const_cast<char *>(country), &cc,
               &rc));
    name.VSPtr = const_cast<char *>("amount");
    OK(MQSETMP(hconn, hmsg, &smpo, &name, &pd, MQTYPE_INT32, sizeof amount, &amount, &cc, &rc));
    MQMD md = {MQMD_DEFAULT};
    md.Priority = priority;
    MQPMO pmo = {MQPMO_DEFAULT};
    pmo.Version = MQPMO_VERSION_3;
    pmo.Options = MQPMO_NO_SYNCPOINT;
    pmo.NewMsgHandle = hmsg;
    std::string body = std::string(country) + std::to_string(amount);
    OK(MQPUT(hconn, hobj, &md, &pmo, static_cast<MQLONG>(body.size()), body.data(), &cc, &rc));
    OK(MQDLTMH(hconn, &hmsg, &dmho, &cc, &rc));
}

std::string next(MQHCONN hconn, MQHOBJ hobj)
{
    char buffer[64];
    MQMD md = {MQMD_DEFAULT};
    MQGMO gmo = {MQGMO_DEFAULT};
    gmo.Options = MQGMO_NO_SYNCPOINT | MQGMO_NO_PROPERTIES;
    MQLONG length = 0;
    MQGET(hconn, hobj, &md, &gmo, sizeof buffer, buffer, &length, &cc, &rc);
    return cc == MQCC_FAILED ? std::to_string(rc) : std::string(buffer, static_cast<std::size_t>(length));
}

} // namespace

int main()
{
    const MQHCONN hconn = connectToQM1();
    const MQHOBJ output = openQueue(hconn, "Q1", MQOO_OUTPUT);
    putOrder(hconn, output, "DE", 10, 0);
    putOrder(hconn, output, "FR", 200, 0);
    putOrder(hconn, output, "IT", 5, 0);
    putOrder(hconn, output, "DE", 500, 0);
    putOrder(hconn, output, "IT", 7, 9);

    (void)openSelecting(hconn, "country = ");
    CHECK(cc == MQCC_FAILED && rc == MQRC_SELECTOR_SYNTAX_ERROR);
    const MQHOBJ german =
        openSelecting(hconn, "country LIKE 'D_' AND amount < 100 OR Root.MQMD.Priority BETWEEN 8 AND 9");
    CHECK(cc == MQCC_OK);
    const MQHOBJ large = openSelecting(hconn, "amount * 2 >= 400");
    CHECK(cc == MQCC_OK);
    const std::string nothing = std::to_string(MQRC_NO_MSG_AVAILABLE);
    CHECK(next(hconn, german) == "IT7");
    CHECK(next(hconn, german) == "DE10");
    CHECK(next(hconn, german) == nothing);
    CHECK(next(hconn, large) == "FR200");
    CHECK(next(hconn, large) == "DE500");
    CHECK(next(hconn, large) == nothing);
    const MQHOBJ rest = openQueue(hconn, "Q1", MQOO_INPUT_SHARED);
    CHECK(next(hconn, rest) == "IT5");
    CHECK(next(hconn, rest) == nothing);
    for (MQHOBJ hobj : {output, german, large})
        OK(MQCLOSE(hconn, &hobj, MQCO_NONE, &cc, &rc));
    closeAndDisconnect(hconn, rest);
    return 0;
}
