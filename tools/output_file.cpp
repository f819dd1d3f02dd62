#include "tools/output_file.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>

#include "sfg/host/errors.h"
#include "sfg/host/output.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void cannotWrite(const std::string& file, const std::string& reason) {
  throw host::InputError(file, TextPosition(), "cannot be written: " + reason, "cannot-write");
}

/// The system's words for what went wrong last; the streams do not keep them.
std::string lastReason() { return std::error_code(errno, std::generic_category()).message(); }

/// Nothing, or why they could not be written.
std::optional<std::string> writeBytes(const fs::path& path, std::string_view bytes) {
  errno = 0;
  std::ofstream stream(path, std::ios::binary | std::ios::trunc);
  if (stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size())).flush()) return std::nullopt;
  return lastReason();
}

/// Devices and pipes are written in place; only a regular file is replaced, a symbolic link's target
/// included.
bool isReplaceable(const fs::path& path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  return status.type() == fs::file_type::not_found || status.type() == fs::file_type::regular;
}

bool isSameFile(const fs::path& a, const fs::path& b) {
  std::error_code error;
  if (fs::exists(a, error) && fs::exists(b, error)) return fs::equivalent(a, b, error);
  return fs::weakly_canonical(fs::absolute(a), error) == fs::weakly_canonical(fs::absolute(b), error);
}

/// A file that writing would replace.
bool isFile(const std::string& name) { return !name.empty() && isReplaceable(name); }

/// Holds back the signals that end a program while a file is written under another name: it is not left
/// behind.
class SignalsHeld {
#if defined(_WIN32)
public:
  SignalsHeld() {}
};
#else
public:
  SignalsHeld() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&signals, signal);
    pthread_sigmask(SIG_BLOCK, &signals, &before_);
  }
  ~SignalsHeld() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  SignalsHeld(const SignalsHeld&) = delete;
  SignalsHeld& operator=(const SignalsHeld&) = delete;

private:
  sigset_t before_;
};
#endif

}  // namespace

void writeOutput(const std::string& file, std::string_view bytes) {
  if (file.empty()) {
    errno = 0;
    std::cout.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!std::cout.flush()) cannotWrite("standard output", lastReason());
  } else if (isReplaceable(file)) {
    std::error_code error;
    const fs::path target = fs::weakly_canonical(file, error);
    const SignalsHeld held;
    const auto reason = host::replaceFile(error ? fs::path(file) : target, bytes);
    if (reason) cannotWrite(file, *reason);
  } else if (const std::optional<std::string> reason = writeBytes(file, bytes)) {
    cannotWrite(file, *reason);
  }
}

void checkOutputs(std::span<const std::string> outputs, std::span<const std::string> inputs) {
  for (auto output = outputs.begin(); output != outputs.end(); ++output) {
    if (!isFile(*output)) continue;
    const auto isThis = [&](const std::string& other) {
      return !other.empty() && isSameFile(*output, other);
    };
    if (std::any_of(inputs.begin(), inputs.end(), isThis)) {
      throw host::InputError(*output, TextPosition(), "is read by this command; write to another file",
                             "cannot-write");
    }
    if (std::any_of(outputs.begin(), output, isThis)) {
      throw host::InputError(*output, TextPosition(), "is named for two results; write to two files",
                             "cannot-write");
    }
  }
}

void checkFolder(const std::string& file) {
  const fs::path folder = fs::path(file).parent_path();
  std::error_code error;
  if (folder.empty() || fs::is_directory(folder, error)) return;
  const bool isThere = fs::exists(folder, error);
  cannotWrite(
      file, std::make_error_code(isThere ? std::errc::not_a_directory : std::errc::no_such_file_or_directory)
                .message());
}

}  // namespace TolmSDK::Graphics::sfg::tools
