#pragma once

// Contents of files, known without reading them again as long as size and time stay.

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace TolmSDK::Graphics::sfg::host {

/// A time of 0 is equal to none: the file was so new that it may have changed again without a new time.
struct FileStamp {
  std::uint64_t size = 0;
  std::int64_t time = 0;

  bool isSame(const FileStamp& other) const { return time != 0 && size == other.size && time == other.time; }
};

/// Nothing for what is no regular file.
std::optional<FileStamp> stampOf(const std::string& file);
/// Nothing for a file that cannot be read.
std::optional<std::string> readBytes(const std::string& file);

struct FileMark {
  FileStamp stamp;
  std::string hash;
};

/// Hashes of files, each read once in a round at most. Any number of threads may use it.
class FileHashes {
public:
  /// From earlier rounds.
  void add(const std::string& file, FileMark mark) { known_[file] = std::move(mark); }

  /// Empty for a file that cannot be read.
  std::string hashOf(const std::string& file);
  /// The text of a file, whose hash is known from now on.
  std::optional<std::string> read(const std::string& file, std::string& hash);

  /// What was learnt since the last call.
  std::vector<std::pair<std::string, FileMark>> takeLearnt();

private:
  void learn(const std::string& file, const FileMark& mark);

  std::mutex mutex_;
  std::unordered_map<std::string, FileMark> known_;    // of earlier rounds
  std::unordered_map<std::string, std::string> seen_;  // hashes in this round
  std::vector<std::pair<std::string, FileMark>> learnt_;
};

}  // namespace TolmSDK::Graphics::sfg::host
