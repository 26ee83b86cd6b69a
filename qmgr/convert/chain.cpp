#include "qmgr/convert/chain.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

#include "qmgr/convert/headers.h"

namespace mqrig::qmgr::convert {
namespace {

constexpr std::string_view pcfFormats[] = {MQFMT_ADMIN, MQFMT_EVENT, MQFMT_PCF};

bool isPcf(std::string_view format)
{
    return std::find(std::begin(pcfFormats), std::end(pcfFormats), format) != std::end(pcfFormats);
}

// The reasons of encodings that are none, those of the source before those of the target.
MQLONG checkEncoding(MQLONG encoding, MQLONG integer, MQLONG decimal, MQLONG floating)
{
    const MQLONG integers = encoding & MQENC_INTEGER_MASK;
    if (integers != MQENC_INTEGER_NORMAL && integers != MQENC_INTEGER_REVERSED) return integer;
    if ((encoding & MQENC_DECIMAL_MASK) > MQENC_DECIMAL_REVERSED) return decimal;
    if ((encoding & MQENC_FLOAT_MASK) > MQENC_FLOAT_TNS) return floating;
    return MQRC_NONE;
}

MQLONG checkEncodings(MQLONG source, MQLONG target)
{
    if (const MQLONG reason = checkEncoding(source, MQRC_SOURCE_INTEGER_ENC_ERROR, MQRC_SOURCE_DECIMAL_ENC_ERROR,
                                            MQRC_SOURCE_FLOAT_ENC_ERROR))
        return reason;
    return checkEncoding(target, MQRC_TARGET_INTEGER_ENC_ERROR, MQRC_TARGET_DECIMAL_ENC_ERROR,
                         MQRC_TARGET_FLOAT_ENC_ERROR);
}

bool takesItsOwner(MQLONG ccsid)
{
    return ccsid == MQCCSI_INHERIT || ccsid == MQCCSI_UNDEFINED;
}

class Chain {
public:
    Chain(Piece &piece, const Representation &wanted, MQLONG ownCcsid)
        : piece_(piece), wanted_(wanted), own_{MQENC_NATIVE, ownCcsid}
    {
    }

    Walked walk(const Part &first)
    {
        Part part = first;
        for (bool isFirst = true;; isFirst = false) {
            if (!isFirst && piece_.position() == piece_.end()) return rest();
            Representation now = part.representation;
            const Header *header = findHeader(part.name());
            Part next;
            const Follows description = std::exchange(follows_, {}); // in the header in front
            const bool converted = header != nullptr ? convertOne(*header, part, now, next) : convertLast(part, now);
            if (isFirst) {
                walked_.representation = now;
                walked_.nothing = !converted && piece_.stop == Stop::Failed;
            }
            describe(description, now);
            if (!converted) {
                if (piece_.stop == Stop::Failed) keepRest();
                return walked_;
            }
            if (header == nullptr || header->nextAt == 0) return rest();
            part = next;
        }
    }

private:
    // The place of the description of the next part.
    struct Follows {
        bool known = false;
        std::size_t at = 0;
        Representation header; // in which the description is written
        MQLONG ccsid = 0;      // as it was read
    };

    // The header, in the wanted representation or, where its fields are too short for that, the queue manager's own.
    bool convertOne(const Header &header, const Part &part, Representation &now, Part &next)
    {
        const Piece::Mark begin = piece_.mark();
        bool converted = convertAs(header, part, wanted_, now, next);
        if (!converted && piece_.stop == Stop::Failed && piece_.reason == MQRC_CONVERTED_STRING_TOO_BIG &&
            wanted_ != own_) {
            piece_.rewind(begin);
            converted = convertAs(header, part, own_, now, next);
            if (converted) partial_ = true;
        }
        if (!converted && piece_.stop == Stop::Failed) rewindKeepingReason(begin);
        return converted;
    }

    bool convertAs(const Header &header, const Part &part, const Representation &target, Representation &now,
                   Part &next)
    {
        const std::size_t written = piece_.written();
        if (const MQLONG reason = checkEncodings(part.representation.encoding, target.encoding))
            return piece_.fail(reason);
        piece_.source = part.representation;
        piece_.target = target;
        if (header.nextAt != 0 && piece_.left() >= header.size) readNext(header, next);
        if (!convertHeader(piece_, header)) {
            if (piece_.stop != Stop::Failed) now = target;
            return false;
        }
        now = target;
        follows_ = {header.nextAt != 0, written + header.nextAt, target, next.representation.ccsid};
        if (takesItsOwner(next.representation.ccsid)) next.representation.ccsid = part.representation.ccsid;
        return true;
    }

    void readNext(const Header &header, Part &next) const
    {
        next.representation.encoding = piece_.numberAt(header.nextAt);
        next.representation.ccsid = piece_.numberAt(header.nextAt + sizeof(MQLONG));
        constexpr std::size_t behind = 2 * sizeof(MQLONG);
        const std::span<const std::byte> name = piece_.ahead(header.size).subspan(header.nextAt + behind);
        std::string format;
        static_cast<void>(text({reinterpret_cast<const char *>(name.data()), next.format.size()}, piece_.source,
                               {MQENC_NATIVE, 1208}, format));
        // A name that cannot be read is none.
        next.format.fill(' ');
        const std::size_t end = std::min({format.find('\0'), format.size(), next.format.size()});
        format.copy(next.format.data(), end);
    }

    // Text, PCF, or what nobody here knows.
    bool convertLast(const Part &part, Representation &now)
    {
        piece_.source = part.representation;
        piece_.target = wanted_;
        const Piece::Mark begin = piece_.mark();
        bool converted = false;
        if (part.representation == wanted_)
            converted = piece_.bytes(piece_.end() - piece_.position());
        else if (part.name() == std::string_view(MQFMT_STRING))
            converted = piece_.string(piece_.end() - piece_.position());
        else if (!isPcf(part.name()))
            piece_.fail(MQRC_FORMAT_ERROR);
        else if (const MQLONG reason = checkEncodings(part.representation.encoding, wanted_.encoding))
            piece_.fail(reason);
        else
            converted = convertPcf(piece_, piece_.end());
        if (piece_.stop == Stop::Failed)
            rewindKeepingReason(begin);
        else
            now = wanted_;
        return converted;
    }

    // Tells how a part is written now.
    void describe(const Follows &description, const Representation &now)
    {
        if (!description.known) return;
        const bool inherits = takesItsOwner(description.ccsid) && now.ccsid == description.header.ccsid;
        if (!inherits) piece_.patch(description.at + sizeof(MQLONG), now.ccsid, description.header);
        piece_.patch(description.at, now.encoding, description.header);
    }

    void rewindKeepingReason(const Piece::Mark &begin)
    {
        const MQLONG reason = piece_.reason;
        piece_.rewind(begin);
        piece_.fail(reason);
    }

    // The part that failed and all behind it, as they are.
    void keepRest()
    {
        walked_.reason = piece_.reason;
        if (walked_.nothing) return;
        piece_.stop = Stop::Not;
        piece_.bytes(piece_.end() - piece_.position());
    }

    // What stands behind the last part, if anything does.
    Walked rest()
    {
        piece_.bytes(piece_.end() - piece_.position());
        if (partial_) walked_.reason = MQRC_PARTIALLY_CONVERTED;
        return walked_;
    }

    Piece &piece_;
    Representation wanted_;
    Representation own_;
    Follows follows_;
    Walked walked_;
    bool partial_ = false;
};

} // namespace

Walked convertChain(Piece &piece, const Part &first, const Representation &wanted, MQLONG ownCcsid)
{
    return Chain(piece, wanted, ownCcsid).walk(first);
}

} // namespace mqrig::qmgr::convert
