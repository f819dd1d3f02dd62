#pragma once

// Names of outputs, made of patterns.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sfg/host/target.h"

namespace TolmSDK::Graphics::sfg::host {

/// What stands for the placeholders of a pattern, "{graph}.{stage}.{extension}".
struct OutputName {
  std::string graph;
  std::string environment;
  std::string constants;
  std::string surfaceLod;
  std::string lightLod;
  std::string stage;
  std::string target;
  std::string extension;

  /// The pattern's placeholders are all known.
  std::string fill(std::string_view pattern) const;
};

/// Without braces.
std::vector<std::string> placeholders();
/// The first between braces that is none; empty without one.
std::string unknownPlaceholder(std::string_view pattern);

/// "spv"; of the assembled text without a target.
std::string extensionOf(const std::optional<ShaderTarget>& target);

/// Why a file of that name cannot be in the output folder: "leads out of the output folder"; empty where it
/// can.
std::string outputFault(const std::string& file);

}  // namespace TolmSDK::Graphics::sfg::host
