/// Receiving messages, and the two operations that work on both records.
///
/// How to add a new way to receive
///   1. Write src/receive/GetToXxx.cpp over `MQSeriesReceive`: the entry `X`, and the worker `X2` for the paired
///      operations.
///   2. Declare both here, list the file in src/receive/CMakeLists.txt.
///   3. Add the option row for its argument and a step to mode selection (see options.h).
///
/// A queue that the record holds open (`InputHobj`) is used and not closed.
#pragma once

#include "RunParams.h"
#include "status.h"

Status GetMQMessage(RunParams *params, MQHCONN hconn);
/// `messageNumber` 0: lines are numbered by the loop's own count.
Status GetMQMessage2(RunParams *params, MQHCONN hconn, MQLONG messageNumber);

/// One MQGET with the record's MQMD and MQGMO into a buffer of `bufferLength` + 1 bytes, transport headers cut off
/// unless `KeepHeaders`. `*dataLength` is what is left, terminated by a zero byte. 2: no message available.
Status MQSeriesReceive(MQHCONN hconn, MQHOBJ hobj, RunParams *params, char *buffer, MQLONG bufferLength,
                       MQLONG *dataLength);

/// A data length that stands for no message: none was there, or the user did not want the file to be overwritten.
inline constexpr MQLONG NothingGot = -1;

Status GetToFile(RunParams *params, MQHCONN hconn);
/// `buffer`, when given, is the caller's, of `MaxMsgSize` + 1 bytes; `lengthOut`, when given, gets the data length, or
/// `NothingGot`.
Status GetToFile2(RunParams *params, MQHCONN hconn, MQLONG ownUnitOfWork, MQLONG messageNumber, char *buffer,
                  MQLONG *lengthOut);
Status GetToDir(RunParams *params, MQHCONN hconn);
/// Loops only when `ownUnitOfWork` is nonzero.
Status GetToDir2(RunParams *params, MQHCONN hconn, MQLONG ownUnitOfWork, MQLONG messageNumber, char *buffer,
                 MQLONG *lengthOut);
/// The file name of a message, from its put date and time; `name` holds at least 64 bytes. Answers its length.
MQLONG mkFileName(const MQMD *md, char *name);

/// Gets from one queue and puts to another, or to the reply-to queue.
Status Queue2Queue(RunParams *getParams, MQHCONN hconn, RunParams *putParams);
/// Fills the put side's MQMD for one message.
Status setOutputMD(const RunParams *getParams, RunParams *putParams, const RunRecord *putSnapshot);
/// Puts requests and gets their replies.
Status SendReceive(RunParams *putParams, MQHCONN hconn, RunParams *getParams);
