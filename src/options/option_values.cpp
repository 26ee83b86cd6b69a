/// Reading the values of options that are more than a text.

#include "parser.h"

#include "common.h"

#include <cerrno>
#include <cstring>

namespace {

constexpr std::size_t HexPrefixLength = 2;

bool hasHexPrefix(const char *value)
{
    return std::strncmp(value, "0x", HexPrefixLength) == 0;
}

/// Two digits for each byte of the field fit behind the prefix. Digits before a bad one stay converted.
bool convertDigits(const OptionRow &row, std::span<char> field, const char *value)
{
    if (std::strlen(value) > HexPrefixLength + 2 * field.size()) {
        return refuse(row.fault, static_cast<int>(field.size()));
    }
    if (hexdec2bin(value + HexPrefixLength, field.data()) != StatusOk) return refuse("%s", row.badDigits);
    return true;
}

/// "0x" and three digits. An encoding has twelve bits.
bool readHexEncoding(const OptionRow &row, MQLONG &encoding, const char *value)
{
    if (std::strlen(value) != HexPrefixLength + 3) {
        if (row.fault != nullptr) refuse(row.fault, value);
        return false;
    }
    errno = 0;
    const long number = std::strtol(value, nullptr, 0);
    if (const int error = errno; error != 0) {
        report_failure(nullptr, {"GetArgParam"}, "strtol() (-ec)", error, "strtol() (-ec) failed.\n");
        return false;
    }
    encoding = static_cast<MQLONG>(number);
    return true;
}

} // namespace

bool readBytes(const OptionRow &row, std::span<char> field, const char *value)
{
    if (hasHexPrefix(value)) return convertDigits(row, field, value);
    const std::size_t length = std::strlen(value);
    if (length > field.size()) return refuse(row.fault, static_cast<int>(field.size()));
    std::memcpy(field.data(), value, length);
    return true;
}

bool readHexBytes(const OptionRow &row, std::span<char> field, const char *value)
{
    if (!hasHexPrefix(value)) return refuse("%s", row.noPrefix);
    return convertDigits(row, field, value);
}

bool readEncoding(const OptionRow &row, MQLONG &encoding, const char *value)
{
    if (hasHexPrefix(value)) return readHexEncoding(row, encoding, value);
    encoding = lenientNumber(value);
    return true;
}

bool readEncodingList(const OptionRow &row, MQLONG &encoding, const char *value)
{
    if (std::strncmp(value, "MQENC_", 6) != 0) return readEncoding(row, encoding, value);

    char call[32];
    std::snprintf(call, sizeof call, "malloc() (%s)", row.flag);
    const Buffer<> list = checked_copy(nullptr, value, {"GetArgParam"}, call);
    if (!list) return false;

    encoding = 0;
    char *position = nullptr;
    const char *name = strtoknn_r(list.get(), ":", &position);
    if (name == nullptr) {
        return refuse("valid token was not found in encoding parameter(%s): %s\n", row.flag, value);
    }
    for (; name != nullptr; name = strtoknn_r(nullptr, ":", &position)) {
        if (const NamedInteger *known = findByName(MQENC_TBL, name)) encoding |= known->value;
    }
    return true;
}
