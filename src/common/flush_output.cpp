#include "common.h"

void flush_output()
{
    std::fflush(stdout);
}
