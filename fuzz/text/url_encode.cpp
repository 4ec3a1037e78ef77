// Percent encoding.
//
// Holds for every text, with a converter that changes nothing:
//   1. the encoding is that of the literal rules
//   2. it consists of letters, digits and -._*+%, and is at most three times as long as the text; each line
//      feed may take three bytes more, each carriage return one more
//   3. SetURLDecoding, then GetURLDecoding give the text again, unless it contains a '+'
// Input: the text.

#include <algorithm>
#include <cstring>

#include "ascii_util/text_functions.h"
#include "fuzz/fuzz_input.h"
#include "tests/literal_rules.h"
#include "tests/recording_framework.h"

namespace {

bool IsInAlphabet(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
         (c != '\0' && std::strchr("-._*+%", c) != nullptr);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = fuzz::Input(data, size).Rest();
  recording::Framework::Instance().SetRecording(false);
  recording::Framework::Instance().convert = recording::CopyThrough;
  const std::string encoded = NS_ASCII::GetURLEncoding(text);
  fuzz::Expect(encoded == literal::EncodeLatin1(text), "the encoding is that of the literal rules");
  fuzz::Expect(std::all_of(encoded.begin(), encoded.end(), IsInAlphabet),
               "the encoding keeps to its alphabet");
  const auto lineFeeds = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
  const auto returns = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\r'));
  fuzz::Expect(encoded.size() <= 3 * (text.size() + lineFeeds) + returns, "the encoding's length is limited");
  const std::string escaped = NS_ASCII::SetURLDecoding(text);
  fuzz::Expect(escaped == literal::SetURLDecoding(text), "the escaped text is that of the literal rules");
  if (text.find('+') == std::string::npos) {
    fuzz::Expect(NS_ASCII::GetURLDecoding(escaped) == text, "an escaped text is decoded to itself");
  }
  return 0;
}
