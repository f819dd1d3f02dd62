#include "tolmsdk/type_id.h"

#include <gtest/gtest.h>

#include <set>

#include "tolmsdk/unicode.h"
#include "tolmsdk/value.h"

namespace TolmSDK::Graphics {
namespace {

struct TypeRow {
  TypeID type;
  const wchar_t* traitsName;
  const wchar_t* shaderName;
  const wchar_t* defaultText;
  std::size_t components;
};

const TypeRow kTypeRows[] = {
    {TypeID_nil, L"nil", L"void", L"", 0},
    {TypeID_bool, L"bool", L"bool", L"false", 1},
    {TypeID_int, L"int", L"int", L"0", 1},
    {TypeID_ivec2, L"ivec2", L"int2", L"int2(0, 0)", 2},
    {TypeID_ivec3, L"ivec3", L"int3", L"int3(0, 0, 0)", 3},
    {TypeID_ivec4, L"ivec4", L"int4", L"int4(0, 0, 0, 0)", 4},
    {TypeID_uint, L"uint", L"uint", L"0", 1},
    {TypeID_uvec2, L"uvec2", L"uint2", L"uint2(0, 0)", 2},
    {TypeID_uvec3, L"uvec3", L"uint3", L"uint3(0, 0, 0)", 3},
    {TypeID_uvec4, L"uvec4", L"uint4", L"uint4(0, 0, 0, 0)", 4},
    {TypeID_float, L"float", L"float", L"0.0", 1},
    {TypeID_fvec2, L"fvec2", L"float2", L"float2(0.0, 0.0)", 2},
    {TypeID_fvec3, L"fvec3", L"float3", L"float3(0.0, 0.0, 0.0)", 3},
    {TypeID_fvec4, L"fvec4", L"float4", L"float4(0.0, 0.0, 0.0, 0.0)", 4},
    {TypeID_fmat2, L"fmat2", L"float2x2", L"float2x2(0.0, 0.0, 0.0, 0.0)", 4},
    {TypeID_fmat3, L"fmat3", L"float3x3", L"float3x3(0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0)", 9},
    {TypeID_fmat4, L"fmat4", L"float4x4",
     L"float4x4(0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0)", 16},
    {TypeID_sampler1D, L"sampler1D", L"sfg_sampler1D", L"", 0},
    {TypeID_sampler2D, L"sampler2D", L"sfg_sampler2D", L"", 0},
    {TypeID_sampler3D, L"sampler3D", L"sfg_sampler3D", L"", 0},
    {TypeID_samplerCube, L"samplerCube", L"sfg_samplerCube", L"", 0},
    {TypeID_struct, L"struct", L"struct", L"", 0},
};

TEST(TypeID, EveryTypeHasItsNamesComponentsAndDefault) {
  for (const TypeRow& row : kTypeRows) {
    EXPECT_EQ(ITypeTraits::getTypeName(row.type), row.traitsName);
    EXPECT_EQ(row.type.toString(), row.shaderName);
    EXPECT_EQ(toShaderText(AValue(row.type)), row.defaultText);
    EXPECT_EQ(componentCount(row.type), row.components) << toUtf8(row.traitsName);
  }
}

TEST(TypeID, EitherNameFindsTheType) {
  for (const TypeRow& row : kTypeRows) {
    EXPECT_EQ(ITypeTraits::findType(row.traitsName), row.type) << toUtf8(row.traitsName);
    EXPECT_EQ(ITypeTraits::findType(row.shaderName), row.type) << toUtf8(row.shaderName);
  }
  for (const wchar_t* const text :
       {L"", L"Float", L"float5", L"float ", L" float", L"inout float", L"Surface"}) {
    EXPECT_EQ(ITypeTraits::findType(text), TypeID_nil) << toUtf8(text);
  }
}

TEST(TypeID, AllTypesAreTheTableWithoutNilInOrder) {
  const auto types = allTypes();
  ASSERT_EQ(types.size() + 1, std::size(kTypeRows));
  for (std::size_t index = 0; index < types.size(); ++index)
    EXPECT_EQ(types[index], kTypeRows[index + 1].type);
}

TEST(TypeID, TypesAreDistinctAndOrderedByTheirWords) {
  std::set<TypeID> types;
  for (const TypeRow& row : kTypeRows) types.insert(row.type);
  EXPECT_EQ(types.size(), std::size(kTypeRows));
  EXPECT_LT(TypeID(1, 9, 9, 9), TypeID(2, 0, 0, 0));
  EXPECT_LT(TypeID(1, 1, 0, 9), TypeID(1, 1, 1, 0));
  EXPECT_LT(TypeID(1, 1, 1, 0), TypeID(1, 1, 1, 1));
  EXPECT_EQ(TypeID(), TypeID_nil);
  EXPECT_EQ(TypeID(4, 3, 1, 0), TypeID_fvec3);
}

TEST(TypeID, CompatibleMeansEqual) {
  for (const TypeRow& from : kTypeRows) {
    for (const TypeRow& to : kTypeRows) EXPECT_EQ(TypeID::isCompatibleType(from.type, to.type), &from == &to);
  }
}

TEST(TypeID, UnknownIdentityHasNoNameAndNoComponents) {
  for (const TypeID& type :
       {TypeID(9, 1, 1, 0), TypeID(4, 1, 1, 1), TypeID(1, 2, 1, 0), TypeID(2, 2, 2, 0), TypeID(4, 3, 2, 0),
        TypeID(4, 5, 1, 0), TypeID(4, 0, 1, 0), TypeID(4, 1, 0, 0), TypeID(4, 0x10000, 0x10000, 0)}) {
    EXPECT_EQ(type.toString(), L"");
    EXPECT_EQ(ITypeTraits::getTypeName(type), L"");
    EXPECT_EQ(componentCount(type), 0u);
    EXPECT_EQ(toShaderText(AValue(type)), L"");
  }
}

TEST(TypeID, SamplersAreTheSamplerTypes) {
  for (const TypeRow& row : kTypeRows) {
    EXPECT_EQ(isSamplerType(row.type), std::wstring_view(row.traitsName).starts_with(L"sampler"));
  }
}

}  // namespace
}  // namespace TolmSDK::Graphics
