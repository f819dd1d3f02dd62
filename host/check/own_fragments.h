#pragma once

// Fragments that a check puts around the one that it looks at.

#include <string>
#include <vector>

namespace TolmSDK::Graphics::sfg::host {

/// The profile of lights that MetaSL surfaces ask.
inline constexpr const char* kMslLights = "msl_light";

/// Makes an output of any type into the graph's float4; the value goes nowhere.
inline constexpr const char* kDropFragment = "sfg_checkDrop";
/// The same for an expression of any numeric type, which is evaluated.
inline constexpr const char* kTakeFragment = "sfg_checkTake";
/// Hands a uniform of any type on, so that the next input is connected.
inline constexpr const char* kPassFragment = "sfg_checkPass";
/// A light of any profile for code that does not read it.
inline constexpr const char* kLightFragment = "sfg_checkLight";

/// A lit surface for any light, with one output `result` of as many components.
std::string litFragment(std::size_t components);

/// A function that fills an output `result`, for inputs that an expression cannot feed.
struct SourceFragment {
  std::string name;
  std::string type;  ///< of the result
  /// Types and names; those that callers of the function name.
  std::vector<std::pair<std::string, std::string>> inputs;
  std::string output = "result";
  std::vector<std::string> includes;
};

/// All of them as a library (JSON).
std::string ownFragments(const std::vector<SourceFragment>& sources);

}  // namespace TolmSDK::Graphics::sfg::host
