#pragma once

// Evaluates a collapsed graph at given places of a surface, one for each pixel.

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "render/renderer.h"
#include "sfg/host/job.h"
#include "sfg/host/reflect.h"
#include "tests/materialx/compute_device.h"

namespace materialx_test {

using Numbers = std::vector<double>;

/// A surface as the pixels of a picture see it; rows from the top. Derivatives over the screen are the
/// differences within blocks of two by two pixels, so width and height are even.
struct SurfaceField {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  /// What varies: a state variable ("sfg_objectPosition"), an input of the graph, or "tangent", that of a
  /// mesh in object space. Defined for hidden pixels, too.
  std::function<Numbers(const std::string& name, std::uint32_t column, std::uint32_t row)> at;
  std::function<bool(std::uint32_t column, std::uint32_t row)> isSeen;
  /// A state variable that does not vary, or nothing; its matrices bring positions to their pixels.
  std::function<Numbers(const std::string& state)> state;
  /// Values of the graph's and the environment's own.
  std::vector<TolmSDK::Graphics::sfg::host::ValueSetting> settings;
  std::function<const Image&(const TolmSDK::Graphics::sfg::host::InterfaceOrigin&)> texture;
};

/// An output of the graph: for each seen pixel, row by row, four numbers, of which those that its type lacks
/// mean nothing.
struct FieldOutput {
  std::string name;
  std::vector<float> values;
};

/// All outputs, computed by a compute stage, which takes every number as it is; or the first one, drawn by a
/// pixel stage, where derivatives over the screen are asked for. Throws std::runtime_error.
std::vector<FieldOutput> evaluate(const render::Device& device, const TolmSDK::Graphics::sfg::host::Job& job,
                                  const SurfaceField& field);

}  // namespace materialx_test
