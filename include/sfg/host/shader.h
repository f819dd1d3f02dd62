#pragma once

// A complete shader.

#include <cstddef>
#include <string>
#include <vector>

namespace TolmSDK::Graphics::sfg::host {

enum class ShaderStage { pixel, compute, vertex };

/// What the vertices of a mesh have besides a position.
struct MeshLayout {
  bool normal = true;
  bool tangent = true;  ///< its w is 1, or -1 where the texture lies mirrored
  bool texCoord0 = true;
  bool texCoord1 = true;
  bool texCoord2 = true;
  bool texCoord3 = true;
  bool color = true;

  bool operator==(const MeshLayout&) const = default;
};

/// How a complete shader names its uniforms.
enum class NameStyle {
  generated,  ///< as the collapse did: "mortarn2"
  readable,   ///< after node and input: "bricks_mortar"
};

/// A complete shader in HLSL. Plain data. Texts are UTF-8.
struct Shader {
  ShaderStage stage = ShaderStage::pixel;
  NameStyle names = NameStyle::generated;
  std::string text;
  /// Name of the entry point: "main", or "sfg_main" where the collapsed function has that name.
  std::string entryPoint;
  /// Names of the uniforms in the order in which they are declared.
  std::vector<std::string> uniforms;
  /// Include files that are named, but in no include folder, or empty.
  std::vector<std::string> missingIncludes;
};

}  // namespace TolmSDK::Graphics::sfg::host
