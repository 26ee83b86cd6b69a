// MQINQ on every type of object.
#include <algorithm>

#include "fixture.h"
#include "qmgr/objects/attribute.h"

namespace mqrig::qmgr::testing {
namespace {

using objects::ObjectKind;

class InquireObjects : public QueueManagerTest {
public:
    InquireObjects() : hconn(connect())
    {
        defineAlias("A1", "Q1", {{MQIA_INHIBIT_GET, MQQA_GET_INHIBITED}});
        defineTransmissionQueue("QM2");
        defineRemote("R1", "THERE", "QM2", "");
        define(ObjectKind::Namelist, "N1", {{MQCA_NAMES, "FIRST,second"}, {MQCA_NAMELIST_DESC, "two names"}});
        define(ObjectKind::Namelist, "N0", {});
        define(ObjectKind::Process, "P1", {{MQCA_APPL_ID, "/bin/true"}, {MQCA_USER_DATA, "data"}},
               {{MQIA_APPL_TYPE, MQAT_UNIX}});
    }

    MQHOBJ openForInquiry(std::string_view name, MQLONG type = MQOT_Q)
    {
        MQOD od = {MQOD_DEFAULT};
        od.ObjectType = type;
        setText(od.ObjectName, name);
        MQHOBJ hobj = MQHO_UNUSABLE_HOBJ;
        EXPECT_EQ(tryOpen(hconn, od, MQOO_INQUIRE, hobj), ok) << name;
        return hobj;
    }

    Codes inquire(MQHOBJ hobj, std::vector<MQLONG> selectors, std::size_t characters = 1000)
    {
        ints.assign(selectors.size(), 4711);
        chars.assign(characters, '#');
        Codes codes;
        MQINQ(hconn, hobj, static_cast<MQLONG>(selectors.size()), selectors.data(), static_cast<MQLONG>(ints.size()),
              ints.data(), static_cast<MQLONG>(characters), chars.data(), &codes.CompCode, &codes.Reason);
        return codes;
    }

    static std::string padded(std::string text, std::size_t length)
    {
        text.resize(length, ' ');
        return text;
    }

    MQHCONN hconn;
    std::vector<MQLONG> ints;
    std::string chars;
};

TEST_F(InquireObjects, EveryAttributeOfEveryTypeIsAnsweredAndNoOther)
{
    const std::vector<std::pair<ObjectKind, MQHOBJ>> opened = {
        {ObjectKind::QueueManager, openForInquiry("", MQOT_Q_MGR)},
        {ObjectKind::LocalQueue, openForInquiry("Q1")},
        {ObjectKind::AliasQueue, openForInquiry("A1")},
        {ObjectKind::RemoteQueue, openForInquiry("R1")},
        {ObjectKind::Namelist, openForInquiry("N1", MQOT_NAMELIST)},
        {ObjectKind::Process, openForInquiry("P1", MQOT_PROCESS)}};
    for (const auto &[kind, hobj] : opened) {
        const bool isQueue = objects::contains(objects::allQueues, kind);
        for (const objects::Attribute &row : objects::attributes()) {
            const bool ofKind = objects::findSelector(kind, row.selector) != nullptr;
            const bool ofQueues = std::ranges::any_of(objects::attributes(), [&](const objects::Attribute &other) {
                return other.selector == row.selector && (other.kinds & objects::allQueues) != 0;
            });
            const Codes expected = ofKind                ? ok
                                   : isQueue && ofQueues ? warned(MQRC_SELECTOR_NOT_FOR_TYPE)
                                                         : failed(MQRC_SELECTOR_ERROR);
            EXPECT_EQ(inquire(hobj, {row.selector}), expected) << row.keyword << " of " << objects::commandWord(kind);
        }
    }
}

TEST_F(InquireObjects, AliasAnswersForItself)
{
    const MQHOBJ alias = openForInquiry("A1");
    ASSERT_EQ(inquire(alias, {MQIA_Q_TYPE, MQCA_BASE_Q_NAME, MQIA_INHIBIT_GET, MQCA_Q_NAME}), ok);
    EXPECT_EQ(ints[0], MQQT_ALIAS);
    EXPECT_EQ(ints[1], MQQA_GET_INHIBITED);
    EXPECT_EQ(chars.substr(0, 96), padded("Q1", 48) + padded("A1", 48));
}

TEST_F(InquireObjects, AliasOpenForMessagesTooAnswersForItself)
{
    const MQHOBJ alias = open(hconn, "A1", MQOO_INQUIRE | MQOO_OUTPUT);
    ASSERT_EQ(inquire(alias, {MQIA_Q_TYPE}), ok);
    EXPECT_EQ(ints[0], MQQT_ALIAS);
}

TEST_F(InquireObjects, RemoteQueueAnswersForItsDefinition)
{
    const MQHOBJ remote = openForInquiry("R1");
    ASSERT_EQ(inquire(remote, {MQIA_Q_TYPE, MQCA_REMOTE_Q_NAME, MQCA_REMOTE_Q_MGR_NAME, MQCA_XMIT_Q_NAME}), ok);
    EXPECT_EQ(ints[0], MQQT_REMOTE);
    EXPECT_EQ(chars.substr(0, 144), padded("THERE", 48) + padded("QM2", 48) + padded("", 48));
}

TEST_F(InquireObjects, AttributesOfOtherQueuesArePlaceholdersWithAWarning)
{
    const MQHOBJ alias = openForInquiry("A1");
    EXPECT_EQ(inquire(alias, {MQIA_CURRENT_Q_DEPTH, MQCA_INITIATION_Q_NAME, MQIA_Q_TYPE}),
              warned(MQRC_SELECTOR_NOT_FOR_TYPE));
    EXPECT_EQ(ints[0], MQIAV_NOT_APPLICABLE);
    EXPECT_EQ(ints[1], MQQT_ALIAS);
    EXPECT_EQ(chars.substr(0, 49), std::string(48, '*') + '#');
}

TEST_F(InquireObjects, SelectorsOfOtherPlatformsAre2067)
{
    for (const MQLONG selector : {MQIA_EXPIRY_INTERVAL, MQIA_ADOPTNEWMCA_INTERVAL, MQCA_DNS_GROUP, MQIA_INDEX_TYPE,
                                  MQCA_STORAGE_CLASS, MQIA_QSG_DISP})
        for (const MQHOBJ hobj : {openForInquiry("", MQOT_Q_MGR), openForInquiry("Q1"), openForInquiry("A1")})
            EXPECT_EQ(inquire(hobj, {selector}), failed(MQRC_SELECTOR_ERROR)) << selector;
}

TEST_F(InquireObjects, NamesOfANamelistStandOneBehindTheOther)
{
    const MQHOBJ namelist = openForInquiry("N1", MQOT_NAMELIST);
    ASSERT_EQ(inquire(namelist, {MQCA_NAMELIST_NAME, MQCA_NAMES, MQIA_NAME_COUNT, MQCA_NAMELIST_DESC}), ok);
    EXPECT_EQ(ints[0], 2);
    EXPECT_EQ(chars.substr(0, 48 * 3 + 64 + 1),
              padded("N1", 48) + padded("FIRST", 48) + padded("second", 48) + padded("two names", 64) + '#');
}

TEST_F(InquireObjects, NamesAreThereAllOrNone)
{
    const MQHOBJ namelist = openForInquiry("N1", MQOT_NAMELIST);
    EXPECT_EQ(inquire(namelist, {MQCA_NAMES}, 95), warned(MQRC_CHAR_ATTRS_TOO_SHORT));
    EXPECT_EQ(chars, std::string(95, '#'));
    EXPECT_EQ(inquire(namelist, {MQCA_NAMES}, 96), ok);
}

TEST_F(InquireObjects, EmptyNamelistHasNoNames)
{
    const MQHOBJ namelist = openForInquiry("N0", MQOT_NAMELIST);
    ASSERT_EQ(inquire(namelist, {MQCA_NAMES, MQIA_NAME_COUNT, MQCA_NAMELIST_NAME}), ok);
    EXPECT_EQ(ints[0], 0);
    EXPECT_EQ(chars.substr(0, 48), padded("N0", 48));
}

TEST_F(InquireObjects, Process)
{
    const MQHOBJ process = openForInquiry("P1", MQOT_PROCESS);
    ASSERT_EQ(inquire(process, {MQIA_APPL_TYPE, MQCA_APPL_ID, MQCA_USER_DATA, MQCA_ENV_DATA, MQCA_PROCESS_NAME}), ok);
    EXPECT_EQ(ints[0], MQAT_UNIX);
    EXPECT_EQ(chars.substr(0, 256 + 128 + 128 + 48),
              padded("/bin/true", 256) + padded("data", 128) + padded("", 128) + padded("P1", 48));
}

TEST_F(InquireObjects, ChangesAreSeenByOpenHandles)
{
    const MQHOBJ namelist = openForInquiry("N1", MQOT_NAMELIST);
    const MQHOBJ alias = openForInquiry("A1");
    alterText(MQOT_NAMELIST, "N1", MQCA_NAMES, "ONE");
    alterQueue("A1", {{MQIA_INHIBIT_GET, MQQA_GET_ALLOWED}});
    ASSERT_EQ(inquire(namelist, {MQIA_NAME_COUNT}), ok);
    EXPECT_EQ(ints[0], 1);
    ASSERT_EQ(inquire(alias, {MQIA_INHIBIT_GET}), ok);
    EXPECT_EQ(ints[0], MQQA_GET_ALLOWED);
}

TEST_F(InquireObjects, TooManySelectorsOfAnyTypeAreCountedFirst)
{
    EXPECT_EQ(inquire(openForInquiry("P1", MQOT_PROCESS), std::vector<MQLONG>(257, MQIA_APPL_TYPE)),
              failed(MQRC_SELECTOR_LIMIT_EXCEEDED));
    EXPECT_EQ(inquire(openForInquiry("P1", MQOT_PROCESS), std::vector<MQLONG>(256, MQIA_APPL_TYPE)), ok);
}

} // namespace
} // namespace mqrig::qmgr::testing
