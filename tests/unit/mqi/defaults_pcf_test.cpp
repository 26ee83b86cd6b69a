// What the default initialisers put into every field, figure by figure:
// the PCF structures.
#include "cmqcfc.h"

#include "default_fields.h"

#include <gtest/gtest.h>

namespace {

TEST(EveryFieldHasItsPublishedDefault, MQCFH)
{
    const MQCFH cfh = {MQCFH_DEFAULT};
    EXPECT_EQ(cfh.Type, 1);
    EXPECT_EQ(cfh.StrucLength, 36);
    EXPECT_EQ(cfh.Version, 1);
    EXPECT_EQ(cfh.Command, 0);
    EXPECT_EQ(cfh.MsgSeqNumber, 1);
    EXPECT_EQ(cfh.Control, 1);
    EXPECT_EQ(cfh.CompCode, 0);
    EXPECT_EQ(cfh.Reason, 0);
    EXPECT_EQ(cfh.ParameterCount, 0);
}

TEST(EveryFieldHasItsPublishedDefault, MQCFIN)
{
    const MQCFIN cfin = {MQCFIN_DEFAULT};
    EXPECT_EQ(cfin.Type, 3);
    EXPECT_EQ(cfin.StrucLength, 16);
    EXPECT_EQ(cfin.Parameter, 0);
    EXPECT_EQ(cfin.Value, 0);
}

TEST(EveryFieldHasItsPublishedDefault, MQCFIN64)
{
    const MQCFIN64 cfin64 = {MQCFIN64_DEFAULT};
    EXPECT_EQ(cfin64.Type, 23);
    EXPECT_EQ(cfin64.StrucLength, 24);
    EXPECT_EQ(cfin64.Parameter, 0);
    EXPECT_EQ(cfin64.Reserved, 0);
    EXPECT_EQ(cfin64.Value, 0);
}

TEST(EveryFieldHasItsPublishedDefault, MQCFIL)
{
    const MQCFIL cfil = {MQCFIL_DEFAULT};
    EXPECT_EQ(cfil.Type, 5);
    EXPECT_EQ(cfil.StrucLength, 16);
    EXPECT_EQ(cfil.Parameter, 0);
    EXPECT_EQ(cfil.Count, 0);
    EXPECT_TRUE(isZero(cfil.Values));
}

TEST(EveryFieldHasItsPublishedDefault, MQCFIL64)
{
    const MQCFIL64 cfil64 = {MQCFIL64_DEFAULT};
    EXPECT_EQ(cfil64.Type, 25);
    EXPECT_EQ(cfil64.StrucLength, 16);
    EXPECT_EQ(cfil64.Parameter, 0);
    EXPECT_EQ(cfil64.Count, 0);
    EXPECT_TRUE(isZero(cfil64.Values));
}

TEST(EveryFieldHasItsPublishedDefault, MQCFST)
{
    const MQCFST cfst = {MQCFST_DEFAULT};
    EXPECT_EQ(cfst.Type, 4);
    EXPECT_EQ(cfst.StrucLength, 20);
    EXPECT_EQ(cfst.Parameter, 0);
    EXPECT_EQ(cfst.CodedCharSetId, 0);
    EXPECT_EQ(cfst.StringLength, 0);
    EXPECT_TRUE(isZero(cfst.String));
}

TEST(EveryFieldHasItsPublishedDefault, MQCFSL)
{
    const MQCFSL cfsl = {MQCFSL_DEFAULT};
    EXPECT_EQ(cfsl.Type, 6);
    EXPECT_EQ(cfsl.StrucLength, 24);
    EXPECT_EQ(cfsl.Parameter, 0);
    EXPECT_EQ(cfsl.CodedCharSetId, 0);
    EXPECT_EQ(cfsl.Count, 0);
    EXPECT_EQ(cfsl.StringLength, 0);
    EXPECT_TRUE(isZero(cfsl.Strings));
}

TEST(EveryFieldHasItsPublishedDefault, MQCFBS)
{
    const MQCFBS cfbs = {MQCFBS_DEFAULT};
    EXPECT_EQ(cfbs.Type, 9);
    EXPECT_EQ(cfbs.StrucLength, 16);
    EXPECT_EQ(cfbs.Parameter, 0);
    EXPECT_EQ(cfbs.StringLength, 0);
    EXPECT_TRUE(isZero(cfbs.String));
}

TEST(EveryFieldHasItsPublishedDefault, MQCFIF)
{
    const MQCFIF cfif = {MQCFIF_DEFAULT};
    EXPECT_EQ(cfif.Type, 13);
    EXPECT_EQ(cfif.StrucLength, 20);
    EXPECT_EQ(cfif.Parameter, 0);
    EXPECT_EQ(cfif.Operator, 0);
    EXPECT_EQ(cfif.FilterValue, 0);
}

TEST(EveryFieldHasItsPublishedDefault, MQCFSF)
{
    const MQCFSF cfsf = {MQCFSF_DEFAULT};
    EXPECT_EQ(cfsf.Type, 14);
    EXPECT_EQ(cfsf.StrucLength, 24);
    EXPECT_EQ(cfsf.Parameter, 0);
    EXPECT_EQ(cfsf.Operator, 0);
    EXPECT_EQ(cfsf.CodedCharSetId, 0);
    EXPECT_EQ(cfsf.FilterValueLength, 0);
    EXPECT_TRUE(isZero(cfsf.FilterValue));
}

TEST(EveryFieldHasItsPublishedDefault, MQCFBF)
{
    const MQCFBF cfbf = {MQCFBF_DEFAULT};
    EXPECT_EQ(cfbf.Type, 15);
    EXPECT_EQ(cfbf.StrucLength, 20);
    EXPECT_EQ(cfbf.Parameter, 0);
    EXPECT_EQ(cfbf.Operator, 0);
    EXPECT_EQ(cfbf.FilterValueLength, 0);
    EXPECT_TRUE(isZero(cfbf.FilterValue));
}

TEST(EveryFieldHasItsPublishedDefault, MQCFGR)
{
    const MQCFGR cfgr = {MQCFGR_DEFAULT};
    EXPECT_EQ(cfgr.Type, 20);
    EXPECT_EQ(cfgr.StrucLength, 16);
    EXPECT_EQ(cfgr.Parameter, 0);
    EXPECT_EQ(cfgr.ParameterCount, 0);
}

TEST(EveryFieldHasItsPublishedDefault, MQEPH)
{
    const MQEPH eph = {MQEPH_DEFAULT};
    EXPECT_TRUE(holds(eph.StrucId, "EPH "));
    EXPECT_EQ(eph.Version, 1);
    EXPECT_EQ(eph.StrucLength, 68);
    EXPECT_EQ(eph.Encoding, 0);
    EXPECT_EQ(eph.CodedCharSetId, 0);
    EXPECT_TRUE(isBlank(eph.Format));
    EXPECT_EQ(eph.Flags, 0);
    EXPECT_EQ(eph.PCFHeader.Type, 1);
    EXPECT_EQ(eph.PCFHeader.StrucLength, 36);
    EXPECT_EQ(eph.PCFHeader.Version, 3);
    EXPECT_EQ(eph.PCFHeader.Command, 0);
    EXPECT_EQ(eph.PCFHeader.MsgSeqNumber, 1);
    EXPECT_EQ(eph.PCFHeader.Control, 1);
    EXPECT_EQ(eph.PCFHeader.CompCode, 0);
    EXPECT_EQ(eph.PCFHeader.Reason, 0);
    EXPECT_EQ(eph.PCFHeader.ParameterCount, 0);
}

} // namespace
