#include "temporary_folder.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

TemporaryFolder::TemporaryFolder() : path_(std::filesystem::temp_directory_path() / "mqrig-modes-XXXXXX")
{
    if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("cannot make " + path_);
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string TemporaryFolder::file(const std::string &name, const std::string &contents) const
{
    std::ofstream file(path(name), std::ios::binary);
    file << contents;
    if (!file.flush()) throw std::runtime_error("cannot write " + path(name));
    return path(name);
}

std::string TemporaryFolder::contents(const std::string &name) const
{
    std::ifstream file(path(name), std::ios::binary);
    if (!file) throw std::runtime_error("cannot read " + path(name));
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> TemporaryFolder::names() const
{
    std::vector<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(path_))
        names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
}
