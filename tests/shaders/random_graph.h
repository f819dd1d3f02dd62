#pragma once

// Random graphs of standard fragments, types respected.

#include <map>
#include <random>
#include <string>
#include <vector>

#include "sfg/shader_fragment.h"
#include "tests/shaders/shader_fixture.h"
#include "tolmsdk/state_variables.h"
#include "tolmsdk/unicode.h"

namespace shaders_test {

/// A fragment as the graphs use it.
struct Usable {
  struct Port {
    std::string name;
    std::string type;
  };
  std::string name;
  std::vector<Port> inputs;
  std::vector<Port> outputs;
  Json interface;      ///< of an inline fragment
  bool isLit = false;  ///< the code asks a light, or every light
};

inline Usable::Port portOf(const Json& parameter) { return {parameter.at("name"), parameter.at("type")}; }
inline Usable::Port portOf(const TolmSDK::Graphics::AParameter& port) {
  return {TolmSDK::toUtf8(port.getName()), TolmSDK::toUtf8(port.getType().toString())};
}

inline bool asksLights(const sfg::IShaderFragment& fragment) {
  for (std::size_t i = 0; i < fragment.getNumProfiles(); ++i) {
    const sfg::IShaderFragmentProfile& profile = *fragment.getProfile(i);
    if (profile.stateVariables().contains(TolmSDK::Graphics::StateVariable_currentLight)) return true;
    if (profile.getFunctionBody().find(L"LIGHT_AND_SHADOW") != TolmSDK::WString::npos) return true;
  }
  return false;
}

/// All but the lights, which an environment holds.
inline std::vector<Usable> usableFragments() {
  std::vector<Usable> usable;
  const sfg::host::LanguageDx11& language = standardLibrary().language();
  for (const std::string& name : fragmentNames()) {
    const sfg::IShaderFragment& fragment = *language.findFragment(TolmSDK::fromUtf8(name));
    const sfg::IShaderFragmentProfile* const profile =
        fragment.findBestProfile(L"default", language.getLanguageString(), 100.0f);
    if (profile == nullptr) continue;
    Usable entry{name, {}, {}, {}, asksLights(fragment)};
    if (profile->getMode() == sfg::EShaderFragmentProfileMode::Inline) {
      entry.interface = documentedInterface(name);
      for (const Json& port : entry.interface.at("inputs")) entry.inputs.push_back(portOf(port));
      for (const Json& port : entry.interface.at("outputs")) entry.outputs.push_back(portOf(port));
    } else {
      const TolmSDK::RefPtr<sfg::IShaderFragment> ports =
          sfg::host::cloneWithPorts(fragment, TolmSDK::WString(), language);
      for (std::size_t i = 0; i < ports->getNumInputs(); ++i)
        entry.inputs.push_back(portOf(*ports->getInput(i)));
      for (std::size_t i = 0; i < ports->getNumOutputs(); ++i)
        entry.outputs.push_back(portOf(*ports->getOutput(i)));
    }
    usable.push_back(entry);
  }
  return usable;
}

/// A graph that ends in all outputs of its last node, which is no expression. Nothing lit feeds anything lit.
class RandomGraph {
public:
  explicit RandomGraph(unsigned seed) : random_(seed) {}

  Json make(const std::vector<Usable>& fragments) {
    const unsigned count = 3 + pick(28);
    for (unsigned i = 0; i < count; ++i) {
      const Usable* fragment = &pickOf(fragments);
      while (i + 1 == count && !fragment->interface.is_null()) fragment = &pickOf(fragments);
      addNode(*fragment);
    }
    return {{"inputs", inputs_}, {"outputs", outputs_}, {"nodes", nodes_}};
  }
  unsigned pick(unsigned below) { return static_cast<unsigned>(random_() % below); }

private:
  struct Source {
    std::string node;
    std::string output;
    bool isLit = false;  ///< or stands on something lit
  };

  template <class T>
  const T& pickOf(const std::vector<T>& list) {
    return list[pick(static_cast<unsigned>(list.size()))];
  }

  void addNode(const Usable& fragment) {
    const std::string name = "node" + std::to_string(nodes_.size());
    Json node = {{"name", name}, {"fragment", fragment.name}};
    if (!fragment.interface.is_null()) node["interface"] = fragment.interface;
    bool isLit = fragment.isLit;
    for (const Usable::Port& port : fragment.inputs) {
      const Json wire = wireOf(port.type, fragment.isLit, isLit);
      if (!wire.is_null()) node["inputs"][port.name] = wire;
    }
    outputs_ = Json::array();
    for (const Usable::Port& port : fragment.outputs) {
      sources_[port.type].push_back({name, port.name, isLit});
      outputs_.push_back(
          {{"name", "out_" + port.name}, {"type", port.type}, {"node", name}, {"output", port.name}});
    }
    nodes_.push_back(node);
  }

  /// Where an input takes its value from; null leaves it unconnected. Tells whether the source is lit.
  Json wireOf(const std::string& type, bool mustBeUnlit, bool& isLit) {
    const unsigned kind = pick(20);
    const std::vector<Source>& sources = sources_[type];
    if (kind < 13 && !sources.empty()) {
      const Source& source = pickOf(sources);
      if (source.isLit && mustBeUnlit) return nullptr;
      isLit = isLit || source.isLit;
      return {{"node", source.node}, {"output", source.output}};
    }
    if (kind < 15) return {{"graphInput", graphInputOf(type)}};
    if (kind >= 19 || type.starts_with("sfg_sampler")) return nullptr;
    return {{kind < 17 ? "value" : "constant", valueOf(type)}};
  }

  /// One for each type.
  std::string graphInputOf(const std::string& type) {
    const std::string name = "in_" + type;
    for (const Json& input : inputs_) {
      if (input.at("name") == name) return name;
    }
    inputs_.push_back({{"name", name}, {"type", type}});
    return name;
  }

  Json valueOf(const std::string& type) {
    if (type == "int") return 1 + pick(6);
    Json components = Json::array();
    std::size_t const count =
        TolmSDK::Graphics::componentCount(standardLibrary().language().getTypeID(TolmSDK::fromUtf8(type)));
    for (std::size_t i = 0; i < count; ++i) components.push_back(pickOf(kNumbers));
    return count == 1 ? components.at(0) : components;
  }

  static inline const std::vector<double> kNumbers = {0.0, 1.0, -1.0, 0.5, 0.25, -3.5, 1e-6, 1000.0};

  std::mt19937 random_;
  std::map<std::string, std::vector<Source>> sources_;
  Json inputs_ = Json::array();
  Json outputs_ = Json::array();
  Json nodes_ = Json::array();
};

}  // namespace shaders_test
