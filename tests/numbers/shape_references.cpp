// References of shapes.fraglib. A compute stage has no pixels: shapes have hard edges there, and
// ShapeCoverage tests how much of a pixel they cover.

#include "tests/numbers/shape_references.h"

#include "tests/numbers/reference_tools.h"

namespace numbers_test {

namespace {

Tolerance const kHard{1e-6, 0.0, "0 or 1"};

Vec2 turned(Vec2 p, double angle) {
  return {std::cos(angle) * p.x + std::sin(angle) * p.y, std::cos(angle) * p.y - std::sin(angle) * p.x};
}

double hexagonBorder(Vec2 p, double radius) {
  double outward = 0.0;
  for (int side = 0; side < 6; ++side) {
    outward = std::max(outward, dot(p, Vec2{std::cos(side * kPi / 3.0), std::sin(side * kPi / 3.0)}));
  }
  return outward - radius;
}

double cloverleafBorder(Vec2 p, double radius) {
  double nearest = HUGE_VAL;
  for (Vec2 const towards : {Vec2{1, 0}, Vec2{0, 1}, Vec2{-1, 0}, Vec2{0, -1}}) {
    nearest = std::min(nearest, length(p - towards * (radius / 2.0)) - radius / 2.0);
  }
  return nearest;
}

double segmentBorder(Vec2 p, Vec2 from, Vec2 to, double width) {
  Vec2 const along = to - from;
  double const share = clamp01(dot(p - from, along) / std::max(dot(along, along), 1e-12));
  return length(p - mix(from, to, share)) - width / 2.0;
}

Row shape(std::string const& fragment, std::vector<Input> const& inputs,
          std::function<double(Sample const&)> const& border) {
  return {fragment,
          inputs,
          kHard,
          [border](Sample const& in) { return Result(border(in) < 0.0 ? 1.0 : 0.0); },
          -1.0,
          {},
          // Sines are off by 2^-11 on Vulkan.
          [border](Sample const& in) { return std::fabs(border(in)) < 4e-3; }};
}

// The centres of hexagons of width 1 have two kinds of places, so that the nearest is found among all.
Result tiles(Sample const& in) {
  double const root3 = std::sqrt(3.0);
  Vec2 const p = in.vec2(0) * in(1);
  double nearest = HUGE_VAL;
  Vec2 index;
  Vec2 inside;
  for (double row = std::floor(2.0 * p.y / root3) - 2.0; row <= 2.0 * p.y / root3 + 2.0; row += 1.0) {
    for (double half = std::floor(2.0 * p.x) - 3.0; half <= 2.0 * p.x + 3.0; half += 1.0) {
      Vec2 const to = p - Vec2{half / 2.0, row * root3 / 2.0};
      if (std::fabs(std::fmod(half + row, 2.0)) == 0.0 && length(to) < nearest) {
        nearest = length(to);
        index = {half, row};
        inside = to;
      }
    }
  }
  return Result(inside, index, -hexagonBorder(inside, 0.5));
}

}  // namespace

Topic shapeTopic() {
  Input const uv = vector2("uv", -1, 1);
  Input const centre = vector2("centre", -0.3, 0.3);
  Input const radius = number("radius", 0.1, 0.9);
  Input const rotation = number("rotation", -kPi, kPi);
  auto const local = [](Sample const& in) { return turned(in.vec2(0) - in.vec2(1), in(3)); };
  return {
      "shapes.fraglib",
      {
          shape("lineShape", {uv, vector2("from", -1, 1), vector2("to", -1, 1), number("width", 0, 1)},
                [](Sample const& in) { return segmentBorder(in.vec2(0), in.vec2(1), in.vec2(2), in(3)); }),
          shape("circleShape", {uv, centre, radius},
                [](Sample const& in) { return length(in.vec2(0) - in.vec2(1)) - in(2); }),
          shape("hexagonShape", {uv, centre, radius, rotation},
                [local](Sample const& in) { return hexagonBorder(local(in), in(2)); }),
          shape("cloverleafShape", {uv, centre, radius, rotation},
                [local](Sample const& in) { return cloverleafBorder(local(in), in(2)); }),
          {"hexagonTiles",
           {vector2("uv", -2, 2), number("count", 1, 8)},
           {1e-5, 0.0, "positions of up to 16 tiles are rounded"},
           tiles,
           -1.0,
           {},
           [](Sample const& in) { return tiles(in).values()[4] < 1e-4; }},
      }};
}

}  // namespace numbers_test
