#include "host/shader/interface_names.h"

namespace TolmSDK::Graphics::sfg::host {

std::string withSingleUnderscores(std::string_view name) {
  std::string text;
  for (const char c : name) {
    if (c != '_' || text.empty() || text.back() != '_') text += c;
  }
  return text;
}

std::string attributeName(std::string_view name) {
  return withSingleUnderscores("sfg_in_" + std::string(name));
}

std::string vertexAttributeName(std::string_view name) {
  return withSingleUnderscores("sfg_vertex_" + std::string(name));
}

std::string renderTargetName(std::string_view name) {
  return withSingleUnderscores("sfg_out_" + std::string(name));
}

std::string blockVariable(std::string_view block) {
  constexpr std::size_t kPrefix = 4;  // "sfg_"
  std::string name = withSingleUnderscores(block);
  if (name.size() > kPrefix && name[kPrefix] >= 'A' && name[kPrefix] <= 'Z') {
    name[kPrefix] = static_cast<char>(name[kPrefix] - 'A' + 'a');
  }
  return name;
}

}  // namespace TolmSDK::Graphics::sfg::host
