#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/numbers/fragment_source.h"
#include "tests/numbers/row.h"

namespace numbers_test {

// Samples of each fragment.
constexpr std::size_t kSamples = 1024;

// Whether the fragment's outputs for kSamples samples are those of the row's reference within its tolerance.
// If not, the message tells how many are off and shows the one that is furthest off.
testing::AssertionResult agree(Row const& row, std::vector<float> const& inputs,
                               std::vector<float> const& outputs);

// The rows for a profile: those of its own level of detail or else those for all.
std::vector<Row const*> rowsFor(Topic const& topic, FragmentProfile const& profile);

std::string describe(FragmentProfile const& profile);

}  // namespace numbers_test
