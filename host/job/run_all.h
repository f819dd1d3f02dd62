#pragma once

// Many things in several threads.

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace TolmSDK::Graphics::sfg::host {

/// Calls `run(i)` for each i below `count`, in several threads. What one throws is thrown when all are done.
template <class Run>
void runAll(std::size_t count, std::size_t threads, const Run& run) {
  std::atomic<std::size_t> next{0};
  std::mutex mutex;
  std::exception_ptr failure;
  const auto work = [&] {
    for (std::size_t i = next++; i < count; i = next++) {
      try {
        run(i);
      } catch (...) {
        const std::lock_guard<std::mutex> lock(mutex);
        if (!failure) failure = std::current_exception();
      }
    }
  };
  std::vector<std::thread> others;
  for (std::size_t i = 1; i < std::min(threads, count); ++i) others.emplace_back(work);
  work();
  for (std::thread& other : others) other.join();
  if (failure) std::rethrow_exception(failure);
}

}  // namespace TolmSDK::Graphics::sfg::host
