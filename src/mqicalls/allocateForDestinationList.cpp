// The texts of -or and -mr into the MQI's record arrays. Once the first copy is made, what cannot be built is reported
// and left out, and the put goes ahead with the rest; only a name that does not fit keeps the list from being opened.
#include "mqicalls.h"

#include "common.h"
#include "mqicalls/object_name.h"
#include "mqicalls/put_message_records.h"

#include <cstring>

namespace {

constexpr char Source[] = "allocateForDestinationList";

/// "ObjectName" or "ObjectName:ObjectQMgrName".
Status read_destination(RunParams *params, char *text, MQOR &destination)
{
    const char *qmgr = nullptr;
    if (char *colon = std::strchr(text, ':')) {
        *colon = '\0';
        qmgr = colon + 1;
    }
    if (copy_object_name(params, destination.ObjectName, text, "-or") != StatusOk) return StatusLocalFailure;
    return copy_object_name(params, destination.ObjectQMgrName, qmgr, "-or");
}

/// `-or` into an array of MQOR. The record learns of it once it is complete.
Status build_destinations(RunParams *params)
{
    const Buffer<> list = checked_copy(params, params->ObjectRecList, {Source});
    if (list == nullptr) return StatusLocalFailure;

    Buffer<> records;
    std::size_t count = 0;
    char *position = nullptr;
    for (char *text = strtok_r(list.get(), ",", &position); text != nullptr; text = strtok_r(nullptr, ",", &position)) {
        if (count == 0) {
            records = checked_malloc(params, sizeof(MQOR), {Source});
            if (records == nullptr) return StatusOk;
        } else if (!checked_realloc(params, records, (count + 1) * sizeof(MQOR), {Source})) {
            return StatusOk;
        }
        MQOR destination = {};
        if (read_destination(params, text, destination) != StatusOk) return StatusLocalFailure;
        std::memcpy(records.get() + count * sizeof(MQOR), &destination, sizeof destination);
        ++count;
    }
    params->Od.ObjectRecPtr = records.release();
    params->DestCount = static_cast<MQLONG>(count);
    params->Od.RecsPresent = params->DestCount;
    params->Pmo.RecsPresent = params->DestCount;
    return StatusOk;
}

/// A zero-filled array of one record for each destination, or null after a report.
Buffer<> record_for_each_destination(RunParams *params, std::size_t recordSize)
{
    const std::size_t size = static_cast<std::size_t>(params->DestCount) * recordSize;
    Buffer<> records = checked_malloc(params, size, {Source});
    if (records != nullptr) std::memset(records.get(), 0, size);
    return records;
}

} // namespace

Status allocateForDestinationList(RunParams *params)
{
    if (const Status built = build_destinations(params); built != StatusOk) return built;
    if (params->DestCount == 0) return StatusOk;

    Buffer<> responses = record_for_each_destination(params, sizeof(MQRR));
    if (responses == nullptr) return StatusOk;
    params->ResponseRecs = reinterpret_cast<MQRR *>(responses.release());

    const std::size_t recordSize = put_message_record_size(params->Pmo.PutMsgRecFields);
    if (recordSize == 0) return StatusOk;
    Buffer<> records = record_for_each_destination(params, recordSize);
    if (records == nullptr) return StatusOk;
    params->Pmo.PutMsgRecPtr = records.release();
    if (params->PutMsgRecList != nullptr) read_put_message_records(params);

    // Every put starts from these, whatever the one before has written into the array.
    const std::size_t size = static_cast<std::size_t>(params->DestCount) * recordSize;
    Buffer<> given = checked_malloc(params, size, {Source});
    if (given == nullptr) return StatusOk;
    std::memcpy(given.get(), params->Pmo.PutMsgRecPtr, size);
    params->PutMsgRecsGiven = given.release();
    return StatusOk;
}
