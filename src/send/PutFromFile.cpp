#include "send.h"

Status PutFromFile(RunParams *params, MQHCONN hconn)
{
    return PutFromFile2(params, hconn, 1, nullptr, 0);
}
