#include "host/text_line.h"

namespace host {

bool GetTextLine(std::istream& stream, std::string& line) {
  constexpr int kEnd = std::istream::traits_type::eof();
  line.clear();
  if (!stream || stream.peek() == kEnd) {
    return false;
  }
  for (int c = stream.get(); c != kEnd && c != '\n'; c = stream.get()) {
    line += static_cast<char>(c);
    if (line.size() > kLongestTextLine) {
      break;
    }
  }
  return !stream.bad();
}

}  // namespace host
