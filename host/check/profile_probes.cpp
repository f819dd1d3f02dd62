#include "host/check/profile_probes.h"

#include <set>

#include "host/documents/shader_names.h"
#include "host/origins/code_tokens.h"
#include "tolmsdk/state_variables.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

constexpr std::wstring_view kInout = L"inout ";
constexpr const char* kDefaultProfile = "default";
constexpr const char* kChecked = "checked";

bool isInout(std::wstring_view type) { return type.starts_with(kInout); }

std::wstring_view withoutInout(std::wstring_view type) {
  return isInout(type) ? type.substr(kInout.size()) : type;
}

bool serves(const IShaderFragmentProfile& profile, const UString& language) {
  return profile.languages().contains(language);
}

/// A port of that type in the code; a name that is no type of the language is a structure's.
Parameter portOf(const ILanguageTraits& language, std::wstring_view type, const WString& name) {
  const WString plain(withoutInout(type));
  Parameter port;
  port.name = toUtf8(name);
  port.type = toUtf8(plain);
  if (language.getTypeID(plain) == TypeID_nil) {
    port.type = "struct";
    port.structName = toUtf8(plain);
  }
  return port;
}

/// The type with which the code declares a variable; empty without one.
std::string declaredType(std::wstring_view code, std::wstring_view name, const ILanguageTraits& language) {
  const CodeTokens tokens = tokensOf(code);
  for (std::size_t i = 1; i < tokens.size(); ++i) {
    if (tokens[i].in(code) != name || !tokens[i - 1].isName) continue;
    const WString type(tokens[i - 1].in(code));
    if (language.getTypeID(type) != TypeID_nil) return toUtf8(type);
  }
  return std::string();
}

/// "a" of "{{a}}".
std::string placeholderName(const std::string& text) {
  const std::size_t start = text.find_first_not_of("{ \t");
  const std::size_t end = text.find_last_not_of("} \t");
  return start == text.npos || end == text.npos ? text : text.substr(start, end + 1 - start);
}

std::string textOf(const ScopedText& text) { return toUtf8(text.view()); }

}  // namespace

bool hasLightBlocks(const IShaderFragmentProfile& profile) {
  constexpr std::wstring_view kCall = L"TOLM_SCENE_LIGHTING";
  return profile.getMode() == EShaderFragmentProfileMode::MetaSL &&
         (profile.getFunctionBody().find(kCall) != WString::npos ||
          profile.predefines().find(kCall) != WString::npos);
}

std::string sourceNames(std::string text, const Probe& probe) {
  for (std::size_t i = 0; i < probe.graph.nodes.size(); ++i) {
    const Node& node = probe.graph.nodes[i];
    if (node.name != kChecked) continue;
    for (const Parameter& input : node.ports->inputs) {
      const std::string generated = "`" + input.name + "n" + std::to_string(i) + "`";
      for (std::size_t at = text.find(generated); at != text.npos; at = text.find(generated, at + 1))
        text.replace(at, generated.size(), "`" + input.name + "`");
    }
  }
  return text;
}

bool isLit(const IShaderFragmentProfile& profile) {
  return profile.stateVariables().contains(StateVariable_currentLight);
}

ProbeMaker::ProbeMaker(const LoadedLibraries& libraries) : libraries_(libraries) {
  for (const auto& [name, entry] : libraries.files().entries()) {
    const IShaderFragment* const fragment = libraries.language().findFragment(name);
    if (fragment == nullptr) continue;
    addLights(*fragment);
    for (std::size_t i = 0; i < fragment->getNumProfiles(); ++i) {
      const auto* const profile = dynamic_cast<const AShaderFragmentProfile*>(fragment->getProfile(i));
      if (profile != nullptr) addSources(*profile);
    }
  }
}

/// The current light is of the structure that its profile is named after; of several lights one without
/// inputs is best.
void ProbeMaker::addLights(const IShaderFragment& fragment) {
  for (std::size_t i = 0; i < fragment.getNumProfiles(); ++i) {
    const IShaderFragmentProfile& profile = *fragment.getProfile(i);
    if (!serves(profile, libraries_.language().getLanguageString()) || isLit(profile)) continue;
    const ITextParameterList& parameters = *profile.getFunctionParameters();
    const WString& name = profile.getProfilename();
    if (parameters.getNumOutputs() == 0) continue;
    if (parameters.getOutputType(0) != name && toUtf8(name) != kMslLights) continue;
    lights_.emplace(toUtf8(name), toUtf8(fragment.key()));
  }
}

std::string ProbeMaker::lightOf(const std::string& profile) const {
  const auto found = lights_.find(profile);
  return found != lights_.end() ? found->second : std::string();
}

/// Inputs that the code changes or calls need a function.
void ProbeMaker::addSources(const AShaderFragmentProfile& profile) {
  const ITextParameterList& parameters = *profile.getFunctionParameters();
  for (std::size_t i = 0; i < parameters.getNumInputs(); ++i) {
    Array<BuiltinFunction> uses;
    const bool isCalled = profile.GetShaderFunctions(parameters.getInputName(i), uses);
    if (!isCalled && !isInout(parameters.getInputType(i))) continue;
    SourceFragment source;
    source.name = "sfg_checkSource" + std::to_string(sourceCount_++);
    source.type = toUtf8(withoutInout(parameters.getInputType(i)));
    for (const WString& include : profile.includes()) source.includes.push_back(toUtf8(include));
    std::set<std::string> names;
    for (const BuiltinFunction& use : uses) {
      // The arguments behind the first are names and values by turns; the last name is what is asked for.
      for (std::size_t k = 1; k + 1 < use.arguments.size(); k += 2) {
        const std::string name = textOf(use.arguments[k]);
        if (!isIdentifier(name)) continue;
        if (k + 3 >= use.arguments.size()) {
          source.output = name;
          continue;
        }
        if (!names.insert(name).second) continue;
        std::string type =
            declaredType(profile.getFunctionBody(), use.arguments[k + 1].view(), libraries_.language());
        for (std::size_t p = 0; p < parameters.getNumInputs() && type.empty(); ++p) {
          if (parameters.getInputName(p) == use.arguments[k + 1].view())
            type = toUtf8(withoutInout(parameters.getInputType(p)));
        }
        source.inputs.emplace_back(type.empty() ? "float2" : type, name);
      }
    }
    sources_[&profile].emplace(i, std::move(source));
  }
}

std::vector<SourceFragment> ProbeMaker::sources() const {
  std::vector<SourceFragment> all;
  for (const auto& [profile, sources] : sources_)
    for (const auto& [input, source] : sources) all.push_back(source);
  return all;
}

/// The probes of one profile.
struct ProbeMaker::PlanWriter {
  const ProbeMaker& maker;
  const IShaderFragment& fragment;
  const AShaderFragmentProfile& profile;
  NodeInterface ports;
  ProfilePlan plan;

  bool isExpression() const { return profile.getMode() == EShaderFragmentProfileMode::Inline; }

  const SourceFragment* sourceOf(std::size_t input) const {
    const auto found = maker.sources_.find(&profile);
    if (found == maker.sources_.end()) return nullptr;
    const auto source = found->second.find(input);
    return source != found->second.end() ? &source->second : nullptr;
  }

  /// Inputs whose connection changes the code.
  std::set<std::size_t> askedInputs() const {
    std::set<std::size_t> asked;
    const auto look = [&](const Array<BuiltinFunction>& uses) {
      for (const BuiltinFunction& use : uses) {
        if (use.id == eBuiltinFunctionIsFinalOutput || use.arguments.empty()) continue;
        for (std::size_t i = 0; i < ports.inputs.size(); ++i)
          if (ports.inputs[i].name == textOf(use.arguments[0])) asked.insert(i);
      }
    };
    look(profile.getBodyBuiltinFunctions());
    look(profile.getPredefineBuiltinFunctions());
    for (std::size_t i = 0; i < ports.inputs.size(); ++i)
      if (sourceOf(i) != nullptr && !isChanged(i)) asked.insert(i);
    return asked;
  }
  bool isChanged(std::size_t input) const {
    const ITextParameterList& parameters = *profile.getFunctionParameters();
    return !isExpression() && input < parameters.getNumInputs() && isInout(parameters.getInputType(input));
  }

  /// Outputs that ask whether they are the graph's.
  std::set<std::size_t> askedOutputs() const {
    std::set<std::size_t> asked;
    for (const BuiltinFunction& use : profile.getBodyBuiltinFunctions()) {
      if (use.id != eBuiltinFunctionIsFinalOutput || use.arguments.empty()) continue;
      for (std::size_t i = 0; i < ports.outputs.size(); ++i)
        if (ports.outputs[i].name == textOf(use.arguments[0])) asked.insert(i);
    }
    return asked;
  }

  /// The checked node with some inputs connected.
  Graph graphWith(const std::set<std::size_t>& connected) const {
    Graph graph;
    Node node{kChecked, toUtf8(fragment.key()), {}, ports};
    for (std::size_t i = 0; i < ports.inputs.size(); ++i) {
      if (!connected.contains(i) && !isChanged(i)) continue;
      Node source;
      source.name = "source" + std::to_string(i);
      NodeOutput output{source.name, "value"};
      if (const SourceFragment* const made = sourceOf(i)) {
        source.fragment = made->name;
        output.output = made->output;
      } else {
        source.fragment = kPassFragment;
        Parameter value = ports.inputs[i];
        value.name = "value";
        Parameter result = value;
        source.ports = NodeInterface{{value}, {result}};
      }
      node.inputs.push_back({ports.inputs[i].name, output});
      graph.nodes.push_back(std::move(source));
    }
    graph.nodes.push_back(std::move(node));
    return graph;
  }

  void addOutput(Graph& graph, const NodeOutput& from, const std::string& type) const {
    Parameter output;
    output.name = "checkedResult";
    output.type = type;
    graph.outputs.push_back({output, from});
  }

  /// Its first output becomes the graph's, whatever its type.
  void sink(Graph& graph) const {
    Node node{"sink", isExpression() ? kTakeFragment : kDropFragment, {}, std::nullopt};
    Parameter value = ports.outputs[0];
    value.name = "value";
    Parameter result;
    result.name = "result";
    result.type = "float4";
    node.ports = NodeInterface{{value}, {result}};
    node.inputs.push_back({"value", NodeOutput{kChecked, ports.outputs[0].name}});
    graph.nodes.push_back(std::move(node));
    addOutput(graph, NodeOutput{"sink", "result"}, "float4");
  }

  /// The environments under which the profile is taken.
  std::vector<Environment> environments() {
    const std::string name = toUtf8(profile.getProfilename());
    if (isLit(profile)) {
      const std::string light = maker.lightOf(name);
      if (light.empty()) {
        plan.mayBeUsed = true;
        plan.whyNone = "no fragment of the libraries is a light of the profile `" + name + "`";
        return {};
      }
      return {Environment{{{"light", light, name}}, {}}};
    }
    if (hasLightBlocks(profile)) {
      const std::string light = maker.lightOf(kMslLights);
      const std::string other = name == kDefaultProfile ? kMslLights : name;
      Environment lit{{{"light", light.empty() ? kLightFragment : light, other}}, {}};
      if (name != kDefaultProfile) return {lit};
      return {lit, Environment()};
    }
    if (name != kDefaultProfile) return {Environment{{{"light", kLightFragment, name}}, {}}};
    return {Environment()};
  }

  bool needsLightLoop() const {
    return toUtf8(profile.getProfilename()) != kDefaultProfile || isLit(profile) || hasLightBlocks(profile);
  }

  void add(Graph graph, const std::vector<Environment>& environments) {
    for (const Environment& environment : environments) {
      Probe probe;
      probe.graph = graph;
      probe.environment = environment;
      probe.options.tool = needsLightLoop() ? CollapseTool::lightLoop : CollapseTool::standard;
      probe.options.surfaceLod = profile.getLOD();
      plan.probes.push_back(std::move(probe));
    }
  }

  void addVariants(const std::vector<Environment>& environments) {
    const std::set<std::size_t> asked = askedInputs();
    std::set<std::set<std::size_t>> variants{{}, asked};
    for (const std::size_t input : asked) variants.insert({input});
    for (const std::set<std::size_t>& connected : variants) {
      Graph graph = graphWith(connected);
      sink(graph);
      add(std::move(graph), environments);
    }
    for (const std::size_t output : askedOutputs()) {
      if (ports.outputs[output].type == "struct") continue;
      Graph graph = graphWith({});
      addOutput(graph, NodeOutput{kChecked, ports.outputs[output].name}, ports.outputs[output].type);
      add(std::move(graph), environments);
    }
  }

  /// Of a function without outputs: no node can be wired to it, but a chain can hold it.
  void addChain() {
    Graph graph;
    const auto addValue = [&](const Parameter& port) {
      Parameter value = port;
      value.name = "value";
      Node node;
      node.name = "source" + std::to_string(graph.nodes.size());
      node.fragment = kPassFragment;
      node.ports = NodeInterface{{value}, {value}};
      Parameter output = port;
      output.name = "checkedResult" + std::to_string(graph.outputs.size());
      graph.outputs.push_back({output, NodeOutput{node.name, "value"}});
      graph.nodes.push_back(std::move(node));
    };
    for (const Parameter& port : ports.inputs) addValue(port);
    std::vector<std::string>& chain = ports.inputs.empty() ? graph.preprocess : graph.postprocess;
    chain.push_back(toUtf8(fragment.key()));
    if (ports.inputs.empty()) {
      Parameter nothing;
      nothing.name = "value";
      nothing.type = "float4";
      addValue(nothing);
    }
    add(std::move(graph), {Environment()});
    plan.probes.back().options.tool = CollapseTool::lightLoop;
  }

  void takePorts() {
    const ITextParameterList& parameters = *profile.getFunctionParameters();
    const ILanguageTraits& language = maker.libraries_.language();
    for (std::size_t i = 0; i < parameters.getNumInputs(); ++i)
      ports.inputs.push_back(portOf(language, parameters.getInputType(i), parameters.getInputName(i)));
    for (std::size_t i = 0; i < parameters.getNumOutputs(); ++i)
      ports.outputs.push_back(portOf(language, parameters.getOutputType(i), parameters.getOutputName(i)));
  }

  /// All placeholders of one type.
  void guessPorts(const char* type) {
    const ITextParameterList& parameters = *profile.getFunctionParameters();
    ports = NodeInterface();
    const auto typed = [&](std::string name) {
      Parameter port;
      port.name = std::move(name);
      port.type = type;
      return port;
    };
    for (std::size_t i = 0; i < parameters.getNumInputs(); ++i)
      ports.inputs.push_back(typed(placeholderName(toUtf8(parameters.getInputName(i)))));
    ports.outputs.push_back(typed("result"));
  }
};

ProfilePlan ProbeMaker::plan(const IShaderFragment& fragment, std::size_t index,
                             const std::optional<NodeInterface>& expressionPorts) const {
  const auto* const profile = dynamic_cast<const AShaderFragmentProfile*>(fragment.getProfile(index));
  const UString& language = libraries_.language().getLanguageString();
  if (profile == nullptr || !serves(*profile, language))
    return {{}, false, "it is for another language", false};
  if (fragment.findBestProfile(profile->getProfilename(), language, profile->getLOD()) != profile)
    return {{}, false, "another profile of its name and level of detail comes first", isLit(*profile)};

  PlanWriter writer{*this, fragment, *profile, {}, {}};
  const std::vector<Environment> environments = writer.environments();
  if (environments.empty()) return std::move(writer.plan);
  if (!writer.isExpression()) {
    writer.takePorts();
    if (writer.ports.outputs.empty()) {
      const bool isDefault = toUtf8(profile->getProfilename()) == kDefaultProfile && !isLit(*profile);
      if (!isDefault) return {{}, false, "it has no output, and chains take the profile `default`", true};
      writer.addChain();
    } else {
      writer.addVariants(environments);
    }
  } else if (expressionPorts && !expressionPorts->outputs.empty()) {
    writer.ports = *expressionPorts;
    writer.addVariants(environments);
  } else {
    for (const char* const type : {"float3", "float", "float2", "float4"}) {
      writer.guessPorts(type);
      Graph graph = writer.graphWith({});
      writer.sink(graph);
      writer.add(std::move(graph), environments);
    }
    writer.plan.areGuesses = true;
  }
  return std::move(writer.plan);
}

}  // namespace TolmSDK::Graphics::sfg::host
