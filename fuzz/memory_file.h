#ifndef FUZZ_MEMORY_FILE_H_
#define FUZZ_MEMORY_FILE_H_

#include <string>
#include <string_view>

namespace fuzz {

/// A file in memory that can be opened by its path, for functions that read only files.
class MemoryFile {
 public:
  explicit MemoryFile(std::string_view content);
  ~MemoryFile();
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  [[nodiscard]] std::string path() const;

 private:
  int descriptor_;
};

}  // namespace fuzz

#endif  // FUZZ_MEMORY_FILE_H_
