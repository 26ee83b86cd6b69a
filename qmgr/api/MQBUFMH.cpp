#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include "qmgr/api/api.h"
#include "qmgr/api/property_call.h"
#include "qmgr/api/structures.h"
#include "qmgr/properties/rfh2.h"

using namespace mqrig::qmgr;

namespace {

Outcome bufferToHandle(MQHCONN Hconn, MQHMSG Hmsg, const void *pBufMsgHOpts, void *pMsgDesc, MQLONG bufferLength,
                       void *pBuffer, PMQLONG pDataLength)
{
    const api::PropertyCall call(Hconn);
    if (call.outcome().failed()) return call.outcome();
    const core::MessageHandleUse handle(Hconn, call.connection(), Hmsg);
    if (handle.outcome().failed()) return handle.outcome();
    MQBMHO bmho;
    if (const MQLONG reason =
            api::loadOptions(pBufMsgHOpts, MQBMHO_STRUC_ID, MQRC_BMHO_ERROR, api::OptionField::BufferToHandle, bmho))
        return failure(reason);
    if (const MQLONG reason = api::checkMd(pMsgDesc)) return failure(reason);
    if (bufferLength < 0) return failure(MQRC_BUFFER_LENGTH_ERROR);
    if (pBuffer == nullptr && bufferLength > 0) return failure(MQRC_BUFFER_ERROR);
    if (pDataLength == nullptr) return failure(MQRC_DATA_LENGTH_ERROR);

    MQMD md;
    api::loadMd(pMsgDesc, md);
    const std::span<std::byte> buffer(static_cast<std::byte *>(pBuffer), static_cast<std::size_t>(bufferLength));
    std::vector<properties::Property> found;
    const properties::Split split = properties::splitProperties(buffer, properties::formOf(md), found);
    if (split.reason != MQRC_NONE) return failure(split.reason);

    properties::PropertySet all;
    for (properties::Property &property : found)
        all.add(std::move(property));
    *pDataLength = bufferLength;
    if ((bmho.Options & MQBMHO_DELETE_PROPERTIES) != 0 && split.changed()) {
        // What is left is never longer than what was there.
        const std::span<const std::byte> rest = buffer.subspan(split.restAt);
        std::memmove(buffer.data() + split.headers.size(), rest.data(), rest.size());
        std::copy(split.headers.begin(), split.headers.end(), buffer.data());
        *pDataLength = static_cast<MQLONG>(split.length(buffer.size()));
        properties::setForm(md, split.form);
        api::storeMd(md, pMsgDesc);
    }
    handle->clear();
    handle->properties = std::move(all);
    handle->md = md;
    return success();
}

} // namespace

MQI_EXPORT void MQENTRY MQBUFMH(MQHCONN Hconn, MQHMSG Hmsg, PMQVOID pBufMsgHOpts, PMQVOID pMsgDesc, MQLONG BufferLength,
                                PMQVOID pBuffer, PMQLONG pDataLength, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    api::answer(pCompCode, pReason, [=] {
        return bufferToHandle(Hconn, Hmsg, pBufMsgHOpts, pMsgDesc, BufferLength, pBuffer, pDataLength);
    });
}
