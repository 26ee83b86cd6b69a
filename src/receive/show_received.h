/// How a message got is shown, for every loop that gets.
#pragma once

#include "RunParams.h"
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

/// Descriptor, properties and body in detail, headed by the message number. The caller holds the output lock.
void show_in_detail(RunParams *params, MQHCONN hconn, const ReceivedMessage &message, MQLONG number);

/// The one-line display, or the bare bytes with -raw. `converted` has room for `converted_size(MaxMsgSize)` bytes. The
/// caller holds the output lock.
void show_on_one_line(RunParams *params, const ReceivedMessage &message, MQLONG number, char *converted);
