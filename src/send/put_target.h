/// What a put routine puts to: the output queue, and the message handle that carries the properties of -smp.
#pragma once

#include "RunParams.h"
#include "status.h"

struct PutTarget {
    MQHOBJ hobj = 0;
    bool openedHere = false;
    bool madeHandle = false;

    PutTarget() = default;
    PutTarget(const PutTarget &) = delete;
    PutTarget &operator=(const PutTarget &) = delete;
    /// A put routine that ends in its set-up leaves the queue to MQDISC; the destination list is memory, and goes.
    ~PutTarget();

    /// The queue that the record holds open, or `QName` opened for output.
    Status open(RunParams *params, MQHCONN hconn);
    /// With -smp, the message handle and its properties.
    Status set_properties(RunParams *params, MQHCONN hconn);
    /// The end of a put routine: deletes the handle, ends the unit of work if that is the routine's own, closes the
    /// queue. Handles that were never made are left alone. Answers `status`, or 1 when one of the three fails.
    Status finish(RunParams *params, MQHCONN hconn, MQLONG ownUnitOfWork, Status status);

private:
    RunParams *listOwner_ = nullptr; ///< the record with the list of a queue that is open here
};
