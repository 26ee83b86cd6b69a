#include "mqicalls.h"

#include "common.h"

#include <cstring>

namespace {

/// Copies the URL into the record, or reports that it does not fit. 256 characters fill the field without terminator.
Status copy_url(RunParams *params, MQAIR &air, const char *url)
{
    if (std::strlen(url) > MQ_AUTH_INFO_OCSP_URL_LENGTH) {
        printf_te(params, "OCSPResponderURL is too long - MQ_AUTH_INFO_OCSP_URL_LENGTH is %d(-ru)\n",
                  MQ_AUTH_INFO_OCSP_URL_LENGTH);
        return StatusLocalFailure;
    }
    strncpy2(air.OCSPResponderURL, url, MQ_AUTH_INFO_OCSP_URL_LENGTH);
    return StatusOk;
}

} // namespace

Status setOCSPPesponderURL(RunParams *params)
{
    const Buffer<> list = checked_copy(params, params->OcspUrlList, {"setOCSPPesponderURL"});
    if (list == nullptr) return StatusLocalFailure;
    char *position = nullptr;
    const char *url = strtoknn_r(list.get(), ",", &position);
    if (url == nullptr) {
        printf_te(params, "invalid OCSPResponderURL %s\n", params->OcspUrlList);
        return StatusLocalFailure;
    }
    if (copy_url(params, params->Air, url) != StatusOk) return StatusLocalFailure;
    url = strtoknn_r(nullptr, ",", &position);
    if (url == nullptr) return StatusOk;

    // Two or more: an array that holds all of them, the first included. The record learns of it once it is complete.
    std::size_t count = 1;
    Buffer<> records = checked_malloc(params, sizeof(MQAIR), {"setOCSPPesponderURL"});
    if (records == nullptr) return StatusLocalFailure;
    std::memcpy(records.get(), &params->Air, sizeof(MQAIR));
    for (; url != nullptr; url = strtoknn_r(nullptr, ",", &position)) {
        MQAIR air = params->Air;
        if (copy_url(params, air, url) != StatusOk) return StatusLocalFailure;
        if (!checked_realloc(params, records, (count + 1) * sizeof(MQAIR), {"setOCSPPesponderURL"})) {
            return StatusLocalFailure;
        }
        std::memcpy(records.get() + count * sizeof(MQAIR), &air, sizeof(MQAIR));
        ++count;
    }
    params->Sco.AuthInfoRecCount = static_cast<MQLONG>(count);
    params->Sco.AuthInfoRecPtr = reinterpret_cast<PMQAIR>(records.release());
    return StatusOk;
}
