#include "pcf.h"

#include "common.h"

Status read_pcf_file(RunParams *, PcfDef *)
{
    return not_built_yet("read_pcf_file");
}
