#include "host/diagnostics/refusal_place.h"

#include <optional>

#include "fragments/profile_choice.h"
#include "host/diagnostics/light_blocks.h"
#include "host/documents/diagnose.h"
#include "host/documents/document_reader.h"
#include "host/documents/near_name.h"
#include "host/job/evaluated_surface.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

using Found = std::optional<Diagnostic>;

/// The searches for one job. Each answers nothing when the document does not show what it looks for.
class RefusalSearch {
public:
  explicit RefusalSearch(const CollapseJob& job) : job_(job), document_(job.document()) {}

  /// Each fragment that no node can have, at the first node that wants it.
  std::vector<Diagnostic> unknownFragments() const {
    std::vector<Diagnostic> found;
    Set<WString> told;
    for (std::size_t i = 0; i < document_.getNumNodes(); ++i) {
      const GraphNode& node = document_.node(i);
      if (fragmentOf(node) != nullptr || !told.insert(node.fragmentName()).second) continue;
      const UnknownName unknown = job_.libraries().whyUnknown(toUtf8(node.fragmentName()));
      if (unknown.cause) {
        found.push_back(*unknown.cause);
        found.push_back(diagnose(unknown.kind, Severity::note, document_.file(), node.fragmentPosition(),
                                 "for " + named(node) + ", " + unknown.text));
      } else {
        found.push_back(at(unknown.kind, node.fragmentPosition(),
                           named(node) + " uses the fragment " + inTicks(node.fragmentName()) +
                               ", which no library has" + unknown.hint,
                           unknown.meant));
      }
    }
    return found;
  }

  /// The first wire, in the order in which they are made, that closes a loop.
  Found loop() const {
    std::size_t sound = 0;
    std::size_t broken = countWires();
    if (!hasLoop(broken)) return std::nullopt;
    while (broken - sound > 1) {
      const std::size_t middle = sound + (broken - sound) / 2;
      (hasLoop(middle) ? broken : sound) = middle;
    }
    return describeWire(broken - 1);
  }

  Found unwiredOutput() const {
    for (std::size_t i = 0; i < document_.getNumOutputs(); ++i) {
      if (document_.outputWires()[i].source == nullptr) {
        return at(Finding::unwiredOutput, document_.outputWires()[i].position,
                  "graph output " + name(document_.getOutput(i)) + " has no `node`");
      }
    }
    return std::nullopt;
  }

  Found noOutput() const {
    if (document_.getNumOutputs() != 0) return std::nullopt;
    return atFile(Finding::noOutput, "the graph has no `outputs`");
  }

  Found preprocessWithInputs() const {
    for (const GraphDocument::ChainFragment& link : document_.preprocess()) {
      const RefPtr<IShaderFragment> clone =
          cloneWithPorts(*link.fragment, WString(), job_.libraries().language());
      if (clone->getNumInputs() == 0) continue;
      return at(Finding::preprocessInput, link.position,
                "pre-process fragment " + inTicks(link.name) + " has the input " + name(clone->getInput(0)));
    }
    return std::nullopt;
  }

  Found mismatchedOutput() const {
    const bool chained = !document_.postprocess().empty();
    const RefPtr<IShaderFragment const> target =
        chained ? cloneWithPorts(*document_.postprocess()[0].fragment, WString(), job_.libraries().language())
                : RefPtr<IShaderFragment const>(job_.environment().getOutputFragment());
    if (!target) return std::nullopt;
    const std::string taker =
        (chained ? "post-process fragment " : "output fragment ") + inTicks(target->key());
    for (std::size_t i = 0; i < target->getNumInputs(); ++i) {
      const std::string input = "input " + name(target->getInput(i)) + " of " + taker;
      if (i >= document_.getNumOutputs()) {
        return atFile(Finding::chainMismatch, "the graph has no output for " + input);
      }
      if (target->getInput(i)->getType() == document_.getOutput(i)->getType()) continue;
      return at(Finding::chainMismatch, document_.outputWires()[i].position,
                "graph output " + name(document_.getOutput(i)) + " of type " +
                    typeText(*document_.getOutput(i)) + " feeds " + input + " of type " +
                    typeText(*target->getInput(i)));
    }
    return std::nullopt;
  }

  Found outputsOfSeveralNodes() const {
    if (job_.settings().tool != CollapseTool::standard) return std::nullopt;
    const Array<GraphNode::Wire>& wires = document_.outputWires();
    for (std::size_t i = 1; i < wires.size(); ++i) {
      if (wires[i].source == nullptr || wires[i].source == wires[0].source) continue;
      return at(Finding::severalSources, wires[i].position,
                "graph output " + name(document_.getOutput(i)) + " comes from " + named(*wires[i].source) +
                    " and " + name(document_.getOutput(0)) + " from " + named(*wires[0].source) +
                    "; without a light loop all outputs come from one node");
    }
    return std::nullopt;
  }

  /// The first node whose ports do not fit the function it stands for.
  Found mismatchedPorts() const {
    for (std::size_t i = 0; i < document_.getNumNodes(); ++i) {
      const GraphNode& node = document_.node(i);
      const IShaderFragmentProfile* const profile = profileOf(node);
      if (profile == nullptr) continue;
      if (Found found = mismatchedPorts(node, *profile)) return found;
    }
    return std::nullopt;
  }

  Found nodeWithoutDefaultProfile() const {
    for (std::size_t i = 0; i < document_.getNumNodes(); ++i) {
      const GraphNode& node = document_.node(i);
      const IShaderFragment* const fragment = fragmentOf(node);
      if (fragment != nullptr && !hasDefaultProfile(*fragment))
        return at(Finding::noProfile, node.position(), lacksDefault(named(node), *fragment));
    }
    return std::nullopt;
  }

  /// A node, light or chain fragment without a profile that the collapse could fall back on.
  Found withoutDefaultProfile() const {
    if (Found found = nodeWithoutDefaultProfile()) return found;
    for (const auto* chain : {&document_.preprocess(), &document_.postprocess()}) {
      for (const GraphDocument::ChainFragment& link : *chain) {
        if (!hasDefaultProfile(*link.fragment))
          return at(Finding::noProfile, link.position, lacksDefault("the chain", *link.fragment));
      }
    }
    for (const ShadingEnvironment::Light& light : job_.environment().lights()) {
      if (!hasDefaultProfile(*light.fragment)) {
        return atLight(Finding::noProfile, light,
                       lacksDefault("light " + inTicks(light.name), *light.fragment));
      }
    }
    return std::nullopt;
  }

  /// Why the light that the message names by its name or its profile's does not get its profile.
  Found light(std::wstring_view message) const {
    for (const ShadingEnvironment::Light& light : job_.environment().lights()) {
      const WString& profile = light.profile->getProfilename();
      const bool named = message.find(L" of light " + light.name + L":") != message.npos ||
                         message.find(L" of light " + light.name + L".") != message.npos;
      if (!named && message.find(L"light profile " + profile + L".") == message.npos) continue;
      if (Found found = surfaceWithout(light)) return found;
      const std::string asks = "light " + inTicks(light.name) + " asks for the profile " + inTicks(profile);
      if (hasProfile(*light.fragment, profile)) return atProfile(light, asks);
      return atProfile(light, asks + ", which its fragment " + inTicks(light.fragment->key()) +
                                  " does not have" + knownProfiles(*light.fragment, profile));
    }
    return std::nullopt;
  }

  Found openLightBlock() const { return findOpenLightBlock(job_); }

  Diagnostic outputOrFile() const {
    for (const GraphNode::Wire& wire : document_.outputWires()) {
      if (wire.source != nullptr) {
        return place(wire.position, "on the way to " + named(*wire.source) + ", output " +
                                        name(wire.source->getOutput(wire.output)));
      }
    }
    return place({}, "while this graph was collapsed");
  }
  /// Where nothing better is known.
  Diagnostic place(TextPosition position, const std::string& text) const {
    return diagnose(Finding::collapsePlace, Severity::note, document_.file(), position, text);
  }

private:
  static std::string named(const GraphNode& node) { return "node " + inTicks(node.name()); }
  static std::string name(const AParameter* parameter) { return inTicks(parameter->getName()); }

  Diagnostic atFile(Finding kind, const std::string& text) const { return at(kind, TextPosition(), text); }
  Diagnostic at(Finding kind, TextPosition position, const std::string& text,
                const std::string& meant = {}) const {
    return diagnose(kind, Severity::error, document_.file(), position, text, meant);
  }
  Diagnostic atLight(Finding kind, const ShadingEnvironment::Light& light, const std::string& text) const {
    return diagnose(kind, Severity::error, job_.environment().file(), light.position, text);
  }
  Diagnostic atProfile(const ShadingEnvironment::Light& light, const std::string& text) const {
    return diagnose(Finding::lightProfile, Severity::error, job_.environment().file(), light.profilePosition,
                    text);
  }

  const IShaderFragment* fragmentOf(const GraphNode& node) const {
    return job_.libraries().language().findFragment(node.fragmentName());
  }
  const IShaderFragmentProfile* profileOf(const GraphNode& node) const {
    const IShaderFragment* const fragment = fragmentOf(node);
    return fragment == nullptr ? nullptr
                               : fragment->findBestProfile(L"default", job_.options().getLanguage(),
                                                           job_.options().getSurfaceLOD());
  }
  bool hasDefaultProfile(const IShaderFragment& fragment) const {
    return fragment.findBestProfile(L"default", job_.options().getLanguage(), 100.0f) != nullptr;
  }
  std::string lacksDefault(const std::string& user, const IShaderFragment& fragment) const {
    return user + " uses the fragment " + inTicks(fragment.key()) +
           ", which has no profile `default` for the language " +
           inTicks(job_.options().getLanguage().view());
  }

  bool hasProfile(const IShaderFragment& fragment, const WString& profile) const {
    return findBestOrDefaultProfile(fragment, profile, job_.options().getLanguage(), 100.0f) != nullptr;
  }

  /// The first node that can do nothing for the light.
  Found surfaceWithout(const ShadingEnvironment::Light& light) const {
    const WString& profile = light.profile->getProfilename();
    for (std::size_t i = 0; i < document_.getNumNodes(); ++i) {
      const GraphNode& node = document_.node(i);
      const IShaderFragment* const fragment = fragmentOf(node);
      if (fragment == nullptr || hasProfile(*fragment, profile)) continue;
      return at(Finding::noProfile, node.position(),
                named(node) + " uses the fragment " + inTicks(fragment->key()) +
                    ", which has neither the profile " + inTicks(profile) + ", which light " +
                    inTicks(light.name) + " asks for, nor `default` for the language " +
                    inTicks(job_.options().getLanguage().view()));
    }
    return std::nullopt;
  }

  /// "; did you mean `sfg_Light`? Known are `msl_light`, `sfg_Light`"
  std::string knownProfiles(const IShaderFragment& fragment, const WString& profile) const {
    std::vector<std::string> names;
    for (const WString& name : offeredProfileNames(fragment, job_.options().getLanguage()))
      names.push_back(toUtf8(name));
    return knownNamesHint(toUtf8(profile), names);
  }

  Found mismatchedPorts(const GraphNode& node, const IShaderFragmentProfile& profile) const {
    const ITextParameterList& list = *profile.getFunctionParameters();
    if (node.getNumInputs() != list.getNumInputs()) {
      return at(Finding::portCount, node.position(),
                counted(node, node.getNumInputs(), "inputs", list.getNumInputs()));
    }
    const bool isInline = profile.getMode() == EShaderFragmentProfileMode::Inline;
    const std::size_t outputs = isInline ? 1 : list.getNumOutputs();
    if (node.getNumOutputs() == outputs) return std::nullopt;
    return at(Finding::portCount, node.position(), counted(node, node.getNumOutputs(), "outputs", outputs));
  }
  static std::string counted(const GraphNode& node, std::size_t has, const std::string& what,
                             std::size_t wants) {
    return named(node) + " has " + std::to_string(has) + " " + what + ", its fragment " +
           inTicks(node.fragmentName()) + " " + std::to_string(wants);
  }

  std::size_t countWires() const {
    std::size_t count = 0;
    for (std::size_t i = 0; i < document_.getNumNodes(); ++i) {
      for (const GraphNode::Wire& wire : document_.node(i).wires()) count += wire.source != nullptr ? 1 : 0;
    }
    return count;
  }

  /// Whether the first `limit` wires hold a loop: nodes are taken away while one is left that nothing feeds.
  bool hasLoop(std::size_t limit) const {
    std::vector<std::size_t> feeds(document_.getNumNodes());
    std::vector<std::vector<std::size_t>> takers(document_.getNumNodes());
    std::size_t seen = 0;
    for (std::size_t i = 0; i < document_.getNumNodes(); ++i) {
      for (const GraphNode::Wire& wire : document_.node(i).wires()) {
        if (wire.source == nullptr || seen++ >= limit) continue;
        ++feeds[i];
        takers[wire.source->index()].push_back(i);
      }
    }
    std::vector<std::size_t> free;
    for (std::size_t i = 0; i < feeds.size(); ++i) {
      if (feeds[i] == 0) free.push_back(i);
    }
    std::size_t removed = 0;
    while (!free.empty()) {
      const std::size_t node = free.back();
      free.pop_back();
      ++removed;
      for (const std::size_t taker : takers[node]) {
        if (--feeds[taker] == 0) free.push_back(taker);
      }
    }
    return removed != feeds.size();
  }

  Found describeWire(std::size_t number) const {
    for (std::size_t i = 0; i < document_.getNumNodes(); ++i) {
      const GraphNode& node = document_.node(i);
      for (std::size_t k = 0; k < node.wires().size(); ++k) {
        const GraphNode::Wire& wire = node.wires()[k];
        if (wire.source == nullptr || number-- != 0) continue;
        return at(Finding::loop, wire.position,
                  "input " + name(node.getInput(k)) + " of " + named(node) + " closes a loop through " +
                      named(*wire.source));
      }
    }
    return std::nullopt;
  }

  const CollapseJob& job_;
  const GraphDocument& document_;
};

Found findByMessage(const RefusalSearch& search, std::wstring_view message) {
  const auto says = [message](std::wstring_view words) { return message.find(words) != message.npos; };
  if (says(L"circular loop")) return search.loop();
  if (says(L"Graph output must")) return search.unwiredOutput();
  if (says(L"at least one output")) return search.noOutput();
  if (says(L"pre-process fragment should")) return search.preprocessWithInputs();
  if (says(L"graph outputs should be the same")) return search.mismatchedOutput();
  if (says(L"have a default profile")) return search.withoutDefaultProfile();
  if (says(L"Failed to set default profile")) return search.nodeWithoutDefaultProfile();
  if (says(L"Inline body parameter count")) return search.mismatchedPorts();
  if (says(L"block is not closed")) return search.openLightBlock();
  if (says(L"light")) return search.light(message);
  return std::nullopt;
}

}  // namespace

std::vector<Diagnostic> findRefusalPlace(const CollapseJob& job, std::wstring_view message) {
  const RefusalSearch search(job);
  if (message.find(L"Failed to create fragment") != message.npos) {
    if (std::vector<Diagnostic> unknown = search.unknownFragments(); !unknown.empty()) return unknown;
  }
  if (Found found = findByMessage(search, message)) return {*found};
  // Something could not be evaluated: the usual causes, most exact first.
  if (message.empty() || message.find(L"evaluate") != message.npos) {
    if (Found found = search.nodeWithoutDefaultProfile()) return {*found};
    if (Found found = search.outputsOfSeveralNodes()) return {*found};
    if (Found found = search.mismatchedPorts()) return {*found};
    return {search.outputOrFile()};
  }
  return {search.place({}, "while this graph was collapsed")};
}

}  // namespace TolmSDK::Graphics::sfg::host
