// The host's file of configuration items.
//
// Holds for every file: it is read, or refused with one line of text that names the place; a refused file
// changes nothing; an item is readable exactly when its text is an integer; reading the file again changes
// nothing. Input: the file.

#include <map>
#include <string>

#include "fuzz/fuzz_input.h"
#include "fuzz/memory_file.h"
#include "host/base/problem.h"
#include "host/platform/config_items.h"

namespace {

/// What is wrong with the file; empty when it was read.
std::string Load(const std::string& file) {
  try {
    host::LoadItems(file);
    return {};
  } catch (const host::Failure& problem) {
    return problem.what();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  for (const auto& [name, text] : host::ListItems()) {
    host::UnsetItem(name);
  }
  const fuzz::MemoryFile file(fuzz::Input(data, size).Rest());
  const std::string problem = Load(file.path());
  const std::map<std::string, std::string> items = host::ListItems();
  if (!problem.empty()) {
    fuzz::Expect(problem.find('\n') == std::string::npos, "a refusal is one line of text");
    const std::size_t line = file.path().size() + 1;
    const std::size_t lineEnd = problem.find_first_not_of("0123456789", line);
    fuzz::Expect(problem.compare(0, line, file.path() + ':') == 0 && lineEnd != line &&
                     lineEnd != std::string::npos && problem[lineEnd] == ':',
                 "a refusal says where");
    fuzz::Expect(items.empty(), "a refused file changes nothing");
  }
  for (const auto& [name, text] : items) {
    int value = 0;
    const bool readable = NS_BUNDLEMGR1::CorbaConfigItems::Instance()->GetIntItemInfo(name, value);
    const std::optional<int> parsed = host::ParseInt(text);
    fuzz::Expect(readable == parsed.has_value() && (!readable || value == *parsed),
                 "an item is readable as what its text says");
  }
  Load(file.path());
  fuzz::Expect(host::ListItems() == items, "reading again changes nothing");
  return 0;
}
