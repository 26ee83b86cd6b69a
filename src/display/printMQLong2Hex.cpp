#include "display.h"

#include "common.h"

void printMQLong2Hex(MQLONG value, const RunParams *params)
{
    std::printf("%08X", static_cast<MQULONG>(reverseEndian(value, params)));
}
