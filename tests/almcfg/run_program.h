#ifndef TESTS_ALMCFG_RUN_PROGRAM_H_
#define TESTS_ALMCFG_RUN_PROGRAM_H_

#include <string>
#include <vector>

#include "tests/temp_directory.h"

/// Runs the built checker as users run it.
namespace almcfg_test {

struct Outcome {
  int exitCode = -1;  ///< negative: the number of the signal that ended it
  std::string out;
  std::string err;
};

/// Runs almcfg with `arguments` in the project's folder, `input` as its standard input.
Outcome RunAlmcfg(const std::vector<std::string>& arguments, const std::string& input = "");

/// The same in another folder, so that outputs have the names of the files in it without a path.
Outcome RunIn(const std::string& folder, const std::vector<std::string>& arguments,
              const std::string& input = "");

/// The whole file; fails the test when there is none.
std::string ReadFile(const std::string& path);

/// The project's folder, with a separator at the end.
std::string ProjectFolder();

/// A temporary file that is removed with the object.
class TempFile {
 public:
  explicit TempFile(const std::string& content) : path_(directory_.Write("file", content)) {}

  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  TempDirectory directory_;
  std::string path_;
};

}  // namespace almcfg_test

#endif  // TESTS_ALMCFG_RUN_PROGRAM_H_
