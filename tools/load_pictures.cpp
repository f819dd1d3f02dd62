#include <dlfcn.h>

#include "sfg/host/errors.h"
#include "tools/pictures_part.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

/// Looked for where the command's own libraries are.
const PicturesPart& loadPictures() {
  void* const library = dlopen(SFG_PICTURES_FILE, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) throw host::InputError(std::string("pictures cannot be drawn: ") + dlerror());
  using Find = const PicturesPart* (*)();
  const auto find = reinterpret_cast<Find>(dlsym(library, "sfg_pictures_part"));
  if (find == nullptr) throw host::InputError(std::string("pictures cannot be drawn: ") + dlerror());
  return *find();
}

}  // namespace

const PicturesPart& picturesPart() {
  static const PicturesPart& part = loadPictures();
  return part;
}

}  // namespace TolmSDK::Graphics::sfg::tools
