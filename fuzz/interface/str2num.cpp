// Numbers in any base, valid or not.
//
// Holds for every text and base: result and value are those of the literal rules, whatever the value held
// before. Input: a byte for the base (-3 to 60), text.

#include "fuzz/fuzz_input.h"
#include "src/asciiutilifimpl.h"
#include "tests/literal_rules.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const unsigned choice = input.Byte() % 36;
  const int base = choice == 0 ? 0 : static_cast<int>(choice) + 1;
  const std::string text = input.Rest();
  NS_ASCII::AsciiUtilInterfaceImpl util;
  int value = 12345;
  int expected = 54321;
  const bool whole = util.Str2Num(text, value, base);
  fuzz::Expect(whole == literal::Str2Num(text, expected, base), "the result is that of the literal rules");
  fuzz::Expect(value == expected, "the value is that of the literal rules");
  return 0;
}
