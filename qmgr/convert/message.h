// MQGMO_CONVERT: a message as it was delivered, brought into the character set and encoding that its program wants.
//
// The body is a chain of parts: headers of the MQI, each of which tells the format and representation of what
// follows, and at the end a text, a message of PCF structures, or data of a format that only its programs know.
// Each part is converted for itself. Where one cannot be, it stays as it is with everything behind it, the header in
// front of it says so, and the warning says why; what stands before it is converted. Where that is the first part, the
// message is as it was delivered.
#pragma once

#include <cstddef>
#include <span>

#include "cmqc.h"
#include "qmgr/convert/text.h"

namespace mqrig::qmgr::convert {

struct Message {
    MQLONG encoding = MQENC_NATIVE; // of its descriptor, and the next two
    MQLONG ccsid = MQCCSI_UNDEFINED;
    const char *format = nullptr; // 8 characters
    std::span<std::byte> buffer;  // the program's
    std::size_t delivered = 0;    // bytes of the message in it
    std::size_t length = 0;       // of the whole message
};

struct Wanted {
    Representation representation; // as the program gives it
    MQLONG queueManagerCcsid = MQCCSI_UNDEFINED;
    bool acceptTruncated = false; // MQGMO_ACCEPT_TRUNCATED_MSG
};

struct Conversion {
    MQLONG reason = MQRC_NONE;     // of a warning
    Representation representation; // of the body now
    std::size_t returned = 0;      // bytes in the buffer that are of the message
    std::size_t length = 0;        // for DataLength
};

// Converts what is in the buffer, in place. MQRC_FORMAT_ERROR: no format, an unknown one, or data that are not of
// their format. MQRC_SOURCE_CCSID_ERROR, MQRC_SOURCE_INTEGER_ENC_ERROR, MQRC_SOURCE_DECIMAL_ENC_ERROR,
// MQRC_SOURCE_FLOAT_ENC_ERROR and the same of the target. MQRC_NOT_CONVERTED: text that is none of its character set,
// or that the target has not. MQRC_CONVERTED_STRING_TOO_BIG: text that grows out of its field.
// MQRC_CONVERTED_MSG_TOO_BIG: a message that grows out of the buffer. MQRC_PARTIALLY_CONVERTED: headers whose fields
// are too short for the target are in the queue manager's own representation. MQRC_TRUNCATED_MSG_ACCEPTED: the
// message was cut before or during the conversion. MQRC_STORAGE_NOT_AVAILABLE.
Conversion convertMessage(const Message &message, const Wanted &wanted) noexcept;

} // namespace mqrig::qmgr::convert
