#include "qmgr/store/checksum.h"

#include <cstring>

namespace mqrig::qmgr::store {

namespace {

// Both halves of a 128-bit product depend on every bit of both factors.
std::uint64_t mix(std::uint64_t a, std::uint64_t b)
{
    const auto product = static_cast<unsigned __int128>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

std::uint64_t wordAt(const std::byte *from)
{
    std::uint64_t word = 0;
    std::memcpy(&word, from, sizeof word);
    return word;
}

} // namespace

std::uint64_t checksumOf(std::span<const std::byte> bytes, std::uint64_t seed)
{
    constexpr std::uint64_t first = 0x9e3779b97f4a7c15;
    constexpr std::uint64_t second = 0xd1b54a32d192ed03;
    std::uint64_t sum = mix(seed ^ first, bytes.size() ^ second);
    const std::byte *at = bytes.data();
    std::size_t left = bytes.size();
    for (; left >= 16; left -= 16, at += 16)
        sum = mix(wordAt(at) ^ first ^ sum, wordAt(at + 8) ^ second);
    std::byte rest[16]{};
    if (left > 0) std::memcpy(rest, at, left);
    return mix(wordAt(rest) ^ first ^ sum, wordAt(rest + 8) ^ second);
}

} // namespace mqrig::qmgr::store
