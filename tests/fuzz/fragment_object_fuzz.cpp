// Whatever a fragment file holds: loading it answers, or throws our exception; what was loaded can be used.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "sfg/shader_fragment.h"
#include "sfg/shader_fragment_profile_base.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/object_data_node.h"
#include "tolmsdk/unicode.h"

namespace {

using namespace TolmSDK;
using namespace TolmSDK::Graphics;
using namespace TolmSDK::Graphics::sfg;

void require(bool holds) {
  if (!holds) std::abort();
}

// Views of the profile's texts, read to their last character.
void readCalls(const Array<BuiltinFunction>& uses) {
  for (const BuiltinFunction& use : uses) {
    require(WString(use.range.view()).size() == use.range.length);
    for (const ScopedText& argument : use.arguments)
      require(WString(argument.view()).size() == argument.length);
  }
}

void readProfile(const AShaderFragmentProfile& profile) {
  readCalls(profile.getBodyBuiltinFunctions());
  readCalls(profile.getPredefineBuiltinFunctions());
  const ITextParameterList& parameters = *profile.getFunctionParameters();
  for (std::size_t i = 0; i < parameters.getNumInputs(); ++i) {
    Array<BuiltinFunction> uses;
    if (profile.GetShaderFunctions(parameters.getInputName(i), uses)) readCalls(uses);
  }
  for (const WString& keyword : profile.GetDefaultShaderRepalcePattern().getKeywords())
    require(!keyword.empty());
}

void readFragment(const AShaderFragment& fragment) {
  require(fragment.getHashString().size() >= 40);
  for (std::size_t i = 0; i < fragment.getNumProfiles(); ++i) {
    const IShaderFragmentProfile* profile = fragment.getProfile(i);
    require(!profile->languages().empty());
    for (const UString& language : profile->languages())
      require(fragment.findBestProfile(profile->getProfilename(), language, profile->getLOD()) != nullptr);
    readProfile(dynamic_cast<const AShaderFragmentProfile&>(*profile));
  }
  for (std::size_t i = 0; i < fragment.getNumUniforms(); ++i)
    require(!fragment.getUniform(i)->getName().empty());
}

bool load(AShaderFragment& fragment, const IObjectDataNode& node) {
  try {
    return fragment.load(&node);
  } catch (const Exception& error) {
    require(!error.getMessage().empty());
    return false;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  const WString text = fromUtf8(std::string_view(reinterpret_cast<const char*>(data), size));
  const RefPtr<IObjectDataNode> node(createJsonNode());
  if (!node->loadFromText(text)) return 0;
  const auto fragment = makeRef<AShaderFragment>();
  if (!load(*fragment, *node)) return 0;
  readFragment(*fragment);

  // A second load of the same object is the same; a profile that is loaded anew keeps the calls of before
  // readable.
  const WString hash = fragment->getHashString();
  const RefPtr<IShaderFragmentProfile> first(
      fragment->getNumProfiles() == 0
          ? nullptr
          : AShaderFragmentProfile::loadProfile(node->member(L"profiles") == nullptr ? node.get() : nullptr)
                .get());
  if (first) {
    auto& profile = dynamic_cast<AShaderFragmentProfile&>(*first);
    profile.load(node.get());
    readProfile(profile);
    profile.clear();
    readProfile(profile);
  }
  require(load(*fragment, *node) && fragment->getHashString() == hash);
  readFragment(*fragment);
  return 0;
}
