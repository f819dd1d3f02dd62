#pragma once

// What a complete shader is made of, as plain data: printing it needs to know nothing else.

#include <vector>

#include "host/job/collapse_job.h"
#include "host/shader/buffer_layout.h"
#include "host/shader/predefine_parts.h"
#include "host/shader/readable_names.h"
#include "host/shader/shader_stage.h"

namespace TolmSDK::Graphics::sfg::host {

/// A value that varies: an attribute of a pixel stage, a member of the input elements of a compute stage.
struct Varying {
  TypeID type;
  WString name;
  WString semantic;
  bool isState = false;              ///< a state variable, not a graph input
  std::size_t location = kNotFound;  ///< of the attribute; none for the stage's own values, "SV_.."
};

/// A graph input that the function reads, and how it enters the shader.
struct UsedInput {
  enum class Way { varying, buffer, texture };
  Port port;
  Way way = Way::varying;
  WString variable;  ///< of the buffer or texture
};

/// A texture and its sampler, which have the same number.
struct TexturePair {
  TypeID type;
  WString texture;
  WString sampler;
  std::size_t number = 0;
  ValueOrigin origin;
};

struct IncludedText {
  WString name;
  WString text;
};

/// A local of the entry point, which the function takes as a parameter.
struct CustomVariable {
  WString typeText;
  WString name;
  WString value;  ///< empty for a type without values
};

struct StateStructure {
  bool isDeclared = false;
  bool isPassed = false;  ///< the function has the parameter `inout State state`
  Array<WString> shaderInputTypes;
};

struct FunctionParameters {
  RefPtr<ATextParameterList> list;  ///< inputs, state variables, outputs: as in every definition
  std::size_t firstState = 0;       ///< among the inputs
  std::size_t firstCustom = 0;
};

struct ShaderPlan {
  ShaderStage stage = ShaderStage::pixel;
  WString functionName;
  WString entryPoint;
  WString body;
  std::vector<IncludedText> includes;
  Array<WString> missingIncludes;  ///< named, but in no include folder

  WString predefines;
  Array<WString> stateStructures;    ///< of the predefines: those that the state holds
  Array<WString> uniformStructures;  ///< and those that buffers hold

  StateStructure state;
  std::vector<ConstantBuffer> buffers;
  std::vector<TexturePair> textures;
  std::vector<Varying> varyings;
  std::vector<UsedInput> graphInputs;
  bool inputsAreVariables = false;  ///< graph inputs are variables around the function, not its parameters
  FunctionParameters parameters;
  std::vector<CustomVariable> customVariables;
  std::vector<Port> outputs;

  Array<WString> uniformNames;
  Map<WString, WString> generatedNames;  ///< of uniforms, by the names they have here where these differ
  Set<UString> stateVariables;           ///< that the function names
};

/// The job has run and has a result. Throws AssemblyError.
ShaderPlan planShader(const CollapseJob& job, ShaderStage stage, NameStyle names);

/// The name of an output's row: the output's own unless it is a matrix.
WString rowName(const Port& output, std::size_t row);

}  // namespace TolmSDK::Graphics::sfg::host
