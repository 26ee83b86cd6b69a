// The walk over the parts of a body.
#pragma once

#include <array>
#include <string_view>

#include "cmqc.h"
#include "qmgr/convert/piece.h"

namespace mqrig::qmgr::convert {

// What is known of the part that comes next.
struct Part {
    Representation representation;
    std::array<char, MQ_FORMAT_LENGTH> format{};

    std::string_view name() const { return {format.data(), format.size()}; }
};

struct Walked {
    MQLONG reason = MQRC_NONE;
    bool nothing = false;          // not even the first part was converted
    Representation representation; // of the first part
};

// Converts part after part into the piece's place. What cannot be converted is copied. Stopped with NoRoom: all that
// fits is there. `ownCcsid`: of the queue manager.
Walked convertChain(Piece &piece, const Part &first, const Representation &wanted, MQLONG ownCcsid);

} // namespace mqrig::qmgr::convert
