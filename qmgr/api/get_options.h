// What MQGET, and MQCB for a consumer that gets, check of the get-message options.
#pragma once

#include "cmqc.h"

namespace mqrig::qmgr::api {

inline constexpr MQLONG propertyOptions =
    MQGMO_PROPERTIES_FORCE_MQRFH2 | MQGMO_NO_PROPERTIES | MQGMO_PROPERTIES_IN_HANDLE | MQGMO_PROPERTIES_COMPATIBILITY;

// Of options and match options, each by itself and together. `mdVersion`: as the program gave it.
MQLONG checkGetOptions(const MQGMO &gmo, MQLONG mdVersion);

// What logical order needs of the structures, and the fields that match options name.
MQLONG checkGetOrder(const MQGMO &gmo, const MQMD &md, MQLONG mdVersion);

} // namespace mqrig::qmgr::api
