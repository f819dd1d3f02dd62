#pragma once

// Fragments and graphs in a few words, for tests.

#include <algorithm>
#include <initializer_list>
#include <string_view>

#include "sfg/shader_fragment.h"
#include "sfg/shader_fragment_graph.h"
#include "tests/support/test_host.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/object_data_node.h"

namespace TolmSDK::Graphics::sfg::test {

/// A fragment from the JSON text of a fragment object. Throws what its load throws; a text that is no JSON
/// loads nothing.
inline RefPtr<AShaderFragment> loadFragment(std::wstring_view key, std::wstring_view json) {
  const RefPtr<IObjectDataNode> node(createJsonNode());
  auto fragment = makeRef<AShaderFragment>();
  if (!node->loadFromText(json)) throw Exception(L"test fragment: %s", node->getLoadError());
  fragment->load(node.get());
  fragment->key() = key;
  return fragment;
}

/// The JSON text of a fragment with one function of one "default" profile. The function is its prototype and
/// body, one line after the other.
inline WString functionJson(std::wstring_view function, std::wstring_view more = L"") {
  WString text = LR"({"language":["dx11"],"implementation":[)";
  for (std::size_t at = 0; at <= function.size();) {
    const std::size_t end = std::min(function.find(L'\n', at), function.size());
    if (at != 0) text += L',';
    text += L'"';
    text += function.substr(at, end - at);
    text += L'"';
    at = end + 1;
  }
  text += L']';
  text += more;
  return text + L'}';
}

/// A profile of functionJson() under a name of its own.
inline WString namedFunctionJson(std::wstring_view name, std::wstring_view function) {
  return functionJson(function, LR"(,"name":")" + WString(name) + LR"(")");
}

/// The JSON text of a fragment with these profiles.
inline WString profilesJson(std::initializer_list<WString> profiles) {
  WString text;
  for (const WString& profile : profiles) text += (text.empty() ? L"" : L",") + profile;
  return LR"({"profiles":[)" + text + L"]}";
}

inline RefPtr<AParameter> parameter(const TypeID& type, const WString& name, std::uint32_t flags = 0) {
  auto made = makeRef<AParameter>(type, name);
  made->setFlags(flags);
  return made;
}

inline RefPtr<AParameter> structure(const WString& structName, const WString& name) {
  auto made = makeRef<AParameter>(TypeID_struct, name);
  made->setStructName(structName);
  return made;
}

using Ports = std::initializer_list<RefPtr<AParameter>>;

/// Everything one collapse takes, with a graph that starts empty.
struct TestScene {
  RefPtr<TestLanguage> language = makeRef<TestLanguage>();
  RefPtr<TestEnvironment> environment = makeRef<TestEnvironment>();
  RefPtr<TestOptions> options = makeRef<TestOptions>();
  RefPtr<AShaderFragmentGraph> graph = makeRef<AShaderFragmentGraph>();

  /// A copy of a fragment under an instance name, with the ports of its first function.
  RefPtr<AShaderFragment> instance(const AShaderFragment& fragment, const WString& name) const {
    RefPtr<AShaderFragment> copy(static_cast<AShaderFragment*>(fragment.clone(name)));
    copy->generateAutoInputsOutputs(language.get());
    return copy;
  }
  /// The same, as a member of the graph.
  AShaderFragment* add(const AShaderFragment& fragment, const WString& name) const {
    const RefPtr<AShaderFragment> copy = instance(fragment, name);
    graph->addFragment(copy.get());
    return copy.get();
  }
  /// A member made of one function.
  AShaderFragment* addFunction(const WString& name, std::wstring_view function) const {
    return add(*loadFragment(name, functionJson(function)), name);
  }
  /// A member with these ports, whatever its function says.
  AShaderFragment* addWithPorts(const AShaderFragment& fragment, const WString& name, Ports inputs,
                                Ports outputs) const {
    RefPtr<AShaderFragment> copy(static_cast<AShaderFragment*>(fragment.clone(name)));
    for (const auto& input : inputs) copy->addInput(input.get());
    for (const auto& output : outputs) copy->addOutput(output.get());
    graph->addFragment(copy.get());
    return copy.get();
  }
  /// A member made of one inline expression with float inputs of these names and one float output.
  AShaderFragment* addInline(const WString& name, std::wstring_view expression,
                             std::initializer_list<const wchar_t*> inputs) const {
    WString json = LR"({"mode":"inline","language":["dx11"],"implementation":[")";
    json += expression;
    AShaderFragment* added =
        addWithPorts(*loadFragment(name, json + L"\"]}"), name, {}, {parameter(TypeID_float, L"result")});
    for (const wchar_t* input : inputs) added->addInput(TypeID_float, input);
    return added;
  }
  /// A light that the options want with its first profile.
  RefPtr<AShaderFragment> addLight(const WString& name, std::wstring_view json) const {
    const RefPtr<AShaderFragment> light = instance(*loadFragment(name, json), name);
    environment->lights.push_back(light);
    options->lightProfiles[name] = light->getProfile(0);
    return light;
  }
  RefPtr<AShaderFragment> addPostprocess(const WString& name, std::wstring_view function) const {
    const RefPtr<AShaderFragment> fragment = instance(*loadFragment(name, functionJson(function)), name);
    if (!graph->addPostprocessFragment(fragment.get())) throw Exception(L"test: %s does not fit", name);
    return fragment;
  }
  RefPtr<AShaderFragment> addPreprocess(const WString& name, std::wstring_view function) const {
    const RefPtr<AShaderFragment> fragment = instance(*loadFragment(name, functionJson(function)), name);
    graph->addPreprocessFragment(fragment.get());
    return fragment;
  }
  /// A graph output fed by an output of a member.
  void output(const WString& name, const TypeID& type, IShaderFragment* source, std::size_t index = 0) const {
    graph->addOutput(type, name);
    graph->setOutputConnection(graph->getNumOutputs() - 1, source, index);
  }
};

}  // namespace TolmSDK::Graphics::sfg::test
