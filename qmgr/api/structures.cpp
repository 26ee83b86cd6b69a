#include "qmgr/api/structures.h"

#include <cstring>
#include <iterator>

namespace mqrig::qmgr::api {
namespace {

// Every structure begins like this.
struct Head {
    MQCHAR4 StrucId;
    MQLONG Version;
};

Head headOf(const void *structure)
{
    Head head;
    std::memcpy(&head, structure, sizeof head);
    return head;
}

MQLONG check(const void *structure, const char *strucId, MQLONG highestVersion, MQLONG error)
{
    if (structure == nullptr) return error;
    const Head head = headOf(structure);
    if (std::memcmp(head.StrucId, strucId, sizeof head.StrucId) != 0) return error;
    return head.Version < 1 || head.Version > highestVersion ? error : MQRC_NONE;
}

constexpr std::size_t cnoLengths[] = {MQCNO_LENGTH_1, MQCNO_LENGTH_2, MQCNO_LENGTH_3, MQCNO_LENGTH_4,
                                      MQCNO_LENGTH_5, MQCNO_LENGTH_6, MQCNO_LENGTH_7, MQCNO_LENGTH_8};
constexpr std::size_t odLengths[] = {MQOD_LENGTH_1, MQOD_LENGTH_2, MQOD_LENGTH_3, MQOD_LENGTH_4};
constexpr std::size_t mdLengths[] = {MQMD_LENGTH_1, MQMD_LENGTH_2};
constexpr std::size_t pmoLengths[] = {MQPMO_LENGTH_1, MQPMO_LENGTH_2, MQPMO_LENGTH_3};
constexpr std::size_t gmoLengths[] = {MQGMO_LENGTH_1, MQGMO_LENGTH_2, MQGMO_LENGTH_3, MQGMO_LENGTH_4};
static_assert(std::size(cnoLengths) == MQCNO_CURRENT_VERSION && sizeof(MQCNO) == MQCNO_LENGTH_8);
static_assert(std::size(odLengths) == MQOD_CURRENT_VERSION && sizeof(MQOD) == MQOD_LENGTH_4);
static_assert(std::size(mdLengths) == MQMD_CURRENT_VERSION && sizeof(MQMD) == MQMD_LENGTH_2);
static_assert(std::size(pmoLengths) == MQPMO_CURRENT_VERSION && sizeof(MQPMO) == MQPMO_LENGTH_3);
static_assert(std::size(gmoLengths) == MQGMO_CURRENT_VERSION && sizeof(MQGMO) == MQGMO_LENGTH_4);

// Overlays what the program's version has on the defaults.
template <class Structure, std::size_t N>
void overlay(const void *from, const std::size_t (&lengths)[N], Structure &structure)
{
    std::memcpy(static_cast<void *>(&structure), from, lengths[headOf(from).Version - 1]);
}

template <class Field>
void copyField(Field &to, const Field &from)
{
    std::memcpy(to, from, sizeof to);
}

void storeName(MQCHAR48 &to, const char *name)
{
    if (name == nullptr)
        std::memset(to, ' ', sizeof to);
    else
        std::memcpy(to, name, sizeof to);
}

} // namespace

MQLONG checkCno(const void *cno)
{
    return check(cno, MQCNO_STRUC_ID, MQCNO_CURRENT_VERSION, MQRC_CNO_ERROR);
}

MQLONG checkOd(const void *od)
{
    return check(od, MQOD_STRUC_ID, MQOD_CURRENT_VERSION, MQRC_OD_ERROR);
}

MQLONG checkMd(const void *md)
{
    return check(md, MQMD_STRUC_ID, MQMD_CURRENT_VERSION, MQRC_MD_ERROR);
}

MQLONG checkPmo(const void *pmo)
{
    return check(pmo, MQPMO_STRUC_ID, MQPMO_CURRENT_VERSION, MQRC_PMO_ERROR);
}

MQLONG checkGmo(const void *gmo)
{
    return check(gmo, MQGMO_STRUC_ID, MQGMO_CURRENT_VERSION, MQRC_GMO_ERROR);
}

MQLONG checkBo(const void *bo)
{
    return check(bo, MQBO_STRUC_ID, MQBO_CURRENT_VERSION, MQRC_BO_ERROR);
}

MQLONG checkCbd(const void *cbd)
{
    return check(cbd, MQCBD_STRUC_ID, MQCBD_CURRENT_VERSION, MQRC_CBD_ERROR);
}

MQLONG checkSts(const void *sts)
{
    return check(sts, MQSTS_STRUC_ID, MQSTS_CURRENT_VERSION, MQRC_STS_ERROR);
}

MQLONG checkCtlo(const void *ctlo)
{
    return check(ctlo, MQCTLO_STRUC_ID, MQCTLO_CURRENT_VERSION, MQRC_CTLO_ERROR);
}

MQLONG checkSd(const void *sd)
{
    return check(sd, MQSD_STRUC_ID, MQSD_CURRENT_VERSION, MQRC_SD_ERROR);
}

MQLONG checkSro(const void *sro)
{
    return check(sro, MQSRO_STRUC_ID, MQSRO_CURRENT_VERSION, MQRC_SRO_ERROR);
}

MQCNO loadCno(const void *cno)
{
    MQCNO loaded = {MQCNO_DEFAULT};
    overlay(cno, cnoLengths, loaded);
    return loaded;
}

MQOD loadOd(const void *od)
{
    MQOD loaded = {MQOD_DEFAULT};
    overlay(od, odLengths, loaded);
    return loaded;
}

MQPMO loadPmo(const void *pmo)
{
    MQPMO loaded = {MQPMO_DEFAULT};
    overlay(pmo, pmoLengths, loaded);
    return loaded;
}

MQGMO loadGmo(const void *gmo)
{
    MQGMO loaded = {MQGMO_DEFAULT};
    overlay(gmo, gmoLengths, loaded);
    return loaded;
}

void loadMd(const void *from, MQMD &md)
{
    const MQLONG version = headOf(from).Version;
    std::memcpy(&md, from, mdLengths[version - 1]);
    if (version == MQMD_VERSION_1) {
        std::memset(md.GroupId, 0, sizeof md.GroupId);
        md.MsgSeqNumber = 1;
        md.Offset = 0;
        md.MsgFlags = MQMF_NONE;
        md.OriginalLength = MQOL_UNDEFINED;
    }
    md.Version = MQMD_VERSION_2;
}

void storeMd(const MQMD &md, void *to)
{
    const std::size_t length = mdLengths[headOf(to).Version - 1];
    std::memcpy(static_cast<char *>(to) + sizeof(Head), reinterpret_cast<const char *>(&md) + sizeof(Head),
                length - sizeof(Head));
}

void storePutMd(const MQMD &md, void *to)
{
    MQMD &given = *static_cast<MQMD *>(to);
    given.CodedCharSetId = md.CodedCharSetId;
    given.Priority = md.Priority;
    given.Persistence = md.Persistence;
    copyField(given.MsgId, md.MsgId);
    copyField(given.CorrelId, md.CorrelId);
    copyField(given.UserIdentifier, md.UserIdentifier);
    copyField(given.AccountingToken, md.AccountingToken);
    copyField(given.ApplIdentityData, md.ApplIdentityData);
    given.PutApplType = md.PutApplType;
    copyField(given.PutApplName, md.PutApplName);
    copyField(given.PutDate, md.PutDate);
    copyField(given.PutTime, md.PutTime);
    copyField(given.ApplOriginData, md.ApplOriginData);
    if (given.Version < MQMD_VERSION_2) return;
    copyField(given.GroupId, md.GroupId);
    given.MsgSeqNumber = md.MsgSeqNumber;
    given.Offset = md.Offset;
    given.OriginalLength = md.OriginalLength;
}

void storeAsyncPutMd(const MQMD &md, void *to)
{
    MQMD &given = *static_cast<MQMD *>(to);
    copyField(given.MsgId, md.MsgId);
    copyField(given.CorrelId, md.CorrelId);
    copyField(given.ApplIdentityData, md.ApplIdentityData);
    given.PutApplType = md.PutApplType;
    copyField(given.PutApplName, md.PutApplName);
    copyField(given.ApplOriginData, md.ApplOriginData);
}

void storeOd(const ResolvedNames &names, const DestinationCounts &counts, MQLONG resolvedType, void *to)
{
    MQOD &od = *static_cast<MQOD *>(to);
    if (od.Version < MQOD_VERSION_2) return;
    od.KnownDestCount = counts.known;
    od.UnknownDestCount = counts.unknown;
    od.InvalidDestCount = counts.invalid;
    if (od.Version < MQOD_VERSION_3) return;
    storeName(od.ResolvedQName, names.queue);
    storeName(od.ResolvedQMgrName, names.queueManager);
    if (od.Version < MQOD_VERSION_4) return;
    od.ResolvedType = resolvedType;
}

void storeMadeQueue(const ResolvedNames &names, void *to)
{
    MQOD &od = *static_cast<MQOD *>(to);
    storeName(od.ObjectName, names.queue);
    storeName(od.ObjectQMgrName, names.queueManager);
}

void storePmo(const ResolvedNames &names, const DestinationCounts &counts, void *to)
{
    MQPMO &pmo = *static_cast<MQPMO *>(to);
    pmo.KnownDestCount = counts.known;
    pmo.UnknownDestCount = counts.unknown;
    pmo.InvalidDestCount = counts.invalid;
    storeName(pmo.ResolvedQName, names.queue);
    storeName(pmo.ResolvedQMgrName, names.queueManager);
}

void storeGmo(const GotFields &fields, void *to)
{
    MQGMO &gmo = *static_cast<MQGMO *>(to);
    storeName(gmo.ResolvedQName, fields.queue);
    if (gmo.Version < MQGMO_VERSION_2) return;
    const auto has = [&fields](MQLONG flag) { return (fields.msgFlags & flag) != 0; };
    gmo.GroupStatus = has(MQMF_LAST_MSG_IN_GROUP) ? MQGS_LAST_MSG_IN_GROUP
                      : has(MQMF_MSG_IN_GROUP)    ? MQGS_MSG_IN_GROUP
                                                  : MQGS_NOT_IN_GROUP;
    gmo.SegmentStatus = has(MQMF_LAST_SEGMENT) ? MQSS_LAST_SEGMENT
                        : has(MQMF_SEGMENT)    ? MQSS_SEGMENT
                                               : MQSS_NOT_A_SEGMENT;
    gmo.Segmentation = has(MQMF_SEGMENTATION_ALLOWED) ? MQSEG_ALLOWED : MQSEG_INHIBITED;
    if (gmo.Version < MQGMO_VERSION_3) return;
    std::memcpy(gmo.MsgToken, fields.msgToken, sizeof gmo.MsgToken);
    gmo.ReturnedLength = fields.returnedLength;
}

} // namespace mqrig::qmgr::api
