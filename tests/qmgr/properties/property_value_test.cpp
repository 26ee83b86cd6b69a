#include "qmgr/properties/property_value.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <string>

namespace mqrig::qmgr::properties {
namespace {

template <class Number>
std::string bytesOf(Number number)
{
    return {reinterpret_cast<const char *>(&number), sizeof number};
}

template <class Number>
Property numberOf(MQLONG type, Number number)
{
    Property property;
    property.type = type;
    property.value = bytesOf(number);
    return property;
}

Property text(std::string value)
{
    Property property;
    property.type = MQTYPE_STRING;
    property.value = std::move(value);
    return property;
}

MQLONG take(MQLONG type, std::string_view bytes, TextForm form = {})
{
    Property property;
    return takeValue({type, static_cast<MQLONG>(bytes.size()), bytes.data(), form}, property);
}

Property taken(MQLONG type, std::string_view bytes, TextForm form = {})
{
    Property property;
    EXPECT_EQ(takeValue({type, static_cast<MQLONG>(bytes.size()), bytes.data(), form}, property), MQRC_NONE);
    return property;
}

std::string asString(const Property &property)
{
    Property converted;
    EXPECT_EQ(convertType(property, MQTYPE_STRING, converted), MQRC_NONE);
    return converted.value;
}

TEST(PropertyValue, LengthMustBeThatOfTheType)
{
    const std::string bytes(16, '\0');
    for (const auto &[type, size] : {std::pair{MQTYPE_BOOLEAN, 4u},
                                     {MQTYPE_INT8, 1u},
                                     {MQTYPE_INT16, 2u},
                                     {MQTYPE_INT32, 4u},
                                     {MQTYPE_INT64, 8u},
                                     {MQTYPE_FLOAT32, 4u},
                                     {MQTYPE_FLOAT64, 8u},
                                     {MQTYPE_NULL, 0u}}) {
        EXPECT_EQ(take(type, bytes.substr(0, size)), MQRC_NONE) << type;
        EXPECT_EQ(take(type, bytes.substr(0, size + 1)), MQRC_BUFFER_LENGTH_ERROR) << type;
    }
    Property property;
    EXPECT_EQ(takeValue({MQTYPE_INT32, MQVL_NULL_TERMINATED, bytes.data(), {}}, property), MQRC_BUFFER_LENGTH_ERROR);
    EXPECT_EQ(takeValue({MQTYPE_STRING, -2, bytes.data(), {}}, property), MQRC_BUFFER_LENGTH_ERROR);
}

TEST(PropertyValue, WhatIsNoTypeIs2473)
{
    for (const MQLONG type : {MQTYPE_AS_SET, 1, 3, 2048, -1, MQTYPE_INT8 | MQTYPE_INT16})
        EXPECT_EQ(take(type, ""), MQRC_PROPERTY_TYPE_ERROR) << type;
}

TEST(PropertyValue, ValueThatIsNowhereIs2004)
{
    Property property;
    EXPECT_EQ(takeValue({MQTYPE_INT8, 1, nullptr, {}}, property), MQRC_BUFFER_ERROR);
    EXPECT_EQ(takeValue({MQTYPE_STRING, MQVL_NULL_TERMINATED, nullptr, {}}, property), MQRC_BUFFER_ERROR);
    EXPECT_EQ(takeValue({MQTYPE_STRING, 0, nullptr, {}}, property), MQRC_NONE) << "an empty one needs no place";
}

TEST(PropertyValue, TerminatedStringsEndAtTheirZero)
{
    Property property;
    EXPECT_EQ(takeValue({MQTYPE_STRING, MQVL_NULL_TERMINATED, "abc", {}}, property), MQRC_NONE);
    EXPECT_EQ(property.value, "abc");
    const char wide[] = {0, 'a', 0, 'b', 0, 0};
    EXPECT_EQ(takeValue({MQTYPE_STRING, MQVL_NULL_TERMINATED, wide, {1200, MQENC_NORMAL}}, property), MQRC_NONE);
    EXPECT_EQ(property.value.size(), 4u);
}

TEST(PropertyValue, NumbersOfEitherOrderAreTheSame)
{
    EXPECT_EQ(taken(MQTYPE_INT32, std::string("\0\0\1\2", 4), {1208, MQENC_NORMAL}).value, bytesOf(MQLONG{258}));
    EXPECT_EQ(taken(MQTYPE_INT32, std::string("\2\1\0\0", 4), {1208, MQENC_REVERSED}).value, bytesOf(MQLONG{258}));
    EXPECT_EQ(taken(MQTYPE_FLOAT64, std::string("\x40\x04\0\0\0\0\0\0", 8), {1208, MQENC_NORMAL}).value, bytesOf(2.5));
}

TEST(PropertyValue, UnknownEncodingsAndCharacterSetsAreRefused)
{
    EXPECT_EQ(take(MQTYPE_INT32, std::string(4, '\0'), {1208, 0}), MQRC_SOURCE_INTEGER_ENC_ERROR);
    EXPECT_EQ(take(MQTYPE_FLOAT32, std::string(4, '\0'), {1208, MQENC_S390}), MQRC_SOURCE_FLOAT_ENC_ERROR);
    EXPECT_EQ(take(MQTYPE_STRING, "a", {99999, MQENC_NATIVE}), MQRC_SOURCE_CCSID_ERROR);
    EXPECT_EQ(take(MQTYPE_INT8, "a", {99999, MQENC_NATIVE}), MQRC_NONE) << "it is no text";
}

TEST(PropertyValue, EveryTypeBecomesAString)
{
    EXPECT_EQ(asString(numberOf(MQTYPE_BOOLEAN, MQLONG{1})), "TRUE");
    EXPECT_EQ(asString(numberOf(MQTYPE_BOOLEAN, MQLONG{0})), "FALSE");
    EXPECT_EQ(asString(numberOf(MQTYPE_INT8, MQINT8{-5})), "-5");
    EXPECT_EQ(asString(numberOf(MQTYPE_INT64, std::numeric_limits<MQINT64>::min())), "-9223372036854775808");
    EXPECT_EQ(asString(numberOf(MQTYPE_FLOAT32, 1.5F)), "1.5");
    Property bytes;
    bytes.type = MQTYPE_BYTE_STRING;
    bytes.value = "\xF1\x12";
    EXPECT_EQ(asString(bytes), "F112");
}

TEST(PropertyValue, NumbersWidenButDoNotShrink)
{
    Property converted;
    EXPECT_EQ(convertType(numberOf(MQTYPE_INT16, MQINT16{-300}), MQTYPE_INT64, converted), MQRC_NONE);
    EXPECT_EQ(converted.value, bytesOf(MQINT64{-300}));
    EXPECT_EQ(convertType(numberOf(MQTYPE_BOOLEAN, MQLONG{7}), MQTYPE_INT8, converted), MQRC_NONE);
    EXPECT_EQ(converted.value, bytesOf(MQINT8{1}));
    EXPECT_EQ(convertType(numberOf(MQTYPE_FLOAT32, 1.5F), MQTYPE_FLOAT64, converted), MQRC_NONE);
    EXPECT_EQ(converted.value, bytesOf(1.5));
    EXPECT_EQ(convertType(numberOf(MQTYPE_INT32, MQLONG{1}), MQTYPE_INT16, converted), MQRC_PROP_CONV_NOT_SUPPORTED);
    EXPECT_EQ(convertType(numberOf(MQTYPE_INT32, MQLONG{1}), MQTYPE_FLOAT64, converted), MQRC_PROP_CONV_NOT_SUPPORTED);
    EXPECT_EQ(convertType(Property{}, MQTYPE_STRING, converted), MQRC_PROP_CONV_NOT_SUPPORTED) << "null is no value";
}

TEST(PropertyValue, StringsBecomeNumbersWhereTheyAreSuch)
{
    Property converted;
    EXPECT_EQ(convertType(text("  +42abc"), MQTYPE_INT32, converted), MQRC_NONE) << "digits, then anything";
    EXPECT_EQ(converted.value, bytesOf(MQLONG{42}));
    EXPECT_EQ(convertType(text("-2.5e3"), MQTYPE_FLOAT64, converted), MQRC_NONE);
    EXPECT_EQ(converted.value, bytesOf(-2500.0));
    EXPECT_EQ(convertType(text("true"), MQTYPE_BOOLEAN, converted), MQRC_NONE);
    EXPECT_EQ(converted.value, bytesOf(MQLONG{1}));
    for (const auto &[word, type] : {std::pair{"red", MQTYPE_INT32},
                                     {"", MQTYPE_INT8},
                                     {"128", MQTYPE_INT8},
                                     {"yes", MQTYPE_BOOLEAN},
                                     {"+-1", MQTYPE_INT32},
                                     {"x", MQTYPE_FLOAT32}})
        EXPECT_EQ(convertType(text(word), type, converted), MQRC_PROP_NUMBER_FORMAT_ERROR) << word;
    EXPECT_EQ(convertType(text("00ff"), MQTYPE_BYTE_STRING, converted), MQRC_PROP_CONV_NOT_SUPPORTED);
}

TEST(PropertyValue, ConvertedValuesAreInTheWantedForm)
{
    Property number = numberOf(MQTYPE_INT32, MQLONG{258});
    EXPECT_TRUE(convertValue({1208, MQENC_NORMAL}, number));
    EXPECT_EQ(number.value, std::string("\0\0\1\2", 4));
    Property word = text("\u00e4");
    EXPECT_TRUE(convertValue({819, MQENC_NATIVE}, word));
    EXPECT_EQ(word.value, "\xE4");
    EXPECT_EQ(word.form.ccsid, 819);
    Property euro = text("\u20ac");
    EXPECT_FALSE(convertValue({819, MQENC_NATIVE}, euro)) << "Latin-1 has none";
    EXPECT_EQ(euro.value, "\u20ac");
    Property real = numberOf(MQTYPE_FLOAT64, 1.0);
    EXPECT_FALSE(convertValue({1208, MQENC_S390}, real));
    EXPECT_EQ(real.value, bytesOf(1.0));
}

TEST(PropertyValue, TextsOfEveryTypeReadBack)
{
    for (const Property &property :
         {numberOf(MQTYPE_BOOLEAN, MQLONG{1}), numberOf(MQTYPE_INT8, MQINT8{-128}), numberOf(MQTYPE_INT16, MQINT16{-1}),
          numberOf(MQTYPE_INT32, std::numeric_limits<MQLONG>::min()), numberOf(MQTYPE_INT64, MQINT64{9000000000}),
          numberOf(MQTYPE_FLOAT32, 3.4e38F), numberOf(MQTYPE_FLOAT64, 0.1), numberOf(MQTYPE_FLOAT64, -2.5e-300),
          text(" a b "), Property{}}) {
        Property read = text("former");
        EXPECT_TRUE(readValueText(valueText(property), property.type, read)) << valueText(property);
        EXPECT_EQ(read.type, property.type);
        EXPECT_EQ(read.value, property.value);
    }
}

TEST(PropertyValue, TextsThatAreNoneOfTheirTypeAreRefused)
{
    Property read;
    for (const auto &[word, type] : {std::pair{"5x", MQTYPE_INT32},
                                     {"", MQTYPE_INT32},
                                     {"300", MQTYPE_INT8},
                                     {"0x1", MQTYPE_INT32},
                                     {"0", MQTYPE_BYTE_STRING},
                                     {"zz", MQTYPE_BYTE_STRING},
                                     {"2", MQTYPE_BOOLEAN},
                                     {"1e", MQTYPE_INT16}})
        EXPECT_FALSE(readValueText(word, type, read)) << word;
}

} // namespace
} // namespace mqrig::qmgr::properties
