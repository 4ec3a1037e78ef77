// Converts texts between code sets with iconv, for the platform's KelpCodeSetConvert.
// Threads: any; each thread caches the descriptors of its last pair of code sets.

#include <iconv.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "framework/platform_util.h"

namespace {

struct Close {
  void operator()(iconv_t descriptor) const { iconv_close(descriptor); }
};

/// Owns an iconv descriptor; null when a code set is unknown.
using Descriptor = std::unique_ptr<std::remove_pointer_t<iconv_t>, Close>;

Descriptor OpenDescriptor(const std::string& from, const std::string& to) {
  void* const opened = iconv_open(to.c_str(), from.c_str());
  // NOLINTNEXTLINE(performance-no-int-to-ptr)
  return Descriptor(opened == reinterpret_cast<iconv_t>(-1) ? nullptr : opened);
}

void Reset(const Descriptor& convert) { iconv(convert.get(), nullptr, nullptr, nullptr, nullptr); }

/// Converts what fits into `space` bytes at `out` and advances all four. Returns 0, or the errno value that
/// stopped it. A null `in` writes the final shift sequence of a stateful target and resets the descriptor.
int Step(const Descriptor& convert, char*& in, std::size_t& left, char*& out, std::size_t& space) {
  const std::size_t result = iconv(convert.get(), in == nullptr ? nullptr : &in, &left, &out, &space);
  return result == static_cast<std::size_t>(-1) ? errno : 0;
}

/// Appends to `out` what `convert` writes. Returns 0, or the errno value that stopped it, other than E2BIG.
int Append(const Descriptor& convert, char*& in, std::size_t& left, std::string& out) {
  for (;;) {
    std::array<char, 4096> buffer;
    char* end = buffer.data();
    std::size_t space = buffer.size();
    const int problem = Step(convert, in, left, end, space);
    out.append(buffer.data(), end);
    if (problem != E2BIG) {
      return problem;
    }
  }
}

/// The most bytes passed to iconv per call. At a character that the target lacks, iconv converts its whole
/// input once more; pieces keep the time linear.
constexpr std::size_t kPieceBytes = 256;

/// The code sets of usual calls: both contain ASCII unchanged, and neither has shift states.
bool IsUsual(std::string_view codeSet) { return codeSet == "UTF-8" || codeSet == "ISO-8859-1"; }

/// Converts between one pair of code sets; each character that iconv cannot convert becomes '?'.
class Converter {
 public:
  bool Open(const std::string& from, const std::string& to) {
    if (convert_ == nullptr || from != from_ || to != to_) {
      convert_ = OpenDescriptor(from, to);
      measure_ = OpenDescriptor(from, "UTF-32LE");
      from_ = from;
      to_ = to;
      usual_ = IsUsual(from) && IsUsual(to);
    }
    return convert_ != nullptr && measure_ != nullptr;
  }

  /// Returns false when a '?' was written for a character that could not be converted.
  bool Convert(const std::string& input, std::string& output) {
    bool complete = true;
    char* in = const_cast<char*>(input.data());  // iconv does not write to its input.
    std::size_t left = input.size();
    if (!usual_) {
      Reset(convert_);  // The previous conversion may have thrown std::bad_alloc in a shift state.
    }
    std::string converted;
    converted.reserve(input.size());
    while (left > 0) {
      const std::size_t given = std::min(left, kPieceBytes);
      std::size_t rest = given;
      const int problem = Append(convert_, in, rest, converted);
      left -= given - rest;
      // The piece ends inside a character and more input follows: the next piece starts with that character.
      // When iconv converted nothing of this piece, the next call would not either.
      const bool isCutByPiece = problem == EINVAL && rest < given && rest < left;
      if (problem != 0 && !isCutByPiece) {
        complete = false;
        converted += '?';
        const std::size_t bad = CharacterLength(in, std::min(left, kPieceBytes));
        in += bad;
        left -= bad;
      }
    }
    if (!usual_) {
      char* noInput = nullptr;
      Append(convert_, noInput, left, converted);
    }
    output = std::move(converted);
    return complete;
  }

 private:
  /// The length of the character at `in`, which the target lacks; 1 for a malformed byte.
  std::size_t CharacterLength(char* in, std::size_t left) const {
    char character[4];
    char* out = character;
    std::size_t space = sizeof character;
    const std::size_t before = left;
    Reset(measure_);
    Step(measure_, in, left, out, space);
    return std::max<std::size_t>(before - left, 1);
  }

  Descriptor convert_;
  Descriptor measure_;
  std::string from_;
  std::string to_;
  bool usual_ = false;
};

/// Reads the whole text: the loop without an early exit is vectorised, and so faster.
bool IsAscii(const std::string& text) {
  unsigned char allBits = 0;
  for (const char c : text) {
    allBits |= static_cast<unsigned char>(c);
  }
  return allBits < 0x80;
}

}  // namespace

int KelpGlobalUtils::KelpCodeSetConvert(const std::string& fromCode, const std::string& toCode,
                                        const std::string& input, std::string& output) {
  if (IsUsual(fromCode) && IsUsual(toCode) && IsAscii(input)) {
    output = input;
    return 0;
  }
  thread_local Converter converter;  // Opening a descriptor costs more than most conversions.
  if (!converter.Open(fromCode, toCode)) {
    output.clear();
    return -1;
  }
  return converter.Convert(input, output) ? 0 : -1;
}
