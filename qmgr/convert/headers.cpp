#include "qmgr/convert/headers.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>

#include "cmqcfc.h"

namespace mqrig::qmgr::convert {
namespace {

constexpr Field textOf(std::uint16_t size)
{
    return {FieldKind::Text, size};
}
constexpr Field numbers(std::uint16_t count)
{
    return {FieldKind::Numbers, count};
}
constexpr Field bytesOf(std::uint16_t size)
{
    return {FieldKind::Bytes, size};
}

constexpr Field dlhFields[] = {textOf(4), numbers(2), textOf(48), textOf(48), numbers(2),
                               textOf(8), numbers(1), textOf(28), textOf(8),  textOf(8)};
constexpr Field xqhFields[] = {
    textOf(4),  numbers(1), textOf(48), textOf(48),                                        // its own
    textOf(4),  numbers(7), textOf(8),  numbers(2),  bytesOf(24), bytesOf(24), numbers(1), // the descriptor
    textOf(48), textOf(48), textOf(12), bytesOf(32), textOf(32),  numbers(1),  textOf(28), //
    textOf(8),  textOf(8),  textOf(4)};
constexpr Field mdeFields[] = {textOf(4), numbers(4), textOf(8), numbers(1), bytesOf(24), numbers(4)};
constexpr Field rfhFields[] = {textOf(4), numbers(4), textOf(8), numbers(1)};
constexpr Field rfh2Fields[] = {textOf(4), numbers(4), textOf(8), numbers(2)};
constexpr Field dhFields[] = {textOf(4), numbers(4), textOf(8), numbers(5)};
constexpr Field tmFields[] = {textOf(4),  numbers(1),  textOf(48),  textOf(48), textOf(64),
                              numbers(1), textOf(256), textOf(128), textOf(128)};

constexpr std::size_t sizeOf(std::span<const Field> fields)
{
    std::size_t size = 0;
    for (const Field &field : fields)
        size += field.kind == FieldKind::Numbers ? field.size * sizeof(MQLONG) : field.size;
    return size;
}
static_assert(sizeOf(dlhFields) == sizeof(MQDLH) && sizeOf(xqhFields) == sizeof(MQXQH) &&
              sizeOf(mdeFields) == sizeof(MQMDE) && sizeOf(rfhFields) == sizeof(MQRFH) &&
              sizeOf(rfh2Fields) == sizeof(MQRFH2) && sizeOf(dhFields) == sizeof(MQDH) &&
              sizeOf(tmFields) == sizeof(MQTM));

constexpr std::size_t lengthAt = offsetof(MQRFH2, StrucLength);
constexpr std::size_t nextAt = offsetof(MQRFH2, Encoding);
constexpr std::size_t afterDescriptor = offsetof(MQXQH, MsgDesc) + offsetof(MQMD1, Encoding);

constexpr Header headers[] = {
    {MQFMT_DEAD_LETTER_HEADER, MQDLH_STRUC_ID, 1, 1, sizeof(MQDLH), 0, offsetof(MQDLH, Encoding), Tail::None,
     dlhFields},
    {MQFMT_XMIT_Q_HEADER, MQXQH_STRUC_ID, 1, 1, sizeof(MQXQH), 0, afterDescriptor, Tail::None, xqhFields},
    {MQFMT_MD_EXTENSION, MQMDE_STRUC_ID, 2, 2, sizeof(MQMDE), lengthAt, nextAt, Tail::None, mdeFields},
    {MQFMT_RF_HEADER, MQRFH_STRUC_ID, 1, 1, sizeof(MQRFH), lengthAt, nextAt, Tail::Text, rfhFields},
    {MQFMT_RF_HEADER_2, MQRFH_STRUC_ID, 2, 2, sizeof(MQRFH2), lengthAt, nextAt, Tail::NameValuePairs, rfh2Fields},
    {MQFMT_DIST_HEADER, MQDH_STRUC_ID, 1, 1, sizeof(MQDH), lengthAt, nextAt, Tail::Records, dhFields},
    {MQFMT_EMBEDDED_PCF, MQEPH_STRUC_ID, 1, 1, sizeof(MQRFH), lengthAt, nextAt, Tail::Pcf, rfhFields},
    {MQFMT_TRIGGER, MQTM_STRUC_ID, 1, 1, sizeof(MQTM), 0, 0, Tail::None, tmFields},
};

bool convertFields(Piece &piece, std::span<const Field> fields)
{
    for (const Field &field : fields) {
        const bool converted = field.kind == FieldKind::Text      ? piece.field(field.size)
                               : field.kind == FieldKind::Numbers ? piece.numbers(field.size)
                                                                  : piece.bytes(field.size);
        if (!converted) return false;
    }
    return true;
}

// The data of a pair is Unicode that the header names itself, and stays in that set: only the order of two-byte
// characters follows the encoding.
bool convertPairs(Piece &piece, MQLONG nameValueCcsid, std::size_t end)
{
    const CharacterSet *set = findCharacterSet(nameValueCcsid);
    const bool twoBytes = set != nullptr && set->kind == SetKind::Unicode16;
    while (piece.position() < end) {
        const std::size_t left = end - piece.position();
        if (left < sizeof(MQLONG)) return piece.fail(MQRC_FORMAT_ERROR);
        if (piece.left() < sizeof(MQLONG)) return piece.endsEarly();
        const MQLONG length = piece.numberAt(0);
        if (length < 0 || static_cast<std::size_t>(length) > left - sizeof(MQLONG) || (twoBytes && length % 2 != 0))
            return piece.fail(MQRC_FORMAT_ERROR);
        const auto size = static_cast<std::size_t>(length);
        if (!piece.numbers(1) || !(twoBytes ? piece.halfNumbers(size / 2) : piece.bytes(size))) return false;
    }
    return true;
}

constexpr Field objectFields[] = {textOf(MQ_Q_NAME_LENGTH), textOf(MQ_Q_MGR_NAME_LENGTH)};

struct FlaggedField {
    MQLONG flag;
    Field field;
};
constexpr FlaggedField putFields[] = {
    {MQPMRF_MSG_ID, bytesOf(24)},  {MQPMRF_CORREL_ID, bytesOf(24)},        {MQPMRF_GROUP_ID, bytesOf(24)},
    {MQPMRF_FEEDBACK, numbers(1)}, {MQPMRF_ACCOUNTING_TOKEN, bytesOf(32)},
};

// Bytes up to the place where records begin.
bool advanceTo(Piece &piece, std::size_t place)
{
    if (place < piece.position()) return piece.fail(MQRC_FORMAT_ERROR);
    return piece.bytes(place - piece.position());
}

bool convertArray(Piece &piece, std::size_t place, std::size_t count, std::span<const Field> fields, std::size_t end)
{
    const std::size_t each = sizeOf(fields);
    if (each == 0 || place > end || (end - place) / each < count) return piece.fail(MQRC_FORMAT_ERROR);
    if (!advanceTo(piece, place)) return false;
    for (; count != 0; --count)
        if (!convertFields(piece, fields)) return false;
    return true;
}

bool convertRecords(Piece &piece, const MQDH &header, std::size_t begin, std::size_t end)
{
    if (header.RecsPresent < 0 || header.ObjectRecOffset < 0 || header.PutMsgRecOffset < 0)
        return piece.fail(MQRC_FORMAT_ERROR);
    const auto count = static_cast<std::size_t>(header.RecsPresent);
    std::array<Field, std::size(putFields)> ofPut{};
    std::size_t used = 0;
    for (const FlaggedField &flagged : putFields)
        if ((header.PutMsgRecFields & flagged.flag) != 0) ofPut[used++] = flagged.field;

    const auto objects = [&] {
        const std::size_t place = begin + static_cast<std::size_t>(header.ObjectRecOffset);
        return header.ObjectRecOffset == 0 || convertArray(piece, place, count, objectFields, end);
    };
    const auto puts = [&] {
        const std::size_t place = begin + static_cast<std::size_t>(header.PutMsgRecOffset);
        const std::span<const Field> fields = std::span(ofPut).first(used);
        return header.PutMsgRecOffset == 0 || used == 0 || convertArray(piece, place, count, fields, end);
    };
    const bool objectsFirst = header.ObjectRecOffset <= header.PutMsgRecOffset || header.PutMsgRecOffset == 0;
    if (objectsFirst ? !objects() || !puts() : !puts() || !objects()) return false;
    return advanceTo(piece, end);
}

bool convertTail(Piece &piece, const Header &header, std::size_t begin, std::size_t written, std::size_t end,
                 const MQDH &asRead, MQLONG nameValueCcsid)
{
    switch (header.tail) {
    case Tail::None:
        return advanceTo(piece, end);
    case Tail::NameValuePairs:
        return convertPairs(piece, nameValueCcsid, end);
    case Tail::Records:
        return convertRecords(piece, asRead, begin, end);
    case Tail::Text:
        if (!piece.string(end - piece.position())) return false;
        break;
    case Tail::Pcf:
        if (!convertPcf(piece, end)) return false;
        break;
    }
    // The two that may have changed their length.
    piece.patch(written + header.lengthAt, static_cast<MQLONG>(piece.written() - written), piece.target);
    return true;
}

} // namespace

const Header *findHeader(std::string_view format)
{
    const auto *const found = std::find_if(std::begin(headers), std::end(headers),
                                           [&](const Header &header) { return header.format == format; });
    return found == std::end(headers) ? nullptr : found;
}

bool convertHeader(Piece &piece, const Header &header)
{
    const std::size_t begin = piece.position();
    const std::size_t written = piece.written();
    if (header.size > piece.end() - begin) return piece.fail(MQRC_FORMAT_ERROR);
    // As much of it as can be judged.
    if (piece.left() >= 2 * sizeof(MQLONG)) {
        const MQLONG version = piece.numberAt(offsetof(MQRFH2, Version));
        if (version < header.lowestVersion || version > header.highestVersion || !piece.textIs(0, header.strucId))
            return piece.fail(MQRC_FORMAT_ERROR);
    }
    if (piece.left() < header.size) return convertFields(piece, header.fields) && piece.endsEarly();

    std::size_t end = begin + header.size;
    if (header.lengthAt != 0) {
        const MQLONG length = piece.numberAt(header.lengthAt);
        if (length < 0 || static_cast<std::size_t>(length) < header.size ||
            static_cast<std::size_t>(length) > piece.end() - begin)
            return piece.fail(MQRC_FORMAT_ERROR);
        end = begin + static_cast<std::size_t>(length);
    }
    MQDH records{};
    if (header.tail == Tail::Records) {
        records.PutMsgRecFields = piece.numberAt(offsetof(MQDH, PutMsgRecFields));
        records.RecsPresent = piece.numberAt(offsetof(MQDH, RecsPresent));
        records.ObjectRecOffset = piece.numberAt(offsetof(MQDH, ObjectRecOffset));
        records.PutMsgRecOffset = piece.numberAt(offsetof(MQDH, PutMsgRecOffset));
    }
    const MQLONG nameValueCcsid =
        header.tail == Tail::NameValuePairs ? piece.numberAt(offsetof(MQRFH2, NameValueCCSID)) : 0;
    return convertFields(piece, header.fields) &&
           convertTail(piece, header, begin, written, end, records, nameValueCcsid);
}

} // namespace mqrig::qmgr::convert
