// Numbers in any base, valid or not.
//
// Holds for every text and base: result and value are those of the literal rules, for every previous
// value. Input: a byte for the base (-3 to 60), text. AddressSanitizer replaces strtol by a function that
// sets the end pointer to an arbitrary value for a rejected base, so its builds skip those bases.

#include "fuzz/fuzz_input.h"
#include "src/interface/asciiutilifimpl.h"
#include "tests/literal_rules.h"

#ifdef __has_feature
#if __has_feature(address_sanitizer)
#define __SANITIZE_ADDRESS__
#endif
#endif

namespace {

#ifdef __SANITIZE_ADDRESS__
constexpr bool kCanReject = false;
#else
constexpr bool kCanReject = true;
#endif

bool IsAccepted(int base) { return base == 0 || (base >= 2 && base <= 36); }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const int base = static_cast<int>(input.Byte() % 64) - 3;
  if (!kCanReject && !IsAccepted(base)) {
    return 0;
  }
  const std::string text = input.Rest();
  NS_ASCII::AsciiUtilInterfaceImpl util;
  int value = 12345;
  int expected = 54321;
  const bool whole = util.Str2Num(text, value, base);
  fuzz::Expect(whole == literal::Str2Num(text, expected, base), "the result is that of the literal rules");
  fuzz::Expect(value == expected, "the value is that of the literal rules");
  return 0;
}
