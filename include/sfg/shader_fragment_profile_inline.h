#pragma once

// Profiles whose implementation is a single expression.

#include "sfg/export.h"
#include "sfg/shader_fragment_profile_base.h"

namespace TolmSDK::Graphics::sfg {

/// No function is defined: every use puts its input values in place of the `{{placeholder}}`s of the
/// expression, and the result is the fragment's one output value. One input per distinct placeholder, in
/// order of first appearance, named by the whole placeholder.
class SFG_API AShaderFragmentProfileInline : public AShaderFragmentProfile {
public:
  AShaderFragmentProfileInline();
  ~AShaderFragmentProfileInline() override;

  /// Writes nothing; true.
  bool writeDefinition(CodeSnippetInstance& out, AShaderCollapseContext& context,
                       FragmentProfileInstance& instance) const override;
  /// Writes nothing to `out`, but sets the instance's one output to the expression. Throws "Inline body
  /// parameter count is not equal to the node input count!", and the size error when the expression would
  /// pass the limit.
  bool writeFunctionCall(WString& out, AShaderCollapseContext& context, FragmentProfileInstance& instance,
                         const Array<WString>& inputValues,
                         const Array<WString>& outputValues) const override;

protected:
  /// Takes the first line. Throws "sfgError : Function body is empty!" and "sfgError : Inline body {{ }}
  /// mismatch!".
  bool loadImplementation(const IObjectDataNode* lines) override;
};

}  // namespace TolmSDK::Graphics::sfg
