#include "tests/model/collapsed_text.h"

#include <string_view>

#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::model {
namespace {

std::wstring plain(std::wstring_view text) { return std::wstring(text); }

template <class Items>
void addLine(std::wstring& out, const wchar_t* title, const Items& items) {
  out += title;
  for (const auto& item : items) {
    out += L' ';
    out += item;
  }
  out += L'\n';
}

std::vector<std::wstring> spell(const std::vector<TextPort>& ports) {
  std::vector<std::wstring> spelled;
  for (const TextPort& port : ports) spelled.push_back(port.type + L"|" + port.name);
  return spelled;
}

void readProfile(CollapsedText& text, const IShaderFragmentProfile& profile) {
  text.functionName = plain(profile.getFunctionName());
  text.profileName = plain(profile.getProfilename());
  text.lod = profile.getLOD();
  const ITextParameterList& list = *profile.getFunctionParameters();
  for (std::size_t i = 0; i < list.getNumInputs(); ++i)
    text.inputs.push_back({plain(list.getInputType(i)), plain(list.getInputName(i))});
  for (std::size_t i = 0; i < list.getNumOutputs(); ++i)
    text.outputs.push_back({plain(list.getOutputType(i)), plain(list.getOutputName(i))});
  text.predefines = plain(profile.predefines());
  text.body = plain(profile.getFunctionBody());
  for (const UString& name : profile.languages()) text.languages.insert(plain(name.view()));
  for (const WString& name : profile.includes()) text.includes.insert(plain(name));
  for (const UString& name : profile.stateVariables()) text.stateVariables.insert(plain(name.view()));
  for (const WString& name : profile.customStateVariables()) text.customStateVariables.insert(plain(name));
}

}  // namespace

std::wstring nameOf(const AParameter& parameter, const std::wstring& name) {
  std::wstring type = plain(ITypeTraits::getTypeName(parameter.getType()));
  if (parameter.getType() == TypeID_struct) type += L':' + plain(parameter.getStructName());
  return type + L'/' + name;
}

CollapsedText read(const IShaderFragment& fragment) {
  CollapsedText text;
  readProfile(text, *fragment.getProfile(0));
  const auto name = [](const AParameter* parameter) {
    return nameOf(*parameter, plain(parameter->getName()));
  };
  for (std::size_t i = 0; i < fragment.getNumUniforms(); ++i)
    text.resultUniforms.push_back(name(fragment.getUniform(i)));
  for (std::size_t i = 0; i < fragment.getNumInputs(); ++i)
    text.resultInputs.push_back(name(fragment.getInput(i)));
  for (std::size_t i = 0; i < fragment.getNumOutputs(); ++i)
    text.resultOutputs.push_back(name(fragment.getOutput(i)));
  for (const WString& type : fragment.getShaderInputTypes()) text.shaderInputs.push_back(plain(type));
  return text;
}

std::string describe(const CollapsedText& text) {
  std::wstring out = text.predefines;
  out += L"-- " + text.functionName + L"\n";
  out += text.body;
  out += L"--\n";
  addLine(out, L"inputs:", spell(text.inputs));
  addLine(out, L"outputs:", spell(text.outputs));
  addLine(out, L"profile:", std::vector{text.profileName, std::to_wstring(text.lod)});
  addLine(out, L"languages:", text.languages);
  addLine(out, L"includes:", text.includes);
  addLine(out, L"state:", text.stateVariables);
  addLine(out, L"custom state:", text.customStateVariables);
  addLine(out, L"result uniforms:", text.resultUniforms);
  addLine(out, L"result inputs:", text.resultInputs);
  addLine(out, L"result outputs:", text.resultOutputs);
  addLine(out, L"shader inputs:", text.shaderInputs);
  return toUtf8(out);
}

}  // namespace TolmSDK::Graphics::sfg::model
