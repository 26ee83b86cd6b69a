/// Queue to queue's put of the body that was got.
#pragma once

#include "RunParams.h"
#include "receive/show_received.h"
#include "status.h"

/// Puts the body in `buffers`, of the `length` that MQGET reported, to the queue that the put side holds open, padded
/// or cut to its -l, and shows a line numbered `number`, whatever the put answered.
Status forward_body(RunParams *getParams, MQHCONN hconn, RunParams *putParams, const ReceiveBuffers &buffers,
                    MQLONG length, MQLONG number);
