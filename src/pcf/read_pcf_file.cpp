// The definition file, line by line: "KEYWORD=value" for the descriptor and the MQCFH, "RECORD=field,..." for a
// parameter structure. Unknown keywords are passed over; a header keyword that cannot be read is reported and passed
// over; a record that cannot be read ends the reading, so that nothing is put.
#include "pcf.h"

#include "common.h"
#include "pcf/read_parameter_record.h"
#include "tables.h"

#include <cerrno>
#include <cstring>
#include <new>
#include <utility>

namespace {

constexpr std::size_t LongestLine = 1024; ///< a longer line is read in pieces, each taken as a line

constexpr NamedInteger MSG_TYPES[] = {
    {"REQUEST", MQMT_REQUEST}, {"REPLY", MQMT_REPLY}, {"DATAGRAM", MQMT_DATAGRAM}, {"REPORT", MQMT_REPORT}, {},
};
constexpr NamedInteger CFH_TYPES[] = {
    {"COMMAND", MQCFT_COMMAND},
    {"COMMAND_XR", MQCFT_COMMAND_XR},
    {"RESPONSE", MQCFT_RESPONSE},
    {"XR_MSG", MQCFT_XR_MSG},
    {"XR_ITEM", MQCFT_XR_ITEM},
    {"XR_SUMMARY", MQCFT_XR_SUMMARY},
    {"USER", MQCFT_USER},
    {"NONE", MQCFT_NONE},
    {"EVENT", MQCFT_EVENT},
    {"TRACE_ROUTE", MQCFT_TRACE_ROUTE},
    {"REPORT", MQCFT_REPORT},
    {"STATISTICS", MQCFT_STATISTICS},
    {"ACCOUNTING", MQCFT_ACCOUNTING},
    {"APP_ACTIVITY", MQCFT_APP_ACTIVITY},
    {},
};
constexpr NamedInteger CFH_VERSIONS[] = {
    {"MQCFH_VERSION_1", MQCFH_VERSION_1},
    {"MQCFH_VERSION_2", MQCFH_VERSION_2},
    {"MQCFH_VERSION_3", MQCFH_VERSION_3},
    {"MQCFH_CURRENT_VERSION", MQCFH_CURRENT_VERSION},
    {},
};
constexpr NamedInteger COMMANDS[] = {
    {"MGR", MQCMD_Q_MGR_EVENT},
    {"PERFM", MQCMD_PERFM_EVENT},
    {"CHANNEL", MQCMD_CHANNEL_EVENT},
    {},
};
constexpr NamedInteger CONTROLS[] = {{"MQCFC_LAST", MQCFC_LAST}, {"MQCFC_NOT_LAST", MQCFC_NOT_LAST}, {}};
constexpr NamedInteger COMP_CODES[] = {{"OK", MQCC_OK}, {"WARNING", MQCC_WARNING}, {"FAILED", MQCC_FAILED}, {}};
constexpr NamedBytes FORMATS[] = {{"ADMIN", MQFMT_ADMIN}, {"EVENT", MQFMT_EVENT}, {"PCF", MQFMT_PCF}, {}};

/// A header keyword with its value, and where the value goes.
struct HeaderLine {
    RunParams *params;
    PcfDef &def;
    const char *keyword;
    const char *value;

    void invalid() const { printf_te(params, "Invalid parameter : %s=%s\n", keyword, value); }

    void store(const NamedInteger *names, MQLONG &field) const
    {
        const NamedInteger *known = findByName(names, value);
        if (known == nullptr) return invalid();
        field = known->value;
    }
};

void read_format(const HeaderLine &line)
{
    const NamedBytes *format = findByName(FORMATS, line.value);
    if (format == nullptr) {
        // Without the blank that the other texts have.
        printf_te(line.params, "Invalid parameter: %s=%s\n", line.keyword, line.value);
        return;
    }
    std::memcpy(line.def.Format, format->value, MQ_FORMAT_LENGTH);
}

void read_command(const HeaderLine &line)
{
    MQLONG &command = line.def.Cfh.Command;
    if (*line.value >= '0' && *line.value <= '9') {
        command = lenientNumber(line.value);
    } else {
        const NamedInteger *known = findByName(COMMANDS, line.value);
        if (known == nullptr) return line.invalid();
        command = known->value;
    }
    std::printf("Command : %d\n", command);
}

void read_msg_type(const HeaderLine &line)
{
    if (const NamedInteger *known = findByName(MSG_TYPES, line.value)) line.def.MsgType = known->value;
}

struct HeaderRow {
    const char *name = nullptr; ///< the keyword
    void (*read)(const HeaderLine &line) = nullptr;
};

constexpr HeaderRow HEADERS[] = {
    {"MD_VERSION",
     [](const HeaderLine &line) { line.def.MdVersion = *line.value == '1' ? MQMD_VERSION_1 : MQMD_VERSION_2; }},
    {"MD_MSGTYPE", read_msg_type},
    {"MD_FORMAT", read_format},
    {"MD_REPLYTOQ", [](const HeaderLine &line) { strncpy2(line.def.ReplyToQ, line.value, MQ_Q_NAME_LENGTH); }},
    {"MD_REPLYTOQMGR",
     [](const HeaderLine &line) { strncpy2(line.def.ReplyToQMgr, line.value, MQ_Q_MGR_NAME_LENGTH); }},
    {"MQCFH_TYPE", [](const HeaderLine &line) { line.store(CFH_TYPES, line.def.Cfh.Type); }},
    {"MQCFH_VERSION", [](const HeaderLine &line) { line.store(CFH_VERSIONS, line.def.Cfh.Version); }},
    {"MQCFH_COMMAND", read_command},
    {"MQCFH_MSGSEQNUM", [](const HeaderLine &line) { line.def.Cfh.MsgSeqNumber = lenientNumber(line.value); }},
    {"MQCFH_CTRL", [](const HeaderLine &line) { line.store(CONTROLS, line.def.Cfh.Control); }},
    {"MQCFH_COMPCODE", [](const HeaderLine &line) { line.store(COMP_CODES, line.def.Cfh.CompCode); }},
    {"MQCFH_REASON", [](const HeaderLine &line) { line.def.Cfh.Reason = lenientNumber(line.value); }},
    {"MQCFH_PARAMCOUNT", [](const HeaderLine &line) { line.def.Cfh.ParameterCount = lenientNumber(line.value); }},
    {},
};

/// The parameters of a definition, at whose end records are appended.
struct ParameterList {
    PcfDef &def;
    PcfParamNode **end = &def.Params;
    MQLONG count = 0;

    Status append(RunParams *params, Buffer<> structure)
    {
        Buffer<> memory = checked_malloc(params, sizeof(PcfParamNode), {"read_pcf_file"});
        if (memory == nullptr) return StatusLocalFailure;
        *end = new (memory.release()) PcfParamNode{reinterpret_cast<MQLONG *>(structure.release())};
        end = &(*end)->next;
        ++count;
        return StatusOk;
    }
};

Status read_line(RunParams *params, ParameterList &list, char *line)
{
    char *position = nullptr;
    const char *const keyword = strtok_r(line, "=", &position);
    if (keyword == nullptr) return StatusOk;
    if (const HeaderRow *header = findByName(HEADERS, keyword)) {
        if (*position == '\0') {
            printf_te(params, "Parameter missing : %s\n", keyword);
        } else {
            header->read({params, list.def, keyword, position});
        }
        return StatusOk;
    }
    const ParameterRow *const row = parameter_row(keyword);
    if (row == nullptr) return StatusOk;
    Buffer<> structure = read_parameter_record(params, *row, position);
    return structure != nullptr ? list.append(params, std::move(structure)) : StatusLocalFailure;
}

void cut_line_end(char *line)
{
    std::size_t length = std::strlen(line);
    if (length > 0 && line[length - 1] == '\n') --length;
    if (length > 0 && line[length - 1] == '\r') --length;
    line[length] = '\0';
}

struct CloseFile {
    void operator()(std::FILE *file) const { std::fclose(file); }
};

Status report_file(const char *call, const char *name)
{
    report_failure(nullptr, {"read_pcf_file"}, call, errno, "%s failed. file name=%s\n", call, name);
    return StatusLocalFailure;
}

Status read_lines(RunParams *params, ParameterList &list, std::FILE *file)
{
    char line[LongestLine + 1];
    while (std::fgets(line, sizeof line, file) != nullptr) {
        cut_line_end(line);
        if (const Status read = read_line(params, list, line); read != StatusOk) return read;
    }
    return std::ferror(file) == 0 ? StatusOk : report_file("fgets()", params->PcfFile);
}

} // namespace

Status read_pcf_file(RunParams *params, PcfDef *pcfDef)
{
    const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(params->PcfFile, "r"));
    if (file == nullptr) return report_file("fopen(_s)()", params->PcfFile);
    ParameterList list{*pcfDef};
    const Status status = read_lines(params, list, file.get());
    // Members of groups count too; a file with groups gives the count of its top-level parameters itself.
    if (pcfDef->Cfh.ParameterCount == 0) pcfDef->Cfh.ParameterCount = list.count;
    return status;
}
