/// The run parameter record: everything that a run does against one connection.
///
/// How to add a new field
///   1. Add it to `RunRecord` below, behind the fields of its group, with its meaning and its default.
///   2. If an option sets it, add the option's row (see option_rows.h).
///   3. If it is set for either record and must hold for both, add it to the reconciliation (src/run/reconcile.cpp).
///
/// The primary and the secondary record are filled by the option parser and copied for every connection. Texts are
/// pointers into the argument vector, never copied and never freed. The MQI structures are handed to the MQI by
/// address.
#pragma once

#include <cmqc.h>
#include <cmqxc.h>
#include <pthread.h>

#include <type_traits>

struct DirectoryCursor; // send.h

/// What report lines need to know about the threads. An event handler reads these fields of the connection's record
/// from a thread of the MQI while the run works on the rest, so they are not part of what a snapshot restores.
struct OutputIdentity {
    MQLONG ThreadCount = 0;          ///< `-nt` worker threads on one connection, 0 = single-threaded
    MQLONG InnerConnThreadCount = 0; ///< `-ni` worker threads that connect and disconnect by themselves
    MQLONG ThreadId = 0;             ///< thread id shown in report prefixes

    /// Recursive mutex of the thread group, owned by its launcher; null when single-threaded.
    pthread_mutex_t *OutputLock = nullptr;

    bool threadsInUse() const { return ThreadCount != 0 || InnerConnThreadCount != 0; }
};

/// The part of the record that a mode keeps a snapshot of and restores before each message.
struct RunRecord {
    // The program's own fields.
    const char *QMgrName = nullptr;            ///< `-qm` queue manager name, or a list of them separated by ","
    const char *QName = nullptr;               ///< `-q`
    const char *MsgText = nullptr;             ///< `-m` message body
    const char *MsgHex = nullptr;              ///< `-mx` message body in hexadecimal notation
    const char *InputFile = nullptr;           ///< `-f` file that is put
    const char *OutputFile = nullptr;          ///< `-o` file that a message is written to
    const char *OutputQName = nullptr;         ///< `-oq`; also set by mode selection
    const char *InputQName = nullptr;          ///< `-iq`; also set by mode selection
    const char *OutputDir = nullptr;           ///< `-g` directory that messages are written to
    const char *InputDir = nullptr;            ///< `-d` directory whose files are put
    const char *StopApiName = nullptr;         ///< `-s` MQI call before which the run stops
    const char *LogicalMsgDelimiter = nullptr; ///< `-dl`
    MQLONG GetRepeatedly = 0;                  ///< `-r`
    MQLONG ForceBackout = 0;                   ///< `-b`
    MQLONG MsgLength = -1;                     ///< `-l`, -1 = not given
    MQLONG MsgCount = 0;                       ///< `-n`, 0 = not given
    MQLONG IntervalMs = 0;                     ///< `-i`
    MQLONG MaxMsgSize = 12000;                 ///< `-sz` receive buffer size in bytes
    MQLONG DisplaySize = 128;                  ///< `-ds` bytes of a body shown, -1 = whole message
    MQLONG BrowseMode = 0;                     ///< 0 none, 1 `-br`, 2 `-brv`
    MQLONG DumpMode = 0;                       ///< 0 none, 1 `-dp`, 2 `-dpv`
    MQLONG OutputForm = 0;                     ///< an OutputForm... value
    MQLONG UseRfh2 = 0;                        ///< put an MQRFH2 in front of the body
    MQLONG MatchCorrelToMsgId = 0;             ///< `-mc`
    MQLONG InheritMd = 0;                      ///< `-im`
    MQLONG SegmentSize = -1;                   ///< `-as`, -1 = none
    MQLONG KeepHeaders = 0;                    ///< run-time: MQGET keeps transport headers in the body
    MQLONG ConnLoopCount = 1;                  ///< `-c`
    MQLONG SkipDisc = 0;                       ///< `-sd`
    MQLONG WaitMs = 0;                         ///< `-wp`
    MQLONG ContinueOnConnFail = 0;             ///< `-ca`
    MQLONG AppendCounter = 0;                  ///< `-ac`
    MQLONG ConnRetryCount = 0;                 ///< `-cr`
    MQLONG ApiTrace = 0;                       ///< `-tr`
    MQLONG GlobalUowMode = 0;                  ///< run-time: transaction mode of another platform, stays 0
    MQLONG SyncpointFlag = 0;                  ///< run-time: set by the syncpoint judges
    MQLONG UseConnX = 0;                       ///< connect with MQCONNX
    MQLONG YieldAfterCall = 0;                 ///< `-y`
    const char *SetList = nullptr;             ///< `-set`
    const char *InqList = nullptr;             ///< `-inq`
    const char *SetMpList = nullptr;           ///< `-smp`
    const char *ProcessName = nullptr;         ///< `-p`
    const char *NamelistName = nullptr;        ///< `-nl`
    const char *PcfFile = nullptr;             ///< `-pcf`
    const char *NameValueData = nullptr;       ///< `-nd`
    const char *ObjectRecList = nullptr;       ///< `-or`
    const char *DynamicQName = nullptr;        ///< `-dq`
    const char *PutMsgRecList = nullptr;       ///< `-mr`
    const char *SyncStartFile = nullptr;       ///< `-sf`
    const char *OcspUrlList = nullptr;         ///< `-ru`

    // The MQI structures.
    MQCNO Cno = {MQCNO_DEFAULT};
    MQCD Cd = {MQCD_CLIENT_CONN_DEFAULT};
    MQMD Md = {MQMD_DEFAULT};
    MQRFH2 Rfh2 = {MQRFH2_DEFAULT};
    MQOD Od = {MQOD_DEFAULT};
    MQPMO Pmo = {MQPMO_DEFAULT};
    MQGMO Gmo = {MQGMO_DEFAULT};
    MQIMPO Impo = {MQIMPO_DEFAULT};
    MQCMHO Cmho = {MQCMHO_DEFAULT};
    MQDMHO Dmho = {MQDMHO_DEFAULT};
    MQSMPO Smpo = {MQSMPO_DEFAULT};
    MQPD Pd = {MQPD_DEFAULT};
    MQCSP Csp = {MQCSP_DEFAULT};
    MQSCO Sco = {MQSCO_DEFAULT};
    MQAIR Air = {MQAIR_DEFAULT};
    MQCBD Cbd = {MQCBD_DEFAULT};

    // Trailing and run-time fields.
    MQLONG OpenOptions = 0;                  ///< MQOO_* names, ORed together
    MQLONG CloseOptions = 0;                 ///< MQCO_* names, ORed together
    MQRR *ResponseRecs = nullptr;            ///< run-time: response records of a distribution list
    const void *PutMsgRecsGiven = nullptr;   ///< run-time: its put-message records as `-mr` gives them
    MQLONG DestCount = 0;                    ///< run-time: destinations of a distribution list, 0 = none
    MQHMSG MsgHandle = 0;                    ///< run-time: message handle for properties
    MQULONG MdFieldsSet = 0;                 ///< MdField... bits of the fields given on the command line
    MQULONG VersionsSet = 0;                 ///< VersionGiven... bits
    MQLONG CbOperation = 0;                  ///< `-op` MQOP_* operations, ORed together
    MQHOBJ OutputHobj = 0;                   ///< run-time: an output queue already open, 0 = none
    MQHOBJ InputHobj = 0;                    ///< run-time: an input queue already open, 0 = none
    MQHOBJ ObjectHobj = 0;                   ///< run-time: an object open for inquiry or setting, 0 = none
    MQLONG DataEncoding = MQENC_NATIVE;      ///< encoding of the structure being shown
    MQCHAR8 DataFormat = {MQFMT_NONE_ARRAY}; ///< format name of the structure being shown
    MQLONG DisplayForm = 0;                  ///< run-time: `OutputForm` for the header printers
    DirectoryCursor *DirCursor = nullptr;    ///< run-time: directory read one file per call
    MQLONG ObjectTypeGiven = 0;              ///< 1: an MQOT_* name was given, so `Od.ObjectType` holds for inquiries
};

/// One connection's record. A snapshot is a `RunRecord`; restoring one leaves the output identity alone.
struct RunParams : OutputIdentity, RunRecord {
    RunRecord snapshot() const { return *this; }
    void restore(const RunRecord &record) { static_cast<RunRecord &>(*this) = record; }
};

static_assert(std::is_trivially_copyable_v<RunParams>);
static_assert(sizeof(MQLONG) == 4);

/// The template that every record starts as a copy of.
extern const RunParams DEFAULT_RUN_PARAMS;

/// `OutputForm` and `DisplayForm`; any other value is text.
inline constexpr MQLONG OutputFormText = 0;
inline constexpr MQLONG OutputFormRaw = 1;
inline constexpr MQLONG OutputFormHex = 2;

/// `MdFieldsSet`: the MQMD fields that the command line gave.
inline constexpr MQULONG MdFieldVersion = 0x2;
inline constexpr MQULONG MdFieldReport = 0x4;
inline constexpr MQULONG MdFieldMsgType = 0x8;
inline constexpr MQULONG MdFieldExpiry = 0x10;
inline constexpr MQULONG MdFieldFeedback = 0x20;
inline constexpr MQULONG MdFieldEncoding = 0x40;
inline constexpr MQULONG MdFieldCodedCharSetId = 0x80;
inline constexpr MQULONG MdFieldFormat = 0x100;
inline constexpr MQULONG MdFieldPriority = 0x200;
inline constexpr MQULONG MdFieldPersistence = 0x400;
inline constexpr MQULONG MdFieldMsgId = 0x800;
inline constexpr MQULONG MdFieldCorrelId = 0x1000;
inline constexpr MQULONG MdFieldBackoutCount = 0x2000; // no option sets it
inline constexpr MQULONG MdFieldReplyToQ = 0x4000;
inline constexpr MQULONG MdFieldReplyToQMgr = 0x8000;
inline constexpr MQULONG MdFieldUserIdentifier = 0x10000;
inline constexpr MQULONG MdFieldAccountingToken = 0x20000;
inline constexpr MQULONG MdFieldApplIdentityData = 0x40000;
inline constexpr MQULONG MdFieldPutApplType = 0x80000;
inline constexpr MQULONG MdFieldPutApplName = 0x100000;
inline constexpr MQULONG MdFieldPutDate = 0x200000;
inline constexpr MQULONG MdFieldPutTime = 0x400000;
inline constexpr MQULONG MdFieldApplOriginData = 0x800000;
inline constexpr MQULONG MdFieldGroupId = 0x1000000;
inline constexpr MQULONG MdFieldMsgSeqNumber = 0x2000000;
inline constexpr MQULONG MdFieldOffset = 0x4000000;
inline constexpr MQULONG MdFieldMsgFlags = 0x8000000;
inline constexpr MQULONG MdFieldOriginalLength = 0x10000000;

/// `VersionsSet`: structure versions given by name, which no option raises afterwards.
inline constexpr MQULONG VersionGivenCno = 1;
inline constexpr MQULONG VersionGivenCd = 2;

/// The two shapes of an operation: on one record, and on both records of a connection.
using SingleOperation = MQLONG (*)(RunParams *params, MQHCONN hconn);
using PairedOperation = MQLONG (*)(RunParams *primary, MQHCONN hconn, RunParams *secondary);
