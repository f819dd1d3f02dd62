#include "host/build/output_file.h"

#include <atomic>
#include <cerrno>
#include <fstream>
#include <random>
#include <system_error>

#include "sfg/host/output.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

namespace fs = std::filesystem;

/// Nothing, or why they could not be written.
std::optional<std::string> writeBytes(const fs::path& path, std::string_view bytes) {
  errno = 0;
  std::ofstream stream(path, std::ios::binary | std::ios::trunc);
  stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  stream.close();
  if (stream) return std::nullopt;
  return std::error_code(errno, std::generic_category()).message();
}

/// Of this process alone, also among those of other machines that share a folder.
const std::string& processName() {
  static const std::string name = [] {
    std::random_device random;
    return std::to_string(random()) + "-" + std::to_string(random());
  }();
  return name;
}

/// No longer than a file's name may be, whatever the target's is.
fs::path temporaryIn(const fs::path& folder) {
  static std::atomic<unsigned long> count{0};
  return folder / (".sfg-" + processName() + "-" + std::to_string(count++) + ".part");
}

}  // namespace

std::optional<std::string> replaceStamped(const fs::path& target, std::string_view bytes,
                                          const fs::path& folder, FileStamp& stamp) {
  const fs::path temporary = temporaryIn(folder.empty() ? target.parent_path() : folder);
  std::error_code error;
  if (std::optional<std::string> reason = writeBytes(temporary, bytes)) {
    fs::remove(temporary, error);
    return reason;
  }
  const fs::file_status status = fs::status(target, error);
  if (fs::exists(status)) fs::permissions(temporary, status.permissions(), error);
  stamp = stampOf(temporary.string()).value_or(FileStamp());
  fs::rename(temporary, target, error);
  if (!error) return std::nullopt;
  std::string reason = error.message();
  fs::remove(temporary, error);
  return reason;
}

std::optional<std::string> replaceFile(const fs::path& target, std::string_view bytes,
                                       const fs::path& folder) {
  FileStamp stamp;
  return replaceStamped(target, bytes, folder, stamp);
}

}  // namespace TolmSDK::Graphics::sfg::host
