#pragma once

// Counts what this program and every library in it allocate.

#include <cstddef>

namespace TolmSDK::Graphics::sfg::benchmarks {

struct MemoryReading {
  std::size_t allocations = 0;  ///< calls since the meter was started
  std::size_t peakBytes = 0;    ///< most that was held at once above what was held at the start
};

/// Has the C library keep what is freed for what is allocated next. Otherwise a round of many megabytes gives
/// its memory back, and the next one pays for the kernel's clearing of the same pages again, while a small
/// round finds its memory at hand.
void keepFreedMemory();

/// Starts counting anew. One meter per process; other threads count too.
void startMemoryMeter();
MemoryReading readMemoryMeter();

}  // namespace TolmSDK::Graphics::sfg::benchmarks
