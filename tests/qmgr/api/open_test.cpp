#include "fixture.h"

#include <cstring>

namespace mqrig::qmgr::testing {
namespace {

class Open : public QueueManagerTest {
public:
    Open() : hconn(connect()) {}
    Codes codesFor(MQLONG options) { return openCodes(hconn, "Q1", options); }
    Codes codesOf(MQOD od, MQLONG options)
    {
        MQHOBJ hobj = 7;
        return tryOpen(hconn, od, options, hobj);
    }
    MQHCONN hconn;
};

TEST_F(Open, LocalQueueForEachPurpose)
{
    for (const MQLONG options : {MQOO_INPUT_AS_Q_DEF, MQOO_INPUT_SHARED, MQOO_INPUT_EXCLUSIVE, MQOO_BROWSE, MQOO_OUTPUT,
                                 MQOO_INQUIRE, MQOO_SET}) {
        MQHOBJ hobj = MQHO_UNUSABLE_HOBJ;
        EXPECT_EQ(tryOpen(hconn, "Q1", options, hobj), ok) << options;
        EXPECT_GT(hobj, 0);
        EXPECT_EQ(close(hconn, hobj), ok);
        EXPECT_EQ(hobj, MQHO_UNUSABLE_HOBJ);
    }
}

TEST_F(Open, BlankPaddedNamesAreFound)
{
    MQOD od = {MQOD_DEFAULT};
    setText(od.ObjectName, "Q1");
    setText(od.ObjectQMgrName, "QM1");
    EXPECT_EQ(codesOf(od, MQOO_OUTPUT), ok);
}

TEST_F(Open, NameOfFullLengthNeedsNoZero)
{
    const std::string name(48, 'Q');
    defineQueue(name);
    EXPECT_EQ(openCodes(hconn, name, MQOO_OUTPUT), ok);
}

TEST_F(Open, UnknownQueueIs2085)
{
    MQHOBJ hobj = 7;
    EXPECT_EQ(tryOpen(hconn, "NOSUCH", MQOO_OUTPUT, hobj), failed(MQRC_UNKNOWN_OBJECT_NAME));
    EXPECT_EQ(hobj, MQHO_UNUSABLE_HOBJ);
}

TEST_F(Open, NamesAreCaseSensitive)
{
    EXPECT_EQ(openCodes(hconn, "q1", MQOO_OUTPUT), failed(MQRC_UNKNOWN_OBJECT_NAME));
}

TEST_F(Open, EmptyAndImpossibleNamesAre2085)
{
    EXPECT_EQ(openCodes(hconn, "", MQOO_OUTPUT), failed(MQRC_UNKNOWN_OBJECT_NAME));
    EXPECT_EQ(openCodes(hconn, "no blanks", MQOO_OUTPUT), failed(MQRC_UNKNOWN_OBJECT_NAME));
}

TEST_F(Open, OtherQueueManagerIs2087)
{
    MQOD od = {MQOD_DEFAULT};
    std::strcpy(od.ObjectName, "Q1");
    std::strcpy(od.ObjectQMgrName, "QM2");
    EXPECT_EQ(codesOf(od, MQOO_OUTPUT), failed(MQRC_UNKNOWN_REMOTE_Q_MGR));
}

TEST_F(Open, DescriptorErrorsAre2044)
{
    MQHOBJ hobj = 7;
    Codes codes;
    MQOPEN(hconn, nullptr, MQOO_OUTPUT, &hobj, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_OD_ERROR));
    for (const MQLONG version : {0, MQOD_CURRENT_VERSION + 1}) {
        MQOD od = {MQOD_DEFAULT};
        od.Version = version;
        EXPECT_EQ(codesOf(od, MQOO_OUTPUT), failed(MQRC_OD_ERROR));
    }
    MQOD od = {MQOD_DEFAULT};
    od.StrucId[1] = 'X';
    EXPECT_EQ(codesOf(od, MQOO_OUTPUT), failed(MQRC_OD_ERROR));
}

TEST_F(Open, NoPlaceForTheHandleIs2019)
{
    MQOD od = {MQOD_DEFAULT};
    Codes codes;
    MQOPEN(hconn, &od, MQOO_OUTPUT, nullptr, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_HOBJ_ERROR));
}

TEST_F(Open, UnknownConnectionIs2018)
{
    EXPECT_EQ(openCodes(hconn + 1, "Q1", MQOO_OUTPUT), failed(MQRC_HCONN_ERROR));
}

TEST_F(Open, OptionsThatExcludeEachOtherAre2046)
{
    for (const MQLONG options :
         {0, MQOO_FAIL_IF_QUIESCING, MQOO_INPUT_SHARED | MQOO_INPUT_EXCLUSIVE, MQOO_INPUT_AS_Q_DEF | MQOO_INPUT_SHARED,
          MQOO_OUTPUT | MQOO_BIND_ON_OPEN | MQOO_BIND_NOT_FIXED, MQOO_OUTPUT | MQOO_BIND_NOT_FIXED | MQOO_BIND_ON_GROUP,
          MQOO_INPUT_SHARED | MQOO_READ_AHEAD | MQOO_NO_READ_AHEAD, MQOO_OUTPUT | MQOO_SAVE_ALL_CONTEXT,
          MQOO_BROWSE | MQOO_SAVE_ALL_CONTEXT, MQOO_INPUT_SHARED | MQOO_SET_ALL_CONTEXT,
          MQOO_INPUT_SHARED | MQOO_PASS_IDENTITY_CONTEXT})
        EXPECT_EQ(codesFor(options), failed(MQRC_OPTIONS_ERROR)) << std::hex << options;
}

TEST_F(Open, UnknownOptionBitIs2046)
{
    EXPECT_EQ(codesFor(MQOO_OUTPUT | 0x40000000), failed(MQRC_OPTIONS_ERROR));
    EXPECT_EQ(codesFor(MQOO_OUTPUT | MQOO_RESOLVE_NAMES), failed(MQRC_OPTIONS_ERROR));
}

TEST_F(Open, CooperationIsForBrowsing)
{
    EXPECT_EQ(codesFor(MQOO_BROWSE | MQOO_CO_OP), ok);
    EXPECT_EQ(codesFor(MQOO_INPUT_SHARED | MQOO_CO_OP), failed(MQRC_OPTIONS_ERROR));
}

TEST_F(Open, OptionsWithoutEffectAreAccepted)
{
    EXPECT_EQ(codesFor(MQOO_OUTPUT | MQOO_BIND_ON_OPEN | MQOO_NO_MULTICAST | MQOO_ALTERNATE_USER_AUTHORITY), ok);
    EXPECT_EQ(codesFor(MQOO_OUTPUT | MQOO_BIND_NOT_FIXED), ok);
    EXPECT_EQ(codesFor(MQOO_OUTPUT | MQOO_BIND_ON_GROUP), ok);
    EXPECT_EQ(codesFor(MQOO_INPUT_SHARED | MQOO_READ_AHEAD), ok);
    EXPECT_EQ(codesFor(MQOO_INPUT_SHARED | MQOO_NO_READ_AHEAD), ok);
}

// ---- Sharing ----

TEST_F(Open, ExclusiveUseKeepsOtherInputOut)
{
    const MQHOBJ first = open(hconn, "Q1", MQOO_INPUT_EXCLUSIVE);
    EXPECT_EQ(codesFor(MQOO_INPUT_SHARED), failed(MQRC_OBJECT_IN_USE));
    EXPECT_EQ(codesFor(MQOO_INPUT_EXCLUSIVE), failed(MQRC_OBJECT_IN_USE));
    EXPECT_EQ(openCodes(connect(), "Q1", MQOO_INPUT_AS_Q_DEF), failed(MQRC_OBJECT_IN_USE));
    MQHOBJ closing = first;
    close(hconn, closing);
    EXPECT_EQ(codesFor(MQOO_INPUT_EXCLUSIVE), ok);
}

TEST_F(Open, ExclusiveUseLetsBrowsersAndOutputIn)
{
    open(hconn, "Q1", MQOO_INPUT_EXCLUSIVE);
    EXPECT_EQ(codesFor(MQOO_BROWSE | MQOO_OUTPUT | MQOO_INQUIRE), ok);
}

TEST_F(Open, SharedInputKeepsExclusiveUseOut)
{
    open(hconn, "Q1", MQOO_INPUT_SHARED);
    EXPECT_EQ(codesFor(MQOO_INPUT_EXCLUSIVE), failed(MQRC_OBJECT_IN_USE));
    EXPECT_EQ(codesFor(MQOO_INPUT_SHARED), ok);
}

TEST_F(Open, DisconnectEndsExclusiveUse)
{
    MQHCONN other = connect();
    open(other, "Q1", MQOO_INPUT_EXCLUSIVE);
    disconnect(other);
    EXPECT_EQ(codesFor(MQOO_INPUT_SHARED), ok);
}

TEST_F(Open, FailedOpenHoldsNothing)
{
    MQHOBJ first = open(hconn, "Q1", MQOO_INPUT_EXCLUSIVE);
    EXPECT_EQ(codesFor(MQOO_INPUT_SHARED), failed(MQRC_OBJECT_IN_USE));
    close(hconn, first);
    EXPECT_EQ(codesFor(MQOO_INPUT_EXCLUSIVE), ok);
}

TEST_F(Open, InputAsQueueDefinesFollowsDEFSOPT)
{
    defineQueue("QX", {{MQIA_DEF_INPUT_OPEN_OPTION, MQOO_INPUT_EXCLUSIVE}});
    open(hconn, "QX", MQOO_INPUT_AS_Q_DEF);
    EXPECT_EQ(openCodes(hconn, "QX", MQOO_INPUT_SHARED), failed(MQRC_OBJECT_IN_USE));
}

TEST_F(Open, QueueThatIsNotShareableIsOpenedExclusively)
{
    defineQueue("QX", {{MQIA_SHAREABILITY, MQQA_NOT_SHAREABLE}});
    open(hconn, "QX", MQOO_INPUT_SHARED);
    EXPECT_EQ(openCodes(hconn, "QX", MQOO_INPUT_SHARED), failed(MQRC_OBJECT_IN_USE));
}

// ---- Other objects ----

MQOD odOfType(MQLONG type, std::string_view name)
{
    MQOD od = {MQOD_DEFAULT};
    od.ObjectType = type;
    setText(od.ObjectName, name);
    return od;
}

TEST_F(Open, QueueManagerForInquiry)
{
    EXPECT_EQ(codesOf(odOfType(MQOT_Q_MGR, ""), MQOO_INQUIRE), ok);
}

TEST_F(Open, QueueManagerWithANameIs2085)
{
    EXPECT_EQ(codesOf(odOfType(MQOT_Q_MGR, "QMX"), MQOO_INQUIRE), failed(MQRC_UNKNOWN_OBJECT_NAME));
}

TEST_F(Open, QueueManagerElsewhereIs2087)
{
    MQOD od = odOfType(MQOT_Q_MGR, "");
    setText(od.ObjectQMgrName, "QM9");
    EXPECT_EQ(codesOf(od, MQOO_INQUIRE), failed(MQRC_UNKNOWN_REMOTE_Q_MGR));
}

TEST_F(Open, QueueManagerForMessagesIs2045)
{
    for (const MQLONG options : {MQOO_INPUT_SHARED, MQOO_OUTPUT, MQOO_BROWSE})
        EXPECT_EQ(codesOf(odOfType(MQOT_Q_MGR, ""), options), failed(MQRC_OPTION_NOT_VALID_FOR_TYPE));
}

TEST_F(Open, OnlyQueuesHaveAttributesToSet)
{
    EXPECT_EQ(codesOf(odOfType(MQOT_Q_MGR, ""), MQOO_SET | MQOO_INQUIRE), failed(MQRC_OPTION_NOT_VALID_FOR_TYPE));
    EXPECT_EQ(codesOf(odOfType(MQOT_PROCESS, "ANY"), MQOO_SET), failed(MQRC_OPTION_NOT_VALID_FOR_TYPE));
}

TEST_F(Open, ProcessAndNamelistAre2085ForInquiryAnd2045ForMessages)
{
    for (const MQLONG type : {MQOT_PROCESS, MQOT_NAMELIST}) {
        EXPECT_EQ(codesOf(odOfType(type, "ANY"), MQOO_INQUIRE), failed(MQRC_UNKNOWN_OBJECT_NAME));
        EXPECT_EQ(codesOf(odOfType(type, "ANY"), MQOO_OUTPUT), failed(MQRC_OPTION_NOT_VALID_FOR_TYPE));
    }
}

TEST_F(Open, UnknownObjectTypeIs2043)
{
    EXPECT_EQ(codesOf(odOfType(999, "Q1"), MQOO_OUTPUT), failed(MQRC_OBJECT_TYPE_ERROR));
}

// ---- What comes back ----

TEST_F(Open, Version4DescriptorIsToldWhatWasOpened)
{
    MQOD od = odOfType(MQOT_Q, "Q1");
    od.Version = MQOD_VERSION_4;
    od.KnownDestCount = od.UnknownDestCount = od.InvalidDestCount = 77;
    MQHOBJ hobj = 7;
    ASSERT_EQ(tryOpen(hconn, od, MQOO_OUTPUT, hobj), ok);
    EXPECT_EQ(std::string(od.ResolvedQName, 48), "Q1" + std::string(46, ' '));
    EXPECT_EQ(std::string(od.ResolvedQMgrName, 48), "QM1" + std::string(45, ' '));
    EXPECT_EQ(od.ResolvedType, MQOT_Q);
    EXPECT_EQ(od.KnownDestCount, 1);
    EXPECT_EQ(od.UnknownDestCount, 0);
    EXPECT_EQ(od.InvalidDestCount, 0);
}

TEST_F(Open, ResolvedQueueNameIsBlankForInquiryOnly)
{
    MQOD od = odOfType(MQOT_Q, "Q1");
    od.Version = MQOD_VERSION_3;
    MQHOBJ hobj = 7;
    ASSERT_EQ(tryOpen(hconn, od, MQOO_INQUIRE, hobj), ok);
    EXPECT_EQ(text(od.ResolvedQName), "");
    ASSERT_EQ(tryOpen(hconn, od, MQOO_INQUIRE | MQOO_RESOLVE_LOCAL_Q, hobj), ok);
    EXPECT_EQ(text(od.ResolvedQName), "Q1");
}

TEST_F(Open, TheProgramsOwnFieldsAreLeftAlone)
{
    MQOD od = odOfType(MQOT_Q, "Q1");
    MQHOBJ hobj = 7;
    ASSERT_EQ(tryOpen(hconn, od, MQOO_OUTPUT, hobj), ok);
    EXPECT_EQ(text(od.ObjectName), "Q1");
    EXPECT_EQ(text(od.DynamicQName), "AMQ.*");
    EXPECT_EQ(text(od.ObjectQMgrName), "");
}

// ---- Limits and states ----

TEST_F(Open, MoreHandlesThanMAXHANDSIs2017)
{
    alterQueueManager({{MQIA_MAX_HANDLES, 2}});
    open(hconn, "Q1", MQOO_OUTPUT);
    MQHOBJ second = open(hconn, "Q1", MQOO_OUTPUT);
    EXPECT_EQ(codesFor(MQOO_OUTPUT), failed(MQRC_HANDLE_NOT_AVAILABLE));
    close(hconn, second);
    EXPECT_EQ(codesFor(MQOO_OUTPUT), ok);
}

TEST_F(Open, FailIfQuiescingIs2161)
{
    endQuiesce();
    EXPECT_EQ(codesFor(MQOO_OUTPUT | MQOO_FAIL_IF_QUIESCING), failed(MQRC_Q_MGR_QUIESCING));
    EXPECT_EQ(codesFor(MQOO_OUTPUT), ok);
}

// ---- MQCLOSE ----

TEST_F(Open, CloseOfUnknownHandlesIs2019)
{
    const MQHOBJ q1 = open(hconn, "Q1", MQOO_OUTPUT);
    for (const MQHOBJ wrong : {MQHO_NONE, MQHO_UNUSABLE_HOBJ, 1, q1 + 1, q1 + (1 << 20), 0x7FFFFFFF}) {
        MQHOBJ hobj = wrong;
        EXPECT_EQ(close(hconn, hobj), failed(MQRC_HOBJ_ERROR)) << wrong;
    }
    Codes codes;
    MQCLOSE(hconn, nullptr, MQCO_NONE, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_HOBJ_ERROR));
}

TEST_F(Open, ClosedHandleMeansNothing)
{
    const MQHOBJ q1 = open(hconn, "Q1", MQOO_OUTPUT);
    MQHOBJ closing = q1;
    close(hconn, closing);
    open(hconn, "Q1", MQOO_OUTPUT);
    EXPECT_EQ(put(hconn, q1, "late"), failed(MQRC_HOBJ_ERROR));
}

TEST_F(Open, HandleOfAnotherConnectionMeansNothing)
{
    const MQHCONN other = connect();
    const MQHOBJ q1 = open(other, "Q1", MQOO_OUTPUT);
    EXPECT_EQ(put(hconn, q1, "not mine"), failed(MQRC_HOBJ_ERROR));
}

TEST_F(Open, CloseOptionsOfOtherObjectsAre2045AndTheHandleStays)
{
    MQHOBJ q1 = open(hconn, "Q1", MQOO_OUTPUT);
    for (const MQLONG options : {MQCO_DELETE, MQCO_DELETE_PURGE, MQCO_KEEP_SUB, MQCO_REMOVE_SUB})
        EXPECT_EQ(close(hconn, q1, options), failed(MQRC_OPTION_NOT_VALID_FOR_TYPE)) << options;
    EXPECT_EQ(close(hconn, q1, MQCO_DELETE | MQCO_DELETE_PURGE), failed(MQRC_OPTIONS_ERROR));
    EXPECT_EQ(close(hconn, q1, 0x1000), failed(MQRC_OPTIONS_ERROR));
    EXPECT_EQ(close(hconn, q1, MQCO_QUIESCE), ok);
}

} // namespace
} // namespace mqrig::qmgr::testing
