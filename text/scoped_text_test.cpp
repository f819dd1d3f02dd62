#include "sfg/scoped_text.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "text/test_views.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using Skip = void (*)(const ScopedText&, std::size_t&);

/// Where `skip` leaves a position that starts at `pos`, the same in every place.
std::size_t after(Skip skip, std::wstring_view text, std::size_t pos = 0) {
  std::size_t result = kNotFound;
  inEveryPlace(text, [&](const ScopedText& view) {
    std::size_t moved = pos;
    skip(view, moved);
    if (result == kNotFound) result = moved;
    EXPECT_EQ(moved, result) << "depends on what lies behind the view";
  });
  return result;
}

/// What is left of the text at the position where `skip` stops.
std::wstring rest(Skip skip, std::wstring_view text, std::size_t pos = 0) {
  return std::wstring(text.substr(after(skip, text, pos)));
}

struct Taken {
  std::wstring text;
  std::size_t start;
  std::size_t pos;
  friend bool operator==(const Taken&, const Taken&) = default;
  friend std::ostream& operator<<(std::ostream& os, const Taken& t) {
    return os << '`' << std::string(t.text.begin(), t.text.end()) << "` at " << t.start << ", then " << t.pos;
  }
};

template <class Take>
Taken take(std::wstring_view text, std::size_t pos, const Take& takeFrom) {
  Taken result;
  bool isFirst = true;
  inEveryPlace(text, [&](const ScopedText& view) {
    std::size_t moved = pos;
    const ScopedText taken = takeFrom(view, moved);
    const Taken here{std::wstring(taken.view()), static_cast<std::size_t>(taken.text - view.text), moved};
    if (isFirst) result = here;
    isFirst = false;
    EXPECT_EQ(here, result) << "depends on what lies behind the view";
  });
  return result;
}

Taken body(std::wstring_view text, wchar_t open, wchar_t close, std::size_t pos = 0) {
  return take(text, pos,
              [&](const ScopedText& view, std::size_t& at) { return getBracketBody(view, at, open, close); });
}
Taken keyword(std::wstring_view text, std::size_t pos = 0) { return take(text, pos, getKeyword); }
Taken lineFeed(std::wstring_view text, std::size_t pos = 0) { return take(text, pos, getOptionalReturn); }
Taken semiColon(std::wstring_view text, std::size_t pos = 0) { return take(text, pos, getOptionalSemiColon); }

TEST(ScopedText, IsEmptyAndNullByDefault) {
  const ScopedText t;
  EXPECT_EQ(t.text, nullptr);
  EXPECT_EQ(t.length, 0u);
  EXPECT_TRUE(t.empty());
  EXPECT_EQ(t.substr(3, 4).length, 0u);
  EXPECT_EQ(t.find(L'a'), kNotFound);
  EXPECT_EQ(t.find(L"a", 0), kNotFound);
  EXPECT_EQ(t.find(L"", 0), kNotFound);
  WString out = L"old";
  t.toString(out);
  EXPECT_EQ(out, L"");
  EXPECT_EQ(t.toUString(), UString());
}

TEST(ScopedText, CopiesBothFields) {
  const WString s = L"some text";
  const ScopedText a(s, 5, 4);
  const ScopedText b = a;
  EXPECT_EQ(b.text, a.text);
  EXPECT_EQ(b.length, a.length);
}

TEST(ScopedText, ViewsAWholeString) {
  const WString s = L"abc";
  ScopedText t(s);
  EXPECT_EQ(t.text, s.data());
  EXPECT_EQ(t.length, 3u);
  const WString other = L"other";
  t = other;
  EXPECT_EQ(t.text, other.data());
  EXPECT_EQ(t.length, 5u);
}

TEST(ScopedText, ClampsAPartOfAString) {
  const WString s = L"abcdefghijkl";
  struct {
    std::size_t pos, count, start, length;
  } const cases[] = {
      {0, 12, 0, 12},
      {3, 4, 3, 4},
      {10, 5, 10, 2},
      {12, 1, 12, 0},
      {20, 5, 12, 0},
      {1, kNotFound, 1, 11},
      {kNotFound, kNotFound, 12, 0},
      {5, 0, 5, 0},
  };
  for (const auto& c : cases) {
    const ScopedText t(s, c.pos, c.count);
    EXPECT_EQ(t.text, s.data() + c.start) << c.pos << ", " << c.count;
    EXPECT_EQ(t.length, c.length) << c.pos << ", " << c.count;
    const ScopedText sub = ScopedText(s).substr(c.pos, c.count);
    EXPECT_EQ(sub.text, s.data() + c.start) << c.pos << ", " << c.count;
    EXPECT_EQ(sub.length, c.length) << c.pos << ", " << c.count;
  }
}

TEST(ScopedText, SubstrIsRelativeToTheView) {
  const WString s = L"abcdefgh";
  const ScopedText t = ScopedText(s, 2, 4).substr(1, 9);
  EXPECT_EQ(t.view(), L"def");
}

TEST(ScopedText, FindsACharacterInsideOnly) {
  const LiveText text(L"abca", L"z");
  EXPECT_EQ(text.view().find(L'a'), 0u);
  EXPECT_EQ(text.view().find(L'c'), 2u);
  EXPECT_EQ(text.view().find(L'z'), kNotFound);
  EXPECT_EQ(ExactText(L"abca").view().find(L'z'), kNotFound);
}

TEST(ScopedText, FindsTextAtOrBehindAPosition) {
  const LiveText text(L"abcabc", L"");
  EXPECT_EQ(text.view().find(L"bc", 0), 1u);
  EXPECT_EQ(text.view().find(L"bc", 1), 1u);
  EXPECT_EQ(text.view().find(L"bc", 2), 4u);
  EXPECT_EQ(text.view().find(L"bc", 5), kNotFound);
  EXPECT_EQ(text.view().find(L"cb", 0), kNotFound);
  for (const std::size_t from : positionsBehind(6)) EXPECT_EQ(text.view().find(L"a", from), kNotFound);
}

TEST(ScopedText, FindsTextThatRunsPastTheView) {
  const LiveText text(L"xab", L"cdab");
  EXPECT_EQ(text.view().find(L"abcd", 0), 1u);
  EXPECT_EQ(text.view().find(L"bcdab", 0), 2u);
  EXPECT_EQ(text.view().find(L"xabcdab", 0), 0u);
  EXPECT_EQ(text.view().find(L"xabcdabc", 0), kNotFound) << "ends behind the NUL";
  EXPECT_EQ(text.view().find(L"cd", 0), kNotFound) << "starts behind the view";
  EXPECT_EQ(text.view().find(L"abcd", 2), kNotFound);
}

TEST(ScopedText, ReadsNothingBehindAViewThatHoldsNoPartOfTheNeedle) {
  EXPECT_EQ(ExactText(L"abc").view().find(L"xyz", 0), kNotFound);
  EXPECT_EQ(ExactText(L"abc").view().find(L"bc", 0), 1u);
}

TEST(ScopedText, AnEmptyNeedleIsFoundWhereTheSearchStarts) {
  const LiveText text(L"abc", L"def");
  EXPECT_EQ(text.view().find(L"", 0), 0u);
  EXPECT_EQ(text.view().find(L"", 2), 2u);
  for (const std::size_t from : positionsBehind(3)) EXPECT_EQ(text.view().find(L"", from), kNotFound);
}

TEST(ScopedText, ANulInsideEndsTheSearch) {
  const LiveText text(std::wstring_view(L"ab\0ab", 5), L"");
  EXPECT_EQ(text.view().find(L"b", 0), 1u);
  EXPECT_EQ(text.view().find(L"b", 2), kNotFound);
  EXPECT_EQ(text.view().find(L"a", 3), kNotFound);
  EXPECT_EQ(text.view().find(WString(L"b\0a", 3), 0), kNotFound) << "a needle with a NUL occurs nowhere";
  EXPECT_EQ(text.view().find(WString(L"b\0", 2), 0), kNotFound);
}

TEST(ScopedText, BecomesAString) {
  const LiveText text(L"abc", L"def");
  WString out = L"old";
  text.view().toString(out);
  EXPECT_EQ(out, L"abc");
  EXPECT_EQ(text.view().toUString(), UString(L"abc"));
}

TEST(AppendString, Appends) {
  WString out = L"old ";
  appendString(out, LiveText(L"new", L"er").view());
  appendString(out, ScopedText());
  EXPECT_EQ(out, L"old new");
}

TEST(BuildKey, DropsWhitespaceEverywhere) {
  struct {
    const wchar_t* text;
    const wchar_t* key;
  } const cases[] = {
      {L"", L""},
      {L" \t\r\n", L""},
      {L"float4 f ( float a )", L"float4f(floata)"},
      {L"float4 f(float a)", L"float4f(floata)"},
      {L" a b ", L"ab"},
      {L"a\vb\fc\u00a0d", L"a\vb\fc\u00a0d"},  // no other blanks
  };
  for (const auto& c : cases)
    inEveryPlace(c.text, [&](const ScopedText& view) {
      WString key = L"<";
      buildKey(key, view);
      EXPECT_EQ(key, WString(L"<") + c.key);
    });
  WString key = L"kept";
  buildKey(key, ScopedText());
  EXPECT_EQ(key, L"kept");
}

TEST(BuildRange, ReachesFromTheFirstToTheEndOfTheLast) {
  const WString s = L"abcdefgh";
  EXPECT_EQ(buildRange(ScopedText(s, 1, 2), ScopedText(s, 4, 2)).view(), L"bcdef");
  EXPECT_EQ(buildRange(ScopedText(s, 1, 4), ScopedText(s, 3, 1)).view(), L"bcd");
  EXPECT_EQ(buildRange(ScopedText(s, 2, 1), ScopedText(s, 5, 0)).view(), L"cde");
  EXPECT_EQ(buildRange(ScopedText(s, 2, 3), ScopedText(s, 2, 0)).length, 0u);
  EXPECT_EQ(buildRange(ScopedText(), ScopedText()).text, nullptr);
  EXPECT_EQ(buildRange(ScopedText(), ScopedText()).length, 0u);
}

TEST(CharacterClasses, AreAsciiOnly) {
  for (int i = -1; i < 0x300; ++i) {
    const wchar_t c = static_cast<wchar_t>(i);
    const bool letter = (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z');
    const bool digit = c >= L'0' && c <= L'9';
    EXPECT_EQ(isTokenChar(c), letter || digit || c == L'_') << i;
    EXPECT_EQ(isTokenChar_firstLetter(c), letter || c == L'_' || c == L'[') << i;
    EXPECT_EQ(isWhitespace(c), i == 9 || i == 10 || i == 13 || i == 32) << i;
  }
}

TEST(SkipLine, EndsBehindTheLineFeed) {
  EXPECT_EQ(rest(skipLine, L"a\nb"), L"b");
  EXPECT_EQ(rest(skipLine, L"\n\nb"), L"\nb");
  EXPECT_EQ(rest(skipLine, L"abc"), L"");
  EXPECT_EQ(rest(skipLine, L"a\nb\nc", 2), L"c");
}

TEST(SkipLine, ABackslashContinuesTheLine) {
  EXPECT_EQ(rest(skipLine, L"a \\\nb\nc"), L"c");
  EXPECT_EQ(rest(skipLine, L"a \\\r\r\nb\nc"), L"c");
  EXPECT_EQ(rest(skipLine, L"a \\\r\n\nc"), L"c");
  EXPECT_EQ(rest(skipLine, L"a \\ \nb\nc"), L"b\nc") << "a blank behind the backslash ends the continuation";
  EXPECT_EQ(rest(skipLine, L"a \\x\nb"), L"b");
  EXPECT_EQ(rest(skipLine, L"a \\\\\nb\nc"), L"c");
  EXPECT_EQ(rest(skipLine, L"a\r\nb"), L"b");
  EXPECT_EQ(rest(skipLine, L"a \\\nb\\"), L"");
}

TEST(SkipComment, SkipsOneCommentThatStartsHere) {
  EXPECT_EQ(rest(skipComment, L"// a\nb"), L"b");
  EXPECT_EQ(rest(skipComment, L"// a \\\nb\nc"), L"c") << "a continued comment swallows the next line";
  EXPECT_EQ(rest(skipComment, L"/* a */b"), L"b");
  EXPECT_EQ(rest(skipComment, L"/* a // */b"), L"b");
  EXPECT_EQ(rest(skipComment, L"/* /* */ */"), L" */") << "no nesting";
  EXPECT_EQ(rest(skipComment, L"/**/b"), L"b");
  EXPECT_EQ(rest(skipComment, L"/*a**/b"), L"b");
  EXPECT_EQ(rest(skipComment, L"/*a*//*b*/"), L"/*b*/");
  EXPECT_EQ(rest(skipComment, L" // a\nb"), L" // a\nb");
  EXPECT_EQ(rest(skipComment, L"/ a"), L"/ a");
  EXPECT_EQ(rest(skipComment, L"a/* */", 1), L"");
}

TEST(SkipComment, TheOpenerMayBeItsOwnEnd) { EXPECT_EQ(rest(skipComment, L"/*/x"), L"x"); }

TEST(SkipComment, RunsToTheEndWhenNotClosed) {
  EXPECT_EQ(rest(skipComment, L"/* a"), L"");
  EXPECT_EQ(rest(skipComment, L"/*"), L"");
  EXPECT_EQ(rest(skipComment, L"/* *"), L"");
  EXPECT_EQ(rest(skipComment, L"// a"), L"");
  EXPECT_EQ(rest(skipComment, L"//"), L"");
  EXPECT_EQ(rest(skipComment, L"/"), L"/");
}

TEST(SkipMacros, SkipsAPreprocessorLineThatStartsHere) {
  EXPECT_EQ(rest(skipMacros, L"#define A \\\n 1\nb"), L"b");
  EXPECT_EQ(rest(skipMacros, L" #define A\nb"), L" #define A\nb");
  EXPECT_EQ(rest(skipMacros, L"a #b\nc", 2), L"c") << "anywhere in a line";
  EXPECT_EQ(rest(skipMacros, L"#"), L"");
}

TEST(SkipWhitespaces, SkipsBlanksAndComments) {
  EXPECT_EQ(rest(skipWhitespaces, L" \t\r\n x"), L"x");
  EXPECT_EQ(rest(skipWhitespaces, L"/*a*/ /*b*/ // c\n x"), L"x");
  EXPECT_EQ(rest(skipWhitespaces, L"// c\n/*d*/x"), L"/*d*/x");
  EXPECT_EQ(rest(skipWhitespaces, L"\v x"), L"\v x");
  EXPECT_EQ(rest(skipWhitespaces, L" #define A\nx"), L"#define A\nx") << "preprocessor lines stay";
  EXPECT_EQ(rest(skipWhitespaces, L"   "), L"");
  EXPECT_EQ(rest(skipWhitespaces, L" /"), L"/");
  EXPECT_EQ(rest(skipWhitespaces, L" /* x"), L"");
}

TEST(SkipWhitespaces, StopsAtACommentDirectlyBehindAComment) {
  EXPECT_EQ(rest(skipWhitespaces, L" /*a*//*b*/ x"), L"/*b*/ x");
  EXPECT_EQ(rest(skipWhitespaces, L"/*a*///b\nx"), L"//b\nx");
}

TEST(SkipNonKeywords, StopsAtTheNextTokenOutsideCommentsAndPreprocessorLines) {
  EXPECT_EQ(rest(skipNonKeywords, L"#define A \\\n  B\n(x"), L"x");
  EXPECT_EQ(rest(skipNonKeywords, L"(,) /*a*//*b*/ // c\n+x"), L"x");
  EXPECT_EQ(rest(skipNonKeywords, L"\"x\""), L"x\"") << "quotes are not recognised";
  EXPECT_EQ(rest(skipNonKeywords, L"x"), L"x");
  EXPECT_EQ(rest(skipNonKeywords, L"[9"), L"9");
  EXPECT_EQ(rest(skipNonKeywords, L"( #a\n#b\n/c"), L"c");
  EXPECT_EQ(rest(skipNonKeywords, L"\u00e9_"), L"_");
  EXPECT_EQ(rest(skipNonKeywords, L"()/* x"), L"");
  EXPECT_EQ(rest(skipNonKeywords, L"()#x"), L"");
}

TEST(Skipping, DoesNothingAtAndBehindTheEnd) {
  for (const Skip skip :
       {Skip(skipLine), Skip(skipComment), Skip(skipMacros), Skip(skipWhitespaces), Skip(skipNonKeywords)}) {
    for (const wchar_t* text : {L"", L"a", L"/", L"//", L"#", L" /*"}) {
      const std::size_t length = std::wstring_view(text).size();
      for (const std::size_t pos : positionsBehind(length)) EXPECT_EQ(after(skip, text, pos), pos);
    }
    for (const std::size_t pos : positionsBehind(0)) {
      std::size_t moved = pos;
      skip(ScopedText(), moved);
      EXPECT_EQ(moved, pos);
    }
  }
}

TEST(GetBracketBody, TakesABalancedBody) {
  EXPECT_EQ(body(L"  ( a, (b) ) x", L'(', L')'), (Taken{L"( a, (b) )", 2, 12}));
  EXPECT_EQ(body(L"x{{}}{}", L'{', L'}', 1), (Taken{L"{{}}", 1, 5}));
  EXPECT_EQ(body(L"/* ( */ (a)", L'(', L')'), (Taken{L"(a)", 8, 11}));
  EXPECT_EQ(body(L"()", L'(', L')'), (Taken{L"()", 0, 2}));
}

TEST(GetBracketBody, SkipsCommentsAndPreprocessorLinesInside) {
  EXPECT_EQ(body(L"{ /* } */ }", L'{', L'}'), (Taken{L"{ /* } */ }", 0, 11}));
  EXPECT_EQ(body(L"{ // }\n }x", L'{', L'}'), (Taken{L"{ // }\n }", 0, 9}));
  EXPECT_EQ(body(L"{\n#if }\n}x", L'{', L'}'), (Taken{L"{\n#if }\n}", 0, 9}));
  EXPECT_EQ(body(L"{/*}*/#}\n}x", L'{', L'}'), (Taken{L"{/*}*/#}\n}", 0, 10}));
  EXPECT_EQ(body(L"{ // \\\n } \n }x", L'{', L'}'), (Taken{L"{ // \\\n } \n }", 0, 13}));
}

TEST(GetBracketBody, SkipsOneCommentAndOneLineBeforeEachCharacter) {
  // The second line's first character is looked at without a test for a comment or a line.
  EXPECT_EQ(body(L"{#a\n#}\n", L'{', L'}'), (Taken{L"{#a\n#}", 0, 6}));
  EXPECT_EQ(body(L"{/*}*//*}*/}x", L'{', L'}').text, L"{/*}*//*}");
}

TEST(GetBracketBody, CountsBracketsInQuotes) {
  EXPECT_EQ(body(L"{\"}\"}", L'{', L'}'), (Taken{L"{\"}", 0, 3}));
}

TEST(GetBracketBody, IsEmptyAtTheFirstCharacterThatIsNoBracket) {
  EXPECT_EQ(body(L"  x (a)", L'(', L')'), (Taken{L"", 2, 2}));
  EXPECT_EQ(body(L"   ", L'(', L')'), (Taken{L"", 3, 3}));
  EXPECT_EQ(body(L"", L'(', L')'), (Taken{L"", 0, 0}));
  for (const std::size_t pos : positionsBehind(2))
    EXPECT_EQ(body(L"()", L'(', L')', pos), (Taken{L"", 2, pos}));
}

TEST(GetBracketBody, RunsToTheEndWhenNotBalanced) {
  EXPECT_EQ(body(L"((a)", L'(', L')'), (Taken{L"((a)", 0, 4}));
  EXPECT_EQ(body(L"(", L'(', L')'), (Taken{L"(", 0, 1}));
  EXPECT_EQ(body(L"(/*)", L'(', L')'), (Taken{L"(/*)", 0, 4}));
  EXPECT_EQ(body(L"(#)", L'(', L')'), (Taken{L"(#)", 0, 3}));
  EXPECT_EQ(body(L"|a|b", L'|', L'|'), (Taken{L"|a|b", 0, 4})) << "one bracket for both never closes";
}

TEST(GetKeyword, TakesTheRunOfTokenCharacters) {
  EXPECT_EQ(keyword(L"9abc("), (Taken{L"9abc", 0, 4}));
  EXPECT_EQ(keyword(L"("), (Taken{L"", 0, 0}));
  EXPECT_EQ(keyword(L" a"), (Taken{L"", 0, 0}));
  EXPECT_EQ(keyword(L"a_Z9"), (Taken{L"a_Z9", 0, 4}));
  EXPECT_EQ(keyword(L"ab.c", 1), (Taken{L"b", 1, 2}));
  for (const std::size_t pos : positionsBehind(2)) EXPECT_EQ(keyword(L"ab", pos), (Taken{L"", 2, pos}));
}

TEST(GetOptionalReturn, TakesALineFeedExactlyHere) {
  EXPECT_EQ(lineFeed(L"\nx"), (Taken{L"\n", 0, 1}));
  EXPECT_EQ(lineFeed(L" \nx"), (Taken{L"", 0, 0}));
  EXPECT_EQ(lineFeed(L"\r\n"), (Taken{L"", 0, 0}));
  for (const std::size_t pos : positionsBehind(1)) EXPECT_EQ(lineFeed(L"\n", pos), (Taken{L"", 1, pos}));
}

TEST(GetOptionalSemiColon, SkipsWhitespaceInAnyCase) {
  EXPECT_EQ(semiColon(L" /*a*/ ;x"), (Taken{L";", 7, 8}));
  EXPECT_EQ(semiColon(L";"), (Taken{L";", 0, 1}));
  EXPECT_EQ(semiColon(L" /*a*/ x"), (Taken{L"", 7, 7}));
  EXPECT_EQ(semiColon(L"  "), (Taken{L"", 2, 2}));
  for (const std::size_t pos : positionsBehind(1)) EXPECT_EQ(semiColon(L";", pos), (Taken{L"", 1, pos}));
}

TEST(Taking, FromNothing) {
  for (const std::size_t start : positionsBehind(0)) {
    std::size_t pos = start;
    EXPECT_EQ(getBracketBody(ScopedText(), pos, L'(', L')').text, nullptr);
    EXPECT_EQ(getKeyword(ScopedText(), pos).text, nullptr);
    EXPECT_EQ(getOptionalReturn(ScopedText(), pos).text, nullptr);
    EXPECT_EQ(getOptionalSemiColon(ScopedText(), pos).text, nullptr);
    EXPECT_EQ(pos, start);
  }
}

bool equalAt(std::wstring_view text, std::size_t pos, const wchar_t* literal) {
  const bool result = isEqual(ExactText(text).view(), pos, literal);
  inEveryPlace(text, [&](const ScopedText& view) { EXPECT_EQ(isEqual(view, pos, literal), result); });
  return result;
}

TEST(IsEqual, ComparesAPrefixWithoutAsciiCase) {
  EXPECT_TRUE(equalAt(L"Struct Foo", 0, L"struct"));
  EXPECT_TRUE(equalAt(L"STRUCTURE", 0, L"struct"));
  EXPECT_TRUE(equalAt(L"x struct", 2, L"STRUCT"));
  EXPECT_FALSE(equalAt(L"strukt Foo", 0, L"struct"));
  EXPECT_FALSE(equalAt(L"Struct Foo", 1, L"struct"));
  EXPECT_TRUE(equalAt(L"a[b", 0, L"A[B"));
  EXPECT_FALSE(equalAt(L"a{b", 0, L"a[b")) << "only letters have a case";
  EXPECT_FALSE(equalAt(L"a@", 0, L"a`"));
  EXPECT_TRUE(equalAt(L"\u00c4", 0, L"\u00c4"));
  EXPECT_FALSE(equalAt(L"\u00c4", 0, L"\u00e4")) << "other letters count as they are";
  EXPECT_FALSE(equalAt(L"\u0161", 0, L"a"));
}

TEST(IsEqual, IsFalseWhereTheViewIsTooShort) {
  const WString s = L"Struct Foo";
  EXPECT_FALSE(isEqual(ScopedText(s, 0, 3), 0, L"struct"));
  EXPECT_FALSE(equalAt(L"xxxxstr", 4, L"struct")) << "the view ends inside the literal";
  EXPECT_FALSE(equalAt(L"xxxxs", 4, L"struct"));
  for (const std::size_t pos : positionsBehind(6)) EXPECT_FALSE(equalAt(L"struct", pos, L"struct"));
  for (const std::size_t pos : positionsBehind(6)) EXPECT_FALSE(equalAt(L"struct", pos, L"s"));
}

TEST(IsEqual, AnEmptyLiteralIsEqualAnywhere) {
  EXPECT_TRUE(equalAt(L"abc", 0, L""));
  for (const std::size_t pos : positionsBehind(3)) EXPECT_TRUE(equalAt(L"abc", pos, L""));
  EXPECT_TRUE(isEqual(ScopedText(), 0, L""));
  EXPECT_FALSE(isEqual(ScopedText(), 0, L"a"));
}

TEST(TrimWhiteSpaces, RemovesLeadingBlanksOnly) {
  struct {
    const wchar_t* text;
    const wchar_t* trimmed;
  } const cases[] = {
      {L"  abc\n", L"abc\n"}, {L"\t\r\n x ", L"x "}, {L"x", L"x"}, {L" \t", L""}, {L"", L""},
      {L"\va", L"\va"},
  };
  for (const auto& c : cases) {
    WString string = c.text;
    trimWhiteSpaces(string);
    EXPECT_EQ(string, c.trimmed);
    inEveryPlace(c.text, [&](const ScopedText& view) {
      ScopedText trimmed = view;
      trimWhiteSpaces(trimmed);
      EXPECT_EQ(trimmed.view(), c.trimmed);
      EXPECT_EQ(trimmed.text + trimmed.length, view.text + view.length);
    });
  }
  ScopedText nothing;
  trimWhiteSpaces(nothing);
  EXPECT_EQ(nothing.text, nullptr);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
