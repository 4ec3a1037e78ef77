// Computes the checksum of the POSIX utility cksum over a file. No state; any thread may call.

#include "tools/recorder/format/cksum.h"

#include <array>
#include <cstdint>
#include <fstream>

namespace recording_format {
namespace {

/// The remainders of all bytes for the generator polynomial of POSIX, most significant bit first.
constexpr std::array<std::uint32_t, 256> MakeTable() {
  std::array<std::uint32_t, 256> table{};
  for (std::uint32_t byte = 0; byte < 256; ++byte) {
    std::uint32_t remainder = byte << 24U;
    for (int bit = 0; bit < 8; ++bit) {
      remainder = (remainder << 1U) ^ ((remainder >> 31U) != 0 ? 0x04C11DB7U : 0U);
    }
    table[byte] = remainder;
  }
  return table;
}

constexpr std::array<std::uint32_t, 256> kTable = MakeTable();

std::uint32_t Next(std::uint32_t sum, unsigned char byte) {
  return (sum << 8U) ^ kTable[(sum >> 24U) ^ byte];
}

}  // namespace

std::string Cksum(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::uint32_t sum = 0;
  std::uint64_t size = 0;
  std::array<char, 16384> block;
  while (file.read(block.data(), block.size()) || file.gcount() > 0) {
    const auto count = static_cast<std::size_t>(file.gcount());
    for (std::size_t at = 0; at < count; ++at) {
      sum = Next(sum, static_cast<unsigned char>(block[at]));
    }
    size += count;
  }
  if (!file.eof()) {
    return "";
  }
  for (std::uint64_t rest = size; rest != 0; rest >>= 8U) {
    sum = Next(sum, static_cast<unsigned char>(rest & 0xFFU));
  }
  return std::to_string(~sum & 0xFFFFFFFFU) + ' ' + std::to_string(size);
}

}  // namespace recording_format
