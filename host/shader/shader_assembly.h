#pragma once

// A complete shader from the result of a collapse.

#include <optional>
#include <string>
#include <vector>

#include "host/job/collapse_job.h"
#include "host/shader/shader_text.h"
#include "sfg/host/reflect.h"
#include "sfg/host/shader.h"
#include "sfg/shader.h"

namespace TolmSDK::Graphics::sfg::host {

struct AssembledShader {
  AShader shader;
  /// In order of lines, without gaps.
  std::vector<ShaderSection> sections;
  /// What it takes and gives, as its HLSL text has it, without a hash: see reflectShader().
  ShaderInterface reflection;
  /// The names that uniforms have in the result, by those they have here, where these differ.
  Map<WString, WString> generatedNames;
  /// Name of the entry point: "main", or "sfg_main" where the collapsed function has that name.
  std::string entryPoint;
  /// Include files that are named, but in no include folder.
  Array<WString> missingIncludes;
};

/// Assembles, in this order: include files; the structure of the MetaSL state; structures of the predefines
/// that uniforms are declared with; constant buffers (`sfg_Uniforms` with default values as initial values,
/// `sfg_StateUniforms`, `sfg_GraphInputs`); textures with their samplers; predefines; graph inputs of a light
/// loop as static variables; the function; the entry point.
///
/// A pixel stage takes varying state and graph inputs as attributes and writes each graph output to a target
/// of its own, matrices row by row. A compute stage reads element i of the buffer `sfg_inputs` and writes
/// element i of `sfg_outputs` for each invocation i below the latter's length; SFG_COMPUTE is defined. Graph
/// inputs that cannot vary (matrices, structures) are in a constant buffer, those of sampler type are
/// textures.
///
/// A vertex stage holds nothing of this: it computes the attributes of the pixel stage from the vertices of a
/// mesh and the buffer `sfg_VertexUniforms`.
///
/// The job has run and has a result. Throws AssemblyError. The text is the same for the same result.
AssembledShader assembleShader(const CollapseJob& job, ShaderStage stage,
                               NameStyle names = NameStyle::generated, const MeshLayout& mesh = {});

/// What an assembled shader takes and gives in a target, or as its HLSL text has it, with a hash but without
/// files.
ShaderInterface reflectShader(const AssembledShader& assembled,
                              std::optional<ShaderTarget> target = std::nullopt,
                              const CompileOptions& options = {});

}  // namespace TolmSDK::Graphics::sfg::host
