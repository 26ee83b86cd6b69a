// The layer between the store and its files that tells a Recording what happens to them: an SQLite file system under
// log.db and its companions, and the calls that the store makes itself (the linker leads them here first).
#pragma once

#include "disk.h"

namespace mqrig::crash {

// From now on, in this process. To be called before SQLite is used.
void recordFiles(Recording &recording);
// From now on nothing is recorded; and nothing is synced, for what follows is only a look at copies.
void stopRecording();

} // namespace mqrig::crash
