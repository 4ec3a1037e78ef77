// Percent decoding.
//
// Holds for every text: the result is that of the literal rules, which read escapes with the standard
// streams; it is not longer than the text; a text without '%' and '+' is unchanged. Input: the text.

#include "ascii_util/text_functions.h"
#include "fuzz/fuzz_input.h"
#include "tests/literal_rules.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = fuzz::Input(data, size).Rest();
  const std::string decoded = NS_ASCII::GetURLDecoding(text);
  fuzz::Expect(decoded == literal::GetURLDecoding(text), "the result is that of the literal rules");
  fuzz::Expect(decoded.size() <= text.size(), "the result is not longer than the text");
  if (text.find_first_of("%+") == std::string::npos) {
    fuzz::Expect(decoded == text, "a text without escapes is itself");
  }
  return 0;
}
