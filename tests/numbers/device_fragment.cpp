#include "tests/numbers/device_fragment.h"

#include "tests/numbers/compute_shader.h"

namespace numbers_test {

namespace {

Row rowOf(FragmentProfile const& profile, std::vector<Input> const& inputs) {
  Row row;
  row.fragment = profile.fragment;
  row.inputs = inputs;
  return row;
}

}  // namespace

DeviceFragment::DeviceFragment(FragmentProfile const& profile, std::vector<Input> const& inputs)
    : DeviceFragment(collapsedFunction(profile, rowOf(profile, inputs))) {}

DeviceFragment::DeviceFragment(FragmentProfile const& profile, std::vector<Input> const& inputs,
                               std::string const& environment)
    : DeviceFragment(
          litFunction(profile, rowOf(profile, inputs), "tests/numbers/environments/" + environment)) {}

DeviceFragment::DeviceFragment(Function const& function) : spirv_(compileCompute(computeShader(function))) {
  for (SampledPort const& input : function.inputs) {
    inputCount_ += componentCount(input.type);
  }
  for (Port const& output : function.outputs) {
    outputCount_ += componentCount(output.type);
  }
}

std::vector<float> DeviceFragment::run(VulkanCompute& compute, std::vector<float> samples) const {
  std::size_t const count = samples.size() / inputCount_;
  std::size_t const groups = (count + kGroupSize - 1) / kGroupSize;
  samples.resize(groups * kGroupSize * inputCount_);
  std::vector<float> outputs =
      compute.run(spirv_, samples, groups * kGroupSize * outputCount_, static_cast<std::uint32_t>(groups));
  outputs.resize(count * outputCount_);
  return outputs;
}

Vec2 evenPoint(std::size_t index, std::size_t count) {
  std::uint32_t bits = static_cast<std::uint32_t>(index);
  std::uint32_t reversed = 0;
  for (int i = 0; i < 32; ++i) {
    reversed = (reversed << 1) | (bits & 1u);
    bits >>= 1;
  }
  return {(static_cast<double>(index) + 0.5) / static_cast<double>(count),
          (static_cast<double>(reversed) + 0.5) * 0x1p-32};
}

void append(std::vector<float>& samples, Vec3 v) {
  for (double const component : {v.x, v.y, v.z}) {
    samples.push_back(static_cast<float>(component));
  }
}

}  // namespace numbers_test
