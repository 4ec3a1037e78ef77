// A program that links the text functions, as another library would.

#include <cstdio>

#include "ascii_util/text_functions.h"

int main() {
  std::printf("%s\n", NS_ASCII::Trim(" ab c\r\n").c_str());
  std::printf("%s\n", NS_ASCII::StrToLower(NS_ASCII::StrToUpper("MiXeD")).c_str());
  std::printf("%s\n", NS_ASCII::Num2Str(-5).c_str());
  std::printf("%s\n", NS_ASCII::GetURLDecoding(NS_ASCII::GetURLEncoding("a/b~")).c_str());
  std::printf("%s\n", NS_ASCII::SetURLDecoding("100%").c_str());
  std::printf("%s\n", NS_ASCII::utf8toiso8859("plain").c_str());
  return 0;
}
