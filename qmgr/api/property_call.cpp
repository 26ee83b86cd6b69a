#include "qmgr/api/property_call.h"

#include "qmgr/properties/text_conversion.h"

namespace mqrig::qmgr::api {
namespace {

// Bytes of the longest name in any character set, and one character more.
constexpr std::size_t mostNameBytes = 4 * std::size_t{MQ_MAX_PROPERTY_NAME_LENGTH + 1};
constexpr MQLONG copyOptions = MQCOPY_ALL | MQCOPY_FORWARD | MQCOPY_PUBLISH | MQCOPY_REPLY | MQCOPY_REPORT;

// Where the text lies; null if the structure does not say, or says it twice.
const char *addressOf(const MQCHARV &text, const void *structure)
{
    if (text.VSPtr != nullptr && text.VSOffset != 0) return nullptr;
    if (text.VSPtr != nullptr) return static_cast<const char *>(text.VSPtr);
    return text.VSOffset == 0 ? nullptr : static_cast<const char *>(structure) + text.VSOffset;
}

// Up to a zero character; too long a text has more bytes than any name.
std::size_t terminatedLength(const char *text, std::size_t unit)
{
    std::size_t length = 0;
    while (length <= mostNameBytes && (text[length] != 0 || (unit == 2 && text[length + 1] != 0)))
        length += unit;
    return length;
}

} // namespace

PropertyCall::PropertyCall(MQHCONN hconn) : hconn_(hconn)
{
    if (hconn == MQHC_UNASSOCIATED_HCONN) return;
    use_.emplace(hconn);
    outcome_ = use_->outcome();
}

MQLONG PropertyCall::applicationCcsid() const
{
    return use_ ? (*use_)->queueManager().codedCharSetId : properties::utf8Ccsid;
}

MQLONG PropertyCall::resolvedCcsid(MQLONG ccsid) const
{
    const bool own = ccsid == MQCCSI_APPL || ccsid == MQCCSI_Q_MGR || ccsid == MQCCSI_INHERIT;
    return own ? applicationCcsid() : ccsid;
}

MQLONG loadDescriptor(const void *from, properties::Descriptor &descriptor)
{
    MQPD pd;
    if (const MQLONG reason = loadStructure(from, MQPD_STRUC_ID, MQRC_PD_ERROR, pd)) return reason;
    if (pd.Options != MQPD_NONE) return MQRC_PD_ERROR;
    if (pd.Context != MQPD_NO_CONTEXT && pd.Context != MQPD_USER_CONTEXT) return MQRC_PD_ERROR;
    if ((pd.CopyOptions & ~copyOptions) != 0) return MQRC_PD_ERROR;
    descriptor = {pd.Support, pd.Context, pd.CopyOptions};
    return MQRC_NONE;
}

void storeDescriptor(const properties::Descriptor &descriptor, void *to)
{
    MQPD &pd = *static_cast<MQPD *>(to);
    pd.Support = descriptor.support;
    pd.Context = descriptor.context;
    pd.CopyOptions = descriptor.copyOptions;
}

MQLONG loadName(const PropertyCall &call, const void *charv, std::string &name)
{
    if (charv == nullptr) return MQRC_PROPERTY_NAME_ERROR;
    MQCHARV text;
    std::memcpy(&text, charv, sizeof text);
    if (text.VSLength <= 0 && text.VSLength != MQVS_NULL_TERMINATED) return MQRC_PROPERTY_NAME_LENGTH_ERR;
    const char *bytes = addressOf(text, charv);
    if (bytes == nullptr) return MQRC_PROPERTY_NAME_ERROR;
    const properties::TextForm form{call.resolvedCcsid(text.VSCCSID), MQENC_NATIVE};
    if (!properties::isKnownCharacterSet(form.ccsid)) return MQRC_SOURCE_CCSID_ERROR;
    const std::size_t length = text.VSLength == MQVS_NULL_TERMINATED
                                   ? terminatedLength(bytes, properties::terminatorSize(form))
                                   : static_cast<std::size_t>(text.VSLength);
    if (length > mostNameBytes) return MQRC_PROPERTY_NAME_LENGTH_ERR;
    return properties::convertText({bytes, length}, form, {}, name) ? MQRC_NONE : MQRC_PROPERTY_NAME_ERROR;
}

} // namespace mqrig::qmgr::api
