/* Is linked with no MQI library at all: loads the one that it is told, finds every call by its name, and uses some. */
#include <dlfcn.h>

#include "program.h"

typedef void ConnectCall(PMQCHAR, PMQHCONN, PMQLONG, PMQLONG);
typedef void OpenCall(MQHCONN, PMQVOID, MQLONG, PMQHOBJ, PMQLONG, PMQLONG);
typedef void PutCall(MQHCONN, MQHOBJ, PMQVOID, PMQVOID, MQLONG, PMQVOID, PMQLONG, PMQLONG);
typedef void GetCall(MQHCONN, MQHOBJ, PMQVOID, PMQVOID, MQLONG, PMQVOID, PMQLONG, PMQLONG, PMQLONG);
typedef void CloseCall(MQHCONN, PMQHOBJ, MQLONG, PMQLONG, PMQLONG);
typedef void DisconnectCall(PMQHCONN, PMQLONG, PMQLONG);

static void *library;

/* A pointer to data becomes one to a function by its bytes: C has no cast for it. */
static void find(const char *name, void *call)
{
    void *found = dlsym(library, name);
    if (found == NULL) {
        fprintf(stderr, "%s: %s\n", name, dlerror());
        exit(1);
    }
    memcpy(call, &found, sizeof found);
}

int main(int argc, char **argv)
{
    static const char *const calls[] = {"MQBACK",  "MQBEGIN", "MQBUFMH", "MQCB",   "MQCLOSE", "MQCMIT",  "MQCONN",
                                        "MQCONNX", "MQCRTMH", "MQCTL",   "MQDISC", "MQDLTMH", "MQDLTMP", "MQGET",
                                        "MQINQ",   "MQINQMP", "MQMHBUF", "MQOPEN", "MQPUT",   "MQPUT1",  "MQSET",
                                        "MQSETMP", "MQSTAT",  "MQSUB",   "MQSUBRQ"};
    ConnectCall *connectCall;
    OpenCall *openCall;
    PutCall *putCall;
    GetCall *getCall;
    CloseCall *closeCall;
    DisconnectCall *disconnectCall;
    MQHCONN hconn = MQHC_UNUSABLE_HCONN;
    MQHOBJ hobj = MQHO_UNUSABLE_HOBJ;
    MQOD od = {MQOD_DEFAULT};
    MQMD md = {MQMD_DEFAULT};
    MQMD got = {MQMD_DEFAULT};
    MQPMO pmo = {MQPMO_DEFAULT};
    MQGMO gmo = {MQGMO_DEFAULT};
    MQCHAR48 name;
    MQLONG length = 0;
    char buffer[16];
    size_t i;
    CHECK(argc == 2);
    library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
    if (library == NULL) {
        fprintf(stderr, "%s\n", dlerror());
        return 1;
    }
    for (i = 0; i < sizeof calls / sizeof calls[0]; ++i) {
        void *call;
        find(calls[i], &call);
    }
    find("MQCONN", &connectCall);
    find("MQOPEN", &openCall);
    find("MQPUT", &putCall);
    find("MQGET", &getCall);
    find("MQCLOSE", &closeCall);
    find("MQDISC", &disconnectCall);
    setName(name, sizeof name, "QM1");
    OK(connectCall(name, &hconn, &cc, &rc));
    NAME(od.ObjectName, "Q1");
    OK(openCall(hconn, &od, MQOO_INPUT_SHARED | MQOO_OUTPUT, &hobj, &cc, &rc));
    pmo.Options = MQPMO_NO_SYNCPOINT;
    OK(putCall(hconn, hobj, &md, &pmo, 5, "hello", &cc, &rc));
    gmo.Options = MQGMO_NO_SYNCPOINT;
    OK(getCall(hconn, hobj, &got, &gmo, (MQLONG)sizeof buffer, buffer, &length, &cc, &rc));
    CHECK(length == 5 && memcmp(buffer, "hello", 5) == 0);
    OK(closeCall(hconn, &hobj, MQCO_NONE, &cc, &rc));
    OK(disconnectCall(&hconn, &cc, &rc));
    CHECK(dlclose(library) == 0);
    return 0;
}
