#include "tools/lsp/text_buffer.h"

#include <gtest/gtest.h>

#include <random>

namespace TolmSDK::Graphics::sfg::tools::lsp {
namespace {

// "ä" is two bytes and one unit, "😀" four bytes and two units of UTF-16.
const std::string kText = "a\xC3\xA4\xF0\x9F\x98\x80z\r\nb\rc\n";

TEST(TextBufferTest, CountsInTheUnitsOfEachEncoding) {
  const TextBuffer buffer(kText);
  EXPECT_EQ(buffer.positionOf(7, Encoding::utf8), (Position{0, 7}));
  EXPECT_EQ(buffer.positionOf(7, Encoding::utf16), (Position{0, 4}));
  EXPECT_EQ(buffer.positionOf(7, Encoding::utf32), (Position{0, 3}));
  EXPECT_EQ(buffer.offsetOf({0, 7}, Encoding::utf8), 7u);
  EXPECT_EQ(buffer.offsetOf({0, 4}, Encoding::utf16), 7u);
  EXPECT_EQ(buffer.offsetOf({0, 3}, Encoding::utf32), 7u);
}

TEST(TextBufferTest, MeansTheBeginningOfACharacterInsideOfIt) {
  const TextBuffer buffer(kText);
  EXPECT_EQ(buffer.offsetOf({0, 3}, Encoding::utf16), 3u);
  EXPECT_EQ(buffer.offsetOf({0, 5}, Encoding::utf8), 3u);
  EXPECT_EQ(buffer.positionOf(5, Encoding::utf16), (Position{0, 2}));
  EXPECT_EQ(buffer.positionOf(5, Encoding::utf8), (Position{0, 3}));
}

TEST(TextBufferTest, KnowsThreeEndsOfLines) {
  const TextBuffer buffer(kText);
  EXPECT_EQ(buffer.offsetOf({1, 0}, Encoding::utf16), 10u);
  EXPECT_EQ(buffer.offsetOf({2, 0}, Encoding::utf16), 12u);
  EXPECT_EQ(buffer.offsetOf({3, 0}, Encoding::utf16), 14u);
  EXPECT_EQ(buffer.positionOf(10, Encoding::utf16), (Position{1, 0}));
}

TEST(TextBufferTest, EndsBeyondLinesAndText) {
  const TextBuffer buffer(kText);
  EXPECT_EQ(buffer.offsetOf({0, 99}, Encoding::utf16), 8u);
  EXPECT_EQ(buffer.offsetOf({99, 0}, Encoding::utf16), kText.size());
  EXPECT_EQ(buffer.positionOf(99, Encoding::utf16), (Position{3, 0}));
  EXPECT_EQ(TextBuffer().offsetOf({0, 5}, Encoding::utf16), 0u);
}

TEST(TextBufferTest, FindsPlacesOfDiagnosticsByLineFeeds) {
  const TextBuffer buffer(kText);
  EXPECT_EQ(buffer.offsetOfPlace(1, 4), 7u);
  EXPECT_EQ(buffer.offsetOfPlace(2, 3), 12u);
  EXPECT_EQ(buffer.offsetOfPlace(2, 99), 13u);
  EXPECT_EQ(buffer.offsetOfPlace(9, 1), kText.size());
  EXPECT_EQ(buffer.offsetOfPlace(0, 0), 0u);
}

TEST(TextBufferTest, IsAfterEditsWhatANewOneIs) {
  std::mt19937 random(7);
  const auto below = [&](std::size_t limit) { return static_cast<std::size_t>(random() % limit); };
  const std::vector<std::string> pieces = {"",    "\n", "\r", "\r\n", "ab", "\xC3\xA4", "\xF0\x9F\x98\x80",
                                           "x\ny"};
  TextBuffer buffer;
  std::string text;
  for (int edit = 0; edit < 3000; ++edit) {
    const std::size_t begin = below(text.size() + 1);
    const std::size_t end = std::min(text.size(), begin + below(text.size() > 40 ? 20 : 3));
    const std::string& piece = pieces[below(pieces.size())];
    buffer.offsetOfPlace(1, 1);
    buffer.replace({begin, end}, piece);
    text.replace(begin, end - begin, piece);
    const TextBuffer fresh(text);
    ASSERT_EQ(buffer.text(), text);
    for (std::size_t at = 0; at <= text.size(); ++at)
      ASSERT_EQ(buffer.positionOf(at, Encoding::utf16), fresh.positionOf(at, Encoding::utf16)) << edit;
    ASSERT_EQ(buffer.offsetOfPlace(2, 2), fresh.offsetOfPlace(2, 2));
  }
}

TEST(TextBufferTest, CountsInLongLinesAsInShortOnes) {
  std::string line;
  for (int i = 0; i < 5000; ++i) line += i % 3 == 0 ? "\xF0\x9F\x98\x80" : i % 3 == 1 ? "\xC3\xA4" : "a";
  TextBuffer buffer("head\n" + line);
  std::size_t units = 0;
  for (std::size_t at = 0; at < line.size();) {
    ASSERT_EQ(buffer.positionOf(5 + at, Encoding::utf16), (Position{1, units}));
    ASSERT_EQ(buffer.offsetOf({1, units}, Encoding::utf16), 5 + at);
    const auto lead = static_cast<unsigned char>(line[at]);
    units += lead >= 0xF0 ? 2 : 1;
    at += lead >= 0xF0 ? 4 : lead >= 0xC0 ? 2 : 1;
  }
  // What was counted behind an edit is counted again.
  buffer.replace({5, 6}, "aaa");
  const TextBuffer fresh(buffer.text());
  EXPECT_EQ(buffer.positionOf(9000, Encoding::utf16), fresh.positionOf(9000, Encoding::utf16));
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools::lsp
