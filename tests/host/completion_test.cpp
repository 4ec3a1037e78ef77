// What the TAB key offers, for each kind of argument.

#include "host/console/completion.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "host/commands/command.h"
#include "host/platform/config_items.h"
#include "tests/temp_directory.h"

namespace {

using Names = std::vector<std::string>;

class Completion : public testing::Test {
 protected:
  Names Complete(const std::string& line) const { return host::Complete(session_, line); }

  host::Loader loader_;
  std::ostringstream out_;
  host::Session session_{loader_, out_};
};

TEST_F(Completion, TheFirstWordIsACommand) {
  EXPECT_EQ(Complete("se"), (Names{"services", "set"}));
  EXPECT_EQ(Complete("").size(), host::Commands().size());
  EXPECT_EQ(Complete("help exp"), (Names{"expect", "expect-error"}));
  EXPECT_EQ(Complete("help help "), Names{});
}

TEST_F(Completion, CallAndTimeTakeAnOperation) {
  EXPECT_EQ(Complete("call StrTo"), (Names{"StrToLower", "StrToUpper"}));
  EXPECT_EQ(Complete("call --json StrToL"), Names{"StrToLower"});
  EXPECT_EQ(Complete("call Trim "), Names{});
  EXPECT_EQ(Complete("time "), Names{});
  EXPECT_EQ(Complete("time 5 "), Names{"call"});
  EXPECT_EQ(Complete("time 5 call StrToU"), Names{"StrToUpper"});
}

TEST_F(Completion, ItemsAreTheOnesThatAreSet) {
  host::SetItem("CompletionItem", 1);
  EXPECT_EQ(Complete("unset CompletionI"), Names{"CompletionItem"});
  EXPECT_EQ(Complete("set CompletionItem "), Names{});
  EXPECT_EQ(Complete("set a CompletionI"), Names{}) << "only the first argument is an item";
  host::UnsetItem("CompletionItem");
  host::SetItem("#a", 1);
  EXPECT_EQ(Complete("unset #"), Names{}) << "'#' would begin a comment";
  host::UnsetItem("#a");
  EXPECT_EQ(Complete("unset CompletionI"), Names{});
}

TEST_F(Completion, FilesAreListedInAnyPlaceAndDirectoriesEndInASlash) {
  const TempDirectory directory;
  const std::string path = directory / "";
  std::filesystem::create_directory(path + "sub");
  std::ofstream(path + "some.so");
  std::ofstream(path + "so me.so");
  EXPECT_EQ(Complete("load " + path + "s"), (Names{path + "some.so", path + "sub/"}));
  EXPECT_EQ(Complete("load a.so " + path + "su"), Names{path + "sub/"});
  EXPECT_EQ(Complete("run " + path + "none/"), Names{});
}

TEST_F(Completion, AnOpenQuoteAndAnUnknownCommandHaveNone) {
  EXPECT_EQ(Complete("call 'Str"), Names{});
  EXPECT_EQ(Complete("call 'a b"), Names{});
  EXPECT_EQ(Complete("nonsense "), Names{});
}

}  // namespace
