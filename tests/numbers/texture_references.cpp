// References of textures.fraglib, over the texture of reference_texture.h. What asks neighbouring pixels has
// none here: bumps are flat and nothing bends.

#include "tests/numbers/texture_references.h"

#include "tests/numbers/reference_noise.h"
#include "tests/numbers/reference_texture.h"
#include "tests/numbers/reference_tools.h"

namespace numbers_test {

namespace {

Tolerance const kRead{1e-4, 0.0, "rounding of a place of up to 40 texels, 1 for each texel at most"};
Tolerance const kTurnedRead{8e-3, 0.0, "Vulkan's sine, cosine and arc functions, times 8 texels"};
Tolerance const kBlended{2e-4, 0.0, "reads, and Vulkan's pow"};
Tolerance const kNormal{2e-3, 0.0, "reads before a normalisation of vectors longer than 0.1"};

constexpr double kShortest = 0.1;

Vec3 rgb(Vec4 v) { return {v.x, v.y, v.z}; }
Result colorAndAlpha(Vec4 texel) { return Result(rgb(texel), texel.w); }

double decodeSrgb(double v) { return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4); }
Vec3 linear(Vec3 v) { return each(v, decodeSrgb); }

// A projection along an axis: where a place lies in the texture, seen from outside, and the directions in
// which u and v grow.
struct Projection {
  Vec3 alongU;
  Vec3 alongV;
  Vec2 place(Vec3 p) const { return {dot(p, alongU), dot(p, alongV)}; }
};

Projection onX(Vec3 n) { return {{0.0, 0.0, n.x < 0.0 ? 1.0 : -1.0}, {0.0, -1.0, 0.0}}; }
Projection onY(Vec3 n) { return {{1.0, 0.0, 0.0}, {0.0, 0.0, n.y < 0.0 ? -1.0 : 1.0}}; }
Projection onZ(Vec3 n) { return {{n.z < 0.0 ? -1.0 : 1.0, 0.0, 0.0}, {0.0, -1.0, 0.0}}; }

// The projection along the axis that the normal is nearest to.
Projection onNearest(Vec3 n) {
  double const x = std::fabs(n.x);
  double const y = std::fabs(n.y);
  double const z = std::fabs(n.z);
  if (x >= y && x >= z) {
    return onX(n);
  }
  return y >= z ? onY(n) : onZ(n);
}

bool twoAxesAreNear(Vec3 n) {
  double const x = std::fabs(n.x);
  double const y = std::fabs(n.y);
  double const z = std::fabs(n.z);
  return (std::fabs(x - y) < 1e-6 && x > z) || (std::fabs(y - z) < 1e-6 && y > x) ||
         (std::fabs(x - z) < 1e-6 && z > y);
}

// The sum of what `read` answers for the three projections, by the powers of the normal.
template <typename Read>
Vec3 blended(Vec3 n, double sharpness, Read const& read) {
  Vec3 const w = each(n, [&](double v) { return std::pow(std::fabs(v), sharpness); });
  return (read(onX(n)) * w.x + read(onY(n)) * w.y + read(onZ(n)) * w.z) * (1.0 / (w.x + w.y + w.z));
}

Vec3 unscaledNormal(Vec3 encoded, double strength) {
  return {(2.0 * encoded.x - 1.0) * strength, (2.0 * encoded.y - 1.0) * strength, 2.0 * encoded.z - 1.0};
}

Vec3 unpacked(Vec3 encoded, double strength) { return unit(unscaledNormal(encoded, strength)); }

bool isShort(Vec3 v) { return length(v) < kShortest; }

// `frame` is the position of normal, tangent and binormal among the inputs.
Vec3 outOfTangentSpace(Vec3 n, Sample const& in, std::size_t frame) {
  return in.vec3(frame + 1) * n.x + in.vec3(frame + 2) * n.y + in.vec3(frame) * n.z;
}

std::vector<Input> withFrame(std::vector<Input> inputs) {
  inputs.insert(inputs.end(),
                {unit3("sfg_worldNormal"), across3("sfg_worldTangent"), across3("sfg_worldBinormal")});
  return inputs;
}

std::vector<Input> withSight(std::vector<Input> inputs) {
  inputs = withFrame(std::move(inputs));
  inputs.insert(inputs.end(), {vector3("sfg_eyePosition", 2, 8), vector3("sfg_worldPosition", -2, 2)});
  return inputs;
}

// To the eye, in tangent space; `frame` as above.
Vec3 sight(Sample const& in, std::size_t frame) {
  Vec3 const toEye = unit(in.vec3(frame + 3) - in.vec3(frame + 4));
  return {dot(toEye, in.vec3(frame + 1)), dot(toEye, in.vec3(frame + 2)), dot(toEye, in.vec3(frame))};
}

// Where a line of sight goes below the relief, between two of equally deep steps, as if the relief were
// straight there. Depth is 0 on the surface and 1 at the bottom.
struct Relief {
  Vec2 start;
  Vec2 travel;
  int steps = 0;

  Vec2 at(double depth) const { return start + travel * depth; }
  double depthOf(int step) const { return static_cast<double>(step) / steps; }
  // How far above the relief the line is at a step; below it from 0 on.
  double above(int step) const { return (1.0 - textureAt(at(depthOf(step))).x) - depthOf(step); }

  Vec2 met() const {
    for (int i = 1; i <= steps; ++i) {
      if (above(i) <= 0.0) {
        double const share = above(i - 1) / (above(i - 1) - above(i));
        return at(mix(depthOf(i - 1), depthOf(i), share));
      }
    }
    return at(1.0);
  }
  // A line that nearly touches the relief may or may not end there.
  bool touches() const {
    for (int i = 1; i <= steps; ++i) {
      if (std::fabs(above(i)) < 2e-5) {
        return true;
      }
      if (above(i) < 0.0) {
        return false;
      }
    }
    return false;
  }
};

Relief reliefOf(Sample const& in, int steps) {
  Vec3 const v = sight(in, 2);
  return {in.vec2(0), Vec2{v.x, v.y} * (-in(1) / std::max(v.z, 0.1)), steps};
}

Row marching(double lod, int steps) {
  return {"parallaxOcclusion",
          withSight({vector2("uv", -2, 2), number("depth", 0, 0.2)}),
          {1e-4, 0.0, "rounding of heights, times depths along a sight of up to 2"},
          [steps](Sample const& in) { return Result(reliefOf(in, steps).met()); },
          lod,
          {},
          [steps](Sample const& in) { return reliefOf(in, steps).touches(); }};
}

std::vector<Row> readingRows() {
  Input const uv = vector2("uv", -2, 2);
  Input const level = number("level", 0, 4);
  Input const volume = vector3("position", -2, 2);
  Input const direction = vector3("direction", -3, 3);
  auto const inVolume = [](Sample const& in) { return colorAndAlpha(textureAt(in.vec3(0))); };
  auto const inCube = [](Sample const& in) { return colorAndAlpha(textureTowards(in.vec3(0))); };
  auto const atTheMiddle = [](Sample const& in) { return length(in.vec3(0)) < 0.1; };
  auto const inPlane = [](Sample const& in) { return colorAndAlpha(textureAt(in.vec2(0))); };
  return {
      {"sampleTexture2D", {uv}, kRead, inPlane},
      {"sampleTexture2D", {vector2("sfg_texCoord0", -2, 2)}, kRead, inPlane},
      {"sampleTextureLevel2D",
       {uv, level},
       kRead,
       [](Sample const& in) { return colorAndAlpha(textureAt(in.vec2(0), in(1))); }},
      {"sampleTextureSrgb2D",
       {uv},
       kBlended,
       [](Sample const& in) {
         Vec4 const texel = textureAt(in.vec2(0));
         return Result(linear(rgb(texel)), texel.w);
       }},
      {"sampleMask2D",
       {uv, vector4("channels", -2, 2)},
       {1e-3, 0.0, "four reads, each times up to 2"},
       [](Sample const& in) {
         Vec4 const texel = textureAt(in.vec2(0));
         Vec4 const w = in.vec4(1);
         return Result(texel.x * w.x + texel.y * w.y + texel.z * w.z + texel.w * w.w);
       }},
      {"sampleTexture1D",
       {number("position", -2, 2)},
       kRead,
       [](Sample const& in) { return colorAndAlpha(textureAt(in(0))); }},
      {"sampleTextureLevel1D",
       {number("position", -2, 2), level},
       kRead,
       [](Sample const& in) { return colorAndAlpha(textureAt(in(0), in(1))); }},
      {"sampleTexture3D", {volume}, kRead, inVolume},
      {"sampleTexture3D", {vector3("sfg_objectPosition", -2, 2)}, kRead, inVolume},
      {"sampleTextureLevel3D",
       {volume, level},
       kRead,
       [](Sample const& in) { return colorAndAlpha(textureAt(in.vec3(0), in(1))); }},
      {"sampleTextureCube", {direction}, kRead, inCube, -1.0, {}, atTheMiddle},
      {"sampleTextureCube", {unit3("sfg_worldNormal")}, kRead, inCube},
      {"sampleTextureLevelCube",
       {direction, level},
       kRead,
       [](Sample const& in) { return colorAndAlpha(textureTowards(in.vec3(0), in(1))); },
       -1.0,
       {},
       atTheMiddle},
      // Seen from inside: towards positive x in the middle, towards positive z right of it.
      {"sampleEquirectangular",
       {unit3("direction"), level},
       kTurnedRead,
       [](Sample const& in) {
         Vec3 const d = in.vec3(0);
         return Result(
             rgb(textureAt(Vec2{0.5 + std::atan2(d.z, d.x) / (2.0 * kPi), std::acos(d.y) / kPi}, in(1))));
       }},
      {"cubeReflection",
       {unit3("normal"),
        number("roughness", 0, 1),
        {"lastLevel", "float", Draw::kWhole, 0, 8},
        vector3("sfg_eyePosition", 2, 8),
        vector3("sfg_worldPosition", -2, 2)},
       kBlended,
       [](Sample const& in) {
         Vec3 const toEye = unit(in.vec3(3) - in.vec3(4));
         Vec3 const mirrored = in.vec3(0) * (2.0 * dot(toEye, in.vec3(0))) - toEye;
         return Result(rgb(textureTowards(mirrored, in(1) * in(2))));
       }},
      {"sampleSurfaceMap", {uv}, kRead, [](Sample const& in) { return Result(rgb(textureAt(in.vec2(0)))); }},
      {"detailTexture",
       {vector3("color", 0, 1), uv, vector2("repeats", 0, 8), number("amount", -0.5, 1.5)},
       {1e-3, 0.0, "rounding of a place of up to 128 texels"},
       [](Sample const& in) {
         Vec3 const detail = rgb(textureAt(in.vec2(1) * in.vec2(2))) * 2.0;
         return Result(in.vec3(0) * mix(splat(1.0), detail, clamp01(in(3))));
       }},
      {"flowTexture",
       {uv, vector2("flow", -1, 1), number("period", 0.5, 4), number("sfg_time", 0, 10)},
       {1e-3, 0.0, "rounding of up to 20 periods, times a path of up to 32 texels"},
       [](Sample const& in) {
         auto const copy = [&](double phase) {
           return textureAt(in.vec2(0) - in.vec2(1) * (in(2) * (fraction(phase) - 0.5)));
         };
         double const phase = in(3) / in(2);
         Vec4 const a = copy(phase);
         Vec4 const b = copy(phase + 0.5);
         // 1 in the middle of its period, 0 where it jumps.
         double const share = 1.0 - std::fabs(2.0 * fraction(phase) - 1.0);
         return Result(mix(rgb(b), rgb(a), share), mix(b.w, a.w, share));
       }},
      {"alphaCutout",
       {vector3("color", 0, 1), number("alpha", 0, 1), number("threshold", 0, 1)},
       exactly(),
       [](Sample const& in) { return Result(in.vec3(0)); }},
      {"unpackFlow",
       {vector3("encoded", 0, 1), number("speed", 0, 4)},
       rounding(4, 4),
       [](Sample const& in) {
         return Result((2.0 * in.vec3(0).x - 1.0) * in(1), (2.0 * in.vec3(0).y - 1.0) * in(1));
       }},
  };
}

std::vector<Row> projectedRows() {
  Input const position = vector3("position", -2, 2);
  Input const normal = unit3("normal");
  Input const scale = number("scale", 0.1, 2);
  Input const sharpness = number("sharpness", 0.5, 8);
  auto const colorOf = [](Vec3 p, Vec3 n, double sharp) {
    return Result(blended(n, sharp, [&](Projection const& on) { return rgb(textureAt(on.place(p))); }));
  };
  auto const nearest = [](Sample const& in) {
    return colorAndAlpha(textureAt(onNearest(in.vec3(1)).place(in.vec3(0) * in(2))));
  };
  return {
      {"triplanarTexture",
       {position, normal, scale, sharpness},
       kBlended,
       [colorOf](Sample const& in) { return colorOf(in.vec3(0) * in(2), in.vec3(1), in(3)); },
       100.0},
      {"triplanarTexture",
       {vector3("sfg_worldPosition", -2, 2), unit3("sfg_worldNormal"), scale, sharpness},
       kBlended,
       [colorOf](Sample const& in) { return colorOf(in.vec3(0) * in(2), in.vec3(1), in(3)); },
       100.0},
      {"triplanarTexture",
       {position, normal, scale},
       kRead,
       [](Sample const& in) {
         return Result(rgb(textureAt(onNearest(in.vec3(1)).place(in.vec3(0) * in(2)))));
       },
       0.0,
       {},
       [](Sample const& in) { return twoAxesAreNear(in.vec3(1)); }},
      {"triplanarTextureSrgb",
       {position, normal, scale, sharpness},
       {5e-4, 0.0, "reads, and Vulkan's pow"},
       [](Sample const& in) {
         return Result(blended(in.vec3(1), in(3), [&](Projection const& on) {
           return linear(rgb(textureAt(on.place(in.vec3(0) * in(2)))));
         }));
       }},
      {"triplanarMask",
       {position, normal, scale, sharpness, vector4("channels", -2, 2)},
       {1e-3, 0.0, "reads, each times up to 2"},
       [](Sample const& in) {
         Vec4 const w = in.vec4(4);
         return Result(blended(in.vec3(1), in(3), [&](Projection const& on) {
                         Vec4 const texel = textureAt(on.place(in.vec3(0) * in(2)));
                         return splat(texel.x * w.x + texel.y * w.y + texel.z * w.z + texel.w * w.w);
                       }).x);
       }},
      {"boxTexture",
       {position, normal, scale},
       kRead,
       nearest,
       -1.0,
       {},
       [](Sample const& in) { return twoAxesAreNear(in.vec3(1)); }},
      {"boxTexture",
       {vector3("sfg_worldPosition", -2, 2), unit3("sfg_worldNormal"), scale},
       kRead,
       nearest,
       -1.0,
       {},
       [](Sample const& in) { return twoAxesAreNear(in.vec3(1)); }},
  };
}

// The slopes of the normal map along the directions in which u and v grow, on the normal of the surface.
Vec3 triplanarNormal(Sample const& in) {
  return in.vec3(1) + blended(in.vec3(1), in(3), [&](Projection const& on) {
           Vec3 const n = unpacked(rgb(textureAt(on.place(in.vec3(0) * in(2)))), in(4));
           return on.alongU * n.x + on.alongV * n.y;
         });
}

bool hasShortTexel(Sample const& in) {
  bool isAny = false;
  blended(in.vec3(1), in(3), [&](Projection const& on) {
    isAny = isAny || isShort(unscaledNormal(rgb(textureAt(on.place(in.vec3(0) * in(2)))), in(4)));
    return Vec3{};
  });
  return isAny;
}

// The turn that takes z to `base` on the shortest way, done to `n` (Rodrigues 1840).
Vec3 turnedWith(Vec3 base, Vec3 n) {
  Vec3 const axis = cross({0.0, 0.0, 1.0}, base);
  double const cosine = base.z;
  return n * cosine + cross(axis, n) + axis * (dot(axis, n) / (1.0 + cosine));
}

std::vector<Row> normalRows() {
  Input const uv = vector2("uv", -2, 2);
  Input const strength = number("strength", 0, 4);
  auto const mapped = [](Sample const& in) {
    return outOfTangentSpace(unpacked(rgb(textureAt(in.vec2(0))), in(1)), in, 2);
  };
  return {
      {"unpackNormal",
       {vector3("encoded", 0, 1), strength},
       kNormal,
       [](Sample const& in) { return Result(unpacked(in.vec3(0), in(1))); },
       -1.0,
       {},
       [](Sample const& in) { return isShort(unscaledNormal(in.vec3(0), in(1))); }},
      {"sampleNormalMap",
       {uv, number("strength", 0.5, 4)},
       kNormal,
       [](Sample const& in) { return Result(unpacked(rgb(textureAt(in.vec2(0))), in(1))); },
       -1.0,
       {},
       [](Sample const& in) { return isShort(unscaledNormal(rgb(textureAt(in.vec2(0))), in(1))); }},
      {"tangentToWorld",
       withFrame({vector3("tangentNormal", -1, 1)}),
       kNormal,
       [](Sample const& in) { return Result(unit(outOfTangentSpace(in.vec3(0), in, 1))); },
       -1.0,
       {},
       [](Sample const& in) { return isShort(outOfTangentSpace(in.vec3(0), in, 1)); }},
      {"normalMap",
       withFrame({uv, number("strength", 0.5, 4)}),
       kNormal,
       [mapped](Sample const& in) { return Result(unit(mapped(in))); },
       100.0,
       {},
       [mapped](Sample const& in) {
         return isShort(mapped(in)) || isShort(unscaledNormal(rgb(textureAt(in.vec2(0))), in(1)));
       }},
      {"normalMap",
       {vector3("sfg_worldNormal", -2, 2)},
       {16.0 * kUlp, 0.0, "a normalisation"},
       [](Sample const& in) { return Result(unit(in.vec3(0))); },
       0.0},
      {"triplanarNormalMap",
       {vector3("position", -2, 2), unit3("normal"), number("scale", 0.1, 2), number("sharpness", 0.5, 8),
        number("strength", 0.5, 4)},
       {5e-3, 0.0, "up to three normalisations of vectors longer than 0.1"},
       [](Sample const& in) { return Result(unit(triplanarNormal(in))); },
       -1.0,
       {},
       [](Sample const& in) { return isShort(triplanarNormal(in)) || hasShortTexel(in); }},
      // Slopes, which are x / z and y / z, add up; so do those of a normal that points away.
      {"blendNormalsWhiteout",
       {unit3("base"), unit3("detail")},
       {1e-4, 0.0, "a normalisation"},
       [](Sample const& in) {
         Vec3 const a = in.vec3(0);
         Vec3 const b = in.vec3(1);
         return Result(unit({a.x + b.x, a.y + b.y, a.z * b.z}));
       },
       -1.0,
       {},
       [](Sample const& in) {
         Vec3 const a = in.vec3(0);
         Vec3 const b = in.vec3(1);
         return length(Vec3{a.x + b.x, a.y + b.y, a.z * b.z}) < 0.01;
       }},
      {"blendNormalsReoriented",
       {unit3("base"), unit3("detail")},
       {2e-4, 0.0, "rounding, divided by more than 0.01"},
       [](Sample const& in) { return Result(turnedWith(in.vec3(0), in.vec3(1))); },
       -1.0,
       {},
       [](Sample const& in) { return in.vec3(0).z < -0.99; }},
      {"heightMapNormal",
       {uv, vector2("texel", 0.01, 0.2), number("strength", 0, 10)},
       kNormal,
       [](Sample const& in) {
         double const h = in.vec2(1).x;
         double const k = in.vec2(1).y;
         auto const height = [&](double x, double y) { return textureAt(in.vec2(0) + Vec2{x, y}).x; };
         // The slope per texel, from texels on both sides.
         Vec2 const slope = Vec2{height(h, 0) - height(-h, 0), height(0, k) - height(0, -k)} * (in(2) / 2.0);
         return Result(unit({-slope.x, -slope.y, 1.0}));
       }},
      {"bumpFromHeight",
       {number("height", -1, 1), number("strength", 0, 4), vector3("sfg_worldNormal", -2, 2)},
       {16.0 * kUlp, 0.0, "a normalisation"},
       [](Sample const& in) { return Result(unit(in.vec3(2))); }},
      {"surfaceCurvature",
       {unit3("normal"), vector3("sfg_worldPosition", -2, 2)},
       exactly(),
       [](Sample const&) { return Result(0.0); }},
      {"edgeWear",
       {number("curvature", -40, 40), number("noise", 0, 1), number("threshold", 1, 40),
        number("softness", 0.1, 1)},
       {1e-3, 0.0, "rounding of up to 40, divided by 0.1"},
       [](Sample const& in) {
         // From 0 where the share is 1 - softness to 1 where it is 1.
         double const share = in(0) / in(2) + in(1) - 0.5;
         double const t = clamp01((share - (1.0 - in(3))) / in(3));
         return Result(3.0 * t * t - 2.0 * t * t * t);
       }},
  };
}

// The corners of a grid of equal triangles whose sides are 1, one of them along u, around a place, and how
// much of each is seen: the distance from the opposite side, as a share of the height.
struct Corner {
  Vec2 index;
  double share = 0.0;
};

std::vector<Corner> cornersAround(Vec2 p) {
  double const row = p.y * 2.0 / std::sqrt(3.0);
  double const column = p.x - row / 2.0;
  Vec2 const base{std::floor(column), std::floor(row)};
  double const a = fraction(column);
  double const b = fraction(row);
  if (a + b <= 1.0) {
    return {{base, 1.0 - a - b}, {base + Vec2{1.0, 0.0}, a}, {base + Vec2{0.0, 1.0}, b}};
  }
  return {{base + Vec2{1.0, 1.0}, a + b - 1.0},
          {base + Vec2{0.0, 1.0}, 1.0 - a},
          {base + Vec2{1.0, 0.0}, 1.0 - b}};
}

// What a corner shows: the texture turned about the corner, its middle anywhere. Which random numbers are
// taken is the library's choice.
Vec4 shownBy(Vec2 corner, Vec2 uv, double count, double turning) {
  Vec2 const middle{(corner.x + corner.y / 2.0) / count, corner.y * std::sqrt(3.0) / 2.0 / count};
  Vec2 const away = uv - middle;
  double const angle = (randomOf(corner + Vec2{17.0, 5.0}) - 0.5) * 2.0 * kPi * turning;
  Vec2 const moved{randomOf(corner), randomOf(corner + Vec2{3.0, 31.0})};
  return textureAt(Vec2{std::cos(angle) * away.x - std::sin(angle) * away.y,
                        std::sin(angle) * away.x + std::cos(angle) * away.y} +
                   moved);
}

Result hexTiled(Sample const& in) {
  Vec4 sum;
  double weights = 0.0;
  for (Corner const& corner : cornersAround(in.vec2(0) * in(1))) {
    Vec4 const texel = shownBy(corner.index, in.vec2(0), in(1), in(2));
    double const brightness = 0.2126 * texel.x + 0.7152 * texel.y + 0.0722 * texel.z;
    double const weight = mix(1.0, brightness, in(3)) * std::pow(corner.share, in(4));
    sum = {sum.x + texel.x * weight, sum.y + texel.y * weight, sum.z + texel.z * weight,
           sum.w + texel.w * weight};
    weights += weight;
  }
  return colorAndAlpha({sum.x / weights, sum.y / weights, sum.z / weights, sum.w / weights});
}

std::vector<Row> parallaxRows() {
  return {
      {"parallaxTexture", withSight({vector2("uv", -2, 2), number("depth", 0, 0.2)}), kRead,
       [](Sample const& in) {
         Vec3 const v = sight(in, 2);
         double const below = (1.0 - textureAt(in.vec2(0)).x) * in(1);
         return Result(in.vec2(0) - Vec2{v.x, v.y} * below);
       }},
      marching(100.0, 32),
      marching(50.0, 8),
      {"parallaxOcclusion", withSight({vector2("uv", -2, 2), number("depth", 0, 0.2)}), kRead,
       [](Sample const& in) {
         Vec3 const v = sight(in, 2);
         double const below = (1.0 - textureAt(in.vec2(0)).x) * in(1);
         return Result(in.vec2(0) - Vec2{v.x, v.y} * below);
       },
       0.0},
      {"hexTiledTexture",
       {vector2("uv", -2, 2), number("count", 0.5, 4), number("turning", 0, 1), number("contrast", 0, 0.9),
        number("sharpness", 1, 8)},
       kTurnedRead,
       hexTiled},
  };
}

}  // namespace

Topic textureTopic() {
  Topic topic{"textures.fraglib", {}};
  for (std::vector<Row> const& rows : {readingRows(), projectedRows(), normalRows(), parallaxRows()}) {
    topic.rows.insert(topic.rows.end(), rows.begin(), rows.end());
  }
  return topic;
}

}  // namespace numbers_test
