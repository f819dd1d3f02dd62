#pragma once

// The part of the command that draws: a library of its own, loaded when something is first drawn, since those
// underneath it take as long to start as everything else together.

#include <memory>
#include <string>

#include "tools/render_request.h"
#include "tools/thumbnails.h"

namespace TolmSDK::Graphics::sfg::tools {

struct PicturesPart {
  decltype(&tools::renderPictures) render = nullptr;
  decltype(&tools::deviceLines) devices = nullptr;
  decltype(&tools::makeThumbnailPainter) makePainter = nullptr;
};

/// Loaded once, for good. Throws InputError where the command has none.
const PicturesPart& picturesPart();

}  // namespace TolmSDK::Graphics::sfg::tools
