#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace pictures {

/// A folder of its own, for as long as a test lives.
class TestFolder {
public:
  TestFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "sfg_pictures_XXXXXX").string();
    path_ = mkdtemp(pattern.data());
  }
  ~TestFolder() { std::filesystem::remove_all(path_); }
  TestFolder(const TestFolder&) = delete;
  TestFolder& operator=(const TestFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  std::filesystem::path write(const std::string& name, const std::string& bytes) const {
    std::ofstream(path_ / name, std::ios::binary) << bytes;
    return path_ / name;
  }

private:
  std::filesystem::path path_;
};

}  // namespace pictures
