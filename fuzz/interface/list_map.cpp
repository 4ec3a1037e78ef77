// Texts of name=item|item entries.
//
// Holds for every text: the map is that of the literal rules; no list in it is empty; the map's former
// content has no effect; GetMapList returns each list unchanged. For any name: the same answer as the literal
// rules. Input: a name to look up, 0xFF, text.

#include <vector>

#include "fuzz/fuzz_input.h"
#include "src/interface/asciiutilifimpl.h"
#include "tests/literal_rules.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const std::string name = input.Part();
  const std::string text = input.Rest();
  NS_ASCII::AsciiUtilInterfaceImpl util;
  NS_ASCII::ListMap map = {{name, {"former content"}}};
  fuzz::Expect(util.ParseListMap(map, text) == 0, "ParseListMap answers 0");
  literal::ListMap reference;
  literal::ParseListMap(reference, text);
  fuzz::Expect(map == reference, "the map is that of the literal rules");
  for (const auto& [known, items] : map) {
    fuzz::Expect(!items.empty(), "no list is empty");
    std::vector<std::string> out = {"former content"};
    fuzz::Expect(util.GetMapList(map, known, out) == 0 && out == items, "a list comes out unchanged");
  }
  std::vector<std::string> out = {"kept"};
  std::vector<std::string> expected = {"kept"};
  fuzz::Expect(
      util.GetMapList(map, name, out) == literal::GetMapList(reference, name, expected) && out == expected,
      "GetMapList answers as the literal rules");
  return 0;
}
