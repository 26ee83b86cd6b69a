// Retained publications: the last one of each topic that was put with MQPMO_RETAIN, for those who subscribe later.
//
// They are messages on SYSTEM.RETAINED.PUB.QUEUE, so persistent ones survive what other persistent messages survive and
// all of them are part of the publisher's unit of work. Their CorrelId stands for the topic (a digest), that of the
// publisher is kept beside it.
//
// The one that counts is the one that was put last. What it follows is removed in the unit of work of the publication
// behind it, so that there is always one to be seen, committed, whatever units of work are under way: a topic has one
// or two messages there.
//
// Who publishes what is retained and who subscribes to it take turns (store::Attachment::RetainedTurn), so that a new
// subscriber has every publication once, from the one that it finds on. One that was put in a unit of work before the
// subscription was made and is committed after it has looked is not for it.
#pragma once

#include <string>

#include "cmqc.h"
#include "qmgr/core/connection.h"
#include "qmgr/core/subscriptions.h"
#include "qmgr/core/unit_of_work.h"
#include "qmgr/store/message.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

// Makes the message the retained one of its topic, once the unit is committed. The last step of a unit's call: what it
// removes cannot be taken back alone. MQRC_PUT_NOT_RETAINED, and the reasons of the store.
Outcome retain(Connection &connection, UnitOfWork &unit, const std::string &topic, const store::NewMessage &message);

// Sends the retained publications that match to the subscriber; `number`: how many there were.
// MQRC_RETAINED_MSG_Q_ERROR where they cannot be read, MQRC_RETAINED_NOT_DELIVERED where neither the subscriber's queue
// nor the dead-letter queue takes one: then it has none of them.
Outcome sendRetained(Connection &connection, Subscriber &subscriber, MQLONG &number);

} // namespace mqrig::qmgr::core
