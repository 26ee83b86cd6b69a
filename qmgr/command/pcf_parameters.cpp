#include <algorithm>
#include <limits>

#include "qmgr/command/pcf_commands.h"

namespace mqrig::qmgr::command {
namespace {

using objects::Access;
using objects::Attribute;
using objects::ObjectKind;
using objects::ValueFault;
using objects::ValueKind;

constexpr ObjectKind everyKind[] = {ObjectKind::QueueManager, ObjectKind::LocalQueue, ObjectKind::AliasQueue,
                                    ObjectKind::RemoteQueue,  ObjectKind::ModelQueue, ObjectKind::Namelist,
                                    ObjectKind::Process,      ObjectKind::Topic};

using Rows = std::span<const Attribute>;

// The first row of any of these kinds.
const Attribute *findAttribute(Rows rows, objects::ObjectKinds kinds, MQLONG selector)
{
    const auto found = std::find_if(rows.begin(), rows.end(), [&](const Attribute &row) {
        return row.selector == selector && (row.kinds & kinds) != 0;
    });
    return found == rows.end() ? nullptr : &*found;
}

MQLONG typeOf(const Attribute &attribute)
{
    if (attribute.value == ValueKind::NameList) return MQCFT_STRING_LIST;
    return attribute.isText() ? MQCFT_STRING : MQCFT_INTEGER;
}

MQLONG reasonOf(ValueFault fault, const Attribute &attribute)
{
    const bool list = attribute.value == ValueKind::NameList;
    switch (fault) {
    case ValueFault::TooLong:
        return list ? MQRCCF_CFSL_STRING_LENGTH_ERR : MQRCCF_CFST_STRING_LENGTH_ERR;
    case ValueFault::TooMany:
        return MQRCCF_CFSL_COUNT_ERROR;
    default:
        return MQRCCF_ATTR_VALUE_ERROR;
    }
}

// The value of a parameter of the attribute's type; names of a list stand in one text, with commas between them.
struct Value {
    ValueFault fault = ValueFault::None;
    objects::AttributeValue value;
};
Value valueOf(const Attribute &attribute, const PcfParameter &parameter)
{
    if (parameter.type == MQCFT_INTEGER) {
        const auto number = static_cast<MQLONG>(parameter.numbers.front());
        return {objects::checkNumber(attribute, number), {number, {}}};
    }
    std::string text;
    for (const std::string &part : parameter.texts) {
        const std::string_view name = textOf(part);
        // A comma would make two names of one.
        if (parameter.type == MQCFT_STRING_LIST && name.find(',') != std::string_view::npos)
            return {ValueFault::BadName, {}};
        if (&part != parameter.texts.data()) text += ',';
        text += name;
    }
    return {objects::checkText(attribute, text), {0, text}};
}

struct Operator {
    MQLONG operation;
    Comparison comparison;
};
constexpr Operator operators[] = {
    {MQCFOP_LESS, Comparison::Less},
    {MQCFOP_EQUAL, Comparison::Equal},
    {MQCFOP_GREATER, Comparison::Greater},
    {MQCFOP_NOT_LESS, Comparison::GreaterOrEqual},
    {MQCFOP_NOT_EQUAL, Comparison::NotEqual},
    {MQCFOP_NOT_GREATER, Comparison::LessOrEqual},
    {MQCFOP_LIKE, Comparison::Like},
    {MQCFOP_NOT_LIKE, Comparison::NotLike},
    {MQCFOP_CONTAINS, Comparison::Contains},
    {MQCFOP_EXCLUDES, Comparison::Excludes},
    {MQCFOP_CONTAINS_GEN, Comparison::ContainsLike},
    {MQCFOP_EXCLUDES_GEN, Comparison::ExcludesLike},
};

bool isFilter(const PcfParameter &parameter)
{
    return parameter.type == MQCFT_INTEGER_FILTER || parameter.type == MQCFT_STRING_FILTER ||
           parameter.type == MQCFT_BYTE_STRING_FILTER;
}

} // namespace

const PcfParameter *PcfCommand::find(MQLONG id) const
{
    const auto found = std::find_if(parameters.begin(), parameters.end(), [id](const PcfParameter &parameter) {
        return parameter.id == id && !isFilter(parameter);
    });
    return found == parameters.end() ? nullptr : &*found;
}

std::string PcfCommand::text(MQLONG id) const
{
    const PcfParameter *parameter = find(id);
    return parameter == nullptr ? std::string() : std::string(textOf(parameter->texts.front()));
}

std::optional<MQLONG> PcfCommand::number(MQLONG id) const
{
    const PcfParameter *parameter = find(id);
    if (parameter == nullptr) return std::nullopt;
    return static_cast<MQLONG>(parameter->numbers.front());
}

PcfKinds readKinds(const PcfCommand &command)
{
    const auto type = command.number(MQIA_Q_TYPE);
    if (!type || *type == MQQT_ALL) return {{}, command.family.kinds};
    // Queues of clusters: there are none.
    if (*type == MQQT_CLUSTER) return {{}, 0};
    for (const ObjectKind kind : everyKind)
        if (objects::queueType(kind) == *type && objects::contains(command.family.kinds, kind))
            return {{}, objects::kinds(kind)};
    return {faultOf(MQRCCF_Q_TYPE_ERROR, MQIA_Q_TYPE), 0};
}

PcfKinds readOneKind(const PcfCommand &command)
{
    PcfKinds read = readKinds(command);
    const bool one = read.kinds != 0 && (read.kinds & (read.kinds - 1)) == 0;
    if (!read.fault && !one) read.fault = faultOf(MQRCCF_Q_TYPE_ERROR, MQIA_Q_TYPE);
    return read;
}

PcfChoice readChoice(const PcfCommand &command, MQLONG id, MQLONG reason)
{
    // MQFC_, MQRP_ and MQPO_ are all 0 for no and 1 for yes.
    const MQLONG value = command.number(id).value_or(0);
    if (value != 0 && value != 1) return {faultOf(reason, id), false};
    return {{}, value == 1};
}

PcfAssignments readAssignments(const PcfCommand &command, ObjectKind kind)
{
    PcfAssignments read;
    for (const PcfParameter &parameter : command.parameters) {
        const Attribute *attribute = objects::findSelector(kind, parameter.id);
        if (attribute == nullptr || attribute->access != Access::Alterable) {
            // The command's own parameters are the row's business; the others are attributes of a kind that is not
            // meant, or that nobody may set.
            const Attribute *other = findAttribute(objects::attributes(), command.family.kinds, parameter.id);
            if (other != nullptr && other->access != Access::Identity) {
                read.fault = faultOf(parameterIdError(parameter.type), parameter.id);
                return read;
            }
            continue;
        }
        if (parameter.type != typeOf(*attribute)) {
            read.fault = faultOf(MQRCCF_STRUCTURE_TYPE_ERROR, parameter.id);
            return read;
        }
        Value value = valueOf(*attribute, parameter);
        if (value.fault != ValueFault::None) {
            read.fault = faultOf(reasonOf(value.fault, *attribute), parameter.id);
            return read;
        }
        read.assignments.push_back({attribute, std::move(value.value)});
    }
    return read;
}

namespace {

// `known` says of a selector whether the command could return it.
template <class Known>
PcfSelection readList(const PcfParameter &list, const Known &known)
{
    PcfSelection selection;
    const auto &values = list.numbers;
    if (values.size() == 1 && values.front() == MQIACF_ALL) return selection;
    selection.all = false;
    for (const MQINT64 value : values) {
        const auto selector = static_cast<MQLONG>(value);
        const auto &before = selection.selectors;
        if (!known(selector))
            selection.fault = {MQRC_SELECTOR_ERROR, MQIACF_SELECTOR, selector};
        else if (std::find(before.begin(), before.end(), selector) != before.end())
            selection.fault = {MQRCCF_CFIL_DUPLICATE_VALUE, MQIACF_SELECTOR, selector};
        if (selection.fault) break;
        selection.selectors.push_back(selector);
    }
    return selection;
}

} // namespace

PcfSelection readSelection(const PcfCommand &command, MQLONG id, Rows rows)
{
    const PcfParameter *list = command.find(id);
    if (list == nullptr) return {};
    return readList(*list,
                    [&](MQLONG selector) { return findAttribute(rows, command.family.kinds, selector) != nullptr; });
}

PcfSelection readSelection(const PcfParameter &list, std::span<const MQLONG> known)
{
    return readList(list,
                    [&](MQLONG selector) { return std::find(known.begin(), known.end(), selector) != known.end(); });
}

PcfFilter readFilter(const PcfCommand &command, Rows rows)
{
    const auto given = std::find_if(command.parameters.begin(), command.parameters.end(), isFilter);
    if (given == command.parameters.end()) return {};
    const bool number = given->type == MQCFT_INTEGER_FILTER;
    const auto *known = std::find_if(std::begin(operators), std::end(operators),
                                     [&](const Operator &row) { return row.operation == given->operation; });
    const Attribute *attribute = findAttribute(rows, command.family.kinds, given->id);
    if (attribute == nullptr || attribute->isText() == number || given->type == MQCFT_BYTE_STRING_FILTER)
        return {faultOf(parameterIdError(given->type), given->id), nullptr, {}};

    const Comparison comparison = known->comparison;
    const bool list = attribute->value == ValueKind::NameList;
    if (isForLists(comparison) != list || (number && isForTexts(comparison)))
        return {faultOf(number ? MQRCCF_CFIF_OPERATOR_ERROR : MQRCCF_CFSF_OPERATOR_ERROR, given->id), nullptr, {}};
    Filter filter;
    filter.keyword = attribute->keyword;
    filter.comparison = comparison;
    if (number)
        filter.value.number = static_cast<MQLONG>(given->numbers.front());
    else
        filter.value.text = textOf(given->texts.front());
    return {{}, attribute, filter};
}

MQLONG parameterIdError(MQLONG type)
{
    switch (type) {
    case MQCFT_INTEGER:
    case MQCFT_INTEGER64:
        return MQRCCF_CFIN_PARM_ID_ERROR;
    case MQCFT_STRING:
        return MQRCCF_CFST_PARM_ID_ERROR;
    case MQCFT_INTEGER_LIST:
    case MQCFT_INTEGER64_LIST:
        return MQRCCF_CFIL_PARM_ID_ERROR;
    case MQCFT_STRING_LIST:
        return MQRCCF_CFSL_PARM_ID_ERROR;
    case MQCFT_BYTE_STRING:
        return MQRCCF_CFBS_PARM_ID_ERROR;
    case MQCFT_INTEGER_FILTER:
        return MQRCCF_CFIF_PARM_ID_ERROR;
    case MQCFT_STRING_FILTER:
        return MQRCCF_CFSF_PARM_ID_ERROR;
    case MQCFT_BYTE_STRING_FILTER:
        return MQRCCF_CFBF_PARM_ID_ERROR;
    case MQCFT_GROUP:
        return MQRCCF_CFGR_PARM_ID_ERROR;
    default:
        return MQRCCF_STRUCTURE_TYPE_ERROR;
    }
}

void writeAttribute(PcfWriter &reply, const Attribute &attribute, const objects::AttributeValue &value)
{
    if (attribute.value == ValueKind::NameList) {
        std::vector<std::string> names;
        for (const std::string_view name : objects::splitNames(value.text))
            names.emplace_back(name);
        reply.texts(attribute.parameter(), names, attribute.textLength);
    } else if (attribute.isText()) {
        reply.text(attribute.parameter(), value.text, attribute.textLength);
    } else {
        reply.integer(attribute.parameter(), value.number);
    }
}

void writeAttributes(PcfWriter &reply, Rows rows, ObjectKind kind, const PcfSelection &selection,
                     std::span<const MQLONG> always, const ValueOf &valueOf)
{
    const auto write = [&](MQLONG selector) {
        const Attribute *attribute = findAttribute(rows, objects::kinds(kind), selector);
        if (attribute != nullptr) writeAttribute(reply, *attribute, valueOf(*attribute));
    };
    for (const MQLONG selector : always)
        write(selector);
    const auto writeUnlessAlways = [&](MQLONG selector) {
        if (std::find(always.begin(), always.end(), selector) == always.end()) write(selector);
    };
    if (selection.all) {
        for (const Attribute &row : rows)
            if (objects::contains(row.kinds, kind)) writeUnlessAlways(row.selector);
    } else {
        for (const MQLONG selector : selection.selectors)
            writeUnlessAlways(selector);
    }
}

void writeObject(PcfWriter &reply, const PcfFamily &family, const InquiredObject &object, const PcfSelection &selection)
{
    const MQLONG always[] = {family.name, MQIA_Q_TYPE};
    writeAttributes(reply, objects::attributes(), object.definition.kind(), selection, always,
                    [&](const Attribute &attribute) { return object.value(attribute); });
}

} // namespace mqrig::qmgr::command
