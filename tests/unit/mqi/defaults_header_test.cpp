// What the default initialisers put into every field, figure by figure:
// the headers in message data.
#include "cmqc.h"

#include "default_fields.h"

#include <gtest/gtest.h>

namespace {

TEST(EveryFieldHasItsPublishedDefault, MQRFH)
{
    const MQRFH rfh = {MQRFH_DEFAULT};
    EXPECT_TRUE(holds(rfh.StrucId, "RFH "));
    EXPECT_EQ(rfh.Version, 1);
    EXPECT_EQ(rfh.StrucLength, 32);
    EXPECT_EQ(rfh.Encoding, 546);
    EXPECT_EQ(rfh.CodedCharSetId, 0);
    EXPECT_TRUE(isBlank(rfh.Format));
    EXPECT_EQ(rfh.Flags, 0);
}

TEST(EveryFieldHasItsPublishedDefault, MQRFH2)
{
    const MQRFH2 rfh2 = {MQRFH2_DEFAULT};
    EXPECT_TRUE(holds(rfh2.StrucId, "RFH "));
    EXPECT_EQ(rfh2.Version, 2);
    EXPECT_EQ(rfh2.StrucLength, 36);
    EXPECT_EQ(rfh2.Encoding, 546);
    EXPECT_EQ(rfh2.CodedCharSetId, -2);
    EXPECT_TRUE(isBlank(rfh2.Format));
    EXPECT_EQ(rfh2.Flags, 0);
    EXPECT_EQ(rfh2.NameValueCCSID, 1208);
}

TEST(EveryFieldHasItsPublishedDefault, MQDLH)
{
    const MQDLH dlh = {MQDLH_DEFAULT};
    EXPECT_TRUE(holds(dlh.StrucId, "DLH "));
    EXPECT_EQ(dlh.Version, 1);
    EXPECT_EQ(dlh.Reason, 0);
    EXPECT_TRUE(isZero(dlh.DestQName));
    EXPECT_TRUE(isZero(dlh.DestQMgrName));
    EXPECT_EQ(dlh.Encoding, 0);
    EXPECT_EQ(dlh.CodedCharSetId, 0);
    EXPECT_TRUE(isBlank(dlh.Format));
    EXPECT_EQ(dlh.PutApplType, 0);
    EXPECT_TRUE(isZero(dlh.PutApplName));
    EXPECT_TRUE(isZero(dlh.PutDate));
    EXPECT_TRUE(isZero(dlh.PutTime));
}

TEST(EveryFieldHasItsPublishedDefault, MQXQH)
{
    const MQXQH xqh = {MQXQH_DEFAULT};
    EXPECT_TRUE(holds(xqh.StrucId, "XQH "));
    EXPECT_EQ(xqh.Version, 1);
    EXPECT_TRUE(isZero(xqh.RemoteQName));
    EXPECT_TRUE(isZero(xqh.RemoteQMgrName));
    EXPECT_TRUE(holds(xqh.MsgDesc.StrucId, "MD  "));
    EXPECT_EQ(xqh.MsgDesc.Version, 1);
    EXPECT_EQ(xqh.MsgDesc.Report, 0);
    EXPECT_EQ(xqh.MsgDesc.MsgType, 8);
    EXPECT_EQ(xqh.MsgDesc.Expiry, -1);
    EXPECT_EQ(xqh.MsgDesc.Feedback, 0);
    EXPECT_EQ(xqh.MsgDesc.Encoding, 546);
    EXPECT_EQ(xqh.MsgDesc.CodedCharSetId, 0);
    EXPECT_TRUE(isBlank(xqh.MsgDesc.Format));
    EXPECT_EQ(xqh.MsgDesc.Priority, -1);
    EXPECT_EQ(xqh.MsgDesc.Persistence, 2);
    EXPECT_TRUE(isZero(xqh.MsgDesc.MsgId));
    EXPECT_TRUE(isZero(xqh.MsgDesc.CorrelId));
    EXPECT_EQ(xqh.MsgDesc.BackoutCount, 0);
    EXPECT_TRUE(isZero(xqh.MsgDesc.ReplyToQ));
    EXPECT_TRUE(isZero(xqh.MsgDesc.ReplyToQMgr));
    EXPECT_TRUE(isZero(xqh.MsgDesc.UserIdentifier));
    EXPECT_TRUE(isZero(xqh.MsgDesc.AccountingToken));
    EXPECT_TRUE(isZero(xqh.MsgDesc.ApplIdentityData));
    EXPECT_EQ(xqh.MsgDesc.PutApplType, 0);
    EXPECT_TRUE(isZero(xqh.MsgDesc.PutApplName));
    EXPECT_TRUE(isZero(xqh.MsgDesc.PutDate));
    EXPECT_TRUE(isZero(xqh.MsgDesc.PutTime));
    EXPECT_TRUE(isZero(xqh.MsgDesc.ApplOriginData));
}

TEST(EveryFieldHasItsPublishedDefault, MQDH)
{
    const MQDH dh = {MQDH_DEFAULT};
    EXPECT_TRUE(holds(dh.StrucId, "DH  "));
    EXPECT_EQ(dh.Version, 1);
    EXPECT_EQ(dh.StrucLength, 0);
    EXPECT_EQ(dh.Encoding, 0);
    EXPECT_EQ(dh.CodedCharSetId, 0);
    EXPECT_TRUE(isBlank(dh.Format));
    EXPECT_EQ(dh.Flags, 0);
    EXPECT_EQ(dh.PutMsgRecFields, 0);
    EXPECT_EQ(dh.RecsPresent, 0);
    EXPECT_EQ(dh.ObjectRecOffset, 0);
    EXPECT_EQ(dh.PutMsgRecOffset, 0);
}

TEST(EveryFieldHasItsPublishedDefault, MQTM)
{
    const MQTM tm = {MQTM_DEFAULT};
    EXPECT_TRUE(holds(tm.StrucId, "TM  "));
    EXPECT_EQ(tm.Version, 1);
    EXPECT_TRUE(isZero(tm.QName));
    EXPECT_TRUE(isZero(tm.ProcessName));
    EXPECT_TRUE(isZero(tm.TriggerData));
    EXPECT_EQ(tm.ApplType, 0);
    EXPECT_TRUE(isZero(tm.ApplId));
    EXPECT_TRUE(isZero(tm.EnvData));
    EXPECT_TRUE(isZero(tm.UserData));
}

TEST(EveryFieldHasItsPublishedDefault, MQTMC2)
{
    const MQTMC2 tmc2 = {MQTMC2_DEFAULT};
    EXPECT_TRUE(holds(tmc2.StrucId, "TMC "));
    EXPECT_TRUE(holds(tmc2.Version, "   2"));
    EXPECT_TRUE(isZero(tmc2.QName));
    EXPECT_TRUE(isZero(tmc2.ProcessName));
    EXPECT_TRUE(isZero(tmc2.TriggerData));
    EXPECT_TRUE(isZero(tmc2.ApplType));
    EXPECT_TRUE(isZero(tmc2.ApplId));
    EXPECT_TRUE(isZero(tmc2.EnvData));
    EXPECT_TRUE(isZero(tmc2.UserData));
    EXPECT_TRUE(isZero(tmc2.QMgrName));
}

} // namespace
