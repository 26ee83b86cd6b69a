// What the default initialisers of the channel definition put into every field, figure by figure.
#include "cmqxc.h"

#include "default_fields.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::Each;
using testing::ElementsAre;

TEST(EveryFieldHasItsPublishedDefault, MQCDOfASender)
{
    const MQCD cd = {MQCD_DEFAULT};
    EXPECT_TRUE(isZero(cd.ChannelName));
    EXPECT_EQ(cd.Version, 6);
    EXPECT_EQ(cd.ChannelType, 1);
    EXPECT_EQ(cd.TransportType, 1);
    EXPECT_TRUE(isZero(cd.Desc));
    EXPECT_TRUE(isZero(cd.QMgrName));
    EXPECT_TRUE(isZero(cd.XmitQName));
    EXPECT_TRUE(isZero(cd.ShortConnectionName));
    EXPECT_TRUE(isZero(cd.MCAName));
    EXPECT_TRUE(isZero(cd.ModeName));
    EXPECT_TRUE(isZero(cd.TpName));
    EXPECT_EQ(cd.BatchSize, 50);
    EXPECT_EQ(cd.DiscInterval, 6000);
    EXPECT_EQ(cd.ShortRetryCount, 10);
    EXPECT_EQ(cd.ShortRetryInterval, 60);
    EXPECT_EQ(cd.LongRetryCount, 999999999);
    EXPECT_EQ(cd.LongRetryInterval, 1200);
    EXPECT_TRUE(isZero(cd.SecurityExit));
    EXPECT_TRUE(isZero(cd.MsgExit));
    EXPECT_TRUE(isZero(cd.SendExit));
    EXPECT_TRUE(isZero(cd.ReceiveExit));
    EXPECT_EQ(cd.SeqNumberWrap, 999999999);
    EXPECT_EQ(cd.MaxMsgLength, 4194304);
    EXPECT_EQ(cd.PutAuthority, 1);
    EXPECT_EQ(cd.DataConversion, 0);
    EXPECT_TRUE(isZero(cd.SecurityUserData));
    EXPECT_TRUE(isZero(cd.MsgUserData));
    EXPECT_TRUE(isZero(cd.SendUserData));
    EXPECT_TRUE(isZero(cd.ReceiveUserData));
    EXPECT_TRUE(isZero(cd.UserIdentifier));
    EXPECT_TRUE(isZero(cd.Password));
    EXPECT_TRUE(isZero(cd.MCAUserIdentifier));
    EXPECT_EQ(cd.MCAType, 1);
    EXPECT_TRUE(isZero(cd.ConnectionName));
    EXPECT_TRUE(isZero(cd.RemoteUserIdentifier));
    EXPECT_TRUE(isZero(cd.RemotePassword));
    EXPECT_TRUE(isZero(cd.MsgRetryExit));
    EXPECT_TRUE(isZero(cd.MsgRetryUserData));
    EXPECT_EQ(cd.MsgRetryCount, 10);
    EXPECT_EQ(cd.MsgRetryInterval, 1000);
    EXPECT_EQ(cd.HeartbeatInterval, 300);
    EXPECT_EQ(cd.BatchInterval, 0);
    EXPECT_EQ(cd.NonPersistentMsgSpeed, 2);
    EXPECT_EQ(cd.StrucLength, MQ_BY_WIDTH(1944, 1992));
    EXPECT_EQ(cd.ExitNameLength, 128);
    EXPECT_EQ(cd.ExitDataLength, 32);
    EXPECT_EQ(cd.MsgExitsDefined, 0);
    EXPECT_EQ(cd.SendExitsDefined, 0);
    EXPECT_EQ(cd.ReceiveExitsDefined, 0);
    EXPECT_EQ(cd.MsgExitPtr, nullptr);
    EXPECT_EQ(cd.MsgUserDataPtr, nullptr);
    EXPECT_EQ(cd.SendExitPtr, nullptr);
    EXPECT_EQ(cd.SendUserDataPtr, nullptr);
    EXPECT_EQ(cd.ReceiveExitPtr, nullptr);
    EXPECT_EQ(cd.ReceiveUserDataPtr, nullptr);
    EXPECT_EQ(cd.ClusterPtr, nullptr);
    EXPECT_EQ(cd.ClustersDefined, 0);
    EXPECT_EQ(cd.NetworkPriority, 0);
    EXPECT_EQ(cd.LongMCAUserIdLength, 0);
    EXPECT_EQ(cd.LongRemoteUserIdLength, 0);
    EXPECT_EQ(cd.LongMCAUserIdPtr, nullptr);
    EXPECT_EQ(cd.LongRemoteUserIdPtr, nullptr);
    EXPECT_TRUE(isZero(cd.MCASecurityId));
    EXPECT_TRUE(isZero(cd.RemoteSecurityId));
    EXPECT_TRUE(isZero(cd.SSLCipherSpec));
    EXPECT_EQ(cd.SSLPeerNamePtr, nullptr);
    EXPECT_EQ(cd.SSLPeerNameLength, 0);
    EXPECT_EQ(cd.SSLClientAuth, 0);
    EXPECT_EQ(cd.KeepAliveInterval, -1);
    EXPECT_TRUE(isZero(cd.LocalAddress));
    EXPECT_EQ(cd.BatchHeartbeat, 0);
    EXPECT_THAT(cd.HdrCompList, ElementsAre(0, -1));
    EXPECT_THAT(cd.MsgCompList, ElementsAre(0, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1));
    EXPECT_EQ(cd.CLWLChannelRank, 0);
    EXPECT_EQ(cd.CLWLChannelPriority, 0);
    EXPECT_EQ(cd.CLWLChannelWeight, 50);
    EXPECT_EQ(cd.ChannelMonitoring, 0);
    EXPECT_EQ(cd.ChannelStatistics, 0);
    EXPECT_EQ(cd.SharingConversations, 10);
    EXPECT_EQ(cd.PropertyControl, 0);
    EXPECT_EQ(cd.MaxInstances, 999999999);
    EXPECT_EQ(cd.MaxInstancesPerClient, 999999999);
    EXPECT_EQ(cd.ClientChannelWeight, 0);
    EXPECT_EQ(cd.ConnectionAffinity, 1);
    EXPECT_EQ(cd.BatchDataLimit, 5000);
    EXPECT_EQ(cd.UseDLQ, 2);
    EXPECT_EQ(cd.DefReconnect, 0);
    EXPECT_TRUE(isZero(cd.CertificateLabel));
    EXPECT_EQ(cd.SPLProtection, 0);
}

TEST(EveryFieldHasItsPublishedDefault, MQCDOfAClientConnection)
{
    const MQCD cd = {MQCD_CLIENT_CONN_DEFAULT};
    EXPECT_TRUE(isZero(cd.ChannelName));
    EXPECT_EQ(cd.Version, 6);
    EXPECT_EQ(cd.ChannelType, 6);
    EXPECT_EQ(cd.TransportType, 2);
    EXPECT_TRUE(isZero(cd.Desc));
    EXPECT_TRUE(isZero(cd.QMgrName));
    EXPECT_TRUE(isZero(cd.XmitQName));
    EXPECT_TRUE(isZero(cd.ShortConnectionName));
    EXPECT_TRUE(isZero(cd.MCAName));
    EXPECT_TRUE(isZero(cd.ModeName));
    EXPECT_TRUE(isZero(cd.TpName));
    EXPECT_EQ(cd.BatchSize, 50);
    EXPECT_EQ(cd.DiscInterval, 6000);
    EXPECT_EQ(cd.ShortRetryCount, 10);
    EXPECT_EQ(cd.ShortRetryInterval, 60);
    EXPECT_EQ(cd.LongRetryCount, 999999999);
    EXPECT_EQ(cd.LongRetryInterval, 1200);
    EXPECT_TRUE(isZero(cd.SecurityExit));
    EXPECT_TRUE(isZero(cd.MsgExit));
    EXPECT_TRUE(isZero(cd.SendExit));
    EXPECT_TRUE(isZero(cd.ReceiveExit));
    EXPECT_EQ(cd.SeqNumberWrap, 999999999);
    EXPECT_EQ(cd.MaxMsgLength, 4194304);
    EXPECT_EQ(cd.PutAuthority, 1);
    EXPECT_EQ(cd.DataConversion, 0);
    EXPECT_TRUE(isZero(cd.SecurityUserData));
    EXPECT_TRUE(isZero(cd.MsgUserData));
    EXPECT_TRUE(isZero(cd.SendUserData));
    EXPECT_TRUE(isZero(cd.ReceiveUserData));
    EXPECT_TRUE(isZero(cd.UserIdentifier));
    EXPECT_TRUE(isZero(cd.Password));
    EXPECT_TRUE(isZero(cd.MCAUserIdentifier));
    EXPECT_EQ(cd.MCAType, 1);
    EXPECT_TRUE(isZero(cd.ConnectionName));
    EXPECT_TRUE(isZero(cd.RemoteUserIdentifier));
    EXPECT_TRUE(isZero(cd.RemotePassword));
    EXPECT_TRUE(isZero(cd.MsgRetryExit));
    EXPECT_TRUE(isZero(cd.MsgRetryUserData));
    EXPECT_EQ(cd.MsgRetryCount, 10);
    EXPECT_EQ(cd.MsgRetryInterval, 1000);
    EXPECT_EQ(cd.HeartbeatInterval, 1);
    EXPECT_EQ(cd.BatchInterval, 0);
    EXPECT_EQ(cd.NonPersistentMsgSpeed, 2);
    EXPECT_EQ(cd.StrucLength, MQ_BY_WIDTH(1944, 1992));
    EXPECT_EQ(cd.ExitNameLength, 128);
    EXPECT_EQ(cd.ExitDataLength, 32);
    EXPECT_EQ(cd.MsgExitsDefined, 0);
    EXPECT_EQ(cd.SendExitsDefined, 0);
    EXPECT_EQ(cd.ReceiveExitsDefined, 0);
    EXPECT_EQ(cd.MsgExitPtr, nullptr);
    EXPECT_EQ(cd.MsgUserDataPtr, nullptr);
    EXPECT_EQ(cd.SendExitPtr, nullptr);
    EXPECT_EQ(cd.SendUserDataPtr, nullptr);
    EXPECT_EQ(cd.ReceiveExitPtr, nullptr);
    EXPECT_EQ(cd.ReceiveUserDataPtr, nullptr);
    EXPECT_EQ(cd.ClusterPtr, nullptr);
    EXPECT_EQ(cd.ClustersDefined, 0);
    EXPECT_EQ(cd.NetworkPriority, 0);
    EXPECT_EQ(cd.LongMCAUserIdLength, 0);
    EXPECT_EQ(cd.LongRemoteUserIdLength, 0);
    EXPECT_EQ(cd.LongMCAUserIdPtr, nullptr);
    EXPECT_EQ(cd.LongRemoteUserIdPtr, nullptr);
    EXPECT_TRUE(isZero(cd.MCASecurityId));
    EXPECT_TRUE(isZero(cd.RemoteSecurityId));
    EXPECT_TRUE(isZero(cd.SSLCipherSpec));
    EXPECT_EQ(cd.SSLPeerNamePtr, nullptr);
    EXPECT_EQ(cd.SSLPeerNameLength, 0);
    EXPECT_EQ(cd.SSLClientAuth, 0);
    EXPECT_EQ(cd.KeepAliveInterval, -1);
    EXPECT_TRUE(isZero(cd.LocalAddress));
    EXPECT_EQ(cd.BatchHeartbeat, 0);
    EXPECT_THAT(cd.HdrCompList, ElementsAre(-1, -1));
    EXPECT_THAT(cd.MsgCompList, Each(-1));
    EXPECT_EQ(cd.CLWLChannelRank, 0);
    EXPECT_EQ(cd.CLWLChannelPriority, 0);
    EXPECT_EQ(cd.CLWLChannelWeight, 50);
    EXPECT_EQ(cd.ChannelMonitoring, 0);
    EXPECT_EQ(cd.ChannelStatistics, 0);
    EXPECT_EQ(cd.SharingConversations, 10);
    EXPECT_EQ(cd.PropertyControl, 0);
    EXPECT_EQ(cd.MaxInstances, 999999999);
    EXPECT_EQ(cd.MaxInstancesPerClient, 999999999);
    EXPECT_EQ(cd.ClientChannelWeight, 0);
    EXPECT_EQ(cd.ConnectionAffinity, 1);
    EXPECT_EQ(cd.BatchDataLimit, 5000);
    EXPECT_EQ(cd.UseDLQ, 2);
    EXPECT_EQ(cd.DefReconnect, 0);
    EXPECT_TRUE(isZero(cd.CertificateLabel));
    EXPECT_EQ(cd.SPLProtection, 0);
}

} // namespace
