// The template of the run parameter record.

#include "RunParams.h"

#include <gtest/gtest.h>

#include <string>

namespace {

const RunParams &record = DEFAULT_RUN_PARAMS;

template <std::size_t Size>
std::string text(const char (&field)[Size])
{
    return {field, Size};
}

} // namespace

TEST(DefaultRecord, HasNoTexts)
{
    for (const char *const RunParams::*field :
         {&RunParams::QMgrName,      &RunParams::QName,         &RunParams::MsgText,
          &RunParams::MsgHex,        &RunParams::InputFile,     &RunParams::OutputFile,
          &RunParams::OutputQName,   &RunParams::InputQName,    &RunParams::OutputDir,
          &RunParams::InputDir,      &RunParams::StopApiName,   &RunParams::LogicalMsgDelimiter,
          &RunParams::SetList,       &RunParams::InqList,       &RunParams::SetMpList,
          &RunParams::ProcessName,   &RunParams::NamelistName,  &RunParams::PcfFile,
          &RunParams::NameValueData, &RunParams::ObjectRecList, &RunParams::DynamicQName,
          &RunParams::PutMsgRecList, &RunParams::SyncStartFile, &RunParams::OcspUrlList}) {
        EXPECT_EQ(record.*field, nullptr);
    }
}

TEST(DefaultRecord, HasNumbersOtherThanZeroForThese)
{
    EXPECT_EQ(record.MsgLength, -1);
    EXPECT_EQ(record.MaxMsgSize, 12000);
    EXPECT_EQ(record.DisplaySize, 128);
    EXPECT_EQ(record.SegmentSize, -1);
    EXPECT_EQ(record.ConnLoopCount, 1);
    EXPECT_EQ(record.DataEncoding, 546);
}

TEST(DefaultRecord, HasZeroForTheOtherNumbers)
{
    for (const MQLONG RunParams::*field : {&RunParams::GetRepeatedly,
                                           &RunParams::ForceBackout,
                                           &RunParams::MsgCount,
                                           &RunParams::IntervalMs,
                                           &RunParams::BrowseMode,
                                           &RunParams::DumpMode,
                                           &RunParams::OutputForm,
                                           &RunParams::UseRfh2,
                                           &RunParams::MatchCorrelToMsgId,
                                           &RunParams::InheritMd,
                                           &RunParams::KeepHeaders,
                                           &RunParams::SkipDisc,
                                           &RunParams::WaitMs,
                                           &RunParams::ContinueOnConnFail,
                                           &RunParams::AppendCounter,
                                           &RunParams::ConnRetryCount,
                                           &RunParams::ApiTrace,
                                           &RunParams::GlobalUowMode,
                                           &RunParams::SyncpointFlag,
                                           &RunParams::UseConnX,
                                           &RunParams::YieldAfterCall,
                                           &RunParams::OpenOptions,
                                           &RunParams::CloseOptions,
                                           &RunParams::DestCount,
                                           &RunParams::CbOperation,
                                           &RunParams::OutputHobj,
                                           &RunParams::InputHobj,
                                           &RunParams::ObjectHobj,
                                           &RunParams::DisplayForm,
                                           &RunParams::ObjectTypeGiven}) {
        EXPECT_EQ(record.*field, 0);
    }
    EXPECT_EQ(record.ThreadCount, 0);
    EXPECT_EQ(record.InnerConnThreadCount, 0);
    EXPECT_EQ(record.ThreadId, 0);
    EXPECT_EQ(record.MdFieldsSet, 0u);
    EXPECT_EQ(record.VersionsSet, 0u);
    EXPECT_EQ(record.MsgHandle, 0);
}

TEST(DefaultRecord, HasNoRunTimeStorage)
{
    EXPECT_EQ(record.ResponseRecs, nullptr);
    EXPECT_EQ(record.DirCursor, nullptr);
    EXPECT_EQ(record.OutputLock, nullptr);
    EXPECT_EQ(text(record.DataFormat), "        ");
}

TEST(DefaultRecord, HasAClientChannelOfVersionSix)
{
    EXPECT_EQ(record.Cno.Version, 1);
    EXPECT_EQ(record.Cno.Options, 0);
    EXPECT_EQ(record.Cd.Version, 6);
    EXPECT_EQ(record.Cd.ChannelType, MQCHT_CLNTCONN);
    EXPECT_EQ(record.Cd.TransportType, MQXPT_TCP);
    EXPECT_EQ(record.Cd.ConnectionName[0], '\0');
    EXPECT_EQ(record.Cd.ChannelName[0], '\0');
}

TEST(DefaultRecord, HasAChannelOfTheSizeOfVersionTwelve)
{
    EXPECT_EQ(sizeof record.Cd, sizeof(void *) == 4 ? 1944u : 1992u);
}

TEST(DefaultRecord, HasADescriptorOfVersionOne)
{
    EXPECT_EQ(record.Md.Version, 1);
    EXPECT_EQ(record.Md.MsgType, MQMT_DATAGRAM);
    EXPECT_EQ(record.Md.Expiry, -1);
    EXPECT_EQ(record.Md.Encoding, 546);
    EXPECT_EQ(record.Md.Priority, -1);
    EXPECT_EQ(record.Md.Persistence, 2);
    EXPECT_EQ(text(record.Md.Format), "        ");
}

TEST(DefaultRecord, HasAnRfh2OfVersionTwo)
{
    EXPECT_EQ(record.Rfh2.Version, 2);
    EXPECT_EQ(record.Rfh2.StrucLength, 36);
    EXPECT_EQ(record.Rfh2.Encoding, 546);
    EXPECT_EQ(record.Rfh2.CodedCharSetId, -2);
    EXPECT_EQ(record.Rfh2.NameValueCCSID, 1208);
    EXPECT_EQ(text(record.Rfh2.Format), "        ");
    EXPECT_EQ(record.Rfh2.Flags, 0);
}

TEST(DefaultRecord, HasAQueueDescriptorOfVersionOne)
{
    EXPECT_EQ(record.Od.Version, 1);
    EXPECT_EQ(record.Od.ObjectType, MQOT_Q);
    EXPECT_EQ(std::string(record.Od.DynamicQName, 6), std::string("AMQ.*\0", 6));
}

TEST(DefaultRecord, HasPutAndGetOptionsOfVersionOne)
{
    EXPECT_EQ(record.Pmo.Version, 1);
    EXPECT_EQ(record.Pmo.Options, 0);
    EXPECT_EQ(record.Gmo.Version, 1);
    EXPECT_EQ(record.Gmo.MatchOptions, MQMO_MATCH_MSG_ID + MQMO_MATCH_CORREL_ID);
    EXPECT_EQ(record.Gmo.WaitInterval, 0);
}

TEST(DefaultRecord, HasCredentialsAndTlsOfTheDeclaredVersions)
{
    EXPECT_EQ(record.Csp.Version, 1);
    EXPECT_EQ(record.Csp.AuthenticationType, 0);
    EXPECT_EQ(record.Sco.Version, 1);
    EXPECT_EQ(record.Sco.AuthInfoRecCount, 0);
    EXPECT_EQ(record.Air.Version, 1);
    EXPECT_EQ(sizeof record.Csp, sizeof(void *) == 4 ? 48u : 56u);
    EXPECT_EQ(sizeof record.Sco, sizeof(void *) == 4 ? 624u : 632u);
    EXPECT_EQ(sizeof record.Air, sizeof(void *) == 4 ? 576u : 584u);
}

TEST(DefaultRecord, HasACallbackForMessages)
{
    EXPECT_EQ(record.Cbd.CallbackType, MQCBT_MESSAGE_CONSUMER);
    EXPECT_EQ(record.Cbd.MaxMsgLength, -1);
    EXPECT_EQ(record.Cbd.CallbackFunction, nullptr);
}

TEST(Snapshot, RestoresTheRecordButNotTheOutputIdentity)
{
    pthread_mutex_t lock;
    RunParams params = DEFAULT_RUN_PARAMS;
    const RunRecord snapshot = params.snapshot();
    params.MsgCount = 5;
    params.Md.Priority = 9;
    params.ThreadCount = 2;
    params.InnerConnThreadCount = 3;
    params.ThreadId = 4;
    params.OutputLock = &lock;

    params.restore(snapshot);
    EXPECT_EQ(params.MsgCount, 0);
    EXPECT_EQ(params.Md.Priority, -1);
    EXPECT_EQ(params.ThreadCount, 2);
    EXPECT_EQ(params.InnerConnThreadCount, 3);
    EXPECT_EQ(params.ThreadId, 4);
    EXPECT_EQ(params.OutputLock, &lock);
}
