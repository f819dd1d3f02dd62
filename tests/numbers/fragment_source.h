#pragma once

#include <cstddef>
#include <cstdint>
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
};

// The profiles that a file of library/ ("math.fraglib") offers, in file order.
std::vector<FragmentProfile> profilesIn(std::string const& file);

// What the generator makes of a graph of this one fragment, whose inputs are graph inputs: the collapsed
// function over the inputs of the row. Throws std::runtime_error when the row does not fit the fragment; what
// the row does not name is zero, and textures are that of reference_texture.h.
Function collapsedFunction(FragmentProfile const& profile, Row const& row);

// The same of a surface, collapsed by the light loop under the lights of an environment document.
Function litFunction(FragmentProfile const& profile, Row const& row, std::string const& environmentFile,
                     double lightLod = 100.0);

// The text of an include file of library/ with what it includes.
std::string includeText(std::string const& name);

// Compiles a compute shader with the entry point "main" to validated SPIR-V. Throws std::runtime_error with
// the compiler's complaints and the text.
std::vector<std::uint32_t> compileCompute(std::string const& hlsl);

}  // namespace numbers_test
