#pragma once

// What a fragment looks like.

#include <optional>

#include "tools/site/model.h"
#include "tools/thumbnails.h"

namespace TolmSDK::Graphics::sfg::tools {

/// Of its first output at that level of detail: by itself, in the studio where it is lit; or `isFed`, with
/// the places of a shape that four times as much fits on. Nothing for one that has nothing to show.
std::optional<ThumbnailRequest> showingFragment(const site::Fragment& fragment, float level, bool isFed);

}  // namespace TolmSDK::Graphics::sfg::tools
