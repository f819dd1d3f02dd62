#include "collapse/expected_texts.h"

#include <algorithm>

#include "sfg/size_limit.h"

namespace TolmSDK::Graphics::sfg {

namespace {

// What stands around the names.
constexpr std::size_t kOutput = 10;      // result_NAME_01
constexpr std::size_t kDeclaration = 7;  // four blanks, TYPE NAME; and a line feed
constexpr std::size_t kCall = 9;         // four blanks, NAME1( ); and a line feed
constexpr std::size_t kArgument = 10;    // a line feed, eight blanks, NAME and a comma
constexpr std::size_t kDefinition = 20;  // void NAME1( ) { }, line feeds
constexpr std::size_t kParameter = 11;   // a line feed, four blanks, out TYPE NAME and a comma

}  // namespace

void ExpectedTexts::add(const FragmentInstance& instance) {
  const FragmentProfileInstance* active = instance.activeProfileInstance_;
  if (active == nullptr || active->isInlineProfile()) return;
  const AShaderFragment& fragment = *instance.fragment_;
  const AShaderFragmentProfile& profile = *active->getProfile();

  // The names of what feeds an instance are taken to be as long as its own.
  const std::size_t ownOutput = fragment.instanceName().size() + kOutput;
  body_ += kCall + profile.getFunctionName().size();
  for (std::size_t i = 0; i < active->getNumOutputs(); ++i)
    body_ += kDeclaration + active->getOutputType(i).size() + ownOutput + kArgument + ownOutput;
  for (const FragmentInstance::Input& input : instance.inputs())
    body_ += kArgument + (input.uniform ? input.uniform->getName().size() : ownOutput);

  // Uniforms have other names in every instance, which makes the function another one.
  if (fragment.getNumUniforms() != 0) {
    addDefinition(profile);
  } else if (&profile != last_) {
    last_ = &profile;
    if (profiles_.insert(&profile)) addDefinition(profile);
  }
}

void ExpectedTexts::addDefinition(const AShaderFragmentProfile& profile) {
  definitions_ += kDefinition + profile.getFunctionName().size() + profile.getFunctionBody().size() +
                  profile.predefines().size();
  const ITextParameterList* parameters = profile.getFunctionParameters();
  if (parameters == nullptr) return;
  for (std::size_t i = 0; i < parameters->getNumInputs(); ++i)
    definitions_ += kParameter + parameters->getInputType(i).size() + parameters->getInputName(i).size();
  for (std::size_t i = 0; i < parameters->getNumOutputs(); ++i)
    definitions_ += kParameter + parameters->getOutputType(i).size() + parameters->getOutputName(i).size();
}

std::size_t ExpectedTexts::withReserve(std::size_t length) noexcept {
  return std::min(length + length / 32, kMaximumTextLength);
}

}  // namespace TolmSDK::Graphics::sfg
