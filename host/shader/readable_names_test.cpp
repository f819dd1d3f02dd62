#include "host/shader/readable_names.h"

#include <gtest/gtest.h>

#include "host/shader/reserved_words.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

using Kind = ValueOrigin::Kind;

NamedUniform node(const WString& name, const WString& owner, const WString& input) {
  return {name, {Kind::node, owner, L"f", input}};
}

/// "old=new " in the order of the uniforms.
WString named(const std::vector<NamedUniform>& uniforms,
              const std::unordered_set<std::wstring_view>& taken = {}) {
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

/// Keywords of GLSL ES 3.00 and GLSL 3.30, those reserved for later, and the functions of both.
TEST(ReservedWords, AreThoseOfOldVersionsOfGlsl) {
  const std::wstring_view words =
      L"const uniform layout centroid flat smooth break continue do for while switch case default if "
      L"else in out inout float int void bool true false invariant discard return mat2 mat3 mat4 mat2x2 "
      L"mat2x3 mat2x4 mat3x2 mat3x3 mat3x4 mat4x2 mat4x3 mat4x4 vec2 vec3 vec4 ivec2 ivec3 ivec4 bvec2 "
      L"bvec3 bvec4 uint uvec2 uvec3 uvec4 lowp mediump highp precision sampler2D sampler3D samplerCube "
      L"sampler2DShadow samplerCubeShadow sampler2DArray sampler2DArrayShadow isampler2D isampler3D "
      L"isamplerCube isampler2DArray usampler2D usampler3D usamplerCube usampler2DArray struct attribute "
      L"varying coherent volatile restrict readonly writeonly resource atomic_uint noperspective patch "
      L"sample subroutine common partition active asm class union enum typedef template this goto inline "
      L"noinline public static extern external interface long short double half fixed unsigned superp "
      L"input output hvec2 hvec3 hvec4 dvec2 dvec3 dvec4 fvec2 fvec3 fvec4 sampler3DRect filter image1D "
      L"image2D image3D imageCube iimage1D iimage2D iimage3D iimageCube uimage1D uimage2D uimage3D "
      L"uimageCube image1DArray image2DArray iimage1DArray iimage2DArray uimage1DArray uimage2DArray "
      L"imageBuffer iimageBuffer uimageBuffer sampler1D sampler1DShadow sampler1DArray "
      L"sampler1DArrayShadow isampler1D isampler1DArray usampler1D usampler1DArray sampler2DRect "
      L"sampler2DRectShadow isampler2DRect usampler2DRect samplerBuffer isamplerBuffer usamplerBuffer "
      L"sampler2DMS isampler2DMS usampler2DMS sampler2DMSArray isampler2DMSArray usampler2DMSArray "
      L"sizeof cast namespace using image1DShadow image2DShadow image1DArrayShadow image2DArrayShadow "
      L"row_major samplerCubeArray samplerCubeArrayShadow isamplerCubeArray usamplerCubeArray "
      L"imageCubeArray iimageCubeArray uimageCubeArray image2DRect iimage2DRect uimage2DRect image2DMS "
      L"iimage2DMS uimage2DMS image2DMSArray iimage2DMSArray uimage2DMSArray dmat2 dmat3 dmat4 dmat2x2 "
      L"dmat2x3 dmat2x4 dmat3x2 dmat3x3 dmat3x4 dmat4x2 dmat4x3 dmat4x4 buffer shared precise"
      L" radians degrees sin cos tan asin acos atan sinh cosh tanh asinh acosh atanh pow exp log exp2 "
      L"log2 sqrt inversesqrt abs sign floor trunc round roundEven ceil fract mod modf min max clamp mix "
      L"step smoothstep isnan isinf floatBitsToInt floatBitsToUint intBitsToFloat uintBitsToFloat "
      L"packSnorm2x16 unpackSnorm2x16 packUnorm2x16 unpackUnorm2x16 packHalf2x16 unpackHalf2x16 length "
      L"distance dot cross normalize faceforward reflect refract matrixCompMult outerProduct transpose "
      L"determinant inverse lessThan lessThanEqual greaterThan greaterThanEqual equal notEqual any all "
      L"not textureSize texture textureProj textureLod textureOffset texelFetch texelFetchOffset "
      L"textureProjOffset textureLodOffset textureProjLod textureProjLodOffset textureGrad "
      L"textureGradOffset textureProjGrad textureProjGradOffset dFdx dFdy fwidth noise1 noise2 noise3 "
      L"noise4 ftransform EmitVertex EndPrimitive texture1D texture1DProj texture1DLod texture1DProjLod "
      L"texture2D texture2DProj texture2DLod texture2DProjLod texture3D texture3DProj texture3DLod "
      L"texture3DProjLod textureCube textureCubeLod shadow1D shadow2D shadow1DProj shadow2DProj "
      L"shadow1DLod shadow2DLod shadow1DProjLod shadow2DProjLod texture2DGradARB";
  std::size_t count = 0;
  for (std::size_t start = 0; start < words.size(); ++count) {
    const std::size_t end = std::min(words.find(L' ', start), words.size());
    EXPECT_TRUE(isReservedWord(words.substr(start, end - start)))
        << toUtf8(WString(words.substr(start, end - start)));
    start = end + 1;
  }
  EXPECT_EQ(count, 325u);
  for (const wchar_t* word : {L"webgl_x", L"_webgl_x"}) EXPECT_TRUE(isReservedWord(word));
  for (const wchar_t* word : {L"image", L"shadow", L"sampler2", L"image2", L"imageOffset", L"texture2",
                              L"shadow2", L"isampler", L"webgl", L"sampler2Dx", L"texelFetch2", L"uimage"}) {
    EXPECT_FALSE(isReservedWord(word)) << toUtf8(word);
  }
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
