/// Files and directories that are put, held open by what closes them.
#pragma once

#include <cstdio>
#include <dirent.h>
#include <memory>

struct CloseFile {
    void operator()(std::FILE *file) const { std::fclose(file); }
};
struct CloseDirectory {
    void operator()(DIR *directory) const { closedir(directory); }
};

using InputStream = std::unique_ptr<std::FILE, CloseFile>;
using DirectoryStream = std::unique_ptr<DIR, CloseDirectory>;

/// The file opened for reading, or null with errno; a directory is no file. Never waits: a named pipe that nobody
/// writes to opens at once, and is refused later because its size cannot be taken.
InputStream open_input_file(const char *name);
