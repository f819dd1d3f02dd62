#include "tolmsdk/exception.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <string>
#include <vector>

namespace TolmSDK {
namespace {

TEST(Formatted, ReplacesEachConversion) {
  const WString text = L"wide";
  EXPECT_EQ(formatted(L"%s", text), L"wide");
  EXPECT_EQ(formatted(L"%s", L"literal"), L"literal");
  EXPECT_EQ(formatted(L"%s", UString(L"pooled")), L"pooled");
  EXPECT_EQ(formatted(L"%s", std::wstring_view(L"viewed").substr(0, 4)), L"view");
  EXPECT_EQ(formatted(L"%d", -12), L"-12");
  EXPECT_EQ(formatted(L"%i", std::numeric_limits<int>::min()), L"-2147483648");
  EXPECT_EQ(formatted(L"%Iu", std::size_t{0}), L"0");
  EXPECT_EQ(formatted(L"%Iu", std::numeric_limits<std::uint64_t>::max()), L"18446744073709551615");
  EXPECT_EQ(formatted(L"100%%"), L"100%");
  EXPECT_EQ(formatted(L"sfgError : %s(%d) of %Iu%%!", L"n0", 3, std::size_t{7}), L"sfgError : n0(3) of 7%!");
}

TEST(Formatted, LeavesConversionsWithoutArgument) {
  EXPECT_EQ(formatted(L"%s and %s", L"one"), L"one and %s");
  EXPECT_EQ(formatted(L"%d %i %Iu"), L"%d %i %Iu");
}

TEST(Formatted, IgnoresSurplusArguments) {
  EXPECT_EQ(formatted(L"%s", L"one", L"two", 3), L"one");
  EXPECT_EQ(formatted(L"none", 1), L"none");
}

TEST(Formatted, LeavesUnknownConversions) {
  EXPECT_EQ(formatted(L"%x %s", L"a"), L"%x a");
  EXPECT_EQ(formatted(L"%I %s", L"a"), L"%I a");
  EXPECT_EQ(formatted(L"%Id %s", L"a"), L"%Id a");
  EXPECT_EQ(formatted(L"%5d %d", 1), L"%5d 1");
  EXPECT_EQ(formatted(L"end %", 1), L"end %");
  EXPECT_EQ(formatted(L"%%s", L"a"), L"%s");
}

TEST(Formatted, NeverReadsANumberAsAText) {
  EXPECT_EQ(formatted(L"%s", 42), L"42");
  EXPECT_EQ(formatted(L"%d", L"text"), L"text");
}

TEST(Formatted, WritesANullTextAsEmpty) {
  EXPECT_EQ(formatted(L"[%s]", static_cast<const wchar_t*>(nullptr)), L"[]");
}

TEST(Formatted, HasNoLengthLimit) {
  const WString longText(100000, L'x');
  EXPECT_EQ(formatted(L"<%s%s>", longText, longText), L"<" + longText + longText + L">");
}

TEST(Formatted, DoesNotReadArgumentsAsFormats) { EXPECT_EQ(formatted(L"%s %s", L"%s", L"%d"), L"%s %d"); }

TEST(Formatted, ReadsNoFurtherThanTheFormat) {
  const std::vector<wchar_t> percent{L'a', L'%'};
  EXPECT_EQ(formatted(std::wstring_view(percent.data(), percent.size()), 1), L"a%");
  const std::vector<wchar_t> half{L'%', L'I'};
  EXPECT_EQ(formatted(std::wstring_view(half.data(), half.size()), 1), L"%I");
}

TEST(AppendFormatted, AppendsToWhatIsThere) {
  WString out = L"a";
  const FormatArgument arguments[] = {FormatArgument(1)};
  appendFormatted(out, L"b%d", arguments, 1);
  EXPECT_EQ(out, L"ab1");
}

TEST(Exception, CarriesItsMessageWideAndNarrow) {
  const Exception exception(L"sfgError : %s!", L"\u00e4\u20ac");
  EXPECT_EQ(exception.getMessage(), L"sfgError : \u00e4\u20ac!");
  EXPECT_STREQ(exception.what(), "sfgError : \xC3\xA4\xE2\x82\xAC!");
}

TEST(Exception, IsCopiedWithItsMessage) {
  Exception copy(L"first");
  {
    const Exception other(L"second %d", 2);
    copy = other;
  }
  EXPECT_EQ(copy.getMessage(), L"second 2");
  EXPECT_STREQ(copy.what(), "second 2");
}

TEST(Exception, IsCaughtAsAStandardException) {
  try {
    throw Exception(L"refused");
  } catch (const std::exception& exception) {
    EXPECT_STREQ(exception.what(), "refused");
  }
}

TEST(Decimal, WritesNumbers) {
  EXPECT_EQ(itos(0), L"0");
  EXPECT_EQ(itos(-7), L"-7");
  EXPECT_EQ(itos(std::numeric_limits<long long>::min()), L"-9223372036854775808");
  WString out = L"n";
  appendDecimal(out, 10);
  EXPECT_EQ(out, L"n10");
}

}  // namespace
}  // namespace TolmSDK
