#pragma once

// What a benchmark run leaves behind: tables on the terminal, figures as JSON, a plot of cost against size.

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "benchmarks/measure.h"

namespace TolmSDK::Graphics::sfg::benchmarks {

/// One case of one size, measured of one state of the program.
struct Row {
  std::string caseName;
  std::size_t size = 0;                     ///< 0 for a case without sizes
  std::string state;                        ///< empty when only one is measured
  std::map<std::string, Outcome> outcomes;  ///< by allocator: "default", "keep"

  bool failed() const;
  bool stopped() const;
};

void printHeading(bool hasStates);
/// Cells of two allocators stand in one column, the default one's first.
void printRow(const Row& row, bool hasStates);
/// The times of one row in terms of those of another.
void printComparison(const Row& before, const Row& now);
/// The exponent of the growth of the best round's time from one row to another; 1 is linear.
double growthExponent(const Row& small, const Row& large);
/// The exponents of each case's growth.
void printGrowth(const std::vector<Row>& rows);

/// Each false when the file cannot be written.
bool writeJson(const std::string& file, const std::vector<Row>& rows);
/// Seconds of the best round against N of every case with at least two sizes, both axes logarithmic.
bool writePlot(const std::string& file, const std::vector<Row>& rows);

}  // namespace TolmSDK::Graphics::sfg::benchmarks
