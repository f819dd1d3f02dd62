#pragma once

// One collapse: what to read, what was read, and the result.

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/documents/graph_document.h"
#include "host/documents/host_graph.h"
#include "host/documents/shading_environment.h"
#include "host/job/shader_options.h"
#include "host/library/loaded_libraries.h"
#include "sfg/host/job.h"
#include "sfg/shader_collapse_tool_base.h"

namespace TolmSDK::Graphics::sfg::host {

/// One collapse, in three steps whose failures differ. Used by one thread.
class CollapseJob {
public:
  /// Reads the documents, over libraries that other jobs use too. Throws InputError.
  CollapseJob(std::shared_ptr<const LoadedLibraries> libraries, const Document& graph,
              const std::optional<Document>& environment, const CollapseOptions& settings);
  CollapseJob(std::shared_ptr<const LoadedLibraries> libraries, const RefPtr<IHostGraph const>& graph,
              const std::optional<Document>& environment, const CollapseOptions& settings);

  /// Builds the graph and collapses it. Throws InputError (a post-process fragment that does not fit),
  /// CalledExpressionError (inline expressions wired to inputs that are called as functions) and the
  /// generator's Exception; a null result() afterwards means that the collapse cannot be done with these
  /// inputs. A job that has thrown is as it was before.
  void run();

  /// Collapses once more for an observer, with the same result, which is dropped. The job has a result.
  void observe(ICollapseObserver& observer) const;

  const CollapseOptions& settings() const noexcept { return settings_; }
  const LoadedLibraries& libraries() const noexcept { return *libraries_; }
  const std::shared_ptr<const LoadedLibraries>& shareLibraries() const noexcept { return libraries_; }
  /// The documents that are files.
  const std::vector<std::string>& documentFiles() const noexcept { return documentFiles_; }
  const GraphDocument& document() const noexcept { return *document_; }
  const ShadingEnvironment& environment() const noexcept { return *environment_; }
  const ShaderOptions& options() const noexcept { return *options_; }
  /// Null until run() has built it.
  const AShaderFragmentGraph* graph() const noexcept { return graph_.get(); }
  const IShaderFragment* result() const noexcept { return result_.get(); }

private:
  void checkSettings() const;
  /// Of this job's libraries.
  WhyUnknown whyUnknown() const;
  void readEnvironment(const std::optional<Document>& environment);
  RefPtr<IShaderFragment> collapse(const AShaderFragmentGraph& graph, ICollapseObserver* observer) const;

  CollapseOptions settings_;
  std::shared_ptr<const LoadedLibraries> libraries_;
  std::vector<std::string> documentFiles_;
  RefPtr<IHostGraph const> ownGraph_;  ///< null for a document
  RefPtr<GraphDocument> document_;
  RefPtr<ShadingEnvironment> environment_;
  RefPtr<ShaderOptions> options_;
  RefPtr<AShaderFragmentGraph> graph_;
  RefPtr<IShaderFragment> result_;
};

}  // namespace TolmSDK::Graphics::sfg::host
