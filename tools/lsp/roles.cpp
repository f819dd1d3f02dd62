#include "tools/lsp/roles.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

namespace {

using host::DocumentKind;

struct Rule {
  DocumentKind kind;
  bool isKey;
  std::string_view path;
  Role role;
};

constexpr Rule kRules[] = {
    {DocumentKind::graph, true, "nodes/*/inputs/*", Role::input},
    {DocumentKind::graph, false, "nodes/*/fragment", Role::fragment},
    {DocumentKind::graph, false, "preprocess/*", Role::fragment},
    {DocumentKind::graph, false, "postprocess/*", Role::fragment},
    {DocumentKind::graph, false, "nodes/*/name", Role::newNode},
    {DocumentKind::graph, false, "nodes/*/inputs/*/node", Role::node},
    {DocumentKind::graph, false, "outputs/*/node", Role::node},
    {DocumentKind::graph, false, "nodes/*/inputs/*/output", Role::output},
    {DocumentKind::graph, false, "outputs/*/output", Role::output},
    {DocumentKind::graph, false, "nodes/*/inputs/*/graphInput", Role::graphInput},
    {DocumentKind::graph, false, "inputs/*/name", Role::newGraphInput},
    {DocumentKind::environment, false, "lights/*/fragment", Role::fragment},
    {DocumentKind::environment, false, "output", Role::fragment},
    {DocumentKind::environment, false, "lights/*/profile", Role::profile},
    {DocumentKind::library, true, "*", Role::newFragment},
    {DocumentKind::library, true, "*/ports/*", Role::port},
    {DocumentKind::library, false, "*/includes/*", Role::include},
    {DocumentKind::library, false, "*/profiles/*/includes/*", Role::include},
    {DocumentKind::library, false, "*/language/*", Role::language},
    {DocumentKind::library, false, "*/profiles/*/language/*", Role::language},
    {DocumentKind::library, false, "*/name", Role::profile},
    {DocumentKind::library, false, "*/profiles/*/name", Role::profile},
};

}  // namespace

Role roleOf(DocumentKind kind, bool isKey, const JsonPath& path) {
  for (const Rule& rule : kRules) {
    if (rule.kind == kind && rule.isKey == isKey && matches(path, rule.path)) return rule.role;
  }
  return isKey ? Role::key : Role::nothing;
}

Subject findSubject(DocumentKind kind, const JsonScan& scan, std::size_t offset) {
  Subject subject;
  subject.place = findTouched(scan, offset);
  if (subject.place.at == JsonPlace::At::nothing) return subject;
  const bool isKey = subject.place.at == JsonPlace::At::key;
  const bool isText = isKey || scan[subject.place.item].kind == JsonScan::Kind::string;
  subject.path = pathOf(scan, subject.place.item);
  subject.name = isKey ? scan.keyOf(subject.place.item) : scan.textOf(subject.place.item);
  if (isText) subject.role = roleOf(kind, isKey, subject.path);
  return subject;
}

Span insideOf(const JsonScan& scan, Span literal) {
  const std::string_view text = scan.text().substr(literal.begin, literal.size());
  if (text.empty() || text.front() != '"') return literal;
  const bool isClosed = text.size() > 1 && text.back() == '"';
  return {literal.begin + 1, literal.end - (isClosed ? 1 : 0)};
}

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
