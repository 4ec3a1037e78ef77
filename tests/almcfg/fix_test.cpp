// almcfg fix as users run it: what is written where, and what is refused.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <vector>

#include "tests/almcfg/run_program.h"

namespace {

using almcfg_test::Outcome;
using almcfg_test::ReadFile;
using almcfg_test::RunAlmcfg;
using almcfg_test::TempFile;
using testing::HasSubstr;

const std::string kExport =
    "\xEF\xBB\xBFNode,Port,Alarm,Number,Value\r\n\"A/B\",\"P\",\"Link, "
    "down\",7,5\r\n\"C\",\"P\",\"L\",7,\"6\"\r\n";
const std::string kClean = "#Node,Port,Alarm,Number,Value\nA/B\tP\tLink, down\t7\t5\nC\tP\tL\t7\t6\n";
const std::string kGood = "A\tB\tC\t7\t1\n";
const std::string kSlash = "A/\tB\tC\t7\t1\n";

TEST(Fix, MakesACleanFileOfASpreadsheetsExport) {
  const Outcome outcome = RunAlmcfg({"fix", "-"}, kExport);
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.out, kClean);
  EXPECT_EQ(outcome.err,
            "<stdin>:1:1: repaired: removed the byte order mark [byte-order-mark]\n"
            "<stdin>:1:32: repaired: removed the CR at the end of 3 lines [cr-line-ends]\n"
            "<stdin>:1:4: repaired: made the heading a comment [header-line]\n"
            "<stdin>:2:1: repaired: separated the columns by TABs [wrong-separator]\n"
            "<stdin>:3:1: repaired: separated the columns by TABs [wrong-separator]\n"
            "almcfg: <stdin>: 5 repairs; no findings\n");
  EXPECT_EQ(RunAlmcfg({"check", "--strict", "-"}, outcome.out).exitCode, 0);
}

TEST(Fix, SaysWhatIsLeftAndExitsWith1ForErrors) {
  const Outcome errors = RunAlmcfg({"fix", "--stdin-name", "x.csv", "-"}, "lost\n");
  EXPECT_EQ(errors.exitCode, 1);
  EXPECT_EQ(errors.err, "almcfg: x.csv: 0 repairs; 1 error left, see almcfg check\n");
  const Outcome warnings = RunAlmcfg({"fix", "-"}, "A\tB\tC\tseven\t1\n");
  EXPECT_EQ(warnings.exitCode, 0);
  EXPECT_EQ(warnings.err, "almcfg: <stdin>: 0 repairs; 1 warning left, see almcfg check\n");
  EXPECT_EQ(RunAlmcfg({"fix", "--quiet", "-"}, kSlash).err, "");
}

TEST(Fix, ShowsADiffOfSeveralFilesAndExitsWith1) {
  const TempFile bad(kSlash);
  const TempFile good(kGood);
  const Outcome outcome = RunAlmcfg({"fix", "--diff", "--quiet", bad.path(), good.path()});
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.out,
            "--- " + bad.path() + "\n+++ " + bad.path() + "\n@@ -1,1 +1,1 @@\n-" + kSlash + "+" + kGood);
  EXPECT_EQ(RunAlmcfg({"fix", "--diff", good.path()}).exitCode, 0);
  EXPECT_EQ(ReadFile(bad.path()), kSlash);
}

TEST(Fix, ReplacesFilesInPlaceWithTheirPermissions) {
  const TempFile first(kSlash);
  const TempFile second(kExport);
  ASSERT_EQ(chmod(first.path().c_str(), 0640), 0);
  const Outcome outcome = RunAlmcfg({"fix", "--in-place", "--quiet", first.path(), second.path()});
  EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(ReadFile(first.path()), kGood);
  EXPECT_EQ(ReadFile(second.path()), kClean);
  struct stat status;
  ASSERT_EQ(stat(first.path().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0640U);
}

TEST(Fix, KeepsABackupButNeverReplacesOne) {
  const TempFile file(kSlash);
  const std::string backup = file.path() + ".bak";
  EXPECT_EQ(RunAlmcfg({"fix", "--in-place", "--backup", file.path()}).exitCode, 0);
  EXPECT_EQ(ReadFile(file.path()), kGood);
  EXPECT_EQ(ReadFile(backup), kSlash);
  const TempFile again(kSlash);
  ASSERT_EQ(rename(again.path().c_str(), file.path().c_str()), 0);
  const Outcome outcome = RunAlmcfg({"fix", "--in-place", "--backup", file.path()});
  EXPECT_EQ(outcome.exitCode, 2);
  EXPECT_EQ(outcome.err,
            "almcfg: " + file.path() + ": its backup " + backup + " cannot be made: File exists\n");
  EXPECT_EQ(ReadFile(file.path()), kSlash);
  unlink(backup.c_str());
}

TEST(Fix, RefusesToReplaceThroughLinks) {
  const TempFile file(kSlash);
  const std::string other = file.path() + ".link";
  ASSERT_EQ(symlink(file.path().c_str(), other.c_str()), 0);
  const Outcome symbolic = RunAlmcfg({"fix", "--in-place", other});
  EXPECT_EQ(symbolic.exitCode, 2);
  EXPECT_THAT(symbolic.err, HasSubstr("it is a symbolic link; name the file that it leads to\n"));
  unlink(other.c_str());
  ASSERT_EQ(link(file.path().c_str(), other.c_str()), 0);
  const Outcome hard = RunAlmcfg({"fix", "--in-place", file.path()});
  EXPECT_EQ(hard.exitCode, 2);
  EXPECT_THAT(hard.err, HasSubstr("it has another hard link"));
  EXPECT_EQ(ReadFile(file.path()), kSlash);
  unlink(other.c_str());
}

TEST(Fix, RefusesToReplaceAFileWithAnAccessControlList) {
  const TempFile file(kSlash);
  // Version 2, then user::rw-, user:1:rw-, group::---, mask::rw- and other::---: the group has no rights.
  const std::string acl(
      "\2\0\0\0"
      "\1\0\6\0\xFF\xFF\xFF\xFF"
      "\2\0\6\0\1\0\0\0"
      "\4\0\0\0\xFF\xFF\xFF\xFF"
      "\x10\0\6\0\xFF\xFF\xFF\xFF"
      "\x20\0\0\0\xFF\xFF\xFF\xFF",
      44);
  if (setxattr(file.path().c_str(), "system.posix_acl_access", acl.data(), acl.size(), 0) != 0) {
    ASSERT_EQ(errno, ENOTSUP) << "setting the list failed";
    return;  // A file system without such lists has none to lose.
  }
  const Outcome outcome = RunAlmcfg({"fix", "--in-place", file.path()});
  EXPECT_EQ(outcome.exitCode, 2);
  EXPECT_THAT(outcome.err, HasSubstr("it has an access control list, which would be lost"));
  EXPECT_EQ(ReadFile(file.path()), kSlash);
}

TEST(Fix, DoesNotTouchAFileWithoutRepairs) {
  const TempFile file(kGood);
  struct stat before;
  ASSERT_EQ(stat(file.path().c_str(), &before), 0);
  EXPECT_EQ(RunAlmcfg({"fix", "--in-place", "--backup", file.path()}).exitCode, 0);
  struct stat after;
  ASSERT_EQ(stat(file.path().c_str(), &after), 0);
  EXPECT_EQ(before.st_ino, after.st_ino);
  EXPECT_NE(access((file.path() + ".bak").c_str(), F_OK), 0);
}

TEST(Fix, RefusesWhatItCannotDo) {
  const auto mistake = [](const std::vector<std::string>& arguments) {
    const Outcome outcome = RunAlmcfg(arguments);
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_EQ(outcome.out, "");
    return outcome.err.substr(0, outcome.err.find('\n'));
  };
  EXPECT_EQ(mistake({"fix", "x", "y"}), "almcfg: fix: several files need --in-place or --diff");
  EXPECT_EQ(mistake({"fix", "--in-place", "-"}),
            "almcfg: fix: standard input (-) cannot be replaced; leave --in-place out");
  EXPECT_EQ(mistake({"fix", "--backup", "x"}), "almcfg: fix: --backup needs --in-place");
  EXPECT_EQ(mistake({"fix", "--in-place", "--diff", "x"}),
            "almcfg: fix: --in-place and --diff exclude each other");
  EXPECT_EQ(mistake({"fix", "/no/such/file"}), "almcfg: /no/such/file: No such file or directory");
}

}  // namespace
