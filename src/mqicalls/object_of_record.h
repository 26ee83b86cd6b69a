/// The object that a record's attribute operations work on: which name was given, and what it names.
#pragma once

#include "RunParams.h"

struct ObjectOfRecord {
    const char *name;   ///< never null
    const char *option; ///< that gave the name
    MQLONG type;        ///< MQOT_* that the name stands for
};

/// The queue if one was named, else the process, else the namelist, else the queue manager with an empty name.
constexpr ObjectOfRecord object_of_record(const RunParams *params)
{
    if (params->QName != nullptr) return {params->QName, "-q", MQOT_Q};
    if (params->ProcessName != nullptr) return {params->ProcessName, "-p", MQOT_PROCESS};
    if (params->NamelistName != nullptr) return {params->NamelistName, "-nl", MQOT_NAMELIST};
    return {"", "-q", MQOT_Q_MGR};
}
