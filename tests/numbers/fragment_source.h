#pragma once

#include <string>
#include <vector>

#include "tests/numbers/compute_shader.h"
#include "tests/numbers/row.h"

namespace numbers_test {

// One profile of a fragment of the standard library.
struct FragmentProfile {
  std::string fragment;
  std::string profile;
  double lod = 100.0;
  std::size_t index = 0;  // among the profiles of the fragment
};

// The profiles that a file of library/ ("math.fraglib") offers, in file order.
std::vector<FragmentProfile> profilesIn(std::string const& file);

// The profile as a function over the inputs of the row. Throws std::runtime_error when the row does not fit.
Function functionOf(std::string const& file, FragmentProfile const& profile, Row const& row);

}  // namespace numbers_test
