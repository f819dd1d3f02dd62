#include "tools/site/fragment_graph.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <set>
#include <string_view>

namespace TolmSDK::Graphics::sfg::site {

namespace {

bool isShowable(const std::string& type) {
  constexpr std::array<std::string_view, 6> kTypes = {"float", "float2", "float3", "float4", "int", "bool"};
  return std::find(kTypes.begin(), kTypes.end(), type) != kTypes.end();
}

nlohmann::json portsOf(const Fragment& fragment, Port::Role role) {
  nlohmann::json list = nlohmann::json::array();
  for (const Port& port : fragment.ports) {
    if (port.role == role) list.push_back({{"name", port.name}, {"type", port.type}});
  }
  return list;
}

/// The input of a graph that a picture feeds with what lies at each place of its mesh; null for others.
const char* placeFor(const Port& port) {
  if (port.role != Port::Role::input) return nullptr;
  if (port.type == "float2" && (port.kind == "uv" || port.kind == "position")) return "uv";
  if (port.type == "float" && port.name == "position") return "u";
  if (port.type != "float3") return nullptr;
  if (port.kind == "position") return "position";
  return port.kind == "normal" || port.kind == "direction" ? "normal" : nullptr;
}

}  // namespace

std::optional<std::string> graphShowing(const Fragment& fragment, bool isFed) {
  const auto output = std::find_if(fragment.ports.begin(), fragment.ports.end(),
                                   [](const Port& port) { return port.role == Port::Role::output; });
  if (output == fragment.ports.end() || !isShowable(output->type)) return std::nullopt;
  nlohmann::json node = {{"name", "shown"}, {"fragment", fragment.name}};
  const bool isInline = std::any_of(fragment.profiles.begin(), fragment.profiles.end(),
                                    [](const Profile& profile) { return profile.mode == "inline"; });
  if (isInline) {
    node["interface"] = {{"inputs", portsOf(fragment, Port::Role::input)},
                         {"outputs", portsOf(fragment, Port::Role::output)}};
  }
  nlohmann::json inputs = nlohmann::json::array();
  std::set<std::string> known;
  for (const Port& port : fragment.ports) {
    const char* const place = isFed ? placeFor(port) : nullptr;
    // The same for two directions shows nothing of what lies between them.
    if (place == nullptr || !known.insert(place).second) continue;
    node["inputs"][port.name] = {{"graphInput", place}};
    inputs.push_back({{"name", place}, {"type", port.type}});
  }
  if (isFed && inputs.empty()) return std::nullopt;
  const nlohmann::json graph = {
      {"inputs", inputs},
      {"nodes", {node}},
      {"outputs",
       {{{"name", "color"}, {"type", output->type}, {"node", "shown"}, {"output", output->name}}}}};
  return graph.dump();
}

}  // namespace TolmSDK::Graphics::sfg::site
