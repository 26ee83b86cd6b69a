#include "send.h"

#include "common.h"

char *make_rfh2(RunParams *)
{
    not_built_yet("make_rfh2");
    return nullptr;
}
