#pragma once

// Draws triangles with a pair of shaders, into a picture.

#include <string>
#include <vector>

#include "device.h"

namespace render {

/// What every vertex has one of: `components` floats.
struct VertexStream {
  std::uint32_t location = 0;
  std::uint32_t components = 0;
  std::vector<float> values;
};

struct UniformBuffer {
  std::uint32_t binding = 0;
  std::vector<std::uint8_t> bytes;
};

/// Three vertices for each triangle, and modules whose entry points are called "main".
struct Triangles {
  std::vector<std::uint32_t> vertexStage;
  std::vector<std::uint32_t> pixelStage;
  std::vector<VertexStream> streams;
  std::vector<UniformBuffer> uniforms;  ///< of both stages, set 0
  std::uint32_t vertices = 0;
};

/// Rows from top to bottom, four bytes a pixel: red, green and blue as sRGB encodes them, opacity.
struct Picture {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::vector<std::uint8_t> rgba;
};

/// The nearest triangles over black. The pixel stage's first target is a linear colour. Throws DeviceError
/// and vk::SystemError.
Picture draw(const Device& device, const Triangles& triangles, std::uint32_t width, std::uint32_t height);

/// Throws std::runtime_error.
void writePng(const Picture& picture, const std::string& file);

}  // namespace render
