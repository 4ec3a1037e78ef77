// Replaces `getrandom`, from which tables get their hash keys. The test program must be linked with
// --wrap=getrandom.

#include "tests/alarmconfig/equal_hashes.h"

#include <gtest/gtest.h>
#include <sys/types.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>

#include "src/alarmconfig/almhash.h"

namespace {
bool equalHashes = false;
}  // namespace

extern "C" ssize_t __real_getrandom(void* buffer, std::size_t size, unsigned flags);
extern "C" ssize_t __wrap_getrandom(void* buffer, std::size_t size, unsigned flags) {
  if (!equalHashes) {
    return __real_getrandom(buffer, size, flags);
  }
  const NS_ASCII::HashKey key{0x5555555555555555U, ~std::uint64_t{0}};
  std::memcpy(buffer, &key, std::min(size, sizeof key));
  return static_cast<ssize_t>(size);
}

// The last factor of the hash is 2^64 - 1. Its product with any s but 0 is (s - 1) * 2^64 + (2^64 - s), of
// which one half is the complement of the other.
EqualHashes::EqualHashes() {
  equalHashes = true;
  for (const char* const text : {"", "a", "another text, of more than sixteen bytes"}) {
    NS_ASCII::TextHash hash(NS_ASCII::RandomHashKey());
    hash.Add(text);
    EXPECT_EQ(hash.Value(), 0xFFFFFFFFU) << "choose a hash key with which all texts have the same hash";
  }
}

EqualHashes::~EqualHashes() { equalHashes = false; }
