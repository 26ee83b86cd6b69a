// The walk over the properties of a message. Each inquiry moves the cursor on to the next property, except after one
// that a buffer was too small for: then the buffer grows and the property under the cursor is asked for again.
#include "display.h"

#include "common.h"
#include "display/shown_length.h"
#include "mqicalls.h"

#include <algorithm>
#include <climits>
#include <cstring>

namespace {

constexpr MQLONG FirstValueSize = 32767;
constexpr MQLONG FirstNameSize = 256;

struct GrowingBuffer {
    Buffer<> bytes;
    std::size_t size = 0;

    bool allocate(MQLONG firstSize)
    {
        size = static_cast<std::size_t>(firstSize);
        bytes = checked_malloc(nullptr, size, {"print_mp"});
        return bytes != nullptr;
    }
    bool hold(std::size_t needed)
    {
        if (needed <= size) return true;
        if (!checked_realloc(nullptr, bytes, needed, {"print_mp"})) return false;
        size = needed;
        return true;
    }
};

struct Buffers {
    GrowingBuffer value;
    GrowingBuffer name;
    GrowingBuffer convertedValue;
    GrowingBuffer convertedName;

    bool allocate()
    {
        return value.allocate(FirstValueSize) && name.allocate(FirstNameSize) &&
               convertedValue.allocate(FirstValueSize) && convertedName.allocate(FirstNameSize);
    }
};

/// What an inquiry answered.
struct Inquired {
    MQLONG type = MQTYPE_AS_SET;
    MQLONG dataLength = 0;
    MQLONG compCode = MQCC_OK;
    MQLONG reason = MQRC_NONE;
};

/// Bytes that a buffer really holds of a length that the queue manager gave: the last byte was not offered to it.
MQLONG held(const GrowingBuffer &buffer, MQLONG length)
{
    return std::clamp(length, 0, static_cast<MQLONG>(buffer.size) - 1);
}

/// A number from the value buffer; what the queue manager did not return of it is zero.
template <class Number>
Number number_of(const GrowingBuffer &value, MQLONG length)
{
    Number number = 0;
    std::memcpy(&number, value.bytes.get(), std::min(sizeof number, static_cast<std::size_t>(length)));
    return number;
}

/// The first `length` bytes of `source` in the output form, or null after the report that there is no memory.
const char *converted(const GrowingBuffer &source, MQLONG length, MQLONG form, GrowingBuffer &target)
{
    if (!target.hold(converted_size(length))) return nullptr;
    cnvrtmsg(source.bytes.get(), target.bytes.get(), length, form);
    return target.bytes.get();
}

bool show_name(const RunParams *params, Buffers &buffers)
{
    const MQLONG length = held(buffers.name, params->Impo.ReturnedName.VSLength);
    if (params->OutputForm == OutputFormRaw) {
        std::printf("  ");
        printRaw(buffers.name.bytes.get(), length);
        std::printf(" : ");
        return true;
    }
    const char *const name = converted(buffers.name, length, params->OutputForm, buffers.convertedName);
    if (name == nullptr) return false;
    std::printf("  %s : ", name);
    return true;
}

bool show_byte_string(Buffers &buffers, MQLONG length)
{
    GrowingBuffer &digits = buffers.convertedValue;
    if (!digits.hold(converted_size(length))) return false;
    bin2hexdec(buffers.value.bytes.get(), digits.bytes.get(), static_cast<std::size_t>(length));
    std::printf("X'%s'", digits.bytes.get());
    return true;
}

bool show_string(const RunParams *params, Buffers &buffers, MQLONG length)
{
    if (params->OutputForm == OutputFormRaw) {
        std::putchar('\'');
        printRaw(buffers.value.bytes.get(), length);
        std::putchar('\'');
        return true;
    }
    const char *const value = converted(buffers.value, length, params->OutputForm, buffers.convertedValue);
    if (value == nullptr) return false;
    std::printf("'%s' ", value);
    return true;
}

/// False after the report that there is no memory for a conversion.
bool show_value(const RunParams *params, Buffers &buffers, const Inquired &inquired)
{
    const GrowingBuffer &value = buffers.value;
    const MQLONG length = held(value, inquired.dataLength);
    switch (inquired.type) {
    case MQTYPE_NULL:
        std::printf("NULL");
        return true;
    case MQTYPE_BOOLEAN:
        std::printf("%s", number_of<MQLONG>(value, length) != 0 ? "TRUE" : "FALSE");
        return true;
    case MQTYPE_BYTE_STRING:
        return show_byte_string(buffers, length);
    case MQTYPE_INT8:
        std::printf("%d", number_of<MQINT8>(value, length));
        return true;
    case MQTYPE_INT16:
        std::printf("%hd", number_of<MQINT16>(value, length));
        return true;
    case MQTYPE_INT32:
        std::printf("%d", number_of<MQLONG>(value, length));
        return true;
    case MQTYPE_INT64:
        std::printf("%lld", static_cast<long long>(number_of<MQINT64>(value, length)));
        return true;
    case MQTYPE_FLOAT32:
        std::printf("%e", static_cast<double>(number_of<MQFLOAT32>(value, length)));
        return true;
    case MQTYPE_FLOAT64:
        std::printf("%e", number_of<MQFLOAT64>(value, length));
        return true;
    case MQTYPE_STRING:
        return show_string(params, buffers, length);
    default:
        std::printf("<unrecognized data type>\n");
        return true;
    }
}

Inquired inquire(RunParams *params, MQHCONN hconn, Buffers &buffers)
{
    Inquired inquired;
    MQSeriesInqMP(hconn, params, static_cast<MQLONG>(buffers.name.size), buffers.name.bytes.get(), &inquired.type,
                  static_cast<MQLONG>(buffers.value.size), reinterpret_cast<MQBYTE *>(buffers.value.bytes.get()),
                  &inquired.dataLength, &inquired.compCode, &inquired.reason);
    return inquired;
}

/// Makes room for what the queue manager could not return, which it gave the length of. A length that fits already, or
/// that nothing could hold, would be answered in the same way for ever.
bool can_grow(const GrowingBuffer &buffer, MQLONG length)
{
    return length >= static_cast<MQLONG>(buffer.size) && length < INT_MAX;
}

void walk(RunParams *params, MQHCONN hconn, Buffers &buffers)
{
    MQLONG &options = params->Impo.Options;
    for (bool first = true;; first = false) {
        const Inquired inquired = inquire(params, hconn, buffers);
        if (inquired.reason == MQRC_NONE) {
            if (!show_name(params, buffers) || !show_value(params, buffers, inquired)) return;
            std::putchar('\n');
            if (inquired.compCode != MQCC_OK) return;
            options = (options & ~MQIMPO_INQ_PROP_UNDER_CURSOR) | MQIMPO_INQ_NEXT;
            continue;
        }
        if (inquired.reason == MQRC_PROPERTY_NOT_AVAILABLE) {
            if (first) std::printf("\n  None\n");
            return;
        }
        GrowingBuffer *tooSmall = nullptr;
        MQLONG length = 0;
        if (inquired.reason == MQRC_PROPERTY_VALUE_TOO_BIG) {
            tooSmall = &buffers.value;
            length = inquired.dataLength;
        } else if (inquired.reason == MQRC_PROPERTY_NAME_TOO_BIG) {
            tooSmall = &buffers.name;
            length = params->Impo.ReturnedName.VSLength;
        }
        if (tooSmall == nullptr || !can_grow(*tooSmall, length)) {
            std::printf("MQINQMP failed with CompCode:%d Reason:%d\n", inquired.compCode, inquired.reason);
            return;
        }
        if (!tooSmall->hold(static_cast<std::size_t>(length) + 1)) return;
        options = (options & ~MQIMPO_INQ_NEXT) | MQIMPO_INQ_PROP_UNDER_CURSOR;
    }
}

} // namespace

void print_mp(RunParams *params, MQHCONN hconn)
{
    Buffers buffers;
    if (!buffers.allocate()) return;
    std::printf("****Message properties****\n\n");
    const MQIMPO given = params->Impo;
    walk(params, hconn, buffers);
    params->Impo = given; // its returned name points into a buffer that ends here
    std::putchar('\n');
}
