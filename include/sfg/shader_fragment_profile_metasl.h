#pragma once

// Function profiles for code translated from MetaSL.

#include "sfg/export.h"
#include "sfg/shader_fragment_profile_function.h"

namespace TolmSDK::Graphics::sfg {

/// Adds to the function mode: the MetaSL state variables and include, the renaming of MetaSL matrix names,
/// light-and-shadow blocks repeated per light, and once per collapse one lighting function per light.
class SFG_API AShaderFragmentProfileMetaSL : public AShaderFragmentProfileFunction {
public:
  AShaderFragmentProfileMetaSL();
  ~AShaderFragmentProfileMetaSL() override;

  bool load(const IObjectDataNode* node) override;
  /// Throws "Failed to write light definition." and "sfgError : light and shadow block is not closed!".
  bool writePredefines(CodeSnippetInstance& out, AShaderCollapseContext& context,
                       FragmentProfileInstance& instance) const override;
  /// Throws "sfgError : light and shadow block is not closed!".
  bool writeDefinition(CodeSnippetInstance& out, AShaderCollapseContext& context,
                       FragmentProfileInstance& instance) const override;

  /// Adds the state variables and the include that MetaSL code needs; load() does it by itself.
  void addMetaSLRequirements();
};

}  // namespace TolmSDK::Graphics::sfg
