#include "option_rows.h"

#include "constant_rows.h"
#include "option_groups.h"

constinit const std::span<const OptionGroup> OPTION_GROUPS = GROUPS;
constinit const std::span<const ConstantRow> CONSTANT_ROWS = CONSTANTS;
