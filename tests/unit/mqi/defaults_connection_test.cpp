// What the default initialisers put into every field, figure by figure:
// the structures of connections, units of work and callbacks.
#include "cmqc.h"

#include "default_fields.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;

TEST(EveryFieldHasItsPublishedDefault, MQCHARV)
{
    const MQCHARV string = {MQCHARV_DEFAULT};
    EXPECT_EQ(string.VSPtr, nullptr);
    EXPECT_EQ(string.VSOffset, 0);
    EXPECT_EQ(string.VSBufSize, 0);
    EXPECT_EQ(string.VSLength, 0);
    EXPECT_EQ(string.VSCCSID, -3);
}

TEST(EveryFieldHasItsPublishedDefault, MQBNO)
{
    const MQBNO bno = {MQBNO_DEFAULT};
    EXPECT_TRUE(holds(bno.StrucId, "BNO "));
    EXPECT_EQ(bno.Version, 1);
    EXPECT_EQ(bno.ApplType, 0);
    EXPECT_EQ(bno.Timeout, -1);
    EXPECT_EQ(bno.Options, 0);
}

TEST(EveryFieldHasItsPublishedDefault, MQCSP)
{
    const MQCSP csp = {MQCSP_DEFAULT};
    EXPECT_TRUE(holds(csp.StrucId, "CSP "));
    EXPECT_EQ(csp.Version, 1);
    EXPECT_EQ(csp.AuthenticationType, 0);
    EXPECT_TRUE(isZero(csp.Reserved1));
    EXPECT_EQ(csp.CSPUserIdPtr, nullptr);
    EXPECT_EQ(csp.CSPUserIdOffset, 0);
    EXPECT_EQ(csp.CSPUserIdLength, 0);
    EXPECT_TRUE(isZero(csp.Reserved2));
    EXPECT_EQ(csp.CSPPasswordPtr, nullptr);
    EXPECT_EQ(csp.CSPPasswordOffset, 0);
    EXPECT_EQ(csp.CSPPasswordLength, 0);
}

TEST(EveryFieldHasItsPublishedDefault, MQAIR)
{
    const MQAIR air = {MQAIR_DEFAULT};
    EXPECT_TRUE(holds(air.StrucId, "AIR "));
    EXPECT_EQ(air.Version, 1);
    EXPECT_EQ(air.AuthInfoType, 1);
    EXPECT_TRUE(isZero(air.AuthInfoConnName));
    EXPECT_EQ(air.LDAPUserNamePtr, nullptr);
    EXPECT_EQ(air.LDAPUserNameOffset, 0);
    EXPECT_EQ(air.LDAPUserNameLength, 0);
    EXPECT_TRUE(isZero(air.LDAPPassword));
    EXPECT_TRUE(isZero(air.OCSPResponderURL));
}

TEST(EveryFieldHasItsPublishedDefault, MQSCO)
{
    const MQSCO sco = {MQSCO_DEFAULT};
    EXPECT_TRUE(holds(sco.StrucId, "SCO "));
    EXPECT_EQ(sco.Version, 1);
    EXPECT_TRUE(isZero(sco.KeyRepository));
    EXPECT_TRUE(isZero(sco.CryptoHardware));
    EXPECT_EQ(sco.AuthInfoRecCount, 0);
    EXPECT_EQ(sco.AuthInfoRecOffset, 0);
    EXPECT_EQ(sco.AuthInfoRecPtr, nullptr);
    EXPECT_EQ(sco.KeyResetCount, 0);
    EXPECT_EQ(sco.FipsRequired, 0);
    EXPECT_THAT(sco.EncryptionPolicySuiteB, ElementsAre(1, 0, 0, 0));
    EXPECT_EQ(sco.CertificateValPolicy, 0);
    EXPECT_TRUE(isZero(sco.CertificateLabel));
}

TEST(EveryFieldHasItsPublishedDefault, MQCNO)
{
    const MQCNO cno = {MQCNO_DEFAULT};
    EXPECT_TRUE(holds(cno.StrucId, "CNO "));
    EXPECT_EQ(cno.Version, 1);
    EXPECT_EQ(cno.Options, 0);
    EXPECT_EQ(cno.ClientConnOffset, 0);
    EXPECT_EQ(cno.ClientConnPtr, nullptr);
    EXPECT_TRUE(isZero(cno.ConnTag));
    EXPECT_EQ(cno.SSLConfigPtr, nullptr);
    EXPECT_EQ(cno.SSLConfigOffset, 0);
    EXPECT_TRUE(isZero(cno.ConnectionId));
    EXPECT_EQ(cno.SecurityParmsOffset, 0);
    EXPECT_EQ(cno.SecurityParmsPtr, nullptr);
    EXPECT_EQ(cno.CCDTUrlPtr, nullptr);
    EXPECT_EQ(cno.CCDTUrlOffset, 0);
    EXPECT_EQ(cno.CCDTUrlLength, 0);
    EXPECT_TRUE(isZero(cno.Reserved));
    EXPECT_TRUE(isBlank(cno.ApplName));
    EXPECT_TRUE(isZero(cno.Reserved2));
    EXPECT_EQ(cno.BalanceParmsPtr, nullptr);
    EXPECT_EQ(cno.BalanceParmsOffset, 0);
    EXPECT_TRUE(isZero(cno.Reserved3));
}

TEST(EveryFieldHasItsPublishedDefault, MQBO)
{
    const MQBO bo = {MQBO_DEFAULT};
    EXPECT_TRUE(holds(bo.StrucId, "BO  "));
    EXPECT_EQ(bo.Version, 1);
    EXPECT_EQ(bo.Options, 0);
}

TEST(EveryFieldHasItsPublishedDefault, MQCBD)
{
    const MQCBD cbd = {MQCBD_DEFAULT};
    EXPECT_TRUE(holds(cbd.StrucId, "CBD "));
    EXPECT_EQ(cbd.Version, 1);
    EXPECT_EQ(cbd.CallbackType, 1);
    EXPECT_EQ(cbd.Options, 0);
    EXPECT_EQ(cbd.CallbackArea, nullptr);
    EXPECT_EQ(cbd.CallbackFunction, nullptr);
    EXPECT_TRUE(isZero(cbd.CallbackName));
    EXPECT_EQ(cbd.MaxMsgLength, -1);
}

TEST(EveryFieldHasItsPublishedDefault, MQCTLO)
{
    const MQCTLO ctlo = {MQCTLO_DEFAULT};
    EXPECT_TRUE(holds(ctlo.StrucId, "CTLO"));
    EXPECT_EQ(ctlo.Version, 1);
    EXPECT_EQ(ctlo.Options, 0);
    EXPECT_EQ(ctlo.Reserved, -1);
    EXPECT_EQ(ctlo.ConnectionArea, nullptr);
}

} // namespace
