// A PCF message, structure by structure. Nothing in it is trusted: a structure is shown as far as it was received and
// as far as its own StrucLength says that it reaches, and one that is cut, or whose length is impossible, ends the
// walk. Every structure that the walk passes is at least as long as its type demands, so the walk ends however many
// structures the message claims to have.
#include "display.h"

#include "common.h"

#include <algorithm>
#include <cmqcfc.h>
#include <cstdint>
#include <cstring>

namespace {

constexpr MQLONG LongestString = 1024;

/// One structure and the line that shows it. Fields are shown in the order in which they lie; behind the first one
/// that is not there, nothing more is.
class Structure {
public:
    Structure(const char *data, MQLONG received, RunParams *params)
        : data_(data), received_(received), end_(received), params_(params)
    {
    }

    bool has_type() const { return received_ >= static_cast<MQLONG>(sizeof(MQLONG)); }

    /// The first field, which the caller writes.
    MQLONG type() { return reverseEndian(take<MQLONG>(), params_); }

    /// The second field. From here on the structure ends where it says so.
    void length()
    {
        length_ = integer("StrucLength");
        end_ = std::clamp(length_, 0, received_);
    }

    /// "Name[value]" and `behind`; 0 when the field is not there.
    MQLONG integer(const char *name, const char *behind = " ")
    {
        const MQLONG value = reverseEndian(take<MQLONG>(), params_);
        if (cut_) return 0;
        std::printf("%s[%d]%s", name, value, behind);
        return value;
    }

    void integer64(const char *name)
    {
        const MQINT64 value = reverseEndian64(take<MQINT64>(), params_);
        if (!cut_) std::printf("%s[%lld]", name, static_cast<long long>(value));
    }

    void skip(MQLONG bytes)
    {
        if (available(bytes)) at_ += bytes;
    }

    void integers(MQLONG count)
    {
        list<MQLONG>(count, [this](MQLONG value) { std::printf("%d", reverseEndian(value, params_)); });
    }

    void integers64(MQLONG count)
    {
        list<MQINT64>(count, [this](MQINT64 value) {
            std::printf("%lld", static_cast<long long>(reverseEndian64(value, params_)));
        });
    }

    /// "Name[bytes]". An impossible length ends the walk, but not the line.
    void string(const char *name, MQLONG length)
    {
        if (cut_) return;
        std::printf("%s[", name);
        bytes(length);
        std::putchar(']');
    }

    void strings(MQLONG count, MQLONG length)
    {
        if (cut_) return;
        if (count < 0) bad_ = true;
        if (length == 0) {
            std::printf("Strings[]");
            return;
        }
        for (MQLONG i = 1; i <= count && !cut_; ++i) {
            if (!available(1)) return;
            std::printf("%sString%d[", i == 1 ? "" : " ", i);
            bytes(length);
            std::putchar(']');
        }
    }

    /// The members of a group count among the structures that are still to come.
    void group() { members_ = integer("ParameterCount", ""); }
    MQLONG members() const { return members_; }

    /// Whether another structure can stand behind this one, and where.
    bool ends_walk() const { return cut_ || bad_ || length_ > received_; }
    MQLONG length_of_structure() const { return length_; }

private:
    bool available(MQLONG bytes)
    {
        if (cut_ || end_ - at_ < bytes) cut_ = true;
        return !cut_;
    }

    template <class Number>
    Number take()
    {
        Number number = 0;
        if (!available(static_cast<MQLONG>(sizeof number))) return number;
        std::memcpy(&number, data_ + at_, sizeof number);
        at_ += static_cast<MQLONG>(sizeof number);
        return number;
    }

    template <class Number, class Show>
    void list(MQLONG count, Show show)
    {
        if (cut_) return;
        if (count < 0) bad_ = true;
        std::printf("Values[");
        for (MQLONG i = 0; i < count; ++i) {
            const Number value = take<Number>();
            if (cut_) break;
            if (i > 0) std::putchar(',');
            show(value);
        }
        std::putchar(']');
    }

    void bytes(MQLONG length)
    {
        if (length < 0 || length > LongestString) bad_ = true;
        const MQLONG there = std::clamp(length, 0, end_ - at_);
        if (there != length) cut_ = true;
        printEachMode(data_ + at_, there, params_->DisplayForm);
        at_ += there;
    }

    const char *data_;
    MQLONG received_; ///< bytes from the start of the structure to the end of what was received
    MQLONG end_;
    MQLONG at_ = 0;
    MQLONG length_ = 0;
    MQLONG members_ = 0;
    bool cut_ = false; ///< a field was not there
    bool bad_ = false; ///< all fields were there, one of them impossible
    RunParams *params_;
};

void show_header(Structure &cfh)
{
    cfh.integer("Version");
    cfh.integer("Command");
    cfh.integer("MsgSeqNumber");
    cfh.integer("Control");
    cfh.integer("CompCode");
    cfh.integer("Reason");
    cfh.integer("ParameterCount", "");
}

void show_integer(Structure &cfin)
{
    cfin.integer("Value", "");
}

void show_string(Structure &cfst)
{
    cfst.integer("CodedCharSetId");
    const MQLONG length = cfst.integer("StringLength");
    cfst.string("String", length);
}

void show_integer_list(Structure &cfil)
{
    const MQLONG count = cfil.integer("Count");
    cfil.integers(count);
}

void show_string_list(Structure &cfsl)
{
    cfsl.integer("CodedCharSetId");
    const MQLONG count = cfsl.integer("Count");
    const MQLONG length = cfsl.integer("StringLength");
    cfsl.strings(count, length);
}

void show_byte_string(Structure &cfbs)
{
    const MQLONG length = cfbs.integer("StringLength");
    cfbs.string("String", length);
}

void show_integer_filter(Structure &cfif)
{
    cfif.integer("Operator");
    cfif.integer("FilterValue", "");
}

void show_string_filter(Structure &cfsf)
{
    cfsf.integer("Operator");
    cfsf.integer("CodedCharSetId");
    const MQLONG length = cfsf.integer("FilterValueLength");
    cfsf.string("FilterValue", length);
}

void show_byte_string_filter(Structure &cfbf)
{
    cfbf.integer("Operator");
    const MQLONG length = cfbf.integer("FilterValueLength");
    cfbf.string("FilterValue", length);
}

void show_group(Structure &cfgr)
{
    cfgr.group();
}

void show_integer64(Structure &cfin64)
{
    cfin64.skip(sizeof(MQLONG)); // reserved
    cfin64.integer64("Value");
}

void show_integer64_list(Structure &cfil64)
{
    const MQLONG count = cfil64.integer("Count");
    cfil64.integers64(count);
}

struct StructureType {
    MQLONG type;
    const char *name;
    void (*show)(Structure &structure); ///< the fields behind Parameter, or behind StrucLength in a header
};

#define PCF_TYPE(type) type, #type

constexpr StructureType TYPES[] = {
    {PCF_TYPE(MQCFT_NONE), show_header},
    {PCF_TYPE(MQCFT_COMMAND), show_header},
    {PCF_TYPE(MQCFT_RESPONSE), show_header},
    {PCF_TYPE(MQCFT_INTEGER), show_integer},
    {PCF_TYPE(MQCFT_STRING), show_string},
    {PCF_TYPE(MQCFT_INTEGER_LIST), show_integer_list},
    {PCF_TYPE(MQCFT_STRING_LIST), show_string_list},
    {PCF_TYPE(MQCFT_EVENT), show_header},
    {PCF_TYPE(MQCFT_USER), show_header},
    {PCF_TYPE(MQCFT_BYTE_STRING), show_byte_string},
    {PCF_TYPE(MQCFT_TRACE_ROUTE), show_header},
    {PCF_TYPE(MQCFT_REPORT), show_header},
    {PCF_TYPE(MQCFT_INTEGER_FILTER), show_integer_filter},
    {PCF_TYPE(MQCFT_STRING_FILTER), show_string_filter},
    {PCF_TYPE(MQCFT_BYTE_STRING_FILTER), show_byte_string_filter},
    {PCF_TYPE(MQCFT_COMMAND_XR), show_header},
    {PCF_TYPE(MQCFT_XR_MSG), show_header},
    {PCF_TYPE(MQCFT_XR_ITEM), show_header},
    {PCF_TYPE(MQCFT_XR_SUMMARY), show_header},
    {PCF_TYPE(MQCFT_GROUP), show_group},
    {PCF_TYPE(MQCFT_STATISTICS), show_header},
    {PCF_TYPE(MQCFT_ACCOUNTING), show_header},
    {PCF_TYPE(MQCFT_INTEGER64), show_integer64},
    {PCF_TYPE(MQCFT_INTEGER64_LIST), show_integer64_list},
    {PCF_TYPE(MQCFT_APP_ACTIVITY), show_header},
};

const StructureType *type_of(MQLONG type)
{
    const auto *row = std::find_if(std::begin(TYPES), std::end(TYPES),
                                   [type](const StructureType &candidate) { return candidate.type == type; });
    return row != std::end(TYPES) ? row : nullptr;
}

/// False when the type is unknown.
bool show_structure(Structure &structure)
{
    const MQLONG number = structure.type();
    const StructureType *const type = type_of(number);
    if (type == nullptr) {
        std::printf("unsupported pcf type\n");
        return false;
    }
    const bool isHeader = type->show == show_header;
    std::printf(isHeader ? "*MQCFH(%s) Type[%d] " : "(%s) Type[%d] ", type->name, number);
    structure.length();
    if (!isHeader) structure.integer("Parameter");
    type->show(structure);
    std::putchar('\n');
    return true;
}

} // namespace

void printPCF(const void *structure, MQLONG available, MQLONG count, RunParams *params)
{
    const char *data = static_cast<const char *>(structure);
    std::int64_t remaining = count; // groups may claim any number of members
    do {
        Structure shown(data, available, params);
        if (!shown.has_type() || !show_structure(shown) || shown.ends_walk()) return;
        remaining += shown.members();
        data += shown.length_of_structure();
        available -= shown.length_of_structure();
    } while (--remaining > 0);
}
