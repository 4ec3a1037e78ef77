// The bytes of a record while it is built.

#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>
#include <string>

#include "tools/recorder/byte_buffer.h"

namespace {

using recorder::ByteBuffer;

TEST(ByteBuffer, ATextOfEverySizeFollowsItsSize) {
  const std::string letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJ";
  for (std::uint32_t size = 0; size <= letters.size(); ++size) {
    ByteBuffer bytes(1U << 20U);
    bytes.AppendText(letters.substr(0, size));
    bytes.Append(std::int64_t{-1});
    const std::string expected = std::string(reinterpret_cast<const char*>(&size), sizeof size) +
                                 letters.substr(0, size) + std::string(8, '\xff');
    EXPECT_EQ(bytes.View(), expected) << size;
  }
}

TEST(ByteBuffer, GrowsAndKeepsWhatItHolds) {
  ByteBuffer bytes(1U << 20U);
  bytes.Append('0');
  std::string expected = "0";
  for (int i = 0; i < 5000; ++i) {
    const char letter = static_cast<char>('a' + i % 26);
    bytes.Append(letter);
    expected += letter;
  }
  bytes.Replace(0, '1');
  expected[0] = '1';
  EXPECT_EQ(bytes.View(), expected);
}

TEST(ByteBuffer, RejectsWhatExceedsItsLimit) {
  ByteBuffer bytes(5000);
  bytes.AppendText(std::string(4996, 'x'));
  EXPECT_EQ(bytes.View().size(), 5000U);
  EXPECT_THROW(bytes.Append('y'), std::length_error);
  EXPECT_THROW(ByteBuffer(5000).AppendText(std::string(4997, 'x')), std::length_error);
  EXPECT_THROW(ByteBuffer(0).AppendText(std::string(1024, 'x')), std::length_error);
}

TEST(ByteBuffer, DoesNotGrowBeyondItsLimit) {
  ByteBuffer bytes(1500);
  bytes.AppendText(std::string(1096, 'x'));
  EXPECT_THROW(bytes.AppendText(std::string(397, 'x')), std::length_error);
  bytes.AppendText(std::string(396, 'x'));
  EXPECT_EQ(bytes.View().size(), 1500U);
}

}  // namespace
