#include "receive/show_received.h"

#include "common.h"
#include "display.h"
#include "display/shown_length.h"

#include <algorithm>
#include <cstring>

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
