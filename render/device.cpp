#include "device.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace render {

namespace {

constexpr std::uint64_t kMinute = 60'000'000'000;

std::optional<std::uint32_t> familyFor(vk::PhysicalDevice device, vk::QueueFlagBits work) {
  const auto families = device.getQueueFamilyProperties();
  const auto found = std::find_if(families.begin(), families.end(),
                                  [work](const auto& f) { return static_cast<bool>(f.queueFlags & work); });
  if (found == families.end()) return std::nullopt;
  return static_cast<std::uint32_t>(found - families.begin());
}

vk::PhysicalDevice chooseDevice(vk::Instance instance, vk::QueueFlagBits work) {
  vk::PhysicalDevice chosen;
  for (const vk::PhysicalDevice device : instance.enumeratePhysicalDevices()) {
    if (!familyFor(device, work)) continue;
    const bool isProcessor = device.getProperties().deviceType == vk::PhysicalDeviceType::eCpu;
    if (!chosen || isProcessor) chosen = device;
    if (isProcessor) break;
  }
  return chosen;
}

}  // namespace

Device::Device(vk::QueueFlagBits work) {
  std::string why = "the loader lists none";
  try {
    const vk::ApplicationInfo application("sfg", 1, nullptr, 0, VK_API_VERSION_1_1);
    instance_ = vk::createInstanceUnique(vk::InstanceCreateInfo({}, &application));
    physical_ = chooseDevice(*instance_, work);
  } catch (const vk::SystemError& error) {
    why = error.what();
  }
  if (!physical_) {
    throw DeviceError("no Vulkan device can be used (" + why +
                      "): install Mesa's software driver (mesa-vulkan-drivers)");
  }
  const std::uint32_t family = *familyFor(physical_, work);
  const float priority = 1.0f;
  const vk::DeviceQueueCreateInfo queueInfo({}, family, 1, &priority);
  device_ = physical_.createDeviceUnique(vk::DeviceCreateInfo({}, queueInfo));
  queue_ = device_->getQueue(family, 0);
  pool_ = device_->createCommandPoolUnique({vk::CommandPoolCreateFlagBits::eTransient, family});
}

vk::UniqueDeviceMemory Device::allocate(const vk::MemoryRequirements& needs,
                                        vk::MemoryPropertyFlags wanted) const {
  const vk::PhysicalDeviceMemoryProperties memory = physical_.getMemoryProperties();
  for (std::uint32_t i = 0; i < memory.memoryTypeCount; ++i) {
    if ((needs.memoryTypeBits & (1u << i)) == 0) continue;
    if ((memory.memoryTypes[i].propertyFlags & wanted) != wanted) continue;
    return device_->allocateMemoryUnique({needs.size, i});
  }
  throw DeviceError("the Vulkan device has no fitting memory");
}

Buffer Device::makeBuffer(std::span<const std::byte> bytes, vk::BufferUsageFlags usage) const {
  using Flag = vk::MemoryPropertyFlagBits;
  Buffer made;
  made.buffer = device_->createBufferUnique({{}, std::max<vk::DeviceSize>(bytes.size(), 4), usage});
  made.memory =
      allocate(device_->getBufferMemoryRequirements(*made.buffer), Flag::eHostVisible | Flag::eHostCoherent);
  device_->bindBufferMemory(*made.buffer, *made.memory, 0);
  if (!bytes.empty()) {
    std::memcpy(device_->mapMemory(*made.memory, 0, VK_WHOLE_SIZE), bytes.data(), bytes.size());
    device_->unmapMemory(*made.memory);
  }
  return made;
}

Image Device::makeImage(vk::Format format, vk::Extent2D size, vk::ImageUsageFlags usage) const {
  const bool isDepth = static_cast<bool>(usage & vk::ImageUsageFlagBits::eDepthStencilAttachment);
  const auto aspect = isDepth ? vk::ImageAspectFlagBits::eDepth : vk::ImageAspectFlagBits::eColor;
  Image made;
  made.image = device_->createImageUnique({{},
                                           vk::ImageType::e2D,
                                           format,
                                           {size.width, size.height, 1},
                                           1,
                                           1,
                                           vk::SampleCountFlagBits::e1,
                                           vk::ImageTiling::eOptimal,
                                           usage});
  made.memory = allocate(device_->getImageMemoryRequirements(*made.image), {});
  device_->bindImageMemory(*made.image, *made.memory, 0);
  made.view = device_->createImageViewUnique(
      {{}, *made.image, vk::ImageViewType::e2D, format, {}, {aspect, 0, 1, 0, 1}});
  return made;
}

void Device::read(const Buffer& buffer, std::span<std::byte> bytes) const {
  std::memcpy(bytes.data(), device_->mapMemory(*buffer.memory, 0, VK_WHOLE_SIZE), bytes.size());
  device_->unmapMemory(*buffer.memory);
}

void Device::run(const std::function<void(vk::CommandBuffer)>& record) const {
  const std::vector<vk::UniqueCommandBuffer> made =
      device_->allocateCommandBuffersUnique({*pool_, vk::CommandBufferLevel::ePrimary, 1});
  const vk::CommandBuffer commands = *made.front();
  commands.begin({vk::CommandBufferUsageFlagBits::eOneTimeSubmit});
  record(commands);
  // What was written is then there for the processor.
  const vk::MemoryBarrier barrier(vk::AccessFlagBits::eMemoryWrite, vk::AccessFlagBits::eHostRead);
  commands.pipelineBarrier(vk::PipelineStageFlagBits::eAllCommands, vk::PipelineStageFlagBits::eHost, {},
                           barrier, {}, {});
  commands.end();
  const vk::UniqueFence fence = device_->createFenceUnique({});
  queue_.submit(vk::SubmitInfo({}, {}, commands), *fence);
  if (device_->waitForFences(*fence, true, kMinute) != vk::Result::eSuccess) {
    device_->waitIdle();
    throw DeviceError("the Vulkan device did not finish within a minute");
  }
}

}  // namespace render
