// The exception types that cross library boundaries. Required: copying moves the texts out of the source.

#include "framework/process_exception.h"

#include <gtest/gtest.h>

#include <exception>
#include <string>
#include <type_traits>

namespace {

using NS_BUNDLEMGR1::InterfaceNotExistException;
using NS_BUNDLEMGR1::kInterfaceNotExist;
using NS_BUNDLEMGR1::ProcessException;

TEST(ProcessException, StartsWithZerosAndEmptyStreams) {
  ProcessException exception;
  EXPECT_EQ(exception.code, 0);
  EXPECT_EQ(exception.detail, 0);
  for (std::stringstream* stream :
       {&exception.stream1, &exception.stream2, &exception.stream3, &exception.stream4}) {
    EXPECT_EQ(stream->str(), "");
    EXPECT_TRUE(stream->good());
  }
}

TEST(ProcessException, GivesTheStandardLibrarysText) {
  EXPECT_STREQ(ProcessException().what(), std::exception().what());
  EXPECT_STREQ(InterfaceNotExistException().what(), "std::exception");
}

// Copying changes its source, so the source is not constant.
TEST(ProcessException, CopyMovesTheTextsOutOfItsSource) {
  ProcessException source;
  source.code = 5;
  source.detail = -6;
  source.stream1 << "one";
  source.stream2 << "two words";
  source.stream3 << "three";
  source.stream4 << "four";
  ProcessException copy(source);
  EXPECT_EQ(copy.code, 5);
  EXPECT_EQ(copy.detail, -6);
  EXPECT_EQ(copy.stream1.str(), "one");
  EXPECT_EQ(copy.stream2.str(), "two words");
  EXPECT_EQ(copy.stream3.str(), "three");
  EXPECT_EQ(copy.stream4.str(), "four");
  EXPECT_EQ(source.code, 5);
  EXPECT_EQ(source.detail, -6);
  for (std::stringstream* stream : {&source.stream1, &source.stream2, &source.stream3, &source.stream4}) {
    EXPECT_EQ(stream->peek(), std::stringstream::traits_type::eof());
  }
}

TEST(ProcessException, CopyTakesOnlyWhatIsStillToBeRead) {
  ProcessException source;
  source.stream1 << "read rest";
  std::string word;
  source.stream1 >> word;
  ProcessException copy(source);
  EXPECT_EQ(copy.stream1.str(), " rest");
}

TEST(ProcessException, CopyOfEmptyStreamsCanBeWrittenAndRead) {
  ProcessException source;
  ProcessException copy(source);
  for (std::stringstream* stream : {&copy.stream1, &copy.stream2, &copy.stream3, &copy.stream4}) {
    EXPECT_TRUE(stream->good());
    *stream << "text";
    std::string text;
    *stream >> text;
    EXPECT_EQ(text, "text");
  }
}

TEST(ProcessException, CopyOfACopyStillHasTheTexts) {
  ProcessException source;
  source.stream4 << "text";
  ProcessException copy(source);
  ProcessException copyOfCopy(copy);
  EXPECT_EQ(copyOfCopy.stream4.str(), "text");
  EXPECT_EQ(copy.stream4.peek(), std::stringstream::traits_type::eof());
}

TEST(ProcessException, CannotBeCopiedFromAConstant) {
  EXPECT_FALSE((std::is_constructible_v<ProcessException, const ProcessException&>));
  EXPECT_TRUE((std::is_constructible_v<ProcessException, ProcessException&>));
}

TEST(InterfaceNotExistException, IsAProcessExceptionAndAStandardOne) {
  EXPECT_EQ(kInterfaceNotExist, 0x41180004);
  EXPECT_EQ(kInterfaceNotExist, 1092091908);
  EXPECT_TRUE((std::is_base_of_v<ProcessException, InterfaceNotExistException>));
  EXPECT_THROW(throw InterfaceNotExistException(), ProcessException);
  EXPECT_THROW(throw InterfaceNotExistException(), std::exception);
  EXPECT_EQ(sizeof(InterfaceNotExistException), sizeof(ProcessException));
}

TEST(InterfaceNotExistException, KeepsItsNumbersWhenItIsThrownAsAnObject) {
  InterfaceNotExistException thrown;
  thrown.code = kInterfaceNotExist;
  thrown.stream2 << "why";
  try {
    throw thrown;
  } catch (ProcessException& caught) {
    EXPECT_EQ(caught.code, 0x41180004);
    EXPECT_EQ(caught.stream2.str(), "why");
  }
}

}  // namespace
