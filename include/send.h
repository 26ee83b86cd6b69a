/// Sending messages.
///
/// How to add a new source of messages
///   1. Write src/send/PutFromXxx.cpp: the entry `X` that the driver calls, and the worker `X2` that the paired
///      operations call with their own message number and ownership of the unit of work.
///   2. Declare both here, list the file in src/send/CMakeLists.txt.
///   3. Add the option row for its argument and a step to mode selection (see options.h).
///
/// `ownUnitOfWork` nonzero: the worker ends the unit of work itself. `messageNumber` 0: lines are numbered by the
/// worker's own count. A queue that the record holds open (`OutputHobj`) is used and not closed.
#pragma once

#include "RunParams.h"
#include "status.h"

#include <cstddef>
#include <cstdio>

/// In front of a message with `-ac`; its first eight characters are replaced by the count.
inline constexpr char COUNTER_FORMAT[] = "00000000: ";
/// Fill of message buffers, and of RFH2 folders.
inline constexpr char pad_c = '\0';
inline constexpr char pad_s = ' ';

/// A directory that is put one file per call; owned by the paired operations.
struct DirectoryCursor {
    MQLONG filesPut = 0;          ///< files put by the last call
    Status lastStatus = StatusOk; ///< of the last file, which `PutFromDir2` does not answer
    void *stream = nullptr;       ///< the open DIR, read on by each call
};

Status PutFromCmdLine(RunParams *params, MQHCONN hconn);
Status PutFromCmdLine2(RunParams *params, MQHCONN hconn, MQLONG ownUnitOfWork, MQLONG messageNumber);
/// Eight digits of `override`, or of `counter` when that is 0, over the first eight bytes of `buffer`.
void append_counter(MQLONG counter, char *buffer, MQLONG override);

Status PutFromFile(RunParams *params, MQHCONN hconn);
/// `openFile`, when given, is rewound, put instead of `InputFile`, and not closed.
Status PutFromFile2(RunParams *params, MQHCONN hconn, MQLONG ownUnitOfWork, std::FILE *openFile, MQLONG messageNumber);
Status PutFromDir(RunParams *params, MQHCONN hconn);
Status PutFromDir2(RunParams *params, MQHCONN hconn, MQLONG ownUnitOfWork, MQLONG messageNumber);

/// Puts a body as the logical messages of a group and/or as segments.
Status splitMessage(RunParams *params, MQHCONN hconn, MQHOBJ hobj, const char *data, MQLONG length,
                    MQLONG messageIndex);
/// Puts one logical message as segments of at most `SegmentSize` bytes.
Status Applsegmentation(RunParams *params, MQHCONN hconn, MQHOBJ hobj, const char *data, MQLONG length,
                        MQLONG messageIndex, MQLONG logicalNumber);

/// An MQRFH2 from malloc, which the caller frees, or null after a report. Its length is in its StrucLength, read back
/// through `reverseEndian`.
char *make_rfh2(RunParams *params);
/// Sets the properties of `-smp` on the record's message handle.
Status make_mp(RunParams *params, MQHCONN hconn);
