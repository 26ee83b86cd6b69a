#include "send.h"

Status PutFromDir(RunParams *params, MQHCONN hconn)
{
    return PutFromDir2(params, hconn, 1, 0);
}
