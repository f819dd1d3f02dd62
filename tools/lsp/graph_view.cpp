#include "tools/lsp/graph_view.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

namespace {

using Kind = JsonScan::Kind;

std::uint32_t findNamed(const JsonScan& scan, const std::vector<std::uint32_t>& objects,
                        const std::string& name) {
  for (const std::uint32_t object : objects) {
    if (scan.textOf(object, "name") == name) return object;
  }
  return JsonScan::kNone;
}

}  // namespace

std::vector<std::uint32_t> GraphView::objectsUnder(std::string_view key) const {
  std::vector<std::uint32_t> objects;
  const std::uint32_t list = scan_.find(scan_.root(), key);
  for (std::uint32_t i = scan_.first(list); i != scan_.end(list); i = scan_[i].next) {
    if (scan_[i].kind == Kind::object) objects.push_back(i);
  }
  return objects;
}

std::vector<std::uint32_t> GraphView::nodes() const { return objectsUnder("nodes"); }
std::vector<std::uint32_t> GraphView::graphInputs() const { return objectsUnder("inputs"); }

std::uint32_t GraphView::findNode(const std::string& name) const { return findNamed(scan_, nodes(), name); }
std::uint32_t GraphView::findGraphInput(const std::string& name) const {
  return findNamed(scan_, graphInputs(), name);
}

std::uint32_t GraphView::nodeAround(std::uint32_t item) const {
  const std::uint32_t list = scan_.find(scan_.root(), "nodes");
  while (item != JsonScan::kNone && scan_[item].parent != list) item = scan_[item].parent;
  return list == JsonScan::kNone ? JsonScan::kNone : item;
}

std::vector<PortCard> GraphView::inputsOf(std::uint32_t node, const Catalog* catalog) const {
  return portsOf(node, "inputs", catalog, &FragmentCard::inputs);
}

std::vector<PortCard> GraphView::outputsOf(std::uint32_t node, const Catalog* catalog) const {
  return portsOf(node, "outputs", catalog, &FragmentCard::outputs);
}

std::vector<PortCard> GraphView::portsOf(std::uint32_t node, const char* list, const Catalog* catalog,
                                         std::vector<PortCard> FragmentCard::*ports) const {
  const FragmentCard* const card =
      catalog != nullptr ? catalog->find(scan_.textOf(node, "fragment")) : nullptr;
  const std::uint32_t own = scan_.find(node, "interface");
  if (own == JsonScan::kNone) return card != nullptr ? card->*ports : std::vector<PortCard>();
  std::vector<PortCard> cards = readParameters(scan_, scan_.find(own, list));
  for (PortCard& port : cards) {
    for (const PortCard& other : card != nullptr ? card->*ports : std::vector<PortCard>()) {
      if (other.name == port.name && port.description.empty()) port.description = other.description;
    }
  }
  return cards;
}

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
