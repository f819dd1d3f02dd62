#include "host/shader/shader_plan.h"

#include <algorithm>
#include <unordered_set>

#include "host/documents/document_reader.h"
#include "host/shader/identifiers.h"
#include "sfg/shader_includes.h"
#include "sfg/state_variable_manager.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

constexpr std::size_t kMaximumTargets = 8;
const WString kSamplerInclude = L"sfg_samplers.h";

/// The system value that fills a varying state variable in a pixel stage, or a semantic named after it.
WString semanticOf(const UString& stateVariable) {
  if (stateVariable == StateVariable_screenPosition) return L"SV_Position";
  if (stateVariable == StateVariable_frontFacing) return L"SV_IsFrontFace";
  if (stateVariable == StateVariable_vertexColor) return L"COLOR0";
  WString semantic;
  for (const wchar_t c : stateVariable.view().substr(4)) {
    semantic += c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - L'a' + L'A') : c;
  }
  return semantic;
}

/// What the values of the MetaSL state are made of.
const Array<UString>& stateSources() {
  static const Array<UString> sources = {StateVariable_worldPosition, StateVariable_worldNormal,
                                         StateVariable_worldTangent,  StateVariable_worldBinormal,
                                         StateVariable_texCoord0,     StateVariable_vertexColor};
  return sources;
}

/// Fills a plan, one member after another; later ones read earlier ones.
class Planner {
public:
  Planner(const CollapseJob& job, ShaderStage stage, NameStyle names)
      : job_(job), names_(names), language_(job.libraries().language()), result_(*job.result()),
        profile_(*result_.getProfile(0)), origins_(job) {
    plan_.stage = stage;
  }

  ShaderPlan make() {
    plan_.functionName = profile_.getFunctionName();
    plan_.entryPoint = plan_.functionName == L"main" ? L"sfg_main" : L"main";
    plan_.body = profile_.getFunctionBody();
    plan_.predefines = profile_.predefines();
    plan_.stateVariables = profile_.stateVariables();
    findState();
    findUniforms();
    findGraphInputs();
    findIncludes();
    findParameters();
    findVaryings();
    findOutputs();
    if (names_ == NameStyle::readable) nameUniforms();
    findStructures();
    findBuffers();
    findTextures();
    return std::move(plan_);
  }

private:
  using Kind = ValueOrigin::Kind;

  void findState() {
    if (plan_.stateVariables.contains(StateVariable_currentLight)) {
      throw AssemblyError("a fragment reads the current light; it needs the light loop (`--tool lightloop`)");
    }
    StateStructure& state = plan_.state;
    state.shaderInputTypes = result_.getShaderInputTypes();
    state.isPassed =
        std::any_of(plan_.stateVariables.begin(), plan_.stateVariables.end(), isStateVariableMsl);
    state.isDeclared = state.isPassed || !state.shaderInputTypes.empty();
    usedVariables_ = plan_.stateVariables;
    if (state.isDeclared) usedVariables_.insert(StateVariable_eyePosition);
  }

  void findUniforms() {
    Set<WString> names;
    for (std::size_t i = 0; i < result_.getNumUniforms(); ++i) {
      const AParameter* const uniform = result_.getUniform(i);
      if (!names.insert(uniform->getName()).second) continue;
      uniforms_.push_back({uniform, uniform->getName(), origins_.find(*uniform)});
      plan_.uniformNames.push_back(uniform->getName());
    }
  }

  /// Uniforms are renamed wherever the code names them. Those that include files name keep their names.
  void nameUniforms() {
    std::unordered_set<std::wstring_view> taken;
    const auto take = [&taken](std::wstring_view identifier) { taken.insert(identifier); };
    forEachIdentifier(plan_.body, take);
    forEachIdentifier(plan_.predefines, take);
    std::unordered_set<std::wstring_view> included;
    for (const IncludedText& include : plan_.includes) {
      forEachIdentifier(include.text, [&](std::wstring_view identifier) { included.insert(identifier); });
    }
    const ITextParameterList& list = *plan_.parameters.list;
    for (std::size_t i = 0; i < list.getNumInputs(); ++i) taken.insert(list.getInputName(i));
    for (const UsedInput& input : plan_.graphInputs) taken.insert(input.port.name);
    for (const Port& output : plan_.outputs) taken.insert(output.name);
    taken.insert(plan_.functionName);

    std::vector<NamedUniform> named;
    for (const Uniform& uniform : uniforms_) {
      taken.insert(uniform.name);
      const bool isFixed = included.contains(uniform.name) || included.contains(L"sampler_" + uniform.name);
      if (!isFixed) named.push_back({uniform.name, uniform.origin});
    }
    taken.merge(included);
    rename(readableNames(named, taken));
  }

  void rename(std::unordered_map<std::wstring_view, WString> names) {
    std::vector<WString> samplers;  // the keys of their names
    samplers.reserve(uniforms_.size());
    plan_.uniformNames.clear();
    for (Uniform& uniform : uniforms_) {
      const auto found = names.find(uniform.name);
      if (found != names.end() && isSamplerType(uniform.parameter->getType())) {
        samplers.push_back(L"sampler_" + uniform.name);
        names.emplace(samplers.back(), L"sampler_" + found->second);
      }
    }
    plan_.body = withNames(plan_.body, names);
    plan_.predefines = withNames(plan_.predefines, names);
    for (Uniform& uniform : uniforms_) {
      const auto found = names.find(uniform.parameter->getName());
      if (found != names.end()) {
        plan_.generatedNames.emplace(found->second, uniform.name);
        uniform.name = found->second;
      }
      plan_.uniformNames.push_back(uniform.name);
    }
  }

  /// A light loop has no parameters for the graph inputs: those that its code names are variables around it.
  void findGraphInputs() {
    plan_.inputsAreVariables = job_.settings().tool == CollapseTool::lightLoop;
    const bool needsNames = plan_.inputsAreVariables && job_.document().getNumInputs() > 0;
    const Set<std::wstring_view> used =
        identifiersOf(needsNames ? std::wstring_view(plan_.body) : std::wstring_view());
    for (std::size_t i = 0; i < job_.document().getNumInputs(); ++i) {
      const AParameter& input = *job_.document().getInput(i);
      if (plan_.inputsAreVariables && !used.contains(std::wstring_view(input.getName()))) continue;
      plan_.graphInputs.push_back(usedInput(portOf(input)));
    }
  }

  static UsedInput usedInput(const Port& port) {
    if (isSamplerType(port.type)) return {port, UsedInput::Way::texture, L"sfg_texture_" + port.name};
    if (!canVary(port.type)) return {port, UsedInput::Way::buffer, L"sfg_input_" + port.name};
    return {port, UsedInput::Way::varying, WString()};
  }

  Port portOf(const AParameter& parameter) const {
    if (parameter.getType() == TypeID_struct)
      return {TypeID_nil, parameter.getStructName(), parameter.getName()};
    return {parameter.getType(), language_.getTypeName(parameter.getType()), parameter.getName()};
  }

  void findParameters() {
    FunctionParameters& parameters = plan_.parameters;
    parameters.list = makeRef<ATextParameterList>(*profile_.getFunctionParameters());
    parameters.firstState = parameters.list->getNumInputs();
    StateVariableManager manager;
    manager.setLanguage(&language_);
    manager.addStateVariableParameters(parameters.list.get(), &profile_);
    parameters.firstCustom = parameters.list->getNumInputs();
    findCustomVariables();
  }

  /// Custom state variables that no pre-process fragment declares inside the function come from outside.
  void findCustomVariables() {
    const Set<WString> declared = declaredByPreprocess();
    const Map<WString, WString> types = customTypes();
    for (const WString& name : profile_.customStateVariables()) {
      const auto type = types.find(name);
      if (type == types.end() || declared.contains(name)) continue;
      plan_.parameters.list->addInput(type->second, name);
      plan_.customVariables.push_back(
          {type->second, name, language_.getValueText(AValue(language_.getTypeID(type->second)))});
    }
  }

  Set<WString> declaredByPreprocess() const {
    Set<WString> declared;
    const AShaderFragmentGraph& graph = *job_.graph();
    for (std::size_t i = 0; i < graph.getNumPreprocessFragment(); ++i) {
      const IShaderFragment& fragment = *graph.getPreprocessFragment(i);
      for (std::size_t k = 0; k < fragment.getNumOutputs(); ++k) {
        if (fragment.getOutput(k)->getSemantic().empty()) declared.insert(fragment.getOutputName(k));
      }
    }
    return declared;
  }

  Map<WString, WString> customTypes() const {
    Map<WString, WString> types;
    const AShaderFragmentGraph& graph = *job_.graph();
    for (std::size_t i = 0; i < graph.getNumFragments(); ++i) {
      const IShaderFragment& fragment = *graph.getFragment(i);
      for (std::size_t k = 0; k < fragment.getNumOutputs(); ++k) {
        if (fragment.getOutput(k)->getSemantic().empty()) {
          types[fragment.getOutputName(k)] = fragment.getOutputType(&language_, k);
        }
      }
    }
    return types;
  }

  /// State variables in the order of the table, so that shaders that use the same variables have the same
  /// interface. Direct3D links stages by the order of what they hand over: in a pixel stage the facing, which
  /// no vertex stage gives, stands behind all else.
  void findVaryings() {
    Set<UString> varying;
    for (const UString& name : usedVariables_) {
      if (!language_.getStateVariableParameterName(name).empty()) varying.insert(name);
    }
    if (plan_.state.isDeclared) varying.insert(stateSources().begin(), stateSources().end());
    const StateVariableInfo* facing = nullptr;
    for (const StateVariableInfo& info : allStateVariables()) {
      if (!varying.contains(info.name)) continue;
      if (plan_.stage == ShaderStage::pixel && info.name == StateVariable_frontFacing) {
        facing = &info;
      } else {
        addStateVarying(info);
      }
    }
    std::size_t number = 0;
    for (const UsedInput& input : plan_.graphInputs) {
      if (input.way != UsedInput::Way::varying) continue;
      WString semantic = L"GRAPHINPUT";
      appendDecimal(semantic, number++);
      addVarying(input.port.type, input.port.name, semantic, false);
    }
    if (facing != nullptr) addStateVarying(*facing);
  }

  void addStateVarying(const StateVariableInfo& info) {
    addVarying(info.type, info.name.str(), semanticOf(info.name), true);
  }

  void addVarying(const TypeID& type, const WString& name, const WString& semantic, bool isState) {
    const bool isSystemValue = semantic.starts_with(L"SV_");
    plan_.varyings.push_back({type, name, semantic, isState, isSystemValue ? kNotFound : nextLocation_});
    if (!isSystemValue) ++nextLocation_;
  }

  void findOutputs() {
    const ATextParameterList& list = *plan_.parameters.list;
    std::size_t targets = 0;
    for (std::size_t i = 0; i < list.getNumOutputs(); ++i) {
      const WString& typeText = list.getOutputType(i);
      // The light loop names its parameters by itself; the result fragment still knows the outputs' names.
      const WString& name = i < result_.getNumOutputs() ? result_.getOutputName(i) : list.getOutputName(i);
      const TypeID type = language_.getTypeID(typeText);
      if (componentCount(type) == 0) {
        throw AssemblyError("the output " + inTicks(name) + " of type " + inTicks(typeText) +
                            " cannot leave a " + toUtf8(stageName(plan_.stage)) + " stage");
      }
      plan_.outputs.push_back({type, typeText, name});
      targets += rowCount(type);
    }
    if (plan_.stage == ShaderStage::pixel && targets > kMaximumTargets) {
      throw AssemblyError("the outputs need " + std::to_string(targets) +
                          " render targets; a pixel stage has " + std::to_string(kMaximumTargets));
    }
  }

  void findIncludes() {
    Set<WString> names = profile_.includes();
    for (const UsedInput& input : plan_.graphInputs) {
      if (input.way == UsedInput::Way::texture) names.insert(kSamplerInclude);
    }
    Array<WString> flat;
    Set<WString> done;
    const ShaderIncludes& registry = job_.libraries().includes();
    registry.createFlatIncludeArray(flat, done, names);
    for (const WString& name : flat) {
      const WString& text = registry.getIncludeContent(name.c_str());
      if (text.empty()) plan_.missingIncludes.push_back(name);
      plan_.includes.push_back({name, text});
    }
  }

  void findStructures() {
    plan_.stateStructures = plan_.state.shaderInputTypes;
    for (const Uniform& uniform : uniforms_) {
      const AParameter& parameter = *uniform.parameter;
      if (parameter.getType() == TypeID_struct) plan_.uniformStructures.push_back(parameter.getStructName());
    }
    for (const UsedInput& input : plan_.graphInputs) {
      if (input.port.type == TypeID_nil) plan_.uniformStructures.push_back(input.port.typeText);
    }
  }

  void findBuffers() {
    std::vector<BufferMember> members;
    members.reserve(uniforms_.size());
    for (Uniform& uniform : uniforms_) {
      if (isSamplerType(uniform.parameter->getType())) continue;
      Port port = portOf(*uniform.parameter);
      port.name = std::move(uniform.name);
      members.push_back({std::move(port), std::move(uniform.origin), uniform.parameter->getDefaultValue()});
    }
    addBuffers(L"sfg_Uniforms", std::move(members));
    members.clear();
    for (const StateVariableInfo& info : allStateVariables()) {
      if (info.kind != StateVariableKind::uniform || !usedVariables_.contains(info.name)) continue;
      const Port port{info.type, info.type.toString(), info.name.str()};
      members.push_back({port, {Kind::stateVariable, WString(), WString(), info.name.str()}, AValue()});
    }
    addBuffers(L"sfg_StateUniforms", std::move(members));
    members.clear();
    for (const UsedInput& input : plan_.graphInputs) {
      if (input.way != UsedInput::Way::buffer) continue;
      const Port port{input.port.type, input.port.typeText, input.variable};
      members.push_back({port, graphInputOrigin(input), AValue()});
    }
    addBuffers(L"sfg_GraphInputs", std::move(members));
  }

  void addBuffers(const WString& name, std::vector<BufferMember> members) {
    for (ConstantBuffer& buffer : makeBuffers(name, std::move(members))) {
      buffer.number = plan_.buffers.size();
      plan_.buffers.push_back(std::move(buffer));
    }
  }

  void findTextures() {
    for (const Uniform& uniform : uniforms_) {
      const TypeID& type = uniform.parameter->getType();
      if (isSamplerType(type)) addTexture(type, uniform.name, uniform.origin);
    }
    for (const UsedInput& input : plan_.graphInputs) {
      if (input.way == UsedInput::Way::texture)
        addTexture(input.port.type, input.variable, graphInputOrigin(input));
    }
  }

  void addTexture(const TypeID& type, const WString& name, const ValueOrigin& origin) {
    plan_.textures.push_back({type, name, L"sampler_" + name, plan_.textures.size(), origin});
  }

  static ValueOrigin graphInputOrigin(const UsedInput& input) {
    return {Kind::graphInput, WString(), WString(), input.port.name};
  }

  struct Uniform {
    const AParameter* parameter;
    WString name;  ///< in the complete shader
    ValueOrigin origin;
  };

  const CollapseJob& job_;
  const NameStyle names_;
  const LanguageDx11& language_;
  const IShaderFragment& result_;
  const IShaderFragmentProfile& profile_;
  const ValueOrigins origins_;
  Set<UString> usedVariables_;  ///< those of the function, and those that fill its state
  std::vector<Uniform> uniforms_;
  std::size_t nextLocation_ = 0;
  ShaderPlan plan_;
};

}  // namespace

ShaderPlan planShader(const CollapseJob& job, ShaderStage stage, NameStyle names) {
  return Planner(job, stage, names).make();
}

WString rowName(const Port& output, std::size_t row) {
  if (!isMatrix(output.type)) return output.name;
  WString name = output.name + L"_row";
  appendDecimal(name, row);
  return name;
}

}  // namespace TolmSDK::Graphics::sfg::host
