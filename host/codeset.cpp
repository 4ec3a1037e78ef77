#include <iconv.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <utility>

#include "framework/platform_util.h"

namespace {

/// An open iconv descriptor, or none when a code set is unknown.
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

  bool IsOpen() const { return value_ != None(); }

  void Reset() const { iconv(value_, nullptr, nullptr, nullptr, nullptr); }

  /// Converts what fits `room` bytes at `out` and moves all four along; 0, or why it stopped. A null `in`
  /// writes what a stateful target needs at its end.
  int Step(char*& in, std::size_t& left, char*& out, std::size_t& room) const {
    const std::size_t result = iconv(value_, in == nullptr ? nullptr : &in, &left, &out, &room);
    return result == static_cast<std::size_t>(-1) ? errno : 0;
  }

 private:
  static iconv_t None() { return reinterpret_cast<iconv_t>(-1); }  // NOLINT(performance-no-int-to-ptr)

  iconv_t value_ = None();
};

/// Converts between one pair of code sets; whatever stops iconv becomes a '?'.
class Converter {
 public:
  bool Open(const std::string& from, const std::string& to) {
    if (!convert_.IsOpen() || from != from_ || to != to_) {
      convert_ = Descriptor(from, to);
      measure_ = Descriptor(from, "UTF-32LE");
      from_ = from;
      to_ = to;
    }
    return convert_.IsOpen() && measure_.IsOpen();
  }

  /// False when something became a '?'.
  bool Convert(const std::string& input, std::string& output) {
    bool complete = true;
    char* in = const_cast<char*>(input.data());  // iconv's signature; it does not write there.
    std::size_t left = input.size();
    convert_.Reset();
    while (left > 0) {
      const int problem = Portion(in, left, output);
      if (problem == EILSEQ || problem == EINVAL) {
        complete = false;
        output += '?';
        const std::size_t bad = CharacterLength(in, left);
        in += bad;
        left -= bad;
      } else if (problem != 0 && problem != E2BIG) {
        return false;
      }
    }
    char* noInput = nullptr;
    Portion(noInput, left, output);
    return complete;
  }

 private:
  int Portion(char*& in, std::size_t& left, std::string& output) const {
    char portion[256];
    char* out = portion;
    std::size_t room = sizeof portion;
    const int problem = convert_.Step(in, left, out, room);
    output.append(portion, sizeof portion - room);
    return problem;
  }

  /// The length of the character at `in`, which the target lacks; 1 for a byte that starts no character.
  std::size_t CharacterLength(char* in, std::size_t left) const {
    char character[4];
    char* out = character;
    std::size_t room = sizeof character;
    const std::size_t before = left;
    measure_.Reset();
    measure_.Step(in, left, out, room);
    return std::max<std::size_t>(before - left, 1);
  }

  Descriptor convert_;
  Descriptor measure_;
  std::string from_;
  std::string to_;
};

bool KeepsAscii(const std::string& codeSet) { return codeSet == "UTF-8" || codeSet == "ISO-8859-1"; }

bool IsAscii(const std::string& text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

}  // namespace

int KelpGlobalUtils::KelpCodeSetConvert(const std::string& fromCode, const std::string& toCode,
                                        const std::string& input, std::string& output) {
  if (KeepsAscii(fromCode) && KeepsAscii(toCode) && IsAscii(input)) {
    output = input;
    return 0;
  }
  thread_local Converter converter;  // Opening a descriptor costs more than most conversions.
  std::string converted;
  if (!converter.Open(fromCode, toCode)) {
    output.clear();
    return -1;
  }
  const bool complete = converter.Convert(input, converted);
  output = std::move(converted);
  return complete ? 0 : -1;
}
