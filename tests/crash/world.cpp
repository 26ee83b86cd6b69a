#include "world.h"

#include <cstring>

namespace mqrig::crash {

const std::array<const char *, static_cast<std::size_t>(Step::steps)> stepNames{
    "CreateWritten", "LifeBegun",     "LiveFilling",       "LiveRebuilt",       "SlotTaken",    "SlotCleaning",
    "SlotCleaned",   "UnitPreparing", "UnitPrepared",      "LogTakenOver",      "UnitLogging",  "UnitLogged",
    "UnitFlipping",  "UnitFlipped",   "UnitUndoing",       "UnitReturning",     "UnitReturned", "DefinitionLogged",
    "QueueMarked",   "QueueSweeping", "TemporaryRemoving", "EndLogged",         "MapReserved",  "MapPublished",
    "RequestTaken",  "RequestRun",    "RequestAnswered",   "RequestsLookedFor",
};

namespace {

std::byte byteAt(const BodyHead &head, std::size_t place)
{
    return static_cast<std::byte>(head.name.producer * 31 + head.name.serial * 7 + place);
}

} // namespace

void fillBody(std::span<std::byte> body, const BodyHead &head)
{
    std::memcpy(body.data(), &head, sizeof head);
    for (std::size_t place = sizeof head; place < body.size(); ++place)
        body[place] = byteAt(head, place);
}

std::optional<BodyHead> headOf(std::span<const std::byte> body)
{
    BodyHead head;
    if (body.size() < sizeof head) return std::nullopt;
    std::memcpy(&head, body.data(), sizeof head);
    if (head.length != body.size() || head.queue >= queues) return std::nullopt;
    for (std::size_t place = sizeof head; place < body.size(); ++place)
        if (body[place] != byteAt(head, place)) return std::nullopt;
    return head;
}

namespace {
constexpr char tag[] = "crash run";
}

void toMsgId(const MessageName &name, MQBYTE24 id)
{
    std::memset(id, 0, 24);
    std::memcpy(id, tag, sizeof tag);
    std::memcpy(id + 12, &name, sizeof name);
}

std::optional<MessageName> ofMsgId(const MQBYTE24 id)
{
    if (std::memcmp(id, tag, sizeof tag) != 0) return std::nullopt;
    MessageName name;
    std::memcpy(&name, id + 12, sizeof name);
    return name;
}

} // namespace mqrig::crash
