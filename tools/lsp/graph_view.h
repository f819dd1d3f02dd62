#pragma once

// The nodes and wires of a graph document, as far as they are written.

#include <string>
#include <vector>

#include "tools/lsp/catalog.h"
#include "tools/lsp/json_scan.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

/// Refers to the scan.
class GraphView {
public:
  explicit GraphView(const JsonScan& scan) : scan_(scan) {}

  /// The objects of nodes, in the order of the text.
  std::vector<std::uint32_t> nodes() const;
  std::vector<std::uint32_t> graphInputs() const;
  /// The object with that name; kNone for none.
  std::uint32_t findNode(const std::string& name) const;
  std::uint32_t findGraphInput(const std::string& name) const;
  /// The node that holds the item; kNone for one outside.
  std::uint32_t nodeAround(std::uint32_t item) const;

  /// What the node shows itself, or its fragment does. Nothing for an unknown fragment. `catalog` may be
  /// null.
  std::vector<PortCard> inputsOf(std::uint32_t node, const Catalog* catalog) const;
  std::vector<PortCard> outputsOf(std::uint32_t node, const Catalog* catalog) const;

private:
  std::vector<std::uint32_t> objectsUnder(std::string_view key) const;
  std::vector<PortCard> portsOf(std::uint32_t node, const char* list, const Catalog* catalog,
                                std::vector<PortCard> FragmentCard::*ports) const;

  const JsonScan& scan_;
};

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
