#include "display.h"

#include "common.h"

// Integers follow the encoding that the structure in front of this one named; character fields follow -raw and -hex.
void printDeadLetterHedder(const MQDLH *dlh, RunParams *params)
{
    const auto text = [&](const char *name, const char *field, MQLONG length) {
        std::printf("%s[", name);
        printEachMode(field, length, params->DisplayForm);
        std::printf("] ");
    };
    const auto integer = [&](const char *name, MQLONG value) {
        std::printf("%s[%d] ", name, reverseEndian(value, params));
    };
    text("*StrucId", dlh->StrucId, sizeof dlh->StrucId);
    integer("Version", dlh->Version);
    integer("Reason", dlh->Reason);
    text("DestQName", dlh->DestQName, sizeof dlh->DestQName);
    text("DestQMgrName", dlh->DestQMgrName, sizeof dlh->DestQMgrName);
    integer("Encoding", dlh->Encoding);
    integer("CodedCharSetId", dlh->CodedCharSetId);
    text("Format", dlh->Format, sizeof dlh->Format);
    integer("PutApplType", dlh->PutApplType);
    text("PutApplName", dlh->PutApplName, sizeof dlh->PutApplName);
    text("PutDate", dlh->PutDate, sizeof dlh->PutDate);
    text("PutTime", dlh->PutTime, sizeof dlh->PutTime);
    std::printf("\n\n");
}
