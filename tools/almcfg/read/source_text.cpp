// Cuts a file's bytes into lines, which the object owns. One thread fills it; then any number may read.

#include "tools/almcfg/read/source_text.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "tools/almcfg/read/input_file.h"
#include "tools/almcfg/write/progress.h"

namespace almcfg {

SourceText SourceText::Read(const std::string& path, std::string name, Progress& progress) {
  SourceText text(std::move(name));
  ReadBytes(path, [&](const char* bytes, std::size_t count) {
    text.Take(bytes, count);
    progress.Show(text.name_, "read", text.LineCount());
  });
  text.TakeEnd();
  return text;
}

SourceText SourceText::FromBytes(std::string name, std::string_view bytes) {
  SourceText text(std::move(name));
  text.Take(bytes.data(), bytes.size());
  text.TakeEnd();
  return text;
}

Line SourceText::LineAt(LineNumber number) const {
  const std::uint64_t word = lines_[number - 1];
  const std::uint64_t start = word >> kLengthBits;
  const std::size_t kept = word & ((1U << kLengthBits) - 1);
  if (kept == 0) {
    return {};
  }
  const std::string_view text(&chunks_[start / kChunkBytes][start % kChunkBytes], kept);
  if (kept == kLongestLine) {
    const auto found =
        std::lower_bound(overlong_.begin(), overlong_.end(), std::pair{number, std::uint64_t{0}});
    if (found != overlong_.end() && found->first == number) {
      return {text, found->second};
    }
  }
  return {text, kept};
}

void SourceText::Take(const char* bytes, std::size_t count) {
  const char* const end = bytes + count;
  while (bytes != end) {
    const auto* const feed =
        static_cast<const char*>(std::memchr(bytes, '\n', static_cast<std::size_t>(end - bytes)));
    const char* const stop = feed == nullptr ? end : feed;
    Keep(bytes, static_cast<std::size_t>(stop - bytes));
    if (feed == nullptr) {
      return;
    }
    EndLine();
    if (endsWithCr_ && crLfLines_++ == 0) {
      firstCrLfLine_ = LineCount();
    }
    endsWithCr_ = false;
    bytes = feed + 1;
  }
}

void SourceText::TakeEnd() {
  endsWithLineFeed_ = length_ == 0;
  if (!endsWithLineFeed_) {
    EndLine();
  }
}

void SourceText::Keep(const char* bytes, std::size_t count) {
  if (count == 0) {
    return;
  }
  if (used_ + kLongestLine > kChunkBytes) {
    chunks_.emplace_back(new char[kChunkBytes]);
    used_ = 0;
  }
  const std::size_t kept = std::min(count, kLongestLine - kept_);
  std::memcpy(&chunks_.back()[used_ + kept_], bytes, kept);
  kept_ += kept;
  length_ += count;
  endsWithCr_ = bytes[count - 1] == '\r';
}

void SourceText::EndLine() {
  if (lines_.size() == std::numeric_limits<LineNumber>::max()) {
    throw ReadError("It has more lines than can be counted", Obstacle::kTooManyLines);
  }
  const std::uint64_t start = kept_ == 0 ? 0 : (chunks_.size() - 1) * kChunkBytes + used_;
  lines_.push_back(start << kLengthBits | kept_);
  if (length_ > kLongestLine) {
    overlong_.emplace_back(LineCount(), length_);
  }
  used_ += kept_;
  kept_ = 0;
  length_ = 0;
}

}  // namespace almcfg
