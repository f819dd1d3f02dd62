#pragma once

// Options of one collapse, as the command line and the documents give them.

#include "host/documents/shading_environment.h"
#include "tolmsdk/host_interfaces.h"

namespace TolmSDK::Graphics::sfg::host {

/// Immutable. The constant of a parameter that is marked constant is its default value.
class ShaderOptions : public RefCounted<IShaderOptions> {
public:
  /// `environment` may be null; it tells the light profile of each light.
  ShaderOptions(const UString& language, float surfaceLod, float lightLod,
                const ShadingEnvironment* environment);
  ~ShaderOptions() override;

  const UString& getLanguage() const override { return language_; }
  float getSurfaceLOD() const override { return surfaceLod_; }
  float getLightLOD() const override { return lightLod_; }
  bool getConstValue(AValue& value, const AParameter* parameter) const override;
  const IShaderFragmentProfile* getLightProfile(const IShaderFragment* light) const override;

private:
  UString language_;
  float surfaceLod_;
  float lightLod_;
  RefPtr<ShadingEnvironment const> environment_;
};

}  // namespace TolmSDK::Graphics::sfg::host
