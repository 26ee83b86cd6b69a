#include "receive/show_received.h"

#include "display.h"
#include "display/shown_length.h"

#include <algorithm>
#include <cstring>

namespace {

/// Descriptor, properties and body.
void show_in_detail(RunParams *params, MQHCONN hconn, const ReceivedMessage &message, MQLONG number)
{
    dsp_tid(params);
    printMessageNumber(params, number);
    params->DisplayForm = params->OutputForm;
    printMessageDescriptorV2(&params->Md, params);
    if (has_properties_in_handle(params)) print_mp(params, hconn);

    params->DataEncoding = params->Md.Encoding;
    std::memcpy(params->DataFormat, params->Md.Format, sizeof params->DataFormat);
    startPrintRecursive(message.data, message.length, std::min(message.length, params->MaxMsgSize),
                        detail_level(params), params->OutputForm, params);
    std::putchar('\n');
}

/// Or the bare bytes with -raw.
void show_on_one_line(RunParams *params, const ReceivedMessage &message, MQLONG number, char *converted)
{
    const MQLONG received = std::min(message.length, params->MaxMsgSize);
    if (params->OutputForm == OutputFormRaw) {
        printRaw(message.data, received);
        return;
    }
    dsp_timestamp(params);
    std::printf("%d: message length: %d get message : ", number, message.length);
    std::size_t end = cnvrtmsg(message.data, converted, shown_length(params, received), params->OutputForm);
    converted[end++] = '\n';
    std::fwrite(converted, 1, end, stdout);
}

} // namespace

bool ReceiveBuffers::allocate(RunParams *params, Caller caller)
{
    message = checked_malloc(params, static_cast<std::size_t>(params->MaxMsgSize) + 1, caller);
    if (message == nullptr) return false;
    converted = checked_malloc(params, converted_size(params->MaxMsgSize), caller);
    return converted != nullptr;
}

void browse_if_asked(RunParams *params)
{
    if (params->BrowseMode == 0) return;
    params->OpenOptions |= MQOO_BROWSE;
    params->Gmo.Options |= MQGMO_BROWSE_NEXT;
}

Status show_received(RunParams *params, MQHCONN hconn, const ReceivedMessage &message, MQLONG received,
                     MQLONG lineNumber, char *converted)
{
    LockedSection locked(params);
    if (locked.status() != StatusOk) return StatusLocalFailure;
    if (detail_level(params) != 0) {
        show_in_detail(params, hconn, message, received);
    } else {
        show_on_one_line(params, message, lineNumber, converted);
    }
    return locked.release();
}
