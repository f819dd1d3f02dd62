#include "tools/material_graph.h"

#include <filesystem>

namespace TolmSDK::Graphics::sfg::tools {

namespace {

/// The folders, and behind each the one of that name in it.
std::vector<std::filesystem::path> withInner(const std::vector<std::filesystem::path>& folders) {
  std::vector<std::filesystem::path> all;
  for (const std::filesystem::path& folder : folders) {
    all.push_back(folder);
    std::error_code error;
    if (std::filesystem::is_directory(folder / "materialx", error)) all.push_back(folder / "materialx");
  }
  return all;
}

}  // namespace

bool isMaterialDocument(const std::string& file) { return file.ends_with(".mtlx"); }

void declareMaterialOption(CLI::App& app, std::string& material) {
  app.add_option("--material", material,
                 "which material of a MaterialX document; also a node graph of it, or `GRAPH/OUTPUT`")
      ->type_name("NAME");
}

std::shared_ptr<const host::LibrarySet> loadMaterialLibraries(const LibraryOptions& options,
                                                              Diagnostics& diagnostics) {
  host::LibraryFolders folders = foldersOf(options, {}, diagnostics);
  folders.libraries = withInner(folders.libraries);
  folders.includes = withInner(folders.includes);
  auto libraries = host::LibrarySet::load(folders, options.language);
  diagnostics.hold(libraries->problems());
  return libraries;
}

MaterialGraph importGraph(const std::string& file, const std::string& material,
                          const std::shared_ptr<const host::LibrarySet>& libraries,
                          Diagnostics& diagnostics) {
  materialx::MaterialDocument document(file, libraries, {});
  diagnostics.show(document.diagnostics());
  const materialx::ImportedMaterial imported = document.import(material);
  diagnostics.show(imported.diagnostics);
  MaterialGraph graph{host::Document::from(imported.graph, file), imported.isLit, document.files()};
  graph.files.push_back(materialx::definitionsFile(*libraries).string());
  for (const materialx::ImportedTexture& texture : imported.textures) {
    if (texture.isSized) graph.files.push_back(texture.file);
  }
  return graph;
}

}  // namespace TolmSDK::Graphics::sfg::tools
