// Converts texts between code sets with iconv, for the platform's KelpCodeSetConvert.
// Threads: any; each thread caches the descriptors of its last pair of code sets.

#include <iconv.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string>
#include <string_view>
#include <utility>

#include "framework/platform_util.h"

namespace {

/// Owns an iconv descriptor; not open when a code set is unknown.
class Descriptor {
 public:
  Descriptor() = default;
  Descriptor(const std::string& from, const std::string& to) : value_(iconv_open(to.c_str(), from.c_str())) {}
  Descriptor(Descriptor&& other) noexcept : value_(std::exchange(other.value_, None())) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }
  ~Descriptor() {
    if (IsOpen()) {
      iconv_close(value_);
    }
  }

  [[nodiscard]] bool IsOpen() const { return value_ != None(); }

  void Reset() const { iconv(value_, nullptr, nullptr, nullptr, nullptr); }

  /// Converts what fits into `space` bytes at `out` and advances all four. Returns 0, or the errno value that
  /// stopped it. A null `in` writes the final shift sequence of a stateful target and resets the descriptor.
  int Step(char*& in, std::size_t& left, char*& out, std::size_t& space) const {
    const std::size_t result = iconv(value_, in == nullptr ? nullptr : &in, &left, &out, &space);
    return result == static_cast<std::size_t>(-1) ? errno : 0;
  }

 private:
  static iconv_t None() { return reinterpret_cast<iconv_t>(-1); }  // NOLINT(performance-no-int-to-ptr)

  iconv_t value_ = None();
};

/// Appends to `out` what `convert` writes. Returns 0, or the errno value that stopped it, other than E2BIG.
int Append(const Descriptor& convert, char*& in, std::size_t& left, std::string& out) {
  for (;;) {
    std::array<char, 4096> buffer;
    char* end = buffer.data();
    std::size_t space = buffer.size();
    const int problem = convert.Step(in, left, end, space);
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
    if (!convert_.IsOpen() || from != from_ || to != to_) {
      convert_ = Descriptor(from, to);
      measure_ = Descriptor(from, "UTF-32LE");
      from_ = from;
      to_ = to;
      usual_ = IsUsual(from) && IsUsual(to);
    }
    return convert_.IsOpen() && measure_.IsOpen();
  }

  /// Returns false when a '?' was written for a character that could not be converted.
  bool Convert(const std::string& input, std::string& output) {
    bool complete = true;
    char* in = const_cast<char*>(input.data());  // iconv does not write to its input.
    std::size_t left = input.size();
    if (!usual_) {
      convert_.Reset();  // The previous conversion may have thrown std::bad_alloc in a shift state.
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
    measure_.Reset();
    measure_.Step(in, left, out, space);
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
