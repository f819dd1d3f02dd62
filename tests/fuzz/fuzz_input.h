#pragma once

// What fuzz targets share: their input as text, and the end of a run that finds a fault.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "tolmsdk/unicode.h"

namespace TolmSDK {

/// Ends the process when `holds` is false: that is what fuzzers look for.
inline void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "violated: %s\n", what);
  std::abort();
}

inline std::string_view bytesOf(const std::uint8_t* data, std::size_t size) {
  return size == 0 ? std::string_view() : std::string_view(reinterpret_cast<const char*>(data), size);
}

/// Splits at every separator: one more part than there are separators.
inline std::vector<std::wstring_view> split(std::wstring_view text, wchar_t separator) {
  std::vector<std::wstring_view> parts;
  for (;;) {
    const std::size_t end = text.find(separator);
    parts.push_back(text.substr(0, end));
    if (end == std::wstring_view::npos) return parts;
    text.remove_prefix(end + 1);
  }
}

}  // namespace TolmSDK
