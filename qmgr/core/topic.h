// Topics: which one is meant, and what a handle knows of it.
#pragma once

#include <string>
#include <string_view>

#include "cmqc.h"
#include "qmgr/core/connection.h"
#include "qmgr/core/object_handles.h"
#include "qmgr/core/open.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

// Bytes of the longest topic string.
inline constexpr std::size_t longestTopic = MQ_TOPIC_STR_LENGTH;

// The topic string that a topic object and a string make together: "OBJECT'S/STRING", or the one of them that is
// given. MQRC_UNKNOWN_OBJECT_NAME, MQRC_TOPIC_STRING_ERROR, MQRC_OBJECT_STRING_ERROR.
Outcome resolveTopic(Connection &connection, std::string_view object, std::string_view string, std::string &topic);

// MQRC_PUBSUB_INHIBITED where the queue manager has publish/subscribe switched off (PSMODE).
Outcome mayPublishOrSubscribe(Connection &connection);

// The topic that is named for a publication. MQRC_OPTION_NOT_VALID_FOR_TYPE, MQRC_ADMIN_TOPIC_STRING_ERROR,
// MQRC_UNKNOWN_OBJECT_Q_MGR and those of the functions above.
Outcome openTopic(Connection &connection, const ObjectName &name, MQLONG options, OpenTopic &topic);

// The topic object that a name means which is that of an alias queue with TARGTYPE(TOPIC); empty for all others.
std::string topicOfAlias(Connection &connection, const ObjectName &name);

// Reads the topic's attributes and subscribers where they have changed.
void bringUpToDate(Connection &connection, OpenTopic &topic);

} // namespace mqrig::qmgr::core
