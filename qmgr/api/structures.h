// The MQI's structures at the border: each is checked, read up to its Version and written up to its Version. What
// lies behind belongs to the program and is never touched.
#pragma once

#include <cstddef>

#include "cmqc.h"

namespace mqrig::qmgr::api {

// MQRC_NONE, or the structure's own error for a null pointer, a wrong StrucId or an unknown Version.
MQLONG checkCno(const void *cno); // MQRC_CNO_ERROR
MQLONG checkOd(const void *od);   // MQRC_OD_ERROR
MQLONG checkMd(const void *md);   // MQRC_MD_ERROR
MQLONG checkPmo(const void *pmo); // MQRC_PMO_ERROR
MQLONG checkGmo(const void *gmo); // MQRC_GMO_ERROR
MQLONG checkBo(const void *bo);   // MQRC_BO_ERROR
MQLONG checkCbd(const void *cbd); // MQRC_CBD_ERROR
MQLONG checkSts(const void *sts);
MQLONG checkCtlo(const void *ctlo); // MQRC_CTLO_ERROR
MQLONG checkSd(const void *sd);     // MQRC_SD_ERROR
MQLONG checkSro(const void *sro);   // MQRC_SRO_ERROR

// A checked structure in its highest version: the fields that the program's version has not are the defaults.
MQCNO loadCno(const void *cno);
MQOD loadOd(const void *od);
MQPMO loadPmo(const void *pmo);
MQGMO loadGmo(const void *gmo);
// Into the place where the message is made.
void loadMd(const void *from, MQMD &md);

// The whole descriptor as MQGET returns it; the program's StrucId and Version stay.
void storeMd(const MQMD &md, void *to);
// The fields that MQPUT returns.
void storePutMd(const MQMD &md, void *to);

// What the calls return in their options structures and descriptors, by the Version of `to`.
struct ResolvedNames {
    const char *queue = nullptr;        // 48 characters; null: blanks
    const char *queueManager = nullptr; // 48 characters; null: blanks
};
// How many queues are here, are elsewhere, and could not be opened or put to.
struct DestinationCounts {
    MQLONG known = 0;
    MQLONG unknown = 0;
    MQLONG invalid = 0;
};
// The fields that an asynchronous put returns.
void storeAsyncPutMd(const MQMD &md, void *to);
void storeOd(const ResolvedNames &names, const DestinationCounts &counts, MQLONG resolvedType, void *to);
// The name of a queue that MQOPEN has made.
void storeMadeQueue(const ResolvedNames &names, void *to);
void storePmo(const ResolvedNames &names, const DestinationCounts &counts, void *to);

struct GotFields {
    const char *queue; // 48 characters
    const MQBYTE *msgToken;
    MQLONG returnedLength;
    MQLONG msgFlags; // of the message
};
void storeGmo(const GotFields &fields, void *to);

} // namespace mqrig::qmgr::api
