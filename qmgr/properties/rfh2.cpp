#include "qmgr/properties/rfh2.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "qmgr/properties/folder.h"
#include "qmgr/properties/property_name.h"
#include "qmgr/properties/text_conversion.h"

namespace mqrig::qmgr::properties {
namespace {

static_assert(sizeof(MQRFH2) == MQRFH_STRUC_LENGTH_FIXED_2);
constexpr std::size_t fixedLength = sizeof(MQRFH2);
constexpr std::string_view rfh2Format(MQFMT_RF_HEADER_2, MQ_FORMAT_LENGTH);

bool isReversed(MQLONG encoding)
{
    const MQLONG integers = encoding & MQENC_INTEGER_MASK;
    if (integers == MQENC_INTEGER_NORMAL) return false;
    return integers == MQENC_INTEGER_REVERSED || std::endian::native == std::endian::little;
}

MQLONG inOrder(MQLONG number, MQLONG encoding)
{
    const bool swap = isReversed(encoding) != (std::endian::native == std::endian::little);
    return swap ? static_cast<MQLONG>(__builtin_bswap32(static_cast<std::uint32_t>(number))) : number;
}

MQLONG numberAt(std::span<const std::byte> bytes, std::size_t at, MQLONG encoding)
{
    MQLONG number = 0;
    std::memcpy(&number, bytes.data() + at, sizeof number);
    return inOrder(number, encoding);
}

void appendNumber(std::vector<std::byte> &bytes, MQLONG number, MQLONG encoding)
{
    const MQLONG ordered = inOrder(number, encoding);
    const auto *first = reinterpret_cast<const std::byte *>(&ordered);
    bytes.insert(bytes.end(), first, first + sizeof ordered);
}

void appendText(std::vector<std::byte> &bytes, std::string_view text)
{
    const auto *first = reinterpret_cast<const std::byte *>(text.data());
    bytes.insert(bytes.end(), first, first + text.size());
}

std::string_view textIn(std::span<const std::byte> bytes)
{
    return {reinterpret_cast<const char *>(bytes.data()), bytes.size()};
}

// Fields of a header are of single bytes. Where the character set of the message is not (Unicode), or is not known,
// they are ASCII.
std::string toField(std::string_view ascii, MQLONG ccsid)
{
    std::string field;
    if (convertText(ascii, {}, {ccsid, MQENC_NATIVE}, field) && field.size() == ascii.size()) return field;
    return std::string(ascii);
}

std::string fromField(std::string_view field, MQLONG ccsid)
{
    std::string ascii;
    if (convertText(field, {ccsid, MQENC_NATIVE}, {}, ascii) && ascii.size() == field.size()) return ascii;
    return std::string(field);
}

// The fixed part of a header, in native order and ASCII.
struct Fixed {
    std::size_t length; // of the whole header, a length that is there
    DataForm next;      // of the data behind
    MQLONG nameValueCcsid;
};

std::optional<Fixed> readFixed(std::span<const std::byte> bytes, const DataForm &form)
{
    if (bytes.size() < fixedLength) return std::nullopt;
    const auto number = [&](std::size_t at) { return numberAt(bytes, at, form.encoding); };
    const auto field = [&](std::size_t at, std::size_t length) {
        return fromField(textIn(bytes.subspan(at, length)), form.ccsid);
    };
    if (field(offsetof(MQRFH2, StrucId), sizeof(MQCHAR4)) != std::string_view(MQRFH_STRUC_ID, sizeof(MQCHAR4)))
        return std::nullopt;
    const MQLONG length = number(offsetof(MQRFH2, StrucLength));
    if (number(offsetof(MQRFH2, Version)) != MQRFH_VERSION_2 || length < static_cast<MQLONG>(fixedLength) ||
        static_cast<std::size_t>(length) > bytes.size())
        return std::nullopt;

    Fixed fixed{static_cast<std::size_t>(length), {}, number(offsetof(MQRFH2, NameValueCCSID))};
    fixed.next.encoding = number(offsetof(MQRFH2, Encoding));
    fixed.next.ccsid = number(offsetof(MQRFH2, CodedCharSetId));
    // Data behind the header has the header's own character set, if that is what it says, or if it says nothing.
    if (fixed.next.ccsid <= 0) fixed.next.ccsid = form.ccsid;
    const std::string format = field(offsetof(MQRFH2, Format), MQ_FORMAT_LENGTH);
    std::copy(format.begin(), format.end(), fixed.next.format.begin());
    return fixed;
}

// Writes the fields that say what stands behind the header.
void patchNext(std::span<std::byte> header, const DataForm &header_form, const DataForm &next)
{
    const auto number = [&](std::size_t at, MQLONG value) {
        const MQLONG ordered = inOrder(value, header_form.encoding);
        std::memcpy(header.data() + at, &ordered, sizeof ordered);
    };
    number(offsetof(MQRFH2, Encoding), next.encoding);
    number(offsetof(MQRFH2, CodedCharSetId), next.ccsid);
    const std::string format = toField({next.format.data(), next.format.size()}, header_form.ccsid);
    std::memcpy(header.data() + offsetof(MQRFH2, Format), format.data(), format.size());
}

// What is left of one header.
struct Remainder {
    std::vector<std::byte> folders; // with their lengths
    bool anyTaken = false;
    MQLONG reason = MQRC_NONE;
};

Remainder takeFolders(std::span<const std::byte> pairs, const DataForm &form, const Fixed &fixed,
                      std::vector<Property> &properties, std::size_t &allowance)
{
    Remainder remainder;
    const TextForm written{fixed.nameValueCcsid, form.encoding};
    const auto keep = [&](std::size_t bytes) {
        remainder.folders.insert(remainder.folders.end(), pairs.begin(),
                                 pairs.begin() + static_cast<std::ptrdiff_t>(bytes));
    };
    const auto fault = [&](MQLONG reason) {
        if (remainder.reason == MQRC_NONE) remainder.reason = reason;
    };
    while (!pairs.empty()) {
        const MQLONG length = pairs.size() < sizeof(MQLONG) ? -1 : numberAt(pairs, 0, form.encoding);
        if (length < 0 || static_cast<std::size_t>(length) > pairs.size() - sizeof(MQLONG)) {
            fault(MQRC_RFH_ERROR);
            keep(pairs.size());
            break;
        }
        const std::size_t pair = sizeof(MQLONG) + static_cast<std::size_t>(length);
        std::string text;
        const std::size_t before = properties.size();
        FolderKind kind = FolderKind::Malformed;
        if (convertText(textIn(pairs.subspan(sizeof(MQLONG), pair - sizeof(MQLONG))), written, {}, text))
            kind = readFolder(text, properties, allowance);
        if (kind == FolderKind::Properties) {
            remainder.anyTaken = true;
        } else {
            properties.resize(before);
            if (kind == FolderKind::Malformed) fault(MQRC_RFH_FORMAT_ERROR);
            keep(pair);
        }
        pairs = pairs.subspan(pair);
    }
    return remainder;
}

// The parts of a body that is being split.
class Splitter {
public:
    Splitter(std::span<const std::byte> body, const DataForm &form, std::vector<Property> &properties)
        : body_(body), form_(form), properties_(properties)
    {
        split_.form = form;
    }

    Split run()
    {
        bool anyTaken = false;
        for (bool going = form_.isRfh2(); going; going = going && form_.isRfh2()) {
            const auto fixed = readFixed(body_.subspan(split_.restAt), form_);
            if (!fixed) {
                fault(MQRC_RFH_ERROR);
                break;
            }
            const auto header = body_.subspan(split_.restAt, fixed->length);
            const Remainder remainder =
                takeFolders(header.subspan(fixedLength), form_, *fixed, properties_, allowance_);
            fault(remainder.reason);
            going = remainder.reason != MQRC_RFH_ERROR;
            anyTaken = anyTaken || remainder.anyTaken;
            if (remainder.anyTaken && remainder.folders.empty())
                leaveOut(*fixed);
            else
                keep(header, remainder);
            split_.restAt += fixed->length;
            form_ = fixed->next;
        }
        if (anyTaken) return std::move(split_);
        Split unchanged;
        unchanged.form = split_.form;
        unchanged.reason = split_.reason;
        return unchanged;
    }

private:
    void fault(MQLONG reason)
    {
        if (split_.reason == MQRC_NONE) split_.reason = reason;
    }

    void keep(std::span<const std::byte> header, const Remainder &remainder)
    {
        last_ = split_.headers.size();
        lastForm_ = form_;
        if (!remainder.anyTaken) {
            split_.headers.insert(split_.headers.end(), header.begin(), header.end());
            return;
        }
        split_.headers.insert(split_.headers.end(), header.begin(), header.begin() + fixedLength);
        split_.headers.insert(split_.headers.end(), remainder.folders.begin(), remainder.folders.end());
        const MQLONG length = inOrder(static_cast<MQLONG>(fixedLength + remainder.folders.size()), form_.encoding);
        std::memcpy(&split_.headers[*last_ + offsetof(MQRFH2, StrucLength)], &length, sizeof length);
    }

    // What stood in front of the header now stands in front of what is behind it.
    void leaveOut(const Fixed &fixed)
    {
        if (last_) {
            patchNext(std::span(split_.headers).subspan(*last_), lastForm_, fixed.next);
            return;
        }
        split_.form = fixed.next;
    }

    std::span<const std::byte> body_;
    DataForm form_; // of what comes next
    std::vector<Property> &properties_;
    std::size_t allowance_ = folderAllowance; // one for all headers
    Split split_;
    std::optional<std::size_t> last_; // where the last header that stays begins
    DataForm lastForm_;
};

} // namespace

bool DataForm::isRfh2() const
{
    return std::string_view(format.data(), format.size()) == rfh2Format;
}

DataForm formOf(const MQMD &md)
{
    DataForm form{md.Encoding, md.CodedCharSetId, {}};
    std::copy(std::begin(md.Format), std::end(md.Format), form.format.begin());
    return form;
}

void setForm(MQMD &md, const DataForm &form)
{
    md.Encoding = form.encoding;
    md.CodedCharSetId = form.ccsid;
    std::copy(form.format.begin(), form.format.end(), md.Format);
}

Split splitProperties(std::span<const std::byte> body, const DataForm &form, std::vector<Property> &properties)
{
    return Splitter(body, form, properties).run();
}

std::vector<std::byte> makeHeader(std::span<const Property *const> properties, const DataForm &data)
{
    std::vector<std::byte> header;
    if (properties.empty()) return header;
    std::vector<std::pair<std::string_view, std::vector<const Property *>>> folders;
    std::map<std::string_view, std::size_t> placeOf;
    for (const Property *property : properties) {
        const std::string_view folder = folderOf(property->name);
        const auto [place, isNew] = placeOf.try_emplace(folder, folders.size());
        if (isNew) folders.emplace_back(folder, std::vector<const Property *>());
        folders[place->second].second.push_back(property);
    }

    const auto number = [&](MQLONG value) { appendNumber(header, value, data.encoding); };
    appendText(header, toField({MQRFH_STRUC_ID, sizeof(MQCHAR4)}, data.ccsid));
    number(MQRFH_VERSION_2);
    number(0); // StrucLength
    number(data.encoding);
    number(data.ccsid);
    appendText(header, toField({data.format.data(), data.format.size()}, data.ccsid));
    number(MQRFH_NO_FLAGS);
    number(utf8Ccsid);
    std::string text;
    for (const auto &[folder, members] : folders) {
        text.clear();
        writeFolder(folder, members, text);
        text.resize((text.size() + 3) / 4 * 4, ' ');
        number(static_cast<MQLONG>(text.size()));
        appendText(header, text);
    }
    const MQLONG length = inOrder(static_cast<MQLONG>(header.size()), data.encoding);
    std::memcpy(&header[offsetof(MQRFH2, StrucLength)], &length, sizeof length);
    return header;
}

DataForm withHeader(const DataForm &data)
{
    DataForm form = data;
    std::copy(rfh2Format.begin(), rfh2Format.end(), form.format.begin());
    return form;
}

bool anyForJms(std::span<const Property *const> properties)
{
    return std::any_of(properties.begin(), properties.end(), [](const Property *property) {
        const std::string_view folder = folderOf(property->name);
        return folder == "usr" || folder == "jms" || folder == "mcd" || folder == "mqext";
    });
}

} // namespace mqrig::qmgr::properties
