/// The question before something is written where something is already.
#pragma once

#include "RunParams.h"

enum class Overwrite {
    Yes,
    No,         ///< "end program." was shown
    LockFailed, ///< the lock could not be had or left, already reported
};

/// Asks inside the output lock and reads a line of standard input; its first character is the answer, and only "Y" and
/// "y" agree. The end of the input does not.
Overwrite ask_overwrite(RunParams *params, const char *question);
