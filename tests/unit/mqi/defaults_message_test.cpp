// What the default initialisers put into every field, figure by figure:
// the structures that open objects, put and get.
#include "cmqc.h"

#include "default_fields.h"

#include <gtest/gtest.h>

namespace {

TEST(EveryFieldHasItsPublishedDefault, MQOD)
{
    const MQOD od = {MQOD_DEFAULT};
    EXPECT_TRUE(holds(od.StrucId, "OD  "));
    EXPECT_EQ(od.Version, 1);
    EXPECT_EQ(od.ObjectType, 1);
    EXPECT_TRUE(isZero(od.ObjectName));
    EXPECT_TRUE(isZero(od.ObjectQMgrName));
    EXPECT_TRUE(holds(od.DynamicQName, "AMQ.*"));
    EXPECT_TRUE(isZero(od.AlternateUserId));
    EXPECT_EQ(od.RecsPresent, 0);
    EXPECT_EQ(od.KnownDestCount, 0);
    EXPECT_EQ(od.UnknownDestCount, 0);
    EXPECT_EQ(od.InvalidDestCount, 0);
    EXPECT_EQ(od.ObjectRecOffset, 0);
    EXPECT_EQ(od.ResponseRecOffset, 0);
    EXPECT_EQ(od.ObjectRecPtr, nullptr);
    EXPECT_EQ(od.ResponseRecPtr, nullptr);
    EXPECT_TRUE(isZero(od.AlternateSecurityId));
    EXPECT_TRUE(isZero(od.ResolvedQName));
    EXPECT_TRUE(isZero(od.ResolvedQMgrName));
    EXPECT_TRUE(isEmptyString(od.ObjectString));
    EXPECT_TRUE(isEmptyString(od.SelectionString));
    EXPECT_TRUE(isEmptyString(od.ResObjectString));
    EXPECT_EQ(od.ResolvedType, 0);
}

TEST(EveryFieldHasItsPublishedDefault, MQOR)
{
    const MQOR objectRecord = {MQOR_DEFAULT};
    EXPECT_TRUE(isZero(objectRecord.ObjectName));
    EXPECT_TRUE(isZero(objectRecord.ObjectQMgrName));
}

TEST(EveryFieldHasItsPublishedDefault, MQRR)
{
    const MQRR responseRecord = {MQRR_DEFAULT};
    EXPECT_EQ(responseRecord.CompCode, 0);
    EXPECT_EQ(responseRecord.Reason, 0);
}

TEST(EveryFieldHasItsPublishedDefault, MQMD)
{
    const MQMD md = {MQMD_DEFAULT};
    EXPECT_TRUE(holds(md.StrucId, "MD  "));
    EXPECT_EQ(md.Version, 1);
    EXPECT_EQ(md.Report, 0);
    EXPECT_EQ(md.MsgType, 8);
    EXPECT_EQ(md.Expiry, -1);
    EXPECT_EQ(md.Feedback, 0);
    EXPECT_EQ(md.Encoding, 546);
    EXPECT_EQ(md.CodedCharSetId, 0);
    EXPECT_TRUE(isBlank(md.Format));
    EXPECT_EQ(md.Priority, -1);
    EXPECT_EQ(md.Persistence, 2);
    EXPECT_TRUE(isZero(md.MsgId));
    EXPECT_TRUE(isZero(md.CorrelId));
    EXPECT_EQ(md.BackoutCount, 0);
    EXPECT_TRUE(isZero(md.ReplyToQ));
    EXPECT_TRUE(isZero(md.ReplyToQMgr));
    EXPECT_TRUE(isZero(md.UserIdentifier));
    EXPECT_TRUE(isZero(md.AccountingToken));
    EXPECT_TRUE(isZero(md.ApplIdentityData));
    EXPECT_EQ(md.PutApplType, 0);
    EXPECT_TRUE(isZero(md.PutApplName));
    EXPECT_TRUE(isZero(md.PutDate));
    EXPECT_TRUE(isZero(md.PutTime));
    EXPECT_TRUE(isZero(md.ApplOriginData));
    EXPECT_TRUE(isZero(md.GroupId));
    EXPECT_EQ(md.MsgSeqNumber, 1);
    EXPECT_EQ(md.Offset, 0);
    EXPECT_EQ(md.MsgFlags, 0);
    EXPECT_EQ(md.OriginalLength, -1);
}

TEST(EveryFieldHasItsPublishedDefault, MQMD1)
{
    const MQMD1 md1 = {MQMD1_DEFAULT};
    EXPECT_TRUE(holds(md1.StrucId, "MD  "));
    EXPECT_EQ(md1.Version, 1);
    EXPECT_EQ(md1.Report, 0);
    EXPECT_EQ(md1.MsgType, 8);
    EXPECT_EQ(md1.Expiry, -1);
    EXPECT_EQ(md1.Feedback, 0);
    EXPECT_EQ(md1.Encoding, 546);
    EXPECT_EQ(md1.CodedCharSetId, 0);
    EXPECT_TRUE(isBlank(md1.Format));
    EXPECT_EQ(md1.Priority, -1);
    EXPECT_EQ(md1.Persistence, 2);
    EXPECT_TRUE(isZero(md1.MsgId));
    EXPECT_TRUE(isZero(md1.CorrelId));
    EXPECT_EQ(md1.BackoutCount, 0);
    EXPECT_TRUE(isZero(md1.ReplyToQ));
    EXPECT_TRUE(isZero(md1.ReplyToQMgr));
    EXPECT_TRUE(isZero(md1.UserIdentifier));
    EXPECT_TRUE(isZero(md1.AccountingToken));
    EXPECT_TRUE(isZero(md1.ApplIdentityData));
    EXPECT_EQ(md1.PutApplType, 0);
    EXPECT_TRUE(isZero(md1.PutApplName));
    EXPECT_TRUE(isZero(md1.PutDate));
    EXPECT_TRUE(isZero(md1.PutTime));
    EXPECT_TRUE(isZero(md1.ApplOriginData));
}

TEST(EveryFieldHasItsPublishedDefault, MQMDE)
{
    const MQMDE mde = {MQMDE_DEFAULT};
    EXPECT_TRUE(holds(mde.StrucId, "MDE "));
    EXPECT_EQ(mde.Version, 2);
    EXPECT_EQ(mde.StrucLength, 72);
    EXPECT_EQ(mde.Encoding, 546);
    EXPECT_EQ(mde.CodedCharSetId, 0);
    EXPECT_TRUE(isBlank(mde.Format));
    EXPECT_EQ(mde.Flags, 0);
    EXPECT_TRUE(isZero(mde.GroupId));
    EXPECT_EQ(mde.MsgSeqNumber, 1);
    EXPECT_EQ(mde.Offset, 0);
    EXPECT_EQ(mde.MsgFlags, 0);
    EXPECT_EQ(mde.OriginalLength, -1);
}

TEST(EveryFieldHasItsPublishedDefault, MQPMO)
{
    const MQPMO pmo = {MQPMO_DEFAULT};
    EXPECT_TRUE(holds(pmo.StrucId, "PMO "));
    EXPECT_EQ(pmo.Version, 1);
    EXPECT_EQ(pmo.Options, 0);
    EXPECT_EQ(pmo.Timeout, -1);
    EXPECT_EQ(pmo.Context, 0);
    EXPECT_EQ(pmo.KnownDestCount, 0);
    EXPECT_EQ(pmo.UnknownDestCount, 0);
    EXPECT_EQ(pmo.InvalidDestCount, 0);
    EXPECT_TRUE(isZero(pmo.ResolvedQName));
    EXPECT_TRUE(isZero(pmo.ResolvedQMgrName));
    EXPECT_EQ(pmo.RecsPresent, 0);
    EXPECT_EQ(pmo.PutMsgRecFields, 0);
    EXPECT_EQ(pmo.PutMsgRecOffset, 0);
    EXPECT_EQ(pmo.ResponseRecOffset, 0);
    EXPECT_EQ(pmo.PutMsgRecPtr, nullptr);
    EXPECT_EQ(pmo.ResponseRecPtr, nullptr);
    EXPECT_EQ(pmo.OriginalMsgHandle, 0);
    EXPECT_EQ(pmo.NewMsgHandle, 0);
    EXPECT_EQ(pmo.Action, 0);
    EXPECT_EQ(pmo.PubLevel, 9);
}

TEST(EveryFieldHasItsPublishedDefault, MQGMO)
{
    const MQGMO gmo = {MQGMO_DEFAULT};
    EXPECT_TRUE(holds(gmo.StrucId, "GMO "));
    EXPECT_EQ(gmo.Version, 1);
    EXPECT_EQ(gmo.Options, 0);
    EXPECT_EQ(gmo.WaitInterval, 0);
    EXPECT_EQ(gmo.Signal1, 0);
    EXPECT_EQ(gmo.Signal2, 0);
    EXPECT_TRUE(isZero(gmo.ResolvedQName));
    EXPECT_EQ(gmo.MatchOptions, 3);
    EXPECT_EQ(gmo.GroupStatus, ' ');
    EXPECT_EQ(gmo.SegmentStatus, ' ');
    EXPECT_EQ(gmo.Segmentation, ' ');
    EXPECT_EQ(gmo.Reserved1, ' ');
    EXPECT_TRUE(isZero(gmo.MsgToken));
    EXPECT_EQ(gmo.ReturnedLength, -1);
    EXPECT_EQ(gmo.Reserved2, 0);
    EXPECT_EQ(gmo.MsgHandle, 0);
}

} // namespace
