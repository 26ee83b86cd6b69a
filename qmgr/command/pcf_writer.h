// PCF messages written structure by structure, in either byte order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "cmqc.h"
#include "cmqcfc.h"

namespace mqrig::qmgr::command {

class PcfWriter {
public:
    // The header's StrucLength and ParameterCount are the writer's; all else stays as it is given. `encoding` must have
    // MQENC_INTEGER_NORMAL or MQENC_INTEGER_REVERSED.
    explicit PcfWriter(const MQCFH &header, MQLONG encoding = MQENC_NATIVE);

    MQCFH &header() { return header_; }

    // ---- One structure each, in the order of the calls ----
    void integer(MQLONG id, MQLONG value);
    void integer64(MQLONG id, MQINT64 value);
    void integers(MQLONG id, std::span<const MQLONG> values);
    // `field`: the string is filled up with blanks to that length, or cut; 0: as long as it is.
    void text(MQLONG id, std::string_view text, MQLONG field = 0);
    void texts(MQLONG id, std::span<const std::string> texts, MQLONG field);
    void bytes(MQLONG id, std::span<const MQBYTE> bytes);
    void integerFilter(MQLONG id, MQLONG operation, MQLONG value);
    void textFilter(MQLONG id, MQLONG operation, std::string_view value);

    // What is written between the two stands in a group; groups may stand in groups.
    void beginGroup(MQLONG id);
    void endGroup();

    // The message as of now: the header with the number of parameters outside groups, and the structures.
    std::string message() const;

private:
    void begin(MQLONG type, MQLONG id, std::size_t length);
    void number(MQLONG value);
    void wideNumber(std::uint64_t value, std::size_t width);
    void padded(std::string_view text, std::size_t length);
    void fill();

    struct Group {
        std::size_t countAt = 0; // where its ParameterCount stands
        MQLONG members = 0;
    };

    MQCFH header_;
    bool bigEndian_;
    MQLONG parameters_ = 0;
    std::vector<Group> groups_;
    std::string structures_;
};

} // namespace mqrig::qmgr::command
