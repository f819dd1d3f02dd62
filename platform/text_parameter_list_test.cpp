#include "tolmsdk/text_parameter_list.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics {
namespace {

/// "type|name" of each input, ";" and the same of each output.
std::wstring contents(const ITextParameterList& list) {
  std::wstring out;
  for (std::size_t index = 0; index < list.getNumInputs(); ++index) {
    out.append(list.getInputType(index)).append(L"|").append(list.getInputName(index)).append(L" ");
  }
  out += L";";
  for (std::size_t index = 0; index < list.getNumOutputs(); ++index) {
    out.append(L" ").append(list.getOutputType(index)).append(L"|").append(list.getOutputName(index));
  }
  return out;
}

struct Case {
  std::wstring text;
  std::wstring contents;
};

// Every text is parsed in a buffer of exactly its size.
void expectParsed(const std::vector<Case>& cases) {
  for (const Case& c : cases) {
    ATextParameterList list;
    list.addInput(L"float", L"before");
    const std::vector<wchar_t> exact(c.text.begin(), c.text.end());
    EXPECT_TRUE(list.parseParameters(std::wstring_view(exact.data(), exact.size()))) << toUtf8(c.text);
    EXPECT_EQ(contents(list), c.contents) << toUtf8(c.text);
  }
}

void expectRefused(const std::vector<std::wstring>& texts) {
  for (const std::wstring& text : texts) {
    ATextParameterList list;
    list.addInput(L"float", L"before");
    const std::vector<wchar_t> exact(text.begin(), text.end());
    EXPECT_FALSE(list.parseParameters(std::wstring_view(exact.data(), exact.size()))) << toUtf8(text);
    EXPECT_EQ(contents(list), L";") << toUtf8(text);
  }
}

TEST(ParseParameters, BlankTextIsTheEmptyList) {
  expectParsed({{L"", L";"}, {L" \t\r\n", L";"}, {L"/* none */", L";"}, {L"// none", L";"}});
}

TEST(ParseParameters, SplitsAtCommas) {
  expectParsed({{L"float3 a", L"float3|a ;"},
                {L"float3 a,float b", L"float3|a float|b ;"},
                {L"\n    float3 a,\n    out float3 result", L"float3|a ; float3|result"},
                {L"out float a, float b, out float c, float d", L"float|b float|d ; float|a float|c"}});
}

TEST(ParseParameters, QualifiersDecideTheDirection) {
  expectParsed({{L"in float a", L"float|a ;"},
                {L"const float a", L"float|a ;"},
                {L"uniform float a", L"float|a ;"},
                {L"in const uniform float a", L"float|a ;"},
                {L"out float a", L"; float|a"},
                {L"const out float a", L"; float|a"},
                {L"inout float a", L"inout float|a ;"},
                {L"const inout State state", L"inout State|state ;"},
                {L"inout unsigned int a", L"inout unsigned int|a ;"},
                {L"in out float a", L"; float|a"},
                {L"inout out float a", L"inout float|a ;"}});
}

TEST(ParseParameters, QualifiersAreWholeWords) {
  expectParsed({{L"input a", L"input|a ;"}, {L"out_t a", L"out_t|a ;"}, {L"float inner", L"float|inner ;"}});
}

TEST(ParseParameters, JoinsTypeWordsWithABlank) {
  expectParsed({{L"unsigned int a", L"unsigned int|a ;"},
                {L"row_major\n\tfloat4x4  m", L"row_major float4x4|m ;"},
                {L"struct /* of light */ Light l", L"struct Light|l ;"}});
}

TEST(ParseParameters, CommasInTemplateArgumentsDoNotSplit) {
  expectParsed({{L"Texture2D<float4> t", L"Texture2D<float4>|t ;"},
                {L"vector<float, 3> v, float a", L"vector<float, 3>|v float|a ;"},
                {L"matrix<float,3,4>m", L"matrix<float,3,4>|m ;"},
                {L"Outer<Inner<a, b>, c> x, out float y", L"Outer<Inner<a, b>, c>|x ; float|y"},
                {L"Outer<Inner<a>> x", L"Outer<Inner<a>>|x ;"},
                {L"inout Stream<Vertex> s", L"inout Stream<Vertex>|s ;"}});
}

TEST(ParseParameters, SemanticsAreDropped) {
  expectParsed({{L"float2 uv : TEXCOORD0", L"float2|uv ;"},
                {L"float2 uv:TEXCOORD0, float a", L"float2|uv float|a ;"},
                {L"out float4 c : SV_Target , float b", L"float|b ; float4|c"},
                {L"sampler s : register(s0, space1), float b", L"sampler|s float|b ;"}});
}

TEST(ParseParameters, SkipsComments) {
  expectParsed({{L"float/**/a", L"float|a ;"},
                {L"float a, // the first, of two\n float b", L"float|a float|b ;"},
                {L"float a /* , float c */, float b", L"float|a float|b ;"},
                {L"float a // goes on \\\n float hidden\n, float b", L"float|a float|b ;"},
                {L"float a // goes on \\\r\n float hidden\r\n, float b", L"float|a float|b ;"},
                {L"float a // goes on \\\r\r\n float hidden\n, float b", L"float|a float|b ;"},
                {L"float a /* open", L"float|a ;"},
                {L"float a // end", L"float|a ;"},
                {L"vector</* of */float, 3> v", L"vector< float, 3>|v ;"}});
}

TEST(ParseParameters, RefusesAMissingTypeOrName) {
  expectRefused({L"a", L"float", L"in a", L"out a", L"const", L"float in", L"float3 out",
                 L"Texture2D<float4>", L"<float> a", L"float a,", L",float a", L"float a,,float b", L",",
                 L"void", L"float : TEXCOORD0"});
}

TEST(ParseParameters, RefusesArraysAndDefaults) {
  expectRefused({L"float a[3]", L"float[3] a", L"float a []", L"float a = 1", L"float a=1.0, float b",
                 L"float a : COLOR = 1", L"float a : COLOR[2]"});
}

TEST(ParseParameters, RefusesANameGivenTwice) {
  expectRefused({L"float a, float a", L"float a, out float3 a", L"float a, float b, inout float a"});
  expectParsed({{L"float a, float A", L"float|a float|A ;"}});
}

TEST(ParseParameters, RefusesWhatIsNoParameter) {
  expectRefused({L"float a)", L"(float a)", L"float a;", L"float* a", L"float &a", L"3 a", L"float 3a",
                 L"float a.b", L"float a<3>", L"float \u00e4", L"float a :", L"float a : : B",
                 L"float a : A B", L"Texture<float a", L"T<float>> a", L"T<f(x)> a",
                 L"sampler s : register(s0", L"float a / b", L"vector<float>"});
}

TEST(ParseParameters, ParsesItsOwnText) {
  ATextParameterList list;
  list.addInput(L"float", L"unused");
  list.addOutput(L"float a, out float b", L"x");
  EXPECT_TRUE(list.parseParameters(list.getOutputType(0)));
  EXPECT_EQ(contents(list), L"float|a ; float|b");
}

TEST(ParseParameters, TakesManyParameters) {
  std::wstring text;
  for (int index = 0; index < 20000; ++index)
    text += (index == 0 ? L"float p" : L", float p") + std::to_wstring(index);
  ATextParameterList list;
  EXPECT_TRUE(list.parseParameters(text));
  EXPECT_EQ(list.getNumInputs(), 20000u);
}

std::wstring written(const ITextParameterList& list, std::wstring_view prefix, bool declaration) {
  WString out = L"(";
  list.writeParameters(out, prefix, declaration);
  return std::wstring(out);
}

TEST(WriteParameters, DeclaresInputsThenOutputs) {
  ATextParameterList list;
  list.addOutput(L"float3", L"result");
  list.addInput(L"float3", L"a");
  list.addInput(L"inout State", L"state");
  EXPECT_EQ(written(list, L"    ", true), L"(\n    float3 a,\n    inout State state,\n    out float3 result");
}

TEST(WriteParameters, CallsWithNamesAlone) {
  ATextParameterList list;
  list.addInput(L"float3", L"result_n0_01");
  list.addOutput(L"float3", L"result_n1_01");
  EXPECT_EQ(written(list, L"        ", false), L"(\n        result_n0_01,\n        result_n1_01");
}

TEST(WriteParameters, LeavesOutAnEmptyType) {
  ATextParameterList list;
  list.addInput(L"", L"a");
  list.addOutput(L"", L"b");
  EXPECT_EQ(written(list, L"", true), L"(\na,\nout b");
}

TEST(WriteParameters, EmptyListWritesNothing) {
  EXPECT_EQ(written(ATextParameterList(), L"    ", true), L"(");
  EXPECT_EQ(written(ATextParameterList(), L"    ", false), L"(");
}

TEST(WriteParameters, WritesOneItemWithoutAComma) {
  ATextParameterList list;
  list.addOutput(L"float", L"x");
  EXPECT_EQ(written(list, L"\t", true), L"(\n\tout float x");
  EXPECT_EQ(written(list, L"\t", false), L"(\n\tx");
}

TEST(TextParameterList, CopiesHaveTheirOwnCount) {
  const RefPtr<ATextParameterList> list = makeRef<ATextParameterList>();
  EXPECT_TRUE(list->parseParameters(L"float a, out float b"));
  const RefPtr<ATextParameterList> copy = makeRef<ATextParameterList>(*list);
  const RefPtr<ATextParameterList> fromInterface =
      makeRef<ATextParameterList>(static_cast<const ITextParameterList&>(*list));
  list->clear();
  EXPECT_EQ(contents(*list), L";");
  EXPECT_EQ(contents(*copy), L"float|a ; float|b");
  EXPECT_EQ(contents(*fromInterface), L"float|a ; float|b");
  *list = *copy;
  EXPECT_EQ(contents(*list), L"float|a ; float|b");
  EXPECT_EQ(list->referenceCount(), 1u);
  EXPECT_EQ(copy->referenceCount(), 1u);
}

}  // namespace
}  // namespace TolmSDK::Graphics
