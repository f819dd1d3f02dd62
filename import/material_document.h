#pragma once

// MaterialX documents: which materials they hold, and each of them as a graph of fragments.

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "import/graph_import.h"
#include "sfg/host/diagnostic.h"
#include "sfg/host/document.h"
#include "sfg/host/library_set.h"

namespace TolmSDK::Graphics::sfg::materialx {

/// What a document can be brought as.
struct MaterialName {
  std::string name;
  bool isMaterial = false;  ///< else an output, of the document or of a graph ("graph/output")
};

/// Which geometry a look gives a material.
struct MaterialAssignment {
  std::string look;
  std::string geometry;
  std::string material;
};

struct ImportedMaterial {
  std::string name;
  host::Graph graph;
  std::vector<ImportedTexture> textures;
  bool isLit = false;  ///< a surface, which the light loop collapses
  /// What could not be brought, each at its line.
  std::vector<host::Diagnostic> diagnostics;
};

/// A document and all that it includes, read once. What is broken in it is among the diagnostics, and the
/// rest is there. Used by one thread at a time.
class MaterialDocument {
public:
  /// Where files are looked for behind the folder of the document.
  struct Options {
    std::vector<std::filesystem::path> folders;
  };

  /// Reads the file. `libraries` has the fragments, and `definitions.json` in a folder of theirs. Throws
  /// host::InputError when the document or the definitions cannot be read.
  MaterialDocument(const std::filesystem::path& file, std::shared_ptr<const host::LibrarySet> libraries,
                   const Options& options);
  /// The same of a text; `file` stands for its place.
  MaterialDocument(const std::filesystem::path& file, std::string text,
                   std::shared_ptr<const host::LibrarySet> libraries,
                   std::shared_ptr<StandardDefinitions> standard, const Options& options);
  MaterialDocument(const MaterialDocument&) = delete;
  MaterialDocument& operator=(const MaterialDocument&) = delete;
  ~MaterialDocument();

  /// What was found while the document was read.
  const std::vector<host::Diagnostic>& diagnostics() const;
  /// The document, and every file that it includes.
  std::vector<std::string> files() const;
  /// The materials in the order of the document; the outputs of its graphs when there is no material.
  std::vector<MaterialName> materials() const;
  std::vector<MaterialAssignment> assignments() const;
  /// A material by name, or an output of a graph as "graph/output", or a graph with all its outputs, which a
  /// collapse takes when one node gives them all. An empty name is the only one there is. Throws
  /// host::InputError when there is none, or several.
  ImportedMaterial import(const std::string& name);

private:
  struct State;
  std::unique_ptr<State> state_;
};

/// `definitions.json` in the first of the set's folders that has one. Throws host::InputError.
std::filesystem::path definitionsFile(const host::LibrarySet& libraries);
/// The definitions that it holds. Throws host::InputError.
std::shared_ptr<StandardDefinitions> findDefinitions(const host::LibrarySet& libraries);

}  // namespace TolmSDK::Graphics::sfg::materialx
