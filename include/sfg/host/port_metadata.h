#pragma once

// What a fragment library says of an input, output or uniform, for whoever shows it and sets its value.

#include <string>
#include <vector>

namespace TolmSDK::Graphics::sfg::host {

/// Plain data; texts are UTF-8, and what the library does not say is empty. Numbers are one for each
/// component of the type, matrices row by row, booleans as 0 and 1.
struct PortMetadata {
  std::string label;        ///< what a person calls it
  std::string description;  ///< what it does
  std::string kind;   ///< "angle", "color", "direction", "distance", "factor", "normal", "position", "uv"
  std::string space;  ///< of vectors "object", "world", "view", "tangent"; of colours and textures
                      ///< "linear", "srgb", "data"
  std::vector<double> value;  ///< what it takes that nobody gives a value
  std::vector<double> min;
  std::vector<double> max;
  std::vector<double> step;  ///< by which a person changes it

  bool operator==(const PortMetadata&) const = default;
};

}  // namespace TolmSDK::Graphics::sfg::host
