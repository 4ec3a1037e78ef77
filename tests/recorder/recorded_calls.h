#ifndef TESTS_RECORDER_RECORDED_CALLS_H_
#define TESTS_RECORDER_RECORDED_CALLS_H_

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "tools/recorder/format/reader.h"

namespace recorder_test {

/// The contents of a recording's file.
struct Recorded {
  std::vector<recording_format::Head> heads;
  std::vector<recording_format::Record> records;
  std::vector<recording_format::Tail> tails;
  std::size_t problems = 0;
};

inline Recorded ReadRecording(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file) << path;
  recording_format::Reader reader(file);
  Recorded recorded;
  while (const auto line = reader.Next()) {
    if (const auto* const head = std::get_if<recording_format::Head>(&*line)) {
      recorded.heads.push_back(*head);
    } else if (const auto* const record = std::get_if<recording_format::Record>(&*line)) {
      recorded.records.push_back(*record);
    } else if (const auto* const tail = std::get_if<recording_format::Tail>(&*line)) {
      recorded.tails.push_back(*tail);
    } else {
      ++recorded.problems;
    }
  }
  return recorded;
}

}  // namespace recorder_test

#endif  // TESTS_RECORDER_RECORDED_CALLS_H_
