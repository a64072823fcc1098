#pragma once

#include <cstdint>
#include <span>

/// The checksum of a ZIP entry (CRC-32): continues `crc`, which is 0 for the first bytes, with the next ones.
std::uint32_t Checksum(std::uint32_t crc, std::span<const unsigned char> bytes) noexcept;
