#pragma once

// Evaluates a collapsed graph by its pixel stage at given places of a surface, one for each pixel.

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "render/renderer.h"
#include "sfg/host/job.h"
#include "sfg/host/reflect.h"

namespace materialx_test {

using Numbers = std::vector<double>;

/// A surface as the pixels of a picture see it; rows from the top. Derivatives over the screen are the
/// differences within blocks of two by two pixels, so width and height are even.
struct SurfaceField {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  /// What a vertex at the middle of a pixel would have: a part of a mesh ("position", "normal", "tangent" of
  /// four numbers, "texCoord0" .., "color"), or an input of the graph. Defined for hidden pixels, too.
  std::function<Numbers(const std::string& part, std::uint32_t column, std::uint32_t row)> part;
  std::function<bool(std::uint32_t column, std::uint32_t row)> isSeen;
  /// A state variable, or nothing; its matrices bring positions to the pixels they belong to.
  std::function<Numbers(const std::string& state)> state;
  /// Values of the graph's and the environment's own.
  std::vector<TolmSDK::Graphics::sfg::host::ValueSetting> settings;
  std::function<render::Texture(const TolmSDK::Graphics::sfg::host::InterfaceOrigin&)> texture;
};

/// The first output of the graph: four numbers for each pixel, zero where the surface is not seen. Throws
/// std::runtime_error.
std::vector<float> evaluate(const render::Device& device, const TolmSDK::Graphics::sfg::host::Job& job,
                            const SurfaceField& field);

}  // namespace materialx_test
