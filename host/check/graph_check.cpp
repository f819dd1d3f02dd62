#include "host/check/graph_check.h"

#include <algorithm>
#include <iterator>
#include <set>

#include "host/documents/diagnose.h"
#include "host/documents/document_reader.h"
#include "host/documents/graph_document.h"
#include "host/documents/near_name.h"
#include "host/documents/shader_names.h"
#include "host/documents/shading_environment.h"
#include "host/job/collapse_job.h"
#include "host/job/evaluated_surface.h"
#include "host/lints/lints.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

WhyUnknown whyUnknownOf(const LoadedLibraries& libraries) {
  return [&libraries](std::string_view name) { return libraries.whyUnknown(name); };
}

/// What decides how a graph is collapsed.
struct GraphNature {
  bool isLit = false;           ///< code reads a light
  bool hasLightBlocks = false;  ///< code is written once for every light
  bool hasChain = false;        ///< post-process fragments
  bool hasSeveralSources = false;
  bool lacksDefault = false;  ///< a fragment has no profile but for lights
  std::set<std::string> lightProfiles;

  bool needsLightLoop() const { return isLit || hasLightBlocks || hasChain || hasSeveralSources; }
  /// Of a graph for the light loop.
  bool isForBoth() const { return !hasLightBlocks && !hasSeveralSources && !lacksDefault; }
};

void look(GraphNature& nature, const IShaderFragment& fragment, const UString& language) {
  for (std::size_t i = 0; i < fragment.getNumProfiles(); ++i) {
    const IShaderFragmentProfile& profile = *fragment.getProfile(i);
    if (!profile.languages().contains(language)) continue;
    if (isLit(profile)) {
      nature.isLit = true;
      nature.lightProfiles.insert(toUtf8(profile.getProfilename()));
    }
    if (hasLightBlocks(profile)) {
      nature.hasLightBlocks = true;
      nature.lightProfiles.insert(kMslLights);
    }
  }
  if (fragment.findBestProfile(L"default", language, 100.0f) == nullptr) nature.lacksDefault = true;
}

GraphNature natureOf(const GraphDocument& graph, const LanguageDx11& language) {
  GraphNature nature;
  std::set<const IShaderFragment*> known;
  for (std::size_t i = 0; i < graph.getNumNodes(); ++i) {
    const IShaderFragment* const fragment = language.findFragment(graph.node(i).fragmentName());
    if (fragment != nullptr && known.insert(fragment).second)
      look(nature, *fragment, language.getLanguageString());
  }
  nature.hasChain = !graph.postprocess().empty();
  std::set<const GraphNode*> sources;
  for (const GraphNode::Wire& wire : graph.outputWires()) sources.insert(wire.source);
  nature.hasSeveralSources = sources.size() > 1;
  return nature;
}

/// One light of the libraries for each profile that can be had.
Environment lightsFor(const GraphNature& nature, const ProbeMaker& probes) {
  Environment environment;
  for (const std::string& profile : nature.lightProfiles) {
    const std::string light = probes.lightOf(profile);
    if (!light.empty())
      environment.lights.push_back({"checked" + std::to_string(environment.lights.size()), light, profile});
  }
  return environment;
}

/// Nothing of documents that nobody wrote, but what goes wrong with them is told of the one that was checked.
void dropMadeUp(std::vector<FindingGroup>& groups, const std::string& document) {
  const auto isMadeUp = [](const Diagnostic& diagnostic) {
    return diagnostic.file == kMadeUpGraph || diagnostic.file == kMadeUpLights || diagnostic.file.empty();
  };
  std::erase_if(groups, [&](const FindingGroup& group) {
    return isMadeUp(group.finding) && group.finding.severity != Severity::error;
  });
  for (FindingGroup& group : groups) {
    std::erase_if(group.notes, isMadeUp);
    if (!isMadeUp(group.finding)) continue;
    group.finding.file = document;
    group.finding.line = group.finding.column = 0;
  }
}

/// What is wrong with single lights of an environment that was read.
class LightCheck {
public:
  LightCheck(const Document& document, const UString& language) : document_(document), language_(language) {
    root_ = createJsonNode();
    if (document.isFile()) {
      root_->loadFromFile(fromUtf8(document.name()));
    } else {
      root_->loadFromText(fromUtf8(*document.text()));
    }
  }

  std::vector<FindingGroup> check(const ShadingEnvironment& environment) {
    for (std::size_t i = 0; i < environment.getNumLights(); ++i) {
      checkProfile(environment.lights()[i], i);
    }
    return std::move(groups_);
  }

private:
  /// Of the value under the key, or of the light.
  TextPosition placeOf(const ShadingEnvironment::Light& light, std::size_t index,
                       std::wstring_view key) const {
    const IObjectDataNode* const lights = root_->member(L"lights");
    const IObjectDataNode* const object = lights != nullptr ? lights->element(index) : nullptr;
    const IObjectDataNode* const value = object != nullptr ? object->member(key) : nullptr;
    return value != nullptr ? value->position() : light.position;
  }

  void checkProfile(const ShadingEnvironment::Light& light, std::size_t index) {
    const WString& wanted = light.profile->getProfilename();
    const Set<WString> offered = offeredProfileNames(*light.fragment, language_);
    if (offered.contains(wanted)) return;
    std::vector<std::string> names;
    for (const WString& name : offered) names.push_back(toUtf8(name));
    const bool hasDefault = offered.contains(L"default");
    tell(Finding::lightProfile, hasDefault ? Severity::warning : Severity::error,
         placeOf(light, index, L"profile"),
         "the fragment " + inTicks(light.fragment->key()) + " has no profile " + inTicks(wanted) +
             (hasDefault ? "; its default profile is taken" : "") +
             didYouMean(nearestName(toUtf8(wanted), names)));
  }

  void tell(Finding kind, Severity severity, TextPosition position, std::string text) {
    groups_.push_back({diagnose(kind, severity, document_.name(), position, std::move(text)), {}});
  }

  const Document& document_;
  const UString& language_;
  RefPtr<IObjectDataNode> root_;
  std::vector<FindingGroup> groups_;
};

std::vector<FindingGroup> refusalOf(const InputError& error) {
  std::vector<FindingGroup> groups = groupsOf(error.related());
  append(groups, groupsOf(std::vector<Diagnostic>{error.diagnostic()}));
  return groups;
}

/// A graph for an environment: a lit node, unless there is no light, and an output for each input of the
/// output fragment.
class EnvironmentGraph {
public:
  explicit EnvironmentGraph(const ShadingEnvironment& environment)
      : mayBeLit_(environment.getNumLights() > 0) {
    if (const IShaderFragment* const taker = environment.getOutputFragment()) {
      for (std::size_t i = 0; i < taker->getNumInputs(); ++i) addOutput(*taker->getInput(i));
    }
    if (graph_.outputs.empty()) addOutput(*makeRef<AParameter>(TypeID_fvec4, WString()));
  }

  Graph take() { return std::move(graph_); }

private:
  void addOutput(const AParameter& taker) {
    constexpr TypeID kFloats[] = {TypeID_float, TypeID_fvec2, TypeID_fvec3, TypeID_fvec4};
    Parameter value;
    value.name = "value";
    value.type = taker.getType() == TypeID_struct ? "struct" : toUtf8(taker.getType().toString());
    value.structName = toUtf8(taker.getStructName());
    Parameter output = value;
    output.name = "checkedResult" + std::to_string(graph_.outputs.size());
    Node node;
    node.name = "node" + std::to_string(graph_.nodes.size());
    NodeOutput source{node.name, "value"};
    const auto* const found = std::find(std::begin(kFloats), std::end(kFloats), taker.getType());
    if (mayBeLit_ && found != std::end(kFloats)) {
      // One is enough, and lit nodes may not be several of one result.
      mayBeLit_ = false;
      node.fragment = litFragment(static_cast<std::size_t>(found - std::begin(kFloats)) + 1);
      source.output = "result";
    } else {
      node.fragment = kPassFragment;
      node.ports = NodeInterface{{value}, {value}};
    }
    graph_.nodes.push_back(std::move(node));
    graph_.outputs.push_back({std::move(output), std::move(source)});
  }

  bool mayBeLit_;
  Graph graph_;
};

}  // namespace

std::vector<FindingGroup> checkGraph(const CheckTools& tools, const ProbeMaker& probes, const Document& graph,
                                     std::optional<CollapseTool> tool,
                                     const std::optional<Document>& environment) {
  const LoadedLibraries& libraries = *tools.libraries->loaded();
  GraphNature nature;
  std::vector<FindingGroup> lints;
  try {
    const CollapseJob job(tools.libraries->loaded(), graph, std::nullopt, {});
    nature = natureOf(job.document(), libraries.language());
    lints = groupsOf(lintGraph(libraries, graph));
  } catch (const InputError& error) {
    return refusalOf(error);
  }
  // Of the default tool only light blocks have use for lights.
  const bool usesLights = tool != CollapseTool::standard || nature.hasLightBlocks;
  const Environment lights = usesLights ? lightsFor(nature, probes) : Environment();
  const std::optional<Document> scene =
      environment || lights.lights.empty() ? environment : Document::from(lights, kMadeUpLights);

  CollapseOptions options;
  options.tool = tool.value_or(nature.needsLightLoop() ? CollapseTool::lightLoop : CollapseTool::standard);
  std::vector<FindingGroup> groups = findInJob(tools, graph, options, scene);
  if (!tool && nature.needsLightLoop() && nature.isForBoth() && !hasErrors(groups)) {
    // What the default tool only warns of is meant for the light loop.
    options.tool = CollapseTool::standard;
    for (FindingGroup& group : findInJob(tools, graph, options, std::nullopt))
      if (group.finding.severity == Severity::error) groups.push_back(std::move(group));
  }
  dropMadeUp(groups, graph.name());
  append(groups, std::move(lints));
  return groups;
}

std::vector<FindingGroup> checkEnvironment(const CheckTools& tools, const Document& environment) {
  const LoadedLibraries& libraries = *tools.libraries->loaded();
  RefPtr<ShadingEnvironment> scene;
  try {
    scene = loadEnvironment(environment, libraries.language(), libraries.ports(), whyUnknownOf(libraries));
  } catch (const InputError& error) {
    return refusalOf(error);
  }
  std::vector<FindingGroup> groups =
      LightCheck(environment, libraries.language().getLanguageString()).check(*scene);
  if (hasErrors(groups)) {
    append(groups, groupsOf(scene->problems()));
    return groups;
  }
  CollapseOptions options;
  options.tool = CollapseTool::lightLoop;
  const Graph graph = EnvironmentGraph(*scene).take();
  append(groups, findInJob(tools, Document::from(graph, kMadeUpGraph), options, environment));
  std::erase_if(groups, [](const FindingGroup& group) {
    return group.finding.identifier == identifierOf(Finding::unofferedProfile);
  });
  dropMadeUp(groups, environment.name());
  return groups;
}

}  // namespace TolmSDK::Graphics::sfg::host
