// A command that is built without pictures.

#include "sfg/host/errors.h"
#include "tools/pictures_part.h"

namespace TolmSDK::Graphics::sfg::tools {

const PicturesPart& picturesPart() {
  throw host::InputError(
      "this command is built without pictures: it needs Vulkan, the shader compilers, libpng, "
      "zlib, OpenEXR, stb and Assimp when it is built");
}

}  // namespace TolmSDK::Graphics::sfg::tools
