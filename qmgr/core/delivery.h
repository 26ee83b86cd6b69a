// From the message as it is stored to what the program that gets it sees.
//
// The store keeps [properties: header.coreLength bytes][body]. A message without properties is copied straight from
// the store into the program's buffer. Delivery has two steps, because the length that the program is told decides
// whether the message is taken at all, but a large body is copied when nobody waits any more:
//   prepareDelivery   inside the transaction that found the message: lengths and outcome
//   copyDelivery      with the same stored bytes, there or in a later transaction
#pragma once

#include <algorithm>
#include <cstddef>
#include <span>

#include "qmgr/core/get.h"
#include "qmgr/store/message.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

// The parts of a stored message. After an error of the store there are no bytes: then both are empty.
inline std::span<const std::byte> propertiesOf(const store::MessageHeader &header, std::span<const std::byte> stored)
{
    return stored.first(std::min<std::size_t>(header.coreLength, stored.size()));
}
inline std::span<const std::byte> bodyOf(const store::MessageHeader &header, std::span<const std::byte> stored)
{
    return stored.subspan(std::min<std::size_t>(header.coreLength, stored.size()));
}

// Notes in `got`, whose key and header are those of the message, how long it is for the program. Answers what the get
// will answer: success or one of the two truncation warnings. May run again for another message.
Outcome prepareDelivery(const GetRequest &request, std::span<const std::byte> stored, GotMessage &got);

// Copies as much as fits into the program's buffer, and notes how much.
void copyDelivery(const GetRequest &request, std::span<const std::byte> stored, GotMessage &got);

// Both steps.
Outcome deliver(const GetRequest &request, std::span<const std::byte> stored, GotMessage &got);

} // namespace mqrig::qmgr::core
