#include "qmgr/api/option_table.h"

namespace mqrig::qmgr::api {
namespace {

constexpr OptionRow done(std::string_view name, MQULONG bits)
{
    return {name, bits, Treatment::Done, MQRC_NONE, {}};
}

constexpr OptionRow noEffect(std::string_view name, MQULONG bits, std::string_view because)
{
    return {name, bits, Treatment::WithoutEffect, MQRC_NONE, because};
}

constexpr OptionRow refused(std::string_view name, MQULONG bits, MQLONG reason, std::string_view because)
{
    return {name, bits, Treatment::Refused, reason, because};
}

constexpr std::string_view noChannels = "there are no channels and no clients";
constexpr std::string_view noClusters = "there are no clusters: a queue has one instance";
constexpr std::string_view oneBinding = "the queue manager runs inside the program: there is one way to bind";
constexpr std::string_view noAccounting = "no accounting or activity records are written";
constexpr std::string_view noAuthority = "the store belongs to one user: there is no other user to check";
constexpr std::string_view zosOnly = "the MQI has it on z/OS only";
constexpr std::string_view noNetwork = "publications do not leave the queue manager";

constexpr OptionRow connectRows[] = {
    noEffect("MQCNO_FASTPATH_BINDING", MQCNO_FASTPATH_BINDING, oneBinding),
    refused("MQCNO_SERIALIZE_CONN_TAG_Q_MGR", MQCNO_SERIALIZE_CONN_TAG_Q_MGR, MQRC_OPTIONS_ERROR, zosOnly),
    refused("MQCNO_SERIALIZE_CONN_TAG_QSG", MQCNO_SERIALIZE_CONN_TAG_QSG, MQRC_OPTIONS_ERROR, zosOnly),
    refused("MQCNO_RESTRICT_CONN_TAG_Q_MGR", MQCNO_RESTRICT_CONN_TAG_Q_MGR, MQRC_OPTIONS_ERROR, zosOnly),
    refused("MQCNO_RESTRICT_CONN_TAG_QSG", MQCNO_RESTRICT_CONN_TAG_QSG, MQRC_OPTIONS_ERROR, zosOnly),
    noEffect("MQCNO_HANDLE_SHARE_NONE", MQCNO_HANDLE_SHARE_NONE, "any thread may always use a connection handle"),
    done("MQCNO_HANDLE_SHARE_BLOCK", MQCNO_HANDLE_SHARE_BLOCK),
    done("MQCNO_HANDLE_SHARE_NO_BLOCK", MQCNO_HANDLE_SHARE_NO_BLOCK),
    noEffect("MQCNO_SHARED_BINDING", MQCNO_SHARED_BINDING, oneBinding),
    noEffect("MQCNO_ISOLATED_BINDING", MQCNO_ISOLATED_BINDING, oneBinding),
    noEffect("MQCNO_LOCAL_BINDING", MQCNO_LOCAL_BINDING, oneBinding),
    refused("MQCNO_CLIENT_BINDING", MQCNO_CLIENT_BINDING, MQRC_HOST_NOT_AVAILABLE, noChannels),
    noEffect("MQCNO_ACCOUNTING_MQI_ENABLED", MQCNO_ACCOUNTING_MQI_ENABLED, noAccounting),
    noEffect("MQCNO_ACCOUNTING_MQI_DISABLED", MQCNO_ACCOUNTING_MQI_DISABLED, noAccounting),
    noEffect("MQCNO_ACCOUNTING_Q_ENABLED", MQCNO_ACCOUNTING_Q_ENABLED, noAccounting),
    noEffect("MQCNO_ACCOUNTING_Q_DISABLED", MQCNO_ACCOUNTING_Q_DISABLED, noAccounting),
    noEffect("MQCNO_NO_CONV_SHARING", MQCNO_NO_CONV_SHARING, noChannels),
    noEffect("MQCNO_ALL_CONVS_SHARE", MQCNO_ALL_CONVS_SHARE, noChannels),
    noEffect("MQCNO_CD_FOR_OUTPUT_ONLY", MQCNO_CD_FOR_OUTPUT_ONLY, noChannels),
    noEffect("MQCNO_USE_CD_SELECTION", MQCNO_USE_CD_SELECTION, noChannels),
    done("MQCNO_GENERATE_CONN_TAG", MQCNO_GENERATE_CONN_TAG),
    done("MQCNO_RECONNECT", MQCNO_RECONNECT),
    done("MQCNO_RECONNECT_DISABLED", MQCNO_RECONNECT_DISABLED),
    done("MQCNO_RECONNECT_Q_MGR", MQCNO_RECONNECT_Q_MGR),
    noEffect("MQCNO_ACTIVITY_TRACE_ENABLED", MQCNO_ACTIVITY_TRACE_ENABLED, noAccounting),
    noEffect("MQCNO_ACTIVITY_TRACE_DISABLED", MQCNO_ACTIVITY_TRACE_DISABLED, noAccounting),
};

constexpr OptionRow openRows[] = {
    done("MQOO_INPUT_AS_Q_DEF", MQOO_INPUT_AS_Q_DEF),
    done("MQOO_INPUT_SHARED", MQOO_INPUT_SHARED),
    done("MQOO_INPUT_EXCLUSIVE", MQOO_INPUT_EXCLUSIVE),
    done("MQOO_BROWSE", MQOO_BROWSE),
    done("MQOO_OUTPUT", MQOO_OUTPUT),
    done("MQOO_INQUIRE", MQOO_INQUIRE),
    done("MQOO_SET", MQOO_SET),
    done("MQOO_SAVE_ALL_CONTEXT", MQOO_SAVE_ALL_CONTEXT),
    done("MQOO_PASS_IDENTITY_CONTEXT", MQOO_PASS_IDENTITY_CONTEXT),
    done("MQOO_PASS_ALL_CONTEXT", MQOO_PASS_ALL_CONTEXT),
    done("MQOO_SET_IDENTITY_CONTEXT", MQOO_SET_IDENTITY_CONTEXT),
    done("MQOO_SET_ALL_CONTEXT", MQOO_SET_ALL_CONTEXT),
    noEffect("MQOO_ALTERNATE_USER_AUTHORITY", MQOO_ALTERNATE_USER_AUTHORITY, noAuthority),
    done("MQOO_FAIL_IF_QUIESCING", MQOO_FAIL_IF_QUIESCING),
    noEffect("MQOO_BIND_ON_OPEN", MQOO_BIND_ON_OPEN, noClusters),
    noEffect("MQOO_BIND_NOT_FIXED", MQOO_BIND_NOT_FIXED, noClusters),
    refused("MQOO_RESOLVE_NAMES", MQOO_RESOLVE_NAMES, MQRC_OPTIONS_ERROR, "it is for an object-oriented wrapper"),
    done("MQOO_CO_OP", MQOO_CO_OP),
    done("MQOO_RESOLVE_LOCAL_Q", MQOO_RESOLVE_LOCAL_Q),
    noEffect("MQOO_NO_READ_AHEAD", MQOO_NO_READ_AHEAD, noChannels),
    noEffect("MQOO_READ_AHEAD", MQOO_READ_AHEAD, noChannels),
    noEffect("MQOO_NO_MULTICAST", MQOO_NO_MULTICAST, "messages never travel by multicast"),
    noEffect("MQOO_BIND_ON_GROUP", MQOO_BIND_ON_GROUP, noClusters),
};

constexpr OptionRow closeRows[] = {
    done("MQCO_DELETE", MQCO_DELETE),
    done("MQCO_DELETE_PURGE", MQCO_DELETE_PURGE),
    done("MQCO_KEEP_SUB", MQCO_KEEP_SUB),
    done("MQCO_REMOVE_SUB", MQCO_REMOVE_SUB),
    noEffect("MQCO_QUIESCE", MQCO_QUIESCE, "no messages are read ahead"),
};

constexpr OptionRow putRows[] = {
    done("MQPMO_SYNCPOINT", MQPMO_SYNCPOINT),
    done("MQPMO_NO_SYNCPOINT", MQPMO_NO_SYNCPOINT),
    done("MQPMO_DEFAULT_CONTEXT", MQPMO_DEFAULT_CONTEXT),
    done("MQPMO_NEW_MSG_ID", MQPMO_NEW_MSG_ID),
    done("MQPMO_NEW_CORREL_ID", MQPMO_NEW_CORREL_ID),
    done("MQPMO_PASS_IDENTITY_CONTEXT", MQPMO_PASS_IDENTITY_CONTEXT),
    done("MQPMO_PASS_ALL_CONTEXT", MQPMO_PASS_ALL_CONTEXT),
    done("MQPMO_SET_IDENTITY_CONTEXT", MQPMO_SET_IDENTITY_CONTEXT),
    done("MQPMO_SET_ALL_CONTEXT", MQPMO_SET_ALL_CONTEXT),
    noEffect("MQPMO_ALTERNATE_USER_AUTHORITY", MQPMO_ALTERNATE_USER_AUTHORITY, noAuthority),
    done("MQPMO_FAIL_IF_QUIESCING", MQPMO_FAIL_IF_QUIESCING),
    done("MQPMO_NO_CONTEXT", MQPMO_NO_CONTEXT),
    done("MQPMO_LOGICAL_ORDER", MQPMO_LOGICAL_ORDER),
    done("MQPMO_ASYNC_RESPONSE", MQPMO_ASYNC_RESPONSE),
    done("MQPMO_SYNC_RESPONSE", MQPMO_SYNC_RESPONSE),
    done("MQPMO_RESOLVE_LOCAL_Q", MQPMO_RESOLVE_LOCAL_Q),
    done("MQPMO_WARN_IF_NO_SUBS_MATCHED", MQPMO_WARN_IF_NO_SUBS_MATCHED),
    done("MQPMO_RETAIN", MQPMO_RETAIN),
    done("MQPMO_MD_FOR_OUTPUT_ONLY", MQPMO_MD_FOR_OUTPUT_ONLY),
    noEffect("MQPMO_SCOPE_QMGR", MQPMO_SCOPE_QMGR, noNetwork),
    done("MQPMO_SUPPRESS_REPLYTO", MQPMO_SUPPRESS_REPLYTO),
    done("MQPMO_NOT_OWN_SUBS", MQPMO_NOT_OWN_SUBS),
};

constexpr OptionRow getRows[] = {
    done("MQGMO_WAIT", MQGMO_WAIT),
    done("MQGMO_SYNCPOINT", MQGMO_SYNCPOINT),
    done("MQGMO_NO_SYNCPOINT", MQGMO_NO_SYNCPOINT),
    refused("MQGMO_SET_SIGNAL", MQGMO_SET_SIGNAL, MQRC_OPTIONS_ERROR, zosOnly),
    done("MQGMO_BROWSE_FIRST", MQGMO_BROWSE_FIRST),
    done("MQGMO_BROWSE_NEXT", MQGMO_BROWSE_NEXT),
    done("MQGMO_ACCEPT_TRUNCATED_MSG", MQGMO_ACCEPT_TRUNCATED_MSG),
    refused("MQGMO_MARK_SKIP_BACKOUT", MQGMO_MARK_SKIP_BACKOUT, MQRC_OPTIONS_ERROR, zosOnly),
    done("MQGMO_MSG_UNDER_CURSOR", MQGMO_MSG_UNDER_CURSOR),
    done("MQGMO_LOCK", MQGMO_LOCK),
    done("MQGMO_UNLOCK", MQGMO_UNLOCK),
    done("MQGMO_BROWSE_MSG_UNDER_CURSOR", MQGMO_BROWSE_MSG_UNDER_CURSOR),
    done("MQGMO_SYNCPOINT_IF_PERSISTENT", MQGMO_SYNCPOINT_IF_PERSISTENT),
    done("MQGMO_FAIL_IF_QUIESCING", MQGMO_FAIL_IF_QUIESCING),
    done("MQGMO_CONVERT", MQGMO_CONVERT),
    done("MQGMO_LOGICAL_ORDER", MQGMO_LOGICAL_ORDER),
    done("MQGMO_COMPLETE_MSG", MQGMO_COMPLETE_MSG),
    done("MQGMO_ALL_MSGS_AVAILABLE", MQGMO_ALL_MSGS_AVAILABLE),
    done("MQGMO_ALL_SEGMENTS_AVAILABLE", MQGMO_ALL_SEGMENTS_AVAILABLE),
    done("MQGMO_MARK_BROWSE_HANDLE", MQGMO_MARK_BROWSE_HANDLE),
    done("MQGMO_MARK_BROWSE_CO_OP", MQGMO_MARK_BROWSE_CO_OP),
    done("MQGMO_UNMARK_BROWSE_CO_OP", MQGMO_UNMARK_BROWSE_CO_OP),
    done("MQGMO_UNMARK_BROWSE_HANDLE", MQGMO_UNMARK_BROWSE_HANDLE),
    done("MQGMO_UNMARKED_BROWSE_MSG", MQGMO_UNMARKED_BROWSE_MSG),
    done("MQGMO_PROPERTIES_FORCE_MQRFH2", MQGMO_PROPERTIES_FORCE_MQRFH2),
    done("MQGMO_NO_PROPERTIES", MQGMO_NO_PROPERTIES),
    done("MQGMO_PROPERTIES_IN_HANDLE", MQGMO_PROPERTIES_IN_HANDLE),
    done("MQGMO_PROPERTIES_COMPATIBILITY", MQGMO_PROPERTIES_COMPATIBILITY),
};

constexpr OptionRow matchRows[] = {
    done("MQMO_MATCH_MSG_ID", MQMO_MATCH_MSG_ID),     done("MQMO_MATCH_CORREL_ID", MQMO_MATCH_CORREL_ID),
    done("MQMO_MATCH_GROUP_ID", MQMO_MATCH_GROUP_ID), done("MQMO_MATCH_MSG_SEQ_NUMBER", MQMO_MATCH_MSG_SEQ_NUMBER),
    done("MQMO_MATCH_OFFSET", MQMO_MATCH_OFFSET),     done("MQMO_MATCH_MSG_TOKEN", MQMO_MATCH_MSG_TOKEN),
};

constexpr std::string_view ofChannels = "a channel reports what it cannot deliver, and there are no channels";
constexpr std::string_view forReceiver = "it tells the program that answers the message what to do";
constexpr std::string_view mqiReserves = "the MQI reserves the bits and wants them accepted";

constexpr OptionRow reportRows[] = {
    noEffect("MQRO_EXCEPTION", MQRO_EXCEPTION, ofChannels),
    noEffect("MQRO_EXCEPTION_WITH_DATA", 0x02000000, ofChannels),
    noEffect("MQRO_EXCEPTION_WITH_FULL_DATA", 0x04000000, ofChannels),
    done("MQRO_EXPIRATION", MQRO_EXPIRATION),
    done("MQRO_EXPIRATION_WITH_DATA", 0x00400000),
    done("MQRO_EXPIRATION_WITH_FULL_DATA", 0x00800000),
    done("MQRO_COA", MQRO_COA),
    done("MQRO_COA_WITH_DATA", 0x00000200),
    done("MQRO_COA_WITH_FULL_DATA", 0x00000400),
    done("MQRO_COD", MQRO_COD),
    done("MQRO_COD_WITH_DATA", 0x00001000),
    done("MQRO_COD_WITH_FULL_DATA", 0x00002000),
    noEffect("MQRO_PAN", MQRO_PAN, forReceiver),
    noEffect("MQRO_NAN", MQRO_NAN, forReceiver),
    noEffect("MQRO_ACTIVITY", MQRO_ACTIVITY, "no program between MQPUT and MQGET handles the message"),
    done("MQRO_PASS_MSG_ID", MQRO_PASS_MSG_ID),
    done("MQRO_PASS_CORREL_ID", MQRO_PASS_CORREL_ID),
    done("MQRO_DISCARD_MSG", MQRO_DISCARD_MSG),
    done("MQRO_PASS_DISCARD_AND_EXPIRY", MQRO_PASS_DISCARD_AND_EXPIRY),
    refused("MQRO_REJECT_UNSUP_MASK_RESERVED", 0x101C0000, MQRC_REPORT_OPTIONS_ERROR,
            "the MQI reserves the bits and wants them refused"),
    noEffect("MQRO_ACCEPT_UNSUP_MASK_RESERVED", 0xE0000038, mqiReserves),
    done("MQRO_ACCEPT_UNSUP_IF_XMIT_MASK_RESERVED", 0x00038000),
};

constexpr OptionRow flagRows[] = {
    done("MQMF_SEGMENTATION_ALLOWED", MQMF_SEGMENTATION_ALLOWED),
    done("MQMF_SEGMENT", MQMF_SEGMENT),
    done("MQMF_LAST_SEGMENT", MQMF_LAST_SEGMENT),
    done("MQMF_MSG_IN_GROUP", MQMF_MSG_IN_GROUP),
    done("MQMF_LAST_MSG_IN_GROUP", MQMF_LAST_MSG_IN_GROUP),
    refused("MQMF_REJECT_UNSUP_MASK_RESERVED", 0x00000FE0, MQRC_MSG_FLAGS_ERROR,
            "the MQI reserves the bits and wants them refused"),
    done("MQMF_ACCEPT_UNSUP_IF_XMIT_MASK_RESERVED", 0x000FF000),
    noEffect("MQMF_ACCEPT_UNSUP_MASK_RESERVED", 0xFFF00000, mqiReserves),
};

constexpr OptionRow callbackRows[] = {
    done("MQCBDO_START_CALL", MQCBDO_START_CALL),
    done("MQCBDO_STOP_CALL", MQCBDO_STOP_CALL),
    done("MQCBDO_REGISTER_CALL", MQCBDO_REGISTER_CALL),
    done("MQCBDO_DEREGISTER_CALL", MQCBDO_DEREGISTER_CALL),
    done("MQCBDO_FAIL_IF_QUIESCING", MQCBDO_FAIL_IF_QUIESCING),
    done("MQCBDO_EVENT_CALL", MQCBDO_EVENT_CALL),
    noEffect("MQCBDO_MC_EVENT_CALL", MQCBDO_MC_EVENT_CALL, "there is no multicast"),
};

constexpr OptionRow controlRows[] = {
    noEffect("MQCTLO_THREAD_AFFINITY", MQCTLO_THREAD_AFFINITY, "one thread makes all calls of a connection anyway"),
    done("MQCTLO_FAIL_IF_QUIESCING", MQCTLO_FAIL_IF_QUIESCING),
};

constexpr OptionRow subscribeRows[] = {
    done("MQSO_ALTER", MQSO_ALTER),
    done("MQSO_CREATE", MQSO_CREATE),
    done("MQSO_RESUME", MQSO_RESUME),
    done("MQSO_DURABLE", MQSO_DURABLE),
    done("MQSO_GROUP_SUB", MQSO_GROUP_SUB),
    done("MQSO_MANAGED", MQSO_MANAGED),
    done("MQSO_SET_IDENTITY_CONTEXT", MQSO_SET_IDENTITY_CONTEXT),
    noEffect("MQSO_NO_MULTICAST", MQSO_NO_MULTICAST, "publications never travel by multicast"),
    noEffect("MQSO_FIXED_USERID", MQSO_FIXED_USERID, noAuthority),
    noEffect("MQSO_ANY_USERID", MQSO_ANY_USERID, noAuthority),
    done("MQSO_PUBLICATIONS_ON_REQUEST", MQSO_PUBLICATIONS_ON_REQUEST),
    done("MQSO_NEW_PUBLICATIONS_ONLY", MQSO_NEW_PUBLICATIONS_ONLY),
    done("MQSO_FAIL_IF_QUIESCING", MQSO_FAIL_IF_QUIESCING),
    noEffect("MQSO_ALTERNATE_USER_AUTHORITY", MQSO_ALTERNATE_USER_AUTHORITY, noAuthority),
    done("MQSO_WILDCARD_CHAR", MQSO_WILDCARD_CHAR),
    done("MQSO_WILDCARD_TOPIC", MQSO_WILDCARD_TOPIC),
    done("MQSO_SET_CORREL_ID", MQSO_SET_CORREL_ID),
    noEffect("MQSO_SCOPE_QMGR", MQSO_SCOPE_QMGR, noNetwork),
    noEffect("MQSO_NO_READ_AHEAD", MQSO_NO_READ_AHEAD, noChannels),
    noEffect("MQSO_READ_AHEAD", MQSO_READ_AHEAD, noChannels),
};

constexpr OptionRow subscriptionRequestRows[] = {
    done("MQSRO_FAIL_IF_QUIESCING", MQSRO_FAIL_IF_QUIESCING),
};

constexpr OptionRow createHandleRows[] = {
    done("MQCMHO_NO_VALIDATION", MQCMHO_NO_VALIDATION),
    done("MQCMHO_VALIDATE", MQCMHO_VALIDATE),
};

constexpr OptionRow setPropertyRows[] = {
    done("MQSMPO_SET_PROP_UNDER_CURSOR", MQSMPO_SET_PROP_UNDER_CURSOR),
    done("MQSMPO_SET_PROP_AFTER_CURSOR", MQSMPO_SET_PROP_AFTER_CURSOR),
    done("MQSMPO_APPEND_PROPERTY", MQSMPO_APPEND_PROPERTY),
    done("MQSMPO_SET_PROP_BEFORE_CURSOR", MQSMPO_SET_PROP_BEFORE_CURSOR),
};

constexpr OptionRow inquirePropertyRows[] = {
    done("MQIMPO_CONVERT_TYPE", MQIMPO_CONVERT_TYPE),
    done("MQIMPO_QUERY_LENGTH", MQIMPO_QUERY_LENGTH),
    done("MQIMPO_INQ_NEXT", MQIMPO_INQ_NEXT),
    done("MQIMPO_INQ_PROP_UNDER_CURSOR", MQIMPO_INQ_PROP_UNDER_CURSOR),
    done("MQIMPO_CONVERT_VALUE", MQIMPO_CONVERT_VALUE),
};

constexpr OptionRow deletePropertyRows[] = {
    done("MQDMPO_DEL_PROP_UNDER_CURSOR", MQDMPO_DEL_PROP_UNDER_CURSOR),
};

constexpr OptionRow bufferToHandleRows[] = {
    done("MQBMHO_DELETE_PROPERTIES", MQBMHO_DELETE_PROPERTIES),
};

constexpr OptionRow handleToBufferRows[] = {
    done("MQMHBO_PROPERTIES_IN_MQRFH2", MQMHBO_PROPERTIES_IN_MQRFH2),
    done("MQMHBO_DELETE_PROPERTIES", MQMHBO_DELETE_PROPERTIES),
};

struct Field {
    std::span<const OptionRow> rows;
    MQLONG unknown;
};

// In the order of OptionField.
constexpr std::array<Field, optionFields> fields = {{
    {connectRows, MQRC_OPTIONS_ERROR},
    {openRows, MQRC_OPTIONS_ERROR},
    {closeRows, MQRC_OPTIONS_ERROR},
    {putRows, MQRC_OPTIONS_ERROR},
    {getRows, MQRC_OPTIONS_ERROR},
    {matchRows, MQRC_MATCH_OPTIONS_ERROR},
    {reportRows, MQRC_REPORT_OPTIONS_ERROR},
    {flagRows, MQRC_MSG_FLAGS_ERROR},
    {{}, MQRC_OPTIONS_ERROR},
    {callbackRows, MQRC_CBD_OPTIONS_ERROR},
    {controlRows, MQRC_OPTIONS_ERROR},
    {subscribeRows, MQRC_OPTIONS_ERROR},
    {subscriptionRequestRows, MQRC_OPTIONS_ERROR},
    {createHandleRows, MQRC_OPTIONS_ERROR},
    {{}, MQRC_OPTIONS_ERROR},
    {setPropertyRows, MQRC_OPTIONS_ERROR},
    {inquirePropertyRows, MQRC_OPTIONS_ERROR},
    {deletePropertyRows, MQRC_OPTIONS_ERROR},
    {bufferToHandleRows, MQRC_OPTIONS_ERROR},
    {handleToBufferRows, MQRC_OPTIONS_ERROR},
}};

constexpr bool everyBitOnce()
{
    for (const Field &field : fields) {
        MQULONG seen = 0;
        for (const OptionRow &row : field.rows) {
            if (row.bits == 0 || (seen & row.bits) != 0) return false;
            seen |= row.bits;
        }
    }
    return true;
}
static_assert(everyBitOnce(), "a bit stands in one row of its field");

constexpr bool everyRowArgues()
{
    for (const Field &field : fields)
        for (const OptionRow &row : field.rows)
            if ((row.treatment == Treatment::Refused) != (row.reason != MQRC_NONE) ||
                (row.treatment != Treatment::Done) != !row.why.empty())
                return false;
    return true;
}
static_assert(everyRowArgues(), "a refusal has its reason, and what is not done says why");

constexpr std::array<MQULONG, optionFields> accepted()
{
    std::array<MQULONG, optionFields> masks{};
    for (std::size_t i = 0; i < optionFields; ++i)
        for (const OptionRow &row : fields[i].rows)
            if (row.treatment != Treatment::Refused) masks[i] |= row.bits;
    return masks;
}

} // namespace

constexpr std::array<MQULONG, optionFields> acceptedBits = accepted();

std::span<const OptionRow> optionRows(OptionField field)
{
    return fields[static_cast<std::size_t>(field)].rows;
}

MQLONG unknownBitsReason(OptionField field)
{
    return fields[static_cast<std::size_t>(field)].unknown;
}

MQLONG refusalOf(OptionField field, MQULONG options)
{
    MQULONG known = 0;
    for (const OptionRow &row : optionRows(field))
        known |= row.bits;
    if ((options & ~known) != 0) return unknownBitsReason(field);
    for (const OptionRow &row : optionRows(field))
        if (row.treatment == Treatment::Refused && (options & row.bits) != 0) return row.reason;
    return MQRC_NONE;
}

} // namespace mqrig::qmgr::api
