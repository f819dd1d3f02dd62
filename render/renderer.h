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

/// An image in the device's own memory.
struct Image {
  vk::UniqueDeviceMemory memory;
  vk::UniqueImage image;
  vk::UniqueImageView view;
};

struct DeviceDescription {
  std::string name;
  bool isProcessor = false;  ///< draws in software
};

/// All devices that can draw, in the loader's order; none without a driver.
std::vector<DeviceDescription> listDevices();

/// A device with one queue, which draws and computes. Used by one thread at a time; outlives what it makes.
/// What fails throws a std::runtime_error, such as vk::SystemError.
class Device {
public:
  /// A processor's device is preferred to a graphics card, so that every machine computes the same numbers.
  Device();
  /// The one at that place of listDevices().
  explicit Device(std::size_t index);

  const vk::Device* operator->() const { return &*device_; }
  std::string name() const { return physical_.getProperties().deviceName.data(); }

  vk::UniqueDeviceMemory allocate(const vk::MemoryRequirements& needs, vk::MemoryPropertyFlags wanted) const;
  /// A buffer that starts with these bytes.
  Buffer makeBuffer(std::span<const std::byte> bytes, vk::BufferUsageFlags usage) const;
  /// Records commands, runs them and waits for their end.
  void run(const std::function<void(vk::CommandBuffer)>& record) const;

private:
  void open(vk::PhysicalDevice chosen);

  vk::UniqueInstance instance_;
  vk::PhysicalDevice physical_;
  vk::UniqueDevice device_;
  vk::Queue queue_;
  vk::UniqueCommandPool pool_;
};

/// Colours for a shader to read, as they are.
struct Texture {
  vk::ImageViewType type = vk::ImageViewType::e2D;  ///< one, two or three dimensions, or a cube
  vk::Extent3D size{1, 1, 1};                       ///< of the first level; of a face of a cube
  /// Each half as large as the one before, rounded down: four numbers a texel, rows from top to bottom, faces
  /// of a cube behind one another.
  std::vector<std::vector<float>> levels;
};

struct Sampler {
  bool repeats = true;       ///< or shows its edge's colour outside
  float levelOffset = 0.0f;  ///< added to the level that the screen asks for
};

/// Three vertices for each triangle, and modules whose entry points are called "main".
struct Triangles {
  std::vector<std::uint32_t> vertexStage;
  std::vector<std::uint32_t> pixelStage;
  std::map<std::uint32_t, std::vector<std::uint8_t>> uniforms;  ///< bytes, by binding in set 0
  std::map<std::uint32_t, Texture> textures;                    ///< by binding in set 0
  std::map<std::uint32_t, Sampler> samplers;                    ///< by binding in set 0
  std::map<std::uint32_t, std::vector<float>> attributes;       ///< by location; one to four floats a vertex
  std::uint32_t vertices = 0;
};

/// Triangles on their way to pictures of one size: made once, drawn any number of times. The device outlives
/// it.
class Drawing {
public:
  /// `color` is the format of the pixel stage's first target: four channels that the device can draw.
  Drawing(const Device& device, const Triangles& triangles, vk::Extent2D size, vk::Format color);

  /// Changes the bytes of a buffer of the same size.
  void setUniform(std::uint32_t binding, std::span<const std::uint8_t> bytes);
  /// Changes the values of an attribute, as many as before.
  void setAttribute(std::uint32_t location, std::span<const float> values);
  /// Draws the nearest triangles over zeros, and opaque black where the format is sRGB.
  void draw();
  /// What was drawn last: rows from top to bottom.
  std::span<const std::byte> colors() const { return colorCopy_.bytes; }
  /// One float a pixel, 1 where nothing is.
  std::span<const std::byte> depths() const { return depthCopy_.bytes; }

private:
  void bind(const Triangles& triangles);

  const Device& device_;
  vk::Extent2D size_;
  vk::Format format_;
  std::map<std::uint32_t, Buffer> uniforms_;
  std::vector<Image> textures_;
  std::vector<vk::UniqueSampler> samplers_;
  std::map<std::uint32_t, Buffer> attributeBuffers_;
  std::vector<vk::Buffer> attributes_;
  std::uint32_t vertices_;
  vk::UniqueDescriptorSetLayout setLayout_;
  vk::UniquePipelineLayout layout_;
  vk::UniqueDescriptorPool pool_;
  vk::DescriptorSet set_;
  Image color_;
  Image depth_;
  vk::UniqueRenderPass pass_;
  vk::UniqueFramebuffer frame_;
  vk::UniquePipeline pipeline_;
  Buffer colorCopy_;
  Buffer depthCopy_;
};

/// The nearest triangles over black: rows from top to bottom, four bytes a pixel: red, green and blue as sRGB
/// encodes them, opacity. The pixel stage's first target is a linear colour.
std::vector<std::byte> draw(const Device& device, const Triangles& triangles, vk::Extent2D size);

/// Writes what draw() gives.
void writePng(std::span<const std::byte> rgba, vk::Extent2D size, const std::string& file);

}  // namespace render
