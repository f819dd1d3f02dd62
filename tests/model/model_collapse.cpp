#include "tests/model/model_collapse.h"

#include <algorithm>
#include <functional>

#include "tests/model/model_temps.h"
#include "tolmsdk/state_variables.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::model {
namespace {

const wchar_t* const kLightBegin = L"TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN";
const wchar_t* const kLightEnd = L"TOLM_VESSOR_LIGHT_AND_SHADOW_END";
const wchar_t* const kSceneLighting = L"TOLM_SCENE_LIGHTING";
const wchar_t* const kSeparator = L"    // ------------------------------------------------------------ \n";

/// The items of a parameter list, inputs before outputs, each on a line.
std::wstring spellList(const std::vector<TextPort>& inputs, const std::vector<TextPort>& outputs,
                       const std::wstring& prefix, bool isDeclaration) {
  std::vector<std::wstring> items;
  const auto add = [&](const TextPort& port, const wchar_t* qualifier) {
    const bool isTyped = isDeclaration && !port.type.empty();
    items.push_back((isDeclaration ? qualifier : L"") + (isTyped ? port.type + L" " : L"") + port.name);
  };
  for (const TextPort& port : inputs) add(port, L"");
  for (const TextPort& port : outputs) add(port, L"out ");
  std::wstring text;
  for (std::size_t i = 0; i < items.size(); ++i)
    text += L"\n" + prefix + items[i] + (i + 1 < items.size() ? L"," : L"");
  return text;
}

std::wstring replaceAll(std::wstring text, const std::wstring& what, const std::wstring& by) {
  for (std::size_t at = text.find(what); at != std::wstring::npos; at = text.find(what, at + by.size()))
    text.replace(at, what.size(), by);
  return text;
}

std::wstring samplerFunction(const TypeID& type) {
  if (type == TypeID_sampler1D) return L"sfg_make_sampler1D";
  if (type == TypeID_sampler2D) return L"sfg_make_sampler2D";
  if (type == TypeID_sampler3D) return L"sfg_make_sampler3D";
  if (type == TypeID_samplerCube) return L"sfg_make_samplerCube";
  return L"";
}

const std::vector<Rule>& metaSLNames() {
  static const std::vector<Rule> names = {
      {L"__object_to_ndc", L"sfg_matWorldViewProj"},  {L"__object_to_world", L"sfg_matWorld"},
      {L"__world_to_object", L"sfg_matWorldInverse"}, {L"__camera_to_world", L"sfg_matViewInverse"},
      {L"__world_to_camera", L"sfg_matView"},         {L"__orthographic", L"sfg_orthographic"}};
  return names;
}

std::wstring defaultLightFunction(const std::wstring& name) {
  return L"void " + name +
         L"(float3 Pw, float3 Nw, out Light_iterator light)\n"
         L"{\n"
         L"    light.msl_point = float3(0, 0, 0);\n"
         L"    light.msl_direction = float3(1, 0, 0);\n"
         L"    light.msl_distance = 0;\n"
         L"    light.msl_dot_nl = 0;\n"
         L"    light.msl_contribution = float3(0, 0, 0);\n"
         L"    light.msl_raw_contribution = float3(0, 0, 0);\n"
         L"    light.msl_shadow = float3(0, 0, 0);\n"
         L"    light.msl_count = 1;\n"
         L"}\n";
}

std::string describeRun(const Input& input, const std::function<bool(Collapse&)>& run) {
  try {
    Collapse collapse(input);
    return run(collapse) ? describe(collapse.result()) : "null";
  } catch (const Failure& failure) {
    return failure.what();
  }
}

/// A fragment that cannot take any profile; some callers only want to know.
class NoProfile : public Failure {
public:
  using Failure::Failure;
};

}  // namespace

Failure::Failure(const std::wstring& message) : std::runtime_error(toUtf8(message)) {}

std::string collapseDefault(const Input& input) {
  return describeRun(input, [](Collapse& collapse) { return collapse.runDefault(); });
}

std::string collapseLightLoop(const Input& input) {
  return describeRun(input, [](Collapse& collapse) { return collapse.runLightLoop(); });
}

Collapse::Collapse(const Input& input) : input_(input) {
  result_.functionName = L"CollapsedFunction";
  result_.profileName = L"default";
}

// ---- Before the graph is evaluated

void Collapse::prepare() {
  for (std::size_t i = 0; i < input_.graph->getNumPreprocessFragment(); ++i)
    if (input_.graph->getPreprocessFragment(i)->getNumInputs() != 0)
      throw Failure(L"sfgError : pre-process fragment should has no inputs!");
  checkOutputs();
  result_.languages.insert(language());
  createInstances();
  for (std::size_t i = 0; i < input_.graph->getNumPreprocessFragment(); ++i)
    preprocess_.emplace_back().create(readFragment(*input_.graph->getPreprocessFragment(i)), language());
  for (std::size_t i = 0; i < input_.graph->getNumPostprocessFragments(); ++i)
    postprocess_.emplace_back().create(readFragment(*input_.graph->getPostprocessFragment(i)), language());
  registerCustomStateVariables();
  prepareChains();
  writePreprocess();
}

void Collapse::checkOutputs() {
  const Failure misfit(L"sfgError : the graph outputs should be the same as the output fragment inputs!");
  const IShaderFragmentGraph& graph = *input_.graph;
  const IShaderFragment* output = input_.environment->getOutputFragment();
  const std::size_t chain = graph.getNumPostprocessFragments();
  if (graph.getNumOutputs() == 0) throw Failure(L"sfgError : the graph should has at least one output!");
  // Types of a fragment's outputs fit inputs one by one.
  const auto fits = [&](const IShaderFragment& target) {
    if (graph.getNumOutputs() < target.getNumInputs()) return false;
    for (std::size_t i = 0; i < target.getNumInputs(); ++i)
      if (!(graph.getOutput(i)->getType() == target.getInput(i)->getType())) return false;
    return true;
  };
  if (chain != 0) {
    const IShaderFragment& first = *graph.getPostprocessFragment(0);
    const bool fitsFirst = graph.getNumOutputs() == first.getNumInputs() && fits(first);
    if (!fitsFirst && !addConversion(first)) throw misfit;
    if (output == nullptr) return;
    const IShaderFragment& last = *graph.getPostprocessFragment(chain - 1);
    if (last.getNumOutputs() != output->getNumInputs()) throw misfit;
    for (std::size_t i = 0; i < last.getNumOutputs(); ++i)
      if (!(last.getOutput(i)->getType() == output->getInput(i)->getType())) throw misfit;
  } else if (output != nullptr && !fits(*output) && !addConversion(*output)) {
    throw misfit;
  }
}

bool Collapse::addConversion(const IShaderFragment& target) {
  const Fragment conversion = makeConversion(*input_.graph, target, language());
  if (conversion.profiles.empty()) return false;
  postprocess_.emplace_back().create(conversion, language());
  return true;
}

void Collapse::createInstances() {
  for (const ShaderFragmentConnection& connection : input_.graph->getOutputConnections())
    if (connection.fragment != nullptr) createSurface(*connection.fragment);
  for (std::size_t i = 0; i < input_.environment->getNumLights(); ++i) {
    const IShaderFragment& light = *input_.environment->getLight(i);
    Instance& instance = lights_[plain(light.instanceName())];
    // A light that is there twice ends the creation.
    if (instance.isCreated) return;
    instance.create(readFragment(light), language());
    makeInputs(instance);
  }
}

void Collapse::createSurface(const IShaderFragment& fragment) {
  for (const ShaderFragmentConnection& connection : fragment.getInputConnections())
    if (connection.fragment != nullptr) createSurface(*connection.fragment);
  Instance& instance = surface(fragment);
  if (instance.isCreated) return;
  instance.create(readFragment(fragment), language());
  instance.number = ++created_;
  makeInputs(instance);
}

void Collapse::makeInputs(Instance& instance) {
  for (std::size_t i = 0; i < instance.inputs.size(); ++i) {
    const bool isShader = instance.active != nullptr && instance.active->profile->findShader(i) != nullptr;
    if (!instance.fragment.connections[i].isConnected() || isShader) makeInput(instance, i);
  }
}

void Collapse::makeInput(Instance& instance, std::size_t input) {
  InputValue& made = instance.inputs[input];
  const AParameter& parameter = *instance.fragment.inputs[input];
  made.isMade = true;
  AValue constant;
  if (parameter.isConstant() && input_.options->getConstValue(constant, &parameter)) {
    made.text = plain(input_.language->getValueText(constant));
    return;
  }
  std::wstring name = plain(parameter.getName());
  std::replace(name.begin(), name.end(), L'.', L'_');
  name += instance.fragment.instanceName;
  made.uniform = nameOf(parameter, name);
  const std::wstring sampler = samplerFunction(parameter.getType());
  made.isSampler = !sampler.empty();
  made.text = made.isSampler ? sampler + L"(" + name + L", sampler_" + name + L")" : name;
}

void Collapse::registerCustomStateVariables() {
  for (std::size_t i = 0; i < input_.graph->getNumFragments(); ++i) {
    const IShaderFragment& fragment = *input_.graph->getFragment(i);
    for (std::size_t k = 0; k < fragment.getNumOutputs(); ++k) {
      const AParameter& output = *fragment.getOutput(k);
      if (output.getSemantic().view().empty()) customTypes_[plain(output.getName())] = typeName(output);
    }
  }
}

void Collapse::prepareChains() {
  for (auto* chain : {&preprocess_, &postprocess_}) {
    for (Instance& instance : *chain) {
      setProfile(instance, L"default", 100.0f);
      writeRequirements(instance);
    }
  }
}

void Collapse::writePreprocess() {
  for (Instance& instance : preprocess_) {
    setProfile(instance, L"default", 100.0f);
    std::vector<std::wstring> names;
    for (const auto& output : instance.fragment.outputs) {
      if (!output->getSemantic().view().empty()) continue;
      const std::wstring value = defaultText(*output);
      names.push_back(plain(output->getName()));
      write(L"    " + typeName(*output) + L" " + names.back() + (value.empty() ? L"" : L" = " + value) +
            L";\n");
    }
    evaluate(instance, names);
  }
}

// ---- Choosing profiles

bool Collapse::setProfile(Instance& instance, const std::wstring& name, float lod) {
  if (!instance.isCreated) return false;
  const Profile* best = instance.fragment.findBest(name, language(), lod);
  if (best == nullptr) best = instance.fragment.findBest(L"default", language(), lod);
  if (best == nullptr)
    throw NoProfile(L"The fragment " + instance.fragment.key + L" doesn't have a default profile");
  instance.activate(best);
  return true;
}

bool Collapse::trySetProfile(Instance& instance, const std::wstring& name, float lod) {
  try {
    return setProfile(instance, name, lod);
  } catch (const NoProfile&) {
    return false;
  }
}

bool Collapse::setSurfaceProfile(const std::wstring& name) {
  for (auto& [key, instance] : surfaces_)
    if (!trySetProfile(instance, name, input_.options->getSurfaceLOD())) return false;
  return true;
}

std::wstring Collapse::lightProfile(const IShaderFragment& light) const {
  const IShaderFragmentProfile* wanted = input_.options->getLightProfile(&light);
  return wanted != nullptr ? plain(wanted->getProfilename()) : L"default";
}

bool Collapse::requiresLight() const {
  for (const auto& [key, instance] : surfaces_)
    if (instance.requiresLight()) return true;
  return false;
}

// ---- Evaluating instances

bool Collapse::evaluate(Instance& instance) {
  if (instance.active == nullptr) return false;
  declareOutputs(*instance.active);
  std::vector<std::wstring> outputs = instance.active->outputNames();
  return evaluate(instance, outputs);
}

bool Collapse::evaluate(Instance& instance, std::vector<std::wstring>& outputs) {
  if (instance.active == nullptr || !declareUnspecified(*instance.active, outputs)) return false;
  std::vector<std::wstring> inputs;
  if (!buildInputs(instance, inputs)) return false;
  writeRequirements(instance);
  writeDefinition(*instance.active);
  return writeCall(result_.body, *instance.active, inputs, outputs);
}

bool Collapse::safeEvaluate(Instance& instance) {
  return !instance.accumulators.empty() || evaluate(instance);
}

void Collapse::accumulate(Instance& instance) {
  if (!evaluate(instance)) return;
  // A profile with fewer outputs than the fragment adds nothing.
  if (instance.accumulators.size() > instance.active->outputs.size()) return;
  for (std::size_t i = 0; i < instance.accumulators.size(); ++i)
    write(L"    " + instance.accumulators[i] + L" += " + instance.active->outputs[i].name + L";\n");
}

void Collapse::declareAccumulators(Instance& instance) {
  for (const auto& output : instance.fragment.outputs) {
    const std::wstring name =
        L"accumulate_" + instance.fragment.instanceName + L"_" + plain(output->getName());
    const std::wstring value = defaultText(*output);
    instance.accumulators.push_back(name);
    write(L"    " + typeName(*output) + L" " + name + (value.empty() ? L"" : L" = " + value) + L";\n");
  }
}

bool Collapse::buildInputs(Instance& instance, std::vector<std::wstring>& values) {
  for (std::size_t i = 0; i < instance.fragment.connections.size(); ++i) {
    std::wstring value;
    if (!buildInput(instance, i, value)) return false;
    values.push_back(value);
  }
  return true;
}

bool Collapse::buildInput(Instance& instance, std::size_t input, std::wstring& value) {
  const ShaderFragmentConnection& connection = instance.fragment.connections[input];
  if (connection.fragment != nullptr) {
    Instance& source = surface(*connection.fragment);
    const std::vector<BuiltinCall>* uses = instance.active->profile->findShader(input);
    if (uses == nullptr) return evaluate(source) && source.findOutput(connection.index, value);
    if (!evaluateShader(source, *uses, instance.active->shaders)) return false;
    InputValue& own = instance.inputs[input];
    if (!own.isMade) {
      // The profile at creation did not use the input as a shader: it is made now.
      makeInput(instance, input);
      if (instance.areUniformsWritten && !own.uniform.empty()) result_.resultUniforms.push_back(own.uniform);
      if (instance.areUniformsWritten && own.isSampler) result_.includes.insert(L"sfg_samplers.h");
    }
    value = own.text;
  } else if (instance.fragment.graph != nullptr &&
             connection.index < instance.fragment.graph->getNumInputs()) {
    value = plain(instance.fragment.graph->getInputName(connection.index));
  } else {
    value = instance.inputs[input].text;
  }
  return true;
}

bool Collapse::evaluateShader(Instance& instance, const std::vector<BuiltinCall>& uses,
                              Pattern& callerShaders) {
  // An expression has no call.
  if (instance.active == nullptr || instance.active->profile->isInline()) return false;
  ProfileInstance& active = *instance.active;
  declareOutputs(active);
  std::vector<std::wstring> inputs;
  if (!buildInputs(instance, inputs)) return false;
  writeRequirements(instance);
  writeDefinition(active);
  passShaderInputs(instance, inputs);
  active.isShaderCallOpen = true;
  for (const BuiltinCall& use : uses) {
    std::wstring text;
    if (writeUse(text, instance, use, inputs, active.outputNames()))
      callerShaders.overrideText(use.text, text);
  }
  active.isShaderCallOpen = false;
  return true;
}

void Collapse::passShaderInputs(const Instance& instance, std::vector<std::wstring>& values) {
  const IShaderFragmentGraph* graph = instance.fragment.graph;
  for (std::size_t i = 0; i < values.size(); ++i) {
    const ShaderFragmentConnection& connection = instance.fragment.connections[i];
    std::wstring type;
    if (connection.fragment != nullptr) {
      type = typeName(*instance.fragment.inputs[i]);
    } else if (graph != nullptr && connection.index < graph->getNumInputs()) {
      type = typeName(*graph->getInput(connection.index));
    }
    if (type.empty()) continue;
    const std::wstring name = L"state.shaderInput" + std::to_wstring(result_.shaderInputs.size());
    result_.shaderInputs.push_back(type);
    write(L"    " + name + L" = " + values[i] + L";\n");
    values[i] = name;
  }
}

bool Collapse::writeUse(std::wstring& out, Instance& instance, const BuiltinCall& use,
                        std::vector<std::wstring> inputs, std::vector<std::wstring> outputs) {
  if (use.arguments.size() == 1) return false;
  const Profile& profile = *instance.active->profile;
  std::set<std::size_t> given;
  for (std::size_t i = 1; i + 1 < use.arguments.size(); i += 2) {
    const std::size_t input = profile.findInput(use.arguments[i]);
    const std::size_t output = profile.findOutput(use.arguments[i]);
    if (input < inputs.size()) {
      inputs[input] = use.arguments[i + 1];
    } else if (output < outputs.size()) {
      outputs[output] = use.arguments[i + 1];
      given.insert(output);
    } else {
      return false;
    }
  }
  for (std::size_t i = 0; i < outputs.size(); ++i) {
    if (given.contains(i)) continue;
    const std::wstring name = outputs[i] + L"_temp";
    out += instance.active->outputs[i].type + L" " + markDeclared(name) + L";\n";
    outputs[i] = markUsed(name);
  }
  return writeCall(out, *instance.active, inputs, outputs);
}

void Collapse::declareOutputs(ProfileInstance& instance) {
  if (instance.areOutputsDeclared) return;
  instance.areOutputsDeclared = true;
  for (const TextPort& output : instance.outputs)
    if (!output.type.empty()) write(L"    " + output.type + L" " + output.name + L";\n");
}

bool Collapse::declareUnspecified(ProfileInstance& instance, std::vector<std::wstring>& outputs) {
  outputs.resize(instance.outputs.size());
  if (instance.areOutputsDeclared) return true;
  instance.areOutputsDeclared = true;
  for (std::size_t i = 0; i < outputs.size(); ++i) {
    const TextPort& output = instance.outputs[i];
    if (output.type.empty()) return false;
    if (!outputs[i].empty()) continue;
    write(L"    " + output.type + L" " + output.name + L";\n");
    outputs[i] = output.name;
  }
  return true;
}

// ---- Writing what instances need

void Collapse::writeRequirements(Instance& instance) {
  if (!instance.areUniformsWritten) {
    for (std::size_t i = 0; i < instance.fragment.uniforms.size(); ++i)
      result_.resultUniforms.push_back(
          nameOf(*instance.fragment.uniforms[i], instance.uniformRules[i].second));
    for (const InputValue& input : instance.inputs) {
      if (!input.uniform.empty()) result_.resultUniforms.push_back(input.uniform);
      if (input.isSampler) result_.includes.insert(L"sfg_samplers.h");
    }
  }
  instance.areUniformsWritten = true;
  if (instance.active != nullptr) writePredefines(*instance.active);
}

void Collapse::writePredefines(ProfileInstance& instance) {
  if (instance.areRequirementsWritten) return;
  instance.areRequirementsWritten = true;
  const Profile& profile = *instance.profile;
  const bool isMetaSL = profile.mode == EShaderFragmentProfileMode::MetaSL;
  instance.keywords = {};
  if (isMetaSL) writeLightFunctions();
  const std::wstring text = completePredefines(instance);
  if (isMetaSL)
    for (const auto& [name, replacement] : metaSLNames()) instance.keywords.add(name, replacement);
  appendSnippet(text, instance.predefineValues,
                makeBuiltinPattern(profile.predefineBuiltins, instance.predefineValues), instance.keywords,
                L"");
  result_.includes.insert(profile.includes.begin(), profile.includes.end());
  result_.stateVariables.insert(profile.stateVariables.begin(), profile.stateVariables.end());
  result_.customStateVariables.insert(profile.customStateVariables.begin(),
                                      profile.customStateVariables.end());
}

std::wstring Collapse::completePredefines(const ProfileInstance& instance) {
  Replacer replacer;
  replacer.add(instance.uniforms);
  replacer.add(instance.shaders);
  std::wstring text = replacer.replaced(instance.profile->predefines);
  if (instance.profile->mode == EShaderFragmentProfileMode::MetaSL) text = expandLights(text);
  return nameMarked(text);
}

void Collapse::writeDefinition(ProfileInstance& instance) {
  if (instance.isDefinitionWritten) return;
  instance.isDefinitionWritten = true;
  const Profile& profile = *instance.profile;
  if (profile.isInline()) return;
  const std::wstring text = completeDefinition(instance);
  appendSnippet(text, instance.bodyValues, makeBuiltinPattern(profile.bodyBuiltins, instance.bodyValues),
                instance.keywords, instance.functionName);
  instance.functionName = accumulator_.rename(instance.functionName);
}

std::wstring Collapse::completeDefinition(ProfileInstance& instance) {
  const Profile& profile = *instance.profile;
  const bool isMetaSL = profile.mode == EShaderFragmentProfileMode::MetaSL;
  std::vector<TextPort> inputs = profile.inputs;
  addStateParameters(inputs, profile);

  Pattern light;
  if (profile.readsCurrentLight() && !isMetaSL) light.add(L"sfg_currentLight", lightName_);
  Replacer replacer;
  replacer.add(light);
  replacer.add(instance.keywords);
  replacer.add(instance.uniforms);
  replacer.add(instance.shaders);
  std::wstring body = replacer.replaced(profile.body);
  instance.keywords = {};
  if (isMetaSL) body = expandLights(body);
  return L"void " + instance.functionName + L"(" + spellList(inputs, profile.outputs, L"    ", true) +
         L")\n{\n" + nameMarked(body) + L"}\n";
}

bool Collapse::writeCall(std::wstring& out, ProfileInstance& instance,
                         const std::vector<std::wstring>& inputs, const std::vector<std::wstring>& outputs) {
  const Profile& profile = *instance.profile;
  if (!instance.isShaderCallOpen) {
    if (profile.readsCurrentLight()) {
      if (!instance.lightsWritten.insert(activeLight_).second) return true;
    } else if (!profile.isInline() && instance.isCallWritten) {
      return true;
    }
    instance.isCallWritten = true;
  }
  if (profile.isInline()) {
    writeExpression(instance, inputs);
    return true;
  }
  std::vector<TextPort> inputPorts;
  std::vector<TextPort> outputPorts;
  for (const std::wstring& value : inputs) inputPorts.push_back({L"", value});
  for (const std::wstring& value : outputs) outputPorts.push_back({L"", value});
  addStateParameters(inputPorts, profile);
  out += L"    " + instance.functionName + L"(" + spellList(inputPorts, outputPorts, L"        ", false) +
         L");\n";
  return true;
}

void Collapse::writeExpression(ProfileInstance& instance, const std::vector<std::wstring>& inputs) {
  const Profile& profile = *instance.profile;
  std::wstring expression = profile.body;
  if (!profile.inputs.empty()) {
    if (profile.inputs.size() != inputs.size())
      throw Failure(L"Inline body parameter count is not equal to the node input count!");
    Pattern pattern;
    for (std::size_t i = 0; i < inputs.size(); ++i) pattern.add(profile.inputs[i].name, inputs[i]);
    Replacer replacer;
    replacer.add(pattern);
    replacer.add(instance.uniforms);
    expression = replacer.replaced(profile.body);
  }
  instance.outputs = {{L"", expression}};
}

void Collapse::writeLightFunctions() {
  if (areLightFunctionsWritten_) return;
  areLightFunctionsWritten_ = true;
  for (std::size_t i = 0; i < input_.environment->getNumLights(); ++i) {
    const IShaderFragment& light = *input_.environment->getLight(i);
    const float lod = input_.options->getLightLOD();
    const std::wstring name = L"TolmSceneLighting" + std::to_wstring(i);
    if (readFragment(light).findBest(L"msl_light", language(), lod) == nullptr) {
      Pattern renames;
      appendSnippet(defaultLightFunction(name), {}, {}, renames, L"");
      continue;
    }
    Instance& instance = lights_[plain(light.instanceName())];
    if (!setProfile(instance, L"msl_light", lod)) throw Failure(L"Failed to write light definition.");
    instance.active->functionName = name;
    writeDefinition(*instance.active);
  }
}

std::wstring Collapse::expandLights(std::wstring text) const {
  const std::wstring begin = kLightBegin;
  const std::wstring end = kLightEnd;
  for (std::size_t from = text.find(begin); from != std::wstring::npos; from = text.find(begin)) {
    const std::size_t to = text.find(end);
    if (to == std::wstring::npos || to < from)
      throw Failure(L"sfgError : light and shadow block is not closed!");
    const std::wstring inner = text.substr(from + begin.size(), to - from - begin.size());
    std::wstring copies;
    for (std::size_t i = 0; i < input_.environment->getNumLights(); ++i)
      copies +=
          L"\n    {" + replaceAll(inner, kSceneLighting, L"TolmSceneLighting" + std::to_wstring(i)) + L"}\n";
    text = text.substr(0, from) + copies + text.substr(to + end.size());
  }
  return text;
}

void Collapse::appendSnippet(const std::wstring& text, const std::vector<std::wstring>& values,
                             const Pattern& pattern, Pattern& renames, const std::wstring& definition) {
  const Snippet snippet = parseSnippet(text);
  accumulator_.append(result_.predefines, instantiate(snippet, values), snippet, pattern, renames,
                      definition);
}

void Collapse::addStateParameters(std::vector<TextPort>& inputs, const Profile& profile) const {
  bool isStateAdded = false;
  for (const std::wstring& variable : profile.stateVariables) {
    const UString name{std::wstring_view(variable)};
    if (isStateVariableUniform(name)) continue;
    if (variable == L"sfg_currentLight") {
      inputs.push_back({lightType_, lightName_});
    } else if (isStateVariableMsl(name)) {
      if (!isStateAdded) inputs.push_back({L"inout State", L"state"});
      isStateAdded = true;
    } else {
      const std::wstring parameter = plain(input_.language->getStateVariableParameterName(name));
      if (parameter.empty()) throw Failure(L"Invalid state variable: " + variable);
      inputs.push_back({L"inout " + plain(input_.language->getStateVariableTypeName(name)), parameter});
    }
  }
  for (const std::wstring& name : profile.customStateVariables) {
    const auto found = customTypes_.find(name);
    if (found != customTypes_.end()) inputs.push_back({found->second, name});
  }
}

// ---- The default collapse

bool Collapse::runDefault() {
  const IShaderFragmentGraph& graph = *input_.graph;
  if (!(input_.options->getLanguage() == input_.language->getLanguageString())) return false;
  prepare();
  for (std::size_t i = 0; i < graph.getNumInputs(); ++i)
    result_.inputs.push_back({typeName(*graph.getInput(i)), plain(graph.getInputName(i))});
  for (std::size_t i = 0; i < graph.getNumOutputs(); ++i)
    result_.outputs.push_back({typeName(*graph.getOutput(i)), plain(graph.getOutputName(i))});
  if (!setSurfaceProfile(L"default")) return false;

  const IShaderFragment* fragment = nullptr;
  const bool isOne = findOutputFragment(fragment);
  if (!isOne || !evaluateInto(surface(*fragment)) || !assignOutputs(surface(*fragment)))
    throw Failure(L"Failed to evaluate fragment!");
  addGraphUniforms();
  return true;
}

/// False when several fragments feed the outputs.
bool Collapse::findOutputFragment(const IShaderFragment*& fragment) const {
  std::set<const IShaderFragment*> fragments;
  for (const ShaderFragmentConnection& connection : input_.graph->getOutputConnections()) {
    if (connection.fragment == nullptr) throw Failure(L"Graph output must be connected to a fragment!");
    fragments.insert(connection.fragment);
  }
  fragment = *fragments.begin();
  return fragments.size() == 1;
}

bool Collapse::evaluateInto(Instance& root) {
  std::vector<std::wstring> names(root.fragment.outputs.size());
  const auto& connections = input_.graph->getOutputConnections();
  for (std::size_t i = 0; i < connections.size(); ++i) {
    if (connections[i].index >= names.size()) return false;
    names[connections[i].index] = plain(input_.graph->getOutputName(i));
  }
  return evaluate(root, names);
}

bool Collapse::assignOutputs(const Instance& root) {
  const auto& connections = input_.graph->getOutputConnections();
  const auto nameOfOutput = [&](std::size_t i) { return plain(input_.graph->getOutputName(i)); };
  std::wstring text;
  for (std::size_t i = 0; i < connections.size(); ++i) {
    if (connections[i].index >= root.active->outputs.size()) return false;
    // The call got the name of the last graph output that the fragment's output feeds.
    std::size_t last = i;
    for (std::size_t k = i; k < connections.size(); ++k)
      if (connections[k].index == connections[i].index) last = k;
    if (root.active->profile->isInline()) {
      text += L"    " + nameOfOutput(i) + L" = " + root.active->outputs[connections[i].index].name + L";\n";
    } else if (last != i) {
      text += L"    " + nameOfOutput(i) + L" = " + nameOfOutput(last) + L";\n";
    }
  }
  write(text);
  return true;
}

void Collapse::addGraphUniforms() {
  for (std::size_t i = 0; i < input_.graph->getNumUniforms(); ++i) {
    const AParameter& uniform = *input_.graph->getUniform(i);
    result_.resultUniforms.push_back(nameOf(uniform, plain(uniform.getName())));
  }
}

// ---- The light loop

bool Collapse::runLightLoop() {
  if (!(input_.options->getLanguage() == input_.language->getLanguageString())) return false;
  result_.functionName = L"AccumulatedLitSurface";
  prepare();
  writeLightRequirements();
  for (Instance& instance : postprocess_) {
    setProfile(instance, L"default", 100.0f);
    writeRequirements(instance);
  }
  writeLightLoop();
  std::vector<std::wstring> values;
  if (!evaluateOutputs(values)) return false;
  result_.stateVariables.erase(L"sfg_currentLight");
  addGraphUniforms();
  writeOutputs(values);
  return true;
}

void Collapse::writeLightRequirements() {
  for (std::size_t i = 0; i < input_.environment->getNumLights(); ++i) {
    const IShaderFragment& light = *input_.environment->getLight(i);
    const std::wstring name = lightProfile(light);
    Instance& instance = lights_[plain(light.instanceName())];
    if (!setSurfaceProfile(name) || !trySetProfile(instance, name, input_.options->getLightLOD()))
      throw Failure(L"Failed to set light profile " + name + L".");
    writeRequirements(instance);
  }
}

void Collapse::writeLightLoop() {
  const std::vector<Instance*> lit = collectLit();
  for (Instance* instance : lit) declareAccumulators(*instance);
  const std::size_t count = input_.environment->getNumLights();
  if (count == 0) {
    write(std::wstring(kSeparator) + L"    // default light \n" + kSeparator);
    activeLight_ = 0;
    if (!setSurfaceProfile(L"default")) throw Failure(L"Failed to set default profile.");
    for (Instance* instance : lit) accumulate(*instance);
  }
  for (std::size_t i = 0; i < count; ++i) {
    writeLight(i);
    for (Instance* instance : lit) accumulate(*instance);
  }
}

void Collapse::writeLight(std::size_t index) {
  activeLight_ = index;
  write(std::wstring(kSeparator) + L"    // Light " + std::to_wstring(index) + L" \n" + kSeparator);
  const IShaderFragment& light = *input_.environment->getLight(index);
  const std::wstring profile = lightProfile(light);
  const std::wstring names = plain(light.instanceName()) + L": " + profile + L".";
  if (!setSurfaceProfile(profile)) throw Failure(L"Failed to set light profile " + profile + L".");
  if (!requiresLight()) return;
  Instance& instance = lights_[plain(light.instanceName())];
  if (!trySetProfile(instance, profile, input_.options->getLightLOD()))
    throw Failure(L"Failed to set light profile of light " + names);
  std::wstring output;
  if (!safeEvaluate(instance) || !instance.findOutput(0, output))
    throw Failure(L"Failed to evaluate light profile of light " + names);
  lightType_ = profile;
  lightName_ = output;
}

std::vector<Instance*> Collapse::collectLit() {
  std::map<std::size_t, Instance*> lit;
  for (const ShaderFragmentConnection& connection : input_.graph->getOutputConnections())
    if (connection.fragment != nullptr) collectLit(*connection.fragment, lit);
  std::vector<Instance*> ordered;
  for (const auto& [number, instance] : lit) ordered.push_back(instance);
  return ordered;
}

void Collapse::collectLit(const IShaderFragment& fragment, std::map<std::size_t, Instance*>& lit) {
  Instance& instance = surface(fragment);
  if (instance.requiresLight()) {
    lit[instance.number] = &instance;
    return;
  }
  for (const ShaderFragmentConnection& connection : fragment.getInputConnections())
    if (connection.fragment != nullptr) collectLit(*connection.fragment, lit);
}

bool Collapse::evaluateOutputs(std::vector<std::wstring>& values) {
  for (const ShaderFragmentConnection& connection : input_.graph->getOutputConnections()) {
    if (connection.fragment == nullptr) throw Failure(L"Graph output must have connection!");
    Instance& instance = surface(*connection.fragment);
    std::wstring value;
    if (!safeEvaluate(instance) || !instance.findOutput(connection.index, value)) return false;
    values.push_back(value);
  }
  return true;
}

void Collapse::writeOutputs(const std::vector<std::wstring>& values) {
  if (!postprocess_.empty()) return runPostprocess(values);
  for (std::size_t i = 0; i < values.size(); ++i) {
    const std::wstring name = L"output_" + std::to_wstring(i);
    write(L"    " + name + L" = " + values[i] + L";\n");
    addOutput(*input_.graph->getOutput(i), name);
  }
}

void Collapse::runPostprocess(std::vector<std::wstring> values) {
  for (std::size_t k = 0; k < postprocess_.size(); ++k) {
    Instance& instance = postprocess_[k];
    std::vector<std::wstring> next;
    const std::vector<TextPort>& outputs = instance.fragment.profiles.at(0).outputs;
    for (std::size_t j = 0; j < outputs.size(); ++j) {
      next.push_back(L"output_" + outputs[j].name + std::to_wstring(k) + L"_" + std::to_wstring(j));
      if (k + 1 < postprocess_.size()) write(L"    " + outputs[j].type + L" " + next.back() + L";\n");
    }
    if (instance.active == nullptr)
      throw Failure(L"sfgError: failed to write postprocess fragment definition.");
    writeDefinition(*instance.active);
    std::wstring call;
    writeCall(call, *instance.active, values, next);
    write(call);
    values = next;
  }
  const Fragment& last = postprocess_.back().fragment;
  for (std::size_t j = 0; j < last.outputs.size(); ++j) addOutput(*last.outputs[j], values.at(j));
}

void Collapse::addOutput(const AParameter& parameter, const std::wstring& name) {
  result_.resultOutputs.push_back(nameOf(parameter, plain(parameter.getName())));
  result_.outputs.push_back({typeName(parameter), name});
}

// ---- Small answers

std::wstring Collapse::typeName(const AParameter& parameter) const {
  if (parameter.getType() == TypeID_struct) return plain(parameter.getStructName());
  return plain(input_.language->getTypeName(parameter.getType()));
}

std::wstring Collapse::defaultText(const AParameter& parameter) const {
  return plain(input_.language->getValueText(AValue(parameter.getType())));
}

std::wstring Collapse::language() const { return plain(input_.language->getLanguageString().view()); }

Instance& Collapse::surface(const IShaderFragment& fragment) {
  return surfaces_[plain(fragment.instanceName())];
}

}  // namespace TolmSDK::Graphics::sfg::model
