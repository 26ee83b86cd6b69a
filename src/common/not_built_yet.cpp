#include "common.h"

Status not_built_yet(const char *name)
{
    flush_output();
    std::fprintf(stderr, "%s is not built yet\n", name);
    return StatusLocalFailure;
}
