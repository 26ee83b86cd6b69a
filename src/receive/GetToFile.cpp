#include "receive.h"

Status GetToFile(RunParams *params, MQHCONN hconn)
{
    return GetToFile2(params, hconn, 1, 0, nullptr, nullptr);
}
