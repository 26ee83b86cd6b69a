// The destinations of a distribution list that a handle has open.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "qmgr/core/logical_order.h"
#include "qmgr/objects/catalog.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

struct Destination {
    std::string name;
    std::string queueManager;
    objects::QueueHold hold;                    // none: it could not be opened
    Outcome outcome;                            // of the last call
    std::unique_ptr<LogicalOrder> logicalOrder; // of this destination
};

struct DistributionList {
    std::vector<Destination> destinations; // at least one
    bool opened = false;                   // by MQOPEN
};

} // namespace mqrig::qmgr::core
