#pragma once

// Node definitions: the standard ones, and those of a document.

#include <cstddef>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "import/element.h"

namespace TolmSDK::Graphics::sfg::materialx {

/// An input or output of a definition. Texts are as documents have them; what is not said is empty.
struct DefinedPort {
  std::string name;
  std::string type;
  std::string value;
  bool hasValue = false;
  std::string geomprop;             ///< what an unwired input is read from
  std::vector<std::string> names;   ///< of an enumeration's values
  std::vector<std::string> values;  ///< what they stand for; else their places
  std::string unit;
  std::string unitType;
  std::string passedInput;           ///< of an output: the input that it is where nothing is computed
  const Element* element = nullptr;  ///< of a document's own definition
};

struct Definition {
  std::string name;  ///< without `ND_`, for standard ones
  std::string node;
  std::string version;
  bool isDefault = true;
  std::vector<DefinedPort> inputs;
  std::vector<DefinedPort> outputs;
  std::string fragment;            ///< of a standard definition
  const Element* graph = nullptr;  ///< that implements a document's own one
  const Element* element = nullptr;

  const DefinedPort* input(std::string_view portName) const;
  const DefinedPort* output(std::string_view portName) const;
};

/// The standard definitions, from a file that scripts/materialx/definitions.py wrote. A line is parsed when
/// its node is asked for. Used by one thread at a time.
class StandardDefinitions {
public:
  /// Throws host::InputError for a file that cannot be read.
  static std::shared_ptr<StandardDefinitions> load(const std::filesystem::path& file);
  explicit StandardDefinitions(std::string text);

  /// All definitions of a node, in the order of the file; they live as long as this.
  const std::vector<Definition>& of(const std::string& node);
  /// All nodes.
  std::vector<std::string> nodes() const;

private:
  struct Entry {
    std::vector<std::string_view> lines;
    std::vector<Definition> parsed;
  };

  std::string text_;
  std::map<std::string, Entry, std::less<>> entries_;
};

/// The definitions that hold in one document.
class Definitions {
public:
  /// Reads `nodedef`, `nodegraph` and `implementation` elements below the root. Both live longer.
  Definitions(const Element& root, StandardDefinitions& standard, Reports& reports);

  /// The definition that a node means: by its `nodedef`, else by category, type, inputs and version. Null,
  /// and an error, when there is none.
  const Definition* find(const Element& node);
  /// The document's own definition that a graph computes, or null.
  const Definition* implementedBy(const Element& graph) const;
  static bool isNode(const Element& element);

private:
  void readOwn(const Element& root);
  void addOwn(const Element& element);
  void connectGraphs(const Element& root);
  std::vector<const Definition*> candidates(const std::string& node);
  const Definition* choose(const Element& node, const std::vector<const Definition*>& known);
  void tellUnknown(const Element& node);

  StandardDefinitions& standard_;
  Reports& reports_;
  std::vector<std::unique_ptr<Definition>> own_;
  std::unordered_map<std::string, Definition*> byName_;
  std::unordered_map<std::string, std::vector<const Definition*>> byNode_;
  std::unordered_map<const Element*, const Definition*> found_;
};

}  // namespace TolmSDK::Graphics::sfg::materialx
