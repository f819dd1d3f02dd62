#include "collapse/expected_result.h"

#include <algorithm>

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

void ExpectedResult::add(const FragmentInstance& instance) {
  if (!instance.fragment_) return;
  const AShaderFragment& fragment = *instance.fragment_;
  uniforms_ += fragment.getNumUniforms();
  for (const FragmentInstance::Input& input : instance.inputs())
    if (input.uniform) ++uniforms_;

  const FragmentProfileInstance* active = instance.activeProfileInstance_;
  if (active == nullptr || active->isInlineProfile()) return;
  addCall(instance, *active);
  // Uniforms have other, longer names in every instance, which makes the function another one.
  const AShaderFragmentProfile& profile = *active->getProfile();
  if (fragment.getNumUniforms() != 0) {
    addDefinition(profile);
    definitions_ += fragment.getNumUniforms() * fragment.instanceName().size();
  } else if (&profile != last_) {
    last_ = &profile;
    if (profiles_.insert(&profile)) addDefinition(profile);
  }
}

/// The names of what feeds the instance are taken to be as long as its own.
void ExpectedResult::addCall(const FragmentInstance& instance, const FragmentProfileInstance& active) {
  const std::size_t ownOutput = instance.fragment_->instanceName().size() + kOutput;
  body_ += kCall + active.getProfile()->getFunctionName().size();
  for (std::size_t i = 0; i < active.getNumOutputs(); ++i)
    body_ += kDeclaration + active.getOutputType(i).size() + ownOutput + kArgument + ownOutput;
  for (const FragmentInstance::Input& input : instance.inputs())
    body_ += kArgument + (input.uniform ? input.uniform->getName().size() : ownOutput);
}

void ExpectedResult::addDefinition(const AShaderFragmentProfile& profile) {
  definitions_ += kDefinition + profile.getFunctionName().size() + profile.getFunctionBody().size() +
                  profile.predefines().size();
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
