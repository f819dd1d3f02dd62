#include "host/diagnostics/light_types.h"

#include <optional>

#include "fragments/profile_choice.h"
#include "host/diagnostics/collapse_facts.h"
#include "host/documents/diagnose.h"
#include "host/documents/document_reader.h"
#include "host/shader/identifiers.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

class LightTypes {
public:
  LightTypes(const CollapseJob& job, Severity severity) : job_(job), severity_(severity), surface_(job) {}

  std::vector<Diagnostic> run() {
    for (const ShadingEnvironment::Light& light : job_.environment().lights()) check(light);
    return std::move(found_);
  }

private:
  void check(const ShadingEnvironment::Light& light) {
    const WString& wanted = light.profile->getProfilename();
    const Profile given = findBestOrDefaultProfile(*light.fragment, wanted, job_.options().getLanguage(),
                                                   job_.options().getLightLOD());
    if (given == nullptr || given->getFunctionParameters()->getNumOutputs() == 0) return;
    // A collapse warns of the profile itself.
    if (severity_ == Severity::warning && given->getProfilename() != wanted) return;
    const ITextParameterList& list = *given->getFunctionParameters();
    const WString& type = list.getOutputType(0);
    if (type == wanted) return;
    const GraphNode* const reader = readerOf(wanted);
    if (reader == nullptr || isOtherName(wanted) || isOtherName(type)) return;
    found_.push_back(diagnose(Finding::lightType, severity_, job_.environment().file(), light.position,
                              "light " + inTicks(light.name) + " gives " + inTicks(list.getOutputName(0)) +
                                  " of type " + inTicks(type) + " in the profile " +
                                  inTicks(given->getProfilename()) + " of fragment " +
                                  inTicks(light.fragment->key()) + ", but " + readerName(*reader) +
                                  " reads `sfg_currentLight` of type " + inTicks(wanted)));
  }

  /// A check makes nodes of fragments that nobody wrote.
  std::string readerName(const GraphNode& node) const {
    if (job_.libraries().files().find(node.fragmentName()) == nullptr) return "a surface";
    return "node " + inTicks(node.name()) + " (fragment " + inTicks(node.fragmentName()) + ")";
  }

  /// The first node that reads a light of that profile; null without one.
  const GraphNode* readerOf(const WString& profile) {
    if (!reached_) reached_ = reachableNodes(job_.document());
    for (const std::size_t index : *reached_) {
      const GraphNode& node = job_.document().node(index);
      const IShaderFragment* const fragment = job_.libraries().language().findFragment(node.fragmentName());
      if (fragment == nullptr) continue;
      const SurfaceProfiles& profiles = surface_.profilesOf(*fragment);
      const auto named = profiles.named.find(profile);
      const Profile taken = named != profiles.named.end() ? named->second : profiles.other;
      if (taken != nullptr && readsCurrentLight(taken)) return &node;
    }
    return nullptr;
  }

  /// Whether code makes the word another name of a type.
  bool isOtherName(const WString& word) {
    if (!otherNames_) {
      otherNames_.emplace();
      for (const auto& [name, file] : job_.libraries().includeFiles().files())
        addOtherNames(job_.libraries().includes().getIncludeContent(name.c_str()));
      for (const auto& [name, entry] : job_.libraries().files().entries()) {
        const IShaderFragment* const fragment = job_.libraries().language().findFragment(name);
        for (std::size_t i = 0; fragment != nullptr && i < fragment->getNumProfiles(); ++i)
          addOtherNames(fragment->getProfile(i)->predefines());
      }
    }
    return otherNames_->contains(word);
  }

  /// The word behind `define`, and those behind `typedef`: both types.
  void addOtherNames(const WString& code) {
    constexpr std::size_t kWordsOfTypedef = 3;
    std::size_t words = 0;
    forEachIdentifier(code, [&](std::wstring_view word) {
      if (words > 0) {
        otherNames_->insert(WString(word));
        --words;
      }
      if (word == L"define") words = 1;
      if (word == L"typedef") words = kWordsOfTypedef;
    });
  }

  const CollapseJob& job_;
  Severity severity_;
  EvaluatedSurface surface_;
  std::optional<std::vector<std::size_t>> reached_;
  std::optional<Set<WString>> otherNames_;
  std::vector<Diagnostic> found_;
};

}  // namespace

std::vector<Diagnostic> findLightTypeErrors(const CollapseJob& job, Severity severity) {
  if (job.settings().tool != CollapseTool::lightLoop || job.environment().lights().empty()) return {};
  return LightTypes(job, severity).run();
}

}  // namespace TolmSDK::Graphics::sfg::host
