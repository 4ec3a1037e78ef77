#include "src/almhash.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <initializer_list>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace {

std::uint32_t HashOf(std::initializer_list<std::string_view> texts) {
  NS_ASCII::TextHash hash;
  for (const std::string_view text : texts) {
    hash.Add(text);
  }
  return hash.value();
}

TEST(TextHash, IsTheSameForTheSameTexts) {
  EXPECT_EQ(HashOf({"a", "bc", ""}), HashOf({"a", "bc", ""}));
  const std::string text = "a text that is longer than a word";
  for (std::size_t start = 0; start < 16; ++start) {  // Wherever in memory it stands.
    const std::string moved = std::string(start, 'x') + text;
    EXPECT_EQ(HashOf({std::string_view(moved).substr(start)}), HashOf({text}));
  }
}

TEST(TextHash, ReadsNothingBehindTheText) {
  for (std::size_t length = 0; length < 40; ++length) {
    const std::string text(length, 'a');
    EXPECT_EQ(HashOf({std::string_view(text + "bbbbbbbbbbbbbbbb").substr(0, length)}),
              HashOf({std::string_view(text + "cccccccccccccccc").substr(0, length)}));
  }
}

// A hash that overlooks a byte or its place would have far fewer values.
TEST(TextHash, SeesEveryByteOfATextAndItsPlace) {
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

TEST(TextHash, TellsAllTextsOfTwoBytesApart) {
  std::set<std::uint32_t> hashes;
  for (int first = 0; first < 256; ++first) {
    for (int second = 0; second < 256; ++second) {
      hashes.insert(HashOf({std::string{static_cast<char>(first), static_cast<char>(second)}}));
    }
  }
  EXPECT_GE(hashes.size(), 65536U - 5U);
}

TEST(TextHash, SeesTheLengthOfEachText) {
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

TEST(TextHash, SeesEachOfTheTextsOfAKey) {
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

// Tables take the place of an entry from the lowest bits. Keys as they are configured, numbered one after the
// other, must not crowd: filled to three quarters, a table has about 53 % of its places taken by chance.
TEST(TextHash, SpreadsNumberedKeysOverTheLowestBits) {
  constexpr std::size_t kPlaces = 1 << 14;
  for (const char* const start : {"", "BTS", "RNC00000001/"}) {
    std::vector<int> taken(kPlaces);
    for (std::size_t i = 0; i < kPlaces * 3 / 4; ++i) {
      const std::string number = std::to_string(i);
      ++taken[HashOf({start + number, "LOF", "LINK", number}) % kPlaces];
    }
    std::size_t used = 0;
    for (const int count : taken) {
      EXPECT_LE(count, 10);
      used += count != 0 ? 1U : 0U;
    }
    EXPECT_GT(used, kPlaces / 2) << start;
  }
}

}  // namespace
