#include "fixture.h"

#include <unistd.h>

#include <cstring>

namespace mqrig::qmgr::testing {
namespace {

class Context : public QueueManagerTest {
public:
    Context() : hconn(connect()) {}

    MQHOBJ output(MQLONG contextOption) { return open(hconn, "Q1", MQOO_OUTPUT | contextOption); }
    Got taken() { return get(hconn, open(hconn, "Q1", MQOO_INPUT_SHARED)); }

    static MQMD foreign()
    {
        MQMD md = {MQMD_DEFAULT};
        setText(md.UserIdentifier, "grace");
        setBytes(md.AccountingToken, "account");
        setText(md.ApplIdentityData, "identity data");
        md.PutApplType = MQAT_CICS;
        setText(md.PutApplName, "elsewhere");
        setText(md.PutDate, "19991231");
        setText(md.PutTime, "23595999");
        setText(md.ApplOriginData, "ORIG");
        return md;
    }

    static void expectForeignIdentity(const MQMD &md)
    {
        EXPECT_EQ(text(md.UserIdentifier), "grace");
        EXPECT_EQ(bytes(md.AccountingToken).substr(0, 8), std::string("account\0", 8));
        EXPECT_EQ(text(md.ApplIdentityData), "identity data");
    }
    static void expectForeignOrigin(const MQMD &md)
    {
        EXPECT_EQ(md.PutApplType, MQAT_CICS);
        EXPECT_EQ(text(md.PutApplName), "elsewhere");
        EXPECT_EQ(text(md.PutDate), "19991231");
        EXPECT_EQ(text(md.PutTime), "23595999");
        EXPECT_EQ(text(md.ApplOriginData), "ORIG");
    }
    static void expectOwnIdentity(const MQMD &md)
    {
        EXPECT_NE(text(md.UserIdentifier), "grace");
        EXPECT_NE(text(md.UserIdentifier), "");
        EXPECT_EQ(text(md.ApplIdentityData), "");
    }
    static void expectOwnOrigin(const MQMD &md)
    {
        EXPECT_EQ(md.PutApplType, MQAT_UNIX);
        EXPECT_EQ(text(md.PutApplName), std::string("qmgr_api_tests").substr(0, 28));
        EXPECT_EQ(text(md.PutDate).size(), 8U);
        EXPECT_NE(text(md.PutDate), "19991231");
        EXPECT_EQ(text(md.ApplOriginData), "");
    }

    MQHCONN hconn;
};

TEST_F(Context, DefaultIsThatOfTheProgram)
{
    MQMD md = foreign();
    MQPMO pmo = {MQPMO_DEFAULT};
    ASSERT_EQ(putInOut(hconn, output(0), "x", md, pmo), ok);
    expectOwnIdentity(md);
    expectOwnOrigin(md);
    const Got got = taken();
    expectOwnIdentity(got.md);
    expectOwnOrigin(got.md);
}

TEST_F(Context, AccountingTokenIsTheUserNumber)
{
    put(hconn, output(0), "x");
    const std::string token = bytes(taken().md.AccountingToken);
    const std::string digits = std::to_string(geteuid());
    EXPECT_EQ(token.substr(0, 1 + digits.size()), static_cast<char>(digits.size()) + digits);
    EXPECT_EQ(token.back(), MQACTT_UNIX_NUMERIC_ID);
}

TEST_F(Context, NoContextIsBlank)
{
    ASSERT_EQ(put(hconn, output(0), "x", foreign(), pmoWith(MQPMO_NO_CONTEXT)), ok);
    const MQMD md = taken().md;
    EXPECT_EQ(std::string(md.UserIdentifier, 12), std::string(12, ' '));
    EXPECT_EQ(bytes(md.AccountingToken), std::string(32, '\0'));
    EXPECT_EQ(std::string(md.ApplIdentityData, 32), std::string(32, ' '));
    EXPECT_EQ(md.PutApplType, MQAT_NO_CONTEXT);
    EXPECT_EQ(std::string(md.PutApplName, 28), std::string(28, ' '));
    EXPECT_EQ(std::string(md.PutDate, 8), std::string(8, ' '));
    EXPECT_EQ(std::string(md.PutTime, 8), std::string(8, ' '));
    EXPECT_EQ(std::string(md.ApplOriginData, 4), std::string(4, ' '));
}

TEST_F(Context, SetIdentityKeepsTheProgramsIdentityOnly)
{
    ASSERT_EQ(put(hconn, output(MQOO_SET_IDENTITY_CONTEXT), "x", foreign(), pmoWith(MQPMO_SET_IDENTITY_CONTEXT)), ok);
    const MQMD md = taken().md;
    expectForeignIdentity(md);
    expectOwnOrigin(md);
}

TEST_F(Context, SetAllKeepsEverything)
{
    ASSERT_EQ(put(hconn, output(MQOO_SET_ALL_CONTEXT), "x", foreign(), pmoWith(MQPMO_SET_ALL_CONTEXT)), ok);
    const MQMD md = taken().md;
    expectForeignIdentity(md);
    expectForeignOrigin(md);
}

TEST_F(Context, SetContextIsStoredBlankPadded)
{
    MQMD md = {MQMD_DEFAULT};
    std::strcpy(md.UserIdentifier, "short");
    ASSERT_EQ(put(hconn, output(MQOO_SET_ALL_CONTEXT), "x", md, pmoWith(MQPMO_SET_ALL_CONTEXT)), ok);
    EXPECT_EQ(std::string(taken().md.UserIdentifier, 12), "short       ");
}

TEST_F(Context, EachOptionNeedsItsOpenOption)
{
    const MQHOBJ plain = output(0);
    const auto codesFor = [&](MQHOBJ hobj, MQLONG option) { return put(hconn, hobj, "x", foreign(), pmoWith(option)); };
    EXPECT_EQ(codesFor(plain, MQPMO_SET_IDENTITY_CONTEXT), failed(MQRC_NOT_OPEN_FOR_SET_IDENT));
    EXPECT_EQ(codesFor(plain, MQPMO_SET_ALL_CONTEXT), failed(MQRC_NOT_OPEN_FOR_SET_ALL));
    EXPECT_EQ(codesFor(plain, MQPMO_PASS_IDENTITY_CONTEXT), failed(MQRC_NOT_OPEN_FOR_PASS_IDENT));
    EXPECT_EQ(codesFor(plain, MQPMO_PASS_ALL_CONTEXT), failed(MQRC_NOT_OPEN_FOR_PASS_ALL));
    EXPECT_EQ(codesFor(output(MQOO_SET_IDENTITY_CONTEXT), MQPMO_SET_ALL_CONTEXT), failed(MQRC_NOT_OPEN_FOR_SET_ALL));
    EXPECT_EQ(codesFor(output(MQOO_PASS_ALL_CONTEXT), MQPMO_SET_IDENTITY_CONTEXT), failed(MQRC_NOT_OPEN_FOR_SET_IDENT));
}

TEST_F(Context, SetAllCarriesTheRightToSetIdentity)
{
    EXPECT_EQ(put(hconn, output(MQOO_SET_ALL_CONTEXT), "x", foreign(), pmoWith(MQPMO_SET_IDENTITY_CONTEXT)), ok);
}

TEST_F(Context, Put1MaySetContext)
{
    MQMD md = foreign();
    MQPMO pmo = pmoWith(MQPMO_SET_ALL_CONTEXT);
    ASSERT_EQ(put1(hconn, "Q1", "x", md, pmo), ok);
    expectForeignOrigin(taken().md);
}

// ---- Passing on ----

class PassedContext : public Context {
public:
    PassedContext()
    {
        defineQueue("Q2");
        EXPECT_EQ(put(hconn, output(MQOO_SET_ALL_CONTEXT), "x", foreign(), pmoWith(MQPMO_SET_ALL_CONTEXT)), ok);
        source = open(hconn, "Q1", MQOO_INPUT_SHARED | MQOO_BROWSE | MQOO_SAVE_ALL_CONTEXT);
        target = open(hconn, "Q2", MQOO_OUTPUT | MQOO_PASS_ALL_CONTEXT);
    }
    Codes pass(MQLONG option, MQHOBJ from)
    {
        MQPMO pmo = pmoWith(option);
        pmo.Context = from;
        return put(hconn, target, "x", {MQMD_DEFAULT}, pmo);
    }
    MQMD passed() { return get(hconn, open(hconn, "Q2", MQOO_INPUT_SHARED)).md; }

    MQHOBJ source;
    MQHOBJ target;
};

TEST_F(PassedContext, AllOfIt)
{
    get(hconn, source);
    ASSERT_EQ(pass(MQPMO_PASS_ALL_CONTEXT, source), ok);
    const MQMD md = passed();
    expectForeignIdentity(md);
    expectForeignOrigin(md);
}

TEST_F(PassedContext, IdentityOnly)
{
    get(hconn, source);
    ASSERT_EQ(pass(MQPMO_PASS_IDENTITY_CONTEXT, source), ok);
    const MQMD md = passed();
    expectForeignIdentity(md);
    expectOwnOrigin(md);
}

TEST_F(PassedContext, WrongHandleIs2097)
{
    EXPECT_EQ(pass(MQPMO_PASS_ALL_CONTEXT, MQHO_NONE), failed(MQRC_CONTEXT_HANDLE_ERROR));
    EXPECT_EQ(pass(MQPMO_PASS_ALL_CONTEXT, target), failed(MQRC_CONTEXT_HANDLE_ERROR));
}

TEST_F(PassedContext, NothingGotYetIs2098)
{
    EXPECT_EQ(pass(MQPMO_PASS_ALL_CONTEXT, source), failed(MQRC_CONTEXT_NOT_AVAILABLE));
}

TEST_F(PassedContext, BrowsingSavesNothing)
{
    get(hconn, source, MQGMO_BROWSE_FIRST);
    EXPECT_EQ(pass(MQPMO_PASS_ALL_CONTEXT, source), failed(MQRC_CONTEXT_NOT_AVAILABLE));
}

TEST_F(PassedContext, BrowsingForgetsWhatWasSaved)
{
    put(hconn, output(0), "second");
    get(hconn, source);
    EXPECT_EQ(get(hconn, source, MQGMO_BROWSE_FIRST).codes, ok);
    EXPECT_EQ(pass(MQPMO_PASS_ALL_CONTEXT, source), failed(MQRC_CONTEXT_NOT_AVAILABLE));
}

TEST_F(PassedContext, GetsThatTakeNoMessageKeepTheContext)
{
    get(hconn, source);
    EXPECT_EQ(get(hconn, source).codes, failed(MQRC_NO_MSG_AVAILABLE));
    EXPECT_EQ(get(hconn, source, MQGMO_BROWSE_FIRST).codes, failed(MQRC_NO_MSG_AVAILABLE));
    put(hconn, output(0), "too long");
    EXPECT_EQ(get(hconn, source, version2Md(), gmoWith(MQGMO_NO_SYNCPOINT), 3).codes,
              warned(MQRC_TRUNCATED_MSG_FAILED));
    ASSERT_EQ(pass(MQPMO_PASS_ALL_CONTEXT, source), ok);
    expectForeignIdentity(passed());
}

} // namespace
} // namespace mqrig::qmgr::testing
