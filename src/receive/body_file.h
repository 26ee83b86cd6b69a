/// A file that takes the body of one message.
#pragma once

#include "common.h"
#include "receive/show_received.h"

/// Closes itself. What fails leaves errno.
class BodyFile {
public:
    BodyFile() = default;
    ~BodyFile();
    BodyFile(const BodyFile &) = delete;
    BodyFile &operator=(const BodyFile &) = delete;

    /// Creates the file, or empties the one that is there.
    bool replace(const char *path);
    /// Creates the file. One that is there, or a link of that name, is left alone: EEXIST.
    bool create(const char *path);
    /// Writes all of `length` bytes and closes the file: true when they have arrived.
    bool write(const char *data, MQLONG length);

private:
    int descriptor_ = -1;
};

/// Reports the call that failed for a file, as `caller`. Answers 1.
Status report_file(RunParams *params, Caller caller, const char *call, int error, const char *path);

/// Writes what the buffer holds of the message and closes the file. 1 after the report, as `caller`.
Status write_body(RunParams *params, Caller caller, BodyFile &file, const char *path, const ReceivedMessage &message);
