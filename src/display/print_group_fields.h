/// The fields that an MQMD of version 2 and an MQMDE share.
#pragma once

#include "display.h"
#include "display/print_hex.h"

/// GroupId to OriginalLength, and the empty line that ends the structure.
template <class Structure>
void print_group_fields(const Structure *structure, const RunParams *params)
{
    std::printf("GroupId[0x");
    print_hex(structure->GroupId);
    std::printf("] MsgSeqNumber[%d] Offset[%d] ", structure->MsgSeqNumber, structure->Offset);
    if (params->DisplayForm == OutputFormHex) {
        std::printf("MsgFlags[0x");
        printMQLong2Hex(structure->MsgFlags, params);
        std::printf("] ");
    } else {
        std::printf("MsgFlags[%d] ", structure->MsgFlags);
    }
    std::printf("OriginalLength[%d]\n\n", structure->OriginalLength);
}
