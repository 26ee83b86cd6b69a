// Messages for the tests of the conversion: made field by field, converted in a buffer of a given size.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "cmqc.h"
#include "qmgr/convert/message.h"

namespace mqrig::qmgr::convert {

inline const Representation native{MQENC_NATIVE, 1208};
inline const Representation mainframe{MQENC_S390, 500};

// Bytes of a message in a representation.
class Bytes {
public:
    explicit Bytes(const Representation &representation) : representation_(representation) {}

    Bytes &number(MQLONG value)
    {
        for (int i = 0; i < 4; ++i)
            bytes_.push_back(static_cast<char>(value >> 8 * (representation_.reversed() ? i : 3 - i)));
        return *this;
    }
    Bytes &field(std::string_view value, std::size_t size)
    {
        std::string padded(value);
        padded.resize(size, ' ');
        return encoded(padded);
    }
    Bytes &encoded(std::string_view utf8)
    {
        std::string made;
        EXPECT_FALSE(text(utf8, native, representation_, made).failed()) << utf8;
        bytes_ += made;
        return *this;
    }
    Bytes &raw(std::string_view bytes)
    {
        bytes_ += bytes;
        return *this;
    }
    operator std::string() const { return bytes_; } // NOLINT: it is a string

private:
    Representation representation_;
    std::string bytes_;
};

struct Converted {
    Conversion conversion;
    std::string body;
};

struct Case {
    const char *format = MQFMT_STRING;
    Representation source = native;
    Representation target = native;
    std::size_t buffer = 4096;
    bool acceptTruncated = false;
};

// As MQGET does it: what fits is delivered, then converted where it is. The buffer is exactly as large as it says, so
// that the address sanitizer sees every step beside it.
inline Converted convertBody(const Case &test, std::string_view body)
{
    std::vector<std::byte> buffer(test.buffer, std::byte{0x5A});
    const std::size_t delivered = std::min(test.buffer, body.size());
    if (delivered != 0) std::memcpy(buffer.data(), body.data(), delivered);
    const Message message{test.source.encoding, test.source.ccsid, test.format, buffer, delivered, body.size()};
    Converted converted;
    converted.conversion = convertMessage(message, {test.target, 1208, test.acceptTruncated});
    EXPECT_LE(converted.conversion.returned, test.buffer);
    converted.body.assign(reinterpret_cast<const char *>(buffer.data()), converted.conversion.returned);
    return converted;
}

inline std::string dlh(const Representation &own, const Representation &next, std::string_view format)
{
    return Bytes(own)
        .field("DLH ", 4)
        .number(1)
        .number(MQRC_PUT_INHIBITED)
        .field("TARGET", 48)
        .field("QM1", 48)
        .number(next.encoding)
        .number(next.ccsid)
        .field(format, 8)
        .number(MQAT_UNIX)
        .field("a program", 28)
        .field("20260102", 8)
        .field("03040506", 8);
}

inline std::string mde(const Representation &own, const Representation &next, std::string_view format,
                       MQLONG strucLength = 72)
{
    return Bytes(own)
        .field("MDE ", 4)
        .number(2)
        .number(strucLength)
        .number(next.encoding)
        .number(next.ccsid)
        .field(format, 8)
        .number(0)
        .raw(std::string(24, '\x81'))
        .number(3)
        .number(0)
        .number(8)
        .number(-1);
}

inline std::string rfh2(const Representation &own, const Representation &next, std::string_view format,
                        MQLONG nameValueCcsid, std::string_view pairs, MQLONG strucLength = -1)
{
    return Bytes(own)
        .field("RFH ", 4)
        .number(2)
        .number(strucLength == -1 ? static_cast<MQLONG>(36 + pairs.size()) : strucLength)
        .number(next.encoding)
        .number(next.ccsid)
        .field(format, 8)
        .number(0)
        .number(nameValueCcsid)
        .raw(pairs);
}

} // namespace mqrig::qmgr::convert
