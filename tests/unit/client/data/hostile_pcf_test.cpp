// PCF bodies with every byte wrong in turn, and cut everywhere. Each body stands alone in memory of exactly its size,
// so that a sanitizer sees any step behind its end.
#include "definition.h"

#include "common.h"
#include "display.h"

#include <algorithm>

namespace {

class HostilePcfTest : public DefinitionTest {
protected:
    HostilePcfTest()
    {
        read("MQCFH_PARAMCOUNT=9\nMQCFIN=20,-5\nMQCFST=2016,0,5,'QUEUE'\nMQCFIL=1002,3,1,2,3\nMQCFSL=3011,0,2,3,ABC,"
             "DEF\n"
             "MQCFGR=8001,2\nMQCFBS=7001,3,xyz\nMQCFIF=3,10,500\nMQCFSF=2016,18,0,2,A*\nMQCFBF=7002,1,3,abc\n"
             "MQCFIN64=702,7\nMQCFIL64=703,2,1,2\n");
        MQLONG length = 0;
        const Buffer<> made(make_pcf_message(&params.Md, &def, &length));
        body.assign(made.get(), static_cast<std::size_t>(length));
    }

    /// The header walk over a body of this format, as after a get.
    std::string shown(const std::string &bytes)
    {
        const Buffer<> exact(static_cast<char *>(std::malloc(bytes.size() + (bytes.empty() ? 1 : 0))));
        std::memcpy(exact.get(), bytes.data(), bytes.size());
        params.DataEncoding = encoding;
        std::memcpy(params.DataFormat, MQFMT_ADMIN, sizeof params.DataFormat);
        const MQLONG length = static_cast<MQLONG>(bytes.size());
        return written_by([&] { printRecursive(exact.get(), length, length, &params); }).out;
    }

    std::string body;
    MQLONG encoding = MQENC_NATIVE;
};

long lines(const std::string &text)
{
    return std::count(text.begin(), text.end(), '\n');
}

TEST_F(HostilePcfTest, WholeMessageIsTwelveLines)
{
    EXPECT_EQ(lines(shown(body)), 12);
}

TEST_F(HostilePcfTest, EveryCutShowsTheLinesInFrontOfIt)
{
    const std::string whole = shown(body);
    for (std::size_t length = 36; length < body.size(); ++length) {
        const std::string cut = shown(body.substr(0, length));
        ASSERT_TRUE(cut.empty() || cut.back() == '\n') << length;
        // All but the line that is cut are those of the whole message.
        const std::size_t lastLine = cut.size() < 2 ? 0 : cut.rfind('\n', cut.size() - 2) + 1;
        ASSERT_EQ(cut.substr(0, lastLine), whole.substr(0, lastLine)) << length;
    }
}

TEST_F(HostilePcfTest, EveryWrongByteEndsInALine)
{
    for (const MQLONG byteOrder : {MQENC_NATIVE, MQENC_NORMAL}) {
        encoding = byteOrder;
        for (std::size_t at = 0; at < body.size(); ++at) {
            for (const char value : {'\x00', '\x01', '\x7f', '\x80', '\xff'}) {
                std::string wrong = body;
                wrong[at] = value;
                const std::string text = shown(wrong);
                ASSERT_EQ(text.back(), '\n') << at;
                ASSERT_LE(lines(text), static_cast<long>(body.size()) / 12 + 1) << at;
            }
        }
    }
}

TEST_F(HostilePcfTest, EveryWordOfAStructureMayBeHuge)
{
    for (std::size_t at = 36; at + 4 <= body.size(); at += 4) {
        for (const MQLONG value : {2147483647, -2147483647 - 1, 65536, -1}) {
            std::string wrong = body;
            std::memcpy(wrong.data() + at, &value, sizeof value);
            ASSERT_EQ(shown(wrong).back(), '\n') << at;
        }
    }
}

TEST_F(HostilePcfTest, HundredThousandNestedGroupsAreALoop)
{
    MQCFH cfh = {MQCFH_DEFAULT};
    cfh.ParameterCount = 1;
    const MQLONG group[4] = {MQCFT_GROUP, 16, 8001, 1};
    constexpr int Groups = 100000;
    std::string nested(reinterpret_cast<const char *>(&cfh), sizeof cfh);
    for (int i = 0; i < Groups; ++i)
        nested.append(reinterpret_cast<const char *>(group), sizeof group);
    EXPECT_EQ(lines(shown(nested)), Groups + 1);
}

TEST_F(HostilePcfTest, WithoutMemoryAStringIsLeftEmpty)
{
    read("MQCFST=1,0,333,abc\nMQCFIN=2,3\n");
    MQLONG length = 0;
    const Buffer<> made(make_pcf_message(&params.Md, &def, &length));
    fail_malloc_of(334 * 2 + 1);
    const Written written = written_by([&] { printPCF(made.get(), length, 3, &params); });
    EXPECT_NE(written.out.find("StringLength[333] String[]\n(MQCFT_INTEGER)"), std::string::npos) << written.out;
    EXPECT_EQ(written.err, "malloc(): Cannot allocate memory\nprintEachMode,#,12: malloc() failed. size=669\n");
}

} // namespace
