/// Message handles and properties, callbacks.

#include "rows.h"

constexpr NamedInteger MQPD_TBL[] = {
    NAMED(MQPD_USER_CONTEXT),
    NAMED(MQPD_NO_CONTEXT),
    {},
};
static_assert(rowsOf(MQPD_TBL) == 2);

constexpr NamedInteger MQIMPO_TBL[] = {
    NAMED(MQIMPO_CONVERT_TYPE),          NAMED(MQIMPO_QUERY_LENGTH),  NAMED(MQIMPO_INQ_FIRST), NAMED(MQIMPO_INQ_NEXT),
    NAMED(MQIMPO_INQ_PROP_UNDER_CURSOR), NAMED(MQIMPO_CONVERT_VALUE), NAMED(MQIMPO_NONE),      {},
};
static_assert(rowsOf(MQIMPO_TBL) == 7);

constexpr NamedInteger MQCMHO_TBL[] = {
    NAMED(MQCMHO_DEFAULT_VALIDATION), NAMED(MQCMHO_NO_VALIDATION), NAMED(MQCMHO_VALIDATE), NAMED(MQCMHO_NONE), {},
};
static_assert(rowsOf(MQCMHO_TBL) == 4);

constexpr NamedInteger MQCBT_TBL[] = {
    NAMED(MQCBT_MESSAGE_CONSUMER),
    NAMED(MQCBT_EVENT_HANDLER),
    {},
};
static_assert(rowsOf(MQCBT_TBL) == 2);

constexpr NamedInteger MQOP_TBL[] = {
    NAMED(MQOP_START),      NAMED(MQOP_START_WAIT), NAMED(MQOP_STOP),   NAMED(MQOP_REGISTER),
    NAMED(MQOP_DEREGISTER), NAMED(MQOP_SUSPEND),    NAMED(MQOP_RESUME), {},
};
static_assert(rowsOf(MQOP_TBL) == 7);

constexpr NamedInteger MQTYPE_TBL[] = {
    NAMED(MQTYPE_AS_SET),
    NAMED(MQTYPE_NULL),
    NAMED(MQTYPE_BOOLEAN),
    NAMED(MQTYPE_BYTE_STRING),
    NAMED(MQTYPE_INT8),
    NAMED(MQTYPE_INT16),
    NAMED(MQTYPE_INT32),
    NAMED(MQTYPE_LONG),
    NAMED(MQTYPE_INT64),
    NAMED(MQTYPE_FLOAT32),
    NAMED(MQTYPE_FLOAT64),
    NAMED(MQTYPE_STRING),
    {},
};
static_assert(rowsOf(MQTYPE_TBL) == 12);

constexpr NamedInteger MQBOOL_TBL[] = {
    {"TRUE", 1},
    {"FALSE", 0},
    {},
};
static_assert(rowsOf(MQBOOL_TBL) == 2);
