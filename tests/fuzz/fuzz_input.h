#pragma once

// What fuzz targets share: their input as text, and the end of a run that finds a fault.

#include <stdlib.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
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

/// A folder with files, for as long as the process runs.
class FuzzFolder {
public:
  explicit FuzzFolder(std::initializer_list<std::pair<const char*, std::string_view>> files = {}) {
    std::string pattern = (std::filesystem::temp_directory_path() / "sfg_fuzz_XXXXXX").string();
    require(mkdtemp(pattern.data()) != nullptr, "a folder can be made");
    path_ = pattern;
    for (const auto& [name, text] : files) write(name, text);
  }
  ~FuzzFolder() { std::filesystem::remove_all(path_); }
  FuzzFolder(const FuzzFolder&) = delete;
  FuzzFolder& operator=(const FuzzFolder&) = delete;

  const std::filesystem::path& path() const noexcept { return path_; }
  std::string file(const char* name) const { return (path_ / name).string(); }
  void write(const char* name, std::string_view text) const {
    std::ofstream(path_ / name, std::ios::binary | std::ios::trunc) << text;
  }

private:
  std::filesystem::path path_;
};

}  // namespace TolmSDK
