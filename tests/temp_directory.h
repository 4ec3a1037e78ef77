#ifndef TESTS_TEMP_DIRECTORY_H_
#define TESTS_TEMP_DIRECTORY_H_

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

/// A new directory. The destructor removes it with its contents.
class TempDirectory {
 public:
  TempDirectory() {
    std::string name = (std::filesystem::temp_directory_path() / "ascii_util_test_XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
      throw std::runtime_error("cannot create a directory like " + name);
    }
    path_ = name;
  }
  ~TempDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempDirectory(const TempDirectory&) = delete;
  TempDirectory& operator=(const TempDirectory&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }
  std::string operator/(const std::string& name) const { return (path_ / name).string(); }

  /// Writes a file below the directory, byte for byte, and returns its path.
  std::string Write(const std::string& name, const std::string& content) const {
    const std::filesystem::path file = path_ / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << content;
    return file.string();
  }

  [[nodiscard]] std::string Read(const std::string& name) const {
    std::ostringstream content;
    content << std::ifstream(path_ / name, std::ios::binary).rdbuf();
    return content.str();
  }

  [[nodiscard]] std::vector<std::string> ReadLines(const std::string& name) const {
    std::ifstream file(path_ / name, std::ios::binary);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
      lines.push_back(line);
    }
    return lines;
  }

 private:
  std::filesystem::path path_;
};

#endif  // TESTS_TEMP_DIRECTORY_H_
