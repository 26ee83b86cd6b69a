// An MQRFH2 of version 2: the fixed part from the options, and a folder for each item of -nd. Integers are written in
// the encoding that `DataEncoding` names.
#include "send.h"

#include "common.h"

#include <cstring>

namespace {

/// Blanks behind a folder's text make its length a multiple of four; there is always at least one.
std::size_t padded(std::size_t length)
{
    return length - length % 4 + 4;
}

void write_integer(RunParams *params, char *at, std::size_t value)
{
    const MQLONG written = reverseEndian(static_cast<MQLONG>(value), params);
    std::memcpy(at, &written, sizeof written);
}

Buffer<> make_fixed_part(RunParams *params)
{
    Buffer<> header = checked_malloc(params, sizeof(MQRFH2), {"make_rfh2"});
    if (header == nullptr) return nullptr;
    MQRFH2 rfh2 = params->Rfh2;
    for (MQLONG MQRFH2::*const field : {&MQRFH2::Version, &MQRFH2::StrucLength, &MQRFH2::Encoding,
                                        &MQRFH2::CodedCharSetId, &MQRFH2::Flags, &MQRFH2::NameValueCCSID}) {
        rfh2.*field = reverseEndian(rfh2.*field, params);
    }
    std::memcpy(header.get(), &rfh2, sizeof rfh2);
    return header;
}

/// Grows the header by one folder: its length, the text, blanks.
bool append_folder(RunParams *params, Buffer<> &header, std::size_t &total, const char *text)
{
    const std::size_t length = std::strlen(text);
    const std::size_t folder = padded(length);
    const std::size_t start = total;
    total += sizeof(MQLONG) + folder;
    if (!checked_realloc(params, header, total + 1, {"make_rfh2"})) return false;

    char *const at = header.get() + start;
    write_integer(params, at, folder);
    std::memcpy(at + sizeof(MQLONG), text, length);
    std::memset(at + sizeof(MQLONG) + length, pad_s, folder - length);
    return true;
}

} // namespace

char *make_rfh2(RunParams *params)
{
    Buffer<> header = make_fixed_part(params);
    if (header == nullptr || params->NameValueData == nullptr) return header.release();

    const Buffer<> list = checked_copy(params, params->NameValueData, {"make_rfh2"});
    if (list == nullptr) return nullptr;
    std::size_t total = sizeof(MQRFH2);
    char *position = nullptr;
    for (const char *item = strtok_r(list.get(), ",", &position); item != nullptr;
         item = strtok_r(nullptr, ",", &position)) {
        if (!append_folder(params, header, total, item)) return nullptr;
    }
    write_integer(params, header.get() + offsetof(MQRFH2, StrucLength), total);
    return header.release();
}
