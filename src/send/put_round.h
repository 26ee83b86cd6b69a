/// What every put loop does around one message, whatever the source of the body.
#pragma once

#include "RunParams.h"
#include "status.h"

/// The head of a round: the record as the snapshot holds it, so that every put starts from the descriptor and options
/// that the user gave; report lines handed on; the pause of `-i`, from the second message on (`messagesBefore` > 0).
void begin_put_round(RunParams *params, const RunRecord &snapshot, MQLONG messagesBefore);

/// Puts the body as one message, or hands it to the splitter with `-as` or `-dl`.
Status put_body(RunParams *params, MQHCONN hconn, MQHOBJ hobj, const char *body, MQLONG length, MQLONG messageIndex);
