#pragma once

// Light that comes from a picture all around: diffuse light by spherical harmonics, reflections from a cube
// map whose levels are blurred by GGX, and the table that the split sum needs.

#include <array>
#include <filesystem>
#include <string>

#include "pictures/matrix.h"
#include "pictures/picture.h"
#include "render/renderer.h"

namespace pictures {

/// A room with a large soft box, a strip and a window; and a clear sky with a sun above ground. Linear.
Picture studioPanorama();
Picture skyPanorama();

struct EnvironmentLight {
  /// Irradiance divided by pi along n, factors of 1, y, z, x, xy, yz, 3 z z - 1, xz, x x - y y (Ramamoorthi
  /// and Hanrahan 2001).
  std::array<Vector, 9> diffuse{};
  /// Level i of n is what a surface of roughness i / (n - 1) mirrors, seen along its normal (Karis 2013).
  render::Texture mirrored;
};

/// Of a panorama whose middle is seen towards +x.
EnvironmentLight makeEnvironmentLight(const Picture& panorama);
/// The same, kept in a folder for the next time; an empty folder keeps nothing, and one that cannot be
/// written is passed over.
EnvironmentLight keptEnvironmentLight(const Picture& panorama, const std::filesystem::path& folder);
/// Where the command keeps such files: `sfg` in the user's folder for caches; empty where there is none.
std::filesystem::path cacheFolder();

/// Irradiance divided by pi on a surface with unit normal n.
Vector diffuseAt(const EnvironmentLight& light, const Vector& n);

/// Red and green are the factor of the reflectance along the normal and what is added to it: the cosine of
/// the view runs to the right from 0 to 1, the roughness down (Karis 2013; masking of both sides by Smith).
Picture splitSumTable();
/// The same, kept in a folder for the next time as lights are.
Picture keptSplitSumTable(const std::filesystem::path& folder);

}  // namespace pictures
