#include <utility>

#include "qmgr/api/api.h"
#include "qmgr/api/option_table.h"
#include "qmgr/api/property_call.h"
#include "qmgr/properties/property_value.h"

using namespace mqrig::qmgr;
using properties::PropertySet;

namespace {

constexpr MQLONG places = MQSMPO_SET_PROP_UNDER_CURSOR | MQSMPO_SET_PROP_AFTER_CURSOR | MQSMPO_APPEND_PROPERTY |
                          MQSMPO_SET_PROP_BEFORE_CURSOR;

PropertySet::Place placeOf(MQLONG options)
{
    switch (options) {
    case MQSMPO_SET_PROP_UNDER_CURSOR:
        return PropertySet::Place::UnderCursor;
    case MQSMPO_SET_PROP_AFTER_CURSOR:
        return PropertySet::Place::AfterCursor;
    case MQSMPO_SET_PROP_BEFORE_CURSOR:
        return PropertySet::Place::BeforeCursor;
    case MQSMPO_APPEND_PROPERTY:
        return PropertySet::Place::Append;
    default:
        return PropertySet::Place::First;
    }
}

Outcome setDescriptorField(core::MessageHandle &handle, std::string_view name, const properties::Property &property)
{
    const properties::DescriptorField *field = properties::findDescriptorField(name);
    if (field == nullptr) return failure(MQRC_PROPERTY_NAME_ERROR);
    if (const MQLONG reason = properties::setField(handle.md, *field, property)) return failure(reason);
    handle.fieldsSet.set(properties::indexOf(*field));
    return success();
}

Outcome setProperty(MQHCONN Hconn, MQHMSG Hmsg, const void *pSetPropOpts, const void *pName, const void *pPropDesc,
                    const properties::GivenValue &given)
{
    const api::PropertyCall call(Hconn);
    if (call.outcome().failed()) return call.outcome();
    const core::MessageHandleUse handle(Hconn, call.connection(), Hmsg);
    if (handle.outcome().failed()) return handle.outcome();
    MQSMPO smpo;
    if (const MQLONG reason =
            api::loadOptions(pSetPropOpts, MQSMPO_STRUC_ID, MQRC_SMPO_ERROR, api::OptionField::SetProperty, smpo))
        return failure(reason);
    if (api::severalOf(smpo.Options, places)) return failure(MQRC_OPTIONS_ERROR);

    properties::Property property;
    std::string name;
    const PropertySet::Place place = placeOf(smpo.Options);
    // The property under the cursor has its name.
    if (place != PropertySet::Place::UnderCursor)
        if (const MQLONG reason = api::loadName(call, pName, name)) return failure(reason);
    const std::string_view field = properties::descriptorField(name);
    if (place != PropertySet::Place::UnderCursor && field.empty())
        if (const MQLONG reason = properties::canonicalName(name, handle->check, property.name)) return failure(reason);
    if (const MQLONG reason = api::loadDescriptor(pPropDesc, property.descriptor)) return failure(reason);
    properties::GivenValue value = given;
    value.form = {call.resolvedCcsid(smpo.ValueCCSID), smpo.ValueEncoding};
    if (const MQLONG reason = properties::takeValue(value, property)) return failure(reason);

    if (!field.empty()) return setDescriptorField(*handle, field, property);
    const MQLONG reason = handle->properties.set(std::move(property), place);
    return reason == MQRC_NONE ? success() : failure(reason);
}

} // namespace

MQI_EXPORT void MQENTRY MQSETMP(MQHCONN Hconn, MQHMSG Hmsg, PMQVOID pSetPropOpts, PMQVOID pName, PMQVOID pPropDesc,
                                MQLONG Type, MQLONG ValueLength, PMQVOID pValue, PMQLONG pCompCode,
                                PMQLONG pReason) noexcept
{
    api::answer(pCompCode, pReason, [=] {
        return setProperty(Hconn, Hmsg, pSetPropOpts, pName, pPropDesc, {Type, ValueLength, pValue, {}});
    });
}
