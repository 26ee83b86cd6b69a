#include "display.h"

#include "common.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr MQLONG LongestPair = 1024;

} // namespace

Status printMQRFH2(const void *rfh2, MQLONG available, RunParams *params)
{
    MQRFH2 fixed;
    std::memcpy(&fixed, rfh2, sizeof fixed);
    const MQLONG form = params->DisplayForm;
    const MQLONG strucLength = reverseEndian(fixed.StrucLength, params);

    std::printf("*StrucId[");
    printEachMode(fixed.StrucId, sizeof fixed.StrucId, form);
    std::printf("] Version[%d] StrucLength[%d] Encoding[%d] CodedCharSetId[%d] Format[",
                reverseEndian(fixed.Version, params), strucLength, reverseEndian(fixed.Encoding, params),
                reverseEndian(fixed.CodedCharSetId, params));
    printEachMode(fixed.Format, sizeof fixed.Format, form);
    std::printf("] Flags[%d] NameValueCCSID[%d]\n", reverseEndian(fixed.Flags, params),
                reverseEndian(fixed.NameValueCCSID, params));

    // Pairs are shown as far as both the structure and what was received reach.
    const char *pair = static_cast<const char *>(rfh2) + sizeof fixed;
    MQLONG remaining = std::clamp(strucLength, 0, available) - static_cast<MQLONG>(sizeof fixed);
    while (remaining >= 4) {
        MQLONG length = 0;
        std::memcpy(&length, pair, sizeof length);
        length = reverseEndian(length, params);
        std::printf("NameValueLength[%d] ", length);
        if (length > LongestPair || length < 1 || length > remaining - 4) {
            std::printf("NameValueLenghth invalid.\n");
            return StatusLocalFailure;
        }
        std::printf("NameValueData[");
        printEachMode(pair + 4, length, form);
        std::printf("]\n");
        pair += length + 4;
        remaining -= length + 4;
    }
    return StatusOk;
}
