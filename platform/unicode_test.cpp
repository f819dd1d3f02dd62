#include "tolmsdk/unicode.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace TolmSDK {
namespace {

struct Case {
  std::string_view bytes;
  std::wstring_view text;
};

using namespace std::literals;

TEST(Utf8, ConvertsBothWays) {
  for (const Case& c : {Case{"", L""}, Case{"float3 a;\r\n", L"float3 a;\r\n"}, Case{"\xC3\xA4", L"\u00e4"},
                        Case{"\xE2\x82\xAC", L"\u20ac"}, Case{"\xF0\x9F\x98\x80", L"\U0001F600"},
                        Case{"\xF4\x8F\xBF\xBF", L"\U0010FFFF"}, Case{"a\0b"sv, L"a\0b"sv},
                        Case{"0123456789abcdef\xC3\xA4"
                             "0123456789",
                             L"0123456789abcdef\u00e4"
                             L"0123456789"}}) {
    EXPECT_EQ(fromUtf8(c.bytes), c.text) << c.bytes;
    EXPECT_EQ(toUtf8(c.text), c.bytes);
  }
}

TEST(Utf8, KeepsAByteOrderMark) {
  EXPECT_EQ(fromUtf8("\xEF\xBB\xBF"
                     "a"),
            L"\uFEFFa");
}

// The buffer ends where the text ends, so that a sanitizer sees a read beyond it.
TEST(FromUtf8, EachMaximalIllFormedPartBecomesOneReplacement) {
  const Case cases[] = {
      {"a\x80z", L"a\uFFFDz"},                                  // lone continuation
      {"\x80\xBF", L"\uFFFD\uFFFD"},                            // two of them
      {"a\xC3", L"a\uFFFD"},                                    // cut off after one byte of two
      {"\xE2\x82", L"\uFFFD"},                                  // two of three
      {"\xF0\x9F\x98", L"\uFFFD"},                              // three of four
      {"\xE2\x82z", L"\uFFFDz"},                                // cut off by ASCII
      {"\xE2\x82\xC3\xA4", L"\uFFFD\u00e4"},                    // cut off by another character
      {"\xC0\xAF", L"\uFFFD\uFFFD"},                            // overlong
      {"\xE0\x80\xAF", L"\uFFFD\uFFFD\uFFFD"},                  // overlong
      {"\xED\xA0\x80", L"\uFFFD\uFFFD\uFFFD"},                  // surrogate
      {"\xF4\x90\x80\x80", L"\uFFFD\uFFFD\uFFFD\uFFFD"},        // beyond the last code point
      {"\xFE\xFF", L"\uFFFD\uFFFD"},                            // bytes that never occur
      {"\x61\xF1\x80\x80\xE1\x80\xC2\x62\x80\x63\x80\xBF\x64",  // the Unicode standard's example
       L"\u0061\uFFFD\uFFFD\uFFFD\u0062\uFFFD\u0063\uFFFD\uFFFD\u0064"},
  };
  for (const Case& c : cases) {
    const std::vector<char> exact(c.bytes.begin(), c.bytes.end());
    EXPECT_EQ(fromUtf8(std::string_view(exact.data(), exact.size())), c.text)
        << testing::PrintToString(c.bytes);
  }
}

TEST(ToUtf8, ReplacesLoneSurrogates) {
  const std::wstring lead(1, static_cast<wchar_t>(0xD83D));
  const std::wstring trail(1, static_cast<wchar_t>(0xDE00));
  EXPECT_EQ(toUtf8(lead), "\xEF\xBF\xBD");
  EXPECT_EQ(toUtf8(trail), "\xEF\xBF\xBD");
  EXPECT_EQ(toUtf8(lead + L"a"), "\xEF\xBF\xBD"
                                 "a");
  EXPECT_EQ(toUtf8(trail + lead), "\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(toUtf8(lead + lead + trail), "\xEF\xBF\xBD\xF0\x9F\x98\x80");
}

TEST(ToUtf8, ReadsASurrogatePairInEitherWidth) {
  const wchar_t pair[] = {static_cast<wchar_t>(0xD83D), static_cast<wchar_t>(0xDE00)};
  EXPECT_EQ(toUtf8(std::wstring_view(pair, 2)), "\xF0\x9F\x98\x80");
}

TEST(ToUtf8, ReplacesWhatIsNoCodePoint) {
  if (sizeof(wchar_t) == 2) GTEST_SKIP() << "16-bit wide characters hold none";
  const std::wstring beyond{static_cast<wchar_t>(0x110000), static_cast<wchar_t>(-1)};
  EXPECT_EQ(toUtf8(beyond), "\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(ToUtf8, ReadsNoFurtherThanItsView) {
  const std::vector<wchar_t> exact{L'a', static_cast<wchar_t>(0xD83D)};
  EXPECT_EQ(toUtf8(std::wstring_view(exact.data(), exact.size())), "a\xEF\xBF\xBD");
}

}  // namespace
}  // namespace TolmSDK
