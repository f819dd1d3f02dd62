#include "tools/lsp/rename.h"

#include <utility>

#include "tools/lsp/roles.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

namespace {

/// The role of the object's own name, for a use of it too.
Role ownRole(Role role) {
  if (role == Role::node || role == Role::newNode) return Role::newNode;
  if (role == Role::graphInput || role == Role::newGraphInput) return Role::newGraphInput;
  return Role::nothing;
}

Subject findRenamed(const View& view, Position position) {
  Subject subject = findSubject(view.kind, view.scan(), view.offsetOf(position));
  if (ownRole(subject.role) == Role::nothing || subject.name.empty()) subject.role = Role::nothing;
  return subject;
}

/// Calls `use(role, item)` for each text that names a node or graph input.
template <class Use>
void forEachName(const View& view, Use&& use) {
  const JsonScan& scan = view.scan();
  // Only members called so can be names: the others need no path.
  for (std::uint32_t i = 0; i < scan.items().size(); ++i) {
    if (scan[i].kind != JsonScan::Kind::string || !scan[i].hasKey()) continue;
    const std::string key = scan.keyOf(i);
    if (key != "name" && key != "node" && key != "graphInput") continue;
    use(roleOf(view.kind, false, pathOf(scan, i)), i);
  }
}

}  // namespace

Json prepareRename(const View& view, Position position) {
  const Subject subject = findRenamed(view, position);
  if (subject.role == Role::nothing) return nullptr;
  return Json::object(
      {{"range", view.rangeOf(insideOf(view.scan(), subject.place.literal))}, {"placeholder", subject.name}});
}

Json rename(const View& view, Position position, const std::string& name, bool hasVersions) {
  const Subject subject = findRenamed(view, position);
  if (subject.role == Role::nothing)
    throw RequestError(ErrorCode::invalidParams, "only nodes and graph inputs are renamed");
  if (name.empty()) throw RequestError(ErrorCode::invalidParams, "a name is not empty");
  Json edits = Json::array();
  const std::string quoted = Json(name).dump(-1, ' ', false, Json::error_handler_t::replace);
  forEachName(view, [&](Role role, std::uint32_t item) {
    if (ownRole(role) != ownRole(subject.role)) return;
    const std::string other = view.scan().textOf(item);
    if (other == name && name != subject.name && role == ownRole(role))
      throw RequestError(ErrorCode::invalidParams, "the name `" + name + "` is taken");
    if (other != subject.name) return;
    edits.push_back(Json::object({{"range", view.rangeOf(view.scan()[item].span())}, {"newText", quoted}}));
  });
  return workspaceEdit(view.document, std::move(edits), hasVersions);
}

Json workspaceEdit(const OpenDocument& document, Json edits, bool hasVersions) {
  if (!hasVersions) {
    Json changes = Json::object();
    changes[document.uri()] = std::move(edits);
    return Json::object({{"changes", std::move(changes)}});
  }
  Json change = Json::object(
      {{"textDocument", Json::object({{"uri", document.uri()}, {"version", document.version()}})},
       {"edits", std::move(edits)}});
  return Json::object({{"documentChanges", Json::array({std::move(change)})}});
}

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
