#pragma once

// How many texels a picture file has, from its first bytes.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string_view>

namespace TolmSDK::Graphics::sfg::materialx {

struct PictureSize {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
};

/// Of the bytes of a PNG, JPEG, OpenEXR or Radiance HDR file, of which the end may be missing; nothing for
/// others and broken ones.
std::optional<PictureSize> pictureSizeIn(std::string_view bytes);

/// The same of a file, of which no more than the first 256 KiB are read.
std::optional<PictureSize> pictureSizeOf(const std::filesystem::path& file);

}  // namespace TolmSDK::Graphics::sfg::materialx
