/// What an operation on both records puts in each round, when it is not the body that it got.
#pragma once

#include "RunParams.h"
#include "send.h"
#include "send/input_file.h"
#include "status.h"

#include <memory>

/// The text of -m, the file of -f, which stays open between rounds, or the files of -d, one in each round.
class PutSource {
public:
    /// `routine` is the name in reports.
    explicit PutSource(const char *routine) : routine_(routine) {}

    static bool isGiven(const RunParams *params)
    {
        return params->MsgText != nullptr || params->InputFile != nullptr || params->InputDir != nullptr;
    }

    /// Puts once, as `messageNumber`; for a directory, the next file. Unlike the directory routine it answers how that
    /// file was put.
    Status put(RunParams *params, MQHCONN hconn, MQLONG ownUnitOfWork, MQLONG messageNumber);

    /// Whether the directory had no more file for the last round.
    bool isExhausted() const { return cursor_ != nullptr && cursor_->filesPut == 0 && cursor_->lastStatus == StatusOk; }

private:
    Status putFile(RunParams *params, MQHCONN hconn, MQLONG ownUnitOfWork, MQLONG messageNumber);
    Status putNextFile(RunParams *params, MQHCONN hconn, MQLONG ownUnitOfWork, MQLONG messageNumber);
    Status openDirectory(RunParams *params);

    const char *routine_;
    InputStream file_;
    DirectoryStream directory_;
    std::unique_ptr<DirectoryCursor> cursor_;
};
