#include "qmgr/command/pcf_reader.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string_view>

namespace mqrig::qmgr::command {
namespace {

constexpr std::size_t smallestStructure = 12; // type, length and parameter, which all of them begin with

// The errors that a kind of structure has of its own.
struct Errors {
    MQLONG type;
    MQLONG length;
    MQLONG string;    // of the length of its strings
    MQLONG count;     // of the number of its values
    MQLONG operation; // of a filter's operator
};
constexpr Errors errorTable[] = {
    {MQCFT_INTEGER, MQRCCF_CFIN_LENGTH_ERROR, 0, 0, 0},
    {MQCFT_INTEGER64, MQRCCF_CFIN_LENGTH_ERROR, 0, 0, 0},
    {MQCFT_STRING, MQRCCF_CFST_LENGTH_ERROR, MQRCCF_CFST_STRING_LENGTH_ERR, 0, 0},
    {MQCFT_INTEGER_LIST, MQRCCF_CFIL_LENGTH_ERROR, 0, MQRCCF_CFIL_COUNT_ERROR, 0},
    {MQCFT_INTEGER64_LIST, MQRCCF_CFIL_LENGTH_ERROR, 0, MQRCCF_CFIL_COUNT_ERROR, 0},
    {MQCFT_STRING_LIST, MQRCCF_CFSL_LENGTH_ERROR, MQRCCF_CFSL_STRING_LENGTH_ERR, MQRCCF_CFSL_COUNT_ERROR, 0},
    {MQCFT_BYTE_STRING, MQRCCF_CFBS_LENGTH_ERROR, MQRCCF_CFBS_STRING_LENGTH_ERR, 0, 0},
    {MQCFT_INTEGER_FILTER, MQRCCF_CFIF_LENGTH_ERROR, 0, 0, MQRCCF_CFIF_OPERATOR_ERROR},
    {MQCFT_STRING_FILTER, MQRCCF_CFSF_LENGTH_ERROR, MQRCCF_CFSF_FILTER_VAL_LEN_ERR, 0, MQRCCF_CFSF_OPERATOR_ERROR},
    {MQCFT_BYTE_STRING_FILTER, MQRCCF_CFBF_LENGTH_ERROR, MQRCCF_CFBF_FILTER_VAL_LEN_ERR, 0, MQRCCF_CFBF_OPERATOR_ERROR},
    {MQCFT_GROUP, MQRCCF_CFGR_LENGTH_ERROR, 0, MQRCCF_CFGR_PARM_COUNT_ERROR, 0},
};

const Errors *errorsOf(MQLONG type)
{
    const auto *row = std::find_if(std::begin(errorTable), std::end(errorTable),
                                   [type](const Errors &errors) { return errors.type == type; });
    return row == std::end(errorTable) ? nullptr : row;
}

constexpr MQLONG operators[] = {MQCFOP_LESS,      MQCFOP_EQUAL,       MQCFOP_GREATER,      MQCFOP_NOT_LESS,
                                MQCFOP_NOT_EQUAL, MQCFOP_NOT_GREATER, MQCFOP_LIKE,         MQCFOP_NOT_LIKE,
                                MQCFOP_CONTAINS,  MQCFOP_EXCLUDES,    MQCFOP_CONTAINS_GEN, MQCFOP_EXCLUDES_GEN};

// Integers of a message in its byte order.
class Integers {
public:
    Integers(std::span<const std::byte> bytes, bool bigEndian) : bytes_(bytes), bigEndian_(bigEndian) {}

    MQLONG at(std::size_t offset) const { return static_cast<MQLONG>(read<std::uint32_t>(offset)); }
    MQINT64 longAt(std::size_t offset) const { return static_cast<MQINT64>(read<std::uint64_t>(offset)); }

private:
    template <class Number>
    Number read(std::size_t offset) const
    {
        Number value = 0;
        for (std::size_t i = 0; i < sizeof(Number); ++i) {
            const std::size_t place = bigEndian_ ? i : sizeof(Number) - 1 - i;
            value = static_cast<Number>(value << 8) | std::to_integer<Number>(bytes_[offset + place]);
        }
        return value;
    }

    std::span<const std::byte> bytes_;
    bool bigEndian_;
};

// Reads one structure: `bytes` is exactly what its StrucLength covers.
class StructureReader {
public:
    StructureReader(std::span<const std::byte> bytes, bool bigEndian, const Errors &errors, PcfParameter &parameter)
        : bytes_(bytes), integers_(bytes, bigEndian), errors_(errors), parameter_(parameter)
    {
    }

    // MQRC_NONE or the error.
    MQLONG run()
    {
        switch (errors_.type) {
        case MQCFT_INTEGER:
            return numbersFrom(12, 1, 4, MQCFIN_STRUC_LENGTH);
        case MQCFT_INTEGER64:
            return numbersFrom(16, 1, 8, MQCFIN64_STRUC_LENGTH);
        case MQCFT_INTEGER_LIST:
            return list(4, MQCFIL_STRUC_LENGTH_FIXED);
        case MQCFT_INTEGER64_LIST:
            return list(8, MQCFIL64_STRUC_LENGTH_FIXED);
        case MQCFT_STRING:
            return string(16, MQCFST_STRUC_LENGTH_FIXED);
        case MQCFT_STRING_LIST:
            return strings();
        case MQCFT_BYTE_STRING:
            return string(12, MQCFBS_STRUC_LENGTH_FIXED);
        case MQCFT_INTEGER_FILTER:
            if (const MQLONG reason = filter(MQCFIF_STRUC_LENGTH)) return reason;
            return numbersFrom(16, 1, 4, MQCFIF_STRUC_LENGTH);
        case MQCFT_STRING_FILTER:
            if (const MQLONG reason = filter(MQCFSF_STRUC_LENGTH_FIXED)) return reason;
            return string(20, MQCFSF_STRUC_LENGTH_FIXED);
        case MQCFT_BYTE_STRING_FILTER:
            if (const MQLONG reason = filter(MQCFBF_STRUC_LENGTH_FIXED)) return reason;
            return string(16, MQCFBF_STRUC_LENGTH_FIXED);
        case MQCFT_GROUP:
            if (const MQLONG reason = numbersFrom(12, 1, 4, MQCFGR_STRUC_LENGTH)) return reason;
            return parameter_.numbers.front() < 0 ? errors_.count : MQRC_NONE;
        default:
            return MQRCCF_STRUCTURE_TYPE_ERROR;
        }
    }

private:
    bool shorterThan(std::size_t length) const { return bytes_.size() < length; }

    MQLONG numbersFrom(std::size_t offset, std::size_t count, std::size_t width, std::size_t length)
    {
        if (bytes_.size() != length) return errors_.length;
        parameter_.numbers.reserve(count);
        for (std::size_t i = 0; i < count; ++i, offset += width)
            parameter_.numbers.push_back(width == 4 ? integers_.at(offset) : integers_.longAt(offset));
        return MQRC_NONE;
    }

    MQLONG list(std::size_t width, std::size_t fixed)
    {
        if (shorterThan(fixed)) return errors_.length;
        const MQLONG count = integers_.at(12);
        if (count < 0) return errors_.count;
        // A count that is not true to the length is stopped here, before room is made for its values.
        const auto values = static_cast<std::size_t>(count);
        if (values > (bytes_.size() - fixed) / width) return errors_.length;
        return numbersFrom(fixed, values, width, fixed + values * width);
    }

    MQLONG filter(std::size_t fixed)
    {
        if (shorterThan(fixed)) return errors_.length;
        parameter_.operation = integers_.at(12);
        const auto *known = std::find(std::begin(operators), std::end(operators), parameter_.operation);
        return known == std::end(operators) ? errors_.operation : MQRC_NONE;
    }

    std::string text(std::size_t offset, std::size_t length) const
    {
        return {reinterpret_cast<const char *>(bytes_.data()) + offset, length};
    }

    // The string behind the fixed part; its length stands at `offset`.
    MQLONG string(std::size_t offset, std::size_t fixed)
    {
        if (shorterThan(fixed)) return errors_.length;
        const MQLONG length = integers_.at(offset);
        if (length < 0) return errors_.string;
        if (!isLengthFor(static_cast<std::size_t>(length), fixed)) return errors_.length;
        parameter_.texts.push_back(text(fixed, static_cast<std::size_t>(length)));
        return MQRC_NONE;
    }

    MQLONG strings()
    {
        constexpr std::size_t fixed = MQCFSL_STRUC_LENGTH_FIXED;
        if (shorterThan(fixed)) return errors_.length;
        const MQLONG count = integers_.at(16);
        const MQLONG length = integers_.at(20);
        if (count < 0) return errors_.count;
        if (length < 0) return errors_.string;
        const auto each = static_cast<std::size_t>(length);
        const auto number = static_cast<std::size_t>(count);
        // Strings of no length take no room: as many as one likes would fit.
        if (each == 0 && number > bytes_.size()) return errors_.count;
        if (each != 0 && number > (bytes_.size() - fixed) / each) return errors_.length;
        if (!isLengthFor(number * each, fixed)) return errors_.length;
        parameter_.texts.reserve(number);
        for (std::size_t i = 0; i < number; ++i)
            parameter_.texts.push_back(text(fixed + i * each, each));
        return MQRC_NONE;
    }

    // A structure with strings is a multiple of four bytes; it may be longer than its strings need.
    bool isLengthFor(std::size_t strings, std::size_t fixed) const
    {
        return bytes_.size() % 4 == 0 && strings <= bytes_.size() - fixed;
    }

    std::span<const std::byte> bytes_;
    Integers integers_;
    const Errors &errors_;
    PcfParameter &parameter_;
};

// The header's fields stand in the order of the structure.
void readHeader(const Integers &integers, MQCFH &header)
{
    MQLONG *const fields[] = {&header.Type,     &header.StrucLength,  &header.Version,
                              &header.Command,  &header.MsgSeqNumber, &header.Control,
                              &header.CompCode, &header.Reason,       &header.ParameterCount};
    std::size_t offset = 0;
    for (MQLONG *field : fields) {
        *field = integers.at(offset);
        offset += sizeof(MQLONG);
    }
}

} // namespace

ReadPcf readPcf(std::span<const std::byte> message, MQLONG encoding)
{
    ReadPcf read;
    const auto fail = [&read](PcfFault fault) {
        read.fault = fault;
        return std::move(read);
    };
    const MQLONG order = encoding & MQENC_INTEGER_MASK;
    if (order != MQENC_INTEGER_NORMAL && order != MQENC_INTEGER_REVERSED) return fail({MQRCCF_ENCODING_ERROR});
    const bool bigEndian = order == MQENC_INTEGER_NORMAL;
    if (message.size() < MQCFH_STRUC_LENGTH) return fail({MQRCCF_MSG_LENGTH_ERROR});
    readHeader(Integers(message, bigEndian), read.header);
    if (read.header.StrucLength != MQCFH_STRUC_LENGTH) return fail({MQRCCF_CFH_LENGTH_ERROR});
    if (read.header.ParameterCount < 0) return fail({MQRCCF_CFH_PARM_COUNT_ERROR});

    std::span<const std::byte> rest = message.subspan(MQCFH_STRUC_LENGTH);
    for (MQINT64 left = read.header.ParameterCount; left > 0; --left) {
        if (rest.size() < smallestStructure) return fail({MQRCCF_MSG_LENGTH_ERROR});
        const Integers integers(rest, bigEndian);
        PcfParameter parameter;
        parameter.type = integers.at(0);
        parameter.id = integers.at(8);
        const Errors *errors = errorsOf(parameter.type);
        if (errors == nullptr) return fail(faultOf(MQRCCF_STRUCTURE_TYPE_ERROR, parameter.id));
        const MQLONG length = integers.at(4);
        if (length < static_cast<MQLONG>(smallestStructure)) return fail(faultOf(errors->length, parameter.id));
        if (static_cast<std::size_t>(length) > rest.size()) return fail({MQRCCF_MSG_LENGTH_ERROR});

        const auto bytes = rest.first(static_cast<std::size_t>(length));
        if (const MQLONG reason = StructureReader(bytes, bigEndian, *errors, parameter).run())
            return fail(faultOf(reason, parameter.id));
        if (parameter.type == MQCFT_GROUP) left += parameter.numbers.front();
        rest = rest.subspan(bytes.size());
        read.parameters.push_back(std::move(parameter));
    }
    if (!rest.empty()) return fail({MQRCCF_MSG_LENGTH_ERROR});
    return read;
}

std::string_view textOf(const std::string &string)
{
    std::string_view text = string;
    text = text.substr(0, text.find('\0'));
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    return text;
}

} // namespace mqrig::qmgr::command
