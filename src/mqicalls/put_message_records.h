/// Put-message records (MQPMR): the fields of a message that differ from destination to destination.
#pragma once

#include "RunParams.h"
#include "common.h"
#include "status.h"

#include <cstddef>

/// Bytes of one record with these MQPMRF_* fields; 0 when none is flagged.
std::size_t put_message_record_size(MQLONG fields);

/// The list of -mr into the record's array, one record for each destination. Empty records and fields are skipped, as
/// in the list of destinations. The first faulty field is reported and ends the reading; what was read stays.
void read_put_message_records(RunParams *params);

/// The records as they were given, before a put: the one before has written its identifiers into them.
void renew_put_message_records(RunParams *params);

/// The arrays that a put to a destination list writes into.
struct WrittenRecords {
    Buffer<> responses;
    Buffer<> putMessageRecords;
};
/// Gives a copied record such arrays of its own, so that it can put beside the record that it is a copy of. They are
/// the caller's. 1 after a report.
Status own_written_records(RunParams *params, WrittenRecords &own);
