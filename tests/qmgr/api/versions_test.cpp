// Fields beyond a structure's Version belong to the program: here they lie behind a wall of pattern bytes that must
// neither change nor change anything.
#include "fixture.h"

#include <cstring>
#include <vector>

namespace mqrig::qmgr::testing {
namespace {

constexpr unsigned char pattern = 0xA5;

// A structure of one version in memory of full length; the rest is the pattern.
template <class Structure>
class Cut {
public:
    Cut(const Structure &structure, std::size_t length) : length_(length), bytes_(sizeof(Structure), pattern)
    {
        std::memcpy(bytes_.data(), &structure, length);
    }
    Structure *get() { return reinterpret_cast<Structure *>(bytes_.data()); }
    bool restIsUntouched() const
    {
        for (std::size_t i = length_; i < bytes_.size(); ++i)
            if (bytes_[i] != pattern) return false;
        return true;
    }

private:
    std::size_t length_;
    std::vector<unsigned char> bytes_;
};

constexpr std::size_t mdLengths[] = {MQMD_LENGTH_1, MQMD_LENGTH_2};
constexpr std::size_t pmoLengths[] = {MQPMO_LENGTH_1, MQPMO_LENGTH_2, MQPMO_LENGTH_3};
constexpr std::size_t gmoLengths[] = {MQGMO_LENGTH_1, MQGMO_LENGTH_2, MQGMO_LENGTH_3, MQGMO_LENGTH_4};
constexpr std::size_t odLengths[] = {MQOD_LENGTH_1, MQOD_LENGTH_2, MQOD_LENGTH_3, MQOD_LENGTH_4};
constexpr std::size_t cnoLengths[] = {MQCNO_LENGTH_1, MQCNO_LENGTH_2, MQCNO_LENGTH_3, MQCNO_LENGTH_4,
                                      MQCNO_LENGTH_5, MQCNO_LENGTH_6, MQCNO_LENGTH_7, MQCNO_LENGTH_8};

template <class Structure>
Cut<Structure> cut(Structure structure, MQLONG version, const std::size_t *lengths)
{
    structure.Version = version;
    return Cut<Structure>(structure, lengths[version - 1]);
}

class Versions : public OpenQueueTest {
public:
    Codes codes;
};

TEST_F(Versions, PutTouchesNothingBeyond)
{
    char body[] = "hello";
    for (MQLONG mdVersion = 1; mdVersion <= MQMD_CURRENT_VERSION; ++mdVersion)
        for (MQLONG pmoVersion = 1; pmoVersion <= MQPMO_CURRENT_VERSION; ++pmoVersion) {
            auto md = cut(MQMD{MQMD_DEFAULT}, mdVersion, mdLengths);
            auto pmo = cut(MQPMO{MQPMO_DEFAULT}, pmoVersion, pmoLengths);
            MQPUT(hconn, q1, md.get(), pmo.get(), 5, body, &codes.CompCode, &codes.Reason);
            EXPECT_EQ(codes, ok) << mdVersion << pmoVersion;
            EXPECT_TRUE(md.restIsUntouched());
            EXPECT_TRUE(pmo.restIsUntouched());
            EXPECT_EQ(text(pmo.get()->ResolvedQName), "Q1");
            EXPECT_EQ(md.get()->Version, mdVersion);
            EXPECT_EQ(get(hconn, q1).md.MsgFlags, MQMF_NONE);
        }
}

TEST_F(Versions, Put1AndOpenTouchNothingBeyond)
{
    char body[] = "hello";
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = {MQPMO_DEFAULT};
    MQOD whole = {MQOD_DEFAULT};
    setText(whole.ObjectName, "Q1");
    for (MQLONG version = 1; version <= MQOD_CURRENT_VERSION; ++version) {
        auto od = cut(whole, version, odLengths);
        MQPUT1(hconn, od.get(), &md, &pmo, 5, body, &codes.CompCode, &codes.Reason);
        EXPECT_EQ(codes, ok) << version;
        EXPECT_TRUE(od.restIsUntouched()) << version;
        MQHOBJ hobj = MQHO_UNUSABLE_HOBJ;
        MQOPEN(hconn, od.get(), MQOO_INPUT_SHARED, &hobj, &codes.CompCode, &codes.Reason);
        EXPECT_EQ(codes, ok) << version;
        EXPECT_TRUE(od.restIsUntouched()) << version;
    }
}

TEST_F(Versions, GetTouchesNothingBeyond)
{
    char buffer[16];
    MQLONG length = 0;
    for (MQLONG mdVersion = 1; mdVersion <= MQMD_CURRENT_VERSION; ++mdVersion)
        for (MQLONG gmoVersion = 1; gmoVersion <= MQGMO_CURRENT_VERSION; ++gmoVersion) {
            put(hconn, q1, "hello");
            auto md = cut(MQMD{MQMD_DEFAULT}, mdVersion, mdLengths);
            auto gmo = cut(MQGMO{MQGMO_DEFAULT}, gmoVersion, gmoLengths);
            MQGET(hconn, q1, md.get(), gmo.get(), 16, buffer, &length, &codes.CompCode, &codes.Reason);
            EXPECT_EQ(codes, ok) << mdVersion << gmoVersion;
            EXPECT_TRUE(md.restIsUntouched());
            EXPECT_TRUE(gmo.restIsUntouched());
            EXPECT_EQ(md.get()->Version, mdVersion);
            EXPECT_EQ(gmo.get()->Version, gmoVersion);
            EXPECT_EQ(bytes(md.get()->MsgId).substr(0, 4), "AMQ ");
            EXPECT_EQ(text(gmo.get()->ResolvedQName), "Q1");
        }
}

TEST_F(Versions, ConnectTouchesNothingBeyond)
{
    MQCHAR48 name = "QM1";
    for (MQLONG version = 1; version <= MQCNO_CURRENT_VERSION; ++version) {
        MQCNO whole = {MQCNO_DEFAULT};
        whole.Options = MQCNO_GENERATE_CONN_TAG;
        auto cno = cut(whole, version, cnoLengths);
        MQHCONN connected = MQHC_UNUSABLE_HCONN;
        MQCONNX(name, cno.get(), &connected, &codes.CompCode, &codes.Reason);
        EXPECT_EQ(codes, ok) << version;
        EXPECT_TRUE(cno.restIsUntouched()) << version;
    }
}

// Memory of exactly the structure's length: what lies behind is not there at all, as a checker of memory would see.
template <class Structure>
std::vector<unsigned char> exactly(Structure structure, MQLONG version, std::size_t length)
{
    structure.Version = version;
    std::vector<unsigned char> memory(length);
    std::memcpy(memory.data(), &structure, length);
    return memory;
}

TEST_F(Versions, ShortMemoryOfVersion1Suffices)
{
    char body[] = "hello";
    MQLONG length = 0;
    MQOD whole = {MQOD_DEFAULT};
    setText(whole.ObjectName, "Q1");
    auto od = exactly(whole, 1, MQOD_LENGTH_1);
    auto md = exactly(MQMD{MQMD_DEFAULT}, 1, MQMD_LENGTH_1);
    auto pmo = exactly(MQPMO{MQPMO_DEFAULT}, 1, MQPMO_LENGTH_1);
    auto gmo = exactly(MQGMO{MQGMO_DEFAULT}, 1, MQGMO_LENGTH_1);
    auto cno = exactly(MQCNO{MQCNO_DEFAULT}, 1, MQCNO_LENGTH_1);
    MQCHAR48 name = "QM1";
    MQHCONN connected = MQHC_UNUSABLE_HCONN;
    MQCONNX(name, reinterpret_cast<PMQCNO>(cno.data()), &connected, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, ok);
    MQPUT1(connected, od.data(), md.data(), pmo.data(), 5, body, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, ok);
    MQGET(hconn, q1, md.data(), gmo.data(), 5, body, &length, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, ok);
}

} // namespace
} // namespace mqrig::qmgr::testing
