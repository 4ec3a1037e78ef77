// Splitting at a separator.
//
// Holds for every text and every separator that is not empty (required: an empty one exhausts memory): the
// pieces are those of the literal rules; they are appended; none is longer than the text.
// Input: separator, 0xFF, text.

#include <vector>

#include "fuzz/fuzz_input.h"
#include "src/interface/asciiutilifimpl.h"
#include "tests/literal_rules.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const std::string separator = input.Part();
  const std::string text = input.Rest();
  if (separator.empty()) {
    return 0;
  }
  NS_ASCII::AsciiUtilInterfaceImpl util;
  std::vector<std::string> pieces = {"kept"};
  fuzz::Expect(util.SplitStr(text, separator, pieces) == 0, "SplitStr answers 0");
  std::vector<std::string> expected = {"kept"};
  literal::SplitStr(text, separator, expected);
  fuzz::Expect(pieces == expected, "the pieces of the literal rules are appended to the list");
  for (std::size_t i = 1; i < pieces.size(); ++i) {
    fuzz::Expect(pieces[i].size() <= text.size(), "no piece is longer than the text");
  }
  return 0;
}
