#include "tools/output_file.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iostream>

#include "sfg/host/errors.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void cannotWrite(const std::string& file, const std::string& reason) {
  throw host::InputError(file, TextPosition(), "cannot be written: " + reason, "cannot-write");
}

bool writeBytes(const fs::path& path, std::string_view bytes) {
  std::ofstream stream(path, std::ios::binary | std::ios::trunc);
  stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return stream.flush().good();
}

/// Devices and pipes are written in place; only a regular file is replaced, a symbolic link's target
/// included.
bool isReplaceable(const fs::path& path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  return status.type() == fs::file_type::not_found || status.type() == fs::file_type::regular;
}

void replaceFile(const std::string& file, const fs::path& target, std::string_view bytes) {
  fs::path temporary = target;
  temporary += ".part" + std::to_string(getpid());
  std::error_code error;
  if (!writeBytes(temporary, bytes)) {
    fs::remove(temporary, error);
    cannotWrite(file, "the folder is missing, not writable or full");
  }
  const fs::perms permissions = fs::status(target, error).permissions();
  if (!error && fs::exists(target)) fs::permissions(temporary, permissions, error);
  fs::rename(temporary, target, error);
  if (!error) return;
  const std::string reason = error.message();
  fs::remove(temporary, error);
  cannotWrite(file, reason);
}

}  // namespace

void writeOutput(const std::string& file, std::string_view bytes) {
  if (file.empty()) {
    std::cout.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!std::cout.flush()) cannotWrite("standard output", "the stream is closed or full");
  } else if (isReplaceable(file)) {
    std::error_code error;
    const fs::path target = fs::weakly_canonical(file, error);
    replaceFile(file, error ? fs::path(file) : target, bytes);
  } else if (!writeBytes(file, bytes)) {
    cannotWrite(file, "it is no file, or not writable");
  }
}

}  // namespace TolmSDK::Graphics::sfg::tools
