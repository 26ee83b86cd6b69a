#include "fixture.h"

#include <cstdlib>
#include <cstring>

#include "qmgr/objects/object_definition.h"
#include "qmgr/objects/system_objects.h"
#include "qmgr/store/attachment.h"
#include "qmgr/store/queue_managers.h"

namespace mqrig::qmgr::testing {
namespace {

store::Definition stored(const objects::ObjectDefinition &object)
{
    store::Definition definition;
    definition.type = objects::openType(object.kind());
    definition.name = object.name();
    definition.bytes = object.encode();
    return definition;
}

void assign(objects::ObjectDefinition &object, Attributes attributes, Texts texts)
{
    for (const auto &[selector, value] : attributes)
        object.set(selector, value);
    for (const auto &[selector, value] : texts)
        object.set(selector, value);
}

// A connection of its own for each command, as a command has.
std::unique_ptr<store::Attachment> attachment(const std::filesystem::path &folder)
{
    store::Attached attached = store::attach(folder, "QM1");
    EXPECT_EQ(attached.outcome, success()) << attached.outcome.Reason;
    return std::move(attached.attachment);
}

void alter(const std::filesystem::path &folder, MQLONG type, const std::string &name, Attributes attributes,
           Texts texts)
{
    const auto store = attachment(folder);
    auto definition = store->findDefinition(type, name);
    ASSERT_TRUE(definition) << name;
    auto object = objects::ObjectDefinition::decode(definition->bytes);
    ASSERT_TRUE(object) << name;
    assign(*object, attributes, texts);
    definition->bytes = object->encode();
    ASSERT_EQ(store->alter(*definition), success());
}

void nameField(std::string_view name, MQCHAR48 &field)
{
    ASSERT_LE(name.size(), sizeof field);
    std::memset(field, 0, sizeof field);
    name.copy(field, sizeof field);
}

} // namespace

std::ostream &operator<<(std::ostream &out, const Codes &codes)
{
    return out << "CompCode " << codes.CompCode << " Reason " << codes.Reason;
}

QueueManagerTest::QueueManagerTest()
{
    std::string folder = (std::filesystem::temp_directory_path() / "mqrig-test-XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr) throw std::runtime_error("mkdtemp");
    storeFolder_ = folder;
    setenv("MQRIG_STORE", folder.c_str(), 1);
    createQueueManager("QM1");
    defineQueue("Q1");
}

QueueManagerTest::~QueueManagerTest()
{
    std::error_code ignored;
    std::filesystem::remove_all(storeFolder_, ignored);
}

void QueueManagerTest::createQueueManager(const std::string &name)
{
    const auto makeDefault = name == "QM1" ? store::DefaultQueueManager::Yes : store::DefaultQueueManager::No;
    const Outcome created = store::createQueueManager(storeFolder_, name, objects::systemObjects(name), makeDefault);
    ASSERT_EQ(created, success()) << created.Reason;
}

void QueueManagerTest::define(objects::ObjectKind kind, const std::string &name, Texts texts, Attributes attributes)
{
    objects::ObjectDefinition object(kind, name);
    assign(object, attributes, texts);
    store::Definition definition = stored(object);
    const Outcome defined = attachment(storeFolder_)->define(definition);
    ASSERT_EQ(defined, success()) << defined.Reason;
}

void QueueManagerTest::defineQueue(const std::string &name, Attributes attributes)
{
    define(objects::ObjectKind::LocalQueue, name, {}, attributes);
}

void QueueManagerTest::defineProcess(const std::string &name)
{
    define(objects::ObjectKind::Process, name, {}, {});
}

void QueueManagerTest::defineAlias(const std::string &name, std::string_view base, Attributes attributes)
{
    define(objects::ObjectKind::AliasQueue, name, {{MQCA_BASE_Q_NAME, base}}, attributes);
}

void QueueManagerTest::defineRemote(const std::string &name, std::string_view remoteName, std::string_view queueManager,
                                    std::string_view transmissionQueue, Attributes attributes)
{
    define(objects::ObjectKind::RemoteQueue, name,
           {{MQCA_REMOTE_Q_NAME, remoteName},
            {MQCA_REMOTE_Q_MGR_NAME, queueManager},
            {MQCA_XMIT_Q_NAME, transmissionQueue}},
           attributes);
}

void QueueManagerTest::defineTransmissionQueue(const std::string &name, MQLONG distributionLists)
{
    defineQueue(name, {{MQIA_USAGE, MQUS_TRANSMISSION}, {MQIA_DIST_LISTS, distributionLists}});
}

void QueueManagerTest::alterQueue(const std::string &name, Attributes attributes, Texts texts)
{
    alter(storeFolder_, MQOT_Q, name, attributes, texts);
}

void QueueManagerTest::alterQueueManager(Attributes attributes, Texts texts)
{
    alter(storeFolder_, MQOT_Q_MGR, "QM1", attributes, texts);
}

void QueueManagerTest::alterText(MQLONG type, const std::string &name, MQLONG selector, std::string_view value)
{
    alter(storeFolder_, type, name, {}, {{selector, value}});
}

void QueueManagerTest::deleteQueue(const std::string &name)
{
    const Outcome removed = attachment(storeFolder_)->remove(MQOT_Q, name, nullptr);
    ASSERT_EQ(removed, success()) << removed.Reason;
}

void QueueManagerTest::endQuiesce()
{
    ASSERT_FALSE(store::endQueueManager(storeFolder_, "QM1", store::End::Quiesce).failed());
}

void QueueManagerTest::endImmediate()
{
    ASSERT_FALSE(store::endQueueManager(storeFolder_, "QM1", store::End::Immediate).failed());
}

void QueueManagerTest::endToReconnect()
{
    ASSERT_FALSE(store::endQueueManager(storeFolder_, "QM1", store::End::Reconnect).failed());
}

void QueueManagerTest::start()
{
    ASSERT_FALSE(store::startQueueManager(storeFolder_, "QM1").failed());
}

MQLONG QueueManagerTest::depth(const std::string &queue)
{
    MQHCONN hconn = connect();
    MQHOBJ hobj = open(hconn, queue, MQOO_INQUIRE);
    MQLONG selector = MQIA_CURRENT_Q_DEPTH;
    MQLONG value = -1;
    Codes codes;
    MQINQ(hconn, hobj, 1, &selector, 1, &value, 0, nullptr, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, ok);
    disconnect(hconn);
    return value;
}

Codes QueueManagerTest::tryConnect(std::string_view name, MQHCONN &hconn)
{
    MQCHAR48 field;
    nameField(name, field);
    Codes codes;
    MQCONN(field, &hconn, &codes.CompCode, &codes.Reason);
    return codes;
}

Codes QueueManagerTest::tryConnectX(std::string_view name, MQCNO &cno, MQHCONN &hconn)
{
    MQCHAR48 field;
    nameField(name, field);
    Codes codes;
    MQCONNX(field, &cno, &hconn, &codes.CompCode, &codes.Reason);
    return codes;
}

MQHCONN QueueManagerTest::connect(std::string_view name)
{
    MQHCONN hconn = MQHC_UNUSABLE_HCONN;
    EXPECT_EQ(tryConnect(name, hconn), ok);
    return hconn;
}

Codes QueueManagerTest::disconnect(MQHCONN &hconn)
{
    Codes codes;
    MQDISC(&hconn, &codes.CompCode, &codes.Reason);
    return codes;
}

Codes QueueManagerTest::tryOpen(MQHCONN hconn, MQOD &od, MQLONG options, MQHOBJ &hobj)
{
    Codes codes;
    MQOPEN(hconn, &od, options, &hobj, &codes.CompCode, &codes.Reason);
    return codes;
}

Codes QueueManagerTest::tryOpen(MQHCONN hconn, std::string_view queue, MQLONG options, MQHOBJ &hobj)
{
    MQOD od = {MQOD_DEFAULT};
    nameField(queue, od.ObjectName);
    return tryOpen(hconn, od, options, hobj);
}

Codes QueueManagerTest::openCodes(MQHCONN hconn, std::string_view queue, MQLONG options)
{
    MQHOBJ hobj = MQHO_UNUSABLE_HOBJ;
    return tryOpen(hconn, queue, options, hobj);
}

MQHOBJ QueueManagerTest::open(MQHCONN hconn, std::string_view queue, MQLONG options)
{
    MQHOBJ hobj = MQHO_UNUSABLE_HOBJ;
    EXPECT_EQ(tryOpen(hconn, queue, options, hobj), ok) << queue;
    return hobj;
}

Codes QueueManagerTest::close(MQHCONN hconn, MQHOBJ &hobj, MQLONG options)
{
    Codes codes;
    MQCLOSE(hconn, &hobj, options, &codes.CompCode, &codes.Reason);
    return codes;
}

Codes QueueManagerTest::put(MQHCONN hconn, MQHOBJ hobj, std::string_view body)
{
    return put(hconn, hobj, body, {MQMD_DEFAULT});
}

Codes QueueManagerTest::put(MQHCONN hconn, MQHOBJ hobj, std::string_view body, MQMD md)
{
    return put(hconn, hobj, body, md, pmoWith(MQPMO_NO_SYNCPOINT));
}

Codes QueueManagerTest::put(MQHCONN hconn, MQHOBJ hobj, std::string_view body, MQMD md, MQPMO pmo)
{
    return putInOut(hconn, hobj, body, md, pmo);
}

Codes QueueManagerTest::putInOut(MQHCONN hconn, MQHOBJ hobj, std::string_view body, MQMD &md, MQPMO &pmo)
{
    std::string buffer(body);
    Codes codes;
    MQPUT(hconn, hobj, &md, &pmo, static_cast<MQLONG>(buffer.size()), buffer.data(), &codes.CompCode, &codes.Reason);
    return codes;
}

Codes QueueManagerTest::put1(MQHCONN hconn, std::string_view queue, std::string_view body, MQMD &md, MQPMO &pmo)
{
    MQOD od = {MQOD_DEFAULT};
    nameField(queue, od.ObjectName);
    std::string buffer(body);
    Codes codes;
    MQPUT1(hconn, &od, &md, &pmo, static_cast<MQLONG>(buffer.size()), buffer.data(), &codes.CompCode, &codes.Reason);
    return codes;
}

Got QueueManagerTest::get(MQHCONN hconn, MQHOBJ hobj, MQLONG options)
{
    return get(hconn, hobj, version2Md(), gmoWith(options, MQGMO_VERSION_3));
}

Got QueueManagerTest::get(MQHCONN hconn, MQHOBJ hobj, MQMD md, MQGMO gmo, std::size_t bufferLength)
{
    Got got;
    got.md = md;
    got.gmo = gmo;
    got.body.resize(bufferLength);
    MQGET(hconn, hobj, &got.md, &got.gmo, static_cast<MQLONG>(bufferLength), got.body.data(), &got.dataLength,
          &got.codes.CompCode, &got.codes.Reason);
    const bool returned = got.codes.CompCode != MQCC_FAILED;
    got.body.resize(returned ? std::min(bufferLength, static_cast<std::size_t>(got.dataLength)) : 0);
    return got;
}

std::vector<std::string> QueueManagerTest::drain(MQHCONN hconn, MQHOBJ hobj)
{
    std::vector<std::string> bodies;
    for (;;) {
        const Got got = get(hconn, hobj);
        if (got.codes != ok) {
            EXPECT_EQ(got.codes, failed(MQRC_NO_MSG_AVAILABLE));
            return bodies;
        }
        bodies.push_back(got.body);
    }
}

Codes QueueManagerTest::commit(MQHCONN hconn)
{
    Codes codes;
    MQCMIT(hconn, &codes.CompCode, &codes.Reason);
    return codes;
}

Codes QueueManagerTest::backOut(MQHCONN hconn)
{
    Codes codes;
    MQBACK(hconn, &codes.CompCode, &codes.Reason);
    return codes;
}

} // namespace mqrig::qmgr::testing
