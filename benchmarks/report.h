#pragma once

// What a benchmark run leaves behind: a table on the terminal and a plot of cost against size.

#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>
#include <vector>

namespace TolmSDK::Graphics::sfg::benchmarks {

/// One measured run.
struct Measurement {
  std::string family;  ///< "chain"
  double size = 0;     ///< N; 0 for a case without sizes
  double seconds = 0;  ///< per iteration
  benchmark::UserCounters counters;
};

/// Prints a table row per run, and afterwards the growth of every family with sizes.
class TableReporter : public benchmark::BenchmarkReporter {
public:
  bool ReportContext(const Context& context) override;
  void ReportRuns(const std::vector<Run>& runs) override;
  void Finalize() override;

  const std::vector<Measurement>& measurements() const noexcept { return measurements_; }
  bool anyFailed() const noexcept { return anyFailed_; }

private:
  std::vector<Measurement> measurements_;
  bool anyFailed_ = false;
};

/// Exponent of the growth with size of a counter that holds seconds (of the mean time, for a case without it)
/// between two measurements: 1 is linear.
double growthExponent(const Measurement& small, const Measurement& large, const char* counter);

/// Writes seconds against N of every family with at least two sizes, both axes logarithmic. False when the
/// file cannot be written.
bool writePlot(const std::string& file, const std::vector<Measurement>& measurements);

}  // namespace TolmSDK::Graphics::sfg::benchmarks
