// A selection string and the messages that it selects: those of MQOPEN and of subscriptions.
//
// What its names stand for: fields of the descriptor (Root.MQMD.Priority), the headers that programs of JMS know
// (JMSPriority), which have a property of their own or are made of the descriptor, and properties, whether they were
// set on a message handle or stand in an MQRFH2 in front of the body. A message that lacks one has it unknown.
// Properties are read only for a selector that asks for any.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "cmqc.h"
#include "qmgr/properties/descriptor_fields.h"
#include "qmgr/properties/selector.h"
#include "qmgr/store/message.h"

namespace mqrig::qmgr::core {

class MessageSelector {
public:
    // `text`: UTF-8, not empty. MQRC_NONE, MQRC_SELECTOR_SYNTAX_ERROR, MQRC_SELECTOR_ALWAYS_FALSE.
    static MQLONG compile(std::string_view text, std::shared_ptr<const MessageSelector> &selector);

    // `stored`: the properties that were set and the body, as the store keeps them.
    bool matches(const store::MessageHeader &header, std::span<const std::byte> stored) const;

    const std::string &text() const { return text_; }

private:
    // What of the header a name means: alone, or where there is no such property.
    enum class Header : std::uint8_t {
        None,
        Field, // of the descriptor
        MessageId,
        CorrelationId,
        DeliveryMode,
        GroupId,
        GroupSequence,
        Redelivered,
        ReplyTo,
        Timestamp,
    };
    struct Meaning {
        std::string property; // canonical; empty: none
        Header header = Header::None;
        const properties::DescriptorField *field = nullptr;
    };
    class Values;

    static bool findMeaning(const std::string &name, Meaning &meaning);

    std::string text_;
    properties::Selector selector_;
    std::vector<Meaning> meanings_; // of the selector's names
    bool asksForProperties_ = false;
};

} // namespace mqrig::qmgr::core
