#include "tolmsdk/state_variables.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics {
namespace {

// Asked before main, as the static initialisation of another library would.
const bool kKnownBeforeMain = isStateVariable(UString(L"sfg_matWorld"));

struct Row {
  const UString& constant;
  const wchar_t* name;
  TypeID type;
  StateVariableKind kind;
};

constexpr auto kUniform = StateVariableKind::uniform;
constexpr auto kMetaSL = StateVariableKind::metaSL;
constexpr auto kVarying = StateVariableKind::varying;

const Row kRows[] = {
    {StateVariable_matWorld, L"sfg_matWorld", TypeID_fmat4, kUniform},
    {StateVariable_matWorldInverse, L"sfg_matWorldInverse", TypeID_fmat4, kUniform},
    {StateVariable_matWorldInverseTranspose, L"sfg_matWorldInverseTranspose", TypeID_fmat4, kUniform},
    {StateVariable_matView, L"sfg_matView", TypeID_fmat4, kUniform},
    {StateVariable_matViewInverse, L"sfg_matViewInverse", TypeID_fmat4, kUniform},
    {StateVariable_matProj, L"sfg_matProj", TypeID_fmat4, kUniform},
    {StateVariable_matProjInverse, L"sfg_matProjInverse", TypeID_fmat4, kUniform},
    {StateVariable_matWorldView, L"sfg_matWorldView", TypeID_fmat4, kUniform},
    {StateVariable_matWorldViewProj, L"sfg_matWorldViewProj", TypeID_fmat4, kUniform},
    {StateVariable_matViewProj, L"sfg_matViewProj", TypeID_fmat4, kUniform},
    {StateVariable_orthographic, L"sfg_orthographic", TypeID_bool, kUniform},
    {StateVariable_eyePosition, L"sfg_eyePosition", TypeID_fvec3, kUniform},
    {StateVariable_time, L"sfg_time", TypeID_float, kUniform},
    {StateVariable_viewportSize, L"sfg_viewportSize", TypeID_fvec2, kUniform},
    {StateVariable_mslState_origin, L"state.origin", TypeID_fvec3, kMetaSL},
    {StateVariable_mslState_position, L"state.position", TypeID_fvec3, kMetaSL},
    {StateVariable_mslState_direction, L"state.direction", TypeID_fvec3, kMetaSL},
    {StateVariable_mslState_normal, L"state.normal", TypeID_fvec3, kMetaSL},
    {StateVariable_mslState_geometry_normal, L"state.geometry_normal", TypeID_fvec3, kMetaSL},
    {StateVariable_mslState_motion, L"state.motion", TypeID_fvec3, kMetaSL},
    {StateVariable_mslState_tangent_u, L"state.tangent_u", TypeID_fvec3, kMetaSL},
    {StateVariable_mslState_tangent_v, L"state.tangent_v", TypeID_fvec3, kMetaSL},
    {StateVariable_mslState_texture_coordinate, L"state.texture_coordinate", TypeID_fvec3, kMetaSL},
    {StateVariable_mslState_vertex_color, L"state.vertex_color", TypeID_fvec4, kMetaSL},
    {StateVariable_mslState_ray_length, L"state.ray_length", TypeID_float, kMetaSL},
    {StateVariable_mslState_ray_near, L"state.ray_near", TypeID_float, kMetaSL},
    {StateVariable_mslState_ray_far, L"state.ray_far", TypeID_float, kMetaSL},
    {StateVariable_objectPosition, L"sfg_objectPosition", TypeID_fvec3, kVarying},
    {StateVariable_objectNormal, L"sfg_objectNormal", TypeID_fvec3, kVarying},
    {StateVariable_worldPosition, L"sfg_worldPosition", TypeID_fvec3, kVarying},
    {StateVariable_worldNormal, L"sfg_worldNormal", TypeID_fvec3, kVarying},
    {StateVariable_worldTangent, L"sfg_worldTangent", TypeID_fvec3, kVarying},
    {StateVariable_worldBinormal, L"sfg_worldBinormal", TypeID_fvec3, kVarying},
    {StateVariable_viewDirection, L"sfg_viewDirection", TypeID_fvec3, kVarying},
    {StateVariable_texCoord0, L"sfg_texCoord0", TypeID_fvec2, kVarying},
    {StateVariable_texCoord1, L"sfg_texCoord1", TypeID_fvec2, kVarying},
    {StateVariable_texCoord2, L"sfg_texCoord2", TypeID_fvec2, kVarying},
    {StateVariable_texCoord3, L"sfg_texCoord3", TypeID_fvec2, kVarying},
    {StateVariable_vertexColor, L"sfg_vertexColor", TypeID_fvec4, kVarying},
    {StateVariable_screenPosition, L"sfg_screenPosition", TypeID_fvec4, kVarying},
    {StateVariable_frontFacing, L"sfg_frontFacing", TypeID_bool, kVarying},
    {StateVariable_currentLight, L"sfg_currentLight", TypeID_nil, StateVariableKind::currentLight},
};

TEST(StateVariables, EveryOneHasItsNameTypeAndKind) {
  for (const Row& row : kRows) {
    EXPECT_EQ(row.constant.str(), row.name);
    const StateVariableInfo* const info = findStateVariable(UString(row.name));
    ASSERT_NE(info, nullptr) << toUtf8(row.name);
    EXPECT_EQ(info->name, row.constant);
    EXPECT_EQ(info->type, row.type) << toUtf8(row.name);
    EXPECT_EQ(info->kind, row.kind) << toUtf8(row.name);
  }
}

TEST(StateVariables, TestsAgreeWithTheKind) {
  for (const Row& row : kRows) {
    EXPECT_TRUE(isStateVariable(row.constant));
    EXPECT_EQ(isStateVariableMsl(row.constant), row.kind == kMetaSL) << toUtf8(row.name);
    EXPECT_EQ(isStateVariableUniform(row.constant), row.kind == kUniform) << toUtf8(row.name);
  }
}

TEST(StateVariables, NoOtherNameIsOne) {
  for (const wchar_t* const name :
       {L"", L"matWorld", L"sfg_", L"sfg_matworld", L"sfg_matWorld ", L"sfg_texCoord4", L"state", L"state.",
        L"state.currentLight", L"normal", L"sfg_isConnected"}) {
    EXPECT_FALSE(isStateVariable(UString(name))) << toUtf8(name);
    EXPECT_FALSE(isStateVariableMsl(UString(name)));
    EXPECT_FALSE(isStateVariableUniform(UString(name)));
    EXPECT_EQ(findStateVariable(UString(name)), nullptr);
  }
}

TEST(StateVariables, AllAreListedInOrder) {
  const auto all = allStateVariables();
  ASSERT_EQ(all.size(), std::size(kRows));
  for (std::size_t index = 0; index < all.size(); ++index)
    EXPECT_EQ(all[index].name.str(), kRows[index].name);
}

TEST(StateVariables, AreKnownBeforeMain) { EXPECT_TRUE(kKnownBeforeMain); }

}  // namespace
}  // namespace TolmSDK::Graphics
