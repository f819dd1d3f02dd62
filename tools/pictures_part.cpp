#include "tools/pictures_part.h"

namespace TolmSDK::Graphics::sfg::tools {

/// By which the command finds everything in the loaded library.
extern "C" [[gnu::visibility("default")]] const PicturesPart* sfg_pictures_part() {
  static const PicturesPart kPart{&renderPictures, &deviceLines, &makeThumbnailPainter};
  return &kPart;
}

}  // namespace TolmSDK::Graphics::sfg::tools
