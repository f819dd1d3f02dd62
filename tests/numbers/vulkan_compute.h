#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace numbers_test {

// There is no Vulkan device to run on, or Vulkan itself refused a call.
class VulkanError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

// The content of a constant buffer (set 0).
struct UniformBlock {
  std::uint32_t binding = 0;  // 0 to 3
  std::vector<float> values;
};

// Runs compute shaders over plain arrays of floats: one storage buffer in (set 0, binding 16), one out (set
// 0, binding 80), entry point "main": what the ready-made host makes of the registers t0 and u0. A processor
// device is preferred to a graphics card, so that every machine computes the same numbers; when the loader
// shows no device, Mesa's software driver is looked up by its manifest, unless VK_DRIVER_FILES or
// VK_ICD_FILENAMES already name the drivers to use.
//
// Used by one thread at a time.
class VulkanCompute {
public:
  // Throws VulkanError, saying what to install, when no device can run compute shaders.
  VulkanCompute();
  ~VulkanCompute();
  VulkanCompute(VulkanCompute const&) = delete;
  VulkanCompute& operator=(VulkanCompute const&) = delete;

  std::string const& deviceName() const;

  // Runs `groups` work groups and answers the output buffer, which starts as NaN in every element, so that a
  // value the shader never writes is seen. Throws VulkanError.
  std::vector<float> run(std::span<std::uint32_t const> spirv, std::span<float const> inputs,
                         std::size_t outputCount, std::uint32_t groups,
                         std::span<UniformBlock const> blocks = {});

private:
  struct Device;
  std::unique_ptr<Device> device_;
};

// True when the environment variable SFG_SKIP_VULKAN_TESTS asks to leave the device alone. Without it a
// machine that has no device fails the tests.
bool isVulkanSkipped();

}  // namespace numbers_test
