#include "host/modules/new_operations.h"

#include <algorithm>

namespace TolmSDK::Graphics::sfg::host {

namespace {

// Of the binary form of SPIR-V.
constexpr std::size_t kHeader = 5;
constexpr std::uint32_t kOpExtInst = 12;

struct NamedOperation {
  std::uint32_t number;
  const char* name;
};

constexpr NamedOperation kOperations[] = {{96, "Gather"},       {105, "CalculateLevelOfDetail"},
                                          {204, "reversebits"}, {205, "countbits"},
                                          {210, "ddx_fine"},    {211, "ddy_fine"},
                                          {213, "ddx_coarse"},  {214, "ddy_coarse"}};

/// Of the set GLSL.std.450, the only one that there is.
constexpr NamedOperation kExtended[] = {
    {73, "firstbitlow"}, {74, "firstbithigh"}, {75, "firstbithigh"}, {76, "EvaluateAttributeAtCentroid"}};

template <std::size_t count>
const char* nameOf(const NamedOperation (&operations)[count], std::uint32_t number) {
  for (const NamedOperation& operation : operations) {
    if (operation.number == number) return operation.name;
  }
  return nullptr;
}

}  // namespace

std::vector<std::string> findNewOperations(const std::vector<std::uint32_t>& module) {
  std::vector<std::string> names;
  for (std::size_t at = kHeader; at < module.size();) {
    const std::size_t length = module[at] >> 16;
    if (length == 0 || length > module.size() - at) break;
    const std::uint32_t operation = module[at] & 0xffffu;
    const char* const name = operation == kOpExtInst && length > 4 ? nameOf(kExtended, module[at + 4])
                                                                   : nameOf(kOperations, operation);
    if (name != nullptr && std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
    at += length;
  }
  return names;
}

}  // namespace TolmSDK::Graphics::sfg::host
