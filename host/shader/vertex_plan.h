#pragma once

// What a vertex stage is made of, as plain data.

#include "host/shader/shader_plan.h"

namespace TolmSDK::Graphics::sfg::host {

/// What a vertex has.
struct VertexAttribute {
  TypeID type;
  WString name;  ///< in the shader
  WString semantic;
  WString part;              ///< of the mesh: "position"; empty for a graph input
  const char* meaning = "";  ///< of a part of the mesh
  const char* space = "";
};

/// What the pixel stage reads of a point, and how it follows from the vertex.
struct VertexOutput {
  Varying varying;
  WString value;
};

struct VertexPlan {
  WString functionName;  ///< of the pixel stage
  std::vector<ConstantBuffer> buffers;
  std::vector<VertexAttribute> attributes;
  std::vector<VertexOutput> outputs;
  bool hasDirections = false;  ///< some output is a vector made one long
};

/// The stage that feeds this pixel stage: outputs in the order of its attributes, the position in clip space
/// among them. Throws AssemblyError for a state variable that the mesh does not give.
VertexPlan planVertexStage(const ShaderPlan& pixel, const MeshLayout& mesh);

}  // namespace TolmSDK::Graphics::sfg::host
