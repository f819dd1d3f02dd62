#include "sfg/fragment_instance.h"

#include <algorithm>
#include <memory>
#include <typeinfo>
#include <utility>

#include "collapse/arena.h"
#include "collapse/fragment_walk.h"
#include "collapse/surface_profiles.h"
#include "collapse/visited_fragments.h"
#include "fragments/ports.h"
#include "fragments/profile_choice.h"
#include "sfg/shader_collapse_context.h"
#include "sfg/shader_fragment_graph.h"
#include "sfg/shader_fragment_profile_function.h"
#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics::sfg {

namespace {

const wchar_t* samplerConstructor(const TypeID& type) {
  if (type == TypeID_sampler1D) return L"sfg_make_sampler1D(";
  if (type == TypeID_sampler2D) return L"sfg_make_sampler2D(";
  if (type == TypeID_sampler3D) return L"sfg_make_sampler3D(";
  return L"sfg_make_samplerCube(";
}

/// Name of the uniform that stands for an unconnected input.
WString inputUniformName(const WString& inputName, const WString& instanceName) {
  WString name;
  name.reserve(inputName.size() + instanceName.size());
  name += inputName;
  std::replace(name.begin(), name.end(), L'.', L'_');
  name += instanceName;
  return name;
}

/// Null when it is of a host's own class. Only what is no plain function, as most are, has to be asked.
const AShaderFragmentProfile* asOurs(const IShaderFragmentProfile& profile) {
  if (typeid(profile) == typeid(AShaderFragmentProfileFunction))
    return static_cast<const AShaderFragmentProfileFunction*>(&profile);
  return dynamic_cast<const AShaderFragmentProfile*>(&profile);
}

/// So many profile instances of one fragment are no longer looked through.
constexpr std::size_t kManyProfileInstances = 8;

/// 1-based place of a profile among the fragment's; empty when it is none of them.
WString profileNumber(const AShaderFragment& fragment, const IShaderFragmentProfile* profile) {
  std::size_t index = kNotFound;
  if (typeid(fragment) == typeid(AShaderFragment)) {
    index = fragment.findProfileIndex(profile);
  } else {
    for (std::size_t i = 0; i < fragment.getNumProfiles() && index == kNotFound; ++i)
      if (fragment.getProfile(i) == profile) index = i;
  }
  WString number;
  if (index != kNotFound) appendDecimal(number, index + 1);
  return number;
}

}  // namespace

FragmentInstance::FragmentInstance() = default;
FragmentInstance::~FragmentInstance() { std::destroy_n(firstInput_, numInputs_); }

FragmentInstance::Extras& FragmentInstance::extras() const {
  if (!extras_) extras_ = std::make_unique<Extras>();
  return *extras_;
}

// Creation.

bool FragmentInstance::create(AShaderCollapseContext& context, const ILanguageTraits* language,
                              const AShaderFragment* fragment) {
  if (!createNoInputUniform(language, fragment)) return false;
  const std::span<Input> inputs = context.arena().makeArray<Input>(fragment->getNumInputs());
  firstInput_ = inputs.data();
  numInputs_ = static_cast<std::uint32_t>(inputs.size());
  for (std::size_t i = 0; i < inputs.size(); ++i) {
    // A connected input has its source's value, unless the code calls the source as a function.
    const bool isShaderInput = activeProfileInstance_ != nullptr && activeProfileInstance_->IsShaderInput(i);
    if (isShaderInput || !isInputFed(*fragment, i)) createInputUniform(context, i);
  }
  return true;
}

bool FragmentInstance::createNoInputUniform(const ILanguageTraits* language,
                                            const AShaderFragment* fragment) {
  if (initialized_) return false;
  initialized_ = true;
  if (language == nullptr || fragment == nullptr) return false;
  language_ = language;
  fragment_ = fragment;
  if (fragment->getInputConnections().size() != fragment->getNumInputs()) {
    throw Exception(L"Invalid fragment (input connection count not equal to input parameter count): %s",
                    fragment->key());
  }
  makeUniformsUnique();
  if (fragment->getNumProfiles() != 0) activate(fragment->findFirstProfile(language->getLanguageString()));
  return true;
}

void FragmentInstance::makeUniformsUnique() {
  if (fragment_->getNumUniforms() == 0) return;
  extras().uniforms.reserve(fragment_->getNumUniforms());
  for (std::size_t i = 0; i < fragment_->getNumUniforms(); ++i) {
    const AParameter* uniform = fragment_->getUniform(i);
    if (uniform == nullptr) continue;
    extras().uniforms.push_back(
        makeRef<OverrideNameParameter>(*uniform, uniform->getName() + fragment_->instanceName()));
  }
}

void FragmentInstance::createInputUniform(const AShaderCollapseContext& context, std::size_t input) const {
  const AParameter* parameter = fragment_->getInput(input);
  if (parameter == nullptr) return;
  if (WString text; parameter->isConstant() && context.getConstValue(text, parameter)) {
    setInputValue(input, std::move(text));
    return;
  }

  RefPtr<AParameter const>& uniform = inputs()[input].uniform;
  uniform = makeRef<OverrideNameParameter>(*parameter,
                                           inputUniformName(parameter->getName(), fragment_->instanceName()));
  if (!isSamplerType(parameter->getType())) return;
  const WString& name = uniform->getName();
  setInputValue(input, samplerConstructor(parameter->getType()) + name + L", sampler_" + name + L")");
  usesSamplers_ = true;
}

void FragmentInstance::setInputValue(std::size_t input, WString value) const {
  Array<WString>& values = extras().inputValues;
  if (values.empty()) values.resize(inputs().size());
  values[input] = std::move(value);
}

void FragmentInstance::createLateInputUniform(AShaderCollapseContext& context, std::size_t input) const {
  const RefPtr<AParameter const>& uniform = inputs()[input].uniform;
  if (uniform || hasInputValue(input)) return;
  createInputUniform(context, input);
  if (!uniformsWritten_ || !uniform) return;
  context.getResult()->addUniform(uniform.get());
  if (usesSamplers_) context.getResultProfile()->includes().insert(L"sfg_samplers.h");
}

const WString* FragmentInstance::findInputValue(std::size_t input) const {
  return input < inputs().size() ? &inputValue(input) : nullptr;
}

const WString& FragmentInstance::inputValue(std::size_t input) const {
  static const WString none;
  if (hasInputValue(input)) return extras_->inputValues[input];
  const RefPtr<AParameter const>& uniform = inputs()[input].uniform;
  return uniform ? uniform->getName() : none;
}

void FragmentInstance::setSources(const VisitedFragments& visited) {
  if (!fragment_) return;
  const Array<ShaderFragmentConnection>& connections = fragment_->getInputConnections();
  for (std::size_t i = 0; i < inputs().size() && i < connections.size(); ++i) {
    if (connections[i].fragment != nullptr) inputs()[i].source = visited.getInstance(connections[i].fragment);
  }
}

FragmentInstance* FragmentInstance::findSource(std::size_t input, const IShaderFragment* fragment) const {
  FragmentInstance* known = input < inputs().size() ? inputs()[input].source : nullptr;
  return known != nullptr && known->fragment_.get() == fragment ? known : nullptr;
}

// Its context.

bool FragmentInstance::joinContext(std::uint64_t context, std::uint32_t& lastNumber) const {
  if (context_ == 0) {
    context_ = context;
    number_ = ++lastNumber;
  }
  return context_ == context;
}

void FragmentInstance::followProfiles(SurfaceProfiles& profiles) {
  followed_ = &profiles;
  choice_ = profiles.number();
}

// Profiles.

bool FragmentInstance::setActiveProfile(AShaderCollapseContext& context, const WString& profileName,
                                        float lod) {
  if (!fragment_) return false;
  if (!trySetActiveProfile(context, profileName, lod)) {
    throw Exception(L"The fragment %s doesn't have a default profile", fragment_->key());
  }
  return true;
}

bool FragmentInstance::trySetActiveProfile(AShaderCollapseContext& context, const WString& profileName,
                                           float lod) {
  if (!fragment_) return false;
  const IShaderFragmentProfile* profile =
      findBestOrDefaultProfile(*fragment_, profileName, context.getLanguageString(), lod);
  if (profile == nullptr) return false;
  const FragmentProfileInstance* before = getActiveProfileInstance();
  if (before != nullptr && before->getProfile() == profile) return true;
  activate(profile);
  if (followed_ != nullptr) followed_->setMixed();
  context.walk().startProfile(*this);
  return true;
}

FragmentProfileInstance* FragmentInstance::getActiveProfileInstance() const {
  if (followed_ != nullptr && choice_ != followed_->number()) activate(followed_->profileOf(*this));
  return activeProfileInstance_;
}

void FragmentInstance::activate(const IShaderFragmentProfile* profile) const {
  if (followed_ != nullptr) choice_ = followed_->number();
  if (activeProfileInstance_ != nullptr && activeProfileInstance_->getProfile() == profile) return;
  activeProfileInstance_ = nullptr;
  if (profile == nullptr) return;
  const AShaderFragmentProfile* ours = asOurs(*profile);
  activeProfileInstance_ = findProfileInstance(ours);
  if (activeProfileInstance_ != nullptr) return;

  FragmentProfileInstance& instance = makeProfileInstance();
  if (!instance.create(language_.get(), fragment_.get(), ours, profileNumber(*fragment_, profile))) return;
  indexProfileInstance(instance);
  if (const std::size_t uniforms = fragment_->getNumUniforms(); uniforms != 0) {
    instance.getUniformOriginal().reserve(uniforms);
    instance.getUniformNew().reserve(uniforms);
  }
  for (std::size_t i = 0; i < fragment_->getNumUniforms(); ++i) {
    const AParameter* uniform = fragment_->getUniform(i);
    if (uniform == nullptr) continue;
    instance.getUniformOriginal().push_back(uniform->getName());
    instance.getUniformNew().push_back(uniform->getName() + fragment_->instanceName());
  }
  activeProfileInstance_ = &instance;
}

FragmentProfileInstance* FragmentInstance::findProfileInstance(const AShaderFragmentProfile* profile) const {
  if (profile == nullptr) return nullptr;
  if (firstProfileInstance_.getProfile() == profile) return &firstProfileInstance_;
  if (!extras_) return nullptr;
  if (!extras_->byProfile.empty()) {
    const auto known = extras_->byProfile.find(profile);
    return known != extras_->byProfile.end() ? known->second : nullptr;
  }
  for (FragmentProfileInstance& instance : extras_->otherProfileInstances) {
    if (instance.getProfile() == profile) return &instance;
  }
  return nullptr;
}

FragmentProfileInstance& FragmentInstance::makeProfileInstance() const {
  return firstProfileInstance_.isInitialized() ? extras().otherProfileInstances.emplace_back()
                                               : firstProfileInstance_;
}

/// Indexes the profile instances that are not the first, once they are many.
void FragmentInstance::indexProfileInstance(FragmentProfileInstance& made) const {
  if (&made == &firstProfileInstance_) return;
  auto& others = extras_->otherProfileInstances;
  if (others.size() < kManyProfileInstances) return;
  auto& byProfile = extras_->byProfile;
  if (!byProfile.empty()) {
    byProfile.try_emplace(made.getProfile(), &made);
    return;
  }
  for (FragmentProfileInstance& other : others) byProfile.try_emplace(other.getProfile(), &other);
}

bool FragmentInstance::requiresCurrentLight() const {
  const FragmentProfileInstance* active = getActiveProfileInstance();
  return active != nullptr && active->requiresCurrentLight();
}

void FragmentInstance::setOverrideFunctionName(const WString& name) {
  if (FragmentProfileInstance* active = getActiveProfileInstance()) active->setFunctionName(name);
}

bool FragmentInstance::hasActiveProfileOutput(std::size_t index) const {
  if (accumulates()) return index < extras_->accumulateOutputs.size();
  const FragmentProfileInstance* active = getActiveProfileInstance();
  return active != nullptr && index < active->getNumOutputs();
}

const WString& FragmentInstance::getActiveProfileOutput(std::size_t index) const {
  static const WString none;
  if (!hasActiveProfileOutput(index)) return none;
  return accumulates() ? extras_->accumulateOutputs[index] : activeProfileInstance_->getOutputName(index);
}

bool FragmentInstance::appendActiveProfileOutput(WString& out, std::size_t index) const {
  if (!hasActiveProfileOutput(index)) return false;
  if (accumulates()) {
    out += extras_->accumulateOutputs[index];
  } else {
    activeProfileInstance_->appendOutputName(out, index);
  }
  return true;
}

// Evaluation.

bool FragmentInstance::safeEvaluate(AShaderCollapseContext& context) {
  return accumulates() || context.walk().evaluate(*this);
}

bool FragmentInstance::accmulateEvaluate(AShaderCollapseContext& context) {
  if (!context.walk().evaluate(*this)) return false;
  if (!accumulates()) return true;
  const Array<WString>& accumulators = extras_->accumulateOutputs;
  const FragmentProfileInstance& active = *getActiveProfileInstance();
  if (accumulators.size() > active.getNumOutputs()) return false;
  WString line;
  for (std::size_t i = 0; i < accumulators.size(); ++i) {
    line = L"    ";
    line += accumulators[i];
    line += L" += ";
    active.appendOutputName(line, i);
    line += L";\n";
    context.writeCode(std::wstring_view(line));
  }
  return true;
}

bool FragmentInstance::evaluate(AShaderCollapseContext& context, Array<WString>& outputValues) {
  return context.walk().evaluate(*this, outputValues);
}

bool FragmentInstance::evaluateShader(AShaderCollapseContext& context, const Array<BuiltinFunction>& uses,
                                      KeywordReplacePattern& callerShaderPattern) {
  return context.walk().evaluateShader(*this, uses, callerShaderPattern);
}

bool FragmentInstance::declareAccumulateOutputs(AShaderCollapseContext& context) {
  Array<WString>& accumulators = extras().accumulateOutputs;
  accumulators.clear();
  // Consumers see the accumulators from now on.
  context.walk().startEpoch();
  if (!fragment_) return false;
  for (std::size_t i = 0; i < fragment_->getNumOutputs(); ++i) {
    const AParameter* output = fragment_->getOutput(i);
    if (output == nullptr) return false;
    const WString& type = typeText(*language_, *output);
    const WString& name = accumulators.emplace_back(
        formatted(L"accumulate_%s_%s", fragment_->instanceName(), output->getName()));
    const WString value = language_->getValueText(AValue(output->getType()));
    if (value.empty()) {
      context.writeCodef(L"    %s %s;\n", type, name);
    } else {
      context.writeCodef(L"    %s %s = %s;\n", type, name, value);
    }
  }
  return true;
}

// Writing.

bool FragmentInstance::buildUserInputValues(AShaderCollapseContext& context,
                                            Array<WString>& inputValues) const {
  return context.walk().appendInputValues(*this, inputValues);
}

bool FragmentInstance::writeRequirements(AShaderCollapseContext& context) {
  if (!uniformsWritten_) {
    uniformsWritten_ = true;
    if (extras_) {
      for (const auto& uniform : extras_->uniforms) context.getResult()->addUniform(uniform.get());
    }
    for (const Input& input : inputs()) {
      if (input.uniform) context.getResult()->addUniform(input.uniform.get());
    }
    if (usesSamplers_) context.getResultProfile()->includes().insert(L"sfg_samplers.h");
  }
  FragmentProfileInstance* active = getActiveProfileInstance();
  return active == nullptr || active->writeRequirements(context.getResultProfile(), context);
}

bool FragmentInstance::writeDefinition(AShaderCollapseContext& context) {
  FragmentProfileInstance* active = getActiveProfileInstance();
  return active != nullptr && active->writeDefinition(context);
}

bool FragmentInstance::writeFunctionCall(WString& out, AShaderCollapseContext& context,
                                         const Array<WString>& inputValues,
                                         const Array<WString>& outputValues) {
  FragmentProfileInstance* active = getActiveProfileInstance();
  return active != nullptr && active->writeFunctionCall(out, context, inputValues, outputValues);
}

}  // namespace TolmSDK::Graphics::sfg
