#include "pictures/documents.h"

#include <nlohmann/json.hpp>

namespace pictures {

namespace {

using Json = nlohmann::ordered_json;

/// An empty object for what is none: what is wrong with a document, its reader tells.
Json parsed(const std::string& text) {
  Json document = Json::parse(text.begin(), text.end(), nullptr, false);
  return document.is_object() ? document : Json::object();
}

const Json& memberOf(const Json& object, const char* name) {
  static const Json kNone;
  const auto found = object.is_object() ? object.find(name) : object.end();
  return object.is_object() && found != object.end() ? *found : kNone;
}

std::string textOf(const Json& object, const char* name) {
  const Json& member = memberOf(object, name);
  return member.is_string() ? member.get<std::string>() : std::string();
}

}  // namespace

std::vector<NodeName> nodesOf(const std::string& graph) {
  std::vector<NodeName> nodes;
  const Json document = parsed(graph);
  for (const Json& node : memberOf(document, "nodes"))
    nodes.push_back({textOf(node, "name"), textOf(node, "fragment")});
  return nodes;
}

std::vector<OutputPort> interfaceOutputs(const std::string& graph, const std::string& node) {
  std::vector<OutputPort> outputs;
  const Json document = parsed(graph);
  for (const Json& known : memberOf(document, "nodes")) {
    if (textOf(known, "name") != node) continue;
    for (const Json& output : memberOf(memberOf(known, "interface"), "outputs"))
      outputs.push_back({textOf(output, "name"), textOf(output, "type")});
  }
  return outputs;
}

std::string withOutput(const std::string& graph, const std::string& node, const std::string& output,
                       const std::string& type) {
  Json document = parsed(graph);
  document.erase("postprocess");
  document["outputs"] =
      Json::array({{{"name", "shown"}, {"type", type}, {"node", node}, {"output", output}}});
  return document.dump();
}

PortWords portWords(const std::string& library, const std::string& fragment, const std::string& port) {
  const Json document = parsed(library);
  const Json& words = memberOf(memberOf(memberOf(document, fragment.c_str()), "ports"), port.c_str());
  return {textOf(words, "kind"), textOf(words, "space")};
}

std::string withLight(const std::string& environment, const std::string& name, const std::string& fragment,
                      const std::string& profile) {
  Json document = parsed(environment);
  if (!memberOf(document, "lights").is_array()) document["lights"] = Json::array();
  document["lights"].push_back({{"name", name}, {"fragment", fragment}, {"profile", profile}});
  return document.dump();
}

}  // namespace pictures
