#include "qmgr/command/pcf_interpreter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "pcf_fixture.h"
#include "qmgr/objects/attribute.h"

namespace mqrig::qmgr::command {
namespace {

using ::testing::ElementsAre;
using PcfInterpreter = PcfTest;

PcfFault about(MQLONG reason, MQLONG parameter)
{
    return faultOf(reason, parameter);
}

// ---- The header ----

TEST_F(PcfInterpreter, PingAnswersOk)
{
    expectDone(MQCMD_PING_Q_MGR);
    EXPECT_EQ(compCode, MQCC_OK);
}

TEST_F(PcfInterpreter, RequestInTheOtherByteOrderIsUnderstood)
{
    for (const MQLONG encoding : {MQENC_INTEGER_NORMAL, MQENC_INTEGER_REVERSED}) {
        const auto replies = run(MQCMD_PING_Q_MGR, {}, encoding);
        ASSERT_EQ(replies.size(), 1U);
        EXPECT_EQ(replies[0].header.CompCode, MQCC_OK);
    }
}

TEST_F(PcfInterpreter, EachFieldOfTheHeaderHasItsError)
{
    struct {
        MQLONG MQCFH::*field;
        MQLONG value;
        MQLONG reason;
    } const rows[] = {
        {&MQCFH::Type, MQCFT_RESPONSE, MQRCCF_CFH_TYPE_ERROR},
        {&MQCFH::Type, 0, MQRCCF_CFH_TYPE_ERROR},
        {&MQCFH::Type, -1, MQRCCF_CFH_TYPE_ERROR},
        {&MQCFH::Version, 0, MQRCCF_CFH_VERSION_ERROR},
        {&MQCFH::Version, 4, MQRCCF_CFH_VERSION_ERROR},
        {&MQCFH::MsgSeqNumber, 2, MQRCCF_CFH_MSG_SEQ_NUMBER_ERR},
        {&MQCFH::Control, MQCFC_NOT_LAST, MQRCCF_CFH_CONTROL_ERROR},
        {&MQCFH::Command, MQCMD_NONE, MQRCCF_CFH_COMMAND_ERROR},
        {&MQCFH::Command, MQCMD_INQUIRE_CHANNEL, MQRCCF_CFH_COMMAND_ERROR},
        {&MQCFH::Command, 2147483647, MQRCCF_CFH_COMMAND_ERROR},
    };
    for (const auto &row : rows) {
        MQCFH header = commandHeader(MQCMD_PING_Q_MGR);
        header.*row.field = row.value;
        EXPECT_EQ(faultIn(run(header)).reason, row.reason) << row.value;
    }
}

TEST_F(PcfInterpreter, ExtendedCommandsAreTaken)
{
    MQCFH header = commandHeader(MQCMD_PING_Q_MGR);
    header.Type = MQCFT_COMMAND_XR;
    header.Version = MQCFH_VERSION_3;
    const auto replies = run(header);
    EXPECT_EQ(replies[0].header.CompCode, MQCC_OK);
    EXPECT_EQ(replies[0].header.Version, MQCFH_VERSION_3);
}

TEST_F(PcfInterpreter, BrokenMessagesAreAnsweredWithTheReadersFault)
{
    EXPECT_EQ(faultIn(runMessage("")).reason, MQRCCF_MSG_LENGTH_ERROR);
    EXPECT_EQ(faultIn(runMessage("hello")).reason, MQRCCF_MSG_LENGTH_ERROR);
    EXPECT_EQ(faultIn(runMessage(std::string(36, '\xff'))).reason, MQRCCF_CFH_LENGTH_ERROR);
}

TEST_F(PcfInterpreter, RefusalHasTheReasonGiven)
{
    const PcfAnswer answer = refusePcf({MQRCCF_MD_FORMAT_ERROR});
    ASSERT_EQ(answer.replies.size(), 2U);
    const ReadPcf first = readPcf(bytesOf(answer.replies[0]), MQENC_NATIVE);
    EXPECT_EQ(first.header.Reason, MQRCCF_MD_FORMAT_ERROR);
    EXPECT_EQ(first.header.Control, MQCFC_NOT_LAST);
}

// ---- Parameters ----

TEST_F(PcfInterpreter, RequiredParametersMustBeThere)
{
    EXPECT_EQ(faultOfCommand(MQCMD_INQUIRE_Q), PcfFault{MQRCCF_PARM_COUNT_TOO_SMALL});
    EXPECT_EQ(faultOfCommand(MQCMD_CREATE_Q, [](PcfWriter &w) { w.text(MQCA_Q_NAME, "Q"); }),
              PcfFault{MQRCCF_PARM_COUNT_TOO_SMALL});
    EXPECT_EQ(faultOfCommand(MQCMD_INQUIRE_Q, [](PcfWriter &w) { w.integer(MQIA_Q_TYPE, MQQT_LOCAL); }),
              about(MQRCCF_PARM_MISSING, MQCA_Q_NAME));
}

TEST_F(PcfInterpreter, CommandThatTakesNoMoreParametersRefusesThem)
{
    EXPECT_EQ(faultOfCommand(MQCMD_PING_Q_MGR, [](PcfWriter &w) { w.integer(1, 1); }),
              PcfFault{MQRCCF_PARM_COUNT_TOO_BIG});
    EXPECT_EQ(faultOfCommand(MQCMD_CLEAR_Q,
                             [](PcfWriter &w) {
                                 w.text(MQCA_Q_NAME, "Q");
                                 w.integer(MQIA_Q_TYPE, MQQT_LOCAL);
                             }),
              PcfFault{MQRCCF_PARM_COUNT_TOO_BIG});
}

TEST_F(PcfInterpreter, RequiredParametersStandFirstInTheirOrder)
{
    EXPECT_EQ(faultOfCommand(MQCMD_CREATE_Q,
                             [](PcfWriter &w) {
                                 w.integer(MQIA_Q_TYPE, MQQT_LOCAL);
                                 w.text(MQCA_Q_NAME, "Q");
                             }),
              about(MQRCCF_PARM_SEQUENCE_ERROR, MQCA_Q_NAME));
}

TEST_F(PcfInterpreter, StructureOfTheWrongTypeIsRefused)
{
    EXPECT_EQ(faultOfCommand(MQCMD_INQUIRE_Q, [](PcfWriter &w) { w.integer(MQCA_Q_NAME, 1); }),
              about(MQRCCF_STRUCTURE_TYPE_ERROR, MQCA_Q_NAME));
    EXPECT_EQ(faultOfCommand(MQCMD_INQUIRE_Q,
                             [](PcfWriter &w) {
                                 w.text(MQCA_Q_NAME, "*");
                                 w.text(MQIACF_Q_ATTRS, "all");
                             }),
              about(MQRCCF_STRUCTURE_TYPE_ERROR, MQIACF_Q_ATTRS));
    EXPECT_EQ(faultOfCommand(MQCMD_CHANGE_Q_MGR, [](PcfWriter &w) { w.text(MQIA_MAX_HANDLES, "7"); }),
              about(MQRCCF_STRUCTURE_TYPE_ERROR, MQIA_MAX_HANDLES));
}

TEST_F(PcfInterpreter, ParametersThatTheCommandDoesNotHaveAreRefusedByTheirType)
{
    const MQLONG list[] = {1};
    const MQBYTE bytes[] = {1};
    const auto fault = [this](const PcfTest::Parameters &parameter) {
        return faultOfCommand(MQCMD_INQUIRE_Q_NAMES, [&](PcfWriter &w) {
            w.text(MQCA_Q_NAME, "*");
            parameter(w);
        });
    };
    EXPECT_EQ(fault([](PcfWriter &w) { w.integer(15, 1); }), about(MQRCCF_CFIN_PARM_ID_ERROR, 15));
    EXPECT_EQ(fault([](PcfWriter &w) { w.integer64(15, 1); }), about(MQRCCF_CFIN_PARM_ID_ERROR, 15));
    EXPECT_EQ(fault([](PcfWriter &w) { w.text(2013, "x"); }), about(MQRCCF_CFST_PARM_ID_ERROR, 2013));
    EXPECT_EQ(fault([&](PcfWriter &w) { w.integers(1002, list); }), about(MQRCCF_CFIL_PARM_ID_ERROR, 1002));
    EXPECT_EQ(fault([](PcfWriter &w) { w.texts(2020, std::vector<std::string>{"x"}, 4); }),
              about(MQRCCF_CFSL_PARM_ID_ERROR, 2020));
    EXPECT_EQ(fault([&](PcfWriter &w) { w.bytes(7006, bytes); }), about(MQRCCF_CFBS_PARM_ID_ERROR, 7006));
    EXPECT_EQ(fault([](PcfWriter &w) { w.integerFilter(3, MQCFOP_GREATER, 0); }), about(MQRCCF_CFIF_PARM_ID_ERROR, 3));
    EXPECT_EQ(fault([](PcfWriter &w) { w.textFilter(2013, MQCFOP_LIKE, "x*"); }),
              about(MQRCCF_CFSF_PARM_ID_ERROR, 2013));
    EXPECT_EQ(fault([](PcfWriter &w) {
                  w.beginGroup(8001);
                  w.endGroup();
              }),
              about(MQRCCF_CFGR_PARM_ID_ERROR, 8001));
}

TEST_F(PcfInterpreter, ParameterGivenTwiceIsRefused)
{
    EXPECT_EQ(faultOfCommand(MQCMD_CHANGE_Q_MGR,
                             [](PcfWriter &w) {
                                 w.integer(MQIA_MAX_HANDLES, 7);
                                 w.integer(MQIA_MAX_HANDLES, 7);
                             }),
              about(MQRCCF_CFIN_DUPLICATE_PARM, MQIA_MAX_HANDLES));
    EXPECT_EQ(faultOfCommand(MQCMD_CHANGE_Q_MGR,
                             [](PcfWriter &w) {
                                 w.text(MQCA_Q_MGR_DESC, "a");
                                 w.text(MQCA_Q_MGR_DESC, "b");
                             }),
              about(MQRCCF_CFST_DUPLICATE_PARM, MQCA_Q_MGR_DESC));
    EXPECT_EQ(faultOfCommand(MQCMD_CREATE_NAMELIST,
                             [](PcfWriter &w) {
                                 w.text(MQCA_NAMELIST_NAME, "NL");
                                 w.texts(MQCA_NAMES, std::vector<std::string>{"A"}, 4);
                                 w.texts(MQCA_NAMES, std::vector<std::string>{"B"}, 4);
                             }),
              about(MQRCCF_CFSL_DUPLICATE_PARM, MQCA_NAMES));
    const MQBYTE connection[] = {1, 2, 3};
    EXPECT_EQ(faultOfCommand(MQCMD_INQUIRE_CONNECTION,
                             [&](PcfWriter &w) {
                                 w.bytes(MQBACF_GENERIC_CONNECTION_ID, connection);
                                 w.bytes(MQBACF_GENERIC_CONNECTION_ID, connection);
                             }),
              about(MQRCCF_CFBS_DUPLICATE_PARM, MQBACF_GENERIC_CONNECTION_ID));
}

TEST_F(PcfInterpreter, GroupInThePlaceOfAParameterGivenBeforeIsRefusedAsAGroup)
{
    EXPECT_EQ(faultOfCommand(MQCMD_CHANGE_Q_MGR,
                             [](PcfWriter &w) {
                                 w.integer(MQIA_MAX_HANDLES, 7);
                                 w.beginGroup(MQIA_MAX_HANDLES);
                                 w.endGroup();
                             }),
              about(MQRCCF_CFGR_PARM_ID_ERROR, MQIA_MAX_HANDLES));
}

// ---- Create, Change, Copy, Delete ----

TEST_F(PcfInterpreter, CreatedQueueHasTheAttributesGiven)
{
    createLocal("APP.JOBS", [](PcfWriter &w) {
        w.text(MQCA_Q_DESC, "jobs of the morning", 64);
        w.integer(MQIA_MAX_Q_DEPTH, 10000);
        w.integer(MQIA_DEF_PERSISTENCE, MQPER_PERSISTENT);
        w.integer(MQIA_TRIGGER_CONTROL, MQTC_ON);
    });
    EXPECT_EQ(answer("DISPLAY QLOCAL(APP.JOBS) DESCR MAXDEPTH DEFPSIST TRIGGER MAXMSGL"),
              "AMQ8409I: Queue details:\n"
              "   QUEUE(APP.JOBS)                         TYPE(QLOCAL)\n"
              "   DEFPSIST(YES)                           DESCR(jobs of the morning)\n"
              "   MAXDEPTH(10000)                         MAXMSGL(4194304)\n"
              "   TRIGGER\n");
}

TEST_F(PcfInterpreter, EveryKindOfQueueCanBeCreatedAndDeleted)
{
    const MQLONG types[] = {MQQT_LOCAL, MQQT_ALIAS, MQQT_REMOTE, MQQT_MODEL};
    for (const MQLONG type : types) {
        expectDone(MQCMD_CREATE_Q, [&](PcfWriter &w) {
            w.text(MQCA_Q_NAME, "A.QUEUE");
            w.integer(MQIA_Q_TYPE, type);
        });
        const auto replies = run(MQCMD_INQUIRE_Q, [](PcfWriter &w) { w.text(MQCA_Q_NAME, "A.QUEUE"); });
        ASSERT_EQ(replies.size(), 1U);
        EXPECT_EQ(replies[0].number(MQIA_Q_TYPE), type);
        expectDone(MQCMD_DELETE_Q, [](PcfWriter &w) { w.text(MQCA_Q_NAME, "A.QUEUE"); });
    }
}

TEST_F(PcfInterpreter, QueueTypeMustBeOneOfThem)
{
    for (const MQLONG type : {0, -1, 5, MQQT_CLUSTER, MQQT_ALL})
        EXPECT_EQ(faultOfCommand(MQCMD_CREATE_Q,
                                 [&](PcfWriter &w) {
                                     w.text(MQCA_Q_NAME, "A.QUEUE");
                                     w.integer(MQIA_Q_TYPE, type);
                                 }),
                  about(MQRCCF_Q_TYPE_ERROR, MQIA_Q_TYPE))
            << type;
}

TEST_F(PcfInterpreter, CreateSaysWhatIsWrongWithAnAttribute)
{
    const auto fault = [this](const PcfTest::Parameters &attribute) {
        return faultOfCommand(MQCMD_CREATE_Q, [&](PcfWriter &w) {
            w.text(MQCA_Q_NAME, "A.QUEUE");
            w.integer(MQIA_Q_TYPE, MQQT_LOCAL);
            attribute(w);
        });
    };
    EXPECT_EQ(fault([](PcfWriter &w) { w.integer(MQIA_MAX_Q_DEPTH, -1); }),
              about(MQRCCF_ATTR_VALUE_ERROR, MQIA_MAX_Q_DEPTH));
    EXPECT_EQ(fault([](PcfWriter &w) { w.integer(MQIA_INHIBIT_PUT, 7); }),
              about(MQRCCF_ATTR_VALUE_ERROR, MQIA_INHIBIT_PUT));
    EXPECT_EQ(fault([](PcfWriter &w) { w.text(MQCA_Q_DESC, std::string(65, 'x')); }),
              about(MQRCCF_CFST_STRING_LENGTH_ERR, MQCA_Q_DESC));
    EXPECT_EQ(fault([](PcfWriter &w) { w.text(MQCA_PROCESS_NAME, "no name"); }),
              about(MQRCCF_ATTR_VALUE_ERROR, MQCA_PROCESS_NAME));
    EXPECT_EQ(fault([](PcfWriter &w) { w.text(MQCA_REMOTE_Q_NAME, "X"); }),
              about(MQRCCF_CFST_PARM_ID_ERROR, MQCA_REMOTE_Q_NAME))
        << "of another kind";
    EXPECT_EQ(fault([](PcfWriter &w) { w.text(MQCA_CREATION_DATE, "2026-01-01"); }),
              about(MQRCCF_CFST_PARM_ID_ERROR, MQCA_CREATION_DATE))
        << "nobody sets it";
    EXPECT_EQ(fault([](PcfWriter &w) { w.integer(MQIA_CURRENT_Q_DEPTH, 1); }),
              about(MQRCCF_CFIN_PARM_ID_ERROR, MQIA_CURRENT_Q_DEPTH));
    EXPECT_EQ(fault([](PcfWriter &w) { w.integer(MQIACF_REPLACE, 2); }),
              about(MQRCCF_REPLACE_VALUE_ERROR, MQIACF_REPLACE));
    EXPECT_EQ(fault([](PcfWriter &w) { w.integer(MQIACF_FORCE, -1); }), about(MQRCCF_FORCE_VALUE_ERROR, MQIACF_FORCE));
    EXPECT_EQ(idOf("A.QUEUE"), 0U) << "nothing was made";
}

TEST_F(PcfInterpreter, NameOfANewObjectMustBeOne)
{
    for (const std::string &name : {std::string("no name"), std::string(), std::string(49, 'X')})
        EXPECT_EQ(faultOfCommand(MQCMD_CREATE_Q,
                                 [&](PcfWriter &w) {
                                     w.text(MQCA_Q_NAME, name);
                                     w.integer(MQIA_Q_TYPE, MQQT_LOCAL);
                                 }),
                  about(MQRCCF_OBJECT_NAME_ERROR, MQCA_Q_NAME))
            << name;
}

TEST_F(PcfInterpreter, ExistingObjectIsMadeAnewOnlyWithReplace)
{
    createLocal("Q", [](PcfWriter &w) { w.integer(MQIA_MAX_Q_DEPTH, 7); });
    const auto again = [](MQLONG replace) {
        return [replace](PcfWriter &w) {
            w.text(MQCA_Q_NAME, "Q");
            w.integer(MQIA_Q_TYPE, MQQT_LOCAL);
            w.integer(MQIACF_REPLACE, replace);
        };
    };
    EXPECT_EQ(faultOfCommand(MQCMD_CREATE_Q, again(MQRP_NO)), about(MQRCCF_OBJECT_ALREADY_EXISTS, MQCA_Q_NAME));
    expectDone(MQCMD_CREATE_Q, again(MQRP_YES));
    const auto replies = run(MQCMD_INQUIRE_Q, [](PcfWriter &w) { w.text(MQCA_Q_NAME, "Q"); });
    EXPECT_EQ(replies[0].number(MQIA_MAX_Q_DEPTH), 5000);
}

TEST_F(PcfInterpreter, ChangeSetsOnlyWhatIsGiven)
{
    createLocal("Q", [](PcfWriter &w) { w.integer(MQIA_MAX_Q_DEPTH, 7); });
    expectDone(MQCMD_CHANGE_Q, [](PcfWriter &w) {
        w.text(MQCA_Q_NAME, "Q");
        w.integer(MQIA_Q_TYPE, MQQT_LOCAL);
        w.integer(MQIA_INHIBIT_PUT, MQQA_PUT_INHIBITED);
    });
    const auto replies = run(MQCMD_INQUIRE_Q, [](PcfWriter &w) { w.text(MQCA_Q_NAME, "Q"); });
    EXPECT_EQ(replies[0].number(MQIA_MAX_Q_DEPTH), 7);
    EXPECT_EQ(replies[0].number(MQIA_INHIBIT_PUT), MQQA_PUT_INHIBITED);

    const auto change = [](const char *name, MQLONG type) {
        return [=](PcfWriter &w) {
            w.text(MQCA_Q_NAME, name);
            w.integer(MQIA_Q_TYPE, type);
        };
    };
    EXPECT_EQ(faultOfCommand(MQCMD_CHANGE_Q, change("NONE", MQQT_LOCAL)), about(MQRC_UNKNOWN_OBJECT_NAME, MQCA_Q_NAME));
    EXPECT_EQ(faultOfCommand(MQCMD_CHANGE_Q, change("Q", MQQT_ALIAS)), about(MQRCCF_OBJECT_WRONG_TYPE, MQCA_Q_NAME));
}

TEST_F(PcfInterpreter, ChangeOfAnOpenQueueMayNeedForce)
{
    createLocal("Q");
    open(*attachment_, idOf("Q"), {.input = 2});
    const auto change = [](MQLONG force) {
        return [force](PcfWriter &w) {
            w.text(MQCA_Q_NAME, "Q");
            w.integer(MQIA_Q_TYPE, MQQT_LOCAL);
            w.integer(MQIACF_FORCE, force);
            w.integer(MQIA_SHAREABILITY, MQQA_NOT_SHAREABLE);
        };
    };
    EXPECT_EQ(faultOfCommand(MQCMD_CHANGE_Q, change(MQFC_NO)), about(MQRCCF_OBJECT_OPEN, MQCA_Q_NAME));
    expectDone(MQCMD_CHANGE_Q, change(MQFC_YES));
}

TEST_F(PcfInterpreter, CopyTakesTheAttributesOfAnother)
{
    createLocal("FROM", [](PcfWriter &w) { w.integer(MQIA_MAX_Q_DEPTH, 7); });
    const auto copy = [](const char *from, const char *to, MQLONG type = MQQT_LOCAL) {
        return [=](PcfWriter &w) {
            w.text(MQCACF_FROM_Q_NAME, from);
            w.text(MQCACF_TO_Q_NAME, to);
            w.integer(MQIA_Q_TYPE, type);
            w.integer(MQIA_DEF_PRIORITY, 4);
        };
    };
    expectDone(MQCMD_COPY_Q, copy("FROM", "TO"));
    const auto replies = run(MQCMD_INQUIRE_Q, [](PcfWriter &w) { w.text(MQCA_Q_NAME, "TO"); });
    EXPECT_EQ(replies[0].number(MQIA_MAX_Q_DEPTH), 7);
    EXPECT_EQ(replies[0].number(MQIA_DEF_PRIORITY), 4);

    EXPECT_EQ(faultOfCommand(MQCMD_COPY_Q, copy("FROM", "TO")), about(MQRCCF_OBJECT_ALREADY_EXISTS, MQCACF_TO_Q_NAME));
    EXPECT_EQ(faultOfCommand(MQCMD_COPY_Q, copy("NONE", "NEW")), about(MQRC_UNKNOWN_OBJECT_NAME, MQCACF_FROM_Q_NAME));
    EXPECT_EQ(faultOfCommand(MQCMD_COPY_Q, copy("FROM", "NEW", MQQT_MODEL)),
              about(MQRCCF_LIKE_OBJECT_WRONG_TYPE, MQCACF_FROM_Q_NAME));
    EXPECT_EQ(faultOfCommand(MQCMD_COPY_Q, copy("", "NEW")), about(MQRCCF_OBJECT_NAME_ERROR, MQCACF_FROM_Q_NAME));
}

TEST_F(PcfInterpreter, DeleteKeepsMessagesUnlessPurged)
{
    createLocal("Q");
    put("Q", MQPER_PERSISTENT);
    const auto purge = [](MQLONG value) {
        return [value](PcfWriter &w) {
            w.text(MQCA_Q_NAME, "Q");
            w.integer(MQIACF_PURGE, value);
        };
    };
    EXPECT_EQ(faultOfCommand(MQCMD_DELETE_Q, purge(MQPO_NO)), about(MQRC_Q_NOT_EMPTY, MQCA_Q_NAME));
    EXPECT_EQ(faultOfCommand(MQCMD_DELETE_Q, purge(2)), about(MQRCCF_PURGE_VALUE_ERROR, MQIACF_PURGE));
    EXPECT_EQ(faultOfCommand(MQCMD_DELETE_Q,
                             [](PcfWriter &w) {
                                 w.text(MQCA_Q_NAME, "Q");
                                 w.integer(MQIA_Q_TYPE, MQQT_ALIAS);
                             }),
              about(MQRCCF_OBJECT_WRONG_TYPE, MQCA_Q_NAME));
    expectDone(MQCMD_DELETE_Q, purge(MQPO_YES));
    EXPECT_EQ(faultOfCommand(MQCMD_DELETE_Q, purge(MQPO_YES)), about(MQRC_UNKNOWN_OBJECT_NAME, MQCA_Q_NAME));
}

// ---- A command that may have run before ----

TEST_F(PcfInterpreter, RepeatedCreateFindsWhatItMade)
{
    createLocal("Q", [](PcfWriter &w) { w.integer(MQIA_MAX_Q_DEPTH, 7); });
    repeated = true;
    createLocal("Q", [](PcfWriter &w) { w.integer(MQIA_MAX_Q_DEPTH, 7); });

    const auto create = [](MQLONG depth) {
        return [depth](PcfWriter &w) {
            w.text(MQCA_Q_NAME, "Q");
            w.integer(MQIA_Q_TYPE, MQQT_LOCAL);
            w.integer(MQIA_MAX_Q_DEPTH, depth);
        };
    };
    const PcfFault exists = about(MQRCCF_OBJECT_ALREADY_EXISTS, MQCA_Q_NAME);
    EXPECT_EQ(faultOfCommand(MQCMD_CREATE_Q, create(8)), exists) << "it would have made another";
    putTime += 3'600'000'000;
    EXPECT_EQ(faultOfCommand(MQCMD_CREATE_Q, create(7)), exists) << "the queue is older than the request";
}

TEST_F(PcfInterpreter, RepeatedDeleteFindsNothing)
{
    repeated = true;
    expectDone(MQCMD_DELETE_Q, [](PcfWriter &w) { w.text(MQCA_Q_NAME, "NEVER.WAS"); });
}

// ---- Namelists and processes ----

TEST_F(PcfInterpreter, NamelistGoesThroughItsWholeLife)
{
    expectDone(MQCMD_CREATE_NAMELIST, [](PcfWriter &w) {
        w.text(MQCA_NAMELIST_NAME, "APP.NAMES");
        w.texts(MQCA_NAMES, std::vector<std::string>{"APP.JOBS", "APP.DONE"}, 8);
    });
    expectDone(MQCMD_COPY_NAMELIST, [](PcfWriter &w) {
        w.text(MQCACF_FROM_NAMELIST_NAME, "APP.NAMES");
        w.text(MQCACF_TO_NAMELIST_NAME, "APP.MORE");
        w.text(MQCA_NAMELIST_DESC, "a copy");
    });
    const auto inquire = [this](const char *name) {
        return run(MQCMD_INQUIRE_NAMELIST, [&](PcfWriter &w) { w.text(MQCA_NAMELIST_NAME, name); });
    };
    auto replies = inquire("APP.*");
    ASSERT_EQ(replies.size(), 2U);
    EXPECT_EQ(replies[0].text(MQCA_NAMELIST_NAME), "APP.MORE");
    EXPECT_EQ(replies[0].text(MQCA_NAMELIST_DESC), "a copy");
    EXPECT_THAT(replies[0].texts(MQCA_NAMES), ElementsAre("APP.JOBS", "APP.DONE"));
    EXPECT_EQ(replies[0].number(MQIA_NAME_COUNT), 2);

    expectDone(MQCMD_CHANGE_NAMELIST, [](PcfWriter &w) {
        w.text(MQCA_NAMELIST_NAME, "APP.MORE");
        w.texts(MQCA_NAMES, {}, 4);
    });
    replies = inquire("APP.MORE");
    EXPECT_THAT(replies[0].texts(MQCA_NAMES), ElementsAre());
    EXPECT_EQ(replies[0].number(MQIA_NAME_COUNT), 0);

    const auto names = run(MQCMD_INQUIRE_NAMELIST_NAMES, [](PcfWriter &w) { w.text(MQCA_NAMELIST_NAME, "APP*"); });
    EXPECT_THAT(names[0].texts(MQCACF_NAMELIST_NAMES), ElementsAre("APP.MORE", "APP.NAMES"));

    expectDone(MQCMD_DELETE_NAMELIST, [](PcfWriter &w) { w.text(MQCA_NAMELIST_NAME, "APP.MORE"); });
    EXPECT_EQ(faultIn(inquire("APP.MORE")), about(MQRC_UNKNOWN_OBJECT_NAME, MQCA_NAMELIST_NAME));
}

TEST_F(PcfInterpreter, NamesOfANamelistMustBeNames)
{
    for (const std::string &name : {std::string("no name"), std::string("A,B"), std::string()})
        EXPECT_EQ(faultOfCommand(MQCMD_CREATE_NAMELIST,
                                 [&](PcfWriter &w) {
                                     w.text(MQCA_NAMELIST_NAME, "NL");
                                     w.texts(MQCA_NAMES, std::vector<std::string>{"A", name}, 8);
                                 }),
                  about(MQRCCF_ATTR_VALUE_ERROR, MQCA_NAMES))
            << name;
    EXPECT_EQ(faultOfCommand(MQCMD_CREATE_NAMELIST,
                             [](PcfWriter &w) {
                                 w.text(MQCA_NAMELIST_NAME, "NL");
                                 w.texts(MQCA_NAMES, std::vector<std::string>(257, "A"), 4);
                             }),
              about(MQRCCF_CFSL_COUNT_ERROR, MQCA_NAMES));
}

TEST_F(PcfInterpreter, ProcessGoesThroughItsWholeLife)
{
    expectDone(MQCMD_CREATE_PROCESS, [](PcfWriter &w) {
        w.text(MQCA_PROCESS_NAME, "APP.PROCESS");
        w.text(MQCA_APPL_ID, "/opt/app/run");
    });
    expectDone(MQCMD_COPY_PROCESS, [](PcfWriter &w) {
        w.text(MQCACF_FROM_PROCESS_NAME, "APP.PROCESS");
        w.text(MQCACF_TO_PROCESS_NAME, "APP.COPY");
    });
    expectDone(MQCMD_CHANGE_PROCESS, [](PcfWriter &w) {
        w.text(MQCA_PROCESS_NAME, "APP.COPY");
        w.text(MQCA_USER_DATA, "nightly");
    });
    const auto replies = run(MQCMD_INQUIRE_PROCESS, [](PcfWriter &w) { w.text(MQCA_PROCESS_NAME, "APP.COPY"); });
    EXPECT_EQ(replies[0].text(MQCA_APPL_ID), "/opt/app/run");
    EXPECT_EQ(replies[0].text(MQCA_USER_DATA), "nightly");
    const auto names = run(MQCMD_INQUIRE_PROCESS_NAMES, [](PcfWriter &w) { w.text(MQCA_PROCESS_NAME, "APP.*"); });
    EXPECT_THAT(names[0].texts(MQCACF_PROCESS_NAMES), ElementsAre("APP.COPY", "APP.PROCESS"));
    expectDone(MQCMD_DELETE_PROCESS, [](PcfWriter &w) { w.text(MQCA_PROCESS_NAME, "APP.COPY"); });
}

// ---- Inquiries ----

TEST_F(PcfInterpreter, InquiryReturnsNameAndTypeAndWhatIsAsked)
{
    createLocal("Q");
    const MQLONG asked[] = {MQIA_MAX_Q_DEPTH, MQCA_Q_NAME, MQCA_Q_DESC};
    const auto replies = run(MQCMD_INQUIRE_Q, [&](PcfWriter &w) {
        w.text(MQCA_Q_NAME, "Q");
        w.integers(MQIACF_Q_ATTRS, asked);
    });
    ASSERT_EQ(replies.size(), 1U);
    EXPECT_THAT(replies[0].ids(), ElementsAre(MQCA_Q_NAME, MQIA_Q_TYPE, MQIA_MAX_Q_DEPTH, MQCA_Q_DESC));
    EXPECT_EQ(replies[0].find(MQCA_Q_NAME)->texts.front().size(), std::size_t{MQ_Q_NAME_LENGTH});
    EXPECT_EQ(replies[0].find(MQCA_Q_DESC)->texts.front().size(), std::size_t{MQ_Q_DESC_LENGTH});
}

TEST_F(PcfInterpreter, InquiryOfAllReturnsEveryAttributeOfTheKindOnce)
{
    createLocal("Q");
    const MQLONG all[] = {MQIACF_ALL};
    const auto replies = run(MQCMD_INQUIRE_Q, [&](PcfWriter &w) {
        w.text(MQCA_Q_NAME, "Q");
        w.integers(MQIACF_Q_ATTRS, all);
    });
    std::vector<MQLONG> expected;
    for (const objects::Attribute &attribute : objects::attributes())
        if (objects::contains(attribute.kinds, objects::ObjectKind::LocalQueue)) expected.push_back(attribute.selector);
    EXPECT_THAT(replies[0].ids(), ::testing::UnorderedElementsAreArray(expected));
}

TEST_F(PcfInterpreter, AttributeThatTheKindDoesNotHaveIsLeftOut)
{
    answer("DEFINE QALIAS(A) TARGET(B)");
    const MQLONG asked[] = {MQIA_MAX_Q_DEPTH, MQCA_BASE_Q_NAME};
    const auto replies = run(MQCMD_INQUIRE_Q, [&](PcfWriter &w) {
        w.text(MQCA_Q_NAME, "A");
        w.integers(MQIACF_Q_ATTRS, asked);
    });
    EXPECT_THAT(replies[0].ids(), ElementsAre(MQCA_Q_NAME, MQIA_Q_TYPE, MQCA_BASE_Q_NAME));
}

TEST_F(PcfInterpreter, SelectorsMustBeKnownAndUnique)
{
    const auto fault = [this](std::vector<MQLONG> list) {
        return faultOfCommand(MQCMD_INQUIRE_Q, [&](PcfWriter &w) {
            w.text(MQCA_Q_NAME, "*");
            w.integers(MQIACF_Q_ATTRS, list);
        });
    };
    EXPECT_EQ(fault({MQIA_MAX_Q_DEPTH, 999}), (PcfFault{MQRC_SELECTOR_ERROR, MQIACF_SELECTOR, 999}));
    EXPECT_EQ(fault({MQIA_MAX_HANDLES}), (PcfFault{MQRC_SELECTOR_ERROR, MQIACF_SELECTOR, MQIA_MAX_HANDLES}));
    EXPECT_EQ(fault({MQIACF_ALL, MQIA_MAX_Q_DEPTH}), (PcfFault{MQRC_SELECTOR_ERROR, MQIACF_SELECTOR, MQIACF_ALL}));
    EXPECT_EQ(fault({3, 15, 3}), (PcfFault{MQRCCF_CFIL_DUPLICATE_VALUE, MQIACF_SELECTOR, 3}));
}

TEST_F(PcfInterpreter, GenericNameReturnsOneReplyForEachQueue)
{
    createLocal("APP.A");
    createLocal("APP.B");
    const auto replies = run(MQCMD_INQUIRE_Q, [](PcfWriter &w) { w.text(MQCA_Q_NAME, "APP.*", 48); });
    ASSERT_EQ(replies.size(), 2U);
    EXPECT_EQ(replies[0].text(MQCA_Q_NAME), "APP.A");
    EXPECT_EQ(replies[1].text(MQCA_Q_NAME), "APP.B");
    EXPECT_EQ(faultOfCommand(MQCMD_INQUIRE_Q, [](PcfWriter &w) { w.text(MQCA_Q_NAME, "NONE*"); }),
              about(MQRC_UNKNOWN_OBJECT_NAME, MQCA_Q_NAME));
}

TEST_F(PcfInterpreter, QueueTypeNarrowsAnInquiry)
{
    createLocal("APP.A");
    answer("DEFINE QALIAS(APP.B)");
    const auto inquire = [this](MQLONG type) {
        return run(MQCMD_INQUIRE_Q, [&](PcfWriter &w) {
            w.text(MQCA_Q_NAME, "APP.*");
            w.integer(MQIA_Q_TYPE, type);
        });
    };
    EXPECT_EQ(inquire(MQQT_ALL).size(), 2U);
    const auto aliases = inquire(MQQT_ALIAS);
    ASSERT_EQ(aliases.size(), 1U);
    EXPECT_EQ(aliases[0].text(MQCA_Q_NAME), "APP.B");
    EXPECT_EQ(faultIn(inquire(MQQT_CLUSTER)).reason, MQRC_UNKNOWN_OBJECT_NAME);
    EXPECT_EQ(faultIn(inquire(77)), about(MQRCCF_Q_TYPE_ERROR, MQIA_Q_TYPE));
}

TEST_F(PcfInterpreter, NamesAndTypesStandInOneReply)
{
    createLocal("APP.A");
    answer("DEFINE QREMOTE(APP.B)");
    const auto replies = run(MQCMD_INQUIRE_Q_NAMES, [](PcfWriter &w) { w.text(MQCA_Q_NAME, "APP.*"); });
    ASSERT_EQ(replies.size(), 1U);
    EXPECT_THAT(replies[0].texts(MQCACF_Q_NAMES), ElementsAre("APP.A", "APP.B"));
    EXPECT_THAT(replies[0].find(MQIACF_Q_TYPES)->numbers, ElementsAre(MQQT_LOCAL, MQQT_REMOTE));

    const auto none = run(MQCMD_INQUIRE_Q_NAMES, [](PcfWriter &w) { w.text(MQCA_Q_NAME, "NONE*"); });
    ASSERT_EQ(none.size(), 1U);
    EXPECT_EQ(none[0].header.CompCode, MQCC_OK);
    EXPECT_THAT(none[0].texts(MQCACF_Q_NAMES), ElementsAre());
}

// The names of the queues that an inquiry with this filter returns.
class PcfFilters : public PcfTest {
protected:
    PcfFilters()
    {
        createLocal("APP.A", [](PcfWriter &w) {
            w.integer(MQIA_MAX_Q_DEPTH, 10);
            w.text(MQCA_Q_DESC, "alpha");
        });
        createLocal("APP.B", [](PcfWriter &w) {
            w.integer(MQIA_MAX_Q_DEPTH, 20);
            w.text(MQCA_Q_DESC, "beta");
        });
        answer("DEFINE QALIAS(APP.C)");
    }

    std::string passing(const Parameters &filter)
    {
        std::string names;
        for (const Reply &reply : run(MQCMD_INQUIRE_Q, [&](PcfWriter &w) {
                 w.text(MQCA_Q_NAME, "APP.*");
                 filter(w);
             })) {
            if (reply.header.CompCode != MQCC_OK) return std::to_string(reply.header.Reason);
            names += reply.text(MQCA_Q_NAME).substr(4);
        }
        return names;
    }
    std::string passing(MQLONG operation, MQLONG value)
    {
        return passing([=](PcfWriter &w) { w.integerFilter(MQIA_MAX_Q_DEPTH, operation, value); });
    }
    std::string passing(MQLONG operation, std::string_view value)
    {
        return passing([=](PcfWriter &w) { w.textFilter(MQCA_Q_DESC, operation, value); });
    }
};

TEST_F(PcfFilters, IntegersAreCompared)
{
    EXPECT_EQ(passing(MQCFOP_LESS, 20), "A");
    EXPECT_EQ(passing(MQCFOP_EQUAL, 20), "B");
    EXPECT_EQ(passing(MQCFOP_GREATER, 10), "B");
    EXPECT_EQ(passing(MQCFOP_NOT_LESS, 10), "AB");
    EXPECT_EQ(passing(MQCFOP_NOT_EQUAL, 10), "B");
    EXPECT_EQ(passing(MQCFOP_NOT_GREATER, 10), "A");
    EXPECT_EQ(passing(MQCFOP_LESS, 10), std::to_string(MQRC_UNKNOWN_OBJECT_NAME));
}

TEST_F(PcfFilters, TextsAreCompared)
{
    EXPECT_EQ(passing(MQCFOP_LIKE, "al*"), "A");
    EXPECT_EQ(passing(MQCFOP_NOT_LIKE, "al*"), "BC");
    EXPECT_EQ(passing(MQCFOP_EQUAL, "beta"), "B");
    EXPECT_EQ(passing(MQCFOP_LESS, "beta"), "AC") << "the alias has an empty description";
}

TEST_F(PcfFilters, OperatorMustSuitTheAttribute)
{
    EXPECT_EQ(passing(MQCFOP_LIKE, 1), std::to_string(MQRCCF_CFIF_OPERATOR_ERROR));
    EXPECT_EQ(passing(MQCFOP_CONTAINS, 1), std::to_string(MQRCCF_CFIF_OPERATOR_ERROR));
    EXPECT_EQ(passing(MQCFOP_CONTAINS, "alpha"), std::to_string(MQRCCF_CFSF_OPERATOR_ERROR));
}

TEST_F(PcfFilters, FilterMustSuitTheAttributeAndBeAlone)
{
    EXPECT_EQ(passing([](PcfWriter &w) { w.integerFilter(MQCA_Q_DESC, MQCFOP_EQUAL, 1); }),
              std::to_string(MQRCCF_CFIF_PARM_ID_ERROR));
    EXPECT_EQ(passing([](PcfWriter &w) { w.textFilter(MQIA_MAX_Q_DEPTH, MQCFOP_EQUAL, "1"); }),
              std::to_string(MQRCCF_CFSF_PARM_ID_ERROR));
    EXPECT_EQ(passing([](PcfWriter &w) { w.integerFilter(9999, MQCFOP_EQUAL, 1); }),
              std::to_string(MQRCCF_CFIF_PARM_ID_ERROR));
    EXPECT_EQ(passing([](PcfWriter &w) {
                  w.integerFilter(MQIA_MAX_Q_DEPTH, MQCFOP_LESS, 20);
                  w.textFilter(MQCA_Q_DESC, MQCFOP_EQUAL, "alpha");
              }),
              std::to_string(MQRCCF_TOO_MANY_FILTERS));
}

TEST_F(PcfFilters, ListsContainNames)
{
    answer("DEFINE NAMELIST(N1) NAMES(A.ONE, B.TWO)");
    answer("DEFINE NAMELIST(N2) NAMES(C.THREE)");
    const auto with = [this](MQLONG operation, std::string_view value) {
        std::string names;
        for (const Reply &reply : run(MQCMD_INQUIRE_NAMELIST, [&](PcfWriter &w) {
                 w.text(MQCA_NAMELIST_NAME, "N*");
                 w.textFilter(MQCA_NAMES, operation, value);
             }))
            names += reply.text(MQCA_NAMELIST_NAME);
        return names;
    };
    EXPECT_EQ(with(MQCFOP_CONTAINS, "B.TWO"), "N1");
    EXPECT_EQ(with(MQCFOP_EXCLUDES, "B.TWO"), "N2");
    EXPECT_EQ(with(MQCFOP_CONTAINS_GEN, "C*"), "N2");
    EXPECT_EQ(with(MQCFOP_EXCLUDES_GEN, "C*"), "N1");
}

// ---- Queue manager, Clear, Escape ----

TEST_F(PcfInterpreter, QueueManagerIsInquiredAndChanged)
{
    expectDone(MQCMD_CHANGE_Q_MGR, [](PcfWriter &w) {
        w.text(MQCA_DEAD_LETTER_Q_NAME, "SYSTEM.DEAD.LETTER.QUEUE");
        w.integer(MQIA_MAX_HANDLES, 77);
    });
    const MQLONG asked[] = {MQCA_DEAD_LETTER_Q_NAME, MQIA_MAX_HANDLES};
    const auto some = run(MQCMD_INQUIRE_Q_MGR, [&](PcfWriter &w) { w.integers(MQIACF_Q_MGR_ATTRS, asked); });
    ASSERT_EQ(some.size(), 1U);
    EXPECT_THAT(some[0].ids(), ElementsAre(MQCA_Q_MGR_NAME, MQCA_DEAD_LETTER_Q_NAME, MQIA_MAX_HANDLES));
    EXPECT_EQ(some[0].text(MQCA_Q_MGR_NAME), "QM1");
    EXPECT_EQ(some[0].text(MQCA_DEAD_LETTER_Q_NAME), "SYSTEM.DEAD.LETTER.QUEUE");
    EXPECT_EQ(some[0].number(MQIA_MAX_HANDLES), 77);
    EXPECT_GT(run(MQCMD_INQUIRE_Q_MGR)[0].parameters.size(), 20U) << "all of them";
}

TEST_F(PcfInterpreter, ClearRemovesTheMessages)
{
    createLocal("Q");
    put("Q", MQPER_NOT_PERSISTENT);
    const auto name = [](PcfWriter &w) { w.text(MQCA_Q_NAME, "Q"); };
    expectDone(MQCMD_CLEAR_Q, name);
    EXPECT_EQ(statusOf("Q").depth, 0U);
    open(*attachment_, idOf("Q"), {.output = 1});
    EXPECT_EQ(faultOfCommand(MQCMD_CLEAR_Q, name), about(MQRC_OBJECT_IN_USE, MQCA_Q_NAME));
}

TEST_F(PcfInterpreter, EscapeRunsMqscAndReturnsItsTexts)
{
    const auto escaped = [this](std::string_view text) {
        return run(MQCMD_ESCAPE, [&](PcfWriter &w) {
            w.integer(MQIACF_ESCAPE_TYPE, MQET_MQSC);
            w.text(MQCACF_ESCAPE_TEXT, text);
        });
    };
    auto replies = escaped("DEFINE QLOCAL(E1)");
    ASSERT_EQ(replies.size(), 1U);
    EXPECT_EQ(replies[0].header.CompCode, MQCC_OK);
    EXPECT_EQ(replies[0].header.Command, MQCMD_CREATE_Q);
    EXPECT_THAT(replies[0].ids(), ElementsAre(MQIACF_ESCAPE_TYPE, MQCACF_ESCAPE_TEXT));
    EXPECT_EQ(replies[0].text(MQCACF_ESCAPE_TEXT), "AMQ8006I: Queue E1 was created.");

    escaped("DEFINE QLOCAL(E2)");
    replies = escaped("DISPLAY QLOCAL(E*) CURDEPTH");
    ASSERT_EQ(replies.size(), 2U) << "one for each message";
    EXPECT_EQ(replies[1].header.Command, MQCMD_INQUIRE_Q);
    EXPECT_EQ(replies[1].text(MQCACF_ESCAPE_TEXT), "AMQ8409I: Queue details:\n"
                                                   "   QUEUE(E2)                               TYPE(QLOCAL)\n"
                                                   "   CURDEPTH(0)");

    replies = escaped("DELETE QLOCAL(NONE)");
    ASSERT_EQ(replies.size(), 2U);
    EXPECT_EQ(replies[0].header.CompCode, MQCC_FAILED);
    EXPECT_EQ(replies[0].text(MQCACF_ESCAPE_TEXT), "AMQ8147E: There is no object NONE.");
    EXPECT_EQ(replies[1].header.Reason, MQRCCF_COMMAND_FAILED);

    replies = escaped("NONSENSE");
    EXPECT_EQ(replies[0].header.Reason, MQRCCF_PARM_SYNTAX_ERROR);
    EXPECT_EQ(faultIn(escaped("* a comment")), about(MQRCCF_PARM_SYNTAX_ERROR, MQCACF_ESCAPE_TEXT));
}

TEST_F(PcfInterpreter, EscapeTakesMqscOnly)
{
    EXPECT_EQ(faultOfCommand(MQCMD_ESCAPE,
                             [](PcfWriter &w) {
                                 w.integer(MQIACF_ESCAPE_TYPE, 2);
                                 w.text(MQCACF_ESCAPE_TEXT, "PING QMGR");
                             }),
              about(MQRCCF_ESCAPE_TYPE_ERROR, MQIACF_ESCAPE_TYPE));
}

} // namespace
} // namespace mqrig::qmgr::command
