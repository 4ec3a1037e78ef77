// `call` for each operation: the arguments must reach the virtual function of that name unchanged, and its
// results come back in the order of the signature.

#include "host/commands/operations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "host/base/problem.h"

namespace {

using host::Answer;
using host::FindOperation;
using host::Target;
using host::TextList;
using host::Value;
using NS_ASCII::ListMap;
using testing::_;
using testing::DoAll;
using testing::Return;
using testing::SetArgReferee;

class MockInterface : public NS_ASCII::AsciiUtilInterface {
 public:
  MOCK_METHOD(std::string, GetSvcName, (), (override));
  MOCK_METHOD(std::int64_t, IsValid, (), (override));
  MOCK_METHOD(bool, Str2Num, (const std::string&, int&, int), (override));
  MOCK_METHOD(std::string, GetTimeStamp, (), (override));
  MOCK_METHOD(bool, IsTransQueltEnabled, (), (override));
  MOCK_METHOD(std::int64_t, GetAlmCfgValue,
              (std::int64_t&, const std::string&, const std::string&, const std::string&, const int&),
              (override));
  MOCK_METHOD(std::string, ToUpper, (const std::string&), (override));
  MOCK_METHOD(bool, IsContain, (const std::string&, const std::string&), (override));
  MOCK_METHOD(bool, IsKeyValueAboveOne, (const std::string&, const std::string&), (override));
  MOCK_METHOD(std::string, GetKeyValue, (const std::string&, const std::string&), (override));
  MOCK_METHOD(std::int64_t, ParseListMap, (ListMap&, const std::string&), (override));
  MOCK_METHOD(std::int64_t, GetMapList, (const ListMap&, const std::string&, TextList&), (override));
  MOCK_METHOD(std::int64_t, SplitStr, (const std::string&, const std::string&, TextList&), (override));
  MOCK_METHOD(std::int64_t, WriteDbgLog, (const std::string&), (override));
};

class Operations : public testing::Test {
 protected:
  Answer Call(const std::string& name, std::vector<std::string> words) {
    const host::Operation& operation = FindOperation(name);
    words.insert(words.begin(), name);
    return operation.invoke({&interface_, nullptr}, ParseArguments(operation, words, 1));
  }

  testing::StrictMock<MockInterface> interface_;
};

TEST_F(Operations, OutValuesComeBackInTheOrderOfTheSignature) {
  EXPECT_CALL(interface_, Str2Num("4x", _, 10)).WillOnce(DoAll(SetArgReferee<1>(4), Return(false)));
  const Answer answer = Call("Str2Num", {"4x", "10"});
  EXPECT_EQ(answer.result, Value(false));
  ASSERT_EQ(answer.outs.size(), 1U);
  EXPECT_EQ(answer.outs[0].first, "value");
  EXPECT_EQ(answer.outs[0].second, Value(std::int64_t{4}));
}

TEST_F(Operations, ALongOutValueIsNotCut) {
  EXPECT_CALL(interface_, GetAlmCfgValue(testing::Eq(0), "a", "b", "c", 7))
      .WillOnce(DoAll(SetArgReferee<0>(std::int64_t{1} << 40), Return(0)));
  EXPECT_EQ(Call("GetAlmCfgValue", {"a", "b", "c", "7"}).outs[0].second, Value(std::int64_t{1} << 40));
}

TEST_F(Operations, MapsAndListsGoBothWays) {
  const ListMap map{{"A", {"1", "2"}}};
  EXPECT_CALL(interface_, GetMapList(map, "A", testing::IsEmpty()))
      .WillOnce(DoAll(SetArgReferee<2>(TextList{"1"}), Return(0)));
  EXPECT_EQ(Call("GetMapList", {"A=1|2", "A"}).outs[0].second, Value(TextList{"1"}));
  EXPECT_CALL(interface_, ParseListMap(testing::IsEmpty(), "t"))
      .WillOnce(DoAll(SetArgReferee<0>(map), Return(0)));
  EXPECT_EQ(Call("ParseListMap", {"t"}).outs[0].second, Value(map));
}

TEST_F(Operations, TextsArriveByteForByte) {
  EXPECT_CALL(interface_, ToUpper(std::string("a\0\xff", 3))).WillOnce(Return("R"));
  EXPECT_EQ(Call("ToUpper", {"a\\x00\\xff"}).result, Value(std::string("R")));
}

TEST_F(Operations, EveryOperationOfTheInterfaceReachesItsNamesake) {
  EXPECT_CALL(interface_, GetSvcName()).WillOnce(Return("n"));
  EXPECT_CALL(interface_, IsValid()).WillOnce(Return(1));
  EXPECT_CALL(interface_, GetTimeStamp()).WillOnce(Return("t"));
  EXPECT_CALL(interface_, IsTransQueltEnabled()).WillOnce(Return(true));
  EXPECT_CALL(interface_, IsContain("s", "t")).WillOnce(Return(true));
  EXPECT_CALL(interface_, IsKeyValueAboveOne("k", "t")).WillOnce(Return(true));
  EXPECT_CALL(interface_, GetKeyValue("k", "t")).WillOnce(Return("v"));
  EXPECT_CALL(interface_, SplitStr("t", "s", testing::IsEmpty())).WillOnce(Return(3));
  EXPECT_CALL(interface_, WriteDbgLog("m")).WillOnce(Return(4));
  EXPECT_EQ(Call("GetSvcName", {}).result, Value(std::string("n")));
  EXPECT_EQ(Call("IsValid", {}).result, Value(std::int64_t{1}));
  EXPECT_EQ(Call("GetTimeStamp", {}).result, Value(std::string("t")));
  EXPECT_EQ(Call("IsTransQueltEnabled", {}).result, Value(true));
  EXPECT_EQ(Call("IsContain", {"s", "t"}).result, Value(true));
  EXPECT_EQ(Call("IsKeyValueAboveOne", {"k", "t"}).result, Value(true));
  EXPECT_EQ(Call("GetKeyValue", {"k", "t"}).result, Value(std::string("v")));
  EXPECT_EQ(Call("SplitStr", {"t", "s"}).result, Value(std::int64_t{3}));
  EXPECT_EQ(Call("WriteDbgLog", {"m"}).result, Value(std::int64_t{4}));
}

/// Returns "INDEX: message"; INDEX is that of the wrong word.
std::string Problem(const std::vector<std::string>& words) {
  try {
    ParseArguments(FindOperation(words[0]), words, 1);
  } catch (const host::UsageError& error) {
    return std::to_string(error.Word()) + ": " + error.what();
  }
  return "none";
}

TEST(OperationArguments, AProblemNamesTheArgumentAndWhatWasExpected) {
  EXPECT_EQ(Problem({"Str2Num", "42", "ten"}),
            "2: Str2Num: argument 2, base: 'ten' is not an integer from -2147483648 to 2147483647");
  EXPECT_EQ(Problem({"ToUpper"}), "0: ToUpper takes 1 argument, not 0: ToUpper text:text -> text");
  EXPECT_EQ(Problem({"SplitStr", "a", ""}),
            "2: SplitStr: argument 2, separator: '' is empty, and the operation would fill the memory");
  EXPECT_EQ(Problem({"touper"}), "0: no operation 'touper'; did you mean ToUpper?");
}

TEST(OperationTable, HoldsTheInterfaceAndTheEightTextFunctions) {
  const auto& table = host::Operations();
  EXPECT_EQ(table.size(), 22U);
  EXPECT_EQ(std::count_if(table.begin(), table.end(), [](const auto& row) { return !row.symbol.empty(); }),
            8);
}

TEST(OperationTable, SymbolsAreSpelledAsCompilersDo) {
  EXPECT_EQ(FindOperation("Trim").symbol,
            "_ZN8NS_ASCII4TrimERKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE");
  EXPECT_EQ(FindOperation("StrToUpper").symbol,
            "_ZN8NS_ASCII10StrToUpperENSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE");
  EXPECT_EQ(FindOperation("Num2Str").symbol, "_ZN8NS_ASCII7Num2StrB5cxx11Ei");
}

}  // namespace
