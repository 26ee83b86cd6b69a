#include "send.h"

#include "common.h"

Status PutFromFile2(RunParams *, MQHCONN, MQLONG, std::FILE *, MQLONG)
{
    return not_built_yet("PutFromFile2");
}
