/// What MQINQ and MQSET work on, and how their lists and report lines begin.
#pragma once

#include "RunParams.h"
#include "common.h"
#include "status.h"

/// The object that the record holds open, or the one it names, opened here with `options`.
class AttributeObject {
public:
    AttributeObject(RunParams *params, MQHCONN hconn) : params_(params), hconn_(hconn) {}

    /// 1 after the report of a failed open.
    Status open(MQLONG options);
    /// Closes what was opened here. Answers `status`, or 1 when that fails.
    Status close(Status status);

    MQHOBJ hobj() const { return hobj_; }

private:
    RunParams *params_;
    MQHCONN hconn_;
    MQHOBJ hobj_ = 0;
    bool openedHere_ = false;
};

/// An array of zeros with an element for every item that the list can have, or null after a report.
Buffer<> element_for_each_item(RunParams *params, const char *list, const char *delimiters, std::size_t elementSize,
                               Caller caller);

/// The time stamp and the number of the line, which is always 1. The caller holds the lock.
void begin_attribute_line(RunParams *params);
