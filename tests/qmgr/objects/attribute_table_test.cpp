#include "qmgr/objects/attribute.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "cmqcfc.h"
#include "qmgr/objects/attribute_value.h"

namespace mqrig::qmgr::objects {
namespace {

TEST(AttributeTable, EveryRowIsFoundBySelectorAndKeyword)
{
    for (const Attribute &row : attributes()) {
        for (const ObjectKind kind :
             {ObjectKind::QueueManager, ObjectKind::LocalQueue, ObjectKind::AliasQueue, ObjectKind::RemoteQueue,
              ObjectKind::ModelQueue, ObjectKind::Namelist, ObjectKind::Process, ObjectKind::Topic}) {
            if (!contains(row.kinds, kind)) continue;
            EXPECT_EQ(findSelector(kind, row.selector), &row) << row.keyword;
            EXPECT_EQ(findKeyword(kind, row.keyword).attribute, &row) << row.keyword;
        }
    }
}

TEST(AttributeTable, EveryDefaultPassesItsOwnCheck)
{
    for (const Attribute &row : attributes()) {
        if (row.isText())
            EXPECT_EQ(checkText(row, row.defaultText), ValueFault::None) << row.keyword;
        else
            EXPECT_EQ(checkNumber(row, row.defaultNumber), ValueFault::None) << row.keyword;
    }
}

TEST(AttributeTable, EveryKeywordValueIsReadAndWritten)
{
    for (const Attribute &row : attributes()) {
        for (const Word &word : row.words) {
            const ParsedValue parsed = parseValue(row, word.keyword);
            ASSERT_TRUE(parsed) << row.keyword << ' ' << word.keyword;
            EXPECT_EQ(parsed.value.number, word.value);
            // Of several keywords of one value the first is written.
            const auto written = std::find_if(row.words.begin(), row.words.end(),
                                              [&](const Word &other) { return other.value == word.value; });
            EXPECT_NE(formatAttribute(row, parsed.value).find(written->keyword), std::string::npos);
        }
    }
}

TEST(AttributeTable, FlagIsFoundUnderBothKeywords)
{
    const KeywordMatch share = findKeyword(ObjectKind::LocalQueue, "share");
    const KeywordMatch noShare = findKeyword(ObjectKind::LocalQueue, "NoShare");
    ASSERT_NE(share.attribute, nullptr);
    EXPECT_EQ(share.attribute, noShare.attribute);
    EXPECT_EQ(share.flagValue, MQQA_SHAREABLE);
    EXPECT_EQ(noShare.flagValue, MQQA_NOT_SHAREABLE);
}

TEST(AttributeTable, UnknownSelectorsAndKeywordsAreNotFound)
{
    for (const MQLONG selector : {0, -1, MQIA_LAST_USED + 1, MQIA_LAST, MQCA_FIRST - 1, MQCA_LAST_USED + 1, MQCA_LAST,
                                  2147483647, -2147483647 - 1})
        EXPECT_EQ(findSelector(ObjectKind::LocalQueue, selector), nullptr) << selector;
    EXPECT_EQ(findKeyword(ObjectKind::LocalQueue, "").attribute, nullptr);
    EXPECT_EQ(findKeyword(ObjectKind::LocalQueue, "MAXDEPT").attribute, nullptr);
    EXPECT_EQ(findKeyword(ObjectKind::LocalQueue, "MAXHANDS").attribute, nullptr);
}

TEST(AttributeTable, StandingTellsAttributesOfOtherQueuesFromUnknownSelectors)
{
    EXPECT_EQ(standing(ObjectKind::LocalQueue, MQIA_MAX_Q_DEPTH), SelectorStanding::OfObject);
    EXPECT_EQ(standing(ObjectKind::AliasQueue, MQIA_MAX_Q_DEPTH), SelectorStanding::OfOtherQueues);
    EXPECT_EQ(standing(ObjectKind::LocalQueue, MQCA_REMOTE_Q_NAME), SelectorStanding::OfOtherQueues);
    EXPECT_EQ(standing(ObjectKind::LocalQueue, MQIA_MAX_HANDLES), SelectorStanding::Unknown);
    EXPECT_EQ(standing(ObjectKind::Process, MQIA_MAX_Q_DEPTH), SelectorStanding::Unknown);
    EXPECT_EQ(standing(ObjectKind::LocalQueue, MQCA_NAMES), SelectorStanding::Unknown);
    EXPECT_EQ(standing(ObjectKind::LocalQueue, 1999), SelectorStanding::Unknown);
}

TEST(AttributeTable, NoObjectHasAttributesOfOtherPlatforms)
{
    // EXPRYINT, DNSGROUP, NLTYPE, ADOPTNEWMCA and such are of z/OS.
    for (const Attribute &row : attributes())
        for (const MQLONG selector : {MQIA_EXPIRY_INTERVAL, MQCA_DNS_GROUP, MQIA_NAMELIST_TYPE,
                                      MQIA_ADOPTNEWMCA_INTERVAL, MQCA_STORAGE_CLASS, MQIA_INDEX_TYPE})
            EXPECT_NE(row.selector, selector) << row.keyword;
}

TEST(AttributeTable, LengthsAreThoseOfTheMqiFields)
{
    EXPECT_EQ(textLengthOf(MQCA_Q_NAME), 48);
    EXPECT_EQ(textLengthOf(MQCA_Q_DESC), 64);
    EXPECT_EQ(textLengthOf(MQCA_CREATION_DATE), 12);
    EXPECT_EQ(textLengthOf(MQCA_CREATION_TIME), 8);
    EXPECT_EQ(textLengthOf(MQIA_MAX_Q_DEPTH), 0);
}

TEST(AttributeTable, MqsetMayChangeInhibitTriggerAndDistributionListsOnly)
{
    std::vector<MQLONG> settable;
    for (const Attribute &row : attributes())
        if (row.settable) settable.push_back(row.selector);
    std::sort(settable.begin(), settable.end());
    const std::vector<MQLONG> expected = {MQIA_INHIBIT_GET,          MQIA_INHIBIT_PUT,  MQIA_TRIGGER_CONTROL,
                                          MQIA_TRIGGER_MSG_PRIORITY, MQIA_TRIGGER_TYPE, MQIA_TRIGGER_DEPTH,
                                          MQIA_DIST_LISTS,           MQCA_TRIGGER_DATA};
    EXPECT_EQ(settable, expected);
}

} // namespace
} // namespace mqrig::qmgr::objects
