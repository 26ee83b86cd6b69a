// Every parameter structure is Type, StrucLength, the numbers that the row names, and a tail: a value, values, a string
// or strings. A record names the same fields in the same order, so one row tells how to read it, how to lay it out and
// how to echo it.
#include "pcf/read_parameter_record.h"

#include "display.h"
#include "tables.h"

#include <cerrno>
#include <climits>
#include <cmqcfc.h>
#include <cstring>
#include <optional>
#include <utility>

namespace {

/// What ends a field. Where a quote does, a string may be written in single quotes.
constexpr char Plain[] = "=,";
constexpr char Quoted[] = "=,'";

struct Field {
    const char *name = nullptr;
    const char *delimiters = Quoted;
};

enum class Tail { Integer, Integer64, Integers, Integers64, String, Bytes, Strings };

constexpr std::size_t MostNumbers = 4;

} // namespace

struct ParameterRow {
    const char *name = nullptr; ///< the keyword
    const char *typeName = nullptr;
    MQLONG type = 0;
    Field numbers[MostNumbers] = {}; ///< in the order of the structure; the last ones say how long the tail is
    Field field = {};                ///< of the tail
    Tail tail = Tail::Integer;
    const char *conversion = nullptr; ///< the call that a number that cannot be read is reported as
};

namespace {

constexpr char Convert32[] = "strtol() or strtoul()";
constexpr char Convert64[] = "strtol(), strtoll() or _strtoi64()";

#define PCF_TYPE(type) #type, type

constexpr ParameterRow RECORDS[] = {
    {"MQCFIN", PCF_TYPE(MQCFT_INTEGER), {{"Parameter", Plain}}, {"Value", Plain}, Tail::Integer, Convert32},
    {"MQCFST", PCF_TYPE(MQCFT_STRING), {{"Parameter"}, {"CodedCharSetId"}, {"StringLength"}}, {"String"}, Tail::String},
    {"MQCFIL", PCF_TYPE(MQCFT_INTEGER_LIST), {{"Parameter"}, {"Count"}}, {"Values"}, Tail::Integers, Convert32},
    {"MQCFSL",
     PCF_TYPE(MQCFT_STRING_LIST),
     {{"Parameter"}, {"CodedCharSetId"}, {"Count"}, {"StringLength"}},
     {"Strings"},
     Tail::Strings},
    {"MQCFBS", PCF_TYPE(MQCFT_BYTE_STRING), {{"Parameter"}, {"StringLength"}}, {"String"}, Tail::Bytes},
    {"MQCFIF",
     PCF_TYPE(MQCFT_INTEGER_FILTER),
     {{"Parameter", Plain}, {"Operator"}},
     {"FilterValue", Plain},
     Tail::Integer,
     Convert32},
    {"MQCFSF",
     PCF_TYPE(MQCFT_STRING_FILTER),
     {{"Parameter"}, {"Operator"}, {"CodedCharSetId"}, {"FilterValueLength"}},
     {"FilterValue"},
     Tail::String},
    {"MQCFBF",
     PCF_TYPE(MQCFT_BYTE_STRING_FILTER),
     {{"Parameter"}, {"Operator"}, {"FilterValueLength"}},
     {"FilterValue"},
     Tail::Bytes},
    {"MQCFGR", PCF_TYPE(MQCFT_GROUP), {{"Parameter", Plain}}, {"ParameterCount", Plain}, Tail::Integer, Convert32},
    {"MQCFIN64", PCF_TYPE(MQCFT_INTEGER64), {{"Parameter", Plain}}, {"Value", Plain}, Tail::Integer64, "strtol()"},
    {"MQCFIL64", PCF_TYPE(MQCFT_INTEGER64_LIST), {{"Parameter"}, {"Count"}}, {"Values"}, Tail::Integers64, Convert64},
    {},
};

/// A number, decimal or "0x" and digits; nothing when there are no digits or it does not fit into `bytes` bytes, with
/// errno set. Hexadecimal digits may fill all bits.
std::optional<MQINT64> number_of(const char *text, std::size_t bytes)
{
    const char *const hexadecimal = hexadecimal_digits(text);
    const char *const digits = hexadecimal != nullptr ? hexadecimal : text;
    char *end = nullptr;
    MQINT64 number = 0;
    bool fits = true;
    errno = 0;
    if (hexadecimal != nullptr) {
        const unsigned long long bits = std::strtoull(text, &end, 16);
        fits = bytes == sizeof bits || bits <= UINT_MAX;
        number = bytes == sizeof bits ? static_cast<MQINT64>(bits) : static_cast<MQLONG>(bits);
    } else {
        number = std::strtoll(text, &end, 10);
        fits = bytes == sizeof number || (number >= INT_MIN && number <= INT_MAX);
    }
    if (end <= digits) errno = EINVAL;
    if (!fits) errno = ERANGE;
    return errno == 0 ? std::optional(number) : std::nullopt;
}

/// One record on its way from the line to its structure.
class Record {
public:
    Record(RunParams *params, const ParameterRow &row, char *position) : params_(params), row_(row), position_(position)
    {
    }

    bool read()
    {
        if (!read_numbers()) return false;
        switch (row_.tail) {
        case Tail::Integer:
            return read_one<MQLONG>();
        case Tail::Integer64:
            return read_one<MQINT64>();
        case Tail::Integers:
            return read_list<MQLONG>();
        case Tail::Integers64:
            return read_list<MQINT64>();
        case Tail::String:
        case Tail::Bytes:
            return read_string();
        case Tail::Strings:
            return read_strings();
        }
        return false;
    }

    void echo() const
    {
        std::printf("Id : %d, %s : ", numbers_[0], row_.typeName);
        const bool separated = row_.type == MQCFT_BYTE_STRING; // this echo alone has a comma
        for (std::size_t i = 1; i < count_; ++i)
            std::printf(separated ? "%d, " : "%d ", numbers_[i]);
        switch (row_.tail) {
        case Tail::Integer:
            echo_number(value_at<MQLONG>(0));
            break;
        case Tail::Integer64:
            echo_number(value_at<MQINT64>(0));
            break;
        case Tail::Integers:
            echo_list<MQLONG>();
            break;
        case Tail::Integers64:
            echo_list<MQINT64>();
            break;
        case Tail::String:
            echo_string(tail(), length());
            break;
        case Tail::Bytes:
            std::printf("%.*s", length(), tail());
            break;
        case Tail::Strings:
            echo_strings();
            break;
        }
        std::putchar('\n');
    }

    Buffer<> take_structure() { return std::move(structure_); }

private:
    // ---- Fields ----

    char *next(const Field &field) { return strtok_r(nullptr, field.delimiters, &position_); }

    bool missing(const Field &field) const
    {
        // This text alone has always been written without a line end.
        const bool ends = row_.type != MQCFT_INTEGER_FILTER || field.name != row_.field.name;
        printf_te(params_, "Parameter missing : %s : %s%s", row_.name, field.name, ends ? "\n" : "");
        return false;
    }

    bool read_numbers()
    {
        for (const Field &field : row_.numbers) {
            if (field.name == nullptr) break;
            const char *const text = next(field);
            if (text == nullptr) return missing(field);
            numbers_[count_++] = lenientNumber(text);
        }
        return true;
    }

    /// The last number: the length of a string, the count of a list of numbers.
    MQLONG length() const { return numbers_[count_ - 1]; }

    // ---- The structure ----

    /// Numbers of 64 bits begin at a multiple of their size, behind a reserved word where they must.
    std::size_t tail_offset() const
    {
        const std::size_t offset = (2 + count_) * sizeof(MQLONG);
        return row_.tail == Tail::Integer64 ? offset + sizeof(MQLONG) : offset;
    }

    char *tail() const { return structure_.get() + tail_offset(); }

    /// The zero-filled structure with its numbers, and room for `tailBytes`.
    bool allocate(std::int64_t tailBytes)
    {
        const std::int64_t unpadded = static_cast<std::int64_t>(tail_offset()) + tailBytes;
        const std::int64_t size = (unpadded + 3) / 4 * 4;
        structure_ = checked_malloc_counted(params_, size, {"read_pcf_file"});
        if (structure_ == nullptr) return false;
        std::memset(structure_.get(), 0, static_cast<std::size_t>(size));
        const MQLONG head[] = {row_.type, static_cast<MQLONG>(size)};
        std::memcpy(structure_.get(), head, sizeof head);
        std::memcpy(structure_.get() + sizeof head, numbers_, count_ * sizeof(MQLONG));
        return true;
    }

    // ---- Tails: numbers ----

    template <class Number>
    bool store_number(std::size_t index, const char *text)
    {
        const std::optional<MQINT64> number = number_of(text, sizeof(Number));
        if (!number) {
            report_failure(params_, {"read_pcf_file"}, row_.conversion, errno, "%s failed.\n", row_.conversion);
            return false;
        }
        const Number value = static_cast<Number>(*number);
        std::memcpy(tail() + index * sizeof value, &value, sizeof value);
        return true;
    }

    template <class Number>
    Number value_at(std::size_t index) const
    {
        Number value;
        std::memcpy(&value, tail() + index * sizeof value, sizeof value);
        return value;
    }

    template <class Number>
    bool read_one()
    {
        const char *const text = next(row_.field);
        if (text == nullptr) return missing(row_.field);
        return allocate(sizeof(Number)) && store_number<Number>(0, text);
    }

    template <class Number>
    bool read_list()
    {
        if (!has_as_many_items_as(length())) return missing(row_.field);
        if (!allocate(std::int64_t{length()} * static_cast<std::int64_t>(sizeof(Number)))) return false;
        const std::size_t count = static_cast<std::size_t>(length());
        for (std::size_t i = 0; i < count; ++i) {
            if (!store_number<Number>(i, next(row_.field))) return false;
        }
        return true;
    }

    // ---- Tails: strings ----

    /// At most `length` bytes, as text or in hexadecimal notation; the rest of the area stays zero.
    bool store_string(char *area, MQLONG length, const char *text)
    {
        const char *const digits = hexadecimal_digits(text);
        if (digits == nullptr) {
            std::memcpy(area, text, strnlen(text, static_cast<std::size_t>(length)));
            return true;
        }
        char none; // the converter writes a byte even where there is room for none
        if (hexdec2binl(digits, length > 0 ? area : &none, length) == StatusOk) return true;
        printf_te(params_, "message id include invalid character or odd length : %s\n", text);
        return false;
    }

    bool read_string()
    {
        const Field &lengthField = row_.numbers[count_ - 1];
        if (length() < 0) return missing(lengthField);
        const char *const text = next(row_.field);
        if (text == nullptr && (row_.type != MQCFT_BYTE_STRING || length() != 0)) return missing(row_.field);
        return allocate(length()) && (text == nullptr || store_string(tail(), length(), text));
    }

    bool read_strings()
    {
        const MQLONG count = numbers_[count_ - 2];
        if (length() < 0) return missing(row_.numbers[count_ - 1]);
        if (!has_as_many_items_as(count)) return missing(row_.field);
        if (!allocate(std::int64_t{count} * length())) return false;
        char *area = tail();
        for (MQLONG i = 0; i < count; ++i, area += length()) {
            if (!store_string(area, length(), next(row_.field))) return false;
        }
        return true;
    }

    /// Whether the rest of the line has as many items as the record declares.
    bool has_as_many_items_as(MQLONG declared) const
    {
        MQLONG items = 0;
        for (const char *at = position_; *(at += std::strspn(at, row_.field.delimiters)) != '\0'; ++items) {
            at += std::strcspn(at, row_.field.delimiters);
        }
        return items == declared;
    }

    // ---- Echo ----

    static void echo_number(MQINT64 value) { std::printf("%lld", static_cast<long long>(value)); }

    template <class Number>
    void echo_list() const
    {
        const std::size_t count = static_cast<std::size_t>(length());
        for (std::size_t i = 0; i < count; ++i) {
            std::printf(i == 0 ? "[" : ",[");
            echo_number(value_at<Number>(i));
            std::putchar(']');
        }
    }

    /// The whole declared length, in hexadecimal form with -raw too.
    void echo_string(const char *text, MQLONG bytes) const
    {
        printEachMode(text, bytes, params_->OutputForm == OutputFormText ? OutputFormText : OutputFormHex);
    }

    void echo_strings() const
    {
        const MQLONG count = numbers_[count_ - 2];
        const char *text = tail();
        for (MQLONG i = 0; i < count; ++i, text += length()) {
            std::printf(i == 0 ? "[" : ",[");
            echo_string(text, length());
            std::putchar(']');
        }
    }

    RunParams *params_;
    const ParameterRow &row_;
    char *position_;
    MQLONG numbers_[MostNumbers] = {};
    std::size_t count_ = 0;
    Buffer<> structure_;
};

} // namespace

const ParameterRow *parameter_row(const char *keyword)
{
    return findByName(RECORDS, keyword);
}

Buffer<> read_parameter_record(RunParams *params, const ParameterRow &row, char *position)
{
    Record record(params, row, position);
    if (!record.read()) return nullptr;
    record.echo();
    return record.take_structure();
}
