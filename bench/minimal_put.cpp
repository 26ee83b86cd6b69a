// The least that a program can do to make the calls and write the bytes that
//   mqrig -qm Q -q Q -m hello -n COUNT
// makes and writes: the yardstick of client_put.sh.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include <cmqc.h>

int main(int argc, char **argv)
{
    const long count = argc > 1 ? std::atol(argv[1]) : 200000;
    static char body[] = "hello";
    MQHCONN hconn = MQHC_UNUSABLE_HCONN;
    MQHOBJ hobj = MQHO_UNUSABLE_HOBJ;
    MQLONG CompCode = 0;
    MQLONG Reason = 0;
    MQCHAR48 name = {'Q'};
    MQOD od = {MQOD_DEFAULT};
    std::memcpy(od.ObjectName, name, sizeof name);

    timespec start{};
    clock_gettime(CLOCK_REALTIME, &start);
    MQCONN(name, &hconn, &CompCode, &Reason);
    MQOPEN(hconn, &od, MQOO_OUTPUT, &hobj, &CompCode, &Reason);

    std::time_t formatted = -1;
    char prefix[64] = "";
    for (long i = 0; i < count; ++i) {
        MQMD md = {MQMD_DEFAULT};
        MQPMO pmo = {MQPMO_DEFAULT};
        timespec now{};
        clock_gettime(CLOCK_REALTIME, &now);
        if (now.tv_sec != formatted) {
            std::tm local{};
            localtime_r(&now.tv_sec, &local);
            std::strftime(prefix, sizeof prefix, "[%y/%m/%d %H:%M:%S.", &local);
            formatted = now.tv_sec;
        }
        std::printf("%s%09ld] %ld: message length: %d put message: %s\n", prefix, now.tv_nsec, i + 1,
                    static_cast<int>(sizeof body - 1), body);
        std::fflush(stdout);
        MQPUT(hconn, hobj, &md, &pmo, sizeof body - 1, body, &CompCode, &Reason);
    }
    MQCLOSE(hconn, &hobj, MQCO_NONE, &CompCode, &Reason);
    MQDISC(&hconn, &CompCode, &Reason);
    timespec end{};
    clock_gettime(CLOCK_REALTIME, &end);
    std::printf("Elapsed time = %f sec\n", static_cast<double>(end.tv_sec - start.tv_sec) +
                                               static_cast<double>(end.tv_nsec - start.tv_nsec) / 1e9);
    return 0;
}
