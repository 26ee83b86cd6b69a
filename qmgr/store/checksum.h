// A 64-bit checksum of stored bytes: against damage, not against forgery.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace mqrig::qmgr::store {

// `seed` chains several pieces: the checksum of the piece before.
[[nodiscard]] std::uint64_t checksumOf(std::span<const std::byte> bytes, std::uint64_t seed);

} // namespace mqrig::qmgr::store
