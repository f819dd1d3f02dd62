#include "host/job/collapse_job.h"

#include "host/job/called_expressions.h"
#include "sfg/shader_collapse_tool_default.h"
#include "sfg/shader_collapse_tool_light_loop.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

template <class Tool>
RefPtr<IShaderFragment> collapseWith(const CollapseOptions& settings, const AShaderFragmentGraph& graph,
                                     const ShadingEnvironment& environment, const ShaderOptions& options,
                                     const LanguageDx11& language) {
  const RefPtr<Tool> tool = makeRef<Tool>();
  if (!settings.functionName.empty()) tool->setCollpaseFunctionName(fromUtf8(settings.functionName));
  if (!settings.profileName.empty()) tool->setCollapseProfileName(fromUtf8(settings.profileName));
  return RefPtr<IShaderFragment>(tool->collapse(&graph, &environment, &options, &language));
}

}  // namespace

CollapseJob::CollapseJob(std::shared_ptr<const LoadedLibraries> libraries, const Document& graph,
                         const std::optional<Document>& environment, const CollapseOptions& settings)
    : settings_(settings), libraries_(std::move(libraries)) {
  const LanguageDx11& language = libraries_->language();
  document_ = loadGraphDocument(graph, language);
  environment_ = environment ? loadEnvironment(*environment, language) : makeRef<ShadingEnvironment>();
  options_ = makeRef<ShaderOptions>(language.getLanguageString(), settings.surfaceLod, settings.lightLod,
                                    environment_.get());
  if (graph.isFile()) documentFiles_.push_back(graph.name());
  if (environment && environment->isFile()) documentFiles_.push_back(environment->name());
}

void CollapseJob::run() {
  const LanguageDx11& language = libraries_->language();
  const RefPtr<AShaderFragmentGraph> graph = buildGraph(*document_, language);
  if (std::vector<Diagnostic> wires = findCalledExpressions(*this); !wires.empty()) {
    throw CalledExpressionError(std::move(wires));
  }
  result_ =
      settings_.tool == CollapseTool::lightLoop
          ? collapseWith<AShaderCollapseToolLightLoop>(settings_, *graph, *environment_, *options_, language)
          : collapseWith<AShaderCollapseToolDefault>(settings_, *graph, *environment_, *options_, language);
  graph_ = graph;
}

}  // namespace TolmSDK::Graphics::sfg::host
