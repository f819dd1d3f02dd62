#pragma once

// Brings a part of a document as a graph of fragments.

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "import/definitions.h"
#include "import/element.h"
#include "import/picture_size.h"
#include "sfg/host/document.h"

namespace TolmSDK::Graphics::sfg::materialx {

/// The ports of a fragment, types in the shader language.
struct FragmentPorts {
  struct Port {
    std::string name;
    std::string type;
  };
  std::vector<Port> inputs;
  std::vector<Port> outputs;
};
/// The ports of the fragment of that name, or null. What is answered lives as long as the function.
using FragmentSource = std::function<const FragmentPorts*(const std::string& fragment)>;

/// A file that an input of the graph reads.
struct ImportedTexture {
  std::string node;
  std::string input;
  std::string file;        ///< as it was found; as the document names it where there is none
  bool isMissing = false;  ///< then `value` is what every read gives
  std::vector<double> value = {};
  bool isSized = false;  ///< the graph holds its width and height
};

/// A graph and what it needs.
struct ImportedGraph {
  host::Graph graph;
  std::vector<ImportedTexture> textures;
  bool isLit = false;  ///< a surface, which the light loop collapses
};

/// An output to bring: an `output` element of a graph or of the document, or an input of a material.
struct WantedOutput {
  std::string name;
  const Element* element = nullptr;
};

struct GraphImportOptions {
  FragmentSource fragments;
  /// Whether there is such a file.
  std::function<bool(const std::string&)> hasFile;
  /// Its width and height; nothing where they are not known.
  std::function<std::optional<PictureSize>(const std::string&)> sizeOf;
  /// Where texture files are looked for behind the folder of the document.
  std::vector<std::string> folders;
};

/// The nodes that these outputs need. What cannot be brought is told at its line, and its default value
/// stands in its place. Time and memory go with the nodes brought, of which there are 100,000 at most.
ImportedGraph importGraph(const Element& root, const std::vector<WantedOutput>& outputs,
                          Definitions& definitions, StandardDefinitions& standard,
                          const GraphImportOptions& options, Reports& reports);

}  // namespace TolmSDK::Graphics::sfg::materialx
