// Topics and subscriptions in a form that reads well in tests.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "property_calls.h"
#include "qmgr/store/attachment.h"

namespace mqrig::qmgr::testing {

// A connection of its own, ended with it.
struct OwnConnection {
    MQHCONN hconn = QueueManagerTest::connect();
    OwnConnection() = default;
    OwnConnection(const OwnConnection &) = delete;
    OwnConnection &operator=(const OwnConnection &) = delete;
    ~OwnConnection()
    {
        if (hconn != MQHC_UNUSABLE_HCONN) QueueManagerTest::disconnect(hconn);
    }
};

// What MQSUB has made.
struct Subscribed {
    Codes codes;
    MQHOBJ queue = MQHO_NONE;
    MQHOBJ hsub = MQHO_NONE;
    MQSD sd = {MQSD_DEFAULT};
    std::string resolved; // ResObjectString
};

class TopicTest : public PropertyTest {
public:
    // Topic, options and name are the most that most tests want to say.
    static MQSD sdFor(std::string_view topic, MQLONG options, std::string_view name = {})
    {
        MQSD sd = {MQSD_DEFAULT};
        sd.Options = options;
        sd.ObjectString = charv(topic);
        if (!name.empty()) sd.SubName = charv(name);
        return sd;
    }
    static Subscribed trySubscribe(MQHCONN hconn, MQSD sd, MQHOBJ queue = MQHO_NONE)
    {
        Subscribed made;
        made.sd = sd;
        made.queue = queue;
        made.resolved.resize(20000);
        made.sd.ResObjectString.VSPtr = made.resolved.data();
        made.sd.ResObjectString.VSBufSize = static_cast<MQLONG>(made.resolved.size());
        MQSUB(hconn, &made.sd, &made.queue, &made.hsub, &made.codes.CompCode, &made.codes.Reason);
        const MQLONG length = made.codes.CompCode == MQCC_FAILED ? 0 : made.sd.ResObjectString.VSLength;
        made.resolved.resize(static_cast<std::size_t>(length));
        return made;
    }
    static Subscribed subscribe(MQHCONN hconn, std::string_view topic, MQLONG options = MQSO_CREATE | MQSO_MANAGED,
                                std::string_view name = {})
    {
        Subscribed made = trySubscribe(hconn, sdFor(topic, options, name));
        EXPECT_EQ(made.codes, ok) << topic;
        return made;
    }
    static Codes codesOf(std::string_view topic, MQLONG options, std::string_view name = {})
    {
        const OwnConnection connection;
        return trySubscribe(connection.hconn, sdFor(topic, options, name)).codes;
    }

    static MQOD topicOd(std::string_view topic, std::string_view object = {})
    {
        MQOD od = {MQOD_DEFAULT};
        od.Version = MQOD_VERSION_4;
        od.ObjectType = MQOT_TOPIC;
        if (!topic.empty()) od.ObjectString = charv(topic);
        setText(od.ObjectName, object);
        return od;
    }
    static Codes tryOpenTopic(MQHCONN hconn, std::string_view topic, MQHOBJ &hobj, MQLONG options = MQOO_OUTPUT,
                              std::string_view object = {})
    {
        MQOD od = topicOd(topic, object);
        return tryOpen(hconn, od, options, hobj);
    }
    static MQHOBJ openTopic(MQHCONN hconn, std::string_view topic, MQLONG options = MQOO_OUTPUT)
    {
        MQHOBJ hobj = MQHO_NONE;
        EXPECT_EQ(tryOpenTopic(hconn, topic, hobj, options), ok) << topic;
        return hobj;
    }
    static Codes publish(MQHCONN hconn, std::string_view topic, std::string_view body,
                         MQLONG options = MQPMO_NO_SYNCPOINT, MQMD md = {MQMD_DEFAULT})
    {
        MQOD od = topicOd(topic);
        MQPMO pmo = pmoWith(options);
        Codes codes;
        MQPUT1(hconn, &od, &md, &pmo, static_cast<MQLONG>(body.size()), const_cast<char *>(body.data()),
               &codes.CompCode, &codes.Reason);
        return codes;
    }
    static Codes request(MQHCONN hconn, MQHOBJ hsub, MQLONG &number, MQLONG action = MQSR_ACTION_PUBLICATION)
    {
        MQSRO sro = {MQSRO_DEFAULT};
        Codes codes;
        MQSUBRQ(hconn, hsub, action, &sro, &codes.CompCode, &codes.Reason);
        number = sro.NumPubs;
        return codes;
    }
    // The next message with its properties: "body name=value ...".
    std::string nextWithProperties(MQHOBJ queue) const
    {
        MQHMSG hmsg = create(hconn);
        MQGMO gmo = gmoWith(MQGMO_NO_SYNCPOINT | MQGMO_PROPERTIES_IN_HANDLE, MQGMO_VERSION_4);
        gmo.MsgHandle = hmsg;
        const Got got = get(hconn, queue, version2Md(), gmo);
        EXPECT_EQ(got.codes, ok);
        std::string all = got.body + " " + shown(hmsg);
        remove(hconn, hmsg);
        return all;
    }
    // How many definitions of the type have a name that begins so.
    std::vector<std::string> namesDefined(MQLONG type, std::string_view prefix = {}) const
    {
        const store::Attached attached = store::attach(storeFolder(), "QM1");
        std::vector<std::string> names;
        for (const store::Definition &definition : attached.attachment->definitions(type))
            if (definition.name.starts_with(prefix)) names.push_back(definition.name);
        return names;
    }
    std::size_t countDefined(MQLONG type, std::string_view prefix = {}) const
    {
        return namesDefined(type, prefix).size();
    }

    using Bodies = std::vector<std::string>;
};

} // namespace mqrig::qmgr::testing
