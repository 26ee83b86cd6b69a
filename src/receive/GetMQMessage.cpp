#include "receive.h"

Status GetMQMessage(RunParams *params, MQHCONN hconn)
{
    return GetMQMessage2(params, hconn, 0);
}
