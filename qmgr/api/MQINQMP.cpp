#include <algorithm>
#include <cstring>

#include "qmgr/api/api.h"
#include "qmgr/api/option_table.h"
#include "qmgr/api/property_call.h"
#include "qmgr/properties/property_value.h"
#include "qmgr/properties/text_conversion.h"

using namespace mqrig::qmgr;
using properties::PropertySet;

namespace {

constexpr MQLONG moves = MQIMPO_INQ_NEXT | MQIMPO_INQ_PROP_UNDER_CURSOR;

// The parameters of the call.
struct Inquiry {
    void *pInqPropOpts;
    const void *pName;
    void *pPropDesc;
    PMQLONG pType;
    MQLONG valueLength;
    void *pValue;
    PMQLONG pDataLength;
};

MQLONG checkParameters(const Inquiry &inquiry)
{
    properties::Descriptor ignored;
    MQPD pd;
    if (const MQLONG reason = api::loadStructure(inquiry.pPropDesc, MQPD_STRUC_ID, MQRC_PD_ERROR, pd)) return reason;
    if (inquiry.pType == nullptr) return MQRC_PROPERTY_TYPE_ERROR;
    if (inquiry.valueLength < 0) return MQRC_BUFFER_LENGTH_ERROR;
    if (inquiry.pValue == nullptr && inquiry.valueLength > 0) return MQRC_BUFFER_ERROR;
    return inquiry.pDataLength == nullptr ? MQRC_DATA_LENGTH_ERROR : MQRC_NONE;
}

// Where the name is to be returned: null for nowhere.
struct NamePlace {
    char *bytes = nullptr;
    std::size_t size = 0;
};

MQLONG namePlace(const MQIMPO &impo, void *structure, NamePlace &place)
{
    const MQCHARV &text = impo.ReturnedName;
    if (text.VSPtr != nullptr && text.VSOffset != 0) return MQRC_IMPO_ERROR;
    if (text.VSPtr != nullptr) place.bytes = static_cast<char *>(text.VSPtr);
    if (text.VSOffset != 0) place.bytes = static_cast<char *>(structure) + text.VSOffset;
    // Size 0: the length tells how much room there is.
    const MQLONG size = text.VSBufSize == 0 ? text.VSLength : text.VSBufSize;
    if (place.bytes != nullptr && size < 0) return MQRC_IMPO_ERROR;
    place.size = static_cast<std::size_t>(std::max(size, 0));
    return MQRC_NONE;
}

// The property that is asked for, and the cursor of before.
struct Asked {
    MQLONG reason = MQRC_NONE;
    properties::Property property;
};

Asked ask(const api::PropertyCall &call, core::MessageHandle &handle, MQLONG options, const void *pName)
{
    const bool underCursor = (options & MQIMPO_INQ_PROP_UNDER_CURSOR) != 0;
    properties::NamePattern pattern;
    if (!underCursor) {
        std::string name;
        if (const MQLONG reason = api::loadName(call, pName, name)) return {reason, {}};
        if (const std::string_view field = properties::descriptorField(name); !field.empty()) {
            const properties::DescriptorField *found = properties::findDescriptorField(field);
            if (found == nullptr) return {MQRC_PROPERTY_NOT_AVAILABLE, {}};
            return {MQRC_NONE, properties::fieldOf(handle.md, *found)};
        }
        if (const MQLONG reason = properties::NamePattern::parse(name, pattern)) return {reason, {}};
    }
    const auto move = underCursor
                          ? PropertySet::Move::Stay
                          : ((options & MQIMPO_INQ_NEXT) != 0 ? PropertySet::Move::Next : PropertySet::Move::First);
    const properties::Property *found = handle.properties.inquire(pattern, move);
    if (found == nullptr) return {MQRC_PROPERTY_NOT_AVAILABLE, {}};
    return {MQRC_NONE, *found};
}

// Writes what the program gets of name and value; the reason why something did not fit.
class Answer {
public:
    Answer(const Inquiry &inquiry, MQIMPO &impo, const NamePlace &name) : inquiry_(inquiry), impo_(impo), place_(name)
    {
    }

    MQLONG write(const properties::Property &property, const std::string &name, const properties::TextForm &nameForm)
    {
        const bool lengthsOnly = (impo_.Options & MQIMPO_QUERY_LENGTH) != 0;
        *inquiry_.pType = property.type;
        *inquiry_.pDataLength = static_cast<MQLONG>(property.value.size());
        api::storeDescriptor(property.descriptor, inquiry_.pPropDesc);
        impo_.ReturnedEncoding = property.form.encoding;
        impo_.ReturnedCCSID = property.type == MQTYPE_STRING ? property.form.ccsid : 0;
        std::memset(impo_.TypeString, 0, sizeof impo_.TypeString);
        property.typeName.copy(impo_.TypeString, sizeof impo_.TypeString);

        if (place_.bytes != nullptr) {
            impo_.ReturnedName.VSLength = static_cast<MQLONG>(name.size());
            impo_.ReturnedName.VSCCSID = nameForm.ccsid;
            if (!lengthsOnly && name.size() > place_.size) return MQRC_PROPERTY_NAME_TOO_BIG;
            if (!lengthsOnly) name.copy(place_.bytes, place_.size);
        }
        if (lengthsOnly) return MQRC_NONE;
        const auto room = static_cast<std::size_t>(inquiry_.valueLength);
        property.value.copy(static_cast<char *>(inquiry_.pValue), room);
        return property.value.size() > room ? MQRC_PROPERTY_VALUE_TOO_BIG : MQRC_NONE;
    }

private:
    const Inquiry &inquiry_;
    MQIMPO &impo_;
    const NamePlace &place_;
};

Outcome inquire(MQHCONN Hconn, MQHMSG Hmsg, const Inquiry &inquiry)
{
    const api::PropertyCall call(Hconn);
    if (call.outcome().failed()) return call.outcome();
    const core::MessageHandleUse handle(Hconn, call.connection(), Hmsg);
    if (handle.outcome().failed()) return handle.outcome();
    MQIMPO impo;
    if (const MQLONG reason = api::loadOptions(inquiry.pInqPropOpts, MQIMPO_STRUC_ID, MQRC_IMPO_ERROR,
                                               api::OptionField::InquireProperty, impo))
        return failure(reason);
    if (api::severalOf(impo.Options, moves)) return failure(MQRC_OPTIONS_ERROR);
    if (const MQLONG reason = checkParameters(inquiry)) return failure(reason);
    NamePlace place;
    if (const MQLONG reason = namePlace(impo, inquiry.pInqPropOpts, place)) return failure(reason);
    const bool convertsType = (impo.Options & MQIMPO_CONVERT_TYPE) != 0 && *inquiry.pType != MQTYPE_AS_SET;
    const bool convertsValue = (impo.Options & MQIMPO_CONVERT_VALUE) != 0;
    if (convertsType && !properties::isType(*inquiry.pType)) return failure(MQRC_PROPERTY_TYPE_ERROR);

    const PropertySet::Cursor before = handle->properties.cursor();
    Asked asked = ask(call, *handle, impo.Options, inquiry.pName);
    if (asked.reason != MQRC_NONE) return failure(asked.reason);
    properties::Property &property = asked.property;
    if (convertsType) {
        if (const MQLONG reason = properties::convertType(property, *inquiry.pType, property)) {
            handle->properties.setCursor(before);
            *inquiry.pType = property.type;
            return failure(reason);
        }
    }

    Outcome outcome;
    if (!property.typeName.empty()) outcome = warning(MQRC_PROP_TYPE_NOT_SUPPORTED);
    const properties::TextForm wanted{call.resolvedCcsid(impo.RequestedCCSID), impo.RequestedEncoding};
    if (convertsValue) {
        if (properties::convertValue(wanted, property))
            property.form = wanted;
        else
            outcome = warning(MQRC_PROP_VALUE_NOT_CONVERTED);
    }
    std::string name(properties::toldName(property.name));
    properties::TextForm nameForm;
    if ((convertsValue || convertsType) && place.bytes != nullptr) {
        std::string converted;
        if (properties::convertText(name, {}, wanted, converted)) {
            name = std::move(converted);
            nameForm = wanted;
        } else if (outcome.ok()) {
            outcome = warning(MQRC_PROP_NAME_NOT_CONVERTED);
        }
    }
    const MQLONG tooBig = Answer(inquiry, impo, place).write(property, name, nameForm);
    std::memcpy(inquiry.pInqPropOpts, &impo, sizeof impo);
    return tooBig == MQRC_NONE ? outcome : failure(tooBig);
}

} // namespace

MQI_EXPORT void MQENTRY MQINQMP(MQHCONN Hconn, MQHMSG Hmsg, PMQVOID pInqPropOpts, PMQVOID pName, PMQVOID pPropDesc,
                                PMQLONG pType, MQLONG ValueLength, PMQVOID pValue, PMQLONG pDataLength,
                                PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    api::answer(pCompCode, pReason, [=] {
        return inquire(Hconn, Hmsg, {pInqPropOpts, pName, pPropDesc, pType, ValueLength, pValue, pDataLength});
    });
}
