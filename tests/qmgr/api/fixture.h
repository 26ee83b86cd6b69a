// A queue manager of the test's own in a temporary store, and the MQI in a form that reads well in tests.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <initializer_list>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cmqc.h"
#include "qmgr/objects/object_kind.h"

namespace mqrig::qmgr::testing {

struct Codes {
    MQLONG CompCode = MQCC_UNKNOWN;
    MQLONG Reason = MQCC_UNKNOWN;

    bool operator==(const Codes &) const = default;
};
std::ostream &operator<<(std::ostream &out, const Codes &codes);

inline constexpr Codes ok{MQCC_OK, MQRC_NONE};
constexpr Codes failed(MQLONG reason)
{
    return {MQCC_FAILED, reason};
}
constexpr Codes warned(MQLONG reason)
{
    return {MQCC_WARNING, reason};
}

struct Got {
    Codes codes;
    std::string body; // what is in the buffer of the message
    MQLONG dataLength = -1;
    MQMD md = {MQMD_DEFAULT};
    MQGMO gmo = {MQGMO_DEFAULT};
};

inline MQMD version2Md()
{
    MQMD md = {MQMD_DEFAULT};
    md.Version = MQMD_VERSION_2;
    return md;
}
inline MQMD persistentMd()
{
    MQMD md = {MQMD_DEFAULT};
    md.Persistence = MQPER_PERSISTENT;
    return md;
}
inline MQMD withPriority(MQLONG priority)
{
    MQMD md = {MQMD_DEFAULT};
    md.Priority = priority;
    return md;
}
inline MQMD withExpiry(MQLONG tenths)
{
    MQMD md = {MQMD_DEFAULT};
    md.Expiry = tenths;
    return md;
}
inline MQPMO pmoWith(MQLONG options)
{
    MQPMO pmo = {MQPMO_DEFAULT};
    pmo.Options = options;
    return pmo;
}
inline MQGMO gmoWith(MQLONG options, MQLONG version = MQGMO_VERSION_1)
{
    MQGMO gmo = {MQGMO_DEFAULT};
    gmo.Version = version;
    gmo.Options = options;
    return gmo;
}

// The text of a field without its padding.
template <std::size_t N>
std::string text(const char (&field)[N])
{
    std::string value(field, N);
    value.erase(value.find_last_not_of(std::string_view(" \0", 2)) + 1);
    return value;
}
template <std::size_t N>
std::string bytes(const MQBYTE (&field)[N])
{
    return {reinterpret_cast<const char *>(field), N};
}
template <std::size_t N>
void setText(char (&field)[N], std::string_view value)
{
    ASSERT_LE(value.size(), N);
    std::string padded(value);
    padded.resize(N, ' ');
    padded.copy(field, N);
}
template <std::size_t N>
void setBytes(MQBYTE (&field)[N], std::string_view value)
{
    ASSERT_LE(value.size(), N);
    std::string padded(value);
    padded.resize(N, '\0');
    padded.copy(reinterpret_cast<char *>(field), N);
}

using Attributes = std::initializer_list<std::pair<MQLONG, MQLONG>>;
using Texts = std::initializer_list<std::pair<MQLONG, std::string_view>>;

// QM1 is the default queue manager and has the queue Q1.
class QueueManagerTest : public ::testing::Test {
public:
    QueueManagerTest();
    ~QueueManagerTest() override;

    const std::filesystem::path &storeFolder() const { return storeFolder_; }

    // ---- Administration, as another program does it ----
    void createQueueManager(const std::string &name);
    void defineQueue(const std::string &name, Attributes attributes = {});
    void defineProcess(const std::string &name);
    void define(objects::ObjectKind kind, const std::string &name, Texts texts, Attributes attributes = {});
    void defineAlias(const std::string &name, std::string_view base, Attributes attributes = {});
    // XMITQ may be blank.
    void defineRemote(const std::string &name, std::string_view remoteName, std::string_view queueManager,
                      std::string_view transmissionQueue, Attributes attributes = {});
    void defineTransmissionQueue(const std::string &name, MQLONG distributionLists = MQDL_NOT_SUPPORTED);
    void alterQueue(const std::string &name, Attributes attributes, Texts texts = {});
    void alterQueueManager(Attributes attributes, Texts texts = {});
    void alterText(MQLONG type, const std::string &name, MQLONG selector, std::string_view value);
    void setDeadLetterQueue(std::string_view name) { alterText(MQOT_Q_MGR, "QM1", MQCA_DEAD_LETTER_Q_NAME, name); }
    void deleteQueue(const std::string &name);
    void endQuiesce();
    void endImmediate();
    void endToReconnect();
    void start();
    void restart()
    {
        endImmediate();
        start();
    }
    MQLONG depth(const std::string &queue);

    // ---- The MQI; those without a Codes answer expect success ----
    static Codes tryConnect(std::string_view name, MQHCONN &hconn);
    static Codes tryConnectX(std::string_view name, MQCNO &cno, MQHCONN &hconn);
    static MQHCONN connect(std::string_view name = "QM1");
    static Codes disconnect(MQHCONN &hconn);

    static Codes tryOpen(MQHCONN hconn, std::string_view queue, MQLONG options, MQHOBJ &hobj);
    static Codes tryOpen(MQHCONN hconn, MQOD &od, MQLONG options, MQHOBJ &hobj);
    static Codes openCodes(MQHCONN hconn, std::string_view queue, MQLONG options);
    static MQHOBJ open(MQHCONN hconn, std::string_view queue, MQLONG options);
    static Codes close(MQHCONN hconn, MQHOBJ &hobj, MQLONG options = MQCO_NONE);

    static Codes put(MQHCONN hconn, MQHOBJ hobj, std::string_view body);
    static Codes put(MQHCONN hconn, MQHOBJ hobj, std::string_view body, MQMD md);
    static Codes put(MQHCONN hconn, MQHOBJ hobj, std::string_view body, MQMD md, MQPMO pmo);
    static Codes putInOut(MQHCONN hconn, MQHOBJ hobj, std::string_view body, MQMD &md, MQPMO &pmo);
    static Codes put1(MQHCONN hconn, std::string_view queue, std::string_view body, MQMD &md, MQPMO &pmo);

    static Got get(MQHCONN hconn, MQHOBJ hobj, MQLONG options = MQGMO_NO_SYNCPOINT);
    static Got get(MQHCONN hconn, MQHOBJ hobj, MQMD md, MQGMO gmo, std::size_t bufferLength = 4096);
    // Everything that is there, removed.
    static std::vector<std::string> drain(MQHCONN hconn, MQHOBJ hobj);

    static Codes commit(MQHCONN hconn);
    static Codes backOut(MQHCONN hconn);

private:
    std::filesystem::path storeFolder_;
};

// The same with a connection and Q1 open for everything.
class OpenQueueTest : public QueueManagerTest {
public:
    static constexpr MQLONG everything = MQOO_INPUT_SHARED | MQOO_OUTPUT | MQOO_BROWSE | MQOO_INQUIRE;

    OpenQueueTest() : hconn(connect()), q1(open(hconn, "Q1", everything)) {}

    MQHCONN hconn;
    MQHOBJ q1;
};

} // namespace mqrig::qmgr::testing
