// The MQRFH2 as bytes.
#include "calls_test.h"

#include "common.h"
#include "send.h"

#include <cstring>

namespace {

class MakeRfh2Test : public CallsTest {
protected:
    Buffer<> header() { return Buffer<>(make_rfh2(&params)); }
    static MQLONG integer_at(const Buffer<> &bytes, std::size_t offset)
    {
        MQLONG value = 0;
        std::memcpy(&value, bytes.get() + offset, sizeof value);
        return value;
    }
};

TEST_F(MakeRfh2Test, FixedPartIsTheRecords)
{
    params.Rfh2.CodedCharSetId = 819;
    const Buffer<> bytes = header();
    EXPECT_EQ(std::memcmp(bytes.get(), &params.Rfh2, sizeof params.Rfh2), 0);
}

TEST_F(MakeRfh2Test, FoldersSetTheLengthWhateverTheRecordSays)
{
    params.Rfh2.StrucLength = 1000;
    params.NameValueData = "<usr><a>1</a></usr>";
    const Buffer<> bytes = header();
    EXPECT_EQ(integer_at(bytes, offsetof(MQRFH2, StrucLength)), 60);
    EXPECT_EQ(integer_at(bytes, 36), 20);
    EXPECT_EQ(std::string(bytes.get() + 40, 20), "<usr><a>1</a></usr> ");
}

TEST_F(MakeRfh2Test, ThousandsOfFoldersFit)
{
    std::string list;
    for (int i = 0; i < 10000; ++i)
        list += "<a>,";
    params.NameValueData = list.c_str();
    const Buffer<> bytes = header();
    EXPECT_EQ(integer_at(bytes, offsetof(MQRFH2, StrucLength)), 36 + 10000 * 8);
    EXPECT_EQ(std::string(bytes.get() + 36 + 9999 * 8 + 4, 4), "<a> ");
}

TEST_F(MakeRfh2Test, BlankIsTheFillOfFolders)
{
    EXPECT_EQ(pad_s, ' ');
}

} // namespace
