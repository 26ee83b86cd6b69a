#include "mqicalls.h"

#include "common.h"

void print_responses(const char *heading, RunParams *params)
{
    if (params->ResponseRecs == nullptr) return; // there was no memory for them; that has been reported
    const MQOR *objects = static_cast<const MQOR *>(params->Od.ObjectRecPtr);
    for (MQLONG i = 0; i < params->DestCount; ++i) {
        const MQOR &object = objects[i];
        const MQRR &response = params->ResponseRecs[i];
        printf_t(params, "%s for %.48s(%.48s) returned CompCode=%d, Reason=%d\n", heading, object.ObjectName,
                 object.ObjectQMgrName, response.CompCode, response.Reason);
    }
}
