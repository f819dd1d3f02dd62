#pragma once

// What is known of the fragments that nodes may use.

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "sfg/host/library_set.h"
#include "tools/lsp/documents.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

/// What a port or uniform takes, and what the library says of it; numbers as they are written there. Empty
/// where nothing is said.
struct PortCard {
  std::string name;
  std::string type;
  std::string description;
  std::string label;
  std::string value;
  std::string min;
  std::string max;
  std::string step;
  std::string kind;
  std::string space;
};

struct FragmentCard {
  std::string name;
  std::string description;
  std::string file;
  std::string mode;  ///< of its first profile
  std::vector<PortCard> inputs;
  std::vector<PortCard> outputs;
  std::vector<PortCard> uniforms;

  /// Null without one.
  const PortCard* input(const std::string& port) const;
  const PortCard* output(const std::string& port) const;
};

/// The parameters of an array of parameter objects.
std::vector<PortCard> readParameters(const JsonScan& scan, std::uint32_t array);

/// Answers questions about the fragments of a set, and keeps the answers. `textOf` gives the text of a file:
/// that of an editor, or the saved one; null for a file that cannot be read.
class Catalog {
public:
  using TextOf = std::function<const ScannedText*(const std::string& file)>;

  Catalog(std::shared_ptr<const host::LibrarySet> libraries, TextOf textOf);

  const host::LibrarySet& libraries() const noexcept { return *libraries_; }
  /// In order of names.
  const std::vector<host::FragmentInfo>& fragments() const noexcept { return fragments_; }
  /// Null for an unknown one.
  const FragmentCard* find(const std::string& fragment) const;
  /// Names of the profiles of all fragments, each once, in order.
  const std::vector<std::string>& profileNames() const;
  /// Names of the include files of all folders, each once, in order.
  const std::vector<std::string>& includeNames() const;
  /// The path of that include file; nothing for an unknown one.
  std::optional<std::filesystem::path> findInclude(const std::string& name) const;

private:
  FragmentCard makeCard(const host::FragmentInfo& info) const;

  std::shared_ptr<const host::LibrarySet> libraries_;
  TextOf textOf_;
  std::vector<host::FragmentInfo> fragments_;
  mutable std::map<std::string, FragmentCard> cards_;
  mutable std::optional<std::vector<std::string>> profileNames_;
  mutable std::optional<std::vector<std::string>> includeNames_;
};

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
