#include "structures.h"

#include <cmqxc.h>

#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace scripted {

namespace {

// NOLINTBEGIN: the rows are offsets of plain C structures.
#define BEGIN(type) constexpr Field type##_fields[] = {
#define FIELD(type, field, kind, since) {#field, offsetof(type, field), sizeof(type::field), Kind::kind, since},
#define END(type) };
#include "structure_fields.inc"
#undef BEGIN
#undef FIELD
#undef END
// NOLINTEND

const MQCNO cnoInitial = {MQCNO_DEFAULT};
const MQCD cdInitial = {MQCD_CLIENT_CONN_DEFAULT};
const MQCSP cspInitial = {MQCSP_DEFAULT};
const MQSCO scoInitial = {MQSCO_DEFAULT};
const MQAIR airInitial = {MQAIR_DEFAULT};
const MQOD odInitial = {MQOD_DEFAULT};
const MQOR orInitial = {MQOR_DEFAULT};
const MQMD mdInitial = {MQMD_DEFAULT};
const MQPMO pmoInitial = {MQPMO_DEFAULT};
const MQGMO gmoInitial = {MQGMO_DEFAULT};
const MQBO boInitial = {MQBO_DEFAULT};
const MQCBD cbdInitial = {MQCBD_DEFAULT};
const MQCTLO ctloInitial = {MQCTLO_DEFAULT};
const MQCMHO cmhoInitial = {MQCMHO_DEFAULT};
const MQDMHO dmhoInitial = {MQDMHO_DEFAULT};
const MQSMPO smpoInitial = {MQSMPO_DEFAULT};
const MQIMPO impoInitial = {MQIMPO_DEFAULT};
const MQDMPO dmpoInitial = {MQDMPO_DEFAULT};
const MQPD pdInitial = {MQPD_DEFAULT};
const MQBMHO bmhoInitial = {MQBMHO_DEFAULT};
const MQMHBO mhboInitial = {MQMHBO_DEFAULT};
const MQSD sdInitial = {MQSD_DEFAULT};
const MQSRO sroInitial = {MQSRO_DEFAULT};
const MQSTS stsInitial = {MQSTS_DEFAULT};

const std::array<Structure, 24> structures = {{
    {"MQCNO", MQCNO_STRUC_ID, 8, MQRC_CNO_ERROR, &cnoInitial, MQCNO_fields},
    {"MQCD", "", 12, MQRC_CD_ERROR, &cdInitial, MQCD_fields},
    {"MQCSP", MQCSP_STRUC_ID, 1, MQRC_CSP_ERROR, &cspInitial, MQCSP_fields},
    {"MQSCO", MQSCO_STRUC_ID, 5, MQRC_SCO_ERROR, &scoInitial, MQSCO_fields},
    {"MQAIR", MQAIR_STRUC_ID, 2, MQRC_AIR_ERROR, &airInitial, MQAIR_fields},
    {"MQOD", MQOD_STRUC_ID, 4, MQRC_OD_ERROR, &odInitial, MQOD_fields},
    {"MQOR", "", 0, 0, &orInitial, MQOR_fields},
    {"MQMD", MQMD_STRUC_ID, 2, MQRC_MD_ERROR, &mdInitial, MQMD_fields},
    {"MQPMO", MQPMO_STRUC_ID, 3, MQRC_PMO_ERROR, &pmoInitial, MQPMO_fields},
    {"MQGMO", MQGMO_STRUC_ID, 4, MQRC_GMO_ERROR, &gmoInitial, MQGMO_fields},
    {"MQBO", MQBO_STRUC_ID, 1, MQRC_BO_ERROR, &boInitial, MQBO_fields},
    {"MQCBD", MQCBD_STRUC_ID, 1, MQRC_CBD_ERROR, &cbdInitial, MQCBD_fields},
    {"MQCTLO", MQCTLO_STRUC_ID, 1, MQRC_CTLO_ERROR, &ctloInitial, MQCTLO_fields},
    {"MQCMHO", MQCMHO_STRUC_ID, 1, MQRC_CMHO_ERROR, &cmhoInitial, MQCMHO_fields},
    {"MQDMHO", MQDMHO_STRUC_ID, 1, MQRC_DMHO_ERROR, &dmhoInitial, MQDMHO_fields},
    {"MQSMPO", MQSMPO_STRUC_ID, 1, MQRC_SMPO_ERROR, &smpoInitial, MQSMPO_fields},
    {"MQIMPO", MQIMPO_STRUC_ID, 1, MQRC_IMPO_ERROR, &impoInitial, MQIMPO_fields},
    {"MQDMPO", MQDMPO_STRUC_ID, 1, MQRC_DMPO_ERROR, &dmpoInitial, MQDMPO_fields},
    {"MQPD", MQPD_STRUC_ID, 1, MQRC_PD_ERROR, &pdInitial, MQPD_fields},
    {"MQBMHO", MQBMHO_STRUC_ID, 1, MQRC_BMHO_ERROR, &bmhoInitial, MQBMHO_fields},
    {"MQMHBO", MQMHBO_STRUC_ID, 1, MQRC_MHBO_ERROR, &mhboInitial, MQMHBO_fields},
    {"MQSD", MQSD_STRUC_ID, 1, MQRC_SD_ERROR, &sdInitial, MQSD_fields},
    {"MQSRO", MQSRO_STRUC_ID, 1, MQRC_SRO_ERROR, &sroInitial, MQSRO_fields},
    {"MQSTS", MQSTS_STRUC_ID, 2, MQRC_STS_ERROR, &stsInitial, MQSTS_fields},
}};

const unsigned char *bytesAt(const void *data, std::size_t offset)
{
    return static_cast<const unsigned char *>(data) + offset;
}

template <typename T> T numberAt(const unsigned char *bytes)
{
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

template <typename T> std::string bytesOf(T value)
{
    return {reinterpret_cast<const char *>(&value), sizeof value};
}

std::string formatted(const char *format, unsigned value)
{
    char text[32];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

std::string renderChars(std::string_view chars)
{
    const std::size_t lastSet = chars.find_last_not_of('\0');
    chars = chars.substr(0, lastSet == std::string_view::npos ? 0 : lastSet + 1);
    const std::size_t lastText = chars.find_last_not_of(' ');
    const std::size_t textEnd = lastText == std::string_view::npos ? 0 : lastText + 1;
    const std::size_t blanks = chars.size() - textEnd;
    if (blanks <= 8) return quoted(chars);
    return quoted(chars.substr(0, textEnd)) + "<" + std::to_string(blanks) + " blanks>";
}

std::string renderBytes(std::string_view bytes)
{
    const std::size_t lastSet = bytes.find_last_not_of('\0');
    const std::size_t set = lastSet == std::string_view::npos ? 0 : lastSet + 1;
    std::string text = "0x";
    for (const char byte : bytes.substr(0, set)) {
        text += formatted("%02X", static_cast<unsigned char>(byte));
    }
    if (set < bytes.size()) text += "<" + std::to_string(bytes.size() - set) + " zeros>";
    return text;
}

} // namespace

const Field *Structure::find(std::string_view fieldName) const
{
    for (const Field &field : fields) {
        if (field.name == fieldName) return &field;
    }
    return nullptr;
}

const Structure *findStructure(std::string_view name)
{
    for (const Structure &type : structures) {
        if (type.name == name) return &type;
    }
    return nullptr;
}

const Structure &structure(std::string_view name)
{
    const Structure *type = findStructure(name);
    if (type == nullptr) std::abort();
    return *type;
}

int versionOf(const Structure &type, const void *data)
{
    const Field *version = type.find("Version");
    return version == nullptr ? 1 : numberAt<MQLONG>(bytesAt(data, version->offset));
}

bool hasValidHead(const Structure &type, const void *data)
{
    if (type.lastVersion == 0) return true;
    const bool idFits = std::memcmp(data, type.strucId.data(), type.strucId.size()) == 0;
    const int version = versionOf(type, data);
    return idFits && version >= 1 && version <= type.lastVersion;
}

std::string quoted(std::string_view bytes)
{
    std::string text = "\"";
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            text += '\\';
            text += c;
        } else if (byte >= 0x20 && byte < 0x7f) {
            text += c;
        } else {
            text += formatted("\\x%02x", byte);
        }
    }
    return text + "\"";
}

std::string render(const Field &field, const void *data)
{
    const unsigned char *bytes = bytesAt(data, field.offset);
    const std::string_view all(reinterpret_cast<const char *>(bytes), field.size);
    switch (field.kind) {
    case Kind::Long:
        return std::to_string(numberAt<MQLONG>(bytes));
    case Kind::Bits:
        return formatted("0x%08x", numberAt<MQULONG>(bytes));
    case Kind::Longs: {
        std::string text;
        for (std::size_t at = 0; at < field.size; at += sizeof(MQLONG)) {
            text += (at == 0 ? "" : ",") + std::to_string(numberAt<MQLONG>(bytes + at));
        }
        return text;
    }
    case Kind::Long64:
        return std::to_string(numberAt<MQINT64>(bytes));
    case Kind::Chars:
        return renderChars(all);
    case Kind::Bytes:
        return renderBytes(all);
    case Kind::Pointer:
        return numberAt<void *>(bytes) == nullptr ? "null" : "set";
    case Kind::Variable: {
        const auto text = numberAt<MQCHARV>(bytes);
        if (text.VSPtr == nullptr || text.VSLength <= 0) return "\"\"";
        return quoted({static_cast<const char *>(text.VSPtr), static_cast<std::size_t>(text.VSLength)});
    }
    }
    return {};
}

std::optional<std::string> parseValue(const Field &field, std::string_view text)
{
    if (field.kind == Kind::Chars) {
        auto chars = fromQuoted(text);
        if (!chars || chars->size() > field.size) return std::nullopt;
        chars->resize(field.size, ' ');
        return chars;
    }
    if (field.kind == Kind::Bytes) {
        auto bytes = text.starts_with("0x") ? fromHex(text.substr(2)) : fromQuoted(text);
        if (!bytes || bytes->size() > field.size) return std::nullopt;
        bytes->resize(field.size, '\0');
        return bytes;
    }
    const auto number = fromNumber(text);
    if (!number) return std::nullopt;
    if (field.kind == Kind::Long64) return bytesOf(static_cast<MQINT64>(*number));
    if (field.kind == Kind::Long || field.kind == Kind::Bits) return bytesOf(static_cast<MQLONG>(*number));
    return std::nullopt;
}

std::optional<std::string> fromHex(std::string_view digits)
{
    if (digits.size() % 2 != 0) return std::nullopt;
    std::string bytes;
    for (std::size_t at = 0; at < digits.size(); at += 2) {
        unsigned byte = 0;
        const char *end = digits.data() + at + 2;
        const auto [stop, error] = std::from_chars(digits.data() + at, end, byte, 16);
        if (error != std::errc() || stop != end) return std::nullopt;
        bytes += static_cast<char>(byte);
    }
    return bytes;
}

std::optional<std::string> fromQuoted(std::string_view text)
{
    if (text.size() < 2 || text.front() != '"' || text.back() != '"') return std::nullopt;
    text = text.substr(1, text.size() - 2);
    std::string bytes;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '\\') {
            bytes += text[at];
            continue;
        }
        if (++at == text.size()) return std::nullopt;
        if (text[at] == 'n') {
            bytes += '\n';
        } else if (text[at] == 't') {
            bytes += '\t';
        } else if (text[at] == 'x') {
            const auto byte = at + 2 < text.size() ? fromHex(text.substr(at + 1, 2)) : std::nullopt;
            if (!byte) return std::nullopt;
            bytes += *byte;
            at += 2;
        } else {
            bytes += text[at];
        }
    }
    return bytes;
}

std::optional<long long> fromNumber(std::string_view text)
{
    const bool negative = text.starts_with("-");
    if (negative) text.remove_prefix(1);
    const int base = text.starts_with("0x") ? 16 : 10;
    if (base == 16) text.remove_prefix(2);
    long long number = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (error != std::errc() || stop != text.data() + text.size()) return std::nullopt;
    return negative ? -number : number;
}

} // namespace scripted
