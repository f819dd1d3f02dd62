#pragma once

// Counts what this program and every library in it allocate.

#include <cstddef>

namespace TolmSDK::Graphics::sfg::benchmarks {

struct MemoryReading {
  std::size_t allocations = 0;  ///< calls since the meter was started
  std::size_t peakBytes = 0;    ///< most that was held at once above what was held at the start
};

/// Starts counting anew. One meter per process; other threads count too.
void startMemoryMeter();
MemoryReading readMemoryMeter();

}  // namespace TolmSDK::Graphics::sfg::benchmarks
