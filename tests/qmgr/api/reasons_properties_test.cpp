// Reasons of the calls on message handles and properties, each provoked on every call that answers it.
#include <cstring>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "every_call.h"
#include "property_calls.h"

namespace mqrig::qmgr::testing {
namespace {

// The arguments of a call on a handle that has one property, "size"; each call takes those that it has.
struct Arguments {
    MQHMSG hmsg = MQHM_NONE;
    MQCHARV name = charv("size");
    MQPD pd = {MQPD_DEFAULT};
    MQMD md = version2Md();
    MQSMPO smpo = {MQSMPO_DEFAULT};
    MQIMPO impo = {MQIMPO_DEFAULT};
    MQDMPO dmpo = {MQDMPO_DEFAULT};
    MQBMHO bmho = {MQBMHO_DEFAULT};
    MQMHBO mhbo = {MQMHBO_DEFAULT};
    MQDMHO dmho = {MQDMHO_DEFAULT};
    MQLONG type = MQTYPE_INT32;
    MQLONG bufferLength = 4;
    MQLONG dataLength = 0;
    std::string buffer = std::string(1000, '\0');

    // What is passed; null for nothing.
    void *pName = &name;
    void *pPd = &pd;
    void *pMd = &md;
    void *pSmpo = &smpo;
    void *pImpo = &impo;
    void *pDmpo = &dmpo;
    void *pBmho = &bmho;
    void *pMhbo = &mhbo;
    void *pDmho = &dmho;
    PMQHMSG pHmsg = &hmsg;
    PMQLONG pType = &type;
    PMQLONG pDataLength = &dataLength;
    void *pBuffer = buffer.data();
};
using Spoil = std::function<void(Arguments &)>;

class PropertyReasons : public PropertyTest {
public:
    PropertyReasons()
    {
        hmsg = create(hconn);
        set(hmsg, "size", MQTYPE_INT32, bytesOf(MQLONG{42}));
    }

    using Call = Codes (PropertyReasons::*)(Arguments &) const;
    Codes deleteHandle(Arguments &a) const { return answerOf(MQDLTMH, hconn, a.pHmsg, a.pDmho); }
    Codes setProperty(Arguments &a) const
    {
        return answerOf(MQSETMP, hconn, a.hmsg, a.pSmpo, a.pName, a.pPd, a.type, a.bufferLength, a.pBuffer);
    }
    Codes inquireProperty(Arguments &a) const
    {
        return answerOf(MQINQMP, hconn, a.hmsg, a.pImpo, a.pName, a.pPd, a.pType, a.bufferLength, a.pBuffer,
                        a.pDataLength);
    }
    Codes deleteProperty(Arguments &a) const { return answerOf(MQDLTMP, hconn, a.hmsg, a.pDmpo, a.pName); }
    Codes bufferToHandle(Arguments &a) const
    {
        return answerOf(MQBUFMH, hconn, a.hmsg, a.pBmho, a.pMd, a.bufferLength, a.pBuffer, a.pDataLength);
    }
    Codes handleToBuffer(Arguments &a) const
    {
        return answerOf(MQMHBUF, hconn, a.hmsg, a.pMhbo, a.pName, a.pMd, a.bufferLength, a.pBuffer, a.pDataLength);
    }

    void expect(MQLONG reason, const std::vector<Call> &calls, const Spoil &spoil) const
    {
        for (std::size_t i = 0; i < calls.size(); ++i) {
            Arguments arguments;
            arguments.hmsg = hmsg;
            spoil(arguments);
            EXPECT_EQ((this->*calls[i])(arguments), failed(reason)) << "call " << i;
        }
    }

    const std::vector<Call> withName{&PropertyReasons::setProperty, &PropertyReasons::inquireProperty,
                                     &PropertyReasons::deleteProperty, &PropertyReasons::handleToBuffer};
    const std::vector<Call> withBuffer{&PropertyReasons::inquireProperty, &PropertyReasons::bufferToHandle,
                                       &PropertyReasons::handleToBuffer};
    const std::vector<Call> all{&PropertyReasons::deleteHandle,    &PropertyReasons::setProperty,
                                &PropertyReasons::inquireProperty, &PropertyReasons::deleteProperty,
                                &PropertyReasons::bufferToHandle,  &PropertyReasons::handleToBuffer};
    MQHMSG hmsg;
};

TEST_F(PropertyReasons, AHandleIsWanted)
{
    MQHMSG gone = create(hconn);
    const MQHMSG number = gone;
    remove(hconn, gone);
    for (const MQHMSG wrong : {MQHMSG{MQHM_NONE}, MQHMSG{MQHM_UNUSABLE_HMSG}, number})
        expect(MQRC_HMSG_ERROR, all, [wrong](Arguments &a) { a.hmsg = wrong; });
    expect(MQRC_HMSG_ERROR, {&PropertyReasons::deleteHandle}, [](Arguments &a) { a.pHmsg = nullptr; });
    MQCMHO cmho = {MQCMHO_DEFAULT};
    EXPECT_EQ(answerOf(MQCRTMH, hconn, &cmho, nullptr), failed(MQRC_HMSG_ERROR));
}

// Each structure missing, with another StrucId, with a Version that is not there, and with bits that it has not.
TEST_F(PropertyReasons, TheStructureOfTheCallIsWanted)
{
    const auto structure = [&](MQLONG reason, Call call, void *Arguments::*pointer, auto Arguments::*place) {
        expect(reason, {call}, [=](Arguments &a) { a.*pointer = nullptr; });
        expect(reason, {call}, [=](Arguments &a) { (a.*place).StrucId[0] = 'X'; });
        expect(reason, {call}, [=](Arguments &a) { (a.*place).Version = 2; });
        expect(MQRC_OPTIONS_ERROR, {call}, [=](Arguments &a) { (a.*place).Options = 0x40000000; });
    };
    structure(MQRC_DMHO_ERROR, &PropertyReasons::deleteHandle, &Arguments::pDmho, &Arguments::dmho);
    structure(MQRC_SMPO_ERROR, &PropertyReasons::setProperty, &Arguments::pSmpo, &Arguments::smpo);
    structure(MQRC_IMPO_ERROR, &PropertyReasons::inquireProperty, &Arguments::pImpo, &Arguments::impo);
    structure(MQRC_DMPO_ERROR, &PropertyReasons::deleteProperty, &Arguments::pDmpo, &Arguments::dmpo);
    structure(MQRC_BMHO_ERROR, &PropertyReasons::bufferToHandle, &Arguments::pBmho, &Arguments::bmho);
    structure(MQRC_MHBO_ERROR, &PropertyReasons::handleToBuffer, &Arguments::pMhbo, &Arguments::mhbo);
}

TEST_F(PropertyReasons, NamesAreWanted)
{
    expect(MQRC_PROPERTY_NAME_ERROR, withName, [](Arguments &a) { a.pName = nullptr; });
    expect(MQRC_PROPERTY_NAME_ERROR, withName, [](Arguments &a) { a.name.VSPtr = nullptr; });
    expect(MQRC_PROPERTY_NAME_ERROR, {&PropertyReasons::setProperty}, [](Arguments &a) { a.name = charv("a b"); });
    expect(MQRC_PROPERTY_NAME_ERROR,
           {&PropertyReasons::inquireProperty, &PropertyReasons::deleteProperty, &PropertyReasons::handleToBuffer},
           [](Arguments &a) { a.name = charv("a%b"); });
    expect(MQRC_PROPERTY_NAME_LENGTH_ERR, withName, [](Arguments &a) { a.name.VSLength = 0; });
    expect(MQRC_PROPERTY_NAME_LENGTH_ERR, withName, [](Arguments &a) { a.name.VSLength = -3; });
    expect(MQRC_SOURCE_CCSID_ERROR, withName, [](Arguments &a) { a.name.VSCCSID = 12345; });
    expect(MQRC_PROPERTY_NOT_AVAILABLE,
           {&PropertyReasons::inquireProperty, &PropertyReasons::deleteProperty, &PropertyReasons::handleToBuffer},
           [](Arguments &a) { a.name = charv("weight"); });
}

TEST_F(PropertyReasons, BuffersAreWanted)
{
    expect(MQRC_BUFFER_LENGTH_ERROR, withBuffer, [](Arguments &a) { a.bufferLength = -1; });
    expect(MQRC_BUFFER_ERROR, withBuffer, [](Arguments &a) { a.pBuffer = nullptr; });
    expect(MQRC_DATA_LENGTH_ERROR, withBuffer, [](Arguments &a) { a.pDataLength = nullptr; });
    expect(MQRC_PROPERTY_VALUE_TOO_BIG, {&PropertyReasons::inquireProperty, &PropertyReasons::handleToBuffer},
           [](Arguments &a) { a.bufferLength = 3; });
    expect(MQRC_BUFFER_LENGTH_ERROR, {&PropertyReasons::setProperty}, [](Arguments &a) {
        a.type = MQTYPE_STRING;
        a.bufferLength = -2;
    });
    expect(MQRC_BUFFER_ERROR, {&PropertyReasons::setProperty}, [](Arguments &a) { a.pBuffer = nullptr; });
}

TEST_F(PropertyReasons, DescriptorsAreWanted)
{
    const std::vector<Call> withPd{&PropertyReasons::setProperty, &PropertyReasons::inquireProperty};
    expect(MQRC_PD_ERROR, withPd, [](Arguments &a) { a.pPd = nullptr; });
    expect(MQRC_PD_ERROR, withPd, [](Arguments &a) { a.pd.StrucId[0] = 'X'; });
    expect(MQRC_PD_ERROR, withPd, [](Arguments &a) { a.pd.Version = 2; });
    const std::vector<Call> withMd{&PropertyReasons::bufferToHandle, &PropertyReasons::handleToBuffer};
    expect(MQRC_MD_ERROR, withMd, [](Arguments &a) { a.pMd = nullptr; });
    expect(MQRC_MD_ERROR, withMd, [](Arguments &a) { a.md.StrucId[0] = 'X'; });
}

TEST_F(PropertyReasons, TypesAreWanted)
{
    expect(MQRC_PROPERTY_TYPE_ERROR, {&PropertyReasons::setProperty}, [](Arguments &a) { a.type = 3; });
    expect(MQRC_PROPERTY_TYPE_ERROR, {&PropertyReasons::inquireProperty}, [](Arguments &a) { a.pType = nullptr; });
    expect(MQRC_PROPERTY_TYPE_ERROR, {&PropertyReasons::inquireProperty}, [](Arguments &a) {
        a.impo.Options = MQIMPO_CONVERT_TYPE;
        a.type = 3;
    });
}

// A value whose bytes are in no order that is known.
TEST_F(PropertyReasons, ValuesInUnknownEncodings)
{
    expect(MQRC_SOURCE_INTEGER_ENC_ERROR, {&PropertyReasons::setProperty},
           [](Arguments &a) { a.smpo.ValueEncoding = 0; });
    expect(MQRC_SOURCE_FLOAT_ENC_ERROR, {&PropertyReasons::setProperty}, [](Arguments &a) {
        a.type = MQTYPE_FLOAT32;
        a.smpo.ValueEncoding = MQENC_INTEGER_REVERSED;
    });
    expect(MQRC_SOURCE_CCSID_ERROR, {&PropertyReasons::setProperty}, [](Arguments &a) {
        a.type = MQTYPE_STRING;
        a.smpo.ValueCCSID = 12345;
    });
}

TEST_F(PropertyReasons, BuffersWithHeadersThatAreNone)
{
    const auto header = [](Arguments &a, MQLONG length) {
        MQRFH2 rfh2 = {MQRFH2_DEFAULT};
        rfh2.StrucLength = length;
        rfh2.Encoding = MQENC_NATIVE;
        rfh2.CodedCharSetId = 1208;
        std::memcpy(a.buffer.data(), &rfh2, sizeof rfh2);
        std::memcpy(a.md.Format, MQFMT_RF_HEADER_2, sizeof a.md.Format);
        a.bufferLength = static_cast<MQLONG>(sizeof rfh2) + 8;
    };
    expect(MQRC_RFH_ERROR, {&PropertyReasons::bufferToHandle}, [&](Arguments &a) { header(a, 1000000); });
    expect(MQRC_RFH_FORMAT_ERROR, {&PropertyReasons::bufferToHandle}, [&](Arguments &a) {
        header(a, static_cast<MQLONG>(sizeof(MQRFH2)) + 8);
        constexpr MQLONG length = 4;
        std::memcpy(a.buffer.data() + sizeof(MQRFH2), &length, sizeof length);
        std::memcpy(a.buffer.data() + sizeof(MQRFH2) + sizeof length, "<usr", 4);
    });
}

TEST_F(PropertyReasons, BeyondTheHandlesOfAConnectionIs2461)
{
    constexpr int most = 1 << 20;
    const MQHCONN other = connect();
    for (int i = 0; i < most; ++i) {
        MQHMSG made = MQHM_NONE;
        ASSERT_EQ(tryCreate(other, made), ok) << i;
    }
    MQHMSG another = MQHM_NONE;
    EXPECT_EQ(tryCreate(other, another), failed(MQRC_HMSG_NOT_AVAILABLE));
    MQHCONN ended = other;
    disconnect(ended);
}

} // namespace
} // namespace mqrig::qmgr::testing
