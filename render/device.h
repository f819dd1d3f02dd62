#pragma once

// A Vulkan device without a window, and memory on it.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <stdexcept>
#include <string>

#include <vulkan/vulkan.hpp>

namespace render {

/// There is no Vulkan device for the work, or the device has not what is needed.
class DeviceError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

struct Buffer {
  vk::UniqueDeviceMemory memory;
  vk::UniqueBuffer buffer;
};

struct Image {
  vk::UniqueDeviceMemory memory;
  vk::UniqueImage image;
  vk::UniqueImageView view;
};

/// A device with one queue. A processor's device is preferred to a graphics card, so that every machine
/// computes the same numbers. Used by one thread at a time; outlives what it makes.
class Device {
public:
  /// Throws DeviceError when no device can do such work.
  explicit Device(vk::QueueFlagBits work);

  const vk::Device* operator->() const { return &*device_; }
  std::string name() const { return physical_.getProperties().deviceName.data(); }

  /// A buffer with these bytes, which the processor can read and write.
  Buffer makeBuffer(std::span<const std::byte> bytes, vk::BufferUsageFlags usage) const;
  Image makeImage(vk::Format format, vk::Extent2D size, vk::ImageUsageFlags usage) const;
  void read(const Buffer& buffer, std::span<std::byte> bytes) const;

  /// Records commands, runs them and waits for their end. Throws DeviceError after a minute.
  void run(const std::function<void(vk::CommandBuffer)>& record) const;

private:
  vk::UniqueDeviceMemory allocate(const vk::MemoryRequirements& needs, vk::MemoryPropertyFlags wanted) const;

  vk::UniqueInstance instance_;
  vk::PhysicalDevice physical_;
  vk::UniqueDevice device_;
  vk::Queue queue_;
  vk::UniqueCommandPool pool_;
};

}  // namespace render
