#include "tests/numbers/agreement.h"

#include <cmath>
#include <span>
#include <sstream>

#include "tests/numbers/compute_shader.h"

namespace numbers_test {

namespace {

constexpr std::size_t kMostOnEdge = kSamples / 32;

std::string describe(Row const& row, std::span<float const> sample) {
  std::ostringstream text;
  text.precision(9);
  std::size_t at = 0;
  for (Input const& input : row.inputs) {
    text << (at == 0 ? "" : ", ") << input.name << " =";
    for (std::size_t i = 0; i < componentCount(input.type); ++i) {
      text << ' ' << sample[at++];
    }
  }
  return text.str();
}

// What is off, with the value that is furthest off for its tolerance.
struct Differences {
  std::size_t count = 0;
  double worst = 0.0;
  std::string report;

  void add(Row const& row, double got, double expected, std::string const& place,
           std::span<float const> sample) {
    double const allowed = row.tolerance.absolute + row.tolerance.relative * std::abs(expected);
    double const difference = std::abs(got - expected);
    if (difference <= allowed) {
      return;
    }
    ++count;
    double const excess = std::isfinite(difference) ? difference / (allowed + 1e-300) : HUGE_VAL;
    if (report.empty() || excess > worst) {
      worst = excess;
      std::ostringstream text;
      text.precision(9);
      text << place << ": got " << got << ", expected " << expected << ", off by " << difference
           << ", allowed " << allowed << "\n  with " << describe(row, sample);
      report = text.str();
    }
  }
};

}  // namespace

testing::AssertionResult agree(Row const& row, std::vector<float> const& inputs,
                               std::vector<float> const& outputs) {
  std::size_t const inputCount = inputs.size() / kSamples;
  std::size_t const outputCount = outputs.size() / kSamples;
  std::size_t onEdge = 0;
  Differences differences;
  for (std::size_t i = 0; i < kSamples; ++i) {
    std::span<float const> const values = std::span(inputs).subspan(i * inputCount, inputCount);
    Sample const sample(row.inputs, values);
    if (row.onEdge && row.onEdge(sample)) {
      ++onEdge;
      continue;
    }
    std::vector<double> const expected = row.reference(sample).values();
    if (expected.size() != outputCount) {
      return testing::AssertionFailure()
             << "the reference has " << expected.size() << " components, the outputs have " << outputCount;
    }
    for (std::size_t c = 0; c < outputCount; ++c) {
      std::string const place = "sample " + std::to_string(i) + ", component " + std::to_string(c);
      differences.add(row, static_cast<double>(outputs[i * outputCount + c]), expected[c], place, values);
    }
  }
  if (differences.count > 0) {
    return testing::AssertionFailure() << differences.count << " values out of tolerance ("
                                       << row.tolerance.reason << "); the worst: " << differences.report;
  }
  if (onEdge > kMostOnEdge) {
    return testing::AssertionFailure() << "the row leaves out " << onEdge << " samples as too near to a jump";
  }
  return testing::AssertionSuccess();
}

// The rows for a profile: those of its own level of detail or else those for all.
std::vector<Row const*> rowsFor(Topic const& topic, FragmentProfile const& profile) {
  std::vector<Row const*> own;
  std::vector<Row const*> general;
  for (Row const& row : topic.rows) {
    if (row.fragment == profile.fragment) {
      if (row.lod == profile.lod) {
        own.push_back(&row);
      } else if (row.lod < 0.0) {
        general.push_back(&row);
      }
    }
  }
  return own.empty() ? general : own;
}

std::string describe(FragmentProfile const& profile) {
  std::ostringstream text;
  text << profile.fragment << " (" << profile.profile << ", level of detail " << profile.lod << ")";
  return text.str();
}

}  // namespace numbers_test
