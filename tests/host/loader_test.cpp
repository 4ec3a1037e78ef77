// Loading, reloading and unloading of real libraries in this process: each failure must leave the bundle
// that was loaded, or say that it is gone.

#include "host/loader/loader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/time.h>

#include <ace/Service_Repository.h>

#include <filesystem>
#include <fstream>
#include <functional>

#include "framework/interface_registry.h"
#include "host/base/problem.h"
#include "host/loader/library_trial.h"
#include "host/platform/bundle_mgr.h"
#include "host/platform/interface_registry.h"
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

bool IsActive(const char* name) { return ACE_Service_Repository::instance()->find(name, nullptr, true) == 0; }

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
  EXPECT_FALSE(loader_.Bundles().at(0).ChangedOnDisk());
  Install("versioned_2", library_);
  EXPECT_TRUE(loader_.Bundles().at(0).ChangedOnDisk());
  EXPECT_EQ(Version(), 1);
  EXPECT_EQ(loader_.Reload("versioned").library, library_);
  EXPECT_EQ(Version(), 2);
  EXPECT_FALSE(loader_.Bundles().at(0).ChangedOnDisk());
  EXPECT_EQ(loader_.Find("versioned").arguments, (host::Words{"a", "b c"}));
}

TEST_F(LoaderTest, WhatIsMappedIsDescribedByPathBuildIdAndTime) {
  Install("versioned_1", library_);
  const auto before = std::chrono::system_clock::now();
  loader_.Load(library_, {});
  const auto& mapped = loader_.Bundles();
  ASSERT_EQ(mapped.size(), 1U);
  EXPECT_EQ(mapped[0].name, "versioned");
  EXPECT_EQ(mapped[0].library, library_);
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
  EXPECT_TRUE(loader_.Bundles().at(0).ChangedOnDisk());
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
      "broken_pair_base is in use: broken_pair_user is linked against it; unload first what uses it";
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

TEST_F(LoaderTest, AReloadOfALibraryThatWouldStayMappedUnloadsNothing) {
  loader_.Load(Fixture("broken_pinned"), {});
  EXPECT_EQ(ProblemOf([&] { loader_.Reload("broken_pinned"); }),
            "broken_pinned cannot be reloaded, as " + Fixture("broken_pinned") +
                " would stay mapped: it is linked with -z nodelete");
  EXPECT_EQ(loader_.Bundles().size(), 1U);
  loader_.Load(Fixture("broken_pair_base"), {});
  const auto user = host::LibraryHandle::Load(Fixture("broken_pair_user"));
  EXPECT_THAT(ProblemOf([&] { loader_.Reload("broken_pair_base"); }),
              EndsWith(" would stay mapped: needed by libbroken_pair_user.so"));
  EXPECT_EQ(loader_.Bundles().size(), 2U);
}

TEST_F(LoaderTest, AReloadOfAChangedFileThatTwoBundlesWereLoadedFromUnloadsNothing) {
  Install("versioned_1", library_);
  loader_.Process("dynamic one Service_Object * " + library_ + ":_make_versioned()");
  loader_.Process("dynamic two Service_Object * " + library_ + ":_make_versioned()");
  EXPECT_EQ(ProblemOf([&] { loader_.Reload("one"); }), "");
  Install("versioned_2", library_);
  EXPECT_EQ(ProblemOf([&] { loader_.Reload("one"); }),
            "one cannot be reloaded, as " + library_ + " would stay mapped: bundle two was loaded from it");
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

TEST_F(LoaderTest, AReloadWhoseOldFiniFailedLoadsTheNewCodeAndReportsIt) {
  loader_.Load(Fixture("broken_fini_fails"), {});
  EXPECT_EQ(ProblemOf([&] { loader_.Reload("broken_fini_fails"); }),
            "broken_fini_fails was reloaded, but its unload failed: broken_fini_fails: fini returned -1");
  EXPECT_EQ(loader_.Bundles().size(), 1U);
}

TEST_F(LoaderTest, ARemoveWhoseFiniFailsIsAFailureAndTheBundleIsGone) {
  loader_.Load(Fixture("broken_fini_fails"), {});
  EXPECT_EQ(ProblemOf([&] { loader_.Process("remove broken_fini_fails"); }),
            "broken_fini_fails: fini returned -1");
  EXPECT_TRUE(loader_.Bundles().empty());
}

TEST_F(LoaderTest, TheArgumentsOfAFailedInitAreNotThoseOfAReload) {
  loader_.Load(Fixture("broken_talks"), {"good"});
  EXPECT_THAT(ProblemOf([&] { loader_.Init("broken_talks", {"fail"}); }),
              StartsWith("broken_talks: init returned -1"));
  EXPECT_EQ(loader_.Reload("broken_talks").arguments, host::Words{"good"});
}

TEST_F(LoaderTest, AFailedLoadLeavesNoServiceObject) {
  EXPECT_THAT(ProblemOf([&] { loader_.Load(Fixture("broken_null_factory"), {}); }),
              EndsWith(": the factory returned null"));
  EXPECT_TRUE(host::ListServices().empty());
  EXPECT_NE(ProblemOf([&] { loader_.Load(Fixture("broken_lazy_exterminator"), {"fail"}); }), "");
  EXPECT_TRUE(host::ListServices().empty());
}

TEST_F(LoaderTest, OnlyInterfacesThatTheFailedInitLookedUpAreNamed) {
  NS_BUNDLEMGR1::CheckIFBuf("LookedUpEarlier");
  const std::string problem = ProblemOf([&] { loader_.Load(Fixture("broken_init_fails"), {}); });
  EXPECT_THAT(problem, HasSubstr("; looked up and not registered: WantedInterface"));
  EXPECT_THAT(problem, testing::Not(HasSubstr("LookedUpEarlier")));
}

TEST_F(LoaderTest, DoesNotHintAtAnInterfaceThatIsRegistered) {
  struct Interface : NS_BUNDLEMGR1::ServiceInterface {
    std::string GetSvcName() override { return ""; }
    std::int64_t IsValid() override { return 1; }
  } wanted;
  NS_BUNDLEMGR1::SetIFBuf("WantedInterface", &wanted);
  const std::string problem = ProblemOf([&] { loader_.Load(Fixture("broken_init_fails"), {}); });
  host::WithdrawInterface(&wanted);
  EXPECT_THAT(problem, HasSubstr("init returned -1"));
  EXPECT_THAT(problem, testing::Not(HasSubstr("WantedInterface")));
}

TEST_F(LoaderTest, ABundleWhoseInterfaceAnotherOnePassesCallsOnToIsNeitherUnloadedNorReloaded) {
  loader_.Load(Fixture("broken_talks"), {});
  loader_.Load(Fixture("broken_wraps"), {});
  const std::string inUse =
      "broken_talks is in use: broken_wraps passes calls on to its interface; unload first what uses it";
  EXPECT_EQ(ProblemOf([&] { loader_.Unload("broken_talks"); }), inUse);
  EXPECT_EQ(ProblemOf([&] { loader_.Reload("broken_talks"); }), inUse);
  loader_.Unload("broken_wraps");
  EXPECT_EQ(ProblemOf([&] { loader_.Unload("broken_talks"); }), "");
}

TEST_F(LoaderTest, ABundleThatOnlyRegistersTheSameInterfaceDoesNotUseTheOther) {
  loader_.Load(Fixture("broken_talks"), {});
  loader_.Load(Fixture("broken_talks_too"), {});
  EXPECT_EQ(ProblemOf([&] { loader_.Unload("broken_talks"); }), "");
}

TEST_F(LoaderTest, AnInactiveBundleIsSuspended) {
  const std::string directive =
      "dynamic NAME Service_Object * " + Fixture("broken_talks") + ":_make_broken_talks()";
  for (const auto& [name, state, expected] :
       {std::tuple{"plain", "", true}, std::tuple{"on", " active", true},
        std::tuple{"off", " inactive", false}}) {
    std::string text = directive + state;
    loader_.Process(text.replace(text.find("NAME"), 4, name));
    EXPECT_EQ(IsActive(name), expected) << state;
  }
}

TEST_F(LoaderTest, AReloadedBundleIsAsActiveAsBefore) {
  loader_.Process("dynamic talks Service_Object * " + Fixture("broken_talks") +
                  ":_make_broken_talks() inactive");
  loader_.Reload("talks");
  EXPECT_FALSE(IsActive("talks"));
  loader_.Process("resume talks");
  loader_.Reload("talks");
  EXPECT_TRUE(IsActive("talks"));
}

TEST_F(LoaderTest, ADirectiveWhoseServiceThrowsFails) {
  loader_.Load(Fixture("broken_suspend_throws"), {});
  EXPECT_EQ(ProblemOf([&] { loader_.Process("suspend broken_suspend_throws"); }),
            "the directive failed: the service threw: something that is not a std::exception");
}

TEST(FileIdentity, DiffersWhenAFileIsWrittenAgainWithTheSameSize) {
  const TempDirectory dir;
  const std::string file = dir.Write("a", "text");
  const host::FileIdentity before = host::IdentityOf(file);
  EXPECT_EQ(host::IdentityOf(file), before);
  std::filesystem::last_write_time(file,
                                   std::filesystem::last_write_time(file) + std::chrono::nanoseconds(1000));
  EXPECT_NE(host::IdentityOf(file), before);
}

TEST(MappedLibrary, NeedsALibraryByItsNamePathOrFileName) {
  host::MappedLibrary other;
  other.path = "/a/libb.so.1";
  other.soname = "libb.so";
  for (const auto& [needed, expected] : {std::pair{"libb.so", true}, std::pair{"/a/libb.so.1", true},
                                         std::pair{"libb.so.1", true}, std::pair{"libb", false}}) {
    host::MappedLibrary user;
    user.needed = {needed};
    EXPECT_EQ(user.Needs(other), expected) << needed;
  }
}

TEST_F(LoaderTest, AStaticDirectiveMayHaveArguments) {
  EXPECT_THAT(ProblemOf([&] { loader_.Process("static absent \"a\""); }), StartsWith("the directive failed"));
}

TEST_F(LoaderTest, AConstructorThatDoesNotReturnIsStoppedInTheChild) {
  EXPECT_EQ(ProblemOf([] {
              host::TryLibrary(Fixture("broken_constructor_hangs"), std::chrono::milliseconds(1000));
            }),
            "cannot be loaded: a constructor was still running after 1 s");
}

TEST_F(LoaderTest, ASignalDoesNotEndATrialEarly) {
  struct sigaction before {};
  struct sigaction action {};
  action.sa_handler = [](int) {};
  sigaction(SIGALRM, &action, &before);
  const itimerval soon{{0, 0}, {0, 100'000}};
  setitimer(ITIMER_REAL, &soon, nullptr);
  EXPECT_EQ(ProblemOf([] {
              host::TryLibrary(Fixture("broken_constructor_hangs"), std::chrono::milliseconds(1000));
            }),
            "cannot be loaded: a constructor was still running after 1 s");
  sigaction(SIGALRM, &before, nullptr);
}

TEST_F(LoaderTest, ATrialMapsNothingHere) {
  EXPECT_EQ(host::TryLibrary(Fixture("broken_talks")), Fixture("broken_talks"));
  EXPECT_EQ(host::FindMapped(host::MappedLibraries(), Fixture("broken_talks")), nullptr);
  EXPECT_EQ(host::TryLibrary("libnowhere.so"), "");
}

}  // namespace
