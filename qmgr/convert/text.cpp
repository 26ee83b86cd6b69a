#include "qmgr/convert/text.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <vector>

#include <iconv.h>

#include "qmgr/store/per_thread.h"

namespace mqrig::qmgr::convert {
namespace {

// A program converts between a few sets only; each converter holds an iconv descriptor and perhaps a table.
constexpr std::size_t keptConverters = 8;

constexpr std::byte newLine{0x15};  // EBCDIC
constexpr std::byte lineFeed{0x25}; // EBCDIC

const iconv_t none = reinterpret_cast<iconv_t>(-1); // NOLINT: iconv's own mark of a failure

// Reading through iconv changes nothing; its declaration wants a plain pointer all the same.
char *plain(const std::byte *bytes)
{
    return const_cast<char *>(reinterpret_cast<const char *>(bytes)); // NOLINT
}

const char *nameOf(const CharacterSet &set, const Representation &representation)
{
    return set.kind == SetKind::Unicode16 && representation.reversed() ? set.swapped : set.name;
}

void setBlank(const CharacterSet &set, const char *name, std::array<std::byte, 2> &blank)
{
    const std::byte value{static_cast<unsigned char>(set.ebcdic() ? 0x40 : 0x20)};
    const bool lowFirst = set.kind == SetKind::Unicode16 && std::string_view(name).ends_with("LE");
    if (set.kind == SetKind::Unicode16)
        blank[lowFirst ? 0 : 1] = value;
    else
        blank[0] = value;
}

} // namespace

TextConverter::~TextConverter()
{
    if (library_ != nullptr) iconv_close(library_);
}

bool TextConverter::open(const CharacterSet &source, const char *sourceName, const CharacterSet &target,
                         const char *targetName)
{
    source_ = &source;
    target_ = &target;
    sourceName_ = sourceName;
    targetName_ = targetName;
    const iconv_t library = iconv_open(targetName, sourceName);
    if (library == none) return false;
    library_ = library;
    setBlank(source, sourceName, sourceBlank_);
    setBlank(target, targetName, targetBlank_);
    if (source.singleByte() && target.kind != SetKind::Stateful) fillTable();
    return true;
}

void TextConverter::fillTable()
{
    table_ = std::make_unique<Characters>();
    for (std::size_t i = 0; i < table_->size(); ++i) {
        Character &character = (*table_)[i];
        auto byte = static_cast<std::byte>(i);
        if (byte == newLine && source_->ebcdic() && !target_->ebcdic()) byte = lineFeed;
        char *from = plain(&byte);
        char *to = reinterpret_cast<char *>(character.bytes.data());
        std::size_t fromLeft = 1;
        std::size_t toLeft = character.bytes.size();
        iconv(library_, nullptr, nullptr, nullptr, nullptr);
        const bool known = iconv(library_, &from, &fromLeft, &to, &toLeft) == 0;
        character.size = static_cast<std::uint8_t>(known ? character.bytes.size() - toLeft : 0);
    }
}

bool TextConverter::knowsAll(std::span<const std::byte> from) const
{
    return std::all_of(from.begin(), from.end(),
                       [this](std::byte byte) { return (*table_)[std::to_integer<std::size_t>(byte)].size != 0; });
}

TextResult TextConverter::byTable(std::span<const std::byte> from, std::span<std::byte> to) const
{
    const Character *table = table_->data();
    const std::byte *in = from.data();
    const std::byte *const end = in + from.size();
    std::byte *out = to.data();
    std::size_t room = to.size();
    TextEnd stopped = TextEnd::Whole;
    for (; in != end; ++in) {
        const Character &character = table[static_cast<unsigned char>(*in)];
        const std::size_t size = character.size;
        if (size == 0 || size > room) {
            stopped = size == 0 ? TextEnd::Invalid : TextEnd::NoRoom;
            break;
        }
        *out = character.bytes[0];
        if (size != 1) std::memcpy(out, character.bytes.data(), size);
        out += size;
        room -= size;
    }
    return {stopped, static_cast<std::size_t>(in - from.data()), to.size() - room};
}

TextResult TextConverter::byLibrary(std::span<const std::byte> from, std::span<std::byte> to)
{
    // A stateful text ends with a shift back: its byte must not be used by the characters.
    const std::size_t kept = target_->kind == SetKind::Stateful && !to.empty() ? 1 : 0;
    char *in = plain(from.data());
    std::size_t inLeft = from.size();
    char *out = reinterpret_cast<char *>(to.data());
    std::size_t outLeft = to.size() - kept;
    TextResult result;
    iconv(library_, nullptr, nullptr, nullptr, nullptr);
    const std::size_t replaced = iconv(library_, &in, &inLeft, &out, &outLeft);
    if (replaced == std::numeric_limits<std::size_t>::max())
        result.end = errno == E2BIG ? TextEnd::NoRoom : errno == EINVAL ? TextEnd::Cut : TextEnd::Invalid;
    else if (replaced != 0)
        result.end = TextEnd::Invalid;
    outLeft += kept;
    // The shift back, or a letter that waited for its accent.
    if (iconv(library_, nullptr, nullptr, &out, &outLeft) == std::numeric_limits<std::size_t>::max() &&
        result.end == TextEnd::Whole)
        result.end = TextEnd::NoRoom;
    result.read = from.size() - inLeft;
    result.written = to.size() - outLeft;
    return result;
}

TextResult TextConverter::convert(std::span<const std::byte> from, std::span<std::byte> to)
{
    if (from.empty()) return {};
    return table_ ? byTable(from, to) : byLibrary(from, to);
}

TextConverter::Found TextConverter::between(const Representation &source, const Representation &target)
{
    auto &kept = store::PerThread<std::vector<std::unique_ptr<TextConverter>>>::get();
    const CharacterSet *sourceSet = findCharacterSet(source.ccsid);
    if (sourceSet == nullptr) return {nullptr, MQRC_SOURCE_CCSID_ERROR};
    const CharacterSet *targetSet = findCharacterSet(target.ccsid);
    if (targetSet == nullptr) return {nullptr, MQRC_TARGET_CCSID_ERROR};
    const char *sourceName = nameOf(*sourceSet, source);
    const char *targetName = nameOf(*targetSet, target);

    const auto same = [&](const std::unique_ptr<TextConverter> &converter) {
        return converter->source_ == sourceSet && converter->target_ == targetSet &&
               converter->sourceName_ == sourceName && converter->targetName_ == targetName;
    };
    if (const auto found = std::find_if(kept.begin(), kept.end(), same); found != kept.end())
        return {found->get(), MQRC_NONE};

    std::unique_ptr<TextConverter> made(new TextConverter);
    if (!made->open(*sourceSet, sourceName, *targetSet, targetName)) {
        // A system without the tables of one of them.
        TextConverter alone;
        const CharacterSet &unicode = *findCharacterSet(1208);
        const bool sourceThere = alone.open(*sourceSet, sourceName, unicode, unicode.name);
        return {nullptr, sourceThere ? MQRC_TARGET_CCSID_ERROR : MQRC_SOURCE_CCSID_ERROR};
    }
    if (kept.size() == keptConverters) kept.erase(kept.begin());
    kept.push_back(std::move(made));
    return {kept.back().get(), MQRC_NONE};
}

Outcome text(std::string_view from, const Representation &source, const Representation &target, std::string &to)
{
    const TextConverter::Found found = TextConverter::between(source, target);
    if (found.converter == nullptr) return failure(found.reason);
    std::string converted(mostAfterConversion(from.size()), '\0');
    const TextResult result =
        found.converter->convert(std::as_bytes(std::span(from)), std::as_writable_bytes(std::span(converted)));
    if (result.end != TextEnd::Whole) return failure(MQRC_NOT_CONVERTED);
    converted.resize(result.written);
    to = std::move(converted);
    return success();
}

} // namespace mqrig::qmgr::convert
