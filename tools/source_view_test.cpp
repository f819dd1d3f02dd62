#include "tools/source_view.h"

#include <gtest/gtest.h>

#include "tools/command_test_support.h"

namespace TolmSDK::Graphics::sfg::tools {
namespace {

TEST(MarkedLineTest, PutsTheCaretUnderTheCharacter) {
  EXPECT_EQ(markedLine("{ \"valeu\": 1 }", 12, 3), "   12 | { \"valeu\": 1 }\n      |   ^\n");
  EXPECT_EQ(markedLine("x\r", 1, 1), "    1 | x\n      | ^\n");
  EXPECT_EQ(markedLine("ab", 1, 9), "    1 | ab\n      |   ^\n");
  EXPECT_EQ(markedLine("", 1234567, 1), "1234567 | \n        | ^\n");
}

TEST(MarkedLineTest, CountsCellsOfTabsWideCharactersAndAccents) {
  EXPECT_EQ(markedLine("\tx", 1, 2), "    1 |     x\n      |     ^\n");
  EXPECT_EQ(markedLine("ab\tx", 1, 4), "    1 | ab  x\n      |     ^\n");
  EXPECT_EQ(markedLine("\u6F22\u5B57x", 1, 3), "    1 | \u6F22\u5B57x\n      |     ^\n");
  EXPECT_EQ(markedLine("e\u0301x", 1, 3), "    1 | e\u0301x\n      |  ^\n");
  EXPECT_EQ(markedLine("\u00E9x", 1, 2), "    1 | \u00E9x\n      |  ^\n");
}

TEST(MarkedLineTest, ShowsNoControlCharacters) {
  EXPECT_EQ(markedLine("a\x1B[31mx", 1, 7), "    1 | a\uFFFD[31mx\n      |       ^\n");
  EXPECT_EQ(markedLine("a\xFF\xC3x", 1, 4), "    1 | a\uFFFD\uFFFDx\n      |    ^\n");
  EXPECT_EQ(markedLine("a\u202Ex", 1, 3), "    1 | a\uFFFDx\n      |   ^\n");
}

TEST(MarkedLineTest, CutsLongLinesAroundTheCaret) {
  const std::string longLine = std::string(500, 'a') + "X" + std::string(500, 'b');
  EXPECT_EQ(markedLine(longLine, 1, 501), "    1 | .." + std::string(60, 'a') + "X" + std::string(39, 'b') +
                                              "..\n      | " + std::string(62, ' ') + "^\n");
  EXPECT_EQ(markedLine(longLine, 1, 1), "    1 | " + std::string(40, 'a') + "..\n      | ^\n");
  const std::string huge = std::string(10000000, 'a') + "X";
  EXPECT_EQ(markedLine(huge, 1, 10000001),
            "    1 | .." + std::string(60, 'a') + "X\n      | " + std::string(62, ' ') + "^\n");
}

class SourceViewTest : public CommandTest {};

TEST_F(SourceViewTest, ReadsLinesOfFiles) {
  write("a.json", "\xEF\xBB\xBF{\n \"b\": 1\n}");
  SourceView view;
  EXPECT_EQ(view.show(path("a.json"), 1, 1), "    1 | {\n      | ^\n");
  EXPECT_EQ(view.show(path("a.json"), 2, 2), "    2 |  \"b\": 1\n      |  ^\n");
  EXPECT_EQ(view.show(path("a.json"), 4, 1), "");
  EXPECT_EQ(view.show(path("a.json"), 0, 0), "");
  EXPECT_EQ(view.show(path("gone.json"), 1, 1), "");
  EXPECT_EQ(view.show(path("."), 1, 1), "");
  EXPECT_EQ(view.show("", 1, 1), "");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools
