#include "tools/lsp/framing.h"

#include <gtest/gtest.h>

#include <sstream>
#include <vector>

namespace TolmSDK::Graphics::sfg::tools::lsp {
namespace {

/// What a reader makes of the bytes: messages as they are, the others in brackets.
std::vector<std::string> read(const std::string& bytes, std::size_t longest = FrameReader::kLongestMessage) {
  std::istringstream in(bytes);
  FrameReader reader(in, longest);
  std::vector<std::string> found;
  while (true) {
    switch (reader.read()) {
    case FrameReader::Outcome::message: found.push_back(reader.text()); break;
    case FrameReader::Outcome::malformed: found.push_back("[" + reader.text() + "]"); break;
    case FrameReader::Outcome::ended: return found;
    }
  }
}

using Texts = std::vector<std::string>;

TEST(FramingTest, ReadsMessagesBehindEachOther) {
  EXPECT_EQ(read("Content-Length: 2\r\n\r\n{}Content-Length: 4\r\n\r\n[\r\n]"), (Texts{"{}", "[\r\n]"}));
}

TEST(FramingTest, TakesHeadersInAnyOrderCaseAndLineEnd) {
  EXPECT_EQ(read("Content-Type: x\r\ncontent-LENGTH :  3 \r\n\r\nabcContent-Length: 1\n\nd"),
            (Texts{"abc", "d"}));
}

TEST(FramingTest, ReadsAnEmptyMessage) { EXPECT_EQ(read("Content-Length: 0\r\n\r\n"), Texts{""}); }

TEST(FramingTest, EndsInTheMidstOfAMessage) {
  EXPECT_EQ(read("Content-Length: 5\r\n\r\nabcd"), Texts());
  EXPECT_EQ(read("Content-Length: 5\r\n"), Texts());
  EXPECT_EQ(read(""), Texts());
}

TEST(FramingTest, GoesOnBehindMalformedHeaders) {
  const std::string good = "Content-Length: 2\r\n\r\n{}";
  EXPECT_EQ(read("hello\r\n\r\n" + good), (Texts{"[a message has no `Content-Length`]", "{}"}));
  EXPECT_EQ(read("Content-Length: -1\r\n" + good), (Texts{"[`Content-Length` is no number]", "{}"}));
  EXPECT_EQ(read("Content-Length: 99999999999999999999999\r\n" + good),
            (Texts{"[`Content-Length` is no number]", "{}"}));
  EXPECT_EQ(read("\r\n\r\n" + good), Texts{"{}"});
  EXPECT_EQ(read(std::string(100000, 'x') + "\r\n" + good), Texts{"{}"});
}

TEST(FramingTest, PassesOverAMessageThatIsTooLong) {
  EXPECT_EQ(read("Content-Length: 9\r\n\r\n123456789Content-Length: 8\r\n\r\n12345678", 8),
            (Texts{"[a message of 9 bytes; at most 8 are read]", "12345678"}));
  // Not even the end of the input is reached by counting.
  EXPECT_EQ(read("Content-Length: 18446744073709551615\r\n\r\n{}"),
            (Texts{"[a message of 18446744073709551615 bytes; at most 67108864 are read]"}));
}

TEST(FramingTest, WritesTheLengthInBytes) {
  std::ostringstream out;
  writeFrame(out, "\xC3\xA4");
  EXPECT_EQ(out.str(), "Content-Length: 2\r\n\r\n\xC3\xA4");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools::lsp
