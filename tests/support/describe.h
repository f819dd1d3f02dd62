#pragma once

// What a collapse made, as one text to compare.

#include <string>

#include "sfg/shader_fragment.h"
#include "sfg/shader_fragment_profile.h"
#include "tolmsdk/text_parameter_list.h"
#include "tolmsdk/type_id.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::test {

/// Predefines, then the function as it would be written, then what the host has to know, one line each; what
/// is empty is left out.
inline std::string describe(const IShaderFragment* result) {
  if (result == nullptr) return "null";
  const IShaderFragmentProfile& profile = *result->getProfile(0);
  WString text = profile.predefines();
  text += L"void ";
  text += profile.getFunctionName();
  text += L'(';
  profile.getFunctionParameters()->writeParameters(text, L"    ", true);
  text += L")\n{\n";
  text += profile.getFunctionBody();
  text += L"}\n";

  const auto line = [&](const wchar_t* title, const auto& items, const auto& toText) {
    if (items.begin() == items.end()) return;
    text += title;
    for (const auto& item : items) {
      text += L' ';
      text += toText(item);
    }
    text += L'\n';
  };
  const auto parameter = [](const AParameter* p) {
    return ITypeTraits::getTypeName(p->getType()) + L"/" + p->getName();
  };
  Array<const AParameter*> uniforms;
  for (std::size_t i = 0; i < result->getNumUniforms(); ++i) uniforms.push_back(result->getUniform(i));
  Array<const AParameter*> outputs;
  for (std::size_t i = 0; i < result->getNumOutputs(); ++i) outputs.push_back(result->getOutput(i));
  line(L"uniforms:", uniforms, parameter);
  line(L"outputs:", outputs, parameter);
  line(L"includes:", profile.includes(), [](const WString& name) { return name; });
  line(L"state:", profile.stateVariables(), [](const UString& name) { return name.str(); });
  line(L"custom state:", profile.customStateVariables(), [](const WString& name) { return name; });
  line(L"shader inputs:", result->getShaderInputTypes(), [](const WString& type) { return type; });
  return toUtf8(text);
}

}  // namespace TolmSDK::Graphics::sfg::test
