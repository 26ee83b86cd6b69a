// Copies a message from one queue to another with a chosen part of its properties, types and values as they are.
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "program.h"

namespace {

// The name must outlive what points at it.
MQCHARV text(const std::string &value)
{
    MQCHARV charv = {MQCHARV_DEFAULT};
    charv.VSPtr = const_cast<char *>(value.data());
    charv.VSLength = static_cast<MQLONG>(value.size());
    charv.VSCCSID = 1208;
    return charv;
}

MQHMSG create(MQHCONN hconn)
{
    MQHMSG hmsg = MQHM_NONE;
    MQCMHO cmho = {MQCMHO_DEFAULT};
    OK(MQCRTMH(hconn, &cmho, &hmsg, &cc, &rc));
    return hmsg;
}

void remove(MQHCONN hconn, MQHMSG hmsg)
{
    MQDMHO dmho = {MQDMHO_DEFAULT};
    OK(MQDLTMH(hconn, &hmsg, &dmho, &cc, &rc));
    CHECK(hmsg == MQHM_UNUSABLE_HMSG);
}

void set(MQHCONN hconn, MQHMSG hmsg, const std::string &name, MQLONG type, const void *value, std::size_t length)
{
    MQSMPO smpo = {MQSMPO_DEFAULT};
    MQPD pd = {MQPD_DEFAULT};
    MQCHARV charv = text(name);
    OK(MQSETMP(hconn, hmsg, &smpo, &charv, &pd, type, static_cast<MQLONG>(length), const_cast<void *>(value), &cc,
               &rc));
}

void put(MQHCONN hconn, MQHOBJ hobj, MQHMSG hmsg, std::string body)
{
    MQMD md = {MQMD_DEFAULT};
    std::memcpy(md.Format, MQFMT_STRING, sizeof md.Format);
    MQPMO pmo = {MQPMO_DEFAULT};
    pmo.Version = MQPMO_VERSION_3;
    pmo.Options = MQPMO_NO_SYNCPOINT;
    pmo.NewMsgHandle = hmsg;
    OK(MQPUT(hconn, hobj, &md, &pmo, static_cast<MQLONG>(body.size()), body.data(), &cc, &rc));
}

std::string getInto(MQHCONN hconn, MQHOBJ hobj, MQHMSG hmsg)
{
    char buffer[256];
    MQMD md = {MQMD_DEFAULT};
    MQGMO gmo = {MQGMO_DEFAULT};
    gmo.Version = MQGMO_VERSION_4;
    gmo.Options = MQGMO_NO_SYNCPOINT | MQGMO_PROPERTIES_IN_HANDLE;
    gmo.MsgHandle = hmsg;
    MQLONG length = 0;
    OK(MQGET(hconn, hobj, &md, &gmo, sizeof buffer, buffer, &length, &cc, &rc));
    CHECK(std::memcmp(md.Format, MQFMT_STRING, sizeof md.Format) == 0);
    return {buffer, static_cast<std::size_t>(length)};
}

// Walks the properties; copies those that `wanted` says into the other handle. How many there were.
int copyProperties(MQHCONN hconn, MQHMSG from, MQHMSG to, bool (*wanted)(const std::string &))
{
    const std::string everything = "%";
    for (int number = 0;; ++number) {
        char nameBuffer[512];
        std::vector<char> value(2);
        MQIMPO impo = {MQIMPO_DEFAULT};
        impo.Options = number == 0 ? MQIMPO_INQ_FIRST : MQIMPO_INQ_NEXT;
        impo.ReturnedName.VSPtr = nameBuffer;
        impo.ReturnedName.VSBufSize = sizeof nameBuffer;
        impo.ReturnedName.VSCCSID = 1208;
        MQPD pd = {MQPD_DEFAULT};
        MQCHARV all = text(everything);
        MQLONG type = MQTYPE_AS_SET;
        MQLONG length = 0;
        MQINQMP(hconn, from, &impo, &all, &pd, &type, static_cast<MQLONG>(value.size()), value.data(), &length, &cc,
                &rc);
        if (cc == MQCC_FAILED && rc == MQRC_PROPERTY_NOT_AVAILABLE) return number;
        if (rc == MQRC_PROPERTY_VALUE_TOO_BIG) { // the same one once more
            value.resize(static_cast<std::size_t>(length));
            impo.Options = MQIMPO_INQ_PROP_UNDER_CURSOR;
            OK(MQINQMP(hconn, from, &impo, &all, &pd, &type, length, value.data(), &length, &cc, &rc));
        }
        CHECK(cc == MQCC_OK);
        const std::string name(nameBuffer, static_cast<std::size_t>(impo.ReturnedName.VSLength));
        if (!wanted(name)) continue;
        MQSMPO smpo = {MQSMPO_DEFAULT};
        MQCHARV charv = text(name);
        OK(MQSETMP(hconn, to, &smpo, &charv, &pd, type, length, value.data(), &cc, &rc));
    }
}

} // namespace

int main()
{
    const MQHCONN hconn = connectToQM1();
    const MQHOBJ q1 = openQueue(hconn, "Q1", MQOO_INPUT_SHARED | MQOO_OUTPUT);
    const MQHOBJ q2 = openQueue(hconn, "Q2", MQOO_INPUT_SHARED | MQOO_OUTPUT);
    const std::string big(5000, 'x');
    const MQLONG size = 42;
    const std::int64_t serial = INT64_MIN;
    const double weight = 2.5;
    const MQHMSG original = create(hconn);
    set(hconn, original, "keep.size", MQTYPE_INT32, &size, sizeof size);
    set(hconn, original, "keep.serial", MQTYPE_INT64, &serial, sizeof serial);
    set(hconn, original, "secret", MQTYPE_STRING, "hidden", 6);
    set(hconn, original, "keep.weight", MQTYPE_FLOAT64, &weight, sizeof weight);
    set(hconn, original, "keep.text", MQTYPE_STRING, big.data(), big.size());
    set(hconn, original, "keep.bytes", MQTYPE_BYTE_STRING, "\0\1\2", 3);
    put(hconn, q1, original, "the body");

    const MQHMSG got = create(hconn);
    const MQHMSG copy = create(hconn);
    const std::string body = getInto(hconn, q1, got);
    CHECK(body == "the body");
    CHECK(copyProperties(hconn, got, copy, [](const std::string &name) { return name.rfind("keep.", 0) == 0; }) == 6);
    put(hconn, q2, copy, body);

    const MQHMSG arrived = create(hconn);
    CHECK(getInto(hconn, q2, arrived) == "the body");
    const auto inquire = [&](const std::string &name, MQLONG expectedType) {
        std::vector<char> value(8000);
        MQIMPO impo = {MQIMPO_DEFAULT};
        MQPD pd = {MQPD_DEFAULT};
        MQCHARV charv = text(name);
        MQLONG type = MQTYPE_AS_SET;
        MQLONG length = 0;
        OK(MQINQMP(hconn, arrived, &impo, &charv, &pd, &type, static_cast<MQLONG>(value.size()), value.data(), &length,
                   &cc, &rc));
        CHECK(type == expectedType);
        return std::string(value.data(), static_cast<std::size_t>(length));
    };
    CHECK(inquire("keep.size", MQTYPE_INT32) == std::string(reinterpret_cast<const char *>(&size), sizeof size));
    CHECK(inquire("keep.serial", MQTYPE_INT64) == std::string(reinterpret_cast<const char *>(&serial), sizeof serial));
    CHECK(inquire("keep.weight", MQTYPE_FLOAT64) ==
          std::string(reinterpret_cast<const char *>(&weight), sizeof weight));
    CHECK(inquire("keep.text", MQTYPE_STRING) == big);
    CHECK(inquire("keep.bytes", MQTYPE_BYTE_STRING) == std::string("\0\1\2", 3));
    MQIMPO impo = {MQIMPO_DEFAULT};
    MQPD pd = {MQPD_DEFAULT};
    const std::string secretName = "secret";
    MQCHARV secret = text(secretName);
    MQLONG type = MQTYPE_AS_SET;
    MQLONG length = 0;
    char none[8];
    FAILS(MQRC_PROPERTY_NOT_AVAILABLE,
          MQINQMP(hconn, arrived, &impo, &secret, &pd, &type, sizeof none, none, &length, &cc, &rc));

    for (const MQHMSG hmsg : {original, got, copy, arrived})
        remove(hconn, hmsg);
    MQHOBJ hobj = q2;
    OK(MQCLOSE(hconn, &hobj, MQCO_NONE, &cc, &rc));
    closeAndDisconnect(hconn, q1);
    return 0;
}
