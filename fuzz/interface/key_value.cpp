// Texts of key=value pairs.
//
// Holds for every key and text: both operations answer as the literal rules do, and a value is a substring of
// the text. Input: key, 0xFF, text.

#include "fuzz/fuzz_input.h"
#include "src/interface/asciiutilifimpl.h"
#include "tests/literal_rules.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const std::string key = input.Part();
  const std::string text = input.Rest();
  NS_ASCII::AsciiUtilInterfaceImpl util;
  const std::string value = util.GetKeyValue(key, text);
  fuzz::Expect(value == literal::GetKeyValue(key, text), "GetKeyValue answers as the literal rules");
  fuzz::Expect(util.IsKeyValueAboveOne(key, text) == literal::IsKeyValueAboveOne(key, text),
               "IsKeyValueAboveOne answers as the literal rules");
  fuzz::Expect(text.find(value) != std::string::npos, "a value is a piece of the text");
  return 0;
}
