#include "host/documents/type_names.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

#include "host/documents/near_name.h"
#include "tolmsdk/type_id.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// What other languages and people call them.
constexpr std::pair<std::string_view, std::string_view> kForeign[] = {{"vec2", "float2"},
                                                                      {"vec3", "float3"},
                                                                      {"vec4", "float4"},
                                                                      {"mat2", "float2x2"},
                                                                      {"mat3", "float3x3"},
                                                                      {"mat4", "float4x4"},
                                                                      {"half", "float"},
                                                                      {"half2", "float2"},
                                                                      {"half3", "float3"},
                                                                      {"half4", "float4"},
                                                                      {"double", "float"},
                                                                      {"double2", "float2"},
                                                                      {"double3", "float3"},
                                                                      {"double4", "float4"},
                                                                      {"real", "float"},
                                                                      {"number", "float"},
                                                                      {"scalar", "float"},
                                                                      {"color", "float3"},
                                                                      {"colour", "float3"},
                                                                      {"color3", "float3"},
                                                                      {"color4", "float4"},
                                                                      {"rgb", "float3"},
                                                                      {"rgba", "float4"},
                                                                      {"vector", "float3"},
                                                                      {"vector2", "float2"},
                                                                      {"vector3", "float3"},
                                                                      {"vector4", "float4"},
                                                                      {"point", "float3"},
                                                                      {"normal", "float3"},
                                                                      {"matrix", "float4x4"},
                                                                      {"bvec2", "int2"},
                                                                      {"integer", "int"},
                                                                      {"unsigned", "uint"},
                                                                      {"boolean", "bool"},
                                                                      {"texture", "sampler2D"},
                                                                      {"texture2D", "sampler2D"},
                                                                      {"Texture2D", "sampler2D"},
                                                                      {"image", "sampler2D"},
                                                                      {"sampler", "sampler2D"},
                                                                      {"texture3D", "sampler3D"},
                                                                      {"Texture3D", "sampler3D"},
                                                                      {"textureCube", "samplerCube"},
                                                                      {"TextureCube", "samplerCube"}};

/// As "dx11" writes them, samplers and structures as documents do.
const std::vector<std::string>& knownTypeNames() {
  static const std::vector<std::string> names = [] {
    std::vector<std::string> made;
    for (const TypeID& type : allTypes()) {
      made.push_back(toUtf8(isSamplerType(type) ? ITypeTraits::getTypeName(type) : type.toString()));
    }
    return made;
  }();
  return names;
}

}  // namespace

std::string_view meantType(std::string_view name) {
  const auto* const foreign = std::find_if(std::begin(kForeign), std::end(kForeign),
                                           [&](const auto& known) { return known.first == name; });
  if (foreign != std::end(kForeign)) return foreign->second;
  return nearestName(name, knownTypeNames());
}

std::string typeHint(std::string_view name) {
  const std::string_view meant = meantType(name);
  std::string hint = didYouMean(meant);
  hint += meant.empty() ? "; types are " : " Types are ";
  for (const std::string& type : knownTypeNames()) {
    hint.append(&type == &knownTypeNames().front() ? "`" : ", `").append(type).append("`");
  }
  return hint;
}

}  // namespace TolmSDK::Graphics::sfg::host
