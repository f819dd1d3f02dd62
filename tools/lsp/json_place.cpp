#include "tools/lsp/json_place.h"

#include <algorithm>

namespace TolmSDK::Graphics::sfg::tools::lsp {

namespace {

using Item = JsonScan::Item;
using Kind = JsonScan::Kind;

/// Whether the place is between the brackets.
bool isInside(const Item& container, std::size_t offset) {
  const std::size_t end = container.isClosed ? container.end - 1 : container.end;
  return offset > container.begin && offset <= end;
}

/// The innermost container that is open at the place; `last` begins in front of it.
std::uint32_t containerAt(const JsonScan& scan, std::uint32_t last, std::size_t offset) {
  while (last != JsonScan::kNone && !(scan[last].isContainer() && isInside(scan[last], offset)))
    last = scan[last].parent;
  return last;
}

/// Whether a literal is being typed there: a string behind its first mark, in front of its last one.
bool isTyping(const JsonScan& scan, Span literal, std::size_t offset) {
  if (literal.size() == 0) return false;
  const std::string_view text = scan.text().substr(literal.begin, literal.size());
  if (text.front() != '"') return offset >= literal.begin && offset <= literal.end;
  const bool isClosed = text.size() > 1 && text.back() == '"';
  return offset > literal.begin && offset <= literal.end - (isClosed ? 1 : 0);
}

bool isTouching(const JsonScan&, Span literal, std::size_t offset) {
  return literal.size() > 0 && offset >= literal.begin && offset <= literal.end;
}

template <class Test>
JsonPlace findLiteral(const JsonScan& scan, std::size_t offset, Test&& test) {
  JsonPlace place;
  const std::uint32_t last = scan.lastBefore(offset);
  if (last == JsonScan::kNone) return place;
  const Item& item = scan[last];
  place.container = item.parent;
  if (!item.isContainer() && test(scan, item.span(), offset)) {
    place.at = JsonPlace::At::value;
    place.literal = item.span();
    place.item = last;
  } else if (item.hasKey() && test(scan, item.keySpan(), offset)) {
    place.at = JsonPlace::At::key;
    place.literal = item.keySpan();
    place.item = last;
  } else {
    place.container = containerAt(scan, last, offset);
  }
  return place;
}

}  // namespace

JsonPath pathOf(const JsonScan& scan, std::uint32_t item) {
  JsonPath path;
  for (; item != JsonScan::kNone && scan[item].parent != JsonScan::kNone && path.size() <= kLongestPath;
       item = scan[item].parent)
    path.push_back(scan[item].hasKey() ? scan.keyOf(item) : "*");
  std::reverse(path.begin(), path.end());
  return path;
}

bool matches(const JsonPath& path, std::string_view pattern) {
  for (std::size_t i = 0; i < path.size(); ++i) {
    const std::size_t end = pattern.find('/');
    const std::string_view wanted = pattern.substr(0, end);
    if (wanted.empty() || (wanted != "*" && wanted != path[i])) return false;
    pattern.remove_prefix(end == pattern.npos ? pattern.size() : end + 1);
  }
  return pattern.empty();
}

JsonPlace findTouched(const JsonScan& scan, std::size_t offset) {
  return findLiteral(scan, offset, isTouching);
}

JsonPlace findTyped(const JsonScan& scan, std::size_t offset) {
  offset = std::min(offset, scan.text().size());
  JsonPlace place = findLiteral(scan, offset, isTyping);
  if (place.at != JsonPlace::At::nothing || place.container == JsonScan::kNone) return place;
  const std::size_t before =
      offset == 0 ? std::string_view::npos : scan.text().find_last_not_of(" \t\r\n", offset - 1);
  if (before == std::string_view::npos) return place;
  place.literal = {offset, offset};
  const bool isObject = scan[place.container].kind == Kind::object;
  switch (scan.text()[before]) {
  case ':':
    // Of the member that the colon belongs to. A value behind the place keeps it from being a new one.
    if (const std::uint32_t member = scan.lastBefore(before);
        member != JsonScan::kNone && scan[member].hasColon && scan[member].kind == Kind::missing) {
      place.at = JsonPlace::At::value;
      place.item = member;
    }
    break;
  case '{':
  case '[':
  case ',': place.at = isObject ? JsonPlace::At::key : JsonPlace::At::value; break;
  default: break;
  }
  return place;
}

JsonPath pathOf(const JsonScan& scan, const JsonPlace& place) {
  if (place.item != JsonScan::kNone && place.at == JsonPlace::At::value) return pathOf(scan, place.item);
  JsonPath path = pathOf(scan, place.container);
  if (place.at == JsonPlace::At::value) path.emplace_back("*");
  return path;
}

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
