// Properties on their way with messages: into the store, and out of it in the form that the getter wants.
#include <functional>

#include "property_calls.h"
#include "qmgr/store/seams.h"

namespace mqrig::qmgr::testing {
namespace {

// A header in native order with these folders in front of a string.
std::string withFolders(std::initializer_list<std::string> folders, std::string_view body)
{
    std::string pairs;
    for (std::string folder : folders) {
        folder.resize((folder.size() + 3) / 4 * 4, ' ');
        pairs += bytesOf(static_cast<MQLONG>(folder.size())) + folder;
    }
    MQRFH2 fixed = {MQRFH2_DEFAULT};
    fixed.StrucLength = static_cast<MQLONG>(sizeof fixed + pairs.size());
    setText(fixed.Format, "MQSTR");
    return bytesOf(fixed) + pairs + std::string(body);
}

MQMD ofFormat(std::string_view format)
{
    MQMD md = version2Md();
    setText(md.Format, format);
    return md;
}

class PropertyDelivery : public PropertyTest {
public:
    PropertyDelivery() : hmsg(create(hconn)), target(create(hconn)) {}

    void propertyControl(MQLONG control) { alterQueue("Q1", {{MQIA_PROPERTY_CONTROL, control}}); }
    // A get with these options and no handle.
    Got getPlain(MQLONG options = 0) const
    {
        return get(hconn, q1, version2Md(), gmoWith(MQGMO_NO_SYNCPOINT | options, MQGMO_VERSION_4));
    }

    MQHMSG hmsg;
    MQHMSG target;
};

TEST_F(PropertyDelivery, HandleToHandleNothingChanges)
{
    set(hmsg, "color", "r\u00e4d");
    set(hmsg, "raw", MQTYPE_BYTE_STRING, std::string("\0\xFF", 2));
    set(hmsg, "a.b.c", MQTYPE_INT64, bytesOf(MQINT64{9000000000}));
    set(hmsg, "gone", MQTYPE_NULL, "");
    ASSERT_EQ(putWith(hmsg, "hello", ofFormat("MQSTR")), ok);
    const Got got = getInto(target);
    EXPECT_EQ(got.codes, ok);
    EXPECT_EQ(got.body, "hello");
    EXPECT_EQ(text(got.md.Format), "MQSTR");
    EXPECT_EQ(got.gmo.ReturnedLength, 5);
    EXPECT_EQ(shown(target), shown(hmsg));
    EXPECT_EQ(shown(target), "color=r\u00e4d raw=00FF gone=(null) a.b.c=9000000000");
}

TEST_F(PropertyDelivery, EveryPutOfAHandleHasItsProperties)
{
    set(hmsg, "n", "1");
    putWith(hmsg, "one");
    set(hmsg, "n", "2");
    putWith(hmsg, "two");
    put(hconn, q1, "three");
    EXPECT_EQ(getInto(target).body, "one");
    EXPECT_EQ(shown(target), "n=1");
    EXPECT_EQ(getInto(target).body, "two");
    EXPECT_EQ(shown(target), "n=2");
    EXPECT_EQ(getInto(target).body, "three");
    EXPECT_EQ(shown(target), "") << "what the handle held is gone";
}

TEST_F(PropertyDelivery, PropertiesSurviveARestartWithTheirMessage)
{
    set(hmsg, "color", "red");
    putWith(hmsg, std::string(100000, 'x'), persistentMd());
    restart();
    hconn = connect();
    q1 = open(hconn, "Q1", everything);
    target = create(hconn);
    EXPECT_EQ(getInto(target, MQGMO_PROPERTIES_IN_HANDLE, 200000).body, std::string(100000, 'x'));
    EXPECT_EQ(shown(target), "color=red");
}

TEST_F(PropertyDelivery, Put1HasThemToo)
{
    set(hmsg, "color", "red");
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    pmo.Version = MQPMO_VERSION_3;
    pmo.OriginalMsgHandle = hmsg;
    EXPECT_EQ(put1(hconn, "Q1", "hello", md, pmo), ok);
    EXPECT_EQ(getInto(target).body, "hello");
    EXPECT_EQ(shown(target), "color=red");
}

TEST_F(PropertyDelivery, HandlesBelongToVersion3)
{
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    pmo.OriginalMsgHandle = 12345;
    EXPECT_EQ(put(hconn, q1, "hello", {MQMD_DEFAULT}, pmo), ok);
    MQGMO gmo = gmoWith(MQGMO_NO_SYNCPOINT | MQGMO_PROPERTIES_IN_HANDLE, MQGMO_VERSION_3);
    gmo.MsgHandle = target;
    EXPECT_EQ(get(hconn, q1, version2Md(), gmo).codes, failed(MQRC_HMSG_ERROR));
}

TEST_F(PropertyDelivery, WithoutAHandleTheyStandInAHeader)
{
    set(hmsg, "color", "red");
    set(hmsg, "f.a", MQTYPE_INT32, bytesOf(MQLONG{5}));
    putWith(hmsg, "hello", ofFormat("MQSTR"));
    const Got got = getPlain();
    EXPECT_EQ(got.body,
              withFolders({"<usr><color>red</color></usr>", "<f content='properties'><a dt='i4'>5</a></f>"}, "hello")
                  .replace(offsetof(MQRFH2, CodedCharSetId), 4, bytesOf(MQLONG{1208})));
    EXPECT_EQ(text(got.md.Format), "MQHRF2");
    EXPECT_EQ(got.dataLength, static_cast<MQLONG>(got.body.size()));
    EXPECT_EQ(got.gmo.ReturnedLength, got.dataLength);
}

TEST_F(PropertyDelivery, HeaderIsInTheEncodingOfTheMessage)
{
    set(hmsg, "color", "red");
    MQMD md = ofFormat("MQSTR");
    md.Encoding = MQENC_NORMAL;
    putWith(hmsg, "hello", md);
    const Got got = getPlain();
    EXPECT_EQ(got.body.substr(0, 8), std::string("RFH \0\0\0\2", 8));
    EXPECT_EQ(got.md.Encoding, MQENC_NORMAL);
}

TEST_F(PropertyDelivery, QueueSaysWhatBecomesOfThem)
{
    set(hmsg, "f.a", "1");
    const auto length = [&](MQLONG control, MQLONG options, bool jms) {
        propertyControl(control);
        const MQHMSG one = create(hconn);
        set(one, jms ? "color" : "f.a", "1");
        putWith(one, "hello", ofFormat("MQSTR"));
        const Got got = getPlain(options);
        EXPECT_EQ(got.codes, ok);
        return got.body == "hello" ? 'n' : text(got.md.Format) == "MQHRF2" ? 'h' : '?';
    };
    EXPECT_EQ(length(MQPROP_COMPATIBILITY, 0, true), 'h');
    EXPECT_EQ(length(MQPROP_COMPATIBILITY, 0, false), 'n');
    EXPECT_EQ(length(MQPROP_ALL, 0, false), 'h');
    EXPECT_EQ(length(MQPROP_FORCE_MQRFH2, 0, false), 'h');
    EXPECT_EQ(length(MQPROP_NONE, 0, true), 'n');
    EXPECT_EQ(length(MQPROP_V6COMPAT, 0, true), 'n');
    EXPECT_EQ(length(MQPROP_NONE, MQGMO_PROPERTIES_FORCE_MQRFH2, false), 'h');
    EXPECT_EQ(length(MQPROP_ALL, MQGMO_NO_PROPERTIES, true), 'n');
    EXPECT_EQ(length(MQPROP_NONE, MQGMO_PROPERTIES_COMPATIBILITY, true), 'h');
    EXPECT_EQ(length(MQPROP_ALL, MQGMO_PROPERTIES_COMPATIBILITY, false), 'n');
}

TEST_F(PropertyDelivery, HeaderOfTheQueueManagerIsComplete)
{
    set(hmsg, "size", "1");
    putWith(hmsg, "hello", ofFormat("MQSTR"));
    const Got got = getPlain(MQGMO_PROPERTIES_FORCE_MQRFH2);
    MQRFH2 header;
    ASSERT_GE(got.body.size(), sizeof header);
    std::memcpy(&header, got.body.data(), sizeof header);
    EXPECT_EQ(std::string(header.StrucId, 4), MQRFH_STRUC_ID);
    EXPECT_EQ(header.Version, MQRFH_VERSION_2);
    EXPECT_EQ(static_cast<std::size_t>(header.StrucLength), got.body.size() - 5);
    EXPECT_EQ(header.Encoding, MQENC_NATIVE);
    EXPECT_EQ(header.CodedCharSetId, 1208);
    EXPECT_EQ(text(header.Format), "MQSTR");
    EXPECT_EQ(header.Flags, MQRFH_NONE);
    EXPECT_EQ(header.NameValueCCSID, 1208);
}

TEST_F(PropertyDelivery, QueueSaysWhetherAHandleIsFilled)
{
    set(hmsg, "color", "red");
    for (const auto &[control, options, filled] : {std::tuple{MQPROP_COMPATIBILITY, 0, true},
                                                   {MQPROP_ALL, 0, true},
                                                   {MQPROP_NONE, 0, true},
                                                   {MQPROP_FORCE_MQRFH2, 0, false},
                                                   {MQPROP_V6COMPAT, 0, true},
                                                   {MQPROP_FORCE_MQRFH2, MQGMO_PROPERTIES_IN_HANDLE, true},
                                                   {MQPROP_ALL, MQGMO_NO_PROPERTIES, false},
                                                   {MQPROP_ALL, MQGMO_PROPERTIES_FORCE_MQRFH2, false}}) {
        propertyControl(control);
        putWith(hmsg, "hello", ofFormat("MQSTR"));
        target = create(hconn);
        const Got got = getInto(target, options);
        EXPECT_EQ(shown(target), filled ? "color=red" : "") << control << ' ' << options;
        EXPECT_EQ(got.body == "hello", filled || options == MQGMO_NO_PROPERTIES) << control << ' ' << options;
    }
}

TEST_F(PropertyDelivery, OptionsForPropertiesExcludeEachOther)
{
    EXPECT_EQ(getInto(target, MQGMO_PROPERTIES_IN_HANDLE | MQGMO_NO_PROPERTIES).codes, failed(MQRC_OPTIONS_ERROR));
    EXPECT_EQ(getPlain(MQGMO_PROPERTIES_IN_HANDLE).codes, failed(MQRC_HMSG_ERROR));
}

// ---- Properties that came in the body ----

TEST_F(PropertyDelivery, FoldersOfTheBodyBecomeProperties)
{
    const std::string body = withFolders({"<usr><color>r&lt;d</color></usr>", "<psc><Command>x</Command></psc>",
                                          "<jms><Dst>q</Dst><Pri dt='i4'>4</Pri></jms>"},
                                         "hello");
    ASSERT_EQ(put(hconn, q1, body, ofFormat("MQHRF2")), ok);
    const Got got = getInto(target);
    EXPECT_EQ(got.body, withFolders({"<psc><Command>x</Command></psc>"}, "hello"));
    EXPECT_EQ(text(got.md.Format), "MQHRF2");
    EXPECT_EQ(shown(target), "color=r<d JMSDestination=q JMSPriority=4");

    ASSERT_EQ(put(hconn, q1, withFolders({"<usr><a>1</a></usr>"}, "hello"), ofFormat("MQHRF2")), ok);
    const Got whole = getInto(target);
    EXPECT_EQ(whole.body, "hello");
    EXPECT_EQ(text(whole.md.Format), "MQSTR");
}

TEST_F(PropertyDelivery, BodyIsReturnedAsItWasPutToThoseWithoutHandle)
{
    const std::string body = withFolders({"<usr><color> red</color></usr>"}, "hello");
    for (const MQLONG control : {MQPROP_COMPATIBILITY, MQPROP_ALL, MQPROP_FORCE_MQRFH2, MQPROP_V6COMPAT}) {
        propertyControl(control);
        put(hconn, q1, body, ofFormat("MQHRF2"));
        EXPECT_EQ(getPlain().body, body) << control;
    }
    propertyControl(MQPROP_V6COMPAT);
    put(hconn, q1, body, ofFormat("MQHRF2"));
    EXPECT_EQ(getInto(target, 0).body, body);
    EXPECT_EQ(shown(target), "");
    propertyControl(MQPROP_NONE);
    put(hconn, q1, body, ofFormat("MQHRF2"));
    EXPECT_EQ(getPlain().body, "hello");
}

TEST_F(PropertyDelivery, MalformedHeadersStayInTheBody)
{
    for (const std::string &body : {withFolders({"<usr><a>1</usr>"}, "hello"), std::string("RFH garbage"),
                                    std::string(), std::string(36, '\0')}) {
        ASSERT_EQ(put(hconn, q1, body, ofFormat("MQHRF2")), ok);
        const Got got = getInto(target);
        EXPECT_EQ(got.codes, ok);
        EXPECT_EQ(got.body, body);
        EXPECT_EQ(text(got.md.Format), "MQHRF2");
        EXPECT_EQ(shown(target), "");
    }
}

TEST_F(PropertyDelivery, FoldersThatWouldTakeFarMoreMemoryStayInTheBody)
{
    std::string folder = "<usr>";
    for (int i = 0; i < 100000; ++i)
        folder += "<b/>";
    const std::string body = withFolders({folder + "</usr>"}, "hello");
    for (int i = 0; i < 2; ++i)
        ASSERT_EQ(put(hconn, q1, body, ofFormat("MQHRF2")), ok);
    const Got got = getInto(target, MQGMO_PROPERTIES_IN_HANDLE, 500000);
    EXPECT_EQ(got.codes, ok);
    EXPECT_EQ(got.body, body);
    EXPECT_EQ(shown(target), "");
    const Got plain = get(hconn, q1, version2Md(), gmoWith(MQGMO_NO_SYNCPOINT), 500000);
    EXPECT_EQ(plain.codes, ok);
    EXPECT_EQ(plain.body, body);
}

TEST_F(PropertyDelivery, WhatWasSetGoesBeforeTheBody)
{
    set(hmsg, "a", "handle");
    ASSERT_EQ(putWith(hmsg, withFolders({"<usr><a>body</a><b>2</b></usr>"}, "hello"), ofFormat("MQHRF2")), ok);
    EXPECT_EQ(getInto(target).body, "hello");
    EXPECT_EQ(shown(target), "a=handle b=2");
}

TEST_F(PropertyDelivery, UnknownTypesAreToldInTheStructure)
{
    put(hconn, q1, withFolders({"<usr><a dt='dateTime.tz'>now</a></usr>"}, ""), ofFormat("MQHRF2"));
    getInto(target);
    const Inquired got = inquire(target, "a");
    EXPECT_EQ(got.codes, warned(MQRC_PROP_TYPE_NOT_SUPPORTED));
    EXPECT_EQ(got.value, "now");
    EXPECT_EQ(std::string(got.impo.TypeString, 8), "dateTime");
}

// ---- Lengths ----

TEST_F(PropertyDelivery, TruncationCountsWhatIsDelivered)
{
    set(hmsg, "color", "red");
    putWith(hmsg, "hello");
    MQGMO gmo = gmoWith(MQGMO_NO_SYNCPOINT, MQGMO_VERSION_4);
    const Got small = get(hconn, q1, version2Md(), gmo, 50);
    EXPECT_EQ(small.codes, warned(MQRC_TRUNCATED_MSG_FAILED));
    EXPECT_EQ(small.dataLength, 36 + 4 + 32 + 5);
    EXPECT_EQ(getInto(target, MQGMO_PROPERTIES_IN_HANDLE, 5).codes, ok) << "the body alone fits";
    putWith(hmsg, "hello");
    gmo.Options |= MQGMO_ACCEPT_TRUNCATED_MSG;
    const Got accepted = get(hconn, q1, version2Md(), gmo, 74);
    EXPECT_EQ(accepted.codes, warned(MQRC_TRUNCATED_MSG_ACCEPTED));
    EXPECT_EQ(accepted.body.substr(72), "he");
    EXPECT_EQ(depth("Q1"), 0);
}

TEST_F(PropertyDelivery, PropertiesAreNoPartOfTheMessageLength)
{
    alterQueue("Q1", {{MQIA_MAX_MSG_LENGTH, 5}});
    set(hmsg, "color", std::string(1000, 'x'));
    EXPECT_EQ(putWith(hmsg, "hello"), ok);
    EXPECT_EQ(putWith(hmsg, "hello!"), failed(MQRC_MSG_TOO_BIG_FOR_Q));
    EXPECT_EQ(getInto(target).body, "hello");
}

TEST_F(PropertyDelivery, QueueManagerLimitsTheirLength)
{
    alterQueueManager({{MQIA_MAX_PROPERTIES_LENGTH, 10}});
    set(hmsg, "color", "12345");
    EXPECT_EQ(putWith(hmsg), ok);
    set(hmsg, "color", "123456");
    EXPECT_EQ(putWith(hmsg), failed(MQRC_PROPERTIES_TOO_BIG));
    EXPECT_EQ(depth("Q1"), 1);
}

TEST_F(PropertyDelivery, LargeValuesAndManyPropertiesArrive)
{
    const std::string large(40000, 'x');
    set(hmsg, "large", large);
    for (int i = 0; i < 1000; ++i)
        set(hmsg, "p" + std::to_string(i), std::to_string(i));
    ASSERT_EQ(putWith(hmsg), ok);
    ASSERT_EQ(getInto(target).codes, ok);
    EXPECT_EQ(inquire(target, "large").value, large);
    EXPECT_EQ(shown(target), shown(hmsg));
    ASSERT_EQ(putWith(hmsg, std::string(70000, 'y')), ok);
    const Got got = get(hconn, q1, version2Md(), gmoWith(MQGMO_NO_SYNCPOINT, MQGMO_VERSION_4), 300000);
    EXPECT_EQ(got.codes, ok);
    EXPECT_EQ(got.body.substr(got.body.size() - 70000), std::string(70000, 'y'));
    put(hconn, q1, got.body, ofFormat("MQHRF2"));
    EXPECT_EQ(getInto(target, MQGMO_PROPERTIES_IN_HANDLE, 70000).body, std::string(70000, 'y'));
    EXPECT_EQ(shown(target), shown(hmsg)) << "also by way of the header";
}

int writeTransactions;

// How often others had to wait for the get.
int transactionsOf(const std::function<void()> &get)
{
    writeTransactions = 0;
    store::seams.storageError = [](store::StorageCall call) {
        if (call == store::StorageCall::LiveBegin) ++writeTransactions;
        return 0;
    };
    get();
    store::seams.storageError = nullptr;
    return writeTransactions;
}

TEST_F(PropertyDelivery, LongHeadersAreReadWhileNobodyWaits)
{
    const std::string folder = "<usr><long>" + std::string(5000, 'x') + "</long></usr>";
    const std::string body = withFolders({folder}, "hello");
    put(hconn, q1, body, ofFormat("MQHRF2"));
    put(hconn, q1, withFolders({"<usr><a>1</a></usr>"}, "hello"), ofFormat("MQHRF2"));
    put(hconn, q1, std::string(5000, 'x'));
    Got got;
    EXPECT_EQ(transactionsOf([&] { got = getInto(target); }), 2) << "found by the first, taken by the second";
    EXPECT_EQ(got.body, "hello");
    EXPECT_EQ(inquire(target, "long").value.size(), 5000u);
    EXPECT_EQ(transactionsOf([&] { got = getInto(target); }), 1);
    EXPECT_EQ(shown(target), "a=1");
    EXPECT_EQ(transactionsOf([&] { got = getInto(target); }), 1);
    EXPECT_EQ(got.body.size(), 5000u);
}

TEST_F(PropertyDelivery, LongHeadersAreTakenInEveryWay)
{
    const std::string folder = "<usr><long>" + std::string(5000, 'x') + "</long></usr>";
    const std::string body = withFolders({folder}, "hello");
    MQMD md = ofFormat("MQHRF2");
    md.Expiry = 10000;
    put(hconn, q1, body, md);
    const Got whole = getInto(target, MQGMO_NO_PROPERTIES, 4);
    EXPECT_EQ(whole.codes, warned(MQRC_TRUNCATED_MSG_FAILED));
    EXPECT_EQ(whole.body, "hell");
    EXPECT_EQ(whole.dataLength, 5);

    // Got and backed out in a unit of work.
    MQGMO gmo = gmoWith(MQGMO_SYNCPOINT | MQGMO_PROPERTIES_IN_HANDLE, MQGMO_VERSION_4);
    gmo.MsgHandle = target;
    EXPECT_EQ(get(hconn, q1, version2Md(), gmo).body, "hello");
    EXPECT_EQ(getInto(create(hconn)).codes, failed(MQRC_NO_MSG_AVAILABLE));
    backOut(hconn);

    // Under the cursor, where it is locked.
    gmo.Options = MQGMO_BROWSE_FIRST | MQGMO_LOCK | MQGMO_PROPERTIES_IN_HANDLE;
    EXPECT_EQ(get(hconn, q1, version2Md(), gmo).body, "hello");
    gmo.Options = MQGMO_MSG_UNDER_CURSOR | MQGMO_NO_SYNCPOINT | MQGMO_PROPERTIES_IN_HANDLE;
    const Got got = get(hconn, q1, version2Md(), gmo);
    EXPECT_EQ(got.codes, ok);
    EXPECT_EQ(got.body, "hello");
    EXPECT_EQ(got.md.BackoutCount, 1);
    EXPECT_EQ(inquire(target, "long").value.size(), 5000u);
    EXPECT_EQ(get(hconn, q1, version2Md(), gmo).codes, failed(MQRC_NO_MSG_UNDER_CURSOR));
    EXPECT_EQ(depth("Q1"), 0);
}

TEST_F(PropertyDelivery, BrowseAndUnitsOfWorkDeliverThem)
{
    set(hmsg, "color", "red");
    MQPMO pmo = pmoWith(MQPMO_SYNCPOINT);
    pmo.Version = MQPMO_VERSION_3;
    pmo.OriginalMsgHandle = hmsg;
    put(hconn, q1, "hello", {MQMD_DEFAULT}, pmo);
    commit(hconn);
    MQGMO gmo = gmoWith(MQGMO_BROWSE_FIRST | MQGMO_PROPERTIES_IN_HANDLE, MQGMO_VERSION_4);
    gmo.MsgHandle = target;
    EXPECT_EQ(get(hconn, q1, version2Md(), gmo).body, "hello");
    EXPECT_EQ(shown(target), "color=red");
    gmo.Options = MQGMO_SYNCPOINT | MQGMO_PROPERTIES_IN_HANDLE;
    EXPECT_EQ(get(hconn, q1, version2Md(), gmo).body, "hello");
    backOut(hconn);
    EXPECT_EQ(get(hconn, q1, version2Md(), gmo).body, "hello");
    EXPECT_EQ(shown(target), "color=red");
    commit(hconn);
}

// ---- Messages made from others ----

TEST_F(PropertyDelivery, ActionsChooseWhatIsCopied)
{
    const auto add = [&](const char *name, MQLONG copy) {
        MQPD pd = {MQPD_DEFAULT};
        pd.CopyOptions = copy;
        set(hmsg, name, MQTYPE_STRING, "1", {MQSMPO_DEFAULT}, pd);
    };
    add("default", MQCOPY_DEFAULT);
    add("none", MQCOPY_NONE);
    add("reply", MQCOPY_REPLY);
    add("all", MQCOPY_ALL);
    const auto copied = [&](MQLONG action) {
        EXPECT_EQ(putWith(hmsg, "", {MQMD_DEFAULT}, MQHM_NONE, action), ok);
        getInto(target);
        return shown(target);
    };
    EXPECT_EQ(copied(MQACTP_NEW), "default=1 none=1 reply=1 all=1");
    EXPECT_EQ(copied(MQACTP_FORWARD), "default=1 all=1");
    EXPECT_EQ(copied(MQACTP_REPLY), "reply=1 all=1");
    EXPECT_EQ(copied(MQACTP_REPORT), "default=1 all=1");
    EXPECT_EQ(putWith(hmsg, "", {MQMD_DEFAULT}, MQHM_NONE, 4), failed(MQRC_ACTION_ERROR));
    EXPECT_EQ(putWith(MQHM_NONE, "", {MQMD_DEFAULT}, hmsg, MQACTP_REPLY), failed(MQRC_HMSG_ERROR));
}

TEST_F(PropertyDelivery, UserContextIsPassedOn)
{
    defineQueue("NEXT");
    q1 = open(hconn, "Q1", everything | MQOO_SAVE_ALL_CONTEXT);
    const MQHOBJ next = open(hconn, "NEXT", MQOO_OUTPUT | MQOO_INPUT_SHARED | MQOO_PASS_ALL_CONTEXT);
    const std::string body = withFolders(
        {"<usr><inBody context='user'>3</inBody><else>4</else><mine context='user'>5</mine></usr>"}, "hello");
    MQPD pd = {MQPD_DEFAULT};
    set(hmsg, "other", MQTYPE_STRING, "0", {MQSMPO_DEFAULT}, pd);
    pd.Context = MQPD_USER_CONTEXT;
    set(hmsg, "mine", MQTYPE_STRING, "1", {MQSMPO_DEFAULT}, pd);
    set(hmsg, "size", MQTYPE_INT32, bytesOf(MQLONG{2}), {MQSMPO_DEFAULT}, pd);

    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT | MQPMO_PASS_ALL_CONTEXT);
    pmo.Context = q1;
    const auto arrived = [&](const MQPMO &with, MQLONG getOptions = MQGMO_PROPERTIES_IN_HANDLE) {
        MQGMO gmo = gmoWith(MQGMO_NO_SYNCPOINT | getOptions, MQGMO_VERSION_4);
        gmo.MsgHandle = target;
        EXPECT_EQ(putWith(hmsg, body, ofFormat("MQHRF2")), ok);
        EXPECT_EQ(get(hconn, q1, version2Md(), gmo).codes, ok);
        EXPECT_EQ(put(hconn, next, "next", {MQMD_DEFAULT}, with), ok);
        gmo.Options = MQGMO_NO_SYNCPOINT | MQGMO_PROPERTIES_IN_HANDLE;
        EXPECT_EQ(get(hconn, next, version2Md(), gmo).body, "next");
        return shown(target);
    };
    EXPECT_EQ(arrived(pmo), "mine=1 size=2 inBody=3");
    EXPECT_EQ(arrived(pmo, MQGMO_NO_PROPERTIES), "mine=1 size=2 inBody=3");
    EXPECT_EQ(arrived(pmo, MQGMO_PROPERTIES_FORCE_MQRFH2), "mine=1 size=2 inBody=3");
    EXPECT_EQ(arrived(pmoWith(MQPMO_NO_SYNCPOINT)), "");

    // The handles of the put go first.
    const MQHMSG created = create(hconn);
    set(created, "mine", "new");
    pmo.Version = MQPMO_VERSION_3;
    pmo.NewMsgHandle = created;
    EXPECT_EQ(arrived(pmo), "mine=new size=2 inBody=3");
    EXPECT_EQ(shown(created), "mine=new size=2 inBody=3") << "it is the message that was put";
    pmo.NewMsgHandle = MQHM_NONE;
    pmo.OriginalMsgHandle = hmsg;
    EXPECT_EQ(arrived(pmo), "other=0 mine=1 size=2 inBody=3");

    // A browse leaves no context, and so no properties of it.
    pmo.OriginalMsgHandle = MQHM_NONE;
    putWith(hmsg);
    get(hconn, q1, MQGMO_BROWSE_FIRST);
    EXPECT_EQ(put(hconn, next, "next", {MQMD_DEFAULT}, pmo), failed(MQRC_CONTEXT_NOT_AVAILABLE));
    pmo.Context = MQHO_UNUSABLE_HOBJ;
    EXPECT_EQ(put(hconn, next, "next", {MQMD_DEFAULT}, pmo), failed(MQRC_CONTEXT_HANDLE_ERROR));
    get(hconn, q1);
    pmo.Context = q1;
    EXPECT_EQ(put(hconn, next, "next", {MQMD_DEFAULT}, pmo), ok);
    get(hconn, next);
    put(hconn, q1, "plain");
    get(hconn, q1);
    EXPECT_EQ(put(hconn, next, "next", {MQMD_DEFAULT}, pmo), ok) << "of a message without any";
    MQGMO gmo = gmoWith(MQGMO_NO_SYNCPOINT | MQGMO_PROPERTIES_IN_HANDLE, MQGMO_VERSION_4);
    gmo.MsgHandle = target;
    get(hconn, next, version2Md(), gmo);
    EXPECT_EQ(shown(target), "");
}

TEST_F(PropertyDelivery, ReportsCopyWhatMayBeReported)
{
    defineQueue("ANSWERS");
    MQPD pd = {MQPD_DEFAULT};
    set(hmsg, "yes", MQTYPE_STRING, "1", {MQSMPO_DEFAULT}, pd);
    pd.CopyOptions = MQCOPY_REPLY;
    set(hmsg, "no", MQTYPE_STRING, "1", {MQSMPO_DEFAULT}, pd);
    MQMD md = version2Md();
    md.Report = MQRO_COA_WITH_FULL_DATA;
    setText(md.ReplyToQ, "ANSWERS");
    ASSERT_EQ(putWith(hmsg, "hello", md), ok);
    q1 = open(hconn, "ANSWERS", everything);
    EXPECT_EQ(getInto(target).body, "hello");
    EXPECT_EQ(shown(target), "yes=1");
}

TEST_F(PropertyDelivery, NewHandleGoesBeforeTheOriginal)
{
    set(hmsg, "a", "old");
    set(hmsg, "b", "2");
    const MQHMSG created = create(hconn);
    set(created, "a", "new");
    ASSERT_EQ(putWith(hmsg, "hello", {MQMD_DEFAULT}, created, MQACTP_FORWARD), ok);
    EXPECT_EQ(shown(created), "b=2 a=new") << "it is the message that was put";
    EXPECT_EQ(shown(hmsg), "a=old b=2");
    EXPECT_EQ(inquire(created, "Root.MQMD.MsgId").value.substr(0, 4), "AMQ ");
    getInto(target);
    EXPECT_EQ(shown(target), "b=2 a=new");
    EXPECT_EQ(putWith(hmsg, "hello", {MQMD_DEFAULT}, hmsg), ok) << "the same handle twice";
}

TEST_F(PropertyDelivery, HandlesMakeTheDescriptor)
{
    MQMD md = withPriority(3);
    setBytes(md.MsgId, "question");
    put(hconn, q1, "hello", md);
    getInto(hmsg);
    const MQHMSG created = create(hconn);
    set(created, "Root.MQMD.Feedback", MQTYPE_INT32, bytesOf(MQLONG{77}));
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT | MQPMO_MD_FOR_OUTPUT_ONLY);
    pmo.Version = MQPMO_VERSION_3;
    pmo.OriginalMsgHandle = hmsg;
    pmo.NewMsgHandle = created;
    pmo.Action = MQACTP_REPLY;
    MQMD out = withPriority(9);
    EXPECT_EQ(putInOut(hconn, q1, "answer", out, pmo), ok);
    EXPECT_EQ(out.Priority, 3);
    const Got got = get(hconn, q1);
    EXPECT_EQ(got.md.MsgType, MQMT_REPLY);
    EXPECT_EQ(got.md.Priority, 3);
    EXPECT_EQ(got.md.Feedback, 77);
    EXPECT_EQ(bytes(got.md.CorrelId).substr(0, 8), "question");
}

TEST_F(PropertyDelivery, AnswersTakeDiscardAndExpiryOverWhereTheQuestionWantsIt)
{
    const auto answered = [&](MQLONG report, MQLONG action) {
        MQMD md = withExpiry(5000);
        md.Report = report;
        EXPECT_EQ(put(hconn, q1, "question", md), ok);
        EXPECT_EQ(getInto(hmsg).body, "question");
        MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT | MQPMO_MD_FOR_OUTPUT_ONLY);
        pmo.Version = MQPMO_VERSION_3;
        pmo.OriginalMsgHandle = hmsg;
        pmo.Action = action;
        MQMD out = {MQMD_DEFAULT};
        EXPECT_EQ(putInOut(hconn, q1, "answer", out, pmo), ok);
        return get(hconn, q1).md;
    };
    for (const MQLONG action : {MQACTP_REPLY, MQACTP_REPORT}) {
        const MQMD asked = answered(MQRO_PASS_DISCARD_AND_EXPIRY | MQRO_DISCARD_MSG | MQRO_PASS_CORREL_ID, action);
        EXPECT_EQ(asked.Report, MQRO_DISCARD_MSG);
        EXPECT_GT(asked.Expiry, 0);
        EXPECT_LE(asked.Expiry, 5000);
        const MQMD expiryOnly = answered(MQRO_PASS_DISCARD_AND_EXPIRY, action);
        EXPECT_EQ(expiryOnly.Report, MQRO_NONE);
        EXPECT_LE(expiryOnly.Expiry, 5000);
        EXPECT_NE(expiryOnly.Expiry, MQEI_UNLIMITED);
        const MQMD notAsked = answered(MQRO_DISCARD_MSG, action);
        EXPECT_EQ(notAsked.Report, MQRO_NONE);
        EXPECT_EQ(notAsked.Expiry, MQEI_UNLIMITED);
    }
}

TEST_F(PropertyDelivery, DescriptorOfTheHandlesIsJudgedLikeAnyOther)
{
    // What receives may hold anything.
    MQMD out = version2Md();
    out.Report = -1;
    out.MsgFlags = -1;
    setText(out.Format, MQFMT_MD_EXTENSION);
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT | MQPMO_MD_FOR_OUTPUT_ONLY);
    pmo.Version = MQPMO_VERSION_3;
    pmo.OriginalMsgHandle = hmsg;
    EXPECT_EQ(putInOut(hconn, q1, "hello", out, pmo), ok);
    EXPECT_EQ(out.Report, MQRO_NONE) << "it receives the whole descriptor";
    EXPECT_EQ(out.MsgFlags, MQMF_NONE);
    EXPECT_EQ(text(out.Format), "");
    EXPECT_EQ(get(hconn, q1).body, "hello");

    set(hmsg, "Root.MQMD.Report", MQTYPE_INT32, bytesOf(MQLONG{MQRO_REJECT_UNSUP_MASK}));
    EXPECT_EQ(putInOut(hconn, q1, "hello", out, pmo), failed(MQRC_REPORT_OPTIONS_ERROR));
    set(hmsg, "Root.MQMD.Report", MQTYPE_INT32, bytesOf(MQLONG{MQRO_NONE}));
    set(hmsg, "Root.MQMD.MsgFlags", MQTYPE_INT32, bytesOf(MQLONG{0x00000080}));
    EXPECT_EQ(putInOut(hconn, q1, "hello", out, pmo), failed(MQRC_MSG_FLAGS_ERROR));
    set(hmsg, "Root.MQMD.MsgFlags", MQTYPE_INT32, bytesOf(MQLONG{MQMF_NONE}));
    set(hmsg, "Root.MQMD.Format", MQFMT_MD_EXTENSION);
    EXPECT_EQ(putInOut(hconn, q1, "hello", out, pmo), failed(MQRC_MDE_ERROR));

    pmo.OriginalMsgHandle = MQHM_NONE;
    EXPECT_EQ(putInOut(hconn, q1, "hello", out, pmo), failed(MQRC_MD_ERROR)) << "no handle that could make one";
}

TEST_F(PropertyDelivery, PutsWithAHandleNeedNoDescriptor)
{
    set(hmsg, "color", "red");
    set(hmsg, "Root.MQMD.Priority", MQTYPE_INT32, bytesOf(MQLONG{7}));
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    pmo.Version = MQPMO_VERSION_3;
    char body[] = "hello";
    const auto putWithout = [&](MQHMSG original, MQHMSG created) {
        pmo.OriginalMsgHandle = original;
        pmo.NewMsgHandle = created;
        Codes codes;
        MQPUT(hconn, q1, nullptr, &pmo, 5, body, &codes.CompCode, &codes.Reason);
        return codes;
    };
    EXPECT_EQ(putWithout(MQHM_NONE, MQHM_NONE), failed(MQRC_MD_ERROR));
    EXPECT_EQ(putWithout(hmsg, MQHM_NONE), ok);
    EXPECT_EQ(putWithout(MQHM_NONE, hmsg), ok);
    for (int i = 0; i < 2; ++i) {
        const Got got = getInto(target);
        EXPECT_EQ(got.md.Priority, 7);
        EXPECT_EQ(shown(target), "color=red");
    }
    pmo.OriginalMsgHandle = hmsg;
    pmo.NewMsgHandle = MQHM_NONE;
    MQOD od = {MQOD_DEFAULT};
    setText(od.ObjectName, "Q1");
    Codes codes;
    MQPUT1(hconn, &od, nullptr, &pmo, 5, body, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, ok);
    pmo.Options |= MQPMO_ASYNC_RESPONSE;
    MQPUT1(hconn, &od, nullptr, &pmo, 5, body, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, ok);
    EXPECT_EQ(getInto(target).md.Priority, 7);
    EXPECT_EQ(getInto(target).md.Priority, 7);
    pmo.Version = MQPMO_VERSION_2;
    MQPUT1(hconn, &od, nullptr, &pmo, 5, body, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_MD_ERROR)) << "the handles are not there";
}

TEST_F(PropertyDelivery, GetsIntoAHandleNeedNoDescriptor)
{
    put(hconn, q1, "one", withPriority(3));
    MQMD md = withPriority(4);
    setBytes(md.CorrelId, "wanted");
    put(hconn, q1, "two", md);
    defineQueue("FORCED", {{MQIA_PROPERTY_CONTROL, MQPROP_FORCE_MQRFH2}});
    const MQHOBJ forced = open(hconn, "FORCED", everything);
    char buffer[16];
    MQLONG length = 0;
    MQGMO gmo = gmoWith(MQGMO_NO_SYNCPOINT, MQGMO_VERSION_4);
    gmo.MatchOptions = MQMO_MATCH_CORREL_ID;
    const auto getWithout = [&](MQHMSG handle, MQHOBJ queue, MQLONG options = MQGMO_NONE) {
        gmo.MsgHandle = handle;
        gmo.Options = MQGMO_NO_SYNCPOINT | options;
        Codes codes;
        MQGET(hconn, queue, nullptr, &gmo, sizeof buffer, buffer, &length, &codes.CompCode, &codes.Reason);
        return codes;
    };
    EXPECT_EQ(getWithout(MQHM_NONE, q1), failed(MQRC_MD_ERROR));
    EXPECT_EQ(getWithout(target, q1, MQGMO_PROPERTIES_FORCE_MQRFH2), failed(MQRC_MD_ERROR));
    EXPECT_EQ(getWithout(target, forced), failed(MQRC_MD_ERROR));
    EXPECT_EQ(getWithout(target, forced, MQGMO_PROPERTIES_IN_HANDLE), failed(MQRC_NO_MSG_AVAILABLE));

    set(target, "Root.MQMD.CorrelId", MQTYPE_BYTE_STRING, "wanted");
    EXPECT_EQ(getWithout(target, q1), ok);
    EXPECT_EQ(std::string(buffer, static_cast<std::size_t>(length)), "two") << "the handle says what is wanted";
    EXPECT_EQ(inquire(target, "Root.MQMD.Priority").value, bytesOf(MQLONG{4}));
}

TEST_F(PropertyDelivery, HandleIsLeftAloneWhereTheQueueForcesHeaders)
{
    defineQueue("FORCED", {{MQIA_PROPERTY_CONTROL, MQPROP_FORCE_MQRFH2}});
    q1 = open(hconn, "FORCED", everything);
    set(hmsg, "color", "red");
    set(target, "mine", "1");
    for (const MQHMSG handle : {target, MQHMSG{4711}}) {
        ASSERT_EQ(putWith(hmsg), ok);
        const Got got = getInto(handle, MQGMO_PROPERTIES_AS_Q_DEF);
        EXPECT_EQ(got.codes, ok);
        EXPECT_EQ(text(got.md.Format), "MQHRF2");
    }
    EXPECT_EQ(shown(target), "mine=1");
}

TEST_F(PropertyDelivery, WhatMustBeUnderstoodIsRefused)
{
    MQPD pd = {MQPD_DEFAULT};
    for (const MQLONG support : {MQPD_SUPPORT_REQUIRED, MQPD_SUPPORT_REQUIRED_IF_LOCAL, MQLONG{0x40000000}}) {
        pd.Support = support;
        EXPECT_EQ(set(hmsg, "a", MQTYPE_STRING, "1", {MQSMPO_DEFAULT}, pd), ok);
        EXPECT_EQ(putWith(hmsg), failed(MQRC_UNSUPPORTED_PROPERTY));
    }
    pd.Support = 2;
    EXPECT_EQ(set(hmsg, "a", MQTYPE_STRING, "1", {MQSMPO_DEFAULT}, pd), ok);
    EXPECT_EQ(putWith(hmsg), ok) << "nobody needs to understand it";
}

TEST_F(PropertyDelivery, WhatMustBeUnderstoodHereMayGoElsewhere)
{
    defineTransmissionQueue("QM2");
    const MQLONG supports[] = {MQPD_SUPPORT_REQUIRED_IF_LOCAL, MQPD_SUPPORT_REQUIRED};
    const Codes answers[] = {ok, failed(MQRC_UNSUPPORTED_PROPERTY)};
    MQPD pd = {MQPD_DEFAULT};
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    pmo.Version = MQPMO_VERSION_3;
    pmo.OriginalMsgHandle = hmsg;
    for (int i = 0; i < 2; ++i) {
        pd.Support = supports[i];
        set(hmsg, "a", MQTYPE_STRING, "1", {MQSMPO_DEFAULT}, pd);
        MQOD od = {MQOD_DEFAULT};
        setText(od.ObjectName, "THERE");
        setText(od.ObjectQMgrName, "QM2");
        MQMD md = {MQMD_DEFAULT};
        Codes codes;
        char body[] = "hello";
        MQPUT1(hconn, &od, &md, &pmo, 5, body, &codes.CompCode, &codes.Reason);
        EXPECT_EQ(codes, answers[i]);
        MQHOBJ hobj = MQHO_UNUSABLE_HOBJ;
        ASSERT_EQ(tryOpen(hconn, od, MQOO_OUTPUT, hobj), ok);
        EXPECT_EQ(put(hconn, hobj, "hello", md, pmo), answers[i]);

        // A list that comes by here is one that must be understood here.
        MQOR names[2] = {{MQOR_DEFAULT}, {MQOR_DEFAULT}};
        MQOD list = {MQOD_DEFAULT};
        list.Version = MQOD_VERSION_2;
        list.RecsPresent = 2;
        list.ObjectRecPtr = names;
        setText(names[0].ObjectName, "THERE");
        setText(names[0].ObjectQMgrName, "QM2");
        setText(names[1].ObjectName, "ALSO");
        setText(names[1].ObjectQMgrName, "QM2");
        ASSERT_EQ(tryOpen(hconn, list, MQOO_OUTPUT, hobj), ok);
        EXPECT_EQ(put(hconn, hobj, "hello", md, pmo), answers[i]);
        setText(names[1].ObjectName, "Q1");
        setText(names[1].ObjectQMgrName, "");
        ASSERT_EQ(tryOpen(hconn, list, MQOO_OUTPUT, hobj), ok);
        EXPECT_EQ(put(hconn, hobj, "hello", md, pmo), failed(MQRC_UNSUPPORTED_PROPERTY));
        MQPUT1(hconn, &list, &md, &pmo, 5, body, &codes.CompCode, &codes.Reason);
        EXPECT_EQ(codes, failed(MQRC_UNSUPPORTED_PROPERTY));
    }
}

} // namespace
} // namespace mqrig::qmgr::testing
