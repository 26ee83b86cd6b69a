#include "pcf.h"

#include "common.h"

char *make_pcf_message(MQMD *, const PcfDef *, MQLONG *)
{
    not_built_yet("make_pcf_message");
    return nullptr;
}
