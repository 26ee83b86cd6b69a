// What the thread sanitizer cannot see: LMDB is the system's library and built without it. Its readers announce the
// snapshot they use in the lock file's reader table, and a writer reuses pages only that no announced snapshot needs;
// the sanitizer sees the page written by one thread and read by another, but not the announcement between them.
// What our own code does is watched.
extern "C" __attribute__((visibility("default"))) const char *__tsan_default_suppressions()
{
    return "race:liblmdb.so\n";
}
