// Queues that MQOPEN makes of model queues.
#include "fixture.h"

#include <future>

#include "../waiting_program.h"
#include "qmgr/store/attachment.h"

namespace mqrig::qmgr::testing {
namespace {

class DynamicQueue : public QueueManagerTest {
public:
    static constexpr MQLONG everything = MQOO_INPUT_EXCLUSIVE | MQOO_OUTPUT | MQOO_BROWSE | MQOO_INQUIRE;

    DynamicQueue()
    {
        define(objects::ObjectKind::ModelQueue, "TEMP", {}, {{MQIA_MAX_Q_DEPTH, 7}, {MQIA_DEF_PRIORITY, 3}});
        define(objects::ObjectKind::ModelQueue, "PERM", {}, {{MQIA_DEFINITION_TYPE, MQQDT_PERMANENT_DYNAMIC}});
        hconn = connect();
    }

    struct Opened {
        Codes codes;
        MQHOBJ hobj = MQHO_UNUSABLE_HOBJ;
        std::string name;
        MQOD od = {MQOD_DEFAULT};
    };
    static Opened openModel(MQHCONN hconn, std::string_view model, std::string_view dynamicName,
                            MQLONG options = everything)
    {
        Opened opened;
        opened.od.Version = MQOD_VERSION_4;
        setText(opened.od.ObjectName, model);
        setText(opened.od.DynamicQName, dynamicName);
        opened.codes = tryOpen(hconn, opened.od, options, opened.hobj);
        opened.name = text(opened.od.ObjectName);
        return opened;
    }
    Codes codesFor(std::string_view dynamicName, std::string_view model = "TEMP")
    {
        return openModel(hconn, model, dynamicName).codes;
    }
    std::vector<std::string> queuesBeginningWith(std::string_view prefix)
    {
        const store::Attached attached = store::attach(storeFolder(), "QM1");
        std::vector<std::string> names;
        for (const store::Definition &definition : attached.attachment->definitions(MQOT_Q))
            if (definition.name.starts_with(prefix)) names.push_back(definition.name);
        return names;
    }

    MQHCONN hconn;
};

TEST_F(DynamicQueue, TakesTheNameThatIsGiven)
{
    const Opened made = openModel(hconn, "TEMP", "MY.OWN");
    ASSERT_EQ(made.codes, ok);
    EXPECT_EQ(std::string(made.od.ObjectName, 48), "MY.OWN" + std::string(42, ' '));
    EXPECT_EQ(text(made.od.ObjectQMgrName), "QM1");
    EXPECT_EQ(text(made.od.ResolvedQName), "MY.OWN");
    EXPECT_EQ(text(made.od.ResolvedQMgrName), "QM1");
    EXPECT_EQ(text(made.od.DynamicQName), "MY.OWN");
    EXPECT_EQ(put(hconn, made.hobj, "hello"), ok);
    EXPECT_EQ(get(hconn, made.hobj).body, "hello");
}

TEST_F(DynamicQueue, AnAsteriskBecomesWhatMakesTheNameUnique)
{
    const Opened first = openModel(hconn, "TEMP", "REPLY.*");
    const Opened second = openModel(hconn, "TEMP", "REPLY.*");
    ASSERT_EQ(first.codes, ok);
    ASSERT_EQ(second.codes, ok);
    EXPECT_EQ(first.name.size(), 6 + 16U);
    EXPECT_TRUE(first.name.starts_with("REPLY."));
    EXPECT_NE(first.name, second.name);
    EXPECT_EQ(openModel(hconn, "TEMP", "*").name.size(), 16U);
    EXPECT_EQ(openModel(hconn, "TEMP", std::string(32, 'A') + '*').name.size(), 48U);
}

TEST_F(DynamicQueue, ImpossibleNamesAre2011)
{
    for (const std::string &name : {std::string(), std::string("A*B"), std::string("**"), std::string("A B"),
                                    std::string("bad?"), std::string(33, 'A') + '*', std::string("?*")})
        EXPECT_EQ(codesFor(name), failed(MQRC_DYNAMIC_Q_NAME_ERROR)) << name;
}

TEST_F(DynamicQueue, NameOfAnotherQueueIs2100)
{
    EXPECT_EQ(codesFor("Q1"), failed(MQRC_OBJECT_ALREADY_EXISTS));
    EXPECT_EQ(codesFor("Q1", "PERM"), failed(MQRC_OBJECT_ALREADY_EXISTS));
    const Opened made = openModel(hconn, "TEMP", "MY.OWN");
    EXPECT_EQ(codesFor("MY.OWN"), failed(MQRC_OBJECT_ALREADY_EXISTS));
    EXPECT_EQ(codesFor("MY.OWN", "PERM"), failed(MQRC_OBJECT_ALREADY_EXISTS));
}

TEST_F(DynamicQueue, HasTheModelsAttributes)
{
    const Opened made = openModel(hconn, "TEMP", "MY.OWN");
    MQLONG selectors[] = {MQIA_Q_TYPE, MQIA_DEFINITION_TYPE, MQIA_MAX_Q_DEPTH, MQIA_DEF_PRIORITY};
    MQLONG values[4] = {};
    Codes codes;
    MQINQ(hconn, made.hobj, 4, selectors, 4, values, 0, nullptr, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, ok);
    EXPECT_EQ(values[0], MQQT_LOCAL);
    EXPECT_EQ(values[1], MQQDT_TEMPORARY_DYNAMIC);
    EXPECT_EQ(values[2], 7);
    EXPECT_EQ(values[3], 3);
}

TEST_F(DynamicQueue, MQPUT1ToAModelIs2057)
{
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    EXPECT_EQ(put1(hconn, "TEMP", "x", md, pmo), failed(MQRC_Q_TYPE_ERROR));
}

TEST_F(DynamicQueue, ADeletedModelLeavesItsQueues)
{
    const Opened made = openModel(hconn, "TEMP", "MY.OWN");
    deleteQueue("TEMP");
    EXPECT_EQ(put(hconn, made.hobj, "x"), ok);
    EXPECT_EQ(codesFor("OTHER"), failed(MQRC_UNKNOWN_OBJECT_NAME));
}

// ---- Temporary queues ----

TEST_F(DynamicQueue, TemporaryQueueTakesNothingPersistent)
{
    const Opened made = openModel(hconn, "TEMP", "MY.OWN");
    EXPECT_EQ(put(hconn, made.hobj, "x", persistentMd()), failed(MQRC_PERSISTENT_NOT_ALLOWED));
    define(objects::ObjectKind::ModelQueue, "TEMP2", {}, {{MQIA_DEF_PERSISTENCE, MQPER_PERSISTENT}});
    const Opened byDefault = openModel(hconn, "TEMP2", "MY.OTHER");
    EXPECT_EQ(put(hconn, byDefault.hobj, "x"), failed(MQRC_PERSISTENT_NOT_ALLOWED));
}

TEST_F(DynamicQueue, TemporaryQueueGoesWithTheHandleThatMadeItWhateverIsOnIt)
{
    for (const MQLONG options : {MQCO_NONE, MQCO_DELETE, MQCO_DELETE_PURGE}) {
        Opened made = openModel(hconn, "TEMP", "MY.OWN");
        ASSERT_EQ(put(hconn, made.hobj, "one"), ok);
        ASSERT_EQ(put(hconn, made.hobj, std::string(5000, 'x')), ok);
        EXPECT_EQ(close(hconn, made.hobj, options), ok);
        EXPECT_EQ(openCodes(hconn, "MY.OWN", MQOO_OUTPUT), failed(MQRC_UNKNOWN_OBJECT_NAME));
    }
    const Opened again = openModel(hconn, "TEMP", "MY.OWN");
    EXPECT_EQ(get(hconn, again.hobj).codes, failed(MQRC_NO_MSG_AVAILABLE));
}

TEST_F(DynamicQueue, OtherHandlesNeitherKeepNorDeleteTheTemporaryQueue)
{
    Opened made = openModel(hconn, "TEMP", "MY.OWN");
    MQHCONN other = connect();
    MQHOBJ output = open(other, "MY.OWN", MQOO_OUTPUT);
    EXPECT_EQ(close(other, output, MQCO_DELETE), failed(MQRC_OPTION_NOT_VALID_FOR_TYPE));
    EXPECT_EQ(put(other, output, "still there"), ok);
    EXPECT_EQ(close(hconn, made.hobj), ok);
    EXPECT_EQ(put(other, output, "too late"), failed(MQRC_Q_DELETED));
    EXPECT_EQ(close(other, output), ok);
    EXPECT_EQ(disconnect(other), ok);
}

TEST_F(DynamicQueue, WaitingGetterIsToldThatItsQueueHasGone)
{
    define(objects::ObjectKind::ModelQueue, "SHARED", {},
           {{MQIA_SHAREABILITY, MQQA_SHAREABLE}, {MQIA_DEF_INPUT_OPEN_OPTION, MQOO_INPUT_SHARED}});
    Opened made = openModel(hconn, "SHARED", "MY.OWN", MQOO_INPUT_SHARED);
    MQHCONN other = connect();
    const MQHOBJ input = open(other, "MY.OWN", MQOO_INPUT_SHARED);
    auto getter = std::async(std::launch::async, [&] {
        MQGMO gmo = gmoWith(MQGMO_WAIT | MQGMO_NO_SYNCPOINT);
        gmo.WaitInterval = MQWI_UNLIMITED;
        return get(other, input, {MQMD_DEFAULT}, gmo).codes;
    });
    EXPECT_EQ(close(hconn, made.hobj), ok);
    EXPECT_EQ(getter.get(), failed(MQRC_Q_DELETED));
}

TEST_F(DynamicQueue, UnitsOfWorkGoOnWithoutTheTemporaryQueue)
{
    Opened made = openModel(hconn, "TEMP", "MY.OWN");
    MQHCONN other = connect();
    const MQHOBJ output = open(other, "MY.OWN", MQOO_OUTPUT);
    const MQHOBJ q1 = open(other, "Q1", MQOO_OUTPUT);
    ASSERT_EQ(put(other, output, "goes", {MQMD_DEFAULT}, pmoWith(MQPMO_SYNCPOINT)), ok);
    ASSERT_EQ(put(other, q1, "stays", persistentMd(), pmoWith(MQPMO_SYNCPOINT)), ok);
    ASSERT_EQ(put(hconn, made.hobj, "got"), ok);
    ASSERT_EQ(get(hconn, made.hobj, MQGMO_SYNCPOINT).codes, ok);
    ASSERT_EQ(close(hconn, made.hobj), ok);
    EXPECT_EQ(commit(other), ok);
    EXPECT_EQ(commit(hconn), ok);
    EXPECT_EQ(depth("Q1"), 1);
    Opened again = openModel(hconn, "TEMP", "MY.OWN");
    EXPECT_EQ(depth("MY.OWN"), 0);
    ASSERT_EQ(put(hconn, again.hobj, "got"), ok);
    ASSERT_EQ(get(hconn, again.hobj, MQGMO_SYNCPOINT).codes, ok);
    ASSERT_EQ(put(hconn, again.hobj, "put", {MQMD_DEFAULT}, pmoWith(MQPMO_SYNCPOINT)), ok);
    ASSERT_EQ(close(hconn, again.hobj), ok);
    EXPECT_EQ(backOut(hconn), ok);
}

TEST_F(DynamicQueue, TemporaryQueueGoesWithItsConnection)
{
    MQHCONN other = connect();
    ASSERT_EQ(openModel(other, "TEMP", "GONE").codes, ok);
    disconnect(other);
    EXPECT_EQ(openCodes(hconn, "GONE", MQOO_OUTPUT), failed(MQRC_UNKNOWN_OBJECT_NAME));
}

TEST_F(DynamicQueue, TemporaryQueueDoesNotOutliveTheQueueManager)
{
    ASSERT_EQ(openModel(hconn, "TEMP", "GONE").codes, ok);
    alterQueue("GONE", {{MQIA_MAX_Q_DEPTH, 9}});
    restart();
    hconn = connect();
    EXPECT_EQ(openCodes(hconn, "GONE", MQOO_OUTPUT), failed(MQRC_UNKNOWN_OBJECT_NAME));
}

TEST_F(DynamicQueue, TemporaryQueueCanBeAltered)
{
    const Opened made = openModel(hconn, "TEMP", "MY.OWN");
    alterQueue("MY.OWN", {{MQIA_INHIBIT_PUT, MQQA_PUT_INHIBITED}});
    EXPECT_EQ(put(hconn, made.hobj, "x"), failed(MQRC_PUT_INHIBITED));
    alterQueue("MY.OWN", {{MQIA_INHIBIT_PUT, MQQA_PUT_ALLOWED}});
    EXPECT_EQ(put(hconn, made.hobj, "x"), ok);
}

TEST_F(DynamicQueue, FailedOpenLeavesNoQueue)
{
    alterQueueManager({{MQIA_MAX_HANDLES, 1}});
    const MQHOBJ q1 = open(hconn, "Q1", MQOO_OUTPUT);
    (void)q1;
    EXPECT_EQ(codesFor("MY.OWN"), failed(MQRC_HANDLE_NOT_AVAILABLE));
    EXPECT_EQ(queuesBeginningWith("MY."), std::vector<std::string>{});
}

TEST_F(DynamicQueue, ManyMessagesGoWithTheQueue)
{
    define(objects::ObjectKind::ModelQueue, "DEEP", {}, {{MQIA_MAX_Q_DEPTH, 100000}});
    Opened made = openModel(hconn, "DEEP", "MY.OWN");
    for (int i = 0; i < 5000; ++i)
        ASSERT_EQ(put(hconn, made.hobj, "x", {MQMD_DEFAULT}, pmoWith(MQPMO_SYNCPOINT)), ok);
    ASSERT_EQ(commit(hconn), ok);
    ASSERT_EQ(close(hconn, made.hobj), ok);
    made = openModel(hconn, "DEEP", "MY.OWN");
    EXPECT_EQ(get(hconn, made.hobj).codes, failed(MQRC_NO_MSG_AVAILABLE));
}

// A program that has made the temporary queue ORPHAN and put a message on it is killed.
void leaveOrphan()
{
    test::WaitingProgram([] {
        const MQHCONN mine = QueueManagerTest::connect();
        const auto made = DynamicQueue::openModel(mine, "TEMP", "ORPHAN");
        return made.codes == ok && QueueManagerTest::put(mine, made.hobj, "orphan") == ok;
    }).kill();
}

TEST_F(DynamicQueue, KilledProgramsQueueIsGoneForWhoOpensIt)
{
    leaveOrphan();
    EXPECT_EQ(openCodes(hconn, "ORPHAN", MQOO_OUTPUT), failed(MQRC_UNKNOWN_OBJECT_NAME));
}

TEST_F(DynamicQueue, KilledProgramsQueueIsGoneForWhoListsQueues)
{
    leaveOrphan();
    EXPECT_EQ(queuesBeginningWith("ORPHAN"), std::vector<std::string>{});
}

TEST_F(DynamicQueue, KilledProgramsNameIsFree)
{
    leaveOrphan();
    const Opened made = openModel(hconn, "TEMP", "ORPHAN");
    ASSERT_EQ(made.codes, ok);
    EXPECT_EQ(get(hconn, made.hobj).codes, failed(MQRC_NO_MSG_AVAILABLE));
}

TEST_F(DynamicQueue, KilledProgramsQueueGoesWithTheNextThatConnects)
{
    leaveOrphan();
    MQHCONN next = connect();
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    EXPECT_EQ(put1(hconn, "ORPHAN", "x", md, pmo), failed(MQRC_UNKNOWN_OBJECT_NAME));
    disconnect(next);
}

// ---- Permanent queues ----

TEST_F(DynamicQueue, PermanentQueueStaysAfterCloseAndRestart)
{
    Opened made = openModel(hconn, "PERM", "KEPT");
    ASSERT_EQ(put(hconn, made.hobj, "kept", persistentMd()), ok);
    EXPECT_EQ(close(hconn, made.hobj), ok);
    restart();
    hconn = connect();
    EXPECT_EQ(get(hconn, open(hconn, "KEPT", MQOO_INPUT_SHARED)).body, "kept");
}

TEST_F(DynamicQueue, AnyHandleDeletesAnEmptyPermanentQueue)
{
    Opened made = openModel(hconn, "PERM", "KEPT");
    close(hconn, made.hobj);
    MQHOBJ kept = open(hconn, "KEPT", MQOO_OUTPUT);
    EXPECT_EQ(close(hconn, kept, MQCO_DELETE), ok);
    EXPECT_EQ(kept, MQHO_UNUSABLE_HOBJ);
    EXPECT_EQ(openCodes(hconn, "KEPT", MQOO_OUTPUT), failed(MQRC_UNKNOWN_OBJECT_NAME));
}

TEST_F(DynamicQueue, MessagesOnAPermanentQueueNeedThePurge)
{
    Opened made = openModel(hconn, "PERM", "KEPT");
    ASSERT_EQ(put(hconn, made.hobj, "x"), ok);
    const MQHOBJ number = made.hobj;
    EXPECT_EQ(close(hconn, made.hobj, MQCO_DELETE), failed(MQRC_Q_NOT_EMPTY));
    EXPECT_EQ(made.hobj, number);
    EXPECT_EQ(put(hconn, made.hobj, "the handle still works"), ok);
    EXPECT_EQ(close(hconn, made.hobj, MQCO_DELETE_PURGE), ok);
    EXPECT_EQ(openCodes(hconn, "KEPT", MQOO_OUTPUT), failed(MQRC_UNKNOWN_OBJECT_NAME));
}

TEST_F(DynamicQueue, UncommittedMessagesKeepAPermanentQueue)
{
    Opened made = openModel(hconn, "PERM", "KEPT");
    ASSERT_EQ(put(hconn, made.hobj, "x", {MQMD_DEFAULT}, pmoWith(MQPMO_SYNCPOINT)), ok);
    EXPECT_EQ(close(hconn, made.hobj, MQCO_DELETE_PURGE), failed(MQRC_Q_NOT_EMPTY));
    ASSERT_EQ(commit(hconn), ok);
    ASSERT_EQ(get(hconn, made.hobj, MQGMO_SYNCPOINT).codes, ok);
    EXPECT_EQ(close(hconn, made.hobj, MQCO_DELETE_PURGE), failed(MQRC_Q_NOT_EMPTY));
    ASSERT_EQ(commit(hconn), ok);
    EXPECT_EQ(close(hconn, made.hobj, MQCO_DELETE), ok);
}

TEST_F(DynamicQueue, UnitOfWorkOfAKilledProgramDoesNotKeepAPermanentQueue)
{
    Opened made = openModel(hconn, "PERM", "KEPT");
    ASSERT_EQ(put(hconn, made.hobj, "x"), ok);
    ASSERT_EQ(close(hconn, made.hobj), ok);
    test::WaitingProgram([] {
        const MQHCONN mine = connect();
        const MQHOBJ kept = open(mine, "KEPT", MQOO_INPUT_SHARED);
        return get(mine, kept, MQGMO_SYNCPOINT).codes == ok;
    }).kill();
    MQHOBJ kept = open(hconn, "KEPT", MQOO_OUTPUT);
    EXPECT_EQ(close(hconn, kept, MQCO_DELETE), failed(MQRC_Q_NOT_EMPTY)); // the message is back
    EXPECT_EQ(close(hconn, kept, MQCO_DELETE_PURGE), ok);
    EXPECT_EQ(openCodes(hconn, "KEPT", MQOO_OUTPUT), failed(MQRC_UNKNOWN_OBJECT_NAME));
}

TEST_F(DynamicQueue, PermanentQueueOpenElsewhereIs2052ThereOnceDeleted)
{
    Opened made = openModel(hconn, "PERM", "KEPT", MQOO_OUTPUT);
    MQHCONN other = connect();
    MQHOBJ output = open(other, "KEPT", MQOO_OUTPUT);
    EXPECT_EQ(close(hconn, made.hobj, MQCO_DELETE), ok);
    EXPECT_EQ(put(other, output, "x"), failed(MQRC_Q_DELETED));
    EXPECT_EQ(close(other, output, MQCO_DELETE), ok);
}

TEST_F(DynamicQueue, PredefinedQueuesAreNotDeletedByClose)
{
    MQHOBJ q1 = open(hconn, "Q1", MQOO_OUTPUT);
    EXPECT_EQ(close(hconn, q1, MQCO_DELETE), failed(MQRC_OPTION_NOT_VALID_FOR_TYPE));
    EXPECT_EQ(close(hconn, q1, MQCO_DELETE_PURGE), failed(MQRC_OPTION_NOT_VALID_FOR_TYPE));
    EXPECT_EQ(close(hconn, q1), ok);
}

} // namespace
} // namespace mqrig::qmgr::testing
