#pragma once

// What a module is optimised with for speed.

#include <spirv-tools/optimizer.hpp>

namespace TolmSDK::Graphics::sfg::host {

/// The optimizer's own passes for legality and then those for speed, without the ones of the second list that
/// find nothing to do behind the first: the bytes are those that both lists make.
void registerSpeedPasses(spvtools::Optimizer& optimizer);

}  // namespace TolmSDK::Graphics::sfg::host
