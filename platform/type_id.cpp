#include "tolmsdk/type_id.h"

#include <algorithm>

#include "platform/never_destroyed.h"

namespace TolmSDK::Graphics {

namespace {

struct TypeRow {
  TypeID type;
  const wchar_t* traitsName;
  const wchar_t* shaderName;
};

// The order of the constants.
constexpr TypeRow kTypes[] = {
    {TypeID_nil, L"nil", L"void"},
    {TypeID_bool, L"bool", L"bool"},
    {TypeID_int, L"int", L"int"},
    {TypeID_ivec2, L"ivec2", L"int2"},
    {TypeID_ivec3, L"ivec3", L"int3"},
    {TypeID_ivec4, L"ivec4", L"int4"},
    {TypeID_uint, L"uint", L"uint"},
    {TypeID_uvec2, L"uvec2", L"uint2"},
    {TypeID_uvec3, L"uvec3", L"uint3"},
    {TypeID_uvec4, L"uvec4", L"uint4"},
    {TypeID_float, L"float", L"float"},
    {TypeID_fvec2, L"fvec2", L"float2"},
    {TypeID_fvec3, L"fvec3", L"float3"},
    {TypeID_fvec4, L"fvec4", L"float4"},
    {TypeID_fmat2, L"fmat2", L"float2x2"},
    {TypeID_fmat3, L"fmat3", L"float3x3"},
    {TypeID_fmat4, L"fmat4", L"float4x4"},
    {TypeID_sampler1D, L"sampler1D", L"sfg_sampler1D"},
    {TypeID_sampler2D, L"sampler2D", L"sfg_sampler2D"},
    {TypeID_sampler3D, L"sampler3D", L"sfg_sampler3D"},
    {TypeID_samplerCube, L"samplerCube", L"sfg_samplerCube"},
    {TypeID_struct, L"struct", L"struct"},
};
constexpr std::size_t kTypeCount = std::size(kTypes);

// One row more than types: the empty names of an unknown identity.
struct NameTable {
  NameTable() {
    for (std::size_t row = 0; row < kTypeCount; ++row) {
      traitsNames[row] = kTypes[row].traitsName;
      shaderNames[row] = kTypes[row].shaderName;
    }
  }
  std::array<WString, kTypeCount + 1> traitsNames;
  std::array<WString, kTypeCount + 1> shaderNames;
};

const NameTable& names() {
  static const NeverDestroyed<NameTable> table;
  return table.get();
}

std::size_t rowOf(const TypeID& type) {
  const auto* const found = std::find_if(std::begin(kTypes), std::end(kTypes),
                                         [&](const TypeRow& row) { return row.type == type; });
  return static_cast<std::size_t>(found - std::begin(kTypes));
}

constexpr auto kAllTypes = [] {
  std::array<TypeID, kTypeCount - 1> types{};
  for (std::size_t index = 0; index < types.size(); ++index) types[index] = kTypes[index + 1].type;
  return types;
}();

}  // namespace

const WString& TypeID::toString() const { return names().shaderNames[rowOf(*this)]; }

std::span<const TypeID> allTypes() noexcept { return kAllTypes; }

const WString& ITypeTraits::getTypeName(const TypeID& type) { return names().traitsNames[rowOf(type)]; }

TypeID ITypeTraits::findType(std::wstring_view name) {
  const auto* const found = std::find_if(std::begin(kTypes), std::end(kTypes), [&](const TypeRow& row) {
    return name == row.traitsName || name == row.shaderName;
  });
  return found == std::end(kTypes) ? TypeID_nil : found->type;
}

}  // namespace TolmSDK::Graphics
