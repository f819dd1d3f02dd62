// References of blending.fraglib and colorspaces.fraglib.

#include "tests/numbers/blending_references.h"

#include <array>

#include "tests/numbers/reference_tools.h"

namespace numbers_test {

namespace {

Tolerance const kPower{2e-5, 4e-5, "Vulkan's pow is exp2(b log2 a), log2 2^-21 off around 1"};

Row blendRow(std::string const& fragment, Tolerance const& tolerance,
             std::function<Vec3(Vec3, Vec3)> const& mode) {
  return {fragment,
          {vector3("backdrop", 0, 1), vector3("layer", 0, 1), number("opacity", 0, 1)},
          tolerance,
          [mode](Sample const& in) {
            return Result(mix(in.vec3(0), mode(in.vec3(0), in.vec3(1)), in(2))); },
          -1.0,
          {},
          {}};
}

std::function<Vec3(Vec3, Vec3)> separable(double (*mode)(double, double)) {
  return [mode](Vec3 b, Vec3 s) { return each(b, s, mode); };
}

// Compositing and Blending Level 1, the modes that are not separable.
double lum(Vec3 c) { return 0.3 * c.x + 0.59 * c.y + 0.11 * c.z; }

double sat(Vec3 c) { return std::max({c.x, c.y, c.z}) - std::min({c.x, c.y, c.z}); }

Vec3 clipColor(Vec3 c) {
  double const l = lum(c);
  double const n = std::min({c.x, c.y, c.z});
  double const x = std::max({c.x, c.y, c.z});
  if (n < 0.0) {
    c = splat(l) + (c - splat(l)) * (l / (l - n));
  }
  if (x > 1.0) {
    c = splat(l) + (c - splat(l)) * ((1.0 - l) / (x - l));
  }
  return c;
}

Vec3 setLum(Vec3 c, double l) { return clipColor(c + splat(l - lum(c))); }

// The middle, the least and the largest component, by rank.
Vec3 setSat(Vec3 c, double s) {
  std::array<double, 3> v = {c.x, c.y, c.z};
  auto const [least, most] = std::minmax_element(v.begin(), v.end());
  double const low = *least;
  double const range = *most - low;
  for (double& x : v) {
    x = range > 0.0 ? (x - low) * s / range : 0.0;
  }
  return {v[0], v[1], v[2]};
}

std::vector<Row> blendRows() {
  Tolerance const quotient = {1e-5, 1e-5, "rounding of a quotient and its divisor"};
  return {
      blendRow("blendSubtract", rounding(4, 1),
               separable([](double b, double s) { return std::max(b - s, 0.0); })),
      blendRow("blendDivide", quotient,
               separable([](double b, double s) { return clamp01(b / std::max(s, 0.0001)); })),
      blendRow("blendExclusion", rounding(6, 1),
               separable([](double b, double s) { return b + s - 2.0 * b * s; })),
      blendRow("blendColorDodge", quotient, separable([](double b, double s) {
                 return b == 0.0 ? 0.0 : s == 1.0 ? 1.0 : std::min(1.0, b / (1.0 - s));
               })),
      blendRow("blendColorBurn", quotient, separable([](double b, double s) {
                 return b == 1.0 ? 1.0 : s == 0.0 ? 0.0 : 1.0 - std::min(1.0, (1.0 - b) / s);
               })),
      blendRow("blendLinearBurn", rounding(6, 1),
               separable([](double b, double s) { return std::max(b + s - 1.0, 0.0); })),
      blendRow("blendLinearLight", rounding(6, 1),
               separable([](double b, double s) { return clamp01(b + 2.0 * s - 1.0); })),
      blendRow("blendPinLight", rounding(6, 1), separable([](double b, double s) {
                 return s < 0.5 ? std::min(b, 2.0 * s) : std::max(b, 2.0 * s - 1.0);
               })),
      blendRow("blendHue", quotient, [](Vec3 b, Vec3 s) { return setLum(setSat(s, sat(b)), lum(b)); }),
      blendRow("blendSaturation", quotient, [](Vec3 b, Vec3 s) { return setLum(setSat(b, sat(s)), lum(b)); }),
      blendRow("blendColor", quotient, [](Vec3 b, Vec3 s) { return setLum(s, lum(b)); }),
      blendRow("blendLuminosity", quotient, [](Vec3 b, Vec3 s) { return setLum(b, lum(s)); }),
  };
}

// Porter and Duff 1984: what share of each of two pixels is left.
Row compositeRow(std::string const& fragment, std::function<double(double)> const& shareAbove,
                 std::function<double(double)> const& shareBelow) {
  return {fragment,
          {vector4("below", 0, 1), vector4("above", 0, 1)},
          rounding(4, 2),
          [shareAbove, shareBelow](Sample const& in) {
            Vec4 const b = in.vec4(0);
            Vec4 const a = in.vec4(1);
            double const fa = shareAbove(b.w);
            double const fb = shareBelow(a.w);
            return Result(a.x * fa + b.x * fb, a.y * fa + b.y * fb, a.z * fa + b.z * fb, a.w * fa + b.w * fb);
          },
          -1.0,
          {},
          {}};
}

std::vector<Row> compositeRows() {
  auto const all = [](double) { return 1.0; };
  auto const none = [](double) { return 0.0; };
  auto const inside = [](double alpha) { return alpha; };
  auto const outside = [](double alpha) { return 1.0 - alpha; };
  return {
      compositeRow("compositeOver", all, outside),
      compositeRow("compositeIn", inside, none),
      compositeRow("compositeOut", outside, none),
      compositeRow("compositeAtop", inside, outside),
      compositeRow("compositeXor", outside, outside),
      {"compositePlus",
       {vector4("below", 0, 1), vector4("above", 0, 1)},
       rounding(1, 1),
       [](Sample const& in) {
         Vec4 const b = in.vec4(0);
         Vec4 const a = in.vec4(1);
         return Result(clamp01(a.x + b.x), clamp01(a.y + b.y), clamp01(a.z + b.z), clamp01(a.w + b.w));
       }},
      {"premultiplyAlpha",
       {vector4("color", 0, 2)},
       rounding(1, 1),
       [](Sample const& in) {
         Vec4 const c = in.vec4(0);
         return Result(c.x * c.w, c.y * c.w, c.z * c.w, c.w);
       }},
      {"unpremultiplyAlpha",
       {vector4("color", 0, 2)},
       {1e-30, 3.0 * kUlp, "Vulkan divides to 2.5 units in the last place"},
       [](Sample const& in) {
         Vec4 const c = in.vec4(0);
         return c.w == 0.0 ? Result(0.0, 0.0, 0.0, 0.0) : Result(c.x / c.w, c.y / c.w, c.z / c.w, c.w);
       }},
  };
}

using Matrix = std::array<Vec3, 3>;

Vec3 times(Matrix const& m, Vec3 v) { return {dot(m[0], v), dot(m[1], v), dot(m[2], v)}; }

Matrix inverse(Matrix const& m) {
  double const d = dot(m[0], cross(m[1], m[2]));
  Vec3 const a = cross(m[1], m[2]) * (1.0 / d);
  Vec3 const b = cross(m[2], m[0]) * (1.0 / d);
  Vec3 const c = cross(m[0], m[1]) * (1.0 / d);
  return {Vec3{a.x, b.x, c.x}, Vec3{a.y, b.y, c.y}, Vec3{a.z, b.z, c.z}};
}

// The matrix from linear light to XYZ by its definition: chromaticities of the primaries, white at Y 1.
Matrix xyzOfPrimaries(Vec2 red, Vec2 green, Vec2 blue) {
  auto const point = [](Vec2 p) { return Vec3{p.x / p.y, 1.0, (1.0 - p.x - p.y) / p.y}; };
  Vec3 const r = point(red);
  Vec3 const g = point(green);
  Vec3 const b = point(blue);
  Matrix const columns = {Vec3{r.x, g.x, b.x}, Vec3{r.y, g.y, b.y}, Vec3{r.z, g.z, b.z}};
  Vec3 const share = times(inverse(columns), point({0.3127, 0.3290}));
  return {columns[0] * share, columns[1] * share, columns[2] * share};
}

Matrix const& xyzOfRec709() {
  static Matrix const m = xyzOfPrimaries({0.64, 0.33}, {0.30, 0.60}, {0.15, 0.06});
  return m;
}

Matrix const& xyzOfRec2020() {
  static Matrix const m = xyzOfPrimaries({0.708, 0.292}, {0.170, 0.797}, {0.131, 0.046});
  return m;
}

Vec3 const kWhite = {0.95047, 1.0, 1.08883};

double labF(double t) {
  double const d = 6.0 / 29.0;
  return t > d * d * d ? std::cbrt(t) : t / (3.0 * d * d) + 4.0 / 29.0;
}

double labFInverse(double f) {
  double const d = 6.0 / 29.0;
  return f > d ? f * f * f : 3.0 * d * d * (f - 4.0 / 29.0);
}

// Ottosson 2020.
Matrix const kLms = {Vec3{0.4122214708, 0.5363325363, 0.0514459929},
                     Vec3{0.2119034982, 0.6806995451, 0.1073969566},
                     Vec3{0.0883024619, 0.2817188376, 0.6299787005}};
Matrix const kLab = {Vec3{0.2104542553, 0.7936177850, -0.0040720468},
                     Vec3{1.9779984951, -2.4285922050, 0.4505937099},
                     Vec3{0.0259040371, 0.7827717662, -0.8086757660}};

Vec3 toOklab(Vec3 rgb) {
  return times(kLab, each(times(kLms, rgb), [](double v) { return std::cbrt(v); }));
}

Vec3 fromOklab(Vec3 lab) {
  return times(inverse(kLms), each(times(inverse(kLab), lab), [](double v) { return v * v * v; }));
}

Vec3 notNegative(Vec3 v) {
  return each(v, [](double x) { return std::max(x, 0.0); });
}

std::vector<Row> spaceRows() {
  Tolerance const matrix = {4e-4, 0.0, "the standard's matrix has seven digits of a rounded white"};
  return {
      {"rgbToXyz",
       {vector3("color", 0, 1)},
       matrix,
       [](Sample const& in) { return Result(times(xyzOfRec709(), in.vec3(0))); }},
      {"xyzToRgb",
       {vector3("xyz", 0, 1)},
       {2e-3, 0.0, "the same, with larger numbers in the inverse"},
       [](Sample const& in) { return Result(times(inverse(xyzOfRec709()), in.vec3(0))); }},
      {"xyzToLab",
       {vector3("xyz", 0, 1)},
       {0.02, 0.0, "Vulkan's pow, times 500"},
       [](Sample const& in) {
         Vec3 const f = each(in.vec3(0), kWhite, [](double v, double w) { return labF(v / w); });
         return Result(116.0 * f.y - 16.0, 500.0 * (f.x - f.y), 200.0 * (f.y - f.z));
       }},
      {"labToXyz",
       {vector3("lab", 0, 100)},
       rounding(64, 2),
       [](Sample const& in) {
         double const y = (in.vec3(0).x + 16.0) / 116.0;
         Vec3 const f = {y + in.vec3(0).y / 500.0, y, y - in.vec3(0).z / 200.0};
         return Result(kWhite * each(f, labFInverse));
       }},
      {"rgbToOklab",
       {vector3("color", 0, 1)},
       kPower,
       [](Sample const& in) { return Result(toOklab(in.vec3(0))); }},
      {"oklabToRgb",
       {vector3("lab", -0.3, 1)},
       {2e-4, 2e-5, "cubes times numbers of up to 4, the published inverses to ten digits"},
       [](Sample const& in) { return Result(fromOklab(in.vec3(0))); }},
      {"mixOklab",
       {vector3("first", 0, 1), vector3("second", 0, 1), number("amount", 0, 1)},
       {1e-4, 0.0, "two of Vulkan's pow, cubed, times numbers of up to 4"},
       [](Sample const& in) {
         return Result(notNegative(fromOklab(mix(toOklab(in.vec3(0)), toOklab(in.vec3(1)), in(2)))));
       }},
      {"rec2020FromRec709",
       {vector3("color", 0, 1)},
       {2e-4, 0.0, "the recommendation's matrix has four digits"},
       [](Sample const& in) {
         return Result(times(inverse(xyzOfRec2020()), times(xyzOfRec709(), in.vec3(0))));
       }},
      {"rgbToYCbCr",
       {vector3("color", 0, 1)},
       rounding(8, 1),
       [](Sample const& in) {
         Vec3 const c = in.vec3(0);
         double const y = 0.2126 * c.x + 0.7152 * c.y + 0.0722 * c.z;
         return Result(y, 0.5 * (c.z - y) / (1.0 - 0.0722), 0.5 * (c.x - y) / (1.0 - 0.2126));
       }},
      {"yCbCrToRgb",
       {vector3("components", -0.5, 1)},
       rounding(16, 3),
       [](Sample const& in) {
         Vec3 const c = in.vec3(0);
         double const red = c.x + 2.0 * (1.0 - 0.2126) * c.z;
         double const blue = c.x + 2.0 * (1.0 - 0.0722) * c.y;
         return Result(red, (c.x - 0.2126 * red - 0.0722 * blue) / 0.7152, blue);
       }},
      {"pqEncode",
       {vector3("color", 0, 10000)},
       {1e-4, 1e-4, "Vulkan's pow with an exponent of 79"},
       [](Sample const& in) {
         return Result(each(in.vec3(0), [](double v) {
           double const y = std::pow(v / 10000.0, 2610.0 / 16384.0);
           return std::pow((3424.0 / 4096.0 + 2413.0 / 128.0 * y) / (1.0 + 2392.0 / 128.0 * y),
                           2523.0 / 32.0);
         }));
       }},
  };
}

// Joblove and Greenberg 1978, by the sector of the hue.
Vec3 fromHsl(Vec3 hsl) {
  double const c = (1.0 - std::fabs(2.0 * hsl.z - 1.0)) * hsl.y;
  double const h = 6.0 * fraction(hsl.x);
  double const x = c * (1.0 - std::fabs(std::fmod(h, 2.0) - 1.0));
  double const m = hsl.z - c / 2.0;
  Vec3 const sectors[] = {{c, x, 0}, {x, c, 0}, {0, c, x}, {0, x, c}, {x, 0, c}, {c, 0, x}};
  return sectors[static_cast<int>(h)] + splat(m);
}

Vec3 toHsl(Vec3 c) {
  double const most = std::max({c.x, c.y, c.z});
  double const range = sat(c);
  double const lightness = most - range / 2.0;
  if (range == 0.0) {
    return {0.0, 0.0, lightness};
  }
  double const sixth = most == c.x   ? (c.y - c.z) / range
                       : most == c.y ? 2.0 + (c.z - c.x) / range
                                     : 4.0 + (c.x - c.y) / range;
  return {fraction(sixth / 6.0), range / (1.0 - std::fabs(2.0 * lightness - 1.0)), lightness};
}

// Planck's law against the eye: Wyman et al. 2013's fits of the CIE 1931 matching functions.
Vec3 matching(double nm) {
  auto const lobe = [nm](double height, double middle, double below, double above) {
    double const t = (nm - middle) * (nm < middle ? below : above);
    return height * std::exp(-0.5 * t * t);
  };
  return {lobe(1.056, 599.8, 1 / 37.9, 1 / 31.0) + lobe(0.362, 442.0, 1 / 16.0, 1 / 26.7) -
              lobe(0.065, 501.1, 1 / 20.4, 1 / 26.2),
          lobe(0.821, 568.8, 1 / 46.9, 1 / 40.5) + lobe(0.286, 530.9, 1 / 16.3, 1 / 31.1),
          lobe(1.217, 437.0, 1 / 11.8, 1 / 36.0) + lobe(0.681, 459.0, 1 / 26.0, 1 / 13.8)};
}

Vec3 glow(double kelvin) {
  Vec3 xyz = {};
  for (double nm = 380.0; nm <= 780.0; nm += 2.0) {
    double const radiance = std::pow(nm / 560.0, -5.0) / (std::exp(1.4387769e7 / (nm * kelvin)) - 1.0);
    xyz = xyz + matching(nm) * radiance;
  }
  Vec3 const rgb = notNegative(times(inverse(xyzOfRec709()), xyz));
  return rgb * (1.0 / (0.2126 * rgb.x + 0.7152 * rgb.y + 0.0722 * rgb.z));
}

std::vector<Row> correctionRows() {
  return {
      {"rgbToHsl",
       {vector3("color", 0, 1)},
       {1e-3, 0.0,
        "the hue divides rounded differences by a chroma, the saturation by what is left to white"},
       [](Sample const& in) { return Result(toHsl(in.vec3(0))); },
       -1.0,
       {},
       [](Sample const& in) {
         double const range = sat(in.vec3(0));
         return range > 0.0 && range < 1e-3;
       }},
      {"hslToRgb",
       {vector3("hsl", 0, 1)},
       rounding(32, 1),
       [](Sample const& in) { return Result(fromHsl(in.vec3(0))); }},
      {"blackbodyColor",
       {number("temperature", 2000, 15000)},
       {0.02, 0.03, "fits of the locus and of the matching functions"},
       [](Sample const& in) { return Result(glow(in(0))); }},
      {"vibrance",
       {vector3("color", 0, 2), number("amount", -1, 1)},
       rounding(32, 4),
       [](Sample const& in) {
         Vec3 const c = in.vec3(0);
         double const most = std::max({c.x, c.y, c.z});
         double const colourful = most > 0.0 ? sat(c) / most : 0.0;
         double const strength = in(1) > 0.0 ? 1.0 + in(1) * (1.0 - colourful) : 1.0 + in(1);
         double const grey = 0.2126 * c.x + 0.7152 * c.y + 0.0722 * c.z;
         return Result(notNegative(mix(splat(grey), c, strength)));
       }},
      {"slopeOffsetPower",
       {vector3("color", 0, 1), vector3("slope", 0, 2), vector3("offset", -0.5, 0.5),
        vector3("power", 0.5, 3)},
       {1e-3, 4e-5, "Vulkan's pow; a square root of a rounded difference"},
       [](Sample const& in) {
         Vec3 const lifted = notNegative(in.vec3(0) * in.vec3(1) + in.vec3(2));
         return Result(each(lifted, in.vec3(3), [](double v, double p) { return std::pow(v, p); }));
       }},
      {"levels",
       {vector3("color", 0, 2), number("black", 0, 0.4), number("white", 0.5, 2), number("gamma", 0.5, 3)},
       {5e-3, 4e-5, "Vulkan's pow; a cube root of a rounded difference"},
       [](Sample const& in) {
         return Result(each(in.vec3(0), [&](double v) {
           return std::pow(clamp01((v - in(1)) / (in(2) - in(1))), 1.0 / in(3));
         }));
       }},
      {"posterize",
       {vector3("color", 0, 1), whole("steps", 2, 16)},
       rounding(3, 1),
       [](Sample const& in) {
         return Result(each(in.vec3(0), [&](double v) {
           return std::min(std::floor(v * in(1)), in(1) - 1.0) / (in(1) - 1.0);
         }));
       }},
  };
}

}  // namespace

Topic blendingTopic() {
  Topic topic{"blending.fraglib", {}};
  for (std::vector<Row> const& rows : {blendRows(), compositeRows()}) {
    topic.rows.insert(topic.rows.end(), rows.begin(), rows.end());
  }
  return topic;
}

Topic colorSpaceTopic() {
  Topic topic{"colorspaces.fraglib", {}};
  for (std::vector<Row> const& rows : {spaceRows(), correctionRows()}) {
    topic.rows.insert(topic.rows.end(), rows.begin(), rows.end());
  }
  return topic;
}

}  // namespace numbers_test
