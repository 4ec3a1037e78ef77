#ifndef TOOLS_ALMCFG_READ_SOURCE_TEXT_H_
#define TOOLS_ALMCFG_READ_SOURCE_TEXT_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// The text of one file in memory, cut into lines as a load cuts them. Owns the bytes; lines are views.
namespace almcfg {

class Progress;

/// A line's number, counted from 1; 0 means none.
using LineNumber = std::uint32_t;

/// The length in bytes of the longest line that a load can read: CR included, LF not.
inline constexpr std::size_t kLongestLine = 1022;

/// One line as a load's stream cuts it. A view into its `SourceText`.
struct Line {
  std::string_view text;     ///< without the LF; the first `kLongestLine` bytes of a longer line
  std::uint64_t length = 0;  ///< bytes in the file, without the LF

  /// A load never ends when it reaches such a line.
  [[nodiscard]] bool IsOverlong() const { return length > kLongestLine; }

  /// What the load parses: the text up to its first NUL.
  [[nodiscard]] std::string_view Loaded() const { return text.substr(0, text.find('\0')); }
};

/// A file's text in memory, cut into lines. Only the start of an over-long line is kept, so the memory for a file
/// without line feeds does not grow with its size.
///
/// Ownership: views into the lines stay valid until this object, or the object it is moved to, is destroyed.
/// Threads: any number may read at the same time.
class SourceText {
 public:
  /// Reads the file `path` to its end, or standard input for "-". Throws `ReadError`.
  static SourceText Read(const std::string& path, std::string name, Progress& progress);

  /// The same for bytes in memory; they are copied.
  static SourceText FromBytes(std::string name, std::string_view bytes);

  /// The file's name as the user wrote it. Not safe to print: it may hold control characters.
  [[nodiscard]] const std::string& Name() const { return name_; }

  [[nodiscard]] LineNumber LineCount() const { return static_cast<LineNumber>(lines_.size()); }

  /// `number` must be from 1 to `LineCount()`.
  [[nodiscard]] Line LineAt(LineNumber number) const;

  /// False when the last line has no LF. True for an empty file.
  [[nodiscard]] bool EndsWithLineFeed() const { return endsWithLineFeed_; }

  /// How many lines end with CR LF, and the first of them.
  [[nodiscard]] LineNumber CrLfLines() const { return crLfLines_; }
  [[nodiscard]] LineNumber FirstCrLfLine() const { return firstCrLfLine_; }

 private:
  explicit SourceText(std::string name) : name_(std::move(name)) {}
  void Take(const char* bytes, std::size_t count);
  void TakeEnd();
  void Keep(const char* bytes, std::size_t count);
  void EndLine();

  static constexpr std::size_t kChunkBytes = std::size_t{1} << 20;
  static constexpr unsigned kLengthBits = 10;  // 1,022 fits

  std::string name_;
  std::vector<std::unique_ptr<char[]>> chunks_;  // A line lies in one chunk.
  std::vector<std::uint64_t> lines_;  // Where it starts, counted over all chunks, and its kept length.
  std::vector<std::pair<LineNumber, std::uint64_t>> overlong_;  // Real lengths, by line.
  bool endsWithLineFeed_ = true;
  LineNumber crLfLines_ = 0;
  LineNumber firstCrLfLine_ = 0;

  // The line being read.
  std::size_t used_ = kChunkBytes;  // of the last chunk, up to the start of the line
  std::size_t kept_ = 0;
  std::uint64_t length_ = 0;
  bool endsWithCr_ = false;
};

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_READ_SOURCE_TEXT_H_
