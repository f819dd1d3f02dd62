#pragma once

// Everything that a collapse answers, as plain texts.

#include <set>
#include <string>
#include <vector>

#include "sfg/shader_fragment.h"

namespace TolmSDK::Graphics::sfg::model {

/// A parameter of a function: an empty type is not written.
struct TextPort {
  std::wstring type;
  std::wstring name;
};

struct CollapsedText {
  std::wstring functionName;
  std::wstring profileName;
  float lod = 100.0f;
  std::vector<TextPort> inputs;
  std::vector<TextPort> outputs;
  std::wstring predefines;
  std::wstring body;
  std::set<std::wstring> languages;
  std::set<std::wstring> includes;
  std::set<std::wstring> stateVariables;
  std::set<std::wstring> customStateVariables;
  std::vector<std::wstring> resultUniforms;  ///< of the fragment, each as nameOf() writes it
  std::vector<std::wstring> resultInputs;
  std::vector<std::wstring> resultOutputs;
  std::vector<std::wstring> shaderInputs;
};

/// Type and name of a parameter record.
std::wstring nameOf(const AParameter& parameter, const std::wstring& name);

/// What a real collapse answered; `fragment` is not null.
CollapsedText read(const IShaderFragment& fragment);

/// All of it, in UTF-8.
std::string describe(const CollapsedText& text);

}  // namespace TolmSDK::Graphics::sfg::model
