#include "parser.h"

#include <cstring>

namespace {

void storeBytes(std::span<char> field, const NamedBytes &bytes)
{
    std::memcpy(field.data(), bytes.value, field.size());
}

/// The last byte of an accounting token is its type; one that is set already stays.
void storeToken(std::span<char> field, const NamedBytes &bytes)
{
    const char type = field.back();
    storeBytes(field, bytes);
    if (type != 0) field.back() = type;
}

bool storeNamedBytes(RunParams &params, const ConstantRow &row, const char *name)
{
    const NamedBytes *bytes = findByName(row.bytes, name);
    if (bytes == nullptr) return refuseName(name);
    if (row.kind == ConstantKind::Token) {
        storeToken(row.field(params), *bytes);
    } else {
        storeBytes(row.field(params), *bytes);
    }
    return true;
}

bool storeNamedInteger(Scan &scan, const ConstantRow &row, const char *name)
{
    const NamedInteger *constant = findByName(row.table, name);
    if (constant == nullptr) return refuseName(name);
    RunParams &params = *scan.current;

    switch (row.kind) {
    case ConstantKind::Set:
        row.integer(params) = constant->value;
        break;
    case ConstantKind::Match:
        // The defaults of this record give way to the first name; later names, for either record, only add.
        if (!scan.matchOptionsCleared) row.integer(params) = 0;
        scan.matchOptionsCleared = true;
        [[fallthrough]];
    case ConstantKind::Or:
        row.integer(params) |= constant->value;
        break;
    case ConstantKind::TokenType:
        row.field(params).back() = static_cast<char>(constant->value);
        break;
    case ConstantKind::SetBytes:
    case ConstantKind::Token:
        return false; // rows with a table of byte strings
    }
    return true;
}

} // namespace

bool applyConstant(Scan &scan, const ConstantRow &row, const char *name)
{
    const bool stored =
        row.bytes != nullptr ? storeNamedBytes(*scan.current, row, name) : storeNamedInteger(scan, row, name);
    if (!stored) return false;
    applyMarks(*scan.current, row.mdField, row.marks);
    return true;
}
