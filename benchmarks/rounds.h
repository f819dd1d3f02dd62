#pragma once

// Times rounds by Google Benchmark.

#include "benchmarks/case.h"

namespace TolmSDK::Graphics::sfg::benchmarks {

/// Figures of work, of what it is compared with, and of its memory. `seconds` is about what the measured
/// repetitions take together; a long round is measured fewer times. Throws what() of a round that threw as a
/// runtime_error. One measurement at a time in a process.
Figures measureWork(const Work& work, double seconds);

/// Figures of two rounds, one for the time and one for the memory: for work that takes long.
Figures measureLargeWork(const Work& work);

}  // namespace TolmSDK::Graphics::sfg::benchmarks
