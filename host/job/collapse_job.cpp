#include "host/job/collapse_job.h"

#include "host/documents/diagnose.h"
#include "host/documents/shader_names.h"
#include "host/job/called_expressions.h"
#include "sfg/shader_collapse_tool_default.h"
#include "sfg/shader_collapse_tool_light_loop.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

template <class Tool>
RefPtr<IShaderFragment> collapseWith(const CollapseOptions& settings, const AShaderFragmentGraph& graph,
                                     const ShadingEnvironment& environment, const ShaderOptions& options,
                                     const LanguageDx11& language, ICollapseObserver* observer) {
  const RefPtr<Tool> tool = makeRef<Tool>();
  tool->setObserver(observer);
  if (!settings.functionName.empty()) tool->setCollpaseFunctionName(fromUtf8(settings.functionName));
  if (!settings.profileName.empty()) tool->setCollapseProfileName(fromUtf8(settings.profileName));
  return RefPtr<IShaderFragment>(tool->collapse(&graph, &environment, &options, &language));
}

}  // namespace

CollapseJob::CollapseJob(std::shared_ptr<const LoadedLibraries> libraries, const Document& graph,
                         const std::optional<Document>& environment, const CollapseOptions& settings)
    : settings_(settings), libraries_(std::move(libraries)) {
  checkSettings();
  document_ = loadGraphDocument(graph, libraries_->language(), libraries_->ports(), whyUnknown(),
                                settings_.constants);
  if (graph.isFile()) documentFiles_.push_back(graph.name());
  readEnvironment(environment);
}

CollapseJob::CollapseJob(std::shared_ptr<const LoadedLibraries> libraries,
                         const RefPtr<IHostGraph const>& graph, const std::optional<Document>& environment,
                         const CollapseOptions& settings)
    : settings_(settings), libraries_(std::move(libraries)), ownGraph_(graph) {
  checkSettings();
  document_ = readHostGraph(graph, libraries_->language(), whyUnknown());
  readEnvironment(environment);
}

void CollapseJob::checkSettings() const {
  if (settings_.functionName.empty()) return;
  const std::string fault = nameFault(settings_.functionName, false);
  if (!fault.empty())
    throw inputError(Finding::badName, std::string(), {},
                     "the function's name cannot stand in code: " + fault);
}

WhyUnknown CollapseJob::whyUnknown() const {
  return [this](std::string_view name) { return libraries_->whyUnknown(name); };
}

void CollapseJob::readEnvironment(const std::optional<Document>& environment) {
  const LanguageDx11& language = libraries_->language();
  environment_ = environment ? loadEnvironment(*environment, language, libraries_->ports(), whyUnknown())
                             : makeRef<ShadingEnvironment>();
  options_ = makeRef<ShaderOptions>(language.getLanguageString(), settings_.surfaceLod, settings_.lightLod,
                                    environment_.get());
  if (environment && environment->isFile()) documentFiles_.push_back(environment->name());
}

void CollapseJob::run() {
  const LanguageDx11& language = libraries_->language();
  if (ownGraph_) requireUnchanged(*document_, ownGraph_, language, whyUnknown());
  const RefPtr<AShaderFragmentGraph> graph = buildGraph(*document_, language, libraries_->ports());
  if (std::vector<Diagnostic> wires = findCalledExpressions(*this); !wires.empty()) {
    throw CalledExpressionError(std::move(wires));
  }
  result_ = collapse(*graph, nullptr);
  graph_ = graph;
}

void CollapseJob::observe(ICollapseObserver& observer) const { collapse(*graph_, &observer); }

RefPtr<IShaderFragment> CollapseJob::collapse(const AShaderFragmentGraph& graph,
                                              ICollapseObserver* observer) const {
  const LanguageDx11& language = libraries_->language();
  if (settings_.tool == CollapseTool::lightLoop)
    return collapseWith<AShaderCollapseToolLightLoop>(settings_, graph, *environment_, *options_, language,
                                                      observer);
  return collapseWith<AShaderCollapseToolDefault>(settings_, graph, *environment_, *options_, language,
                                                  observer);
}

}  // namespace TolmSDK::Graphics::sfg::host
