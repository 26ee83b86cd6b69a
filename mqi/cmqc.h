/*
 * cmqc.h
 * The message queue interface (MQI): elementary types, structures with their
 * default initialisers, options, reason codes, attribute selectors and calls.
 *
 * The declarations follow the published MQI reference: names, values, field order
 * and sizes are those that every MQI program expects, so that a program compiled
 * with this header runs on any library that offers the MQI.
 *
 * - A structure is initialised with its default: MQMD md = {MQMD_DEFAULT};
 * - NAME_ARRAY is the same text as NAME, as the list of its characters.
 * - Structures have the natural alignment of the platform, without packing.
 * - The level is MQCMDL_CURRENT_LEVEL. Constants that later levels added are here too;
 *   the CURRENT and LAST_USED values do not count them.
 * - cmqcfc.h declares the command messages (PCF), cmqxc.h channels and exits.
 *
 * In this order: types; handles; completion codes and reasons; lengths of fields; values
 * that structures share; structures (connection, objects, message, put, get, callbacks,
 * properties, publish/subscribe, headers in message data), each with its constants;
 * selectors and values of attributes; calls.
 */
/* clang-format off */
#ifndef CMQC_H
#define CMQC_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Calling convention of the calls, and the star of a pointer. */
#define MQENTRY
#define MQPOINTER *

/* No call throws; a C++ program may count on it, and a library that defines the calls is held to it. */
#if defined(__cplusplus) && __cplusplus >= 201103L
#define MQ_NOTHROW noexcept
#else
#define MQ_NOTHROW
#endif

/* Where a length depends on the size of a pointer: its 32-bit and its 64-bit value. */
#if defined(__LP64__) || defined(_LP64) || defined(_WIN64)
#define MQ_64_BIT
#define MQ_BY_WIDTH(on32bit, on64bit) (on64bit)
#else
#define MQ_BY_WIDTH(on32bit, on64bit) (on32bit)
#endif

/* -------------------------------------------------------------------------- */
/* Elementary types                                                           */
/* -------------------------------------------------------------------------- */

typedef unsigned char      MQBYTE;
typedef char               MQCHAR;
typedef signed char        MQINT8;
typedef unsigned char      MQUINT8;
typedef short              MQINT16;
typedef unsigned short     MQUINT16;
typedef int                MQLONG;
typedef unsigned int       MQULONG;
typedef int                MQINT32;
typedef unsigned int       MQUINT32;
typedef long long          MQINT64;
typedef unsigned long long MQUINT64;
typedef float              MQFLOAT32;
typedef double             MQFLOAT64;
typedef void               MQVOID;
typedef void *             MQPTR;
typedef MQLONG             MQBOOL;
typedef MQLONG             MQHCONN;
typedef MQLONG             MQHOBJ;
typedef MQINT64            MQHMSG;
typedef MQLONG             MQPID;
typedef MQLONG             MQTID;

typedef MQBYTE    *PMQBYTE;     typedef PMQBYTE    *PPMQBYTE;
typedef MQCHAR    *PMQCHAR;     typedef PMQCHAR    *PPMQCHAR;
typedef MQINT8    *PMQINT8;     typedef PMQINT8    *PPMQINT8;
typedef MQUINT8   *PMQUINT8;    typedef PMQUINT8   *PPMQUINT8;
typedef MQINT16   *PMQINT16;    typedef PMQINT16   *PPMQINT16;
typedef MQUINT16  *PMQUINT16;   typedef PMQUINT16  *PPMQUINT16;
typedef MQLONG    *PMQLONG;     typedef PMQLONG    *PPMQLONG;
typedef MQULONG   *PMQULONG;    typedef PMQULONG   *PPMQULONG;
typedef MQINT32   *PMQINT32;    typedef PMQINT32   *PPMQINT32;
typedef MQUINT32  *PMQUINT32;   typedef PMQUINT32  *PPMQUINT32;
typedef MQINT64   *PMQINT64;    typedef PMQINT64   *PPMQINT64;
typedef MQUINT64  *PMQUINT64;   typedef PMQUINT64  *PPMQUINT64;
typedef MQFLOAT32 *PMQFLOAT32;  typedef PMQFLOAT32 *PPMQFLOAT32;
typedef MQFLOAT64 *PMQFLOAT64;  typedef PMQFLOAT64 *PPMQFLOAT64;
typedef MQVOID    *PMQVOID;     typedef PMQVOID    *PPMQVOID;
typedef MQPTR     *PMQPTR;      typedef PMQPTR     *PPMQPTR;
typedef MQBOOL    *PMQBOOL;     typedef PMQBOOL    *PPMQBOOL;
typedef MQHCONN   *PMQHCONN;    typedef PMQHCONN   *PPMQHCONN;
typedef MQHOBJ    *PMQHOBJ;     typedef PMQHOBJ    *PPMQHOBJ;
typedef MQHMSG    *PMQHMSG;     typedef PMQHMSG    *PPMQHMSG;
typedef MQPID     *PMQPID;      typedef PMQPID     *PPMQPID;
typedef MQTID     *PMQTID;      typedef PMQTID     *PPMQTID;

/* Fields of fixed length: blank- or zero-padded characters, and bytes. */
typedef MQCHAR MQCHAR4[4];     typedef MQCHAR4   *PMQCHAR4;    typedef PMQCHAR4   *PPMQCHAR4;
typedef MQCHAR MQCHAR8[8];     typedef MQCHAR8   *PMQCHAR8;    typedef PMQCHAR8   *PPMQCHAR8;
typedef MQCHAR MQCHAR12[12];   typedef MQCHAR12  *PMQCHAR12;   typedef PMQCHAR12  *PPMQCHAR12;
typedef MQCHAR MQCHAR16[16];   typedef MQCHAR16  *PMQCHAR16;   typedef PMQCHAR16  *PPMQCHAR16;
typedef MQCHAR MQCHAR20[20];   typedef MQCHAR20  *PMQCHAR20;   typedef PMQCHAR20  *PPMQCHAR20;
typedef MQCHAR MQCHAR24[24];   typedef MQCHAR24  *PMQCHAR24;   typedef PMQCHAR24  *PPMQCHAR24;
typedef MQCHAR MQCHAR28[28];   typedef MQCHAR28  *PMQCHAR28;   typedef PMQCHAR28  *PPMQCHAR28;
typedef MQCHAR MQCHAR32[32];   typedef MQCHAR32  *PMQCHAR32;   typedef PMQCHAR32  *PPMQCHAR32;
typedef MQCHAR MQCHAR40[40];   typedef MQCHAR40  *PMQCHAR40;   typedef PMQCHAR40  *PPMQCHAR40;
typedef MQCHAR MQCHAR48[48];   typedef MQCHAR48  *PMQCHAR48;   typedef PMQCHAR48  *PPMQCHAR48;
typedef MQCHAR MQCHAR64[64];   typedef MQCHAR64  *PMQCHAR64;   typedef PMQCHAR64  *PPMQCHAR64;
typedef MQCHAR MQCHAR128[128]; typedef MQCHAR128 *PMQCHAR128;  typedef PMQCHAR128 *PPMQCHAR128;
typedef MQCHAR MQCHAR256[256]; typedef MQCHAR256 *PMQCHAR256;  typedef PMQCHAR256 *PPMQCHAR256;
typedef MQCHAR MQCHAR264[264]; typedef MQCHAR264 *PMQCHAR264;  typedef PMQCHAR264 *PPMQCHAR264;

typedef MQBYTE MQBYTE4[4];     typedef MQBYTE4   *PMQBYTE4;    typedef PMQBYTE4   *PPMQBYTE4;
typedef MQBYTE MQBYTE8[8];     typedef MQBYTE8   *PMQBYTE8;    typedef PMQBYTE8   *PPMQBYTE8;
typedef MQBYTE MQBYTE12[12];   typedef MQBYTE12  *PMQBYTE12;   typedef PMQBYTE12  *PPMQBYTE12;
typedef MQBYTE MQBYTE16[16];   typedef MQBYTE16  *PMQBYTE16;   typedef PMQBYTE16  *PPMQBYTE16;
typedef MQBYTE MQBYTE20[20];   typedef MQBYTE20  *PMQBYTE20;   typedef PMQBYTE20  *PPMQBYTE20;
typedef MQBYTE MQBYTE24[24];   typedef MQBYTE24  *PMQBYTE24;   typedef PMQBYTE24  *PPMQBYTE24;
typedef MQBYTE MQBYTE28[28];   typedef MQBYTE28  *PMQBYTE28;   typedef PMQBYTE28  *PPMQBYTE28;
typedef MQBYTE MQBYTE32[32];   typedef MQBYTE32  *PMQBYTE32;   typedef PMQBYTE32  *PPMQBYTE32;
typedef MQBYTE MQBYTE40[40];   typedef MQBYTE40  *PMQBYTE40;   typedef PMQBYTE40  *PPMQBYTE40;
typedef MQBYTE MQBYTE48[48];   typedef MQBYTE48  *PMQBYTE48;   typedef PMQBYTE48  *PPMQBYTE48;
typedef MQBYTE MQBYTE64[64];   typedef MQBYTE64  *PMQBYTE64;   typedef PMQBYTE64  *PPMQBYTE64;
typedef MQBYTE MQBYTE128[128]; typedef MQBYTE128 *PMQBYTE128;  typedef PMQBYTE128 *PPMQBYTE128;
typedef MQBYTE MQBYTE256[256]; typedef MQBYTE256 *PMQBYTE256;  typedef PMQBYTE256 *PPMQBYTE256;
typedef MQBYTE MQBYTE264[264]; typedef MQBYTE264 *PMQBYTE264;  typedef PMQBYTE264 *PPMQBYTE264;

/* -------------------------------------------------------------------------- */
/* Structures: names and pointers                                             */
/* -------------------------------------------------------------------------- */

typedef struct tagMQAIR   MQAIR;   typedef MQAIR   *PMQAIR;   typedef PMQAIR   *PPMQAIR;
typedef struct tagMQBMHO  MQBMHO;  typedef MQBMHO  *PMQBMHO;  typedef PMQBMHO  *PPMQBMHO;
typedef struct tagMQBNO   MQBNO;   typedef MQBNO   *PMQBNO;   typedef PMQBNO   *PPMQBNO;
typedef struct tagMQBO    MQBO;    typedef MQBO    *PMQBO;    typedef PMQBO    *PPMQBO;
typedef struct tagMQCBC   MQCBC;   typedef MQCBC   *PMQCBC;   typedef PMQCBC   *PPMQCBC;
typedef struct tagMQCBD   MQCBD;   typedef MQCBD   *PMQCBD;   typedef PMQCBD   *PPMQCBD;
typedef struct tagMQCHARV MQCHARV; typedef MQCHARV *PMQCHARV; typedef PMQCHARV *PPMQCHARV;
typedef struct tagMQCMHO  MQCMHO;  typedef MQCMHO  *PMQCMHO;  typedef PMQCMHO  *PPMQCMHO;
typedef struct tagMQCNO   MQCNO;   typedef MQCNO   *PMQCNO;   typedef PMQCNO   *PPMQCNO;
typedef struct tagMQCSP   MQCSP;   typedef MQCSP   *PMQCSP;   typedef PMQCSP   *PPMQCSP;
typedef struct tagMQCTLO  MQCTLO;  typedef MQCTLO  *PMQCTLO;  typedef PMQCTLO  *PPMQCTLO;
typedef struct tagMQDH    MQDH;    typedef MQDH    *PMQDH;    typedef PMQDH    *PPMQDH;
typedef struct tagMQDLH   MQDLH;   typedef MQDLH   *PMQDLH;   typedef PMQDLH   *PPMQDLH;
typedef struct tagMQDMHO  MQDMHO;  typedef MQDMHO  *PMQDMHO;  typedef PMQDMHO  *PPMQDMHO;
typedef struct tagMQDMPO  MQDMPO;  typedef MQDMPO  *PMQDMPO;  typedef PMQDMPO  *PPMQDMPO;
typedef struct tagMQGMO   MQGMO;   typedef MQGMO   *PMQGMO;   typedef PMQGMO   *PPMQGMO;
typedef struct tagMQIMPO  MQIMPO;  typedef MQIMPO  *PMQIMPO;  typedef PMQIMPO  *PPMQIMPO;
typedef struct tagMQMD    MQMD;    typedef MQMD    *PMQMD;    typedef PMQMD    *PPMQMD;
typedef struct tagMQMD1   MQMD1;   typedef MQMD1   *PMQMD1;   typedef PMQMD1   *PPMQMD1;
typedef struct tagMQMDE   MQMDE;   typedef MQMDE   *PMQMDE;   typedef PMQMDE   *PPMQMDE;
typedef struct tagMQMHBO  MQMHBO;  typedef MQMHBO  *PMQMHBO;  typedef PMQMHBO  *PPMQMHBO;
typedef struct tagMQOD    MQOD;    typedef MQOD    *PMQOD;    typedef PMQOD    *PPMQOD;
typedef struct tagMQOR    MQOR;    typedef MQOR    *PMQOR;    typedef PMQOR    *PPMQOR;
typedef struct tagMQPD    MQPD;    typedef MQPD    *PMQPD;    typedef PMQPD    *PPMQPD;
typedef struct tagMQPMO   MQPMO;   typedef MQPMO   *PMQPMO;   typedef PMQPMO   *PPMQPMO;
typedef struct tagMQRFH   MQRFH;   typedef MQRFH   *PMQRFH;   typedef PMQRFH   *PPMQRFH;
typedef struct tagMQRFH2  MQRFH2;  typedef MQRFH2  *PMQRFH2;  typedef PMQRFH2  *PPMQRFH2;
typedef struct tagMQRR    MQRR;    typedef MQRR    *PMQRR;    typedef PMQRR    *PPMQRR;
typedef struct tagMQSCO   MQSCO;   typedef MQSCO   *PMQSCO;   typedef PMQSCO   *PPMQSCO;
typedef struct tagMQSD    MQSD;    typedef MQSD    *PMQSD;    typedef PMQSD    *PPMQSD;
typedef struct tagMQSMPO  MQSMPO;  typedef MQSMPO  *PMQSMPO;  typedef PMQSMPO  *PPMQSMPO;
typedef struct tagMQSRO   MQSRO;   typedef MQSRO   *PMQSRO;   typedef PMQSRO   *PPMQSRO;
typedef struct tagMQSTS   MQSTS;   typedef MQSTS   *PMQSTS;   typedef PMQSTS   *PPMQSTS;
typedef struct tagMQTM    MQTM;    typedef MQTM    *PMQTM;    typedef PMQTM    *PPMQTM;
typedef struct tagMQTMC2  MQTMC2;  typedef MQTMC2  *PMQTMC2;  typedef PMQTMC2  *PPMQTMC2;
typedef struct tagMQXQH   MQXQH;   typedef MQXQH   *PMQXQH;   typedef PMQXQH   *PPMQXQH;

/* -------------------------------------------------------------------------- */
/* Handles                                                                    */
/* -------------------------------------------------------------------------- */

#define MQHC_DEF_HCONN           0
#define MQHC_UNUSABLE_HCONN      (-1)
#define MQHC_UNASSOCIATED_HCONN  (-3)

#define MQHO_NONE                0
#define MQHO_UNUSABLE_HOBJ       (-1)

#define MQHM_NONE                0
#define MQHM_UNUSABLE_HMSG       (-1)

/* -------------------------------------------------------------------------- */
/* Completion codes and reasons                                               */
/* -------------------------------------------------------------------------- */

#define MQCC_OK      0
#define MQCC_WARNING 1
#define MQCC_FAILED  2
#define MQCC_UNKNOWN (-1)

/* No reason, and the range for applications */
#define MQRC_NONE       0
#define MQRC_APPL_FIRST 900
#define MQRC_APPL_LAST  999

/* Reasons of the MQI and of event messages */
#define MQRC_ALIAS_BASE_Q_TYPE_ERROR   2001
#define MQRC_ALREADY_CONNECTED         2002
#define MQRC_BACKED_OUT                2003
#define MQRC_BUFFER_ERROR              2004
#define MQRC_BUFFER_LENGTH_ERROR       2005
#define MQRC_CHAR_ATTR_LENGTH_ERROR    2006
#define MQRC_CHAR_ATTRS_ERROR          2007
#define MQRC_CHAR_ATTRS_TOO_SHORT      2008
#define MQRC_CONNECTION_BROKEN         2009
#define MQRC_DATA_LENGTH_ERROR         2010
#define MQRC_DYNAMIC_Q_NAME_ERROR      2011
#define MQRC_ENVIRONMENT_ERROR         2012
#define MQRC_EXPIRY_ERROR              2013
#define MQRC_FEEDBACK_ERROR            2014
#define MQRC_GET_INHIBITED             2016
#define MQRC_HANDLE_NOT_AVAILABLE      2017
#define MQRC_HCONN_ERROR               2018
#define MQRC_HOBJ_ERROR                2019
#define MQRC_INHIBIT_VALUE_ERROR       2020
#define MQRC_INT_ATTR_COUNT_ERROR      2021
#define MQRC_INT_ATTR_COUNT_TOO_SMALL  2022
#define MQRC_INT_ATTRS_ARRAY_ERROR     2023
#define MQRC_SYNCPOINT_LIMIT_REACHED   2024
#define MQRC_MAX_CONNS_LIMIT_REACHED   2025
#define MQRC_MD_ERROR                  2026
#define MQRC_MISSING_REPLY_TO_Q        2027
#define MQRC_MSG_TYPE_ERROR            2029
#define MQRC_MSG_TOO_BIG_FOR_Q         2030
#define MQRC_MSG_TOO_BIG_FOR_Q_MGR     2031
#define MQRC_NO_MSG_AVAILABLE          2033
#define MQRC_NO_MSG_UNDER_CURSOR       2034
#define MQRC_NOT_AUTHORIZED            2035
#define MQRC_NOT_OPEN_FOR_BROWSE       2036
#define MQRC_NOT_OPEN_FOR_INPUT        2037
#define MQRC_NOT_OPEN_FOR_INQUIRE      2038
#define MQRC_NOT_OPEN_FOR_OUTPUT       2039
#define MQRC_NOT_OPEN_FOR_SET          2040
#define MQRC_OBJECT_CHANGED            2041
#define MQRC_OBJECT_IN_USE             2042
#define MQRC_OBJECT_TYPE_ERROR         2043
#define MQRC_OD_ERROR                  2044
#define MQRC_OPTION_NOT_VALID_FOR_TYPE 2045
#define MQRC_OPTIONS_ERROR             2046
#define MQRC_PERSISTENCE_ERROR         2047
#define MQRC_PERSISTENT_NOT_ALLOWED    2048
#define MQRC_PRIORITY_EXCEEDS_MAXIMUM  2049
#define MQRC_PRIORITY_ERROR            2050
#define MQRC_PUT_INHIBITED             2051
#define MQRC_Q_DELETED                 2052
#define MQRC_Q_FULL                    2053
#define MQRC_Q_NOT_EMPTY               2055
#define MQRC_Q_SPACE_NOT_AVAILABLE     2056
#define MQRC_Q_TYPE_ERROR              2057
#define MQRC_Q_MGR_NAME_ERROR          2058
#define MQRC_Q_MGR_NOT_AVAILABLE       2059
#define MQRC_REPORT_OPTIONS_ERROR      2061
#define MQRC_SECOND_MARK_NOT_ALLOWED   2062
#define MQRC_SECURITY_ERROR            2063
#define MQRC_TOKEN_TIMESTAMP_NOT_VALID 2064
#define MQRC_SELECTOR_COUNT_ERROR      2065
#define MQRC_SELECTOR_LIMIT_EXCEEDED   2066
#define MQRC_SELECTOR_ERROR            2067
#define MQRC_SELECTOR_NOT_FOR_TYPE     2068
#define MQRC_SIGNAL_OUTSTANDING        2069
#define MQRC_SIGNAL_REQUEST_ACCEPTED   2070
#define MQRC_STORAGE_NOT_AVAILABLE     2071
#define MQRC_SYNCPOINT_NOT_AVAILABLE   2072
#define MQRC_TRIGGER_CONTROL_ERROR     2075
#define MQRC_TRIGGER_DEPTH_ERROR       2076
#define MQRC_TRIGGER_MSG_PRIORITY_ERR  2077
#define MQRC_TRIGGER_TYPE_ERROR        2078
#define MQRC_TRUNCATED_MSG_ACCEPTED    2079
#define MQRC_TRUNCATED_MSG_FAILED      2080
#define MQRC_UNKNOWN_ALIAS_BASE_Q      2082
#define MQRC_UNKNOWN_OBJECT_NAME       2085
#define MQRC_UNKNOWN_OBJECT_Q_MGR      2086
#define MQRC_UNKNOWN_REMOTE_Q_MGR      2087
#define MQRC_WAIT_INTERVAL_ERROR       2090
#define MQRC_XMIT_Q_TYPE_ERROR         2091
#define MQRC_XMIT_Q_USAGE_ERROR        2092
#define MQRC_NOT_OPEN_FOR_PASS_ALL     2093
#define MQRC_NOT_OPEN_FOR_PASS_IDENT   2094
#define MQRC_NOT_OPEN_FOR_SET_ALL      2095
#define MQRC_NOT_OPEN_FOR_SET_IDENT    2096
#define MQRC_CONTEXT_HANDLE_ERROR      2097
#define MQRC_CONTEXT_NOT_AVAILABLE     2098
#define MQRC_SIGNAL1_ERROR             2099
#define MQRC_OBJECT_ALREADY_EXISTS     2100
#define MQRC_OBJECT_DAMAGED            2101
#define MQRC_RESOURCE_PROBLEM          2102
#define MQRC_ANOTHER_Q_MGR_CONNECTED   2103
#define MQRC_UNKNOWN_REPORT_OPTION     2104
#define MQRC_STORAGE_CLASS_ERROR       2105
#define MQRC_COD_NOT_VALID_FOR_XCF_Q   2106
#define MQRC_XWAIT_CANCELED            2107
#define MQRC_XWAIT_ERROR               2108
#define MQRC_SUPPRESSED_BY_EXIT        2109
#define MQRC_FORMAT_ERROR              2110
#define MQRC_SOURCE_CCSID_ERROR        2111
#define MQRC_SOURCE_INTEGER_ENC_ERROR  2112
#define MQRC_SOURCE_DECIMAL_ENC_ERROR  2113
#define MQRC_SOURCE_FLOAT_ENC_ERROR    2114
#define MQRC_TARGET_CCSID_ERROR        2115
#define MQRC_TARGET_INTEGER_ENC_ERROR  2116
#define MQRC_TARGET_DECIMAL_ENC_ERROR  2117
#define MQRC_TARGET_FLOAT_ENC_ERROR    2118
#define MQRC_NOT_CONVERTED             2119
#define MQRC_CONVERTED_MSG_TOO_BIG     2120
#define MQRC_TRUNCATED                 2120
#define MQRC_NO_EXTERNAL_PARTICIPANTS  2121
#define MQRC_PARTICIPANT_NOT_AVAILABLE 2122
#define MQRC_OUTCOME_MIXED             2123
#define MQRC_OUTCOME_PENDING           2124
#define MQRC_BRIDGE_STARTED            2125
#define MQRC_BRIDGE_STOPPED            2126
#define MQRC_ADAPTER_STORAGE_SHORTAGE  2127
#define MQRC_UOW_IN_PROGRESS           2128
#define MQRC_ADAPTER_CONN_LOAD_ERROR   2129
#define MQRC_ADAPTER_SERV_LOAD_ERROR   2130
#define MQRC_ADAPTER_DEFS_ERROR        2131
#define MQRC_ADAPTER_DEFS_LOAD_ERROR   2132
#define MQRC_ADAPTER_CONV_LOAD_ERROR   2133
#define MQRC_BO_ERROR                  2134
#define MQRC_DH_ERROR                  2135
#define MQRC_MULTIPLE_REASONS          2136
#define MQRC_OPEN_FAILED               2137
#define MQRC_ADAPTER_DISC_LOAD_ERROR   2138
#define MQRC_CNO_ERROR                 2139
#define MQRC_CICS_WAIT_FAILED          2140
#define MQRC_DLH_ERROR                 2141
#define MQRC_HEADER_ERROR              2142
#define MQRC_SOURCE_LENGTH_ERROR       2143
#define MQRC_TARGET_LENGTH_ERROR       2144
#define MQRC_SOURCE_BUFFER_ERROR       2145
#define MQRC_TARGET_BUFFER_ERROR       2146
#define MQRC_INCOMPLETE_TRANSACTION    2147
#define MQRC_IIH_ERROR                 2148
#define MQRC_PCF_ERROR                 2149
#define MQRC_DBCS_ERROR                2150
#define MQRC_OBJECT_NAME_ERROR         2152
#define MQRC_OBJECT_Q_MGR_NAME_ERROR   2153
#define MQRC_RECS_PRESENT_ERROR        2154
#define MQRC_OBJECT_RECORDS_ERROR      2155
#define MQRC_RESPONSE_RECORDS_ERROR    2156
#define MQRC_ASID_MISMATCH             2157
#define MQRC_PMO_RECORD_FLAGS_ERROR    2158
#define MQRC_PUT_MSG_RECORDS_ERROR     2159
#define MQRC_CONN_ID_IN_USE            2160
#define MQRC_Q_MGR_QUIESCING           2161
#define MQRC_Q_MGR_STOPPING            2162
#define MQRC_DUPLICATE_RECOV_COORD     2163
#define MQRC_PMO_ERROR                 2173
#define MQRC_API_EXIT_NOT_FOUND        2182
#define MQRC_API_EXIT_LOAD_ERROR       2183
#define MQRC_REMOTE_Q_NAME_ERROR       2184
#define MQRC_INCONSISTENT_PERSISTENCE  2185
#define MQRC_GMO_ERROR                 2186
#define MQRC_CICS_BRIDGE_RESTRICTION   2187
#define MQRC_STOPPED_BY_CLUSTER_EXIT   2188
#define MQRC_CLUSTER_RESOLUTION_ERROR  2189
#define MQRC_CONVERTED_STRING_TOO_BIG  2190
#define MQRC_TMC_ERROR                 2191
#define MQRC_STORAGE_MEDIUM_FULL       2192
#define MQRC_PAGESET_FULL              2192
#define MQRC_PAGESET_ERROR             2193
#define MQRC_NAME_NOT_VALID_FOR_TYPE   2194
#define MQRC_UNEXPECTED_ERROR          2195
#define MQRC_UNKNOWN_XMIT_Q            2196
#define MQRC_UNKNOWN_DEF_XMIT_Q        2197
#define MQRC_DEF_XMIT_Q_TYPE_ERROR     2198
#define MQRC_DEF_XMIT_Q_USAGE_ERROR    2199
#define MQRC_MSG_MARKED_BROWSE_CO_OP   2200
#define MQRC_NAME_IN_USE               2201
#define MQRC_CONNECTION_QUIESCING      2202
#define MQRC_CONNECTION_STOPPING       2203
#define MQRC_ADAPTER_NOT_AVAILABLE     2204
#define MQRC_MSG_ID_ERROR              2206
#define MQRC_CORREL_ID_ERROR           2207
#define MQRC_FILE_SYSTEM_ERROR         2208
#define MQRC_NO_MSG_LOCKED             2209
#define MQRC_SOAP_DOTNET_ERROR         2210
#define MQRC_SOAP_AXIS_ERROR           2211
#define MQRC_SOAP_URL_ERROR            2212
#define MQRC_FILE_NOT_AUDITED          2216
#define MQRC_CONNECTION_NOT_AUTHORIZED 2217
#define MQRC_MSG_TOO_BIG_FOR_CHANNEL   2218
#define MQRC_CALL_IN_PROGRESS          2219
#define MQRC_RMH_ERROR                 2220
#define MQRC_Q_MGR_ACTIVE              2222
#define MQRC_Q_MGR_NOT_ACTIVE          2223
#define MQRC_Q_DEPTH_HIGH              2224
#define MQRC_Q_DEPTH_LOW               2225
#define MQRC_Q_SERVICE_INTERVAL_HIGH   2226
#define MQRC_Q_SERVICE_INTERVAL_OK     2227
#define MQRC_RFH_HEADER_FIELD_ERROR    2228
#define MQRC_RAS_PROPERTY_ERROR        2229
#define MQRC_UNIT_OF_WORK_NOT_STARTED  2232
#define MQRC_CHANNEL_AUTO_DEF_OK       2233
#define MQRC_CHANNEL_AUTO_DEF_ERROR    2234
#define MQRC_CFH_ERROR                 2235
#define MQRC_CFIL_ERROR                2236
#define MQRC_CFIN_ERROR                2237
#define MQRC_CFSL_ERROR                2238
#define MQRC_CFST_ERROR                2239
#define MQRC_INCOMPLETE_GROUP          2241
#define MQRC_INCOMPLETE_MSG            2242
#define MQRC_INCONSISTENT_CCSIDS       2243
#define MQRC_INCONSISTENT_ENCODINGS    2244
#define MQRC_INCONSISTENT_UOW          2245
#define MQRC_INVALID_MSG_UNDER_CURSOR  2246
#define MQRC_MATCH_OPTIONS_ERROR       2247
#define MQRC_MDE_ERROR                 2248
#define MQRC_MSG_FLAGS_ERROR           2249
#define MQRC_MSG_SEQ_NUMBER_ERROR      2250
#define MQRC_OFFSET_ERROR              2251
#define MQRC_ORIGINAL_LENGTH_ERROR     2252
#define MQRC_SEGMENT_LENGTH_ZERO       2253
#define MQRC_UOW_NOT_AVAILABLE         2255
#define MQRC_WRONG_GMO_VERSION         2256
#define MQRC_WRONG_MD_VERSION          2257
#define MQRC_GROUP_ID_ERROR            2258
#define MQRC_INCONSISTENT_BROWSE       2259
#define MQRC_XQH_ERROR                 2260
#define MQRC_SRC_ENV_ERROR             2261
#define MQRC_SRC_NAME_ERROR            2262
#define MQRC_DEST_ENV_ERROR            2263
#define MQRC_DEST_NAME_ERROR           2264
#define MQRC_TM_ERROR                  2265
#define MQRC_CLUSTER_EXIT_ERROR        2266
#define MQRC_CLUSTER_EXIT_LOAD_ERROR   2267
#define MQRC_CLUSTER_PUT_INHIBITED     2268
#define MQRC_CLUSTER_RESOURCE_ERROR    2269
#define MQRC_NO_DESTINATIONS_AVAILABLE 2270
#define MQRC_CONN_TAG_IN_USE           2271
#define MQRC_PARTIALLY_CONVERTED       2272
#define MQRC_CONNECTION_ERROR          2273
#define MQRC_OPTION_ENVIRONMENT_ERROR  2274
#define MQRC_CD_ERROR                  2277
#define MQRC_CLIENT_CONN_ERROR         2278
#define MQRC_CHANNEL_STOPPED_BY_USER   2279
#define MQRC_HCONFIG_ERROR             2280
#define MQRC_FUNCTION_ERROR            2281
#define MQRC_CHANNEL_STARTED           2282
#define MQRC_CHANNEL_STOPPED           2283
#define MQRC_CHANNEL_CONV_ERROR        2284
#define MQRC_SERVICE_NOT_AVAILABLE     2285
#define MQRC_INITIALIZATION_FAILED     2286
#define MQRC_TERMINATION_FAILED        2287
#define MQRC_UNKNOWN_Q_NAME            2288
#define MQRC_SERVICE_ERROR             2289
#define MQRC_Q_ALREADY_EXISTS          2290
#define MQRC_USER_ID_NOT_AVAILABLE     2291
#define MQRC_UNKNOWN_ENTITY            2292
#define MQRC_UNKNOWN_AUTH_ENTITY       2293
#define MQRC_UNKNOWN_REF_OBJECT        2294
#define MQRC_CHANNEL_ACTIVATED         2295
#define MQRC_CHANNEL_NOT_ACTIVATED     2296
#define MQRC_UOW_CANCELED              2297
#define MQRC_FUNCTION_NOT_SUPPORTED    2298
#define MQRC_SELECTOR_TYPE_ERROR       2299
#define MQRC_COMMAND_TYPE_ERROR        2300
#define MQRC_MULTIPLE_INSTANCE_ERROR   2301
#define MQRC_SYSTEM_ITEM_NOT_ALTERABLE 2302
#define MQRC_BAG_CONVERSION_ERROR      2303
#define MQRC_SELECTOR_OUT_OF_RANGE     2304
#define MQRC_SELECTOR_NOT_UNIQUE       2305
#define MQRC_INDEX_NOT_PRESENT         2306
#define MQRC_STRING_ERROR              2307
#define MQRC_ENCODING_NOT_SUPPORTED    2308
#define MQRC_SELECTOR_NOT_PRESENT      2309
#define MQRC_OUT_SELECTOR_ERROR        2310
#define MQRC_STRING_TRUNCATED          2311
#define MQRC_SELECTOR_WRONG_TYPE       2312
#define MQRC_INCONSISTENT_ITEM_TYPE    2313
#define MQRC_INDEX_ERROR               2314
#define MQRC_SYSTEM_BAG_NOT_ALTERABLE  2315
#define MQRC_ITEM_COUNT_ERROR          2316
#define MQRC_FORMAT_NOT_SUPPORTED      2317
#define MQRC_SELECTOR_NOT_SUPPORTED    2318
#define MQRC_ITEM_VALUE_ERROR          2319
#define MQRC_HBAG_ERROR                2320
#define MQRC_PARAMETER_MISSING         2321
#define MQRC_CMD_SERVER_NOT_AVAILABLE  2322
#define MQRC_STRING_LENGTH_ERROR       2323
#define MQRC_INQUIRY_COMMAND_ERROR     2324
#define MQRC_NESTED_BAG_NOT_SUPPORTED  2325
#define MQRC_BAG_WRONG_TYPE            2326
#define MQRC_ITEM_TYPE_ERROR           2327
#define MQRC_SYSTEM_BAG_NOT_DELETABLE  2328
#define MQRC_SYSTEM_ITEM_NOT_DELETABLE 2329
#define MQRC_CODED_CHAR_SET_ID_ERROR   2330
#define MQRC_MSG_TOKEN_ERROR           2331
#define MQRC_MISSING_WIH               2332
#define MQRC_WIH_ERROR                 2333
#define MQRC_RFH_ERROR                 2334
#define MQRC_RFH_STRING_ERROR          2335
#define MQRC_RFH_COMMAND_ERROR         2336
#define MQRC_RFH_PARM_ERROR            2337
#define MQRC_RFH_DUPLICATE_PARM        2338
#define MQRC_RFH_PARM_MISSING          2339
#define MQRC_CHAR_CONVERSION_ERROR     2340
#define MQRC_UCS2_CONVERSION_ERROR     2341
#define MQRC_DB2_NOT_AVAILABLE         2342
#define MQRC_OBJECT_NOT_UNIQUE         2343
#define MQRC_CONN_TAG_NOT_RELEASED     2344
#define MQRC_CF_NOT_AVAILABLE          2345
#define MQRC_CF_STRUC_IN_USE           2346
#define MQRC_CF_STRUC_LIST_HDR_IN_USE  2347
#define MQRC_CF_STRUC_AUTH_FAILED      2348
#define MQRC_CF_STRUC_ERROR            2349
#define MQRC_CONN_TAG_NOT_USABLE       2350
#define MQRC_GLOBAL_UOW_CONFLICT       2351
#define MQRC_LOCAL_UOW_CONFLICT        2352
#define MQRC_HANDLE_IN_USE_FOR_UOW     2353
#define MQRC_UOW_ENLISTMENT_ERROR      2354
#define MQRC_UOW_MIX_NOT_SUPPORTED     2355
#define MQRC_WXP_ERROR                 2356
#define MQRC_CURRENT_RECORD_ERROR      2357
#define MQRC_NEXT_OFFSET_ERROR         2358
#define MQRC_NO_RECORD_AVAILABLE       2359
#define MQRC_OBJECT_LEVEL_INCOMPATIBLE 2360
#define MQRC_NEXT_RECORD_ERROR         2361
#define MQRC_BACKOUT_THRESHOLD_REACHED 2362
#define MQRC_MSG_NOT_MATCHED           2363
#define MQRC_JMS_FORMAT_ERROR          2364
#define MQRC_SEGMENTS_NOT_SUPPORTED    2365
#define MQRC_WRONG_CF_LEVEL            2366
#define MQRC_CONFIG_CREATE_OBJECT      2367
#define MQRC_CONFIG_CHANGE_OBJECT      2368
#define MQRC_CONFIG_DELETE_OBJECT      2369
#define MQRC_CONFIG_REFRESH_OBJECT     2370
#define MQRC_CHANNEL_SSL_ERROR         2371
#define MQRC_PARTICIPANT_NOT_DEFINED   2372
#define MQRC_CF_STRUC_FAILED           2373
#define MQRC_API_EXIT_ERROR            2374
#define MQRC_API_EXIT_INIT_ERROR       2375
#define MQRC_API_EXIT_TERM_ERROR       2376
#define MQRC_EXIT_REASON_ERROR         2377
#define MQRC_RESERVED_VALUE_ERROR      2378
#define MQRC_NO_DATA_AVAILABLE         2379
#define MQRC_SCO_ERROR                 2380
#define MQRC_KEY_REPOSITORY_ERROR      2381
#define MQRC_CRYPTO_HARDWARE_ERROR     2382
#define MQRC_AUTH_INFO_REC_COUNT_ERROR 2383
#define MQRC_AUTH_INFO_REC_ERROR       2384
#define MQRC_AIR_ERROR                 2385
#define MQRC_AUTH_INFO_TYPE_ERROR      2386
#define MQRC_AUTH_INFO_CONN_NAME_ERROR 2387
#define MQRC_LDAP_USER_NAME_ERROR      2388
#define MQRC_LDAP_USER_NAME_LENGTH_ERR 2389
#define MQRC_LDAP_PASSWORD_ERROR       2390
#define MQRC_SSL_ALREADY_INITIALIZED   2391
#define MQRC_SSL_CONFIG_ERROR          2392
#define MQRC_SSL_INITIALIZATION_ERROR  2393
#define MQRC_Q_INDEX_TYPE_ERROR        2394
#define MQRC_CFBS_ERROR                2395
#define MQRC_SSL_NOT_ALLOWED           2396
#define MQRC_JSSE_ERROR                2397
#define MQRC_SSL_PEER_NAME_MISMATCH    2398
#define MQRC_SSL_PEER_NAME_ERROR       2399
#define MQRC_UNSUPPORTED_CIPHER_SUITE  2400
#define MQRC_SSL_CERTIFICATE_REVOKED   2401
#define MQRC_SSL_CERT_STORE_ERROR      2402
#define MQRC_CLIENT_EXIT_LOAD_ERROR    2406
#define MQRC_CLIENT_EXIT_ERROR         2407
#define MQRC_UOW_COMMITTED             2408
#define MQRC_SSL_KEY_RESET_ERROR       2409
#define MQRC_UNKNOWN_COMPONENT_NAME    2410
#define MQRC_LOGGER_STATUS             2411
#define MQRC_COMMAND_MQSC              2412
#define MQRC_COMMAND_PCF               2413
#define MQRC_CFIF_ERROR                2414
#define MQRC_CFSF_ERROR                2415
#define MQRC_CFGR_ERROR                2416
#define MQRC_MSG_NOT_ALLOWED_IN_GROUP  2417
#define MQRC_FILTER_OPERATOR_ERROR     2418
#define MQRC_NESTED_SELECTOR_ERROR     2419
#define MQRC_EPH_ERROR                 2420
#define MQRC_RFH_FORMAT_ERROR          2421
#define MQRC_CFBF_ERROR                2422
#define MQRC_CLIENT_CHANNEL_CONFLICT   2423
#define MQRC_SD_ERROR                  2424
#define MQRC_TOPIC_STRING_ERROR        2425
#define MQRC_STS_ERROR                 2426
#define MQRC_NO_SUBSCRIPTION           2428
#define MQRC_SUBSCRIPTION_IN_USE       2429
#define MQRC_STAT_TYPE_ERROR           2430
#define MQRC_SUB_USER_DATA_ERROR       2431
#define MQRC_SUB_ALREADY_EXISTS        2432
#define MQRC_IDENTITY_MISMATCH         2434
#define MQRC_ALTER_SUB_ERROR           2435
#define MQRC_DURABILITY_NOT_ALLOWED    2436
#define MQRC_NO_RETAINED_MSG           2437
#define MQRC_SRO_ERROR                 2438
#define MQRC_SUB_NAME_ERROR            2440
#define MQRC_OBJECT_STRING_ERROR       2441
#define MQRC_PROPERTY_NAME_ERROR       2442
#define MQRC_SEGMENTATION_NOT_ALLOWED  2443
#define MQRC_CBD_ERROR                 2444
#define MQRC_CTLO_ERROR                2445
#define MQRC_NO_CALLBACKS_ACTIVE       2446
#define MQRC_CALLBACK_NOT_REGISTERED   2448
#define MQRC_OPTIONS_CHANGED           2457
#define MQRC_READ_AHEAD_MSGS           2458
#define MQRC_SELECTOR_SYNTAX_ERROR     2459
#define MQRC_HMSG_ERROR                2460
#define MQRC_CMHO_ERROR                2461
#define MQRC_DMHO_ERROR                2462
#define MQRC_SMPO_ERROR                2463
#define MQRC_IMPO_ERROR                2464
#define MQRC_PROPERTY_NAME_TOO_BIG     2465
#define MQRC_PROP_VALUE_NOT_CONVERTED  2466
#define MQRC_PROP_TYPE_NOT_SUPPORTED   2467
#define MQRC_PROPERTY_VALUE_TOO_BIG    2469
#define MQRC_PROP_CONV_NOT_SUPPORTED   2470
#define MQRC_PROPERTY_NOT_AVAILABLE    2471
#define MQRC_PROP_NUMBER_FORMAT_ERROR  2472
#define MQRC_PROPERTY_TYPE_ERROR       2473
#define MQRC_PROPERTIES_TOO_BIG        2478
#define MQRC_PUT_NOT_RETAINED          2479
#define MQRC_ALIAS_TARGTYPE_CHANGED    2480
#define MQRC_DMPO_ERROR                2481
#define MQRC_PD_ERROR                  2482
#define MQRC_CALLBACK_TYPE_ERROR       2483
#define MQRC_CBD_OPTIONS_ERROR         2484
#define MQRC_MAX_MSG_LENGTH_ERROR      2485
#define MQRC_CALLBACK_ROUTINE_ERROR    2486
#define MQRC_CALLBACK_LINK_ERROR       2487
#define MQRC_OPERATION_ERROR           2488
#define MQRC_BMHO_ERROR                2489
#define MQRC_UNSUPPORTED_PROPERTY      2490
#define MQRC_MSG_LENGTH_ERROR          2491
#define MQRC_PROP_NAME_NOT_CONVERTED   2492
#define MQRC_GET_ENABLED               2494
#define MQRC_MODULE_NOT_FOUND          2495
#define MQRC_MODULE_INVALID            2496
#define MQRC_MODULE_ENTRY_NOT_FOUND    2497
#define MQRC_MIXED_CONTENT_NOT_ALLOWED 2498
#define MQRC_MSG_HANDLE_IN_USE         2499
#define MQRC_HCONN_ASYNC_ACTIVE        2500
#define MQRC_MHBO_ERROR                2501
#define MQRC_PUBLICATION_FAILURE       2502
#define MQRC_SUB_INHIBITED             2503
#define MQRC_SELECTOR_ALWAYS_FALSE     2504
#define MQRC_XEPO_ERROR                2507
#define MQRC_DURABILITY_NOT_ALTERABLE  2509
#define MQRC_TOPIC_NOT_ALTERABLE       2510
#define MQRC_SUBLEVEL_NOT_ALTERABLE    2512
#define MQRC_PROPERTY_NAME_LENGTH_ERR  2513
#define MQRC_DUPLICATE_GROUP_SUB       2514
#define MQRC_GROUPING_NOT_ALTERABLE    2515
#define MQRC_SELECTOR_INVALID_FOR_TYPE 2516
#define MQRC_HOBJ_QUIESCED             2517
#define MQRC_HOBJ_QUIESCED_NO_MSGS     2518
#define MQRC_SELECTION_STRING_ERROR    2519
#define MQRC_RES_OBJECT_STRING_ERROR   2520
#define MQRC_CONNECTION_SUSPENDED      2521
#define MQRC_INVALID_DESTINATION       2522
#define MQRC_INVALID_SUBSCRIPTION      2523
#define MQRC_SELECTOR_NOT_ALTERABLE    2524
#define MQRC_RETAINED_MSG_Q_ERROR      2525
#define MQRC_RETAINED_NOT_DELIVERED    2526
#define MQRC_RFH_RESTRICTED_FORMAT_ERR 2527
#define MQRC_CONNECTION_STOPPED        2528
#define MQRC_ASYNC_UOW_CONFLICT        2529
#define MQRC_ASYNC_XA_CONFLICT         2530
#define MQRC_PUBSUB_INHIBITED          2531
#define MQRC_MSG_HANDLE_COPY_FAILURE   2532
#define MQRC_DEST_CLASS_NOT_ALTERABLE  2533
#define MQRC_OPERATION_NOT_ALLOWED     2534
#define MQRC_ACTION_ERROR              2535
#define MQRC_CHANNEL_NOT_AVAILABLE     2537
#define MQRC_HOST_NOT_AVAILABLE        2538
#define MQRC_CHANNEL_CONFIG_ERROR      2539
#define MQRC_UNKNOWN_CHANNEL_NAME      2540
#define MQRC_LOOPING_PUBLICATION       2541
#define MQRC_ALREADY_JOINED            2542
#define MQRC_STANDBY_Q_MGR             2543
#define MQRC_RECONNECTING              2544
#define MQRC_RECONNECTED               2545
#define MQRC_RECONNECT_QMID_MISMATCH   2546
#define MQRC_RECONNECT_INCOMPATIBLE    2547
#define MQRC_RECONNECT_FAILED          2548
#define MQRC_CALL_INTERRUPTED          2549
#define MQRC_NO_SUBS_MATCHED           2550
#define MQRC_SELECTION_NOT_AVAILABLE   2551
#define MQRC_CHANNEL_SSL_WARNING       2552
#define MQRC_OCSP_URL_ERROR            2553
#define MQRC_CONTENT_ERROR             2554
#define MQRC_RECONNECT_Q_MGR_REQD      2555
#define MQRC_RECONNECT_TIMED_OUT       2556
#define MQRC_PUBLISH_EXIT_ERROR        2557
#define MQRC_COMMINFO_ERROR            2558
#define MQRC_DEF_SYNCPOINT_INHIBITED   2559
#define MQRC_MULTICAST_ONLY            2560
#define MQRC_DATA_SET_NOT_AVAILABLE    2561
#define MQRC_GROUPING_NOT_ALLOWED      2562
#define MQRC_GROUP_ADDRESS_ERROR       2563
#define MQRC_MULTICAST_CONFIG_ERROR    2564
#define MQRC_MULTICAST_INTERFACE_ERROR 2565
#define MQRC_MULTICAST_SEND_ERROR      2566
#define MQRC_MULTICAST_INTERNAL_ERROR  2567
#define MQRC_CONNECTION_NOT_AVAILABLE  2568
#define MQRC_SYNCPOINT_NOT_ALLOWED     2569
#define MQRC_SSL_ALT_PROVIDER_REQUIRED 2570
#define MQRC_MCAST_PUB_STATUS          2571
#define MQRC_MCAST_SUB_STATUS          2572
#define MQRC_PRECONN_EXIT_LOAD_ERROR   2573
#define MQRC_PRECONN_EXIT_NOT_FOUND    2574
#define MQRC_PRECONN_EXIT_ERROR        2575
#define MQRC_CD_ARRAY_ERROR            2576
#define MQRC_CHANNEL_BLOCKED           2577
#define MQRC_CHANNEL_BLOCKED_WARNING   2578
#define MQRC_SUBSCRIPTION_CREATE       2579
#define MQRC_SUBSCRIPTION_DELETE       2580
#define MQRC_SUBSCRIPTION_CHANGE       2581
#define MQRC_SUBSCRIPTION_REFRESH      2582
#define MQRC_INSTALLATION_MISMATCH     2583
#define MQRC_NOT_PRIVILEGED            2584
#define MQRC_PROPERTIES_DISABLED       2586
#define MQRC_HMSG_NOT_AVAILABLE        2587
#define MQRC_EXIT_PROPS_NOT_SUPPORTED  2588
#define MQRC_INSTALLATION_MISSING      2589
#define MQRC_FASTPATH_NOT_AVAILABLE    2590
#define MQRC_CIPHER_SPEC_NOT_SUITE_B   2591
#define MQRC_SUITE_B_ERROR             2592
#define MQRC_CERT_VAL_POLICY_ERROR     2593
#define MQRC_PASSWORD_PROTECTION_ERROR 2594
#define MQRC_CSP_ERROR                 2595
#define MQRC_CERT_LABEL_NOT_ALLOWED    2596
#define MQRC_ADMIN_TOPIC_STRING_ERROR  2598
#define MQRC_AMQP_NOT_AVAILABLE        2599
#define MQRC_CCDT_URL_ERROR            2600
#define MQRC_Q_MGR_RECONNECT_REQUESTED 2601
#define MQRC_BNO_ERROR                 2602
#define MQRC_OUTBOUND_SNI_NOT_VALID    2603
#define MQRC_HTTPS_KEYSTORE_ERROR      2604

/* Reasons of the data bag and the object interfaces */
#define MQRC_REOPEN_EXCL_INPUT_ERROR   6100
#define MQRC_REOPEN_INQUIRE_ERROR      6101
#define MQRC_REOPEN_SAVED_CONTEXT_ERR  6102
#define MQRC_REOPEN_TEMPORARY_Q_ERROR  6103
#define MQRC_ATTRIBUTE_LOCKED          6104
#define MQRC_CURSOR_NOT_VALID          6105
#define MQRC_ENCODING_ERROR            6106
#define MQRC_STRUC_ID_ERROR            6107
#define MQRC_NULL_POINTER              6108
#define MQRC_NO_CONNECTION_REFERENCE   6109
#define MQRC_NO_BUFFER                 6110
#define MQRC_BINARY_DATA_LENGTH_ERROR  6111
#define MQRC_BUFFER_NOT_AUTOMATIC      6112
#define MQRC_INSUFFICIENT_BUFFER       6113
#define MQRC_INSUFFICIENT_DATA         6114
#define MQRC_DATA_TRUNCATED            6115
#define MQRC_ZERO_LENGTH               6116
#define MQRC_NEGATIVE_LENGTH           6117
#define MQRC_NEGATIVE_OFFSET           6118
#define MQRC_INCONSISTENT_FORMAT       6119
#define MQRC_INCONSISTENT_OBJECT_STATE 6120
#define MQRC_CONTEXT_OBJECT_NOT_VALID  6121
#define MQRC_CONTEXT_OPEN_ERROR        6122
#define MQRC_STRUC_LENGTH_ERROR        6123
#define MQRC_NOT_CONNECTED             6124
#define MQRC_NOT_OPEN                  6125
#define MQRC_DISTRIBUTION_LIST_EMPTY   6126
#define MQRC_INCONSISTENT_OPEN_OPTIONS 6127
#define MQRC_WRONG_VERSION             6128
#define MQRC_REFERENCE_ERROR           6129
#define MQRC_XR_NOT_AVAILABLE          6130

/* Reason of MQSUB */
#define MQRC_SUB_JOIN_NOT_ALTERABLE 29440

/* -------------------------------------------------------------------------- */
/* Lengths of character and byte fields                                       */
/* -------------------------------------------------------------------------- */

#define MQ_ABEND_CODE_LENGTH           4
#define MQ_ACCOUNTING_TOKEN_LENGTH     32
#define MQ_AMQP_CLIENT_ID_LENGTH       256
#define MQ_APPL_DESC_LENGTH            64
#define MQ_APPL_FUNCTION_NAME_LENGTH   10
#define MQ_APPL_IDENTITY_DATA_LENGTH   32
#define MQ_APPL_NAME_LENGTH            28
#define MQ_APPL_ORIGIN_DATA_LENGTH     4
#define MQ_APPL_TAG_LENGTH             28
#define MQ_ARM_SUFFIX_LENGTH           2
#define MQ_ATTENTION_ID_LENGTH         4
#define MQ_AUTHENTICATOR_LENGTH        8
#define MQ_AUTH_INFO_CONN_NAME_LENGTH  264
#define MQ_AUTH_INFO_DESC_LENGTH       64
#define MQ_AUTH_INFO_NAME_LENGTH       48
#define MQ_AUTH_INFO_OCSP_URL_LENGTH   256
#define MQ_AUTO_REORG_CATALOG_LENGTH   44
#define MQ_AUTO_REORG_TIME_LENGTH      4
#define MQ_BATCH_INTERFACE_ID_LENGTH   8
#define MQ_BRIDGE_NAME_LENGTH          24
#define MQ_CANCEL_CODE_LENGTH          4
#define MQ_CERT_LABEL_LENGTH           64
#define MQ_CF_STRUC_DESC_LENGTH        64
#define MQ_CF_STRUC_NAME_LENGTH        12
#define MQ_CHANNEL_DATE_LENGTH         12
#define MQ_CHANNEL_DESC_LENGTH         64
#define MQ_CHANNEL_NAME_LENGTH         20
#define MQ_CHANNEL_TIME_LENGTH         8
#define MQ_CHINIT_SERVICE_PARM_LENGTH  32
#define MQ_CHLAUTH_DESC_LENGTH         64
#define MQ_CICS_FILE_NAME_LENGTH       8
#define MQ_CLIENT_ID_LENGTH            23
#define MQ_CLIENT_USER_ID_LENGTH       1024
#define MQ_CLUSTER_NAME_LENGTH         48
#define MQ_COMM_INFO_DESC_LENGTH       64
#define MQ_COMM_INFO_NAME_LENGTH       48
#define MQ_CONNECTION_ID_LENGTH        24
#define MQ_CONN_NAME_LENGTH            264
#define MQ_CONN_TAG_LENGTH             128
#define MQ_CORREL_ID_LENGTH            24
#define MQ_CREATION_DATE_LENGTH        12
#define MQ_CREATION_TIME_LENGTH        8
#define MQ_CSP_PASSWORD_LENGTH         256
#define MQ_CSP_TOKEN_LENGTH            8192
#define MQ_CUSTOM_LENGTH               128
#define MQ_DATE_LENGTH                 12
#define MQ_DISTINGUISHED_NAME_LENGTH   1024
#define MQ_DNS_GROUP_NAME_LENGTH       18
#define MQ_EXIT_DATA_LENGTH            32
#define MQ_EXIT_INFO_NAME_LENGTH       48
#define MQ_EXIT_NAME_LENGTH            128
#define MQ_EXIT_PD_AREA_LENGTH         48
#define MQ_EXIT_USER_AREA_LENGTH       16
#define MQ_FACILITY_LENGTH             8
#define MQ_FACILITY_LIKE_LENGTH        4
#define MQ_FORMAT_LENGTH               8
#define MQ_FUNCTION_LENGTH             4
#define MQ_GROUP_ID_LENGTH             24
#define MQ_INITIAL_KEY_LENGTH          256
#define MQ_INSTALLATION_DESC_LENGTH    64
#define MQ_INSTALLATION_NAME_LENGTH    16
#define MQ_INSTALLATION_PATH_LENGTH    256
#define MQ_JAAS_CONFIG_LENGTH          1024
#define MQ_LDAP_BASE_DN_LENGTH         1024
#define MQ_LDAP_CLASS_LENGTH           128
#define MQ_LDAP_FIELD_LENGTH           128
#define MQ_LDAP_MCA_USER_ID_LENGTH     1024
#define MQ_LDAP_PASSWORD_LENGTH        32
#define MQ_LISTENER_DESC_LENGTH        64
#define MQ_LISTENER_NAME_LENGTH        48
#define MQ_LOCAL_ADDRESS_LENGTH        48
#define MQ_LTERM_OVERRIDE_LENGTH       8
#define MQ_LUWID_LENGTH                16
#define MQ_LU_NAME_LENGTH              8
#define MQ_MAX_EXIT_NAME_LENGTH        128
#define MQ_MAX_LDAP_MCA_USER_ID_LENGTH 1024
#define MQ_MAX_MCA_USER_ID_LENGTH      64
#define MQ_MAX_PROPERTY_NAME_LENGTH    4095
#define MQ_MAX_USER_ID_LENGTH          64
#define MQ_MCA_JOB_NAME_LENGTH         28
#define MQ_MCA_NAME_LENGTH             20
#define MQ_MCA_USER_DATA_LENGTH        32
#define MQ_MCA_USER_ID_LENGTH          12
#define MQ_MFS_MAP_NAME_LENGTH         8
#define MQ_MODE_NAME_LENGTH            8
#define MQ_MSG_HEADER_LENGTH           4000
#define MQ_MSG_ID_LENGTH               24
#define MQ_MSG_TOKEN_LENGTH            16
#define MQ_NAMELIST_DESC_LENGTH        64
#define MQ_NAMELIST_NAME_LENGTH        48
#define MQ_NHA_INSTANCE_NAME_LENGTH    48
#define MQ_OBJECT_INSTANCE_ID_LENGTH   24
#define MQ_OBJECT_NAME_LENGTH          48
#define MQ_OPERATOR_MESSAGE_LENGTH     4
#define MQ_PASSWORD_LENGTH             12
#define MQ_PASS_TICKET_APPL_LENGTH     8
#define MQ_PROCESS_APPL_ID_LENGTH      256
#define MQ_PROCESS_DESC_LENGTH         64
#define MQ_PROCESS_ENV_DATA_LENGTH     128
#define MQ_PROCESS_NAME_LENGTH         48
#define MQ_PROCESS_USER_DATA_LENGTH    128
#define MQ_PROGRAM_NAME_LENGTH         20
#define MQ_PUT_APPL_NAME_LENGTH        28
#define MQ_PUT_DATE_LENGTH             8
#define MQ_PUT_TIME_LENGTH             8
#define MQ_QSG_NAME_LENGTH             4
#define MQ_Q_DESC_LENGTH               64
#define MQ_Q_MGR_DESC_LENGTH           64
#define MQ_Q_MGR_IDENTIFIER_LENGTH     48
#define MQ_Q_MGR_NAME_LENGTH           48
#define MQ_Q_NAME_LENGTH               48
#define MQ_REMOTE_SYS_ID_LENGTH        4
#define MQ_SECURITY_ID_LENGTH          40
#define MQ_SELECTOR_LENGTH             10240
#define MQ_SERVICE_ARGS_LENGTH         255
#define MQ_SERVICE_COMMAND_LENGTH      255
#define MQ_SERVICE_DESC_LENGTH         64
#define MQ_SERVICE_NAME_LENGTH         32
#define MQ_SERVICE_PATH_LENGTH         255
#define MQ_SERVICE_STEP_LENGTH         8
#define MQ_SHORT_CONN_NAME_LENGTH      20
#define MQ_SHORT_DNAME_LENGTH          256
#define MQ_SMDS_NAME_LENGTH            4
#define MQ_SSL_CIPHER_SPEC_LENGTH      32
#define MQ_SSL_CIPHER_SUITE_LENGTH     32
#define MQ_SSL_CRYPTO_HARDWARE_LENGTH  256
#define MQ_SSL_ENCRYP_KEY_REPO_PWD_LEN 1536
#define MQ_SSL_HANDSHAKE_STAGE_LENGTH  32
#define MQ_SSL_KEY_LIBRARY_LENGTH      44
#define MQ_SSL_KEY_MEMBER_LENGTH       8
#define MQ_SSL_KEY_PASSPHRASE_LENGTH   1024
#define MQ_SSL_KEY_REPOSITORY_LENGTH   256
#define MQ_SSL_KEY_REPO_PWD_LEN        1024
#define MQ_SSL_PEER_NAME_LENGTH        1024
#define MQ_SSL_SHORT_PEER_NAME_LENGTH  256
#define MQ_START_CODE_LENGTH           4
#define MQ_STORAGE_CLASS_DESC_LENGTH   64
#define MQ_STORAGE_CLASS_LENGTH        8
#define MQ_SUB_IDENTITY_LENGTH         128
#define MQ_SUB_POINT_LENGTH            128
#define MQ_SUITE_B_SIZE                4
#define MQ_TCP_NAME_LENGTH             8
#define MQ_TEMPORARY_Q_PREFIX_LENGTH   32
#define MQ_TIME_LENGTH                 8
#define MQ_TOPIC_DESC_LENGTH           64
#define MQ_TOPIC_NAME_LENGTH           48
#define MQ_TOPIC_STR_LENGTH            10240
#define MQ_TOTAL_EXIT_DATA_LENGTH      999
#define MQ_TOTAL_EXIT_NAME_LENGTH      999
#define MQ_TPIPE_NAME_LENGTH           8
#define MQ_TP_NAME_LENGTH              64
#define MQ_TRANSACTION_ID_LENGTH       4
#define MQ_TRAN_INSTANCE_ID_LENGTH     16
#define MQ_TRIGGER_DATA_LENGTH         64
#define MQ_TRIGGER_PROGRAM_NAME_LENGTH 8
#define MQ_TRIGGER_TERM_ID_LENGTH      4
#define MQ_TRIGGER_TRANS_ID_LENGTH     4
#define MQ_USER_ID_LENGTH              12
#define MQ_VERSION_LENGTH              8
#define MQ_XCF_GROUP_NAME_LENGTH       8
#define MQ_XCF_MEMBER_NAME_LENGTH      16

/* -------------------------------------------------------------------------- */
/* Values shared by several structures                                        */
/* -------------------------------------------------------------------------- */

/* Encoding of numbers in message data */
#define MQENC_NATIVE              0x00000222
#define MQENC_INTEGER_MASK        0x0000000F
#define MQENC_DECIMAL_MASK        0x000000F0
#define MQENC_FLOAT_MASK          0x00000F00
#define MQENC_RESERVED_MASK       (-4096) /* 0xFFFFF000 */
#define MQENC_INTEGER_UNDEFINED   0x00000000
#define MQENC_INTEGER_NORMAL      0x00000001
#define MQENC_INTEGER_REVERSED    0x00000002
#define MQENC_DECIMAL_UNDEFINED   0x00000000
#define MQENC_DECIMAL_NORMAL      0x00000010
#define MQENC_DECIMAL_REVERSED    0x00000020
#define MQENC_FLOAT_UNDEFINED     0x00000000
#define MQENC_FLOAT_IEEE_NORMAL   0x00000100
#define MQENC_FLOAT_IEEE_REVERSED 0x00000200
#define MQENC_FLOAT_S390          0x00000300
#define MQENC_FLOAT_TNS           0x00000400
#define MQENC_NORMAL              0x00000111
#define MQENC_REVERSED            0x00000222
#define MQENC_S390                0x00000311
#define MQENC_TNS                 0x00000411
#define MQENC_AS_PUBLISHED        (-1) /* 0xFFFFFFFF */

/* Character set identifiers */
#define MQCCSI_UNDEFINED    0
#define MQCCSI_DEFAULT      0
#define MQCCSI_Q_MGR        0
#define MQCCSI_INHERIT      (-2)
#define MQCCSI_EMBEDDED     (-1)
#define MQCCSI_APPL         (-3)
#define MQCCSI_AS_PUBLISHED (-4)

/* Format names of message data */
#define MQFMT_NONE                     "        "
#define MQFMT_NONE_ARRAY               ' ',' ',' ',' ',' ',' ',' ',' '
#define MQFMT_ADMIN                    "MQADMIN "
#define MQFMT_ADMIN_ARRAY              'M','Q','A','D','M','I','N',' '
#define MQFMT_AMQP                     "MQAMQP  "
#define MQFMT_AMQP_ARRAY               'M','Q','A','M','Q','P',' ',' '
#define MQFMT_CHANNEL_COMPLETED        "MQCHCOM "
#define MQFMT_CHANNEL_COMPLETED_ARRAY  'M','Q','C','H','C','O','M',' '
#define MQFMT_CICS                     "MQCICS  "
#define MQFMT_CICS_ARRAY               'M','Q','C','I','C','S',' ',' '
#define MQFMT_COMMAND_1                "MQCMD1  "
#define MQFMT_COMMAND_1_ARRAY          'M','Q','C','M','D','1',' ',' '
#define MQFMT_COMMAND_2                "MQCMD2  "
#define MQFMT_COMMAND_2_ARRAY          'M','Q','C','M','D','2',' ',' '
#define MQFMT_DEAD_LETTER_HEADER       "MQDEAD  "
#define MQFMT_DEAD_LETTER_HEADER_ARRAY 'M','Q','D','E','A','D',' ',' '
#define MQFMT_DIST_HEADER              "MQHDIST "
#define MQFMT_DIST_HEADER_ARRAY        'M','Q','H','D','I','S','T',' '
#define MQFMT_EMBEDDED_PCF             "MQHEPCF "
#define MQFMT_EMBEDDED_PCF_ARRAY       'M','Q','H','E','P','C','F',' '
#define MQFMT_EVENT                    "MQEVENT "
#define MQFMT_EVENT_ARRAY              'M','Q','E','V','E','N','T',' '
#define MQFMT_IMS                      "MQIMS   "
#define MQFMT_IMS_ARRAY                'M','Q','I','M','S',' ',' ',' '
#define MQFMT_IMS_VAR_STRING           "MQIMSVS "
#define MQFMT_IMS_VAR_STRING_ARRAY     'M','Q','I','M','S','V','S',' '
#define MQFMT_MD_EXTENSION             "MQHMDE  "
#define MQFMT_MD_EXTENSION_ARRAY       'M','Q','H','M','D','E',' ',' '
#define MQFMT_PCF                      "MQPCF   "
#define MQFMT_PCF_ARRAY                'M','Q','P','C','F',' ',' ',' '
#define MQFMT_REF_MSG_HEADER           "MQHREF  "
#define MQFMT_REF_MSG_HEADER_ARRAY     'M','Q','H','R','E','F',' ',' '
#define MQFMT_RF_HEADER                "MQHRF   "
#define MQFMT_RF_HEADER_ARRAY          'M','Q','H','R','F',' ',' ',' '
#define MQFMT_RF_HEADER_1              "MQHRF   "
#define MQFMT_RF_HEADER_1_ARRAY        'M','Q','H','R','F',' ',' ',' '
#define MQFMT_RF_HEADER_2              "MQHRF2  "
#define MQFMT_RF_HEADER_2_ARRAY        'M','Q','H','R','F','2',' ',' '
#define MQFMT_STRING                   "MQSTR   "
#define MQFMT_STRING_ARRAY             'M','Q','S','T','R',' ',' ',' '
#define MQFMT_TRIGGER                  "MQTRIG  "
#define MQFMT_TRIGGER_ARRAY            'M','Q','T','R','I','G',' ',' '
#define MQFMT_WORK_INFO_HEADER         "MQHWIH  "
#define MQFMT_WORK_INFO_HEADER_ARRAY   'M','Q','H','W','I','H',' ',' '
#define MQFMT_XMIT_Q_HEADER            "MQXMIT  "
#define MQFMT_XMIT_Q_HEADER_ARRAY      'M','Q','X','M','I','T',' ',' '

/* Security identifier, and the type in its second byte */
#define MQSID_NONE       "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0" \
                         "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0" \
                         "\0\0\0\0\0\0\0\0"
#define MQSID_NONE_ARRAY '\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0', \
                         '\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0', \
                         '\0','\0','\0','\0','\0','\0','\0','\0'

#define MQSIDT_NONE            '\x00'
#define MQSIDT_NT_SECURITY_ID  '\x01'
#define MQSIDT_WAS_SECURITY_ID '\x02'

/* Object types */
#define MQOT_NONE              0
#define MQOT_Q                 1
#define MQOT_NAMELIST          2
#define MQOT_PROCESS           3
#define MQOT_STORAGE_CLASS     4
#define MQOT_Q_MGR             5
#define MQOT_CHANNEL           6
#define MQOT_AUTH_INFO         7
#define MQOT_TOPIC             8
#define MQOT_COMM_INFO         9
#define MQOT_CF_STRUC          10
#define MQOT_LISTENER          11
#define MQOT_SERVICE           12
#define MQOT_RESERVED_1        999
#define MQOT_ALL               1001
#define MQOT_ALIAS_Q           1002
#define MQOT_MODEL_Q           1003
#define MQOT_LOCAL_Q           1004
#define MQOT_REMOTE_Q          1005
#define MQOT_SENDER_CHANNEL    1007
#define MQOT_SERVER_CHANNEL    1008
#define MQOT_REQUESTER_CHANNEL 1009
#define MQOT_RECEIVER_CHANNEL  1010
#define MQOT_CURRENT_CHANNEL   1011
#define MQOT_SAVED_CHANNEL     1012
#define MQOT_SVRCONN_CHANNEL   1013
#define MQOT_CLNTCONN_CHANNEL  1014
#define MQOT_SHORT_CHANNEL     1015
#define MQOT_CHLAUTH           1016
#define MQOT_REMOTE_Q_MGR_NAME 1017
#define MQOT_PROT_POLICY       1019
#define MQOT_TT_CHANNEL        1020
#define MQOT_AMQP_CHANNEL      1021
#define MQOT_AUTH_REC          1022

/* Application types (MQMD.PutApplType, MQTM.ApplType) */
#define MQAT_UNKNOWN           (-1)
#define MQAT_NO_CONTEXT        0
#define MQAT_CICS              1
#define MQAT_MVS               2
#define MQAT_OS390             2
#define MQAT_ZOS               2
#define MQAT_IMS               3
#define MQAT_OS2               4
#define MQAT_DOS               5
#define MQAT_AIX               6
#define MQAT_UNIX              6
#define MQAT_DEFAULT           6
#define MQAT_QMGR              7
#define MQAT_OS400             8
#define MQAT_WINDOWS           9
#define MQAT_CICS_VSE          10
#define MQAT_WINDOWS_NT        11
#define MQAT_VMS               12
#define MQAT_GUARDIAN          13
#define MQAT_NSK               13
#define MQAT_VOS               14
#define MQAT_OPEN_TP1          15
#define MQAT_VM                18
#define MQAT_IMS_BRIDGE        19
#define MQAT_XCF               20
#define MQAT_CICS_BRIDGE       21
#define MQAT_NOTES_AGENT       22
#define MQAT_TPF               23
#define MQAT_USER              25
#define MQAT_BROKER            26
#define MQAT_QMGR_PUBLISH      26
#define MQAT_JAVA              28
#define MQAT_DQM               29
#define MQAT_CHANNEL_INITIATOR 30
#define MQAT_WLM               31
#define MQAT_BATCH             32
#define MQAT_RRS_BATCH         33
#define MQAT_SIB               34
#define MQAT_SYSTEM_EXTENSION  35
#define MQAT_MCAST_PUBLISH     36
#define MQAT_AMQP              37
#define MQAT_USER_FIRST        65536
#define MQAT_USER_LAST         999999999

/* -------------------------------------------------------------------------- */
/* MQCHARV: string of variable length                                         */
/* -------------------------------------------------------------------------- */

/* Length of a string that ends with a null character (VSLength) */
#define MQVS_NULL_TERMINATED (-1)

struct tagMQCHARV {
    MQPTR  VSPtr;                            /* the string, or null: then VSOffset counts */
    MQLONG VSOffset;                         /* from the start of the structure that holds this one */
    MQLONG VSBufSize;                        /* for output; 0: no more than VSLength */
    MQLONG VSLength;                         /* in bytes */
    MQLONG VSCCSID;
};

#define MQCHARV_DEFAULT          \
    NULL,        /* VSPtr */     \
    0,           /* VSOffset */  \
    0,           /* VSBufSize */ \
    0,           /* VSLength */  \
    MQCCSI_APPL  /* VSCCSID */

/* -------------------------------------------------------------------------- */
/* MQBNO: balancing of applications over queue managers                       */
/* -------------------------------------------------------------------------- */

#define MQBNO_STRUC_ID        "BNO "
#define MQBNO_STRUC_ID_ARRAY  'B','N','O',' '
#define MQBNO_VERSION_1       1
#define MQBNO_CURRENT_VERSION 1
#define MQBNO_LENGTH_1        20
#define MQBNO_CURRENT_LENGTH  20

/* Balancing types (ApplType) */
#define MQBNO_BALTYPE_SIMPLE     0
#define MQBNO_BALTYPE_REQREP     1
#define MQBNO_BALTYPE_RA_MANAGED 65536

/* Time-out, in seconds */
#define MQBNO_TIMEOUT_AS_DEFAULT (-1)
#define MQBNO_TIMEOUT_IMMEDIATE  0
#define MQBNO_TIMEOUT_NEVER      (-2)

/* Options */
#define MQBNO_OPTIONS_NONE         0x00000000
#define MQBNO_OPTIONS_IGNORE_TRANS 0x00000001

struct tagMQBNO {
    MQCHAR4 StrucId;
    MQLONG  Version;
    MQLONG  ApplType;                        /* MQBNO_BALTYPE_ */
    MQLONG  Timeout;                         /* in seconds, or MQBNO_TIMEOUT_ */
    MQLONG  Options;
};

#define MQBNO_DEFAULT                        \
    {MQBNO_STRUC_ID_ARRAY},   /* StrucId */  \
    MQBNO_VERSION_1,          /* Version */  \
    MQBNO_BALTYPE_SIMPLE,     /* ApplType */ \
    MQBNO_TIMEOUT_AS_DEFAULT, /* Timeout */  \
    MQBNO_OPTIONS_NONE        /* Options */

/* -------------------------------------------------------------------------- */
/* MQCSP: user identifier and password of a connection                        */
/* -------------------------------------------------------------------------- */

/* Versions 2 and 3 came with later levels; the fields that they add are not declared. */

#define MQCSP_STRUC_ID        "CSP "
#define MQCSP_STRUC_ID_ARRAY  'C','S','P',' '
#define MQCSP_VERSION_1       1
#define MQCSP_VERSION_2       2
#define MQCSP_VERSION_3       3
#define MQCSP_CURRENT_VERSION 1
#define MQCSP_LENGTH_1        MQ_BY_WIDTH(48, 56)
#define MQCSP_LENGTH_2        MQ_BY_WIDTH(68, 80)
#define MQCSP_LENGTH_3        MQ_BY_WIDTH(88, 104)
#define MQCSP_CURRENT_LENGTH  MQ_BY_WIDTH(48, 56)

/* Authentication types */
#define MQCSP_AUTH_NONE            0
#define MQCSP_AUTH_USER_ID_AND_PWD 1
#define MQCSP_AUTH_ID_TOKEN        2

struct tagMQCSP {
    MQCHAR4 StrucId;
    MQLONG  Version;
    MQLONG  AuthenticationType;
    MQBYTE4 Reserved1;
    MQPTR   CSPUserIdPtr;
    MQLONG  CSPUserIdOffset;                 /* from the start of the structure, when the pointer is null */
    MQLONG  CSPUserIdLength;
    MQBYTE8 Reserved2;
    MQPTR   CSPPasswordPtr;
    MQLONG  CSPPasswordOffset;
    MQLONG  CSPPasswordLength;
};

#define MQCSP_DEFAULT                                \
    {MQCSP_STRUC_ID_ARRAY}, /* StrucId */            \
    MQCSP_VERSION_1,        /* Version */            \
    MQCSP_AUTH_NONE,        /* AuthenticationType */ \
    {0},                    /* Reserved1 */          \
    NULL,                   /* CSPUserIdPtr */       \
    0,                      /* CSPUserIdOffset */    \
    0,                      /* CSPUserIdLength */    \
    {0},                    /* Reserved2 */          \
    NULL,                   /* CSPPasswordPtr */     \
    0,                      /* CSPPasswordOffset */  \
    0                       /* CSPPasswordLength */

/* -------------------------------------------------------------------------- */
/* MQAIR: where to ask about revoked certificates                             */
/* -------------------------------------------------------------------------- */

#define MQAIR_STRUC_ID        "AIR "
#define MQAIR_STRUC_ID_ARRAY  'A','I','R',' '
#define MQAIR_VERSION_1       1
#define MQAIR_VERSION_2       2
#define MQAIR_CURRENT_VERSION 2
#define MQAIR_LENGTH_1        MQ_BY_WIDTH(320, 328)
#define MQAIR_LENGTH_2        MQ_BY_WIDTH(576, 584)
#define MQAIR_CURRENT_LENGTH  MQ_BY_WIDTH(576, 584)

/* Types of authentication information */
#define MQAIT_ALL       0
#define MQAIT_CRL_LDAP  1
#define MQAIT_OCSP      2
#define MQAIT_IDPW_OS   3
#define MQAIT_IDPW_LDAP 4

struct tagMQAIR {
    MQCHAR4   StrucId;
    MQLONG    Version;
    MQLONG    AuthInfoType;                  /* MQAIT_ */
    MQCHAR264 AuthInfoConnName;              /* LDAP server: host(port) */
    PMQCHAR   LDAPUserNamePtr;
    MQLONG    LDAPUserNameOffset;
    MQLONG    LDAPUserNameLength;
    MQCHAR32  LDAPPassword;
    /* version 2 */
    MQCHAR256 OCSPResponderURL;              /* URL of the OCSP responder */
};

#define MQAIR_DEFAULT                                \
    {MQAIR_STRUC_ID_ARRAY}, /* StrucId */            \
    MQAIR_VERSION_1,        /* Version */            \
    MQAIT_CRL_LDAP,         /* AuthInfoType */       \
    {""},                   /* AuthInfoConnName */   \
    NULL,                   /* LDAPUserNamePtr */    \
    0,                      /* LDAPUserNameOffset */ \
    0,                      /* LDAPUserNameLength */ \
    {""},                   /* LDAPPassword */       \
    {""}                    /* OCSPResponderURL */

/* -------------------------------------------------------------------------- */
/* MQSCO: TLS configuration of a client connection                            */
/* -------------------------------------------------------------------------- */

/* Versions 6 and 7 came with later levels; the fields that they add are not declared. */

#define MQSCO_STRUC_ID        "SCO "
#define MQSCO_STRUC_ID_ARRAY  'S','C','O',' '
#define MQSCO_VERSION_1       1
#define MQSCO_VERSION_2       2
#define MQSCO_VERSION_3       3
#define MQSCO_VERSION_4       4
#define MQSCO_VERSION_5       5
#define MQSCO_VERSION_6       6
#define MQSCO_VERSION_7       7
#define MQSCO_CURRENT_VERSION 5
#define MQSCO_LENGTH_1        MQ_BY_WIDTH(532, 536)
#define MQSCO_LENGTH_2        MQ_BY_WIDTH(540, 544)
#define MQSCO_LENGTH_3        MQ_BY_WIDTH(556, 560)
#define MQSCO_LENGTH_4        MQ_BY_WIDTH(560, 568)
#define MQSCO_LENGTH_5        MQ_BY_WIDTH(624, 632)
#define MQSCO_LENGTH_6        MQ_BY_WIDTH(636, 648)
#define MQSCO_LENGTH_7        MQ_BY_WIDTH(656, 672)
#define MQSCO_CURRENT_LENGTH  MQ_BY_WIDTH(624, 632)

/* Bytes between two negotiations of the secret key */
#define MQSCO_RESET_COUNT_DEFAULT 0

/* Suite B strengths */
#define MQ_SUITE_B_NOT_AVAILABLE 0
#define MQ_SUITE_B_NONE          1
#define MQ_SUITE_B_128_BIT       2
#define MQ_SUITE_B_192_BIT       4

/* Certificate validation policies */
#define MQ_CERT_VAL_POLICY_DEFAULT 0
#define MQ_CERT_VAL_POLICY_ANY     0
#define MQ_CERT_VAL_POLICY_RFC5280 1
#define MQ_CERT_VAL_POLICY_NONE    2

/* FIPS-certified cryptography */
#define MQSSL_FIPS_NO  0
#define MQSSL_FIPS_YES 1

/* Checks of HTTPS certificates */
#define MQ_HTTPSCERTVAL_DEFAULT    0
#define MQ_HTTPSCERTVAL_ANY        1
#define MQ_HTTPSCERTVAL_NONE       2
#define MQ_HTTPSCERTVAL_HOSTNAMECN 3
#define MQ_HTTPSCERTREV_DEFAULT    0
#define MQ_HTTPSCERTREV_REQUIRED   1
#define MQ_HTTPSCERTREV_DISABLED   2
#define MQ_HTTPSCERTREV_OPTIONAL   3

struct tagMQSCO {
    MQCHAR4   StrucId;
    MQLONG    Version;
    MQCHAR256 KeyRepository;                 /* path without the file ending */
    MQCHAR256 CryptoHardware;
    MQLONG    AuthInfoRecCount;
    MQLONG    AuthInfoRecOffset;
    PMQAIR    AuthInfoRecPtr;                /* array of AuthInfoRecCount records */
    /* version 2 */
    MQLONG    KeyResetCount;                 /* in bytes; 0: never */
    MQLONG    FipsRequired;
    /* version 3 */
    MQLONG    EncryptionPolicySuiteB[4];
    /* version 4 */
    MQLONG    CertificateValPolicy;          /* MQ_CERT_VAL_POLICY_ */
    /* version 5 */
    MQCHAR64  CertificateLabel;
};

#define MQSCO_DEFAULT                                                        \
    {MQSCO_STRUC_ID_ARRAY},                     /* StrucId */                \
    MQSCO_VERSION_1,                            /* Version */                \
    {""},                                       /* KeyRepository */          \
    {""},                                       /* CryptoHardware */         \
    0,                                          /* AuthInfoRecCount */       \
    0,                                          /* AuthInfoRecOffset */      \
    NULL,                                       /* AuthInfoRecPtr */         \
    MQSCO_RESET_COUNT_DEFAULT,                  /* KeyResetCount */          \
    MQSSL_FIPS_NO,                              /* FipsRequired */           \
    {MQ_SUITE_B_NONE, MQ_SUITE_B_NOT_AVAILABLE, /* EncryptionPolicySuiteB */ \
     MQ_SUITE_B_NOT_AVAILABLE, MQ_SUITE_B_NOT_AVAILABLE},                    \
    MQ_CERT_VAL_POLICY_DEFAULT,                 /* CertificateValPolicy */   \
    {""}                                        /* CertificateLabel */

/* -------------------------------------------------------------------------- */
/* MQCNO: options of MQCONNX                                                  */
/* -------------------------------------------------------------------------- */

#define MQCNO_STRUC_ID        "CNO "
#define MQCNO_STRUC_ID_ARRAY  'C','N','O',' '
#define MQCNO_VERSION_1       1
#define MQCNO_VERSION_2       2
#define MQCNO_VERSION_3       3
#define MQCNO_VERSION_4       4
#define MQCNO_VERSION_5       5
#define MQCNO_VERSION_6       6
#define MQCNO_VERSION_7       7
#define MQCNO_VERSION_8       8
#define MQCNO_CURRENT_VERSION 8
#define MQCNO_LENGTH_1        12
#define MQCNO_LENGTH_2        MQ_BY_WIDTH(20, 24)
#define MQCNO_LENGTH_3        MQ_BY_WIDTH(148, 152)
#define MQCNO_LENGTH_4        MQ_BY_WIDTH(156, 168)
#define MQCNO_LENGTH_5        MQ_BY_WIDTH(188, 200)
#define MQCNO_LENGTH_6        MQ_BY_WIDTH(208, 224)
#define MQCNO_LENGTH_7        MQ_BY_WIDTH(240, 256)
#define MQCNO_LENGTH_8        MQ_BY_WIDTH(252, 272)
#define MQCNO_CURRENT_LENGTH  MQ_BY_WIDTH(252, 272)

/* Connect options */
#define MQCNO_STANDARD_BINDING         0x00000000
#define MQCNO_FASTPATH_BINDING         0x00000001
#define MQCNO_SERIALIZE_CONN_TAG_Q_MGR 0x00000002
#define MQCNO_SERIALIZE_CONN_TAG_QSG   0x00000004
#define MQCNO_RESTRICT_CONN_TAG_Q_MGR  0x00000008
#define MQCNO_RESTRICT_CONN_TAG_QSG    0x00000010
#define MQCNO_HANDLE_SHARE_NONE        0x00000020
#define MQCNO_HANDLE_SHARE_BLOCK       0x00000040
#define MQCNO_HANDLE_SHARE_NO_BLOCK    0x00000080
#define MQCNO_SHARED_BINDING           0x00000100
#define MQCNO_ISOLATED_BINDING         0x00000200
#define MQCNO_LOCAL_BINDING            0x00000400
#define MQCNO_CLIENT_BINDING           0x00000800
#define MQCNO_ACCOUNTING_MQI_ENABLED   0x00001000
#define MQCNO_ACCOUNTING_MQI_DISABLED  0x00002000
#define MQCNO_ACCOUNTING_Q_ENABLED     0x00004000
#define MQCNO_ACCOUNTING_Q_DISABLED    0x00008000
#define MQCNO_NO_CONV_SHARING          0x00010000
#define MQCNO_ALL_CONVS_SHARE          0x00040000
#define MQCNO_CD_FOR_OUTPUT_ONLY       0x00080000
#define MQCNO_USE_CD_SELECTION         0x00100000
#define MQCNO_GENERATE_CONN_TAG        0x00200000
#define MQCNO_RECONNECT_AS_DEF         0x00000000
#define MQCNO_RECONNECT                0x01000000
#define MQCNO_RECONNECT_DISABLED       0x02000000
#define MQCNO_RECONNECT_Q_MGR          0x04000000
#define MQCNO_ACTIVITY_TRACE_ENABLED   0x08000000
#define MQCNO_ACTIVITY_TRACE_DISABLED  0x10000000
#define MQCNO_NONE                     0x00000000

/* Connection tag, connection identifier and application name */
#define MQCT_NONE       "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0" \
                        "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0" \
                        "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0" \
                        "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0" \
                        "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0" \
                        "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0" \
                        "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0" \
                        "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"
#define MQCT_NONE_ARRAY '\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0', \
                        '\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0', \
                        '\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0', \
                        '\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0', \
                        '\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0', \
                        '\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0', \
                        '\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0', \
                        '\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0'

#define MQCONNID_NONE       "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0" \
                            "\0\0\0\0\0\0\0\0"
#define MQCONNID_NONE_ARRAY '\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0', \
                            '\0','\0','\0','\0','\0','\0','\0','\0'

#define MQAN_NONE       "                            "
#define MQAN_NONE_ARRAY ' ',' ',' ',' ',' ',' ',' ',' ',' ',' ',' ',' ',' ',' ',' ',' ', \
                        ' ',' ',' ',' ',' ',' ',' ',' ',' ',' ',' ',' '

struct tagMQCNO {
    MQCHAR4   StrucId;
    MQLONG    Version;
    MQLONG    Options;
    /* version 2 */
    MQLONG    ClientConnOffset;
    MQPTR     ClientConnPtr;                 /* to an MQCD */
    /* version 3 */
    MQBYTE128 ConnTag;                       /* chosen by the application, or returned */
    /* version 4 */
    PMQSCO    SSLConfigPtr;
    MQLONG    SSLConfigOffset;
    /* version 5 */
    MQBYTE24  ConnectionId;                  /* returned */
    MQLONG    SecurityParmsOffset;
    PMQCSP    SecurityParmsPtr;
    /* version 6 */
    PMQCHAR   CCDTUrlPtr;
    MQLONG    CCDTUrlOffset;
    MQLONG    CCDTUrlLength;                 /* in bytes */
    MQBYTE8   Reserved;
    /* version 7 */
    MQCHAR28  ApplName;                      /* blank: the name of the program */
    MQBYTE4   Reserved2;
    /* version 8 */
    PMQBNO    BalanceParmsPtr;
    MQLONG    BalanceParmsOffset;
    MQBYTE4   Reserved3;
};

#define MQCNO_DEFAULT                                 \
    {MQCNO_STRUC_ID_ARRAY}, /* StrucId */             \
    MQCNO_VERSION_1,        /* Version */             \
    MQCNO_NONE,             /* Options */             \
    0,                      /* ClientConnOffset */    \
    NULL,                   /* ClientConnPtr */       \
    {MQCT_NONE_ARRAY},      /* ConnTag */             \
    NULL,                   /* SSLConfigPtr */        \
    0,                      /* SSLConfigOffset */     \
    {MQCONNID_NONE_ARRAY},  /* ConnectionId */        \
    0,                      /* SecurityParmsOffset */ \
    NULL,                   /* SecurityParmsPtr */    \
    NULL,                   /* CCDTUrlPtr */          \
    0,                      /* CCDTUrlOffset */       \
    0,                      /* CCDTUrlLength */       \
    {0},                    /* Reserved */            \
    {MQAN_NONE_ARRAY},      /* ApplName */            \
    {0},                    /* Reserved2 */           \
    NULL,                   /* BalanceParmsPtr */     \
    0,                      /* BalanceParmsOffset */  \
    {0}                     /* Reserved3 */

/* -------------------------------------------------------------------------- */
/* MQOPEN and MQCLOSE                                                         */
/* -------------------------------------------------------------------------- */

/* Open options */
#define MQOO_BIND_AS_Q_DEF            0x00000000
#define MQOO_READ_AHEAD_AS_Q_DEF      0x00000000
#define MQOO_INPUT_AS_Q_DEF           0x00000001
#define MQOO_INPUT_SHARED             0x00000002
#define MQOO_INPUT_EXCLUSIVE          0x00000004
#define MQOO_BROWSE                   0x00000008
#define MQOO_OUTPUT                   0x00000010
#define MQOO_INQUIRE                  0x00000020
#define MQOO_SET                      0x00000040
#define MQOO_SAVE_ALL_CONTEXT         0x00000080
#define MQOO_PASS_IDENTITY_CONTEXT    0x00000100
#define MQOO_PASS_ALL_CONTEXT         0x00000200
#define MQOO_SET_IDENTITY_CONTEXT     0x00000400
#define MQOO_SET_ALL_CONTEXT          0x00000800
#define MQOO_ALTERNATE_USER_AUTHORITY 0x00001000
#define MQOO_FAIL_IF_QUIESCING        0x00002000
#define MQOO_BIND_ON_OPEN             0x00004000
#define MQOO_BIND_NOT_FIXED           0x00008000
#define MQOO_RESOLVE_NAMES            0x00010000
#define MQOO_CO_OP                    0x00020000
#define MQOO_RESOLVE_LOCAL_Q          0x00040000
#define MQOO_RESOLVE_LOCAL_TOPIC      0x00040000
#define MQOO_NO_READ_AHEAD            0x00080000
#define MQOO_READ_AHEAD               0x00100000
#define MQOO_NO_MULTICAST             0x00200000
#define MQOO_BIND_ON_GROUP            0x00400000

/* Close options */
#define MQCO_IMMEDIATE    0x00000000
#define MQCO_NONE         0x00000000
#define MQCO_DELETE       0x00000001
#define MQCO_DELETE_PURGE 0x00000002
#define MQCO_KEEP_SUB     0x00000004
#define MQCO_REMOVE_SUB   0x00000008
#define MQCO_QUIESCE      0x00000020

/* -------------------------------------------------------------------------- */
/* MQOD: object descriptor                                                    */
/* -------------------------------------------------------------------------- */

#define MQOD_STRUC_ID        "OD  "
#define MQOD_STRUC_ID_ARRAY  'O','D',' ',' '
#define MQOD_VERSION_1       1
#define MQOD_VERSION_2       2
#define MQOD_VERSION_3       3
#define MQOD_VERSION_4       4
#define MQOD_CURRENT_VERSION 4
#define MQOD_LENGTH_1        168
#define MQOD_LENGTH_2        MQ_BY_WIDTH(200, 208)
#define MQOD_LENGTH_3        MQ_BY_WIDTH(336, 344)
#define MQOD_LENGTH_4        MQ_BY_WIDTH(400, 424)
#define MQOD_CURRENT_LENGTH  MQ_BY_WIDTH(400, 424)

struct tagMQOD {
    MQCHAR4  StrucId;
    MQLONG   Version;
    MQLONG   ObjectType;                     /* MQOT_ */
    MQCHAR48 ObjectName;
    MQCHAR48 ObjectQMgrName;
    MQCHAR48 DynamicQName;                   /* pattern, for a model queue */
    MQCHAR12 AlternateUserId;
    /* version 2 */
    MQLONG   RecsPresent;                    /* above 0: a distribution list */
    MQLONG   KnownDestCount;
    MQLONG   UnknownDestCount;
    MQLONG   InvalidDestCount;
    MQLONG   ObjectRecOffset;
    MQLONG   ResponseRecOffset;
    MQPTR    ObjectRecPtr;                   /* array of MQOR */
    MQPTR    ResponseRecPtr;                 /* array of MQRR */
    /* version 3 */
    MQBYTE40 AlternateSecurityId;
    MQCHAR48 ResolvedQName;                  /* returned */
    MQCHAR48 ResolvedQMgrName;               /* returned */
    /* version 4 */
    MQCHARV  ObjectString;
    MQCHARV  SelectionString;
    MQCHARV  ResObjectString;                /* returned */
    MQLONG   ResolvedType;                   /* returned, MQOT_ */
};

#define MQOD_DEFAULT                                 \
    {MQOD_STRUC_ID_ARRAY}, /* StrucId */             \
    MQOD_VERSION_1,        /* Version */             \
    MQOT_Q,                /* ObjectType */          \
    {""},                  /* ObjectName */          \
    {""},                  /* ObjectQMgrName */      \
    {"AMQ.*"},             /* DynamicQName */        \
    {""},                  /* AlternateUserId */     \
    0,                     /* RecsPresent */         \
    0,                     /* KnownDestCount */      \
    0,                     /* UnknownDestCount */    \
    0,                     /* InvalidDestCount */    \
    0,                     /* ObjectRecOffset */     \
    0,                     /* ResponseRecOffset */   \
    NULL,                  /* ObjectRecPtr */        \
    NULL,                  /* ResponseRecPtr */      \
    {MQSID_NONE_ARRAY},    /* AlternateSecurityId */ \
    {""},                  /* ResolvedQName */       \
    {""},                  /* ResolvedQMgrName */    \
    {MQCHARV_DEFAULT},     /* ObjectString */        \
    {MQCHARV_DEFAULT},     /* SelectionString */     \
    {MQCHARV_DEFAULT},     /* ResObjectString */     \
    MQOT_NONE              /* ResolvedType */

/* -------------------------------------------------------------------------- */
/* MQOR: object record, one for each queue of a distribution list             */
/* -------------------------------------------------------------------------- */

struct tagMQOR {
    MQCHAR48 ObjectName;
    MQCHAR48 ObjectQMgrName;
};

#define MQOR_DEFAULT                  \
    {""},        /* ObjectName */     \
    {""}         /* ObjectQMgrName */

/* -------------------------------------------------------------------------- */
/* MQRR: response record, what became of one queue of a distribution list     */
/* -------------------------------------------------------------------------- */

struct tagMQRR {
    MQLONG CompCode;
    MQLONG Reason;
};

#define MQRR_DEFAULT            \
    MQCC_OK,     /* CompCode */ \
    MQRC_NONE    /* Reason */

/* -------------------------------------------------------------------------- */
/* MQMD: message descriptor                                                   */
/* -------------------------------------------------------------------------- */

#define MQMD_STRUC_ID        "MD  "
#define MQMD_STRUC_ID_ARRAY  'M','D',' ',' '
#define MQMD_VERSION_1       1
#define MQMD_VERSION_2       2
#define MQMD_CURRENT_VERSION 2
#define MQMD_LENGTH_1        324
#define MQMD_LENGTH_2        364
#define MQMD_CURRENT_LENGTH  364

/* Report options */
#define MQRO_EXCEPTION                 0x01000000
#define MQRO_EXCEPTION_WITH_DATA       0x03000000
#define MQRO_EXCEPTION_WITH_FULL_DATA  0x07000000
#define MQRO_EXPIRATION                0x00200000
#define MQRO_EXPIRATION_WITH_DATA      0x00600000
#define MQRO_EXPIRATION_WITH_FULL_DATA 0x00E00000
#define MQRO_COA                       0x00000100
#define MQRO_COA_WITH_DATA             0x00000300
#define MQRO_COA_WITH_FULL_DATA        0x00000700
#define MQRO_COD                       0x00000800
#define MQRO_COD_WITH_DATA             0x00001800
#define MQRO_COD_WITH_FULL_DATA        0x00003800
#define MQRO_PAN                       0x00000001
#define MQRO_NAN                       0x00000002
#define MQRO_ACTIVITY                  0x00000004
#define MQRO_NEW_MSG_ID                0x00000000
#define MQRO_PASS_MSG_ID               0x00000080
#define MQRO_COPY_MSG_ID_TO_CORREL_ID  0x00000000
#define MQRO_PASS_CORREL_ID            0x00000040
#define MQRO_DEAD_LETTER_Q             0x00000000
#define MQRO_DISCARD_MSG               0x08000000
#define MQRO_PASS_DISCARD_AND_EXPIRY   0x00004000
#define MQRO_NONE                      0x00000000
#define MQRO_REJECT_UNSUP_MASK         0x101C0000
#define MQRO_ACCEPT_UNSUP_MASK         (-270532353) /* 0xEFE000FF */
#define MQRO_ACCEPT_UNSUP_IF_XMIT_MASK 0x0003FF00

/* Message types */
#define MQMT_SYSTEM_FIRST        1
#define MQMT_REQUEST             1
#define MQMT_REPLY               2
#define MQMT_DATAGRAM            8
#define MQMT_REPORT              4
#define MQMT_MQE_FIELDS_FROM_MQE 112
#define MQMT_MQE_FIELDS          113
#define MQMT_SYSTEM_LAST         65535
#define MQMT_APPL_FIRST          65536
#define MQMT_APPL_LAST           999999999

/* Expiry */
#define MQEI_UNLIMITED (-1)

/* Feedback codes */
#define MQFB_NONE                     0
#define MQFB_SYSTEM_FIRST             1
#define MQFB_QUIT                     256
#define MQFB_EXPIRATION               258
#define MQFB_COA                      259
#define MQFB_COD                      260
#define MQFB_CHANNEL_COMPLETED        262
#define MQFB_CHANNEL_FAIL_RETRY       263
#define MQFB_CHANNEL_FAIL             264
#define MQFB_APPL_CANNOT_BE_STARTED   265
#define MQFB_TM_ERROR                 266
#define MQFB_APPL_TYPE_ERROR          267
#define MQFB_STOPPED_BY_MSG_EXIT      268
#define MQFB_ACTIVITY                 269
#define MQFB_XMIT_Q_MSG_ERROR         271
#define MQFB_PAN                      275
#define MQFB_NAN                      276
#define MQFB_STOPPED_BY_CHAD_EXIT     277
#define MQFB_STOPPED_BY_PUBSUB_EXIT   279
#define MQFB_NOT_A_REPOSITORY_MSG     280
#define MQFB_BIND_OPEN_CLUSRCVR_DEL   281
#define MQFB_MAX_ACTIVITIES           282
#define MQFB_NOT_FORWARDED            283
#define MQFB_NOT_DELIVERED            284
#define MQFB_UNSUPPORTED_FORWARDING   285
#define MQFB_UNSUPPORTED_DELIVERY     286
#define MQFB_DATA_LENGTH_ZERO         291
#define MQFB_DATA_LENGTH_NEGATIVE     292
#define MQFB_DATA_LENGTH_TOO_BIG      293
#define MQFB_BUFFER_OVERFLOW          294
#define MQFB_LENGTH_OFF_BY_ONE        295
#define MQFB_IIH_ERROR                296
#define MQFB_NOT_AUTHORIZED_FOR_IMS   298
#define MQFB_DATA_LENGTH_TOO_SHORT    299
#define MQFB_IMS_ERROR                300
#define MQFB_IMS_FIRST                301
#define MQFB_IMS_LAST                 399
#define MQFB_CICS_INTERNAL_ERROR      401
#define MQFB_CICS_NOT_AUTHORIZED      402
#define MQFB_CICS_BRIDGE_FAILURE      403
#define MQFB_CICS_CORREL_ID_ERROR     404
#define MQFB_CICS_CCSID_ERROR         405
#define MQFB_CICS_ENCODING_ERROR      406
#define MQFB_CICS_CIH_ERROR           407
#define MQFB_CICS_UOW_ERROR           408
#define MQFB_CICS_COMMAREA_ERROR      409
#define MQFB_CICS_APPL_NOT_STARTED    410
#define MQFB_CICS_APPL_ABENDED        411
#define MQFB_CICS_DLQ_ERROR           412
#define MQFB_CICS_UOW_BACKED_OUT      413
#define MQFB_PUBLICATIONS_ON_REQUEST  501
#define MQFB_SUBSCRIBER_IS_PUBLISHER  502
#define MQFB_MSG_SCOPE_MISMATCH       503
#define MQFB_SELECTOR_MISMATCH        504
#define MQFB_NOT_A_GROUPUR_MSG        505
#define MQFB_IMS_NACK_1A_REASON_FIRST 600
#define MQFB_IMS_NACK_1A_REASON_LAST  855
#define MQFB_SYSTEM_LAST              65535
#define MQFB_APPL_FIRST               65536
#define MQFB_APPL_LAST                999999999

/* Priority */
#define MQPRI_PRIORITY_AS_Q_DEF     (-1)
#define MQPRI_PRIORITY_AS_PARENT    (-2)
#define MQPRI_PRIORITY_AS_PUBLISHED (-3)
#define MQPRI_PRIORITY_AS_TOPIC_DEF (-1)

/* Persistence */
#define MQPER_PERSISTENCE_AS_PARENT    (-1)
#define MQPER_NOT_PERSISTENT           0
#define MQPER_PERSISTENT               1
#define MQPER_PERSISTENCE_AS_Q_DEF     2
#define MQPER_PERSISTENCE_AS_TOPIC_DEF 2

/* Put response types */
#define MQPRT_RESPONSE_AS_PARENT 0
#define MQPRT_SYNC_RESPONSE      1
#define MQPRT_ASYNC_RESPONSE     2

/* Message, correlation and group identifiers */
#define MQMI_NONE       "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0" \
                        "\0\0\0\0\0\0\0\0"
#define MQMI_NONE_ARRAY '\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0', \
                        '\0','\0','\0','\0','\0','\0','\0','\0'

#define MQCI_NONE       "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0" \
                        "\0\0\0\0\0\0\0\0"
#define MQCI_NONE_ARRAY '\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0', \
                        '\0','\0','\0','\0','\0','\0','\0','\0'

#define MQCI_NEW_SESSION       "\x41\x4D\x51\x21\x4E\x45\x57\x5F" \
                               "\x53\x45\x53\x53\x49\x4F\x4E\x5F" \
                               "\x43\x4F\x52\x52\x45\x4C\x49\x44"
#define MQCI_NEW_SESSION_ARRAY '\x41','\x4D','\x51','\x21','\x4E','\x45','\x57','\x5F', \
                               '\x53','\x45','\x53','\x53','\x49','\x4F','\x4E','\x5F', \
                               '\x43','\x4F','\x52','\x52','\x45','\x4C','\x49','\x44'

#define MQGI_NONE       "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0" \
                        "\0\0\0\0\0\0\0\0"
#define MQGI_NONE_ARRAY '\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0', \
                        '\0','\0','\0','\0','\0','\0','\0','\0'

/* Accounting token, and the type in its last byte */
#define MQACT_NONE       "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0" \
                         "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"
#define MQACT_NONE_ARRAY '\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0', \
                         '\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0'

#define MQACTT_UNKNOWN                 0
#define MQACTT_CICS_LUOW_ID            1
#define MQACTT_OS2_DEFAULT             4
#define MQACTT_DOS_DEFAULT             5
#define MQACTT_UNIX_NUMERIC_ID         6
#define MQACTT_OS400_ACCOUNT_TOKEN     8
#define MQACTT_WINDOWS_DEFAULT         9
#define MQACTT_NT_SECURITY_ID          11
#define MQACTT_AZUREAD_SECURITY_ID     12
#define MQACTT_MS_ACC_AUTH_SECURITY_ID 13
#define MQACTT_USER                    25

/* Message flags */
#define MQMF_SEGMENTATION_INHIBITED    0x00000000
#define MQMF_NONE                      0x00000000
#define MQMF_SEGMENTATION_ALLOWED      0x00000001
#define MQMF_SEGMENT                   0x00000002
#define MQMF_LAST_SEGMENT              0x00000004
#define MQMF_MSG_IN_GROUP              0x00000008
#define MQMF_LAST_MSG_IN_GROUP         0x00000010
#define MQMF_REJECT_UNSUP_MASK         0x00000FFF
#define MQMF_ACCEPT_UNSUP_MASK         (-1048576) /* 0xFFF00000 */
#define MQMF_ACCEPT_UNSUP_IF_XMIT_MASK 0x000FF000

/* Original length */
#define MQOL_UNDEFINED (-1)

struct tagMQMD {
    MQCHAR4  StrucId;
    MQLONG   Version;
    MQLONG   Report;                         /* MQRO_ */
    MQLONG   MsgType;                        /* MQMT_ */
    MQLONG   Expiry;                         /* in tenths of a second */
    MQLONG   Feedback;                       /* MQFB_ or a reason, in reports */
    MQLONG   Encoding;
    MQLONG   CodedCharSetId;
    MQCHAR8  Format;
    MQLONG   Priority;
    MQLONG   Persistence;
    MQBYTE24 MsgId;
    MQBYTE24 CorrelId;
    MQLONG   BackoutCount;                   /* returned by MQGET */
    MQCHAR48 ReplyToQ;
    MQCHAR48 ReplyToQMgr;
    MQCHAR12 UserIdentifier;
    MQBYTE32 AccountingToken;
    MQCHAR32 ApplIdentityData;
    MQLONG   PutApplType;
    MQCHAR28 PutApplName;
    MQCHAR8  PutDate;                        /* YYYYMMDD */
    MQCHAR8  PutTime;                        /* HHMMSSTH, Greenwich mean time */
    MQCHAR4  ApplOriginData;
    /* version 2 */
    MQBYTE24 GroupId;
    MQLONG   MsgSeqNumber;                   /* of the logical message in its group, from 1 */
    MQLONG   Offset;                         /* of the segment in its logical message */
    MQLONG   MsgFlags;                       /* MQMF_ */
    MQLONG   OriginalLength;                 /* of the message that a segment report is about */
};

#define MQMD_DEFAULT                                   \
    {MQMD_STRUC_ID_ARRAY},      /* StrucId */          \
    MQMD_VERSION_1,             /* Version */          \
    MQRO_NONE,                  /* Report */           \
    MQMT_DATAGRAM,              /* MsgType */          \
    MQEI_UNLIMITED,             /* Expiry */           \
    MQFB_NONE,                  /* Feedback */         \
    MQENC_NATIVE,               /* Encoding */         \
    MQCCSI_Q_MGR,               /* CodedCharSetId */   \
    {MQFMT_NONE_ARRAY},         /* Format */           \
    MQPRI_PRIORITY_AS_Q_DEF,    /* Priority */         \
    MQPER_PERSISTENCE_AS_Q_DEF, /* Persistence */      \
    {MQMI_NONE_ARRAY},          /* MsgId */            \
    {MQCI_NONE_ARRAY},          /* CorrelId */         \
    0,                          /* BackoutCount */     \
    {""},                       /* ReplyToQ */         \
    {""},                       /* ReplyToQMgr */      \
    {""},                       /* UserIdentifier */   \
    {MQACT_NONE_ARRAY},         /* AccountingToken */  \
    {""},                       /* ApplIdentityData */ \
    MQAT_NO_CONTEXT,            /* PutApplType */      \
    {""},                       /* PutApplName */      \
    {""},                       /* PutDate */          \
    {""},                       /* PutTime */          \
    {""},                       /* ApplOriginData */   \
    {MQGI_NONE_ARRAY},          /* GroupId */          \
    1,                          /* MsgSeqNumber */     \
    0,                          /* Offset */           \
    MQMF_NONE,                  /* MsgFlags */         \
    MQOL_UNDEFINED              /* OriginalLength */

/* -------------------------------------------------------------------------- */
/* MQMD1: message descriptor as it stood in version 1, embedded in MQXQH      */
/* -------------------------------------------------------------------------- */

#define MQMD1_LENGTH_1       324
#define MQMD1_CURRENT_LENGTH 324

/* Lengths of the later layout, which is MQMD */
#define MQMD2_LENGTH_1       324
#define MQMD2_LENGTH_2       364
#define MQMD2_CURRENT_LENGTH 364

struct tagMQMD1 {
    MQCHAR4  StrucId;
    MQLONG   Version;
    MQLONG   Report;                         /* MQRO_ */
    MQLONG   MsgType;                        /* MQMT_ */
    MQLONG   Expiry;                         /* in tenths of a second */
    MQLONG   Feedback;                       /* MQFB_ or a reason, in reports */
    MQLONG   Encoding;
    MQLONG   CodedCharSetId;
    MQCHAR8  Format;
    MQLONG   Priority;
    MQLONG   Persistence;
    MQBYTE24 MsgId;
    MQBYTE24 CorrelId;
    MQLONG   BackoutCount;                   /* returned by MQGET */
    MQCHAR48 ReplyToQ;
    MQCHAR48 ReplyToQMgr;
    MQCHAR12 UserIdentifier;
    MQBYTE32 AccountingToken;
    MQCHAR32 ApplIdentityData;
    MQLONG   PutApplType;
    MQCHAR28 PutApplName;
    MQCHAR8  PutDate;                        /* YYYYMMDD */
    MQCHAR8  PutTime;                        /* HHMMSSTH, Greenwich mean time */
    MQCHAR4  ApplOriginData;
};

#define MQMD1_DEFAULT                                  \
    {MQMD_STRUC_ID_ARRAY},      /* StrucId */          \
    MQMD_VERSION_1,             /* Version */          \
    MQRO_NONE,                  /* Report */           \
    MQMT_DATAGRAM,              /* MsgType */          \
    MQEI_UNLIMITED,             /* Expiry */           \
    MQFB_NONE,                  /* Feedback */         \
    MQENC_NATIVE,               /* Encoding */         \
    MQCCSI_Q_MGR,               /* CodedCharSetId */   \
    {MQFMT_NONE_ARRAY},         /* Format */           \
    MQPRI_PRIORITY_AS_Q_DEF,    /* Priority */         \
    MQPER_PERSISTENCE_AS_Q_DEF, /* Persistence */      \
    {MQMI_NONE_ARRAY},          /* MsgId */            \
    {MQCI_NONE_ARRAY},          /* CorrelId */         \
    0,                          /* BackoutCount */     \
    {""},                       /* ReplyToQ */         \
    {""},                       /* ReplyToQMgr */      \
    {""},                       /* UserIdentifier */   \
    {MQACT_NONE_ARRAY},         /* AccountingToken */  \
    {""},                       /* ApplIdentityData */ \
    MQAT_NO_CONTEXT,            /* PutApplType */      \
    {""},                       /* PutApplName */      \
    {""},                       /* PutDate */          \
    {""},                       /* PutTime */          \
    {""}                        /* ApplOriginData */

/* -------------------------------------------------------------------------- */
/* MQMDE: version 2 part of a message descriptor, before the message data     */
/* -------------------------------------------------------------------------- */

#define MQMDE_STRUC_ID        "MDE "
#define MQMDE_STRUC_ID_ARRAY  'M','D','E',' '
#define MQMDE_VERSION_2       2
#define MQMDE_CURRENT_VERSION 2
#define MQMDE_LENGTH_2        72
#define MQMDE_CURRENT_LENGTH  72

/* Flags */
#define MQMDEF_NONE 0

struct tagMQMDE {
    MQCHAR4  StrucId;
    MQLONG   Version;
    MQLONG   StrucLength;
    MQLONG   Encoding;
    MQLONG   CodedCharSetId;
    MQCHAR8  Format;
    MQLONG   Flags;
    MQBYTE24 GroupId;
    MQLONG   MsgSeqNumber;                   /* of the logical message in its group, from 1 */
    MQLONG   Offset;                         /* of the segment in its logical message */
    MQLONG   MsgFlags;                       /* MQMF_ */
    MQLONG   OriginalLength;                 /* of the message that a segment report is about */
};

#define MQMDE_DEFAULT                            \
    {MQMDE_STRUC_ID_ARRAY}, /* StrucId */        \
    MQMDE_VERSION_2,        /* Version */        \
    MQMDE_LENGTH_2,         /* StrucLength */    \
    MQENC_NATIVE,           /* Encoding */       \
    MQCCSI_UNDEFINED,       /* CodedCharSetId */ \
    {MQFMT_NONE_ARRAY},     /* Format */         \
    MQMDEF_NONE,            /* Flags */          \
    {MQGI_NONE_ARRAY},      /* GroupId */        \
    1,                      /* MsgSeqNumber */   \
    0,                      /* Offset */         \
    MQMF_NONE,              /* MsgFlags */       \
    MQOL_UNDEFINED          /* OriginalLength */

/* -------------------------------------------------------------------------- */
/* MQPMO: options of MQPUT and MQPUT1                                         */
/* -------------------------------------------------------------------------- */

/* A put-message record (MQPMR) has no fixed layout: an application declares the
 * fields that PutMsgRecFields names, without gaps and in the order of the MQPMRF_
 * values: MQBYTE24 MsgId, MQBYTE24 CorrelId, MQBYTE24 GroupId, MQLONG Feedback,
 * MQBYTE32 AccountingToken. */

#define MQPMO_STRUC_ID        "PMO "
#define MQPMO_STRUC_ID_ARRAY  'P','M','O',' '
#define MQPMO_VERSION_1       1
#define MQPMO_VERSION_2       2
#define MQPMO_VERSION_3       3
#define MQPMO_CURRENT_VERSION 3
#define MQPMO_LENGTH_1        128
#define MQPMO_LENGTH_2        MQ_BY_WIDTH(152, 160)
#define MQPMO_LENGTH_3        MQ_BY_WIDTH(176, 184)
#define MQPMO_CURRENT_LENGTH  MQ_BY_WIDTH(176, 184)

/* Put options */
#define MQPMO_RESPONSE_AS_Q_DEF        0x00000000
#define MQPMO_RESPONSE_AS_TOPIC_DEF    0x00000000
#define MQPMO_NONE                     0x00000000
#define MQPMO_SYNCPOINT                0x00000002
#define MQPMO_NO_SYNCPOINT             0x00000004
#define MQPMO_DEFAULT_CONTEXT          0x00000020
#define MQPMO_NEW_MSG_ID               0x00000040
#define MQPMO_NEW_CORREL_ID            0x00000080
#define MQPMO_PASS_IDENTITY_CONTEXT    0x00000100
#define MQPMO_PASS_ALL_CONTEXT         0x00000200
#define MQPMO_SET_IDENTITY_CONTEXT     0x00000400
#define MQPMO_SET_ALL_CONTEXT          0x00000800
#define MQPMO_ALTERNATE_USER_AUTHORITY 0x00001000
#define MQPMO_FAIL_IF_QUIESCING        0x00002000
#define MQPMO_NO_CONTEXT               0x00004000
#define MQPMO_LOGICAL_ORDER            0x00008000
#define MQPMO_ASYNC_RESPONSE           0x00010000
#define MQPMO_SYNC_RESPONSE            0x00020000
#define MQPMO_RESOLVE_LOCAL_Q          0x00040000
#define MQPMO_WARN_IF_NO_SUBS_MATCHED  0x00080000
#define MQPMO_RETAIN                   0x00200000
#define MQPMO_MD_FOR_OUTPUT_ONLY       0x00800000
#define MQPMO_SCOPE_QMGR               0x04000000
#define MQPMO_SUPPRESS_REPLYTO         0x08000000
#define MQPMO_NOT_OWN_SUBS             0x10000000
#define MQPMO_PUB_OPTIONS_MASK         0x00200000

/* Fields of a put-message record */
#define MQPMRF_MSG_ID           0x00000001
#define MQPMRF_CORREL_ID        0x00000002
#define MQPMRF_GROUP_ID         0x00000004
#define MQPMRF_FEEDBACK         0x00000008
#define MQPMRF_ACCOUNTING_TOKEN 0x00000010
#define MQPMRF_NONE             0x00000000

/* Actions */
#define MQACTP_NEW     0
#define MQACTP_FORWARD 1
#define MQACTP_REPLY   2
#define MQACTP_REPORT  3

struct tagMQPMO {
    MQCHAR4  StrucId;
    MQLONG   Version;
    MQLONG   Options;
    MQLONG   Timeout;
    MQHOBJ   Context;                        /* queue opened with MQOO_SAVE_ALL_CONTEXT */
    MQLONG   KnownDestCount;
    MQLONG   UnknownDestCount;
    MQLONG   InvalidDestCount;
    MQCHAR48 ResolvedQName;                  /* returned */
    MQCHAR48 ResolvedQMgrName;               /* returned */
    /* version 2 */
    MQLONG   RecsPresent;
    MQLONG   PutMsgRecFields;                /* MQPMRF_ */
    MQLONG   PutMsgRecOffset;
    MQLONG   ResponseRecOffset;
    MQPTR    PutMsgRecPtr;                   /* array of RecsPresent records */
    MQPTR    ResponseRecPtr;                 /* array of MQRR */
    /* version 3 */
    MQHMSG   OriginalMsgHandle;
    MQHMSG   NewMsgHandle;
    MQLONG   Action;
    MQLONG   PubLevel;
};

#define MQPMO_DEFAULT                               \
    {MQPMO_STRUC_ID_ARRAY}, /* StrucId */           \
    MQPMO_VERSION_1,        /* Version */           \
    MQPMO_NONE,             /* Options */           \
    (-1),                   /* Timeout */           \
    0,                      /* Context */           \
    0,                      /* KnownDestCount */    \
    0,                      /* UnknownDestCount */  \
    0,                      /* InvalidDestCount */  \
    {""},                   /* ResolvedQName */     \
    {""},                   /* ResolvedQMgrName */  \
    0,                      /* RecsPresent */       \
    MQPMRF_NONE,            /* PutMsgRecFields */   \
    0,                      /* PutMsgRecOffset */   \
    0,                      /* ResponseRecOffset */ \
    NULL,                   /* PutMsgRecPtr */      \
    NULL,                   /* ResponseRecPtr */    \
    MQHM_NONE,              /* OriginalMsgHandle */ \
    MQHM_NONE,              /* NewMsgHandle */      \
    MQACTP_NEW,             /* Action */            \
    9                       /* PubLevel */

/* -------------------------------------------------------------------------- */
/* MQGMO: options of MQGET                                                    */
/* -------------------------------------------------------------------------- */

#define MQGMO_STRUC_ID        "GMO "
#define MQGMO_STRUC_ID_ARRAY  'G','M','O',' '
#define MQGMO_VERSION_1       1
#define MQGMO_VERSION_2       2
#define MQGMO_VERSION_3       3
#define MQGMO_VERSION_4       4
#define MQGMO_CURRENT_VERSION 4
#define MQGMO_LENGTH_1        72
#define MQGMO_LENGTH_2        80
#define MQGMO_LENGTH_3        100
#define MQGMO_LENGTH_4        112
#define MQGMO_CURRENT_LENGTH  112

/* Get options */
#define MQGMO_NO_WAIT                  0x00000000
#define MQGMO_PROPERTIES_AS_Q_DEF      0x00000000
#define MQGMO_NONE                     0x00000000
#define MQGMO_WAIT                     0x00000001
#define MQGMO_SYNCPOINT                0x00000002
#define MQGMO_NO_SYNCPOINT             0x00000004
#define MQGMO_SET_SIGNAL               0x00000008
#define MQGMO_BROWSE_FIRST             0x00000010
#define MQGMO_BROWSE_NEXT              0x00000020
#define MQGMO_ACCEPT_TRUNCATED_MSG     0x00000040
#define MQGMO_MARK_SKIP_BACKOUT        0x00000080
#define MQGMO_MSG_UNDER_CURSOR         0x00000100
#define MQGMO_LOCK                     0x00000200
#define MQGMO_UNLOCK                   0x00000400
#define MQGMO_BROWSE_MSG_UNDER_CURSOR  0x00000800
#define MQGMO_SYNCPOINT_IF_PERSISTENT  0x00001000
#define MQGMO_FAIL_IF_QUIESCING        0x00002000
#define MQGMO_CONVERT                  0x00004000
#define MQGMO_LOGICAL_ORDER            0x00008000
#define MQGMO_COMPLETE_MSG             0x00010000
#define MQGMO_ALL_MSGS_AVAILABLE       0x00020000
#define MQGMO_ALL_SEGMENTS_AVAILABLE   0x00040000
#define MQGMO_MARK_BROWSE_HANDLE       0x00100000
#define MQGMO_MARK_BROWSE_CO_OP        0x00200000
#define MQGMO_UNMARK_BROWSE_CO_OP      0x00400000
#define MQGMO_UNMARK_BROWSE_HANDLE     0x00800000
#define MQGMO_UNMARKED_BROWSE_MSG      0x01000000
#define MQGMO_PROPERTIES_FORCE_MQRFH2  0x02000000
#define MQGMO_NO_PROPERTIES            0x04000000
#define MQGMO_PROPERTIES_IN_HANDLE     0x08000000
#define MQGMO_PROPERTIES_COMPATIBILITY 0x10000000
#define MQGMO_BROWSE_HANDLE            0x01100010
#define MQGMO_BROWSE_CO_OP             0x01200010

/* Wait interval */
#define MQWI_UNLIMITED (-1)

/* Signal values */
#define MQEC_MSG_ARRIVED           2
#define MQEC_WAIT_INTERVAL_EXPIRED 3
#define MQEC_WAIT_CANCELED         4
#define MQEC_Q_MGR_QUIESCING       5
#define MQEC_CONNECTION_QUIESCING  6

/* Match options */
#define MQMO_MATCH_MSG_ID         0x00000001
#define MQMO_MATCH_CORREL_ID      0x00000002
#define MQMO_MATCH_GROUP_ID       0x00000004
#define MQMO_MATCH_MSG_SEQ_NUMBER 0x00000008
#define MQMO_MATCH_OFFSET         0x00000010
#define MQMO_MATCH_MSG_TOKEN      0x00000020
#define MQMO_NONE                 0x00000000

/* Group status, segment status and segmentation */
#define MQGS_NOT_IN_GROUP      ' '
#define MQGS_MSG_IN_GROUP      'G'
#define MQGS_LAST_MSG_IN_GROUP 'L'

#define MQSS_NOT_A_SEGMENT ' '
#define MQSS_SEGMENT       'S'
#define MQSS_LAST_SEGMENT  'L'

#define MQSEG_INHIBITED ' '
#define MQSEG_ALLOWED   'A'

/* Message token and returned length */
#define MQMTOK_NONE       "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"
#define MQMTOK_NONE_ARRAY '\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0'

#define MQRL_UNDEFINED (-1)

struct tagMQGMO {
    MQCHAR4  StrucId;
    MQLONG   Version;
    MQLONG   Options;
    MQLONG   WaitInterval;                   /* in milliseconds, or MQWI_UNLIMITED */
    MQLONG   Signal1;
    MQLONG   Signal2;
    MQCHAR48 ResolvedQName;                  /* returned */
    /* version 2 */
    MQLONG   MatchOptions;                   /* MQMO_ */
    MQCHAR   GroupStatus;                    /* returned, MQGS_ */
    MQCHAR   SegmentStatus;                  /* returned, MQSS_ */
    MQCHAR   Segmentation;                   /* returned, MQSEG_ */
    MQCHAR   Reserved1;
    /* version 3 */
    MQBYTE16 MsgToken;
    MQLONG   ReturnedLength;                 /* bytes of the message in the buffer */
    /* version 4 */
    MQLONG   Reserved2;
    MQHMSG   MsgHandle;
};

#define MQGMO_DEFAULT                                                \
    {MQGMO_STRUC_ID_ARRAY},                     /* StrucId */        \
    MQGMO_VERSION_1,                            /* Version */        \
    MQGMO_NO_WAIT,                              /* Options */        \
    0,                                          /* WaitInterval */   \
    0,                                          /* Signal1 */        \
    0,                                          /* Signal2 */        \
    {""},                                       /* ResolvedQName */  \
    (MQMO_MATCH_MSG_ID + MQMO_MATCH_CORREL_ID), /* MatchOptions */   \
    MQGS_NOT_IN_GROUP,                          /* GroupStatus */    \
    MQSS_NOT_A_SEGMENT,                         /* SegmentStatus */  \
    MQSEG_INHIBITED,                            /* Segmentation */   \
    ' ',                                        /* Reserved1 */      \
    {MQMTOK_NONE_ARRAY},                        /* MsgToken */       \
    MQRL_UNDEFINED,                             /* ReturnedLength */ \
    0,                                          /* Reserved2 */      \
    MQHM_NONE                                   /* MsgHandle */

/* -------------------------------------------------------------------------- */
/* MQBO: options of MQBEGIN                                                   */
/* -------------------------------------------------------------------------- */

#define MQBO_STRUC_ID        "BO  "
#define MQBO_STRUC_ID_ARRAY  'B','O',' ',' '
#define MQBO_VERSION_1       1
#define MQBO_CURRENT_VERSION 1
#define MQBO_LENGTH_1        12
#define MQBO_CURRENT_LENGTH  12

/* Options */
#define MQBO_NONE 0x00000000

struct tagMQBO {
    MQCHAR4 StrucId;
    MQLONG  Version;
    MQLONG  Options;
};

#define MQBO_DEFAULT                     \
    {MQBO_STRUC_ID_ARRAY}, /* StrucId */ \
    MQBO_VERSION_1,        /* Version */ \
    MQBO_NONE              /* Options */

/* -------------------------------------------------------------------------- */
/* MQCB and MQCTL                                                             */
/* -------------------------------------------------------------------------- */

/* Operations */
#define MQOP_START      0x00000001
#define MQOP_START_WAIT 0x00000002
#define MQOP_STOP       0x00000004
#define MQOP_REGISTER   0x00000100
#define MQOP_DEREGISTER 0x00000200
#define MQOP_SUSPEND    0x00010000
#define MQOP_RESUME     0x00020000

/* -------------------------------------------------------------------------- */
/* MQCBD: description of a callback                                           */
/* -------------------------------------------------------------------------- */

#define MQCBD_STRUC_ID        "CBD "
#define MQCBD_STRUC_ID_ARRAY  'C','B','D',' '
#define MQCBD_VERSION_1       1
#define MQCBD_CURRENT_VERSION 1
#define MQCBD_LENGTH_1        MQ_BY_WIDTH(156, 168)
#define MQCBD_CURRENT_LENGTH  MQ_BY_WIDTH(156, 168)

/* Longest message */
#define MQCBD_FULL_MSG_LENGTH (-1)

/* Callback types */
#define MQCBT_MESSAGE_CONSUMER 1
#define MQCBT_EVENT_HANDLER    2

/* Callback options */
#define MQCBDO_NONE              0x00000000
#define MQCBDO_START_CALL        0x00000001
#define MQCBDO_STOP_CALL         0x00000004
#define MQCBDO_REGISTER_CALL     0x00000100
#define MQCBDO_DEREGISTER_CALL   0x00000200
#define MQCBDO_FAIL_IF_QUIESCING 0x00002000
#define MQCBDO_EVENT_CALL        0x00004000
#define MQCBDO_MC_EVENT_CALL     0x00008000

struct tagMQCBD {
    MQCHAR4   StrucId;
    MQLONG    Version;
    MQLONG    CallbackType;                  /* MQCBT_ */
    MQLONG    Options;                       /* MQCBDO_ */
    MQPTR     CallbackArea;                  /* handed to the callback in MQCBC */
    MQPTR     CallbackFunction;              /* an MQCB_FUNCTION */
    MQCHAR128 CallbackName;
    MQLONG    MaxMsgLength;
};

#define MQCBD_DEFAULT                              \
    {MQCBD_STRUC_ID_ARRAY}, /* StrucId */          \
    MQCBD_VERSION_1,        /* Version */          \
    MQCBT_MESSAGE_CONSUMER, /* CallbackType */     \
    MQCBDO_NONE,            /* Options */          \
    NULL,                   /* CallbackArea */     \
    NULL,                   /* CallbackFunction */ \
    {""},                   /* CallbackName */     \
    MQCBD_FULL_MSG_LENGTH   /* MaxMsgLength */

/* -------------------------------------------------------------------------- */
/* MQCBC: context handed to a callback                                        */
/* -------------------------------------------------------------------------- */

/* Filled by the queue manager; it has no default initialiser. */

#define MQCBC_STRUC_ID        "CBC "
#define MQCBC_STRUC_ID_ARRAY  'C','B','C',' '
#define MQCBC_VERSION_1       1
#define MQCBC_VERSION_2       2
#define MQCBC_CURRENT_VERSION 2
#define MQCBC_LENGTH_1        MQ_BY_WIDTH(48, 56)
#define MQCBC_LENGTH_2        MQ_BY_WIDTH(52, 64)
#define MQCBC_CURRENT_LENGTH  MQ_BY_WIDTH(52, 64)

/* Call types */
#define MQCBCT_START_CALL      1
#define MQCBCT_STOP_CALL       2
#define MQCBCT_REGISTER_CALL   3
#define MQCBCT_DEREGISTER_CALL 4
#define MQCBCT_EVENT_CALL      5
#define MQCBCT_MSG_REMOVED     6
#define MQCBCT_MSG_NOT_REMOVED 7
#define MQCBCT_MC_EVENT_CALL   8

/* Consumer states */
#define MQCS_NONE                  0
#define MQCS_SUSPENDED_TEMPORARY   1
#define MQCS_SUSPENDED_USER_ACTION 2
#define MQCS_SUSPENDED             3
#define MQCS_STOPPED               4

/* Flags */
#define MQCBCF_NONE               0x00000000
#define MQCBCF_READA_BUFFER_EMPTY 0x00000001

/* Reconnect delay */
#define MQRD_NO_RECONNECT (-1)
#define MQRD_NO_DELAY     0

struct tagMQCBC {
    MQCHAR4 StrucId;
    MQLONG  Version;
    MQLONG  CallType;                        /* MQCBCT_ */
    MQHOBJ  Hobj;
    MQPTR   CallbackArea;                    /* from MQCBD */
    MQPTR   ConnectionArea;                  /* from MQCTLO */
    MQLONG  CompCode;
    MQLONG  Reason;
    MQLONG  State;                           /* MQCS_ */
    MQLONG  DataLength;
    MQLONG  BufferLength;
    MQLONG  Flags;                           /* MQCBCF_ */
    /* version 2 */
    MQLONG  ReconnectDelay;                  /* in milliseconds */
};

/* What MQCBD.CallbackFunction points to. An event handler may rely on Hconn and pContext only. */
typedef void MQENTRY MQCB_FUNCTION(MQHCONN Hconn, PMQVOID pMsgDesc, PMQVOID pGetMsgOpts, PMQVOID pBuffer,
                                   PMQCBC pContext);
typedef MQCB_FUNCTION MQPOINTER PMQCB_FUNCTION;

/* -------------------------------------------------------------------------- */
/* MQCTLO: options of MQCTL                                                   */
/* -------------------------------------------------------------------------- */

#define MQCTLO_STRUC_ID        "CTLO"
#define MQCTLO_STRUC_ID_ARRAY  'C','T','L','O'
#define MQCTLO_VERSION_1       1
#define MQCTLO_CURRENT_VERSION 1
#define MQCTLO_LENGTH_1        MQ_BY_WIDTH(20, 24)
#define MQCTLO_CURRENT_LENGTH  MQ_BY_WIDTH(20, 24)

/* Options */
#define MQCTLO_NONE              0x00000000
#define MQCTLO_THREAD_AFFINITY   0x00000001
#define MQCTLO_FAIL_IF_QUIESCING 0x00002000

struct tagMQCTLO {
    MQCHAR4 StrucId;
    MQLONG  Version;
    MQLONG  Options;
    MQLONG  Reserved;
    MQPTR   ConnectionArea;                  /* handed to the callback in MQCBC */
};

#define MQCTLO_DEFAULT                            \
    {MQCTLO_STRUC_ID_ARRAY}, /* StrucId */        \
    MQCTLO_VERSION_1,        /* Version */        \
    MQCTLO_NONE,             /* Options */        \
    (-1),                    /* Reserved */       \
    NULL                     /* ConnectionArea */

/* -------------------------------------------------------------------------- */
/* Message handles and properties                                             */
/* -------------------------------------------------------------------------- */

/* Property types */
#define MQTYPE_AS_SET      0x00000000
#define MQTYPE_NULL        0x00000002
#define MQTYPE_BOOLEAN     0x00000004
#define MQTYPE_BYTE_STRING 0x00000008
#define MQTYPE_INT8        0x00000010
#define MQTYPE_INT16       0x00000020
#define MQTYPE_INT32       0x00000040
#define MQTYPE_LONG        0x00000040
#define MQTYPE_INT64       0x00000080
#define MQTYPE_FLOAT32     0x00000100
#define MQTYPE_FLOAT64     0x00000200
#define MQTYPE_STRING      0x00000400

/* Lengths of a property value */
#define MQVL_NULL_TERMINATED (-1)
#define MQVL_EMPTY_STRING    0

/* -------------------------------------------------------------------------- */
/* MQCMHO: options of MQCRTMH                                                 */
/* -------------------------------------------------------------------------- */

#define MQCMHO_STRUC_ID        "CMHO"
#define MQCMHO_STRUC_ID_ARRAY  'C','M','H','O'
#define MQCMHO_VERSION_1       1
#define MQCMHO_CURRENT_VERSION 1
#define MQCMHO_LENGTH_1        12
#define MQCMHO_CURRENT_LENGTH  12

/* Options */
#define MQCMHO_DEFAULT_VALIDATION 0x00000000
#define MQCMHO_NO_VALIDATION      0x00000001
#define MQCMHO_VALIDATE           0x00000002
#define MQCMHO_NONE               0x00000000

struct tagMQCMHO {
    MQCHAR4 StrucId;
    MQLONG  Version;
    MQLONG  Options;
};

#define MQCMHO_DEFAULT                      \
    {MQCMHO_STRUC_ID_ARRAY},  /* StrucId */ \
    MQCMHO_VERSION_1,         /* Version */ \
    MQCMHO_DEFAULT_VALIDATION /* Options */

/* -------------------------------------------------------------------------- */
/* MQDMHO: options of MQDLTMH                                                 */
/* -------------------------------------------------------------------------- */

#define MQDMHO_STRUC_ID        "DMHO"
#define MQDMHO_STRUC_ID_ARRAY  'D','M','H','O'
#define MQDMHO_VERSION_1       1
#define MQDMHO_CURRENT_VERSION 1
#define MQDMHO_LENGTH_1        12
#define MQDMHO_CURRENT_LENGTH  12

/* Options */
#define MQDMHO_NONE 0x00000000

struct tagMQDMHO {
    MQCHAR4 StrucId;
    MQLONG  Version;
    MQLONG  Options;
};

#define MQDMHO_DEFAULT                     \
    {MQDMHO_STRUC_ID_ARRAY}, /* StrucId */ \
    MQDMHO_VERSION_1,        /* Version */ \
    MQDMHO_NONE              /* Options */

/* -------------------------------------------------------------------------- */
/* MQSMPO: options of MQSETMP                                                 */
/* -------------------------------------------------------------------------- */

#define MQSMPO_STRUC_ID        "SMPO"
#define MQSMPO_STRUC_ID_ARRAY  'S','M','P','O'
#define MQSMPO_VERSION_1       1
#define MQSMPO_CURRENT_VERSION 1
#define MQSMPO_LENGTH_1        20
#define MQSMPO_CURRENT_LENGTH  20

/* Options */
#define MQSMPO_SET_FIRST              0x00000000
#define MQSMPO_NONE                   0x00000000
#define MQSMPO_SET_PROP_UNDER_CURSOR  0x00000001
#define MQSMPO_SET_PROP_AFTER_CURSOR  0x00000002
#define MQSMPO_APPEND_PROPERTY        0x00000004
#define MQSMPO_SET_PROP_BEFORE_CURSOR 0x00000008

struct tagMQSMPO {
    MQCHAR4 StrucId;
    MQLONG  Version;
    MQLONG  Options;
    MQLONG  ValueEncoding;
    MQLONG  ValueCCSID;
};

#define MQSMPO_DEFAULT                           \
    {MQSMPO_STRUC_ID_ARRAY}, /* StrucId */       \
    MQSMPO_VERSION_1,        /* Version */       \
    MQSMPO_NONE,             /* Options */       \
    MQENC_NATIVE,            /* ValueEncoding */ \
    MQCCSI_APPL              /* ValueCCSID */

/* -------------------------------------------------------------------------- */
/* MQIMPO: options of MQINQMP                                                 */
/* -------------------------------------------------------------------------- */

#define MQIMPO_STRUC_ID        "IMPO"
#define MQIMPO_STRUC_ID_ARRAY  'I','M','P','O'
#define MQIMPO_VERSION_1       1
#define MQIMPO_CURRENT_VERSION 1
#define MQIMPO_LENGTH_1        MQ_BY_WIDTH(60, 64)
#define MQIMPO_CURRENT_LENGTH  MQ_BY_WIDTH(60, 64)

/* Options */
#define MQIMPO_INQ_FIRST             0x00000000
#define MQIMPO_NONE                  0x00000000
#define MQIMPO_CONVERT_TYPE          0x00000002
#define MQIMPO_QUERY_LENGTH          4
#define MQIMPO_INQ_NEXT              0x00000008
#define MQIMPO_INQ_PROP_UNDER_CURSOR 0x00000010
#define MQIMPO_CONVERT_VALUE         0x00000020

struct tagMQIMPO {
    MQCHAR4 StrucId;
    MQLONG  Version;
    MQLONG  Options;
    MQLONG  RequestedEncoding;
    MQLONG  RequestedCCSID;
    MQLONG  ReturnedEncoding;
    MQLONG  ReturnedCCSID;
    MQLONG  Reserved1;
    MQCHARV ReturnedName;                    /* returned, if it has a buffer */
    MQCHAR8 TypeString;                      /* returned: type as an RFH2 names it */
};

#define MQIMPO_DEFAULT                               \
    {MQIMPO_STRUC_ID_ARRAY}, /* StrucId */           \
    MQIMPO_VERSION_1,        /* Version */           \
    MQIMPO_NONE,             /* Options */           \
    MQENC_NATIVE,            /* RequestedEncoding */ \
    MQCCSI_APPL,             /* RequestedCCSID */    \
    MQENC_NATIVE,            /* ReturnedEncoding */  \
    0,                       /* ReturnedCCSID */     \
    0,                       /* Reserved1 */         \
    {MQCHARV_DEFAULT},       /* ReturnedName */      \
    {""}                     /* TypeString */

/* -------------------------------------------------------------------------- */
/* MQDMPO: options of MQDLTMP                                                 */
/* -------------------------------------------------------------------------- */

#define MQDMPO_STRUC_ID        "DMPO"
#define MQDMPO_STRUC_ID_ARRAY  'D','M','P','O'
#define MQDMPO_VERSION_1       1
#define MQDMPO_CURRENT_VERSION 1
#define MQDMPO_LENGTH_1        12
#define MQDMPO_CURRENT_LENGTH  12

/* Options */
#define MQDMPO_DEL_FIRST             0x00000000
#define MQDMPO_DEL_PROP_UNDER_CURSOR 0x00000001
#define MQDMPO_NONE                  0x00000000

struct tagMQDMPO {
    MQCHAR4 StrucId;
    MQLONG  Version;
    MQLONG  Options;
};

#define MQDMPO_DEFAULT                     \
    {MQDMPO_STRUC_ID_ARRAY}, /* StrucId */ \
    MQDMPO_VERSION_1,        /* Version */ \
    MQDMPO_DEL_FIRST         /* Options */

/* -------------------------------------------------------------------------- */
/* MQPD: property descriptor                                                  */
/* -------------------------------------------------------------------------- */

#define MQPD_STRUC_ID        "PD  "
#define MQPD_STRUC_ID_ARRAY  'P','D',' ',' '
#define MQPD_VERSION_1       1
#define MQPD_CURRENT_VERSION 1
#define MQPD_LENGTH_1        24
#define MQPD_CURRENT_LENGTH  24

/* Support that a property needs */
#define MQPD_NONE                      0x00000000
#define MQPD_SUPPORT_OPTIONAL          0x00000001
#define MQPD_SUPPORT_REQUIRED          0x00100000
#define MQPD_SUPPORT_REQUIRED_IF_LOCAL 0x00000400
#define MQPD_REJECT_UNSUP_MASK         (-1048576) /* 0xFFF00000 */
#define MQPD_ACCEPT_UNSUP_IF_XMIT_MASK 0x000FFC00
#define MQPD_ACCEPT_UNSUP_MASK         0x000003FF

/* Context */
#define MQPD_NO_CONTEXT   0x00000000
#define MQPD_USER_CONTEXT 0x00000001

/* Messages that a property is copied into */
#define MQCOPY_NONE    0x00000000
#define MQCOPY_ALL     0x00000001
#define MQCOPY_FORWARD 0x00000002
#define MQCOPY_PUBLISH 0x00000004
#define MQCOPY_REPLY   0x00000008
#define MQCOPY_REPORT  0x00000010
#define MQCOPY_DEFAULT 0x00000016

struct tagMQPD {
    MQCHAR4 StrucId;
    MQLONG  Version;
    MQLONG  Options;
    MQLONG  Support;                         /* MQPD_SUPPORT_ */
    MQLONG  Context;                         /* MQPD_NO_CONTEXT or MQPD_USER_CONTEXT */
    MQLONG  CopyOptions;                     /* MQCOPY_ */
};

#define MQPD_DEFAULT                         \
    {MQPD_STRUC_ID_ARRAY}, /* StrucId */     \
    MQPD_VERSION_1,        /* Version */     \
    MQPD_NONE,             /* Options */     \
    MQPD_SUPPORT_OPTIONAL, /* Support */     \
    MQPD_NO_CONTEXT,       /* Context */     \
    MQCOPY_DEFAULT         /* CopyOptions */

/* -------------------------------------------------------------------------- */
/* MQBMHO: options of MQBUFMH                                                 */
/* -------------------------------------------------------------------------- */

#define MQBMHO_STRUC_ID        "BMHO"
#define MQBMHO_STRUC_ID_ARRAY  'B','M','H','O'
#define MQBMHO_VERSION_1       1
#define MQBMHO_CURRENT_VERSION 1
#define MQBMHO_LENGTH_1        12
#define MQBMHO_CURRENT_LENGTH  12

/* Options */
#define MQBMHO_NONE              0x00000000
#define MQBMHO_DELETE_PROPERTIES 0x00000001

struct tagMQBMHO {
    MQCHAR4 StrucId;
    MQLONG  Version;
    MQLONG  Options;
};

#define MQBMHO_DEFAULT                     \
    {MQBMHO_STRUC_ID_ARRAY}, /* StrucId */ \
    MQBMHO_VERSION_1,        /* Version */ \
    MQBMHO_DELETE_PROPERTIES /* Options */

/* -------------------------------------------------------------------------- */
/* MQMHBO: options of MQMHBUF                                                 */
/* -------------------------------------------------------------------------- */

#define MQMHBO_STRUC_ID        "MHBO"
#define MQMHBO_STRUC_ID_ARRAY  'M','H','B','O'
#define MQMHBO_VERSION_1       1
#define MQMHBO_CURRENT_VERSION 1
#define MQMHBO_LENGTH_1        12
#define MQMHBO_CURRENT_LENGTH  12

/* Options */
#define MQMHBO_PROPERTIES_IN_MQRFH2 0x00000001
#define MQMHBO_DELETE_PROPERTIES    0x00000002
#define MQMHBO_NONE                 0x00000000

struct tagMQMHBO {
    MQCHAR4 StrucId;
    MQLONG  Version;
    MQLONG  Options;
};

#define MQMHBO_DEFAULT                        \
    {MQMHBO_STRUC_ID_ARRAY},    /* StrucId */ \
    MQMHBO_VERSION_1,           /* Version */ \
    MQMHBO_PROPERTIES_IN_MQRFH2 /* Options */

/* -------------------------------------------------------------------------- */
/* MQSD: subscription descriptor                                              */
/* -------------------------------------------------------------------------- */

#define MQSD_STRUC_ID        "SD  "
#define MQSD_STRUC_ID_ARRAY  'S','D',' ',' '
#define MQSD_VERSION_1       1
#define MQSD_CURRENT_VERSION 1
#define MQSD_LENGTH_1        MQ_BY_WIDTH(312, 344)
#define MQSD_CURRENT_LENGTH  MQ_BY_WIDTH(312, 344)

/* Subscribe options */
#define MQSO_NONE                     0x00000000
#define MQSO_NON_DURABLE              0x00000000
#define MQSO_READ_AHEAD_AS_Q_DEF      0x00000000
#define MQSO_ALTER                    0x00000001
#define MQSO_CREATE                   0x00000002
#define MQSO_RESUME                   0x00000004
#define MQSO_DURABLE                  0x00000008
#define MQSO_GROUP_SUB                0x00000010
#define MQSO_MANAGED                  0x00000020
#define MQSO_SET_IDENTITY_CONTEXT     0x00000040
#define MQSO_NO_MULTICAST             0x00000080
#define MQSO_FIXED_USERID             0x00000100
#define MQSO_ANY_USERID               0x00000200
#define MQSO_PUBLICATIONS_ON_REQUEST  0x00000800
#define MQSO_NEW_PUBLICATIONS_ONLY    0x00001000
#define MQSO_FAIL_IF_QUIESCING        0x00002000
#define MQSO_ALTERNATE_USER_AUTHORITY 0x00040000
#define MQSO_WILDCARD_CHAR            0x00100000
#define MQSO_WILDCARD_TOPIC           0x00200000
#define MQSO_SET_CORREL_ID            0x00400000
#define MQSO_SCOPE_QMGR               0x04000000
#define MQSO_NO_READ_AHEAD            0x08000000
#define MQSO_READ_AHEAD               0x10000000

struct tagMQSD {
    MQCHAR4  StrucId;
    MQLONG   Version;
    MQLONG   Options;
    MQCHAR48 ObjectName;
    MQCHAR12 AlternateUserId;
    MQBYTE40 AlternateSecurityId;
    MQLONG   SubExpiry;                      /* in tenths of a second */
    MQCHARV  ObjectString;
    MQCHARV  SubName;
    MQCHARV  SubUserData;
    MQBYTE24 SubCorrelId;
    MQLONG   PubPriority;
    MQBYTE32 PubAccountingToken;
    MQCHAR32 PubApplIdentityData;
    MQCHARV  SelectionString;
    MQLONG   SubLevel;
    MQCHARV  ResObjectString;                /* returned */
};

#define MQSD_DEFAULT                                       \
    {MQSD_STRUC_ID_ARRAY},       /* StrucId */             \
    MQSD_VERSION_1,              /* Version */             \
    MQSO_NONE,                   /* Options */             \
    {""},                        /* ObjectName */          \
    {""},                        /* AlternateUserId */     \
    {MQSID_NONE_ARRAY},          /* AlternateSecurityId */ \
    MQEI_UNLIMITED,              /* SubExpiry */           \
    {MQCHARV_DEFAULT},           /* ObjectString */        \
    {MQCHARV_DEFAULT},           /* SubName */             \
    {MQCHARV_DEFAULT},           /* SubUserData */         \
    {MQCI_NONE_ARRAY},           /* SubCorrelId */         \
    MQPRI_PRIORITY_AS_PUBLISHED, /* PubPriority */         \
    {MQACT_NONE_ARRAY},          /* PubAccountingToken */  \
    {""},                        /* PubApplIdentityData */ \
    {MQCHARV_DEFAULT},           /* SelectionString */     \
    1,                           /* SubLevel */            \
    {MQCHARV_DEFAULT}            /* ResObjectString */

/* -------------------------------------------------------------------------- */
/* MQSRO: options of MQSUBRQ                                                  */
/* -------------------------------------------------------------------------- */

#define MQSRO_STRUC_ID        "SRO "
#define MQSRO_STRUC_ID_ARRAY  'S','R','O',' '
#define MQSRO_VERSION_1       1
#define MQSRO_CURRENT_VERSION 1
#define MQSRO_LENGTH_1        16
#define MQSRO_CURRENT_LENGTH  16

/* Options */
#define MQSRO_NONE              0x00000000
#define MQSRO_FAIL_IF_QUIESCING 0x00002000

/* Actions */
#define MQSR_ACTION_PUBLICATION 1

struct tagMQSRO {
    MQCHAR4 StrucId;
    MQLONG  Version;
    MQLONG  Options;
    MQLONG  NumPubs;                         /* returned */
};

#define MQSRO_DEFAULT                     \
    {MQSRO_STRUC_ID_ARRAY}, /* StrucId */ \
    MQSRO_VERSION_1,        /* Version */ \
    0,                      /* Options */ \
    0                       /* NumPubs */

/* -------------------------------------------------------------------------- */
/* MQSTS: status that MQSTAT returns                                          */
/* -------------------------------------------------------------------------- */

#define MQSTS_STRUC_ID        "STAT"
#define MQSTS_STRUC_ID_ARRAY  'S','T','A','T'
#define MQSTS_VERSION_1       1
#define MQSTS_VERSION_2       2
#define MQSTS_CURRENT_VERSION 2
#define MQSTS_LENGTH_1        224
#define MQSTS_LENGTH_2        MQ_BY_WIDTH(272, 280)
#define MQSTS_CURRENT_LENGTH  MQ_BY_WIDTH(272, 280)

/* Status types */
#define MQSTAT_TYPE_ASYNC_ERROR        0
#define MQSTAT_TYPE_RECONNECTION       1
#define MQSTAT_TYPE_RECONNECTION_ERROR 2

struct tagMQSTS {
    MQCHAR4  StrucId;
    MQLONG   Version;
    MQLONG   CompCode;
    MQLONG   Reason;
    MQLONG   PutSuccessCount;
    MQLONG   PutWarningCount;
    MQLONG   PutFailureCount;
    MQLONG   ObjectType;
    MQCHAR48 ObjectName;
    MQCHAR48 ObjectQMgrName;
    MQCHAR48 ResolvedObjectName;
    MQCHAR48 ResolvedQMgrName;
    /* version 2 */
    MQCHARV  ObjectString;
    MQCHARV  SubName;
    MQLONG   OpenOptions;
    MQLONG   SubOptions;
};

#define MQSTS_DEFAULT                                \
    {MQSTS_STRUC_ID_ARRAY}, /* StrucId */            \
    MQSTS_VERSION_1,        /* Version */            \
    MQCC_OK,                /* CompCode */           \
    MQRC_NONE,              /* Reason */             \
    0,                      /* PutSuccessCount */    \
    0,                      /* PutWarningCount */    \
    0,                      /* PutFailureCount */    \
    MQOT_Q,                 /* ObjectType */         \
    {""},                   /* ObjectName */         \
    {""},                   /* ObjectQMgrName */     \
    {""},                   /* ResolvedObjectName */ \
    {""},                   /* ResolvedQMgrName */   \
    {MQCHARV_DEFAULT},      /* ObjectString */       \
    {MQCHARV_DEFAULT},      /* SubName */            \
    0,                      /* OpenOptions */        \
    0                       /* SubOptions */

/* -------------------------------------------------------------------------- */
/* MQRFH2: rules and formatting header, version 2                             */
/* -------------------------------------------------------------------------- */

/* Names and values follow as length-prefixed strings in NameValueCCSID. */

#define MQRFH2_LENGTH_2       36
#define MQRFH2_CURRENT_LENGTH 36

/* Identifier, versions and fixed lengths of both versions */
#define MQRFH_STRUC_ID             "RFH "
#define MQRFH_STRUC_ID_ARRAY       'R','F','H',' '
#define MQRFH_VERSION_1            1
#define MQRFH_VERSION_2            2
#define MQRFH_STRUC_LENGTH_FIXED   32
#define MQRFH_STRUC_LENGTH_FIXED_2 36
#define MQRFH_LENGTH_1             32
#define MQRFH_CURRENT_LENGTH       32

/* Flags */
#define MQRFH_NONE                  0
#define MQRFH_NO_FLAGS              0
#define MQRFH_FLAGS_RESTRICTED_MASK (-65536)

struct tagMQRFH2 {
    MQCHAR4 StrucId;
    MQLONG  Version;
    MQLONG  StrucLength;                     /* with the names and values that follow */
    MQLONG  Encoding;                        /* of the data after this header */
    MQLONG  CodedCharSetId;                  /* of the data after this header */
    MQCHAR8 Format;                          /* of the data after this header */
    MQLONG  Flags;
    MQLONG  NameValueCCSID;                  /* 1208: UTF-8 */
};

#define MQRFH2_DEFAULT                               \
    {MQRFH_STRUC_ID_ARRAY},     /* StrucId */        \
    MQRFH_VERSION_2,            /* Version */        \
    MQRFH_STRUC_LENGTH_FIXED_2, /* StrucLength */    \
    MQENC_NATIVE,               /* Encoding */       \
    MQCCSI_INHERIT,             /* CodedCharSetId */ \
    {MQFMT_NONE_ARRAY},         /* Format */         \
    MQRFH_NONE,                 /* Flags */          \
    1208                        /* NameValueCCSID */

/* -------------------------------------------------------------------------- */
/* MQRFH: rules and formatting header, version 1                              */
/* -------------------------------------------------------------------------- */

/* Names of values */
#define MQNVS_APPL_TYPE       "OPT_APP_GRP "
#define MQNVS_APPL_TYPE_ARRAY 'O','P','T','_','A','P','P','_','G','R','P',' '
#define MQNVS_MSG_TYPE        "OPT_MSG_TYPE "
#define MQNVS_MSG_TYPE_ARRAY  'O','P','T','_','M','S','G','_','T','Y','P','E',' '

struct tagMQRFH {
    MQCHAR4 StrucId;
    MQLONG  Version;
    MQLONG  StrucLength;                     /* with the names and values that follow */
    MQLONG  Encoding;                        /* of the data after this header */
    MQLONG  CodedCharSetId;                  /* of the data after this header */
    MQCHAR8 Format;                          /* of the data after this header */
    MQLONG  Flags;
};

#define MQRFH_DEFAULT                              \
    {MQRFH_STRUC_ID_ARRAY},   /* StrucId */        \
    MQRFH_VERSION_1,          /* Version */        \
    MQRFH_STRUC_LENGTH_FIXED, /* StrucLength */    \
    MQENC_NATIVE,             /* Encoding */       \
    MQCCSI_UNDEFINED,         /* CodedCharSetId */ \
    {MQFMT_NONE_ARRAY},       /* Format */         \
    MQRFH_NONE                /* Flags */

/* -------------------------------------------------------------------------- */
/* MQDLH: dead-letter header                                                  */
/* -------------------------------------------------------------------------- */

#define MQDLH_STRUC_ID        "DLH "
#define MQDLH_STRUC_ID_ARRAY  'D','L','H',' '
#define MQDLH_VERSION_1       1
#define MQDLH_CURRENT_VERSION 1
#define MQDLH_LENGTH_1        172
#define MQDLH_CURRENT_LENGTH  172

struct tagMQDLH {
    MQCHAR4  StrucId;
    MQLONG   Version;
    MQLONG   Reason;                         /* why the message came here: MQRC_ or MQFB_ */
    MQCHAR48 DestQName;
    MQCHAR48 DestQMgrName;
    MQLONG   Encoding;                       /* of the data after this header */
    MQLONG   CodedCharSetId;                 /* of the data after this header */
    MQCHAR8  Format;                         /* of the data after this header */
    MQLONG   PutApplType;
    MQCHAR28 PutApplName;
    MQCHAR8  PutDate;                        /* YYYYMMDD */
    MQCHAR8  PutTime;                        /* HHMMSSTH, Greenwich mean time */
};

#define MQDLH_DEFAULT                            \
    {MQDLH_STRUC_ID_ARRAY}, /* StrucId */        \
    MQDLH_VERSION_1,        /* Version */        \
    MQRC_NONE,              /* Reason */         \
    {""},                   /* DestQName */      \
    {""},                   /* DestQMgrName */   \
    0,                      /* Encoding */       \
    MQCCSI_UNDEFINED,       /* CodedCharSetId */ \
    {MQFMT_NONE_ARRAY},     /* Format */         \
    0,                      /* PutApplType */    \
    {""},                   /* PutApplName */    \
    {""},                   /* PutDate */        \
    {""}                    /* PutTime */

/* -------------------------------------------------------------------------- */
/* MQXQH: transmission-queue header                                           */
/* -------------------------------------------------------------------------- */

#define MQXQH_STRUC_ID        "XQH "
#define MQXQH_STRUC_ID_ARRAY  'X','Q','H',' '
#define MQXQH_VERSION_1       1
#define MQXQH_CURRENT_VERSION 1
#define MQXQH_LENGTH_1        428
#define MQXQH_CURRENT_LENGTH  428

struct tagMQXQH {
    MQCHAR4  StrucId;
    MQLONG   Version;
    MQCHAR48 RemoteQName;
    MQCHAR48 RemoteQMgrName;
    MQMD1    MsgDesc;
};

#define MQXQH_DEFAULT                            \
    {MQXQH_STRUC_ID_ARRAY}, /* StrucId */        \
    MQXQH_VERSION_1,        /* Version */        \
    {""},                   /* RemoteQName */    \
    {""},                   /* RemoteQMgrName */ \
    {MQMD1_DEFAULT}         /* MsgDesc */

/* -------------------------------------------------------------------------- */
/* MQDH: distribution header                                                  */
/* -------------------------------------------------------------------------- */

#define MQDH_STRUC_ID        "DH  "
#define MQDH_STRUC_ID_ARRAY  'D','H',' ',' '
#define MQDH_VERSION_1       1
#define MQDH_CURRENT_VERSION 1
#define MQDH_LENGTH_1        48
#define MQDH_CURRENT_LENGTH  48

/* Flags */
#define MQDHF_NEW_MSG_IDS 1
#define MQDHF_NONE        0

struct tagMQDH {
    MQCHAR4 StrucId;
    MQLONG  Version;
    MQLONG  StrucLength;                     /* with the records that follow */
    MQLONG  Encoding;
    MQLONG  CodedCharSetId;
    MQCHAR8 Format;
    MQLONG  Flags;
    MQLONG  PutMsgRecFields;                 /* MQPMRF_ */
    MQLONG  RecsPresent;                     /* number of records */
    MQLONG  ObjectRecOffset;                 /* from the start of the header */
    MQLONG  PutMsgRecOffset;                 /* from the start of the header */
};

#define MQDH_DEFAULT                             \
    {MQDH_STRUC_ID_ARRAY}, /* StrucId */         \
    MQDH_VERSION_1,        /* Version */         \
    0,                     /* StrucLength */     \
    0,                     /* Encoding */        \
    MQCCSI_UNDEFINED,      /* CodedCharSetId */  \
    {MQFMT_NONE_ARRAY},    /* Format */          \
    MQDHF_NONE,            /* Flags */           \
    MQPMRF_NONE,           /* PutMsgRecFields */ \
    0,                     /* RecsPresent */     \
    0,                     /* ObjectRecOffset */ \
    0                      /* PutMsgRecOffset */

/* -------------------------------------------------------------------------- */
/* MQTM: trigger message                                                      */
/* -------------------------------------------------------------------------- */

#define MQTM_STRUC_ID        "TM  "
#define MQTM_STRUC_ID_ARRAY  'T','M',' ',' '
#define MQTM_VERSION_1       1
#define MQTM_CURRENT_VERSION 1
#define MQTM_LENGTH_1        684
#define MQTM_CURRENT_LENGTH  684

struct tagMQTM {
    MQCHAR4   StrucId;
    MQLONG    Version;
    MQCHAR48  QName;
    MQCHAR48  ProcessName;
    MQCHAR64  TriggerData;
    MQLONG    ApplType;
    MQCHAR256 ApplId;
    MQCHAR128 EnvData;
    MQCHAR128 UserData;
};

#define MQTM_DEFAULT                         \
    {MQTM_STRUC_ID_ARRAY}, /* StrucId */     \
    MQTM_VERSION_1,        /* Version */     \
    {""},                  /* QName */       \
    {""},                  /* ProcessName */ \
    {""},                  /* TriggerData */ \
    0,                     /* ApplType */    \
    {""},                  /* ApplId */      \
    {""},                  /* EnvData */     \
    {""}                   /* UserData */

/* -------------------------------------------------------------------------- */
/* MQTMC2: trigger message as characters                                      */
/* -------------------------------------------------------------------------- */

#define MQTMC2_LENGTH_1       684
#define MQTMC2_LENGTH_2       732
#define MQTMC2_CURRENT_LENGTH 732

/* Identifier and versions, as characters */
#define MQTMC_STRUC_ID              "TMC "
#define MQTMC_STRUC_ID_ARRAY        'T','M','C',' '
#define MQTMC_VERSION_1             "   1"
#define MQTMC_VERSION_1_ARRAY       ' ',' ',' ','1'
#define MQTMC_VERSION_2             "   2"
#define MQTMC_VERSION_2_ARRAY       ' ',' ',' ','2'
#define MQTMC_CURRENT_VERSION       "   2"
#define MQTMC_CURRENT_VERSION_ARRAY ' ',' ',' ','2'

struct tagMQTMC2 {
    MQCHAR4   StrucId;
    MQCHAR4   Version;
    MQCHAR48  QName;
    MQCHAR48  ProcessName;
    MQCHAR64  TriggerData;
    MQCHAR4   ApplType;
    MQCHAR256 ApplId;
    MQCHAR128 EnvData;
    MQCHAR128 UserData;
    /* version 2 */
    MQCHAR48  QMgrName;
};

#define MQTMC2_DEFAULT                               \
    {MQTMC_STRUC_ID_ARRAY},        /* StrucId */     \
    {MQTMC_CURRENT_VERSION_ARRAY}, /* Version */     \
    {""},                          /* QName */       \
    {""},                          /* ProcessName */ \
    {""},                          /* TriggerData */ \
    {""},                          /* ApplType */    \
    {""},                          /* ApplId */      \
    {""},                          /* EnvData */     \
    {""},                          /* UserData */    \
    {""}                           /* QMgrName */

/* -------------------------------------------------------------------------- */
/* Headers of bridges, reference messages and workload information            */
/* -------------------------------------------------------------------------- */

/* CICS bridge header */
#define MQCIH_STRUC_ID             "CIH "
#define MQCIH_STRUC_ID_ARRAY       'C','I','H',' '
#define MQCIH_VERSION_1            1
#define MQCIH_VERSION_2            2
#define MQCIH_CURRENT_VERSION      2
#define MQCIH_LENGTH_1             164
#define MQCIH_LENGTH_2             180
#define MQCIH_CURRENT_LENGTH       180
#define MQCIH_NONE                 0x00000000
#define MQCIH_PASS_EXPIRATION      0x00000001
#define MQCIH_UNLIMITED_EXPIRATION 0x00000000
#define MQCIH_REPLY_WITHOUT_NULLS  0x00000002
#define MQCIH_REPLY_WITH_NULLS     0x00000000
#define MQCIH_SYNC_ON_RETURN       0x00000004
#define MQCIH_NO_SYNC_ON_RETURN    0x00000000

/* CICS bridge: return codes */
#define MQCRC_OK                    0
#define MQCRC_CICS_EXEC_ERROR       1
#define MQCRC_MQ_API_ERROR          2
#define MQCRC_BRIDGE_ERROR          3
#define MQCRC_BRIDGE_ABEND          4
#define MQCRC_APPLICATION_ABEND     5
#define MQCRC_SECURITY_ERROR        6
#define MQCRC_PROGRAM_NOT_AVAILABLE 7
#define MQCRC_BRIDGE_TIMEOUT        8
#define MQCRC_TRANSID_NOT_AVAILABLE 9

/* CICS bridge: unit-of-work control */
#define MQCUOWC_ONLY     0x00000111
#define MQCUOWC_CONTINUE 0x00010000
#define MQCUOWC_FIRST    0x00000011
#define MQCUOWC_MIDDLE   0x00000010
#define MQCUOWC_LAST     0x00000110
#define MQCUOWC_COMMIT   0x00000100
#define MQCUOWC_BACKOUT  0x00001100

/* CICS bridge: wait for a message */
#define MQCGWI_DEFAULT (-2)

/* CICS bridge: link types */
#define MQCLT_PROGRAM     1
#define MQCLT_TRANSACTION 2

/* CICS bridge: length of output data */
#define MQCODL_AS_INPUT (-1)

/* CICS bridge: descriptor flags */
#define MQCADSD_NONE      0x00000000
#define MQCADSD_SEND      0x00000001
#define MQCADSD_RECV      0x00000010
#define MQCADSD_MSGFORMAT 0x00000100

/* CICS bridge: conversational task */
#define MQCCT_YES 1
#define MQCCT_NO  0

/* CICS bridge: task end status */
#define MQCTES_NOSYNC  0x00000000
#define MQCTES_COMMIT  0x00000100
#define MQCTES_BACKOUT 0x00001100
#define MQCTES_ENDTASK 0x00010000

/* CICS bridge: facility */
#define MQCFAC_NONE       "\0\0\0\0\0\0\0\0"
#define MQCFAC_NONE_ARRAY '\0','\0','\0','\0','\0','\0','\0','\0'

/* CICS bridge: function names */
#define MQCFUNC_MQCONN       "CONN"
#define MQCFUNC_MQCONN_ARRAY 'C','O','N','N'
#define MQCFUNC_MQGET        "GET "
#define MQCFUNC_MQGET_ARRAY  'G','E','T',' '
#define MQCFUNC_MQINQ        "INQ "
#define MQCFUNC_MQINQ_ARRAY  'I','N','Q',' '
#define MQCFUNC_MQOPEN       "OPEN"
#define MQCFUNC_MQOPEN_ARRAY 'O','P','E','N'
#define MQCFUNC_MQPUT        "PUT "
#define MQCFUNC_MQPUT_ARRAY  'P','U','T',' '
#define MQCFUNC_MQPUT1       "PUT1"
#define MQCFUNC_MQPUT1_ARRAY 'P','U','T','1'
#define MQCFUNC_NONE         "    "
#define MQCFUNC_NONE_ARRAY   ' ',' ',' ',' '

/* CICS bridge: start codes */
#define MQCSC_START           "S   "
#define MQCSC_START_ARRAY     'S',' ',' ',' '
#define MQCSC_STARTDATA       "SD  "
#define MQCSC_STARTDATA_ARRAY 'S','D',' ',' '
#define MQCSC_TERMINPUT       "TD  "
#define MQCSC_TERMINPUT_ARRAY 'T','D',' ',' '
#define MQCSC_NONE            "    "
#define MQCSC_NONE_ARRAY      ' ',' ',' ',' '

/* IMS bridge header */
#define MQIIH_STRUC_ID             "IIH "
#define MQIIH_STRUC_ID_ARRAY       'I','I','H',' '
#define MQIIH_VERSION_1            1
#define MQIIH_CURRENT_VERSION      1
#define MQIIH_LENGTH_1             84
#define MQIIH_CURRENT_LENGTH       84
#define MQIIH_NONE                 0x00000000
#define MQIIH_PASS_EXPIRATION      0x00000001
#define MQIIH_UNLIMITED_EXPIRATION 0x00000000
#define MQIIH_REPLY_FORMAT_NONE    0x00000008
#define MQIIH_IGNORE_PURG          0x00000010
#define MQIIH_CM0_REQUEST_RESPONSE 0x00000020

/* IMS bridge: authenticator */
#define MQIAUT_NONE       "        "
#define MQIAUT_NONE_ARRAY ' ',' ',' ',' ',' ',' ',' ',' '

/* IMS bridge: transaction instance */
#define MQITII_NONE       "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"
#define MQITII_NONE_ARRAY '\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0'

/* IMS bridge: transaction states */
#define MQITS_IN_CONVERSATION     'C'
#define MQITS_NOT_IN_CONVERSATION ' '
#define MQITS_ARCHITECTED         'A'

/* IMS bridge: commit modes */
#define MQICM_COMMIT_THEN_SEND '0'
#define MQICM_SEND_THEN_COMMIT '1'

/* IMS bridge: security scopes */
#define MQISS_CHECK 'C'
#define MQISS_FULL  'F'

/* Reference-message header */
#define MQRMH_STRUC_ID        "RMH "
#define MQRMH_STRUC_ID_ARRAY  'R','M','H',' '
#define MQRMH_VERSION_1       1
#define MQRMH_CURRENT_VERSION 1
#define MQRMH_LENGTH_1        108
#define MQRMH_CURRENT_LENGTH  108

/* Reference message: flags and object instance */
#define MQRMHF_LAST      1
#define MQRMHF_NOT_LAST  0
#define MQOII_NONE       "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0" \
                         "\0\0\0\0\0\0\0\0"
#define MQOII_NONE_ARRAY '\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0','\0', \
                         '\0','\0','\0','\0','\0','\0','\0','\0'

/* Work-information header */
#define MQWIH_STRUC_ID        "WIH "
#define MQWIH_STRUC_ID_ARRAY  'W','I','H',' '
#define MQWIH_VERSION_1       1
#define MQWIH_CURRENT_VERSION 1
#define MQWIH_LENGTH_1        120
#define MQWIH_CURRENT_LENGTH  120
#define MQWIH_NONE            0

/* -------------------------------------------------------------------------- */
/* Selectors of MQINQ and MQSET                                               */
/* -------------------------------------------------------------------------- */

/* Integer attributes */
#define MQIA_FIRST                     1
#define MQIA_APPL_TYPE                 1
#define MQIA_CODED_CHAR_SET_ID         2
#define MQIA_CURRENT_Q_DEPTH           3
#define MQIA_DEF_INPUT_OPEN_OPTION     4
#define MQIA_DEF_PERSISTENCE           5
#define MQIA_DEF_PRIORITY              6
#define MQIA_DEFINITION_TYPE           7
#define MQIA_HARDEN_GET_BACKOUT        8
#define MQIA_INHIBIT_GET               9
#define MQIA_INHIBIT_PUT               10
#define MQIA_MAX_HANDLES               11
#define MQIA_USAGE                     12
#define MQIA_MAX_MSG_LENGTH            13
#define MQIA_MAX_PRIORITY              14
#define MQIA_MAX_Q_DEPTH               15
#define MQIA_MSG_DELIVERY_SEQUENCE     16
#define MQIA_OPEN_INPUT_COUNT          17
#define MQIA_OPEN_OUTPUT_COUNT         18
#define MQIA_NAME_COUNT                19
#define MQIA_Q_TYPE                    20
#define MQIA_RETENTION_INTERVAL        21
#define MQIA_BACKOUT_THRESHOLD         22
#define MQIA_SHAREABILITY              23
#define MQIA_TRIGGER_CONTROL           24
#define MQIA_TRIGGER_INTERVAL          25
#define MQIA_TRIGGER_MSG_PRIORITY      26
#define MQIA_CPI_LEVEL                 27
#define MQIA_TRIGGER_TYPE              28
#define MQIA_TRIGGER_DEPTH             29
#define MQIA_SYNCPOINT                 30
#define MQIA_COMMAND_LEVEL             31
#define MQIA_PLATFORM                  32
#define MQIA_MAX_UNCOMMITTED_MSGS      33
#define MQIA_DIST_LISTS                34
#define MQIA_TIME_SINCE_RESET          35
#define MQIA_HIGH_Q_DEPTH              36
#define MQIA_MSG_ENQ_COUNT             37
#define MQIA_MSG_DEQ_COUNT             38
#define MQIA_EXPIRY_INTERVAL           39
#define MQIA_Q_DEPTH_HIGH_LIMIT        40
#define MQIA_Q_DEPTH_LOW_LIMIT         41
#define MQIA_Q_DEPTH_MAX_EVENT         42
#define MQIA_Q_DEPTH_HIGH_EVENT        43
#define MQIA_Q_DEPTH_LOW_EVENT         44
#define MQIA_SCOPE                     45
#define MQIA_Q_SERVICE_INTERVAL_EVENT  46
#define MQIA_AUTHORITY_EVENT           47
#define MQIA_INHIBIT_EVENT             48
#define MQIA_LOCAL_EVENT               49
#define MQIA_REMOTE_EVENT              50
#define MQIA_CONFIGURATION_EVENT       51
#define MQIA_START_STOP_EVENT          52
#define MQIA_PERFORMANCE_EVENT         53
#define MQIA_Q_SERVICE_INTERVAL        54
#define MQIA_CHANNEL_AUTO_DEF          55
#define MQIA_CHANNEL_AUTO_DEF_EVENT    56
#define MQIA_INDEX_TYPE                57
#define MQIA_CLUSTER_WORKLOAD_LENGTH   58
#define MQIA_CLUSTER_Q_TYPE            59
#define MQIA_ARCHIVE                   60
#define MQIA_DEF_BIND                  61
#define MQIA_PAGESET_ID                62
#define MQIA_QSG_DISP                  63
#define MQIA_INTRA_GROUP_QUEUING       64
#define MQIA_IGQ_PUT_AUTHORITY         65
#define MQIA_AUTH_INFO_TYPE            66
#define MQIA_MSG_MARK_BROWSE_INTERVAL  68
#define MQIA_SSL_TASKS                 69
#define MQIA_CF_LEVEL                  70
#define MQIA_CF_RECOVER                71
#define MQIA_NAMELIST_TYPE             72
#define MQIA_CHANNEL_EVENT             73
#define MQIA_BRIDGE_EVENT              74
#define MQIA_SSL_EVENT                 75
#define MQIA_SSL_RESET_COUNT           76
#define MQIA_SHARED_Q_Q_MGR_NAME       77
#define MQIA_NPM_CLASS                 78
#define MQIA_MAX_OPEN_Q                80
#define MQIA_MONITOR_INTERVAL          81
#define MQIA_Q_USERS                   82
#define MQIA_MAX_GLOBAL_LOCKS          83
#define MQIA_MAX_LOCAL_LOCKS           84
#define MQIA_LISTENER_PORT_NUMBER      85
#define MQIA_BATCH_INTERFACE_AUTO      86
#define MQIA_CMD_SERVER_AUTO           87
#define MQIA_CMD_SERVER_CONVERT_MSG    88
#define MQIA_CMD_SERVER_DLQ_MSG        89
#define MQIA_MAX_Q_TRIGGERS            90
#define MQIA_TRIGGER_RESTART           91
#define MQIA_SSL_FIPS_REQUIRED         92
#define MQIA_IP_ADDRESS_VERSION        93
#define MQIA_LOGGER_EVENT              94
#define MQIA_CLWL_Q_RANK               95
#define MQIA_CLWL_Q_PRIORITY           96
#define MQIA_CLWL_MRU_CHANNELS         97
#define MQIA_CLWL_USEQ                 98
#define MQIA_COMMAND_EVENT             99
#define MQIA_ACTIVE_CHANNELS           100
#define MQIA_CHINIT_ADAPTERS           101
#define MQIA_ADOPTNEWMCA_CHECK         102
#define MQIA_ADOPTNEWMCA_TYPE          103
#define MQIA_ADOPTNEWMCA_INTERVAL      104
#define MQIA_CHINIT_DISPATCHERS        105
#define MQIA_DNS_WLM                   106
#define MQIA_LISTENER_TIMER            107
#define MQIA_LU62_CHANNELS             108
#define MQIA_MAX_CHANNELS              109
#define MQIA_OUTBOUND_PORT_MIN         110
#define MQIA_RECEIVE_TIMEOUT           111
#define MQIA_RECEIVE_TIMEOUT_TYPE      112
#define MQIA_RECEIVE_TIMEOUT_MIN       113
#define MQIA_TCP_CHANNELS              114
#define MQIA_TCP_KEEP_ALIVE            115
#define MQIA_TCP_STACK_TYPE            116
#define MQIA_CHINIT_TRACE_AUTO_START   117
#define MQIA_CHINIT_TRACE_TABLE_SIZE   118
#define MQIA_CHINIT_CONTROL            119
#define MQIA_CMD_SERVER_CONTROL        120
#define MQIA_SERVICE_TYPE              121
#define MQIA_MONITORING_CHANNEL        122
#define MQIA_MONITORING_Q              123
#define MQIA_MONITORING_AUTO_CLUSSDR   124
#define MQIA_STATISTICS_MQI            127
#define MQIA_STATISTICS_Q              128
#define MQIA_STATISTICS_CHANNEL        129
#define MQIA_STATISTICS_AUTO_CLUSSDR   130
#define MQIA_STATISTICS_INTERVAL       131
#define MQIA_ACCOUNTING_MQI            133
#define MQIA_ACCOUNTING_Q              134
#define MQIA_ACCOUNTING_INTERVAL       135
#define MQIA_ACCOUNTING_CONN_OVERRIDE  136
#define MQIA_TRACE_ROUTE_RECORDING     137
#define MQIA_ACTIVITY_RECORDING        138
#define MQIA_SERVICE_CONTROL           139
#define MQIA_OUTBOUND_PORT_MAX         140
#define MQIA_SECURITY_CASE             141
#define MQIA_QMOPT_CSMT_ON_ERROR       150
#define MQIA_QMOPT_CONS_INFO_MSGS      151
#define MQIA_QMOPT_CONS_WARNING_MSGS   152
#define MQIA_QMOPT_CONS_ERROR_MSGS     153
#define MQIA_QMOPT_CONS_CRITICAL_MSGS  154
#define MQIA_QMOPT_CONS_COMMS_MSGS     155
#define MQIA_QMOPT_CONS_REORG_MSGS     156
#define MQIA_QMOPT_CONS_SYSTEM_MSGS    157
#define MQIA_QMOPT_LOG_INFO_MSGS       158
#define MQIA_QMOPT_LOG_WARNING_MSGS    159
#define MQIA_QMOPT_LOG_ERROR_MSGS      160
#define MQIA_QMOPT_LOG_CRITICAL_MSGS   161
#define MQIA_QMOPT_LOG_COMMS_MSGS      162
#define MQIA_QMOPT_LOG_REORG_MSGS      163
#define MQIA_QMOPT_LOG_SYSTEM_MSGS     164
#define MQIA_QMOPT_TRACE_MQI_CALLS     165
#define MQIA_QMOPT_TRACE_COMMS         166
#define MQIA_QMOPT_TRACE_REORG         167
#define MQIA_QMOPT_TRACE_CONVERSION    168
#define MQIA_QMOPT_TRACE_SYSTEM        169
#define MQIA_QMOPT_INTERNAL_DUMP       170
#define MQIA_MAX_RECOVERY_TASKS        171
#define MQIA_MAX_CLIENTS               172
#define MQIA_AUTO_REORGANIZATION       173
#define MQIA_AUTO_REORG_INTERVAL       174
#define MQIA_DURABLE_SUB               175
#define MQIA_MULTICAST                 176
#define MQIA_INHIBIT_PUB               181
#define MQIA_INHIBIT_SUB               182
#define MQIA_TREE_LIFE_TIME            183
#define MQIA_DEF_PUT_RESPONSE_TYPE     184
#define MQIA_TOPIC_DEF_PERSISTENCE     185
#define MQIA_MASTER_ADMIN              186
#define MQIA_PUBSUB_MODE               187
#define MQIA_DEF_READ_AHEAD            188
#define MQIA_READ_AHEAD                189
#define MQIA_PROPERTY_CONTROL          190
#define MQIA_MAX_PROPERTIES_LENGTH     192
#define MQIA_BASE_TYPE                 193
#define MQIA_PM_DELIVERY               195
#define MQIA_NPM_DELIVERY              196
#define MQIA_PROXY_SUB                 199
#define MQIA_PUBSUB_NP_MSG             203
#define MQIA_SUB_COUNT                 204
#define MQIA_PUBSUB_NP_RESP            205
#define MQIA_PUBSUB_MAXMSG_RETRY_COUNT 206
#define MQIA_PUBSUB_SYNC_PT            207
#define MQIA_TOPIC_TYPE                208
#define MQIA_PUB_COUNT                 215
#define MQIA_WILDCARD_OPERATION        216
#define MQIA_SUB_SCOPE                 218
#define MQIA_PUB_SCOPE                 219
#define MQIA_GROUP_UR                  221
#define MQIA_UR_DISP                   222
#define MQIA_COMM_INFO_TYPE            223
#define MQIA_CF_OFFLOAD                224
#define MQIA_CF_OFFLOAD_THRESHOLD1     225
#define MQIA_CF_OFFLOAD_THRESHOLD2     226
#define MQIA_CF_OFFLOAD_THRESHOLD3     227
#define MQIA_CF_SMDS_BUFFERS           228
#define MQIA_CF_OFFLDUSE               229
#define MQIA_MAX_RESPONSES             230
#define MQIA_RESPONSE_RESTART_POINT    231
#define MQIA_COMM_EVENT                232
#define MQIA_MCAST_BRIDGE              233
#define MQIA_USE_DEAD_LETTER_Q         234
#define MQIA_TOLERATE_UNPROTECTED      235
#define MQIA_SIGNATURE_ALGORITHM       236
#define MQIA_ENCRYPTION_ALGORITHM      237
#define MQIA_POLICY_VERSION            238
#define MQIA_ACTIVITY_CONN_OVERRIDE    239
#define MQIA_ACTIVITY_TRACE            240
#define MQIA_SUB_CONFIGURATION_EVENT   242
#define MQIA_XR_CAPABILITY             243
#define MQIA_CF_RECAUTO                244
#define MQIA_QMGR_CFCONLOS             245
#define MQIA_CF_CFCONLOS               246
#define MQIA_SUITE_B_STRENGTH          247
#define MQIA_CHLAUTH_RECORDS           248
#define MQIA_PUBSUB_CLUSTER            249
#define MQIA_DEF_CLUSTER_XMIT_Q_TYPE   250
#define MQIA_PROT_POLICY_CAPABILITY    251
#define MQIA_CERT_VAL_POLICY           252
#define MQIA_TOPIC_NODE_COUNT          253
#define MQIA_REVERSE_DNS_LOOKUP        254
#define MQIA_CLUSTER_PUB_ROUTE         255
#define MQIA_CLUSTER_OBJECT_STATE      256
#define MQIA_CHECK_LOCAL_BINDING       257
#define MQIA_CHECK_CLIENT_BINDING      258
#define MQIA_AUTHENTICATION_FAIL_DELAY 259
#define MQIA_ADOPT_CONTEXT             260
#define MQIA_LDAP_SECURE_COMM          261
#define MQIA_DISPLAY_TYPE              262
#define MQIA_LDAP_AUTHORMD             263
#define MQIA_LDAP_NESTGRP              264
#define MQIA_AMQP_CAPABILITY           265
#define MQIA_AUTHENTICATION_METHOD     266
#define MQIA_KEY_REUSE_COUNT           267
#define MQIA_MEDIA_IMAGE_SCHEDULING    268
#define MQIA_MEDIA_IMAGE_INTERVAL      269
#define MQIA_MEDIA_IMAGE_LOG_LENGTH    270
#define MQIA_MEDIA_IMAGE_RECOVER_OBJ   271
#define MQIA_MEDIA_IMAGE_RECOVER_Q     272
#define MQIA_ADVANCED_CAPABILITY       273
#define MQIA_MAX_Q_FILE_SIZE           274
#define MQIA_STREAM_QUEUE_QOS          275
#define MQIA_LAST_USED                 275
#define MQIA_CAP_EXPIRY                276
#define MQIA_LAST                      2000
#define MQIA_USER_LIST                 2000

/* Character attributes */
#define MQCA_FIRST                   2001
#define MQCA_APPL_ID                 2001
#define MQCA_BASE_OBJECT_NAME        2002
#define MQCA_BASE_Q_NAME             2002
#define MQCA_COMMAND_INPUT_Q_NAME    2003
#define MQCA_CREATION_DATE           2004
#define MQCA_CREATION_TIME           2005
#define MQCA_DEAD_LETTER_Q_NAME      2006
#define MQCA_ENV_DATA                2007
#define MQCA_INITIATION_Q_NAME       2008
#define MQCA_NAMELIST_DESC           2009
#define MQCA_NAMELIST_NAME           2010
#define MQCA_PROCESS_DESC            2011
#define MQCA_PROCESS_NAME            2012
#define MQCA_Q_DESC                  2013
#define MQCA_Q_MGR_DESC              2014
#define MQCA_Q_MGR_NAME              2015
#define MQCA_Q_NAME                  2016
#define MQCA_REMOTE_Q_MGR_NAME       2017
#define MQCA_REMOTE_Q_NAME           2018
#define MQCA_BACKOUT_REQ_Q_NAME      2019
#define MQCA_NAMES                   2020
#define MQCA_USER_DATA               2021
#define MQCA_STORAGE_CLASS           2022
#define MQCA_TRIGGER_DATA            2023
#define MQCA_XMIT_Q_NAME             2024
#define MQCA_DEF_XMIT_Q_NAME         2025
#define MQCA_CHANNEL_AUTO_DEF_EXIT   2026
#define MQCA_ALTERATION_DATE         2027
#define MQCA_ALTERATION_TIME         2028
#define MQCA_CLUSTER_NAME            2029
#define MQCA_CLUSTER_NAMELIST        2030
#define MQCA_CLUSTER_Q_MGR_NAME      2031
#define MQCA_Q_MGR_IDENTIFIER        2032
#define MQCA_CLUSTER_WORKLOAD_EXIT   2033
#define MQCA_CLUSTER_WORKLOAD_DATA   2034
#define MQCA_REPOSITORY_NAME         2035
#define MQCA_REPOSITORY_NAMELIST     2036
#define MQCA_CLUSTER_DATE            2037
#define MQCA_CLUSTER_TIME            2038
#define MQCA_CF_STRUC_NAME           2039
#define MQCA_QSG_NAME                2040
#define MQCA_IGQ_USER_ID             2041
#define MQCA_STORAGE_CLASS_DESC      2042
#define MQCA_XCF_GROUP_NAME          2043
#define MQCA_XCF_MEMBER_NAME         2044
#define MQCA_AUTH_INFO_NAME          2045
#define MQCA_AUTH_INFO_DESC          2046
#define MQCA_LDAP_USER_NAME          2047
#define MQCA_LDAP_PASSWORD           2048
#define MQCA_SSL_KEY_REPOSITORY      2049
#define MQCA_SSL_CRL_NAMELIST        2050
#define MQCA_SSL_CRYPTO_HARDWARE     2051
#define MQCA_CF_STRUC_DESC           2052
#define MQCA_AUTH_INFO_CONN_NAME     2053
#define MQCA_INITIAL_KEY             2054
#define MQCA_SSL_KEY_REPO_PASSWORD   2055
#define MQCA_CICS_FILE_NAME          2060
#define MQCA_TRIGGER_TRANS_ID        2061
#define MQCA_TRIGGER_PROGRAM_NAME    2062
#define MQCA_TRIGGER_TERM_ID         2063
#define MQCA_TRIGGER_CHANNEL_NAME    2064
#define MQCA_SYSTEM_LOG_Q_NAME       2065
#define MQCA_MONITOR_Q_NAME          2066
#define MQCA_COMMAND_REPLY_Q_NAME    2067
#define MQCA_BATCH_INTERFACE_ID      2068
#define MQCA_SSL_KEY_LIBRARY         2069
#define MQCA_SSL_KEY_MEMBER          2070
#define MQCA_DNS_GROUP               2071
#define MQCA_LU_GROUP_NAME           2072
#define MQCA_LU_NAME                 2073
#define MQCA_LU62_ARM_SUFFIX         2074
#define MQCA_TCP_NAME                2075
#define MQCA_CHINIT_SERVICE_PARM     2076
#define MQCA_SERVICE_NAME            2077
#define MQCA_SERVICE_DESC            2078
#define MQCA_SERVICE_START_COMMAND   2079
#define MQCA_SERVICE_START_ARGS      2080
#define MQCA_SERVICE_STOP_COMMAND    2081
#define MQCA_SERVICE_STOP_ARGS       2082
#define MQCA_STDOUT_DESTINATION      2083
#define MQCA_STDERR_DESTINATION      2084
#define MQCA_TPIPE_NAME              2085
#define MQCA_PASS_TICKET_APPL        2086
#define MQCA_AUTO_REORG_START_TIME   2090
#define MQCA_AUTO_REORG_CATALOG      2091
#define MQCA_TOPIC_NAME              2092
#define MQCA_TOPIC_DESC              2093
#define MQCA_TOPIC_STRING            2094
#define MQCA_MODEL_DURABLE_Q         2096
#define MQCA_MODEL_NON_DURABLE_Q     2097
#define MQCA_RESUME_DATE             2098
#define MQCA_RESUME_TIME             2099
#define MQCA_CHILD                   2101
#define MQCA_PARENT                  2102
#define MQCA_ADMIN_TOPIC_NAME        2105
#define MQCA_TOPIC_STRING_FILTER     2108
#define MQCA_AUTH_INFO_OCSP_URL      2109
#define MQCA_COMM_INFO_NAME          2110
#define MQCA_COMM_INFO_DESC          2111
#define MQCA_POLICY_NAME             2112
#define MQCA_SIGNER_DN               2113
#define MQCA_RECIPIENT_DN            2114
#define MQCA_INSTALLATION_DESC       2115
#define MQCA_INSTALLATION_NAME       2116
#define MQCA_INSTALLATION_PATH       2117
#define MQCA_CHLAUTH_DESC            2118
#define MQCA_CUSTOM                  2119
#define MQCA_VERSION                 2120
#define MQCA_CERT_LABEL              2121
#define MQCA_XR_VERSION              2122
#define MQCA_XR_SSL_CIPHER_SUITES    2123
#define MQCA_CLUS_CHL_NAME           2124
#define MQCA_CONN_AUTH               2125
#define MQCA_LDAP_BASE_DN_USERS      2126
#define MQCA_LDAP_SHORT_USER_FIELD   2127
#define MQCA_LDAP_USER_OBJECT_CLASS  2128
#define MQCA_LDAP_USER_ATTR_FIELD    2129
#define MQCA_SSL_CERT_ISSUER_NAME    2130
#define MQCA_QSG_CERT_LABEL          2131
#define MQCA_LDAP_BASE_DN_GROUPS     2132
#define MQCA_LDAP_GROUP_OBJECT_CLASS 2133
#define MQCA_LDAP_GROUP_ATTR_FIELD   2134
#define MQCA_LDAP_FIND_GROUP_FIELD   2135
#define MQCA_AMQP_VERSION            2136
#define MQCA_AMQP_SSL_CIPHER_SUITES  2137
#define MQCA_STREAM_QUEUE_NAME       2138
#define MQCA_LAST_USED               2138
#define MQCA_LAST                    4000
#define MQCA_USER_LIST               4000

/* Values in place of an integer attribute */
#define MQIAV_NOT_APPLICABLE (-1)
#define MQIAV_UNDEFINED      (-2)

/* Ranges of byte-string and group selectors, and of user attributes */
#define MQBA_FIRST 6001
#define MQBA_LAST  8000
#define MQGA_FIRST 8001
#define MQGA_LAST  9000
#define MQUA_FIRST 65536
#define MQUA_LAST  999999999

/* -------------------------------------------------------------------------- */
/* Attributes of queues                                                       */
/* -------------------------------------------------------------------------- */

/* Queue types */
#define MQQT_LOCAL   1
#define MQQT_MODEL   2
#define MQQT_ALIAS   3
#define MQQT_REMOTE  6
#define MQQT_CLUSTER 7
#define MQQT_ALL     1001

/* Types of clustered queues */
#define MQCQT_LOCAL_Q     1
#define MQCQT_ALIAS_Q     2
#define MQCQT_REMOTE_Q    3
#define MQCQT_Q_MGR_ALIAS 4

/* Definition types */
#define MQQDT_PREDEFINED        1
#define MQQDT_PERMANENT_DYNAMIC 2
#define MQQDT_TEMPORARY_DYNAMIC 3
#define MQQDT_SHARED_DYNAMIC    4

/* Get, put, sharing and backout attributes */
#define MQQA_GET_INHIBITED        1
#define MQQA_GET_ALLOWED          0
#define MQQA_PUT_INHIBITED        1
#define MQQA_PUT_ALLOWED          0
#define MQQA_SHAREABLE            1
#define MQQA_NOT_SHAREABLE        0
#define MQQA_BACKOUT_HARDENED     1
#define MQQA_BACKOUT_NOT_HARDENED 0

/* Message delivery sequence */
#define MQMDS_PRIORITY 0
#define MQMDS_FIFO     1

/* Class of non-persistent messages */
#define MQNPM_CLASS_NORMAL 0
#define MQNPM_CLASS_HIGH   10

/* Trigger control, type and restart */
#define MQTC_OFF              0
#define MQTC_ON               1
#define MQTT_NONE             0
#define MQTT_FIRST            1
#define MQTT_EVERY            2
#define MQTT_DEPTH            3
#define MQTRIGGER_RESTART_NO  0
#define MQTRIGGER_RESTART_YES 1

/* Usage */
#define MQUS_NORMAL       0
#define MQUS_TRANSMISSION 1

/* Distribution lists */
#define MQDL_SUPPORTED     1
#define MQDL_NOT_SUPPORTED 0

/* Index types */
#define MQIT_NONE      0
#define MQIT_MSG_ID    1
#define MQIT_CORREL_ID 2
#define MQIT_MSG_TOKEN 4
#define MQIT_GROUP_ID  5

/* Default binding */
#define MQBND_BIND_ON_OPEN   0
#define MQBND_BIND_NOT_FIXED 1
#define MQBND_BIND_ON_GROUP  2

/* Queue-sharing group disposition */
#define MQQSGD_ALL     (-1)
#define MQQSGD_Q_MGR   0
#define MQQSGD_COPY    1
#define MQQSGD_SHARED  2
#define MQQSGD_GROUP   3
#define MQQSGD_PRIVATE 4
#define MQQSGD_LIVE    6

/* Size of a queue file */
#define MQQFS_DEFAULT (-1)

/* Read ahead */
#define MQREADA_NO        0
#define MQREADA_YES       1
#define MQREADA_DISABLED  2
#define MQREADA_INHIBITED 3
#define MQREADA_BACKLOG   4

/* Properties in messages got */
#define MQPROP_COMPATIBILITY       0
#define MQPROP_NONE                1
#define MQPROP_ALL                 2
#define MQPROP_FORCE_MQRFH2        3
#define MQPROP_V6COMPAT            4
#define MQPROP_UNRESTRICTED_LENGTH (-1)

/* Streaming of messages to another queue */
#define MQST_BEST_EFFORT 0
#define MQST_MUST_DUP    1

/* Scope of a queue definition */
#define MQSCO_Q_MGR 1
#define MQSCO_CELL  2

/* Media recovery by images */
#define MQIMGRCOV_NO       0
#define MQIMGRCOV_YES      1
#define MQIMGRCOV_AS_Q_MGR 2

/* Cluster workload */
#define MQCLWL_USEQ_LOCAL    0
#define MQCLWL_USEQ_ANY      1
#define MQCLWL_USEQ_AS_Q_MGR (-3)

/* -------------------------------------------------------------------------- */
/* Attributes of queue managers                                               */
/* -------------------------------------------------------------------------- */

/* Command levels */
#define MQCMDL_LEVEL_1       100
#define MQCMDL_LEVEL_101     101
#define MQCMDL_LEVEL_110     110
#define MQCMDL_LEVEL_114     114
#define MQCMDL_LEVEL_120     120
#define MQCMDL_LEVEL_200     200
#define MQCMDL_LEVEL_201     201
#define MQCMDL_LEVEL_210     210
#define MQCMDL_LEVEL_211     211
#define MQCMDL_LEVEL_220     220
#define MQCMDL_LEVEL_221     221
#define MQCMDL_LEVEL_230     230
#define MQCMDL_LEVEL_320     320
#define MQCMDL_LEVEL_420     420
#define MQCMDL_LEVEL_500     500
#define MQCMDL_LEVEL_510     510
#define MQCMDL_LEVEL_520     520
#define MQCMDL_LEVEL_530     530
#define MQCMDL_LEVEL_531     531
#define MQCMDL_LEVEL_600     600
#define MQCMDL_LEVEL_700     700
#define MQCMDL_LEVEL_701     701
#define MQCMDL_LEVEL_710     710
#define MQCMDL_LEVEL_711     711
#define MQCMDL_LEVEL_750     750
#define MQCMDL_LEVEL_800     800
#define MQCMDL_LEVEL_801     801
#define MQCMDL_LEVEL_802     802
#define MQCMDL_LEVEL_900     900
#define MQCMDL_LEVEL_901     901
#define MQCMDL_LEVEL_902     902
#define MQCMDL_LEVEL_903     903
#define MQCMDL_LEVEL_904     904
#define MQCMDL_LEVEL_905     905
#define MQCMDL_LEVEL_910     910
#define MQCMDL_LEVEL_911     911
#define MQCMDL_LEVEL_912     912
#define MQCMDL_LEVEL_913     913
#define MQCMDL_LEVEL_914     914
#define MQCMDL_LEVEL_915     915
#define MQCMDL_LEVEL_920     920
#define MQCMDL_LEVEL_921     921
#define MQCMDL_LEVEL_922     922
#define MQCMDL_LEVEL_923     923
#define MQCMDL_LEVEL_924     924
#define MQCMDL_LEVEL_925     925
#define MQCMDL_CURRENT_LEVEL 925
#define MQCMDL_LEVEL_930     930
#define MQCMDL_LEVEL_931     931
#define MQCMDL_LEVEL_932     932
#define MQCMDL_LEVEL_933     933
#define MQCMDL_LEVEL_934     934
#define MQCMDL_LEVEL_935     935
#define MQCMDL_LEVEL_940     940
#define MQCMDL_LEVEL_941     941

/* Platforms */
#define MQPL_MVS        1
#define MQPL_OS390      1
#define MQPL_ZOS        1
#define MQPL_OS2        2
#define MQPL_AIX        3
#define MQPL_UNIX       3
#define MQPL_OS400      4
#define MQPL_WINDOWS    5
#define MQPL_WINDOWS_NT 11
#define MQPL_VMS        12
#define MQPL_NSK        13
#define MQPL_NSS        13
#define MQPL_OPEN_TP1   15
#define MQPL_VM         18
#define MQPL_TPF        23
#define MQPL_VSE        27
#define MQPL_APPLIANCE  28
#define MQPL_NATIVE     3

/* Syncpoint */
#define MQSP_AVAILABLE     1
#define MQSP_NOT_AVAILABLE 0

/* Recording, monitoring and statistics */
#define MQMON_NOT_AVAILABLE  (-1)
#define MQMON_NONE           (-1)
#define MQMON_Q_MGR          (-3)
#define MQMON_OFF            0
#define MQMON_ON             1
#define MQMON_DISABLED       0
#define MQMON_ENABLED        1
#define MQMON_LOW            17
#define MQMON_MEDIUM         33
#define MQMON_HIGH           65
#define MQRECORDING_DISABLED 0
#define MQRECORDING_Q        1
#define MQRECORDING_MSG      2
#define MQACTV_DETAIL_LOW    1
#define MQACTV_DETAIL_MEDIUM 2
#define MQACTV_DETAIL_HIGH   3
#define MQTRAXSTR_NO         0
#define MQTRAXSTR_YES        1

/* Publish/subscribe mode, properties and clusters */
#define MQPSM_DISABLED    0
#define MQPSM_COMPAT      1
#define MQPSM_ENABLED     2
#define MQPSPROP_NONE     0
#define MQPSPROP_COMPAT   1
#define MQPSPROP_RFH2     2
#define MQPSPROP_MSGPROP  3
#define MQPSCLUS_DISABLED 0
#define MQPSCLUS_ENABLED  1

/* Adopting a channel agent */
#define MQADOPT_CHECK_NONE         0
#define MQADOPT_CHECK_ALL          1
#define MQADOPT_CHECK_Q_MGR_NAME   2
#define MQADOPT_CHECK_NET_ADDR     4
#define MQADOPT_CHECK_CHANNEL_NAME 8
#define MQADOPT_TYPE_NO            0
#define MQADOPT_TYPE_ALL           1
#define MQADOPT_TYPE_SVR           2
#define MQADOPT_TYPE_SDR           4
#define MQADOPT_TYPE_RCVR          8
#define MQADOPT_TYPE_CLUSRCVR      16

/* Automatic channel definition and channel authentication */
#define MQCHAD_DISABLED 0
#define MQCHAD_ENABLED  1
#define MQCHLA_DISABLED 0
#define MQCHLA_ENABLED  1

/* Command server */
#define MQCSRV_CONVERT_NO  0
#define MQCSRV_CONVERT_YES 1
#define MQCSRV_DLQ_NO      0
#define MQCSRV_DLQ_YES     1

/* Network */
#define MQDNSWLM_NO         0
#define MQDNSWLM_YES        1
#define MQIPADDR_IPV4       0
#define MQIPADDR_IPV6       1
#define MQRCVTIME_MULTIPLY  0
#define MQRCVTIME_ADD       1
#define MQRCVTIME_EQUAL     2
#define MQTCPKEEP_NO        0
#define MQTCPKEEP_YES       1
#define MQTCPSTACK_SINGLE   0
#define MQTCPSTACK_MULTIPLE 1
#define MQRDNS_ENABLED      0
#define MQRDNS_DISABLED     1

/* Expiry interval and browse mark interval */
#define MQEXPI_OFF       0
#define MQMMBI_UNLIMITED (-1)

/* Intra-group queuing */
#define MQIGQ_DISABLED           0
#define MQIGQ_ENABLED            1
#define MQIGQPA_DEFAULT          1
#define MQIGQPA_CONTEXT          2
#define MQIGQPA_ONLY_IGQ         3
#define MQIGQPA_ALTERNATE_OR_IGQ 4
#define MQSQQM_USE               0
#define MQSQQM_IGNORE            1
#define MQGUR_DISABLED           0
#define MQGUR_ENABLED            1

/* Queue manager options */
#define MQQMOPT_DISABLED 0
#define MQQMOPT_ENABLED  1
#define MQQMOPT_REPLY    2

/* Security */
#define MQSCYC_UPPER          0
#define MQSCYC_MIXED          1
#define MQKEY_REUSE_DISABLED  0
#define MQKEY_REUSE_UNLIMITED (-1)

/* Capabilities */
#define MQCAP_NOT_SUPPORTED 0
#define MQCAP_SUPPORTED     1
#define MQCAP_EXPIRED       2

/* Media images */
#define MQMEDIMGSCHED_MANUAL 0
#define MQMEDIMGSCHED_AUTO   1
#define MQMEDIMGINTVL_OFF    0
#define MQMEDIMGLOGLN_OFF    0

/* Application functions */
#define MQFUN_TYPE_UNKNOWN   0
#define MQFUN_TYPE_JVM       1
#define MQFUN_TYPE_PROGRAM   2
#define MQFUN_TYPE_PROCEDURE 3
#define MQFUN_TYPE_USERDEF   4
#define MQFUN_TYPE_COMMAND   5

/* Application limits */
#define MQCEX_NOLIMIT   (-1)
#define MQCEX_AS_PARENT (-2)

/* Default transmission queues of clusters */
#define MQCLXQ_SCTQ    0
#define MQCLXQ_CHANNEL 1

/* -------------------------------------------------------------------------- */
/* Attributes of other objects                                                */
/* -------------------------------------------------------------------------- */

/* Namelists */
#define MQNC_MAX_NAMELIST_NAME_COUNT 256
#define MQNT_NONE                    0
#define MQNT_Q                       1
#define MQNT_CLUSTER                 2
#define MQNT_AUTH_INFO               4
#define MQNT_ALL                     1001

/* Topics */
#define MQDLV_AS_PARENT         0
#define MQDLV_ALL               1
#define MQDLV_ALL_DUR           2
#define MQDLV_ALL_AVAIL         3
#define MQMASTER_NO             0
#define MQMASTER_YES            1
#define MQSCOPE_ALL             0
#define MQSCOPE_AS_PARENT       1
#define MQSCOPE_QMGR            4
#define MQTA_BLOCK              1
#define MQTA_PASSTHRU           2
#define MQTA_SUB_AS_PARENT      0
#define MQTA_SUB_INHIBITED      1
#define MQTA_SUB_ALLOWED        2
#define MQTA_PROXY_SUB_FORCE    1
#define MQTA_PROXY_SUB_FIRSTUSE 2
#define MQTA_PUB_AS_PARENT      0
#define MQTA_PUB_INHIBITED      1
#define MQTA_PUB_ALLOWED        2
#define MQTOPT_LOCAL            0
#define MQTOPT_CLUSTER          1
#define MQTOPT_ALL              2
#define MQUSEDLQ_AS_PARENT      0
#define MQUSEDLQ_NO             1
#define MQUSEDLQ_YES            2
#define MQCLROUTE_DIRECT        0
#define MQCLROUTE_TOPIC_HOST    1
#define MQCLROUTE_NONE          2
#define MQCLST_ACTIVE           0
#define MQCLST_PENDING          1
#define MQCLST_INVALID          2
#define MQCLST_ERROR            3

/* Multicast and communication information */
#define MQMC_AS_PARENT  0
#define MQMC_ENABLED    1
#define MQMC_DISABLED   2
#define MQMC_ONLY       3
#define MQCIT_MULTICAST 1
#define MQMCB_DISABLED  0
#define MQMCB_ENABLED   1
#define MQMULC_STANDARD 0
#define MQMULC_REFINED  1
#define MQMCP_REPLY     2
#define MQMCP_USER      1
#define MQMCP_NONE      0
#define MQMCP_ALL       (-1)
#define MQMCP_COMPAT    (-2)
#define MQNSH_NONE      0
#define MQNSH_ALL       (-1)

/* Subscriptions */
#define MQSUB_DURABLE_AS_PARENT 0
#define MQSUB_DURABLE_ALLOWED   1
#define MQSUB_DURABLE_INHIBITED 2
#define MQSUB_DURABLE_ALL       (-1)
#define MQSUB_DURABLE_YES       1
#define MQSUB_DURABLE_NO        2
#define MQDC_MANAGED            1
#define MQDC_PROVIDED           2
#define MQRU_PUBLISH_ON_REQUEST 1
#define MQRU_PUBLISH_ALL        2
#define MQTSCOPE_QMGR           1
#define MQTSCOPE_ALL            2
#define MQVU_FIXED_USER         1
#define MQVU_ANY_USER           2
#define MQWS_DEFAULT            0
#define MQWS_CHAR               1
#define MQWS_TOPIC              2

/* Authentication information */
#define MQCHK_OPTIONAL            0
#define MQCHK_NONE                1
#define MQCHK_REQUIRED_ADMIN      2
#define MQCHK_REQUIRED            3
#define MQCHK_AS_Q_MGR            4
#define MQADPCTX_NO               0
#define MQADPCTX_YES              1
#define MQSECCOMM_NO              0
#define MQSECCOMM_YES             1
#define MQSECCOMM_ANON            2
#define MQLDAP_AUTHORMD_OS        0
#define MQLDAP_AUTHORMD_SEARCHGRP 1
#define MQLDAP_AUTHORMD_SEARCHUSR 2
#define MQLDAP_AUTHORMD_SRCHGRPSN 3
#define MQLDAP_NESTGRP_NO         0
#define MQLDAP_NESTGRP_YES        1
#define MQAUTHENTICATE_OS         0
#define MQAUTHENTICATE_PAM        1
#define MQLDAPC_INACTIVE          0
#define MQLDAPC_CONNECTED         1
#define MQLDAPC_ERROR             2

/* Channel authentication records */
#define MQUSRC_MAP      0
#define MQUSRC_NOACCESS 1
#define MQUSRC_CHANNEL  2
#define MQWARN_YES      1
#define MQWARN_NO       0

/* Telemetry keep-alive */
#define MQ_MQTT_MAX_KEEP_ALIVE 65536

/* Services and listeners */
#define MQSVC_TYPE_COMMAND        0
#define MQSVC_TYPE_SERVER         1
#define MQSVC_CONTROL_Q_MGR       0
#define MQSVC_CONTROL_Q_MGR_START 1
#define MQSVC_CONTROL_MANUAL      2
#define MQSVC_STATUS_STOPPED      0
#define MQSVC_STATUS_STARTING     1
#define MQSVC_STATUS_RUNNING      2
#define MQSVC_STATUS_STOPPING     3
#define MQSVC_STATUS_RETRYING     4

/* Coupling-facility structures */
#define MQCFR_YES            1
#define MQCFR_NO             0
#define MQRECAUTO_NO         0
#define MQRECAUTO_YES        1
#define MQCFCONLOS_TERMINATE 0
#define MQCFCONLOS_TOLERATE  1
#define MQCFCONLOS_ASQMGR    2
#define MQDSB_DEFAULT        0
#define MQDSB_8K             1
#define MQDSB_16K            2
#define MQDSB_32K            3
#define MQDSB_64K            4
#define MQDSB_128K           5
#define MQDSB_256K           6
#define MQDSB_512K           7
#define MQDSB_1024K          8
#define MQDSB_1M             8
#define MQDSE_DEFAULT        0
#define MQDSE_YES            1
#define MQDSE_NO             2
#define MQCFOFFLD_NONE       0
#define MQCFOFFLD_SMDS       1
#define MQCFOFFLD_DB2        2
#define MQCFOFFLD_BOTH       3
#define MQREORG_DISABLED     0
#define MQREORG_ENABLED      1

/* Objects of different origin */
#define MQSYSOBJ_YES 0
#define MQSYSOBJ_NO  1
#define MQOM_NO      0
#define MQOM_YES     1

/* -------------------------------------------------------------------------- */
/* Calls                                                                      */
/* -------------------------------------------------------------------------- */

/* Connections */
void MQENTRY MQCONN(PMQCHAR pQMgrName, PMQHCONN pHconn, PMQLONG pCompCode, PMQLONG pReason) MQ_NOTHROW;
void MQENTRY MQCONNX(PMQCHAR pQMgrName, PMQCNO pConnectOpts, PMQHCONN pHconn, PMQLONG pCompCode,
                     PMQLONG pReason) MQ_NOTHROW;
void MQENTRY MQDISC(PMQHCONN pHconn, PMQLONG pCompCode, PMQLONG pReason) MQ_NOTHROW;

/* Objects */
void MQENTRY MQOPEN(MQHCONN Hconn, PMQVOID pObjDesc, MQLONG Options, PMQHOBJ pHobj, PMQLONG pCompCode,
                    PMQLONG pReason) MQ_NOTHROW;
void MQENTRY MQCLOSE(MQHCONN Hconn, PMQHOBJ pHobj, MQLONG Options, PMQLONG pCompCode,
                     PMQLONG pReason) MQ_NOTHROW;
void MQENTRY MQINQ(MQHCONN Hconn, MQHOBJ Hobj, MQLONG SelectorCount, PMQLONG pSelectors, MQLONG IntAttrCount,
                   PMQLONG pIntAttrs, MQLONG CharAttrLength, PMQCHAR pCharAttrs, PMQLONG pCompCode,
                   PMQLONG pReason) MQ_NOTHROW;
void MQENTRY MQSET(MQHCONN Hconn, MQHOBJ Hobj, MQLONG SelectorCount, PMQLONG pSelectors, MQLONG IntAttrCount,
                   PMQLONG pIntAttrs, MQLONG CharAttrLength, PMQCHAR pCharAttrs, PMQLONG pCompCode,
                   PMQLONG pReason) MQ_NOTHROW;

/* Messages */
void MQENTRY MQPUT(MQHCONN Hconn, MQHOBJ Hobj, PMQVOID pMsgDesc, PMQVOID pPutMsgOpts, MQLONG BufferLength,
                   PMQVOID pBuffer, PMQLONG pCompCode, PMQLONG pReason) MQ_NOTHROW;
void MQENTRY MQPUT1(MQHCONN Hconn, PMQVOID pObjDesc, PMQVOID pMsgDesc, PMQVOID pPutMsgOpts,
                    MQLONG BufferLength, PMQVOID pBuffer, PMQLONG pCompCode, PMQLONG pReason) MQ_NOTHROW;
void MQENTRY MQGET(MQHCONN Hconn, MQHOBJ Hobj, PMQVOID pMsgDesc, PMQVOID pGetMsgOpts, MQLONG BufferLength,
                   PMQVOID pBuffer, PMQLONG pDataLength, PMQLONG pCompCode, PMQLONG pReason) MQ_NOTHROW;

/* Units of work */
void MQENTRY MQBEGIN(MQHCONN Hconn, PMQVOID pBeginOptions, PMQLONG pCompCode, PMQLONG pReason) MQ_NOTHROW;
void MQENTRY MQCMIT(MQHCONN Hconn, PMQLONG pCompCode, PMQLONG pReason) MQ_NOTHROW;
void MQENTRY MQBACK(MQHCONN Hconn, PMQLONG pCompCode, PMQLONG pReason) MQ_NOTHROW;

/* Message handles and properties */
void MQENTRY MQCRTMH(MQHCONN Hconn, PMQVOID pCrtMsgHOpts, PMQHMSG pHmsg, PMQLONG pCompCode,
                     PMQLONG pReason) MQ_NOTHROW;
void MQENTRY MQDLTMH(MQHCONN Hconn, PMQHMSG pHmsg, PMQVOID pDltMsgHOpts, PMQLONG pCompCode,
                     PMQLONG pReason) MQ_NOTHROW;
void MQENTRY MQSETMP(MQHCONN Hconn, MQHMSG Hmsg, PMQVOID pSetPropOpts, PMQVOID pName, PMQVOID pPropDesc,
                     MQLONG Type, MQLONG ValueLength, PMQVOID pValue, PMQLONG pCompCode,
                     PMQLONG pReason) MQ_NOTHROW;
void MQENTRY MQINQMP(MQHCONN Hconn, MQHMSG Hmsg, PMQVOID pInqPropOpts, PMQVOID pName, PMQVOID pPropDesc,
                     PMQLONG pType, MQLONG ValueLength, PMQVOID pValue, PMQLONG pDataLength,
                     PMQLONG pCompCode, PMQLONG pReason) MQ_NOTHROW;
void MQENTRY MQDLTMP(MQHCONN Hconn, MQHMSG Hmsg, PMQVOID pDltPropOpts, PMQVOID pName, PMQLONG pCompCode,
                     PMQLONG pReason) MQ_NOTHROW;
void MQENTRY MQBUFMH(MQHCONN Hconn, MQHMSG Hmsg, PMQVOID pBufMsgHOpts, PMQVOID pMsgDesc, MQLONG BufferLength,
                     PMQVOID pBuffer, PMQLONG pDataLength, PMQLONG pCompCode, PMQLONG pReason) MQ_NOTHROW;
void MQENTRY MQMHBUF(MQHCONN Hconn, MQHMSG Hmsg, PMQVOID pMsgHBufOpts, PMQVOID pName, PMQVOID pMsgDesc,
                     MQLONG BufferLength, PMQVOID pBuffer, PMQLONG pDataLength, PMQLONG pCompCode,
                     PMQLONG pReason) MQ_NOTHROW;

/* Callbacks */
void MQENTRY MQCB(MQHCONN Hconn, MQLONG Operation, PMQVOID pCallbackDesc, MQHOBJ Hobj, PMQVOID pMsgDesc,
                  PMQVOID pGetMsgOpts, PMQLONG pCompCode, PMQLONG pReason) MQ_NOTHROW;
void MQENTRY MQCTL(MQHCONN Hconn, MQLONG Operation, PMQVOID pControlOpts, PMQLONG pCompCode,
                   PMQLONG pReason) MQ_NOTHROW;

/* Publish/subscribe */
void MQENTRY MQSUB(MQHCONN Hconn, PMQVOID pSubDesc, PMQHOBJ pHobj, PMQHOBJ pHsub, PMQLONG pCompCode,
                   PMQLONG pReason) MQ_NOTHROW;
void MQENTRY MQSUBRQ(MQHCONN Hconn, MQHOBJ Hsub, MQLONG Action, PMQVOID pSubRqOpts, PMQLONG pCompCode,
                     PMQLONG pReason) MQ_NOTHROW;

/* Status */
void MQENTRY MQSTAT(MQHCONN Hconn, MQLONG Type, PMQVOID pStatus, PMQLONG pCompCode,
                    PMQLONG pReason) MQ_NOTHROW;

#ifdef __cplusplus
}
#endif

#endif
