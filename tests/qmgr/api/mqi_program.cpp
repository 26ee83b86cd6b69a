// A small MQI program for tests with several processes. Each argument is a step:
//   connect            connect to QM1                  disconnect
//   follow             connect to QM1 with MQCNO_RECONNECT_Q_MGR
//   open               open Q1 for input, output and browsing
//   exclusive          open Q1 for exclusive input
//   put:TEXT           put outside a unit of work      puts:N:TEXT      put TEXT0 to TEXT(N-1)
//   unitput:TEXT       put under syncpoint             persistent:TEXT  put a persistent message
//   get  unitget       get, no wait                    getwait:MS       get with a wait
//   getquiesce:MS      get with a wait that fails when the queue manager quiesces
//   openwith:N         open Q1 with these options      getwith:N        get with these options
//   drain:MS           get with that wait until there is nothing more
//   commit  backout
//   say:TEXT           a line on standard output       hear             waits for a line on standard input
//   exit               ends the process without a word
// Calls write a line each: "got TEXT", or "CALL REASON" where the call did not succeed; puts are silent.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <unistd.h>

#include "cmqc.h"

namespace {

MQHCONN hconn = MQHC_UNUSABLE_HCONN;
MQHOBJ hobj = MQHO_UNUSABLE_HOBJ;
MQLONG CompCode = MQCC_OK;
MQLONG Reason = MQRC_NONE;

void say(const std::string &line)
{
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

void report(const char *call)
{
    if (CompCode != MQCC_OK) say(std::string(call) + " " + std::to_string(Reason));
}

void open(MQLONG options)
{
    MQOD od = {MQOD_DEFAULT};
    std::strcpy(od.ObjectName, "Q1");
    MQOPEN(hconn, &od, options, &hobj, &CompCode, &Reason);
    report("MQOPEN");
}

void put(std::string text, MQLONG options, MQLONG persistence)
{
    MQMD md = {MQMD_DEFAULT};
    md.Persistence = persistence;
    MQPMO pmo = {MQPMO_DEFAULT};
    pmo.Options = options;
    MQPUT(hconn, hobj, &md, &pmo, static_cast<MQLONG>(text.size()), text.data(), &CompCode, &Reason);
    report("MQPUT");
}

bool get(MQLONG options, MQLONG wait)
{
    MQMD md = {MQMD_DEFAULT};
    MQGMO gmo = {MQGMO_DEFAULT};
    gmo.Options = options;
    gmo.WaitInterval = wait;
    char buffer[4096];
    MQLONG length = 0;
    MQGET(hconn, hobj, &md, &gmo, sizeof buffer, buffer, &length, &CompCode, &Reason);
    report("MQGET");
    if (CompCode == MQCC_OK) say("got " + std::string(buffer, static_cast<std::size_t>(length)));
    return CompCode == MQCC_OK;
}

void step(std::string_view what, const std::string &text)
{
    if (what == "connect") {
        MQCHAR48 name = "QM1";
        MQCONN(name, &hconn, &CompCode, &Reason);
        report("MQCONN");
    } else if (what == "follow") {
        MQCHAR48 name = "QM1";
        MQCNO cno = {MQCNO_DEFAULT};
        cno.Options = MQCNO_RECONNECT_Q_MGR;
        MQCONNX(name, &cno, &hconn, &CompCode, &Reason);
        report("MQCONNX");
    } else if (what == "disconnect") {
        MQDISC(&hconn, &CompCode, &Reason);
        report("MQDISC");
    } else if (what == "open") {
        open(MQOO_INPUT_SHARED | MQOO_OUTPUT | MQOO_BROWSE);
    } else if (what == "exclusive") {
        open(MQOO_INPUT_EXCLUSIVE);
    } else if (what == "put") {
        put(text, MQPMO_NO_SYNCPOINT, MQPER_NOT_PERSISTENT);
    } else if (what == "puts") {
        const std::size_t colon = text.find(':');
        const int count = std::atoi(text.c_str());
        for (int i = 0; i < count; ++i)
            put(text.substr(colon + 1) + std::to_string(i), MQPMO_NO_SYNCPOINT, MQPER_NOT_PERSISTENT);
    } else if (what == "unitput") {
        put(text, MQPMO_SYNCPOINT, MQPER_NOT_PERSISTENT);
    } else if (what == "persistent") {
        put(text, MQPMO_NO_SYNCPOINT, MQPER_PERSISTENT);
    } else if (what == "get") {
        get(MQGMO_NO_SYNCPOINT, 0);
    } else if (what == "unitget") {
        get(MQGMO_SYNCPOINT, 0);
    } else if (what == "getwait") {
        get(MQGMO_NO_SYNCPOINT | MQGMO_WAIT, std::atoi(text.c_str()));
    } else if (what == "openwith") {
        open(std::atoi(text.c_str()));
    } else if (what == "getwith") {
        get(std::atoi(text.c_str()), 0);
    } else if (what == "getquiesce") {
        get(MQGMO_NO_SYNCPOINT | MQGMO_WAIT | MQGMO_FAIL_IF_QUIESCING, std::atoi(text.c_str()));
    } else if (what == "drain") {
        while (get(MQGMO_NO_SYNCPOINT | MQGMO_WAIT, std::atoi(text.c_str()))) {
        }
    } else if (what == "commit") {
        MQCMIT(hconn, &CompCode, &Reason);
        report("MQCMIT");
    } else if (what == "backout") {
        MQBACK(hconn, &CompCode, &Reason);
        report("MQBACK");
    } else if (what == "say") {
        say(text);
    } else if (what == "hear") {
        char line[64];
        if (std::fgets(line, sizeof line, stdin) == nullptr) std::exit(3);
    } else if (what == "exit") {
        _exit(0);
    } else {
        std::fprintf(stderr, "unknown step %s\n", std::string(what).c_str());
        std::exit(2);
    }
}

} // namespace

int main(int argc, char **argv)
{
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        const std::size_t colon = argument.find(':');
        step(argument.substr(0, colon), colon == std::string_view::npos ? "" : std::string(argument.substr(colon + 1)));
    }
}
