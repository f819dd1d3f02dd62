#include "host/job/shader_options.h"

namespace TolmSDK::Graphics::sfg::host {

ShaderOptions::ShaderOptions(const UString& language, float surfaceLod, float lightLod,
                             const ShadingEnvironment* environment)
    : language_(language), surfaceLod_(surfaceLod), lightLod_(lightLod), environment_(environment) {}

ShaderOptions::~ShaderOptions() = default;

bool ShaderOptions::getConstValue(AValue& value, const AParameter* parameter) const {
  if (parameter == nullptr || !parameter->isConstant()) return false;
  value = parameter->getDefaultValue();
  return true;
}

const IShaderFragmentProfile* ShaderOptions::getLightProfile(const IShaderFragment* light) const {
  const ShadingEnvironment::Light* const found = environment_ ? environment_->findLight(light) : nullptr;
  return found != nullptr ? found->profile.get() : nullptr;
}

}  // namespace TolmSDK::Graphics::sfg::host
