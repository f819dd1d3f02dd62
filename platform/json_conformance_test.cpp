// Every kind of text that JSON readers are known to get wrong: the malformed are refused at a place, the
// others read.

#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <string_view>

#include "tolmsdk/object_data_node.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK {
namespace {

using namespace std::literals;

constexpr std::string_view kMalformed[] = {
    // Arrays.
    "[1 true]"sv, "[a\xE5]"sv, R"(["": 1])"sv, R"([""],)"sv, "[,1]"sv, "[1,,2]"sv, R"(["x",,])"sv,
    R"(["x"]])"sv, R"(["",])"sv, R"(["x")"sv, "[x"sv, "[3[4]]"sv, "[\xFF]"sv, "[1:2]"sv, "[,]"sv, "[-]"sv,
    R"([   , ""])"sv, "[\"a\",\n4\n,1,"sv, "[1,]"sv, "[1,,]"sv, "[\"\va\"\\f]"sv, "[*]"sv, R"([""")"sv,
    "[1,"sv, "[1,\n1\n,1"sv, "[{}"sv,
    // Words.
    "[fals]"sv, "[nul]"sv, "[tru]"sv, "[True]"sv, "[undefined]"sv, "[NULL]"sv, "nulll"sv, "truefalse"sv,
    // Numbers.
    "123\0"sv, "[++1234]"sv, "[+1]"sv, "[+Inf]"sv, "[-01]"sv, "[-1.0.]"sv, "[-2.]"sv, "[-NaN]"sv, "[.-1]"sv,
    "[.2e-3]"sv, "[0.1.2]"sv, "[0.3e+]"sv, "[0.3e]"sv, "[0.e1]"sv, "[0E+]"sv, "[0E]"sv, "[0e+]"sv, "[0e]"sv,
    "[1.0e+]"sv, "[1.0e-]"sv, "[1.0e]"sv, "[1 000.0]"sv, "[1eE2]"sv, "[2.e+3]"sv, "[2.e-3]"sv, "[2.e3]"sv,
    "[9.e+]"sv, "[Inf]"sv, "[NaN]"sv, "[\xEF\xBC\x91]"sv, "[1+2]"sv, "[0x1]"sv, "[0x42]"sv, "[Infinity]"sv,
    "[0e+-1]"sv, "[-123.123foo]"sv, "[123\xE5]"sv, "[1e1\xE5]"sv, "[0\xE5]"sv, "[-Infinity]"sv, "[-foo]"sv,
    "[- 1]"sv, "[-012]"sv, "[-.123]"sv, "[-1x]"sv, "[1ea]"sv, "[1e\xE5]"sv, "[1.]"sv, "[.123]"sv,
    "[1.2a-3]"sv, "[1.8011670033376514H-308]"sv, "[012]"sv, "[1_000]"sv,
    "[0.4e00669999999999999999999999999999999]"sv, "[-1e+9999]"sv, "[1,5"sv, "[00]"sv,
    // Objects.
    R"({"x", truth})"sv, R"({[: "x"})"sv, R"({"x", null})"sv, R"({"x"::"b"})"sv,
    "{\xF0\x9F\x87\xA8\xF0\x9F\x87\xAD}"sv, R"({"a":"a" 123})"sv, "{key: 'value'}"sv, "{\"\xB9\":\"0\",}"sv,
    R"({"a" b})"sv, R"({:"b"})"sv, R"({"a" "b"})"sv, R"({"a":)"sv, R"({"a")"sv, "{1:1}"sv, "{9999E9999:1}"sv,
    "{null:null,null:null}"sv, R"({"id":0,,,,,})"sv, "{'a':0}"sv, R"({"id":0,})"sv, R"({"a":"b"}/**/)"sv,
    R"({"a":"b"}/**//)"sv, R"({"a":"b"}//)"sv, R"({"a":"b"}/)"sv, R"({"a":"b",,"c":"d"})"sv, R"({a: "b"})"sv,
    R"({"a":"a)"sv, R"({ "foo" : "bar", "a" })"sv, R"({"a":"b"}#)"sv, R"({"a"=1})"sv, R"({"a":1;"b":2})"sv,
    R"({"a":})"sv,
    // Texts.
    R"(["\uD800\"])"sv, R"(["\uD800\u"])"sv, R"(["\uD800\u1"])"sv, R"(["\uD800\u1x"])"sv, "[\xC3\xA9]"sv,
    "[\"\\\0\"]"sv, R"(["\x00"])"sv, R"(["\\\"])"sv, "[\"\\\t\"]"sv, "[\"\\\xF0\x9F\x8C\x80\"]"sv,
    R"(["\"])"sv, R"(["\u00A"])"sv, R"(["\uD834\uDd"])"sv, R"(["\uD800\uD800\x"])"sv, "[\"\\u\xE5\"]"sv,
    R"(["\a"])"sv, R"(["\uqqqq"])"sv, "[\"\\\xE5\"]"sv, R"([\u0020"asd"])"sv, R"([\n])"sv, "\""sv,
    "['single quote']"sv, "abc"sv, R"(["\)"sv, "[\"a\0a\"]"sv, "[\"new\nline\"]"sv, "[\"\t\"]"sv,
    R"("\UA66D")"sv, R"(""x)"sv, R"(["\'"])"sv,
    // The whole.
    "[\xE2\x81\xA0]"sv, "<.>"sv, "[<null>]"sv, "[1]x"sv, "[1]]"sv, R"(["asd])"sv, "a\xC3\xA5"sv, "1]"sv,
    R"({"x": true,)"sv, "[][]"sv, "]"sv, "\xEF\xBB{}"sv, "\xE5"sv, "["sv, ""sv, " "sv, "[\0]"sv, "2@"sv,
    "{}}"sv, R"({"":)"sv, R"({"a":/*comment*/"b"})"sv, R"({"a": true} "x")"sv, "['"sv, "[,"sv, "[{"sv,
    R"(["a)"sv, R"(["a")"sv, "{"sv, "{]"sv, "{,"sv, "{["sv, R"({"a)"sv, "{'a'"sv, R"(["\{["\{["\{["\{)"sv,
    "\xE9"sv, "*"sv, R"({"a":"b"}#{})"sv, R"([\u000A""])"sv, "[1"sv, "[ false, nul"sv, "[ true, fals"sv,
    "[ false, tru"sv, R"({"asd":"asd")"sv, "\xC3\xA5"sv, "[\x0C]"sv, "[\xC2\xA0]"sv, "// only a comment"sv,
    "{} {}"sv, "1 2"sv, "\xEF\xBB\xBF"sv, "\xEF\xBB\xBF\xEF\xBB\xBF{}"sv};

constexpr std::string_view kWellFormed[] = {
    "[[]   ]"sv, R"([""])"sv, "[]"sv, R"(["a"])"sv, "[false]"sv, R"([null, 1, "1", {}])"sv, "[null]"sv,
    "[1\n]"sv, " [1]"sv, "[1,null,null,null,2]"sv, "[2] "sv, "[123e65]"sv, "[0e+1]"sv, "[0e1]"sv, "[ 4]"sv,
    "[-0.000000000000000000000000000000000000000000000000000000000000000000000000000001]"sv, "[20e1]"sv,
    "[-0]"sv, "[-123]"sv, "[1E22]"sv, "[1E-2]"sv, "[1E+2]"sv, "[123.456e78]"sv, "[123.456789]"sv, "[0.0]"sv,
    "[-0.0e-0]"sv, R"({"asd":"sdf", "dfg":"fgh"})"sv, R"({"a":"b","a":"c"})"sv, R"({"a":"b","a":"b"})"sv,
    "{}"sv, R"({"":0})"sv, R"({"foo\u0000bar": 42})"sv, R"({ "min": -1.0e+28, "max": 1.0e+28 })"sv,
    R"({"a":[]})"sv, "{\n\"a\": \"b\"\n}"sv, "{\r\n\t\"a\": \"b\"\r\n}"sv,
    R"({"title":"\u041f\u043e\u043b"})"sv, R"(["\u0060\u012a\u12AB"])"sv, R"(["\uD801\udc37"])"sv,
    R"(["\ud83d\ude39\ud83d\udc8d"])"sv, R"(["\"\\\/\b\f\n\r\t"])"sv, R"(["\\u0000"])"sv, R"(["\""])"sv,
    R"(["a/*b*/c/*d//e"])"sv, R"(["\\a"])"sv, R"(["\\n"])"sv, R"(["\u0012"])"sv, R"(["\uFFFF"])"sv,
    R"([ "asd"])"sv, "[\"\xF4\x8F\xBF\xBF\"]"sv, "[\"\xEF\xBF\xBF\"]"sv, R"(["\u0000"])"sv, R"(["\u002c"])"sv,
    "[\"\xCF\x80\"]"sv, "\" \""sv, R"(["\uD834\uDd1e"])"sv, R"(["\u0821"])"sv, R"(["\u0123"])"sv,
    "[\"\xE2\x80\xA8\"]"sv, "[\"\xE2\x80\xA9\"]"sv, R"("\u0061\u30af\u30EA\u30b9")"sv,
    R"(["new\u00A0line"])"sv, R"(["\uDBFF\uDFFE"])"sv, R"(["\u200B"])"sv, R"(["\u2064"])"sv,
    R"(["\uFDD0"])"sv, R"(["\uFFFE"])"sv, R"(["\u0022"])"sv, "[\"a\x7F\"]"sv, "false"sv, "42"sv, "-0.1"sv,
    "null"sv, "\"asd\""sv, "true"sv, "\"\""sv, "[\"a\"]\n"sv, "[true]"sv, " [] "sv,
    // Numbers of many digits; what is no UTF-8 reads as U+FFFD.
    "[123123e-10000000]"sv, "[100000000000000000000]"sv, "[\"\xE0\xFF\"]"sv,
    "[\"\xFC\x83\xBF\xBF\xBF\xBF\"]"sv, "[\"\xC0\xAF\"]"sv, "[\"\xED\xA0\x80\"]"sv, "[\"\x81\"]"sv};

TEST(JsonConformance, MalformedTextsAreRefusedAtAPlace) {
  const std::regex place("line [1-9][0-9]*, column [1-9][0-9]*: .+");
  for (const std::string_view text : kMalformed) {
    const RefPtr<IObjectDataNode> node = createJsonNode();
    EXPECT_FALSE(node->loadFromText(fromUtf8(text))) << text;
    EXPECT_TRUE(std::regex_match(toUtf8(node->getLoadError()), place))
        << text << ": " << toUtf8(node->getLoadError());
  }
}

TEST(JsonConformance, WellFormedTextsAreReadAndWritten) {
  for (const std::string_view text : kWellFormed) {
    const RefPtr<IObjectDataNode> node = createJsonNode();
    ASSERT_TRUE(node->loadFromText(fromUtf8(text))) << text << ": " << toUtf8(node->getLoadError());
    const WString written(node->toText());
    const RefPtr<IObjectDataNode> again = createJsonNode();
    ASSERT_TRUE(again->loadFromText(written)) << text << ": " << toUtf8(written);
    EXPECT_EQ(again->toText(), written) << text;
  }
}

TEST(JsonConformance, UnfinishedNestingIsRefused) {
  for (const std::string_view part : {"["sv, "[{\"\":"sv, "{\"a\":"sv}) {
    std::string text;
    for (int i = 0; i < 100'000; ++i) text += part;
    const RefPtr<IObjectDataNode> node = createJsonNode();
    EXPECT_FALSE(node->loadFromText(fromUtf8(text))) << part;
    EXPECT_NE(toUtf8(node->getLoadError()).find("expected at most 256 levels"), std::string::npos);
  }
}

}  // namespace
}  // namespace TolmSDK
