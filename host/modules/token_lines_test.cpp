#include "host/modules/token_lines.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

/// The lines between bars.
std::string split(std::string_view shader) {
  std::string text = onTokenLines(shader).text;
  for (char& c : text)
    if (c == '\n') c = '|';
  return text;
}

/// "LINE:COLUMN " of each line.
std::string placed(std::string_view shader) {
  std::string text;
  for (const TokenLines::Place& place : onTokenLines(shader).places)
    text += std::to_string(place.line) + ":" + std::to_string(place.column) + " ";
  return text;
}

TEST(TokenLinesTest, GivesEachTokenALine) {
  EXPECT_EQ(split("float4 a_1=b.xy;"), "float4|a_1|=|b|.|xy|;|");
  EXPECT_EQ(split("a<<=b>>c&&d==e++ + +f::g"), "a|<<=|b|>>|c|&&|d|==|e|++|+|+|f|::|g|");
  EXPECT_EQ(split("1.5e-3f+.25-0x1e+2 1u.x"), "1.5e-3f|+|.25|-|0x1e|+|2|1u.x|");
  EXPECT_EQ(split("\"a b\" \"open\nc"), "\"a b\"|\"open||c|");
  EXPECT_EQ(split("\"open"), "\"open|");
  EXPECT_EQ(split(""), "");
}

TEST(TokenLinesTest, LeavesCommentsOut) {
  EXPECT_EQ(split("a // b\nc /* d\n*/ e / f"), "a|c|e|/|f|");
  EXPECT_EQ(split("a /* open"), "a|");
  EXPECT_EQ(split("a // open"), "a|");
}

TEST(TokenLinesTest, KeepsPreprocessorLinesWhole) {
  EXPECT_EQ(split("  #define A(x) x + 1\nb"), "#define A(x) x + 1|b|");
  EXPECT_EQ(split("#define A \\\n  1\nb"), "#define A \\|  1|b|");
  EXPECT_EQ(split("#if A /* b\n c */ d\ne"), "#if A /* b| c */ d|e|");
  EXPECT_EQ(split("a # b"), "a|#|b|");
}

TEST(TokenLinesTest, TellsWhereEachLineStood) {
  EXPECT_EQ(placed("a  b\n\n c"), "1:1 1:4 3:2 ");
  EXPECT_EQ(placed("/* \xC3\xA4\xC3\xB6 */ a\xE2\x82\xAC"
                   "b"),
            "1:10 1:11 1:12 ");
  EXPECT_EQ(placed("a\n #define A \\\n  1\nb"), "1:1 2:2 3:1 4:1 ");
  EXPECT_EQ(placed("a /*\n*/ b"), "1:1 2:4 ");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
