#include "tools/lsp/definition.h"

#include "tools/lsp/graph_view.h"
#include "tools/lsp/roles.h"
#include "tools/lsp/uri.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

namespace {

Json location(const std::string& uri, const Json& range) {
  return Json::object({{"uri", uri}, {"range", range}});
}

/// The name of an object of this document.
Json ownName(const View& view, std::uint32_t object) {
  const std::uint32_t name = view.scan().find(object, "name");
  if (name == JsonScan::kNone) return nullptr;
  return location(view.document.uri(), view.rangeOf(insideOf(view.scan(), view.scan()[name].span())));
}

/// The fragment's key in its file, or that of one of its ports when it says something of it.
Json inLibrary(const View& view, const std::string& fragment, const std::string& port = {}) {
  const FragmentCard* const card = view.catalog != nullptr ? view.catalog->find(fragment) : nullptr;
  const ScannedText* const text = card != nullptr ? view.textOf(card->file) : nullptr;
  if (text == nullptr) return nullptr;
  const JsonScan& scan = text->scan();
  const std::uint32_t object = scan.find(scan.root(), fragment);
  if (object == JsonScan::kNone) return nullptr;
  const std::uint32_t said = scan.find(scan.find(object, "ports"), port);
  const Span key = scan[said != JsonScan::kNone ? said : object].keySpan();
  return location(uriOf(card->file), jsonOf(text->buffer().rangeOf(insideOf(scan, key), view.encoding)));
}

Json includeFile(const View& view, const std::string& name) {
  const auto file = view.catalog != nullptr ? view.catalog->findInclude(name) : std::nullopt;
  return file ? location(uriOf(*file), jsonOf(Range())) : Json();
}

}  // namespace

Json definition(const View& view, Position position) {
  const JsonScan& scan = view.scan();
  const Subject subject = findSubject(view.kind, scan, view.offsetOf(position));
  const GraphView graph(scan);
  const std::uint32_t item = subject.place.item;
  switch (subject.role) {
  case Role::fragment: return inLibrary(view, subject.name);
  case Role::newNode: return inLibrary(view, scan.textOf(scan[item].parent, "fragment"));
  case Role::node: return ownName(view, graph.findNode(subject.name));
  case Role::graphInput: return ownName(view, graph.findGraphInput(subject.name));
  case Role::input: return inLibrary(view, scan.textOf(graph.nodeAround(item), "fragment"), subject.name);
  case Role::output: {
    const std::uint32_t node = graph.findNode(scan.textOf(scan[item].parent, "node"));
    return inLibrary(view, scan.textOf(node, "fragment"), subject.name);
  }
  case Role::include: return includeFile(view, subject.name);
  default: return nullptr;
  }
}

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
