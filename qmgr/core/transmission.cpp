#include "qmgr/core/transmission.h"

#include <algorithm>
#include <cstring>

#include "qmgr/core/groups.h"
#include "qmgr/core/md_extension.h"
#include "qmgr/core/system_put.h"
#include "qmgr/objects/object_name.h"

namespace mqrig::qmgr::core {
namespace {

static_assert(sizeof(MQMD1) == MQMD_LENGTH_1);

template <class Field>
void copyField(Field &to, const Field &from)
{
    std::memcpy(to, from, sizeof to);
}

// The data that follows is a header of the queue manager's.
template <class Descriptor>
void describeHeader(Descriptor &md, const char *format, MQLONG ccsid)
{
    md.Encoding = MQENC_NATIVE;
    md.CodedCharSetId = ccsid;
    std::memcpy(md.Format, format, sizeof md.Format);
}

// The descriptor that the transmission queue's message has itself, made of the program's.
void makeSeparate(Connection &connection, MQMD &md)
{
    // Nobody is told of the arrival on, or the delivery from, a queue that the message only passes.
    md.Report &= ~MQRO_ACCEPT_UNSUP_IF_XMIT_MASK;
    copyField(md.CorrelId, md.MsgId);
    connection.newIdentifier(md.MsgId);
    md.BackoutCount = 0;
    setQueueManagerOrigin(connection, md);
    makeSingle(md);
    md.MsgFlags = MQMF_NONE;
}

std::byte *append(std::byte *at, const void *from, std::size_t length)
{
    if (length != 0) std::memcpy(at, from, length);
    return at + length;
}

} // namespace

TransmissionMessage::TransmissionMessage(Connection &connection, const objects::QueueDefinition &queue,
                                         const store::NewMessage &original, const DistributionHeader *distribution)
    : message_(original)
{
    // Headers are made from the data outwards, each describing what stands behind it.
    const MQLONG ccsid = connection.queueManager().codedCharSetId;
    MQMD &md = message_.header.md;
    const MQMDE extension = extensionOf(md);
    const bool extended = !fitsVersion1(md);
    if (extended) describeHeader(md, MQFMT_MD_EXTENSION, ccsid);
    const MQMD behindDistribution = md;
    if (distribution != nullptr) describeHeader(md, MQFMT_DIST_HEADER, ccsid);

    MQXQH header = {MQXQH_DEFAULT};
    const bool one = distribution == nullptr;
    objects::fillField(header.RemoteQName, sizeof header.RemoteQName, one ? objects::fieldText(queue.remoteQueue) : "");
    objects::fillField(header.RemoteQMgrName, sizeof header.RemoteQMgrName,
                       one ? objects::fieldText(queue.remoteQueueManager) : "");
    std::memcpy(&header.MsgDesc, &md, sizeof header.MsgDesc);
    header.MsgDesc.Version = MQMD_VERSION_1;

    makeSeparate(connection, md);
    describeHeader(md, MQFMT_XMIT_Q_HEADER, ccsid);

    const std::size_t properties = original.header.coreLength;
    const std::size_t length =
        original.body.size() + sizeof header + (one ? 0 : distribution->size()) + (extended ? sizeof extension : 0);
    body_ = std::make_unique_for_overwrite<std::byte[]>(length);
    std::byte *at = append(body_.get(), original.body.data(), properties);
    at = append(at, &header, sizeof header);
    if (!one) at = distribution->write(behindDistribution, at);
    if (extended) at = append(at, &extension, sizeof extension);
    append(at, original.body.data() + properties, original.body.size() - properties);
    message_.body = {body_.get(), length};
}

Outcome checkOwnHeader(const store::NewMessage &message)
{
    if (objects::fieldText(message.header.md.Format) != "MQXMIT") return success();
    MQXQH header;
    const std::size_t properties = message.header.coreLength;
    if (message.body.size() - properties < sizeof header) return failure(MQRC_XQH_ERROR);
    std::memcpy(&header, message.body.data() + properties, sizeof header);
    const bool whole =
        std::memcmp(header.StrucId, MQXQH_STRUC_ID, sizeof header.StrucId) == 0 && header.Version == MQXQH_VERSION_1;
    return whole ? success() : failure(MQRC_XQH_ERROR);
}

} // namespace mqrig::qmgr::core
