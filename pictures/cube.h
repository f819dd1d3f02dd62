#pragma once

// The sides of a cube map.

#include "pictures/matrix.h"

namespace pictures {

/// Towards a place of a side, both from -1 to 1: to the right and down.
Vector cubeDirection(std::size_t side, double x, double y);

}  // namespace pictures
