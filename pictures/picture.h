#pragma once

// Pictures in memory and in files.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace pictures {

/// Rows from top to bottom, four numbers a texel: red, green, blue, opacity.
struct Picture {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::vector<float> texels;
  bool isEncoded = false;  ///< colours are as sRGB encodes them; else linear

  Picture() = default;
  /// Zeros.
  Picture(std::uint32_t columns, std::uint32_t rows)
      : width(columns), height(rows), texels(std::size_t{4} * columns * rows) {}

  float* at(std::size_t x, std::size_t y) { return &texels[4 * (y * width + x)]; }
  const float* at(std::size_t x, std::size_t y) const { return &texels[4 * (y * width + x)]; }
};

float encodeSrgb(float linear);
float decodeSrgb(float encoded);
/// The same picture with colours of the other kind where it has the wrong one.
Picture linearized(Picture picture);
Picture encoded(Picture picture);

enum class PictureFormat { png, exr, hdr };

/// Reads PNG, JPEG (encoded; 8 and 16 bits), Radiance HDR and OpenEXR (linear), by what the file holds.
/// Throws std::runtime_error, whose text names the file.
Picture readPicture(const std::filesystem::path& file);

/// A file's bytes. PNG: 8 bits, encoded, clamped to [0, 1], not a number as 0. OpenEXR and HDR: linear, not
/// clamped; HDR has no opacity and nothing negative.
std::string writePicture(const Picture& picture, PictureFormat format);

/// An animated PNG that repeats for ever. All pictures have one size; at least one.
std::string writeAnimation(const std::vector<Picture>& pictures, unsigned framesPerSecond);

}  // namespace pictures
