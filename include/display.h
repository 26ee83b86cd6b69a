/// What the console shows of messages: bodies, descriptors, headers, properties, PCF.
///
/// How to add a new header printer
///   1. Write src/display/printXxx.cpp: the structure's fields on one line, "Name[value] ", and an empty line.
///      Convert integers with `reverseEndian`, print character fields with `printEachMode`.
///   2. Declare it here, list the file in src/display/CMakeLists.txt.
///   3. Add its format name to the walk (src/display/printRecursive.cpp), with the check that it fits.
///
/// Walks are loops that stop at the end of what was received; nothing behind it is read.
#pragma once

#include "RunParams.h"
#include "status.h"

#include <cstddef>

/// `dsp_message`: what a line of the put display says.
inline constexpr int DisplayPutFile = 1;
inline constexpr int DisplayPutMessage = 2;
inline constexpr int DisplayLogicalMessage = 3;
inline constexpr int DisplaySegment = 4;

/// `dsp_message`: no counter is shown.
inline constexpr MQULONG NoMessageCounter = 0xFFFFFFFF;

/// The one-line display of a message about to be put. `number` is the logical message or segment (kinds 3 and 4),
/// `counter` the 0-based index of the message in its run.
Status dsp_message(RunParams *params, const void *data, MQLONG length, int kind, MQLONG number, MQULONG counter);

/// Body bytes to a printable, terminated string; `target` holds 2 * `length` + 3 bytes. Answers the string's length.
std::size_t cnvrtmsg(const void *source, char *target, MQLONG length, MQLONG mode);

/// `length` bytes to standard output, unconverted.
void printRaw(const void *data, MQLONG length);
/// Eight upper-case digits of the converted value.
void printMQLong2Hex(MQLONG value, const RunParams *params);
/// "message number: ..." with the message token where the MQGMO has one.
void printMessageNumber(const RunParams *params, MQLONG number);

/// The body of a received message in detail: a dump (`level` 1) or the walk over its headers (`level` 2).
/// `dataLength` is what the get reported, `shownLength` what the buffer holds.
void startPrintRecursive(const void *data, MQLONG dataLength, MQLONG shownLength, MQLONG level, MQLONG form,
                         RunParams *params);
void printDumpFormat(const void *data, MQLONG dataLength, MQLONG shownLength);
void dumpmsg(const void *data, MQLONG length);
/// The header walk, by the record's `DataFormat` and `DataEncoding`.
void printRecursive(const void *data, MQLONG dataLength, MQLONG shownLength, RunParams *params);

/// A character field in the form given.
void printEachMode(const void *data, MQLONG length, MQLONG form);
void printMessageDescriptor(const MQMD1 *md, RunParams *params);
void printMessageDescriptorV2(const MQMD *md, RunParams *params);
void printMessageDescriptorExtention(const MQMDE *mde, RunParams *params);
void printDeadLetterHedder(const MQDLH *dlh, RunParams *params);
void printXmitQueueHedder(const MQXQH *xqh, RunParams *params);
/// The fixed part and the pairs that fit into `available` bytes; 1 when a pair's length is impossible.
Status printMQRFH2(const void *rfh2, MQLONG available, RunParams *params);

/// All properties of the record's message handle.
void print_mp(RunParams *params, MQHCONN hconn);

/// A PCF message: `count` structures back to back within `available` bytes, the MQCFH counted.
void printPCF(const void *structure, MQLONG available, MQLONG count, RunParams *params);
