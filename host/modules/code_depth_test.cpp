#include "host/modules/code_depth.h"

#include <gtest/gtest.h>

#include <string>

#include "sfg/host/errors.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

std::string repeat(std::size_t count, const std::string& text) {
  std::string all;
  for (std::size_t i = 0; i < count; ++i) all += text;
  return all;
}

/// "LINE:COLUMN: what is told", or nothing.
std::string refusal(const std::string& shader) {
  try {
    refuseTooDeep(shader);
  } catch (const CompileError& error) {
    const CompilerMessage& message = error.messages().at(0);
    return std::to_string(message.line) + ":" + std::to_string(message.column) + ": " + message.text;
  }
  return "";
}

std::string function(const std::string& name, const std::string& body) {
  return "void " + name + "()\n{\n" + body + "\n}\n";
}

const std::string kBlocks =
    "statements are nested too deeply, those of called functions included (at most 100)";

TEST(CodeDepthTest, RefusesBracketsBehindTheLimit) {
  const auto brackets = [](std::size_t count) {
    return function("f", "r = " + repeat(count / 2, "(a[") + "0" + repeat(count / 2, "])") + ";");
  };
  EXPECT_EQ(refusal(brackets(kDeepestBrackets)), "");
  EXPECT_EQ(refusal(brackets(kDeepestBrackets + 2)), "3:7505: brackets are nested too deeply (at most 5000)");
}

TEST(CodeDepthTest, RefusesStatementsBehindTheLimit) {
  EXPECT_EQ(refusal(function("f", repeat(100, "if (a) ") + "b;")), "");
  EXPECT_EQ(refusal(function("f", repeat(101, "if (a) ") + "b;")), "3:701: " + kBlocks);
  EXPECT_EQ(refusal(function("f", repeat(101, "if (a) {\n") + repeat(101, "}"))), "103:1: " + kBlocks);
  EXPECT_EQ(refusal(function("f", repeat(101, "for (;;) {\n") + repeat(101, "}"))), "103:1: " + kBlocks);
  EXPECT_EQ(refusal(function("f", repeat(101, "if (a) { b; } else\n") + "c;")), "103:1: " + kBlocks);
  EXPECT_EQ(refusal(function("f", repeat(101, "if (a) b; else\n") + "c;")), "103:1: " + kBlocks);
}

TEST(CodeDepthTest, CountsStatementsBehindEachOtherOnce) {
  EXPECT_EQ(refusal(function("f", repeat(500, "if (a) { b; }\nfor (;;) c;\nif (a) b; else { c; }\n"))), "");
  EXPECT_EQ(refusal(repeat(500, function("f", "if (a) { if (b) c; }"))), "");
}

TEST(CodeDepthTest, AddsWhatIsCalled) {
  const std::string deep = function("deep", repeat(60, "if (a) ") + "b;");
  EXPECT_EQ(refusal(deep + function("f", repeat(40, "if (a) ") + "deep();")), "");
  EXPECT_EQ(refusal(deep + function("f", repeat(41, "if (a) ") + "deep();")), "7:288: " + kBlocks);
  // Declared in front of what calls it, defined behind.
  EXPECT_EQ(refusal("void deep();\n" + function("f", repeat(41, "if (a) ") + "deep();") + deep),
            "4:288: " + kBlocks);
  EXPECT_EQ(refusal(deep + function("f", "deep(); deep(); deep();")), "");
}

TEST(CodeDepthTest, RefusesCallsThatDouble) {
  std::string shader = function("f0", "a = b + c;");
  for (int i = 1; i < 30; ++i) {
    const std::string before = "f" + std::to_string(i - 1) + "(); ";
    shader += function("f" + std::to_string(i), before + before);
  }
  EXPECT_EQ(refusal(shader),
            "67:8: the calls of functions make too much code: so many words (at most 1000000)");
}

TEST(CodeDepthTest, RefusesAnExpressionOfTooManyOperators) {
  EXPECT_EQ(refusal(function("f", "r = " + repeat(60'000, "- ") + "a;")),
            "3:100003: an expression is too long (at most 50000)");
  EXPECT_EQ(refusal(function("f", repeat(60'000, "r += a;\n"))), "");
  EXPECT_EQ(refusal("static const float a[] = {" + repeat(60'000, "-1.0, ") + "1.0};"), "");
}

TEST(CodeDepthTest, BearsWhatNoCompilerTakes) {
  EXPECT_EQ(refusal(""), "");
  EXPECT_EQ(refusal("}}}))]];;else else {(["), "");
  EXPECT_EQ(refusal(function("f", "f();") + function("g", "h();") + function("h", "g();")), "");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
