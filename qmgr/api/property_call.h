// What the calls on message handles and their properties have in common at the border.
//
// Their structures have one version each. Names come as MQCHARV, whose pointers and lengths are the program's: what
// can be seen to be wrong with them is refused before anything is read.
#pragma once

#include <cstddef>
#include <cstring>
#include <optional>
#include <string>

#include "cmqc.h"
#include "qmgr/api/option_table.h"
#include "qmgr/core/connections.h"
#include "qmgr/core/message_handles.h"
#include "qmgr/properties/property.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::api {

// The connection of a call that does without one where MQHC_UNASSOCIATED_HCONN is given.
class PropertyCall {
public:
    explicit PropertyCall(MQHCONN hconn);

    const Outcome &outcome() const { return outcome_; }
    core::Connection *connection() const { return use_ ? &**use_ : nullptr; }
    MQHCONN hconn() const { return hconn_; }
    // The character set meant by MQCCSI_APPL and its like.
    MQLONG applicationCcsid() const;
    MQLONG resolvedCcsid(MQLONG ccsid) const;

private:
    MQHCONN hconn_;
    std::optional<core::ConnectionUse> use_;
    Outcome outcome_;
};

// MQRC_NONE, or `error` for a null pointer, a wrong StrucId or Version.
template <class Structure>
MQLONG loadStructure(const void *from, const char *strucId, MQLONG error, Structure &structure)
{
    if (from == nullptr) return error;
    std::memcpy(&structure, from, sizeof(MQCHAR4) + sizeof(MQLONG)); // the rest is there only if these are right
    if (std::memcmp(structure.StrucId, strucId, sizeof structure.StrucId) != 0 || structure.Version != 1) return error;
    std::memcpy(static_cast<void *>(&structure), from, sizeof structure);
    return MQRC_NONE;
}

// The same for the options of a call, which it also checks.
template <class Structure>
MQLONG loadOptions(const void *from, const char *strucId, MQLONG error, OptionField field, Structure &structure)
{
    const MQLONG reason = loadStructure(from, strucId, error, structure);
    return reason != MQRC_NONE ? reason : checkOptions(field, structure.Options);
}

// Also refuses fields with values that the MQI has not: MQRC_PD_ERROR.
MQLONG loadDescriptor(const void *from, properties::Descriptor &descriptor);
void storeDescriptor(const properties::Descriptor &descriptor, void *to);

// The name in an MQCHARV that is a parameter of its own, in UTF-8. MQRC_NONE, MQRC_PROPERTY_NAME_ERROR,
// MQRC_PROPERTY_NAME_LENGTH_ERR, MQRC_SOURCE_CCSID_ERROR.
MQLONG loadName(const PropertyCall &call, const void *charv, std::string &name);

} // namespace mqrig::qmgr::api
