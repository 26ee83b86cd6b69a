// A folder for one test, gone with it.
#pragma once

#include <string>
#include <vector>

class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;

    const std::string &path() const { return path_; }
    std::string path(const std::string &name) const { return path_ + "/" + name; }

    /// Makes a file and answers its path.
    std::string file(const std::string &name, const std::string &contents) const;
    std::string contents(const std::string &name) const;
    /// The names in it, sorted.
    std::vector<std::string> names() const;

private:
    std::string path_;
};
