#include <algorithm>
#include <cstddef>
#include <vector>

#include "qmgr/api/api.h"
#include "qmgr/api/property_call.h"
#include "qmgr/api/structures.h"
#include "qmgr/properties/rfh2.h"

using namespace mqrig::qmgr;

namespace {

Outcome handleToBuffer(MQHCONN Hconn, MQHMSG Hmsg, const void *pMsgHBufOpts, const void *pName, void *pMsgDesc,
                       MQLONG bufferLength, void *pBuffer, PMQLONG pDataLength)
{
    const api::PropertyCall call(Hconn);
    if (call.outcome().failed()) return call.outcome();
    const core::MessageHandleUse handle(Hconn, call.connection(), Hmsg);
    if (handle.outcome().failed()) return handle.outcome();
    MQMHBO mhbo;
    if (const MQLONG reason =
            api::loadOptions(pMsgHBufOpts, MQMHBO_STRUC_ID, MQRC_MHBO_ERROR, api::OptionField::HandleToBuffer, mhbo))
        return failure(reason);
    if ((mhbo.Options & MQMHBO_PROPERTIES_IN_MQRFH2) == 0) return failure(MQRC_OPTIONS_ERROR);
    std::string name;
    properties::NamePattern pattern;
    if (const MQLONG reason = api::loadName(call, pName, name)) return failure(reason);
    if (const MQLONG reason = properties::NamePattern::parse(name, pattern)) return failure(reason);
    if (const MQLONG reason = api::checkMd(pMsgDesc)) return failure(reason);
    if (bufferLength < 0) return failure(MQRC_BUFFER_LENGTH_ERROR);
    if (pBuffer == nullptr && bufferLength > 0) return failure(MQRC_BUFFER_ERROR);
    if (pDataLength == nullptr) return failure(MQRC_DATA_LENGTH_ERROR);

    std::vector<const properties::Property *> wanted;
    for (const properties::Property &property : handle->properties)
        if (pattern.matches(property.name)) wanted.push_back(&property);
    if (wanted.empty()) return failure(MQRC_PROPERTY_NOT_AVAILABLE);

    MQMD md;
    api::loadMd(pMsgDesc, md);
    properties::DataForm form = properties::formOf(md);
    form.ccsid = call.resolvedCcsid(form.ccsid);
    const std::vector<std::byte> header = properties::makeHeader(wanted, form);
    *pDataLength = static_cast<MQLONG>(header.size());
    if (header.size() > static_cast<std::size_t>(bufferLength)) return failure(MQRC_PROPERTY_VALUE_TOO_BIG);
    std::copy(header.begin(), header.end(), static_cast<std::byte *>(pBuffer));
    properties::setForm(md, properties::withHeader(form));
    api::storeMd(md, pMsgDesc);
    if ((mhbo.Options & MQMHBO_DELETE_PROPERTIES) != 0) handle->properties.removeAll(pattern);
    return success();
}

} // namespace

MQI_EXPORT void MQENTRY MQMHBUF(MQHCONN Hconn, MQHMSG Hmsg, PMQVOID pMsgHBufOpts, PMQVOID pName, PMQVOID pMsgDesc,
                                MQLONG BufferLength, PMQVOID pBuffer, PMQLONG pDataLength, PMQLONG pCompCode,
                                PMQLONG pReason) noexcept
{
    api::answer(pCompCode, pReason, [=] {
        return handleToBuffer(Hconn, Hmsg, pMsgHBufOpts, pName, pMsgDesc, BufferLength, pBuffer, pDataLength);
    });
}
