#pragma once

// What stands at a place of a JSON text.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tools/lsp/json_scan.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

/// Members by name, elements as "*": from the root to a value.
using JsonPath = std::vector<std::string>;

/// What lies deeper has a path of one step more, which is that of nothing.
inline constexpr std::size_t kLongestPath = 64;

/// Of an item, itself included.
JsonPath pathOf(const JsonScan& scan, std::uint32_t item);
/// "nodes/*/name": "*" stands for any step.
bool matches(const JsonPath& path, std::string_view pattern);

/// The literal that a place is in or beside.
struct JsonPlace {
  enum class At { nothing, key, value };

  At at = At::nothing;
  /// The item; kNone where a new one would begin.
  std::uint32_t item = JsonScan::kNone;
  /// The object or array that holds it; kNone at the top level.
  std::uint32_t container = JsonScan::kNone;
  /// The literal; empty between two.
  Span literal;

  bool isNew() const noexcept { return literal.begin == literal.end; }
};

/// The literal that the place touches: for what is told of it.
JsonPlace findTouched(const JsonScan& scan, std::size_t offset);
/// What would be typed at the place: the literal that it is in, or a key or value that is due there.
JsonPlace findTyped(const JsonScan& scan, std::size_t offset);
/// The path that the key or value at the place has, or would have: that of an object for a new key, of the
/// value for a value.
JsonPath pathOf(const JsonScan& scan, const JsonPlace& place);

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
