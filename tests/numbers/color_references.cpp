// References of color.fraglib.

#include "tests/numbers/reference_tools.h"
#include "tests/numbers/row.h"

namespace numbers_test {

namespace {

Tolerance const kOneRounding{1e-37, 0.5 * kUlp, "one correctly rounded operation"};
Tolerance const kPower{1e-5, 2e-5, "Vulkan's pow is exp2(b log2 a), log2 2^-21 off around 1"};
Tolerance const kHue{1e-4, 0.0, "the hue divides rounded differences by a chroma of 1e-3 and more"};

// IEC 61966-2-1: the two directions of one channel.
double decodeSrgb(double v) {
  return v <= 0.04045 ? std::max(v, 0.0) / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
}

double encodeSrgb(double v) {
  return v <= 0.0031308 ? 12.92 * std::max(v, 0.0) : 1.055 * std::pow(v, 1.0 / 2.4) - 0.055;
}

// ITU-R BT.709.
double luminanceOf(Vec3 c) { return 0.2126 * c.x + 0.7152 * c.y + 0.0722 * c.z; }

double notNegative(double v) { return std::max(v, 0.0); }

double chromaOf(Vec3 c) { return std::max({c.x, c.y, c.z}) - std::min({c.x, c.y, c.z}); }

// Smith 1978: the hexcone. The hue in sixths grows red, yellow, green, cyan, blue, magenta.
Vec3 toHsv(Vec3 c) {
  double const value = std::max({c.x, c.y, c.z});
  double const chroma = chromaOf(c);
  if (chroma == 0.0) {
    return {0.0, 0.0, value};
  }
  double sixth = 0.0;
  if (value == c.x) {
    sixth = (c.y - c.z) / chroma;
  } else if (value == c.y) {
    sixth = 2.0 + (c.z - c.x) / chroma;
  } else {
    sixth = 4.0 + (c.x - c.y) / chroma;
  }
  return {(sixth < 0.0 ? sixth + 6.0 : sixth) / 6.0, chroma / value, value};
}

Vec3 toRgb(Vec3 hsv) {
  double const sixth = 6.0 * fraction(hsv.x);
  double const f = fraction(sixth);
  double const p = hsv.z * (1.0 - hsv.y);
  double const q = hsv.z * (1.0 - hsv.y * f);
  double const t = hsv.z * (1.0 - hsv.y * (1.0 - f));
  switch (static_cast<int>(sixth)) {
  case 0: return {hsv.z, t, p};
  case 1: return {q, hsv.z, p};
  case 2: return {p, hsv.z, t};
  case 3: return {p, q, hsv.z};
  case 4: return {t, p, hsv.z};
  default: return {hsv.z, p, q};
  }
}

bool nearGrey(Sample const& in) {
  double const chroma = chromaOf(in.vec3(0));
  return chroma > 0.0 && chroma < 1e-3;
}

// Hable 2010: shoulder 0.15, linear strength 0.5 and angle 0.1, toe strength 0.2, numerator 0.02, denominator
// 0.3.
double hableCurve(double x) {
  return ((x * (0.15 * x + 0.1 * 0.5) + 0.2 * 0.02) / (x * (0.15 * x + 0.5) + 0.2 * 0.3)) - 0.02 / 0.3;
}

double narkowiczCurve(double x) {
  return clamp01((2.51 * x * x + 0.03 * x) / (2.43 * x * x + 0.59 * x + 0.14));
}

// Compositing and Blending Level 1, the separable modes: b is the backdrop, s the layer.
double multiplyMode(double b, double s) { return b * s; }

double screenMode(double b, double s) { return 1.0 - (1.0 - b) * (1.0 - s); }

double hardLightMode(double b, double s) {
  return s <= 0.5 ? multiplyMode(b, 2.0 * s) : screenMode(b, 2.0 * s - 1.0);
}

double overlayMode(double b, double s) { return hardLightMode(s, b); }

double softLightMode(double b, double s) {
  if (s <= 0.5) {
    return b - (1.0 - 2.0 * s) * b * (1.0 - b);
  }
  double const d = b <= 0.25 ? ((16.0 * b - 12.0) * b + 4.0) * b : std::sqrt(b);
  return b + (2.0 * s - 1.0) * (d - b);
}

Row blendRow(char const* fragment, double (*mode)(double, double)) {
  return {fragment,
          {vector3("backdrop", 0, 1), vector3("layer", 0, 1), number("opacity", 0, 1)},
          rounding(8, 1),
          [mode](Sample const& in) {
            return Result(mix(in.vec3(0), each(in.vec3(0), in.vec3(1), mode), in(2)));
          }};
}

std::vector<Row> spaceRows() {
  return {
      {"srgbToLinear",
       {vector3("color", -0.2, 1)},
       kPower,
       [](Sample const& in) { return Result(each(in.vec3(0), decodeSrgb)); }},
      {"linearToSrgb",
       {vector3("color", -0.2, 1)},
       kPower,
       [](Sample const& in) { return Result(each(in.vec3(0), encodeSrgb)); }},
      {"gammaEncode",
       {vector3("color", 0, 2), number("gamma", 0.5, 3)},
       kPower,
       [](Sample const& in) {
         return Result(each(in.vec3(0), [&](double v) { return std::pow(v, 1.0 / in(1)); }));
       }},
      {"gammaDecode",
       {vector3("color", 0, 2), number("gamma", 0.5, 3)},
       kPower,
       [](Sample const& in) {
         return Result(each(in.vec3(0), [&](double v) { return std::pow(v, in(1)); }));
       }},
      {"luminance",
       {vector3("color", 0, 8)},
       rounding(4, 8),
       [](Sample const& in) { return Result(luminanceOf(in.vec3(0))); }},
      {"rgbToHsv",
       {vector3("color", 0, 1)},
       kHue,
       [](Sample const& in) { return Result(toHsv(in.vec3(0))); },
       -1.0,
       {},
       nearGrey},
      {"hsvToRgb",
       {vector3("hsv", 0, 1)},
       rounding(16, 1),
       [](Sample const& in) { return Result(toRgb(in.vec3(0))); }},
      {"hueShift",
       {vector3("color", 0, 1), number("turn", -2, 2)},
       rounding(32, 1),
       [](Sample const& in) {
         Vec3 hsv = toHsv(in.vec3(0));
         hsv.x += in(1);
         return Result(toRgb(hsv));
       }},
      {"luminanceInline",
       {vector3("color", 0, 8)},
       rounding(4, 8),
       [](Sample const& in) { return Result(luminanceOf(in.vec3(0))); },
       -1.0,
       "float"},
      {"tintInline",
       {vector3("color", 0, 8), vector3("tint", 0, 1)},
       kOneRounding,
       [](Sample const& in) { return Result(in.vec3(0) * in.vec3(1)); },
       -1.0,
       "float3"},
  };
}

std::vector<Row> adjustmentRows() {
  return {
      {"desaturate",
       {vector3("color", 0, 2), number("amount", -1, 1)},
       rounding(8, 2),
       [](Sample const& in) {
         return Result(each(mix(in.vec3(0), splat(luminanceOf(in.vec3(0))), in(1)), notNegative));
       }},
      {"brightnessContrast",
       {vector3("color", 0, 1), number("brightness", -1, 1), number("contrast", 0, 3)},
       rounding(4, 3),
       [](Sample const& in) {
         return Result(
             each(in.vec3(0), [&](double v) { return notNegative(0.18 + (v - 0.18) * in(2) + in(1)); }));
       }},
      {"invertColor",
       {vector3("color", 0, 1)},
       kOneRounding,
       [](Sample const& in) { return Result(splat(1.0) - in.vec3(0)); }},
      {"exposure",
       {vector3("color", 0, 4), number("stops", -6, 6)},
       {0.0, 16.0 * kUlp, "Vulkan's exp2: 3 + 2 |stops| units in the last place"},
       [](Sample const& in) { return Result(in.vec3(0) * std::exp2(in(1))); }},
      {"colorRampTwo",
       {vector3("low", 0, 1), vector3("high", 0, 1), number("position", -0.5, 1.5)},
       rounding(4, 1),
       [](Sample const& in) { return Result(mix(in.vec3(0), in.vec3(1), clamp01(in(2)))); }},
      {"colorRampThree",
       {vector3("low", 0, 1), vector3("middle", 0, 1), vector3("high", 0, 1), number("position", -0.5, 1.5)},
       rounding(8, 1),
       [](Sample const& in) {
         double const t = 2.0 * clamp01(in(3));
         return Result(t < 1.0 ? mix(in.vec3(0), in.vec3(1), t) : mix(in.vec3(1), in.vec3(2), t - 1.0));
       }},
      {"cosinePalette",
       {vector3("base", 0, 1), vector3("amplitude", 0, 1), vector3("frequency", -0.25, 0.25),
        vector3("phase", -0.25, 0.25), number("position", 0, 1)},
       {0x1p-11, 0.0, "Vulkan's cosine is off by up to 2^-11"},
       [](Sample const& in) {
         Vec3 const angle = (in.vec3(2) * in(4) + in.vec3(3)) * (2.0 * kPi);
         Vec3 const waves = each(angle, [](double v) { return std::cos(v); });
         return Result(each(in.vec3(0) + in.vec3(1) * waves, notNegative));
       }},
  };
}

std::vector<Row> toneRows() {
  return {
      {"toneMapReinhard",
       {vector3("color", 0, 8)},
       rounding(12, 1),
       [](Sample const& in) { return Result(in.vec3(0) * (1.0 / (1.0 + luminanceOf(in.vec3(0))))); }},
      {"toneMapReinhardWhite",
       {vector3("color", 0, 8), number("white", 1, 6)},
       rounding(16, 8),
       [](Sample const& in) {
         double const l = luminanceOf(in.vec3(0));
         return Result(in.vec3(0) * ((1.0 + l / (in(1) * in(1))) / (1.0 + l)));
       }},
      {"toneMapHable",
       {vector3("color", 0, 8)},
       rounding(32, 1),
       [](Sample const& in) {
         return Result(
             each(in.vec3(0), [](double v) { return clamp01(hableCurve(2.0 * v) / hableCurve(11.2)); }));
       }},
      {"toneMapAces",
       {vector3("color", 0, 8)},
       rounding(12, 1),
       [](Sample const& in) { return Result(each(in.vec3(0), narkowiczCurve)); }},
  };
}

std::vector<Row> blendRows() {
  return {
      blendRow("blendNormal", [](double, double s) { return s; }),
      {"blendAdd",
       {vector3("backdrop", 0, 2), vector3("layer", 0, 2), number("opacity", 0, 1)},
       rounding(4, 2),
       [](Sample const& in) { return Result(in.vec3(0) + in.vec3(1) * in(2)); }},
      blendRow("blendMultiply", multiplyMode),
      blendRow("blendScreen", screenMode),
      blendRow("blendDifference", [](double b, double s) { return std::fabs(b - s); }),
      blendRow("blendDarken", [](double b, double s) { return std::min(b, s); }),
      blendRow("blendLighten", [](double b, double s) { return std::max(b, s); }),
      blendRow("blendHardLight", hardLightMode),
      blendRow("blendOverlay", overlayMode),
      blendRow("blendSoftLight", softLightMode),
  };
}

}  // namespace

Topic colorTopic() {
  Topic topic{"color.fraglib", {}};
  for (std::vector<Row> const& rows : {spaceRows(), adjustmentRows(), toneRows(), blendRows()}) {
    topic.rows.insert(topic.rows.end(), rows.begin(), rows.end());
  }
  return topic;
}

}  // namespace numbers_test
