// Settings that are given for either record and hold for both.

#include "reconcile.h"

#include <gtest/gtest.h>

namespace {

class Reconcile : public testing::Test {
protected:
    RunParams primary = DEFAULT_RUN_PARAMS;
    RunParams secondary = DEFAULT_RUN_PARAMS;
};

template <class T>
void expectShared(T RunParams::*field, T one, T other)
{
    RunParams primary = DEFAULT_RUN_PARAMS;
    RunParams secondary = DEFAULT_RUN_PARAMS;
    primary.*field = one;
    reconcile(primary, secondary);
    EXPECT_EQ(secondary.*field, one);

    secondary = DEFAULT_RUN_PARAMS;
    primary = DEFAULT_RUN_PARAMS;
    secondary.*field = other;
    reconcile(primary, secondary);
    EXPECT_EQ(primary.*field, other);

    primary.*field = one;
    secondary.*field = other;
    reconcile(primary, secondary);
    EXPECT_EQ(primary.*field, one);
    EXPECT_EQ(secondary.*field, one);
}

} // namespace

TEST_F(Reconcile, ThePrimarysValueComesFirst)
{
    for (MQLONG RunParams::*field :
         std::initializer_list<MQLONG RunParams::*>{&RunParams::ThreadCount, &RunParams::InnerConnThreadCount,
                                                    &RunParams::MsgCount, &RunParams::YieldAfterCall}) {
        expectShared<MQLONG>(field, 2, 3);
    }
    for (const char *RunParams::*field : std::initializer_list<const char * RunParams::*>{
             &RunParams::MsgText, &RunParams::InputFile, &RunParams::OutputFile, &RunParams::OutputDir,
             &RunParams::InputDir, &RunParams::StopApiName}) {
        expectShared<const char *>(field, "one", "other");
    }
}

TEST_F(Reconcile, OneSwitchIsOnForBoth)
{
    for (MQLONG RunParams::*field : std::initializer_list<MQLONG RunParams::*>{
             &RunParams::ApiTrace, &RunParams::UseConnX, &RunParams::ForceBackout}) {
        RunParams one = DEFAULT_RUN_PARAMS;
        RunParams other = DEFAULT_RUN_PARAMS;
        one.*field = 1;
        reconcile(one, other);
        EXPECT_EQ(other.*field, 1);
        one = DEFAULT_RUN_PARAMS;
        reconcile(one, other);
        EXPECT_EQ(one.*field, 1);
    }
}

TEST_F(Reconcile, TheVerboseDisplayWins)
{
    primary.BrowseMode = 1;
    secondary.BrowseMode = 2;
    primary.DumpMode = 2;
    secondary.DumpMode = 1;
    reconcile(primary, secondary);
    EXPECT_EQ(primary.BrowseMode, 2);
    EXPECT_EQ(secondary.BrowseMode, 2);
    EXPECT_EQ(primary.DumpMode, 2);
    EXPECT_EQ(secondary.DumpMode, 2);
}

TEST_F(Reconcile, ThePlainDisplayOfOneHoldsForBoth)
{
    secondary.BrowseMode = 1;
    reconcile(primary, secondary);
    EXPECT_EQ(primary.BrowseMode, 1);
    EXPECT_EQ(primary.DumpMode, 0);
}

TEST_F(Reconcile, EverythingElseStaysApart)
{
    primary.QName = "A";
    primary.MsgLength = 5;
    primary.OutputForm = OutputFormHex;
    primary.MsgHex = "00";
    primary.DisplaySize = 7;
    primary.SkipDisc = 1;
    reconcile(primary, secondary);
    EXPECT_EQ(secondary.QName, nullptr);
    EXPECT_EQ(secondary.MsgLength, -1);
    EXPECT_EQ(secondary.OutputForm, OutputFormText);
    EXPECT_EQ(secondary.MsgHex, nullptr);
    EXPECT_EQ(secondary.DisplaySize, 128);
    EXPECT_EQ(secondary.SkipDisc, 0);
}
