#include <cstddef>
#include <span>
#include <utility>

#include "qmgr/api/api.h"
#include "qmgr/api/follow_options.h"
#include "qmgr/api/get_options.h"
#include "qmgr/api/structures.h"
#include "qmgr/convert/message.h"
#include "qmgr/core/connections.h"
#include "qmgr/core/delivery.h"
#include "qmgr/core/events.h"
#include "qmgr/core/get.h"
#include "qmgr/core/message_handles.h"
#include "qmgr/objects/object_name.h"

using namespace mqrig::qmgr;

namespace {

// MQGMO_CONVERT: `wanted` is the descriptor as the program gave it.
Outcome convertGot(const MQMD &wanted, MQLONG options, MQLONG queueManagerCcsid, std::span<std::byte> buffer,
                   core::GotMessage &got)
{
    MQMD &md = got.header.md;
    const convert::Conversion conversion = convert::convertMessage(
        {md.Encoding, md.CodedCharSetId, md.Format, buffer, static_cast<std::size_t>(got.returnedLength),
         static_cast<std::size_t>(got.dataLength)},
        {{wanted.Encoding, wanted.CodedCharSetId}, queueManagerCcsid, (options & MQGMO_ACCEPT_TRUNCATED_MSG) != 0});
    md.Encoding = conversion.representation.encoding;
    md.CodedCharSetId = conversion.representation.ccsid;
    got.returnedLength = static_cast<MQLONG>(conversion.returned);
    got.dataLength = static_cast<MQLONG>(conversion.length);
    return conversion.reason == MQRC_NONE ? success() : warning(conversion.reason);
}

// No message is returned: nothing but the options is looked at.
Outcome unlock(core::Connection &connection, core::OpenObject &object, MQLONG options)
{
    if ((options & ~(MQGMO_UNLOCK | MQGMO_NO_SYNCPOINT)) != 0) return failure(MQRC_OPTIONS_ERROR);
    return core::unlockMessage(connection, object);
}

// Where options or the queue put properties elsewhere the handle is ignored.
bool usesHandle(const MQGMO &gmo, core::Connection &connection, core::OpenObject &object)
{
    if (gmo.MsgHandle == MQHM_NONE) [[likely]]
        return false;
    if ((gmo.Options & api::propertyOptions) != 0) return (gmo.Options & MQGMO_PROPERTIES_IN_HANDLE) != 0;
    const bool known = object.hold.queue != nullptr && !connection.catalog.refresh(object.hold).failed();
    return !known || object.hold.queue->propertyControl != MQPROP_FORCE_MQRFH2;
}

// The message has left its queue: for want of memory it would be lost here, so nothing is made, only moved.
void fillHandle(core::GotMessage &got, core::MessageHandle &handle) noexcept
{
    handle.md = got.header.md;
    if (got.unpacked) handle.properties = std::move(got.unpacked->forHandle);
}

Outcome get(MQHCONN Hconn, MQHOBJ Hobj, PMQVOID pMsgDesc, PMQVOID pGetMsgOpts, MQLONG bufferLength, PMQVOID pBuffer,
            PMQLONG pDataLength)
{
    const core::ConnectionUse use(Hconn);
    if (use.outcome().failed()) return use.outcome();
    core::OpenObject *object = use->handles.find(Hobj);
    if (object == nullptr) return failure(MQRC_HOBJ_ERROR);
    const MQLONG wrongGmo = api::checkGmo(pGetMsgOpts);
    if (wrongGmo == MQRC_NONE && (static_cast<const MQGMO *>(pGetMsgOpts)->Options & MQGMO_UNLOCK) != 0)
        return unlock(*use, *object, static_cast<const MQGMO *>(pGetMsgOpts)->Options);
    if (pMsgDesc != nullptr)
        if (const MQLONG reason = api::checkMd(pMsgDesc)) return failure(reason);
    if (wrongGmo != MQRC_NONE) return failure(wrongGmo);
    if (bufferLength < 0) return failure(MQRC_BUFFER_LENGTH_ERROR);
    if (pBuffer == nullptr && bufferLength > 0) return failure(MQRC_BUFFER_ERROR);
    if (pDataLength == nullptr) return failure(MQRC_DATA_LENGTH_ERROR);

    const MQGMO gmo = api::loadGmo(pGetMsgOpts);
    const MQLONG mdVersion = pMsgDesc != nullptr ? static_cast<const MQMD *>(pMsgDesc)->Version : MQMD_VERSION_2;
    if (const MQLONG reason = api::checkGetOptions(gmo, mdVersion)) return failure(reason);
    if (const MQLONG reason = api::checkToFollow(*use, gmo)) return failure(reason);
    core::MessageHandleUse handle;
    if (usesHandle(gmo, *use, *object)) [[unlikely]] {
        handle = core::MessageHandleUse(Hconn, &*use, gmo.MsgHandle);
        if (handle.outcome().failed()) return handle.outcome();
    }
    // A get into a message handle may come without a descriptor: then the handle's says what is wanted.
    MQMD md;
    if (pMsgDesc != nullptr) [[likely]]
        api::loadMd(pMsgDesc, md);
    else if (handle)
        md = handle->md;
    else
        return failure(MQRC_MD_ERROR);
    if (const MQLONG reason = api::checkGetOrder(gmo, md, mdVersion)) return failure(reason);
    if (handle) handle->clear();

    core::GetRequest request{gmo.Options,
                             gmo.WaitInterval,
                             core::Selection(gmo.MatchOptions, md, gmo.MsgToken),
                             {static_cast<std::byte *>(pBuffer), static_cast<std::size_t>(bufferLength)},
                             static_cast<bool>(handle)};
    if (mdVersion < MQMD_VERSION_2) request.extensionCcsid = use->queueManager().codedCharSetId;
    core::GotMessage got;
    Outcome outcome = core::getMessage(*use, *object, request, got);
    if (outcome.failed()) {
        core::callEvent(*use, outcome, *object);
        return outcome;
    }
    if ((gmo.Options & MQGMO_CONVERT) != 0 && outcome.Reason != MQRC_TRUNCATED_MSG_FAILED)
        if (const Outcome converted =
                convertGot(md, gmo.Options, use->queueManager().codedCharSetId, request.buffer, got);
            !converted.ok())
            outcome = converted;

    if (handle) [[unlikely]]
        fillHandle(got, *handle);
    const store::MessageToken token = store::tokenOfKey(got.key);
    if (pMsgDesc != nullptr) [[likely]]
        api::storeMd(got.header.md, pMsgDesc);
    api::storeGmo({object->hold.queue->name.data(), token.data(), got.returnedLength, got.header.md.MsgFlags},
                  pGetMsgOpts);
    *pDataLength = got.dataLength;
    return outcome;
}

} // namespace

MQI_EXPORT void MQENTRY MQGET(MQHCONN Hconn, MQHOBJ Hobj, PMQVOID pMsgDesc, PMQVOID pGetMsgOpts, MQLONG BufferLength,
                              PMQVOID pBuffer, PMQLONG pDataLength, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    api::answerFollowing(Hconn, pCompCode, pReason,
                         [=] { return get(Hconn, Hobj, pMsgDesc, pGetMsgOpts, BufferLength, pBuffer, pDataLength); });
}
