#pragma once

// Jobs over files, as the command makes them.

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/job/collapse_job.h"

namespace TolmSDK::Graphics::sfg::host {

/// What a test reads and how it collapses it. Without an environment file there are no lights.
struct JobFiles : CollapseOptions {
  std::string graphFile;
  std::vector<std::string> libraryFolders;
  std::vector<std::string> includeFolders;
  std::string environmentFile;
};

/// A job over libraries of its own. Throws InputError.
inline CollapseJob makeJob(const JobFiles& files) {
  std::optional<Document> environment;
  if (!files.environmentFile.empty()) environment = Document::fromFile(files.environmentFile);
  return {std::make_shared<const LoadedLibraries>(files.libraryFolders, files.includeFolders, "dx11"),
          Document::fromFile(files.graphFile), environment, files};
}

}  // namespace TolmSDK::Graphics::sfg::host
