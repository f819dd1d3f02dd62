#pragma once

// One collapse from files: what to read, what was read, and the result.

#include <memory>
#include <string>
#include <vector>

#include "host/documents/graph_document.h"
#include "host/documents/shading_environment.h"
#include "host/job/shader_options.h"
#include "host/library/language_dx11.h"
#include "sfg/fragment_library.h"
#include "sfg/shader_collapse_tool_base.h"

namespace TolmSDK::Graphics::sfg::host {

enum class CollapseTool { standard, lightLoop };

/// What to read and how to collapse it. Paths and names are UTF-8; an empty name or path is one not given.
struct CollapseSettings {
  std::string graphFile;
  std::vector<std::string> libraryFolders;
  std::vector<std::string> includeFolders;
  CollapseTool tool = CollapseTool::standard;
  std::string environmentFile;
  std::string language = "dx11";
  float surfaceLod = 100.0f;
  float lightLod = 100.0f;
  std::string functionName;
  std::string profileName;
};

/// Fragments and language as folders give them. Include folders are registered with the process-wide include
/// registry, each once per process however it is spelled; so none is made while another collapses. Not copied
/// or moved: the language points at the library.
class LoadedLibraries {
public:
  /// Throws InputError for a folder that does not exist and for an unknown language. What is wrong inside
  /// library files goes to the debug log.
  LoadedLibraries(const std::vector<std::string>& libraryFolders,
                  const std::vector<std::string>& includeFolders, const std::string& language);
  LoadedLibraries(const LoadedLibraries&) = delete;
  LoadedLibraries& operator=(const LoadedLibraries&) = delete;

  const FragmentLibrary& library() const noexcept { return library_; }
  const LanguageDx11& language() const noexcept { return *language_; }

private:
  FragmentLibrary library_;
  RefPtr<LanguageDx11> language_;
};

/// One collapse, in three steps whose failures differ. Used by one thread.
class CollapseJob {
public:
  /// Reads everything. Throws InputError.
  explicit CollapseJob(const CollapseSettings& settings);

  /// Builds the graph and collapses it. Throws InputError (a post-process fragment that does not fit),
  /// CalledExpressionError (inline expressions wired to inputs that are called as functions) and the
  /// generator's Exception; a null result() afterwards means that the collapse cannot be done with these
  /// inputs.
  void run();

  const CollapseSettings& settings() const noexcept { return settings_; }
  const LoadedLibraries& libraries() const noexcept { return libraries_; }
  const GraphDocument& document() const noexcept { return *document_; }
  const ShadingEnvironment& environment() const noexcept { return *environment_; }
  const ShaderOptions& options() const noexcept { return *options_; }
  /// Null until run() has built it.
  const AShaderFragmentGraph* graph() const noexcept { return graph_.get(); }
  const IShaderFragment* result() const noexcept { return result_.get(); }

private:
  CollapseSettings settings_;
  LoadedLibraries libraries_;
  RefPtr<GraphDocument> document_;
  RefPtr<ShadingEnvironment> environment_;
  RefPtr<ShaderOptions> options_;
  RefPtr<AShaderFragmentGraph> graph_;
  RefPtr<IShaderFragment> result_;
};

}  // namespace TolmSDK::Graphics::sfg::host
