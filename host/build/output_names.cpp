#include "host/build/output_names.h"

#include <algorithm>
#include <filesystem>

#include "host/build/build_state.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

struct Placeholder {
  std::string_view name;
  std::string OutputName::*value;
};
constexpr Placeholder kPlaceholders[] = {
    {"graph", &OutputName::graph},         {"environment", &OutputName::environment},
    {"constants", &OutputName::constants}, {"surfaceLod", &OutputName::surfaceLod},
    {"lightLod", &OutputName::lightLod},   {"stage", &OutputName::stage},
    {"target", &OutputName::target},       {"extension", &OutputName::extension}};

const Placeholder* findPlaceholder(std::string_view name) {
  const auto* const found = std::find_if(std::begin(kPlaceholders), std::end(kPlaceholders),
                                         [&](const Placeholder& known) { return known.name == name; });
  return found != std::end(kPlaceholders) ? found : nullptr;
}

/// Calls `text(part)` for what stands outside of braces and `placeholder(name)` for what stands in them; a
/// brace without its other one is text.
template <class OnText, class OnPlaceholder>
void walk(std::string_view pattern, const OnText& text, const OnPlaceholder& placeholder) {
  while (!pattern.empty()) {
    const std::size_t open = pattern.find('{');
    const std::size_t close = open == pattern.npos ? pattern.npos : pattern.find('}', open);
    if (close == pattern.npos) return text(pattern);
    text(pattern.substr(0, open));
    placeholder(pattern.substr(open + 1, close - open - 1));
    pattern.remove_prefix(close + 1);
  }
}

}  // namespace

std::string OutputName::fill(std::string_view pattern) const {
  std::string name;
  walk(
      pattern, [&](std::string_view text) { name += text; },
      [&](std::string_view placeholder) {
        if (const Placeholder* const known = findPlaceholder(placeholder)) name += this->*known->value;
      });
  return name;
}

std::vector<std::string> placeholders() {
  std::vector<std::string> names;
  for (const Placeholder& placeholder : kPlaceholders) names.emplace_back(placeholder.name);
  return names;
}

std::string unknownPlaceholder(std::string_view pattern) {
  std::string unknown;
  walk(
      pattern, [](std::string_view) {},
      [&](std::string_view placeholder) {
        if (unknown.empty() && findPlaceholder(placeholder) == nullptr) unknown = placeholder;
      });
  return unknown;
}

std::string extensionOf(const std::optional<ShaderTarget>& target) {
  if (!target) return "hlsl";
  switch (*target) {
  case ShaderTarget::spirv: return "spv";
  case ShaderTarget::glsl: return "glsl";
  case ShaderTarget::essl:
  case ShaderTarget::essl300: return "essl";
  case ShaderTarget::msl: return "metal";
  case ShaderTarget::hlsl: break;
  }
  return "hlsl";
}

std::string outputFault(const std::string& file) {
  const std::filesystem::path path = std::filesystem::path(file).lexically_normal();
  if (path.is_absolute() || path.begin() == path.end() || *path.begin() == "..")
    return "leads out of the output folder";
  if (!path.has_filename() || path == ".") return "is a folder's";
  if (*path.begin() == kStateFolder) return "lies in a folder that builds keep for themselves";
  return std::string();
}

}  // namespace TolmSDK::Graphics::sfg::host
