#pragma once

// Light-and-shadow blocks of MetaSL code: text that is repeated once per light.

#include <cstddef>

#include "profiles/shader_temporaries.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

/// The lighting function that light `index` contributes: "TolmSceneLighting" and the index.
WString sceneLightingName(std::size_t index);

/// While the text holds "TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN", replaces the block between the first of these
/// and the first "TOLM_VESSOR_LIGHT_AND_SHADOW_END" by one copy of its text per light, in braces, in which
/// "TOLM_SCENE_LIGHTING" is the light's function. A block may hold a begin marker: its copies do too, so with
/// several lights the end markers run out. Throws "sfgError : light and shadow block is not closed!" for a
/// begin marker without an end marker behind it, or with one in front of it; and the size error, before
/// anything is built. End markers behind the last block stay as they are. What stands in front of `from` is
/// not looked at. Copies name the temporaries that the text of their block names.
void expandLightBlocks(CallerText& text, std::size_t numLights, std::size_t from = 0);

}  // namespace TolmSDK::Graphics::sfg
