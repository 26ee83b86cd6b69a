#include "groups_fixture.h"

namespace mqrig::qmgr::testing {
namespace {

constexpr MQLONG inOrder = MQPMO_LOGICAL_ORDER | MQPMO_NO_SYNCPOINT;
const std::string noGroup(24, '\0');

using Groups = GroupTest;

// ---- MQPUT with logical order ----

TEST_F(Groups, LogicalOrderMakesGroupIdAndSequenceNumbers)
{
    MQMD first = withFlags(MQMF_MSG_IN_GROUP);
    MQPMO pmo = pmoWith(inOrder);
    ASSERT_EQ(putInOut(hconn, q1, "a", first, pmo), ok);
    ASSERT_EQ(putInOrder(MQMF_MSG_IN_GROUP, "b"), ok);
    ASSERT_EQ(putInOrder(MQMF_LAST_MSG_IN_GROUP, "c"), ok);

    const std::string group = bytes(first.GroupId);
    EXPECT_NE(group, noGroup);
    EXPECT_EQ(first.MsgFlags, MQMF_MSG_IN_GROUP);
    constexpr MQLONG last = MQMF_MSG_IN_GROUP | MQMF_LAST_MSG_IN_GROUP;
    EXPECT_EQ(placeOf(next().md), (Place{group, 1, 0, MQMF_MSG_IN_GROUP}));
    EXPECT_EQ(placeOf(next().md), (Place{group, 2, 0, MQMF_MSG_IN_GROUP}));
    EXPECT_EQ(placeOf(next().md), (Place{group, 3, 0, last}));
}

TEST_F(Groups, LogicalOrderMakesOffsetsOfSegmentsInGroups)
{
    constexpr MQLONG inGroup = MQMF_MSG_IN_GROUP;
    ASSERT_EQ(putInOrder(inGroup | MQMF_SEGMENT, "ab"), ok);
    ASSERT_EQ(putInOrder(inGroup | MQMF_SEGMENT, "cd"), ok);
    ASSERT_EQ(putInOrder(inGroup | MQMF_LAST_SEGMENT, "e"), ok);
    ASSERT_EQ(putInOrder(MQMF_LAST_MSG_IN_GROUP, "f"), ok);

    const Place first = placeOf(next().md);
    constexpr MQLONG segment = inGroup | MQMF_SEGMENT;
    EXPECT_EQ(first, (Place{first.groupId, 1, 0, segment, 2}));
    EXPECT_EQ(placeOf(next().md), (Place{first.groupId, 1, 2, segment, 2}));
    EXPECT_EQ(placeOf(next().md), (Place{first.groupId, 1, 4, segment | MQMF_LAST_SEGMENT, 1}));
    EXPECT_EQ(placeOf(next().md), (Place{first.groupId, 2, 0, inGroup | MQMF_LAST_MSG_IN_GROUP}));
}

TEST_F(Groups, SegmentsOutsideGroupsHaveSequenceNumber1)
{
    ASSERT_EQ(putInOrder(MQMF_SEGMENT, "1234"), ok);
    ASSERT_EQ(putInOrder(MQMF_LAST_SEGMENT, ""), ok);
    const Place first = placeOf(next().md);
    EXPECT_NE(first.groupId, noGroup);
    EXPECT_EQ(first, (Place{first.groupId, 1, 0, MQMF_SEGMENT, 4}));
    EXPECT_EQ(placeOf(next().md), (Place{first.groupId, 1, 4, MQMF_SEGMENT | MQMF_LAST_SEGMENT, 0}));
}

TEST_F(Groups, EveryGroupHasItsOwnGroupId)
{
    ASSERT_EQ(putInOrder(MQMF_LAST_MSG_IN_GROUP), ok);
    ASSERT_EQ(putInOrder(MQMF_LAST_MSG_IN_GROUP), ok);
    const std::string first = bytes(next().md.GroupId);
    EXPECT_NE(first, bytes(next().md.GroupId));
}

TEST_F(Groups, LogicalOrderIgnoresTheFieldsOfTheProgram)
{
    MQMD md = withFlags(MQMF_MSG_IN_GROUP);
    setBytes(md.GroupId, "MINE");
    md.MsgSeqNumber = 7;
    md.Offset = 9;
    MQPMO pmo = pmoWith(inOrder);
    ASSERT_EQ(putInOut(hconn, q1, "x", md, pmo), ok);
    EXPECT_NE(bytes(md.GroupId).substr(0, 4), "MINE");
    EXPECT_EQ(md.MsgSeqNumber, 1);
    EXPECT_EQ(md.Offset, 0);
}

TEST_F(Groups, SingleMessageWithLogicalOrderHasNoGroup)
{
    ASSERT_EQ(putInOrder(MQMF_NONE), ok);
    EXPECT_EQ(placeOf(next().md), (Place{noGroup, 1, 0, MQMF_NONE}));
}

TEST_F(Groups, HandlesHaveGroupsOfTheirOwn)
{
    const MQHOBJ other = open(hconn, "Q1", MQOO_OUTPUT);
    ASSERT_EQ(putInOrder(MQMF_MSG_IN_GROUP), ok);
    ASSERT_EQ(put(hconn, other, "y", withFlags(MQMF_MSG_IN_GROUP), pmoWith(inOrder)), ok);
    ASSERT_EQ(putInOrder(MQMF_LAST_MSG_IN_GROUP), ok);
    const Place first = placeOf(next().md);
    const Place second = placeOf(next().md);
    EXPECT_NE(first.groupId, second.groupId);
    EXPECT_EQ(second.msgSeqNumber, 1);
    EXPECT_EQ(placeOf(next().md).groupId, first.groupId);
}

TEST_F(Groups, MessageOutsideTheCurrentGroupIs2241)
{
    ASSERT_EQ(putInOrder(MQMF_MSG_IN_GROUP), ok);
    EXPECT_EQ(putInOrder(MQMF_NONE), failed(MQRC_INCOMPLETE_GROUP));
    EXPECT_EQ(depth("Q1"), 1);
    EXPECT_EQ(putInOrder(MQMF_LAST_MSG_IN_GROUP), ok);
    EXPECT_EQ(putInOrder(MQMF_NONE), ok);
}

TEST_F(Groups, MessageBetweenSegmentsIs2242)
{
    ASSERT_EQ(putInOrder(MQMF_MSG_IN_GROUP | MQMF_SEGMENT), ok);
    EXPECT_EQ(putInOrder(MQMF_NONE), failed(MQRC_INCOMPLETE_MSG));
    EXPECT_EQ(putInOrder(MQMF_MSG_IN_GROUP), failed(MQRC_INCOMPLETE_MSG));
    EXPECT_EQ(putInOrder(MQMF_SEGMENT), failed(MQRC_INCOMPLETE_MSG));
    EXPECT_EQ(putInOrder(MQMF_LAST_MSG_IN_GROUP | MQMF_LAST_SEGMENT), failed(MQRC_INCOMPLETE_MSG));
    EXPECT_EQ(putInOrder(MQMF_MSG_IN_GROUP | MQMF_LAST_SEGMENT), ok);
}

TEST_F(Groups, ChangedPersistenceIs2185)
{
    ASSERT_EQ(putInOrder(MQMF_MSG_IN_GROUP), ok);
    MQMD md = withFlags(MQMF_MSG_IN_GROUP);
    md.Persistence = MQPER_PERSISTENT;
    EXPECT_EQ(put(hconn, q1, "x", md, pmoWith(inOrder)), failed(MQRC_INCONSISTENT_PERSISTENCE));
}

TEST_F(Groups, ChangedUnitOfWorkIs2245)
{
    ASSERT_EQ(putInOrder(MQMF_MSG_IN_GROUP), ok);
    EXPECT_EQ(putWith(MQMF_MSG_IN_GROUP, MQPMO_LOGICAL_ORDER | MQPMO_SYNCPOINT), failed(MQRC_INCONSISTENT_UOW));
}

TEST_F(Groups, GroupMayGoThroughSeveralUnitsOfWork)
{
    constexpr MQLONG options = MQPMO_LOGICAL_ORDER | MQPMO_SYNCPOINT;
    ASSERT_EQ(putWith(MQMF_MSG_IN_GROUP, options), ok);
    ASSERT_EQ(commit(hconn), ok);
    EXPECT_EQ(putWith(MQMF_LAST_MSG_IN_GROUP, options), ok);
    ASSERT_EQ(commit(hconn), ok);
    const Place first = placeOf(next().md);
    EXPECT_EQ(placeOf(next().md).groupId, first.groupId);
}

TEST_F(Groups, LogicalOrderWithVersion1DescriptorIs2257)
{
    EXPECT_EQ(put(hconn, q1, "x", MQMD{MQMD_DEFAULT}, pmoWith(inOrder)), failed(MQRC_WRONG_MD_VERSION));
}

TEST_F(Groups, LogicalOrderOnPut1Is2046)
{
    MQMD md = version2Md();
    MQPMO pmo = pmoWith(inOrder);
    EXPECT_EQ(put1(hconn, "Q1", "x", md, pmo), failed(MQRC_OPTIONS_ERROR));
}

// ---- MQPUT without it ----

TEST_F(Groups, WithoutLogicalOrderTheProgramSetsTheFields)
{
    MQMD md = withFlags(MQMF_MSG_IN_GROUP | MQMF_SEGMENT);
    setBytes(md.GroupId, "MINE");
    md.MsgSeqNumber = 7;
    md.Offset = 9;
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    ASSERT_EQ(putInOut(hconn, q1, "xyz", md, pmo), ok);
    EXPECT_EQ(md.OriginalLength, 3);
    EXPECT_EQ(placeOf(next().md), (Place{bytes(md.GroupId), 7, 9, MQMF_MSG_IN_GROUP | MQMF_SEGMENT, 3}));
    EXPECT_EQ(bytes(md.GroupId).substr(0, 5), std::string("MINE\0", 5));
}

TEST_F(Groups, WithoutGroupIdOneIsMade)
{
    for (const MQLONG flags : {MQMF_MSG_IN_GROUP, MQMF_LAST_MSG_IN_GROUP, MQMF_SEGMENT, MQMF_LAST_SEGMENT}) {
        MQMD md = withFlags(flags);
        MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
        ASSERT_EQ(putInOut(hconn, q1, "x", md, pmo), ok) << flags;
        EXPECT_NE(bytes(md.GroupId), noGroup) << flags;
    }
}

TEST_F(Groups, FieldsThatMeanNothingAreOverwritten)
{
    MQMD md = withFlags(MQMF_SEGMENT);
    md.MsgSeqNumber = 7;
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    ASSERT_EQ(putInOut(hconn, q1, "x", md, pmo), ok);
    EXPECT_EQ(md.MsgSeqNumber, 1);
    md = withFlags(MQMF_MSG_IN_GROUP);
    md.Offset = 5;
    ASSERT_EQ(putInOut(hconn, q1, "x", md, pmo), ok);
    EXPECT_EQ(md.Offset, 0);
}

TEST_F(Groups, SequenceNumberOutOfRangeIs2250)
{
    for (const MQLONG number : {0, -1, 1000000000}) {
        MQMD md = withFlags(MQMF_MSG_IN_GROUP);
        md.MsgSeqNumber = number;
        EXPECT_EQ(put(hconn, q1, "x", md), failed(MQRC_MSG_SEQ_NUMBER_ERROR)) << number;
    }
}

TEST_F(Groups, SequenceNumberThatOverflowsIs2250)
{
    MQMD md = withFlags(MQMF_MSG_IN_GROUP);
    md.MsgSeqNumber = 999999999;
    ASSERT_EQ(put(hconn, q1, "x", md), ok);
    EXPECT_EQ(putInOrder(MQMF_MSG_IN_GROUP), failed(MQRC_MSG_SEQ_NUMBER_ERROR));
}

TEST_F(Groups, OffsetOutOfRangeIs2251)
{
    for (const MQLONG offset : {-1, 999999999, 1000000000}) {
        MQMD md = withFlags(MQMF_SEGMENT);
        md.Offset = offset;
        EXPECT_EQ(put(hconn, q1, "x", md), failed(MQRC_OFFSET_ERROR)) << offset;
    }
}

TEST_F(Groups, EmptySegmentIs2253UnlessItIsTheLast)
{
    EXPECT_EQ(put(hconn, q1, "", withFlags(MQMF_SEGMENT)), failed(MQRC_SEGMENT_LENGTH_ZERO));
    EXPECT_EQ(put(hconn, q1, "", withFlags(MQMF_LAST_SEGMENT)), ok);
}

TEST_F(Groups, ReportSegmentNamesTheLengthOfItsOriginal)
{
    MQMD md = withFlags(MQMF_SEGMENT);
    md.MsgType = MQMT_REPORT;
    for (const MQLONG length : {MQOL_UNDEFINED, 0, 2}) {
        md.OriginalLength = length;
        EXPECT_EQ(put(hconn, q1, "xyz", md), failed(MQRC_ORIGINAL_LENGTH_ERROR)) << length;
    }
    md.OriginalLength = 100;
    ASSERT_EQ(put(hconn, q1, "xyz", md), ok);
    EXPECT_EQ(next().md.OriginalLength, 100);
}

TEST_F(Groups, GroupBegunWithoutLogicalOrderGoesOnWithIt)
{
    MQMD md = withFlags(MQMF_MSG_IN_GROUP);
    setBytes(md.GroupId, "MINE");
    md.MsgSeqNumber = 4;
    ASSERT_EQ(put(hconn, q1, "x", md), ok);
    ASSERT_EQ(putInOrder(MQMF_LAST_MSG_IN_GROUP), ok);
    const Place first = placeOf(next().md);
    const Place second = placeOf(next().md);
    EXPECT_EQ(second.groupId, first.groupId);
    EXPECT_EQ(second.msgSeqNumber, 5);
}

TEST_F(Groups, LeavingAGroupThatWasPutInOrderWarns)
{
    ASSERT_EQ(putInOrder(MQMF_MSG_IN_GROUP), ok);
    EXPECT_EQ(putWith(MQMF_NONE, MQPMO_NO_SYNCPOINT), warned(MQRC_INCOMPLETE_GROUP));
    EXPECT_EQ(putWith(MQMF_NONE, MQPMO_NO_SYNCPOINT), ok);

    ASSERT_EQ(putInOrder(MQMF_SEGMENT), ok);
    EXPECT_EQ(putWith(MQMF_MSG_IN_GROUP, MQPMO_NO_SYNCPOINT), warned(MQRC_INCOMPLETE_MSG));
    EXPECT_EQ(depth("Q1"), 5);
}

TEST_F(Groups, GoingOnInAnotherMannerWarns)
{
    MQMD md = withFlags(MQMF_MSG_IN_GROUP);
    MQPMO pmo = pmoWith(inOrder);
    ASSERT_EQ(putInOut(hconn, q1, "x", md, pmo), ok);
    md.MsgSeqNumber = 2;
    EXPECT_EQ(put(hconn, q1, "x", md, pmoWith(MQPMO_SYNCPOINT)), warned(MQRC_INCONSISTENT_UOW));

    md = withFlags(MQMF_MSG_IN_GROUP | MQMF_SEGMENT);
    ASSERT_EQ(putWith(MQMF_LAST_MSG_IN_GROUP, MQPMO_SYNCPOINT), ok);
    pmo = pmoWith(inOrder);
    ASSERT_EQ(putInOut(hconn, q1, "x", md, pmo), ok);
    md.Offset = 1;
    md.Persistence = MQPER_PERSISTENT;
    EXPECT_EQ(put(hconn, q1, "x", md), warned(MQRC_INCONSISTENT_PERSISTENCE));
}

TEST_F(Groups, GoingOnByHandWhereLogicalOrderStoodIsFine)
{
    MQMD md = withFlags(MQMF_MSG_IN_GROUP);
    MQPMO pmo = pmoWith(inOrder);
    ASSERT_EQ(putInOut(hconn, q1, "x", md, pmo), ok);
    md.MsgSeqNumber = 2;
    EXPECT_EQ(put(hconn, q1, "x", md, pmoWith(MQPMO_NO_SYNCPOINT)), ok);
}

// ---- MQCLOSE ----

TEST_F(Groups, CloseWarnsOfAnUnfinishedGroup)
{
    ASSERT_EQ(putInOrder(MQMF_MSG_IN_GROUP), ok);
    EXPECT_EQ(close(hconn, q1), warned(MQRC_INCOMPLETE_GROUP));
    EXPECT_EQ(q1, MQHO_UNUSABLE_HOBJ);
}

TEST_F(Groups, CloseWarnsOfAnUnfinishedMessageFirst)
{
    ASSERT_EQ(putInOrder(MQMF_MSG_IN_GROUP | MQMF_SEGMENT), ok);
    EXPECT_EQ(close(hconn, q1), warned(MQRC_INCOMPLETE_MSG));
}

TEST_F(Groups, CloseDoesNotMindGroupsPutByHand)
{
    ASSERT_EQ(putWith(MQMF_MSG_IN_GROUP, MQPMO_NO_SYNCPOINT), ok);
    EXPECT_EQ(close(hconn, q1), ok);
}

TEST_F(Groups, CloseAfterACompleteGroupIsOk)
{
    ASSERT_EQ(putInOrder(MQMF_MSG_IN_GROUP), ok);
    ASSERT_EQ(putInOrder(MQMF_LAST_MSG_IN_GROUP), ok);
    EXPECT_EQ(close(hconn, q1), ok);
}

// ---- What MQGET returns of groups, in whatever order ----

TEST_F(Groups, GetTellsGroupAndSegmentStatus)
{
    struct {
        MQLONG flags;
        MQCHAR group;
        MQCHAR segment;
    } const cases[] = {
        {MQMF_NONE, MQGS_NOT_IN_GROUP, MQSS_NOT_A_SEGMENT},
        {MQMF_MSG_IN_GROUP, MQGS_MSG_IN_GROUP, MQSS_NOT_A_SEGMENT},
        {MQMF_LAST_MSG_IN_GROUP, MQGS_LAST_MSG_IN_GROUP, MQSS_NOT_A_SEGMENT},
        {MQMF_SEGMENT, MQGS_NOT_IN_GROUP, MQSS_SEGMENT},
        {MQMF_LAST_MSG_IN_GROUP | MQMF_LAST_SEGMENT, MQGS_LAST_MSG_IN_GROUP, MQSS_LAST_SEGMENT},
    };
    for (const auto &wanted : cases) {
        ASSERT_EQ(putWith(wanted.flags, MQPMO_NO_SYNCPOINT), ok);
        const Got got = next();
        EXPECT_EQ(got.gmo.GroupStatus, wanted.group) << wanted.flags;
        EXPECT_EQ(got.gmo.SegmentStatus, wanted.segment) << wanted.flags;
        EXPECT_EQ(got.gmo.Segmentation, MQSEG_INHIBITED) << wanted.flags;
    }
}

} // namespace
} // namespace mqrig::qmgr::testing
