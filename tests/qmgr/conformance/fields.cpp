#include "fields.h"

#include <sstream>

namespace mqrig::conformance {
namespace {

constexpr FieldRow done(std::string_view structure, std::string_view fields)
{
    return {structure, fields, Treatment::Done, {}};
}

constexpr FieldRow noEffect(std::string_view structure, std::string_view fields, std::string_view because)
{
    return {structure, fields, Treatment::WithoutEffect, because};
}

constexpr FieldRow refused(std::string_view structure, std::string_view fields, std::string_view because)
{
    return {structure, fields, Treatment::Refused, because};
}

constexpr std::string_view noChannels = "there are no channels and no clients";
constexpr std::string_view noAuthority = "the store belongs to one user: there is no other user to check";
constexpr std::string_view ownerOnly = "who may connect is who may open the store's files";
constexpr std::string_view reserved = "the MQI reserves it";
constexpr std::string_view zosOnly = "the MQI has it on z/OS only";
constexpr std::string_view conversionOnly = "it is read where messages are converted, and means nothing there";

constexpr FieldRow rows[] = {
    // ---- Connections ----
    done("MQCNO", "StrucId Version Options ClientConnOffset ClientConnPtr ConnTag ConnectionId SecurityParmsOffset "
                  "SecurityParmsPtr ApplName"),
    noEffect("MQCNO",
             "SSLConfigPtr SSLConfigOffset CCDTUrlPtr CCDTUrlOffset CCDTUrlLength BalanceParmsPtr "
             "BalanceParmsOffset",
             noChannels),
    noEffect("MQCNO", "Reserved Reserved2 Reserved3", reserved),
    done("MQCD", "Version"),
    refused("MQCD", "ShortConnectionName ConnectionName",
            "a name that is not blank answers MQRC_HOST_NOT_AVAILABLE: there are no channels and no clients"),
    noEffect("MQCD", "*", noChannels),
    done("MQCSP", "StrucId Version AuthenticationType"),
    noEffect("MQCSP", "*", ownerOnly),
    noEffect("MQSCO", "*", noChannels),
    noEffect("MQAIR", "*", noChannels),
    noEffect("MQBNO", "*", noChannels),

    // ---- Objects ----
    done("MQOD", "StrucId Version ObjectType ObjectName ObjectQMgrName DynamicQName RecsPresent KnownDestCount "
                 "UnknownDestCount InvalidDestCount ObjectRecOffset ResponseRecOffset ObjectRecPtr ResponseRecPtr "
                 "ResolvedQName ResolvedQMgrName ObjectString SelectionString ResObjectString ResolvedType"),
    noEffect("MQOD", "AlternateUserId AlternateSecurityId", noAuthority),
    done("MQOR", "ObjectName ObjectQMgrName"),
    done("MQRR", "CompCode Reason"),

    // ---- Messages ----
    done("MQMD", "StrucId Version Report MsgType Expiry Feedback Encoding CodedCharSetId Format Priority Persistence "
                 "MsgId CorrelId BackoutCount ReplyToQ ReplyToQMgr UserIdentifier AccountingToken ApplIdentityData "
                 "PutApplType PutApplName PutDate PutTime ApplOriginData GroupId MsgSeqNumber Offset MsgFlags "
                 "OriginalLength"),
    done("MQPMO", "StrucId Version Options Context KnownDestCount UnknownDestCount InvalidDestCount ResolvedQName "
                  "ResolvedQMgrName RecsPresent PutMsgRecFields PutMsgRecOffset ResponseRecOffset PutMsgRecPtr "
                  "ResponseRecPtr OriginalMsgHandle NewMsgHandle Action PubLevel"),
    noEffect("MQPMO", "Timeout", reserved),
    done("MQGMO", "StrucId Version Options WaitInterval ResolvedQName MatchOptions GroupStatus SegmentStatus "
                  "Segmentation MsgToken ReturnedLength MsgHandle"),
    noEffect("MQGMO", "Signal1 Signal2", zosOnly),
    noEffect("MQGMO", "Reserved1 Reserved2", reserved),
    done("MQBO", "StrucId Version Options"),
    done("MQSTS", "StrucId Version CompCode Reason PutSuccessCount PutWarningCount PutFailureCount ObjectType "
                  "ObjectName ObjectQMgrName ResolvedObjectName ResolvedQMgrName ObjectString OpenOptions"),
    noEffect("MQSTS", "SubName SubOptions", "they are empty: what MQSTAT tells of is no subscription"),

    // ---- Callbacks ----
    done("MQCBD", "StrucId Version CallbackType Options CallbackArea CallbackFunction MaxMsgLength"),
    refused("MQCBD", "CallbackName",
            "a name that is not blank answers MQRC_FUNCTION_NOT_SUPPORTED: no module is loaded into the program"),
    done("MQCBC", "StrucId Version CallType Hobj CallbackArea ConnectionArea CompCode Reason State DataLength "
                  "BufferLength ReconnectDelay"),
    noEffect("MQCBC", "Flags", "no messages are read ahead"),
    done("MQCTLO", "StrucId Version Options ConnectionArea"),
    noEffect("MQCTLO", "Reserved", reserved),

    // ---- Properties ----
    done("MQCHARV", "VSPtr VSOffset VSBufSize VSLength VSCCSID"),
    done("MQCMHO", "StrucId Version Options"),
    done("MQDMHO", "StrucId Version Options"),
    done("MQSMPO", "StrucId Version Options ValueEncoding ValueCCSID"),
    done("MQIMPO", "StrucId Version Options RequestedEncoding RequestedCCSID ReturnedEncoding ReturnedCCSID "
                   "ReturnedName TypeString"),
    noEffect("MQIMPO", "Reserved1", reserved),
    done("MQDMPO", "StrucId Version Options"),
    done("MQPD", "StrucId Version Options Support Context CopyOptions"),
    done("MQBMHO", "StrucId Version Options"),
    done("MQMHBO", "StrucId Version Options"),

    // ---- Publish/subscribe ----
    done("MQSD", "StrucId Version Options ObjectName SubExpiry ObjectString SubName SubUserData SubCorrelId "
                 "PubPriority PubAccountingToken PubApplIdentityData SelectionString SubLevel ResObjectString"),
    noEffect("MQSD", "AlternateUserId AlternateSecurityId", noAuthority),
    done("MQSRO", "StrucId Version Options NumPubs"),

    // ---- Headers in messages ----
    done("MQMD1", "StrucId Version Report MsgType Expiry Feedback Encoding CodedCharSetId Format Priority Persistence "
                  "MsgId CorrelId BackoutCount ReplyToQ ReplyToQMgr UserIdentifier AccountingToken ApplIdentityData "
                  "PutApplType PutApplName PutDate PutTime ApplOriginData"),
    done("MQMDE", "StrucId Version StrucLength Encoding CodedCharSetId Format GroupId MsgSeqNumber Offset MsgFlags "
                  "OriginalLength"),
    noEffect("MQMDE", "Flags", "the MQI has no flags for it yet"),
    done("MQRFH2", "StrucId Version StrucLength Encoding CodedCharSetId Format Flags NameValueCCSID"),
    done("MQRFH", "StrucId Version StrucLength Encoding CodedCharSetId Format"),
    noEffect("MQRFH", "Flags", conversionOnly),
    done("MQDLH", "StrucId Version Reason DestQName DestQMgrName Encoding CodedCharSetId Format PutApplType "
                  "PutApplName PutDate PutTime"),
    done("MQXQH", "StrucId Version RemoteQName RemoteQMgrName MsgDesc"),
    done("MQDH", "StrucId Version StrucLength Encoding CodedCharSetId Format Flags PutMsgRecFields RecsPresent "
                 "ObjectRecOffset PutMsgRecOffset"),
    done("MQTM", "StrucId Version QName ProcessName TriggerData ApplType ApplId EnvData UserData"),
    noEffect("MQTMC2", "*", "a trigger monitor makes it for the program that it starts"),

    // ---- Command messages and events ----
    done("MQCFH", "Type StrucLength Version Command MsgSeqNumber Control CompCode Reason ParameterCount"),
    done("MQCFIN", "Type StrucLength Parameter Value"),
    done("MQCFIN64", "Type StrucLength Parameter Value"),
    noEffect("MQCFIN64", "Reserved", reserved),
    done("MQCFIL", "Type StrucLength Parameter Count Values"),
    done("MQCFIL64", "Type StrucLength Parameter Count Values"),
    done("MQCFST", "Type StrucLength Parameter CodedCharSetId StringLength String"),
    done("MQCFSL", "Type StrucLength Parameter CodedCharSetId Count StringLength Strings"),
    done("MQCFBS", "Type StrucLength Parameter StringLength String"),
    done("MQCFIF", "Type StrucLength Parameter Operator FilterValue"),
    done("MQCFSF", "Type StrucLength Parameter Operator CodedCharSetId FilterValueLength FilterValue"),
    done("MQCFBF", "Type StrucLength Parameter Operator FilterValueLength FilterValue"),
    done("MQCFGR", "Type StrucLength Parameter ParameterCount"),
    done("MQEPH", "StrucId Version StrucLength Encoding CodedCharSetId Format PCFHeader"),
    noEffect("MQEPH", "Flags", conversionOnly),
};

constexpr bool everyRowArgues()
{
    for (const FieldRow &row : rows)
        if ((row.treatment != Treatment::Done) != !row.why.empty()) return false;
    return true;
}
static_assert(everyRowArgues(), "what is not done says why");

} // namespace

std::span<const FieldRow> fieldRows()
{
    return rows;
}

std::vector<std::string> wordsOf(std::string_view text)
{
    std::istringstream words{std::string(text)};
    std::vector<std::string> list;
    for (std::string word; words >> word;)
        list.push_back(word);
    return list;
}

} // namespace mqrig::conformance
