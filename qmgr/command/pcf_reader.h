// PCF messages read structure by structure, in either byte order.
//
// Nothing in the bytes is believed: every length and count is checked against what the structure needs and against
// the end of the message before anything behind it is read.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "cmqc.h"
#include "cmqcfc.h"

namespace mqrig::qmgr::command {

// One parameter structure. The members of a group (MQCFT_GROUP) follow it as parameters of their own.
struct PcfParameter {
    MQLONG type = 0;                // MQCFT_
    MQLONG id = 0;                  // MQIA_, MQCA_, MQIACF_ ...
    MQLONG operation = 0;           // MQCFOP_ of a filter
    std::vector<MQINT64> numbers;   // the value, the values of a list, a filter's value, the count of a group
    std::vector<std::string> texts; // the string, the strings of a list, a filter's value: as they stand in the message

    bool operator==(const PcfParameter &) const = default;
};

// What is wrong with a message or a command: the reason, and the parameter in error where there is one.
struct PcfFault {
    MQLONG reason = MQRC_NONE;
    MQLONG about = 0; // 0, or what `value` is: MQIACF_PARAMETER_ID, MQIACF_SELECTOR, MQIACF_ERROR_ID ...
    MQLONG value = 0;

    explicit operator bool() const { return reason != MQRC_NONE; }
    bool operator==(const PcfFault &) const = default;
};

// The parameter with that id is in error.
constexpr PcfFault faultOf(MQLONG reason, MQLONG parameter)
{
    return {reason, MQIACF_PARAMETER_ID, parameter};
}

struct ReadPcf {
    PcfFault fault;
    MQCFH header{}; // as far as the message reaches
    std::vector<PcfParameter> parameters;
};

// Encoding: of the MQMD (or header) that describes the message; its integers may be MQENC_INTEGER_NORMAL or
// MQENC_INTEGER_REVERSED, else MQRCCF_ENCODING_ERROR. MQRCCF_MSG_LENGTH_ERROR: the message ends inside a structure or
// goes on behind the last. MQRCCF_CFH_LENGTH_ERROR, MQRCCF_CFH_PARM_COUNT_ERROR, MQRCCF_STRUCTURE_TYPE_ERROR, and the
// length, count, string length and operator errors of each structure. The first fault ends the reading; the type,
// version and command of the header are the caller's to judge.
ReadPcf readPcf(std::span<const std::byte> message, MQLONG encoding);

// The text of a padded string: up to the first zero, without trailing blanks.
std::string_view textOf(const std::string &string);

} // namespace mqrig::qmgr::command
