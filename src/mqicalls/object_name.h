/// Names of objects and queue managers on their way into the MQI's 48-character fields.
#pragma once

#include "RunParams.h"
#include "status.h"

/// Copies `name` (null: empty) into the whole field, zero-filled behind it. A name that is longer than the field is
/// refused with a line that quotes it and the option that gave it; the field keeps what it held.
Status copy_object_name(RunParams *params, MQCHAR48 &field, const char *name, const char *option);
