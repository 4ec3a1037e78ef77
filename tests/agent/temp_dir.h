#ifndef TESTS_AGENT_TEMP_DIR_H_
#define TESTS_AGENT_TEMP_DIR_H_

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

/// A directory for one test, removed with all that is in it.
class TempDir {
 public:
  TempDir() : path_((std::filesystem::temp_directory_path() / "alarm_agent_XXXXXX").string()) {
    if (::mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no temporary directory: " + path_);
  }
  ~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  std::string operator/(const std::string& name) const { return path_ + '/' + name; }

  std::string Write(const std::string& name, const std::string& content) const {
    std::ofstream(*this / name, std::ios::binary) << content;
    return *this / name;
  }

  std::string Read(const std::string& name) const {
    std::ostringstream content;
    content << std::ifstream(*this / name, std::ios::binary).rdbuf();
    return content.str();
  }

  std::vector<std::string> ReadLines(const std::string& name) const {
    std::ifstream file(*this / name, std::ios::binary);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    return lines;
  }

 private:
  std::string path_;
};

#endif  // TESTS_AGENT_TEMP_DIR_H_
