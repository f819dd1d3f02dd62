#pragma once

// State variables: shading state that fragment code names without having it as a parameter.

#include <span>
#include <string_view>

#include "tolmsdk/export.h"
#include "tolmsdk/type_id.h"
#include "tolmsdk/types.h"
#include "tolmsdk/ustring.h"

namespace TolmSDK::Graphics {

/// How a state variable reaches the code: as a uniform; as a member of the one `inout State state`; as an
/// `inout` parameter of its own; or resolved by the light loop.
enum class StateVariableKind { uniform, metaSL, varying, currentLight };

struct StateVariableInfo {
  UString name;
  TypeID type;  ///< nil for the current light, whose type is the light profile's name
  StateVariableKind kind;
};

/// All state variables, in the order of the constants below.
TOLMSDK_API std::span<const StateVariableInfo> allStateVariables();
/// The entry of exactly that name, or null.
TOLMSDK_API const StateVariableInfo* findStateVariable(const UString& name);

TOLMSDK_API bool isStateVariable(const UString& name);
TOLMSDK_API bool isStateVariableMsl(const UString& name);
TOLMSDK_API bool isStateVariableUniform(const UString& name);

// Uniforms: sfg_matWorld and so on.
TOLMSDK_API extern const UString StateVariable_matWorld;
TOLMSDK_API extern const UString StateVariable_matWorldInverse;
TOLMSDK_API extern const UString StateVariable_matWorldInverseTranspose;
TOLMSDK_API extern const UString StateVariable_matView;
TOLMSDK_API extern const UString StateVariable_matViewInverse;
TOLMSDK_API extern const UString StateVariable_matProj;
TOLMSDK_API extern const UString StateVariable_matProjInverse;
TOLMSDK_API extern const UString StateVariable_matWorldView;
TOLMSDK_API extern const UString StateVariable_matWorldViewProj;
TOLMSDK_API extern const UString StateVariable_matViewProj;
TOLMSDK_API extern const UString StateVariable_orthographic;
TOLMSDK_API extern const UString StateVariable_eyePosition;
TOLMSDK_API extern const UString StateVariable_time;
TOLMSDK_API extern const UString StateVariable_viewportSize;
// MetaSL state: state.origin and so on.
TOLMSDK_API extern const UString StateVariable_mslState_origin;
TOLMSDK_API extern const UString StateVariable_mslState_position;
TOLMSDK_API extern const UString StateVariable_mslState_direction;
TOLMSDK_API extern const UString StateVariable_mslState_normal;
TOLMSDK_API extern const UString StateVariable_mslState_geometry_normal;
TOLMSDK_API extern const UString StateVariable_mslState_motion;
TOLMSDK_API extern const UString StateVariable_mslState_tangent_u;
TOLMSDK_API extern const UString StateVariable_mslState_tangent_v;
TOLMSDK_API extern const UString StateVariable_mslState_texture_coordinate;
TOLMSDK_API extern const UString StateVariable_mslState_vertex_color;
TOLMSDK_API extern const UString StateVariable_mslState_ray_length;
TOLMSDK_API extern const UString StateVariable_mslState_ray_near;
TOLMSDK_API extern const UString StateVariable_mslState_ray_far;
// Varying state: sfg_objectPosition and so on.
TOLMSDK_API extern const UString StateVariable_objectPosition;
TOLMSDK_API extern const UString StateVariable_objectNormal;
TOLMSDK_API extern const UString StateVariable_worldPosition;
TOLMSDK_API extern const UString StateVariable_worldNormal;
TOLMSDK_API extern const UString StateVariable_worldTangent;
TOLMSDK_API extern const UString StateVariable_worldBinormal;
TOLMSDK_API extern const UString StateVariable_viewDirection;
TOLMSDK_API extern const UString StateVariable_texCoord0;
TOLMSDK_API extern const UString StateVariable_texCoord1;
TOLMSDK_API extern const UString StateVariable_texCoord2;
TOLMSDK_API extern const UString StateVariable_texCoord3;
TOLMSDK_API extern const UString StateVariable_vertexColor;
TOLMSDK_API extern const UString StateVariable_screenPosition;
TOLMSDK_API extern const UString StateVariable_frontFacing;
TOLMSDK_API extern const UString StateVariable_currentLight;

}  // namespace TolmSDK::Graphics
