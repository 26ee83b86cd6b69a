#include "display.h"

#include "common.h"

void print_mp(RunParams *, MQHCONN)
{
    not_built_yet("print_mp");
}
