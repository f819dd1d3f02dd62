#pragma once

// Time that does not depend on what else the machine does.

#include <ctime>

namespace TolmSDK::Graphics::sfg::benchmarks {

/// Processor time of the calling thread since it was made or restarted. A thread that waits for its turn
/// costs nothing.
class Stopwatch {
public:
  Stopwatch() : start_(now()) {}
  void restart() { start_ = now(); }
  double seconds() const { return now() - start_; }

private:
  static double now() {
    std::timespec time;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
  }

  double start_;
};

template <class Round>
double secondsOf(const Round& round) {
  const Stopwatch watch;
  round();
  return watch.seconds();
}

}  // namespace TolmSDK::Graphics::sfg::benchmarks
