#pragma once

// Textures made of pictures, or out of nothing where nobody gives one.

#include <string>

#include "pictures/picture.h"
#include "render/renderer.h"

namespace pictures {

/// What reads of a texture give, as libraries say it of a port: "linear" and "srgb" are colours, anything
/// else numbers as the file has them.
enum class ColorSpace { linear, srgb, data };
ColorSpace colorSpaceOf(const std::string& space);

/// A texture with all levels, whose means are taken in linear light. One dimension reads the first row, three
/// have one slice; a cube takes a panorama.
render::Texture makeTexture(const Picture& picture, ColorSpace space, vk::ImageViewType type);

/// A coloured board with numbers of u and v in its colours, for colours; for numbers flat: the normal that
/// leaves a surface as it is, full height.
Picture standIn(ColorSpace space);

/// The sides of a cube, with all levels, from a linear panorama.
render::Texture cubeOf(const Picture& panorama, std::uint32_t side);

/// What lies in that direction of a panorama: the middle is seen towards +x, the right of it towards +z, the
/// first row is above.
void samplePanorama(const Picture& panorama, const double direction[3], float out[4]);

}  // namespace pictures
