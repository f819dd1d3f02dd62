#include "import/definitions.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string_view>
#include <utility>

#include <nlohmann/json.hpp>

#include "import/value_text.h"
#include "sfg/host/errors.h"
#include "sfg/host/suggest.h"

namespace TolmSDK::Graphics::sfg::materialx {

namespace {

using Json = nlohmann::json;

constexpr std::string_view kNodeKey = "{\"node\": \"";

std::string textOf(const Json& object, const char* key) {
  const auto member = object.find(key);
  return member != object.end() && member->is_string() ? member->get<std::string>() : std::string();
}

std::vector<std::string> textsOf(const Json& object, const char* key) {
  std::vector<std::string> texts;
  const auto member = object.find(key);
  if (member == object.end()) return texts;
  for (const Json& text : *member) texts.push_back(text.get<std::string>());
  return texts;
}

DefinedPort portOf(const Json& object) {
  DefinedPort port;
  port.name = textOf(object, "name");
  port.type = textOf(object, "type");
  port.hasValue = object.contains("value");
  port.value = textOf(object, "value");
  port.geomprop = textOf(object, "geomprop");
  port.names = textsOf(object, "names");
  port.values = textsOf(object, "values");
  port.unit = textOf(object, "unit");
  port.unitType = textOf(object, "unitType");
  port.passedInput = textOf(object, "input");
  return port;
}

Definition definitionOf(std::string_view line) {
  const Json object = Json::parse(line);
  Definition definition;
  definition.name = textOf(object, "name");
  definition.node = textOf(object, "node");
  definition.version = textOf(object, "version");
  definition.isDefault = object.value("isDefault", true);
  for (const Json& port : object.at("inputs")) definition.inputs.push_back(portOf(port));
  for (const Json& port : object.at("outputs")) definition.outputs.push_back(portOf(port));
  definition.fragment = "mtlx_" + definition.name;
  return definition;
}

const DefinedPort* find(const std::vector<DefinedPort>& ports, std::string_view name) {
  for (const DefinedPort& port : ports) {
    if (port.name == name) return &port;
  }
  return nullptr;
}

DefinedPort portOf(const Element& element) {
  DefinedPort port;
  port.name = element.name;
  port.type = element.attribute("type");
  port.hasValue = element.has("value");
  port.value = element.attribute("value");
  port.geomprop = element.attribute("defaultgeomprop");
  port.names = splitList(element.attribute("enum"));
  port.values = splitList(element.attribute("enumvalues"));
  if (!port.names.empty() && port.values.size() % port.names.size() != 0) port.values.clear();
  port.unit = element.attribute("unit");
  port.unitType = element.attribute("unittype");
  port.passedInput = element.attribute("defaultinput");
  port.element = &element;
  return port;
}

/// Whether each input that the node has is one of the definition's, with the same type.
bool takesInputs(const Definition& definition, const Element& node) {
  return std::all_of(node.children.begin(), node.children.end(), [&](const Element* child) {
    if (child->category != "input") return true;
    const DefinedPort* const port = definition.input(child->name);
    return port != nullptr && port->type == child->attribute("type");
  });
}

bool givesType(const Definition& definition, std::string_view type) {
  if (type == "multioutput") return definition.outputs.size() > 1;
  return definition.outputs.size() == 1 && definition.outputs.front().type == type;
}

/// How many of the node's inputs the definition has with that name and type.
std::size_t agreement(const Definition& definition, const Element& node) {
  std::size_t count = 0;
  for (const Element* const child : node.children) {
    const DefinedPort* const port = child->category == "input" ? definition.input(child->name) : nullptr;
    count += port != nullptr && port->type == child->attribute("type") ? 1 : 0;
  }
  return count;
}

}  // namespace

const DefinedPort* Definition::input(std::string_view portName) const { return find(inputs, portName); }
const DefinedPort* Definition::output(std::string_view portName) const { return find(outputs, portName); }

std::shared_ptr<StandardDefinitions> StandardDefinitions::load(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) {
    throw host::InputError(file.string(), {}, "the definitions of nodes cannot be read", "unreadable-file");
  }
  return std::make_shared<StandardDefinitions>(std::string{std::istreambuf_iterator<char>(stream), {}});
}

StandardDefinitions::StandardDefinitions(std::string text) : text_(std::move(text)) {
  std::string_view rest = text_;
  while (!rest.empty()) {
    const std::size_t end = rest.find('\n');
    std::string_view line = rest.substr(0, end);
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    if (!line.starts_with(kNodeKey)) continue;
    if (line.ends_with(',')) line.remove_suffix(1);
    const std::string_view node = line.substr(kNodeKey.size());
    entries_[std::string(node.substr(0, node.find('"')))].lines.push_back(line);
  }
}

const std::vector<Definition>& StandardDefinitions::of(const std::string& node) {
  static const std::vector<Definition> kNone;
  const auto entry = entries_.find(node);
  if (entry == entries_.end()) return kNone;
  for (const std::string_view line : entry->second.lines) {
    entry->second.parsed.push_back(definitionOf(line));
  }
  entry->second.lines.clear();
  return entry->second.parsed;
}

std::vector<std::string> StandardDefinitions::nodes() const {
  std::vector<std::string> names;
  for (const auto& [name, unused] : entries_) names.push_back(name);
  return names;
}

Definitions::Definitions(const Element& root, StandardDefinitions& standard, Reports& reports)
    : standard_(standard), reports_(reports) {
  readOwn(root);
  connectGraphs(root);
}

void Definitions::readOwn(const Element& root) {
  for (const Element* const element : root.children) {
    if (element->category == "nodedef") addOwn(*element);
  }
}

void Definitions::addOwn(const Element& element) {
  if (byName_.count(element.name) > 0) {
    return reports_.warning(element, "a second node definition is called `" + element.name + "`",
                            "repeated-name");
  }
  auto definition = std::make_unique<Definition>();
  definition->name = element.name;
  definition->node = element.attribute("node");
  const std::string_view own = element.attribute("namespace");
  const std::string nameSpace = own.empty() ? element.scope->nameSpace : std::string(own);
  if (!nameSpace.empty()) definition->node = nameSpace + ":" + definition->node;
  definition->version = element.attribute("version");
  definition->isDefault = definition->version.empty() || element.attribute("isdefaultversion") == "true";
  definition->element = &element;
  for (const Element* const child : element.children) {
    if (child->category == "input") definition->inputs.push_back(portOf(*child));
    if (child->category == "output") definition->outputs.push_back(portOf(*child));
  }
  if (definition->outputs.empty() && element.has("type")) {  // as documents up to 1.36 say it
    DefinedPort& out = definition->outputs.emplace_back();
    out.name = "out";
    out.type = element.attribute("type");
  }
  byName_.emplace(element.name, definition.get());
  byNode_[definition->node].push_back(definition.get());
  own_.push_back(std::move(definition));
}

void Definitions::connectGraphs(const Element& root) {
  std::unordered_map<std::string_view, const Element*> graphs;
  for (const Element* const element : root.children) {
    if (element->category == "nodegraph") graphs.emplace(element->name, element);
  }
  const auto connect = [&](const Element& place, const Element* graph) {
    const std::string name(place.attribute("nodedef"));
    auto entry = byName_.find(name);
    if (entry == byName_.end() && !place.scope->nameSpace.empty()) {
      entry = byName_.find(place.scope->nameSpace + ":" + name);
    }
    if (entry != byName_.end() && entry->second->graph == nullptr) entry->second->graph = graph;
  };
  for (const Element* const element : root.children) {
    if (element->category == "nodegraph" && element->has("nodedef")) connect(*element, element);
    if (element->category != "implementation") continue;
    std::string name(element->attribute("nodegraph"));
    auto graph = graphs.find(name);
    if (graph == graphs.end() && !element->scope->nameSpace.empty()) {
      name = element->scope->nameSpace + ":" + name;
      graph = graphs.find(name);
    }
    if (graph != graphs.end()) connect(*element, graph->second);
  }
}

const Definition* Definitions::implementedBy(const Element& graph) const {
  for (const std::unique_ptr<Definition>& definition : own_) {
    if (definition->graph == &graph) return definition.get();
  }
  return nullptr;
}

bool Definitions::isNode(const Element& element) {
  constexpr std::string_view kOthers[] = {"nodedef",     "implementation", "look",   "typedef", "unitdef",
                                          "unittypedef", "geompropdef",    "output", "token",   "collection"};
  return std::find(std::begin(kOthers), std::end(kOthers), element.category) == std::end(kOthers);
}

std::vector<const Definition*> Definitions::candidates(const std::string& node) {
  std::vector<const Definition*> known;
  if (const auto own = byNode_.find(node); own != byNode_.end()) known = own->second;
  for (const Definition& definition : standard_.of(node)) known.push_back(&definition);
  return known;
}

const Definition* Definitions::find(const Element& node) {
  const auto found = found_.find(&node);
  if (found != found_.end()) return found->second;
  std::vector<const Definition*> known = candidates(node.category);
  if (known.empty() && !node.scope->nameSpace.empty()) {
    known = candidates(node.scope->nameSpace + ":" + node.category);
  }
  const Definition* definition = nullptr;
  if (known.empty()) {
    tellUnknown(node);
  } else {
    definition = choose(node, known);
  }
  found_.emplace(&node, definition);
  return definition;
}

const Definition* Definitions::choose(const Element& node, const std::vector<const Definition*>& known) {
  if (node.has("nodedef")) {
    std::string_view name = node.attribute("nodedef");
    for (const Definition* const definition : known) {
      if (definition->element != nullptr && definition->name == name) return definition;
    }
    if (name.starts_with("ND_")) name.remove_prefix(3);
    for (const Definition* const definition : known) {
      if (definition->element == nullptr && definition->name == name) return definition;
    }
    reports_.error(node, "there is no node definition `" + std::string(node.attribute("nodedef")) + "`",
                   "unknown-word");
  }
  const std::string_view type = node.attribute("type");
  const std::string_view version = node.attribute("version");
  const Definition* best = nullptr;
  std::size_t bestRank = 0;
  for (const Definition* const definition : known) {
    if (!givesType(*definition, type)) continue;
    const std::size_t rank = 1 + (takesInputs(*definition, node) ? 1000u : 0u) +
                             4 * std::min<std::size_t>(agreement(*definition, node), 200) +
                             (!version.empty() && definition->version == version ? 2u : 0u) +
                             (definition->isDefault ? 1u : 0u);
    if (rank > bestRank) {
      best = definition;
      bestRank = rank;
    }
  }
  if (best == nullptr) {
    reports_.error(node, "no node `" + node.category + "` gives `" + std::string(type) + "`", "unknown-type");
  }
  return best;
}

void Definitions::tellUnknown(const Element& node) {
  std::vector<std::string> names = standard_.nodes();
  for (const auto& [name, unused] : byNode_) names.push_back(name);
  std::sort(names.begin(), names.end());
  reports_.error(node, "there is no node `" + node.category + "`", "unknown-fragment",
                 host::suggest(node.category, names));
}

}  // namespace TolmSDK::Graphics::sfg::materialx
