#include "display.h"

#include "common.h"

void printPCF(const void *, MQLONG, MQLONG, RunParams *)
{
    not_built_yet("printPCF");
}
