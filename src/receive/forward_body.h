/// Queue to queue's put of the body that was got.
#pragma once

#include "RunParams.h"
#include "status.h"

/// Puts the `length` bytes in `buffer` (as MQGET reported them; `buffer` holds `MaxMsgSize` of the get side's at most)
/// to the queue that the put side holds open, padded or cut to its -l, and shows a line numbered `number`, whatever the
/// put answered.
Status forward_body(RunParams *getParams, MQHCONN hconn, RunParams *putParams, char *buffer, MQLONG length,
                    MQLONG number);
