// Calls that are not built yet say so.
#include "fixture.h"

namespace mqrig::qmgr::testing {
namespace {

template <class... Arguments, class... Given>
Codes answerOf(void (*call)(Arguments...) noexcept, Given... given)
{
    Codes codes;
    call(given..., &codes.CompCode, &codes.Reason);
    return codes;
}

TEST(NotSupported, EveryCallThatIsNotBuiltIs2298)
{
    constexpr Codes refused = failed(MQRC_FUNCTION_NOT_SUPPORTED);

    MQHOBJ hobj = MQHO_NONE;
    EXPECT_EQ(answerOf(MQSUB, 0, nullptr, &hobj, &hobj), refused);
    EXPECT_EQ(answerOf(MQSUBRQ, 0, hobj, 0, nullptr), refused);
}

} // namespace
} // namespace mqrig::qmgr::testing
