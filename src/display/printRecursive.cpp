// The walk over the headers of a body. Each step shows one structure and leaves `DataFormat` and `DataEncoding`
// describing what follows. It is a loop, so that no body can use up the stack, and a structure that was not received
// completely ends it with the dump of what remains.
#include "display.h"

#include "common.h"

#include <algorithm>
#include <cmqcfc.h>
#include <cstring>
#include <optional>

namespace {

/// What is left of the body.
struct Rest {
    const char *data;
    MQLONG length;

    void advance(MQLONG bytes)
    {
        data += bytes;
        length -= bytes;
    }
};

enum class Walk { GoesOn, Ends };

/// The structure at the head of the rest, copied to where it is aligned; nothing when it does not fit.
template <class Structure>
std::optional<Structure> head_of(const Rest &rest, std::size_t size = sizeof(Structure))
{
    if (rest.length < static_cast<MQLONG>(size)) return std::nullopt;
    Structure structure{};
    std::memcpy(&structure, rest.data, size);
    return structure;
}

bool has_format(const RunParams *params, const char (&format)[MQ_FORMAT_LENGTH + 1])
{
    return std::memcmp(params->DataFormat, format, MQ_FORMAT_LENGTH) == 0;
}

void set_format(RunParams *params, const MQCHAR8 &format)
{
    std::memcpy(params->DataFormat, format, MQ_FORMAT_LENGTH);
}

Walk dump(const Rest &rest)
{
    printDumpFormat(rest.data, rest.length, rest.length);
    return Walk::Ends;
}

/// Inside a transmission queue header stands an MQMD, which no format names.
bool is_descriptor(const Rest &rest, const RunParams *params)
{
    return params->DataFormat[0] == '\0' && rest.length >= 8 && std::memcmp(rest.data, MQMD_STRUC_ID, 4) == 0;
}

Walk walk_descriptor(Rest &rest, RunParams *params)
{
    const std::optional<MQMD1> version1 = head_of<MQMD1>(rest);
    if (!version1) return dump(rest);
    if (version1->Version == MQMD_VERSION_1) {
        set_format(params, version1->Format);
        printMessageDescriptor(&*version1, params);
        rest.advance(sizeof(MQMD1));
    } else {
        const std::optional<MQMD> md = head_of<MQMD>(rest);
        if (!md) return dump(rest);
        set_format(params, md->Format);
        printMessageDescriptorV2(&*md, params);
        rest.advance(sizeof(MQMD));
    }
    params->DataEncoding = version1->Encoding;
    return Walk::GoesOn;
}

Walk walk_extension(Rest &rest, RunParams *params)
{
    const std::optional<MQMDE> mde = head_of<MQMDE>(rest);
    if (!mde) return dump(rest);
    printMessageDescriptorExtention(&*mde, params);
    set_format(params, mde->Format);
    params->DataEncoding = mde->Encoding;
    rest.advance(sizeof(MQMDE));
    return Walk::GoesOn;
}

Walk walk_dead_letter(Rest &rest, RunParams *params)
{
    const std::optional<MQDLH> dlh = head_of<MQDLH>(rest);
    if (!dlh) return dump(rest);
    printDeadLetterHedder(&*dlh, params);
    set_format(params, dlh->Format);
    params->DataEncoding = reverseEndian(dlh->Encoding, params);
    rest.advance(sizeof(MQDLH));
    return Walk::GoesOn;
}

Walk walk_transmission(Rest &rest, RunParams *params)
{
    constexpr std::size_t InFrontOfDescriptor = offsetof(MQXQH, MsgDesc);
    const std::optional<MQXQH> xqh = head_of<MQXQH>(rest, InFrontOfDescriptor);
    if (!xqh) return dump(rest);
    printXmitQueueHedder(&*xqh, params);
    std::memset(params->DataFormat, 0, sizeof params->DataFormat);
    rest.advance(static_cast<MQLONG>(InFrontOfDescriptor));
    return Walk::GoesOn;
}

Walk walk_rfh2(Rest &rest, RunParams *params)
{
    const std::optional<MQRFH2> rfh2 = head_of<MQRFH2>(rest);
    if (!rfh2) return dump(rest);
    if (printMQRFH2(rest.data, rest.length, params) != StatusOk) return Walk::Ends;
    set_format(params, rfh2->Format);
    const MQLONG length = reverseEndian(rfh2->StrucLength, params);
    if (length > rest.length || length <= 0) {
        std::printf("MQRFH2 StrucLength invalid. %d\n", length);
        return Walk::Ends;
    }
    params->DataEncoding = reverseEndian(rfh2->Encoding, params);
    rest.advance(length);
    return Walk::GoesOn;
}

Walk walk_pcf(const Rest &rest, RunParams *params)
{
    const std::optional<MQCFH> cfh = head_of<MQCFH>(rest);
    if (!cfh) return dump(rest);
    // No body holds more structures than bytes, whatever its header says.
    const MQLONG parameters = std::clamp(reverseEndian(cfh->ParameterCount, params), 0, rest.length);
    printPCF(rest.data, rest.length, parameters + 1, params);
    return Walk::Ends;
}

Walk walk_structure(Rest &rest, RunParams *params)
{
    if (is_descriptor(rest, params)) return walk_descriptor(rest, params);
    if (has_format(params, MQFMT_MD_EXTENSION)) return walk_extension(rest, params);
    if (has_format(params, MQFMT_DEAD_LETTER_HEADER)) return walk_dead_letter(rest, params);
    if (has_format(params, MQFMT_XMIT_Q_HEADER)) return walk_transmission(rest, params);
    if (has_format(params, MQFMT_RF_HEADER_2)) return walk_rfh2(rest, params);
    if (has_format(params, MQFMT_ADMIN) || has_format(params, MQFMT_EMBEDDED_PCF) || has_format(params, MQFMT_EVENT) ||
        has_format(params, MQFMT_PCF)) {
        return walk_pcf(rest, params);
    }
    return dump(rest);
}

} // namespace

void printRecursive(const void *data, MQLONG, MQLONG shownLength, RunParams *params)
{
    Rest rest{static_cast<const char *>(data), shownLength};
    while (walk_structure(rest, params) == Walk::GoesOn) {
    }
}
