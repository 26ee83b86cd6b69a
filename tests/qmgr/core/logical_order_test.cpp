#include "qmgr/core/logical_order.h"

#include <gtest/gtest.h>

#include <cstring>

#include "qmgr/core/selection.h"

namespace mqrig::qmgr::core {
namespace {

MQMD member(MQLONG flags, MQLONG msgSeqNumber = 1, MQLONG offset = 0, MQLONG length = MQOL_UNDEFINED)
{
    MQMD md = {MQMD_DEFAULT};
    md.Version = MQMD_VERSION_2;
    md.MsgFlags = impliedFlags(flags);
    md.MsgSeqNumber = msgSeqNumber;
    md.Offset = offset;
    md.OriginalLength = length;
    md.Persistence = MQPER_NOT_PERSISTENT;
    std::memset(md.GroupId, 'G', sizeof md.GroupId);
    return md;
}

GroupPosition behind(const MQMD &md)
{
    return positionBehind(md, false, true);
}

TEST(LogicalOrder, LastOnesImplyTheirGroupAndSegment)
{
    EXPECT_EQ(impliedFlags(MQMF_LAST_MSG_IN_GROUP), MQMF_LAST_MSG_IN_GROUP | MQMF_MSG_IN_GROUP);
    EXPECT_EQ(impliedFlags(MQMF_LAST_SEGMENT), MQMF_LAST_SEGMENT | MQMF_SEGMENT);
    EXPECT_EQ(impliedFlags(MQMF_SEGMENTATION_ALLOWED), MQMF_SEGMENTATION_ALLOWED);
}

TEST(LogicalOrder, OpenPositionsAreThoseWithSomethingToCome)
{
    EXPECT_FALSE(behind(member(MQMF_NONE)).open());
    EXPECT_FALSE(behind(member(MQMF_LAST_MSG_IN_GROUP)).open());
    EXPECT_FALSE(behind(member(MQMF_LAST_SEGMENT)).open());
    EXPECT_FALSE(behind(member(MQMF_LAST_MSG_IN_GROUP | MQMF_LAST_SEGMENT)).open());
    EXPECT_TRUE(behind(member(MQMF_MSG_IN_GROUP)).group);
    EXPECT_TRUE(behind(member(MQMF_MSG_IN_GROUP | MQMF_LAST_SEGMENT)).group);
    EXPECT_TRUE(behind(member(MQMF_LAST_MSG_IN_GROUP | MQMF_SEGMENT)).group);
    EXPECT_TRUE(behind(member(MQMF_SEGMENT)).logicalMessage);
    EXPECT_FALSE(behind(member(MQMF_SEGMENT)).group);
}

TEST(LogicalOrder, NextMessageHasTheNextNumberAndNoOffset)
{
    MQMD next{};
    setNext(behind(member(MQMF_MSG_IN_GROUP | MQMF_LAST_SEGMENT, 4, 100, 7)), next);
    EXPECT_EQ(next.MsgSeqNumber, 5);
    EXPECT_EQ(next.Offset, 0);
    EXPECT_EQ(next.GroupId[23], 'G');
}

TEST(LogicalOrder, NextSegmentStandsBehindTheLastOne)
{
    MQMD next{};
    setNext(behind(member(MQMF_MSG_IN_GROUP | MQMF_SEGMENT, 4, 100, 7)), next);
    EXPECT_EQ(next.MsgSeqNumber, 4);
    EXPECT_EQ(next.Offset, 107);
}

TEST(LogicalOrder, FlagsThatDoNotGoOnAreToldApart)
{
    const GroupPosition group = behind(member(MQMF_MSG_IN_GROUP));
    EXPECT_EQ(judgeFlags(group, MQMF_NONE), MQRC_INCOMPLETE_GROUP);
    EXPECT_EQ(judgeFlags(group, MQMF_SEGMENT), MQRC_INCOMPLETE_GROUP);
    EXPECT_EQ(judgeFlags(group, MQMF_MSG_IN_GROUP | MQMF_SEGMENT), MQRC_NONE);
    const GroupPosition message = behind(member(MQMF_MSG_IN_GROUP | MQMF_SEGMENT, 1, 0, 1));
    EXPECT_EQ(judgeFlags(message, MQMF_MSG_IN_GROUP), MQRC_INCOMPLETE_MSG);
    EXPECT_EQ(judgeFlags(message, MQMF_SEGMENT), MQRC_INCOMPLETE_MSG);
    EXPECT_EQ(judgeFlags(message, MQMF_MSG_IN_GROUP | MQMF_SEGMENT), MQRC_NONE);
    EXPECT_EQ(judgeFlags(GroupPosition{}, MQMF_NONE), MQRC_NONE);
}

TEST(LogicalOrder, FieldsGoOnOnlyWhereThePositionStands)
{
    const GroupPosition group = behind(member(MQMF_MSG_IN_GROUP, 2));
    EXPECT_EQ(judgeFields(group, member(MQMF_MSG_IN_GROUP, 3)), MQRC_NONE);
    EXPECT_EQ(judgeFields(group, member(MQMF_MSG_IN_GROUP, 4)), MQRC_INCOMPLETE_GROUP);
    EXPECT_EQ(judgeFields(group, member(MQMF_MSG_IN_GROUP | MQMF_SEGMENT, 3, 1, 1)), MQRC_INCOMPLETE_GROUP);
    MQMD other = member(MQMF_MSG_IN_GROUP, 3);
    other.GroupId[0] = 'X';
    EXPECT_EQ(judgeFields(group, other), MQRC_INCOMPLETE_GROUP);
    EXPECT_EQ(judgeFields(behind(member(MQMF_SEGMENT, 1, 0, 4)), member(MQMF_SEGMENT, 1, 5, 4)), MQRC_INCOMPLETE_MSG);
}

TEST(LogicalOrder, MannerMustStay)
{
    const GroupPosition group = behind(member(MQMF_MSG_IN_GROUP));
    EXPECT_EQ(judgeManner(group, false, false), MQRC_NONE);
    EXPECT_EQ(judgeManner(group, true, true), MQRC_INCONSISTENT_PERSISTENCE);
    EXPECT_EQ(judgeManner(group, false, true), MQRC_INCONSISTENT_UOW);
    EXPECT_EQ(judgeManner(GroupPosition{}, true, true), MQRC_NONE);
}

TEST(LogicalOrder, CloseTellsTheMostUrgentOfAllPositions)
{
    LogicalOrder order;
    EXPECT_EQ(judgeClose(order), success());
    order.get = behind(member(MQMF_MSG_IN_GROUP));
    EXPECT_EQ(judgeClose(order), warning(MQRC_INCOMPLETE_GROUP));
    order.put = behind(member(MQMF_SEGMENT, 1, 0, 1));
    EXPECT_EQ(judgeClose(order), warning(MQRC_INCOMPLETE_MSG));
    order.put.ordered = false;
    EXPECT_EQ(judgeClose(order), warning(MQRC_INCOMPLETE_GROUP));
}

TEST(LogicalOrder, SelectionIsRestrictedUnlessItWantsSomethingElse)
{
    constexpr MQLONG all = MQMO_MATCH_GROUP_ID | MQMO_MATCH_MSG_SEQ_NUMBER | MQMO_MATCH_OFFSET;
    const MQBYTE16 noToken = {};
    const MQMD place = member(MQMF_MSG_IN_GROUP, 3);
    Selection any;
    EXPECT_FALSE(any.place().has_value());
    EXPECT_TRUE(any.restrictToPlace(place, true));
    ASSERT_TRUE(any.place().has_value());
    EXPECT_EQ(any.place()->msgSeqNumber, 3);
    EXPECT_TRUE(Selection(all, place, noToken).restrictToPlace(place, true));
    EXPECT_FALSE(Selection(all, member(MQMF_NONE, 2), noToken).restrictToPlace(place, true));
    EXPECT_FALSE(Selection(all, member(MQMF_NONE, 3, 1), noToken).restrictToPlace(place, true));
    MQMD other = place;
    other.GroupId[0] = 'X';
    EXPECT_FALSE(Selection(all, other, noToken).restrictToPlace(place, true));
    EXPECT_TRUE(Selection(all, other, noToken).restrictToPlace(place, false));
}

} // namespace
} // namespace mqrig::qmgr::core
