/// How object attributes are shown: the keywords of the queue manager's command language, and those of their values.

#include "rows.h"

#include <cmqcfc.h>
#include <iterator>

// The keywords of the values of one attribute each. A value that is not listed is not shown.

constexpr NamedInteger c_QueueAccounting[] = {
    {"QMGR", MQMON_Q_MGR}, {"NONE", MQMON_NONE}, {"OFF", MQMON_OFF}, {"ON", MQMON_ON}, {},
};
constexpr NamedInteger c_CLWLUseQ[] = {
    {"LOCAL", MQCLWL_USEQ_LOCAL},
    {"ANY", MQCLWL_USEQ_ANY},
    {"QMGR", MQCLWL_USEQ_AS_Q_MGR},
    {},
};
constexpr NamedInteger c_DefBind[] = {{"OPEN", MQBND_BIND_ON_OPEN}, {"NOTFIXED", MQBND_BIND_NOT_FIXED}, {}};
constexpr NamedInteger c_DefInputOpenOption[] = {{"EXCL", MQOO_INPUT_EXCLUSIVE}, {"SHARED", MQOO_INPUT_SHARED}, {}};
constexpr NamedInteger c_DefPersistence[] = {{"YES", MQPER_PERSISTENT}, {"NO", MQPER_NOT_PERSISTENT}, {}};
constexpr NamedInteger c_DefinitionType[] = {
    {"PREDEFINED", MQQDT_PREDEFINED},
    {"PERMDYN", MQQDT_PERMANENT_DYNAMIC},
    {"TEMPDYN", MQQDT_TEMPORARY_DYNAMIC},
    {"SHAREDYN", MQQDT_SHARED_DYNAMIC},
    {},
};
constexpr NamedInteger c_DistLists[] = {{"YES", MQDL_SUPPORTED}, {"NO", MQDL_NOT_SUPPORTED}, {}};
constexpr NamedInteger c_HardenGetBackout[] = {
    {"HARDENBO", MQQA_BACKOUT_HARDENED},
    {"NOHARDENBO", MQQA_BACKOUT_NOT_HARDENED},
    {},
};
constexpr NamedInteger c_InhibitGet[] = {{"ENABLED", MQQA_GET_ALLOWED}, {"DISABLED", MQQA_GET_INHIBITED}, {}};
constexpr NamedInteger c_InhibitPut[] = {{"ENABLED", MQQA_PUT_ALLOWED}, {"DISABLED", MQQA_PUT_INHIBITED}, {}};
constexpr NamedInteger c_MsgDeliverySequence[] = {{"FIFO", MQMDS_FIFO}, {"PRIORITY", MQMDS_PRIORITY}, {}};
constexpr NamedInteger c_NonPersistentMessageClass[] = {{"NORMAL", MQNPM_CLASS_NORMAL}, {"HIGH", MQNPM_CLASS_HIGH}, {}};
constexpr NamedInteger c_PropertyControl[] = {
    {"ALL", MQPROP_ALL}, {"COMPAT", MQPROP_COMPATIBILITY}, {"FORCE", MQPROP_FORCE_MQRFH2}, {"NONE", MQPROP_NONE}, {},
};
constexpr NamedInteger c_QDepthHighEvent[] = {{"DISABLED", MQEVR_DISABLED}, {"ENABLED", MQEVR_ENABLED}, {}};
constexpr NamedInteger c_QDepthLowEvent[] = {{"DISABLED", MQEVR_DISABLED}, {"ENABLED", MQEVR_ENABLED}, {}};
constexpr NamedInteger c_QDepthMAXEvent[] = {{"DISABLED", MQEVR_DISABLED}, {"ENABLED", MQEVR_ENABLED}, {}};
constexpr NamedInteger c_QServiceIntervalEvent[] = {
    {"HIGH", MQQSIE_HIGH},
    {"OK", MQQSIE_OK},
    {"NONE", MQQSIE_NONE},
    {},
};
constexpr NamedInteger c_QType[] = {
    {"QALIAS", MQQT_ALIAS}, {"QCLUSTER", MQQT_CLUSTER}, {"QLOCAL", MQQT_LOCAL}, {"QREMOTE", MQQT_REMOTE}, {},
};
constexpr NamedInteger c_Scope[] = {{"QMGR", MQSCO_Q_MGR}, {"CELL", MQSCO_CELL}, {}};
constexpr NamedInteger c_Shareability[] = {{"SHARE", MQQA_SHAREABLE}, {"NOSHARE", MQQA_NOT_SHAREABLE}, {}};
constexpr NamedInteger c_QueueStatistics[] = {
    {"QMGR", MQMON_Q_MGR}, {"NONE", MQMON_NONE}, {"OFF", MQMON_OFF}, {"ON", MQMON_ON}, {},
};
constexpr NamedInteger c_TriggerControl[] = {{"NOTRIGGER", MQTC_OFF}, {"TRIGGER", MQTC_ON}, {}};
constexpr NamedInteger c_TriggerType[] = {
    {"NONE", MQTT_NONE}, {"FIRST", MQTT_FIRST}, {"EVERY", MQTT_EVERY}, {"DEPTH", MQTT_DEPTH}, {},
};
constexpr NamedInteger c_Usage[] = {{"NORMAL", MQUS_NORMAL}, {"XMITQ", MQUS_TRANSMISSION}, {}};
constexpr NamedInteger c_ApplType[] = {
    {"CICS", MQAT_CICS},
    {"DOS", MQAT_DOS},
    {"OS2", MQAT_OS2},
    {"UNIX", MQAT_UNIX},
    {"WINDOWS", MQAT_WINDOWS},
    {"WINDOWSNT", MQAT_WINDOWS_NT},
    {"NOTESAGENT", MQAT_NOTES_AGENT},
    {"OS400", MQAT_OS400},
    {},
};
constexpr NamedInteger c_AccountingConnOverride[] = {{"DISABLED", MQMON_DISABLED}, {"ENABLED", MQMON_ENABLED}, {}};
constexpr NamedInteger c_MQIAccounting[] = {{"ON", MQMON_ON}, {"OFF", MQMON_OFF}, {}};
constexpr NamedInteger c_AuthorityEvent[] = {{"DISABLED", MQEVR_DISABLED}, {"ENABLED", MQEVR_ENABLED}, {}};
constexpr NamedInteger c_ChannelAutoDef[] = {{"DISABLED", MQCHAD_DISABLED}, {"ENABLED", MQCHAD_ENABLED}, {}};
constexpr NamedInteger c_ChannelAutoDefEvent[] = {{"DISABLED", MQEVR_DISABLED}, {"ENABLED", MQEVR_ENABLED}, {}};
constexpr NamedInteger c_ChannelEvent[] = {
    {"EXCEPTION", MQEVR_EXCEPTION},
    {"DISABLED", MQEVR_DISABLED},
    {"ENABLED", MQEVR_ENABLED},
    {},
};
constexpr NamedInteger c_CommandEvent[] = {
    {"DISABLED", MQEVR_DISABLED},
    {"ENABLED", MQEVR_ENABLED},
    {"NODISPLAY", MQEVR_NO_DISPLAY},
    {},
};
constexpr NamedInteger c_ConfigurationEvent[] = {{"DISABLED", MQEVR_DISABLED}, {"ENABLED", MQEVR_ENABLED}, {}};
constexpr NamedInteger c_InhibitEvent[] = {{"DISABLED", MQEVR_DISABLED}, {"ENABLED", MQEVR_ENABLED}, {}};
constexpr NamedInteger c_LocalEvent[] = {{"DISABLED", MQEVR_DISABLED}, {"ENABLED", MQEVR_ENABLED}, {}};
constexpr NamedInteger c_LoggerEvent[] = {{"DISABLED", MQEVR_DISABLED}, {"ENABLED", MQEVR_ENABLED}, {}};
constexpr NamedInteger c_PerformanceEvent[] = {{"DISABLED", MQEVR_DISABLED}, {"ENABLED", MQEVR_ENABLED}, {}};
constexpr NamedInteger c_Platform[] = {{"UNIX", MQPL_UNIX}, {"WINDOWSNT", MQPL_WINDOWS_NT}, {}};
constexpr NamedInteger c_PubSubMode[] = {
    {"COMPAT", MQPSM_COMPAT},
    {"DISABLED", MQPSM_DISABLED},
    {"ENABLED", MQPSM_ENABLED},
    {},
};
constexpr NamedInteger c_PubSubNPInputMsg[] = {{"DISCARD", MQUNDELIVERED_DISCARD}, {"KEEP", MQUNDELIVERED_KEEP}, {}};
constexpr NamedInteger c_PubSubNPResponse[] = {
    {"NORMAL", MQUNDELIVERED_NORMAL},
    {"SAFE", MQUNDELIVERED_SAFE},
    {"DISCARD", MQUNDELIVERED_DISCARD},
    {"KEEP", MQUNDELIVERED_KEEP},
    {},
};
constexpr NamedInteger c_PubSubSyncPoint[] = {{"IFPER", MQSYNCPOINT_IFPER}, {"YES", MQSYNCPOINT_YES}, {}};
constexpr NamedInteger c_RemoteEvent[] = {{"DISABLED", MQEVR_DISABLED}, {"ENABLED", MQEVR_ENABLED}, {}};
constexpr NamedInteger c_SSLEvent[] = {{"DISABLED", MQEVR_DISABLED}, {"ENABLED", MQEVR_ENABLED}, {}};
constexpr NamedInteger c_SSLFIPSRequired[] = {{"NO", MQSSL_FIPS_NO}, {"YES", MQSSL_FIPS_YES}, {}};
constexpr NamedInteger c_StartStopEvent[] = {{"DISABLED", MQEVR_DISABLED}, {"ENABLED", MQEVR_ENABLED}, {}};
constexpr NamedInteger c_ClusterSenderStatistics[] = {
    {"QMGR", MQMON_Q_MGR}, {"OFF", MQMON_OFF}, {"LOW", MQMON_LOW}, {"MEDIUM", MQMON_MEDIUM}, {"HIGH", MQMON_HIGH}, {},
};
constexpr NamedInteger c_ChannelStatistics[] = {
    {"NONE", MQMON_NONE}, {"OFF", MQMON_OFF}, {"LOW", MQMON_LOW}, {"MEDIUM", MQMON_MEDIUM}, {"HIGH", MQMON_HIGH}, {},
};
constexpr NamedInteger c_MQIStatistics[] = {{"ON", MQMON_ON}, {"OFF", MQMON_OFF}, {}};
constexpr NamedInteger c_SyncPoint[] = {{"SYNCPT", MQSP_AVAILABLE}, {"", MQSP_NOT_AVAILABLE}, {}};

constexpr AttributeOutput prm_to_msg[] = {
    {MQCA_ALTERATION_DATE, "ALTDATE"},
    {MQCA_ALTERATION_TIME, "ALTTIME"},
    {MQCA_BACKOUT_REQ_Q_NAME, "BOQNAME"},
    {MQCA_BASE_Q_NAME, "TARGET"},
    {MQCA_CLUSTER_NAME, "CLUSTER"},
    {MQCA_CLUSTER_NAMELIST, "CLUSNL"},
    {MQCA_CREATION_DATE, "CRDATE"},
    {MQCA_CREATION_TIME, "CRTIME"},
    {MQCA_INITIATION_Q_NAME, "INITQ"},
    {MQCA_PROCESS_NAME, "PROCESS"},
    {MQCA_Q_DESC, "DESCR"},
    {MQCA_Q_NAME, "QUEUE"},
    {MQCA_REMOTE_Q_MGR_NAME, "RQMNAME"},
    {MQCA_REMOTE_Q_NAME, "RNAME"},
    {MQCA_TRIGGER_DATA, "TRIGDATA"},
    {MQCA_XMIT_Q_NAME, "XMITQ"},
    {MQIA_ACCOUNTING_Q, "ACCTQ", c_QueueAccounting},
    {MQIA_BACKOUT_THRESHOLD, "BOTHRESH"},
    {MQIA_CLWL_Q_PRIORITY, "CLWLPRTY"},
    {MQIA_CLWL_Q_RANK, "CLWLRANK"},
    {MQIA_CLWL_USEQ, "CLWLUSEQ", c_CLWLUseQ},
    {MQIA_CURRENT_Q_DEPTH, "CURDEPTH"},
    {MQIA_DEF_BIND, "DEFBIND", c_DefBind},
    {MQIA_DEF_INPUT_OPEN_OPTION, "DEFSOPT", c_DefInputOpenOption},
    {MQIA_DEF_PERSISTENCE, "DEFPSIST", c_DefPersistence},
    {MQIA_DEF_PRIORITY, "DEFPRTY"},
    {MQIA_DEFINITION_TYPE, "DEFTYPE", c_DefinitionType},
    {MQIA_DIST_LISTS, "DISTL", c_DistLists},
    {MQIA_HARDEN_GET_BACKOUT, "", c_HardenGetBackout},
    {MQIA_INHIBIT_GET, "GET", c_InhibitGet},
    {MQIA_INHIBIT_PUT, "PUT", c_InhibitPut},
    {MQIA_MAX_MSG_LENGTH, "MAXMSGL"},
    {MQIA_MAX_Q_DEPTH, "MAXDEPTH"},
    {MQIA_MSG_DELIVERY_SEQUENCE, "MSGDLVSQ", c_MsgDeliverySequence},
    {MQIA_NPM_CLASS, "NPMCLASS", c_NonPersistentMessageClass},
    {MQIA_OPEN_INPUT_COUNT, "IPPROCS"},
    {MQIA_OPEN_OUTPUT_COUNT, "OPPROCS"},
    {MQIA_PROPERTY_CONTROL, "PROPCTL", c_PropertyControl},
    {MQIA_Q_DEPTH_HIGH_EVENT, "QDPHIEV", c_QDepthHighEvent},
    {MQIA_Q_DEPTH_HIGH_LIMIT, "QDEPTHHI"},
    {MQIA_Q_DEPTH_LOW_EVENT, "QDPLOEV", c_QDepthLowEvent},
    {MQIA_Q_DEPTH_LOW_LIMIT, "QDEPTHLO"},
    {MQIA_Q_DEPTH_MAX_EVENT, "QDPMAXEV", c_QDepthMAXEvent},
    {MQIA_Q_SERVICE_INTERVAL, "QSVCINT"},
    {MQIA_Q_SERVICE_INTERVAL_EVENT, "QSVCIEV", c_QServiceIntervalEvent},
    {MQIA_Q_TYPE, "TYPE", c_QType},
    {MQIA_RETENTION_INTERVAL, "RETINTVL"},
    {MQIA_SCOPE, "SCOPE", c_Scope},
    {MQIA_SHAREABILITY, "", c_Shareability},
    {MQIA_STATISTICS_Q, "STATQ", c_QueueStatistics},
    {MQIA_TRIGGER_CONTROL, "", c_TriggerControl},
    {MQIA_TRIGGER_DEPTH, "TRIGDPTH"},
    {MQIA_TRIGGER_MSG_PRIORITY, "TRIGMPRI"},
    {MQIA_TRIGGER_TYPE, "TRIGTYPE", c_TriggerType},
    {MQIA_USAGE, "USAGE", c_Usage},
    {MQIA_EXPIRY_INTERVAL, "EXPRYINT"},
    {MQCA_NAMELIST_DESC, "DESCR"},
    {MQCA_NAMELIST_NAME, "NAMELIST"},
    {MQCA_NAMES, "NAMES"},
    {MQIA_NAME_COUNT, "NAMCOUNT"},
    {MQCA_APPL_ID, "APPLICID"},
    {MQCA_ENV_DATA, "ENVRDATA"},
    {MQCA_PROCESS_DESC, "DESCR"},
    {MQCA_USER_DATA, "USERDATA"},
    {MQIA_APPL_TYPE, "APPLTYPE", c_ApplType},
    {MQCA_CHANNEL_AUTO_DEF_EXIT, "CHADEXIT"},
    {MQCA_CLUSTER_WORKLOAD_DATA, "CLWLDATA"},
    {MQCA_CLUSTER_WORKLOAD_EXIT, "CLWLEXIT"},
    {MQCA_COMMAND_INPUT_Q_NAME, "COMMANDQ"},
    {MQCA_DEAD_LETTER_Q_NAME, "DEADQ"},
    {MQCA_DEF_XMIT_Q_NAME, "DEFXMITQ"},
    {MQCA_PARENT, "PARENT"},
    {MQCA_Q_MGR_DESC, "DESCR"},
    {MQCA_Q_MGR_IDENTIFIER, "QMID"},
    {MQCA_Q_MGR_NAME, "QMNAME"},
    {MQCA_REPOSITORY_NAME, "REPOS"},
    {MQCA_REPOSITORY_NAMELIST, "REPOSNL"},
    {MQIA_ACCOUNTING_CONN_OVERRIDE, "ACCTCONO", c_AccountingConnOverride},
    {MQIA_ACCOUNTING_INTERVAL, "ACCTINT"},
    {MQIA_ACCOUNTING_MQI, "ACCTMQI", c_MQIAccounting},
    {MQIA_AUTHORITY_EVENT, "AUTHOREV", c_AuthorityEvent},
    {MQIA_CHANNEL_AUTO_DEF, "CHAD", c_ChannelAutoDef},
    {MQIA_CHANNEL_AUTO_DEF_EVENT, "CHADEV", c_ChannelAutoDefEvent},
    {MQIA_CHANNEL_EVENT, "CHLEV", c_ChannelEvent},
    {MQIA_CLWL_MRU_CHANNELS, "CLWLMRUC"},
    {MQIA_CODED_CHAR_SET_ID, "CCSID"},
    {MQIA_COMMAND_EVENT, "CMDEV", c_CommandEvent},
    {MQIA_COMMAND_LEVEL, "CMDLEVEL"},
    {MQIA_CONFIGURATION_EVENT, "CONFIGEV", c_ConfigurationEvent},
    {MQIA_INHIBIT_EVENT, "INHIBTEV", c_InhibitEvent},
    {MQIA_LOCAL_EVENT, "LOCALEV", c_LocalEvent},
    {MQIA_LOGGER_EVENT, "LOGGEREV", c_LoggerEvent},
    {MQIA_MSG_MARK_BROWSE_INTERVAL, "MARKINT"},
    {MQIA_MAX_HANDLES, "MAXHANDS"},
    {MQIA_MAX_PRIORITY, "MAXPRTY"},
    {MQIA_MAX_UNCOMMITTED_MSGS, "MAXUMSGS"},
    {MQIA_PERFORMANCE_EVENT, "PERFMEV", c_PerformanceEvent},
    {MQIA_PLATFORM, "PLATFORM", c_Platform},
    {MQIA_PUBSUB_MAXMSG_RETRY_COUNT, "PSRTYCNT"},
    {MQIA_PUBSUB_MODE, "PSMODE", c_PubSubMode},
    {MQIA_PUBSUB_NP_MSG, "PSNPMSG", c_PubSubNPInputMsg},
    {MQIA_PUBSUB_NP_RESP, "PSNPRES", c_PubSubNPResponse},
    {MQIA_PUBSUB_SYNC_PT, "PSSYNCPT", c_PubSubSyncPoint},
    {MQIA_REMOTE_EVENT, "REMOTEEV", c_RemoteEvent},
    {MQIA_SSL_EVENT, "SSLEV", c_SSLEvent},
    {MQIA_SSL_FIPS_REQUIRED, "SSLFIPS", c_SSLFIPSRequired},
    {MQIA_SSL_RESET_COUNT, "SSLRKEYC"},
    {MQIA_START_STOP_EVENT, "STRSTPEV", c_StartStopEvent},
    {MQIA_STATISTICS_AUTO_CLUSSDR, "STATACLS", c_ClusterSenderStatistics},
    {MQIA_STATISTICS_CHANNEL, "STATCHL", c_ChannelStatistics},
    {MQIA_STATISTICS_INTERVAL, "STATINT"},
    {MQIA_STATISTICS_MQI, "STATMQI", c_MQIStatistics},
    {MQIA_SYNCPOINT, "", c_SyncPoint},
    {MQIA_TREE_LIFE_TIME, "TREELIFE"},
    {MQIA_TRIGGER_INTERVAL, "TRIGINT"},
    {},
};
static_assert(std::size(prm_to_msg) == 115 + 1);

namespace {

/// A bare keyword is the keyword of a value.
consteval bool bareRowsHaveValues()
{
    for (const AttributeOutput &row : prm_to_msg) {
        if (row.keyword != nullptr && *row.keyword == '\0' && row.values == nullptr) return false;
    }
    return true;
}
static_assert(bareRowsHaveValues());

} // namespace
