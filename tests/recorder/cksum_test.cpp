// The checksum of a file is the one that the POSIX utility prints.

#include <gtest/gtest.h>

#include <string>

#include "tests/temp_directory.h"
#include "tools/recorder/format/cksum.h"

namespace {

TEST(Cksum, IsThatOfTheUtilityOfTheSameName) {
  const TempDirectory dir;
  EXPECT_EQ(recording_format::Cksum(dir.Write("empty", "")), "4294967295 0");
  EXPECT_EQ(recording_format::Cksum(dir.Write("digits", "123456789")), "930766865 9");
  EXPECT_EQ(recording_format::Cksum(dir.Write("long", std::string(100000, '\xff'))), "2554837191 100000");
}

TEST(Cksum, IsEmptyForWhatCannotBeRead) {
  const TempDirectory dir;
  EXPECT_EQ(recording_format::Cksum(dir.path() / "absent"), "");
  EXPECT_EQ(recording_format::Cksum(dir.path()), "");
}

}  // namespace
