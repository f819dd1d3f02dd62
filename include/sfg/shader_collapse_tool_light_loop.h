#pragma once

// Collapse of a lit surface.

#include <cstddef>
#include <string_view>

#include "sfg/export.h"
#include "sfg/shader_collapse_tool_base.h"

namespace TolmSDK::Graphics::sfg {

class SFG_API AShaderCollapseToolLightLoop : public AShaderCollapseToolBase {
public:
  AShaderCollapseToolLightLoop();
  ~AShaderCollapseToolLightLoop() override;

  /// Turns the graph into the function "AccumulatedLitSurface", whose body repeats the lit part once per
  /// light (once for a default light without any), accumulates it and assigns the outputs. Ownership as in
  /// AShaderCollapseToolDefault. Null when the collapse cannot be done with these inputs or an output's
  /// fragment cannot be evaluated. Throws Exception when lights or surfaces cannot take a profile or be
  /// written, and for malformed graphs.
  IShaderFragment* collapse(const IShaderFragmentGraph* graph, const IShadingEnvironment* environment,
                            const IShaderOptions* options, const ILanguageTraits* language);

private:
  WString lightProfileName(const IShaderFragment* light) const;
  void setSurfaceProfileOfLight(const IShaderFragment* light, const WString& profileName);
  void setCurrentLight(const IShaderFragment& light, const WString& profileName);
  void writeLightRequirements();
  void writeLightLoop();
  Array<FragmentInstance*> collectLitFragments();
  void evaluateDefaultLight(const Array<FragmentInstance*>& litInstances);
  void evaluateLight(std::size_t index, const Array<FragmentInstance*>& litInstances);
  void writeLightHeading(std::wstring_view line);
  bool evaluateOutputs(Array<WString>& values);
  bool addOutputs(const Array<WString>& values);
};

}  // namespace TolmSDK::Graphics::sfg
