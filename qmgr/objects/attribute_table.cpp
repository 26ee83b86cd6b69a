#include "qmgr/objects/attribute.h"

#include <array>

#include "cmqcfc.h"

namespace mqrig::qmgr::objects {
namespace {

constexpr ObjectKinds onQmgr = kinds(ObjectKind::QueueManager);
constexpr ObjectKinds onLocal = kinds(ObjectKind::LocalQueue);
constexpr ObjectKinds onAlias = kinds(ObjectKind::AliasQueue);
constexpr ObjectKinds onRemote = kinds(ObjectKind::RemoteQueue);
constexpr ObjectKinds onModel = kinds(ObjectKind::ModelQueue);
constexpr ObjectKinds onNamelist = kinds(ObjectKind::Namelist);
constexpr ObjectKinds onProcess = kinds(ObjectKind::Process);
constexpr ObjectKinds onTopic = kinds(ObjectKind::Topic);
constexpr ObjectKinds onHolders = onLocal | onModel;           // queues that hold messages, and their models
constexpr ObjectKinds onShared = onLocal | onAlias | onRemote; // queues that a cluster or cell may know
constexpr ObjectKinds onReadable = onHolders | onAlias;        // queues that programs may get from
constexpr ObjectKinds onAll = onQmgr | allQueues | onNamelist | onProcess | onTopic;

constexpr MQLONG most = 999999999;
constexpr MQLONG maxMessage = 104857600; // 100 MiB
constexpr MQLONG maxCcsid = 65535;

// Keywords and their integers.
constexpr Word yesNo[] = {{"NO", 0}, {"YES", 1}};
constexpr Word disabledEnabled[] = {{"DISABLED", MQEVR_DISABLED}, {"ENABLED", MQEVR_ENABLED}};
constexpr Word channelEvent[] = {
    {"DISABLED", MQEVR_DISABLED}, {"ENABLED", MQEVR_ENABLED}, {"EXCEPTION", MQEVR_EXCEPTION}};
constexpr Word commandEvent[] = {
    {"DISABLED", MQEVR_DISABLED}, {"ENABLED", MQEVR_ENABLED}, {"NODISPLAY", MQEVR_NO_DISPLAY}};
constexpr Word getPut[] = {{"ENABLED", MQQA_GET_ALLOWED}, {"DISABLED", MQQA_GET_INHIBITED}};
constexpr Word offOn[] = {{"OFF", MQMON_OFF}, {"ON", MQMON_ON}};
constexpr Word noneOffOn[] = {{"NONE", MQMON_NONE}, {"OFF", MQMON_OFF}, {"ON", MQMON_ON}};
constexpr Word qmgrOffOn[] = {{"QMGR", MQMON_Q_MGR}, {"OFF", MQMON_OFF}, {"ON", MQMON_ON}};
constexpr Word levels[] = {
    {"NONE", MQMON_NONE}, {"OFF", MQMON_OFF}, {"LOW", MQMON_LOW}, {"MEDIUM", MQMON_MEDIUM}, {"HIGH", MQMON_HIGH}};
constexpr Word levelsOrQmgr[] = {
    {"QMGR", MQMON_Q_MGR}, {"OFF", MQMON_OFF}, {"LOW", MQMON_LOW}, {"MEDIUM", MQMON_MEDIUM}, {"HIGH", MQMON_HIGH}};
constexpr Word levelsOfSender[] = {
    {"QMGR", MQMON_Q_MGR}, {"NONE", MQMON_NONE}, {"LOW", MQMON_LOW}, {"MEDIUM", MQMON_MEDIUM}, {"HIGH", MQMON_HIGH}};
constexpr Word recording[] = {{"DISABLED", MQRECORDING_DISABLED}, {"QUEUE", MQRECORDING_Q}, {"MSG", MQRECORDING_MSG}};
constexpr Word useQueue[] = {{"QMGR", MQCLWL_USEQ_AS_Q_MGR}, {"LOCAL", MQCLWL_USEQ_LOCAL}, {"ANY", MQCLWL_USEQ_ANY}};
constexpr Word useQueueOfQmgr[] = {{"LOCAL", MQCLWL_USEQ_LOCAL}, {"ANY", MQCLWL_USEQ_ANY}};
constexpr Word applicationTypes[] = {
    {"CICS", MQAT_CICS},   {"DOS", MQAT_DOS},   {"NOTESAGENT", MQAT_NOTES_AGENT}, {"OS2", MQAT_OS2},
    {"OS400", MQAT_OS400}, {"UNIX", MQAT_UNIX}, {"WINDOWS", MQAT_WINDOWS},        {"WINDOWSNT", MQAT_WINDOWS_NT},
    {"DEF", MQAT_DEFAULT}};
constexpr Word bind[] = {
    {"OPEN", MQBND_BIND_ON_OPEN}, {"NOTFIXED", MQBND_BIND_NOT_FIXED}, {"GROUP", MQBND_BIND_ON_GROUP}};
constexpr Word putResponse[] = {{"SYNC", MQPRT_SYNC_RESPONSE}, {"ASYNC", MQPRT_ASYNC_RESPONSE}};
constexpr Word persistence[] = {{"NO", MQPER_NOT_PERSISTENT}, {"YES", MQPER_PERSISTENT}};
constexpr Word readAhead[] = {{"NO", MQREADA_NO}, {"YES", MQREADA_YES}, {"DISABLED", MQREADA_DISABLED}};
constexpr Word inputOption[] = {{"SHARED", MQOO_INPUT_SHARED}, {"EXCL", MQOO_INPUT_EXCLUSIVE}};
constexpr Word definitionType[] = {
    {"PREDEFINED", MQQDT_PREDEFINED}, {"PERMDYN", MQQDT_PERMANENT_DYNAMIC}, {"TEMPDYN", MQQDT_TEMPORARY_DYNAMIC}};
constexpr Word dynamicTypes[] = {{"PERMDYN", MQQDT_PERMANENT_DYNAMIC}, {"TEMPDYN", MQQDT_TEMPORARY_DYNAMIC}};
constexpr Word distLists[] = {{"NO", MQDL_NOT_SUPPORTED}, {"YES", MQDL_SUPPORTED}};
constexpr Word hardenBackout[] = {{"NOHARDENBO", MQQA_BACKOUT_NOT_HARDENED}, {"HARDENBO", MQQA_BACKOUT_HARDENED}};
constexpr Word imageRecovery[] = {{"NO", MQIMGRCOV_NO}, {"YES", MQIMGRCOV_YES}, {"QMGR", MQIMGRCOV_AS_Q_MGR}};
constexpr Word defaultSize[] = {{"DEFAULT", MQQFS_DEFAULT}};
constexpr Word noLimit[] = {{"NOLIMIT", -1}};
constexpr Word deliverySequence[] = {{"PRIORITY", MQMDS_PRIORITY}, {"FIFO", MQMDS_FIFO}};
constexpr Word nonPersistentClass[] = {{"NORMAL", MQNPM_CLASS_NORMAL}, {"HIGH", MQNPM_CLASS_HIGH}};
constexpr Word platforms[] = {{"UNIX", MQPL_UNIX}, {"WINDOWSNT", MQPL_WINDOWS_NT}};
constexpr Word propertyControl[] = {{"COMPAT", MQPROP_COMPATIBILITY},
                                    {"NONE", MQPROP_NONE},
                                    {"ALL", MQPROP_ALL},
                                    {"FORCE", MQPROP_FORCE_MQRFH2},
                                    {"V6COMPAT", MQPROP_V6COMPAT}};
constexpr Word pubsubMode[] = {{"DISABLED", MQPSM_DISABLED}, {"COMPAT", MQPSM_COMPAT}, {"ENABLED", MQPSM_ENABLED}};
constexpr Word undeliveredMsg[] = {{"DISCARD", MQUNDELIVERED_DISCARD}, {"KEEP", MQUNDELIVERED_KEEP}};
constexpr Word undeliveredResp[] = {{"NORMAL", MQUNDELIVERED_NORMAL},
                                    {"SAFE", MQUNDELIVERED_SAFE},
                                    {"DISCARD", MQUNDELIVERED_DISCARD},
                                    {"KEEP", MQUNDELIVERED_KEEP}};
constexpr Word pubsubSyncpoint[] = {{"YES", MQSYNCPOINT_YES}, {"IFPER", MQSYNCPOINT_IFPER}};
constexpr Word serviceEvent[] = {{"NONE", MQQSIE_NONE}, {"HIGH", MQQSIE_HIGH}, {"OK", MQQSIE_OK}};
constexpr Word serverControl[] = {{"QMGR", MQSVC_CONTROL_Q_MGR}, {"MANUAL", MQSVC_CONTROL_MANUAL}};
constexpr Word scope[] = {{"QMGR", MQSCO_Q_MGR}, {"CELL", MQSCO_CELL}};
constexpr Word share[] = {{"NOSHARE", MQQA_NOT_SHAREABLE}, {"SHARE", MQQA_SHAREABLE}};
constexpr Word syncpoint[] = {{"SYNCPT", MQSP_AVAILABLE}};
constexpr Word targetTypes[] = {{"QUEUE", MQOT_Q}, {"TOPIC", MQOT_TOPIC}};
constexpr Word trigger[] = {{"NOTRIGGER", MQTC_OFF}, {"TRIGGER", MQTC_ON}};
constexpr Word triggerType[] = {
    {"NONE", MQTT_NONE}, {"FIRST", MQTT_FIRST}, {"EVERY", MQTT_EVERY}, {"DEPTH", MQTT_DEPTH}};
constexpr Word queueTypes[] = {{"QLOCAL", MQQT_LOCAL},
                               {"QMODEL", MQQT_MODEL},
                               {"QALIAS", MQQT_ALIAS},
                               {"QREMOTE", MQQT_REMOTE},
                               {"QCLUSTER", MQQT_CLUSTER}};
constexpr Word publishing[] = {
    {"ASPARENT", MQTA_PUB_AS_PARENT}, {"ENABLED", MQTA_PUB_ALLOWED}, {"DISABLED", MQTA_PUB_INHIBITED}};
constexpr Word subscribing[] = {
    {"ASPARENT", MQTA_SUB_AS_PARENT}, {"ENABLED", MQTA_SUB_ALLOWED}, {"DISABLED", MQTA_SUB_INHIBITED}};
constexpr Word durableSubs[] = {
    {"ASPARENT", MQSUB_DURABLE_AS_PARENT}, {"YES", MQSUB_DURABLE_ALLOWED}, {"NO", MQSUB_DURABLE_INHIBITED}};
constexpr Word deliveryRule[] = {
    {"ASPARENT", MQDLV_AS_PARENT}, {"ALL", MQDLV_ALL}, {"ALLDUR", MQDLV_ALL_DUR}, {"ALLAVAIL", MQDLV_ALL_AVAIL}};
constexpr Word persistenceOfTopic[] = {
    {"ASPARENT", MQPER_PERSISTENCE_AS_PARENT}, {"NO", MQPER_NOT_PERSISTENT}, {"YES", MQPER_PERSISTENT}};
constexpr Word responseOfTopic[] = {
    {"ASPARENT", MQPRT_RESPONSE_AS_PARENT}, {"SYNC", MQPRT_SYNC_RESPONSE}, {"ASYNC", MQPRT_ASYNC_RESPONSE}};
constexpr Word asParent[] = {{"ASPARENT", MQPRI_PRIORITY_AS_PARENT}};
constexpr Word useDeadLetter[] = {{"ASPARENT", MQUSEDLQ_AS_PARENT}, {"NO", MQUSEDLQ_NO}, {"YES", MQUSEDLQ_YES}};
constexpr Word wildcards[] = {{"PASSTHRU", MQTA_PASSTHRU}, {"BLOCK", MQTA_BLOCK}};
constexpr Word proxySub[] = {{"FIRSTUSE", MQTA_PROXY_SUB_FIRSTUSE}, {"FORCE", MQTA_PROXY_SUB_FORCE}};
constexpr Word topicScope[] = {{"ASPARENT", MQSCOPE_AS_PARENT}, {"ALL", MQSCOPE_ALL}, {"QMGR", MQSCOPE_QMGR}};
constexpr Word multicast[] = {
    {"ASPARENT", MQMC_AS_PARENT}, {"ENABLED", MQMC_ENABLED}, {"DISABLED", MQMC_DISABLED}, {"ONLY", MQMC_ONLY}};
constexpr Word clusterRoute[] = {{"DIRECT", MQCLROUTE_DIRECT}, {"TOPICHOST", MQCLROUTE_TOPIC_HOST}};
constexpr Word topicTypes[] = {{"LOCAL", MQTOPT_LOCAL}, {"CLUSTER", MQTOPT_CLUSTER}};
constexpr Word usage[] = {{"NORMAL", MQUS_NORMAL}, {"XMITQ", MQUS_TRANSMISSION}};

// A row, with the rarer columns added by `fixed`, `dynamic`, `identity`, `byMqset` and `forTriggers`.
struct Row : Attribute {
    constexpr Row with(Access how) const
    {
        Row row = *this;
        row.access = how;
        return row;
    }
    constexpr Row fixed() const { return with(Access::Fixed); }
    constexpr Row dynamic() const { return with(Access::Dynamic); }
    constexpr Row identity() const { return with(Access::Identity); }
    constexpr Row byMqset() const
    {
        Row row = *this;
        row.settable = true;
        return row;
    }
    constexpr Row forTriggers() const
    {
        Row row = *this;
        row.triggering = true;
        return row;
    }
};

struct Range {
    MQLONG low;
    MQLONG high;
};

constexpr Row number(std::string_view keyword, MQLONG selector, ObjectKinds of, Range range, MQLONG standard,
                     std::span<const Word> words = {})
{
    return {{.keyword = keyword,
             .selector = selector,
             .kinds = of,
             .value = ValueKind::Number,
             .low = range.low,
             .high = range.high,
             .words = words,
             .defaultNumber = standard,
             .defaultText = {}}};
}

constexpr Row words(std::string_view keyword, MQLONG selector, ObjectKinds of, std::span<const Word> choices,
                    MQLONG standard)
{
    return {{.keyword = keyword,
             .selector = selector,
             .kinds = of,
             .value = ValueKind::Keyword,
             .words = choices,
             .defaultNumber = standard,
             .defaultText = {}}};
}

constexpr Row flag(std::string_view keyword, MQLONG selector, ObjectKinds of, std::span<const Word> choices,
                   MQLONG standard)
{
    return {{.keyword = keyword,
             .selector = selector,
             .kinds = of,
             .value = ValueKind::Flag,
             .words = choices,
             .defaultNumber = standard,
             .defaultText = {}}};
}

constexpr Row text(std::string_view keyword, MQLONG selector, ObjectKinds of, MQLONG length)
{
    return {{.keyword = keyword,
             .selector = selector,
             .kinds = of,
             .value = ValueKind::Text,
             .words = {},
             .textLength = length,
             .defaultText = {}}};
}

constexpr Row name(std::string_view keyword, MQLONG selector, ObjectKinds of, std::string_view standard = {},
                   MQLONG length = MQ_OBJECT_NAME_LENGTH)
{
    return {{.keyword = keyword,
             .selector = selector,
             .kinds = of,
             .value = ValueKind::Name,
             .words = {},
             .textLength = length,
             .defaultText = standard}};
}

constexpr Row names(std::string_view keyword, MQLONG selector, ObjectKinds of)
{
    return {{.keyword = keyword,
             .selector = selector,
             .kinds = of,
             .value = ValueKind::NameList,
             .words = {},
             .textLength = MQ_OBJECT_NAME_LENGTH,
             .defaultText = {}}};
}

// Other spellings of keywords.
struct KeywordSynonym {
    std::string_view typed;
    std::string_view keyword;
};
constexpr KeywordSynonym synonyms[] = {{"TARGQ", "TARGET"}};

// clang-format off
constexpr Row table[] = {
    words("ACCTCONO", MQIA_ACCOUNTING_CONN_OVERRIDE, onQmgr, disabledEnabled, MQEVR_DISABLED),
    number("ACCTINT", MQIA_ACCOUNTING_INTERVAL, onQmgr, {1, 604800}, 1800),
    words("ACCTMQI", MQIA_ACCOUNTING_MQI, onQmgr, offOn, MQMON_OFF),
    words("ACCTQ", MQIA_ACCOUNTING_Q, onHolders, qmgrOffOn, MQMON_Q_MGR),
    words("ACCTQ", MQIA_ACCOUNTING_Q, onQmgr, noneOffOn, MQMON_OFF),
    words("ACTIVREC", MQIA_ACTIVITY_RECORDING, onQmgr, recording, MQRECORDING_MSG),
    words("ACTVCONO", MQIA_ACTIVITY_CONN_OVERRIDE, onQmgr, disabledEnabled, MQEVR_DISABLED),
    words("ACTVTRC", MQIA_ACTIVITY_TRACE, onQmgr, offOn, MQMON_OFF),
    text("ALTDATE", MQCA_ALTERATION_DATE, onAll, MQ_DATE_LENGTH).fixed(),
    text("ALTTIME", MQCA_ALTERATION_TIME, onAll, MQ_TIME_LENGTH).fixed(),
    text("APPLICID", MQCA_APPL_ID, onProcess, MQ_PROCESS_APPL_ID_LENGTH),
    number("APPLTYPE", MQIA_APPL_TYPE, onProcess, {0, MQAT_USER_LAST}, MQAT_DEFAULT, applicationTypes),
    words("AUTHOREV", MQIA_AUTHORITY_EVENT, onQmgr, disabledEnabled, MQEVR_DISABLED),
    name("BOQNAME", MQCA_BACKOUT_REQ_Q_NAME, onHolders),
    number("BOTHRESH", MQIA_BACKOUT_THRESHOLD, onHolders, {0, most}, 0),
    number("CCSID", MQIA_CODED_CHAR_SET_ID, onQmgr, {1, maxCcsid}, 1208),
    words("CHAD", MQIA_CHANNEL_AUTO_DEF, onQmgr, disabledEnabled, MQCHAD_DISABLED),
    words("CHADEV", MQIA_CHANNEL_AUTO_DEF_EVENT, onQmgr, disabledEnabled, MQEVR_DISABLED),
    text("CHADEXIT", MQCA_CHANNEL_AUTO_DEF_EXIT, onQmgr, MQ_EXIT_NAME_LENGTH),
    words("CHLEV", MQIA_CHANNEL_EVENT, onQmgr, channelEvent, MQEVR_DISABLED),
    text("CLCHNAME", MQCA_CLUS_CHL_NAME, onLocal, MQ_CHANNEL_NAME_LENGTH),
    words("CLROUTE", MQIA_CLUSTER_PUB_ROUTE, onTopic, clusterRoute, MQCLROUTE_DIRECT),
    name("CLUSNL", MQCA_CLUSTER_NAMELIST, onShared),
    name("CLUSTER", MQCA_CLUSTER_NAME, onShared),
    name("CLUSTER", MQCA_CLUSTER_NAME, onTopic),
    text("CLWLDATA", MQCA_CLUSTER_WORKLOAD_DATA, onQmgr, MQ_EXIT_DATA_LENGTH),
    text("CLWLEXIT", MQCA_CLUSTER_WORKLOAD_EXIT, onQmgr, MQ_EXIT_NAME_LENGTH),
    number("CLWLLEN", MQIA_CLUSTER_WORKLOAD_LENGTH, onQmgr, {0, most}, 100),
    number("CLWLMRUC", MQIA_CLWL_MRU_CHANNELS, onQmgr, {1, most}, most),
    number("CLWLPRTY", MQIA_CLWL_Q_PRIORITY, onShared, {0, 9}, 0),
    number("CLWLRANK", MQIA_CLWL_Q_RANK, onShared, {0, 9}, 0),
    words("CLWLUSEQ", MQIA_CLWL_USEQ, onLocal, useQueue, MQCLWL_USEQ_AS_Q_MGR),
    words("CLWLUSEQ", MQIA_CLWL_USEQ, onQmgr, useQueueOfQmgr, MQCLWL_USEQ_LOCAL),
    words("CMDEV", MQIA_COMMAND_EVENT, onQmgr, commandEvent, MQEVR_DISABLED),
    number("CMDLEVEL", MQIA_COMMAND_LEVEL, onQmgr, {0, most}, MQCMDL_LEVEL_920).fixed(),
    name("COMMANDQ", MQCA_COMMAND_INPUT_Q_NAME, onQmgr, "SYSTEM.ADMIN.COMMAND.QUEUE").fixed(),
    name("COMMINFO", MQCA_COMM_INFO_NAME, onTopic),
    words("CONFIGEV", MQIA_CONFIGURATION_EVENT, onQmgr, disabledEnabled, MQEVR_DISABLED),
    text("CRDATE", MQCA_CREATION_DATE, onHolders | onQmgr, MQ_CREATION_DATE_LENGTH).fixed(),
    text("CRTIME", MQCA_CREATION_TIME, onHolders | onQmgr, MQ_CREATION_TIME_LENGTH).fixed(),
    number("CURDEPTH", MQIA_CURRENT_Q_DEPTH, onLocal, {0, most}, 0).dynamic(),
    text("CUSTOM", MQCA_CUSTOM, allQueues | onQmgr | onTopic, MQ_CUSTOM_LENGTH),
    name("DEADQ", MQCA_DEAD_LETTER_Q_NAME, onQmgr),
    words("DEFBIND", MQIA_DEF_BIND, onShared, bind, MQBND_BIND_ON_OPEN),
    words("DEFPRESP", MQIA_DEF_PUT_RESPONSE_TYPE, allQueues, putResponse, MQPRT_SYNC_RESPONSE),
    words("DEFPRESP", MQIA_DEF_PUT_RESPONSE_TYPE, onTopic, responseOfTopic, MQPRT_RESPONSE_AS_PARENT),
    number("DEFPRTY", MQIA_DEF_PRIORITY, allQueues, {0, 9}, 0),
    number("DEFPRTY", MQIA_DEF_PRIORITY, onTopic, {0, 9}, MQPRI_PRIORITY_AS_PARENT, asParent),
    words("DEFPSIST", MQIA_DEF_PERSISTENCE, allQueues, persistence, MQPER_NOT_PERSISTENT),
    words("DEFPSIST", MQIA_TOPIC_DEF_PERSISTENCE, onTopic, persistenceOfTopic, MQPER_PERSISTENCE_AS_PARENT),
    words("DEFREADA", MQIA_DEF_READ_AHEAD, onReadable, readAhead, MQREADA_NO),
    words("DEFSOPT", MQIA_DEF_INPUT_OPEN_OPTION, onLocal, inputOption, MQOO_INPUT_SHARED),
    words("DEFSOPT", MQIA_DEF_INPUT_OPEN_OPTION, onModel, inputOption, MQOO_INPUT_EXCLUSIVE),
    words("DEFTYPE", MQIA_DEFINITION_TYPE, onLocal, definitionType, MQQDT_PREDEFINED).fixed(),
    words("DEFTYPE", MQIA_DEFINITION_TYPE, onModel, dynamicTypes, MQQDT_TEMPORARY_DYNAMIC),
    name("DEFXMITQ", MQCA_DEF_XMIT_Q_NAME, onQmgr),
    text("DESCR", MQCA_Q_DESC, allQueues, MQ_Q_DESC_LENGTH),
    text("DESCR", MQCA_NAMELIST_DESC, onNamelist, MQ_NAMELIST_DESC_LENGTH),
    text("DESCR", MQCA_PROCESS_DESC, onProcess, MQ_PROCESS_DESC_LENGTH),
    text("DESCR", MQCA_Q_MGR_DESC, onQmgr, MQ_Q_MGR_DESC_LENGTH),
    text("DESCR", MQCA_TOPIC_DESC, onTopic, MQ_TOPIC_DESC_LENGTH),
    words("DISTL", MQIA_DIST_LISTS, onHolders, distLists, MQDL_NOT_SUPPORTED).byMqset(),
    words("DISTL", MQIA_DIST_LISTS, onQmgr, distLists, MQDL_SUPPORTED).fixed(),
    words("DURSUB", MQIA_DURABLE_SUB, onTopic, durableSubs, MQSUB_DURABLE_AS_PARENT),
    text("ENVRDATA", MQCA_ENV_DATA, onProcess, MQ_PROCESS_ENV_DATA_LENGTH),
    words("GET", MQIA_INHIBIT_GET, onReadable, getPut, MQQA_GET_ALLOWED).byMqset().forTriggers(),
    flag("HARDENBO", MQIA_HARDEN_GET_BACKOUT, onHolders, hardenBackout, MQQA_BACKOUT_HARDENED),
    words("IMGRCOVQ", MQIA_MEDIA_IMAGE_RECOVER_Q, onHolders, imageRecovery, MQIMGRCOV_AS_Q_MGR),
    words("IMGRCOVQ", MQIA_MEDIA_IMAGE_RECOVER_Q, onQmgr, yesNo, MQIMGRCOV_YES),
    words("INHIBTEV", MQIA_INHIBIT_EVENT, onQmgr, disabledEnabled, MQEVR_DISABLED),
    name("INITQ", MQCA_INITIATION_Q_NAME, onHolders),
    number("IPPROCS", MQIA_OPEN_INPUT_COUNT, onLocal, {0, most}, 0).dynamic(),
    words("LOCALEV", MQIA_LOCAL_EVENT, onQmgr, disabledEnabled, MQEVR_DISABLED),
    words("LOGGEREV", MQIA_LOGGER_EVENT, onQmgr, disabledEnabled, MQEVR_DISABLED),
    number("MARKINT", MQIA_MSG_MARK_BROWSE_INTERVAL, onQmgr, {0, most}, 5000, noLimit),
    number("MAXDEPTH", MQIA_MAX_Q_DEPTH, onHolders, {0, most}, 5000),
    number("MAXFSIZE", MQIA_MAX_Q_FILE_SIZE, onHolders, {20, 267386880}, MQQFS_DEFAULT, defaultSize),
    number("MAXHANDS", MQIA_MAX_HANDLES, onQmgr, {0, most}, 256),
    number("MAXMSGL", MQIA_MAX_MSG_LENGTH, onHolders, {0, maxMessage}, 4194304),
    number("MAXMSGL", MQIA_MAX_MSG_LENGTH, onQmgr, {32768, maxMessage}, 4194304),
    number("MAXPROPL", MQIA_MAX_PROPERTIES_LENGTH, onQmgr, {0, maxMessage}, MQPROP_UNRESTRICTED_LENGTH, noLimit),
    number("MAXPRTY", MQIA_MAX_PRIORITY, onQmgr, {0, 9}, 9).fixed(),
    number("MAXUMSGS", MQIA_MAX_UNCOMMITTED_MSGS, onQmgr, {1, most}, 10000),
    words("MCAST", MQIA_MULTICAST, onTopic, multicast, MQMC_AS_PARENT),
    name("MDURMDL", MQCA_MODEL_DURABLE_Q, onTopic),
    name("MNDURMDL", MQCA_MODEL_NON_DURABLE_Q, onTopic),
    words("MONACLS", MQIA_MONITORING_AUTO_CLUSSDR, onQmgr, levelsOfSender, MQMON_Q_MGR),
    words("MONCHL", MQIA_MONITORING_CHANNEL, onQmgr, levels, MQMON_OFF),
    words("MONQ", MQIA_MONITORING_Q, onHolders, levelsOrQmgr, MQMON_Q_MGR),
    words("MONQ", MQIA_MONITORING_Q, onQmgr, levels, MQMON_OFF),
    words("MSGDLVSQ", MQIA_MSG_DELIVERY_SEQUENCE, onHolders, deliverySequence, MQMDS_PRIORITY),
    number("NAMCOUNT", MQIA_NAME_COUNT, onNamelist, {0, maxNames}, 0).with(Access::Derived),
    name("NAMELIST", MQCA_NAMELIST_NAME, onNamelist).identity(),
    names("NAMES", MQCA_NAMES, onNamelist),
    words("NPMCLASS", MQIA_NPM_CLASS, onHolders, nonPersistentClass, MQNPM_CLASS_NORMAL),
    words("NPMSGDLV", MQIA_NPM_DELIVERY, onTopic, deliveryRule, MQDLV_AS_PARENT),
    number("OPPROCS", MQIA_OPEN_OUTPUT_COUNT, onLocal, {0, most}, 0).dynamic(),
    name("PARENT", MQCA_PARENT, onQmgr),
    words("PERFMEV", MQIA_PERFORMANCE_EVENT, onQmgr, disabledEnabled, MQEVR_DISABLED),
    words("PLATFORM", MQIA_PLATFORM, onQmgr, platforms, MQPL_UNIX).fixed(),
    words("PMSGDLV", MQIA_PM_DELIVERY, onTopic, deliveryRule, MQDLV_AS_PARENT),
    name("PROCESS", MQCA_PROCESS_NAME, onHolders),
    name("PROCESS", MQCA_PROCESS_NAME, onProcess).identity(),
    words("PROPCTL", MQIA_PROPERTY_CONTROL, onReadable, propertyControl, MQPROP_COMPATIBILITY),
    words("PROXYSUB", MQIA_PROXY_SUB, onTopic, proxySub, MQTA_PROXY_SUB_FIRSTUSE),
    words("PSMODE", MQIA_PUBSUB_MODE, onQmgr, pubsubMode, MQPSM_ENABLED),
    words("PSNPMSG", MQIA_PUBSUB_NP_MSG, onQmgr, undeliveredMsg, MQUNDELIVERED_DISCARD),
    words("PSNPRES", MQIA_PUBSUB_NP_RESP, onQmgr, undeliveredResp, MQUNDELIVERED_NORMAL),
    number("PSRTYCNT", MQIA_PUBSUB_MAXMSG_RETRY_COUNT, onQmgr, {0, most}, 5),
    words("PSSYNCPT", MQIA_PUBSUB_SYNC_PT, onQmgr, pubsubSyncpoint, MQSYNCPOINT_IFPER),
    words("PUB", MQIA_INHIBIT_PUB, onTopic, publishing, MQTA_PUB_AS_PARENT),
    words("PUBSCOPE", MQIA_PUB_SCOPE, onTopic, topicScope, MQSCOPE_AS_PARENT),
    words("PUT", MQIA_INHIBIT_PUT, allQueues, getPut, MQQA_PUT_ALLOWED).byMqset(),
    number("QDEPTHHI", MQIA_Q_DEPTH_HIGH_LIMIT, onHolders, {0, 100}, 80),
    number("QDEPTHLO", MQIA_Q_DEPTH_LOW_LIMIT, onHolders, {0, 100}, 20),
    words("QDPHIEV", MQIA_Q_DEPTH_HIGH_EVENT, onHolders, disabledEnabled, MQEVR_DISABLED),
    words("QDPLOEV", MQIA_Q_DEPTH_LOW_EVENT, onHolders, disabledEnabled, MQEVR_DISABLED),
    words("QDPMAXEV", MQIA_Q_DEPTH_MAX_EVENT, onHolders, disabledEnabled, MQEVR_ENABLED),
    text("QMID", MQCA_Q_MGR_IDENTIFIER, onQmgr, MQ_Q_MGR_IDENTIFIER_LENGTH).fixed(),
    name("QMNAME", MQCA_Q_MGR_NAME, onQmgr).identity(),
    words("QSVCIEV", MQIA_Q_SERVICE_INTERVAL_EVENT, onHolders, serviceEvent, MQQSIE_NONE),
    number("QSVCINT", MQIA_Q_SERVICE_INTERVAL, onHolders, {0, most}, most),
    name("QUEUE", MQCA_Q_NAME, allQueues).identity(),
    words("REMOTEEV", MQIA_REMOTE_EVENT, onQmgr, disabledEnabled, MQEVR_DISABLED),
    name("REPOS", MQCA_REPOSITORY_NAME, onQmgr),
    name("REPOSNL", MQCA_REPOSITORY_NAMELIST, onQmgr),
    number("RETINTVL", MQIA_RETENTION_INTERVAL, onHolders, {0, most}, most),
    name("RNAME", MQCA_REMOTE_Q_NAME, onRemote),
    words("ROUTEREC", MQIA_TRACE_ROUTE_RECORDING, onQmgr, recording, MQRECORDING_MSG),
    name("RQMNAME", MQCA_REMOTE_Q_MGR_NAME, onRemote),
    words("SCMDSERV", MQIA_CMD_SERVER_CONTROL, onQmgr, serverControl, MQSVC_CONTROL_Q_MGR),
    words("SCOPE", MQIA_SCOPE, onShared, scope, MQSCO_Q_MGR),
    flag("SHARE", MQIA_SHAREABILITY, onLocal, share, MQQA_SHAREABLE),
    flag("SHARE", MQIA_SHAREABILITY, onModel, share, MQQA_NOT_SHAREABLE),
    words("SSLEV", MQIA_SSL_EVENT, onQmgr, disabledEnabled, MQEVR_DISABLED),
    words("SSLFIPS", MQIA_SSL_FIPS_REQUIRED, onQmgr, yesNo, MQSSL_FIPS_NO),
    number("SSLRKEYC", MQIA_SSL_RESET_COUNT, onQmgr, {0, most}, 0),
    words("STATACLS", MQIA_STATISTICS_AUTO_CLUSSDR, onQmgr, levelsOrQmgr, MQMON_Q_MGR),
    words("STATCHL", MQIA_STATISTICS_CHANNEL, onQmgr, levels, MQMON_OFF),
    number("STATINT", MQIA_STATISTICS_INTERVAL, onQmgr, {1, 604800}, 1800),
    words("STATMQI", MQIA_STATISTICS_MQI, onQmgr, offOn, MQMON_OFF),
    words("STATQ", MQIA_STATISTICS_Q, onHolders, qmgrOffOn, MQMON_Q_MGR),
    words("STATQ", MQIA_STATISTICS_Q, onQmgr, noneOffOn, MQMON_OFF),
    words("STRSTPEV", MQIA_START_STOP_EVENT, onQmgr, disabledEnabled, MQEVR_ENABLED),
    words("SUB", MQIA_INHIBIT_SUB, onTopic, subscribing, MQTA_SUB_AS_PARENT),
    words("SUBSCOPE", MQIA_SUB_SCOPE, onTopic, topicScope, MQSCOPE_AS_PARENT),
    flag("SYNCPT", MQIA_SYNCPOINT, onQmgr, syncpoint, MQSP_AVAILABLE).fixed(),
    name("TARGET", MQCA_BASE_OBJECT_NAME, onAlias),
    words("TARGTYPE", MQIA_BASE_TYPE, onAlias, targetTypes, MQOT_Q),
    name("TOPIC", MQCA_TOPIC_NAME, onTopic).identity(),
    text("TOPICSTR", MQCA_TOPIC_STRING, onTopic, MQ_TOPIC_STR_LENGTH),
    number("TREELIFE", MQIA_TREE_LIFE_TIME, onQmgr, {0, 604000}, 1800),
    text("TRIGDATA", MQCA_TRIGGER_DATA, onHolders, MQ_TRIGGER_DATA_LENGTH).byMqset(),
    number("TRIGDPTH", MQIA_TRIGGER_DEPTH, onHolders, {1, most}, 1).byMqset().forTriggers(),
    flag("TRIGGER", MQIA_TRIGGER_CONTROL, onHolders, trigger, MQTC_OFF).byMqset().forTriggers(),
    number("TRIGINT", MQIA_TRIGGER_INTERVAL, onQmgr, {0, most}, most),
    number("TRIGMPRI", MQIA_TRIGGER_MSG_PRIORITY, onHolders, {0, 9}, 0).byMqset().forTriggers(),
    words("TRIGTYPE", MQIA_TRIGGER_TYPE, onHolders, triggerType, MQTT_FIRST).byMqset().forTriggers(),
    words("TYPE", MQIA_Q_TYPE, allQueues, queueTypes, MQQT_LOCAL).identity(),
    words("TYPE", MQIA_TOPIC_TYPE, onTopic, topicTypes, MQTOPT_LOCAL).identity(),
    words("USAGE", MQIA_USAGE, onHolders, usage, MQUS_NORMAL),
    words("USEDLQ", MQIA_USE_DEAD_LETTER_Q, onTopic, useDeadLetter, MQUSEDLQ_AS_PARENT),
    text("USERDATA", MQCA_USER_DATA, onProcess, MQ_PROCESS_USER_DATA_LENGTH),
    words("WILDCARD", MQIA_WILDCARD_OPERATION, onTopic, wildcards, MQTA_PASSTHRU),
    name("XMITQ", MQCA_XMIT_Q_NAME, onRemote),
};
// clang-format on

constexpr std::size_t rows = std::size(table);
constexpr ObjectKind everyKind[] = {ObjectKind::QueueManager, ObjectKind::LocalQueue, ObjectKind::AliasQueue,
                                    ObjectKind::RemoteQueue,  ObjectKind::ModelQueue, ObjectKind::Namelist,
                                    ObjectKind::Process,      ObjectKind::Topic};

constexpr bool sortedByKeyword()
{
    for (std::size_t i = 1; i < rows; ++i)
        if (table[i].keyword < table[i - 1].keyword) return false;
    return true;
}
static_assert(sortedByKeyword(), "the attribute table is in the order of its keywords");

constexpr bool uniqueWithinKind()
{
    for (std::size_t i = 0; i < rows; ++i)
        for (std::size_t j = i + 1; j < rows; ++j)
            if ((table[i].kinds & table[j].kinds) != 0 &&
                (table[i].selector == table[j].selector || table[i].keyword == table[j].keyword))
                return false;
    return true;
}
static_assert(uniqueWithinKind(), "a keyword and a selector name one attribute of a kind of object");

constexpr bool valueIsAllowed(const Attribute &row, MQLONG value)
{
    for (const Word &word : row.words)
        if (word.value == value) return true;
    return row.value == ValueKind::Number && row.low <= value && value <= row.high;
}

constexpr bool wellFormed()
{
    for (const Row &row : table) {
        const bool character = row.selector >= MQCA_FIRST && row.selector <= MQCA_LAST;
        if (row.kinds == 0 || character != row.isText()) return false;
        if (!character && (row.selector < MQIA_FIRST || row.selector > MQIA_LAST)) return false;
        if (!character && !valueIsAllowed(row, row.defaultNumber)) return false;
        if (row.defaultText.size() > static_cast<std::size_t>(row.textLength)) return false;
        if (row.settable && row.access != Access::Alterable) return false;
    }
    return true;
}
static_assert(wellFormed(), "selectors are of the right range, defaults are allowed values");

// Row numbers by selector, one array per kind of object: integer selectors first, then character selectors.
constexpr MQLONG integerSelectors = MQIA_LAST_USED + 1;
constexpr MQLONG characterSelectors = MQCA_LAST_USED - MQCA_FIRST + 1;
constexpr std::size_t places = std::size_t{integerSelectors} + characterSelectors;
constexpr std::uint16_t noRow = 0xFFFF;
static_assert(rows < noRow);

// Where a selector stands in those arrays; `places` if it is none that the MQI has.
constexpr std::size_t placeOf(MQLONG selector)
{
    if (selector >= MQIA_FIRST && selector < integerSelectors) return static_cast<std::size_t>(selector);
    if (selector >= MQCA_FIRST && selector <= MQCA_LAST_USED)
        return static_cast<std::size_t>(integerSelectors + selector - MQCA_FIRST);
    return places;
}

constexpr auto rowBySelector = [] {
    std::array<std::array<std::uint16_t, places>, std::size(everyKind)> index{};
    for (auto &ofKind : index)
        ofKind.fill(noRow);
    for (std::size_t i = 0; i < rows; ++i)
        for (const ObjectKind kind : everyKind)
            if (contains(table[i].kinds, kind))
                index[static_cast<std::size_t>(kind)][placeOf(table[i].selector)] = static_cast<std::uint16_t>(i);
    return index;
}();

constexpr auto plainTable = [] {
    std::array<Attribute, rows> plain{};
    for (std::size_t i = 0; i < rows; ++i)
        plain[i] = table[i];
    return plain;
}();

constexpr char upper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool sameKeyword(std::string_view keyword, std::string_view typed)
{
    if (keyword.size() != typed.size()) return false;
    for (std::size_t i = 0; i < keyword.size(); ++i)
        if (keyword[i] != upper(typed[i])) return false;
    return true;
}

} // namespace

std::span<const Attribute> attributes()
{
    return plainTable;
}

const Attribute *findSelector(ObjectKind kind, MQLONG selector)
{
    const std::size_t place = placeOf(selector);
    if (place == places) return nullptr;
    const std::uint16_t row = rowBySelector[static_cast<std::size_t>(kind)][place];
    return row == noRow ? nullptr : &plainTable[row];
}

KeywordMatch findKeyword(std::span<const Attribute> among, ObjectKinds kinds, std::string_view keyword)
{
    for (const KeywordSynonym &synonym : synonyms)
        if (sameKeyword(synonym.typed, keyword)) keyword = synonym.keyword;
    for (const Attribute &attribute : among) {
        if ((attribute.kinds & kinds) == 0) continue;
        if (attribute.value == ValueKind::Flag) {
            for (const Word &word : attribute.words)
                if (sameKeyword(word.keyword, keyword)) return {&attribute, word.value};
        } else if (sameKeyword(attribute.keyword, keyword)) {
            return {&attribute, 0};
        }
    }
    return {};
}

SelectorStanding standing(ObjectKind kind, MQLONG selector)
{
    if (findSelector(kind, selector) != nullptr) return SelectorStanding::OfObject;
    if (contains(allQueues, kind))
        for (const ObjectKind other : everyKind)
            if (contains(allQueues, other) && findSelector(other, selector) != nullptr)
                return SelectorStanding::OfOtherQueues;
    return SelectorStanding::Unknown;
}

MQLONG textLengthOf(MQLONG selector)
{
    for (const ObjectKind kind : everyKind)
        if (const Attribute *attribute = findSelector(kind, selector)) return attribute->textLength;
    return 0;
}

} // namespace mqrig::qmgr::objects
