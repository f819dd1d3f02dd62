#include "host/diagnostics/compile_messages.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

/// "LINE:COLUMN TEXT", with a `+` behind the place for the end of a token.
std::string described(std::wstring_view text, const CompilerMessage& message) {
  const CompileMessages messages(text);
  const ToldMistake told = messages.describe({message, {1, "'declaration' : Expected"}});
  if (told.token >= messages.tokens().size()) return told.text;
  const auto [line, column] = messages.placeOf(messages.tokens()[told.token].begin);
  return std::to_string(line) + ":" + std::to_string(column) + (told.isBehind ? "+ " : " ") + told.text;
}

TEST(CompileMessagesTest, TellsAMissingSemicolonAtTheEndOfTheLineBefore) {
  EXPECT_EQ(described(L"{\n  a = b\n  c = d;\n}", {3, "';' : Expected", 3}), "2:7+ missing `;` behind `b`");
  EXPECT_EQ(described(L"{\n  float a = b\n  c = d;\n}", {3, "'c' : redefinition", 3}),
            "2:13+ missing `;` behind `b`");
  EXPECT_EQ(described(L"float a, a;", {1, "'a' : redefinition", 10}), "1:10 `a` is declared twice");
}

TEST(CompileMessagesTest, FindsTheNameWithoutAColumn) {
  EXPECT_EQ(described(L"a;\nb = colour * colour;", {2, "'colour' : unknown variable"}),
            "2:5 `colour` is not declared");
  EXPECT_EQ(described(L"m(colour), c;", {1, "'colour' : unknown variable", 9}),
            "1:3 `colour` is not declared");
}

TEST(CompileMessagesTest, KeepsWordsThatItDoesNotKnow) {
  EXPECT_EQ(described(L"a;", {0, "the disk is on fire"}), "the disk is on fire");
  EXPECT_EQ(described(L"a;", {1, "'a' : is odd", 1}), "1:1 `a`: is odd");
  EXPECT_EQ(described(L"a;", {9, "'a' : is odd"}), "`a`: is odd");
  EXPECT_EQ(described(L"", {1, "';' : Expected", 1}), "the code ends too early");
}

TEST(CompileMessagesTest, TellsTypesThatAreUsedAsNames) {
  EXPECT_EQ(described(L"void half(float x) {}", {1, "';' : Expected", 6}),
            "1:6 `half` is a reserved word; it cannot be a name");
  EXPECT_EQ(described(L"float f(float float2) {}", {1, "')' : Expected", 15}),
            "1:15 `float2` is a reserved word; it cannot be a name");
}

TEST(CompileMessagesTest, NamesTheNearestName) {
  EXPECT_EQ(meantName("colour", {"color", "count"}), "color");
  EXPECT_EQ(meantName("vec3", {"vec2"}), "float3");
  EXPECT_EQ(meantName("quite_other", {"color"}), "");
  EXPECT_EQ(meantName("x", {"y"}), "");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
