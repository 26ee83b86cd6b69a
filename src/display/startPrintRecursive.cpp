#include "display.h"

void startPrintRecursive(const void *data, MQLONG dataLength, MQLONG shownLength, MQLONG level, MQLONG form,
                         RunParams *params)
{
    params->DisplayForm = form;
    if (level == 1) {
        printDumpFormat(data, dataLength, shownLength);
    } else {
        printRecursive(data, dataLength, shownLength, params);
    }
}
