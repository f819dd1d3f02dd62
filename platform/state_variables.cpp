#include "tolmsdk/state_variables.h"

#include <array>
#include <unordered_map>

#include "platform/never_destroyed.h"

namespace TolmSDK::Graphics {

namespace {

struct StateVariableRow {
  const wchar_t* name;
  TypeID type;
  StateVariableKind kind;
};

// The order of the constants.
constexpr StateVariableRow kStateVariables[] = {
    {L"sfg_matWorld", TypeID_fmat4, StateVariableKind::uniform},
    {L"sfg_matWorldInverse", TypeID_fmat4, StateVariableKind::uniform},
    {L"sfg_matWorldInverseTranspose", TypeID_fmat4, StateVariableKind::uniform},
    {L"sfg_matView", TypeID_fmat4, StateVariableKind::uniform},
    {L"sfg_matViewInverse", TypeID_fmat4, StateVariableKind::uniform},
    {L"sfg_matProj", TypeID_fmat4, StateVariableKind::uniform},
    {L"sfg_matProjInverse", TypeID_fmat4, StateVariableKind::uniform},
    {L"sfg_matWorldView", TypeID_fmat4, StateVariableKind::uniform},
    {L"sfg_matWorldViewProj", TypeID_fmat4, StateVariableKind::uniform},
    {L"sfg_matViewProj", TypeID_fmat4, StateVariableKind::uniform},
    {L"sfg_orthographic", TypeID_bool, StateVariableKind::uniform},
    {L"sfg_eyePosition", TypeID_fvec3, StateVariableKind::uniform},
    {L"sfg_time", TypeID_float, StateVariableKind::uniform},
    {L"sfg_viewportSize", TypeID_fvec2, StateVariableKind::uniform},
    {L"state.origin", TypeID_fvec3, StateVariableKind::metaSL},
    {L"state.position", TypeID_fvec3, StateVariableKind::metaSL},
    {L"state.direction", TypeID_fvec3, StateVariableKind::metaSL},
    {L"state.normal", TypeID_fvec3, StateVariableKind::metaSL},
    {L"state.geometry_normal", TypeID_fvec3, StateVariableKind::metaSL},
    {L"state.motion", TypeID_fvec3, StateVariableKind::metaSL},
    {L"state.tangent_u", TypeID_fvec3, StateVariableKind::metaSL},
    {L"state.tangent_v", TypeID_fvec3, StateVariableKind::metaSL},
    {L"state.texture_coordinate", TypeID_fvec3, StateVariableKind::metaSL},
    {L"state.vertex_color", TypeID_fvec4, StateVariableKind::metaSL},
    {L"state.ray_length", TypeID_float, StateVariableKind::metaSL},
    {L"state.ray_near", TypeID_float, StateVariableKind::metaSL},
    {L"state.ray_far", TypeID_float, StateVariableKind::metaSL},
    {L"sfg_objectPosition", TypeID_fvec3, StateVariableKind::varying},
    {L"sfg_objectNormal", TypeID_fvec3, StateVariableKind::varying},
    {L"sfg_worldPosition", TypeID_fvec3, StateVariableKind::varying},
    {L"sfg_worldNormal", TypeID_fvec3, StateVariableKind::varying},
    {L"sfg_worldTangent", TypeID_fvec3, StateVariableKind::varying},
    {L"sfg_worldBinormal", TypeID_fvec3, StateVariableKind::varying},
    {L"sfg_viewDirection", TypeID_fvec3, StateVariableKind::varying},
    {L"sfg_texCoord0", TypeID_fvec2, StateVariableKind::varying},
    {L"sfg_texCoord1", TypeID_fvec2, StateVariableKind::varying},
    {L"sfg_texCoord2", TypeID_fvec2, StateVariableKind::varying},
    {L"sfg_texCoord3", TypeID_fvec2, StateVariableKind::varying},
    {L"sfg_vertexColor", TypeID_fvec4, StateVariableKind::varying},
    {L"sfg_screenPosition", TypeID_fvec4, StateVariableKind::varying},
    {L"sfg_frontFacing", TypeID_bool, StateVariableKind::varying},
    {L"sfg_currentLight", TypeID_nil, StateVariableKind::currentLight},
};

/// Makes its own handles rather than using the constants below, so that it is complete during the static
/// initialisation of any module.
struct Table {
  Table() {
    for (std::size_t row = 0; row < entries.size(); ++row) {
      const StateVariableRow& from = kStateVariables[row];
      entries[row] = {UString(from.name), from.type, from.kind};
      byName.emplace(entries[row].name, &entries[row]);
    }
  }
  std::array<StateVariableInfo, std::size(kStateVariables)> entries;
  std::unordered_map<UString, const StateVariableInfo*> byName;
};

const Table& table() {
  static const NeverDestroyed<Table> instance;
  return instance.get();
}

bool isOfKind(const UString& name, StateVariableKind kind) {
  const StateVariableInfo* const info = findStateVariable(name);
  return info != nullptr && info->kind == kind;
}

}  // namespace

std::span<const StateVariableInfo> allStateVariables() { return table().entries; }

const StateVariableInfo* findStateVariable(const UString& name) {
  const auto& byName = table().byName;
  const auto found = byName.find(name);
  return found == byName.end() ? nullptr : found->second;
}

bool isStateVariable(const UString& name) { return findStateVariable(name) != nullptr; }

bool isStateVariableMsl(const UString& name) { return isOfKind(name, StateVariableKind::metaSL); }

bool isStateVariableUniform(const UString& name) { return isOfKind(name, StateVariableKind::uniform); }

const UString StateVariable_matWorld(L"sfg_matWorld");
const UString StateVariable_matWorldInverse(L"sfg_matWorldInverse");
const UString StateVariable_matWorldInverseTranspose(L"sfg_matWorldInverseTranspose");
const UString StateVariable_matView(L"sfg_matView");
const UString StateVariable_matViewInverse(L"sfg_matViewInverse");
const UString StateVariable_matProj(L"sfg_matProj");
const UString StateVariable_matProjInverse(L"sfg_matProjInverse");
const UString StateVariable_matWorldView(L"sfg_matWorldView");
const UString StateVariable_matWorldViewProj(L"sfg_matWorldViewProj");
const UString StateVariable_matViewProj(L"sfg_matViewProj");
const UString StateVariable_orthographic(L"sfg_orthographic");
const UString StateVariable_eyePosition(L"sfg_eyePosition");
const UString StateVariable_time(L"sfg_time");
const UString StateVariable_viewportSize(L"sfg_viewportSize");
const UString StateVariable_mslState_origin(L"state.origin");
const UString StateVariable_mslState_position(L"state.position");
const UString StateVariable_mslState_direction(L"state.direction");
const UString StateVariable_mslState_normal(L"state.normal");
const UString StateVariable_mslState_geometry_normal(L"state.geometry_normal");
const UString StateVariable_mslState_motion(L"state.motion");
const UString StateVariable_mslState_tangent_u(L"state.tangent_u");
const UString StateVariable_mslState_tangent_v(L"state.tangent_v");
const UString StateVariable_mslState_texture_coordinate(L"state.texture_coordinate");
const UString StateVariable_mslState_vertex_color(L"state.vertex_color");
const UString StateVariable_mslState_ray_length(L"state.ray_length");
const UString StateVariable_mslState_ray_near(L"state.ray_near");
const UString StateVariable_mslState_ray_far(L"state.ray_far");
const UString StateVariable_objectPosition(L"sfg_objectPosition");
const UString StateVariable_objectNormal(L"sfg_objectNormal");
const UString StateVariable_worldPosition(L"sfg_worldPosition");
const UString StateVariable_worldNormal(L"sfg_worldNormal");
const UString StateVariable_worldTangent(L"sfg_worldTangent");
const UString StateVariable_worldBinormal(L"sfg_worldBinormal");
const UString StateVariable_viewDirection(L"sfg_viewDirection");
const UString StateVariable_texCoord0(L"sfg_texCoord0");
const UString StateVariable_texCoord1(L"sfg_texCoord1");
const UString StateVariable_texCoord2(L"sfg_texCoord2");
const UString StateVariable_texCoord3(L"sfg_texCoord3");
const UString StateVariable_vertexColor(L"sfg_vertexColor");
const UString StateVariable_screenPosition(L"sfg_screenPosition");
const UString StateVariable_frontFacing(L"sfg_frontFacing");
const UString StateVariable_currentLight(L"sfg_currentLight");

}  // namespace TolmSDK::Graphics
