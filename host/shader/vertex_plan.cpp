#include "host/shader/vertex_plan.h"

#include "host/documents/document_reader.h"
#include "sfg/host/errors.h"
#include "tolmsdk/state_variables.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// A part of the mesh. Names begin as state variables do, so that no graph input has them.
struct MeshPart {
  const wchar_t* name;  ///< in the shader: "sfg_" and the part's own
  const TypeID& type;
  const wchar_t* semantic;
  const char* meaning;
  const char* space;
  bool MeshLayout::*isGiven;  ///< null: always
};

constexpr const char* kTangentMeaning =
    "tangent along the first texture coordinate; w is 1, or -1 where the texture lies mirrored";

const MeshPart kPosition{L"sfg_position", TypeID_fvec3, L"POSITION", "position", "object", nullptr};
const MeshPart kNormal{L"sfg_normal",           TypeID_fvec3, L"NORMAL",
                       "normal of the surface", "object",     &MeshLayout::normal};
const MeshPart kTangent{L"sfg_tangent",  TypeID_fvec4, L"TANGENT",
                        kTangentMeaning, "object",     &MeshLayout::tangent};
const MeshPart kTexCoord0{
    L"sfg_texCoord0",      TypeID_fvec2, L"TEXCOORD0", "texture coordinates, first set", "",
    &MeshLayout::texCoord0};
const MeshPart kTexCoord1{
    L"sfg_texCoord1",      TypeID_fvec2, L"TEXCOORD1", "texture coordinates, second set", "",
    &MeshLayout::texCoord1};
const MeshPart kTexCoord2{
    L"sfg_texCoord2",      TypeID_fvec2, L"TEXCOORD2", "texture coordinates, third set", "",
    &MeshLayout::texCoord2};
const MeshPart kTexCoord3{
    L"sfg_texCoord3",      TypeID_fvec2, L"TEXCOORD3", "texture coordinates, fourth set", "",
    &MeshLayout::texCoord3};
const MeshPart kColor{L"sfg_color", TypeID_fvec4, L"COLOR0", "colour", "", &MeshLayout::color};

/// In the order in which a vertex holds them.
const MeshPart* const kParts[] = {&kPosition,  &kNormal,    &kTangent,   &kTexCoord0,
                                  &kTexCoord1, &kTexCoord2, &kTexCoord3, &kColor};

/// How a varying state variable follows from the vertex.
struct Rule {
  const UString* variable;
  std::vector<const MeshPart*> parts;
  std::vector<const UString*> uniforms;
  const wchar_t* value;
  bool isDirection = false;  ///< made one long
};

/// Directions from eye to point are not made one long: so they stay exact between the vertices. A tangent
/// space is carried over as it lies in the object, which keeps its handedness under mirroring matrices.
const std::vector<Rule>& rules() {
  static const std::vector<Rule> kRules = {
      {&StateVariable_objectPosition, {&kPosition}, {}, L"sfg_in.sfg_position"},
      {&StateVariable_objectNormal, {&kNormal}, {}, L"sfg_in.sfg_normal", true},
      {&StateVariable_worldPosition,
       {&kPosition},
       {&StateVariable_matWorld},
       L"mul(sfg_matWorld, float4(sfg_in.sfg_position, 1.0)).xyz"},
      {&StateVariable_worldNormal,
       {&kNormal},
       {&StateVariable_matWorldInverseTranspose},
       L"mul((float3x3)sfg_matWorldInverseTranspose, sfg_in.sfg_normal)",
       true},
      {&StateVariable_worldTangent,
       {&kTangent},
       {&StateVariable_matWorld},
       L"mul((float3x3)sfg_matWorld, sfg_in.sfg_tangent.xyz)",
       true},
      {&StateVariable_worldBinormal,
       {&kNormal, &kTangent},
       {&StateVariable_matWorld},
       L"mul((float3x3)sfg_matWorld, cross(sfg_in.sfg_normal, sfg_in.sfg_tangent.xyz) * "
       L"sfg_in.sfg_tangent.w)",
       true},
      {&StateVariable_viewDirection,
       {&kPosition},
       {&StateVariable_matWorld, &StateVariable_eyePosition},
       L"mul(sfg_matWorld, float4(sfg_in.sfg_position, 1.0)).xyz - sfg_eyePosition"},
      {&StateVariable_texCoord0, {&kTexCoord0}, {}, L"sfg_in.sfg_texCoord0"},
      {&StateVariable_texCoord1, {&kTexCoord1}, {}, L"sfg_in.sfg_texCoord1"},
      {&StateVariable_texCoord2, {&kTexCoord2}, {}, L"sfg_in.sfg_texCoord2"},
      {&StateVariable_texCoord3, {&kTexCoord3}, {}, L"sfg_in.sfg_texCoord3"},
      {&StateVariable_vertexColor, {&kColor}, {}, L"sfg_in.sfg_color"},
      {&StateVariable_screenPosition,
       {&kPosition},
       {&StateVariable_matWorldViewProj},
       L"mul(sfg_matWorldViewProj, float4(sfg_in.sfg_position, 1.0))"},
  };
  return kRules;
}

const Rule* findRule(std::wstring_view variable) {
  for (const Rule& rule : rules()) {
    if (rule.variable->view() == variable) return &rule;
  }
  return nullptr;
}

std::wstring_view ownName(const MeshPart& part) { return std::wstring_view(part.name).substr(4); }

class VertexPlanner {
public:
  VertexPlanner(const ShaderPlan& pixel, const MeshLayout& mesh) : pixel_(pixel), mesh_(mesh) {
    plan_.functionName = pixel.functionName;
  }

  VertexPlan make() {
    bool hasPosition = false;
    for (const Varying& varying : pixel_.varyings) {
      if (varying.semantic == L"SV_IsFrontFace") continue;  // known of triangles only
      hasPosition = hasPosition || varying.semantic == L"SV_Position";
      addOutput(varying);
    }
    if (!hasPosition) {
      const UString& position = StateVariable_screenPosition;
      addOutput({TypeID_fvec4, position.str(), L"SV_Position", true, kNotFound});
    }
    addAttributes();
    addBuffers();
    return std::move(plan_);
  }

private:
  void addOutput(const Varying& varying) {
    if (!varying.isState) {
      plan_.outputs.push_back({varying, L"sfg_in." + varying.name});
      return;
    }
    const Rule* const rule = findRule(varying.name);
    if (rule == nullptr) {
      throw AssemblyError("the vertex stage has no rule for the state variable " + inTicks(varying.name));
    }
    for (const MeshPart* const part : rule->parts) {
      if (part->isGiven != nullptr && !(mesh_.*part->isGiven)) {
        throw AssemblyError("the state variable " + inTicks(varying.name) + " needs " +
                            inTicks(WString(ownName(*part))) +
                            " of the vertices, which the mesh does not have");
      }
      parts_.insert(part);
    }
    for (const UString* const uniform : rule->uniforms) uniforms_.insert(*uniform);
    plan_.outputs.push_back(
        {varying, rule->isDirection ? formatted(L"sfg_unit(%s)", rule->value) : rule->value});
    plan_.hasDirections = plan_.hasDirections || rule->isDirection;
  }

  void addAttributes() {
    for (const MeshPart* const part : kParts) {
      if (!parts_.contains(part)) continue;
      plan_.attributes.push_back(
          {part->type, part->name, part->semantic, WString(ownName(*part)), part->meaning, part->space});
    }
    for (const VertexOutput& output : plan_.outputs) {
      const Varying& varying = output.varying;
      if (!varying.isState) plan_.attributes.push_back({varying.type, varying.name, varying.semantic, {}});
    }
  }

  /// Behind the buffers of the pixel stage: both may be bound together.
  void addBuffers() {
    std::vector<BufferMember> members;
    for (const StateVariableInfo& info : allStateVariables()) {
      if (!uniforms_.contains(info.name)) continue;
      const ValueOrigin origin{ValueOrigin::Kind::stateVariable, WString(), WString(), info.name.str()};
      members.push_back({{info.type, info.type.toString(), info.name.str()}, origin, AValue()});
    }
    plan_.buffers = makeBuffers(L"sfg_VertexUniforms", std::move(members));
    for (ConstantBuffer& buffer : plan_.buffers) buffer.number = pixel_.buffers.size();
  }

  const ShaderPlan& pixel_;
  const MeshLayout& mesh_;
  Set<const MeshPart*> parts_;
  Set<UString> uniforms_;
  VertexPlan plan_;
};

}  // namespace

VertexPlan planVertexStage(const ShaderPlan& pixel, const MeshLayout& mesh) {
  return VertexPlanner(pixel, mesh).make();
}

}  // namespace TolmSDK::Graphics::sfg::host
