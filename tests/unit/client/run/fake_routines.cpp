#include "fake_routines.h"

#include "attributes.h"
#include "mqicalls.h"
#include "receive.h"
#include "send.h"

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <new>

FakeRoutines *fake = nullptr;

Status FakeRoutines::step(const std::string &name, RunParams *params)
{
    std::function<void(RunParams &)> hook;
    Status answer = StatusOk;
    {
        const std::lock_guard lock(guard);
        steps.push_back(name);
        if (params != nullptr && during.contains(name)) hook = during.at(name);
        std::deque<Status> &next = answers[name];
        if (!next.empty()) {
            answer = next.front();
            next.pop_front();
        }
    }
    if (hook) hook(*params);
    return answer;
}

long FakeRoutines::count(const std::string &name)
{
    const std::lock_guard lock(guard);
    return std::count(steps.begin(), steps.end(), name);
}

Finished DriverTest::run(std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), "mqrig");
    std::vector<char *> argv;
    for (std::string &argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);

    Finished done;
    const Captured written = captured([&] { done.exitCode = ::run(static_cast<int>(argv.size()) - 1, argv.data()); });
    done.out = written.out;
    done.err = written.err;
    done.steps = routines.steps;
    return done;
}

// ---- Wrappers -----------------------------------------------------------------------------------------------------

namespace {

std::string text(const char *name)
{
    return name != nullptr ? name : "(null)";
}

Status connect(const std::string &how, MQHCONN *hconn, RunParams *params)
{
    const Status status = fake->step(how + " " + text(params->QMgrName), params);
    const std::lock_guard lock(fake->guard);
    if (status == StatusOk) *hconn = ++fake->connections;
    return status;
}

Status open(const std::string &how, MQHOBJ *hobj, RunParams *params)
{
    const Status status = fake->step("open " + how + " " + text(params->QName), params);
    if (status == StatusOk) *hobj = 100;
    return status;
}

} // namespace

Status MQSeriesConn(MQHCONN *hconn, RunParams *params)
{
    return connect("connect", hconn, params);
}
Status MQSeriesConnX(MQHCONN *hconn, RunParams *params)
{
    return connect("connectx", hconn, params);
}

Status MQSeriesDisconn(MQHCONN *, RunParams *params)
{
    return fake->step("disconnect " + text(params->QMgrName), params);
}

Status MQSeriesCB(MQHCONN, RunParams *params)
{
    return fake->step("register " + text(params->QMgrName), params);
}

Status MQSeriesQOpenForInput(MQHCONN, MQHOBJ *hobj, RunParams *params)
{
    return open("input", hobj, params);
}
Status MQSeriesQOpenForOutput(MQHCONN, MQHOBJ *hobj, RunParams *params)
{
    return open("output", hobj, params);
}

Status MQSeriesQOpen(MQHCONN, MQHOBJ *hobj, RunParams *params, MQLONG options)
{
    return open(options == MQOO_SET ? "set" : options == MQOO_INQUIRE ? "inquire" : "?", hobj, params);
}

Status MQSeriesQClose(MQHCONN, MQHOBJ *hobj, RunParams *params)
{
    return fake->step("close " + text(params->QName) + (*hobj == 100 ? "" : " without a handle"), params);
}

Status MQSeriesCommit(MQHCONN, RunParams *params)
{
    return fake->step("commit", params);
}
Status MQSeriesBack(MQHCONN, RunParams *params)
{
    return fake->step("back out", params);
}

// ---- Operations ---------------------------------------------------------------------------------------------------

namespace {

Status operate(const std::string &name, RunParams *params, MQHCONN hconn)
{
    {
        const std::lock_guard lock(fake->guard);
        fake->lastHconn = hconn;
    }
    return fake->step(name, params);
}

} // namespace

Status GetMQMessage(RunParams *params, MQHCONN hconn)
{
    return operate("get", params, hconn);
}
Status PutFromCmdLine(RunParams *params, MQHCONN hconn)
{
    return operate("put", params, hconn);
}
Status CallMQINQ(RunParams *params, MQHCONN hconn)
{
    return operate("inquire", params, hconn);
}
Status CallMQSET(RunParams *params, MQHCONN hconn)
{
    return operate("set", params, hconn);
}
Status Queue2Queue(RunParams *params, MQHCONN hconn, RunParams *)
{
    return operate("queue to queue", params, hconn);
}
Status SendReceive(RunParams *params, MQHCONN hconn, RunParams *)
{
    return operate("send", params, hconn);
}

// ---- The system ---------------------------------------------------------------------------------------------------

// Only connections are allocated this way.
void *operator new(std::size_t size, const std::nothrow_t &) noexcept
{
    if (fake != nullptr && fake->failingConnection > 0 && size > sizeof(RunParams) && --fake->failingConnection == 0) {
        errno = ENOMEM;
        return nullptr;
    }
    return operator new(size);
}

namespace {

/// The code that a pthread call shall answer instead of being made, or 0.
int failing(const char *call)
{
    if (fake == nullptr) return 0;
    const std::lock_guard lock(fake->guard);
    const auto found = fake->failingCalls.find(call);
    return found != fake->failingCalls.end() ? found->second : 0;
}

} // namespace

extern "C" {
void *__real_calloc(std::size_t count, std::size_t size);
int __real_pthread_mutexattr_init(pthread_mutexattr_t *attributes);
int __real_pthread_mutexattr_settype(pthread_mutexattr_t *attributes, int type);
int __real_pthread_mutex_init(pthread_mutex_t *lock, const pthread_mutexattr_t *attributes);
int __real_pthread_mutex_destroy(pthread_mutex_t *lock);
int __real_pthread_create(pthread_t *thread, const pthread_attr_t *attributes, void *(*function)(void *), void *block);
int __real_pthread_join(pthread_t thread, void **result);

int __wrap_nanosleep(const timespec *duration, timespec *)
{
    static RunParams none = DEFAULT_RUN_PARAMS;
    fake->step("sleep " + std::to_string(duration->tv_sec * 1000 + duration->tv_nsec / 1000000));
    std::function<void(RunParams &)> hook = fake->during["sleep"];
    if (hook) hook(none);
    return 0;
}

void *__wrap_calloc(std::size_t count, std::size_t size)
{
    if (fake != nullptr && fake->failCalloc && size > sizeof(RunParams)) {
        errno = ENOMEM;
        return nullptr;
    }
    return __real_calloc(count, size);
}

int __wrap_pthread_mutexattr_init(pthread_mutexattr_t *attributes)
{
    const int code = failing("pthread_mutexattr_init");
    return code != 0 ? code : __real_pthread_mutexattr_init(attributes);
}

int __wrap_pthread_mutexattr_settype(pthread_mutexattr_t *attributes, int type)
{
    const int code = failing("pthread_mutexattr_settype");
    return code != 0 ? code : __real_pthread_mutexattr_settype(attributes, type);
}

int __wrap_pthread_mutex_init(pthread_mutex_t *lock, const pthread_mutexattr_t *attributes)
{
    const int code = failing("pthread_mutex_init");
    return code != 0 ? code : __real_pthread_mutex_init(lock, attributes);
}

int __wrap_pthread_mutex_destroy(pthread_mutex_t *lock)
{
    const int code = failing("pthread_mutex_destroy");
    if (code == 0) return __real_pthread_mutex_destroy(lock);
    fake->failingCalls.clear(); // the test framework destroys locks of its own later
    return code;
}

int __wrap_pthread_create(pthread_t *thread, const pthread_attr_t *attributes, void *(*function)(void *), void *block)
{
    const int code = failing("pthread_create");
    return code != 0 ? code : __real_pthread_create(thread, attributes, function, block);
}

int __wrap_pthread_join(pthread_t thread, void **result)
{
    const int code = failing("pthread_join");
    const int joined = __real_pthread_join(thread, result);
    return code != 0 ? code : joined;
}
}
