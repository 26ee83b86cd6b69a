#include "qmgr/core/search.h"
#include "qmgr/core/selection.h"

#include <gtest/gtest.h>

#include <cstring>

namespace mqrig::qmgr::core {
namespace {

constexpr MQLONG everyOption = MQMO_MATCH_MSG_ID | MQMO_MATCH_CORREL_ID | MQMO_MATCH_GROUP_ID |
                               MQMO_MATCH_MSG_SEQ_NUMBER | MQMO_MATCH_OFFSET | MQMO_MATCH_MSG_TOKEN;

MQMD descriptor(char msgId, char correlId, char groupId, MQLONG sequence, MQLONG offset)
{
    MQMD md = {MQMD_DEFAULT};
    std::memset(md.MsgId, msgId, sizeof md.MsgId);
    std::memset(md.CorrelId, correlId, sizeof md.CorrelId);
    std::memset(md.GroupId, groupId, sizeof md.GroupId);
    md.MsgSeqNumber = sequence;
    md.Offset = offset;
    return md;
}

store::MessageHeader header(const MQMD &md)
{
    store::MessageHeader made{};
    made.md = md;
    return made;
}

constexpr MQBYTE16 noToken{};

TEST(Selection, EachOptionComparesItsField)
{
    const MQMD wanted = descriptor('m', 'c', 'g', 3, 100);
    const struct {
        MQLONG option;
        MQMD other;
    } cases[] = {
        {MQMO_MATCH_MSG_ID, descriptor('x', 'c', 'g', 3, 100)},
        {MQMO_MATCH_CORREL_ID, descriptor('m', 'x', 'g', 3, 100)},
        {MQMO_MATCH_GROUP_ID, descriptor('m', 'c', 'x', 3, 100)},
        {MQMO_MATCH_MSG_SEQ_NUMBER, descriptor('m', 'c', 'g', 4, 100)},
        {MQMO_MATCH_OFFSET, descriptor('m', 'c', 'g', 3, 101)},
    };
    for (const auto &[option, other] : cases) {
        EXPECT_TRUE(Selection(option, wanted, noToken).matches(header(wanted)));
        EXPECT_FALSE(Selection(option, wanted, noToken).matches(header(other))) << option;
        EXPECT_TRUE(Selection(everyOption & ~option, wanted, noToken).matches(header(other))) << option;
    }
}

TEST(Selection, NoneInAFieldMatchesAnything)
{
    const Selection selection(MQMO_MATCH_MSG_ID | MQMO_MATCH_CORREL_ID | MQMO_MATCH_GROUP_ID, descriptor(0, 0, 0, 1, 0),
                              noToken);
    EXPECT_TRUE(selection.matches(header(descriptor('m', 'c', 'g', 7, 8))));
    EXPECT_FALSE(selection.indexed());
}

TEST(Selection, TheMostSelectiveIdentifierIsTheIndex)
{
    const MQMD md = descriptor('m', 'c', 'g', 1, 0);
    EXPECT_EQ(Selection(everyOption, md, noToken).indexed()->index, store::Index::MsgId);
    EXPECT_EQ(Selection(MQMO_MATCH_CORREL_ID | MQMO_MATCH_GROUP_ID, md, noToken).indexed()->index,
              store::Index::CorrelId);
    EXPECT_EQ(Selection(MQMO_MATCH_GROUP_ID, md, noToken).indexed()->index, store::Index::GroupId);
    EXPECT_FALSE(Selection(MQMO_MATCH_OFFSET, md, noToken).indexed());
}

TEST(Selection, EmptyTokenSelectsNothing)
{
    EXPECT_FALSE(Selection(MQMO_MATCH_MSG_TOKEN, descriptor(0, 0, 0, 1, 0), noToken).byToken());
    const MQBYTE16 token = {1};
    EXPECT_TRUE(Selection(MQMO_MATCH_MSG_TOKEN, descriptor(0, 0, 0, 1, 0), token).byToken());
}

TEST(Expiry, BeginsAtTheDeadline)
{
    store::MessageHeader message{};
    EXPECT_FALSE(isExpired(message, 1000));
    message.expiryDeadline = 1000;
    EXPECT_FALSE(isExpired(message, 999));
    EXPECT_TRUE(isExpired(message, 1000));
}

} // namespace
} // namespace mqrig::qmgr::core
