// References of patterns.fraglib. Few of the patterns have a source but their description; colours, widths of
// bevels and weights of octaves are the library's choice and stand here again.

#include "tests/numbers/reference_noise.h"
#include "tests/numbers/row.h"

namespace numbers_test {

namespace {

Tolerance const kCells{3e-4, 0.0,
                       "positions of up to 20 cells are rounded, ramps are as narrow as 0.01 cells"};
Tolerance const kOctaves{1e-3, 0.0,
                         "the scaled positions of the last octaves are rounded at magnitudes around 1000"};

// The number lies so near to a whole number, without being one, that its cell depends on rounding.
bool onBorder(double v) {
  double const off = std::fabs(v - std::round(v));
  return off > 0.0 && off < 1e-5;
}

bool onBorder(Vec2 v) { return onBorder(v.x) || onBorder(v.y); }

double hermite(double t) { return t * t * (3.0 - 2.0 * t); }

double ramp(double from, double to, double v) { return clamp01((v - from) / (to - from)); }

double odd(double cell) { return std::fabs(std::fmod(cell, 2.0)); }

double checker(double cells) { return odd(cells); }

// The mean of the checkerboard's factor along one axis, +1 in even and -1 in odd cells, over 0.001 about q.
double meanFactor(double q) {
  constexpr double kWidth = 0.001;
  auto const factor = [](double v) { return odd(std::floor(v)) == 0.0 ? 1.0 : -1.0; };
  double const border = std::round(q);
  double const below = clamp01((border - (q - kWidth / 2.0)) / kWidth);
  return below * factor(border - 0.5) + (1.0 - below) * factor(border + 0.5);
}

double toNearestWhole(double v) { return std::fabs(v - std::round(v)); }

// The distances from the middle of the nearest cell.
Vec2 fromCellCentre(Vec2 q) { return {0.5 - toNearestWhole(q.x), 0.5 - toNearestWhole(q.y)}; }

// A hexagon of width 1 around each point of a triangular lattice.
Result hexagons(Sample const& in) {
  double const root3 = std::sqrt(3.0);
  Vec2 const p = in.vec2(0) * in(1);
  double nearest = 1e9;
  Vec2 index;  // of the centre, in half widths and half row pairs
  Vec2 offset;
  for (double half : {0.0, 1.0}) {
    for (int x = -1; x <= 1; ++x) {
      for (int y = -1; y <= 1; ++y) {
        Vec2 const at{2.0 * (std::floor(p.x) + x) + half, 2.0 * (std::floor(p.y / root3) + y) + half};
        Vec2 const to = p - Vec2{0.5 * at.x, 0.5 * root3 * at.y};
        if (length(to) < nearest) {
          nearest = length(to);
          index = at;
          offset = to;
        }
      }
    }
  }
  double outward = 0.0;
  for (double const angle : {0.0, kPi / 3.0, 2.0 * kPi / 3.0}) {
    outward = std::max(outward, std::fabs(dot(offset, Vec2{std::cos(angle), std::sin(angle)})));
  }
  return Result(0.5 - outward, randomOf(index));
}

struct Brick {
  double mask = 0.0;
  double random = 0.0;
};

// The position in bricks, odd rows shifted.
Vec2 inBricks(Vec2 uv, Vec2 count, double shift) {
  Vec2 q = uv * count;
  q.x += odd(std::floor(q.y)) == 1.0 ? shift : 0.0;
  return q;
}

Brick brickAt(Vec2 uv, Vec2 count, double mortar, double shift) {
  Vec2 const q = inBricks(uv, count, shift);
  // In brick heights: the distance to the brick's border; the bevel is an eighth of the mortar wide.
  double const border = std::min(toNearestWhole(q.x) * count.y / count.x, toNearestWhole(q.y));
  return {hermite(ramp(mortar / 2.0, mortar / 2.0 + mortar / 8.0, border)), randomOf(q)};
}

// Rings that darken slowly over four fifths of a year and fall back in its last part.
double ringAt(Vec3 p, double rings, double distortion, int octaves) {
  double const year = fraction(std::hypot(p.x, p.z) * rings + distortion * fbm(p, octaves, 2.0, 0.5));
  return hermite(ramp(0.0, 0.8, year)) * (1.0 - hermite(ramp(0.85, 1.0, year)));
}

Result wood(Sample const& in, int octaves, bool hasFibres) {
  Vec3 const p = in.vec3(0);
  double late = ringAt(p, in(1), in(2), octaves);
  if (hasFibres) {
    late += in(3) * perlinNoise(turned(p * Vec3{60.0, 2.0, 60.0}));
  }
  return Result(mix(in.vec3(4), in.vec3(5), clamp01(late)));
}

Result marble(Sample const& in, int octaves) {
  Vec3 const p = in.vec3(0);
  double const phase = p.x * in(1) + in(2) * turbulence(p, octaves, 2.0, 0.5);
  double const vein = 0.5 + 0.5 * std::sin(2.0 * kPi * phase);
  return Result(mix(in.vec3(4), in.vec3(5), std::pow(vein, in(3))));
}

// Tangent, binormal and normal stand behind the four inputs.
Result flakes(Sample const& in) {
  Words2 const words = pcgHash(cellOf(in.vec2(0) * in(1)));
  Vec2 const tilt = (Vec2{unitFromWord(words[0]), unitFromWord(words[1])} - Vec2{0.5, 0.5}) * in(2);
  Vec3 const normal = unit(in.vec3(4) * tilt.x + in.vec3(5) * tilt.y + in.vec3(6));
  return Result(normal, unitFromWord(pcgHash(words[0] ^ words[1])) < in(3) ? 1.0 : 0.0);
}

Result terrainHeight(Sample const& in) {
  Vec3 const p{in.vec2(0).x * in(1), in.vec2(0).y * in(1), 0.0};
  int const octaves = static_cast<int>(in(2));
  double const hills = clamp01(0.5 + 1.2 * fbm(p, octaves, 2.0, 0.5));
  double const crests = ridged(p + Vec3{31.7, 11.3, 4.9}, octaves, 2.0);
  return Result(hills * (0.5 + 0.5 * crests));
}

Result terrainPaint(Sample const& in) {
  double const height = in(0);
  double const level = ramp(0.6, 0.8, in.vec3(1).y);
  double const snow = level * ramp(in(3), in(3) + 0.05, height);
  Vec3 color = mix(Vec3{0.28, 0.25, 0.22}, Vec3{0.12, 0.25, 0.06}, level);
  color = mix(color, {0.9, 0.92, 0.95}, snow);
  color = mix(color, {0.55, 0.48, 0.32}, 1.0 - ramp(in(2) + 0.02, in(2) + 0.04, height));
  if (height < in(2)) {
    return Result(Vec3{0.02, 0.08, 0.14}, 0.15);
  }
  return Result(color, mix(0.9, 0.6, snow));
}

std::vector<Row> regularRows() {
  std::vector<Input> const plane = {vector2("uv", -2, 2), vector2("count", 1, 8)};
  auto const uvOnBorder = [](Sample const& in) { return onBorder(in.vec2(0) * in.vec2(1)); };
  auto const plainChecker = [](Sample const& in) {
    Vec2 const q = in.vec2(0) * in.vec2(1);
    return Result(checker(std::floor(q.x) + std::floor(q.y)));
  };
  return {
      {"checkerPattern", plane, exactly(), plainChecker, -1.0, {}, uvOnBorder},
      {"checkerFiltered", plane, exactly(), plainChecker, 0.0, {}, uvOnBorder},
      {"checkerFiltered",
       {vector2("uv", -1, 1), vector2("count", 1, 4)},
       {4e-3, 0.0,
        "a compute stage has no pixel: the mean over 0.001 cells is a difference of rounded positions"},
       [](Sample const& in) {
         Vec2 const q = in.vec2(0) * in.vec2(1);
         return Result(0.5 - 0.5 * meanFactor(q.x) * meanFactor(q.y));
       },
       100.0},
      {"checkerSolid",
       {vector3("position", -2, 2), vector3("count", 1, 8)},
       exactly(),
       [](Sample const& in) {
         Vec3 const q = in.vec3(0) * in.vec3(1);
         return Result(checker(std::floor(q.x) + std::floor(q.y) + std::floor(q.z)));
       },
       -1.0,
       {},
       [](Sample const& in) {
         Vec3 const q = in.vec3(0) * in.vec3(1);
         return onBorder(q.x) || onBorder(q.y) || onBorder(q.z);
       }},
      {"stripePattern",
       {number("position", -2, 2), number("count", 1, 8), number("width", 0, 1), number("softness", 0.02, 1)},
       kCells,
       [](Sample const& in) {
         double const fromMiddle = 1.0 - 2.0 * toNearestWhole(in(0) * in(1));
         return Result(1.0 - ramp(in(2), in(2) + in(3), fromMiddle));
       }},
      {"dotPattern",
       {vector2("uv", -2, 2), vector2("count", 1, 8), number("radius", 0, 0.6), number("softness", 0.02, 1)},
       kCells,
       [](Sample const& in) {
         double const distance = length(fromCellCentre(in.vec2(0) * in.vec2(1)));
         return Result(1.0 - ramp(in(2), in(2) + in(3), distance));
       }},
      {"gridPattern",
       {vector2("uv", -2, 2), vector2("count", 1, 8), number("width", 0.05, 0.9)},
       exactly(),
       [](Sample const& in) {
         Vec2 const q = in.vec2(0) * in.vec2(1);
         return Result(std::min(toNearestWhole(q.x), toNearestWhole(q.y)) < in(2) / 2.0 ? 1.0 : 0.0);
       },
       -1.0,
       {},
       [](Sample const& in) {
         Vec2 const q = in.vec2(0) * in.vec2(1);
         return std::fabs(std::min(toNearestWhole(q.x), toNearestWhole(q.y)) - in(2) / 2.0) < 1e-5;
       }},
      {"hexagonPattern",
       {vector2("uv", -2, 2), number("count", 1, 8)},
       rounding(8, 16),
       hexagons,
       -1.0,
       {},
       [](Sample const& in) { return hexagons(in).values()[0] < 1e-5; }},
  };
}

std::vector<Row> wallRows() {
  std::vector<Input> const wall = {vector2("uv", -2, 2),        vector2("count", 1, 8),
                                   number("mortar", 0.1, 0.4),  vector3("brickTint", 0, 1),
                                   vector3("mortarTint", 0, 1), number("variation", 0, 1)};
  return {
      {"brickPattern",
       {vector2("uv", -2, 2), vector2("count", 1, 8), number("mortar", 0.1, 0.4), number("shift", 0, 1)},
       kCells,
       [](Sample const& in) {
         Brick const brick = brickAt(in.vec2(0), in.vec2(1), in(2), in(3));
         return Result(brick.mask, brick.random);
       },
       -1.0,
       {},
       [](Sample const& in) { return onBorder(inBricks(in.vec2(0), in.vec2(1), in(3))); }},
      {"brickColor",
       wall,
       kCells,
       [](Sample const& in) {
         Brick const brick = brickAt(in.vec2(0), in.vec2(1), in(2), 0.5);
         Vec3 const tint = in.vec3(3) * (1.0 + in(5) * (brick.random - 0.5));
         return Result(mix(in.vec3(4), tint, brick.mask), brick.mask);
       },
       100.0,
       {},
       [](Sample const& in) { return onBorder(inBricks(in.vec2(0), in.vec2(1), 0.5)); }},
      {"brickColor", wall, rounding(8, 1),
       [](Sample const& in) {
         // The mortar takes its width off each brick's height and, in brick heights, off its width.
         double const widthInHeights = in.vec2(1).y / in.vec2(1).x;
         double const share = (1.0 - in(2)) * std::max(widthInHeights - in(2), 0.0) / widthInHeights;
         return Result(mix(in.vec3(4), in.vec3(3), share), share);
       },
       0.0},
  };
}

std::vector<Row> materialRows() {
  std::vector<Input> const trunk = {vector3("position", -3, 3), number("rings", 1, 6),
                                    number("distortion", 0, 1), number("grain", 0, 1),
                                    vector3("earlyTint", 0, 1), vector3("lateTint", 0, 1)};
  std::vector<Input> const stone = {vector3("position", -2, 2), number("veins", 0.5, 3),
                                    number("distortion", 0, 2), number("sharpness", 1, 4),
                                    vector3("stoneTint", 0, 1), vector3("veinTint", 0, 1)};
  std::vector<Input> const paint = {vector2("uv", -2, 2),      number("density", 5, 50),
                                    number("spread", 0, 1),    number("coverage", 0, 1),
                                    unit3("sfg_worldTangent"), unit3("sfg_worldBinormal"),
                                    unit3("sfg_worldNormal")};
  Tolerance const veins{2e-3, 0.0, "Vulkan's sine is off by up to 2^-11, to the power of up to 4"};
  return {
      {"woodColor", trunk, kOctaves, [](Sample const& in) { return wood(in, 4, true); }, 100.0},
      {"woodColor", trunk, kOctaves, [](Sample const& in) { return wood(in, 1, false); }, 0.0},
      {"marbleColor", stone, veins, [](Sample const& in) { return marble(in, 6); }, 100.0},
      {"marbleColor", stone, veins, [](Sample const& in) { return marble(in, 2); }, 0.0},
      {"paintFlakes",
       paint,
       {1e-4, 0.0, "a normalisation of sums that nearly cancel"},
       flakes,
       100.0,
       {},
       [](Sample const& in) { return onBorder(in.vec2(0) * in(1)); }},
      {"paintFlakes",
       {vector2("uv", -2, 2), number("density", 5, 50), number("spread", 0, 1), number("coverage", 0, 1),
        vector3("sfg_worldNormal", -2, 2)},
       rounding(16, 1),
       [](Sample const& in) { return Result(unit(in.vec3(4)), in(3)); },
       0.0},
      {"brushedScratches",
       {vector2("uv", -1, 1), number("density", 5, 40), number("stretch", 0.5, 20)},
       {2e-4, 0.0, "positions of up to 160 cells are rounded"},
       [](Sample const& in) {
         Vec2 const q = in.vec2(0) * Vec2{in(1) / std::max(in(2), 1.0), in(1)};
         return Result(0.5 * valueNoise(q) + 0.3 * valueNoise(q * 2.0 + Vec2{0.37, 0.37}) +
                       0.2 * valueNoise(q * 4.0 + Vec2{0.71, 0.71}));
       }},
      {"terrainHeight",
       {vector2("position", -4, 4), number("scale", 0.1, 1), wholeInt("octaves", 0, 5)},
       kOctaves,
       terrainHeight,
       100.0},
      {"terrainHeight",
       {vector2("position", -4, 4), number("scale", 0.1, 1), wholeInt("octaves", 0, 5)},
       kOctaves,
       [](Sample const& in) {
         Vec3 const p{in.vec2(0).x * in(1), in.vec2(0).y * in(1), 0.0};
         return Result(0.8 * clamp01(0.5 + 1.2 * fbm(p, std::min(static_cast<int>(in(2)), 2), 2.0, 0.5)));
       },
       0.0},
      {"terrainColor",
       {number("height", 0, 1), unit3("normal"), number("waterLine", 0.1, 0.4), number("snowLine", 0.5, 0.9)},
       rounding(64, 1),
       terrainPaint},
  };
}

// A compute stage has no pixels: the filtered pattern is the plain one.
Row filteredRow(std::vector<Row> const& rows, std::string const& plain, std::string const& filtered) {
  Row row = *std::find_if(rows.begin(), rows.end(), [&](Row const& each) { return each.fragment == plain; });
  row.fragment = filtered;
  row.tolerance = kCells;
  return row;
}

}  // namespace

Topic patternTopic() {
  Topic topic{"patterns.fraglib", {}};
  for (std::vector<Row> const& rows : {regularRows(), wallRows(), materialRows()}) {
    topic.rows.insert(topic.rows.end(), rows.begin(), rows.end());
  }
  for (std::string const name : {"stripe", "dot", "grid", "brick"}) {
    topic.rows.push_back(filteredRow(topic.rows, name + "Pattern", name + "Filtered"));
  }
  return topic;
}

}  // namespace numbers_test
