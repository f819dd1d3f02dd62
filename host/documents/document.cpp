#include "sfg/host/document.h"

#include <cmath>
#include <nlohmann/json.hpp>
#include <string_view>
#include <unordered_set>

#include "host/documents/diagnose.h"
#include "sfg/host/errors.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// Members in the order in which they are added.
using Json = nlohmann::ordered_json;

Json numberJson(double number, const std::string& owner) {
  if (!std::isfinite(number))
    throw inputError(Finding::wrongValue, std::string(), {},
                     "a value of `" + owner + "` is not a finite number");
  return number;
}

Json valueJson(const Value& value, const std::string& owner) {
  if (const bool* const boolean = std::get_if<bool>(&value)) return *boolean;
  if (const double* const number = std::get_if<double>(&value)) return numberJson(*number, owner);
  Json array = Json::array();
  for (const double component : std::get<std::vector<double>>(value)) {
    array.push_back(numberJson(component, owner));
  }
  return array;
}

Json parameterJson(const Parameter& parameter) {
  Json json = {{"name", parameter.name}, {"type", parameter.type}};
  if (!parameter.structName.empty()) json["struct"] = parameter.structName;
  if (parameter.value) json["value"] = valueJson(*parameter.value, parameter.name);
  if (parameter.isConstant) json["constant"] = true;
  if (!parameter.semantic.empty()) json["semantic"] = parameter.semantic;
  return json;
}

Json parametersJson(const std::vector<Parameter>& parameters) {
  Json array = Json::array();
  for (const Parameter& parameter : parameters) array.push_back(parameterJson(parameter));
  return array;
}

void addSource(Json& json, const NodeOutput& source) {
  if (!source.node.empty()) json["node"] = source.node;
  if (!source.output.empty()) json["output"] = source.output;
}

Json sourceJson(const NodeInput& input, const std::string& node) {
  const std::string owner = node + "." + input.name;
  Json json = Json::object();
  if (const auto* const output = std::get_if<NodeOutput>(&input.source)) {
    addSource(json, *output);
  } else if (const auto* const graphInput = std::get_if<GraphInput>(&input.source)) {
    json["graphInput"] = graphInput->name;
  } else if (const auto* const value = std::get_if<Value>(&input.source)) {
    json["value"] = valueJson(*value, owner);
  } else {
    json["constant"] = valueJson(std::get<Constant>(input.source).value, owner);
  }
  return json;
}

Json nodeJson(const Node& node) {
  Json json = {{"name", node.name}, {"fragment", node.fragment}};
  if (node.ports) {
    json["interface"] = {{"inputs", parametersJson(node.ports->inputs)},
                         {"outputs", parametersJson(node.ports->outputs)}};
  }
  Json inputs = Json::object();
  std::unordered_set<std::string_view> names;
  for (const NodeInput& input : node.inputs) {
    if (!names.insert(input.name).second) {
      throw inputError(Finding::repeatedName, std::string(), {},
                       "input `" + input.name + "` of node `" + node.name + "` is given twice");
    }
    // An ordered object searches all its members for a key; these are known to differ.
    inputs.get_ref<Json::object_t&>().push_back({input.name, sourceJson(input, node.name)});
  }
  json["inputs"] = std::move(inputs);
  return json;
}

Json outputJson(const GraphOutput& output) {
  Json json = parameterJson(output.parameter);
  addSource(json, output.source);
  return json;
}

Json lightJson(const Light& light) {
  Json json = Json::object();
  if (!light.name.empty()) json["name"] = light.name;
  json["fragment"] = light.fragment;
  if (!light.profile.empty()) json["profile"] = light.profile;
  return json;
}

/// Ill-formed UTF-8 becomes U+FFFD, as in files.
std::string textOf(const Json& json) {
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace

std::string toJson(const Graph& graph) {
  Json outputs = Json::array();
  for (const GraphOutput& output : graph.outputs) outputs.push_back(outputJson(output));
  Json nodes = Json::array();
  for (const Node& node : graph.nodes) nodes.push_back(nodeJson(node));
  return textOf({{"inputs", parametersJson(graph.inputs)},
                 {"outputs", std::move(outputs)},
                 {"uniforms", parametersJson(graph.uniforms)},
                 {"nodes", std::move(nodes)},
                 {"preprocess", Json(graph.preprocess)},
                 {"postprocess", Json(graph.postprocess)}});
}

std::string toJson(const Environment& environment) {
  Json lights = Json::array();
  for (const Light& light : environment.lights) lights.push_back(lightJson(light));
  Json json = {{"lights", std::move(lights)}};
  if (!environment.output.empty()) json["output"] = environment.output;
  if (!environment.image.empty()) json["image"] = environment.image;
  return textOf(json);
}

Document::Document(std::string name, std::optional<std::string> text, bool hasPlaces)
    : name_(std::move(name)), text_(std::move(text)), hasPlaces_(hasPlaces) {}

Document Document::fromFile(std::filesystem::path file) { return {file.string(), std::nullopt, true}; }

Document Document::fromText(std::string text, std::string name) {
  return {std::move(name), std::move(text), true};
}

Document Document::from(const Graph& graph, std::string name) {
  return {std::move(name), toJson(graph), false};
}

Document Document::from(const Environment& environment, std::string name) {
  return {std::move(name), toJson(environment), false};
}

}  // namespace TolmSDK::Graphics::sfg::host
