#include "parser.h"

#include "common.h"
#include "mqicalls.h"

#include <algorithm>
#include <cstring>

namespace {

bool storeText(RunParams &params, const OptionRow &row, const char *value)
{
    if (row.limit != 0 && std::strlen(value) > static_cast<std::size_t>(row.limit)) {
        return refuse(row.fault, row.limit);
    }
    params.*row.text = value;
    return true;
}

bool storeNumber(RunParams &params, const OptionRow &row, MQLONG number)
{
    if (number < row.minimum || (number == 0 && row.zeroRefused)) {
        return refuse("Invalid number was specified(%s)\n", row.flag);
    }
    row.integer(params) = number;
    return true;
}

/// The value's own length is copied, without terminator or padding; the rest of the field keeps what it held.
bool storeCharacters(RunParams &params, const OptionRow &row, const char *value)
{
    const std::span<char> field = row.field(params);
    const std::size_t length = std::strlen(value);
    if (length > field.size() && row.kind == OptionKind::Characters) {
        return refuse(row.fault, static_cast<int>(field.size()));
    }
    std::memcpy(field.data(), value, std::min(length, field.size()));
    return true;
}

bool storeCountedText(RunParams &params, const OptionRow &row, char *value)
{
    const std::size_t length = std::strlen(value);
    if (length > static_cast<std::size_t>(row.limit)) return refuse(row.fault, row.limit);
    row.address(params) = value;
    row.integer(params) = static_cast<MQLONG>(length);
    return true;
}

bool storeCharacterSet(RunParams &params, const OptionRow &row, const char *value)
{
    const NamedInteger *name = findByName(MQCCSI_TBL, value);
    row.integer(params) = name != nullptr ? name->value : lenientNumber(value);
    return true;
}

bool storeFormat(RunParams &params, const OptionRow &row, const char *value)
{
    const NamedBytes *format = findByName(MQFMT_TBL, value);
    if (format == nullptr) return refuseName(value);
    const std::span<char> field = row.field(params);
    std::memcpy(field.data(), format->value, field.size());
    return true;
}

bool addOperation(RunParams &params, const OptionRow &row, const char *value)
{
    const NamedInteger *operation = findByName(MQOP_TBL, value);
    if (operation == nullptr) return refuseName(value);
    row.integer(params) |= operation->value;
    return true;
}

bool storeCallback(RunParams &params, const OptionRow &row, const char *value)
{
    const NamedFunction *callback = findByName(CALLBACK_FUNCTION_TBL, value);
    if (callback == nullptr) return refuseName(value);
    row.address(params) = reinterpret_cast<MQPTR>(callback->function);
    return true;
}

bool store(Scan &scan, const OptionRow &row, char *value)
{
    RunParams &params = *scan.current;
    switch (row.kind) {
    case OptionKind::Version:
        return true; // ends the scan before it comes here
    case OptionKind::Primary:
        scan.current = scan.primary;
        return true;
    case OptionKind::Secondary:
        scan.current = scan.secondary;
        return true;
    case OptionKind::Unavailable:
        return refuse("%s", row.fault);
    case OptionKind::Flag:
        row.integer(params) = row.set;
        return true;
    case OptionKind::Text:
        return storeText(params, row, value);
    case OptionKind::Number:
        return storeNumber(params, row, lenientNumber(value));
    case OptionKind::NumberOrAll:
        return storeNumber(params, row, std::strcmp(value, "all") == 0 ? -1 : lenientNumber(value));
    case OptionKind::Characters:
    case OptionKind::CutCharacters:
        return storeCharacters(params, row, value);
    case OptionKind::DynamicName:
        params.*row.text = value;
        strncpy2(row.field(params).data(), value, row.field(params).size());
        return true;
    case OptionKind::Bytes:
        return readBytes(row, row.field(params), value);
    case OptionKind::HexBytes:
        return readHexBytes(row, row.field(params), value);
    case OptionKind::Encoding:
        return readEncoding(row, row.integer(params), value);
    case OptionKind::EncodingList:
        return readEncodingList(row, row.integer(params), value);
    case OptionKind::CharacterSet:
        return storeCharacterSet(params, row, value);
    case OptionKind::FormatName:
        return storeFormat(params, row, value);
    case OptionKind::Operation:
        return addOperation(params, row, value);
    case OptionKind::CallbackName:
        return storeCallback(params, row, value);
    case OptionKind::CountedText:
        return storeCountedText(params, row, value);
    case OptionKind::ApiName:
        if (checkAPIname(value) != StatusOk) return refuse(row.fault, value);
        params.*row.text = value;
        return true;
    }
    return false;
}

} // namespace

bool applyOption(Scan &scan, const OptionRow &row, char *value)
{
    if (!store(scan, row, value)) return false;
    applyMarks(*scan.current, row.mdField, row.marks);
    return true;
}
