#include "host/shader/readable_names.h"

#include <gtest/gtest.h>

#include "host/shader/reserved_words.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

using Kind = ValueOrigin::Kind;

NamedUniform node(const WString& name, const WString& owner, const WString& input) {
  return {name, {Kind::node, owner, L"f", input}};
}

/// "old=new " in the order of the uniforms.
WString named(const std::vector<NamedUniform>& uniforms, const Set<std::wstring_view>& taken = {}) {
  const auto names = readableNames(uniforms, taken);
  WString text;
  for (const NamedUniform& uniform : uniforms) {
    const auto found = names.find(uniform.name);
    if (found != names.end()) text += uniform.name + L"=" + found->second + L" ";
  }
  return text;
}

TEST(ReadableNames, AreMadeOfNodeAndInput) {
  EXPECT_EQ(named({node(L"mortarn2", L"bricks", L"mortar")}), L"mortarn2=bricks_mortar ");
}

TEST(ReadableNames, AreIdentifiers) {
  EXPECT_EQ(
      named({node(L"a", L"my node", L"x.y"), node(L"b", L"3d", L"\u00fc"), node(L"c", L"_a__b_", L"_c")}),
      L"a=my_node_x_y b=n3d c=a_b_c ");
}

TEST(ReadableNames, AreUnique) {
  EXPECT_EQ(named({node(L"a", L"x_y", L"z"), node(L"b", L"x", L"y_z"), node(L"c", L"x", L"y.z")}),
            L"a=x_y_z b=x_y_z_2 c=x_y_z_3 ");
  EXPECT_EQ(named({node(L"a", L"x", L"y")}, {L"x_y", L"x_y_2"}), L"a=x_y_3 ");
}

TEST(ReadableNames, OfNodesComeBeforeThoseOfLights) {
  const NamedUniform light = {L"l", {Kind::light, L"sun", L"f", L"color"}};
  EXPECT_EQ(named({light, node(L"n", L"sun", L"color")}), L"l=sun_color_2 n=sun_color ");
}

TEST(ReadableNames, AreNoReservedWords) {
  EXPECT_EQ(named({node(L"a", L"row", L"major"), node(L"b", L"sfg", L"x"), node(L"c", L"gl", L"y")}),
            L"a=row_major_2 b=n_sfg_x_2 c=n_gl_y_2 ");
  const NamedUniform graph = {L"sample", {Kind::graphUniform, L"", L"", L"sample"}};
  EXPECT_EQ(named({graph}), L"sample=sample_2 ");
}

TEST(ReadableNames, LeaveTheGraphsOwnAndTheUnknown) {
  EXPECT_EQ(named({{L"fog", {Kind::graphUniform, L"", L"", L"fog"}}, {L"odd", {}}}), L"");
}

TEST(ReadableNames, ReplaceWholeIdentifiersOutsideComments) {
  const WString text = L"a = b.a + ab; // a\n/* a */ a1 a";
  EXPECT_EQ(withNames(text, {{L"a", L"long_name"}}),
            L"long_name = b.long_name + ab; // a\n/* a */ a1 long_name");
  EXPECT_EQ(withNames(L"", {{L"a", L"b"}}), L"");
}

TEST(ReservedWords, AreThoseOfEveryLanguage) {
  for (const wchar_t* word :
       {L"sample", L"kernel", L"cbuffer", L"highp", L"float3x3", L"half4", L"int16_t2", L"row_major", L"gl_x",
        L"sfg_x", L"a__b", L"_a", L"sampler_x", L"static_cast"}) {
    EXPECT_TRUE(isReservedWord(word)) << WString(word).size();
  }
  for (const wchar_t* word : {L"mortar", L"samples", L"float5", L"a_b", L"interior", L"x2"}) {
    EXPECT_FALSE(isReservedWord(word)) << WString(word).size();
  }
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
