#include "tests/model/model_instance.h"

namespace TolmSDK::Graphics::sfg::model {

std::vector<std::wstring> ProfileInstance::outputNames() const {
  std::vector<std::wstring> names;
  for (const TextPort& output : outputs) names.push_back(output.name);
  return names;
}

void Instance::create(const Fragment& made, const std::wstring& language) {
  isCreated = true;
  fragment = made;
  inputs.resize(fragment.inputs.size());
  for (const auto& uniform : fragment.uniforms) {
    const std::wstring name = plain(uniform->getName());
    uniformRules.emplace_back(name, name + fragment.instanceName);
  }
  activate(fragment.findFirst(language));
}

void Instance::activate(const Profile* profile) {
  active = nullptr;
  if (profile == nullptr) return;
  const std::wstring suffix = std::to_wstring(profile - fragment.profiles.data() + 1);
  active = &profiles[profile->name + L"_" + suffix];
  if (active->profile != nullptr) return;
  active->profile = profile;
  active->functionName = profile->functionName + suffix;
  for (std::size_t i = 0; i < profile->outputs.size(); ++i) {
    const std::wstring name = L"result_" + fragment.instanceName + L"_" + std::to_wstring(i) + suffix;
    active->outputs.push_back({profile->outputs[i].type, name});
  }
  active->bodyValues = valuesOf(*profile, profile->bodyBuiltins);
  active->predefineValues = valuesOf(*profile, profile->predefineBuiltins);
  active->uniforms.keywords = uniformRules;
  // A use of a shader that nobody replaces goes away.
  for (const auto& [input, calls] : profile->shaders)
    for (const BuiltinCall& call : calls) active->shaders.add(call.text, L"");
}

bool Instance::findOutput(std::size_t index, std::wstring& name) const {
  if (!accumulators.empty()) {
    if (index >= accumulators.size()) return false;
    name = accumulators[index];
    return true;
  }
  if (active == nullptr || index >= active->outputs.size()) return false;
  name = active->outputs[index].name;
  return true;
}

std::vector<std::wstring> Instance::valuesOf(const Profile& profile,
                                             const std::vector<BuiltinCall>& calls) const {
  std::vector<std::wstring> values;
  for (const BuiltinCall& call : calls) {
    const std::wstring name = call.arguments.empty() ? L"" : call.arguments[0];
    bool value = false;
    if (call.id == BuiltinId::isConnected) {
      const std::size_t input = profile.findInput(name);
      value = input < fragment.connections.size() && fragment.connections[input].isConnected();
    } else {
      const std::size_t output = profile.findOutput(name);
      value = output != kNone && fragment.isFinalOutput(output);
    }
    values.push_back(value ? L"true" : L"false");
  }
  return values;
}

Pattern makeBuiltinPattern(const std::vector<BuiltinCall>& calls, const std::vector<std::wstring>& values) {
  Pattern pattern;
  for (std::size_t i = 0; i < calls.size(); ++i) pattern.add(calls[i].text, values[i]);
  return pattern;
}

}  // namespace TolmSDK::Graphics::sfg::model
