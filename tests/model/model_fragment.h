#pragma once

// Fragments and profiles as plain data: what a collapse reads of them.

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "sfg/shader_fragment.h"
#include "sfg/shader_fragment_graph.h"
#include "tests/model/collapsed_text.h"
#include "tests/model/model_text.h"

namespace TolmSDK::Graphics::sfg::model {

inline std::wstring plain(std::wstring_view text) { return std::wstring(text); }

struct Profile {
  EShaderFragmentProfileMode mode = EShaderFragmentProfileMode::Function;
  std::wstring name;
  float lod = 100.0f;
  std::set<std::wstring> languages;
  std::wstring predefines;
  std::wstring functionName;
  std::wstring body;
  std::vector<TextPort> inputs;
  std::vector<TextPort> outputs;
  std::set<std::wstring> includes;
  std::set<std::wstring> stateVariables;
  std::set<std::wstring> customStateVariables;
  std::vector<BuiltinCall> predefineBuiltins;
  std::vector<BuiltinCall> bodyBuiltins;
  std::map<std::wstring, std::vector<BuiltinCall>> shaders;  ///< by first argument

  bool isInline() const { return mode == EShaderFragmentProfileMode::Inline; }
  bool readsCurrentLight() const { return stateVariables.contains(L"sfg_currentLight"); }
  /// Index of the input or output of that name, or kNone.
  std::size_t findInput(const std::wstring& inputName) const;
  std::size_t findOutput(const std::wstring& outputName) const;
  /// The uses of an input as a shader; null without any.
  const std::vector<BuiltinCall>* findShader(std::size_t input) const;
  /// Collects state variables and calls of built-ins from predefines and body.
  void scan();
};

struct Fragment {
  std::wstring key;
  std::wstring instanceName;
  const IShaderFragment* identity = nullptr;
  const IShaderFragmentGraph* graph = nullptr;
  std::vector<RefPtr<AParameter const>> inputs;
  std::vector<RefPtr<AParameter const>> outputs;
  std::vector<RefPtr<AParameter const>> uniforms;
  std::vector<ShaderFragmentConnection> connections;  ///< one for each input
  std::vector<Profile> profiles;

  const Profile* findFirst(const std::wstring& language) const;
  const Profile* findBest(const std::wstring& name, const std::wstring& language, float lod) const;
  bool isFinalOutput(std::size_t output) const;
};

Fragment readFragment(const IShaderFragment& fragment);

/// A fragment that turns the outputs of `graph` into inputs of `target`; no profile when that cannot be done.
Fragment makeConversion(const IShaderFragmentGraph& graph, const IShaderFragment& target,
                        const std::wstring& language);

}  // namespace TolmSDK::Graphics::sfg::model
