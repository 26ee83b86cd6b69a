#include "display.h"

#include "display/print_group_fields.h"

#include <cstddef>
#include <cstring>

static_assert(sizeof(MQMD1) == offsetof(MQMD, GroupId));

void printMessageDescriptorV2(const MQMD *md, RunParams *params)
{
    MQMD1 version1;
    std::memcpy(&version1, md, sizeof version1);
    printMessageDescriptor(&version1, params);
    print_group_fields(md, params);
}
