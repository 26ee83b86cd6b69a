#include "mqicalls/put_message_records.h"

#include "tables.h"

#include <cstring>

namespace {

constexpr char Source[] = "allocateForDestinationList";

/// A field of the record. Flagged fields follow each other in this order, without gaps.
struct RecordField {
    MQLONG flag;
    std::size_t size;
    const char *name; ///< as the messages call it; null: a feedback code by name
    const char *none; ///< the name that leaves the field zero
};

constexpr RecordField FIELDS[] = {
    {MQPMRF_MSG_ID, MQ_MSG_ID_LENGTH, "message id", "MQMI_NONE"},
    {MQPMRF_CORREL_ID, MQ_CORREL_ID_LENGTH, "correl id", "MQCI_NONE"},
    {MQPMRF_GROUP_ID, MQ_GROUP_ID_LENGTH, "group id", "MQGI_NONE"},
    {MQPMRF_FEEDBACK, sizeof(MQLONG), nullptr, "MQFB_NONE"},
    {MQPMRF_ACCOUNTING_TOKEN, MQ_ACCOUNTING_TOKEN_LENGTH, "accounting token", "MQACT_NONE"},
};

void report_digits(RunParams *params, const char *name, const char *value)
{
    printf_te(params, "%s include invalid character or odd length : %s\n", name, value);
}

/// Bytes as text, or as "0x" and two digits for each. False after a report.
bool read_bytes(RunParams *params, const RecordField &field, const char *value, char *target)
{
    const char *const digits = hexadecimal_digits(value);
    const std::size_t length = std::strlen(value);
    if (length > (digits != nullptr ? 2 + 2 * field.size : field.size)) {
        printf_te(params, "invalid %s length : %zu\n", field.name, length);
        // A token's text that is too long has always been followed by this line about another field.
        if (digits == nullptr && field.flag == MQPMRF_ACCOUNTING_TOKEN) report_digits(params, "group id", value);
        return false;
    }
    if (digits == nullptr) {
        std::memcpy(target, value, length);
        return true;
    }
    if (hexdec2bin(digits, target) == StatusOk) return true;
    report_digits(params, field.name, value);
    return false;
}

bool read_field(RunParams *params, const RecordField &field, const char *value, char *target)
{
    if (std::strcmp(value, field.none) == 0) return true;
    if (field.name != nullptr) return read_bytes(params, field, value, target);
    // An unknown name leaves the feedback 0.
    if (const NamedInteger *feedback = findByName(MQFB_TBL, value)) {
        std::memcpy(target, &feedback->value, sizeof feedback->value);
    }
    return true;
}

/// One record: a token for each flagged field, as far as there are tokens.
bool read_record(RunParams *params, char *text, char *record)
{
    char *position = nullptr;
    char *value = strtok_r(text, ":", &position);
    for (const RecordField &field : FIELDS) {
        if ((params->Pmo.PutMsgRecFields & field.flag) == 0) continue;
        if (value == nullptr) return true;
        if (!read_field(params, field, value, record)) return false;
        record += field.size;
        value = strtok_r(nullptr, ":", &position);
    }
    return true;
}

std::size_t size_of_records(const RunParams *params)
{
    return static_cast<std::size_t>(params->DestCount) * put_message_record_size(params->Pmo.PutMsgRecFields);
}

/// A copy of an array, if there is one. False after a report.
bool copy_array(RunParams *params, const void *array, std::size_t size, Buffer<> &copy)
{
    if (array == nullptr) return true;
    copy = checked_malloc(params, size, {Source});
    if (copy != nullptr) std::memcpy(copy.get(), array, size);
    return copy != nullptr;
}

} // namespace

std::size_t put_message_record_size(MQLONG fields)
{
    std::size_t size = 0;
    for (const RecordField &field : FIELDS) {
        if ((fields & field.flag) != 0) size += field.size;
    }
    return size;
}

void read_put_message_records(RunParams *params)
{
    const Buffer<> list = checked_copy(params, params->PutMsgRecList, {Source});
    if (list == nullptr) return;
    const std::size_t recordSize = put_message_record_size(params->Pmo.PutMsgRecFields);
    char *record = static_cast<char *>(params->Pmo.PutMsgRecPtr);
    char *position = nullptr;
    char *text = strtok_r(list.get(), ",", &position);
    for (MQLONG i = 0; i < params->DestCount && text != nullptr; ++i) {
        if (!read_record(params, text, record)) return;
        record += recordSize;
        text = strtok_r(nullptr, ",", &position);
    }
}

void renew_put_message_records(RunParams *params)
{
    if (params->PutMsgRecsGiven == nullptr) return;
    std::memcpy(params->Pmo.PutMsgRecPtr, params->PutMsgRecsGiven, size_of_records(params));
}

Status own_written_records(RunParams *params, WrittenRecords &own)
{
    const std::size_t responsesSize = static_cast<std::size_t>(params->DestCount) * sizeof(MQRR);
    if (!copy_array(params, params->ResponseRecs, responsesSize, own.responses) ||
        !copy_array(params, params->Pmo.PutMsgRecPtr, size_of_records(params), own.putMessageRecords)) {
        return StatusLocalFailure;
    }
    params->ResponseRecs = reinterpret_cast<MQRR *>(own.responses.get());
    params->Pmo.PutMsgRecPtr = own.putMessageRecords.get();
    return StatusOk;
}
