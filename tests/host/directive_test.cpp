// The parts of an ACE directive. Only what the loader takes out of it is tested; ACE parses the rest.

#include "host/loader/directive.h"

#include <gtest/gtest.h>

namespace {

using host::ParseDirective;

TEST(Directive, ADynamicOneNamesServiceLibraryAndFactory) {
  const auto parts = ParseDirective(" dynamic\tName Service_Object  * /a/b.so:_make_b() \"-x y\"");
  EXPECT_EQ(parts.verb, "dynamic");
  EXPECT_EQ(parts.name, "Name");
  EXPECT_EQ(parts.library, "/a/b.so");
  EXPECT_EQ(parts.factory, "_make_b");
}

TEST(Directive, BlanksAroundTheStarAndTheColonAreAllowed) {
  const auto parts = ParseDirective("dynamic N Service_Object*lib : _make_b ()");
  EXPECT_EQ(parts.library, "lib");
  EXPECT_EQ(parts.factory, "_make_b");
}

TEST(Directive, AfterTheFactoryOnlyTheStateAndTheArgumentsAreAllowed) {
  const std::string start = "dynamic N Service_Object * lib:_make_b()";
  for (const char* end : {"", " ", " active", " inactive 'a b'", "\"a 'b' c\" \r", "''"}) {
    EXPECT_EQ(ParseDirective(start + end).library, "lib") << end;
  }
  for (const char* end : {" passive", " active x", " \"a\" b", " \"a", " x \"a\"", "}", " \"a\" \"b\""}) {
    EXPECT_EQ(ParseDirective(start + end).library, "") << end;
  }
}

TEST(Directive, IsActiveUnlessItSaysInactive) {
  const std::string start = "dynamic N Service_Object * lib:_make_b()";
  EXPECT_TRUE(ParseDirective(start).active);
  EXPECT_TRUE(ParseDirective(start + " active \"a\"").active);
  EXPECT_FALSE(ParseDirective(start + " inactive \"a\"").active);
  EXPECT_EQ(ParseDirective(start + " inactive \"a b\"").parameters, "a b");
}

TEST(Directive, AnotherVerbHasOnlyAName) {
  const auto parts = ParseDirective("remove Name");
  EXPECT_EQ(parts.verb, "remove");
  EXPECT_EQ(parts.name, "Name");
  EXPECT_EQ(parts.library, "");
}

TEST(Directive, ADynamicOneOfAnotherKindNamesNoLibrary) {
  EXPECT_EQ(ParseDirective("dynamic N Module * lib:_make_b()").library, "");
  EXPECT_EQ(ParseDirective("dynamic N Service_Object lib:_make_b()").library, "");
  EXPECT_EQ(ParseDirective("dynamic N Service_Object * lib").library, "");
  EXPECT_EQ(ParseDirective("dynamic N Service_Object * lib:_make_b \"\"").factory, "");
  EXPECT_EQ(ParseDirective("").verb, "");
}

}  // namespace
