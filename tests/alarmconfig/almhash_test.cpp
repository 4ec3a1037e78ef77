// The hash of keys: each byte, length and half of the hash key counts. The key is fixed, so that the
// statistical checks give the same numbers in every run.

#include "src/alarmconfig/almhash.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace {

using NS_ASCII::HashKey;
using NS_ASCII::RandomHashKey;
using NS_ASCII::TextHash;

/// Fixed, so that the expected counts below are the same in every run.
constexpr HashKey kKey{0x9AE16A3B2F90404FU, 0xC949C7DEFE4B3A51U};

std::uint32_t HashOf(std::initializer_list<std::string_view> texts, const HashKey& key = kKey) {
  TextHash hash(key);
  for (const std::string_view text : texts) {
    hash.Add(text);
  }
  return hash.Value();
}

TEST(TextHash, IsTheSameForTheSameTexts) {
  EXPECT_EQ(HashOf({"a", "bc", ""}), HashOf({"a", "bc", ""}));
  const std::string text = "a text that is longer than a word";
  for (std::size_t start = 0; start < 16; ++start) {  // At every alignment.
    const std::string moved = std::string(start, 'x') + text;
    EXPECT_EQ(HashOf({std::string_view(moved).substr(start)}), HashOf({text}));
  }
}

TEST(TextHash, ReadsNothingAfterTheText) {
  for (std::size_t length = 0; length < 40; ++length) {
    const std::string text(length, 'a');
    EXPECT_EQ(HashOf({std::string_view(text + "bbbbbbbbbbbbbbbb").substr(0, length)}),
              HashOf({std::string_view(text + "cccccccccccccccc").substr(0, length)}));
  }
}

// A hash that ignores a byte or its position would have far fewer values.
TEST(TextHash, DependsOnEveryByteOfATextAndItsPosition) {
  for (std::size_t length = 1; length <= 33; ++length) {
    std::set<std::uint32_t> hashes;
    for (std::size_t place = 0; place < length; ++place) {
      for (int byte = 1; byte < 256; ++byte) {
        std::string text(length, '\0');
        text[place] = static_cast<char>(byte);
        hashes.insert(HashOf({text}));
      }
    }
    const std::size_t texts = length * 255;
    EXPECT_GE(hashes.size() + (length <= 3 ? 0 : 10), texts) << length;
  }
}

TEST(TextHash, DistinguishesAllTextsOfTwoBytes) {
  std::set<std::uint32_t> hashes;
  for (int first = 0; first < 256; ++first) {
    for (int second = 0; second < 256; ++second) {
      hashes.insert(HashOf({std::string{static_cast<char>(first), static_cast<char>(second)}}));
    }
  }
  EXPECT_GE(hashes.size(), 65536U - 5U);
}

TEST(TextHash, DependsOnTheLengthOfEachText) {
  std::set<std::uint32_t> hashes;
  for (std::size_t length = 0; length < 200; ++length) {
    hashes.insert(HashOf({std::string(length, '\0')}));
  }
  EXPECT_EQ(hashes.size(), 200U);
  EXPECT_NE(HashOf({"ab", "c"}), HashOf({"a", "bc"}));
  EXPECT_NE(HashOf({"abcdefgh", ""}), HashOf({"", "abcdefgh"}));
  EXPECT_NE(HashOf({"a", ""}), HashOf({"a"}));
  EXPECT_NE(HashOf({"a", "b"}), HashOf({"b", "a"}));
}

TEST(TextHash, DependsOnEachTextOfAKey) {
  constexpr std::size_t kTexts = 4;
  for (std::size_t place = 0; place < kTexts; ++place) {
    std::set<std::uint32_t> hashes;
    for (int i = 0; i < 1000; ++i) {
      std::array<std::string, kTexts> texts{"RNC1", "LOF", "LINK", "0"};
      texts[place] = std::to_string(i);
      hashes.insert(HashOf({texts[0], texts[1], texts[2], texts[3]}));
    }
    EXPECT_GE(hashes.size(), 999U) << place;
  }
}

TEST(TextHash, DependsOnBothHalvesOfTheKey) {
  for (const std::string text : {"", "a", "abcd", "a text of some length"}) {
    EXPECT_NE(HashOf({text}), HashOf({text}, {kKey.first + 1, kKey.second}));
    EXPECT_NE(HashOf({text}), HashOf({text}, {kKey.first, kKey.second + 2}));
  }
}

TEST(RandomHashKey, DrawsADifferentKeyEachTime) {
  std::set<std::uint64_t> words;
  for (int i = 0; i < 10; ++i) {
    const HashKey key = RandomHashKey();
    words.insert({key.first, key.second});
  }
  EXPECT_EQ(words.size(), 20U);
}

/// The mean number of slots that a search with linear probing reads, for the keys of the table and for as
/// many absent ones.
struct Probes {
  double hit = 0;
  double miss = 0;
};

template <class MakeKey>
Probes ProbesOf(std::size_t count, MakeKey makeKey) {
  std::size_t slots = 64;
  while (4 * count > 3 * slots) {
    slots *= 2;
  }
  std::vector<bool> used(slots);
  const auto probe = [&](std::size_t i, std::size_t& slot) {
    const std::string text = makeKey(i);
    slot = HashOf({text, "LOF", "LINK", "1"}) % slots;
    double looked = 1;
    for (; used[slot]; slot = (slot + 1) % slots) {
      ++looked;
    }
    return looked;
  };
  Probes probes;
  for (std::size_t i = 0; i < count; ++i) {
    std::size_t slot = 0;
    probes.hit += probe(i, slot);
    used[slot] = true;
  }
  for (std::size_t i = count; i < 2 * count; ++i) {
    std::size_t slot = 0;
    probes.miss += probe(i, slot);
  }
  return {probes.hit / static_cast<double>(count), probes.miss / static_cast<double>(count)};
}

// Realistic keys must spread over the slots like random ones.
TEST(TextHash, SpreadsKeysThatCountUpwardsLikeRandomOnes) {
  struct Family {
    const char* format;
    std::size_t count;
  };
  for (const Family& family :
       {Family{"ALARM%03zu", 1000}, Family{"ALM%05zu", 3000}, Family{"NodeB-%010zu", 3000},
        Family{"%08zu", 300}, Family{"%zu", 1500}, Family{"RNC00000001/%zu", 12000},
        Family{"%04zu-a-constant-tail-of-two-words", 3000}}) {
    const Probes counted = ProbesOf(family.count, [&family](std::size_t i) {
      char text[64];
      std::snprintf(text, sizeof text, family.format, i);
      return std::string(text);
    });
    const Probes random = ProbesOf(family.count, [](std::size_t i) {
      std::mt19937_64 bits(i);
      std::string text(12, ' ');
      for (char& c : text) {
        c = static_cast<char>(bits());
      }
      return text;
    });
    EXPECT_LT(counted.hit, 2 * random.hit) << family.format;
    EXPECT_LT(counted.miss, 2 * random.miss) << family.format;
  }
}

// Without the secret key, an odd multiplier and a shift can be inverted: the second word of each text is
// chosen so that it cancels the first one.
TEST(TextHash, DoesNotLetTheSecondWordOfATextCancelTheFirst) {
  constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15U;
  std::set<std::uint32_t> hashes;
  for (std::uint64_t i = 0; i < 1000; ++i) {
    std::uint64_t first = i * kMultiplier;
    first ^= first >> 32;
    const std::uint64_t second = first ^ 0x4141414141414141U;
    std::string text(16, '\0');
    std::memcpy(text.data(), &i, sizeof i);
    std::memcpy(text.data() + sizeof i, &second, sizeof second);
    hashes.insert(HashOf({text}));
  }
  EXPECT_GE(hashes.size(), 999U);
}

// A multiplication by 0 would lose the other factor; no author of a file may know a word that leads to it.
TEST(TextHash, LosesNothingForWordsThatEqualItsConstants) {
  const HashKey preset;
  std::set<std::uint32_t> hashes;
  for (std::uint64_t i = 0; i < 1000; ++i) {
    std::string text(16, '\0');
    std::memcpy(text.data(), &preset.first, sizeof i);
    std::memcpy(text.data() + sizeof i, &i, sizeof i);
    hashes.insert(HashOf({text}));
  }
  EXPECT_GE(hashes.size(), 999U);
}

}  // namespace
