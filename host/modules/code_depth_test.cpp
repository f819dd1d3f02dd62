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

const std::string kMacros = "the uses of macros make too much code: so many words (at most 1000000)";

std::string doublingMacros(std::size_t count, const std::string& parameters, const std::string& between) {
  std::string macros = "#define A0" + parameters + " a\n";
  for (std::size_t i = 1; i < count; ++i) {
    const std::string before = "A" + std::to_string(i - 1) + parameters;
    macros += "#define A" + std::to_string(i) + parameters + " (" + before + between + "+ " + before + ")\n";
  }
  return macros;
}

TEST(CodeDepthTest, RefusesMacrosThatDouble) {
  EXPECT_EQ(refusal(doublingMacros(18, "", " ") + function("f", "r = A17;")), "");
  EXPECT_EQ(refusal(doublingMacros(40, "", " ")), "19:1: " + kMacros);
  EXPECT_EQ(refusal(doublingMacros(40, "()", " ")), "18:1: " + kMacros);
  EXPECT_EQ(refusal(doublingMacros(40, "", " \\\n")), "36:1: " + kMacros);
}

TEST(CodeDepthTest, CountsMacrosWhereTheyAreUsed) {
  const std::string macros = doublingMacros(16, "", " ");  // A15 is of 196,603 words
  EXPECT_EQ(refusal(macros + function("f", repeat(5, "r = A15;\n"))), "");
  EXPECT_EQ(refusal(macros + function("f", repeat(6, "r = A15;\n"))), "24:5: " + kMacros);
  EXPECT_EQ(refusal(macros + "static const float r[] = {" + repeat(6, "A15,\n") + "};"), "22:1: " + kMacros);
  EXPECT_EQ(refusal(macros + "#if " + repeat(6, "A15 + ") + "0\n#endif\n"), "17:1: " + kMacros);
  EXPECT_EQ(refusal(macros + function("f", repeat(5, "r = A15;\n")) + function("g", "f(); A15;")),
            "28:6: " + kMacros);
}

TEST(CodeDepthTest, RefusesArgumentsThatMacrosRepeat) {
  const std::string twice = "#define D(x) ((x) + (x))\n#define E(x) (x)\n";
  const auto nested = [&](const std::string& name, std::size_t count) {
    return twice + function("f", "r = " + repeat(count, name + "(") + "a" + repeat(count, ")") + ";");
  };
  EXPECT_EQ(refusal(nested("D", 15)), "");
  EXPECT_EQ(refusal(nested("E", 2000)), "");
  EXPECT_EQ(refusal(nested("D", 40)), "5:41: " + kMacros);
  EXPECT_EQ(refusal(twice + "#define F(x) " + repeat(40, "D(") + "x" + repeat(40, ")") + "\n" +
                    function("f", "r = F(a);")),
            "3:1: " + kMacros);
  // One behind the other, they repeat nothing of each other.
  EXPECT_EQ(refusal(twice + function("f", repeat(1000, "r = D(a) + E(b);\n"))), "");
}

TEST(CodeDepthTest, BearsMacrosThatUseThemselves) {
  EXPECT_EQ(refusal("#define A(x) A(x) A(x)\n#define B C C\n#define C B B\n" + function("f", "A(B) C;")), "");
  EXPECT_EQ(refusal("#define\n#define 1 2\n#\n#define A(\n#define A(x\n#if\n#define B \\"), "");
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
