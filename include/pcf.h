/// PCF messages from a definition file.
///
/// How to add a new keyword or parameter record
///   1. A header keyword: add its row to the reader's table (src/pcf/read_pcf_file.cpp).
///   2. A record: add its row to the records' table (src/pcf/read_parameter_record.cpp). It builds one complete
///      structure, which the reader appends to `PcfDef::Params`.
///   3. For a structure of a new type add it to the printer as well (src/display/printPCF.cpp).
#pragma once

#include "RunParams.h"
#include "status.h"

#include <cmqcfc.h>

/// One PCF parameter structure exactly as it goes into the message, and the next one. Both are from malloc.
struct PcfParamNode {
    MQLONG *structure = nullptr;
    PcfParamNode *next = nullptr;
};

/// What a definition file says. The nodes and structures belong to whoever holds the record.
struct PcfDef {
    MQLONG MdVersion = MQMD_VERSION_2;
    char Format[MQ_FORMAT_LENGTH + 1] = "        ";
    MQLONG MsgType = MQMT_DATAGRAM;
    char ReplyToQ[MQ_Q_NAME_LENGTH + 1] = "";
    char ReplyToQMgr[MQ_Q_MGR_NAME_LENGTH + 1] = "";
    MQCFH Cfh = {MQCFH_DEFAULT};
    PcfParamNode *Params = nullptr;
};

/// Reads the file of `-pcf`, echoing what it accepts. The caller holds the output lock.
Status read_pcf_file(RunParams *params, PcfDef *pcfDef);
/// The message from malloc, which the caller frees, and its MQMD fields; null after a report.
char *make_pcf_message(MQMD *md, const PcfDef *pcfDef, MQLONG *length);
Status PutFromPcfDef(RunParams *params, MQHCONN hconn);
/// Frees the nodes and structures and forgets them.
void free_pcf_params(PcfDef *pcfDef);
