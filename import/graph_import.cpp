#include "import/graph_import.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <utility>

#include "import/value_text.h"
#include "sfg/host/suggest.h"

namespace TolmSDK::Graphics::sfg::materialx {

namespace {

constexpr std::size_t kNone = static_cast<std::size_t>(-1);
constexpr std::size_t kMostNodes = 100'000;
constexpr int kMostSteps = 256;
constexpr unsigned kDeepest = 64;
constexpr std::size_t kLongestName = 512;
constexpr std::string_view kWorkingSpace = "lin_rec709";

/// A graph of the document, in one use.
struct Scope {
  const Element* container = nullptr;
  const Scope* outer = nullptr;
  const Element* instance = nullptr;       ///< whose inputs are the interface
  const Definition* definition = nullptr;  ///< that the graph implements
  std::string path;
  unsigned depth = 0;
};

struct Channels {
  std::string letters;
  std::string type;  ///< that they make
};

/// Where an input takes its value from.
struct Source {
  enum class Kind { nothing, node, text, value, graphInput };
  Kind kind = Kind::nothing;
  std::string type;  ///< as documents name it
  std::size_t node = kNone;
  std::string output;  ///< of the node's fragment; or the graph input's name
  std::string text;    ///< of a value, as it stands
  host::Value value = 0.0;
  const Element* place = nullptr;  ///< that holds the value
  const Scope* scope = nullptr;    ///< in which it does
  std::vector<Channels> channels;  ///< the last ones come first
};

/// An input of a node that is brought.
struct BuiltInput {
  std::string port;
  Source source;
  const Element* place = nullptr;
};

struct BuiltNode {
  std::string name;
  std::string fragment;
  const FragmentPorts* ports = nullptr;
  const Definition* definition = nullptr;  ///< null for those that the importer adds
  const Element* element = nullptr;
  const Scope* scope = nullptr;
  std::vector<BuiltInput> inputs;
  std::string colorSpace;  ///< of its colours, when it is not the working one
  bool isTwin = false;     ///< another fragment for what a node already is
};

const FragmentPorts::Port* findPort(const std::vector<FragmentPorts::Port>& ports, const std::string& name) {
  for (const FragmentPorts::Port& port : ports) {
    if (port.name == name || port.name == name + "_") return &port;
  }
  return nullptr;
}

Source valueSource(std::string_view type, host::Value value) {
  Source source;
  source.kind = Source::Kind::value;
  source.type = type;
  source.value = std::move(value);
  return source;
}

/// As part of a name in shader text.
std::string identifierOf(std::string_view text) {
  std::string name(text);
  for (char& c : name) {
    const bool isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    if (!isLetter) c = '_';
  }
  return name;
}

class Importer {
public:
  Importer(const Element& root, Definitions& definitions, StandardDefinitions& standard,
           const GraphImportOptions& options, Reports& reports)
      : root_(root), definitions_(definitions), standard_(standard), options_(options), reports_(reports) {
    rootScope_.container = &root;
  }

  ImportedGraph run(const std::vector<WantedOutput>& outputs) {
    for (const WantedOutput& output : outputs) bringOutput(output);
    for (std::size_t i = 0; i < nodes_.size(); ++i) fill(i);
    convertColors();
    cutCycles();
    return result();
  }

private:
  struct BuiltOutput {
    std::string name;
    std::string type;
    std::size_t node;
    std::string port;
  };

  // --- following references

  const Scope* innerScope(const Scope* outer, const Element& instance, const Element& container,
                          const Definition* definition) {
    const auto [entry, isNew] = scopes_.try_emplace({outer, &instance});
    if (isNew) {
      entry->second = std::make_unique<Scope>();
      Scope& scope = *entry->second;
      scope.container = &container;
      scope.outer = outer;
      scope.instance = &instance;
      scope.definition = definition;
      scope.depth = outer->depth + 1;
      scope.path = outer->path + instance.name + "/";
      if (scope.path.size() > kLongestName) scope.path = "s" + std::to_string(scopes_.size()) + "/";
    }
    return entry->second.get();
  }

  const Element* member(const Element& container, const std::string& name) {
    const auto [index, isNew] = members_.try_emplace(&container);
    if (isNew) {
      for (const Element* const child : container.children) {
        if (child->name.empty() || child->category == "nodedef" || child->category == "input" ||
            child->category == "token") {
          continue;
        }
        if (!index->second.emplace(child->name, child).second && Definitions::isNode(*child)) {
          reports_.warning(*child, "a second element is called `" + child->name + "`", "repeated-name");
        }
      }
    }
    const auto found = index->second.find(name);
    return found == index->second.end() ? nullptr : found->second;
  }

  const Element* findNamed(const Element& container, const Element& place, std::string_view name) {
    const std::string given(name);
    if (const Element* const element = member(container, given)) return element;
    if (!place.scope->nameSpace.empty()) return member(container, place.scope->nameSpace + ":" + given);
    return nullptr;
  }

  void tellUnknown(const Element& place, std::string_view name, const Element& container) {
    if (!told_.insert(&place).second) return;
    std::vector<std::string> names;
    for (const auto& [known, unused] : members_[&container]) names.emplace_back(known);
    std::sort(names.begin(), names.end());
    reports_.error(place, "there is no node `" + std::string(name) + "`", "unknown-node",
                   host::suggest(name, names));
  }

  const Element* outputOf(const Element& graph, const Element& place, std::string_view name) {
    const Element* first = nullptr;
    std::vector<std::string> names;
    for (const Element* const child : graph.children) {
      if (child->category != "output") continue;
      if (child->name == name) return child;
      if (first == nullptr) first = child;
      names.push_back(child->name);
    }
    if (first == nullptr) {
      tellOnce(place, "`" + graph.name + "` has no output", "unknown-port");
    } else if (!name.empty() && (names.size() > 1 || name != "out")) {
      if (told_.insert(&place).second) {
        reports_.error(place, "`" + graph.name + "` has no output `" + std::string(name) + "`",
                       "unknown-port", host::suggest(name, names));
      }
      return nullptr;
    }
    return first;
  }

  void tellOnce(const Element& place, const std::string& text, const std::string& kind) {
    if (told_.insert(&place).second) reports_.error(place, text, kind);
  }
  void warnOnce(const Element& place, const std::string& text, const std::string& kind) {
    if (told_.insert(&place).second) reports_.warning(place, text, kind);
  }

  /// Goes from an input or output to what gives its value.
  Source follow(const Scope* scope, const Element* at) {
    const Element* const start = at;
    std::vector<Channels> channels;
    for (int step = 0; step < kMostSteps && channels.size() <= 16; ++step) {
      if (at->has("channels")) {
        channels.push_back({std::string(at->attribute("channels")), std::string(at->attribute("type"))});
      }
      Source source;
      const bool isDone = followOne(scope, at, channels, source);
      if (!isDone) continue;
      source.channels.insert(source.channels.begin(), channels.begin(), channels.end());
      return source;
    }
    tellOnce(*start, "this leads through more than 256 references, or back to itself", "loop");
    return {};
  }

  /// One step: true with what was reached, or false and the next place.
  bool followOne(const Scope*& scope, const Element*& at, std::vector<Channels>& channels, Source& reached) {
    const std::string_view nodeName = at->attribute("nodename");
    const std::string_view graphName = at->attribute("nodegraph");
    const std::string_view outputName = at->attribute("output");
    if (!nodeName.empty() || !graphName.empty()) {
      return followName(scope, at, graphName.empty() ? nodeName : graphName, outputName, channels, reached);
    }
    if (!outputName.empty()) return followName(scope, at, outputName, {}, channels, reached);
    if (at->has("interfacename")) return followInterface(scope, at, reached);
    if (at->has("value")) {
      reached.kind = Source::Kind::text;
      reached.type = at->attribute("type");
      reached.text = at->attribute("value");
      reached.place = at;
      reached.scope = scope;
    } else if (at->has("defaultgeomprop")) {
      reached = fromGeometry(std::string(at->attribute("defaultgeomprop")), *at);
    }
    return true;
  }

  bool followName(const Scope*& scope, const Element*& at, std::string_view name, std::string_view output,
                  std::vector<Channels>& channels, Source& reached) {
    const Element* target = findNamed(*scope->container, *at, name);
    if (target == nullptr && scope->container != &root_) {
      target = findNamed(root_, *at, name);
      const bool isGraph =
          target != nullptr && (target->category == "nodegraph" || target->category == "output");
      if (isGraph)
        scope = &rootScope_;
      else
        target = nullptr;
    }
    if (target == nullptr) {
      tellUnknown(*at, name, *scope->container);
      return true;
    }
    if (target->category == "output") {
      at = target;
      return false;
    }
    if (target->category == "nodegraph") return enter(scope, at, *target, *target, nullptr, output);
    return followNode(scope, at, *target, output, channels, reached);
  }

  bool enter(const Scope*& scope, const Element*& at, const Element& instance, const Element& graph,
             const Definition* definition, std::string_view output) {
    if (scope->depth >= kDeepest) {
      tellOnce(*at, "graphs are nested deeper than 64 levels, or hold themselves", "loop");
      return true;
    }
    const Element* const next = outputOf(graph, *at, output);
    if (next == nullptr) return true;
    scope = innerScope(scope, instance, graph, definition);
    at = next;
    return false;
  }

  bool followNode(const Scope*& scope, const Element*& at, const Element& node, std::string_view output,
                  std::vector<Channels>& channels, Source& reached) {
    if (node.category == "swizzle") return followSwizzle(at, node, channels);
    if (node.category == "geompropvalue" || node.category == "UsdPrimvarReader") {
      reached = fromProperty(scope, node);
      return true;
    }
    const Definition* const definition = definitions_.find(node);
    if (definition == nullptr) return true;
    if (isFurtherStream(node)) {
      reached = fromStream(node, std::string(node.attribute("type")));
      return true;
    }
    if (definition->graph != nullptr) return enter(scope, at, node, *definition->graph, definition, output);
    if (definition->outputs.empty()) return true;
    const DefinedPort* port = &definition->outputs.front();
    if (!output.empty() && definition->outputs.size() > 1) {
      port = definition->output(output);
      if (port == nullptr) return tellUnknownOutput(*at, node, *definition, output);
    }
    const FragmentPorts* const ports = options_.fragments(definition->fragment);
    if (ports == nullptr) return passThrough(at, node, *definition, *port, reached);
    const FragmentPorts::Port* const fragmentPort = findPort(ports->outputs, port->name);
    if (fragmentPort == nullptr) return passThrough(at, node, *definition, *port, reached);
    reached.kind = Source::Kind::node;
    reached.type = port->type;
    reached.node = instance(scope, node, *definition, *ports);
    reached.output = fragmentPort->name;
    if (reached.node == kNone) reached = {};
    return true;
  }

  bool tellUnknownOutput(const Element& place, const Element& node, const Definition& definition,
                         std::string_view output) {
    std::vector<std::string> names;
    for (const DefinedPort& known : definition.outputs) names.push_back(known.name);
    if (told_.insert(&place).second) {
      reports_.error(place, "`" + node.name + "` has no output `" + std::string(output) + "`", "unknown-port",
                     host::suggest(output, names));
    }
    return true;
  }

  /// Earlier documents pick and reorder components by a node.
  static bool followSwizzle(const Element*& at, const Element& node, std::vector<Channels>& channels) {
    const Element* const in = node.child("input", "in");
    const Element* const letters = node.child("input", "channels");
    if (in == nullptr) return true;
    channels.push_back({letters == nullptr ? std::string() : std::string(letters->attribute("value")),
                        std::string(node.attribute("type"))});
    at = in;
    return false;
  }

  bool followInterface(const Scope*& scope, const Element*& at, Source& reached) {
    const std::string_view name = at->attribute("interfacename");
    if (scope->instance == nullptr) {
      tellOnce(*at, "`interfacename` stands outside of a graph", "unknown-port");
      return true;
    }
    if (const Element* const given = scope->instance->child("input", name)) {
      scope = scope->outer;
      at = given;
      return false;
    }
    const DefinedPort* const port = scope->definition == nullptr ? nullptr : scope->definition->input(name);
    if (port != nullptr) {
      reached = defaultOf(*port);
      return true;
    }
    if (told_.insert(at).second) tellUnknownInterface(*scope, *at, name);
    return true;
  }

  void tellUnknownInterface(const Scope& scope, const Element& place, std::string_view name) {
    std::vector<std::string> names;
    for (const Element* const child : scope.instance->children) {
      if (child->category == "input") names.push_back(child->name);
    }
    if (scope.definition != nullptr) {
      for (const DefinedPort& port : scope.definition->inputs) names.push_back(port.name);
    }
    reports_.error(place, "the graph has no input `" + std::string(name) + "`", "unknown-port",
                   host::suggest(name, names));
  }

  /// A node that no fragment computes is what its definition names in its place.
  bool passThrough(const Element*& at, const Element& node, const Definition& definition,
                   const DefinedPort& port, Source& reached) {
    const Element* const passed = port.passedInput.empty() ? nullptr : node.child("input", port.passedInput);
    const bool isPlain = node.category == "dot";
    if (!isPlain) {
      warnOnce(node, "nothing computes the node `" + node.category + "` for `" + port.type + "`",
               "cannot-import");
    }
    if (passed != nullptr) {
      at = passed;
      return false;
    }
    if (const DefinedPort* const input = definition.input(port.passedInput)) {
      reached = defaultOf(*input);
    } else if (componentCount(port.type) > 0) {
      const std::optional<host::Value> value = parseValue(port.type, port.value);
      reached = valueSource(port.type, value ? *value : zeroOf(port.type));
    }
    return true;
  }

  Source defaultOf(const DefinedPort& port) {
    if (!port.geomprop.empty() && port.element != nullptr) return fromGeometry(port.geomprop, *port.element);
    Source source;
    source.type = port.type;
    if (!port.hasValue && componentCount(port.type) > 0) return valueSource(port.type, zeroOf(port.type));
    if (!port.hasValue) return source;
    source.kind = Source::Kind::text;
    source.text = port.value;
    source.place = port.element;
    source.scope = &rootScope_;
    return source;
  }

  // --- what a surface brings

  /// A value that the geometry has under a name of the document or of everybody.
  Source fromGeometry(const std::string& name, const Element& place) {
    const Element* const own = root_.child("geompropdef", name);
    std::string node;
    std::string type = "vector3";
    std::string space;
    std::string index;
    if (own != nullptr) {
      node = own->attribute("geomprop");
      type = own->attribute("type");
      space = own->attribute("space");
      index = own->attribute("index");
    } else if (name == "UV0" || name == "UV1") {
      node = "texcoord";
      type = "vector2";
      index = name.substr(2);
    } else if (!name.empty()) {
      constexpr std::pair<char, std::string_view> kNodes[] = {
          {'P', "position"}, {'N', "normal"}, {'T', "tangent"}, {'B', "bitangent"}, {'V', "viewdirection"}};
      for (const auto& [letter, word] : kNodes) {
        if (name[0] == letter) node = word;
      }
      space = name.substr(1);
    }
    return geometryNode(name, node, type, space, index, place);
  }

  Source geometryNode(const std::string& name, const std::string& node, const std::string& type,
                      const std::string& space, const std::string& index, const Element& place) {
    const std::vector<Definition>& known = standard_.of(node);
    const auto definition = std::find_if(known.begin(), known.end(), [&](const Definition& candidate) {
      return candidate.outputs.front().type == type;
    });
    if (definition == known.end()) {
      warnOnce(place, "the geometry has no `" + name + "`", "cannot-import");
      return componentCount(type) > 0 ? valueSource(type, zeroOf(type)) : Source();
    }
    Source source;
    source.type = type;
    const FragmentPorts* const ports = options_.fragments(definition->fragment);
    if (ports == nullptr) return valueSource(type, zeroOf(type));
    source.kind = Source::Kind::node;
    source.output = ports->outputs.front().name;
    const auto [entry, isNew] = geometry_.try_emplace(name, kNone);
    if (isNew) {
      entry->second = addNode("geometry:" + name, definition->fragment, place);
      for (const DefinedPort& port : definition->inputs) {
        const FragmentPorts::Port* const fragmentPort = findPort(ports->inputs, port.name);
        if (fragmentPort == nullptr) continue;
        Source value = defaultOf(port);
        if (port.name == "space" && !space.empty()) value.text = space;
        if (port.name == "index" && !index.empty()) value.text = index;
        connect(entry->second, *fragmentPort, port, value, place);
      }
    }
    source.node = entry->second;
    return source;
  }

  /// A property of the geometry by name becomes an input of the graph.
  Source fromProperty(const Scope* scope, const Element& node) {
    const char* const key = node.category == "geompropvalue" ? "geomprop" : "varname";
    const Element* const input = node.child("input", key);
    const Source name = input == nullptr ? Source() : follow(scope, input);
    const std::string type(node.attribute("type"));
    if (name.kind != Source::Kind::text || name.text.empty() || componentCount(type) == 0) {
      warnOnce(node, "a property of the geometry without a name, or of a type without numbers",
               "cannot-import");
      return componentCount(type) > 0 ? valueSource(type, zeroOf(type)) : Source();
    }
    return graphInput("geomprop_" + identifierOf(name.text), type, node);
  }

  static int streamOf(const Element& node) {
    const Element* const index = node.child("input", "index");
    return index == nullptr ? 0 : std::atoi(std::string(index->attribute("value")).c_str());
  }

  /// A set of colours or coordinates that is not among the state of the surface.
  static bool isFurtherStream(const Element& node) {
    if (node.category == "geomcolor") return streamOf(node) > 0;
    return node.category == "texcoord" && streamOf(node) > 3;
  }

  Source fromStream(const Element& node, const std::string& type) {
    const std::string number = std::to_string(streamOf(node));
    if (node.category == "texcoord") return graphInput("texCoord" + number, "vector2", node);
    Source source = graphInput("vertexColor" + number, "color4", node);
    if (type == "color3") source.channels.push_back({"rgb", type});
    if (type == "float") source.channels.push_back({"r", type});
    return source;
  }

  Source graphInput(const std::string& name, const std::string& type, const Element& place) {
    const auto [entry, isNew] = graphInputs_.try_emplace(name, type);
    if (entry->second != type) {
      tellOnce(place, "`" + name + "` is a `" + entry->second + "` elsewhere", "wire-type");
      return valueSource(type, zeroOf(type));
    }
    if (isNew) {
      reports_.note(place, "the renderer gives this as the graph input `" + name + "`", "cannot-import");
    }
    Source source;
    source.kind = Source::Kind::graphInput;
    source.type = type;
    source.output = name;
    return source;
  }

  // --- nodes

  std::size_t addNode(std::string name, const std::string& fragment, const Element& place) {
    if (name.size() > kLongestName) name = "n" + std::to_string(nodes_.size());
    BuiltNode node;
    node.name = std::move(name);
    node.fragment = fragment;
    node.ports = options_.fragments(fragment);
    node.element = &place;
    node.scope = &rootScope_;
    nodes_.push_back(std::move(node));
    return nodes_.size() - 1;
  }

  std::size_t instance(const Scope* scope, const Element& element, const Definition& definition,
                       const FragmentPorts& ports) {
    const auto [entry, isNew] = instances_.try_emplace({scope, &element}, kNone);
    if (!isNew) return entry->second;
    if (nodes_.size() >= kMostNodes) {
      tellOnce(root_.children.empty() ? element : *root_.children.front(),
               "the document holds more than 100000 nodes, with all uses of its graphs", "cannot-import");
      return kNone;
    }
    const std::size_t index = addNode(scope->path + element.name, definition.fragment, element);
    nodes_[index].definition = &definition;
    nodes_[index].scope = scope;
    nodes_[index].ports = &ports;
    entry->second = index;
    return index;
  }

  /// Wires the inputs of a node, which may add others behind the last one.
  void fill(std::size_t index) {
    const Definition* const definition = nodes_[index].definition;
    if (definition == nullptr) return;
    const Element& element = *nodes_[index].element;
    const Scope* const scope = nodes_[index].scope;
    const FragmentPorts& ports = *nodes_[index].ports;
    std::map<std::string_view, const Element*> given;
    for (const Element* const child : element.children) {
      if (child->category == "input") given.emplace(child->name, child);
    }
    checkInputs(element, given, *definition);
    for (const DefinedPort& port : definition->inputs) {
      const auto child = given.find(port.name);
      const Element* const at = child == given.end() ? nullptr : child->second;
      if (isClosure(port.type)) {
        connectClosure(index, port, at);
        continue;
      }
      const FragmentPorts::Port* const fragmentPort = findPort(ports.inputs, port.name);
      if (fragmentPort == nullptr) {
        const bool isLeftOut = at != nullptr && !nodes_[index].isTwin && !twinTakes(index, port.name);
        if (isLeftOut && at->attribute("value") != port.value) {
          warnOnce(*at, "`" + port.name + "` of `" + element.category + "` is left out", "cannot-import");
        }
        continue;
      }
      Source source = at == nullptr ? Source() : follow(scope, at);
      if (port.type == "filename") {
        if (bringFile(index, *fragmentPort, port, source, at, scope)) return;
        continue;
      }
      connect(index, *fragmentPort, port, std::move(source), at == nullptr ? element : *at);
    }
    tellSize(index);
  }

  // --- sizes of textures

  /// Fragments compute the modes of addresses and filters that a repeating, filtering sampler does not have
  /// from the size of the texture, which they take as an input.
  void tellSize(std::size_t index) {
    const FragmentPorts::Port* const size = findPort(nodes_[index].ports->inputs, "texels");
    if (size == nullptr || nodes_[index].definition->input("texels") != nullptr) return;
    PictureSize texels;
    if (!isPlainlySampled(index)) {
      const std::string& node = nodes_[index].name;
      const auto texture = std::find_if(textures_.rbegin(), textures_.rend(),
                                        [&](const ImportedTexture& known) { return known.node == node; });
      if (texture != textures_.rend() && !texture->isMissing && options_.sizeOf) {
        texels = options_.sizeOf(texture->file).value_or(PictureSize());
        texture->isSized = texels.width > 0;
        if (texels.width == 0) {
          warnOnce(*nodes_[index].element,
                   "the size of `" + texture->file + "` cannot be read: its sampler decides modes and filter",
                   "unreadable-file");
        }
      }
    }
    const std::vector<double> numbers{static_cast<double>(texels.width), static_cast<double>(texels.height)};
    nodes_[index].inputs.push_back(
        {size->name, valueSource("vector2", valueOf("vector2", numbers)), nodes_[index].element});
  }

  /// Whether a sampler that repeats and filters does all that the node's modes ask for.
  bool isPlainlySampled(std::size_t index) const {
    bool hasModes = false;
    for (const DefinedPort& port : nodes_[index].definition->inputs) {
      if (port.name.starts_with("frame")) continue;  // of several files, not of one
      for (const char* const word : {"periodic", "linear"}) {
        const auto plain = std::find(port.names.begin(), port.names.end(), word);
        if (plain == port.names.end()) continue;
        hasModes = hasModes || word[0] == 'p';
        if (!hasNumber(index, port.name, static_cast<double>(plain - port.names.begin()))) return false;
      }
    }
    return hasModes || nodes_[index].definition->input("uvtiling") != nullptr;
  }

  bool hasNumber(std::size_t index, const std::string& input, double number) const {
    for (const BuiltInput& given : nodes_[index].inputs) {
      if (given.port != input || given.source.kind != Source::Kind::value) continue;
      return numbersOf(given.source.value) == std::vector<double>{number};
    }
    return true;  // the fragment has no such input
  }

  // --- closures

  /// The node once more, as another fragment that says more of it; kNone without one.
  std::size_t twinOf(std::size_t index, const std::string& suffix) {
    const std::string fragment = nodes_[index].fragment + suffix;
    const FragmentPorts* const ports = options_.fragments(fragment);
    if (ports == nullptr || ports->outputs.empty() || nodes_[index].definition == nullptr) return kNone;
    const auto [entry, isNew] = twins_.try_emplace({index, suffix}, kNone);
    if (!isNew) return entry->second;
    const std::size_t twin =
        addNode(nodes_[index].name + "." + suffix.substr(1), fragment, *nodes_[index].element);
    nodes_[twin].definition = nodes_[index].definition;
    nodes_[twin].scope = nodes_[index].scope;
    nodes_[twin].isTwin = true;
    return entry->second = twin;
  }

  bool twinTakes(std::size_t index, const std::string& input) const {
    for (const char* const suffix : {"_emission", "_throughput"}) {
      const FragmentPorts* const ports = options_.fragments(nodes_[index].fragment + suffix);
      if (ports != nullptr && findPort(ports->inputs, input) != nullptr) return true;
    }
    return false;
  }

  static Source outputOfNode(std::size_t node, std::string output, std::string type) {
    Source source;
    source.kind = Source::Kind::node;
    source.type = std::move(type);
    source.node = node;
    source.output = std::move(output);
    return source;
  }

  struct Surface {
    Source color;
    Source alpha;
  };

  /// Colour and coverage of a surface: a shading model's emission comes from a fragment of its own.
  Surface surfaceOf(const Source& source, const Element& place) {
    const std::size_t emission = twinOf(source.node, "_emission");
    const std::size_t teller = emission == kNone ? source.node : emission;
    Surface surface;
    surface.color = outputOfNode(source.node, source.output, "color3");
    if (const FragmentPorts::Port* const alpha = findPort(nodes_[teller].ports->outputs, "out_alpha")) {
      surface.alpha = outputOfNode(teller, alpha->name, "float");
    }
    const FragmentPorts* const sum = options_.fragments("mtlx_add_color3");
    if (emission == kNone || sum == nullptr || sum->inputs.size() < 2 || sum->outputs.empty()) return surface;
    const auto [entry, isNew] = sums_.try_emplace(source.node, kNone);
    if (isNew) {
      entry->second = addNode(nodes_[source.node].name + ".sum", "mtlx_add_color3", place);
      std::vector<BuiltInput>& inputs = nodes_[entry->second].inputs;
      inputs.push_back({sum->inputs[0].name, surface.color, &place});
      inputs.push_back({sum->inputs[1].name,
                        outputOfNode(emission, nodes_[emission].ports->outputs.front().name, "color3"),
                        &place});
    }
    surface.color = outputOfNode(entry->second, sum->outputs.front().name, "color3");
    return surface;
  }

  /// What a layer or mixture takes of a closure or surface: its light, and beside it what it lets through or
  /// covers. An unwired one is nothing.
  void connectClosure(std::size_t index, const DefinedPort& port, const Element* at) {
    const Source source = at == nullptr ? Source() : follow(nodes_[index].scope, at);
    if (source.kind != Source::Kind::node) return leaveDark(index, port);
    if (source.type != port.type) {
      tellOnce(*at, "`" + port.name + "` takes `" + port.type + "`, not `" + source.type + "`", "wire-type");
      return leaveDark(index, port);
    }
    const bool isSurface = port.type == "surfaceshader";
    const Surface surface = isSurface ? surfaceOf(source, *at) : Surface{source, {}};
    const FragmentPorts& ports = *nodes_[index].ports;
    if (const FragmentPorts::Port* const light = findPort(ports.inputs, port.name)) {
      nodes_[index].inputs.push_back({light->name, surface.color, at});
    }
    const FragmentPorts::Port* const beside =
        findPort(ports.inputs, port.name + (isSurface ? "_alpha" : "_throughput"));
    if (beside == nullptr) return;
    Source more = surface.alpha;
    if (!isSurface) {
      const std::size_t twin = twinOf(source.node, "_throughput");
      if (twin != kNone) more = outputOfNode(twin, nodes_[twin].ports->outputs.front().name, "color3");
    }
    if (more.kind == Source::Kind::nothing) return leaveUnwired(index, *beside, 1.0);
    nodes_[index].inputs.push_back({beside->name, more, at});
  }

  void leaveDark(std::size_t index, const DefinedPort& port) {
    const FragmentPorts& ports = *nodes_[index].ports;
    if (const auto* const light = findPort(ports.inputs, port.name)) leaveUnwired(index, *light, 0.0);
    if (const auto* const beside = findPort(ports.inputs, port.name + "_throughput")) {
      leaveUnwired(index, *beside, 1.0);
    }
    if (const auto* const beside = findPort(ports.inputs, port.name + "_alpha")) {
      leaveUnwired(index, *beside, 0.0);
    }
  }

  void leaveUnwired(std::size_t index, const FragmentPorts::Port& port, double number) {
    const std::string_view type = typeOfShader(port.type);
    if (type.empty()) return;
    const std::vector<double> numbers(componentCount(type), number);
    nodes_[index].inputs.push_back(
        {port.name, valueSource(type, valueOf(type, numbers)), nodes_[index].element});
  }

  void checkInputs(const Element& element, const std::map<std::string_view, const Element*>& given,
                   const Definition& definition) {
    if (!checked_.insert(&element).second) return;
    for (const auto& [name, child] : given) {
      const DefinedPort* const port = definition.input(name);
      if (port == nullptr) {
        std::vector<std::string> names;
        for (const DefinedPort& known : definition.inputs) names.push_back(known.name);
        reports_.warning(*child, "`" + element.category + "` has no input `" + std::string(name) + "`",
                         "unknown-port", host::suggest(name, names));
      } else if (port->type != child->attribute("type")) {
        std::string text = "`" + std::string(name) + "` of `" + element.category;
        text.append("` is a `").append(port->type).append("`, not a `").append(child->attribute("type"));
        reports_.error(*child, text.append("`"), "wire-type");
        told_.insert(child);
      }
    }
  }

  /// Gives an input what it takes, or its default.
  void connect(std::size_t index, const FragmentPorts::Port& fragmentPort, const DefinedPort& port,
               Source source, const Element& place) {
    if (source.kind == Source::Kind::text && source.type.empty()) source.type = port.type;
    source = applyChannels(std::move(source), index, fragmentPort.name, place);
    const bool isGiven = source.kind != Source::Kind::nothing;
    if (isGiven && source.type != port.type) {
      if (told_.insert(&place).second) {
        reports_.error(place, "`" + port.name + "` takes `" + port.type + "`, not `" + source.type + "`",
                       "wire-type");
      }
      source = {};
    }
    if (source.kind == Source::Kind::nothing) {
      // What the fragment reads from the geometry by itself stays without a wire.
      source = port.geomprop.empty() || port.element != nullptr ? defaultOf(port) : Source();
    }
    if (source.kind == Source::Kind::text) source = parsed(source, port, index, fragmentPort.name);
    const bool readsGeometry = !port.geomprop.empty() && port.element == nullptr;
    if (readsGeometry && source.kind == Source::Kind::value && isWired(place)) {
      // Fragments ask whether there is a wire.
      source = throughNode(std::move(source), "mtlx_constant_" + port.type,
                           nodes_[index].name + "." + fragmentPort.name + ".value", place);
    } else if (readsGeometry && source.kind == Source::Kind::value) {
      if (told_.insert(&place).second) {
        reports_.warning(place, "`" + port.name + "` comes from the geometry; a value has no effect",
                         "cannot-import");
      }
      source = {};
    }
    if (source.kind == Source::Kind::nothing) {
      const std::string_view type = typeOfShader(fragmentPort.type);
      if (type.empty()) return;
      source = valueSource(type, zeroOf(type));
    }
    nodes_[index].inputs.push_back({fragmentPort.name, std::move(source), &place});
  }

  /// Whether an input names where its value comes from.
  static bool isWired(const Element& input) {
    const auto has = [&](const char* word) { return input.has(word); };
    constexpr const char* kWords[] = {"nodename", "nodegraph", "output", "interfacename"};
    return std::any_of(std::begin(kWords), std::end(kWords), has);
  }

  static std::string_view typeOfShader(std::string_view type) {
    for (const std::string_view known :
         {"float", "integer", "boolean", "vector2", "vector3", "vector4", "matrix33", "matrix44"}) {
      if (shaderType(known) == type) return known;
    }
    return {};
  }

  /// A value in the words of a document as numbers, its colour in the working space, its length in metres.
  Source parsed(const Source& source, const DefinedPort& port, std::size_t index,
                const std::string& fragmentPort) {
    if (!port.names.empty()) {
      if (const std::optional<Source> named = enumerated(source, port)) return *named;
    }
    std::optional<host::Value> value = parseValue(port.type, source.text);
    if (!value) {
      if (source.place != nullptr && (port.type != "string" || !port.names.empty())) {
        tellWrongValue(*source.place, port, source.text);
      }
      value = parseValue(port.type, port.value);
      if (!value && port.type == "string") return enumerated({}, port).value_or(valueSource("integer", 0.0));
      return valueSource(port.type, value ? *value : zeroOf(port.type));
    }
    if (source.place == nullptr) return valueSource(port.type, *value);
    Source result = valueSource(port.type, inUnits(*value, *source.place, port));
    return inWorkingSpace(std::move(result), std::string(source.place->scope->colorSpace), *source.place,
                          nodes_[index].name + "." + fragmentPort);
  }

  void tellWrongValue(const Element& place, const DefinedPort& port, const std::string& text) {
    if (!told_.insert(&place).second) return;
    std::string what = "`" + text.substr(0, 64) + "` is no value of ";
    what.append(port.names.empty() ? "the type `" + port.type : "`" + port.name).append("`");
    reports_.error(place, what, port.names.empty() ? "wrong-value" : "unknown-word",
                   host::suggest(text.substr(0, 128), port.names));
  }

  /// The number that stands for a name; of an empty source that of the default.
  static std::optional<Source> enumerated(const Source& source, const DefinedPort& port) {
    const std::string& text = source.kind == Source::Kind::nothing ? port.value : source.text;
    const bool isText = port.type == "string";
    for (std::size_t i = 0; i < port.names.size(); ++i) {
      if (port.names[i] != text) continue;
      if (port.values.size() == port.names.size()) {
        const std::string_view type = isText ? std::string_view("integer") : std::string_view(port.type);
        if (const std::optional<host::Value> value = parseValue(type, port.values[i])) {
          return valueSource(type, *value);
        }
      }
      if (isText) return valueSource("integer", static_cast<double>(i));
    }
    // A word that is left away is none of them.
    if (isText && text.empty()) return valueSource("integer", -1.0);
    return std::nullopt;
  }

  host::Value inUnits(const host::Value& value, const Element& place, const DefinedPort& port) {
    const std::string unit(place.attribute("unit"));
    if (unit.empty()) return value;
    const std::optional<double> given = unitFactor(unit);
    if (!given) {
      warnOnce(place, "`" + unit + "` is no unit", "unknown-word");
      return value;
    }
    const std::optional<double> wanted = port.unit.empty() ? 1.0 : unitFactor(port.unit);
    std::vector<double> numbers = numbersOf(value);
    for (double& number : numbers) number *= *given / wanted.value_or(1.0);
    return valueOf(port.type, numbers);
  }

  // --- colours

  static bool isColor(std::string_view type) { return type == "color3" || type == "color4"; }

  /// The fragment that brings a colour to the working space; empty when there is none, or nothing to do.
  std::string colorFragment(const std::string& space, const std::string& type, const Element& place) {
    if (space.empty() || space == "none" || space == kWorkingSpace) return {};
    std::string name = space + "_to_" + std::string(kWorkingSpace);
    for (const Definition& definition : standard_.of(name)) {
      if (definition.outputs.front().type == type) return definition.fragment;
    }
    std::vector<std::string> known{std::string(kWorkingSpace)};
    const std::string behind = "_to_" + std::string(kWorkingSpace);
    for (const std::string& node : standard_.nodes()) {
      if (node.ends_with(behind)) known.push_back(node.substr(0, node.size() - behind.size()));
    }
    if (told_.insert(&place).second) {
      reports_.warning(place, "`" + space + "` is no colour space", "unknown-word",
                       host::suggest(space, known));
    }
    return {};
  }

  Source inWorkingSpace(Source source, const std::string& space, const Element& place,
                        const std::string& name) {
    if (!isColor(source.type)) return source;
    const std::string fragment = colorFragment(space, source.type, place);
    return fragment.empty() ? source : throughNode(std::move(source), fragment, name + ".color", place);
  }

  /// A node of one input behind the source.
  Source throughNode(Source source, const std::string& fragment, const std::string& name,
                     const Element& place) {
    const FragmentPorts* const ports = options_.fragments(fragment);
    if (ports == nullptr || ports->inputs.empty() || ports->outputs.empty()) {
      warnOnce(place, "there is no fragment `" + fragment + "`", "cannot-import");
      return source;
    }
    Source result;
    result.kind = Source::Kind::node;
    result.type = source.type;
    result.node = addNode(name, fragment, place);
    result.output = ports->outputs.front().name;
    nodes_[result.node].inputs.push_back({ports->inputs.front().name, std::move(source), &place});
    return result;
  }

  /// Puts the conversion behind every node that reads a file of another colour space.
  void convertColors() {
    std::map<std::pair<std::size_t, std::string>, Source> converted;
    const std::size_t count = nodes_.size();
    const auto convert = [&](std::size_t node, const std::string& output) -> const Source* {
      if (node >= count || nodes_[node].colorSpace.empty()) return nullptr;
      const auto [entry, isNew] = converted.try_emplace({node, output});
      if (isNew) {
        const Definition& definition = *nodes_[node].definition;
        Source source;
        source.kind = Source::Kind::node;
        source.node = node;
        source.output = output;
        for (const DefinedPort& port : definition.outputs) {
          if (port.name == output || port.name + "_" == output) source.type = port.type;
        }
        const Element& place = *nodes_[node].element;
        entry->second =
            inWorkingSpace(source, nodes_[node].colorSpace, place, nodes_[node].name + "." + output);
      }
      return &entry->second;
    };
    for (std::size_t i = 0; i < count; ++i) {
      for (std::size_t k = 0; k < nodes_[i].inputs.size(); ++k) {
        const Source source = nodes_[i].inputs[k].source;
        if (source.kind != Source::Kind::node) continue;
        if (const Source* const other = convert(source.node, source.output)) {
          nodes_[i].inputs[k].source = *other;
        }
      }
    }
    for (BuiltOutput& output : outputs_) {
      if (const Source* const other = convert(output.node, output.port)) {
        output.node = other->node;
        output.port = other->output;
      }
    }
  }

  // --- files

  /// Where the file is; true when the node became its default value instead.
  bool bringFile(std::size_t index, const FragmentPorts::Port& fragmentPort, const DefinedPort& port,
                 Source source, const Element* at, const Scope* scope) {
    if (source.kind == Source::Kind::nothing) source = defaultOf(port);
    const Element& place = source.place != nullptr ? *source.place : *nodes_[index].element;
    const Scope* const within = source.scope != nullptr ? source.scope : scope;
    std::string file = withTokens(source.text, within, place);
    if (!file.empty()) file = place.scope->filePrefix + file;
    ImportedTexture texture{nodes_[index].name, fragmentPort.name, file};
    const std::string found = file.empty() ? std::string() : locate(file, place);
    if (!found.empty()) {
      texture.file = found;
      nodes_[index].colorSpace = place.scope->colorSpace;
      if (at != nullptr && at->has("colorspace")) nodes_[index].colorSpace = at->attribute("colorspace");
      textures_.push_back(std::move(texture));
      return false;
    }
    if (!file.empty()) warnOnce(place, "there is no file `" + file + "`", "unreadable-file");
    return bringMissing(index, texture);
  }

  /// Without a file a node is its default value.
  bool bringMissing(std::size_t index, ImportedTexture& texture) {
    const Definition& definition = *nodes_[index].definition;
    const DefinedPort* fallback = definition.input("default");
    if (fallback == nullptr) fallback = definition.input("fallback");
    texture.isMissing = true;
    texture.value = {0.0, 0.0, 0.0, 1.0};
    if (fallback != nullptr) {
      const Element& element = *nodes_[index].element;
      const Element* const given = element.child("input", fallback->name);
      Source source = given == nullptr ? defaultOf(*fallback) : follow(nodes_[index].scope, given);
      const std::string plain = "mtlx_dot_" + fallback->type;
      const FragmentPorts* const ports = options_.fragments(plain);
      const bool isWhole = definition.outputs.size() == 1 && definition.outputs[0].type == fallback->type;
      if (isWhole && ports != nullptr && !ports->inputs.empty()) {
        nodes_[index].fragment = plain;
        nodes_[index].ports = ports;
        nodes_[index].inputs.clear();
        connect(index, ports->inputs.front(), *fallback, std::move(source), given ? *given : element);
        return true;
      }
      if (source.kind == Source::Kind::text) {
        if (const auto value = parseValue(fallback->type, source.text)) texture.value = numbersOf(*value);
      }
    }
    textures_.push_back(texture);
    return false;
  }

  /// The text with every `[token]` replaced by its value, from the inside out.
  std::string withTokens(const std::string& text, const Scope* scope, const Element& place) {
    std::string result;
    for (std::size_t at = 0; at < text.size();) {
      const std::size_t close = text[at] == '[' ? text.find(']', at) : std::string::npos;
      if (close == std::string::npos) {
        result += text[at++];
        continue;
      }
      const std::string name = text.substr(at + 1, close - at - 1);
      const Element* const token = findToken(name, scope);
      if (token == nullptr) {
        warnOnce(place, "there is no token `" + name + "`", "unknown-word");
        result.append(text, at, close - at + 1);
      } else {
        result += token->attribute("value");
      }
      at = close + 1;
    }
    if (result.find("<UDIM>") != std::string::npos || result.find("<UVTILE>") != std::string::npos) {
      warnOnce(place, "a texture of several tiles is not brought", "cannot-import");
    }
    return result;
  }

  const Element* findToken(const std::string& name, const Scope* scope) {
    for (const Scope* s = scope; s != nullptr; s = s->outer) {
      for (const Element* const holder :
           {s->instance, s->container, s->definition == nullptr ? nullptr : s->definition->element}) {
        if (holder == nullptr) continue;
        if (const Element* const token = holder->child("token", name)) return token;
      }
    }
    return nullptr;
  }

  std::string locate(const std::string& file, const Element& place) const {
    const std::filesystem::path path(file);
    if (path.is_absolute()) return options_.hasFile(file) ? file : std::string();
    std::vector<std::filesystem::path> folders{std::filesystem::path(place.file->name).parent_path()};
    folders.insert(folders.end(), options_.folders.begin(), options_.folders.end());
    for (const std::filesystem::path& folder : folders) {
      std::string candidate = (folder / path).lexically_normal().string();
      if (options_.hasFile(candidate)) return candidate;
    }
    return {};
  }

  // --- channels

  Source applyChannels(Source source, std::size_t index, const std::string& port, const Element& place) {
    const std::vector<Channels> channels = std::move(source.channels);
    source.channels.clear();
    for (auto step = channels.rbegin(); step != channels.rend(); ++step) {
      if (source.kind == Source::Kind::nothing) return {};
      if (source.kind == Source::Kind::text) {
        const auto value = parseValue(source.type, source.text);
        if (!value) return source;
        source = inWorkingSpace(valueSource(source.type, *value), source.place->scope->colorSpace,
                                *source.place, nodes_[index].name + "." + port);
      }
      const std::string name = nodes_[index].name + "." + port + "." + std::to_string(channels.rend() - step);
      source = swizzled(source, *step, name, place);
    }
    return source;
  }

  /// The components that the letters name, as a value of their type.
  Source swizzled(const Source& source, const Channels& channels, const std::string& name,
                  const Element& place) {
    const std::size_t wanted = componentCount(channels.type);
    const std::size_t count = componentCount(source.type);
    if (channels.letters.size() != wanted || wanted == 0 || wanted > 4 || count == 0 || count > 4) {
      tellOnce(place, "`" + channels.letters + "` are no channels that make a `" + channels.type + "`",
               "unknown-word");
      return {};
    }
    std::vector<Source> parts;
    for (const char letter : channels.letters) {
      parts.push_back(component(source, letter, name + "." + std::to_string(parts.size()), place));
      if (parts.back().kind == Source::Kind::nothing) return {};
    }
    if (wanted == 1) return parts.front();
    const std::string fragment = "mtlx_combine" + std::to_string(wanted) + "_" + channels.type;
    const FragmentPorts* const ports = options_.fragments(fragment);
    if (ports == nullptr || ports->inputs.size() < wanted || ports->outputs.empty()) {
      warnOnce(place, "there is no fragment `" + fragment + "`", "cannot-import");
      return {};
    }
    Source result;
    result.kind = Source::Kind::node;
    result.type = channels.type;
    result.node = addNode(name, fragment, place);
    result.output = ports->outputs.front().name;
    for (std::size_t i = 0; i < wanted; ++i) {
      nodes_[result.node].inputs.push_back({ports->inputs[i].name, parts[i], &place});
    }
    return result;
  }

  Source component(const Source& source, char letter, const std::string& name, const Element& place) {
    if (letter == '0' || letter == '1') return valueSource("float", letter == '1' ? 1.0 : 0.0);
    const std::size_t place4 = std::string_view("rgbaxyzw").find(letter);
    if (place4 == std::string_view::npos || place4 % 4 >= componentCount(source.type)) {
      tellOnce(place, std::string("a `") + source.type + "` has no channel `" + letter + "`", "unknown-word");
      return {};
    }
    if (source.kind == Source::Kind::value) {
      return valueSource("float", numbersOf(source.value)[place4 % 4]);
    }
    if (source.type == "float") return source;
    const std::string fragment = "mtlx_extract_" + source.type;
    const FragmentPorts* const ports = options_.fragments(fragment);
    if (ports == nullptr || ports->inputs.size() < 2 || ports->outputs.empty()) {
      warnOnce(place, "there is no fragment `" + fragment + "`", "cannot-import");
      return {};
    }
    Source result;
    result.kind = Source::Kind::node;
    result.type = "float";
    result.node = addNode(name, fragment, place);
    result.output = ports->outputs.front().name;
    nodes_[result.node].inputs.push_back({ports->inputs[0].name, source, &place});
    nodes_[result.node].inputs.push_back(
        {ports->inputs[1].name, valueSource("integer", static_cast<double>(place4 % 4)), &place});
    return result;
  }

  // --- outputs

  void bringOutput(const WantedOutput& wanted) {
    const Element& element = *wanted.element;
    const Scope* scope = &rootScope_;
    if (element.parent != nullptr && element.parent->category == "nodegraph") {
      // What a graph that implements a definition is given is the definition's own.
      const Element& graph = *element.parent;
      scope = innerScope(&rootScope_, graph, graph, definitions_.implementedBy(graph));
    }
    Source source = follow(scope, &element);
    const std::string type(element.attribute("type"));
    if (source.kind == Source::Kind::nothing) {
      return warnOnce(element, "`" + wanted.name + "` is left out: nothing feeds it", "cannot-import");
    }
    if (isClosure(source.type) && source.kind == Source::Kind::node) return bringSurface(source, element);
    source = asNode(std::move(source), type, wanted.name, element);
    if (source.kind != Source::Kind::node) {
      return warnOnce(element, "`" + wanted.name + "` is left out: it has no numbers", "cannot-import");
    }
    if (source.type != type) {
      tellOnce(element, "`" + wanted.name + "` takes `" + type + "`, not `" + source.type + "`", "wire-type");
    }
    addOutput("out_" + identifierOf(wanted.name), source.node, source.output);
  }

  void bringSurface(const Source& source, const Element& place) {
    const Surface surface = surfaceOf(source, place);
    addOutput("color", surface.color.node, surface.color.output);
    if (surface.alpha.kind == Source::Kind::node) {
      addOutput("alpha", surface.alpha.node, surface.alpha.output);
    }
    isLit_ = true;
  }

  void addOutput(const std::string& name, std::size_t node, const std::string& port) {
    const FragmentPorts::Port* const found = findPort(nodes_[node].ports->outputs, port);
    if (found == nullptr) return;
    outputs_.push_back({name, found->type, node, port});
  }

  /// The source as the output of a node: values and graph inputs go through one that hands them on.
  Source asNode(Source source, const std::string& type, const std::string& name, const Element& place) {
    if (source.kind == Source::Kind::node && source.channels.empty()) return source;
    const std::string fragment = "mtlx_dot_" + type;
    const FragmentPorts* const ports = options_.fragments(fragment);
    if (ports == nullptr || ports->inputs.empty() || ports->outputs.empty()) return {};
    const std::size_t helper = addNode("output:" + name, fragment, place);
    DefinedPort port;
    port.name = name;
    port.type = type;
    connect(helper, ports->inputs.front(), port, std::move(source), place);
    Source result;
    result.kind = Source::Kind::node;
    result.type = type;
    result.node = helper;
    result.output = ports->outputs.front().name;
    return result;
  }

  // --- the whole

  /// Replaces wires that close a cycle by the default value of their input.
  void cutCycles() {
    enum class State : char { fresh, open, done };
    std::vector<State> states(nodes_.size(), State::fresh);
    std::vector<std::pair<std::size_t, std::size_t>> stack;
    for (std::size_t start = 0; start < nodes_.size(); ++start) {
      if (states[start] != State::fresh) continue;
      stack.emplace_back(start, 0);
      states[start] = State::open;
      while (!stack.empty()) {
        const std::size_t node = stack.back().first;
        const std::size_t k = stack.back().second++;
        if (k >= nodes_[node].inputs.size()) {
          states[node] = State::done;
          stack.pop_back();
          continue;
        }
        BuiltInput& input = nodes_[node].inputs[k];
        if (input.source.kind != Source::Kind::node) continue;
        const std::size_t next = input.source.node;
        if (states[next] == State::open) {
          tellOnce(*input.place, "this wire closes a cycle; its default value stands in its place", "loop");
          // A closure has no value of its own: the input is left to its fragment.
          const bool hasValue = componentCount(input.source.type) > 0;
          input.source = hasValue ? valueSource(input.source.type, zeroOf(input.source.type)) : Source();
        } else if (states[next] == State::fresh) {
          states[next] = State::open;
          stack.emplace_back(next, 0);
        }
      }
    }
  }

  ImportedGraph result() {
    ImportedGraph imported;
    for (const auto& [name, type] : graphInputs_) {
      host::Parameter parameter;
      parameter.name = name;
      parameter.type = shaderType(type);
      imported.graph.inputs.push_back(parameter);
    }
    for (const BuiltNode& node : nodes_) imported.graph.nodes.push_back(hostNode(node));
    for (const BuiltOutput& output : outputs_) {
      host::GraphOutput graphOutput;
      graphOutput.parameter.name = output.name;
      graphOutput.parameter.type = output.type;
      graphOutput.source = {nodes_[output.node].name, output.port};
      imported.graph.outputs.push_back(graphOutput);
    }
    imported.textures = std::move(textures_);
    imported.isLit = isLit_;
    return imported;
  }

  host::Node hostNode(const BuiltNode& node) const {
    host::Node result;
    result.name = node.name;
    result.fragment = node.fragment;
    for (const BuiltInput& input : node.inputs) {
      if (input.source.kind == Source::Kind::nothing) continue;
      host::NodeInput wire;
      wire.name = input.port;
      if (input.source.kind == Source::Kind::node) {
        wire.source = host::NodeOutput{nodes_[input.source.node].name, input.source.output};
      } else if (input.source.kind == Source::Kind::graphInput) {
        wire.source = host::GraphInput{input.source.output};
      } else {
        wire.source = host::Constant{input.source.value};
      }
      result.inputs.push_back(std::move(wire));
    }
    return result;
  }

  using Scoped = std::pair<const Scope*, const Element*>;

  const Element& root_;
  Definitions& definitions_;
  StandardDefinitions& standard_;
  const GraphImportOptions& options_;
  Reports& reports_;
  Scope rootScope_;
  std::map<Scoped, std::unique_ptr<Scope>> scopes_;
  std::map<Scoped, std::size_t> instances_;
  std::map<std::string, std::size_t> geometry_;
  std::map<std::pair<std::size_t, std::string>, std::size_t> twins_;
  std::map<std::size_t, std::size_t> sums_;
  std::map<std::string, std::string> graphInputs_;
  std::unordered_map<const Element*, std::unordered_map<std::string, const Element*>> members_;
  std::set<const Element*> told_;
  std::set<const Element*> checked_;
  std::vector<BuiltNode> nodes_;
  std::vector<BuiltOutput> outputs_;
  std::vector<ImportedTexture> textures_;
  bool isLit_ = false;
};

}  // namespace

ImportedGraph importGraph(const Element& root, const std::vector<WantedOutput>& outputs,
                          Definitions& definitions, StandardDefinitions& standard,
                          const GraphImportOptions& options, Reports& reports) {
  return Importer(root, definitions, standard, options, reports).run(outputs);
}

}  // namespace TolmSDK::Graphics::sfg::materialx
