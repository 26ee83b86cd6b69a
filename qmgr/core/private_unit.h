// A unit of work of one call, apart from that of the connection: whatever goes together outside syncpoint, such as a
// message and the reports about it.
#pragma once

#include "qmgr/core/connection.h"
#include "qmgr/core/unit_of_work.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

class PrivateUnit {
public:
    explicit PrivateUnit(Connection &connection) : connection_(connection) {}
    // Backed out unless it was committed.
    ~PrivateUnit() { backOut(); }
    PrivateUnit(const PrivateUnit &) = delete;
    PrivateUnit &operator=(const PrivateUnit &) = delete;

    UnitOfWork &operator*() { return unit_; }
    UnitOfWork *operator->() { return &unit_; }

    // All of it or nothing. A unit that could not be stored is no unit to its caller, who asked for none:
    // MQRC_STORAGE_NOT_AVAILABLE.
    Outcome commit();
    void backOut() noexcept;

private:
    Connection &connection_;
    UnitOfWork unit_;
};

} // namespace mqrig::qmgr::core
