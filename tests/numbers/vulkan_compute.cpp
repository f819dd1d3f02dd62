#include "tests/numbers/vulkan_compute.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <limits>
#include <optional>

#include <dlfcn.h>
#include <link.h>

#include <vulkan/vulkan.hpp>

namespace numbers_test {

namespace {

constexpr std::uint32_t kUniformBindings = 4;  // from 0
constexpr std::uint32_t kInputBinding = 16;
constexpr std::uint32_t kOutputBinding = 80;
constexpr std::uint64_t kSecond = 1'000'000'000;
constexpr std::uint64_t kLongestRun = 60 * kSecond;

vk::UniqueInstance createInstance() {
  vk::ApplicationInfo application("sfg_numbers_test", 1, nullptr, 0, VK_API_VERSION_1_1);
  return vk::createInstanceUnique(vk::InstanceCreateInfo({}, &application));
}

std::optional<std::uint32_t> computeFamily(vk::PhysicalDevice device) {
  std::vector<vk::QueueFamilyProperties> const families = device.getQueueFamilyProperties();
  for (std::uint32_t i = 0; i < families.size(); ++i) {
    if (families[i].queueFlags & vk::QueueFlagBits::eCompute) {
      return i;
    }
  }
  return std::nullopt;
}

// The device to use: one that computes on the processor if there is one, else the first that computes at all.
vk::PhysicalDevice chooseDevice(vk::Instance instance) {
  vk::PhysicalDevice chosen;
  for (vk::PhysicalDevice device : instance.enumeratePhysicalDevices()) {
    if (!computeFamily(device)) {
      continue;
    }
    if (device.getProperties().deviceType == vk::PhysicalDeviceType::eCpu) {
      return device;
    }
    if (!chosen) {
      chosen = device;
    }
  }
  return chosen;
}

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

std::string describe(std::string const& what) {
  return "no Vulkan device can run compute shaders (" + what +
         "): install Mesa's software driver (mesa-vulkan-drivers), or set SFG_SKIP_VULKAN_TESTS=1 to skip";
}

struct Found {
  vk::UniqueInstance instance;
  vk::PhysicalDevice device;
};

std::optional<Found> findDevice(std::string& why) {
  try {
    Found found;
    found.instance = createInstance();
    found.device = chooseDevice(*found.instance);
    keepDrivers();
    if (found.device) {
      return found;
    }
    why = "the loader lists none";
  } catch (vk::SystemError const& error) {
    why = error.what();
  }
  return std::nullopt;
}

struct Buffer {
  vk::UniqueBuffer buffer;
  vk::UniqueDeviceMemory memory;
};

}  // namespace

struct VulkanCompute::Device {
  vk::UniqueInstance instance;
  vk::PhysicalDevice physical;
  std::string name;
  std::uint32_t family = 0;
  vk::UniqueDevice device;
  vk::Queue queue;
  vk::UniqueCommandPool commands;
  vk::UniqueDescriptorSetLayout setLayout;
  vk::UniquePipelineLayout pipelineLayout;
  vk::UniqueDescriptorPool descriptors;

  explicit Device(Found found) : instance(std::move(found.instance)), physical(found.device) {
    name = physical.getProperties().deviceName.data();
    family = computeFamily(physical).value();

    float const priority = 1.0f;
    vk::DeviceQueueCreateInfo queueInfo({}, family, 1, &priority);
    device = physical.createDeviceUnique(vk::DeviceCreateInfo({}, queueInfo));
    queue = device->getQueue(family, 0);
    commands = device->createCommandPoolUnique({vk::CommandPoolCreateFlagBits::eTransient, family});

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

  std::uint32_t hostMemoryType(std::uint32_t allowed) const {
    vk::MemoryPropertyFlags const wanted =
        vk::MemoryPropertyFlagBits::eHostVisible | vk::MemoryPropertyFlagBits::eHostCoherent;
    vk::PhysicalDeviceMemoryProperties const memory = physical.getMemoryProperties();
    for (std::uint32_t i = 0; i < memory.memoryTypeCount; ++i) {
      if ((allowed & (1u << i)) != 0 && (memory.memoryTypes[i].propertyFlags & wanted) == wanted) {
        return i;
      }
    }
    throw VulkanError("the Vulkan device has no memory that the processor can write");
  }

  Buffer createBuffer(std::span<float const> values, vk::BufferUsageFlagBits usage) const {
    Buffer result;
    vk::DeviceSize const bytes = std::max<vk::DeviceSize>(values.size_bytes(), sizeof(float));
    result.buffer = device->createBufferUnique({{}, bytes, usage});
    vk::MemoryRequirements const needs = device->getBufferMemoryRequirements(*result.buffer);
    result.memory = device->allocateMemoryUnique({needs.size, hostMemoryType(needs.memoryTypeBits)});
    device->bindBufferMemory(*result.buffer, *result.memory, 0);
    if (!values.empty()) {
      void* mapped = device->mapMemory(*result.memory, 0, VK_WHOLE_SIZE);
      std::memcpy(mapped, values.data(), values.size_bytes());
      device->unmapMemory(*result.memory);
    }
    return result;
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
            Buffer const& buffer) const {
    vk::DescriptorBufferInfo const info(*buffer.buffer, 0, VK_WHOLE_SIZE);
    device->updateDescriptorSets(vk::WriteDescriptorSet(set, binding, 0, type, {}, info), {});
  }

  void dispatch(vk::Pipeline pipeline, vk::DescriptorSet set, std::uint32_t groups) const {
    vk::UniqueCommandBuffer command = std::move(
        device->allocateCommandBuffersUnique({*commands, vk::CommandBufferLevel::ePrimary, 1}).front());
    command->begin({vk::CommandBufferUsageFlagBits::eOneTimeSubmit});
    command->bindPipeline(vk::PipelineBindPoint::eCompute, pipeline);
    command->bindDescriptorSets(vk::PipelineBindPoint::eCompute, *pipelineLayout, 0, set, {});
    command->dispatch(groups, 1, 1);
    vk::MemoryBarrier const barrier(vk::AccessFlagBits::eShaderWrite, vk::AccessFlagBits::eHostRead);
    command->pipelineBarrier(vk::PipelineStageFlagBits::eComputeShader, vk::PipelineStageFlagBits::eHost, {},
                             barrier, {}, {});
    command->end();

    vk::UniqueFence fence = device->createFenceUnique({});
    queue.submit(vk::SubmitInfo({}, {}, *command), *fence);
    if (device->waitForFences(*fence, true, kLongestRun) != vk::Result::eSuccess) {
      device->waitIdle();
      throw VulkanError("the compute shader did not end within a minute");
    }
  }

  std::vector<float> read(Buffer const& buffer, std::size_t count) const {
    std::vector<float> values(count);
    void const* mapped = device->mapMemory(*buffer.memory, 0, VK_WHOLE_SIZE);
    std::memcpy(values.data(), mapped, count * sizeof(float));
    device->unmapMemory(*buffer.memory);
    return values;
  }
};

VulkanCompute::VulkanCompute() {
  std::string why;
  std::optional<Found> found = findDevice(why);
  if (!found && nameSoftwareDriver()) {
    found = findDevice(why);
  }
  if (!found) {
    throw VulkanError(describe(why));
  }
  try {
    device_ = std::make_unique<Device>(std::move(*found));
  } catch (vk::SystemError const& error) {
    throw VulkanError(error.what());
  }
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
    Buffer const in = device_->createBuffer(inputs, Usage::eStorageBuffer);
    Buffer const out = device_->createBuffer(unwritten, Usage::eStorageBuffer);
    std::vector<Buffer> uniforms;
    vk::UniquePipeline const pipeline = device_->createPipeline(spirv);
    vk::UniqueDescriptorSet const set = device_->createDescriptorSet();
    device_->bind(*set, kInputBinding, Type::eStorageBuffer, in);
    device_->bind(*set, kOutputBinding, Type::eStorageBuffer, out);
    for (UniformBlock const& block : blocks) {
      uniforms.push_back(device_->createBuffer(block.values, Usage::eUniformBuffer));
      device_->bind(*set, block.binding, Type::eUniformBuffer, uniforms.back());
    }
    device_->dispatch(*pipeline, *set, groups);
    return device_->read(out, outputCount);
  } catch (vk::SystemError const& error) {
    throw VulkanError(error.what());
  }
}

}  // namespace numbers_test

// Read by the leak checker of sanitized builds: drivers and their compiler keep some memory to the end.
extern "C" char const* __lsan_default_suppressions();
extern "C" char const* __lsan_default_suppressions() { return "leak:libvulkan_\n"; }

namespace numbers_test {

bool isVulkanSkipped() {
  char const* value = std::getenv("SFG_SKIP_VULKAN_TESTS");
  return value != nullptr && *value != '\0' && std::string_view(value) != "0";
}

}  // namespace numbers_test
