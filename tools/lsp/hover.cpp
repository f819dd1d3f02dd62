#include "tools/lsp/hover.h"

#include <algorithm>

#include "tools/lsp/descriptions.h"
#include "tools/lsp/graph_view.h"
#include "tools/lsp/key_meanings.h"
#include "tools/lsp/roles.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

namespace {

std::string describeNamed(const std::vector<PortCard>& ports, const std::string& name) {
  const auto port =
      std::find_if(ports.begin(), ports.end(), [&](const PortCard& one) { return one.name == name; });
  return port != ports.end() ? describe(*port) : std::string();
}

std::string describeFragment(const View& view, const std::string& name) {
  const FragmentCard* const card = view.catalog != nullptr ? view.catalog->find(name) : nullptr;
  return card != nullptr ? describe(*card) : std::string();
}

/// The node's fragment, under the node's name.
std::string describeNode(const View& view, std::uint32_t node) {
  if (node == JsonScan::kNone) return std::string();
  const std::string fragment = view.scan().textOf(node, "fragment");
  std::string text = "node `";
  text.append(view.scan().textOf(node, "name")).append("`");
  const std::string what = describeFragment(view, fragment);
  return what.empty() ? text : text.append(": ").append(what);
}

/// A port of a library fragment: of its code.
std::string describePort(const View& view, const Subject& subject) {
  const FragmentCard* const card =
      view.catalog != nullptr ? view.catalog->find(subject.path.front()) : nullptr;
  if (card == nullptr) return std::string();
  const std::string input = describeNamed(card->inputs, subject.name);
  return input.empty() ? describeNamed(card->outputs, subject.name) : input;
}

std::string describeKey(const View& view, const Subject& subject) {
  const std::string meaning = KeyMeanings::of(view.kind).meaning(subject.path);
  if (meaning.empty()) return std::string();
  std::string text = "**";
  return text.append(subject.name).append("** ").append(meaning);
}

std::string describe(const View& view, const Subject& subject) {
  const JsonScan& scan = view.scan();
  const GraphView graph(scan);
  const std::uint32_t item = subject.place.item;
  switch (subject.role) {
  case Role::key: return describeKey(view, subject);
  case Role::input: return describeNamed(graph.inputsOf(graph.nodeAround(item), view.catalog), subject.name);
  case Role::newFragment:
  case Role::fragment: return describeFragment(view, subject.name);
  case Role::port: return describePort(view, subject);
  case Role::node:
  case Role::newNode: return describeNode(view, graph.findNode(subject.name));
  case Role::output:
    return describeNamed(
        graph.outputsOf(graph.findNode(scan.textOf(scan[item].parent, "node")), view.catalog), subject.name);
  case Role::graphInput:
  case Role::newGraphInput:
    return describeNamed(readParameters(scan, scan.find(scan.root(), "inputs")), subject.name);
  default: return std::string();
  }
}

}  // namespace

Json hover(const View& view, Position position) {
  const Subject subject = findSubject(view.kind, view.scan(), view.offsetOf(position));
  const std::string text = describe(view, subject);
  if (text.empty()) return nullptr;
  return Json::object({{"contents", Json::object({{"kind", "markdown"}, {"value", text}})},
                       {"range", view.rangeOf(subject.place.literal)}});
}

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
