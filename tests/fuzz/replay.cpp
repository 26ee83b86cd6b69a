// Runs a fuzz target once over every file of the folders that it is given. Standard output is not for a display that
// nobody reads; the summary goes to standard error.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

int main(int argc, char **argv)
{
    int files = 0;
    for (int i = 1; i < argc; ++i) {
        for (const auto &entry : std::filesystem::directory_iterator(argv[i])) {
            std::ifstream stream(entry.path(), std::ios::binary);
            const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
            // Memory of exactly that size: a sanitizer sees any step beside it.
            const std::vector<std::uint8_t> exact(bytes.begin(), bytes.end());
            LLVMFuzzerTestOneInput(exact.data(), exact.size());
            ++files;
        }
    }
    std::fprintf(stderr, "%d inputs\n", files);
    return files > 0 ? 0 : 1;
}
