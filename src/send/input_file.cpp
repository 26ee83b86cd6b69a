#include "send/input_file.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

InputStream open_input_file(const char *name)
{
    const int descriptor = open(name, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) return nullptr;
    // A directory can be opened and even sought in, but has no contents to put.
    struct stat status = {};
    const bool isDirectory = fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode);
    InputStream file(isDirectory ? nullptr : fdopen(descriptor, "rb"));
    if (file == nullptr) {
        const int error = isDirectory ? EISDIR : errno;
        close(descriptor);
        errno = error;
    }
    return file;
}
