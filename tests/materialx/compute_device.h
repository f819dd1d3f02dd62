#pragma once

// Runs the compute stage of a complete shader with textures on a Vulkan device.

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "render/renderer.h"

namespace materialx_test {

/// Texels row by row, the first row first; four numbers each.
struct Image {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::vector<float> texels;
};

/// Reads a PNG file: stored values / 255, grey as three equal channels. Throws std::runtime_error.
Image readPng(const std::string& file);

/// By binding in set 0.
struct Resources {
  std::uint32_t input = 0;  ///< binding of the elements that are read; unused when they are empty
  std::vector<float> elements;
  std::uint32_t output = 0;
  std::size_t outputSize = 0;  ///< numbers
  std::map<std::uint32_t, std::vector<std::uint8_t>> uniforms;
  std::map<std::uint32_t, const Image*> textures;
  std::vector<std::uint32_t> samplers;  ///< linear, repeating
};

/// What the invocations write. Throws std::runtime_error.
std::vector<float> runCompute(const render::Device& device, const std::vector<std::uint32_t>& spirv,
                              const Resources& resources, std::uint32_t groups);

}  // namespace materialx_test
