#pragma once

// MaterialX documents among what `sfg check` looks at.

#include <memory>
#include <string>
#include <vector>

#include "sfg/host/diagnostic.h"
#include "sfg/host/library_set.h"

namespace TolmSDK::Graphics::sfg::tools {

/// Takes the MaterialX documents out of `paths`, and finds those in its folders: sorted, each once.
std::vector<std::string> takeMaterialDocuments(std::vector<std::string>& paths);

/// What was found, document by document, each cause once.
struct MaterialCheck {
  std::vector<host::Diagnostic> diagnostics;
  std::size_t documents = 0;
  std::size_t materials = 0;
};

/// Brings every material of every document, collapses and assembles it; nothing is compiled, as the fragments
/// are checked for themselves. Throws InputError when the libraries have no definitions of nodes.
MaterialCheck checkMaterials(const std::vector<std::string>& files,
                             const std::shared_ptr<const host::LibrarySet>& libraries);

}  // namespace TolmSDK::Graphics::sfg::tools
