#include "collapse/expected_result.h"

#include <algorithm>
#include <utility>

#include "sfg/size_limit.h"

namespace TolmSDK::Graphics::sfg {

namespace {

// What stands around the names.
constexpr std::size_t kOutput = 10;      // result_NAME_01
constexpr std::size_t kDeclaration = 7;  // four blanks, TYPE NAME; and a line feed
constexpr std::size_t kCall = 8;         // four blanks, NAME1( ); and a line feed, and no last comma
constexpr std::size_t kArgument = 10;    // a line feed, eight blanks, NAME and a comma
constexpr std::size_t kDefinition = 16;  // void NAME1( ) { }, line feeds
constexpr std::size_t kInput = 7;        // a line feed, four blanks, TYPE NAME and a comma
constexpr std::size_t kResult = 11;      // the same behind out

}  // namespace

/// The names of what feeds an instance are taken to be as long as its own.
void ExpectedResult::add(const FragmentInstance& instance) {
  if (instance.getFragment() == nullptr) return;
  const AShaderFragment& fragment = *instance.getFragment();
  const std::size_t ownOutput = fragment.instanceName().size() + kOutput;
  const std::size_t inputs = fragment.getNumInputs();
  std::size_t arguments = 0;
  for (std::size_t i = 0; i < inputs; ++i) {
    const AParameter* uniform = instance.findInputUniform(i);
    if (uniform != nullptr) ++uniforms_;
    arguments += kArgument + (uniform != nullptr ? uniform->getName().size() : ownOutput);
  }
  const std::size_t uniforms = fragment.getNumUniforms();
  uniforms_ += uniforms;

  const FragmentProfileInstance* active = instance.getActiveProfileInstance();
  if (active == nullptr || active->isInlineProfile()) return;
  const AShaderFragmentProfile& profile = *active->getProfile();
  body_ += kCall + profile.getFunctionName().size() + arguments;
  for (std::size_t i = 0; i < active->getNumOutputs(); ++i)
    body_ += kDeclaration + active->getOutputType(i).size() + ownOutput + kArgument + ownOutput;

  // Uniforms have other, longer names in every instance, which makes the function another one.
  const bool isFirst = isFirstUse(profile);
  if (isFirst) definitions_ += profile.predefines().size();
  if (isFirst || uniforms != 0) addDefinition(profile);
  definitions_ += uniforms * fragment.instanceName().size();
}

bool ExpectedResult::isFirstUse(const AShaderFragmentProfile& profile) {
  return std::exchange(last_, &profile) != &profile && profiles_.insert(&profile);
}

void ExpectedResult::addDefinition(const AShaderFragmentProfile& profile) {
  definitions_ += kDefinition + profile.getFunctionName().size() + profile.getFunctionBody().size();
  const ITextParameterList* parameters = profile.getFunctionParameters();
  if (parameters == nullptr) return;
  for (std::size_t i = 0; i < parameters->getNumInputs(); ++i)
    definitions_ += kInput + parameters->getInputType(i).size() + parameters->getInputName(i).size();
  for (std::size_t i = 0; i < parameters->getNumOutputs(); ++i)
    definitions_ += kResult + parameters->getOutputType(i).size() + parameters->getOutputName(i).size();
}

std::size_t ExpectedResult::withReserve(std::size_t length) noexcept {
  return std::min(length + length / 128, kMaximumTextLength);
}

}  // namespace TolmSDK::Graphics::sfg
