// A publication on its way to one subscriber: what a publisher's message becomes.
//
//   MsgId                 a new one
//   CorrelId              the subscription's, or the publisher's where the subscriber wants that
//   identity context      the subscriber's
//   origin context        the queue manager as a broker (MQAT_BROKER)
//   priority              the publisher's or the subscription's
//   persistence           the publisher's; not persistent on a temporary queue, which takes no other
//   properties            the publisher's (copy option MQCOPY_PUBLISH), mqps.Top, mqps.Sud, and mqps.Ret of a retained
//                         one: MQTopicString, MQSubUserData, MQIsRetained
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "cmqc.h"
#include "qmgr/core/connection.h"
#include "qmgr/core/subscriptions.h"
#include "qmgr/core/unit_of_work.h"
#include "qmgr/store/message.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

enum class Retained { No, Yes };

class Publication {
public:
    // `message`: complete, with the publisher's properties in front of the body; it must outlive this object.
    Publication(const store::NewMessage &message, std::string_view topic, Retained retained);

    const store::NewMessage &message() const { return message_; }
    // Properties as subscribers without user data get them, and the body.
    store::NewMessage common() const;

    // Puts it where the subscriber wants it. Failed: it is not there; the reasons are those of putByQueueManager and
    // of name resolution.
    Outcome putFor(Connection &connection, UnitOfWork &unit, Subscriber &subscriber) const;
    // Puts it on the dead-letter queue instead, with the reason.
    Outcome putOnDeadLetterQueueFor(Connection &connection, UnitOfWork &unit, const Subscriber &subscriber,
                                    MQLONG reason) const;

private:
    store::NewMessage messageFor(Connection &connection, const objects::Subscription &subscription,
                                 std::vector<std::byte> &stored) const;

    const store::NewMessage &message_;
    std::vector<std::byte> stored_;
    std::size_t ofPublisher_ = 0; // bytes of the publisher's properties in it
    std::size_t properties_ = 0;  // and of all
};

} // namespace mqrig::qmgr::core
