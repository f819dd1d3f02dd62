#include "host/build/file_stamps.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <utility>

#include "tolmsdk/sha1.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

namespace fs = std::filesystem;

/// Of the file system's clock: a file that is younger may change again within one tick of it.
constexpr std::chrono::seconds kSettled{2};

}  // namespace

std::optional<FileStamp> stampOf(const std::string& file) {
  std::error_code error;
  const std::uint64_t size = fs::file_size(file, error);
  if (error) return std::nullopt;
  const fs::file_time_type time = fs::last_write_time(file, error);
  if (error) return std::nullopt;
  return FileStamp{size, time.time_since_epoch().count()};
}

std::optional<std::string> readBytes(const std::string& file) {
  std::error_code error;
  const std::uint64_t size = fs::file_size(file, error);
  if (error) return std::nullopt;
  std::ifstream stream(file, std::ios::binary);
  std::string bytes(size, '\0');
  stream.read(bytes.data(), static_cast<std::streamsize>(size));
  bytes.resize(static_cast<std::size_t>(stream.gcount()));
  if (!stream || stream.peek() != std::ifstream::traits_type::eof()) return std::nullopt;
  return bytes;
}

std::string FileHashes::hashOf(const std::string& file) {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (const auto seen = seen_.find(file); seen != seen_.end()) return seen->second;
    const auto known = known_.find(file);
    if (known != known_.end()) {
      const std::optional<FileStamp> now = stampOf(file);
      if (now && known->second.stamp.isSame(*now)) return seen_[file] = known->second.hash;
    }
  }
  std::string hash;
  read(file, hash);
  return hash;
}

std::optional<std::string> FileHashes::read(const std::string& file, std::string& hash) {
  std::optional<FileStamp> stamp = stampOf(file);
  std::optional<std::string> bytes = readBytes(file);
  hash = bytes ? SHA1_GetBytesHash(*bytes) : std::string();
  if (!stamp || !bytes) return bytes;
  const auto age = fs::file_time_type::clock::now().time_since_epoch().count() - stamp->time;
  if (age < fs::file_time_type::duration(kSettled).count()) stamp->time = 0;
  learn(file, {*stamp, hash});
  return bytes;
}

void FileHashes::learn(const std::string& file, const FileMark& mark) {
  const std::lock_guard<std::mutex> lock(mutex_);
  seen_[file] = mark.hash;
  const auto known = known_.find(file);
  const bool isKnown =
      known != known_.end() && known->second.stamp.isSame(mark.stamp) && known->second.hash == mark.hash;
  if (!isKnown) learnt_.emplace_back(file, mark);
}

std::vector<std::pair<std::string, FileMark>> FileHashes::takeLearnt() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return std::exchange(learnt_, {});
}

}  // namespace TolmSDK::Graphics::sfg::host
