#include "host/library/language_dx11.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

struct TypeCase {
  TypeID type;
  const wchar_t* name;
  const wchar_t* value;
};

const TypeCase kTypes[] = {
    {TypeID_nil, L"void", L""},
    {TypeID_bool, L"bool", L"false"},
    {TypeID_int, L"int", L"0"},
    {TypeID_ivec2, L"int2", L"int2(0, 0)"},
    {TypeID_ivec3, L"int3", L"int3(0, 0, 0)"},
    {TypeID_ivec4, L"int4", L"int4(0, 0, 0, 0)"},
    {TypeID_uint, L"uint", L"0"},
    {TypeID_uvec2, L"uint2", L"uint2(0, 0)"},
    {TypeID_uvec3, L"uint3", L"uint3(0, 0, 0)"},
    {TypeID_uvec4, L"uint4", L"uint4(0, 0, 0, 0)"},
    {TypeID_float, L"float", L"0.0"},
    {TypeID_fvec2, L"float2", L"float2(0.0, 0.0)"},
    {TypeID_fvec3, L"float3", L"float3(0.0, 0.0, 0.0)"},
    {TypeID_fvec4, L"float4", L"float4(0.0, 0.0, 0.0, 0.0)"},
    {TypeID_fmat2, L"float2x2", L"float2x2(0.0, 0.0, 0.0, 0.0)"},
    {TypeID_fmat3, L"float3x3", L"float3x3(0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0)"},
    {TypeID_fmat4, L"float4x4",
     L"float4x4(0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0)"},
    {TypeID_sampler1D, L"sfg_sampler1D", L""},
    {TypeID_sampler2D, L"sfg_sampler2D", L""},
    {TypeID_sampler3D, L"sfg_sampler3D", L""},
    {TypeID_samplerCube, L"sfg_samplerCube", L""},
    {TypeID_struct, L"struct", L""},
};

TEST(LanguageDx11Test, IsNamedDx11) {
  EXPECT_EQ(LanguageDx11(nullptr).getLanguageString(), UString(L"dx11"));
}

TEST(LanguageDx11Test, NamesTypesAndTheirDefaultValues) {
  const LanguageDx11 language(nullptr);
  for (const TypeCase& type : kTypes) {
    EXPECT_EQ(language.getTypeName(type.type), type.name);
    EXPECT_EQ(language.getValueText(AValue(type.type)), type.value) << type.value;
  }
}

TEST(LanguageDx11Test, FindsItsOwnTypesWithAndWithoutInout) {
  const LanguageDx11 language(nullptr);
  for (const TypeCase& type : kTypes) {
    const bool isOwn = type.type != TypeID_nil && type.type != TypeID_struct;
    const TypeID expected = isOwn ? type.type : TypeID_nil;
    EXPECT_EQ(language.getTypeID(type.name), expected);
    EXPECT_EQ(language.getTypeID(WString(L"inout ") + type.name), expected);
  }
}

TEST(LanguageDx11Test, AnyOtherTextIsAStructure) {
  const LanguageDx11 language(nullptr);
  for (const wchar_t* text :
       {L"", L"Surface", L"inout Surface", L"fvec3", L"Float3", L"inout  float", L"inoutfloat", L"float3 "}) {
    EXPECT_EQ(language.getTypeID(text), TypeID_nil);
  }
}

TEST(LanguageDx11Test, OnlyVaryingStateHasAParameter) {
  const LanguageDx11 language(nullptr);
  for (const StateVariableInfo& info : allStateVariables()) {
    const bool isVarying = info.kind == StateVariableKind::varying;
    EXPECT_EQ(language.getStateVariableParameterName(info.name), isVarying ? info.name.str() : WString());
    EXPECT_EQ(language.getStateVariableTypeName(info.name), isVarying ? info.type.toString() : WString());
  }
  EXPECT_EQ(language.getStateVariableTypeName(StateVariable_frontFacing), L"bool");
  EXPECT_EQ(language.getStateVariableParameterName(UString(L"sfg_unheardOf")), L"");
}

TEST(LanguageDx11Test, FindsFragmentsOfItsLibrary) {
  FragmentLibrary library;
  library.addFragment(L"glow", L"void glow(out float3 result)", L"result = 1;\n", nullptr, 0);
  const LanguageDx11 language(&library);
  EXPECT_EQ(language.findFragment(L"glow"), library.acquireFragment(L"glow"));
  EXPECT_EQ(language.findFragment(L"Glow"), nullptr);
  EXPECT_EQ(LanguageDx11(nullptr).findFragment(L"glow"), nullptr);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
