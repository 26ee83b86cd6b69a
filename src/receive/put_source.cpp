#include "receive/put_source.h"

#include "common.h"

#include <cerrno>
#include <new>

Status PutSource::put(RunParams *params, MQHCONN hconn, MQLONG ownUnitOfWork, MQLONG messageNumber)
{
    if (params->MsgText != nullptr) return PutFromCmdLine2(params, hconn, ownUnitOfWork, messageNumber);
    if (params->InputFile != nullptr) return putFile(params, hconn, ownUnitOfWork, messageNumber);
    if (params->InputDir != nullptr) return putNextFile(params, hconn, ownUnitOfWork, messageNumber);
    return StatusOk;
}

Status PutSource::putFile(RunParams *params, MQHCONN hconn, MQLONG ownUnitOfWork, MQLONG messageNumber)
{
    if (file_ == nullptr) {
        file_ = open_input_file(params->InputFile);
        if (file_ == nullptr) {
            report_failure(params, {routine_}, "fopen(_s)()", errno, "fopen(_s)() failed. file name=%s\n",
                           params->InputFile);
            return StatusLocalFailure;
        }
    }
    return PutFromFile2(params, hconn, ownUnitOfWork, file_.get(), messageNumber);
}

Status PutSource::openDirectory(RunParams *params)
{
    cursor_.reset(new (std::nothrow) DirectoryCursor);
    if (cursor_ == nullptr) {
        report_failure(params, {routine_}, "malloc()", errno, "malloc() failed. size=%zu\n", sizeof(DirectoryCursor));
        return StatusLocalFailure;
    }
    directory_.reset(opendir(params->InputDir));
    if (directory_ == nullptr) {
        const int error = errno;
        cursor_.reset();
        report_failure(params, {routine_}, "opendir()", error, "opendir() failed. cannot open directory=%s\n",
                       params->InputDir);
        return StatusLocalFailure;
    }
    cursor_->stream = directory_.get();
    return StatusOk;
}

Status PutSource::putNextFile(RunParams *params, MQHCONN hconn, MQLONG ownUnitOfWork, MQLONG messageNumber)
{
    if (cursor_ == nullptr && openDirectory(params) != StatusOk) return StatusLocalFailure;
    params->DirCursor = cursor_.get();
    const Status status = PutFromDir2(params, hconn, ownUnitOfWork, messageNumber);
    params->DirCursor = nullptr;
    return status != StatusOk ? status : cursor_->lastStatus;
}
