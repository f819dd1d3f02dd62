#pragma once

// Light-and-shadow blocks of MetaSL code: text that is repeated once per light.

#include <cstddef>

#include "profiles/shader_temporaries.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

/// The lighting function that light `index` contributes: "TolmSceneLighting" and the index.
WString sceneLightingName(std::size_t index);

/// Replaces every block between "TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN" and "TOLM_VESSOR_LIGHT_AND_SHADOW_END"
/// by one copy of its text per light, in braces, in which "TOLM_SCENE_LIGHTING" is the light's function.
/// Throws "sfgError : light and shadow block is not closed!" for a begin marker without an end marker behind
/// it, a begin marker inside a block, and an end marker before the next begin marker; and the size error,
/// before anything is built. An end marker behind the last block stays as it is. What stands in front of
/// `from` is not looked at. Copies name the temporaries that the text of their block names.
void expandLightBlocks(CallerText& text, std::size_t numLights, std::size_t from = 0);

}  // namespace TolmSDK::Graphics::sfg
