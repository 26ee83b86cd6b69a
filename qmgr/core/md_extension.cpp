#include "qmgr/core/md_extension.h"

#include <cstring>

#include "qmgr/core/context.h"

namespace mqrig::qmgr::core {
namespace {

constexpr MQMDE ordinary = {MQMDE_DEFAULT};

template <class Field>
void copyField(Field &to, const Field &from)
{
    std::memcpy(to, from, sizeof to);
}

// The first test is enough for all but the few messages that have one.
bool announcesExtension(const MQCHAR8 &given)
{
    if (std::memcmp(given, MQFMT_MD_EXTENSION, 6) != 0) [[likely]]
        return false;
    MQCHAR8 format;
    copyField(format, given);
    padField(format);
    return std::memcmp(format, MQFMT_MD_EXTENSION, sizeof format) == 0;
}

// Whether the queue manager can read it.
bool isOurs(const MQMD &md, MQLONG queueManagerCcsid)
{
    if ((md.Encoding & MQENC_INTEGER_MASK) != (MQENC_NATIVE & MQENC_INTEGER_MASK)) return false;
    const MQLONG ccsid = md.CodedCharSetId;
    return ccsid == MQCCSI_Q_MGR || ccsid == MQCCSI_INHERIT || ccsid == MQCCSI_APPL || ccsid == queueManagerCcsid;
}

bool isValid(const MQMDE &extension)
{
    return std::memcmp(extension.StrucId, MQMDE_STRUC_ID, sizeof extension.StrucId) == 0 &&
           extension.Version == MQMDE_VERSION_2 && extension.StrucLength == MQMDE_LENGTH_2 &&
           (extension.CodedCharSetId > 0 || extension.CodedCharSetId == MQCCSI_INHERIT);
}

} // namespace

bool fitsVersion1(const MQMD &md)
{
    return std::memcmp(md.GroupId, ordinary.GroupId, sizeof md.GroupId) == 0 &&
           md.MsgSeqNumber == ordinary.MsgSeqNumber && md.Offset == ordinary.Offset &&
           md.MsgFlags == ordinary.MsgFlags && md.OriginalLength == ordinary.OriginalLength;
}

MQMDE extensionOf(const MQMD &md)
{
    MQMDE extension = ordinary;
    extension.Encoding = md.Encoding;
    extension.CodedCharSetId = md.CodedCharSetId;
    copyField(extension.Format, md.Format);
    copyField(extension.GroupId, md.GroupId);
    extension.MsgSeqNumber = md.MsgSeqNumber;
    extension.Offset = md.Offset;
    extension.MsgFlags = md.MsgFlags;
    extension.OriginalLength = md.OriginalLength;
    return extension;
}

MQLONG takeExtension(MQLONG queueManagerCcsid, MQMD &md, std::span<const std::byte> &body)
{
    if (!announcesExtension(md.Format) || !isOurs(md, queueManagerCcsid)) return MQRC_NONE;
    MQMDE extension;
    if (body.size() < sizeof extension) return MQRC_MDE_ERROR;
    std::memcpy(&extension, body.data(), sizeof extension);
    const bool later = extension.Version > MQMDE_CURRENT_VERSION;
    if (later && std::memcmp(extension.StrucId, MQMDE_STRUC_ID, sizeof extension.StrucId) == 0) return MQRC_NONE;
    if (!isValid(extension)) return MQRC_MDE_ERROR;
    if (!fitsVersion1(md)) return MQRC_NONE;

    md.Encoding = extension.Encoding;
    if (extension.CodedCharSetId != MQCCSI_INHERIT) md.CodedCharSetId = extension.CodedCharSetId;
    copyField(md.Format, extension.Format);
    copyField(md.GroupId, extension.GroupId);
    md.MsgSeqNumber = extension.MsgSeqNumber;
    md.Offset = extension.Offset;
    md.MsgFlags = extension.MsgFlags;
    md.OriginalLength = extension.OriginalLength;
    body = body.subspan(sizeof extension);
    return MQRC_NONE;
}

} // namespace mqrig::qmgr::core
