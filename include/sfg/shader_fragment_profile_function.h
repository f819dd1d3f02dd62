#pragma once

// Profiles whose implementation is a shader function.

#include "sfg/export.h"
#include "sfg/shader_fragment_profile_base.h"

namespace TolmSDK::Graphics::sfg {

/// Written once per fragment instance as a function of a unique name; each use is one call.
class SFG_API AShaderFragmentProfileFunction : public AShaderFragmentProfile {
public:
  AShaderFragmentProfileFunction();
  ~AShaderFragmentProfileFunction() override;

  bool writeDefinition(CodeSnippetInstance& out, AShaderCollapseContext& context,
                       FragmentProfileInstance& instance) const override;
  bool writeFunctionCall(WString& out, AShaderCollapseContext& context, FragmentProfileInstance& instance,
                         const Array<WString>& inputValues,
                         const Array<WString>& outputValues) const override;

protected:
  explicit AShaderFragmentProfileFunction(EShaderFragmentProfileMode mode);

  /// Splits the lines into prototype and body at the first "{" and takes both. False without lines.
  bool loadImplementation(const IObjectDataNode* lines) override;
};

}  // namespace TolmSDK::Graphics::sfg
