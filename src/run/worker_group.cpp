#include "worker_group.h"

#include "common.h"
#include "keep.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <new>
#include <utility>

namespace {

constexpr int ExitSetUp = 1;
constexpr int ExitTearDown = 2;

struct Group {
    pthread_mutex_t lock;
    Buffer<Worker> workers;
    std::unique_ptr<Group> next;
};

[[noreturn]] void endProcess(int code)
{
    std::exit(code);
}

std::unique_ptr<Group> makeGroup(const char *source, RunParams *params, MQLONG count)
{
    std::unique_ptr<Group> group(new (std::nothrow) Group);
    if (group) {
        group->workers.reset(static_cast<Worker *>(std::calloc(static_cast<std::size_t>(count), sizeof(Worker))));
    }
    if (!group || !group->workers) {
        report_failure(params, {source}, "calloc()", errno, "calloc() failed. size=%zu\n", sizeof(Worker));
        endProcess(ExitSetUp);
    }
    return group;
}

/// Recursive: a report keeps the lock over several lines that take it again.
void initLock(const char *source, RunParams *params, pthread_mutex_t &lock)
{
    pthread_mutexattr_t attributes;
    if (const int code = pthread_mutexattr_init(&attributes); code != 0) {
        printf_td(params, source, __LINE__, 0, "pthread_mutexattr_init() failed. return code=%d\n", code);
        endProcess(ExitSetUp);
    }
    if (const int code = pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE); code != 0) {
        printf_td(params, source, __LINE__, 0, "pthread_mutexattr_settype() failed. return code=%d\n", code);
        endProcess(ExitSetUp);
    }
    if (pthread_mutex_init(&lock, &attributes) != 0) {
        // The text gives the result of the test here, not the code.
        printf_td(params, source, __LINE__, 0, "pthread_mutex_init() failed. return code=%d\n", 1);
        endProcess(ExitSetUp);
    }
}

/// Whether an event handler may reach the group's lock, or a worker's record, when all threads have ended.
bool handlerOutlives(const Group &group, MQLONG count)
{
    const Worker *const workers = group.workers.get();
    return std::any_of(workers, workers + count, [](const Worker &worker) {
        return worker.connected && worker.record.Cbd.CallbackFunction != nullptr;
    });
}

} // namespace

Status runWorkers(const char *source, RunParams *params, const Worker &block, MQLONG count, void *(*function)(void *))
{
    std::unique_ptr<Group> group = makeGroup(source, params, count);
    initLock(source, params, group->lock);
    set_output_lock(params, &group->lock);

    for (MQLONG i = 0; i < count; ++i) {
        Worker &worker = group->workers[static_cast<std::size_t>(i)];
        worker = block;
        set_output_lock(&worker.record, &group->lock);
        set_output_lock(&worker.secondary, &group->lock);
        if (const int code = pthread_create(&worker.thread, nullptr, function, &worker); code != 0) {
            printf_td(params, source, __LINE__, 0, "pthread_create() #%0d failed. return code=%d\n", i, code);
            endProcess(ExitSetUp);
        }
    }
    for (MQLONG i = 0; i < count; ++i) {
        const int code = pthread_join(group->workers[static_cast<std::size_t>(i)].thread, nullptr);
        if (code == 0) continue;
        printf_td(params, source, __LINE__, 0, "pthread_join() #%0d failed return code=%d\n", i, code);
    }
    if (handlerOutlives(*group, count)) {
        // The handler of a shared connection knows the connection's record, not the copies.
        if (params->Cbd.CallbackArea == params) group->workers.reset();
        keepToTheEnd(std::move(group));
        return StatusOk;
    }
    set_output_lock(params, nullptr);
    if (const int code = pthread_mutex_destroy(&group->lock); code != 0) {
        printf_td(params, source, __LINE__, 0, "pthread_mutex_destroy() failed. return code=%d\n", code);
        endProcess(ExitTearDown);
    }
    return StatusOk;
}

void runOperation(Worker &worker, MQHCONN hconn)
{
    if (worker.paired != nullptr) {
        worker.paired(&worker.record, hconn, &worker.secondary);
    } else {
        worker.single(&worker.record, hconn);
    }
}

void setThreadId(Worker &worker, MQLONG threadId)
{
    worker.record.ThreadId = threadId;
    worker.secondary.ThreadId = threadId;
}
