// MQSETMP, MQINQMP, MQDLTMP.
#include "property_calls.h"

namespace mqrig::qmgr::testing {
namespace {

class Properties : public PropertyTest {
public:
    Properties() : hmsg(create(hconn)) {}

    MQHMSG hmsg;
};

TEST_F(Properties, EveryTypeComesBackAsItWasSet)
{
    const std::pair<MQLONG, std::string> values[] = {
        {MQTYPE_NULL, ""},
        {MQTYPE_BOOLEAN, bytesOf(MQLONG{1})},
        {MQTYPE_BYTE_STRING, std::string("\0\xFF", 2)},
        {MQTYPE_INT8, bytesOf(MQINT8{-5})},
        {MQTYPE_INT16, bytesOf(MQINT16{-300})},
        {MQTYPE_INT32, bytesOf(MQLONG{-70000})},
        {MQTYPE_INT64, bytesOf(MQINT64{9000000000})},
        {MQTYPE_FLOAT32, bytesOf(1.5F)},
        {MQTYPE_FLOAT64, bytesOf(-2.5e10)},
        {MQTYPE_STRING, "r\u00e4d"},
        {MQTYPE_STRING, ""},
    };
    for (const auto &[type, value] : values) {
        EXPECT_EQ(set(hmsg, "p", type, value), ok) << type;
        const Inquired got = inquire(hmsg, "p");
        EXPECT_EQ(got.codes, ok) << type;
        EXPECT_EQ(got.type, type);
        EXPECT_EQ(got.value, value) << type;
        EXPECT_EQ(got.name, "p");
        EXPECT_EQ(got.impo.ReturnedEncoding, MQENC_NATIVE);
    }
    EXPECT_EQ(set(hmsg, "p", MQTYPE_AS_SET, ""), failed(MQRC_PROPERTY_TYPE_ERROR));
    EXPECT_EQ(set(hmsg, "p", MQTYPE_INT32, "abc"), failed(MQRC_BUFFER_LENGTH_ERROR));
}

TEST_F(Properties, ValuesAreGivenAndWantedInEitherOrder)
{
    MQSMPO smpo = {MQSMPO_DEFAULT};
    smpo.ValueEncoding = MQENC_NORMAL;
    EXPECT_EQ(set(hmsg, "p", MQTYPE_INT32, std::string("\0\0\1\2", 4), smpo), ok);
    EXPECT_EQ(inquire(hmsg, "p").value, bytesOf(MQLONG{258}));
    MQIMPO impo = impoWith(MQIMPO_CONVERT_VALUE);
    impo.RequestedEncoding = MQENC_NORMAL;
    const Inquired swapped = inquire(hmsg, "p", impo);
    EXPECT_EQ(swapped.value, std::string("\0\0\1\2", 4));
    EXPECT_EQ(swapped.impo.ReturnedEncoding, MQENC_NORMAL);
}

TEST_F(Properties, StringsAreConvertedOnRequest)
{
    MQSMPO smpo = {MQSMPO_DEFAULT};
    smpo.ValueCCSID = 500;
    EXPECT_EQ(set(hmsg, "p", MQTYPE_STRING, "\x81\x82", smpo), ok);
    EXPECT_EQ(inquire(hmsg, "p").value, "\x81\x82");
    EXPECT_EQ(inquire(hmsg, "p").impo.ReturnedCCSID, 500);
    EXPECT_EQ(inquire(hmsg, "p", impoWith(MQIMPO_CONVERT_VALUE)).value, "ab");
    MQIMPO impo = impoWith(MQIMPO_CONVERT_VALUE);
    impo.RequestedCCSID = 1200;
    impo.RequestedEncoding = MQENC_NORMAL;
    const Inquired wide = inquire(hmsg, "p", impo);
    EXPECT_EQ(wide.value, std::string("\0a\0b", 4));
    EXPECT_EQ(wide.name, std::string("\0p", 2)) << "the name too";
    EXPECT_EQ(wide.impo.ReturnedName.VSCCSID, 1200);
    impo.RequestedCCSID = 99999;
    const Inquired unknown = inquire(hmsg, "p", impo);
    EXPECT_EQ(unknown.codes, warned(MQRC_PROP_VALUE_NOT_CONVERTED));
    EXPECT_EQ(unknown.value, "\x81\x82");
    EXPECT_EQ(unknown.impo.ReturnedCCSID, 500);
    smpo.ValueCCSID = 99999;
    EXPECT_EQ(set(hmsg, "p", MQTYPE_STRING, "a", smpo), failed(MQRC_SOURCE_CCSID_ERROR));
}

TEST_F(Properties, NamesThatCannotBeConvertedAreWarnedAbout)
{
    EXPECT_EQ(set(hmsg, "\u20ac", MQTYPE_INT8, "\1"), ok);
    MQIMPO impo = impoWith(MQIMPO_CONVERT_VALUE);
    impo.RequestedCCSID = 819;
    const Inquired got = inquire(hmsg, "%", impo);
    EXPECT_EQ(got.codes, warned(MQRC_PROP_NAME_NOT_CONVERTED));
    EXPECT_EQ(got.name, "\u20ac");
    EXPECT_EQ(got.impo.ReturnedName.VSCCSID, 1208);
}

TEST_F(Properties, TypesAreConvertedOnRequest)
{
    set(hmsg, "p", MQTYPE_INT16, bytesOf(MQINT16{42}));
    const Inquired wide = inquire(hmsg, "p", impoWith(MQIMPO_CONVERT_TYPE), MQTYPE_INT64);
    EXPECT_EQ(wide.value, bytesOf(MQINT64{42}));
    EXPECT_EQ(wide.type, MQTYPE_INT64);
    EXPECT_EQ(inquire(hmsg, "p", impoWith(MQIMPO_CONVERT_TYPE), MQTYPE_STRING).value, "42");
    EXPECT_EQ(inquire(hmsg, "p", impoWith(MQIMPO_CONVERT_TYPE), MQTYPE_AS_SET).type, MQTYPE_INT16);
    const Inquired narrow = inquire(hmsg, "p", impoWith(MQIMPO_CONVERT_TYPE), MQTYPE_INT8);
    EXPECT_EQ(narrow.codes, failed(MQRC_PROP_CONV_NOT_SUPPORTED));
    EXPECT_EQ(narrow.type, MQTYPE_INT16) << "tells what it is";
    set(hmsg, "p", "red");
    EXPECT_EQ(inquire(hmsg, "p", impoWith(MQIMPO_CONVERT_TYPE), MQTYPE_INT8).codes,
              failed(MQRC_PROP_NUMBER_FORMAT_ERROR));
    EXPECT_EQ(inquire(hmsg, "p", impoWith(MQIMPO_CONVERT_TYPE), 3).codes, failed(MQRC_PROPERTY_TYPE_ERROR));
}

TEST_F(Properties, WildcardsWalk)
{
    set(hmsg, "a", "1");
    set(hmsg, "f.x", "2");
    set(hmsg, "b", "3");
    EXPECT_EQ(shown(hmsg), "a=1 b=3 f.x=2");
    EXPECT_EQ(shown(hmsg, "usr.%"), "a=1 b=3");
    EXPECT_EQ(shown(hmsg, "f.%"), "f.x=2");
    EXPECT_EQ(shown(hmsg, "f.x"), "f.x=2");
    EXPECT_EQ(shown(hmsg, "z%"), "");
    EXPECT_EQ(inquire(hmsg, "a%b").codes, failed(MQRC_PROPERTY_NAME_ERROR));
}

TEST_F(Properties, UnderCursorIsTheLastOneInquired)
{
    set(hmsg, "a", "1");
    set(hmsg, "b", "2");
    const MQIMPO stay = impoWith(MQIMPO_INQ_PROP_UNDER_CURSOR);
    EXPECT_EQ(inquire(hmsg, "%", stay).codes, failed(MQRC_PROPERTY_NOT_AVAILABLE));
    inquire(hmsg, "b");
    EXPECT_EQ(inquire(hmsg, "%", stay).value, "2");
    EXPECT_EQ(inquire(hmsg, "b", impoWith(MQIMPO_INQ_NEXT)).codes, failed(MQRC_PROPERTY_NOT_AVAILABLE));
    EXPECT_EQ(inquire(hmsg, "%", impoWith(MQIMPO_INQ_NEXT | MQIMPO_INQ_PROP_UNDER_CURSOR)).codes,
              failed(MQRC_OPTIONS_ERROR));
    EXPECT_EQ(inquire(hmsg, "a", impoWith(MQIMPO_CONVERT_TYPE), MQTYPE_BYTE_STRING).codes,
              failed(MQRC_PROP_CONV_NOT_SUPPORTED));
    EXPECT_EQ(inquire(hmsg, "%", stay).value, "2") << "what was not converted has not moved it";
}

TEST_F(Properties, NextOfAnotherNameIsTheFirst)
{
    set(hmsg, "a", "1");
    set(hmsg, "b", "2");
    const MQIMPO next = impoWith(MQIMPO_INQ_NEXT);
    EXPECT_EQ(inquire(hmsg, "b").value, "2");
    EXPECT_EQ(inquire(hmsg, "%", next).name, "a");
    EXPECT_EQ(inquire(hmsg, "%", next).name, "b");
    EXPECT_EQ(inquire(hmsg, "%", next).codes, failed(MQRC_PROPERTY_NOT_AVAILABLE));
}

TEST_F(Properties, NamesOfJmsAreTold)
{
    EXPECT_EQ(set(hmsg, "JMSReplyTo", "queue:///A"), ok);
    EXPECT_EQ(set(hmsg, "jms.Foo", "1"), ok);
    EXPECT_EQ(shown(hmsg), "JMSReplyTo=queue:///A jms.Foo=1");
    EXPECT_EQ(shown(hmsg, "JMS%"), "JMSReplyTo=queue:///A");
    EXPECT_EQ(inquire(hmsg, "jms.Rto").name, "JMSReplyTo");
    EXPECT_EQ(inquire(hmsg, "JMSReplyTo").value, "queue:///A");
    const Inquired cut = inquire(hmsg, "jms.Rto", {MQIMPO_DEFAULT}, MQTYPE_AS_SET, 100, 9);
    EXPECT_EQ(cut.codes, failed(MQRC_PROPERTY_NAME_TOO_BIG));
    EXPECT_EQ(cut.impo.ReturnedName.VSLength, 10);
}

TEST_F(Properties, SmallBuffersTellWhatIsNeeded)
{
    set(hmsg, "first", "1");
    set(hmsg, "longer", std::string(100, 'x'));
    const Inquired value = inquire(hmsg, "longer", {MQIMPO_DEFAULT}, MQTYPE_AS_SET, 99);
    EXPECT_EQ(value.codes, failed(MQRC_PROPERTY_VALUE_TOO_BIG));
    EXPECT_EQ(value.dataLength, 100);
    EXPECT_EQ(inquire(hmsg, "%", impoWith(MQIMPO_INQ_PROP_UNDER_CURSOR)).value, std::string(100, 'x'));
    const Inquired name = inquire(hmsg, "longer", {MQIMPO_DEFAULT}, MQTYPE_AS_SET, 100, 5);
    EXPECT_EQ(name.codes, failed(MQRC_PROPERTY_NAME_TOO_BIG));
    EXPECT_EQ(name.impo.ReturnedName.VSLength, 6);
    EXPECT_EQ(inquire(hmsg, "longer", {MQIMPO_DEFAULT}, MQTYPE_AS_SET, 100, 6).codes, ok);
    const Inquired lengths = inquire(hmsg, "longer", impoWith(MQIMPO_QUERY_LENGTH), MQTYPE_AS_SET, 1, 1);
    EXPECT_EQ(lengths.codes, ok);
    EXPECT_EQ(lengths.dataLength, 100);
    EXPECT_EQ(lengths.impo.ReturnedName.VSLength, 6);
}

TEST_F(Properties, NothingIsWrittenBehindTheBuffers)
{
    set(hmsg, "longer", std::string(100, 'x'));
    char value[16];
    char name[8];
    std::memset(value, '#', sizeof value);
    std::memset(name, '#', sizeof name);
    MQIMPO impo = {MQIMPO_DEFAULT};
    impo.ReturnedName.VSPtr = name;
    impo.ReturnedName.VSBufSize = 4;
    MQPD pd = {MQPD_DEFAULT};
    MQCHARV all = charv("%");
    MQLONG type = 0;
    MQLONG length = 0;
    Codes codes;
    MQINQMP(hconn, hmsg, &impo, &all, &pd, &type, 8, value, &length, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_PROPERTY_NAME_TOO_BIG));
    impo.ReturnedName.VSBufSize = 6;
    MQINQMP(hconn, hmsg, &impo, &all, &pd, &type, 8, value, &length, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_PROPERTY_VALUE_TOO_BIG));
    EXPECT_EQ(std::string(name, 8), "longer##");
    EXPECT_EQ(std::string(value + 8, 8), "########");
}

TEST_F(Properties, PlacesAroundTheCursorAreSet)
{
    set(hmsg, "a", "1");
    set(hmsg, "b", "2");
    inquire(hmsg, "a");
    MQSMPO smpo = {MQSMPO_DEFAULT};
    smpo.Options = MQSMPO_SET_PROP_AFTER_CURSOR;
    EXPECT_EQ(set(hmsg, "c", MQTYPE_STRING, "3", smpo), ok);
    smpo.Options = MQSMPO_SET_PROP_BEFORE_CURSOR;
    EXPECT_EQ(set(hmsg, "d", MQTYPE_STRING, "4", smpo), ok);
    smpo.Options = MQSMPO_SET_PROP_UNDER_CURSOR;
    EXPECT_EQ(set(hmsg, "ignored", MQTYPE_STRING, "9", smpo), ok);
    smpo.Options = MQSMPO_APPEND_PROPERTY;
    EXPECT_EQ(set(hmsg, "a", MQTYPE_STRING, "5", smpo), ok);
    EXPECT_EQ(shown(hmsg), "d=4 a=9 a=5 c=3 b=2");
    smpo.Options = MQSMPO_APPEND_PROPERTY | MQSMPO_SET_PROP_UNDER_CURSOR;
    EXPECT_EQ(set(hmsg, "a", MQTYPE_STRING, "5", smpo), failed(MQRC_OPTIONS_ERROR));
    smpo.Options = 32;
    EXPECT_EQ(set(hmsg, "a", MQTYPE_STRING, "5", smpo), failed(MQRC_OPTIONS_ERROR));
    smpo.Options = MQSMPO_SET_PROP_AFTER_CURSOR;
    EXPECT_EQ(set(create(hconn), "a", MQTYPE_STRING, "5", smpo), failed(MQRC_PROPERTY_NOT_AVAILABLE));
}

TEST_F(Properties, NamesAreChecked)
{
    for (const char *name : {"1a", "a b", "NULL", "JMSFoo", "Root.x", "mq.a.b", "a..b", "a%", "Root.MQMD.Foo"})
        EXPECT_EQ(set(hmsg, name, "1"), failed(MQRC_PROPERTY_NAME_ERROR)) << name;
    EXPECT_EQ(set(hmsg, "", "1"), failed(MQRC_PROPERTY_NAME_LENGTH_ERR));
    EXPECT_EQ(set(hmsg, std::string(4096, 'a'), "1"), failed(MQRC_PROPERTY_NAME_LENGTH_ERR));
    EXPECT_EQ(set(hmsg, std::string(100000, 'a'), "1"), failed(MQRC_PROPERTY_NAME_LENGTH_ERR));
    set(hmsg, "f.a", "1");
    EXPECT_EQ(set(hmsg, "f.a.b", "1"), failed(MQRC_MIXED_CONTENT_NOT_ALLOWED));
    const MQHMSG free = create(hconn, MQCMHO_NO_VALIDATION);
    EXPECT_EQ(set(free, "JMS_IBM x", "1"), ok);
    EXPECT_EQ(shown(free), "JMS_IBM x=1");
}

Codes setNamed(MQHCONN hconn, MQHMSG hmsg, MQCHARV &name)
{
    MQSMPO smpo = {MQSMPO_DEFAULT};
    MQPD pd = {MQPD_DEFAULT};
    Codes codes;
    MQSETMP(hconn, hmsg, &smpo, &name, &pd, MQTYPE_NULL, 0, nullptr, &codes.CompCode, &codes.Reason);
    return codes;
}

TEST_F(Properties, NamesMayLieAnywhereButNotNowhere)
{
    struct {
        MQCHARV name = {MQCHARV_DEFAULT};
        char behind[8] = "behind";
    } place;
    place.name.VSOffset = offsetof(decltype(place), behind);
    place.name.VSLength = MQVS_NULL_TERMINATED;
    EXPECT_EQ(setNamed(hconn, hmsg, place.name), ok);
    EXPECT_EQ(shown(hmsg), "behind=(null)");

    MQCHARV both = charv("a");
    both.VSOffset = 4;
    MQCHARV nowhere = {MQCHARV_DEFAULT};
    nowhere.VSLength = 3;
    for (MQCHARV *name : {&both, &nowhere})
        EXPECT_EQ(setNamed(hconn, hmsg, *name), failed(MQRC_PROPERTY_NAME_ERROR));
    MQCHARV wrong = charv("a");
    for (const MQLONG length : {0, -2, -2147483647}) {
        wrong.VSLength = length;
        EXPECT_EQ(setNamed(hconn, hmsg, wrong), failed(MQRC_PROPERTY_NAME_LENGTH_ERR)) << length;
    }
    MQCHARV strange = charv("a", 99999);
    EXPECT_EQ(setNamed(hconn, hmsg, strange), failed(MQRC_SOURCE_CCSID_ERROR));
    MQCHARV ebcdic = charv("\x81\x82", 500);
    EXPECT_EQ(setNamed(hconn, hmsg, ebcdic), ok);
    EXPECT_EQ(inquire(hmsg, "ab").codes, ok);
    MQCHARV huge = charv("a");
    huge.VSLength = 0x7FFFFFFF;
    EXPECT_EQ(setNamed(hconn, hmsg, huge), failed(MQRC_PROPERTY_NAME_LENGTH_ERR)) << "and nothing of it is read";
}

TEST_F(Properties, DescriptorsComeBack)
{
    MQPD pd = {MQPD_DEFAULT};
    pd.Context = MQPD_USER_CONTEXT;
    pd.CopyOptions = MQCOPY_REPLY;
    EXPECT_EQ(set(hmsg, "a", MQTYPE_STRING, "1", {MQSMPO_DEFAULT}, pd), ok);
    const Inquired got = inquire(hmsg, "a");
    EXPECT_EQ(got.pd.Context, MQPD_USER_CONTEXT);
    EXPECT_EQ(got.pd.CopyOptions, MQCOPY_REPLY);
    EXPECT_EQ(got.pd.Support, MQPD_SUPPORT_OPTIONAL);
    MQPD bad = pd;
    bad.Context = 2;
    EXPECT_EQ(set(hmsg, "a", MQTYPE_STRING, "1", {MQSMPO_DEFAULT}, bad), failed(MQRC_PD_ERROR));
    bad = pd;
    bad.CopyOptions = 64;
    EXPECT_EQ(set(hmsg, "a", MQTYPE_STRING, "1", {MQSMPO_DEFAULT}, bad), failed(MQRC_PD_ERROR));
    bad = pd;
    bad.Options = 1;
    EXPECT_EQ(set(hmsg, "a", MQTYPE_STRING, "1", {MQSMPO_DEFAULT}, bad), failed(MQRC_PD_ERROR));
}

TEST_F(Properties, FieldsOfTheDescriptorAreProperties)
{
    EXPECT_EQ(set(hmsg, "Root.MQMD.Priority", MQTYPE_INT32, bytesOf(MQLONG{7})), ok);
    EXPECT_EQ(set(hmsg, "Root.MQMD.ReplyToQ", "ANSWERS"), ok);
    EXPECT_EQ(set(hmsg, "Root.MQMD.MsgId", MQTYPE_BYTE_STRING, "abc"), ok);
    EXPECT_EQ(inquire(hmsg, "Root.MQMD.Priority").value, bytesOf(MQLONG{7}));
    EXPECT_EQ(inquire(hmsg, "Root.MQMD.ReplyToQ").value, "ANSWERS");
    EXPECT_EQ(inquire(hmsg, "Root.MQMD.MsgId").value.size(), 24u);
    EXPECT_EQ(inquire(hmsg, "Root.MQMD.Foo").codes, failed(MQRC_PROPERTY_NOT_AVAILABLE));
    EXPECT_EQ(shown(hmsg), "") << "they are no properties of their own";
    EXPECT_EQ(set(hmsg, "Root.MQMD.ReplyToQ", std::string(49, 'A')), failed(MQRC_BUFFER_LENGTH_ERROR));
    EXPECT_EQ(set(hmsg, "Root.MQMD.MsgId", MQTYPE_INT64, bytesOf(MQINT64{1})), failed(MQRC_PROPERTY_TYPE_ERROR));
}

TEST_F(Properties, AreDeletedByNameOrCursor)
{
    const auto removeNamed = [&](std::string_view name, MQLONG options = MQDMPO_DEL_FIRST) {
        MQDMPO dmpo = {MQDMPO_DEFAULT};
        dmpo.Options = options;
        MQCHARV text = charv(name);
        Codes codes;
        MQDLTMP(hconn, hmsg, &dmpo, &text, &codes.CompCode, &codes.Reason);
        return codes;
    };
    set(hmsg, "a", "1");
    set(hmsg, "b", "2");
    set(hmsg, "c", "3");
    EXPECT_EQ(removeNamed("usr.a"), ok);
    EXPECT_EQ(removeNamed("a"), failed(MQRC_PROPERTY_NOT_AVAILABLE));
    EXPECT_EQ(removeNamed("%"), failed(MQRC_PROPERTY_NAME_ERROR));
    EXPECT_EQ(removeNamed("x", MQDMPO_DEL_PROP_UNDER_CURSOR), failed(MQRC_PROPERTY_NOT_AVAILABLE));
    inquire(hmsg, "%");
    EXPECT_EQ(removeNamed("x", MQDMPO_DEL_PROP_UNDER_CURSOR), ok);
    EXPECT_EQ(inquire(hmsg, "%", impoWith(MQIMPO_INQ_NEXT)).name, "c") << "the walk goes on behind it";
    EXPECT_EQ(shown(hmsg), "c=3");
    EXPECT_EQ(removeNamed("c", 2), failed(MQRC_OPTIONS_ERROR));
}

TEST_F(Properties, StructuresAndPlacesAreChecked)
{
    set(hmsg, "a", "1");
    Codes codes;
    MQCHARV all = charv("%");
    MQCHARV a = charv("a");
    MQPD pd = {MQPD_DEFAULT};
    MQSMPO smpo = {MQSMPO_DEFAULT};
    MQIMPO impo = {MQIMPO_DEFAULT};
    MQLONG type = 0;
    MQLONG length = 0;
    char value[8];
    const auto inquireCodes = [&](void *options, void *name, void *descriptor, PMQLONG typeAt, MQLONG room, void *to,
                                  PMQLONG lengthAt) {
        MQINQMP(hconn, hmsg, options, name, descriptor, typeAt, room, to, lengthAt, &codes.CompCode, &codes.Reason);
        return codes;
    };
    EXPECT_EQ(inquireCodes(nullptr, &all, &pd, &type, 8, value, &length), failed(MQRC_IMPO_ERROR));
    EXPECT_EQ(inquireCodes(&impo, nullptr, &pd, &type, 8, value, &length), failed(MQRC_PROPERTY_NAME_ERROR));
    EXPECT_EQ(inquireCodes(&impo, &all, nullptr, &type, 8, value, &length), failed(MQRC_PD_ERROR));
    EXPECT_EQ(inquireCodes(&impo, &all, &pd, nullptr, 8, value, &length), failed(MQRC_PROPERTY_TYPE_ERROR));
    EXPECT_EQ(inquireCodes(&impo, &all, &pd, &type, -1, value, &length), failed(MQRC_BUFFER_LENGTH_ERROR));
    EXPECT_EQ(inquireCodes(&impo, &all, &pd, &type, 8, nullptr, &length), failed(MQRC_BUFFER_ERROR));
    EXPECT_EQ(inquireCodes(&impo, &all, &pd, &type, 8, value, nullptr), failed(MQRC_DATA_LENGTH_ERROR));
    EXPECT_EQ(inquireCodes(&impo, &all, &pd, &type, 8, value, &length), ok) << "no place for the name is needed";
    impo.ReturnedName.VSPtr = value;
    impo.ReturnedName.VSBufSize = -1;
    EXPECT_EQ(inquireCodes(&impo, &all, &pd, &type, 8, value, &length), failed(MQRC_IMPO_ERROR));
    impo.Version = 2;
    EXPECT_EQ(inquireCodes(&impo, &all, &pd, &type, 8, value, &length), failed(MQRC_IMPO_ERROR));
    MQSETMP(hconn, hmsg, nullptr, &a, &pd, MQTYPE_NULL, 0, nullptr, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_SMPO_ERROR));
    MQSETMP(hconn, hmsg, &smpo, &a, nullptr, MQTYPE_NULL, 0, nullptr, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_PD_ERROR));
    MQSETMP(hconn, hmsg, &smpo, &a, &pd, MQTYPE_INT8, 1, nullptr, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_BUFFER_ERROR));
    MQDLTMP(hconn, hmsg, nullptr, &a, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_DMPO_ERROR));
    EXPECT_EQ(shown(hmsg), "a=1");
}

} // namespace
} // namespace mqrig::qmgr::testing
