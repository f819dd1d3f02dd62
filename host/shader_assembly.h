#pragma once

// A complete shader from the result of a collapse.

#include <string>
#include <vector>

#include "host/job/collapse_job.h"
#include "sfg/host/errors.h"
#include "sfg/host/shader.h"
#include "sfg/shader.h"

namespace TolmSDK::Graphics::sfg::host {

/// What some lines of an assembled shader are.
struct ShaderSection {
  enum class Kind {
    declarations,  ///< of this host: state structure, buffers, textures, entry point
    include,       ///< text of the include file `name`
    symbol,        ///< the function, structure or variable `name` of the predefines
    function,      ///< the collapsed function
  };
  Kind kind = Kind::declarations;
  WString name;
  std::size_t firstLine = 0;  ///< counted from 1
  std::size_t lastLine = 0;
};

struct AssembledShader {
  AShader shader;
  /// In order of lines, without gaps.
  std::vector<ShaderSection> sections;
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
/// The job has run and has a result. Throws AssemblyError. The text is the same for the same result.
AssembledShader assembleShader(const CollapseJob& job, ShaderStage stage);

}  // namespace TolmSDK::Graphics::sfg::host
