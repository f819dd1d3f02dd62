#pragma once

// MaterialX documents where a command takes a graph.

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

#include "import/material_document.h"
#include "sfg/host/document.h"
#include "sfg/host/library_set.h"
#include "tools/collapse_options.h"
#include "tools/diagnostics.h"

namespace TolmSDK::Graphics::sfg::tools {

/// Whether the name is that of a MaterialX document.
bool isMaterialDocument(const std::string& file);
/// --material.
void declareMaterialOption(CLI::App& app, std::string& material);
/// As loadLibraries(), with the folder `materialx` of every folder that has one.
std::shared_ptr<const host::LibrarySet> loadMaterialLibraries(const LibraryOptions& options,
                                                              Diagnostics& diagnostics);
/// The material as a graph, which the light loop collapses when it is a surface; what cannot be brought is
/// told. Throws InputError.
struct MaterialGraph {
  host::Document document;
  bool isLit = false;
  std::vector<std::string> files;  ///< that it was made from
};
MaterialGraph importGraph(const std::string& file, const std::string& material,
                          const std::shared_ptr<const host::LibrarySet>& libraries, Diagnostics& diagnostics);

}  // namespace TolmSDK::Graphics::sfg::tools
