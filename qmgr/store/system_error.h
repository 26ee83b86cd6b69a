// What a failed call of the system means to a caller of the MQI: the one place that says so.
//
//   MQRC_STORAGE_NOT_AVAILABLE  no space on the disk
//   MQRC_NOT_AUTHORIZED         the files are another user's, or are not to be written to
//   MQRC_RESOURCE_PROBLEM       this process lacks memory, descriptors or locks, or a read or write failed: the files
//   may
//                               be as good as ever
//   MQRC_UNEXPECTED_ERROR       anything else: the files are not what they should be
#pragma once

#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::store {

[[nodiscard]] Outcome outcomeOfSystem(int error); // an errno

} // namespace mqrig::qmgr::store
