/// How a message got is shown, for every loop that gets.
#pragma once

#include "RunParams.h"
#include "common.h"
#include "status.h"

/// A message in a buffer of `MaxMsgSize` + 1 bytes.
struct ReceivedMessage {
    const char *data;
    MQLONG length; ///< as MQGET reported it, which may be more than the buffer holds
};

/// 0: one line for each message; 1: descriptor, properties and dump; 2: descriptor, properties and header walk.
constexpr MQLONG detail_level(const RunParams *params)
{
    return params->BrowseMode != 0 ? params->BrowseMode : params->DumpMode;
}

/// True when a display is one numbered line: neither in detail nor as bare bytes.
constexpr bool shows_numbered_line(const RunParams *params)
{
    return detail_level(params) == 0 && params->OutputForm != OutputFormRaw;
}

/// Whether properties come with a message handle, as the get options ask.
constexpr bool has_properties_in_handle(const RunParams *params)
{
    return (params->Gmo.Options & MQGMO_PROPERTIES_IN_HANDLE) != 0;
}

/// What a loop that shows messages gets them into: the body, and room for its conversion.
struct ReceiveBuffers {
    Buffer<> message;
    Buffer<> converted;

    /// For messages of `MaxMsgSize`. False after the report, as `caller`.
    bool allocate(RunParams *params, Caller caller);
};

/// With -br and -brv, opening and getting browse.
void browse_if_asked(RunParams *params);

/// Shows one message inside the output lock, so that the lines of threads do not mix: in detail, headed by the number
/// `received`, or on one line, headed by `lineNumber`. `converted` has room for `converted_size(MaxMsgSize)` bytes.
Status show_received(RunParams *params, MQHCONN hconn, const ReceivedMessage &message, MQLONG received,
                     MQLONG lineNumber, char *converted);
