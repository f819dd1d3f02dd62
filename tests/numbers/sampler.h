#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "tests/numbers/row.h"

namespace numbers_test {

// `count` samples of the inputs, one behind the other. The same for the same seed text on every machine.
std::vector<float> drawSamples(std::vector<Input> const& inputs, std::size_t count, std::string_view seed);

}  // namespace numbers_test
