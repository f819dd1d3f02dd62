#include "host/shader/state_meaning.h"

#include "tolmsdk/state_variables.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

struct Row {
  const UString* variable;
  StateMeaning meaning;
};

const Row kRows[] = {
    {&StateVariable_matWorld, {"object space to world space", ""}},
    {&StateVariable_matWorldInverse, {"world space to object space", ""}},
    {&StateVariable_matWorldInverseTranspose, {"normals from object space to world space", ""}},
    {&StateVariable_matView, {"world space to view space", ""}},
    {&StateVariable_matViewInverse, {"view space to world space", ""}},
    {&StateVariable_matProj, {"view space to clip space", ""}},
    {&StateVariable_matProjInverse, {"clip space to view space", ""}},
    {&StateVariable_matWorldView, {"object space to view space", ""}},
    {&StateVariable_matWorldViewProj, {"object space to clip space", ""}},
    {&StateVariable_matViewProj, {"world space to clip space", ""}},
    {&StateVariable_orthographic, {"whether the projection is parallel", ""}},
    {&StateVariable_eyePosition, {"position of the eye", "world"}},
    {&StateVariable_time, {"time in seconds", ""}},
    {&StateVariable_viewportSize, {"width and height of the viewport in pixels", ""}},
    {&StateVariable_objectPosition, {"position of the point", "object"}},
    {&StateVariable_objectNormal, {"normal of the surface", "object"}},
    {&StateVariable_worldPosition, {"position of the point", "world"}},
    {&StateVariable_worldNormal, {"normal of the surface", "world"}},
    {&StateVariable_worldTangent, {"tangent along the first texture coordinate", "world"}},
    {&StateVariable_worldBinormal, {"tangent along the second texture coordinate", "world"}},
    {&StateVariable_viewDirection, {"direction of view", "world"}},
    {&StateVariable_texCoord0, {"texture coordinates, first set", ""}},
    {&StateVariable_texCoord1, {"texture coordinates, second set", ""}},
    {&StateVariable_texCoord2, {"texture coordinates, third set", ""}},
    {&StateVariable_texCoord3, {"texture coordinates, fourth set", ""}},
    {&StateVariable_vertexColor, {"colour of the vertices", ""}},
    {&StateVariable_screenPosition, {"position in the render target in pixels, depth, and w", ""}},
    {&StateVariable_frontFacing, {"whether the front of the surface is seen", ""}},
};

}  // namespace

StateMeaning meaningOf(const UString& stateVariable) {
  for (const Row& row : kRows) {
    if (*row.variable == stateVariable) return row.meaning;
  }
  return {};
}

}  // namespace TolmSDK::Graphics::sfg::host
