#include "qmgr/core/dead_letter.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string_view>

#include "qmgr/core/groups.h"
#include "qmgr/core/md_extension.h"
#include "qmgr/core/system_put.h"
#include "qmgr/objects/object_name.h"

namespace mqrig::qmgr::core {
namespace {

MQDLH headerFor(Connection &connection, MQLONG reason, const ObjectName &destination, const MQMD &md)
{
    MQDLH header = {MQDLH_DEFAULT};
    header.Reason = reason;
    objects::fillField(header.DestQName, sizeof header.DestQName, destination.name);
    objects::fillField(header.DestQMgrName, sizeof header.DestQMgrName,
                       destination.queueManager.empty() ? std::string_view(connection.store->queueManagerName())
                                                        : destination.queueManager);
    header.Encoding = md.Encoding;
    header.CodedCharSetId = md.CodedCharSetId;
    std::memcpy(header.Format, md.Format, sizeof header.Format);
    MQMD origin{};
    setQueueManagerOrigin(connection, origin);
    header.PutApplType = origin.PutApplType;
    std::memcpy(header.PutApplName, origin.PutApplName, sizeof header.PutApplName);
    std::memcpy(header.PutDate, origin.PutDate, sizeof header.PutDate);
    std::memcpy(header.PutTime, origin.PutTime, sizeof header.PutTime);
    return header;
}

// What follows is a header of the queue manager's.
void describeHeader(Connection &connection, const char *format, MQMD &md)
{
    md.Encoding = MQENC_NATIVE;
    md.CodedCharSetId = connection.queueManager().codedCharSetId;
    std::memcpy(md.Format, format, sizeof md.Format);
}

Outcome putOnOwnQueue(Connection &connection, UnitOfWork &unit, const ObjectName &destination,
                      store::NewMessage &message)
{
    const objects::FoundQueue found = resolveForPut(connection, destination);
    if (found.outcome.failed()) return found.outcome;
    return putByQueueManager(connection, unit, found.hold, message);
}

} // namespace

Outcome putOnDeadLetterQueue(Connection &connection, UnitOfWork &unit, MQLONG reason, const ObjectName &destination,
                             const store::NewMessage &message)
{
    const std::string_view name = objects::fieldText(connection.queueManager().deadLetterQueue);
    const objects::FoundQueue found = connection.catalog.queue(name);
    if (found.outcome.failed()) return found.outcome;

    store::NewMessage dead = message;
    MQMD &md = dead.header.md;
    // With a header in front it is no member of its group any more: an extension says what it was.
    const MQMDE extension = extensionOf(md);
    const bool extended = !fitsVersion1(md);
    if (extended) describeHeader(connection, MQFMT_MD_EXTENSION, md);
    const MQDLH header = headerFor(connection, reason, destination, md);
    describeHeader(connection, MQFMT_DEAD_LETTER_HEADER, md);
    makeSingle(md);
    md.MsgFlags = MQMF_NONE;

    // Properties stay in front of everything.
    const std::size_t properties = message.header.coreLength;
    const std::size_t length = message.body.size() + sizeof header + (extended ? sizeof extension : 0);
    const auto body = std::make_unique_for_overwrite<std::byte[]>(length);
    std::byte *at = std::copy_n(message.body.begin(), properties, body.get());
    std::memcpy(at, &header, sizeof header);
    at += sizeof header;
    if (extended) {
        std::memcpy(at, &extension, sizeof extension);
        at += sizeof extension;
    }
    std::copy(message.body.begin() + static_cast<std::ptrdiff_t>(properties), message.body.end(), at);
    dead.body = {body.get(), length};
    return putByQueueManager(connection, unit, found.hold, dead);
}

Outcome putOrDeadLetter(Connection &connection, UnitOfWork &unit, const ObjectName &destination,
                        store::NewMessage &message)
{
    const Outcome put = putOnOwnQueue(connection, unit, destination, message);
    if (!put.failed()) return put;
    if ((message.header.md.Report & MQRO_DISCARD_MSG) != 0) return success();
    const Outcome saved = putOnDeadLetterQueue(connection, unit, put.Reason, destination, message);
    return saved.failed() ? put : success();
}

} // namespace mqrig::qmgr::core
