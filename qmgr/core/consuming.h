// What the thread of a connection's callbacks (callbacks.h) does while the program lets it consume messages: between
// MQCTL with MQOP_START and MQOP_STOP. Who gets messages and calls consumers stands on the floor of the MQI's calls.
#pragma once

#include "cmqc.h"
#include "qmgr/store/watch.h"

namespace mqrig::qmgr::core {

class Consuming {
public:
    Consuming() = default;
    virtual ~Consuming() = default;
    Consuming(const Consuming &) = delete;
    Consuming &operator=(const Consuming &) = delete;

    // Consumers that are registered and not suspended. Any thread.
    [[nodiscard]] virtual bool anyActive() const = 0;

    // On the thread, without its lock. The area is that of the MQCTLO.
    virtual void begin(MQPTR connectionArea) = 0;
    // One message, or whatever else there is to tell one consumer. Answers when to look again, unless the number of
    // the watch is raised before; MQRC_NONE, or why no more can be consumed.
    struct Done {
        store::Deadline again;
        MQLONG ended = MQRC_NONE;
    };
    virtual Done once(const store::Watch &watch) = 0;
    virtual void end(MQLONG reason) = 0;
};

} // namespace mqrig::qmgr::core
