// References of output.fraglib, postprocess.fraglib and environment.fraglib but for its light.

#include "tests/numbers/output_references.h"

#include "tests/numbers/reference_noise.h"
#include "tests/numbers/reference_texture.h"
#include "tests/numbers/reference_tools.h"

namespace numbers_test {

namespace {

Tolerance const kPower{1e-4, 1e-4, "Vulkan's pow and exp are off by some units in the last place"};

Vec3 rgb(Vec4 v) { return {v.x, v.y, v.z}; }
Vec3 notBelowZero(Vec3 v) {
  return each(v, [](double c) { return std::max(c, 0.0); });
}
double luminanceOf(Vec3 v) { return dot(v, {0.2126, 0.7152, 0.0722}); }

double encodeSrgb(double v) {
  return v <= 0.0031308 ? 12.92 * std::max(v, 0.0) : 1.055 * std::pow(v, 1.0 / 2.4) - 0.055;
}

// Narkowicz 2016.
double filmic(double x) { return clamp01(x * (2.51 * x + 0.03) / (x * (2.43 * x + 0.59) + 0.14)); }

// Of a picture's effect: the colour is input 0, its opacity stays.
template <typename Effect>
std::function<Result(Sample const&)> keepingOpacity(Effect const& effect) {
  return [effect](Sample const& in) { return Result(effect(in, rgb(in.vec4(0))), in.vec4(0).w); };
}

std::vector<Row> outputRows() {
  Input const color = vector3("color", -1, 4);
  Input const alpha = number("alpha", 0, 1);
  return {
      {"outputColor", {color}, exactly(), [](Sample const& in) { return Result(in.vec3(0), 1.0); }},
      {"outputColorAlpha",
       {color, alpha},
       exactly(),
       [](Sample const& in) { return Result(in.vec3(0), in(1)); }},
      {"outputPremultiplied",
       {color, alpha},
       rounding(1, 1e-30),
       [](Sample const& in) { return Result(in.vec3(0) * in(1), in(1)); }},
      {"outputNormal",
       {unit3("normal")},
       rounding(2, 1),
       [](Sample const& in) { return Result((in.vec3(0) + splat(1.0)) * 0.5, 1.0); }},
      {"outputGrey",
       {number("value", -1, 4)},
       exactly(),
       [](Sample const& in) { return Result(splat(in(0)), 1.0); }},
      {"distanceFog",
       {vector3("color", 0, 2), vector3("fog", 0, 2), number("density", 0, 1),
        vector3("sfg_eyePosition", 2, 8), vector3("sfg_worldPosition", -2, 2)},
       kPower,
       [](Sample const& in) {
         double const far = length(in.vec3(3) - in.vec3(4)) * in(2);
         return Result(mix(in.vec3(1), in.vec3(0), std::exp(-far * far)));
       }},
      {"framebuffer",
       {vector4("color", -1, 4)},
       exactly(),
       [](Sample const& in) { return Result(in.vec4(0)); }},
  };
}

std::vector<Row> postRows() {
  Input const color = vector4("color", 0, 4);
  Input const pixel = vector4("sfg_screenPosition", 0, 4000);
  return {
      {"postExposure",
       {color, number("exposure_stops", -4, 4)},
       kPower,
       keepingOpacity([](Sample const& in, Vec3 c) { return c * std::pow(2.0, in(1)); })},
      {"postToneMapAces",
       {vector4("color", -1, 8)},
       rounding(12, 1),
       keepingOpacity([](Sample const&, Vec3 c) { return each(notBelowZero(c), filmic); })},
      {"postToneMapReinhard", {color}, rounding(8, 4), keepingOpacity([](Sample const&, Vec3 c) {
         return c * (1.0 / (1.0 + luminanceOf(c)));
       })},
      {"postSrgb", {vector4("color", -0.2, 1)}, kPower, keepingOpacity([](Sample const&, Vec3 c) {
         return each(c, encodeSrgb);
       })},
      {"postGamma",
       {color, number("gamma_exponent", 0.5, 3)},
       kPower,
       keepingOpacity([](Sample const& in, Vec3 c) {
         return each(c, [&](double v) { return std::pow(v, 1.0 / in(1)); });
       })},
      {"postSaturation",
       {color, number("saturation_amount", 0, 2)},
       rounding(16, 8),
       keepingOpacity(
           [](Sample const& in, Vec3 c) { return notBelowZero(mix(splat(luminanceOf(c)), c, in(1))); })},
      {"postTint",
       {color, vector3("tint_color", 0, 2)},
       rounding(1, 1e-30),
       keepingOpacity([](Sample const& in, Vec3 c) { return c * in.vec3(1); })},
      {"postContrast",
       {color, number("contrast_amount", 0, 3), number("contrast_middle", 0, 1)},
       rounding(4, 16),
       keepingOpacity(
           [](Sample const& in, Vec3 c) { return notBelowZero(splat(in(2)) + (c - splat(in(2))) * in(1)); })},
      // 0 in the middle of the picture, the square root of 2 in its corners.
      {"postVignette",
       {color,
        number("vignette_strength", 0, 1),
        number("vignette_inner", 0, 1.2),
        {"sfg_viewportSize", "float2", Draw::kWhole, 1000, 4000},
        vector4("sfg_screenPosition", 0, 4000)},
       rounding(64, 4),
       keepingOpacity([](Sample const& in, Vec3 c) {
         Vec2 const size = in.vec2(3);
         Vec2 const place{in.vec4(4).x - size.x / 2.0, in.vec4(4).y - size.y / 2.0};
         double const out = std::sqrt(2.0) * length(place) / (length(size) / 2.0);
         double const t = clamp01((out - in(2)) / (std::sqrt(2.0) - in(2)));
         return c * (1.0 - in(1) * (3.0 * t * t - 2.0 * t * t * t));
       })},
      {"postGrain",
       {color, number("grain_amount", 0, 1), pixel, number("sfg_time", 0, 100)},
       rounding(4, 4),
       keepingOpacity([](Sample const& in, Vec3 c) {
         Words3 const words = pcgHash(cellOf(Vec3{in.vec4(2).x, in.vec4(2).y, in(3) * 24.0}));
         return notBelowZero(c + splat(in(1) * (unitFromWord(words[0]) - 0.5)));
       }),
       -1.0,
       {},
       [](Sample const& in) {
         double const frames = in(3) * 24.0;
         return frames != std::round(frames) && std::fabs(frames - std::round(frames)) < 1e-3;
       }},
      // Jimenez 2014: an interleaved gradient.
      {"postDither",
       {vector4("color", 0, 1), {"sfg_screenPosition", "float4", Draw::kWhole, 0, 60}},
       {1e-5, 0.0, "rounding of up to 5, times 53, of a 255th"},
       keepingOpacity([](Sample const& in, Vec3 c) {
         double const magic = fraction(0.06711056 * in.vec4(1).x + 0.00583715 * in.vec4(1).y);
         return c + splat((fraction(52.9829189 * magic) - 0.5) / 255.0);
       }),
       -1.0,
       {},
       [](Sample const& in) {
         double const wave = 52.9829189 * fraction(0.06711056 * in.vec4(1).x + 0.00583715 * in.vec4(1).y);
         return std::fabs(wave - std::round(wave)) < 2e-4;
       }},
  };
}

// The products that nine colours belong to (Ramamoorthi and Hanrahan 2001).
Vec3 harmonics(Sample const& in, Vec3 n) {
  double const factors[] = {
      1.0, n.y, n.z, n.x, n.x * n.y, n.y * n.z, 3.0 * n.z * n.z - 1.0, n.x * n.z, n.x * n.x - n.y * n.y};
  Vec3 sum;
  for (std::size_t i = 0; i < 9; ++i) {
    sum = sum + in.vec3(i + 1) * factors[i];
  }
  return notBelowZero(sum);
}

Vec3 toEye(Sample const& in, std::size_t eye) { return unit(in.vec3(eye) - in.vec3(eye + 1)); }

std::vector<Row> environmentRows() {
  std::vector<Input> nine = {unit3("normal")};
  for (int i = 0; i < 9; ++i) {
    nine.push_back(vector3("diffuse" + std::to_string(i), -1, 1));
  }
  Input const eye = vector3("sfg_eyePosition", 2, 8);
  Input const point = vector3("sfg_worldPosition", -2, 2);
  return {
      {"environmentDiffuse", nine, rounding(32, 4),
       [](Sample const& in) { return Result(harmonics(in, in.vec3(0))); }},
      {"environmentReflection",
       {unit3("normal"), number("roughness", 0, 1), {"lastLevel", "float", Draw::kWhole, 0, 8}, eye, point},
       {2e-4, 0.0, "reads of a cube map"},
       [](Sample const& in) {
         Vec3 const v = toEye(in, 3);
         Vec3 const mirrored = in.vec3(0) * (2.0 * dot(v, in.vec3(0))) - v;
         return Result(rgb(textureTowards(mirrored, in(1) * in(2))));
       }},
      // Of a table of 64 by 64 entries, whose first and last ones hold beyond their middles.
      {"environmentBrdf",
       {vector3("reflectance", 0, 1), unit3("normal"), number("roughness", 0, 1), eye, point},
       {2e-4, 0.0, "a read"},
       [](Sample const& in) {
         auto const inside = [](double v) { return std::clamp(v, 0.5 / 64.0, 63.5 / 64.0); };
         double const cosine = dot(in.vec3(1), toEye(in, 3));
         Vec4 const entry = textureAt(Vec2{inside(cosine), inside(in(2))});
         return Result(in.vec3(0) * entry.x + splat(entry.y));
       }},
  };
}

}  // namespace

Topic outputTopic() { return {"output.fraglib", outputRows()}; }

Topic postTopic() { return {"postprocess.fraglib", postRows()}; }

Topic environmentTopic() { return {"environment.fraglib", environmentRows()}; }

}  // namespace numbers_test
