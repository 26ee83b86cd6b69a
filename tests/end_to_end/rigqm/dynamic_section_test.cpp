#include <elf.h>
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

// The names of the shared libraries that a 64-bit program asks the loader for.
std::vector<std::string> neededLibraries(const std::string &file)
{
    std::ifstream stream(file, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    const auto read = [&](auto &into, std::size_t offset) {
        if (offset + sizeof into > bytes.size()) return false;
        std::memcpy(&into, bytes.data() + offset, sizeof into);
        return true;
    };
    Elf64_Ehdr header{};
    std::vector<std::string> names;
    if (!read(header, 0) || std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0) return names;
    for (std::size_t i = 0; i < header.e_shnum; ++i) {
        Elf64_Shdr section{};
        if (!read(section, header.e_shoff + i * header.e_shentsize) || section.sh_type != SHT_DYNAMIC) continue;
        Elf64_Shdr strings{};
        read(strings, header.e_shoff + section.sh_link * header.e_shentsize);
        for (std::size_t at = 0; at < section.sh_size; at += sizeof(Elf64_Dyn)) {
            Elf64_Dyn entry{};
            if (read(entry, section.sh_offset + at) && entry.d_tag == DT_NEEDED)
                names.emplace_back(bytes.data() + strings.sh_offset + entry.d_un.d_val);
        }
    }
    return names;
}

TEST(RigqmProgram, NeedsNoMqiLibrary)
{
    const auto names = neededLibraries(BIN_FOLDER "/rigqm");
    ASSERT_FALSE(names.empty());
    bool hasC = false;
    for (const std::string &name : names) {
        hasC = hasC || name == "libc.so.6";
        EXPECT_EQ(name.find("mqm"), std::string::npos) << name;
        EXPECT_EQ(name.find("mqrig"), std::string::npos) << name;
    }
    EXPECT_TRUE(hasC);
}

} // namespace
