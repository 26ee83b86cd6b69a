#include <algorithm>
#include <array>
#include <vector>

#include "qmgr/command/mqsc_commands.h"
#include "qmgr/objects/object_name.h"

namespace mqrig::qmgr::command {
namespace {

using objects::Attribute;
using objects::ValueFault;
using objects::ValueKind;

// The words of the commands themselves, beside the attributes.
enum class Option { Like, Replace, NoReplace, Force };

struct OptionRow {
    std::string_view keyword;
    Option option;
    bool hasValue;
    std::array<bool, 3> allowed; // by Options
};

constexpr OptionRow optionTable[] = {
    {"FORCE", Option::Force, false, {true, true, true}},
    {"LIKE", Option::Like, true, {true, false, false}},
    {"NOREPLACE", Option::NoReplace, false, {true, false, false}},
    {"REPLACE", Option::Replace, false, {true, false, false}},
};

const OptionRow *findOption(std::string_view keyword, Options options)
{
    for (const OptionRow &row : optionTable)
        if (row.keyword == keyword && row.allowed[static_cast<std::size_t>(options)]) return &row;
    return nullptr;
}

std::string keywordsOf(const Attribute &attribute)
{
    std::string text;
    for (const objects::Word &word : attribute.words) {
        if (!text.empty()) text += ", ";
        text += word.keyword;
    }
    return text;
}

std::string rangeOf(const Attribute &attribute)
{
    std::string text = std::string(attribute.keyword) + " is a number from " + std::to_string(attribute.low) + " to " +
                       std::to_string(attribute.high);
    if (!attribute.words.empty()) text += ", or " + keywordsOf(attribute);
    return text;
}

CommandAnswer valueFault(const CommandText &text, const Attribute &attribute, ValueFault fault, std::size_t offset)
{
    const std::string keyword(attribute.keyword);
    switch (fault) {
    case ValueFault::OutOfRange:
        return syntaxFault(text, Message::NumberOutOfRange, offset, rangeOf(attribute));
    case ValueFault::NotANumber:
        return syntaxFault(text, Message::SyntaxError, offset, rangeOf(attribute));
    case ValueFault::UnknownWord:
        return syntaxFault(text, Message::SyntaxError, offset, keyword + " is one of " + keywordsOf(attribute));
    case ValueFault::TooLong:
        return syntaxFault(text, Message::TextTooLong, offset,
                           keyword + " has at most " + std::to_string(attribute.textLength) + " bytes");
    case ValueFault::TooMany:
        return syntaxFault(text, Message::SyntaxError, offset,
                           keyword + " has at most " + std::to_string(objects::maxNames) + " names");
    case ValueFault::BadCharacter:
        return syntaxFault(text, Message::SyntaxError, offset, keyword + " takes no control characters");
    case ValueFault::BadName:
    case ValueFault::None:
        break;
    }
    return syntaxFault(text, Message::SyntaxError, offset, keyword + " takes a name of A-Z a-z 0-9 . / _ % or a blank");
}

// The values of a list as one text; the only value of what is no list.
std::string joined(const MqscParameter &parameter)
{
    std::string text;
    for (const MqscValue &value : parameter.values) {
        if (&value != &parameter.values.front()) text += ',';
        text += value.text.substr(0, value.text.find_last_not_of(' ') + 1);
    }
    return text;
}

// Reads the parameters of one DEFINE or ALTER; stops at the first fault.
class DefinitionReader {
public:
    DefinitionReader(const MqscCommand &command, objects::ObjectKind kind, Options options)
        : command_(command), options_(options)
    {
        read_.definition.kind = kind;
    }

    ReadDefinition run()
    {
        read_.ok = true;
        for (const MqscParameter &parameter : command_.parameters()) {
            if (const OptionRow *row = findOption(parameter.keyword, options_))
                option(parameter, *row);
            else
                attribute(parameter);
            if (!read_.ok) break;
        }
        return std::move(read_);
    }

private:
    void fail(CommandAnswer answer)
    {
        read_.ok = false;
        read_.answer = std::move(answer);
    }
    void fail(Message message, std::size_t offset, std::string_view reason)
    {
        fail(syntaxFault(command_.text, message, offset, reason));
    }

    void option(const MqscParameter &parameter, const OptionRow &row)
    {
        const bool replaces = row.option == Option::Replace || row.option == Option::NoReplace;
        bool &given = replaces ? replaceGiven_ : row.option == Option::Like ? likeGiven_ : forceGiven_;
        if (given) return fail(Message::DuplicateKeyword, parameter.offset, parameter.keyword);
        given = true;
        if (parameter.hasValue != row.hasValue)
            return fail(Message::SyntaxError, parameter.offset,
                        parameter.keyword + (row.hasValue ? " takes a name in parentheses" : " takes no value"));
        switch (row.option) {
        case Option::Replace:
            read_.definition.replace = Replace::Yes;
            break;
        case Option::NoReplace:
            break;
        case Option::Force:
            read_.definition.force = Force::Yes;
            break;
        case Option::Like:
            if (parameter.values.size() != 1 || !objects::checkObjectName(parameter.value()))
                return fail(Message::SyntaxError, parameter.valueOffset(), "LIKE takes the name of an object");
            read_.definition.like = parameter.value();
            break;
        }
    }

    void attribute(const MqscParameter &parameter)
    {
        const MqscCommand ofKind{command_.attachment, command_.text, command_.words,
                                 objects::kinds(read_.definition.kind), objects::commandWord(read_.definition.kind)};
        ReadAttribute read = readAttribute(ofKind, objects::attributes(), parameter);
        if (!read.ok) return fail(std::move(read.answer));
        const auto same = [&](const Assignment &assignment) {
            return assignment.attribute == read.assignment.attribute;
        };
        std::vector<Assignment> &assignments = read_.definition.attributes;
        if (std::any_of(assignments.begin(), assignments.end(), same))
            return fail(Message::DuplicateKeyword, parameter.offset, parameter.keyword);
        assignments.push_back(std::move(read.assignment));
    }

    const MqscCommand &command_;
    Options options_;
    ReadDefinition read_;
    bool replaceGiven_ = false;
    bool likeGiven_ = false;
    bool forceGiven_ = false;
};

} // namespace

ReadName readName(const MqscCommand &command, NameForm form)
{
    const MqscParameter &object = command.object();
    const auto fault = [&](Message message, std::size_t offset, std::string_view reason) {
        return ReadName{false, {}, syntaxFault(command.text, message, offset, reason)};
    };
    if (!object.hasValue)
        return fault(Message::SyntaxError, object.offset + object.keyword.size(), "a name in parentheses is missing");
    if (object.values.size() > 1)
        return fault(Message::SyntaxError, object.values[1].offset, "only one name may be given");

    const std::size_t offset = object.valueOffset();
    const std::string name(object.value());
    std::string_view judged = name;
    if (form == NameForm::Generic && judged.ends_with('*')) {
        judged.remove_suffix(1);
        if (judged.empty()) return {true, name, {}};
    }
    const objects::NameCheck check = objects::checkObjectName(judged);
    const std::size_t quote = !object.values.empty() && object.values.front().quoted ? 1 : 0;
    switch (check.fault) {
    case objects::NameFault::None:
        return {true, name, {}};
    case objects::NameFault::Empty:
        return fault(Message::SyntaxError, offset, "the name is empty");
    case objects::NameFault::TooLong:
        return fault(Message::TextTooLong, offset,
                     "a name has at most " + std::to_string(objects::maxNameLength) + " characters");
    case objects::NameFault::BadCharacter:
        break;
    }
    return fault(Message::SyntaxError, offset + quote + check.position, "a name has only A-Z a-z 0-9 . / _ %");
}

ReadName readText(const MqscCommand &command, std::size_t most)
{
    const MqscParameter &object = command.object();
    const auto fault = [&](std::size_t offset, std::string_view reason) {
        return ReadName{false, {}, syntaxFault(command.text, Message::SyntaxError, offset, reason)};
    };
    if (!object.hasValue) return fault(object.offset + object.keyword.size(), "a name in parentheses is missing");
    if (object.values.size() > 1) return fault(object.values[1].offset, "only one name may be given");
    const std::string text(object.value());
    if (text.empty()) return fault(object.valueOffset(), "the name is empty");
    if (text.size() > most)
        return fault(object.valueOffset(), "at most " + std::to_string(most) + " bytes may be given");
    return {true, text, {}};
}

ReadAttribute readAttribute(const MqscCommand &command, std::span<const Attribute> rows, const MqscParameter &parameter)
{
    const auto fault = [&](std::size_t offset, std::string_view reason) {
        return ReadAttribute{false, {}, syntaxFault(command.text, Message::SyntaxError, offset, reason)};
    };
    const objects::KeywordMatch match = objects::findKeyword(rows, command.kinds, parameter.keyword);
    if (match.attribute == nullptr)
        return fault(parameter.offset, "no attribute of " + std::string(command.objectWord));
    const Attribute &row = *match.attribute;
    if (row.access != objects::Access::Alterable)
        return fault(parameter.offset, std::string(row.keyword) + " is set by the queue manager alone");
    if (row.value == ValueKind::Flag) {
        if (parameter.hasValue) return fault(parameter.offset, parameter.keyword + " takes no value");
        return {true, {&row, {match.flagValue, {}}}, {}};
    }
    if (!parameter.hasValue)
        return fault(parameter.offset + parameter.keyword.size(), parameter.keyword + " takes a value in parentheses");
    if (parameter.values.size() > 1 && row.value != ValueKind::NameList)
        return fault(parameter.values[1].offset, "a value with blanks or commas in it stands between quotes");
    // A comma inside quotes would make two names of one.
    for (const MqscValue &value : parameter.values)
        if (row.value == ValueKind::NameList && value.text.find(',') != std::string::npos)
            return {false, {}, valueFault(command.text, row, ValueFault::BadName, value.offset)};
    objects::ParsedValue parsed = objects::parseValue(row, joined(parameter));
    if (!parsed) return {false, {}, valueFault(command.text, row, parsed.fault, parameter.valueOffset())};
    return {true, {&row, std::move(parsed.value)}, {}};
}

ReadDefinition readDefinition(const MqscCommand &command, objects::ObjectKind kind, Options options)
{
    return DefinitionReader(command, kind, options).run();
}

} // namespace mqrig::qmgr::command
