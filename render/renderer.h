#pragma once

// Draws triangles with a pair of shaders, into a picture: a Vulkan device without a window, and memory on it.

#include <cstddef>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <vector>

#include <vulkan/vulkan.hpp>

namespace render {

/// The processor reads and writes its bytes as long as it lives.
struct Buffer {
  vk::UniqueDeviceMemory memory;
  vk::UniqueBuffer buffer;
  std::span<std::byte> bytes;
};

/// A device with one queue, which draws and computes. A processor's device is preferred to a graphics card,
/// so that every machine computes the same numbers. Used by one thread at a time; outlives what it makes.
/// What fails throws a std::runtime_error, such as vk::SystemError.
class Device {
public:
  Device();

  const vk::Device* operator->() const { return &*device_; }
  std::string name() const { return physical_.getProperties().deviceName.data(); }

  vk::UniqueDeviceMemory allocate(const vk::MemoryRequirements& needs, vk::MemoryPropertyFlags wanted) const;
  /// A buffer that starts with these bytes.
  Buffer makeBuffer(std::span<const std::byte> bytes, vk::BufferUsageFlags usage) const;
  /// Records commands, runs them and waits for their end.
  void run(const std::function<void(vk::CommandBuffer)>& record) const;

private:
  vk::UniqueInstance instance_;
  vk::PhysicalDevice physical_;
  vk::UniqueDevice device_;
  vk::Queue queue_;
  vk::UniqueCommandPool pool_;
};

/// Three vertices for each triangle, and modules whose entry points are called "main".
struct Triangles {
  std::vector<std::uint32_t> vertexStage;
  std::vector<std::uint32_t> pixelStage;
  std::map<std::uint32_t, std::vector<std::uint8_t>> uniforms;  ///< bytes, by binding in set 0
  std::map<std::uint32_t, std::vector<float>> attributes;       ///< by location; one to four floats a vertex
  std::uint32_t vertices = 0;
};

/// The nearest triangles over black: rows from top to bottom, four bytes a pixel: red, green and blue as sRGB
/// encodes them, opacity. The pixel stage's first target is a linear colour.
std::vector<std::byte> draw(const Device& device, const Triangles& triangles, vk::Extent2D size);

/// Writes what draw() gives.
void writePng(std::span<const std::byte> rgba, vk::Extent2D size, const std::string& file);

}  // namespace render
