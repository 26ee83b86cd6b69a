/// The MQI call layer: one wrapper for each MQI call, connection set-up, trace, stop-before-call, unit of work.
///
/// How to add a new MQI call
///   1. Write its wrapper in src/mqicalls/MQSeriesXxx.cpp over the common call sequence, which does stop, start trace,
///      call, yield and stop trace; the wrapper supplies the call, its texts and its judgement.
///   2. Declare it here, and list the file in src/mqicalls/CMakeLists.txt.
///   3. If `-s` shall stop before it, add its name to MQAPI (src/mqicalls/checkAPIname.cpp).
///
/// A wrapper answers 0 when the caller may go on, 3 after a failed call that it has reported, 1 for a failure of its
/// own.
#pragma once

#include "RunParams.h"
#include "status.h"
#include "tables.h"

// ---- Connecting ---------------------------------------------------------------------------------------------------

inline constexpr char DEFAULT_CHANNEL[] = "SYSTEM.DEF.SVRCONN";

/// MQCONN to `QMgrName`. A warning is success.
Status MQSeriesConn(MQHCONN *hconn, RunParams *params);
/// MQCONNX with the record's MQCNO and what the options link to it. 1 when the OCSP list is invalid.
Status MQSeriesConnX(MQHCONN *hconn, RunParams *params);
/// The `-ru` list into authentication-information records. An array is made for two or more URLs only; it belongs to
/// the caller, who frees `Sco.AuthInfoRecPtr` when `AuthInfoRecCount` is greater than 1.
Status setOCSPPesponderURL(RunParams *params);
/// MQDISC; with `-sd` only the stop before it.
Status MQSeriesDisconn(MQHCONN *hconn, RunParams *params);

// ---- Objects ------------------------------------------------------------------------------------------------------

/// Opens `QName`, or the distribution list of `-or`, for output. A failed list is reported, and 0.
Status MQSeriesQOpenForOutput(MQHCONN hconn, MQHOBJ *hobj, RunParams *params);
/// Opens `QName` for input, or for browsing only with `BrowseMode` and no input option.
Status MQSeriesQOpenForInput(MQHCONN hconn, MQHOBJ *hobj, RunParams *params);
/// Opens the queue, process, namelist or queue manager with MQOO_INQUIRE or MQOO_SET in `options`.
Status MQSeriesQOpen(MQHCONN hconn, MQHOBJ *hobj, RunParams *params, MQLONG options);
Status MQSeriesQClose(MQHCONN hconn, MQHOBJ *hobj, RunParams *params);

// ---- Putting, and the unit of work --------------------------------------------------------------------------------

Status MQSeriesPut(MQHCONN hconn, MQHOBJ hobj, RunParams *params, const void *buffer, MQLONG length);
Status MQSeriesPut1(MQHCONN hconn, RunParams *params, const void *buffer, MQLONG length);
Status MQSeriesCommit(MQHCONN hconn, RunParams *params);
Status MQSeriesBack(MQHCONN hconn, RunParams *params);

/// Sets the syncpoint word from MQPMO_SYNCPOINT. The judges never clear it; `program` is not used.
void Judge_syncpoint_put(const char *program, RunParams *params);
/// Sets it from MQGMO_SYNCPOINT, or MQGMO_SYNCPOINT_IF_PERSISTENT with a persistent `Md`.
void Judge_syncpoint_get(const char *program, RunParams *params);
/// Sets it in both records when either side works under syncpoint.
void Judge_syncpoint_getput(const char *program, RunParams *getParams, RunParams *putParams);

/// Before an operation under syncpoint, where each has a transaction of its own (another platform; here nothing).
Status begin_unit_of_work(const RunParams *params);
/// The one rule that ends a unit of work: under syncpoint, commits after a success and backs out after a failure or
/// with `-b`. Answers `result`, or 1 when the commit or backout failed. Threads of `-nt` share a connection, so with
/// them it does nothing: see `settle_unit_of_work`.
Status end_unit_of_work(RunParams *params, MQHCONN hconn, Status result);
/// The same decision without regard to threads, for the driver after a group of threads has ended. Answers 0, or the
/// status of a failed commit or backout.
Status settle_unit_of_work(RunParams *params, MQHCONN hconn, Status result);

/// Hooks of another platform's transaction manager: nothing to do here, always 0.
Status TNSBeginTransaction();
Status TNSEndTransaction();
Status TNSAbortTransaction();
Status TNSResumeTransaction();
Status TNSOpenTFILE();

// ---- Attributes and properties ------------------------------------------------------------------------------------

Status MQSeriesInquiry(MQHCONN hconn, MQHOBJ hobj, RunParams *params, MQLONG selectorCount, MQLONG *selectors,
                       MQLONG intAttrCount, MQLONG *intAttrs, MQLONG charAttrLength, MQCHAR *charAttrs);
Status MQSeriesSet(MQHCONN hconn, MQHOBJ hobj, RunParams *params, MQLONG selectorCount, MQLONG *selectors,
                   MQLONG intAttrCount, MQLONG *intAttrs, MQLONG charAttrLength, MQCHAR *charAttrs);
/// Makes the record's message handle; MQSeriesDeleteMH deletes it.
Status MQSeriesCreateMH(MQHCONN hconn, RunParams *params);
Status MQSeriesDeleteMH(MQHCONN hconn, RunParams *params);
/// The next property of any name. Buffers are offered to the MQI with their size less one.
Status MQSeriesInqMP(MQHCONN hconn, RunParams *params, MQLONG nameSize, MQCHAR *name, MQLONG *type, MQLONG valueSize,
                     MQBYTE *value, MQLONG *dataLength, MQLONG *compCode, MQLONG *reason);
/// Sets a property on the record's message handle, which the next put carries.
Status MQSeriesSetMP(MQHCONN hconn, RunParams *params, MQCHARV *name, MQLONG type, MQLONG valueLength, void *value);

// ---- Distribution lists -------------------------------------------------------------------------------------------

/// `-or` and `-mr` into the record's MQOR, MQRR and MQPMR arrays. 1 only when nothing could be built.
Status allocateForDestinationList(RunParams *params);
/// Frees what is there and forgets it.
void freeForDestinationList(RunParams *params);
/// One line for each destination of a distribution list, with its codes.
void print_responses(const char *heading, RunParams *params);

// ---- Events -------------------------------------------------------------------------------------------------------

/// Registers the record's callback. The record becomes the callback area, so it must live as long as the connection.
Status MQSeriesCB(MQHCONN hconn, RunParams *params);
/// Writes connection events. Called by the MQI, possibly on a thread of its own.
void EventHandler(MQHCONN hconn, PMQVOID md, PMQVOID gmo, PMQVOID buffer, PMQCBC context);
/// The functions that `-cf` can name.
extern const NamedFunction CALLBACK_FUNCTION_TBL[];

// ---- Trace, stop, yield -------------------------------------------------------------------------------------------

/// 0 when `-s` accepts the name, else 1.
Status checkAPIname(const char *name);
/// Waits for a key when `-s` named this call.
void stopUntilHitKey(RunParams *params, const char *name);
/// One trace line, with `-tr` only.
void api_trace_dsp(RunParams *params, const char *format, ...) __attribute__((format(printf, 2, 3)));
/// Gives up the processor, with `-y` and threads only.
Status _thread_yield(RunParams *params);
