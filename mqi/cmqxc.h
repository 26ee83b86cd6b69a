/*
 * cmqxc.h
 * Channels and exits of the MQI: the channel definition MQCD that MQCONNX takes for a
 * client connection, with its default initialisers, and the constants of channel, API,
 * publish, cluster-workload and data-conversion exits and of installable services.
 *
 * Follows the published MQI reference, as cmqc.h does. The parameter structures of the
 * exits themselves are not declared: of those, only constants are here.
 */
/* clang-format off */
#ifndef CMQXC_H
#define CMQXC_H

#include "cmqc.h"

#ifdef __cplusplus
extern "C" {
#endif

/* -------------------------------------------------------------------------- */
/* Structures: names and pointers                                             */
/* -------------------------------------------------------------------------- */

typedef struct tagMQCD MQCD; typedef MQCD *PMQCD; typedef PMQCD *PPMQCD;

/* -------------------------------------------------------------------------- */
/* MQCD: channel definition                                                   */
/* -------------------------------------------------------------------------- */

#define MQCD_VERSION_1       1
#define MQCD_VERSION_2       2
#define MQCD_VERSION_3       3
#define MQCD_VERSION_4       4
#define MQCD_VERSION_5       5
#define MQCD_VERSION_6       6
#define MQCD_VERSION_7       7
#define MQCD_VERSION_8       8
#define MQCD_VERSION_9       9
#define MQCD_VERSION_10      10
#define MQCD_VERSION_11      11
#define MQCD_VERSION_12      12
#define MQCD_CURRENT_VERSION 12
#define MQCD_LENGTH_1        984
#define MQCD_LENGTH_2        1312
#define MQCD_LENGTH_3        1480
#define MQCD_LENGTH_4        MQ_BY_WIDTH(1540, 1568)
#define MQCD_LENGTH_5        MQ_BY_WIDTH(1552, 1584)
#define MQCD_LENGTH_6        MQ_BY_WIDTH(1648, 1688)
#define MQCD_LENGTH_7        MQ_BY_WIDTH(1748, 1792)
#define MQCD_LENGTH_8        MQ_BY_WIDTH(1840, 1888)
#define MQCD_LENGTH_9        MQ_BY_WIDTH(1864, 1912)
#define MQCD_LENGTH_10       MQ_BY_WIDTH(1876, 1920)
#define MQCD_LENGTH_11       MQ_BY_WIDTH(1940, 1984)
#define MQCD_LENGTH_12       MQ_BY_WIDTH(1944, 1992)
#define MQCD_CURRENT_LENGTH  MQ_BY_WIDTH(1944, 1992)

/* Channel types */
#define MQCHT_SENDER    1
#define MQCHT_SERVER    2
#define MQCHT_RECEIVER  3
#define MQCHT_REQUESTER 4
#define MQCHT_ALL       5
#define MQCHT_CLNTCONN  6
#define MQCHT_SVRCONN   7
#define MQCHT_CLUSRCVR  8
#define MQCHT_CLUSSDR   9
#define MQCHT_MQTT      10
#define MQCHT_AMQP      11

/* Transport types */
#define MQXPT_ALL     (-1)
#define MQXPT_LOCAL   0
#define MQXPT_LU62    1
#define MQXPT_TCP     2
#define MQXPT_NETBIOS 3
#define MQXPT_SPX     4
#define MQXPT_DECNET  5
#define MQXPT_UDP     6

/* Put authority */
#define MQPA_DEFAULT          1
#define MQPA_CONTEXT          2
#define MQPA_ONLY_MCA         3
#define MQPA_ALTERNATE_OR_MCA 4

/* Data conversion by the sender */
#define MQCDC_SENDER_CONVERSION    1
#define MQCDC_NO_SENDER_CONVERSION 0

/* Type of channel agent */
#define MQMCAT_PROCESS 1
#define MQMCAT_THREAD  2

/* Speed of non-persistent messages */
#define MQNPMS_NORMAL 1
#define MQNPMS_FAST   2

/* Compression of headers and messages */
#define MQCOMPRESS_NOT_AVAILABLE (-1)
#define MQCOMPRESS_NONE          0
#define MQCOMPRESS_RLE           1
#define MQCOMPRESS_ZLIBFAST      2
#define MQCOMPRESS_ZLIBHIGH      4
#define MQCOMPRESS_SYSTEM        8
#define MQCOMPRESS_LZ4FAST       16
#define MQCOMPRESS_LZ4HIGH       32
#define MQCOMPRESS_ANY           268435455

/* Client authentication */
#define MQSCA_REQUIRED       0
#define MQSCA_OPTIONAL       1
#define MQSCA_NEVER_REQUIRED 2

/* Keep-alive interval */
#define MQKAI_AUTO (-1)

/* Connection affinity */
#define MQCAFTY_NONE      0
#define MQCAFTY_PREFERRED 1

/* Reconnection */
#define MQRCN_NO       0
#define MQRCN_YES      1
#define MQRCN_Q_MGR    2
#define MQRCN_DISABLED 3

/* Protocols, and the security protocols under them */
#define MQPROTO_MQTTV3   1
#define MQPROTO_HTTP     2
#define MQPROTO_AMQP     3
#define MQPROTO_MQTTV311 4

#define MQSECPROT_NONE   0
#define MQSECPROT_SSLV30 1
#define MQSECPROT_TLSV10 2
#define MQSECPROT_TLSV12 4
#define MQSECPROT_TLSV13 8

/* Protection of messages by policy */
#define MQSPL_PASSTHRU  0
#define MQSPL_REMOVE    1
#define MQSPL_AS_POLICY 2

struct tagMQCD {
    MQCHAR20  ChannelName;
    MQLONG    Version;
    MQLONG    ChannelType;                   /* MQCHT_ */
    MQLONG    TransportType;                 /* MQXPT_ */
    MQCHAR64  Desc;
    MQCHAR48  QMgrName;
    MQCHAR48  XmitQName;
    MQCHAR20  ShortConnectionName;
    MQCHAR20  MCAName;
    MQCHAR8   ModeName;
    MQCHAR64  TpName;
    MQLONG    BatchSize;
    MQLONG    DiscInterval;                  /* in seconds */
    MQLONG    ShortRetryCount;
    MQLONG    ShortRetryInterval;            /* in seconds */
    MQLONG    LongRetryCount;
    MQLONG    LongRetryInterval;             /* in seconds */
    MQCHAR128 SecurityExit;
    MQCHAR128 MsgExit;
    MQCHAR128 SendExit;
    MQCHAR128 ReceiveExit;
    MQLONG    SeqNumberWrap;
    MQLONG    MaxMsgLength;                  /* in bytes */
    MQLONG    PutAuthority;
    MQLONG    DataConversion;
    MQCHAR32  SecurityUserData;
    MQCHAR32  MsgUserData;
    MQCHAR32  SendUserData;
    MQCHAR32  ReceiveUserData;
    /* version 2 */
    MQCHAR12  UserIdentifier;
    MQCHAR12  Password;
    MQCHAR12  MCAUserIdentifier;
    MQLONG    MCAType;
    MQCHAR264 ConnectionName;                /* host(port) */
    MQCHAR12  RemoteUserIdentifier;
    MQCHAR12  RemotePassword;
    /* version 3 */
    MQCHAR128 MsgRetryExit;
    MQCHAR32  MsgRetryUserData;
    MQLONG    MsgRetryCount;
    MQLONG    MsgRetryInterval;              /* in milliseconds */
    /* version 4 */
    MQLONG    HeartbeatInterval;             /* in seconds */
    MQLONG    BatchInterval;                 /* in milliseconds */
    MQLONG    NonPersistentMsgSpeed;
    MQLONG    StrucLength;
    MQLONG    ExitNameLength;
    MQLONG    ExitDataLength;
    MQLONG    MsgExitsDefined;
    MQLONG    SendExitsDefined;
    MQLONG    ReceiveExitsDefined;
    MQPTR     MsgExitPtr;                    /* array of MsgExitsDefined names */
    MQPTR     MsgUserDataPtr;
    MQPTR     SendExitPtr;
    MQPTR     SendUserDataPtr;
    MQPTR     ReceiveExitPtr;
    MQPTR     ReceiveUserDataPtr;
    /* version 5 */
    MQPTR     ClusterPtr;
    MQLONG    ClustersDefined;
    MQLONG    NetworkPriority;
    /* version 6 */
    MQLONG    LongMCAUserIdLength;
    MQLONG    LongRemoteUserIdLength;
    MQPTR     LongMCAUserIdPtr;
    MQPTR     LongRemoteUserIdPtr;
    MQBYTE40  MCASecurityId;
    MQBYTE40  RemoteSecurityId;
    /* version 7 */
    MQCHAR32  SSLCipherSpec;
    MQPTR     SSLPeerNamePtr;
    MQLONG    SSLPeerNameLength;             /* in bytes */
    MQLONG    SSLClientAuth;
    MQLONG    KeepAliveInterval;             /* in seconds, or MQKAI_AUTO */
    MQCHAR48  LocalAddress;
    MQLONG    BatchHeartbeat;                /* in milliseconds */
    /* version 8 */
    MQLONG    HdrCompList[2];                /* MQCOMPRESS_ */
    MQLONG    MsgCompList[16];               /* MQCOMPRESS_ */
    MQLONG    CLWLChannelRank;
    MQLONG    CLWLChannelPriority;
    MQLONG    CLWLChannelWeight;
    MQLONG    ChannelMonitoring;
    MQLONG    ChannelStatistics;
    /* version 9 */
    MQLONG    SharingConversations;
    MQLONG    PropertyControl;
    MQLONG    MaxInstances;
    MQLONG    MaxInstancesPerClient;
    MQLONG    ClientChannelWeight;
    MQLONG    ConnectionAffinity;
    /* version 10 */
    MQLONG    BatchDataLimit;                /* in kilobytes */
    MQLONG    UseDLQ;
    MQLONG    DefReconnect;                  /* MQRCN_ */
    /* version 11 */
    MQCHAR64  CertificateLabel;
    /* version 12 */
    MQLONG    SPLProtection;                 /* MQSPL_ */
};

/* The default of each kind of channel. They differ in channel type, transport, heartbeat
 * interval and the two compression lists; a sending channel and a client connection are given. */

#define MQCD_DEFAULT                                                                        \
    {""},                                        /* ChannelName */                          \
    MQCD_VERSION_6,                              /* Version */                              \
    MQCHT_SENDER,                                /* ChannelType */                          \
    MQXPT_LU62,                                  /* TransportType */                        \
    {""},                                        /* Desc */                                 \
    {""},                                        /* QMgrName */                             \
    {""},                                        /* XmitQName */                            \
    {""},                                        /* ShortConnectionName */                  \
    {""},                                        /* MCAName */                              \
    {""},                                        /* ModeName */                             \
    {""},                                        /* TpName */                               \
    50,                                          /* BatchSize */                            \
    6000,                                        /* DiscInterval */                         \
    10,                                          /* ShortRetryCount */                      \
    60,                                          /* ShortRetryInterval */                   \
    999999999,                                   /* LongRetryCount */                       \
    1200,                                        /* LongRetryInterval */                    \
    {""},                                        /* SecurityExit */                         \
    {""},                                        /* MsgExit */                              \
    {""},                                        /* SendExit */                             \
    {""},                                        /* ReceiveExit */                          \
    999999999,                                   /* SeqNumberWrap */                        \
    4194304,                                     /* MaxMsgLength */                         \
    MQPA_DEFAULT,                                /* PutAuthority */                         \
    MQCDC_NO_SENDER_CONVERSION,                  /* DataConversion */                       \
    {""},                                        /* SecurityUserData */                     \
    {""},                                        /* MsgUserData */                          \
    {""},                                        /* SendUserData */                         \
    {""},                                        /* ReceiveUserData */                      \
    {""},                                        /* UserIdentifier */                       \
    {""},                                        /* Password */                             \
    {""},                                        /* MCAUserIdentifier */                    \
    MQMCAT_PROCESS,                              /* MCAType */                              \
    {""},                                        /* ConnectionName */                       \
    {""},                                        /* RemoteUserIdentifier */                 \
    {""},                                        /* RemotePassword */                       \
    {""},                                        /* MsgRetryExit */                         \
    {""},                                        /* MsgRetryUserData */                     \
    10,                                          /* MsgRetryCount */                        \
    1000,                                        /* MsgRetryInterval */                     \
    300,                                         /* HeartbeatInterval */                    \
    0,                                           /* BatchInterval */                        \
    MQNPMS_FAST,                                 /* NonPersistentMsgSpeed */                \
    MQCD_CURRENT_LENGTH,                         /* StrucLength */                          \
    MQ_EXIT_NAME_LENGTH,                         /* ExitNameLength */                       \
    MQ_EXIT_DATA_LENGTH,                         /* ExitDataLength */                       \
    0,                                           /* MsgExitsDefined */                      \
    0,                                           /* SendExitsDefined */                     \
    0,                                           /* ReceiveExitsDefined */                  \
    NULL,                                        /* MsgExitPtr */                           \
    NULL,                                        /* MsgUserDataPtr */                       \
    NULL,                                        /* SendExitPtr */                          \
    NULL,                                        /* SendUserDataPtr */                      \
    NULL,                                        /* ReceiveExitPtr */                       \
    NULL,                                        /* ReceiveUserDataPtr */                   \
    NULL,                                        /* ClusterPtr */                           \
    0,                                           /* ClustersDefined */                      \
    0,                                           /* NetworkPriority */                      \
    0,                                           /* LongMCAUserIdLength */                  \
    0,                                           /* LongRemoteUserIdLength */               \
    NULL,                                        /* LongMCAUserIdPtr */                     \
    NULL,                                        /* LongRemoteUserIdPtr */                  \
    {MQSID_NONE_ARRAY},                          /* MCASecurityId */                        \
    {MQSID_NONE_ARRAY},                          /* RemoteSecurityId */                     \
    {""},                                        /* SSLCipherSpec */                        \
    NULL,                                        /* SSLPeerNamePtr */                       \
    0,                                           /* SSLPeerNameLength */                    \
    MQSCA_REQUIRED,                              /* SSLClientAuth */                        \
    MQKAI_AUTO,                                  /* KeepAliveInterval */                    \
    {""},                                        /* LocalAddress */                         \
    0,                                           /* BatchHeartbeat */                       \
    {MQCOMPRESS_NONE, MQCOMPRESS_NOT_AVAILABLE}, /* HdrCompList */                          \
    {MQCOMPRESS_NONE, MQCOMPRESS_NOT_AVAILABLE, MQCOMPRESS_NOT_AVAILABLE, /* MsgCompList */ \
     MQCOMPRESS_NOT_AVAILABLE, MQCOMPRESS_NOT_AVAILABLE, MQCOMPRESS_NOT_AVAILABLE,          \
     MQCOMPRESS_NOT_AVAILABLE, MQCOMPRESS_NOT_AVAILABLE, MQCOMPRESS_NOT_AVAILABLE,          \
     MQCOMPRESS_NOT_AVAILABLE, MQCOMPRESS_NOT_AVAILABLE, MQCOMPRESS_NOT_AVAILABLE,          \
     MQCOMPRESS_NOT_AVAILABLE, MQCOMPRESS_NOT_AVAILABLE, MQCOMPRESS_NOT_AVAILABLE,          \
     MQCOMPRESS_NOT_AVAILABLE},                                                             \
    0,                                           /* CLWLChannelRank */                      \
    0,                                           /* CLWLChannelPriority */                  \
    50,                                          /* CLWLChannelWeight */                    \
    MQMON_OFF,                                   /* ChannelMonitoring */                    \
    MQMON_OFF,                                   /* ChannelStatistics */                    \
    10,                                          /* SharingConversations */                 \
    MQPROP_COMPATIBILITY,                        /* PropertyControl */                      \
    999999999,                                   /* MaxInstances */                         \
    999999999,                                   /* MaxInstancesPerClient */                \
    0,                                           /* ClientChannelWeight */                  \
    MQCAFTY_PREFERRED,                           /* ConnectionAffinity */                   \
    5000,                                        /* BatchDataLimit */                       \
    MQUSEDLQ_YES,                                /* UseDLQ */                               \
    MQRCN_NO,                                    /* DefReconnect */                         \
    {""},                                        /* CertificateLabel */                     \
    MQSPL_PASSTHRU                               /* SPLProtection */

#define MQCD_CLIENT_CONN_DEFAULT                                                                     \
    {""},                       /* ChannelName */                                                    \
    MQCD_VERSION_6,             /* Version */                                                        \
    MQCHT_CLNTCONN,             /* ChannelType */                                                    \
    MQXPT_TCP,                  /* TransportType */                                                  \
    {""},                       /* Desc */                                                           \
    {""},                       /* QMgrName */                                                       \
    {""},                       /* XmitQName */                                                      \
    {""},                       /* ShortConnectionName */                                            \
    {""},                       /* MCAName */                                                        \
    {""},                       /* ModeName */                                                       \
    {""},                       /* TpName */                                                         \
    50,                         /* BatchSize */                                                      \
    6000,                       /* DiscInterval */                                                   \
    10,                         /* ShortRetryCount */                                                \
    60,                         /* ShortRetryInterval */                                             \
    999999999,                  /* LongRetryCount */                                                 \
    1200,                       /* LongRetryInterval */                                              \
    {""},                       /* SecurityExit */                                                   \
    {""},                       /* MsgExit */                                                        \
    {""},                       /* SendExit */                                                       \
    {""},                       /* ReceiveExit */                                                    \
    999999999,                  /* SeqNumberWrap */                                                  \
    4194304,                    /* MaxMsgLength */                                                   \
    MQPA_DEFAULT,               /* PutAuthority */                                                   \
    MQCDC_NO_SENDER_CONVERSION, /* DataConversion */                                                 \
    {""},                       /* SecurityUserData */                                               \
    {""},                       /* MsgUserData */                                                    \
    {""},                       /* SendUserData */                                                   \
    {""},                       /* ReceiveUserData */                                                \
    {""},                       /* UserIdentifier */                                                 \
    {""},                       /* Password */                                                       \
    {""},                       /* MCAUserIdentifier */                                              \
    MQMCAT_PROCESS,             /* MCAType */                                                        \
    {""},                       /* ConnectionName */                                                 \
    {""},                       /* RemoteUserIdentifier */                                           \
    {""},                       /* RemotePassword */                                                 \
    {""},                       /* MsgRetryExit */                                                   \
    {""},                       /* MsgRetryUserData */                                               \
    10,                         /* MsgRetryCount */                                                  \
    1000,                       /* MsgRetryInterval */                                               \
    1,                          /* HeartbeatInterval */                                              \
    0,                          /* BatchInterval */                                                  \
    MQNPMS_FAST,                /* NonPersistentMsgSpeed */                                          \
    MQCD_CURRENT_LENGTH,        /* StrucLength */                                                    \
    MQ_EXIT_NAME_LENGTH,        /* ExitNameLength */                                                 \
    MQ_EXIT_DATA_LENGTH,        /* ExitDataLength */                                                 \
    0,                          /* MsgExitsDefined */                                                \
    0,                          /* SendExitsDefined */                                               \
    0,                          /* ReceiveExitsDefined */                                            \
    NULL,                       /* MsgExitPtr */                                                     \
    NULL,                       /* MsgUserDataPtr */                                                 \
    NULL,                       /* SendExitPtr */                                                    \
    NULL,                       /* SendUserDataPtr */                                                \
    NULL,                       /* ReceiveExitPtr */                                                 \
    NULL,                       /* ReceiveUserDataPtr */                                             \
    NULL,                       /* ClusterPtr */                                                     \
    0,                          /* ClustersDefined */                                                \
    0,                          /* NetworkPriority */                                                \
    0,                          /* LongMCAUserIdLength */                                            \
    0,                          /* LongRemoteUserIdLength */                                         \
    NULL,                       /* LongMCAUserIdPtr */                                               \
    NULL,                       /* LongRemoteUserIdPtr */                                            \
    {MQSID_NONE_ARRAY},         /* MCASecurityId */                                                  \
    {MQSID_NONE_ARRAY},         /* RemoteSecurityId */                                               \
    {""},                       /* SSLCipherSpec */                                                  \
    NULL,                       /* SSLPeerNamePtr */                                                 \
    0,                          /* SSLPeerNameLength */                                              \
    MQSCA_REQUIRED,             /* SSLClientAuth */                                                  \
    MQKAI_AUTO,                 /* KeepAliveInterval */                                              \
    {""},                       /* LocalAddress */                                                   \
    0,                          /* BatchHeartbeat */                                                 \
    {MQCOMPRESS_NOT_AVAILABLE, MQCOMPRESS_NOT_AVAILABLE}, /* HdrCompList */                          \
    {MQCOMPRESS_NOT_AVAILABLE, MQCOMPRESS_NOT_AVAILABLE, MQCOMPRESS_NOT_AVAILABLE, /* MsgCompList */ \
     MQCOMPRESS_NOT_AVAILABLE, MQCOMPRESS_NOT_AVAILABLE, MQCOMPRESS_NOT_AVAILABLE,                   \
     MQCOMPRESS_NOT_AVAILABLE, MQCOMPRESS_NOT_AVAILABLE, MQCOMPRESS_NOT_AVAILABLE,                   \
     MQCOMPRESS_NOT_AVAILABLE, MQCOMPRESS_NOT_AVAILABLE, MQCOMPRESS_NOT_AVAILABLE,                   \
     MQCOMPRESS_NOT_AVAILABLE, MQCOMPRESS_NOT_AVAILABLE, MQCOMPRESS_NOT_AVAILABLE,                   \
     MQCOMPRESS_NOT_AVAILABLE},                                                                      \
    0,                          /* CLWLChannelRank */                                                \
    0,                          /* CLWLChannelPriority */                                            \
    50,                         /* CLWLChannelWeight */                                              \
    MQMON_OFF,                  /* ChannelMonitoring */                                              \
    MQMON_OFF,                  /* ChannelStatistics */                                              \
    10,                         /* SharingConversations */                                           \
    MQPROP_COMPATIBILITY,       /* PropertyControl */                                                \
    999999999,                  /* MaxInstances */                                                   \
    999999999,                  /* MaxInstancesPerClient */                                          \
    0,                          /* ClientChannelWeight */                                            \
    MQCAFTY_PREFERRED,          /* ConnectionAffinity */                                             \
    5000,                       /* BatchDataLimit */                                                 \
    MQUSEDLQ_YES,               /* UseDLQ */                                                         \
    MQRCN_NO,                   /* DefReconnect */                                                   \
    {""},                       /* CertificateLabel */                                               \
    MQSPL_PASSTHRU              /* SPLProtection */

/* -------------------------------------------------------------------------- */
/* Exits                                                                      */
/* -------------------------------------------------------------------------- */

/* Exit identifiers */
#define MQXT_API_CROSSING_EXIT      1
#define MQXT_API_EXIT               2
#define MQXT_CHANNEL_SEC_EXIT       11
#define MQXT_CHANNEL_MSG_EXIT       12
#define MQXT_CHANNEL_SEND_EXIT      13
#define MQXT_CHANNEL_RCV_EXIT       14
#define MQXT_CHANNEL_MSG_RETRY_EXIT 15
#define MQXT_CHANNEL_AUTO_DEF_EXIT  16
#define MQXT_CLUSTER_WORKLOAD_EXIT  20
#define MQXT_PUBSUB_ROUTING_EXIT    21
#define MQXT_PUBLISH_EXIT           22
#define MQXT_PRECONNECT_EXIT        23

/* Exit reasons */
#define MQXR_BEFORE          1
#define MQXR_AFTER           2
#define MQXR_CONNECTION      3
#define MQXR_BEFORE_CONVERT  4
#define MQXR_INIT            11
#define MQXR_TERM            12
#define MQXR_MSG             13
#define MQXR_XMIT            14
#define MQXR_SEC_MSG         15
#define MQXR_INIT_SEC        16
#define MQXR_RETRY           17
#define MQXR_AUTO_CLUSSDR    18
#define MQXR_AUTO_RECEIVER   19
#define MQXR_CLWL_OPEN       20
#define MQXR_CLWL_PUT        21
#define MQXR_CLWL_MOVE       22
#define MQXR_CLWL_REPOS      23
#define MQXR_CLWL_REPOS_MOVE 24
#define MQXR_END_BATCH       25
#define MQXR_ACK_RECEIVED    26
#define MQXR_AUTO_SVRCONN    27
#define MQXR_AUTO_CLUSRCVR   28
#define MQXR_SEC_PARMS       29
#define MQXR_PUBLICATION     30
#define MQXR_PRECONNECT      31

/* Secondary responses */
#define MQXR2_PUT_WITH_DEF_ACTION  0
#define MQXR2_PUT_WITH_DEF_USERID  1
#define MQXR2_PUT_WITH_MSG_USERID  2
#define MQXR2_USE_AGENT_BUFFER     0
#define MQXR2_USE_EXIT_BUFFER      4
#define MQXR2_DEFAULT_CONTINUATION 0
#define MQXR2_CONTINUE_CHAIN       8
#define MQXR2_SUPPRESS_CHAIN       16
#define MQXR2_STATIC_CACHE         0
#define MQXR2_DYNAMIC_CACHE        32

/* Responses */
#define MQXCC_OK                       0
#define MQXCC_SUPPRESS_FUNCTION        (-1)
#define MQXCC_SKIP_FUNCTION            (-2)
#define MQXCC_SEND_AND_REQUEST_SEC_MSG (-3)
#define MQXCC_SEND_SEC_MSG             (-4)
#define MQXCC_SUPPRESS_EXIT            (-5)
#define MQXCC_CLOSE_CHANNEL            (-6)
#define MQXCC_REQUEST_ACK              (-7)
#define MQXCC_FAILED                   (-8)

/* Exit user area */
#define MQXUA_NONE       "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"
#define MQXUA_NONE_ARRAY '\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0'

/* Environments of an API exit */
#define MQXE_OTHER          0
#define MQXE_MCA            1
#define MQXE_MCA_SVRCONN    2
#define MQXE_COMMAND_SERVER 3
#define MQXE_MQSC           4
#define MQXE_MCA_CLNTCONN   5

/* API caller types */
#define MQXACT_EXTERNAL 1
#define MQXACT_INTERNAL 2

/* Functions of an API exit */
#define MQXF_INIT             1
#define MQXF_TERM             2
#define MQXF_CONN             3
#define MQXF_CONNX            4
#define MQXF_DISC             5
#define MQXF_OPEN             6
#define MQXF_CLOSE            7
#define MQXF_PUT1             8
#define MQXF_PUT              9
#define MQXF_GET              10
#define MQXF_DATA_CONV_ON_GET 11
#define MQXF_INQ              12
#define MQXF_SET              13
#define MQXF_BEGIN            14
#define MQXF_CMIT             15
#define MQXF_BACK             16
#define MQXF_STAT             18
#define MQXF_CB               19
#define MQXF_CTL              20
#define MQXF_CALLBACK         21
#define MQXF_SUB              22
#define MQXF_SUBRQ            23
#define MQXF_XACLOSE          24
#define MQXF_XACOMMIT         25
#define MQXF_XACOMPLETE       26
#define MQXF_XAEND            27
#define MQXF_XAFORGET         28
#define MQXF_XAOPEN           29
#define MQXF_XAPREPARE        30
#define MQXF_XARECOVER        31
#define MQXF_XAROLLBACK       32
#define MQXF_XASTART          33
#define MQXF_AXREG            34
#define MQXF_AXUNREG          35

/* -------------------------------------------------------------------------- */
/* Versions and lengths of the exit structures                                */
/* -------------------------------------------------------------------------- */

/* Channel exits */
#define MQCXP_STRUC_ID        "CXP "
#define MQCXP_STRUC_ID_ARRAY  'C','X','P',' '
#define MQCXP_VERSION_1       1
#define MQCXP_VERSION_2       2
#define MQCXP_VERSION_3       3
#define MQCXP_VERSION_4       4
#define MQCXP_VERSION_5       5
#define MQCXP_VERSION_6       6
#define MQCXP_VERSION_7       7
#define MQCXP_VERSION_8       8
#define MQCXP_VERSION_9       9
#define MQCXP_CURRENT_VERSION 9
#define MQCXP_LENGTH_3        156
#define MQCXP_LENGTH_4        156
#define MQCXP_LENGTH_5        160
#define MQCXP_LENGTH_6        MQ_BY_WIDTH(192, 200)
#define MQCXP_LENGTH_7        MQ_BY_WIDTH(200, 208)
#define MQCXP_LENGTH_8        MQ_BY_WIDTH(208, 224)
#define MQCXP_LENGTH_9        MQ_BY_WIDTH(220, 240)
#define MQCXP_CURRENT_LENGTH  MQ_BY_WIDTH(220, 240)

/* Data-conversion exit */
#define MQDXP_STRUC_ID        "DXP "
#define MQDXP_STRUC_ID_ARRAY  'D','X','P',' '
#define MQDXP_VERSION_1       1
#define MQDXP_VERSION_2       2
#define MQDXP_CURRENT_VERSION 2
#define MQDXP_LENGTH_1        44
#define MQDXP_LENGTH_2        MQ_BY_WIDTH(48, 56)
#define MQDXP_CURRENT_LENGTH  MQ_BY_WIDTH(48, 56)

/* Cluster-workload exit */
#define MQWXP_STRUC_ID           "WXP "
#define MQWXP_STRUC_ID_ARRAY     'W','X','P',' '
#define MQWXP_VERSION_1          1
#define MQWXP_VERSION_2          2
#define MQWXP_VERSION_3          3
#define MQWXP_VERSION_4          4
#define MQWXP_CURRENT_VERSION    4
#define MQWXP_LENGTH_1           MQ_BY_WIDTH(208, 224)
#define MQWXP_LENGTH_2           MQ_BY_WIDTH(216, 240)
#define MQWXP_LENGTH_3           MQ_BY_WIDTH(220, 240)
#define MQWXP_LENGTH_4           MQ_BY_WIDTH(224, 248)
#define MQWXP_CURRENT_LENGTH     MQ_BY_WIDTH(224, 248)
#define MQWXP_PUT_BY_CLUSTER_CHL 2

#define MQWXP1_LENGTH_1       MQ_BY_WIDTH(208, 224)
#define MQWXP1_CURRENT_LENGTH MQ_BY_WIDTH(208, 224)

#define MQWXP2_LENGTH_1       MQ_BY_WIDTH(208, 224)
#define MQWXP2_LENGTH_2       MQ_BY_WIDTH(216, 240)
#define MQWXP2_CURRENT_LENGTH MQ_BY_WIDTH(216, 240)

#define MQWXP3_LENGTH_1       MQ_BY_WIDTH(208, 224)
#define MQWXP3_LENGTH_2       MQ_BY_WIDTH(216, 240)
#define MQWXP3_LENGTH_3       MQ_BY_WIDTH(220, 240)
#define MQWXP3_CURRENT_LENGTH MQ_BY_WIDTH(220, 240)

#define MQWXP4_LENGTH_1       MQ_BY_WIDTH(208, 224)
#define MQWXP4_LENGTH_2       MQ_BY_WIDTH(216, 240)
#define MQWXP4_LENGTH_3       MQ_BY_WIDTH(220, 240)
#define MQWXP4_LENGTH_4       MQ_BY_WIDTH(224, 248)
#define MQWXP4_CURRENT_LENGTH MQ_BY_WIDTH(224, 248)

#define MQWDR_STRUC_ID        "WDR "
#define MQWDR_STRUC_ID_ARRAY  'W','D','R',' '
#define MQWDR_VERSION_1       1
#define MQWDR_VERSION_2       2
#define MQWDR_CURRENT_VERSION 2
#define MQWDR_LENGTH_1        124
#define MQWDR_LENGTH_2        136
#define MQWDR_CURRENT_LENGTH  136

#define MQWDR1_LENGTH_1       124
#define MQWDR1_CURRENT_LENGTH 124

#define MQWDR2_LENGTH_1       124
#define MQWDR2_LENGTH_2       136
#define MQWDR2_CURRENT_LENGTH 136

#define MQWQR_STRUC_ID        "WQR "
#define MQWQR_STRUC_ID_ARRAY  'W','Q','R',' '
#define MQWQR_VERSION_1       1
#define MQWQR_VERSION_2       2
#define MQWQR_VERSION_3       3
#define MQWQR_VERSION_4       4
#define MQWQR_CURRENT_VERSION 3
#define MQWQR_LENGTH_1        200
#define MQWQR_LENGTH_2        208
#define MQWQR_LENGTH_3        212
#define MQWQR_LENGTH_4        216
#define MQWQR_CURRENT_LENGTH  212

#define MQWQR1_LENGTH_1       200
#define MQWQR1_CURRENT_LENGTH 200

#define MQWQR2_LENGTH_1       200
#define MQWQR2_LENGTH_2       208
#define MQWQR2_CURRENT_LENGTH 208

#define MQWQR3_LENGTH_1       200
#define MQWQR3_LENGTH_2       208
#define MQWQR3_LENGTH_3       212
#define MQWQR3_CURRENT_LENGTH 212

#define MQWQR4_LENGTH_1       200
#define MQWQR4_LENGTH_2       208
#define MQWQR4_LENGTH_3       212
#define MQWQR4_LENGTH_4       216
#define MQWQR4_CURRENT_LENGTH 216

/* API exit */
#define MQACH_STRUC_ID        "ACH "
#define MQACH_STRUC_ID_ARRAY  'A','C','H',' '
#define MQACH_VERSION_1       1
#define MQACH_CURRENT_VERSION 1
#define MQACH_LENGTH_1        MQ_BY_WIDTH(68, 72)
#define MQACH_CURRENT_LENGTH  MQ_BY_WIDTH(68, 72)

#define MQAXC_STRUC_ID        "AXC "
#define MQAXC_STRUC_ID_ARRAY  'A','X','C',' '
#define MQAXC_VERSION_1       1
#define MQAXC_VERSION_2       2
#define MQAXC_CURRENT_VERSION 2
#define MQAXC_LENGTH_1        MQ_BY_WIDTH(384, 392)
#define MQAXC_LENGTH_2        MQ_BY_WIDTH(412, 424)
#define MQAXC_CURRENT_LENGTH  MQ_BY_WIDTH(412, 424)

#define MQAXP_STRUC_ID        "AXP "
#define MQAXP_STRUC_ID_ARRAY  'A','X','P',' '
#define MQAXP_VERSION_1       1
#define MQAXP_VERSION_2       2
#define MQAXP_CURRENT_VERSION 2
#define MQAXP_LENGTH_1        MQ_BY_WIDTH(244, 256)
#define MQAXP_CURRENT_LENGTH  MQ_BY_WIDTH(244, 256)

/* Preconnect, publish and subscribe exits */
#define MQNXP_STRUC_ID        "NXP "
#define MQNXP_STRUC_ID_ARRAY  'N','X','P',' '
#define MQNXP_VERSION_1       1
#define MQNXP_VERSION_2       2
#define MQNXP_CURRENT_VERSION 2
#define MQNXP_LENGTH_1        MQ_BY_WIDTH(52, 64)
#define MQNXP_LENGTH_2        MQ_BY_WIDTH(56, 72)
#define MQNXP_CURRENT_LENGTH  MQ_BY_WIDTH(56, 72)

#define MQPBC_STRUC_ID        "PBC "
#define MQPBC_STRUC_ID_ARRAY  'P','B','C',' '
#define MQPBC_VERSION_1       1
#define MQPBC_VERSION_2       2
#define MQPBC_CURRENT_VERSION 2
#define MQPBC_LENGTH_1        MQ_BY_WIDTH(28, 32)
#define MQPBC_LENGTH_2        MQ_BY_WIDTH(32, 40)
#define MQPBC_CURRENT_LENGTH  MQ_BY_WIDTH(32, 40)

#define MQPSXP_STRUC_ID        "PSXP"
#define MQPSXP_STRUC_ID_ARRAY  'P','S','X','P'
#define MQPSXP_VERSION_1       1
#define MQPSXP_VERSION_2       2
#define MQPSXP_CURRENT_VERSION 2
#define MQPSXP_LENGTH_1        MQ_BY_WIDTH(156, 176)
#define MQPSXP_LENGTH_2        MQ_BY_WIDTH(160, 184)
#define MQPSXP_CURRENT_LENGTH  MQ_BY_WIDTH(160, 184)

#define MQSBC_STRUC_ID        "SBC "
#define MQSBC_STRUC_ID_ARRAY  'S','B','C',' '
#define MQSBC_VERSION_1       1
#define MQSBC_CURRENT_VERSION 1
#define MQSBC_LENGTH_1        MQ_BY_WIDTH(272, 288)
#define MQSBC_CURRENT_LENGTH  MQ_BY_WIDTH(272, 288)

/* Interface entry points and register options */
#define MQIEP_VERSION_1       1
#define MQIEP_CURRENT_VERSION 1
#define MQIEP_LENGTH_1        264 /* of a 32-bit program */
#define MQIEP_CURRENT_LENGTH  264 /* of a 32-bit program */

#define MQXEPO_STRUC_ID        "XEPO"
#define MQXEPO_STRUC_ID_ARRAY  'X','E','P','O'
#define MQXEPO_VERSION_1       1
#define MQXEPO_CURRENT_VERSION 1
#define MQXEPO_LENGTH_1        MQ_BY_WIDTH(32, 40)
#define MQXEPO_CURRENT_LENGTH  MQ_BY_WIDTH(32, 40)
#define MQXEPO_NONE            0

/* Flags of the interface entry points */
#define MQIEPF_NONE                 0
#define MQIEPF_NON_THREADED_LIBRARY 0
#define MQIEPF_THREADED_LIBRARY     1
#define MQIEPF_CLIENT_LIBRARY       0
#define MQIEPF_LOCAL_LIBRARY        2

/* Capability flags of a channel exit */
#define MQCF_NONE       0
#define MQCF_DIST_LISTS 1

/* Response and options of a data-conversion exit */
#define MQXDR_OK                0
#define MQXDR_CONVERSION_FAILED 1

/* Conversion options */
#define MQDCC_DEFAULT_CONVERSION     0x00000001
#define MQDCC_FILL_TARGET_BUFFER     0x00000002
#define MQDCC_SOURCE_ENC_NATIVE      0x00000020
#define MQDCC_SOURCE_ENC_NORMAL      0x00000010
#define MQDCC_SOURCE_ENC_REVERSED    0x00000020
#define MQDCC_SOURCE_ENC_UNDEFINED   0x00000000
#define MQDCC_TARGET_ENC_NATIVE      0x00000200
#define MQDCC_TARGET_ENC_NORMAL      0x00000100
#define MQDCC_TARGET_ENC_REVERSED    0x00000200
#define MQDCC_TARGET_ENC_UNDEFINED   0x00000000
#define MQDCC_NONE                   0x00000000
#define MQDCC_SOURCE_ENC_MASK        0x000000F0
#define MQDCC_TARGET_ENC_MASK        0x00000F00
#define MQDCC_SOURCE_ENC_FACTOR      0x00000010
#define MQDCC_TARGET_ENC_FACTOR      0x00000100
#define MQDCC_INT_DEFAULT_CONVERSION 0x00000004

/* Flags of queue managers and queues in a cluster */
#define MQQMF_REPOSITORY_Q_MGR     0x00000002
#define MQQMF_CLUSSDR_USER_DEFINED 0x00000008
#define MQQMF_CLUSSDR_AUTO_DEFINED 0x00000010
#define MQQMF_AVAILABLE            0x00000020
#define MQQF_LOCAL_Q               0x00000001
#define MQQF_CLWL_USEQ_ANY         0x00000040
#define MQQF_CLWL_USEQ_LOCAL       0x00000080

/* Cluster cache type */
#define MQCLCT_STATIC  0
#define MQCLCT_DYNAMIC 1

/* Events of multicast */
#define MQMCEV_PACKET_LOSS             1
#define MQMCEV_HEARTBEAT_TIMEOUT       2
#define MQMCEV_VERSION_CONFLICT        3
#define MQMCEV_RELIABILITY             4
#define MQMCEV_CLOSED_TRANS            5
#define MQMCEV_STREAM_ERROR            6
#define MQMCEV_NEW_SOURCE              10
#define MQMCEV_RECEIVE_QUEUE_TRIMMED   11
#define MQMCEV_PACKET_LOSS_NACK_EXPIRE 12
#define MQMCEV_ACK_RETRIES_EXCEEDED    13
#define MQMCEV_STREAM_SUSPEND_NACK     14
#define MQMCEV_STREAM_RESUME_NACK      15
#define MQMCEV_STREAM_EXPELLED         16
#define MQMCEV_FIRST_MESSAGE           20
#define MQMCEV_LATE_JOIN_FAILURE       21
#define MQMCEV_MESSAGE_LOSS            22
#define MQMCEV_SEND_PACKET_FAILURE     23
#define MQMCEV_REPAIR_DELAY            24
#define MQMCEV_MEMORY_ALERT_ON         25
#define MQMCEV_MEMORY_ALERT_OFF        26
#define MQMCEV_NACK_ALERT_ON           27
#define MQMCEV_NACK_ALERT_OFF          28
#define MQMCEV_REPAIR_ALERT_ON         29
#define MQMCEV_REPAIR_ALERT_OFF        30
#define MQMCEV_RELIABILITY_CHANGED     31
#define MQMCEV_SHM_DEST_UNUSABLE       80
#define MQMCEV_SHM_PORT_UNUSABLE       81
#define MQMCEV_CCT_GETTIME_FAILED      110
#define MQMCEV_DEST_INTERFACE_FAILURE  120
#define MQMCEV_DEST_INTERFACE_FAILOVER 121
#define MQMCEV_PORT_INTERFACE_FAILURE  122
#define MQMCEV_PORT_INTERFACE_FAILOVER 123

/* -------------------------------------------------------------------------- */
/* Installable services                                                       */
/* -------------------------------------------------------------------------- */

/* Versions and lengths of their structures */
#define MQZED_STRUC_ID        "ZED "
#define MQZED_STRUC_ID_ARRAY  'Z','E','D',' '
#define MQZED_VERSION_1       1
#define MQZED_VERSION_2       2
#define MQZED_CURRENT_VERSION 2
#define MQZED_LENGTH_1        MQ_BY_WIDTH(56, 64)
#define MQZED_LENGTH_2        MQ_BY_WIDTH(60, 72)
#define MQZED_CURRENT_LENGTH  MQ_BY_WIDTH(60, 72)

#define MQZAC_STRUC_ID        "ZAC "
#define MQZAC_STRUC_ID_ARRAY  'Z','A','C',' '
#define MQZAC_VERSION_1       1
#define MQZAC_CURRENT_VERSION 1
#define MQZAC_LENGTH_1        84
#define MQZAC_CURRENT_LENGTH  84

#define MQZAD_STRUC_ID        "ZAD "
#define MQZAD_STRUC_ID_ARRAY  'Z','A','D',' '
#define MQZAD_VERSION_1       1
#define MQZAD_VERSION_2       2
#define MQZAD_CURRENT_VERSION 2
#define MQZAD_LENGTH_1        MQ_BY_WIDTH(72, 80)
#define MQZAD_LENGTH_2        MQ_BY_WIDTH(76, 80)
#define MQZAD_CURRENT_LENGTH  MQ_BY_WIDTH(76, 80)

#define MQZFP_STRUC_ID        "ZFP "
#define MQZFP_STRUC_ID_ARRAY  'Z','F','P',' '
#define MQZFP_VERSION_1       1
#define MQZFP_CURRENT_VERSION 1
#define MQZFP_LENGTH_1        MQ_BY_WIDTH(20, 24)
#define MQZFP_CURRENT_LENGTH  MQ_BY_WIDTH(20, 24)

#define MQZIC_STRUC_ID        "ZIC "
#define MQZIC_STRUC_ID_ARRAY  'Z','I','C',' '
#define MQZIC_VERSION_1       1
#define MQZIC_CURRENT_VERSION 1
#define MQZIC_LENGTH_1        84
#define MQZIC_CURRENT_LENGTH  84

/* Initialisation and termination */
#define MQZIO_PRIMARY   0
#define MQZIO_SECONDARY 1
#define MQZTO_PRIMARY   0
#define MQZTO_SECONDARY 1

/* Continuation */
#define MQZCI_DEFAULT  0
#define MQZCI_CONTINUE 0
#define MQZCI_STOP     1

/* Authority service */
#define MQZAS_VERSION_1 1
#define MQZAS_VERSION_2 2
#define MQZAS_VERSION_3 3
#define MQZAS_VERSION_4 4
#define MQZAS_VERSION_5 5
#define MQZAS_VERSION_6 6

/* Authorities */
#define MQZAO_CONNECT                  0x00000001
#define MQZAO_BROWSE                   0x00000002
#define MQZAO_INPUT                    0x00000004
#define MQZAO_OUTPUT                   0x00000008
#define MQZAO_INQUIRE                  0x00000010
#define MQZAO_SET                      0x00000020
#define MQZAO_PASS_IDENTITY_CONTEXT    0x00000040
#define MQZAO_PASS_ALL_CONTEXT         0x00000080
#define MQZAO_SET_IDENTITY_CONTEXT     0x00000100
#define MQZAO_SET_ALL_CONTEXT          0x00000200
#define MQZAO_ALTERNATE_USER_AUTHORITY 0x00000400
#define MQZAO_PUBLISH                  0x00000800
#define MQZAO_SUBSCRIBE                0x00001000
#define MQZAO_RESUME                   0x00002000
#define MQZAO_ALL_MQI                  0x00003FFF
#define MQZAO_CREATE                   0x00010000
#define MQZAO_DELETE                   0x00020000
#define MQZAO_DISPLAY                  0x00040000
#define MQZAO_CHANGE                   0x00080000
#define MQZAO_CLEAR                    0x00100000
#define MQZAO_CONTROL                  0x00200000
#define MQZAO_CONTROL_EXTENDED         0x00400000
#define MQZAO_AUTHORIZE                0x00800000
#define MQZAO_ALL_ADMIN                0x00FE0000
#define MQZAO_SYSTEM                   0x02000000
#define MQZAO_ALL                      0x02FE3FFF
#define MQZAO_REMOVE                   0x01000000
#define MQZAO_NONE                     0x00000000
#define MQZAO_CREATE_ONLY              0x04000000

/* Entity types */
#define MQZAET_NONE      0
#define MQZAET_PRINCIPAL 1
#define MQZAET_GROUP     2
#define MQZAET_UNKNOWN   3

/* Authentication type */
#define MQZAT_INITIAL_CONTEXT 0
#define MQZAT_CHANGE_CONTEXT  1

/* Enumeration and selectors */
#define MQZSE_START        1
#define MQZSE_CONTINUE     0
#define MQZSL_NOT_RETURNED 0
#define MQZSL_RETURNED     1

/* Name and user-identifier services */
#define MQZNS_VERSION_1 1
#define MQZUS_VERSION_1 1

/* Function identifiers */
#define MQZID_INIT                     0
#define MQZID_TERM                     1
#define MQZID_INIT_AUTHORITY           0
#define MQZID_TERM_AUTHORITY           1
#define MQZID_CHECK_AUTHORITY          2
#define MQZID_COPY_ALL_AUTHORITY       3
#define MQZID_DELETE_AUTHORITY         4
#define MQZID_SET_AUTHORITY            5
#define MQZID_GET_AUTHORITY            6
#define MQZID_GET_EXPLICIT_AUTHORITY   7
#define MQZID_REFRESH_CACHE            8
#define MQZID_ENUMERATE_AUTHORITY_DATA 9
#define MQZID_AUTHENTICATE_USER        10
#define MQZID_FREE_USER                11
#define MQZID_INQUIRE                  12
#define MQZID_CHECK_PRIVILEGED         13
#define MQZID_INIT_NAME                0
#define MQZID_TERM_NAME                1
#define MQZID_LOOKUP_NAME              2
#define MQZID_INSERT_NAME              3
#define MQZID_DELETE_NAME              4
#define MQZID_INIT_USERID              0
#define MQZID_TERM_USERID              1
#define MQZID_FIND_USERID              2

#ifdef __cplusplus
}
#endif

#endif
