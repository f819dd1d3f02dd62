#include "tolmsdk/object_data_node.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "platform/test_folder.h"
#include "tests/support/cost.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK {
namespace {

RefPtr<IObjectDataNode> parse(std::wstring_view json) {
  RefPtr<IObjectDataNode> node = createJsonNode();
  EXPECT_TRUE(node->loadFromText(json)) << toUtf8(json) << ": " << toUtf8(node->getLoadError());
  return node;
}

TEST(JsonNode, StartsAsNull) {
  const RefPtr<IObjectDataNode> node = createJsonNode();
  EXPECT_EQ(node->kind(), NodeKind::null);
  EXPECT_EQ(node->size(), 0u);
  EXPECT_EQ(node->toText(), L"null");
  EXPECT_EQ(node->position().line, 0u);
  EXPECT_EQ(node->QueryInterface(kObjectInterfaceId), node.get());
}

TEST(JsonNode, AnswersEveryKind) {
  const auto node =
      parse(LR"({"n": null, "t": true, "f": false, "i": -3, "r": 0.5, "s": "text", "a": [1, 2], "o": {}})");
  EXPECT_EQ(node->kind(), NodeKind::object);
  EXPECT_EQ(node->size(), 8u);
  EXPECT_EQ(node->member(L"t")->kind(), NodeKind::boolean);
  EXPECT_TRUE(node->member(L"t")->asBool());
  EXPECT_FALSE(node->member(L"f")->asBool());
  EXPECT_EQ(node->member(L"i")->kind(), NodeKind::number);
  EXPECT_EQ(node->member(L"i")->asNumber(), -3.0);
  EXPECT_EQ(node->member(L"r")->asNumber(), 0.5);
  EXPECT_EQ(node->member(L"s")->kind(), NodeKind::string);
  EXPECT_EQ(node->member(L"s")->asString(), L"text");
  EXPECT_EQ(node->member(L"a")->kind(), NodeKind::array);
  EXPECT_EQ(node->member(L"a")->size(), 2u);
  EXPECT_EQ(node->member(L"a")->element(1)->asNumber(), 2.0);
  EXPECT_EQ(node->member(L"o")->kind(), NodeKind::object);
  EXPECT_EQ(node->member(L"o")->size(), 0u);
}

TEST(JsonNode, AnswersNullForJsonNullAndWhatIsMissing) {
  const auto node = parse(LR"({"n": null, "a": [null, 1]})");
  EXPECT_EQ(node->member(L"n"), nullptr);
  EXPECT_EQ(node->element(0), nullptr);
  ASSERT_NE(node->elementOrNull(0), nullptr);
  EXPECT_EQ(node->elementOrNull(0)->kind(), NodeKind::null);
  EXPECT_EQ(node->member(L"missing"), nullptr);
  EXPECT_EQ(node->element(2), nullptr);
  EXPECT_EQ(node->elementOrNull(kNotFound), nullptr);
  EXPECT_EQ(node->member(L"a")->element(0), nullptr);
  EXPECT_EQ(node->member(L"a")->member(L"n"), nullptr);
  EXPECT_EQ(node->member(L"a")->element(1)->element(0), nullptr);
}

TEST(JsonNode, AnswersOfOtherKindsAreEmpty) {
  const auto node = parse(LR"([1, "x", true, {}])");
  EXPECT_EQ(node->asString(), L"");
  EXPECT_EQ(node->asNumber(), 0.0);
  EXPECT_FALSE(node->asBool());
  EXPECT_FALSE(node->isNumeric());
  EXPECT_EQ(node->memberName(0), L"");
  EXPECT_EQ(node->element(0)->asString(), L"");
  EXPECT_FALSE(node->element(0)->asBool());
  EXPECT_EQ(node->element(1)->asNumber(), 0.0);
  EXPECT_EQ(node->element(2)->asNumber(), 0.0);
  EXPECT_EQ(node->element(3)->memberName(0), L"");
  EXPECT_EQ(node->element(0)->size(), 0u);
}

TEST(JsonNode, KeepsMembersInFileOrder) {
  const auto node = parse(LR"({"z": 1, "a": 2, "m": 3})");
  EXPECT_EQ(node->memberName(0), L"z");
  EXPECT_EQ(node->memberName(1), L"a");
  EXPECT_EQ(node->memberName(2), L"m");
  EXPECT_EQ(node->memberName(3), L"");
  EXPECT_EQ(node->toText(), LR"({"z":1,"a":2,"m":3})");
}

TEST(JsonNode, LastOfEqualMembersCountsAtThePlaceOfTheFirst) {
  const auto node =
      parse(L"{\"a\": 1, \"b\": 2, \"a\": {\"a\": 3, \"a\": 4},\n \"c\": 5, \"a\": 6, \"b\": null}");
  EXPECT_EQ(node->toText(), LR"({"a":6,"b":null,"c":5})");
  EXPECT_EQ(node->size(), 3u);
  EXPECT_EQ(node->member(L"a")->position().line, 2u);
  EXPECT_EQ(parse(LR"({"a": {"a": 1}, "a": {"a": 2}})")->toText(), LR"({"a":{"a":2}})");
  EXPECT_EQ(parse(LR"([{"a": 1}, {"a": 2}])")->toText(), LR"([{"a":1},{"a":2}])");
}

TEST(JsonNode, FindsMembersOfLargeObjects) {
  std::wstring json = L"{";
  for (int index = 0; index < 1000; ++index) {
    const std::wstring number = std::to_wstring((index * 7) % 1000);
    json += (index == 0 ? L"\"" : L", \"") + number + L"\": " + number;
  }
  json += L", \"7\": -7}";
  const auto node = parse(json);
  EXPECT_EQ(node->size(), 1000u);
  for (int index = 0; index < 1000; ++index) {
    ASSERT_NE(node->member(std::to_wstring(index)), nullptr);
    EXPECT_EQ(node->member(std::to_wstring(index))->asNumber(), index == 7 ? -7.0 : index);
  }
  EXPECT_EQ(node->memberName(1), L"7");
  EXPECT_EQ(node->member(L"1000"), nullptr);
  EXPECT_EQ(node->member(L""), nullptr);
}

TEST(JsonNode, ReadsEscapes) {
  const auto node = parse(LR"(["\"\\\/\b\f\n\r\t", "\u00e4\u20AC", "\ud83d\ude00", "a\u0000b", "ä€"])");
  EXPECT_EQ(node->element(0)->asString(), L"\"\\/\b\f\n\r\t");
  EXPECT_EQ(node->element(1)->asString(), L"\u00e4\u20ac");
  EXPECT_EQ(node->element(2)->asString(), L"\U0001F600");
  EXPECT_EQ(node->element(3)->asString(), std::wstring_view(L"a\0b", 3));
  EXPECT_EQ(node->element(4)->asString(), L"\u00e4\u20ac");
}

TEST(JsonNode, TellsWhereValuesStart) {
  const auto node = parse(L"\n  {\"a\" : 12,\n\t\"b\":[ true,\r\n null , "
                          L"-0.5e1,\"x\\\"y\",{\n}],\n\"\u00e4\":\"\u20ac\", \"c\": 1}  ");
  const auto at = [](const IObjectDataNode* value) {
    return std::to_string(value->position().line) + ":" + std::to_string(value->position().column);
  };
  EXPECT_EQ(at(node.get()), "2:3");
  EXPECT_EQ(at(node->member(L"a")), "2:10");
  const IObjectDataNode* const b = node->member(L"b");
  EXPECT_EQ(at(b), "3:6");
  EXPECT_EQ(at(b->element(0)), "3:8");
  EXPECT_EQ(at(b->elementOrNull(1)), "4:2");
  EXPECT_EQ(at(b->element(2)), "4:9");
  EXPECT_EQ(at(b->element(3)), "4:16");
  EXPECT_EQ(at(b->element(4)), "4:23");
  EXPECT_EQ(at(node->member(L"\u00e4")), "6:5");
  EXPECT_EQ(at(node->member(L"c")), "6:15");
  EXPECT_EQ(at(parse(L"7").get()), "1:1");
  EXPECT_EQ(at(parse(L" [1]")->element(0)), "1:3");
}

struct Malformed {
  std::wstring_view json;
  const wchar_t* error;
};

TEST(JsonNode, SaysWhereAndWhatWasExpected) {
  using namespace std::literals;
  const Malformed cases[] = {
      {L"", L"line 1, column 1: expected a value, found the end of the text"},
      {L" \n ", L"line 2, column 2: expected a value, found the end of the text"},
      {L"{", L"line 1, column 2: expected a member name in double quotes or `}`, found the end of the text"},
      {L"{\n  \"a\": 1,\n}",
       L"line 3, column 1: expected a member name behind the comma in front of this bracket, found `}`"},
      {L"{a: 1}", L"line 1, column 2: expected a member name in double quotes or `}`, found `a`"},
      {L"{1: 1}", L"line 1, column 2: expected a member name in double quotes or `}`, found `1`"},
      {L"{]", L"line 1, column 2: expected a member name in double quotes or `}`, found `]`"},
      {L"{\n  \"a\" 1}", L"line 2, column 6: missing `:` behind this name"},
      {L"{\"a\"", L"line 1, column 5: expected `:`, found the end of the text"},
      {L"{\"a\",", L"line 1, column 5: expected `:`, found `,`"},
      {L"{\"a\":", L"line 1, column 6: expected a value, found the end of the text"},
      {L"{\"a\": }", L"line 1, column 7: expected a value, found `}`"},
      {L"{\"a\": 1\n \"b\": 2}", L"line 1, column 8: missing `,` behind this value"},
      {L"{\"a\": 1]", L"line 1, column 8: `]` closes nothing"},
      {L"{\"a\": 1", L"line 1, column 8: missing `}` for the `{` of line 1, column 1"},
      {L"{\"a\": 1:2}", L"line 1, column 8: expected `,` or `}`, found `:`"},
      {L"[", L"line 1, column 2: expected a value or `]`, found the end of the text"},
      {L"[}", L"line 1, column 2: expected a value or `]`, found `}`"},
      {L"[,1]", L"line 1, column 2: expected a value or `]`, found `,`"},
      {L"[1,]", L"line 1, column 4: expected a value behind the comma in front of this bracket, found `]`"},
      {L"[1,,2]", L"line 1, column 4: expected a value, found `,`"},
      {L"[1, 2\r\n, 3,\r\n]",
       L"line 3, column 1: expected a value behind the comma in front of this bracket, found `]`"},
      {L"[1 2]", L"line 1, column 3: missing `,` behind this value"},
      {L"[1", L"line 1, column 3: missing `]` for the `[` of line 1, column 1"},
      {L"[\"\u00e4\u00f6\" x]", L"line 1, column 7: expected `,` or `]`, found `x`"},
      {L"[1 {", L"line 1, column 3: missing `,` behind this value"},
      {L"{} x", L"line 1, column 4: expected the end of the text, found `x`"},
      {L"{}\n{}", L"line 2, column 1: expected the end of the text, found `{`"},
      {L"1,", L"line 1, column 2: expected the end of the text, found `,`"},
      {L"01", L"line 1, column 2: expected the end of the text, found `1`"},
      {L"tru", L"line 1, column 1: expected a value, found `tru`; text stands in double quotes"},
      {L"[trie]", L"line 1, column 2: expected a value or `]`, found `trie`; text stands in double quotes"},
      {L"NaN", L"line 1, column 1: expected a value, found `NaN`; JSON has no such number"},
      {L"+1", L"line 1, column 1: expected a value, found `+1`; numbers are written as `0.5`, `-1` or `2e3`"},
      {L"\u00e4", L"line 1, column 1: expected a value, found `\u00e4`"},
      {L"\uFFFD",
       L"line 1, column 1: expected a value, found what is no UTF-8: is the file saved in another encoding?"},
      {L"\x01", L"line 1, column 1: expected a value, found a control character"},
      {L"{\"a\": 'x'}",
       L"line 1, column 7: expected a value, found `'`; strings stand in double quotes, `\"`"},
      {L"// no\n{}", L"line 1, column 1: expected a value, found a comment, which JSON does not have"},
      {L"[1, /* no */ 2]", L"line 1, column 5: expected a value, found a comment, which JSON does not have"},
      {L"\uFEFF\uFEFF{}", L"line 1, column 1: expected a value, found a second byte-order mark"},
      {L"{}\0x"sv, L"line 1, column 3: expected the end of the text, found a null character"},
      {L"[1\0]"sv, L"line 1, column 3: expected `,` or `]`, found a null character"},
      {L"\0"sv, L"line 1, column 1: expected a value, found a null character"},
      {L"[\n \"abc", L"line 2, column 2: expected a closing `\"` for this string, found the end of the text"},
      {L"[\"ab\n\"]",
       L"line 1, column 5: expected a closing `\"` before the end of the line; a line feed is written `\\n`"},
      {L"[\"ab\r\n\"]",
       L"line 1, column 5: expected a closing `\"` before the end of the line; a line feed is written `\\n`"},
      {L"[\"missing closing quote\n\"]", L"line 1, column 24: expected a closing `\"` before the end of the "
                                         L"line; a line feed is written `\\n`"},
      {L"[\"; last read: '; expected end of input\n\"]",
       L"line 1, column 40: expected a closing `\"` before the end of the line; a line feed is written "
       L"`\\n`"},
      {L"[1 ; expected end of input", L"line 1, column 4: expected `,` or `]`, found `;`"},
      {L"[\"a\tb\"]", L"line 1, column 4: a tab in a string is written `\\t`"},
      {L"\"a\0b\""sv, L"line 1, column 3: control character U+0000 (NUL) must be escaped to \\u0000"},
      {L"\"\u00e4\\x\"", L"line 1, column 4: expected one of `\"`, `\\`, `/`, `b`, `f`, `n`, `r`, `t`, `u` "
                         L"behind `\\`; a backslash is written `\\\\`"},
      {L"\"\\u12g4\"", L"line 1, column 6: expected four hexadecimal digits behind `\\u`"},
      {L"\"\\u12", L"line 1, column 6: expected four hexadecimal digits behind `\\u`"},
      {L"\"\\ud800x\"",
       L"line 1, column 8: expected the second half of a surrogate pair, `\\uDC00` to `\\uDFFF`"},
      {L"\"\\udc00\"", L"line 1, column 7: expected the first half of a surrogate pair, `\\uD800` to "
                       L"`\\uDBFF`, before this one"},
      {L"[-x]", L"line 1, column 3: expected a digit behind `-`"},
      {L"-", L"line 1, column 2: expected a digit behind `-`"},
      {L"[1.e5]", L"line 1, column 4: expected a digit behind `.`"},
      {L"[1ex]", L"line 1, column 4: expected `+`, `-` or a digit behind the exponent's `e`"},
      {L"1e+", L"line 1, column 4: expected a digit behind the exponent's sign"},
      // Quotes that are missing, or stand in a string.
      {L"{\"a\": \"b, \"c\": 1}", L"line 1, column 9: missing `\"` at the end of this string"},
      {L"{\"a: \"b\"}", L"line 1, column 4: missing `\"` at the end of this string"},
      {L"[\"say \"hi\" to\"]",
       L"line 1, column 7: this `\"` ends the string; a quote inside of one is written `\\\"`"},
      {L"[\u201Ca\u201D]",
       L"line 1, column 2: expected a value or `]`, found `\u201C`; strings stand in double quotes, `\"`"},
      {L"{'a': 1}", L"line 1, column 2: expected a member name in double quotes or `}`, found `'`; strings "
                    L"stand in double quotes, `\"`"},
      // Brackets: told where they are missing, from what the rest of the text closes.
      {L"{\n \"a\": [ { \"b\": 1 ],\n \"c\": [ ]\n}",
       L"line 2, column 17: missing `}` for the `{` of line 2, column 9"},
      {L"{\n \"a\": [ { \"b\": 1 } },\n \"c\": [ ]\n}",
       L"line 2, column 20: expected `]` for the `[` of line 2, column 7, found `}`"},
      {L"{\n \"a\": [ 1 ]],\n \"c\": [ ]\n}", L"line 2, column 12: `]` closes nothing"},
      {L"{\n \"a\": [ 1,\n \"c\": [ ]\n}", L"line 2, column 10: missing `]` for the `[` of line 2, column 7"},
      {L"{\"a\": [\"c\": 1]}",
       L"line 1, column 7: values with names stand in `{` and `}`, not in `[` and `]`"},
      {L"{\"a\": [{\"b\": {\"c\": 1}, {\"b\": 2}]}",
       L"line 1, column 22: missing `}` for the `{` of line 1, column 8"},
      {L"{\n \"a\": {\n  \"b\": {\n },\n \"c\": 1\n}\n", L"line 3, column 8: `{` is not closed"},
      {L"{}\n}", L"line 2, column 1: `}` closes nothing"},
      {L"{\"a\": 1},\n\"b\": 2}", L"line 1, column 8: this `}` ends the document, but more follows"},
      // Values of other languages.
      {L"[true, False]", L"line 1, column 8: expected a value, found `False`; write `false`"},
      {L"{\"a\": None}", L"line 1, column 7: expected a value, found `None`; write `null`"},
      {L"[0.5f]",
       L"line 1, column 2: expected a number, found `0.5f`; numbers are written as `0.5`, `-1` or `2e3`"},
      {L"[0xff]",
       L"line 1, column 2: expected a number, found `0xff`; numbers are written as `0.5`, `-1` or `2e3`"},
      {L"{\"a\": .5}",
       L"line 1, column 7: expected a value, found `.5`; numbers are written as `0.5`, `-1` or `2e3`"},
      {L"{\"a\": 0,5}", L"line 1, column 8: a number is written with a point, not with a comma"},
      {L"{\"a\": (1, 2)}", L"line 1, column 7: expected a value, found `(`; lists stand in `[` and `]`"},
      {L"{\n# no\n}", L"line 2, column 1: expected a member name in double quotes or `}`, found a comment, "
                      L"which JSON does not have"},
      {L"[1,\n  -1e999]",
       L"line 2, column 3: expected a number within the range of double precision, found `-1e999`"},
  };
  for (const Malformed& c : cases) {
    const RefPtr<IObjectDataNode> node = createJsonNode();
    EXPECT_FALSE(node->loadFromText(c.json)) << toUtf8(c.json);
    EXPECT_EQ(toUtf8(node->getLoadError()), toUtf8(c.error)) << toUtf8(c.json);
    EXPECT_EQ(node->kind(), NodeKind::null);
  }
}

TEST(JsonNode, ErrorGoesWithTheNextDocument) {
  const RefPtr<IObjectDataNode> node = createJsonNode();
  EXPECT_TRUE(node->loadFromText(L"[1]"));
  EXPECT_FALSE(node->loadFromText(L"["));
  EXPECT_EQ(node->kind(), NodeKind::null);
  EXPECT_EQ(node->size(), 0u);
  EXPECT_TRUE(node->loadFromText(L"[2]"));
  EXPECT_EQ(node->getLoadError(), L"");
  EXPECT_EQ(node->toText(), L"[2]");
}

WString nested(std::size_t levels) {
  WString json;
  for (std::size_t level = 0; level < levels; ++level) json += level % 2 == 0 ? L"[" : L"{\"a\":";
  if (levels % 2 == 0) json += L"1";
  for (std::size_t level = levels; level > 0; --level) json += level % 2 == 1 ? L"]" : L"}";
  return json;
}

TEST(JsonNode, LoadsTheDeepestNestingAndNoDeeper) {
  EXPECT_EQ(parse(nested(256))->toText(), nested(256));
  const RefPtr<IObjectDataNode> node = createJsonNode();
  EXPECT_FALSE(node->loadFromText(nested(257)));
  EXPECT_EQ(node->getLoadError(), L"line 1, column 769: expected at most 256 levels of arrays and objects");
  EXPECT_FALSE(node->loadFromText(std::wstring(1000000, L'[')));
  EXPECT_EQ(node->getLoadError(), L"line 1, column 257: expected at most 256 levels of arrays and objects");
  EXPECT_TRUE(node->loadFromText(L"[" + std::wstring(255, L'[') + std::wstring(255, L']') + L",[]]"));
}

TEST(JsonText, IsCompactAndEscaped) {
  const auto node = parse(L" { \"a b\" : [ 1 , true , false , null , { } , [ ] ] , \"\\u00e4\\\"\\\\\\/\" : "
                          L"\"\\u0000\\u001f\\b\\f\\n\\r\\t\\u007f\u20ac\" } ");
  EXPECT_EQ(
      node->toText(),
      L"{\"a b\":[1,true,false,null,{},[]],\"\u00e4\\\"\\\\/\":\"\\u0000\\u001f\\b\\f\\n\\r\\t\x7f\u20ac\"}");
  EXPECT_EQ(parse(node->toText())->toText(), node->toText());
  EXPECT_EQ(node->element(0)->toText(), L"[1,true,false,null,{},[]]");
}

TEST(JsonText, HasOneFormForEqualNumbers) {
  struct Case {
    const wchar_t* json;
    const wchar_t* text;
  };
  for (const Case& c : {Case{L"1", L"1"},
                        Case{L"1.0", L"1"},
                        Case{L"1e0", L"1"},
                        Case{L"10E-1", L"1"},
                        Case{L"0", L"0"},
                        Case{L"-0", L"0"},
                        Case{L"-0.0", L"0"},
                        Case{L"0e5", L"0"},
                        Case{L"-7", L"-7"},
                        Case{L"-7.0", L"-7"},
                        Case{L"0.1", L"0.1"},
                        Case{L"1e-1", L"0.1"},
                        Case{L"0.10", L"0.1"},
                        Case{L"1e-7", L"1e-07"},
                        Case{L"9007199254740993", L"9007199254740993"},
                        Case{L"9223372036854775807", L"9223372036854775807"},
                        Case{L"-9223372036854775808", L"-9223372036854775808"},
                        Case{L"-9.223372036854775808e18", L"-9223372036854775808"},
                        Case{L"18446744073709551615", L"18446744073709551615"},
                        Case{L"1e19", L"10000000000000000000"},
                        Case{L"10000000000000000000", L"10000000000000000000"},
                        Case{L"18446744073709551616", L"18446744073709551616"},
                        Case{L"1e300", L"1e+300"},
                        Case{L"-1e300", L"-1e+300"},
                        Case{L"1e-999", L"0"}}) {
    EXPECT_EQ(toUtf8(parse(c.json)->toText()), toUtf8(c.text)) << toUtf8(c.json);
  }
}

TEST(JsonNode, ReadsStringsThatAreNumbers) {
  struct Case {
    const wchar_t* text;
    bool isNumeric;
    double number;
  };
  for (const Case& c :
       {Case{L"100", true, 100.0}, Case{L"-0.5", true, -0.5}, Case{L"1e2", true, 100.0}, Case{L"", false, 0},
        Case{L" 1", false, 0}, Case{L"1 ", false, 0}, Case{L"1x", false, 0}, Case{L"nan", false, 0},
        Case{L"inf", false, 0}, Case{L"0x10", false, 0}, Case{L"1,5", false, 0}, Case{L"1e999", false, 0},
        Case{L"-", false, 0}, Case{L"\u0661", false, 0}}) {
    const auto node = parse(L"[\"" + std::wstring(c.text) + L"\"]");
    EXPECT_EQ(node->element(0)->isNumeric(), c.isNumeric) << toUtf8(c.text);
    EXPECT_EQ(node->element(0)->asNumber(), c.number) << toUtf8(c.text);
    EXPECT_EQ(node->element(0)->kind(), NodeKind::string);
  }
  EXPECT_TRUE(parse(L"1")->isNumeric());
  EXPECT_FALSE(parse(L"true")->isNumeric());
}

TEST(JsonNode, ChildKeepsItsDocumentAlive) {
  RefPtr<const IObjectDataNode> child;
  {
    const auto node = parse(LR"({"a": ["a text that needs memory of its own", {"b": 1}]})");
    child = node->member(L"a");
  }
  EXPECT_EQ(child->element(0)->asString(), L"a text that needs memory of its own");
  EXPECT_EQ(child->toText(), LR"(["a text that needs memory of its own",{"b":1}])");
  child = child->element(1);
  EXPECT_EQ(child->toText(), LR"({"b":1})");
}

TEST(JsonNode, HeldChildSurvivesTheNextDocument) {
  const auto node = parse(LR"([["first document, with a long text"]])");
  const RefPtr<const IObjectDataNode> child = node->element(0);
  EXPECT_TRUE(node->loadFromText(L"[2]"));
  EXPECT_EQ(child->element(0)->asString(), L"first document, with a long text");
  EXPECT_FALSE(node->loadFromText(L"["));
  EXPECT_EQ(child->toText(), LR"(["first document, with a long text"])");
}

TEST(JsonNode, IsReadByManyThreads) {
  const auto node = parse(LR"({"a": [1, "two", {"three": 3}]})");
  std::vector<WString> texts(8);
  std::vector<std::thread> threads;
  threads.reserve(8);
  for (WString& text : texts) {
    threads.emplace_back([&text, &node] {
      for (int round = 0; round < 200; ++round) {
        const RefPtr<const IObjectDataNode> child = node->member(L"a");
        text = child->toText();
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const WString& text : texts) EXPECT_EQ(text, LR"([1,"two",{"three":3}])");
}

TEST(JsonNode, StringsAreReadAtFirstByManyThreads) {
  WString json = L"[\"first\"";
  for (int index = 1; index < 2000; ++index) json += L", \"text " + itos(index) + L"\"";
  const auto node = parse(json + L"]");
  std::vector<const WString*> last(8);
  std::vector<WString> texts(8);
  std::vector<std::thread> threads;
  threads.reserve(8);
  for (std::size_t thread = 0; thread < 8; ++thread) {
    threads.emplace_back([&, thread] {
      for (std::size_t index = 0; index < node->size(); ++index)
        last[thread] = &node->element(index)->asString();
      texts[thread] = node->element(0)->asString();
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(*last[0], L"text 1999");
  for (const WString* each : last) EXPECT_EQ(each, last[0]);
  for (const WString& text : texts) EXPECT_EQ(text, L"first");
}

TEST(JsonNode, TellsWhereMemberNamesStand) {
  const auto node = parse(L"{ \"a\\u00e9\": 1,\n\t\"\u00e9\" :{\"in\" : [] }, \"z\": [ { } ] }");
  const auto place = [](const IObjectDataNode& object, std::size_t index) {
    const TextPosition position = object.memberPosition(index);
    return std::to_string(position.line) + ":" + std::to_string(position.column);
  };
  EXPECT_EQ(place(*node, 0), "1:3");
  EXPECT_EQ(place(*node, 1), "2:2");
  EXPECT_EQ(place(*node, 2), "2:21");
  EXPECT_EQ(place(*node, 3), "0:0");
  EXPECT_EQ(place(*node->element(1), 0), "2:8");
  EXPECT_EQ(place(*node->element(2), 0), "0:0");
  EXPECT_EQ(place(*node->element(0), 0), "0:0");
}

TEST(JsonNode, TellsWhereMemberNamesOfLargeObjectsStand) {
  std::wstring text = L"{";
  for (int i = 0; i < 40; ++i) text += (i == 0 ? L"" : L",") + (L"\n \"k" + std::to_wstring(i)) + L"\": 0";
  const auto node = parse(text + L"}");
  for (std::size_t i = 0; i < 40; ++i) {
    EXPECT_EQ(node->memberPosition(i).line, i + 2);
    EXPECT_EQ(node->memberPosition(i).column, 2u);
    EXPECT_EQ(node->member(L"k" + std::to_wstring(i)), node->element(i));
  }
}

TEST(JsonNode, TellsRepeatedMembersInTheOrderOfTheText) {
  const auto node =
      parse(L"{\"a\": 1, \"b\": {\"x\": 1, \"y\": 2,\n\"x\": 3, \"x\": 4}, \"a\": 2, \"c\": [{\"a\": 5}]}");
  std::string told;
  for (const RepeatedMember& member : node->element(1)->repeatedMembers()) {
    told += toUtf8(member.name) + " " + std::to_string(member.before.line) + ":" +
            std::to_string(member.before.column) + " " + std::to_string(member.again.line) + ":" +
            std::to_string(member.again.column) + " " + std::to_string(member.depth) + "\n";
  }
  EXPECT_EQ(told, "x 1:16 2:1 2\nx 2:1 2:9 2\na 1:2 2:18 1\n");
  EXPECT_EQ(node->memberPosition(0).line, 2u);
  EXPECT_EQ(node->memberPosition(0).column, 18u);
  EXPECT_TRUE(parse(L"[1]")->repeatedMembers().empty());
  EXPECT_TRUE(RefPtr<IObjectDataNode>(createJsonNode())->repeatedMembers().empty());
}

TEST(JsonNode, AnswersUtf8OfStringsOnly) {
  const auto node = parse(L"[\"\u00e4\\n\\u20ac\", \"\", 1, [\"x\"], null]");
  EXPECT_EQ(node->element(0)->asUtf8(), "\xC3\xA4\n\xE2\x82\xAC");
  EXPECT_EQ(node->element(1)->asUtf8(), "");
  EXPECT_EQ(node->element(2)->asUtf8(), "");
  EXPECT_EQ(node->element(3)->asUtf8(), "");
  EXPECT_EQ(node->elementOrNull(4)->asUtf8(), "");
  EXPECT_EQ(parse(L"\"root\"")->asUtf8(), "root");
  EXPECT_EQ(RefPtr<IObjectDataNode>(createJsonNode())->asUtf8(), "");
}

TEST(JsonNode, TextsOutliveTheRoot) {
  RefPtr<const IObjectDataNode> plain;
  RefPtr<const IObjectDataNode> escaped;
  {
    const auto node = parse(LR"(["a plain text", "an escaped\ttext"])");
    plain = node->element(0);
    escaped = node->element(1);
  }
  EXPECT_EQ(plain->asString(), L"a plain text");
  EXPECT_EQ(&plain->asString(), &plain->asString());
  EXPECT_EQ(escaped->asUtf8(), "an escaped\ttext");
}

TEST(JsonNode, NamesAreEqualHoweverTheyAreSpelled) {
  const auto node = parse(L"{\"\u00e4b\": 1, \"c\": 2, \"\\u00e4\\u0062\": 3}");
  EXPECT_EQ(node->toText(), L"{\"\u00e4b\":3,\"c\":2}");
  EXPECT_EQ(node->member(L"\u00e4b")->position().column, 35u);
}

TEST(JsonNode, CountsColumnsOfEscapesAsTheyAreWritten) {
  const auto node = parse(LR"({"\u00e4\"\\": ["\\\\", "\"\n", 1], "\/": 2})");
  EXPECT_EQ(node->element(0)->position().column, 16u);
  EXPECT_EQ(node->element(0)->element(1)->position().column, 25u);
  EXPECT_EQ(node->element(0)->element(2)->position().column, 33u);
  EXPECT_EQ(node->element(1)->position().column, 43u);
}

TEST(JsonNode, ReadsNamesAndTextsOfTenMillionCharacters) {
  const WString name(10'000'000, L'n');
  const auto node = parse(L"{\"" + name + L"\": \"" + name + L"\\n\", \"b\": 1, \"" + name + L"\": 2}");
  EXPECT_EQ(node->size(), 2u);
  EXPECT_EQ(node->member(name)->asNumber(), 2.0);
  EXPECT_EQ(node->memberName(0), name);
  EXPECT_EQ(node->member(L"b")->position().column, 20'000'017u);
}

TEST(JsonNode, NumbersMayHaveAnyNumberOfDigits) {
  const std::wstring zeros(400, L'0');
  const auto node = parse(L"[0e999, 0.0e400, 1" + zeros + L"e-400, 0." + zeros + L"1e401, 1e-400]");
  EXPECT_EQ(node->toText(), L"[0,0,1,1,0]");
  EXPECT_EQ(node->element(2)->position().column, 18u);
}

TEST(JsonNode, RefusesALoneSurrogateInAName) {
  const RefPtr<IObjectDataNode> node = createJsonNode();
  EXPECT_FALSE(node->loadFromText(LR"({"a": 1, "\udc00": 2})"));
  EXPECT_EQ(node->getLoadError(),
            L"line 1, column 16: expected the first half of a surrogate pair, `\\uD800` to "
            L"`\\uDBFF`, before this one");
}

TEST(JsonNode, ReadsNoFurtherThanItsText) {
  for (const std::wstring_view text : {L"12", L"-", L"\"a", L"tru", L"[1", L"{\"a\":1.5", L"1e"}) {
    const std::vector<wchar_t> exact(text.begin(), text.end());
    const RefPtr<IObjectDataNode> node = createJsonNode();
    EXPECT_EQ(node->loadFromText(std::wstring_view(exact.data(), exact.size())), text == L"12");
  }
}

/// Tests with a file of their own.
class JsonFile : public testing::Test {
protected:
  bool load(std::string_view bytes) { return node_->loadFromFile(folder_.write("a.json", bytes)); }

  const TestFolder folder_;
  const WString file_ = folder_.file("a.json");
  const RefPtr<IObjectDataNode> node_ = createJsonNode();
};

TEST_F(JsonFile, LoadsUtf8) {
  ASSERT_TRUE(load("{\"\xC3\xA4\": \"\xE2\x82\xAC\"}"));
  EXPECT_EQ(node_->toText(), L"{\"\u00e4\":\"\u20ac\"}");
}

TEST_F(JsonFile, NamesTheEncodingThatIsNotRead) {
  using namespace std::string_literals;
  const std::pair<std::string, const wchar_t*> cases[] = {
      {"\xFF\xFE{\0}\0"s, L"UTF-16, low byte first"},
      {"\xFE\xFF\0{\0}"s, L"UTF-16, high byte first"},
      {"{\0}\0"s, L"UTF-16, low byte first"},
      {"\0{\0}"s, L"UTF-16, high byte first"},
      {"\xFF\xFE"s, L"UTF-16, low byte first"},
      {"\xFF\xFE\0\0{\0\0\0"s, L"UTF-32"},
      {"\0\0\xFE\xFF\0\0\0{"s, L"UTF-32"},
  };
  for (const auto& [bytes, encoding] : cases) {
    EXPECT_FALSE(load(bytes));
    EXPECT_EQ(node_->getLoadError(), L"line 1, column 1: expected text in UTF-8, found " + WString(encoding) +
                                         L": save the file as UTF-8");
  }
}

TEST_F(JsonFile, DropsAByteOrderMark) {
  ASSERT_TRUE(load("\xEF\xBB\xBF{\"a\": 1}"));
  EXPECT_EQ(node_->toText(), L"{\"a\":1}");
  EXPECT_EQ(node_->position().column, 1u);
  EXPECT_FALSE(load("\xEF\xBB\xBF x"));
  EXPECT_EQ(node_->getLoadError(),
            L"line 1, column 2: expected a value, found `x`; text stands in double quotes");
}

TEST_F(JsonFile, CountsCarriageReturnLineFeedAsOneLineEnd) {
  ASSERT_TRUE(load("{\r\n\"a\":\r\n 1}\r\n"));
  EXPECT_EQ(node_->member(L"a")->position().line, 3u);
  EXPECT_EQ(node_->member(L"a")->position().column, 2u);
}

TEST_F(JsonFile, ReplacesInvalidUtf8) {
  ASSERT_TRUE(load("[\"a\xE2\x82z\", \"\xFF\", 1]"));
  EXPECT_EQ(node_->element(0)->asString(), L"a\uFFFDz");
  EXPECT_EQ(node_->element(1)->asString(), L"\uFFFD");
  EXPECT_EQ(node_->element(2)->position().column, 14u);
  EXPECT_FALSE(load("[\xFF]"));
  EXPECT_EQ(node_->getLoadError(), L"line 1, column 2: expected a value or `]`, found what is no UTF-8: is "
                                   L"the file saved in another encoding?");
}

TEST_F(JsonFile, RefusesAMissingFileAndAFolder) {
  EXPECT_FALSE(node_->loadFromFile(file_));
  EXPECT_EQ(node_->getLoadError(), L"no such file");
  EXPECT_FALSE(node_->loadFromFile(folder_.text()));
  EXPECT_EQ(node_->getLoadError(), L"this is a folder, not a file");
}

TEST_F(JsonFile, RefusesAFileOfOneGibibyteAtOnce) {
  EXPECT_FALSE(load(""));
  std::filesystem::resize_file(folder_.path() / "a.json", std::uintmax_t{1} << 30);
  const std::clock_t refused = test::processorTime([&] { EXPECT_FALSE(node_->loadFromFile(file_)); });
  EXPECT_EQ(node_->getLoadError(), L"the file is larger than 256 MiB");
  const std::string blanks(std::size_t{1} << 24, ' ');
  EXPECT_LT(refused, test::processorTime([&] { EXPECT_TRUE(load("[" + blanks + "]")); }));
}

}  // namespace
}  // namespace TolmSDK
