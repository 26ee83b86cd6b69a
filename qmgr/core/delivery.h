// From the message as it is stored to what the program that gets it sees.
//
// The store keeps [properties: header.coreLength bytes][body]. The properties are those that were set on a message
// handle; a body that begins with MQRFH2 headers has properties in them too, where its program put them. The options
// of the get and the queue's PROPCTL say which of them go into a message handle, into a header in front of the body,
// or nowhere. A message without any is copied straight from the store into the program's buffer.
//
// Delivery has two steps, because the length that the program is told decides whether the message is taken at all, but
// a large body is copied when nobody waits any more:
//   prepareDelivery   inside the transaction that found the message, or in a snapshot before it: lengths and outcome
//   copyDelivery      with the same stored bytes, there or in a later transaction
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

#include "qmgr/core/get.h"
#include "qmgr/properties/property_set.h"
#include "qmgr/properties/rfh2.h"
#include "qmgr/store/message.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

// What becomes of a message's properties.
enum class PropertyDelivery : std::uint8_t {
    Dropped,        // those in headers of the body are taken out
    InHandle,       // those in headers of the body too
    SetInHandle,    // those that were set; the body is as it was put
    AsPut,          // those that were set are dropped; the body is as it was put
    InHeader,       // those that were set in a header of their own; the body behind it as it was put
    InHeaderForJms, // the same for a message with a property that programs of JMS use; else Dropped
};
// `options`: MQGMO_, with one option for properties at most. `propertyControl`: MQPROP_, of the queue.
PropertyDelivery propertyDelivery(MQLONG options, bool hasMessageHandle, MQLONG propertyControl);
// Whether the message handle of the get is filled.
constexpr bool fillsHandle(PropertyDelivery delivery)
{
    return delivery == PropertyDelivery::InHandle || delivery == PropertyDelivery::SetInHandle;
}

// A message that is not delivered as it stands: properties apart, or an extension of the descriptor in front.
struct UnpackedMessage {
    std::vector<std::byte> front;      // headers in front of the rest
    std::size_t restAt = 0;            // in the stored bytes
    properties::DataForm form;         // of front and rest
    properties::PropertySet forHandle; // whole before the message is taken: afterwards nothing may fail
};

// The parts of a stored message. After an error of the store there are no bytes: then both are empty.
inline std::span<const std::byte> propertiesOf(const store::MessageHeader &header, std::span<const std::byte> stored)
{
    return stored.first(std::min<std::size_t>(header.coreLength, stored.size()));
}
inline std::span<const std::byte> bodyOf(const store::MessageHeader &header, std::span<const std::byte> stored)
{
    return stored.subspan(std::min<std::size_t>(header.coreLength, stored.size()));
}

// Whether anything is to be done about properties: only then is prepareDelivery more than a comparison of lengths.
inline bool mayHaveProperties(const store::MessageHeader &header)
{
    return header.coreLength != 0 || std::memcmp(header.md.Format, MQFMT_RF_HEADER_2, MQ_FORMAT_LENGTH) == 0;
}

// Notes in `got`, whose key and header are those of the message, how long it is for the program, and in got.unpacked
// what is to be done with its properties; the header stays as it is stored. Answers what the get will answer: success
// or one of the two truncation warnings. May run again for another message.
Outcome prepareDelivery(const GetRequest &request, std::span<const std::byte> stored, GotMessage &got);

// Copies as much as fits into the program's buffer, and notes how much.
void copyDelivery(const GetRequest &request, std::span<const std::byte> stored, GotMessage &got);

// Both steps.
Outcome deliver(const GetRequest &request, std::span<const std::byte> stored, GotMessage &got);

} // namespace mqrig::qmgr::core
