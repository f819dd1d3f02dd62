#pragma once

// What both collapse tools share: inputs, names, preparation, pre-process and post-process fragments.

#include <cstddef>
#include <memory>

#include "sfg/export.h"
#include "sfg/shader_collapse_context.h"
#include "sfg/shader_fragment_graph.h"
#include "tolmsdk/host_interfaces.h"
#include "tolmsdk/ref_object.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

/// Collapses once in its life; names are set before. Used by one thread; several tools may work at the same
/// time over shared fragments and graphs.
class SFG_API AShaderCollapseToolBase : public ARefObject {
public:
  AShaderCollapseToolBase();
  ~AShaderCollapseToolBase() override;
  AShaderCollapseToolBase(const AShaderCollapseToolBase&) = delete;
  AShaderCollapseToolBase& operator=(const AShaderCollapseToolBase&) = delete;

  /// Name of the generated function; "CollapsedFunction" when never set.
  void setCollpaseFunctionName(const WString& name) { collapseFunctionName_ = name; }
  /// Name of the result's profile; "default" when never set.
  void setCollapseProfileName(const WString& name) { collapseProfileName_ = name; }

  /// Is told what the collapse writes; null, as at first, for nobody.
  void setObserver(ICollapseObserver* observer) { context_.setObserver(observer); }

protected:
  bool prepareCollapse(const IShaderFragmentGraph* graph, const IShadingEnvironment* environment,
                       const IShaderOptions* options, const ILanguageTraits* language);
  void checkGraphOutputs(const IShaderFragmentGraph* graph, const IShadingEnvironment* environment);
  bool addOutputTypeConversion(const IShaderFragmentGraph* source, const IShaderFragment* target);
  void writePostprocessRequirements();
  void writePreprocessFragments();
  void declarePreprocessOutputs(const IShaderFragment* fragment, Array<WString>& names);
  void writeGraphOutputs(const Array<WString>& values, Array<const AParameter*>& outputParameters,
                         Array<WString>& outputNames);

  RefPtr<IShadingEnvironment const> environment_;
  RefPtr<IShaderFragmentGraph const> graph_;
  RefPtr<ILanguageTraits const> language_;
  RefPtr<IShaderOptions const> options_;
  WString collapseFunctionName_;
  WString collapseProfileName_;
  AShaderCollapseContext context_;
  RefPtr<AShaderFragment> result_;
  RefPtr<AShaderFragmentProfile> resultProfile_;
  using ProcessInstances = Array<std::unique_ptr<FragmentInstance>>;
  ProcessInstances preprocessInstances_;
  ProcessInstances postprocessInstances_;
  std::size_t shortestLightText_ = 0;  // what every light writes at least

private:
  void checkLightText() const;
  void addProcessInstance(ProcessInstances& instances, const IShaderFragment* fragment);
  void writeProcessRequirements(const ProcessInstances& instances);
  Array<WString> writePostprocessFragments(Array<WString> values);
  Array<WString> declarePostprocessOutputs(const IShaderFragment* fragment, std::size_t position,
                                           bool isLast);
};

}  // namespace TolmSDK::Graphics::sfg
