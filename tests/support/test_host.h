#pragma once

// The smallest host a collapse can have: a language, an environment and options whose answers a test sets.

#include <map>
#include <string>
#include <vector>

#include "sfg/shader_fragment.h"
#include "sfg/shader_fragment_profile.h"
#include "tolmsdk/host_interfaces.h"
#include "tolmsdk/state_variables.h"
#include "tolmsdk/type_id.h"
#include "tolmsdk/value.h"

namespace TolmSDK::Graphics::sfg::test {

/// Types and values as the platform writes them; varying state variables under their own names.
class TestLanguage : public RefCounted<ILanguageTraits> {
public:
  explicit TestLanguage(const wchar_t* name = L"dx11") : name_(name) {}

  const UString& getLanguageString() const override { return name_; }
  const WString& getTypeName(const TypeID& type) const override {
    return unknownTypes ? empty_ : type.toString();
  }
  TypeID getTypeID(const WString& typeText) const override {
    const std::wstring_view inout = L"inout ";
    std::wstring_view text = typeText;
    if (text.substr(0, inout.size()) == inout) text.remove_prefix(inout.size());
    return ITypeTraits::findType(text);
  }
  WString getValueText(const AValue& value) const override { return toShaderText(value); }
  const WString& getStateVariableParameterName(const UString& name) const override {
    const StateVariableInfo* info = findStateVariable(name);
    return info != nullptr && info->kind == StateVariableKind::varying ? name.str() : empty_;
  }
  const WString& getStateVariableTypeName(const UString& name) const override {
    const StateVariableInfo* info = findStateVariable(name);
    return info != nullptr ? info->type.toString() : empty_;
  }
  const IShaderFragment* findFragment(const WString& name) const override {
    const auto found = fragments.find(name);
    return found != fragments.end() ? found->second.get() : nullptr;
  }

  std::map<WString, RefPtr<IShaderFragment const>> fragments;
  bool unknownTypes = false;  ///< answer empty type names, as a broken language would

private:
  UString name_;
  WString empty_;
};

class TestEnvironment : public RefCounted<IShadingEnvironment> {
public:
  std::size_t getNumLights() const override { return lights.size(); }
  const IShaderFragment* getLight(std::size_t index) const override { return lights[index].get(); }
  const IShaderFragment* getOutputFragment() const override { return output.get(); }

  std::vector<RefPtr<IShaderFragment const>> lights;
  RefPtr<IShaderFragment const> output;
};

class TestOptions : public RefCounted<IShaderOptions> {
public:
  explicit TestOptions(const wchar_t* language = L"dx11") : language_(language) {}

  const UString& getLanguage() const override { return language_; }
  float getSurfaceLOD() const override { return surfaceLOD; }
  float getLightLOD() const override { return lightLOD; }
  bool getConstValue(AValue& value, const AParameter* parameter) const override {
    const auto found = constants.find(parameter->getName());
    if (found == constants.end()) return false;
    value = found->second;
    return true;
  }
  const IShaderFragmentProfile* getLightProfile(const IShaderFragment* light) const override {
    const auto found = lightProfiles.find(light->instanceName());
    return found != lightProfiles.end() ? found->second.get() : nullptr;
  }

  float surfaceLOD = 100.0f;
  float lightLOD = 100.0f;
  std::map<WString, AValue> constants;                                    ///< by parameter name
  std::map<WString, RefPtr<IShaderFragmentProfile const>> lightProfiles;  ///< by instance name of the light

private:
  UString language_;
};

}  // namespace TolmSDK::Graphics::sfg::test
