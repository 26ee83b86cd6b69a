/// The option rows by group, in the order of the usage text.
#pragma once

#include "message_option_rows.h"
#include "run_option_rows.h"

inline constexpr OptionGroup GROUPS[] = {
    {"General", GENERAL_OPTIONS},
    {"Queue manager and objects", OBJECT_OPTIONS},
    {"Operation", OPERATION_OPTIONS},
    {"Run", RUN_OPTIONS},
    {"Display", SHOW_OPTIONS},
    {"Message", BODY_OPTIONS},
    {"Message descriptor (MQMD)", DESCRIPTOR_OPTIONS},
    {"Rules and formatting header (MQRFH2); each of these puts one in front of the body", RFH2_OPTIONS},
    {"Get (MQGMO, MQIMPO)", GET_OPTIONS},
    {"Client connection, TLS and credentials; each of these selects MQCONNX", CONNECTION_OPTIONS},
};
