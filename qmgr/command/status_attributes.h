// What is counted of queues and known of handles and connections, as of now: rows like those of the attribute table,
// with the numbers of command messages as selectors. DISPLAY QSTATUS, DISPLAY CONN and the inquiries of command
// messages all read them.
#pragma once

#include <array>
#include <span>
#include <string>
#include <vector>

#include "cmqc.h"
#include "cmqcfc.h"
#include "qmgr/command/object_commands.h"
#include "qmgr/objects/attribute.h"
#include "qmgr/objects/attribute_value.h"
#include "qmgr/store/attachment.h"

namespace mqrig::qmgr::command {

// A queue and who has it open.
struct Handle {
    std::string queue;
    store::OpenQueue open;
};
// The handles of the queues whose name fits, by queue.
std::vector<Handle> findHandles(store::Attachment &attachment, const std::string &genericName);

// Which queues and handles a status is asked of: MQQSOT_ALL, MQQSOT_INPUT (not for browsing), MQQSOT_OUTPUT.
bool isOpenFor(const store::OpenCounts &opens, MQLONG openType);

std::span<const objects::Attribute> queueStatusAttributes();
std::span<const objects::Attribute> handleAttributes();
std::span<const objects::Attribute> connectionAttributes();

objects::AttributeValue statusOf(const InquiredObject &queue, const objects::Attribute &attribute);
objects::AttributeValue statusOf(const Handle &handle, const objects::Attribute &attribute);
objects::AttributeValue statusOf(const store::ConnectionInfo &connection, const std::string &queueManager,
                                 const objects::Attribute &attribute);

// The connection id that programs know (MQCNO ConnectionId), and its last eight bytes, which name the connection in
// the command language: those in front are the same for all of this queue manager.
std::array<MQBYTE, MQ_CONNECTION_ID_LENGTH> connectionId(const store::ConnectionInfo &connection,
                                                         const std::string &queueManager);
std::string connectionName(const store::ConnectionInfo &connection);

} // namespace mqrig::qmgr::command
