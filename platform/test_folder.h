#pragma once

// A folder for the files of one test.

#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <string_view>

#include "tolmsdk/unicode.h"

namespace TolmSDK {

/// A new empty folder below the system's folder for temporary files; gone with this object.
class TestFolder {
public:
  TestFolder() {
    std::random_device random;
    do {
      path_ = std::filesystem::temp_directory_path() / ("sfg_test_" + std::to_string(random()));
    } while (!std::filesystem::create_directory(path_));
  }
  ~TestFolder() { std::filesystem::remove_all(path_); }
  TestFolder(const TestFolder&) = delete;
  TestFolder& operator=(const TestFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  WString text() const { return fromUtf8(path_.string()); }
  /// The full path of a file in the folder.
  WString file(std::string_view name) const { return fromUtf8((path_ / name).string()); }
  /// Writes a file; answers its full path.
  WString write(std::string_view name, std::string_view bytes) const {
    std::ofstream(path_ / name, std::ios::binary) << bytes;
    return file(name);
  }

private:
  std::filesystem::path path_;
};

}  // namespace TolmSDK
