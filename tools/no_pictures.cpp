// `sfg render` of a command that is built without pictures.

#include "sfg/host/errors.h"
#include "tools/render_request.h"
#include "tools/thumbnails.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

constexpr const char* kWithout =
    "this command is built without pictures: it needs Vulkan, the shader compilers, libpng, zlib, OpenEXR, "
    "stb and Assimp when it is built";

}  // namespace

int renderPictures(const RenderRequest&, Diagnostics&) { throw host::InputError(kWithout); }
std::string deviceLines() { throw host::InputError(kWithout); }
std::unique_ptr<ThumbnailPainter> makeThumbnailPainter(std::shared_ptr<const host::LibrarySet>,
                                                       const ThumbnailOptions&) {
  throw host::InputError(kWithout);
}

}  // namespace TolmSDK::Graphics::sfg::tools
