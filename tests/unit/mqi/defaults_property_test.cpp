// What the default initialisers put into every field, figure by figure:
// the structures of properties, publish/subscribe and status.
#include "cmqc.h"

#include "default_fields.h"

#include <gtest/gtest.h>

namespace {

TEST(EveryFieldHasItsPublishedDefault, MQCMHO)
{
    const MQCMHO cmho = {MQCMHO_DEFAULT};
    EXPECT_TRUE(holds(cmho.StrucId, "CMHO"));
    EXPECT_EQ(cmho.Version, 1);
    EXPECT_EQ(cmho.Options, 0);
}

TEST(EveryFieldHasItsPublishedDefault, MQDMHO)
{
    const MQDMHO dmho = {MQDMHO_DEFAULT};
    EXPECT_TRUE(holds(dmho.StrucId, "DMHO"));
    EXPECT_EQ(dmho.Version, 1);
    EXPECT_EQ(dmho.Options, 0);
}

TEST(EveryFieldHasItsPublishedDefault, MQSMPO)
{
    const MQSMPO smpo = {MQSMPO_DEFAULT};
    EXPECT_TRUE(holds(smpo.StrucId, "SMPO"));
    EXPECT_EQ(smpo.Version, 1);
    EXPECT_EQ(smpo.Options, 0);
    EXPECT_EQ(smpo.ValueEncoding, 546);
    EXPECT_EQ(smpo.ValueCCSID, -3);
}

TEST(EveryFieldHasItsPublishedDefault, MQIMPO)
{
    const MQIMPO impo = {MQIMPO_DEFAULT};
    EXPECT_TRUE(holds(impo.StrucId, "IMPO"));
    EXPECT_EQ(impo.Version, 1);
    EXPECT_EQ(impo.Options, 0);
    EXPECT_EQ(impo.RequestedEncoding, 546);
    EXPECT_EQ(impo.RequestedCCSID, -3);
    EXPECT_EQ(impo.ReturnedEncoding, 546);
    EXPECT_EQ(impo.ReturnedCCSID, 0);
    EXPECT_EQ(impo.Reserved1, 0);
    EXPECT_TRUE(isEmptyString(impo.ReturnedName));
    EXPECT_TRUE(isZero(impo.TypeString));
}

TEST(EveryFieldHasItsPublishedDefault, MQDMPO)
{
    const MQDMPO dmpo = {MQDMPO_DEFAULT};
    EXPECT_TRUE(holds(dmpo.StrucId, "DMPO"));
    EXPECT_EQ(dmpo.Version, 1);
    EXPECT_EQ(dmpo.Options, 0);
}

TEST(EveryFieldHasItsPublishedDefault, MQPD)
{
    const MQPD pd = {MQPD_DEFAULT};
    EXPECT_TRUE(holds(pd.StrucId, "PD  "));
    EXPECT_EQ(pd.Version, 1);
    EXPECT_EQ(pd.Options, 0);
    EXPECT_EQ(pd.Support, 1);
    EXPECT_EQ(pd.Context, 0);
    EXPECT_EQ(pd.CopyOptions, 22);
}

TEST(EveryFieldHasItsPublishedDefault, MQBMHO)
{
    const MQBMHO bmho = {MQBMHO_DEFAULT};
    EXPECT_TRUE(holds(bmho.StrucId, "BMHO"));
    EXPECT_EQ(bmho.Version, 1);
    EXPECT_EQ(bmho.Options, 1);
}

TEST(EveryFieldHasItsPublishedDefault, MQMHBO)
{
    const MQMHBO mhbo = {MQMHBO_DEFAULT};
    EXPECT_TRUE(holds(mhbo.StrucId, "MHBO"));
    EXPECT_EQ(mhbo.Version, 1);
    EXPECT_EQ(mhbo.Options, 1);
}

TEST(EveryFieldHasItsPublishedDefault, MQSD)
{
    const MQSD sd = {MQSD_DEFAULT};
    EXPECT_TRUE(holds(sd.StrucId, "SD  "));
    EXPECT_EQ(sd.Version, 1);
    EXPECT_EQ(sd.Options, 0);
    EXPECT_TRUE(isZero(sd.ObjectName));
    EXPECT_TRUE(isZero(sd.AlternateUserId));
    EXPECT_TRUE(isZero(sd.AlternateSecurityId));
    EXPECT_EQ(sd.SubExpiry, -1);
    EXPECT_TRUE(isEmptyString(sd.ObjectString));
    EXPECT_TRUE(isEmptyString(sd.SubName));
    EXPECT_TRUE(isEmptyString(sd.SubUserData));
    EXPECT_TRUE(isZero(sd.SubCorrelId));
    EXPECT_EQ(sd.PubPriority, -3);
    EXPECT_TRUE(isZero(sd.PubAccountingToken));
    EXPECT_TRUE(isZero(sd.PubApplIdentityData));
    EXPECT_TRUE(isEmptyString(sd.SelectionString));
    EXPECT_EQ(sd.SubLevel, 1);
    EXPECT_TRUE(isEmptyString(sd.ResObjectString));
}

TEST(EveryFieldHasItsPublishedDefault, MQSRO)
{
    const MQSRO sro = {MQSRO_DEFAULT};
    EXPECT_TRUE(holds(sro.StrucId, "SRO "));
    EXPECT_EQ(sro.Version, 1);
    EXPECT_EQ(sro.Options, 0);
    EXPECT_EQ(sro.NumPubs, 0);
}

TEST(EveryFieldHasItsPublishedDefault, MQSTS)
{
    const MQSTS sts = {MQSTS_DEFAULT};
    EXPECT_TRUE(holds(sts.StrucId, "STAT"));
    EXPECT_EQ(sts.Version, 1);
    EXPECT_EQ(sts.CompCode, 0);
    EXPECT_EQ(sts.Reason, 0);
    EXPECT_EQ(sts.PutSuccessCount, 0);
    EXPECT_EQ(sts.PutWarningCount, 0);
    EXPECT_EQ(sts.PutFailureCount, 0);
    EXPECT_EQ(sts.ObjectType, 1);
    EXPECT_TRUE(isZero(sts.ObjectName));
    EXPECT_TRUE(isZero(sts.ObjectQMgrName));
    EXPECT_TRUE(isZero(sts.ResolvedObjectName));
    EXPECT_TRUE(isZero(sts.ResolvedQMgrName));
    EXPECT_TRUE(isEmptyString(sts.ObjectString));
    EXPECT_TRUE(isEmptyString(sts.SubName));
    EXPECT_EQ(sts.OpenOptions, 0);
    EXPECT_EQ(sts.SubOptions, 0);
}

} // namespace
