#include "receive.h"

Status GetToDir(RunParams *params, MQHCONN hconn)
{
    return GetToDir2(params, hconn, 1, 0, nullptr, nullptr);
}
