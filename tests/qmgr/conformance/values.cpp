#include "values.h"

namespace mqrig::conformance {
namespace {

constexpr ValueRow done(std::string_view field, std::string_view name, MQLONG value)
{
    return {field, name, value, Treatment::Done, {}};
}

constexpr ValueRow noEffect(std::string_view field, std::string_view name, MQLONG value, std::string_view because)
{
    return {field, name, value, Treatment::WithoutEffect, because};
}

constexpr ValueRow refused(std::string_view field, std::string_view name, MQLONG value, std::string_view because)
{
    return {field, name, value, Treatment::Refused, because};
}

constexpr std::string_view ofTopics = "it is of definitions of topics";
constexpr std::string_view notOpened = "no object of that type is opened";
constexpr std::string_view ownerOnly = "who may connect is who may open the store's files";

constexpr ValueField fields[] = {
    {"MQMD.MsgType", MQRC_MSG_TYPE_ERROR, "MQMT_"},
    {"MQMD.Persistence", MQRC_PERSISTENCE_ERROR, "MQPER_"},
    {"MQMD.Priority", MQRC_PRIORITY_ERROR, "MQPRI_"},
    {"MQSD.PubPriority", MQRC_PRIORITY_ERROR, "MQPRI_"},
    {"MQPMO.Action", MQRC_ACTION_ERROR, "MQACTP_"},
    {"MQPMO.PutMsgRecFields", MQRC_PMO_RECORD_FLAGS_ERROR, "MQPMRF_"},
    {"MQOD.ObjectType", MQRC_OBJECT_TYPE_ERROR, "MQOT_"},
    {"MQCBD.CallbackType", MQRC_CALLBACK_TYPE_ERROR, "MQCBT_"},
    {"Operation of MQCB", MQRC_OPERATION_ERROR, "MQOP_"},
    {"Operation of MQCTL", MQRC_OPERATION_ERROR, "MQOP_"},
    {"Type of MQSETMP", MQRC_PROPERTY_TYPE_ERROR, "MQTYPE_"},
    {"MQPD.Support", MQRC_NONE, "MQPD_SUPPORT_"},
    {"MQPD.Context", MQRC_PD_ERROR, ""},
    {"MQPD.CopyOptions", MQRC_PD_ERROR, "MQCOPY_"},
    {"Type of MQSTAT", MQRC_STAT_TYPE_ERROR, "MQSTAT_TYPE_"},
    {"Action of MQSUBRQ", MQRC_ACTION_ERROR, "MQSR_"},
    {"MQCSP.AuthenticationType", MQRC_CSP_ERROR, "MQCSP_AUTH_"},
};

constexpr ValueRow rows[] = {
    done("MQMD.MsgType", "MQMT_REQUEST", MQMT_REQUEST),
    done("MQMD.MsgType", "MQMT_REPLY", MQMT_REPLY),
    done("MQMD.MsgType", "MQMT_REPORT", MQMT_REPORT),
    done("MQMD.MsgType", "MQMT_DATAGRAM", MQMT_DATAGRAM),
    done("MQMD.MsgType", "MQMT_MQE_FIELDS_FROM_MQE", MQMT_MQE_FIELDS_FROM_MQE),
    done("MQMD.MsgType", "MQMT_MQE_FIELDS", MQMT_MQE_FIELDS),
    done("MQMD.MsgType", "MQMT_APPL_FIRST", MQMT_APPL_FIRST),
    done("MQMD.MsgType", "MQMT_APPL_LAST", MQMT_APPL_LAST),
    done("MQMD.MsgType", "MQMT_SYSTEM_FIRST", MQMT_SYSTEM_FIRST),
    refused("MQMD.MsgType", "MQMT_SYSTEM_LAST", MQMT_SYSTEM_LAST, "it is a bound, and no type"),
    done("MQMD.Persistence", "MQPER_NOT_PERSISTENT", MQPER_NOT_PERSISTENT),
    done("MQMD.Persistence", "MQPER_PERSISTENT", MQPER_PERSISTENT),
    done("MQMD.Persistence", "MQPER_PERSISTENCE_AS_Q_DEF", MQPER_PERSISTENCE_AS_Q_DEF),
    done("MQMD.Persistence", "MQPER_PERSISTENCE_AS_TOPIC_DEF", MQPER_PERSISTENCE_AS_TOPIC_DEF),
    refused("MQMD.Persistence", "MQPER_PERSISTENCE_AS_PARENT", MQPER_PERSISTENCE_AS_PARENT, ofTopics),
    done("MQMD.Priority", "MQPRI_PRIORITY_AS_Q_DEF", MQPRI_PRIORITY_AS_Q_DEF),
    done("MQMD.Priority", "MQPRI_PRIORITY_AS_TOPIC_DEF", MQPRI_PRIORITY_AS_TOPIC_DEF),
    refused("MQMD.Priority", "MQPRI_PRIORITY_AS_PARENT", MQPRI_PRIORITY_AS_PARENT, ofTopics),
    refused("MQMD.Priority", "MQPRI_PRIORITY_AS_PUBLISHED", MQPRI_PRIORITY_AS_PUBLISHED, "it is of MQSD.PubPriority"),
    done("MQSD.PubPriority", "MQPRI_PRIORITY_AS_PUBLISHED", MQPRI_PRIORITY_AS_PUBLISHED),
    done("MQSD.PubPriority", "MQPRI_PRIORITY_AS_Q_DEF", MQPRI_PRIORITY_AS_Q_DEF),
    done("MQSD.PubPriority", "MQPRI_PRIORITY_AS_TOPIC_DEF", MQPRI_PRIORITY_AS_TOPIC_DEF),
    refused("MQSD.PubPriority", "MQPRI_PRIORITY_AS_PARENT", MQPRI_PRIORITY_AS_PARENT, ofTopics),
    done("MQPMO.Action", "MQACTP_NEW", MQACTP_NEW),
    done("MQPMO.Action", "MQACTP_FORWARD", MQACTP_FORWARD),
    done("MQPMO.Action", "MQACTP_REPLY", MQACTP_REPLY),
    done("MQPMO.Action", "MQACTP_REPORT", MQACTP_REPORT),
    done("MQPMO.PutMsgRecFields", "MQPMRF_MSG_ID", MQPMRF_MSG_ID),
    done("MQPMO.PutMsgRecFields", "MQPMRF_CORREL_ID", MQPMRF_CORREL_ID),
    done("MQPMO.PutMsgRecFields", "MQPMRF_GROUP_ID", MQPMRF_GROUP_ID),
    done("MQPMO.PutMsgRecFields", "MQPMRF_FEEDBACK", MQPMRF_FEEDBACK),
    done("MQPMO.PutMsgRecFields", "MQPMRF_ACCOUNTING_TOKEN", MQPMRF_ACCOUNTING_TOKEN),
    refused("MQPMO.PutMsgRecFields", "MQPMRF_NONE", MQPMRF_NONE, "where records are given, they have a field"),
    done("MQOD.ObjectType", "MQOT_Q", MQOT_Q),
    done("MQOD.ObjectType", "MQOT_NAMELIST", MQOT_NAMELIST),
    done("MQOD.ObjectType", "MQOT_PROCESS", MQOT_PROCESS),
    done("MQOD.ObjectType", "MQOT_Q_MGR", MQOT_Q_MGR),
    done("MQOD.ObjectType", "MQOT_TOPIC", MQOT_TOPIC),
    refused("MQOD.ObjectType", "MQOT_NONE", MQOT_NONE, notOpened),
    refused("MQOD.ObjectType", "MQOT_STORAGE_CLASS", MQOT_STORAGE_CLASS, notOpened),
    refused("MQOD.ObjectType", "MQOT_CHANNEL", MQOT_CHANNEL, notOpened),
    refused("MQOD.ObjectType", "MQOT_AUTH_INFO", MQOT_AUTH_INFO, notOpened),
    refused("MQOD.ObjectType", "MQOT_COMM_INFO", MQOT_COMM_INFO, notOpened),
    refused("MQOD.ObjectType", "MQOT_CF_STRUC", MQOT_CF_STRUC, notOpened),
    refused("MQOD.ObjectType", "MQOT_LISTENER", MQOT_LISTENER, notOpened),
    refused("MQOD.ObjectType", "MQOT_SERVICE", MQOT_SERVICE, notOpened),
    refused("MQOD.ObjectType", "MQOT_RESERVED_1", MQOT_RESERVED_1, notOpened),
    refused("MQOD.ObjectType", "MQOT_ALL", MQOT_ALL, notOpened),
    refused("MQOD.ObjectType", "MQOT_ALIAS_Q", MQOT_ALIAS_Q, notOpened),
    refused("MQOD.ObjectType", "MQOT_MODEL_Q", MQOT_MODEL_Q, notOpened),
    refused("MQOD.ObjectType", "MQOT_LOCAL_Q", MQOT_LOCAL_Q, notOpened),
    refused("MQOD.ObjectType", "MQOT_REMOTE_Q", MQOT_REMOTE_Q, notOpened),
    refused("MQOD.ObjectType", "MQOT_SENDER_CHANNEL", MQOT_SENDER_CHANNEL, notOpened),
    refused("MQOD.ObjectType", "MQOT_SERVER_CHANNEL", MQOT_SERVER_CHANNEL, notOpened),
    refused("MQOD.ObjectType", "MQOT_REQUESTER_CHANNEL", MQOT_REQUESTER_CHANNEL, notOpened),
    refused("MQOD.ObjectType", "MQOT_RECEIVER_CHANNEL", MQOT_RECEIVER_CHANNEL, notOpened),
    refused("MQOD.ObjectType", "MQOT_CURRENT_CHANNEL", MQOT_CURRENT_CHANNEL, notOpened),
    refused("MQOD.ObjectType", "MQOT_SAVED_CHANNEL", MQOT_SAVED_CHANNEL, notOpened),
    refused("MQOD.ObjectType", "MQOT_SVRCONN_CHANNEL", MQOT_SVRCONN_CHANNEL, notOpened),
    refused("MQOD.ObjectType", "MQOT_CLNTCONN_CHANNEL", MQOT_CLNTCONN_CHANNEL, notOpened),
    refused("MQOD.ObjectType", "MQOT_SHORT_CHANNEL", MQOT_SHORT_CHANNEL, notOpened),
    refused("MQOD.ObjectType", "MQOT_CHLAUTH", MQOT_CHLAUTH, notOpened),
    refused("MQOD.ObjectType", "MQOT_REMOTE_Q_MGR_NAME", MQOT_REMOTE_Q_MGR_NAME, notOpened),
    refused("MQOD.ObjectType", "MQOT_PROT_POLICY", MQOT_PROT_POLICY, notOpened),
    refused("MQOD.ObjectType", "MQOT_TT_CHANNEL", MQOT_TT_CHANNEL, notOpened),
    refused("MQOD.ObjectType", "MQOT_AMQP_CHANNEL", MQOT_AMQP_CHANNEL, notOpened),
    refused("MQOD.ObjectType", "MQOT_AUTH_REC", MQOT_AUTH_REC, notOpened),
    done("MQCBD.CallbackType", "MQCBT_MESSAGE_CONSUMER", MQCBT_MESSAGE_CONSUMER),
    done("MQCBD.CallbackType", "MQCBT_EVENT_HANDLER", MQCBT_EVENT_HANDLER),
    done("Operation of MQCB", "MQOP_REGISTER", MQOP_REGISTER),
    done("Operation of MQCB", "MQOP_DEREGISTER", MQOP_DEREGISTER),
    done("Operation of MQCB", "MQOP_SUSPEND", MQOP_SUSPEND),
    done("Operation of MQCB", "MQOP_RESUME", MQOP_RESUME),
    refused("Operation of MQCB", "MQOP_START", MQOP_START, "it is of MQCTL"),
    refused("Operation of MQCB", "MQOP_START_WAIT", MQOP_START_WAIT, "it is of MQCTL"),
    refused("Operation of MQCB", "MQOP_STOP", MQOP_STOP, "it is of MQCTL"),
    done("Operation of MQCTL", "MQOP_START", MQOP_START),
    done("Operation of MQCTL", "MQOP_START_WAIT", MQOP_START_WAIT),
    done("Operation of MQCTL", "MQOP_STOP", MQOP_STOP),
    done("Operation of MQCTL", "MQOP_SUSPEND", MQOP_SUSPEND),
    done("Operation of MQCTL", "MQOP_RESUME", MQOP_RESUME),
    refused("Operation of MQCTL", "MQOP_REGISTER", MQOP_REGISTER, "it is of MQCB"),
    refused("Operation of MQCTL", "MQOP_DEREGISTER", MQOP_DEREGISTER, "it is of MQCB"),
    done("Type of MQSETMP", "MQTYPE_NULL", MQTYPE_NULL),
    done("Type of MQSETMP", "MQTYPE_BOOLEAN", MQTYPE_BOOLEAN),
    done("Type of MQSETMP", "MQTYPE_BYTE_STRING", MQTYPE_BYTE_STRING),
    done("Type of MQSETMP", "MQTYPE_INT8", MQTYPE_INT8),
    done("Type of MQSETMP", "MQTYPE_INT16", MQTYPE_INT16),
    done("Type of MQSETMP", "MQTYPE_INT32", MQTYPE_INT32),
    done("Type of MQSETMP", "MQTYPE_LONG", MQTYPE_LONG),
    done("Type of MQSETMP", "MQTYPE_INT64", MQTYPE_INT64),
    done("Type of MQSETMP", "MQTYPE_FLOAT32", MQTYPE_FLOAT32),
    done("Type of MQSETMP", "MQTYPE_FLOAT64", MQTYPE_FLOAT64),
    done("Type of MQSETMP", "MQTYPE_STRING", MQTYPE_STRING),
    refused("Type of MQSETMP", "MQTYPE_AS_SET", MQTYPE_AS_SET, "it is of MQINQMP"),
    done("MQPD.Support", "MQPD_SUPPORT_OPTIONAL", MQPD_SUPPORT_OPTIONAL),
    done("MQPD.Support", "MQPD_SUPPORT_REQUIRED", MQPD_SUPPORT_REQUIRED),
    done("MQPD.Support", "MQPD_SUPPORT_REQUIRED_IF_LOCAL", MQPD_SUPPORT_REQUIRED_IF_LOCAL),
    done("MQPD.Context", "MQPD_NO_CONTEXT", MQPD_NO_CONTEXT),
    done("MQPD.Context", "MQPD_USER_CONTEXT", MQPD_USER_CONTEXT),
    done("MQPD.CopyOptions", "MQCOPY_NONE", MQCOPY_NONE),
    done("MQPD.CopyOptions", "MQCOPY_ALL", MQCOPY_ALL),
    done("MQPD.CopyOptions", "MQCOPY_FORWARD", MQCOPY_FORWARD),
    done("MQPD.CopyOptions", "MQCOPY_PUBLISH", MQCOPY_PUBLISH),
    done("MQPD.CopyOptions", "MQCOPY_REPLY", MQCOPY_REPLY),
    done("MQPD.CopyOptions", "MQCOPY_REPORT", MQCOPY_REPORT),
    done("MQPD.CopyOptions", "MQCOPY_DEFAULT", MQCOPY_DEFAULT),
    done("Type of MQSTAT", "MQSTAT_TYPE_ASYNC_ERROR", MQSTAT_TYPE_ASYNC_ERROR),
    done("Type of MQSTAT", "MQSTAT_TYPE_RECONNECTION", MQSTAT_TYPE_RECONNECTION),
    done("Type of MQSTAT", "MQSTAT_TYPE_RECONNECTION_ERROR", MQSTAT_TYPE_RECONNECTION_ERROR),
    done("Action of MQSUBRQ", "MQSR_ACTION_PUBLICATION", MQSR_ACTION_PUBLICATION),
    noEffect("MQCSP.AuthenticationType", "MQCSP_AUTH_NONE", MQCSP_AUTH_NONE, ownerOnly),
    noEffect("MQCSP.AuthenticationType", "MQCSP_AUTH_USER_ID_AND_PWD", MQCSP_AUTH_USER_ID_AND_PWD, ownerOnly),
    refused("MQCSP.AuthenticationType", "MQCSP_AUTH_ID_TOKEN", MQCSP_AUTH_ID_TOKEN, "there is nobody to check a token"),
};

} // namespace

std::span<const ValueRow> valueRows()
{
    return rows;
}

std::span<const ValueField> valueFields()
{
    return fields;
}

} // namespace mqrig::conformance
