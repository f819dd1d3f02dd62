#include "host/diagnostics/warnings.h"

#include <algorithm>
#include <optional>

#include "fragments/profile_choice.h"
#include "host/diagnostics/contained_names.h"
#include "host/documents/diagnose.h"
#include "host/documents/document_reader.h"
#include "host/job/evaluated_surface.h"
#include "host/shader/identifiers.h"
#include "sfg/code_snippet.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

constexpr std::wstring_view kDefaultProfile = L"default";
constexpr std::wstring_view kMslLightProfile = L"msl_light";
constexpr float kChainLod = 100.0f;

using Profile = const IShaderFragmentProfile*;
/// Each once, in the order in which they are chosen.
using Profiles = std::vector<Profile>;

bool readsCurrentLight(Profile profile) {
  return profile->stateVariables().contains(StateVariable_currentLight);
}

/// A fragment with the profiles that its instances in this collapse take.
struct Use {
  const IShaderFragment* fragment = nullptr;
  std::size_t count = 0;  ///< instances times profiles of each
  Profiles profiles;
  Set<Profile> known;

  void add(Profile profile) {
    if (profile != nullptr && known.insert(profile).second) profiles.push_back(profile);
  }
};

/// What the warnings ask of a node's fragment.
struct NodeFragment {
  const IShaderFragment* fragment = nullptr;
  const SurfaceProfiles* profiles = nullptr;
  bool isLit = false;                    ///< a taken profile reads the current light
  std::vector<std::size_t> inoutInputs;  ///< of each taken profile in turn
};

/// Places of the `inout` parameters of each profile in turn.
std::vector<std::size_t> findInoutInputs(const Profiles& profiles) {
  std::vector<std::size_t> inputs;
  for (const Profile profile : profiles) {
    const ITextParameterList& list = *profile->getFunctionParameters();
    for (std::size_t i = 0; i < list.getNumInputs(); ++i) {
      if (list.getInputType(i).starts_with(L"inout ")) inputs.push_back(i);
    }
  }
  return inputs;
}

/// Where raw text holds more than comments, preprocessor lines and blanks, or its end.
std::size_t findStatement(const ScopedText& raw) {
  std::size_t pos = 0;
  while (pos < raw.length) {
    const std::size_t start = pos;
    skipWhitespaces(raw, pos);
    if (pos < raw.length && raw.text[pos] == L'#') skipLine(raw, pos);
    if (pos == start) break;
  }
  return pos;
}

/// The line of the predefines in which a raw statement starts, or nothing.
std::optional<std::string> rawStatement(const IShaderFragmentProfile& profile) {
  CodeSnippet snippet;
  snippet.addCode(profile.predefines());
  snippet.parse();
  const std::wstring_view code = snippet.getCode();
  for (std::size_t i = 0; i < snippet.getNumSymbols(); ++i) {
    const ShaderSymbol& symbol = snippet.getSymbol(i);
    if (symbol.getType() != EShaderSymbolType::unknown) continue;
    const std::size_t statement = findStatement(symbol.getRange());
    if (statement == symbol.getRange().length) continue;
    const std::size_t place = static_cast<std::size_t>(symbol.getRange().text - code.data()) + statement;
    const std::size_t start = code.rfind(L'\n', place) + 1;
    return toUtf8(code.substr(start, code.find(L'\n', place) - start));
  }
  return std::nullopt;
}

/// Names of the functions, structures and variables that the predefines declare.
Set<WString> helperNames(const IShaderFragmentProfile& profile) {
  CodeSnippet snippet;
  snippet.addCode(profile.predefines());
  snippet.parse();
  Set<WString> names;
  for (std::size_t i = 0; i < snippet.getNumSymbols(); ++i) {
    const ScopedText name = snippet.getSymbol(i).getName();
    if (!name.empty()) names.insert(WString(name.view()));
  }
  return names;
}

class WarningSearch {
public:
  WarningSearch(const CollapseJob& job, bool completeShader)
      : job_(job), document_(job.document()), completeShader_(completeShader), surface_(job),
        order_(reachableNodes(document_)) {
    findFragments();
    findLit();
    findUses();
  }

  std::vector<Diagnostic> run() {
    unlitBetweenLit();
    litAtOutputAndInLit();
    structureAccumulated();
    litWithoutLights();
    lightUniformsNobodyDeclares();
    profileNobodyOffers();
    graphInputOfLightLoop();
    namesInsideOthers();
    rawStatements();
    inoutWithoutVariable();
    return std::move(warnings_);
  }

private:
  bool isLightLoop() const { return job_.settings().tool == CollapseTool::lightLoop; }
  const Array<ShadingEnvironment::Light>& lights() const { return job_.environment().lights(); }
  std::size_t nodeCount() const { return document_.getNumNodes(); }

  void warn(TextPosition position, const std::string& text) {
    warnings_.push_back(diagnose(Severity::warning, document_.file(), position, text));
  }
  /// A warning about a fragment's own code, at its place in the library.
  void warnOfFragment(const IShaderFragment& fragment, const std::string& text) {
    const FragmentFiles::Entry* const entry = job_.libraries().files().find(fragment.key());
    warnings_.push_back(diagnose(Severity::warning, entry != nullptr ? entry->file : std::string(),
                                 entry != nullptr ? entry->position : TextPosition(),
                                 "fragment " + inTicks(fragment.key()) + ": " + text));
  }

  static std::string named(const GraphNode& node) { return "node " + inTicks(node.name()); }

  Profile chosen(const IShaderFragment& fragment, const WString& name, float lod) const {
    return findBestOrDefaultProfile(fragment, name, job_.options().getLanguage(), lod);
  }

  void findFragments() {
    for (std::size_t i = 0; i < nodeCount(); ++i) {
      const IShaderFragment* const fragment =
          job_.libraries().language().findFragment(document_.node(i).fragmentName());
      const auto [entry, isNew] = fragments_.try_emplace(fragment);
      nodes_.push_back(&entry->second);
      if (!isNew) continue;
      const Profiles& taken = surface_.profilesOf(*fragment).taken;
      entry->second = {fragment, &surface_.profilesOf(*fragment),
                       std::any_of(taken.begin(), taken.end(), readsCurrentLight), findInoutInputs(taken)};
    }
    for (const std::size_t node : order_) reached_.insert(nodes_[node]);
  }

  /// Which nodes read the current light, are fed by one that does, or feed one that does.
  void findLit() {
    lit_.resize(nodeCount());
    belowLit_.resize(nodeCount());
    feedsLit_.resize(nodeCount());
    accumulated_.resize(nodeCount());
    for (const std::size_t node : order_) {
      lit_[node] = nodes_[node]->isLit;
      for (const GraphNode::Wire& wire : document_.node(node).wires()) {
        if (wire.source == nullptr) continue;
        const std::size_t source = wire.source->index();
        if (lit_[source] || belowLit_[source]) belowLit_[node] = true;
      }
    }
    for (auto node = order_.rbegin(); node != order_.rend(); ++node) {
      for (const GraphNode::Wire& wire : document_.node(*node).wires()) {
        if (wire.source != nullptr && (lit_[*node] || feedsLit_[*node]))
          feedsLit_[wire.source->index()] = true;
      }
    }
    findAccumulated();
  }

  /// The lit nodes nearest to the outputs: the light loop accumulates them.
  void findAccumulated() {
    std::vector<bool> shown(nodeCount());
    for (const GraphNode::Wire& wire : document_.outputWires()) {
      if (wire.source != nullptr) shown[wire.source->index()] = true;
    }
    for (auto node = order_.rbegin(); node != order_.rend(); ++node) {
      if (!shown[*node]) continue;
      accumulated_[*node] = lit_[*node];
      if (lit_[*node]) continue;
      for (const GraphNode::Wire& wire : document_.node(*node).wires()) {
        if (wire.source != nullptr) shown[wire.source->index()] = true;
      }
    }
  }

  void findUses() {
    Set<const NodeFragment*> known;
    for (const std::size_t node : order_) {
      Use& use = useOf(*nodes_[node]->fragment);
      const Profiles& taken = nodes_[node]->profiles->taken;
      use.count += taken.size();
      if (!known.insert(nodes_[node]).second) continue;
      for (const Profile profile : taken) use.add(profile);
    }
    for (const auto* chain : {&document_.preprocess(), &document_.postprocess()}) {
      for (const GraphDocument::ChainFragment& link : *chain) {
        addUse(*link.fragment, {chosen(*link.fragment, WString(kDefaultProfile), kChainLod)});
      }
    }
    if (!isLightLoop()) return;
    for (const ShadingEnvironment::Light& light : lights()) {
      const float lod = job_.options().getLightLOD();
      const Profile active = chosen(*light.fragment, light.profile->getProfilename(), lod);
      const Profile called =
          light.fragment->findBestProfile(WString(kMslLightProfile), job_.options().getLanguage(), lod);
      addUse(*light.fragment, active != called ? Profiles{active, called} : Profiles{active});
    }
  }

  Use& useOf(const IShaderFragment& fragment) {
    Use& use = uses_[fragment.key()];
    use.fragment = &fragment;
    return use;
  }

  void addUse(const IShaderFragment& fragment, const Profiles& profiles) {
    Use& use = useOf(fragment);
    for (const Profile profile : profiles) {
      use.add(profile);
      if (profile != nullptr) ++use.count;
    }
  }

  void unlitBetweenLit() {
    if (!isLightLoop() || lights().size() < 2) return;
    for (std::size_t i = 0; i < nodeCount(); ++i) {
      if (lit_[i] || !belowLit_[i] || !feedsLit_[i]) continue;
      warn(document_.node(i).position(),
           named(document_.node(i)) +
               " keeps its value of the first light: it is not lit, but stands between lit nodes");
    }
  }

  void litAtOutputAndInLit() {
    if (!isLightLoop() || lights().size() < 2) return;
    for (std::size_t i = 0; i < nodeCount(); ++i) {
      if (!accumulated_[i] || !feedsLit_[i]) continue;
      warn(document_.node(i).position(),
           named(document_.node(i)) +
               " feeds both an output and another lit node, which reads the sum over the lights so far");
    }
  }

  void structureAccumulated() {
    if (!isLightLoop()) return;
    for (std::size_t i = 0; i < nodeCount(); ++i) {
      if (!accumulated_[i]) continue;
      const GraphNode& node = document_.node(i);
      for (std::size_t k = 0; k < node.getNumOutputs(); ++k) {
        if (componentCount(node.getOutput(k)->getType()) != 0) continue;
        warn(node.position(), "output " + inTicks(node.getOutput(k)->getName()) + " of " + named(node) +
                                  " of type " + typeText(*node.getOutput(k)) +
                                  " is summed over the lights, but has no `+=`");
      }
    }
  }

  void litWithoutLights() {
    if (isLightLoop() && !lights().empty()) return;
    for (std::size_t i = 0; i < nodeCount(); ++i) {
      if (!lit_[i]) continue;
      warn(document_.node(i).position(),
           named(document_.node(i)) + " reads the current light, but " +
               (isLightLoop() ? "the environment has no lights"
                              : "only the light loop (`--tool lightloop`) has one"));
    }
  }

  /// MetaSL code calls the functions of all lights under either tool; what the lights need is written by the
  /// light loop only.
  void lightUniformsNobodyDeclares() {
    if (isLightLoop() || !hasMetaSL()) return;
    Set<WString> told;
    for (const ShadingEnvironment::Light& light : lights()) {
      const Profile profile = light.fragment->findBestProfile(
          WString(kMslLightProfile), job_.options().getLanguage(), job_.options().getLightLOD());
      if (profile == nullptr || !told.insert(light.fragment->key()).second) continue;
      const Set<std::wstring_view> identifiers = identifiersOf(profile->getFunctionBody());
      for (std::size_t i = 0; i < light.fragment->getNumUniforms(); ++i) {
        const WString& uniform = light.fragment->getUniform(i)->getName();
        if (!identifiers.contains(uniform)) continue;
        const std::string text = "light " + inTicks(light.name) + " has the uniform " + inTicks(uniform) +
                                 ", which its function for MetaSL code reads, but only the light loop "
                                 "(`--tool lightloop`) declares";
        warnings_.push_back(diagnose(Severity::warning, job_.environment().file(), light.position, text));
      }
    }
  }

  bool hasMetaSL() const {
    return std::any_of(uses_.begin(), uses_.end(), [](const auto& use) {
      return std::any_of(use.second.profiles.begin(), use.second.profiles.end(), [](Profile profile) {
        return profile->getMode() == EShaderFragmentProfileMode::MetaSL;
      });
    });
  }

  /// An unlit graph and one whose MetaSL code asks every light by itself have no use for light profiles.
  void profileNobodyOffers() {
    if (!isLightLoop() || !hasLitProfile()) return;
    const Set<WString> offered = offeredNames();
    Set<WString> told;
    for (const ShadingEnvironment::Light& light : lights()) {
      const WString& name = light.profile->getProfilename();
      if (offered.contains(name) || isReadByDefault(light) || !told.insert(name).second) continue;
      const std::string text = "light " + inTicks(light.name) + " asks for the profile " + inTicks(name) +
                               ", which no fragment of the graph has";
      warnings_.push_back(diagnose(Severity::warning, job_.environment().file(), light.position, text));
    }
  }

  bool hasLitProfile() const {
    const UString& language = job_.options().getLanguage();
    return std::any_of(reached_.begin(), reached_.end(), [&](const NodeFragment* node) {
      const IShaderFragment& fragment = *node->fragment;
      for (std::size_t i = 0; i < fragment.getNumProfiles(); ++i) {
        const Profile profile = fragment.getProfile(i);
        if (profile->languages().contains(language) && readsCurrentLight(profile)) return true;
      }
      return false;
    });
  }

  Set<WString> offeredNames() const {
    Set<WString> names;
    for (const NodeFragment* node : reached_) {
      names.merge(offeredProfileNames(*node->fragment, job_.options().getLanguage()));
    }
    return names;
  }

  /// A default profile that reads any current light takes one whose type has the profile's name, which no
  /// fragment offers.
  bool isReadByDefault(const ShadingEnvironment::Light& light) const {
    const WString& name = light.profile->getProfilename();
    if (light.fragment->getNumOutputs() == 0 || light.fragment->getOutput(0)->getStructName() != name)
      return false;
    return std::any_of(reached_.begin(), reached_.end(), [](const NodeFragment* node) {
      const Profile profile = node->profiles->other;
      return profile != nullptr && readsCurrentLight(profile);
    });
  }

  void graphInputOfLightLoop() {
    if (!isLightLoop() || completeShader_) return;
    Set<std::size_t> told;
    for (std::size_t i = 0; i < nodeCount(); ++i) {
      for (const GraphNode::Wire& wire : document_.node(i).wires()) {
        if (wire.graphInput == kNotFound || !told.insert(wire.graphInput).second) continue;
        warn(wire.position, "the light-loop function has no parameter for the graph input " +
                                inTicks(document_.getInput(wire.graphInput)->getName()) +
                                "; only the complete shader (`--format shader`) declares it");
      }
    }
  }

  /// Renames replace text inside identifiers, too.
  void namesInsideOthers() {
    for (const auto& [key, use] : uses_) {
      Set<std::string> told;
      std::vector<ContainedNames::Name> uniforms;
      for (std::size_t i = 0; i < use.fragment->getNumUniforms(); ++i) {
        const AParameter& uniform = *use.fragment->getUniform(i);
        uniforms.push_back({uniform.getName(), isSamplerType(uniform.getType())});
      }
      ContainedNames uniformSearch(uniforms);
      for (const Profile profile : use.profiles) {
        const WString code = profile->predefines() + L"\n" + profile->getFunctionBody();
        const Set<std::wstring_view> identifiers = identifiersOf(code);
        for (const ContainedNames::Found& found : uniformSearch.find(identifiers)) {
          nameInsideOther(use, "uniform", uniforms[found.name].text, found.inside, told);
        }
        const Set<WString> helperTexts = helperNames(*profile);
        std::vector<ContainedNames::Name> helpers;
        for (const WString& helper : helperTexts) helpers.push_back({helper, false});
        for (const ContainedNames::Found& found : ContainedNames(helpers).find(identifiers)) {
          nameInsideOther(use, "helper", helpers[found.name].text, found.inside, told);
        }
      }
    }
  }

  void nameInsideOther(const Use& use, const char* kind, std::wstring_view name, std::wstring_view other,
                       Set<std::string>& told) {
    const std::string text = std::string("the ") + kind + " name " + inTicks(name) + " occurs inside " +
                             inTicks(other) + ", which is changed with it when it is renamed";
    if (told.insert(text).second) warnOfFragment(*use.fragment, text);
  }

  void rawStatements() {
    for (const auto& [key, use] : uses_) {
      if (use.count < 2) continue;
      for (const Profile profile : use.profiles) {
        const std::optional<std::string> statement = rawStatement(*profile);
        if (!statement) continue;
        warnOfFragment(*use.fragment, "it is used " + std::to_string(use.count) + " times, and so often `" +
                                          *statement + "` of its predefines is written");
        break;
      }
    }
  }

  /// What an `inout` parameter is given must be a variable: neither a uniform nor a constant is one.
  void inoutWithoutVariable() {
    for (std::size_t i = 0; i < nodeCount(); ++i) {
      const GraphNode& node = document_.node(i);
      for (const std::size_t k : nodes_[i]->inoutInputs) {
        if (k >= node.getNumInputs() || node.isWired(k)) continue;
        warn(node.position(), "input " + inTicks(node.getInput(k)->getName()) + " of " + named(node) +
                                  " is `inout`, but nothing is wired to it that could be written");
      }
    }
  }

  const CollapseJob& job_;
  const GraphDocument& document_;
  bool completeShader_;
  EvaluatedSurface surface_;
  std::vector<std::size_t> order_;  ///< of the reachable nodes, sources first
  Map<const IShaderFragment*, NodeFragment> fragments_;
  std::vector<const NodeFragment*> nodes_;  ///< one per node
  Set<const NodeFragment*> reached_;        ///< those of the reachable nodes
  std::vector<bool> lit_;
  std::vector<bool> belowLit_;
  std::vector<bool> feedsLit_;
  std::vector<bool> accumulated_;
  Map<WString, Use> uses_;
  std::vector<Diagnostic> warnings_;
};

}  // namespace

std::vector<Diagnostic> findWarnings(const CollapseJob& job, bool completeShader) {
  return WarningSearch(job, completeShader).run();
}

}  // namespace TolmSDK::Graphics::sfg::host
