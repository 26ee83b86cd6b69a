#include "receive/overwrite_prompt.h"

#include "common.h"

namespace {

constexpr int DroppedAtMost = 256;

/// What the user typed behind the answer; an empty line has nothing more to read.
void drop_rest_of_line(int answer)
{
    for (int dropped = 0; answer != '\n' && answer != EOF && dropped < DroppedAtMost; ++dropped) {
        answer = std::getchar();
    }
}

} // namespace

Overwrite ask_overwrite(RunParams *params, const char *question)
{
    LockedSection locked(params);
    if (locked.status() != StatusOk) return Overwrite::LockFailed;

    std::fputs(question, stdout);
    flush_output();
    const int answer = std::getchar();
    const bool agreed = answer == 'Y' || answer == 'y';
    if (!agreed) std::puts("end program.");
    flush_output(); // the rest of the line may have to be waited for
    drop_rest_of_line(answer);

    if (locked.release() != StatusOk) return Overwrite::LockFailed;
    return agreed ? Overwrite::Yes : Overwrite::No;
}
