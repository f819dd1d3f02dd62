#pragma once

#include <string>

#include "tests/numbers/row.h"

// The one texture that fragments read here: 8 texels along each axis, repeated without end, whole numbers of
// fifteenths that differ from channel to channel and from level to level, mixed linearly between the middles
// of texels and between levels. It is written twice, for the device and for the references, so that no filter
// of a device decides what a fragment answers.
namespace numbers_test {

// What takes the place of sfg_samplers.h: its types without textures, its reads as functions.
std::string textureOnDevice();

// In one, two and three dimensions.
Vec4 textureAt(double place, double level = 0.0);
Vec4 textureAt(Vec2 place, double level = 0.0);
Vec4 textureAt(Vec3 place, double level = 0.0);

// A cube map: the volume where a sphere of diameter 1 about its middle is met.
Vec4 textureTowards(Vec3 direction, double level = 0.0);

}  // namespace numbers_test
