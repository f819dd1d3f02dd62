#include "tests/model/model_fragment.h"

#include <cmath>

namespace TolmSDK::Graphics::sfg::model {
namespace {

std::size_t findName(const std::vector<TextPort>& ports, const std::wstring& name) {
  for (std::size_t i = 0; i < ports.size(); ++i)
    if (ports[i].name == name) return i;
  return kNone;
}

Profile readProfile(const IShaderFragmentProfile& real) {
  Profile profile;
  profile.mode = real.getMode();
  profile.name = plain(real.getProfilename());
  profile.lod = real.getLOD();
  for (const UString& language : real.languages()) profile.languages.insert(plain(language.view()));
  profile.predefines = plain(real.predefines());
  profile.functionName = plain(real.getFunctionName());
  profile.body = plain(real.getFunctionBody());
  const ITextParameterList& list = *real.getFunctionParameters();
  for (std::size_t i = 0; i < list.getNumInputs(); ++i)
    profile.inputs.push_back({plain(list.getInputType(i)), plain(list.getInputName(i))});
  for (std::size_t i = 0; i < list.getNumOutputs(); ++i)
    profile.outputs.push_back({plain(list.getOutputType(i)), plain(list.getOutputName(i))});
  for (const WString& name : real.includes()) profile.includes.insert(plain(name));
  for (const WString& name : real.customStateVariables()) profile.customStateVariables.insert(plain(name));
  profile.scan();
  return profile;
}

/// The name under which shader text knows a parameter's type.
std::wstring typeText(const AParameter& parameter) {
  return plain(parameter.getType() == TypeID_struct ? parameter.getStructName()
                                                    : parameter.getType().toString());
}

/// The value of an output as the target's input takes it; false when there is no way.
bool convert(std::wstring& value, const AParameter& from, const AParameter& to) {
  if (to.getType() == TypeID_fvec4 && from.getType() == TypeID_fvec3) {
    value = L"float4(" + value + L", 1.f)";
  } else if (to.getType() == TypeID_fvec4 && from.getType() == TypeID_float) {
    value = L"float4((float3)" + value + L", 1.f)";
  } else if (!(to.getType() == from.getType())) {
    return false;
  }
  return true;
}

RefPtr<AParameter> makePort(const AParameter& like, const std::wstring& name) {
  auto port = makeRef<AParameter>(like.getType(), WString(name));
  if (like.getType() == TypeID_struct) port->setStructName(like.getStructName());
  return port;
}

}  // namespace

std::size_t Profile::findInput(const std::wstring& inputName) const { return findName(inputs, inputName); }

std::size_t Profile::findOutput(const std::wstring& outputName) const {
  return findName(outputs, outputName);
}

const std::vector<BuiltinCall>* Profile::findShader(std::size_t input) const {
  if (input >= inputs.size()) return nullptr;
  const auto found = shaders.find(inputs[input].name);
  return found != shaders.end() ? &found->second : nullptr;
}

void Profile::scan() {
  const Snippet snippet = parseSnippet(predefines);
  const Keywords keywords = parseKeywords(body);
  stateVariables = snippet.stateVariables();
  stateVariables.insert(keywords.stateVariables.begin(), keywords.stateVariables.end());
  predefineBuiltins = snippet.builtins();
  bodyBuiltins = keywords.builtins;
  for (const auto& calls : {snippet.shaders(), keywords.shaders})
    for (const BuiltinCall& call : calls)
      if (!call.arguments.empty()) shaders[call.arguments[0]].push_back(call);
  if (mode != EShaderFragmentProfileMode::MetaSL) return;
  for (const wchar_t* variable :
       {L"sfg_matWorld", L"sfg_matWorldInverse", L"sfg_matView", L"sfg_matViewInverse",
        L"sfg_matWorldViewProj", L"sfg_orthographic", L"state.origin", L"state.position", L"state.direction",
        L"state.ray_length"})
    stateVariables.insert(variable);
  includes.insert(L"sfg_msl_common.h");
}

const Profile* Fragment::findFirst(const std::wstring& language) const {
  for (const Profile& profile : profiles)
    if (profile.languages.contains(language)) return &profile;
  return nullptr;
}

const Profile* Fragment::findBest(const std::wstring& name, const std::wstring& language, float lod) const {
  const Profile* best = nullptr;
  for (const Profile& profile : profiles) {
    for (const std::wstring& known : profile.languages) {
      if (profile.name + known != name + language) continue;
      if (best == nullptr || std::fabs(profile.lod - lod) < std::fabs(best->lod - lod)) best = &profile;
    }
  }
  return best;
}

bool Fragment::isFinalOutput(std::size_t output) const {
  if (graph == nullptr) return false;
  for (const ShaderFragmentConnection& connection : graph->getOutputConnections())
    if (connection.fragment == identity && connection.index == output) return true;
  return false;
}

Fragment readFragment(const IShaderFragment& real) {
  Fragment fragment;
  fragment.key = plain(real.key());
  fragment.instanceName = plain(real.instanceName());
  fragment.identity = &real;
  fragment.graph = real.getOwnerGraph();
  for (std::size_t i = 0; i < real.getNumInputs(); ++i) fragment.inputs.emplace_back(real.getInput(i));
  for (std::size_t i = 0; i < real.getNumOutputs(); ++i) fragment.outputs.emplace_back(real.getOutput(i));
  for (std::size_t i = 0; i < real.getNumUniforms(); ++i) fragment.uniforms.emplace_back(real.getUniform(i));
  fragment.connections.assign(real.getInputConnections().begin(), real.getInputConnections().end());
  for (std::size_t i = 0; i < real.getNumProfiles(); ++i)
    fragment.profiles.push_back(readProfile(*real.getProfile(i)));
  return fragment;
}

Fragment makeConversion(const IShaderFragmentGraph& graph, const IShaderFragment& target,
                        const std::wstring& language) {
  Fragment fragment;
  if (target.getNumInputs() > graph.getNumOutputs()) return fragment;
  Profile profile;
  for (std::size_t i = 0; i < graph.getNumOutputs(); ++i) {
    const AParameter& from = *graph.getOutput(i);
    const std::wstring input = L"input_value_" + std::to_wstring(i);
    fragment.inputs.push_back(makePort(from, input));
    fragment.connections.emplace_back();
    profile.inputs.push_back({typeText(from), input});
    if (i >= target.getNumInputs()) continue;
    const AParameter& to = *target.getInput(i);
    const std::wstring output = L"output_value_" + std::to_wstring(i);
    std::wstring value = input;
    if (!convert(value, from, to)) return fragment;
    fragment.outputs.push_back(makePort(to, output));
    profile.outputs.push_back({typeText(to), output});
    profile.body += L"    " + output + L" = " + value + L";\n";
  }
  fragment.key = fragment.instanceName = L"OutputTypeConversion";
  profile.name = L"default";
  profile.languages.insert(language);
  profile.functionName = L"OutputTypeConversion";
  profile.scan();
  fragment.profiles.push_back(profile);
  return fragment;
}

}  // namespace TolmSDK::Graphics::sfg::model
