#include "mqicalls.h"

const NamedFunction CALLBACK_FUNCTION_TBL[] = {
    {"EventHandler", EventHandler},
    {nullptr, nullptr},
};
