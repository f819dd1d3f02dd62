#include "sfg/fragment_instance.h"

#include <algorithm>
#include <utility>

#include "collapse/evaluator.h"
#include "collapse/ports.h"
#include "sfg/shader_collapse_context.h"
#include "sfg/shader_fragment_graph.h"
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

/// 1-based place of a profile among the fragment's; empty when it is none of them.
WString profileNumber(const AShaderFragment& fragment, const IShaderFragmentProfile* profile) {
  WString number;
  for (std::size_t i = 0; i < fragment.getNumProfiles() && number.empty(); ++i) {
    if (fragment.getProfile(i) == profile) appendDecimal(number, i + 1);
  }
  return number;
}

}  // namespace

FragmentInstance::FragmentInstance() = default;
FragmentInstance::~FragmentInstance() = default;

// Creation.

bool FragmentInstance::create(AShaderCollapseContext& context, const ILanguageTraits* language,
                              const AShaderFragment* fragment) {
  if (!createNoInputUniform(language, fragment)) return false;
  inputValues_.resize(fragment->getNumInputs());
  for (std::size_t i = 0; i < fragment->getNumInputs(); ++i) {
    // A connected input has its source's value, unless the code calls the source as a function.
    const bool isShaderInput = activeProfileInstance_ != nullptr && activeProfileInstance_->IsShaderInput(i);
    if (!isInputFed(*fragment, i) || isShaderInput) createInputUniform(context, i);
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
  if (fragment->getNumProfiles() != 0)
    activateProfile(fragment->findFirstProfile(language->getLanguageString()));
  return true;
}

void FragmentInstance::makeUniformsUnique() {
  uniforms_.reserve(fragment_->getNumUniforms() + fragment_->getNumInputs());
  for (std::size_t i = 0; i < fragment_->getNumUniforms(); ++i) {
    const AParameter* uniform = fragment_->getUniform(i);
    if (uniform == nullptr) continue;
    uniforms_.push_back(
        makeRef<OverrideNameParameter>(*uniform, uniform->getName() + fragment_->instanceName()));
  }
}

void FragmentInstance::createInputUniform(const AShaderCollapseContext& context, std::size_t input) {
  const AParameter* parameter = fragment_->getInput(input);
  if (parameter == nullptr) return;
  WString& value = inputValues_[input];
  if (parameter->isConstant() && context.getConstValue(value, parameter)) return;

  WString name = inputUniformName(parameter->getName(), fragment_->instanceName());
  uniforms_.push_back(makeRef<OverrideNameParameter>(*parameter, name));
  if (isSamplerType(parameter->getType())) {
    value = samplerConstructor(parameter->getType()) + name + L", sampler_" + name + L")";
    usesSamplers_ = true;
  } else {
    value = std::move(name);
  }
}

// Profiles.

bool FragmentInstance::setActiveProfile(AShaderCollapseContext& context, const WString& profileName,
                                        float lod) {
  if (!fragment_) return false;
  if (!activateBestProfile(context, profileName, lod)) {
    throw Exception(L"The fragment %s doesn't have a default profile", fragment_->key());
  }
  return true;
}

bool FragmentInstance::activateBestProfile(AShaderCollapseContext& context, const WString& profileName,
                                           float lod) {
  if (!fragment_) return false;
  const std::uint32_t request = context.profileRequest(profileName, lod);
  if (request == profileRequest_) return true;

  const IShaderFragmentProfile* profile =
      fragment_->findBestProfile(profileName, context.getLanguageString(), lod);
  if (profile == nullptr) profile = fragment_->findBestProfile(L"default", context.getLanguageString(), lod);
  if (profile == nullptr) return false;
  profileRequest_ = request;

  const FragmentProfileInstance* before = activeProfileInstance_;
  if (before != nullptr && before->getProfile() == profile) return true;
  activateProfile(profile);
  if (activeProfileInstance_ != before) context.evaluator().startEpoch();
  return true;
}

void FragmentInstance::activateProfile(const IShaderFragmentProfile* profile) {
  activeProfileInstance_ = nullptr;
  if (profile == nullptr) return;
  const auto* ours = dynamic_cast<const AShaderFragmentProfile*>(profile);
  for (FragmentProfileInstance& instance : profileInstances_) {
    if (ours != nullptr && instance.getProfile() == ours) activeProfileInstance_ = &instance;
  }
  if (activeProfileInstance_ != nullptr) return;

  FragmentProfileInstance& instance = profileInstances_.emplace_back();
  if (!instance.create(language_.get(), fragment_.get(), ours, profileNumber(*fragment_, profile))) return;
  for (std::size_t i = 0; i < fragment_->getNumUniforms(); ++i) {
    const AParameter* uniform = fragment_->getUniform(i);
    if (uniform == nullptr) continue;
    instance.getUniformOriginal().push_back(uniform->getName());
    instance.getUniformNew().push_back(uniform->getName() + fragment_->instanceName());
  }
  activeProfileInstance_ = &instance;
}

bool FragmentInstance::requiresCurrentLight() const {
  return activeProfileInstance_ != nullptr && activeProfileInstance_->requiresCurrentLight();
}

void FragmentInstance::setOverrideFunctionName(const WString& name) {
  if (activeProfileInstance_ != nullptr) activeProfileInstance_->setFunctionName(name);
}

bool FragmentInstance::hasActiveProfileOutput(std::size_t index) const {
  if (!accumulateOutputs_.empty()) return index < accumulateOutputs_.size();
  return activeProfileInstance_ != nullptr && index < activeProfileInstance_->getNumOutputs();
}

const WString& FragmentInstance::getActiveProfileOutput(std::size_t index) const {
  static const WString none;
  if (!hasActiveProfileOutput(index)) return none;
  return accumulateOutputs_.empty() ? activeProfileInstance_->getOutputName(index)
                                    : accumulateOutputs_[index];
}

// Evaluation.

bool FragmentInstance::safeEvaluate(AShaderCollapseContext& context) {
  return !accumulateOutputs_.empty() || context.evaluator().evaluate(*this);
}

bool FragmentInstance::accmulateEvaluate(AShaderCollapseContext& context) {
  if (!context.evaluator().evaluate(*this)) return false;
  if (accumulateOutputs_.size() > activeProfileInstance_->getNumOutputs()) return false;
  for (std::size_t i = 0; i < accumulateOutputs_.size(); ++i) {
    context.writeCodef(L"    %s += %s;\n", accumulateOutputs_[i], activeProfileInstance_->getOutputName(i));
  }
  return true;
}

bool FragmentInstance::evaluate(AShaderCollapseContext& context, Array<WString>& outputValues) {
  return context.evaluator().evaluate(*this, outputValues);
}

bool FragmentInstance::evaluateShader(AShaderCollapseContext& context, const Array<BuiltinFunction>& uses,
                                      KeywordReplacePattern& callerShaderPattern) {
  return context.evaluator().evaluateShader(*this, uses, callerShaderPattern);
}

bool FragmentInstance::declareAccumulateOutputs(AShaderCollapseContext& context) {
  accumulateOutputs_.clear();
  // Consumers see the accumulators from now on.
  context.evaluator().startEpoch();
  if (!fragment_) return false;
  for (std::size_t i = 0; i < fragment_->getNumOutputs(); ++i) {
    const AParameter* output = fragment_->getOutput(i);
    if (output == nullptr) return false;
    const WString& type = typeText(*language_, *output);
    const WString& name = accumulateOutputs_.emplace_back(
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

bool FragmentInstance::buildUserInputValues(AShaderCollapseContext& context, Array<WString>& inputValues) {
  return context.evaluator().appendInputValues(*this, inputValues);
}

bool FragmentInstance::writeRequirements(AShaderCollapseContext& context) {
  if (!uniformsWritten_) {
    uniformsWritten_ = true;
    for (const auto& uniform : uniforms_) context.getResult()->addUniform(uniform.get());
    if (usesSamplers_) context.getResultProfile()->includes().insert(L"sfg_samplers.h");
    Array<RefPtr<AParameter const>>().swap(uniforms_);
  }
  return activeProfileInstance_ == nullptr ||
         activeProfileInstance_->writeRequirements(context.getResultProfile(), context);
}

bool FragmentInstance::writeDefinition(AShaderCollapseContext& context) {
  return activeProfileInstance_ != nullptr && activeProfileInstance_->writeDefinition(context);
}

bool FragmentInstance::writeFunctionCall(WString& out, AShaderCollapseContext& context,
                                         const Array<WString>& inputValues,
                                         const Array<WString>& outputValues) {
  return activeProfileInstance_ != nullptr &&
         activeProfileInstance_->writeFunctionCall(out, context, inputValues, outputValues);
}

}  // namespace TolmSDK::Graphics::sfg
