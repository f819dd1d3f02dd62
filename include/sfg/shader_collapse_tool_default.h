#pragma once

// Collapse without lights.

#include "sfg/export.h"
#include "sfg/shader_collapse_tool_base.h"

namespace TolmSDK::Graphics::sfg {

class SFG_API AShaderCollapseToolDefault : public AShaderCollapseToolBase {
public:
  AShaderCollapseToolDefault();
  ~AShaderCollapseToolDefault() override;

  /// Turns the graph into one function that takes the graph's inputs and writes its outputs. The result
  /// fragment belongs to the tool: a caller that keeps it takes a reference. Null when the collapse cannot be
  /// done with these inputs (null argument or port, language mismatch, no output). Throws Exception for
  /// malformed graphs: "Cannot collapse twice!", "Graph output must be connected to a fragment!", "Failed to
  /// evaluate fragment!" and those of the preparation.
  IShaderFragment* collapse(const IShaderFragmentGraph* graph, const IShadingEnvironment* environment,
                            const IShaderOptions* options, const ILanguageTraits* language);

private:
  bool addParameters();
  const IShaderFragment* findOutputFragment() const;
  Array<WString> graphOutputNames(const IShaderFragment& fragment) const;
  bool assignOutputs(const FragmentInstance& instance, const Array<WString>& names);
};

}  // namespace TolmSDK::Graphics::sfg
