// What a forked process has of its parent's callbacks: nothing. (Apart from the other tests of callbacks, because the
// thread sanitizer does not follow a fork of several threads.)
#include "callback_fixture.h"

#include <sys/wait.h>
#include <unistd.h>

namespace mqrig::qmgr::testing {
namespace {

using ForkedEventHandler = CallbackTest;

TEST_F(ForkedEventHandler, IsNotInherited)
{
    Diary diary;
    MQHCONN hconn = connect();
    manage(hconn, MQOP_REGISTER, handlerInto(diary));
    const pid_t child = fork();
    if (child == 0) {
        const bool alone = threads() == 1;
        const bool unknown = manage(hconn, MQOP_DEREGISTER, handlerInto(diary)) == failed(MQRC_HCONN_ERROR);
        MQHCONN own = MQHC_UNUSABLE_HCONN;
        Diary ownDiary;
        const bool anew = tryConnect("QM1", own) == ok &&
                          manage(own, MQOP_REGISTER, handlerInto(ownDiary, MQCBDO_REGISTER_CALL)) == ok &&
                          ownDiary.size() == 1 && disconnect(own) == ok;
        _exit(alone && unknown && anew ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    endQuiesce();
    EXPECT_EQ(diary.reasons(1), std::vector<MQLONG>{MQRC_Q_MGR_QUIESCING});
    EXPECT_EQ(disconnect(hconn), ok);
}

} // namespace
} // namespace mqrig::qmgr::testing
