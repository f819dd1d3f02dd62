#pragma once

// How far two pictures look apart.

#include "pictures/picture.h"

namespace pictures {

/// Distances of colours in CIE L*a*b* (1976; about 2.3 is just noticed), pixel by pixel, after both pictures
/// lay on a middle grey and were blurred over three by three pixels in linear light, so that the rounding of
/// an edge does not count and a pattern that moved does.
struct Difference {
  double mean = 0;
  double greatest = 0;
  double noticed = 0;  ///< share of the pixels whose distance is above 2.3
};

/// Of pictures of one size.
Difference differenceOf(const Picture& a, const Picture& b);

/// Black where both look the same, white from a distance of 10 on. Encoded, opaque.
Picture pictureOfDifference(const Picture& a, const Picture& b);

}  // namespace pictures
