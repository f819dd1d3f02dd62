#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/numbers/fragment_source.h"
#include "tests/numbers/row.h"
#include "tests/numbers/vulkan_compute.h"

namespace numbers_test {

// One profile of a fragment, compiled to run over any number of samples.
class DeviceFragment {
public:
  // Throws std::runtime_error when the inputs do not fit the fragment or the shader does not compile.
  DeviceFragment(FragmentProfile const& profile, std::vector<Input> const& inputs);
  // A surface under the lights of a document in environments/.
  DeviceFragment(FragmentProfile const& profile, std::vector<Input> const& inputs,
                 std::string const& environment);
  explicit DeviceFragment(Function const& function);

  // Runs over samples that lie one behind the other, each the components of all inputs, and answers the
  // components of all outputs in the same way.
  std::vector<float> run(VulkanCompute& compute, std::vector<float> samples) const;

  std::size_t outputCount() const { return outputCount_; }

private:
  std::size_t inputCount_ = 0;
  std::size_t outputCount_ = 0;
  std::vector<std::uint32_t> spirv_;
};

// Point `index` of `count` that fill the unit square evenly (Hammersley 1960).
Vec2 evenPoint(std::size_t index, std::size_t count);

void append(std::vector<float>& samples, Vec3 v);

}  // namespace numbers_test
