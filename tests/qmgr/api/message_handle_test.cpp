// Message handles: whose they are, how long they live, and what their calls refuse.
#include "property_calls.h"

#include <sys/wait.h>
#include <unistd.h>

#include <set>

namespace mqrig::qmgr::testing {
namespace {

class MessageHandle : public PropertyTest {};

TEST_F(MessageHandle, IsMadeAndDeleted)
{
    MQHMSG hmsg = create(hconn);
    EXPECT_GT(hmsg, 0);
    const MQHMSG old = hmsg;
    EXPECT_EQ(remove(hconn, hmsg), ok);
    EXPECT_EQ(hmsg, MQHM_UNUSABLE_HMSG);
    EXPECT_EQ(set(old, "a", "1"), failed(MQRC_HMSG_ERROR));
    EXPECT_NE(create(hconn), old) << "a number is not used again at once";
}

TEST_F(MessageHandle, NumbersThatAreNoneAre2460)
{
    for (MQHMSG hmsg : {MQHMSG{MQHM_NONE}, MQHMSG{MQHM_UNUSABLE_HMSG}, MQHMSG{12}, create(hconn) + 1000,
                        create(hconn) ^ (MQHMSG{1} << 40)}) {
        EXPECT_EQ(set(hmsg, "a", "1"), failed(MQRC_HMSG_ERROR)) << hmsg;
        EXPECT_EQ(inquire(hmsg, "a").codes, failed(MQRC_HMSG_ERROR)) << hmsg;
        EXPECT_EQ(getInto(hmsg).codes, failed(MQRC_HMSG_ERROR)) << hmsg;
        EXPECT_EQ(remove(hconn, hmsg), failed(MQRC_HMSG_ERROR)) << hmsg;
    }
}

TEST_F(MessageHandle, BelongsToItsConnection)
{
    MQHMSG hmsg = create(hconn);
    MQHCONN other = connect();
    EXPECT_EQ(remove(other, hmsg), failed(MQRC_HMSG_ERROR));
    disconnect(other);
    EXPECT_EQ(set(hmsg, "a", "1"), ok);
    EXPECT_EQ(disconnect(hconn), ok);
    EXPECT_EQ(remove(hconn, hmsg), failed(MQRC_HCONN_ERROR));
}

TEST_F(MessageHandle, OfNoConnectionServesAll)
{
    MQHMSG hmsg = create(MQHC_UNASSOCIATED_HCONN);
    EXPECT_EQ(set(hmsg, "a", "1"), ok);
    EXPECT_EQ(putWith(hmsg), ok);
    EXPECT_EQ(disconnect(hconn), ok);
    hconn = connect();
    q1 = open(hconn, "Q1", everything);
    EXPECT_EQ(shown(hmsg), "a=1") << "it outlives connections";
    EXPECT_EQ(getInto(hmsg).codes, ok);
    hconn = MQHC_UNASSOCIATED_HCONN;
    EXPECT_EQ(shown(hmsg), "a=1");
    EXPECT_EQ(remove(hconn, hmsg), ok);
    EXPECT_EQ(hmsg, MQHM_UNUSABLE_HMSG);
}

TEST_F(MessageHandle, OfAConnectionNeedsIt)
{
    const MQHMSG hmsg = create(hconn);
    hconn = MQHC_UNASSOCIATED_HCONN;
    EXPECT_EQ(set(hmsg, "a", "1"), failed(MQRC_HMSG_ERROR));
}

TEST_F(MessageHandle, InAForkedChildIsNone)
{
    const MQHMSG hmsg = create(MQHC_UNASSOCIATED_HCONN);
    const pid_t child = fork();
    if (child == 0) {
        hconn = MQHC_UNASSOCIATED_HCONN;
        const bool refused = set(hmsg, "a", "1") == failed(MQRC_HMSG_ERROR);
        const MQHMSG own = create(MQHC_UNASSOCIATED_HCONN);
        _exit(refused && set(own, "a", "1") == ok ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

TEST_F(MessageHandle, ThousandsOfThemDiffer)
{
    std::set<MQHMSG> handles;
    for (int i = 0; i < 5000; ++i)
        handles.insert(create(hconn));
    EXPECT_EQ(handles.size(), 5000u);
}

TEST_F(MessageHandle, OptionsAndStructuresAreChecked)
{
    MQHMSG hmsg = MQHM_NONE;
    Codes codes;
    MQCMHO cmho = {MQCMHO_DEFAULT};
    MQDMHO dmho = {MQDMHO_DEFAULT};
    EXPECT_EQ(tryCreate(hconn, hmsg, 4), failed(MQRC_OPTIONS_ERROR));
    EXPECT_EQ(tryCreate(hconn, hmsg, MQCMHO_VALIDATE | MQCMHO_NO_VALIDATION), failed(MQRC_OPTIONS_ERROR));
    EXPECT_EQ(tryCreate(12345, hmsg), failed(MQRC_HCONN_ERROR));
    MQCRTMH(hconn, &cmho, nullptr, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_HMSG_ERROR));
    MQCRTMH(hconn, nullptr, &hmsg, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_CMHO_ERROR));
    cmho.Version = 2;
    MQCRTMH(hconn, &cmho, &hmsg, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_CMHO_ERROR));
    hmsg = create(hconn);
    MQDLTMH(hconn, &hmsg, nullptr, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_DMHO_ERROR));
    dmho.Options = 1;
    MQDLTMH(hconn, &hmsg, &dmho, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_OPTIONS_ERROR));
    EXPECT_EQ(remove(hconn, hmsg), ok);
}

// ---- Buffers ----

Codes bufferOf(MQHCONN hconn, MQHMSG hmsg, std::string_view name, MQMD &md, std::string &buffer, MQLONG &length,
               MQLONG options = MQMHBO_PROPERTIES_IN_MQRFH2)
{
    MQMHBO mhbo = {MQMHBO_DEFAULT};
    mhbo.Options = options;
    MQCHARV text = charv(name);
    Codes codes;
    MQMHBUF(hconn, hmsg, &mhbo, &text, &md, static_cast<MQLONG>(buffer.size()), buffer.data(), &length, &codes.CompCode,
            &codes.Reason);
    return codes;
}

Codes handleOf(MQHCONN hconn, MQHMSG hmsg, MQMD &md, std::string &buffer, MQLONG &length,
               MQLONG options = MQBMHO_DELETE_PROPERTIES)
{
    MQBMHO bmho = {MQBMHO_DEFAULT};
    bmho.Options = options;
    Codes codes;
    MQBUFMH(hconn, hmsg, &bmho, &md, static_cast<MQLONG>(buffer.size()), buffer.data(), &length, &codes.CompCode,
            &codes.Reason);
    return codes;
}

TEST_F(MessageHandle, GoesIntoABufferAndBack)
{
    const MQHMSG hmsg = create(hconn);
    set(hmsg, "color", "r<d");
    set(hmsg, "size", MQTYPE_INT32, bytesOf(MQLONG{42}));
    set(hmsg, "f.a", "1");
    MQMD md = {MQMD_DEFAULT};
    setText(md.Format, "MQSTR");
    md.Encoding = MQENC_NORMAL;
    std::string buffer(1000, '\0');
    MQLONG length = 0;
    ASSERT_EQ(bufferOf(hconn, hmsg, "%", md, buffer, length), ok);
    EXPECT_EQ(text(md.Format), "MQHRF2");
    buffer.resize(static_cast<std::size_t>(length));
    EXPECT_EQ(buffer.substr(0, 8), std::string("RFH \0\0\0\2", 8));
    buffer += "hello";

    const MQHMSG back = create(hconn);
    set(back, "old", "gone");
    std::string kept = buffer;
    MQMD keptMd = md;
    ASSERT_EQ(handleOf(hconn, back, keptMd, kept, length, MQBMHO_NONE), ok);
    EXPECT_EQ(kept, buffer);
    EXPECT_EQ(length, static_cast<MQLONG>(buffer.size()));
    EXPECT_EQ(shown(back), "color=r<d size=42 f.a=1");

    ASSERT_EQ(handleOf(hconn, back, md, buffer, length), ok);
    EXPECT_EQ(buffer.substr(0, static_cast<std::size_t>(length)), "hello");
    EXPECT_EQ(text(md.Format), "MQSTR");
    EXPECT_EQ(shown(back), "color=r<d size=42 f.a=1");
}

TEST_F(MessageHandle, PartsOfItGoIntoABuffer)
{
    const MQHMSG hmsg = create(hconn);
    set(hmsg, "color", "red");
    set(hmsg, "f.a", "1");
    MQMD md = {MQMD_DEFAULT};
    std::string buffer(1000, '\0');
    MQLONG length = 0;
    EXPECT_EQ(bufferOf(hconn, hmsg, "g.%", md, buffer, length), failed(MQRC_PROPERTY_NOT_AVAILABLE));
    EXPECT_EQ(bufferOf(hconn, hmsg, "f.%", md, buffer, length, 3), ok);
    EXPECT_NE(buffer.find("<f content='properties'><a>1</a></f>"), std::string::npos);
    EXPECT_EQ(buffer.find("color"), std::string::npos);
    EXPECT_EQ(shown(hmsg), "color=red") << "and leave it, if that is wanted";
}

TEST_F(MessageHandle, BufferThatIsTooSmallIs2469)
{
    const MQHMSG hmsg = create(hconn);
    set(hmsg, "color", "red");
    MQMD md = {MQMD_DEFAULT};
    std::string buffer(20, 'x');
    MQLONG length = 0;
    EXPECT_EQ(bufferOf(hconn, hmsg, "%", md, buffer, length, 3), failed(MQRC_PROPERTY_VALUE_TOO_BIG));
    EXPECT_GT(length, 60);
    EXPECT_EQ(buffer, std::string(20, 'x'));
    EXPECT_EQ(shown(hmsg), "color=red");
    EXPECT_EQ(bufferOf(hconn, hmsg, "%", md, buffer, length, MQMHBO_DELETE_PROPERTIES), failed(MQRC_OPTIONS_ERROR));
    EXPECT_EQ(bufferOf(hconn, hmsg, "%", md, buffer, length, 9), failed(MQRC_OPTIONS_ERROR));
}

TEST_F(MessageHandle, MalformedBuffersAreRefused)
{
    const MQHMSG hmsg = create(hconn);
    set(hmsg, "color", "red");
    MQMD md = {MQMD_DEFAULT};
    std::string buffer(1000, '\0');
    MQLONG length = 0;
    ASSERT_EQ(bufferOf(hconn, hmsg, "%", md, buffer, length), ok);
    buffer.resize(static_cast<std::size_t>(length));
    std::string bad = buffer;
    bad[41] = '/';
    EXPECT_EQ(handleOf(hconn, hmsg, md, bad, length), failed(MQRC_RFH_FORMAT_ERROR));
    bad = buffer.substr(0, 50);
    EXPECT_EQ(handleOf(hconn, hmsg, md, bad, length), failed(MQRC_RFH_ERROR));
    EXPECT_EQ(shown(hmsg), "color=red") << "the handle is as it was";
    std::string none;
    MQMD plain = {MQMD_DEFAULT};
    EXPECT_EQ(handleOf(hconn, hmsg, plain, none, length), ok);
    EXPECT_EQ(shown(hmsg), "") << "no properties are none";
}

} // namespace
} // namespace mqrig::qmgr::testing
