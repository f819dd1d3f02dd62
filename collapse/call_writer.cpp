#include "collapse/call_writer.h"

#include <string_view>
#include <unordered_map>
#include <utility>

#include "profiles/shader_temporaries.h"
#include "sfg/shader_collapse_context.h"
#include "sfg/shader_fragment_graph.h"
#include "sfg/size_limit.h"

namespace TolmSDK::Graphics::sfg {

namespace {

/// Holds a shader-function call open.
class ShaderCallScope {
public:
  explicit ShaderCallScope(FragmentProfileInstance& instance) : instance_(instance) {
    instance_.beginShaderFunctionCall();
  }
  ~ShaderCallScope() { instance_.endShaderFunctionCall(); }
  ShaderCallScope(const ShaderCallScope&) = delete;
  ShaderCallScope& operator=(const ShaderCallScope&) = delete;

private:
  FragmentProfileInstance& instance_;
};

/// Whether a function takes as many values as there are inputs. An inline expression says so itself.
bool fitsParameters(const FragmentProfileInstance& instance, std::size_t values) {
  if (instance.isInlineProfile()) return true;
  const ITextParameterList* parameters = instance.getProfile()->getFunctionParameters();
  return parameters == nullptr || parameters->getNumInputs() == values;
}

/// Whether every value belongs to an output of the function.
bool fitsOutputs(const FragmentProfileInstance& instance, const Array<WString>& values) {
  if (instance.isInlineProfile()) return true;
  for (std::size_t i = instance.getNumOutputs(); i < values.size(); ++i) {
    if (!values[i].empty()) return false;
  }
  return true;
}

std::size_t totalLength(const Array<WString>& texts) {
  std::size_t length = 0;
  for (const WString& text : texts) length += text.size();
  return length;
}

/// The type of the value that an input receives: of the port when a fragment feeds it, of the graph input
/// that feeds it; empty for an input that nothing feeds.
const WString& inputValueType(const IShaderFragment& fragment, const ILanguageTraits* language,
                              std::size_t input) {
  static const WString none;
  const ShaderFragmentConnection& connection = fragment.getInputConnections()[input];
  if (connection.fragment != nullptr) {
    const bool hasPort = input < fragment.getNumInputs() && fragment.getInput(input) != nullptr;
    return hasPort ? fragment.getInputType(language, input) : none;
  }
  const IShaderFragmentGraph* graph = fragment.getOwnerGraph();
  const bool hasGraphInput = graph != nullptr && connection.index < graph->getNumInputs() &&
                             graph->getInput(connection.index) != nullptr;
  return hasGraphInput ? graph->getInputType(language, connection.index) : none;
}

}  // namespace

bool CallWriter::declareOutputs(FragmentInstance& instance) {
  return instance.getActiveProfileInstance()->declareOutputs(body());
}

bool CallWriter::declareOutputs(FragmentInstance& instance, Array<WString>& values) {
  FragmentProfileInstance& active = *instance.getActiveProfileInstance();
  return fitsOutputs(active, values) && active.declareUnspecifiedOutputs(body(), values);
}

// Input values.

bool CallWriter::writeOutputOf(WString& value, const FragmentInstance& source, std::size_t output) {
  return source.appendActiveProfileOutput(value, output);
}

bool CallWriter::writeCalledInput(WString& value, const FragmentInstance& instance, std::size_t input) {
  if (instance.findInputValue(input) == nullptr) return false;
  instance.createLateInputUniform(context_, input);
  value = *instance.findInputValue(input);
  return true;
}

bool CallWriter::writeOpenInput(WString& value, const FragmentInstance& instance, std::size_t input) {
  const IShaderFragment& fragment = *instance.getShaderFragment();
  const std::size_t graphInput = fragment.getInputConnections()[input].index;
  const IShaderFragmentGraph* graph = graphInput != kNotFound ? fragment.getOwnerGraph() : nullptr;
  if (graph != nullptr && graphInput < graph->getNumInputs()) {
    if (graph->getInput(graphInput) == nullptr) return false;
    value = graph->getInputName(graphInput);
    return true;
  }
  const WString* own = instance.findInputValue(input);
  if (own != nullptr) value = *own;
  return own != nullptr;
}

// Calls.

bool CallWriter::write(FragmentInstance& instance, const Array<WString>& inputs) {
  FragmentProfileInstance& active = *instance.getActiveProfileInstance();
  if (!writeDefinition(instance, active, inputs.size())) return false;
  // The names of the outputs are no values for an inline expression, which replaces them while it is written.
  if (active.isInlineProfile()) return writeCall(active, inputs, active.getOutputNames());

  // A writer may evaluate something else in between.
  Array<WString> names = std::move(outputNames_);
  names.resize(active.getNumOutputs());
  for (std::size_t i = 0; i < names.size(); ++i) {
    names[i].clear();
    active.appendOutputName(names[i], i);
  }
  const bool done = writeCall(active, inputs, names);
  outputNames_ = std::move(names);
  return done;
}

bool CallWriter::write(FragmentInstance& instance, const Array<WString>& inputs,
                       const Array<WString>& outputs) {
  FragmentProfileInstance& active = *instance.getActiveProfileInstance();
  return writeDefinition(instance, active, inputs.size()) && writeCall(active, inputs, outputs);
}

bool CallWriter::writeCall(FragmentProfileInstance& active, const Array<WString>& inputs,
                           const Array<WString>& outputs) {
  WString& out = body();
  // An expression checks its own length.
  if (!active.isInlineProfile()) checkTextLength(out.size() + totalLength(inputs));
  if (!active.writeFunctionCall(out, context_, inputs, outputs)) return false;
  checkTextLength(body().size());
  return true;
}

bool CallWriter::writeDefinition(FragmentInstance& instance, FragmentProfileInstance& active,
                                 std::size_t inputs) {
  return fitsParameters(active, inputs) && instance.writeRequirements(context_) &&
         active.writeDefinition(context_);
}

// Shader functions.

bool CallWriter::writeShaderFunction(FragmentInstance& instance, Array<WString>& inputs,
                                     const ShaderUses& uses) {
  FragmentProfileInstance& active = *instance.getActiveProfileInstance();
  if (!writeDefinition(instance, active, inputs.size())) return false;
  allocateShaderInputs(instance, inputs);
  writeShaderCalls(active, inputs, uses);
  return true;
}

/// Hands every input value that has a type over to the shader function through the state.
void CallWriter::allocateShaderInputs(const FragmentInstance& instance, Array<WString>& inputs) {
  const ILanguageTraits* language = instance.getActiveProfileInstance()->getLanguage();
  for (std::size_t i = 0; i < inputs.size(); ++i) {
    const WString& type = inputValueType(*instance.getShaderFragment(), language, i);
    if (type.empty()) continue;
    WString name = formatted(L"state.shaderInput%Iu", context_.getShaderInputTypes().size());
    context_.allocateNewShaderInput(type);
    context_.writeCodef(L"    %s = %s;\n", name, inputs[i]);
    inputs[i] = std::move(name);
  }
}

void CallWriter::writeShaderCalls(FragmentProfileInstance& active, const Array<WString>& inputs,
                                  const ShaderUses& uses) {
  const Array<WString> outputs = active.getOutputNames();
  const ShaderCallScope scope(active);
  // Uses of one text are replaced by the last call: set once, however many there are.
  struct Replacement {
    std::wstring_view use;
    ShaderCallText call;
  };
  Array<Replacement> replacements;
  std::unordered_map<std::wstring_view, std::size_t> placeOf;
  for (const BuiltinFunction& use : uses.calls) {
    ShaderCallText call;
    if (!writeShaderCall(call, active, inputs, outputs, use)) continue;
    const auto [known, isNew] = placeOf.emplace(use.range.view(), replacements.size());
    if (isNew) replacements.push_back({use.range.view(), {}});
    replacements[known->second].call = std::move(call);
  }
  for (Replacement& replacement : replacements) {
    const WString use(replacement.use);
    if (uses.caller != nullptr)
      uses.caller->replaceShaderUse(use, std::move(replacement.call));
    else
      uses.pattern->overrideReplacePattern(use, replacement.call.text);
  }
}

/// One call of the shader function: pairs of parameter name and value replace input values and output
/// variables.
bool CallWriter::writeShaderCall(ShaderCallText& out, FragmentProfileInstance& active, Array<WString> inputs,
                                 Array<WString> outputs, const BuiltinFunction& use) {
  if (use.arguments.size() == 1) return false;
  Array<bool> isGiven(outputs.size(), false);
  for (std::size_t i = 1; i + 1 < use.arguments.size(); i += 2) {
    const WString name(use.arguments[i].view());
    const WString value(use.arguments[i + 1].view());
    const std::size_t input = active.GetInputTextParameterIndex(name);
    const std::size_t output = active.GetOutputTextParameterIndex(name);
    if (input < inputs.size()) {
      inputs[input] = value;
    } else if (input == kNotFound && output < outputs.size()) {
      outputs[output] = value;
      isGiven[output] = true;
    } else {
      return false;
    }
  }

  // Outputs that the caller does not ask for still need a variable.
  for (std::size_t i = 0; i < outputs.size(); ++i) {
    if (isGiven[i]) continue;
    outputs[i] += L"_temp";
    out.declare(active.getOutputType(i), outputs[i]);
  }
  checkTextLength(out.text.size() + totalLength(inputs) + totalLength(outputs));
  return active.writeFunctionCall(out.text, context_, inputs, outputs);
}

WString& CallWriter::body() const { return context_.getResultProfile()->getFunctionBody(); }

}  // namespace TolmSDK::Graphics::sfg
