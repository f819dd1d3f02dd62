#include "host/diagnostics/light_warnings.h"

#include <algorithm>

#include "host/documents/document_reader.h"
#include "host/documents/near_name.h"
#include "host/shader/identifiers.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

class LightWarnings {
public:
  LightWarnings(const CollapseFacts& facts, WarningList& warnings) : facts_(facts), warnings_(warnings) {}

  void run() {
    unlitBetweenLit();
    litAtOutputAndInLit();
    structureAccumulated();
    litWithoutLights();
    lightsWithoutLoop();
    lightUniformsNobodyDeclares();
    profileNobodyOffers();
    lightsOfAnotherProfile();
  }

private:
  void unlitBetweenLit() {
    if (!facts_.isLightLoop() || facts_.lights().size() < 2) return;
    for (std::size_t i = 0; i < facts_.nodeCount(); ++i) {
      if (facts_.isLit(i) || !facts_.isBelowLit(i) || !facts_.feedsLit(i)) continue;
      warnings_.atGraph(
          Finding::unlitBetweenLit, facts_.document().node(i).position(),
          named(facts_.document().node(i)) +
              " keeps its value of the first light: it is not lit, but stands between lit nodes");
    }
  }

  void litAtOutputAndInLit() {
    if (!facts_.isLightLoop() || facts_.lights().size() < 2) return;
    for (std::size_t i = 0; i < facts_.nodeCount(); ++i) {
      if (!facts_.isAccumulated(i) || !facts_.feedsLit(i)) continue;
      warnings_.atGraph(
          Finding::litFeedsLit, facts_.document().node(i).position(),
          named(facts_.document().node(i)) +
              " feeds both an output and another lit node, which reads the sum over the lights so far");
    }
  }

  void structureAccumulated() {
    if (!facts_.isLightLoop()) return;
    for (std::size_t i = 0; i < facts_.nodeCount(); ++i) {
      if (!facts_.isAccumulated(i)) continue;
      const GraphNode& node = facts_.document().node(i);
      for (std::size_t k = 0; k < node.getNumOutputs(); ++k) {
        if (componentCount(node.getOutput(k)->getType()) != 0) continue;
        warnings_.atGraph(Finding::structureSummed, node.position(),
                          "output " + inTicks(node.getOutput(k)->getName()) + " of " + named(node) +
                              " of type " + typeText(*node.getOutput(k)) +
                              " is summed over the lights, but has no `+=`");
      }
    }
  }

  void litWithoutLights() {
    if (facts_.isLightLoop() && !facts_.lights().empty()) return;
    for (std::size_t i = 0; i < facts_.nodeCount(); ++i) {
      if (!facts_.isLit(i)) continue;
      warnings_.atGraph(Finding::litWithoutLight, facts_.document().node(i).position(),
                        named(facts_.document().node(i)) + " reads the current light, but " +
                            (facts_.isLightLoop() ? "the environment has no lights"
                                                  : "only the light loop (`--tool lightloop`) has one"));
    }
  }

  /// Without the light loop nodes take their profiles for no light. Told at the first that has others.
  void lightsWithoutLoop() {
    if (facts_.isLightLoop() || facts_.lights().empty() || hasMetaSL()) return;
    for (std::size_t i = 0; i < facts_.nodeCount(); ++i) {
      const NodeFragment& node = facts_.fragmentOf(i);
      if (node.fragment == nullptr || !facts_.reached().contains(&node) || facts_.isLit(i)) continue;
      if (!readsALight(*node.fragment)) continue;
      warnings_.atGraph(Finding::litWithoutLight, facts_.document().node(i).position(),
                        named(facts_.document().node(i)) +
                            " is not lit: only the light loop (`--tool lightloop`) uses the lights of the "
                            "environment");
      return;
    }
  }

  /// MetaSL code calls the functions of all lights under either tool; what the lights need is written by the
  /// light loop only.
  void lightUniformsNobodyDeclares() {
    if (facts_.isLightLoop() || !hasMetaSL()) return;
    Set<WString> told;
    for (const ShadingEnvironment::Light& light : facts_.lights()) {
      const Profile profile = light.fragment->findBestProfile(WString(kMslLightProfile), facts_.language(),
                                                              facts_.job().options().getLightLOD());
      if (profile == nullptr || !told.insert(light.fragment->key()).second) continue;
      const Set<std::wstring_view> identifiers = identifiersOf(profile->getFunctionBody());
      for (std::size_t i = 0; i < light.fragment->getNumUniforms(); ++i) {
        const WString& uniform = light.fragment->getUniform(i)->getName();
        if (!identifiers.contains(uniform)) continue;
        const std::string text = "light " + inTicks(light.name) + " has the uniform " + inTicks(uniform) +
                                 ", which its function for MetaSL code reads, but only the light loop "
                                 "(`--tool lightloop`) declares";
        warnings_.atLight(Finding::undeclaredLightUniform, light, text);
      }
    }
  }

  bool hasMetaSL() const {
    return std::any_of(facts_.uses().begin(), facts_.uses().end(), [](const auto& use) {
      return std::any_of(use.second.profiles.begin(), use.second.profiles.end(), [](Profile profile) {
        return profile->getMode() == EShaderFragmentProfileMode::MetaSL;
      });
    });
  }

  /// An unlit graph and one whose MetaSL code asks every light by itself have no use for light profiles.
  void profileNobodyOffers() {
    if (!facts_.isLightLoop() || !hasLitProfile()) return;
    const Set<WString> offered = offeredNames();
    const bool hasLitDefault =
        std::any_of(facts_.reached().begin(), facts_.reached().end(), [](const NodeFragment* node) {
          const Profile profile = node->profiles->other;
          return profile != nullptr && readsCurrentLight(profile);
        });
    Set<WString> told;
    for (const ShadingEnvironment::Light& light : facts_.lights()) {
      const WString& name = light.profile->getProfilename();
      if (offered.contains(name) || (hasLitDefault && isOfType(light, name))) continue;
      if (!told.insert(name).second) continue;
      const std::string text = "light " + inTicks(light.name) + " asks for the profile " + inTicks(name) +
                               ", which no fragment of the graph has" + nearOffered(offered, name);
      warnings_.atLight(Finding::unofferedProfile, light, text);
    }
  }

  /// Their profile `default` is taken, whatever it gives.
  void lightsOfAnotherProfile() {
    if (!facts_.isLightLoop() || !hasLitProfile()) return;
    const Set<WString> wanted = offeredNames();
    for (const ShadingEnvironment::Light& light : facts_.lights()) {
      const WString& name = light.profile->getProfilename();
      if (name == L"default" || !wanted.contains(name) || isOfType(light, name)) continue;
      if (offeredProfileNames(*light.fragment, facts_.language()).contains(name)) continue;
      warnings_.atLight(Finding::lightProfile, light,
                        "light " + inTicks(light.name) + " asks for the profile " + inTicks(name) +
                            ", but its fragment " + inTicks(light.fragment->key()) +
                            " has only `default`, which gives no " + inTicks(name));
    }
  }

  bool hasLitProfile() const {
    return std::any_of(facts_.reached().begin(), facts_.reached().end(),
                       [&](const NodeFragment* node) { return readsALight(*node->fragment); });
  }

  bool readsALight(const IShaderFragment& fragment) const {
    for (std::size_t i = 0; i < fragment.getNumProfiles(); ++i) {
      const Profile profile = fragment.getProfile(i);
      if (profile->languages().contains(facts_.language()) && readsCurrentLight(profile)) return true;
    }
    return false;
  }

  static std::string nearOffered(const Set<WString>& offered, const WString& name) {
    std::vector<std::string> names;
    for (const WString& known : offered) names.push_back(toUtf8(known));
    return didYouMean(nearestName(toUtf8(name), names));
  }

  Set<WString> offeredNames() const {
    Set<WString> names;
    for (const NodeFragment* node : facts_.reached()) {
      names.merge(offeredProfileNames(*node->fragment, facts_.language()));
    }
    return names;
  }

  /// A default profile that reads any current light takes one whose type has the profile's name, which no
  /// fragment offers.
  static bool isOfType(const ShadingEnvironment::Light& light, const WString& name) {
    return light.fragment->getNumOutputs() != 0 && light.fragment->getOutput(0)->getStructName() == name;
  }

  const CollapseFacts& facts_;
  WarningList& warnings_;
};

}  // namespace

void warnOfLights(const CollapseFacts& facts, WarningList& warnings) { LightWarnings(facts, warnings).run(); }

}  // namespace TolmSDK::Graphics::sfg::host
