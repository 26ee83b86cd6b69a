// Stands between the tests of the MQI and the calls (the linker's --wrap, see CMakeLists.txt), notes what each test is
// answered, and holds reasons.txt to it (reasons.h). A call costs a test one more jump and a store: threads meet
// nowhere, so that the thread sanitizer sees what it would see without.
//
// With MQRIG_REASONS_SEEN in the environment, a file, what is answered is written there and nothing is held to
// anything.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "cmqc.h"
#include "reasons.h"

namespace mqrig::conformance {
namespace {

constexpr MQLONG reasonLimit = 8192;

// A bit for each CompCode that came with the reason.
using Answers = std::array<std::atomic<std::uint8_t>, reasonLimit>;

struct RecordedCall {
    std::string_view name;
    Answers *answers;
};

std::vector<RecordedCall> &recordedCalls()
{
    static std::vector<RecordedCall> calls;
    return calls;
}

bool registerCall(std::string_view name, Answers &answers)
{
    recordedCalls().push_back({name, &answers});
    return true;
}

void note(Answers &answers, const MQLONG *pCompCode, const MQLONG *pReason)
{
    if (pCompCode == nullptr || pReason == nullptr) return;
    if (*pReason < 0 || *pReason >= reasonLimit || *pCompCode < MQCC_OK || *pCompCode > MQCC_FAILED) return;
    std::atomic<std::uint8_t> &seen = answers[static_cast<std::size_t>(*pReason)];
    const auto bit = static_cast<std::uint8_t>(1U << static_cast<unsigned>(*pCompCode));
    if ((seen.load(std::memory_order_relaxed) & bit) == 0) seen.fetch_or(bit, std::memory_order_relaxed);
}

// What was answered since the last time.
std::set<Answer> takeAnswers()
{
    std::set<Answer> taken;
    for (const RecordedCall &call : recordedCalls())
        for (MQLONG reason = 0; reason < reasonLimit; ++reason) {
            std::atomic<std::uint8_t> &seen = (*call.answers)[static_cast<std::size_t>(reason)];
            if (seen.load(std::memory_order_relaxed) == 0) continue;
            const unsigned bits = seen.exchange(0, std::memory_order_relaxed);
            for (MQLONG compCode = MQCC_OK; compCode <= MQCC_FAILED; ++compCode)
                if ((bits & (1U << static_cast<unsigned>(compCode))) != 0)
                    taken.insert({std::string(call.name), compCode, reason});
        }
    return taken;
}

std::string textOf(const Answer &answer)
{
    return answer.call + " answers CompCode " + std::to_string(answer.compCode) + " Reason " +
           std::to_string(answer.reason);
}

class Recorder : public testing::EmptyTestEventListener {
public:
    void OnTestProgramStart(const testing::UnitTest & /*program*/) override
    {
        if (const char *file = std::getenv("MQRIG_REASONS_SEEN")) {
            seen_.open(file, std::ios::app);
            return;
        }
        list_ = readReasons(REASONS);
        for (const Provoked &row : list_)
            known_.insert(row.answer);
    }

    void OnTestStart(const testing::TestInfo & /*test*/) override { takeAnswers(); }

    void OnTestEnd(const testing::TestInfo &test) override
    {
        const std::set<Answer> answers = takeAnswers();
        const std::string name = std::string(test.test_suite_name()) + '.' + test.name();
        if (seen_.is_open()) {
            for (const Answer &answer : answers)
                seen_ << toLine({answer, program_invocation_short_name, name}) << std::endl;
            return;
        }
        if (!test.result()->Passed()) return;
        for (const Answer &answer : answers)
            if (!known_.contains(answer))
                ADD_FAILURE() << textOf(answer)
                              << ", which the list of reasons has not: scripts/conformance.sh writes it";
        for (const Provoked &row : list_)
            if (isOfThisProgram(row) && row.test == name && !answers.contains(row.answer))
                ADD_FAILURE() << textOf(row.answer) << " no more: scripts/conformance.sh writes the list of reasons";
    }

    static bool isOfThisProgram(const Provoked &row) { return row.program == program_invocation_short_name; }

private:
    std::ofstream seen_;
    std::vector<Provoked> list_;
    std::set<Answer> known_;
};

const bool listens = [] {
    testing::UnitTest::GetInstance()->listeners().Append(new Recorder);
    return true;
}();

TEST(Reasons, EveryTestThatTheListNamesIsThere)
{
    std::set<std::string> tests;
    const testing::UnitTest &program = *testing::UnitTest::GetInstance();
    for (int i = 0; i < program.total_test_suite_count(); ++i) {
        const testing::TestSuite &suite = *program.GetTestSuite(i);
        for (int j = 0; j < suite.total_test_count(); ++j)
            tests.insert(std::string(suite.name()) + '.' + suite.GetTestInfo(j)->name());
    }
    for (const Provoked &row : readReasons(REASONS))
        if (Recorder::isOfThisProgram(row)) {
            EXPECT_TRUE(tests.contains(row.test)) << toLine(row);
        }
}

} // namespace
} // namespace mqrig::conformance

using mqrig::conformance::note;

// The names are the linker's.
// NOLINTBEGIN(bugprone-reserved-identifier, cert-dcl37-c, cert-dcl51-cpp)
#define RECORDED(call, parameters, arguments)                                                                          \
    namespace {                                                                                                        \
    mqrig::conformance::Answers answersOf##call;                                                                       \
    const bool isRecorded##call = mqrig::conformance::registerCall(#call, answersOf##call);                            \
    }                                                                                                                  \
    extern "C" void __real_##call parameters noexcept;                                                                 \
    extern "C" void __wrap_##call parameters noexcept                                                                  \
    {                                                                                                                  \
        __real_##call arguments;                                                                                       \
        note(answersOf##call, pCompCode, pReason);                                                                     \
    }

RECORDED(MQCONN, (PMQCHAR pQMgrName, PMQHCONN pHconn, PMQLONG pCompCode, PMQLONG pReason),
         (pQMgrName, pHconn, pCompCode, pReason))
RECORDED(MQCONNX, (PMQCHAR pQMgrName, PMQCNO pConnectOpts, PMQHCONN pHconn, PMQLONG pCompCode, PMQLONG pReason),
         (pQMgrName, pConnectOpts, pHconn, pCompCode, pReason))
RECORDED(MQDISC, (PMQHCONN pHconn, PMQLONG pCompCode, PMQLONG pReason), (pHconn, pCompCode, pReason))
RECORDED(MQOPEN, (MQHCONN Hconn, PMQVOID pObjDesc, MQLONG Options, PMQHOBJ pHobj, PMQLONG pCompCode, PMQLONG pReason),
         (Hconn, pObjDesc, Options, pHobj, pCompCode, pReason))
RECORDED(MQCLOSE, (MQHCONN Hconn, PMQHOBJ pHobj, MQLONG Options, PMQLONG pCompCode, PMQLONG pReason),
         (Hconn, pHobj, Options, pCompCode, pReason))
RECORDED(MQINQ,
         (MQHCONN Hconn, MQHOBJ Hobj, MQLONG SelectorCount, PMQLONG pSelectors, MQLONG IntAttrCount, PMQLONG pIntAttrs,
          MQLONG CharAttrLength, PMQCHAR pCharAttrs, PMQLONG pCompCode, PMQLONG pReason),
         (Hconn, Hobj, SelectorCount, pSelectors, IntAttrCount, pIntAttrs, CharAttrLength, pCharAttrs, pCompCode,
          pReason))
RECORDED(MQSET,
         (MQHCONN Hconn, MQHOBJ Hobj, MQLONG SelectorCount, PMQLONG pSelectors, MQLONG IntAttrCount, PMQLONG pIntAttrs,
          MQLONG CharAttrLength, PMQCHAR pCharAttrs, PMQLONG pCompCode, PMQLONG pReason),
         (Hconn, Hobj, SelectorCount, pSelectors, IntAttrCount, pIntAttrs, CharAttrLength, pCharAttrs, pCompCode,
          pReason))
RECORDED(MQPUT,
         (MQHCONN Hconn, MQHOBJ Hobj, PMQVOID pMsgDesc, PMQVOID pPutMsgOpts, MQLONG BufferLength, PMQVOID pBuffer,
          PMQLONG pCompCode, PMQLONG pReason),
         (Hconn, Hobj, pMsgDesc, pPutMsgOpts, BufferLength, pBuffer, pCompCode, pReason))
RECORDED(MQPUT1,
         (MQHCONN Hconn, PMQVOID pObjDesc, PMQVOID pMsgDesc, PMQVOID pPutMsgOpts, MQLONG BufferLength, PMQVOID pBuffer,
          PMQLONG pCompCode, PMQLONG pReason),
         (Hconn, pObjDesc, pMsgDesc, pPutMsgOpts, BufferLength, pBuffer, pCompCode, pReason))
RECORDED(MQGET,
         (MQHCONN Hconn, MQHOBJ Hobj, PMQVOID pMsgDesc, PMQVOID pGetMsgOpts, MQLONG BufferLength, PMQVOID pBuffer,
          PMQLONG pDataLength, PMQLONG pCompCode, PMQLONG pReason),
         (Hconn, Hobj, pMsgDesc, pGetMsgOpts, BufferLength, pBuffer, pDataLength, pCompCode, pReason))
RECORDED(MQBEGIN, (MQHCONN Hconn, PMQVOID pBeginOptions, PMQLONG pCompCode, PMQLONG pReason),
         (Hconn, pBeginOptions, pCompCode, pReason))
RECORDED(MQCMIT, (MQHCONN Hconn, PMQLONG pCompCode, PMQLONG pReason), (Hconn, pCompCode, pReason))
RECORDED(MQBACK, (MQHCONN Hconn, PMQLONG pCompCode, PMQLONG pReason), (Hconn, pCompCode, pReason))
RECORDED(MQCRTMH, (MQHCONN Hconn, PMQVOID pCrtMsgHOpts, PMQHMSG pHmsg, PMQLONG pCompCode, PMQLONG pReason),
         (Hconn, pCrtMsgHOpts, pHmsg, pCompCode, pReason))
RECORDED(MQDLTMH, (MQHCONN Hconn, PMQHMSG pHmsg, PMQVOID pDltMsgHOpts, PMQLONG pCompCode, PMQLONG pReason),
         (Hconn, pHmsg, pDltMsgHOpts, pCompCode, pReason))
RECORDED(MQSETMP,
         (MQHCONN Hconn, MQHMSG Hmsg, PMQVOID pSetPropOpts, PMQVOID pName, PMQVOID pPropDesc, MQLONG Type,
          MQLONG ValueLength, PMQVOID pValue, PMQLONG pCompCode, PMQLONG pReason),
         (Hconn, Hmsg, pSetPropOpts, pName, pPropDesc, Type, ValueLength, pValue, pCompCode, pReason))
RECORDED(MQINQMP,
         (MQHCONN Hconn, MQHMSG Hmsg, PMQVOID pInqPropOpts, PMQVOID pName, PMQVOID pPropDesc, PMQLONG pType,
          MQLONG ValueLength, PMQVOID pValue, PMQLONG pDataLength, PMQLONG pCompCode, PMQLONG pReason),
         (Hconn, Hmsg, pInqPropOpts, pName, pPropDesc, pType, ValueLength, pValue, pDataLength, pCompCode, pReason))
RECORDED(MQDLTMP, (MQHCONN Hconn, MQHMSG Hmsg, PMQVOID pDltPropOpts, PMQVOID pName, PMQLONG pCompCode, PMQLONG pReason),
         (Hconn, Hmsg, pDltPropOpts, pName, pCompCode, pReason))
RECORDED(MQBUFMH,
         (MQHCONN Hconn, MQHMSG Hmsg, PMQVOID pBufMsgHOpts, PMQVOID pMsgDesc, MQLONG BufferLength, PMQVOID pBuffer,
          PMQLONG pDataLength, PMQLONG pCompCode, PMQLONG pReason),
         (Hconn, Hmsg, pBufMsgHOpts, pMsgDesc, BufferLength, pBuffer, pDataLength, pCompCode, pReason))
RECORDED(MQMHBUF,
         (MQHCONN Hconn, MQHMSG Hmsg, PMQVOID pMsgHBufOpts, PMQVOID pName, PMQVOID pMsgDesc, MQLONG BufferLength,
          PMQVOID pBuffer, PMQLONG pDataLength, PMQLONG pCompCode, PMQLONG pReason),
         (Hconn, Hmsg, pMsgHBufOpts, pName, pMsgDesc, BufferLength, pBuffer, pDataLength, pCompCode, pReason))
RECORDED(MQCB,
         (MQHCONN Hconn, MQLONG Operation, PMQVOID pCallbackDesc, MQHOBJ Hobj, PMQVOID pMsgDesc, PMQVOID pGetMsgOpts,
          PMQLONG pCompCode, PMQLONG pReason),
         (Hconn, Operation, pCallbackDesc, Hobj, pMsgDesc, pGetMsgOpts, pCompCode, pReason))
RECORDED(MQCTL, (MQHCONN Hconn, MQLONG Operation, PMQVOID pControlOpts, PMQLONG pCompCode, PMQLONG pReason),
         (Hconn, Operation, pControlOpts, pCompCode, pReason))
RECORDED(MQSUB, (MQHCONN Hconn, PMQVOID pSubDesc, PMQHOBJ pHobj, PMQHOBJ pHsub, PMQLONG pCompCode, PMQLONG pReason),
         (Hconn, pSubDesc, pHobj, pHsub, pCompCode, pReason))
RECORDED(MQSUBRQ, (MQHCONN Hconn, MQHOBJ Hsub, MQLONG Action, PMQVOID pSubRqOpts, PMQLONG pCompCode, PMQLONG pReason),
         (Hconn, Hsub, Action, pSubRqOpts, pCompCode, pReason))
RECORDED(MQSTAT, (MQHCONN Hconn, MQLONG Type, PMQVOID pStatus, PMQLONG pCompCode, PMQLONG pReason),
         (Hconn, Type, pStatus, pCompCode, pReason))
// NOLINTEND(bugprone-reserved-identifier, cert-dcl37-c, cert-dcl51-cpp)
