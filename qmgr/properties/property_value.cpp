#include "qmgr/properties/property_value.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <strings.h>
#include <system_error>
#include <utility>

#include "qmgr/properties/text_conversion.h"

namespace mqrig::qmgr::properties {
namespace {

constexpr MQLONG integerTypes = MQTYPE_INT8 | MQTYPE_INT16 | MQTYPE_INT32 | MQTYPE_INT64;
constexpr MQLONG floatTypes = MQTYPE_FLOAT32 | MQTYPE_FLOAT64;

bool isInteger(MQLONG type)
{
    return (type & integerTypes) != 0;
}

bool isFloat(MQLONG type)
{
    return (type & floatTypes) != 0;
}

template <class Number>
Number numberIn(std::string_view bytes)
{
    Number number{};
    std::memcpy(&number, bytes.data(), std::min(sizeof number, bytes.size()));
    return number;
}

template <class Number>
void store(Number number, std::string &bytes)
{
    bytes.assign(reinterpret_cast<const char *>(&number), sizeof number);
}

MQINT64 integerOf(const Property &property)
{
    switch (property.type) {
    case MQTYPE_INT8:
        return numberIn<MQINT8>(property.value);
    case MQTYPE_INT16:
        return numberIn<MQINT16>(property.value);
    case MQTYPE_INT64:
        return numberIn<MQINT64>(property.value);
    case MQTYPE_BOOLEAN:
        return numberIn<MQLONG>(property.value) != 0 ? 1 : 0;
    default:
        return numberIn<MQLONG>(property.value);
    }
}

template <class Number>
bool storeIfItFits(MQINT64 number, std::string &value)
{
    if (number < std::numeric_limits<Number>::min() || number > std::numeric_limits<Number>::max()) return false;
    store(static_cast<Number>(number), value);
    return true;
}

bool storeInteger(MQINT64 number, MQLONG type, std::string &value)
{
    switch (type) {
    case MQTYPE_INT8:
        return storeIfItFits<MQINT8>(number, value);
    case MQTYPE_INT16:
        return storeIfItFits<MQINT16>(number, value);
    case MQTYPE_INT64:
        return storeIfItFits<MQINT64>(number, value);
    default:
        return storeIfItFits<MQLONG>(number, value);
    }
}

template <class Number>
std::string decimal(Number number)
{
    std::array<char, 64> digits;
    const auto written = std::to_chars(digits.data(), digits.data() + digits.size(), number);
    return {digits.data(), written.ptr};
}

std::string hexadecimal(std::string_view bytes)
{
    constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    text.reserve(2 * bytes.size());
    for (const char byte : bytes) {
        text.push_back(digits[static_cast<unsigned char>(byte) >> 4]);
        text.push_back(digits[static_cast<unsigned char>(byte) & 0xF]);
    }
    return text;
}

int hexadecimalDigit(char digit)
{
    if (digit >= '0' && digit <= '9') return digit - '0';
    if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
    if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
    return -1;
}

bool readHexadecimal(std::string_view text, std::string &bytes)
{
    if (text.size() % 2 != 0) return false;
    std::string read;
    read.reserve(text.size() / 2);
    for (std::size_t i = 0; i < text.size(); i += 2) {
        const int high = hexadecimalDigit(text[i]);
        const int low = hexadecimalDigit(text[i + 1]);
        if (high < 0 || low < 0) return false;
        read.push_back(static_cast<char>(high * 16 + low));
    }
    bytes = std::move(read);
    return true;
}

std::string_view withoutBlanks(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// A number of one type at the beginning of the text, behind blanks and with a sign; how many characters it has.
template <class Number>
std::optional<Number> readNumber(std::string_view text, std::size_t &length)
{
    const std::size_t blanks = std::min(text.find_first_not_of(' '), text.size());
    std::string_view digits = text.substr(blanks);
    if (digits.starts_with('+') && !digits.starts_with("+-")) digits.remove_prefix(1);
    Number number{};
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (read.ec != std::errc()) return std::nullopt;
    length = static_cast<std::size_t>(read.ptr - text.data());
    return number;
}

bool readBoolean(std::string_view text, bool &value)
{
    const auto is = [&](std::string_view word) {
        return text.size() == word.size() && strncasecmp(text.data(), word.data(), word.size()) == 0;
    };
    value = is("true") || is("1");
    return value || is("false") || is("0");
}

// As much of the text as the type needs; `length` is how far the number went.
bool readNumberText(std::string_view text, MQLONG type, std::string &value, std::size_t &length)
{
    if (isInteger(type)) {
        const auto number = readNumber<MQINT64>(text, length);
        return number && storeInteger(*number, type, value);
    }
    if (type == MQTYPE_FLOAT32) {
        const auto number = readNumber<MQFLOAT32>(text, length);
        if (number) store(*number, value);
        return number.has_value();
    }
    const auto number = readNumber<MQFLOAT64>(text, length);
    if (number) store(*number, value);
    return number.has_value();
}

// Which types a value can become; every one can become a string.
MQLONG targetsOf(MQLONG type)
{
    switch (type) {
    case MQTYPE_BOOLEAN:
        return MQTYPE_STRING | integerTypes;
    case MQTYPE_INT8:
        return MQTYPE_STRING | MQTYPE_INT16 | MQTYPE_INT32 | MQTYPE_INT64;
    case MQTYPE_INT16:
        return MQTYPE_STRING | MQTYPE_INT32 | MQTYPE_INT64;
    case MQTYPE_INT32:
        return MQTYPE_STRING | MQTYPE_INT64;
    case MQTYPE_FLOAT32:
        return MQTYPE_STRING | MQTYPE_FLOAT64;
    case MQTYPE_STRING:
        return MQTYPE_BOOLEAN | integerTypes | floatTypes;
    case MQTYPE_NULL:
        return 0;
    default:
        return MQTYPE_STRING;
    }
}

// Strings that programs convert may go on behind the number.
MQLONG fromString(const Property &property, MQLONG type, std::string &value)
{
    std::string text;
    if (!convertText(property.value, property.form, {}, text)) return MQRC_PROP_NUMBER_FORMAT_ERROR;
    if (type == MQTYPE_BOOLEAN) {
        bool truth = false;
        if (!readBoolean(text, truth)) return MQRC_PROP_NUMBER_FORMAT_ERROR;
        store(static_cast<MQLONG>(truth), value);
        return MQRC_NONE;
    }
    std::size_t length = 0;
    return readNumberText(text, type, value, length) ? MQRC_NONE : MQRC_PROP_NUMBER_FORMAT_ERROR;
}

// The end of a string that ends with a zero character.
std::size_t terminatedLength(const char *text, std::size_t unit)
{
    if (unit == 1) return std::strlen(text);
    std::size_t length = 0;
    while (text[length] != 0 || text[length + 1] != 0)
        length += 2;
    return length;
}

MQLONG checkEncoding(const GivenValue &given)
{
    const MQLONG integers = given.form.encoding & MQENC_INTEGER_MASK;
    const bool wide = given.type == MQTYPE_BOOLEAN || isInteger(given.type);
    if (wide && integers != MQENC_INTEGER_NORMAL && integers != MQENC_INTEGER_REVERSED)
        return MQRC_SOURCE_INTEGER_ENC_ERROR;
    const MQLONG floats = given.form.encoding & MQENC_FLOAT_MASK;
    if (isFloat(given.type) && floats != MQENC_FLOAT_IEEE_NORMAL && floats != MQENC_FLOAT_IEEE_REVERSED)
        return MQRC_SOURCE_FLOAT_ENC_ERROR;
    return MQRC_NONE;
}

} // namespace

MQLONG takeValue(const GivenValue &given, Property &property)
{
    if (!isType(given.type)) return MQRC_PROPERTY_TYPE_ERROR;
    const bool terminated = given.type == MQTYPE_STRING && given.length == MQVL_NULL_TERMINATED;
    if (given.length < 0 && !terminated) return MQRC_BUFFER_LENGTH_ERROR;
    const auto fixed = fixedSize(given.type);
    if (fixed && static_cast<std::size_t>(given.length) != *fixed) return MQRC_BUFFER_LENGTH_ERROR;
    if (given.bytes == nullptr && (given.length > 0 || terminated)) return MQRC_BUFFER_ERROR;
    if (const MQLONG reason = checkEncoding(given)) return reason;
    if (given.type == MQTYPE_STRING && !isKnownCharacterSet(given.form.ccsid)) return MQRC_SOURCE_CCSID_ERROR;

    const auto *text = static_cast<const char *>(given.bytes);
    property.type = given.type;
    if (given.length == 0)
        property.value.clear();
    else
        property.value.assign(text, terminated ? terminatedLength(text, terminatorSize(given.form))
                                               : static_cast<std::size_t>(given.length));
    property.form = given.type == MQTYPE_STRING ? given.form : TextForm{};
    if (fixed) swapNumber(given.type, given.form.encoding, property.value);
    return MQRC_NONE;
}

MQLONG convertType(const Property &property, MQLONG type, Property &converted)
{
    if (type == property.type) {
        converted = property;
        return MQRC_NONE;
    }
    if ((targetsOf(property.type) & type) == 0) return MQRC_PROP_CONV_NOT_SUPPORTED;
    Property result;
    result.name = property.name;
    result.descriptor = property.descriptor;
    result.type = type;
    if (property.type == MQTYPE_STRING) {
        if (const MQLONG reason = fromString(property, type, result.value)) return reason;
    } else if (type == MQTYPE_STRING) {
        const bool truth = property.type == MQTYPE_BOOLEAN;
        result.value = truth ? (integerOf(property) != 0 ? "TRUE" : "FALSE") : valueText(property);
    } else if (type == MQTYPE_FLOAT64) {
        store(static_cast<MQFLOAT64>(numberIn<MQFLOAT32>(property.value)), result.value);
    } else {
        storeInteger(integerOf(property), type, result.value);
    }
    converted = std::move(result);
    return MQRC_NONE;
}

bool convertValue(const TextForm &wanted, Property &property)
{
    if (property.type == MQTYPE_STRING) {
        std::string text;
        if (!convertText(property.value, property.form, wanted, text)) return false;
        property.value = std::move(text);
        property.form = wanted;
        return true;
    }
    return swapNumber(property.type, wanted.encoding, property.value);
}

bool swapNumber(MQLONG type, MQLONG encoding, std::span<char> bytes)
{
    constexpr bool nativeReversed = std::endian::native == std::endian::little;
    bool reversed = nativeReversed;
    if (isInteger(type) || type == MQTYPE_BOOLEAN) {
        reversed = (encoding & MQENC_INTEGER_MASK) != MQENC_INTEGER_NORMAL;
    } else if (isFloat(type)) {
        const MQLONG floats = encoding & MQENC_FLOAT_MASK;
        if (floats != MQENC_FLOAT_IEEE_NORMAL && floats != MQENC_FLOAT_IEEE_REVERSED) return false;
        reversed = floats == MQENC_FLOAT_IEEE_REVERSED;
    }
    if (reversed != nativeReversed) std::reverse(bytes.begin(), bytes.end());
    return true;
}

std::string valueText(const Property &property)
{
    switch (property.type) {
    case MQTYPE_NULL:
        return {};
    case MQTYPE_STRING: {
        std::string text;
        if (convertText(property.value, property.form, {}, text)) return text;
        return property.value;
    }
    case MQTYPE_BYTE_STRING:
        return hexadecimal(property.value);
    case MQTYPE_FLOAT32:
        return decimal(numberIn<MQFLOAT32>(property.value));
    case MQTYPE_FLOAT64:
        return decimal(numberIn<MQFLOAT64>(property.value));
    default:
        return decimal(integerOf(property));
    }
}

bool readValueText(std::string_view text, MQLONG type, Property &property)
{
    property.type = type;
    property.form = {};
    if (type == MQTYPE_STRING) {
        property.value = text;
        return true;
    }
    const std::string_view inner = withoutBlanks(text);
    if (type == MQTYPE_BYTE_STRING) return readHexadecimal(inner, property.value);
    if (type == MQTYPE_NULL) {
        property.value.clear();
        return true;
    }
    if (type == MQTYPE_BOOLEAN) {
        bool truth = false;
        if (!readBoolean(inner, truth)) return false;
        store(static_cast<MQLONG>(truth), property.value);
        return true;
    }
    std::size_t length = 0;
    return readNumberText(inner, type, property.value, length) && length == inner.size();
}

} // namespace mqrig::qmgr::properties
