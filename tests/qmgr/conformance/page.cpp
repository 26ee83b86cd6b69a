#include "page.h"

#include <algorithm>
#include <string_view>

#include "absent_reasons.h"
#include "cmqc.h"
#include "fields.h"
#include "qmgr/api/option_table.h"
#include "values.h"

namespace mqrig::conformance {
namespace {

using qmgr::api::OptionField;
using qmgr::api::OptionRow;

constexpr std::string_view head =
    R"(# Conformance

What of the MQI the embedded queue manager has, call by call, bit by bit and field by field. Everything is one of three:

- **done**: as the MQI's reference says, with the differences that `docs/embedded.md` lists;
- **without effect**: accepted, and nothing happens, because it asks for nothing here; the page says why;
- **refused**: answered with a reason, never ignored in silence.

`scripts/conformance.sh` makes this page from the tables that the code works with (`qmgr/api/option_table.cpp`), from the
tables of fields and values (`tests/qmgr/conformance/fields.cpp`, `values.cpp`) and from what the tests of the MQI were
answered (`tests/qmgr/conformance/reasons.txt`). Tests fail when it says anything else than they, when a call answers what
it does not list, or when a test that it names is no longer answered so.
)";

std::string_view textOf(Treatment treatment)
{
    switch (treatment) {
    case Treatment::Done:
        return "done";
    case Treatment::WithoutEffect:
        return "without effect";
    case Treatment::Refused:
        return "refused";
    }
    return {};
}

std::string_view textOfCompCode(int compCode)
{
    return compCode == MQCC_OK ? "OK" : compCode == MQCC_WARNING ? "warning" : "failed";
}

std::string nameOf(int reason, const std::map<int, std::string> &names)
{
    const auto found = names.find(reason);
    return found != names.end() ? found->second : std::to_string(reason);
}

std::vector<Provoked> reasonsOf(const std::string &call, std::span<const Provoked> reasons)
{
    std::vector<Provoked> own;
    for (const Provoked &row : reasons)
        if (row.answer.call == call) own.push_back(row);
    std::sort(own.begin(), own.end());
    return own;
}

// A call that answers nothing else is there for programs to be linked with.
bool isRefused(std::span<const Provoked> own)
{
    return std::all_of(own.begin(), own.end(),
                       [](const Provoked &row) { return row.answer.reason == MQRC_FUNCTION_NOT_SUPPORTED; });
}

void printCalls(std::ostream &out, const Headers &headers, std::span<const Provoked> reasons)
{
    const std::map<int, std::string> names = headers.reasonNames();
    out << "\n## Calls\n\nThe answers of each call, with a test that gets it (`tests/qmgr/api`). When memory, disk or "
           "another resource "
           "of the\nmachine fails, any call may answer MQRC_STORAGE_NOT_AVAILABLE, MQRC_RESOURCE_PROBLEM or "
           "MQRC_UNEXPECTED_ERROR too\n(`tests/qmgr/faults`).\n";
    for (const std::string &call : headers.calls) {
        const std::vector<Provoked> own = reasonsOf(call, reasons);
        out << "\n### " << call << ": " << (isRefused(own) ? "refused" : "done") << "\n\n"
            << "| Answer | Reason | | Test |\n|---|---|---|---|\n";
        for (const Provoked &row : own)
            out << "| " << textOfCompCode(row.answer.compCode) << " | " << nameOf(row.answer.reason, names) << " | "
                << row.answer.reason << " | " << row.test << " |\n";
    }
}

void printAbsentReasons(std::ostream &out)
{
    out << "\n## Reasons that no call answers\n\nAll others of the MQI.\n\n| Reasons | Because |\n|---|---|\n";
    for (const AbsentReasons &row : absentReasons()) {
        std::string names;
        for (const std::string &name : wordsOf(row.names))
            names += (names.empty() ? "MQRC_" : ", MQRC_") + name;
        out << "| " << names << " | " << row.why << " |\n";
    }
}

struct OptionSection {
    OptionField field;
    std::string_view title;
};
constexpr OptionSection optionSections[] = {
    {OptionField::Connect, "MQCNO.Options"},
    {OptionField::Open, "Options of MQOPEN"},
    {OptionField::Close, "Options of MQCLOSE"},
    {OptionField::Put, "MQPMO.Options"},
    {OptionField::Get, "MQGMO.Options"},
    {OptionField::Match, "MQGMO.MatchOptions"},
    {OptionField::Report, "MQMD.Report"},
    {OptionField::Flags, "MQMD.MsgFlags"},
    {OptionField::Begin, "MQBO.Options"},
    {OptionField::Callback, "MQCBD.Options"},
    {OptionField::Control, "MQCTLO.Options"},
    {OptionField::Subscribe, "MQSD.Options"},
    {OptionField::SubscriptionRequest, "MQSRO.Options"},
    {OptionField::CreateHandle, "MQCMHO.Options"},
    {OptionField::DeleteHandle, "MQDMHO.Options"},
    {OptionField::SetProperty, "MQSMPO.Options"},
    {OptionField::InquireProperty, "MQIMPO.Options"},
    {OptionField::DeleteProperty, "MQDMPO.Options"},
    {OptionField::BufferToHandle, "MQBMHO.Options"},
    {OptionField::HandleToBuffer, "MQMHBO.Options"},
};
static_assert(std::size(optionSections) == qmgr::api::optionFields, "every option field has its section");

void printOptions(std::ostream &out, const std::map<int, std::string> &reasonNames)
{
    out << "\n## Option bits\n\nOptions without a bit (`MQPMO_NONE` and their like) are no rows; a bit that no row has "
           "is "
           "refused with the reason in the\nheading.\n";
    for (const OptionSection &section : optionSections) {
        out << "\n### " << section.title << " (" << nameOf(qmgr::api::unknownBitsReason(section.field), reasonNames)
            << ")\n\n";
        const std::span<const OptionRow> rows = qmgr::api::optionRows(section.field);
        if (rows.empty()) {
            out << "The MQI has no bits for it.\n";
            continue;
        }
        out << "| Bit | | Because |\n|---|---|---|\n";
        for (const OptionRow &row : rows) {
            out << "| " << row.name << " | " << textOf(row.treatment);
            if (row.treatment == Treatment::Refused) out << ", " << nameOf(row.reason, reasonNames);
            out << " | " << row.why << " |\n";
        }
    }
}

void printValues(std::ostream &out, const std::map<int, std::string> &reasonNames)
{
    out << "\n## Values\n\nParameters and fields that take one value of a few; others are refused with the reason in "
           "the "
           "heading.\n";
    for (const ValueField &field : valueFields()) {
        const std::string refusal =
            field.refusal == MQRC_NONE ? "any other is taken" : nameOf(field.refusal, reasonNames);
        out << "\n### " << field.name << " (" << refusal << ")\n\n| Value | | Because |\n|---|---|---|\n";
        for (const ValueRow &row : valueRows())
            if (row.field == field.name)
                out << "| " << row.name << " | " << textOf(row.treatment) << " | " << row.why << " |\n";
    }
}

bool isListed(const std::string &structure, const std::string &field)
{
    return std::ranges::any_of(fieldRows(), [&](const FieldRow &row) {
        return row.structure == structure && std::ranges::count(wordsOf(row.fields), field) != 0;
    });
}

void printFields(std::ostream &out, const Headers &headers)
{
    out << "\n## Fields of structures\n\nA field that is done is read, returned or both, as the MQI has it.\n";
    for (const Structure &structure : headers.structures) {
        out << "\n### " << structure.name << "\n\n| Fields | | Because |\n|---|---|---|\n";
        for (const FieldRow &row : fieldRows()) {
            if (row.structure != structure.name) continue;
            std::string names;
            for (const std::string &field : structure.fields) {
                const bool own = row.fields == "*" ? !isListed(structure.name, field)
                                                   : std::ranges::count(wordsOf(row.fields), field) != 0;
                if (own) names += (names.empty() ? "" : ", ") + field;
            }
            out << "| " << names << " | " << textOf(row.treatment) << " | " << row.why << " |\n";
        }
    }
}

} // namespace

void printPage(std::ostream &out, const Headers &headers, std::span<const Provoked> reasons)
{
    out << head;
    printCalls(out, headers, reasons);
    printAbsentReasons(out);
    printOptions(out, headers.reasonNames());
    printValues(out, headers.reasonNames());
    printFields(out, headers);
}

} // namespace mqrig::conformance
