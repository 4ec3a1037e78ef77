#include "host/loader/loader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "host/base/problem.h"
#include "host/loader/library_trial.h"
#include "tests/temp_directory.h"

namespace {

using host::Loader;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

std::string Fixture(const std::string& name) { return FIXTURES "/lib" + name + ".so"; }

/// Replaces `to` by a copy of a fixture as a build does: by renaming, so that a mapped old file is unchanged.
void Install(const std::string& fixture, const std::string& to) {
  std::filesystem::copy_file(Fixture(fixture), to + ".new");
  std::filesystem::rename(to + ".new", to);
}

std::string ProblemOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const host::Problem& problem) {
    return problem.what();
  }
  return "";
}

class LoaderTest : public testing::Test {
 protected:
  LoaderTest() { host::SetTrialProgram(BUNDLE_HOST); }

  /// The version of the last loaded bundle that is built with one; 0 when there is none.
  int Version() const {
    void* const symbol = loader_.FindSymbol("FixtureVersion");
    return symbol == nullptr ? 0 : reinterpret_cast<int (*)()>(symbol)();
  }

  const TempDirectory dir_;
  const std::string library_ = dir_.path().string() + "/libversioned.so";
  Loader loader_;
};

TEST_F(LoaderTest, AReloadRunsTheNewFilesCode) {
  Install("versioned_1", library_);
  loader_.Load(library_, {"a", "b c"});
  EXPECT_EQ(Version(), 1);
  EXPECT_FALSE(loader_.MappedBundles().at(0).changedOnDisk);
  Install("versioned_2", library_);
  EXPECT_TRUE(loader_.MappedBundles().at(0).changedOnDisk);
  EXPECT_EQ(Version(), 1);
  EXPECT_EQ(loader_.Reload("versioned").library, library_);
  EXPECT_EQ(Version(), 2);
  EXPECT_FALSE(loader_.MappedBundles().at(0).changedOnDisk);
  EXPECT_EQ(loader_.Find("versioned").arguments, (host::Words{"a", "b c"}));
}

TEST_F(LoaderTest, WhatIsMappedIsDescribedByPathBuildIdAndTime) {
  Install("versioned_1", library_);
  const auto before = std::chrono::system_clock::now();
  loader_.Load(library_, {});
  const auto mapped = loader_.MappedBundles();
  ASSERT_EQ(mapped.size(), 1U);
  EXPECT_EQ(mapped[0].name, "versioned");
  EXPECT_EQ(mapped[0].path, library_);
  EXPECT_THAT(mapped[0].buildId, testing::MatchesRegex("([0-9a-f][0-9a-f])*"));
  EXPECT_GE(mapped[0].loadTime, before);
  const auto libraries = host::MappedLibraries();
  const bool someHaveOne = std::any_of(libraries.begin(), libraries.end(),
                                       [](const auto& library) { return library.buildId.size() >= 16; });
  EXPECT_TRUE(someHaveOne) << "the C library of every distribution has a build id";
}

TEST_F(LoaderTest, AReloadOfAFileThatCannotBeLoadedLeavesTheOldCodeLoaded) {
  Install("versioned_1", library_);
  loader_.Load(library_, {});
  std::filesystem::remove(library_);
  EXPECT_TRUE(loader_.MappedBundles().at(0).changedOnDisk);
  EXPECT_EQ(ProblemOf([&] { loader_.Reload("versioned"); }), library_ + ": no such library");
  dir_.Write("libversioned.so", "text");
  EXPECT_THAT(ProblemOf([&] { loader_.Reload("versioned"); }), StartsWith(library_ + ": cannot be loaded: "));
  EXPECT_EQ(Version(), 1);
  EXPECT_EQ(loader_.Bundles().size(), 1U);
}

TEST_F(LoaderTest, AReloadWhoseNewInitFailsSaysThatTheBundleIsUnloaded) {
  const std::string library = dir_.path().string() + "/libbroken_talks.so";
  Install("broken_talks", library);
  loader_.Load(library, {});
  Install("broken_init_fails", library);
  EXPECT_THAT(ProblemOf([&] { loader_.Reload("broken_talks"); }),
              StartsWith("broken_talks was unloaded, but not loaded again: " + library +
                         ": has no factory _make_broken_talks"));
  EXPECT_TRUE(loader_.Bundles().empty());
}

TEST_F(LoaderTest, TheArgumentsOfTheLastInitAreThoseOfAReload) {
  Install("versioned_1", library_);
  loader_.Load(library_, {"first"});
  loader_.Init("versioned", {"second"});
  EXPECT_EQ(loader_.Reload("versioned").arguments, host::Words{"second"});
}

TEST_F(LoaderTest, ABundleThatAnotherIsLinkedAgainstIsNeitherUnloadedNorReloaded) {
  loader_.Load(Fixture("broken_pair_base"), {});
  loader_.Load(Fixture("broken_pair_user"), {});
  const std::string inUse =
      "broken_pair_base is in use: linked against it: broken_pair_user; unload first what is";
  EXPECT_EQ(ProblemOf([&] { loader_.Unload("broken_pair_base"); }), inUse);
  EXPECT_EQ(ProblemOf([&] { loader_.Reload("broken_pair_base"); }), inUse);
  EXPECT_EQ(ProblemOf([&] { loader_.Process("remove broken_pair_base"); }), inUse);
  EXPECT_EQ(loader_.Bundles().size(), 2U);
  EXPECT_EQ(loader_.Unload("broken_pair_user").whyMapped, "");
  EXPECT_EQ(loader_.Unload("broken_pair_base").whyMapped, "");
}

TEST_F(LoaderTest, ALibraryThatIsMappedForAnotherBundleMayBeLoadedAsABundle) {
  loader_.Load(Fixture("broken_pair_user"), {});
  EXPECT_EQ(loader_.Load(Fixture("broken_pair_base"), {}).name, "broken_pair_base");
}

TEST_F(LoaderTest, ALibraryThatLoadedOnesNeedStaysMappedAndTheReasonNamesThem) {
  loader_.Load(Fixture("broken_pair_base"), {});
  loader_.Load(Fixture("broken_pair_user"), {});
  EXPECT_EQ(loader_.Unload("broken_pair_base", true).whyMapped, "needed by libbroken_pair_user.so");
  EXPECT_EQ(ProblemOf([&] { loader_.Load(Fixture("broken_pair_base"), {}); }),
            Fixture("broken_pair_base") +
                " is still mapped: the code in memory would run, not the file's: needed by "
                "libbroken_pair_user.so");
  loader_.Unload("broken_pair_user");
  EXPECT_EQ(loader_.Load(Fixture("broken_pair_base"), {}).name, "broken_pair_base");
}

TEST_F(LoaderTest, ALibraryThatAnExplicitOpenHoldsIsRefusedAndNothingIsGuessed) {
  Install("versioned_1", library_);
  loader_.Load(library_, {});
  const auto holder = host::LibraryHandle::OfLoaded(library_);
  loader_.Load(Fixture("broken_talks"), {});
  const std::string reason =
      "no loaded library needs it, so a symbol binding or an explicit dlopen holds it; loaded after it: "
      "libbroken_talks.so";
  EXPECT_EQ(loader_.Unload("versioned").whyMapped, reason);
  EXPECT_EQ(ProblemOf([&] { loader_.Load(library_, {}); }),
            library_ + " is still mapped: the code in memory would run, not the file's: " + reason);
  Install("versioned_2", library_);
  EXPECT_THAT(ProblemOf([&] { loader_.Load(library_, {}); }),
              StartsWith(library_ + " is still mapped, and its file has changed since: "));
  loader_.Unload("broken_talks");
  EXPECT_THAT(ProblemOf([&] { loader_.Load(library_, {}); }), EndsWith("; no library was loaded after it"));
}

TEST_F(LoaderTest, ALibraryWhoseFileWasReplacedIsStillMapped) {
  Install("versioned_1", library_);
  loader_.Load(library_, {});
  const auto holder = host::LibraryHandle::OfLoaded(library_);
  Install("versioned_2", library_);
  EXPECT_NE(loader_.Unload("versioned").whyMapped, "");
}

TEST_F(LoaderTest, ASecondBundleOfAChangedFileIsRefusedWhileTheFirstIsLoaded) {
  Install("versioned_1", library_);
  loader_.Process("dynamic one Service_Object * " + library_ + ":_make_versioned()");
  loader_.Process("dynamic two Service_Object * " + library_ + ":_make_versioned()");
  Install("versioned_2", library_);
  EXPECT_THAT(ProblemOf([&] {
                loader_.Process("dynamic three Service_Object * " + library_ + ":_make_versioned()");
              }),
              StartsWith(library_ + " is still mapped, and its file has changed since: "));
  EXPECT_EQ(loader_.Bundles().size(), 2U);
}

TEST_F(LoaderTest, ANoDeleteLibrarySaysSo) {
  loader_.Load(Fixture("broken_pinned"), {});
  EXPECT_EQ(loader_.Unload("broken_pinned").whyMapped, "it is linked with -z nodelete");
}

TEST_F(LoaderTest, ASymbolIsThatOfTheBundleLoadedLast) {
  Install("versioned_1", library_);
  const std::string other = dir_.path().string() + "/libother.so";
  Install("versioned_2", other);
  loader_.Process("dynamic one Service_Object * " + library_ + ":_make_versioned()");
  loader_.Process("dynamic two Service_Object * " + other + ":_make_versioned()");
  EXPECT_EQ(Version(), 2);
  loader_.Unload("two");
  EXPECT_EQ(Version(), 1);
}

TEST_F(LoaderTest, AStaticDirectiveMayHaveArguments) {
  EXPECT_THAT(ProblemOf([&] { loader_.Process("static nobody \"a\""); }), StartsWith("the directive failed"));
}

TEST_F(LoaderTest, AConstructorThatDoesNotReturnIsStoppedInTheChild) {
  EXPECT_EQ(ProblemOf([] {
              host::TryLibrary(Fixture("broken_constructor_hangs"), std::chrono::milliseconds(1000));
            }),
            "cannot be loaded: a constructor was still running after 1 s");
}

TEST_F(LoaderTest, ATrialMapsNothingHere) {
  EXPECT_EQ(host::TryLibrary(Fixture("broken_talks")), Fixture("broken_talks"));
  EXPECT_EQ(host::FindMapped(host::MappedLibraries(), Fixture("broken_talks")), nullptr);
  EXPECT_EQ(host::TryLibrary("libnowhere.so"), "");
}

}  // namespace
