#include "import/element.h"

#include <algorithm>
#include <utility>

namespace TolmSDK::Graphics::sfg::materialx {

namespace {

std::vector<std::size_t> lineStartsOf(std::string_view text) {
  std::vector<std::size_t> starts{0};
  for (std::size_t at = text.find('\n'); at != std::string_view::npos; at = text.find('\n', at + 1)) {
    starts.push_back(at + 1);
  }
  return starts;
}

}  // namespace

void SourceFile::locate(std::size_t offset, std::size_t& line, std::size_t& column) const {
  const auto next = std::upper_bound(lineStarts.begin(), lineStarts.end(), offset);
  line = static_cast<std::size_t>(next - lineStarts.begin());
  const std::size_t start = *(next - 1);
  const std::size_t end = std::min(offset, text.size());
  const std::string_view before =
      std::string_view(text).substr(std::min(start, end), end - std::min(start, end));
  const auto isFirst = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0u) != 0x80u; };
  column = 1 + static_cast<std::size_t>(std::count_if(before.begin(), before.end(), isFirst));
}

std::string_view Element::attribute(std::string_view key) const {
  for (const Attribute& entry : attributes) {
    if (entry.name == key) return entry.value;
  }
  return {};
}

bool Element::has(std::string_view key) const {
  return std::any_of(attributes.begin(), attributes.end(),
                     [&](const Attribute& entry) { return entry.name == key; });
}

void Element::set(std::string_view key, std::string_view value) {
  for (Attribute& entry : attributes) {
    if (entry.name == key) return void(entry.value = value);
  }
  attributes.push_back({std::string(key), std::string(value)});
}

void Element::remove(std::string_view key) {
  std::erase_if(attributes, [&](const Attribute& entry) { return entry.name == key; });
}

Element* Element::child(std::string_view childCategory, std::string_view childName) const {
  for (Element* const element : children) {
    if (element->category == childCategory && element->name == childName) return element;
  }
  return nullptr;
}

ElementTree::ElementTree() {
  elements_.emplace_back().category = "materialx";
  elements_.front().scope = &addScope({});
  elements_.front().file = &addFile({}, {});
}

Element& ElementTree::add(Element& parent, std::string category, const SourceFile* file, std::size_t offset) {
  Element& element = elements_.emplace_back();
  element.category = std::move(category);
  element.parent = &parent;
  element.file = file;
  element.offset = offset;
  element.scope = parent.scope;
  parent.children.push_back(&element);
  return element;
}

Element& ElementTree::addLike(Element& parent, std::string category, const Element& place) {
  Element& element = add(parent, std::move(category), place.file, place.offset);
  element.scope = place.scope;
  return element;
}

SourceFile& ElementTree::addFile(std::string name, std::string text) {
  SourceFile& file = files_.emplace_back();
  file.name = std::move(name);
  file.text = std::move(text);
  file.lineStarts = lineStartsOf(file.text);
  return file;
}

const ElementScope& ElementTree::addScope(ElementScope scope) {
  return scopes_.emplace_back(std::move(scope));
}

void Reports::error(const Element& place, std::string text, std::string kind, std::string suggestion) {
  tell(host::Severity::error, place, std::move(text), std::move(kind), std::move(suggestion));
}

void Reports::warning(const Element& place, std::string text, std::string kind, std::string suggestion) {
  tell(host::Severity::warning, place, std::move(text), std::move(kind), std::move(suggestion));
}

void Reports::note(const Element& place, std::string text, std::string kind) {
  tell(host::Severity::note, place, std::move(text), std::move(kind), {});
}

void Reports::add(host::Diagnostic diagnostic) { all_.push_back(std::move(diagnostic)); }

void Reports::tell(host::Severity severity, const Element& place, std::string text, std::string kind,
                   std::string suggestion) {
  host::Diagnostic diagnostic;
  diagnostic.severity = severity;
  diagnostic.file = place.file->name;
  place.file->locate(place.offset, diagnostic.line, diagnostic.column);
  diagnostic.text = std::move(text);
  if (!suggestion.empty()) {
    diagnostic.text.append("; did you mean `").append(suggestion).append("`?");
  }
  diagnostic.identifier = std::move(kind);
  diagnostic.suggestion = std::move(suggestion);
  all_.push_back(std::move(diagnostic));
}

}  // namespace TolmSDK::Graphics::sfg::materialx
