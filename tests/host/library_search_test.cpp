// Which files a library's name can mean, and in which order they are tried.

#include "host/loader/library_search.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/temp_directory.h"

namespace {

using host::Candidates;
using Paths = std::vector<std::string>;

TEST(Candidates, OfAPathAreThatPathAlone) {
  EXPECT_EQ(Candidates("./libx.so", true, {"/a"}), Paths{"./libx.so"});
  EXPECT_EQ(Candidates("/d/x", false, {"/a"}), Paths{"/d/x"});
}

TEST(Candidates, OfANameAreTheWorkingDirectoryTheLinkerAndTheDirectoriesInThisOrder) {
  EXPECT_EQ(Candidates("x", true, {"/a", "/b"}), (Paths{"./x", "libx.so", "/a/libx.so", "/b/libx.so"}));
  EXPECT_EQ(Candidates("libx.so.1", true, {"/a"}), (Paths{"./libx.so.1", "libx.so.1", "/a/libx.so.1"}));
}

TEST(Candidates, OfADirectivesNameAreNeverInTheWorkingDirectory) {
  EXPECT_EQ(Candidates("x", false, {"/a"}), (Paths{"libx.so", "/a/libx.so"}));
}

TEST(LibraryDirectories, AreThoseOfTheProgramAndOfThePlatformsLibrary) {
  const Paths directories = host::LibraryDirectories();
  ASSERT_FALSE(directories.empty());
  EXPECT_EQ(directories.front(), std::filesystem::canonical("/proc/self/exe").parent_path());
  EXPECT_TRUE(std::filesystem::exists(directories.back() + "/libbundle_host.so")) << directories.back();
}

TEST(LibraryNames, GiveTheBundleAndItsFactory) {
  EXPECT_EQ(host::FileNameOf("x"), "libx.so");
  EXPECT_EQ(host::FileNameOf("d/y.z"), "y.z");
  EXPECT_EQ(host::BundleNameOf("libx.so.1.2"), "x");
  EXPECT_EQ(host::BundleNameOf("x"), "x");
  EXPECT_EQ(host::FactoryOf("x"), "_make_x");
}

TEST(RealPath, FollowsLinksAndKeepsWhatDoesNotExist) {
  const TempDirectory dir;
  const std::string directory = std::filesystem::canonical(dir.path());
  dir.Write("a", "");
  std::filesystem::create_symlink("a", directory + "/b");
  EXPECT_EQ(host::RealPath(directory + "/./b"), directory + "/a");
  EXPECT_EQ(host::RealPath(directory + "/none"), directory + "/none");
}

}  // namespace
