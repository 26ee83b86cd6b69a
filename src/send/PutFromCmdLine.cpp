#include "send.h"

Status PutFromCmdLine(RunParams *params, MQHCONN hconn)
{
    return PutFromCmdLine2(params, hconn, 1, 0);
}
