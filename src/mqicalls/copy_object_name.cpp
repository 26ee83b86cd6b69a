#include "mqicalls/object_name.h"

#include "common.h"

#include <cstring>

Status copy_object_name(RunParams *params, MQCHAR48 &field, const char *name, const char *option)
{
    const char *given = name != nullptr ? name : "";
    if (std::strlen(given) > MQ_Q_NAME_LENGTH) {
        printf_te(params, "%s is too long - MQ_Q_NAME_LENGTH is %d(%s)\n", given, MQ_Q_NAME_LENGTH, option);
        return StatusLocalFailure;
    }
    strncpy2(field, given, MQ_Q_NAME_LENGTH);
    return StatusOk;
}
