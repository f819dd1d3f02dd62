#include "tests/numbers/vulkan_compute.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <limits>

#include <dlfcn.h>
#include <link.h>

#include "render/renderer.h"

namespace numbers_test {

namespace {

constexpr std::uint32_t kUniformBindings = 4;  // from 0
constexpr std::uint32_t kInputBinding = 16;
constexpr std::uint32_t kOutputBinding = 80;

// Points the loader at Mesa's software driver. False when the user chose drivers or none is installed.
bool nameSoftwareDriver() {
  if (std::getenv("VK_DRIVER_FILES") != nullptr || std::getenv("VK_ICD_FILENAMES") != nullptr) {
    return false;
  }
  for (char const* folder :
       {"/usr/share/vulkan/icd.d", "/usr/local/share/vulkan/icd.d", "/etc/vulkan/icd.d"}) {
    std::error_code error;
    for (auto const& entry : std::filesystem::directory_iterator(folder, error)) {
      if (entry.path().filename().string().starts_with("lvp_icd")) {
        setenv("VK_DRIVER_FILES", entry.path().c_str(), 1);
        setenv("VK_ICD_FILENAMES", entry.path().c_str(), 1);
        return true;
      }
    }
  }
  return false;
}

// Keeps the loaded drivers until the process ends: a leak checker names what allocated only while it is
// loaded.
void keepDrivers() {
  std::vector<std::string> drivers;
  dl_iterate_phdr(
      [](dl_phdr_info* module, std::size_t, void* names) {
        if (std::string_view(module->dlpi_name).find("libvulkan_") != std::string_view::npos) {
          static_cast<std::vector<std::string>*>(names)->push_back(module->dlpi_name);
        }
        return 0;
      },
      &drivers);
  for (std::string const& driver : drivers) {
    dlopen(driver.c_str(), RTLD_NOW | RTLD_NODELETE | RTLD_NOLOAD);
  }
}

std::string describe(std::string const& what) { return what + ", or set SFG_SKIP_VULKAN_TESTS=1 to skip"; }

render::Device findDevice() {
  try {
    return render::Device();
  } catch (std::runtime_error const&) {
    if (!nameSoftwareDriver()) {
      throw;
    }
  }
  return render::Device();
}

}  // namespace

struct VulkanCompute::Device {
  render::Device device = findDevice();
  std::string name = device.name();
  vk::UniqueDescriptorSetLayout setLayout;
  vk::UniquePipelineLayout pipelineLayout;
  vk::UniqueDescriptorPool descriptors;

  Device() {
    keepDrivers();
    std::vector<vk::DescriptorSetLayoutBinding> bindings;
    for (std::uint32_t binding = 0; binding < kUniformBindings; ++binding) {
      bindings.emplace_back(binding, vk::DescriptorType::eUniformBuffer, 1,
                            vk::ShaderStageFlagBits::eCompute);
    }
    for (std::uint32_t const binding : {kInputBinding, kOutputBinding}) {
      bindings.emplace_back(binding, vk::DescriptorType::eStorageBuffer, 1,
                            vk::ShaderStageFlagBits::eCompute);
    }
    setLayout = device->createDescriptorSetLayoutUnique(vk::DescriptorSetLayoutCreateInfo({}, bindings));
    pipelineLayout = device->createPipelineLayoutUnique(vk::PipelineLayoutCreateInfo({}, *setLayout));
    std::vector<vk::DescriptorPoolSize> const sizes = {
        {vk::DescriptorType::eStorageBuffer, 2}, {vk::DescriptorType::eUniformBuffer, kUniformBindings}};
    descriptors = device->createDescriptorPoolUnique(
        vk::DescriptorPoolCreateInfo(vk::DescriptorPoolCreateFlagBits::eFreeDescriptorSet, 1, sizes));
  }

  render::Buffer createBuffer(std::span<float const> values, vk::BufferUsageFlagBits usage) const {
    return device.makeBuffer(std::as_bytes(values), usage);
  }

  vk::UniquePipeline createPipeline(std::span<std::uint32_t const> spirv) const {
    vk::UniqueShaderModule module = device->createShaderModuleUnique({{}, spirv.size_bytes(), spirv.data()});
    vk::PipelineShaderStageCreateInfo stage({}, vk::ShaderStageFlagBits::eCompute, *module, "main");
    return device->createComputePipelineUnique({}, {{}, stage, *pipelineLayout}).value;
  }

  vk::UniqueDescriptorSet createDescriptorSet() const {
    return std::move(device->allocateDescriptorSetsUnique({*descriptors, *setLayout}).front());
  }

  void bind(vk::DescriptorSet set, std::uint32_t binding, vk::DescriptorType type,
            render::Buffer const& buffer) const {
    vk::DescriptorBufferInfo const info(*buffer.buffer, 0, VK_WHOLE_SIZE);
    device->updateDescriptorSets(vk::WriteDescriptorSet(set, binding, 0, type, {}, info), {});
  }

  void dispatch(vk::Pipeline pipeline, vk::DescriptorSet set, std::uint32_t groups) const {
    device.run([&](vk::CommandBuffer commands) {
      commands.bindPipeline(vk::PipelineBindPoint::eCompute, pipeline);
      commands.bindDescriptorSets(vk::PipelineBindPoint::eCompute, *pipelineLayout, 0, set, {});
      commands.dispatch(groups, 1, 1);
    });
  }
};

VulkanCompute::VulkanCompute() try : device_(std::make_unique<Device>()) {
} catch (std::runtime_error const& error) {
  throw VulkanError(describe(error.what()));
}

VulkanCompute::~VulkanCompute() = default;

std::string const& VulkanCompute::deviceName() const { return device_->name; }

std::vector<float> VulkanCompute::run(std::span<std::uint32_t const> spirv, std::span<float const> inputs,
                                      std::size_t outputCount, std::uint32_t groups,
                                      std::span<UniformBlock const> blocks) {
  try {
    using Usage = vk::BufferUsageFlagBits;
    using Type = vk::DescriptorType;
    std::vector<float> const unwritten(outputCount, std::numeric_limits<float>::quiet_NaN());
    render::Buffer const in = device_->createBuffer(inputs, Usage::eStorageBuffer);
    render::Buffer const out = device_->createBuffer(unwritten, Usage::eStorageBuffer);
    std::vector<render::Buffer> uniforms;
    vk::UniquePipeline const pipeline = device_->createPipeline(spirv);
    vk::UniqueDescriptorSet const set = device_->createDescriptorSet();
    device_->bind(*set, kInputBinding, Type::eStorageBuffer, in);
    device_->bind(*set, kOutputBinding, Type::eStorageBuffer, out);
    for (UniformBlock const& block : blocks) {
      uniforms.push_back(device_->createBuffer(block.values, Usage::eUniformBuffer));
      device_->bind(*set, block.binding, Type::eUniformBuffer, uniforms.back());
    }
    device_->dispatch(*pipeline, *set, groups);
    std::vector<float> outputs(outputCount);
    std::memcpy(outputs.data(), out.bytes.data(), outputCount * sizeof(float));
    return outputs;
  } catch (std::runtime_error const& error) {
    throw VulkanError(error.what());
  }
}

bool isVulkanSkipped() {
  char const* value = std::getenv("SFG_SKIP_VULKAN_TESTS");
  return value != nullptr && *value != '\0' && std::string_view(value) != "0";
}

}  // namespace numbers_test
