#include "platform/named_pipe.h"

#include <system_error>

#include "tolmsdk/read_limits.h"

#if __has_include(<poll.h>)
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#endif

namespace TolmSDK {

namespace fs = std::filesystem;

#if __has_include(<poll.h>)

namespace {

class Descriptor {
public:
  explicit Descriptor(const fs::path& path)
      : number_(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {}
  ~Descriptor() {
    if (number_ >= 0) close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  bool isOpen() const noexcept { return number_ >= 0; }
  ssize_t read(char* bytes, std::size_t count) const { return ::read(number_, bytes, count); }
  /// Until there is something to read, or the time is over.
  void wait(int milliseconds) const {
    pollfd one = {number_, POLLIN, 0};
    poll(&one, 1, milliseconds);
  }

private:
  int number_;
};

}  // namespace

bool isNamedPipe(const fs::path& path) {
  std::error_code error;
  return fs::is_fifo(path, error) && !fs::canonical(path, error).empty();
}

PipeEnd readNamedPipe(const fs::path& path, std::string& bytes) {
  using Clock = std::chrono::steady_clock;
  constexpr std::chrono::seconds kPatience(5);
  constexpr int kPause = 20;
  constexpr std::size_t kStep = std::size_t{1} << 16;
  const Descriptor pipe(path);
  if (!pipe.isOpen()) return PipeEnd::failed;
  const Clock::time_point start = Clock::now();
  bool hasWriter = false;
  while (bytes.size() <= readLimits().fileBytes) {
    const std::size_t before = bytes.size();
    bytes.resize(before + kStep);
    const ssize_t count = pipe.read(bytes.data() + before, kStep);
    const int error = errno;
    bytes.resize(before + (count > 0 ? static_cast<std::size_t>(count) : 0));
    if (count > 0) {
      hasWriter = true;
    } else if (count < 0 && error == EAGAIN) {
      hasWriter = true;
      pipe.wait(-1);
    } else if (count < 0 && error != EINTR) {
      return PipeEnd::failed;
    } else if (count == 0 && hasWriter) {
      return PipeEnd::read;
    } else if (count == 0) {
      if (Clock::now() - start > kPatience) return PipeEnd::noWriter;
      // With no writer there is nothing to wait for.
      poll(nullptr, 0, kPause);
    }
  }
  return PipeEnd::read;
}

#else

bool isNamedPipe(const fs::path&) { return false; }
PipeEnd readNamedPipe(const fs::path&, std::string&) { return PipeEnd::failed; }

#endif

}  // namespace TolmSDK
