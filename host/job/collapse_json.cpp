#include "host/job/collapse_json.h"

#include <nlohmann/json.hpp>

#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// Members in the order in which they are added; numbers are 32-bit floats, written in their shortest form.
using Json = nlohmann::basic_json<nlohmann::ordered_map, std::vector, std::string, bool, std::int64_t,
                                  std::uint64_t, float>;

Json textJson(const WString& text) { return toUtf8(text); }
Json textJson(const UString& text) { return toUtf8(text.view()); }

template <class Texts>
Json textsJson(const Texts& texts) {
  Json array = Json::array();
  for (const auto& text : texts) array.push_back(textJson(text));
  return array;
}

Json functionJson(const IShaderFragmentProfile& profile) {
  const ITextParameterList& list = *profile.getFunctionParameters();
  Json inputs = Json::array();
  Json outputs = Json::array();
  for (std::size_t i = 0; i < list.getNumInputs(); ++i) {
    inputs.push_back({{"type", textJson(list.getInputType(i))}, {"name", textJson(list.getInputName(i))}});
  }
  for (std::size_t i = 0; i < list.getNumOutputs(); ++i) {
    outputs.push_back({{"type", textJson(list.getOutputType(i))}, {"name", textJson(list.getOutputName(i))}});
  }
  return {{"name", textJson(profile.getFunctionName())},
          {"inputs", inputs},
          {"outputs", outputs},
          {"body", textJson(profile.getFunctionBody())}};
}

Json parameterJson(const AParameter& parameter) {
  const TypeID& type = parameter.getType();
  return {
      {"type", textJson(type == TypeID_struct ? parameter.getStructName() : ITypeTraits::getTypeName(type))},
      {"name", textJson(parameter.getName())}};
}

Json flatIncludesJson(const ShaderIncludes& registry, const Set<WString>& includes) {
  Array<WString> flat;
  Set<WString> done;
  registry.createFlatIncludeArray(flat, done, includes);
  return textsJson(flat);
}

Json resultJson(const IShaderFragment& result, const ShaderIncludes& registry) {
  const IShaderFragmentProfile& profile = *result.getProfile(0);
  Json uniforms = Json::array();
  Json inputs = Json::array();
  Json outputs = Json::array();
  for (std::size_t i = 0; i < result.getNumUniforms(); ++i)
    uniforms.push_back(parameterJson(*result.getUniform(i)));
  for (std::size_t i = 0; i < result.getNumInputs(); ++i)
    inputs.push_back(parameterJson(*result.getInput(i)));
  for (std::size_t i = 0; i < result.getNumOutputs(); ++i)
    outputs.push_back(parameterJson(*result.getOutput(i)));
  return {{"function", functionJson(profile)},
          {"profile", textJson(profile.getProfilename())},
          {"languages", textsJson(profile.languages())},
          {"lod", profile.getLOD()},
          {"predefines", textJson(profile.predefines())},
          {"includes", textsJson(profile.includes())},
          {"flatIncludes", flatIncludesJson(registry, profile.includes())},
          {"stateVariables", textsJson(profile.stateVariables())},
          {"customStateVariables", textsJson(profile.customStateVariables())},
          {"uniforms", uniforms},
          {"inputs", inputs},
          {"outputs", outputs},
          {"shaderInputTypes", textsJson(result.getShaderInputTypes())}};
}

}  // namespace

std::string writeCollapseJson(const IShaderFragment* result, const ShaderIncludes& includes) {
  const Json document = result != nullptr ? resultJson(*result, includes) : Json(nullptr);
  return document.dump(2) + "\n";
}

}  // namespace TolmSDK::Graphics::sfg::host
