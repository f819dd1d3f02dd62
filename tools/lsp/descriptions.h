#pragma once

// Fragments and ports in words (Markdown), for whoever points at them.

#include <string>
#include <vector>

#include "tools/lsp/catalog.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

/// "(float3 a, float amount) -> float3 result".
std::string signatureOf(const FragmentCard& fragment);
/// Name, description and a line for each port and uniform.
std::string describe(const FragmentCard& fragment);
/// "`float3 albedo` = [0.8, 0.8, 0.8], 0 to 1: what the surface reflects".
std::string describe(const PortCard& port);

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
