#include "host/check/own_fragments.h"

#include <nlohmann/json.hpp>

namespace TolmSDK::Graphics::sfg::host {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kDropMacro = "#define SFG_CHECK_DROP(value) float4(0.0, 0.0, 0.0, 0.0)";

Json expression(const std::vector<std::string>& predefine, const std::string& text) {
  return {{"language", {"dx11"}}, {"mode", "inline"}, {"predefine", predefine}, {"implementation", {text}}};
}

Json function(const std::vector<std::string>& includes, const std::vector<std::string>& predefine,
              const std::vector<std::string>& lines) {
  return {
      {"language", {"dx11"}}, {"includes", includes}, {"predefine", predefine}, {"implementation", lines}};
}

std::string floats(std::size_t components) {
  return components == 1 ? "float" : "float" + std::to_string(components);
}

/// One function for each type that an expression may have.
std::vector<std::string> takers() {
  std::vector<std::string> lines;
  for (const char* const type : {"float", "float2", "float3", "float4", "int", "int2", "int3", "int4", "uint",
                                 "uint2", "uint3", "uint4", "bool", "float2x2", "float3x3", "float4x4"}) {
    lines.push_back("float4 sfg_checkValue(" + std::string(type) +
                    " value) { return float4(0.0, 0.0, 0.0, 0.0); }");
  }
  return lines;
}

Json source(const SourceFragment& source) {
  std::string parameters;
  for (const auto& [type, name] : source.inputs) parameters += type + " " + name + ", ";
  return function(
      source.includes, {},
      {"void " + source.name + "(" + parameters + "out " + source.type + " " + source.output + ")", "{",
       "  " + source.output + " = (" + source.type + ")0;", "}"});
}

}  // namespace

std::string litFragment(std::size_t components) { return "sfg_checkLit" + std::to_string(components); }

std::string ownFragments(const std::vector<SourceFragment>& sources) {
  Json library = Json::object();
  library[kDropFragment] = expression({kDropMacro}, "SFG_CHECK_DROP({{value}})");
  library[kTakeFragment] = expression(takers(), "sfg_checkValue({{value}})");
  library[kPassFragment] = expression({}, "{{value}}");
  library[kLightFragment] =
      function({}, {}, {"void sfg_checkLight(out float result)", "{", "  result = 0.0;", "}"});
  for (std::size_t i = 1; i <= 4; ++i) {
    const std::string type = floats(i);
    library[litFragment(i)] = function({}, {kDropMacro},
                                       {"void " + litFragment(i) + "(out " + type + " result)", "{",
                                        "  result = (" + type + ")SFG_CHECK_DROP(sfg_currentLight).x;", "}"});
  }
  for (const SourceFragment& one : sources) library[one.name] = source(one);
  return library.dump();
}

}  // namespace TolmSDK::Graphics::sfg::host
