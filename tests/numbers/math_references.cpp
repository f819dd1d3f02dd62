// References of math.fraglib.

#include "tests/numbers/reference_tools.h"
#include "tests/numbers/row.h"

namespace numbers_test {

namespace {

Tolerance const kOneRounding{1e-37, 0.5 * kUlp, "one correctly rounded operation"};
Tolerance const kDivision{1e-37, 3.0 * kUlp, "Vulkan divides to 2.5 units in the last place"};
Tolerance const kTrigonometry{0x1p-11, 0.0, "Vulkan's sine and cosine are off by up to 2^-11"};
Tolerance const kArcFunction{1e-3, 4096.0 * kUlp,
                             "Vulkan's arc sine: an arc tangent of a rounded root near 1"};
Tolerance const kArcTangent{1e-6, 4096.0 * kUlp,
                            "Vulkan's arc tangent is off by up to 4096 units in the last place"};

// Schlick 1994, "Fast Alternatives to Perlin's Bias and Gain Functions".
double schlickBias(double t, double a) { return t / ((1.0 / a - 2.0) * (1.0 - t) + 1.0); }

double schlickGain(double t, double a) {
  return t < 0.5 ? schlickBias(2.0 * t, a) / 2.0 : 1.0 - schlickBias(2.0 - 2.0 * t, a) / 2.0;
}

double rampPosition(Sample const& in, bool isClamped = true) {
  double const t = (in(2) - in(0)) / (in(1) - in(0));
  return isClamped ? clamp01(t) : t;
}

std::vector<Row> unaryRows() {
  return {
      {"squareRootFloat",
       {number("a", -2, 100)},
       {1e-7, 3.0 * kUlp, "Vulkan's square root: the reciprocal of a 2-unit root"},
       [](Sample const& in) { return Result(in(0) > 0.0 ? std::sqrt(in(0)) : 0.0); }},
      {"absoluteFloat",
       {number("a", -10, 10)},
       exactly(),
       [](Sample const& in) { return Result(std::fabs(in(0))); }},
      {"signFloat",
       {number("a", -10, 10)},
       exactly(),
       [](Sample const& in) {
         return Result(in(0) > 0.0 ? 1.0 : in(0) < 0.0 ? -1.0 : 0.0);
       }},
      {"negateFloat", {number("a", -10, 10)}, exactly(), [](Sample const& in) { return Result(-in(0)); }},
      {"oneMinusFloat",
       {number("a", -10, 10)},
       kOneRounding,
       [](Sample const& in) { return Result(1.0 - in(0)); }},
      {"floorFloat",
       {number("a", -50, 50)},
       exactly(),
       [](Sample const& in) { return Result(std::floor(in(0))); }},
      {"ceilFloat",
       {number("a", -50, 50)},
       exactly(),
       [](Sample const& in) { return Result(std::ceil(in(0))); }},
      {"fractFloat",
       {number("a", -50, 50)},
       kOneRounding,
       [](Sample const& in) { return Result(fraction(in(0))); }},
      {"saturateFloat",
       {number("a", -2, 3)},
       exactly(),
       [](Sample const& in) { return Result(clamp01(in(0))); }},
      {"sineFloat",
       {number("a", -kPi, kPi)},
       kTrigonometry,
       [](Sample const& in) { return Result(std::sin(in(0))); }},
      {"cosineFloat",
       {number("a", -kPi, kPi)},
       kTrigonometry,
       [](Sample const& in) { return Result(std::cos(in(0))); }},
      {"exponentialFloat",
       {number("a", -10, 10)},
       {0.0, 23.0 * kUlp, "Vulkan's exp: 3 + 2 |a| units in the last place"},
       [](Sample const& in) { return Result(std::exp(in(0))); }},
      {"logarithmFloat",
       {number("a", -1, 100)},
       {0x1p-21, 3.0 * kUlp, "Vulkan's log: 2^-21 around 1, else 3 units"},
       [](Sample const& in) { return Result(std::log(std::max(in(0), 1e-30))); }},
      {"triangleWave",
       {number("a", -5, 5)},
       rounding(2, 5),
       [](Sample const& in) { return Result(2.0 * std::fabs(in(0) - std::round(in(0)))); }},
  };
}

std::vector<Row> binaryRows() {
  std::vector<Input> const pair = {number("a", -100, 100), number("b", -100, 100)};
  return {
      {"addFloat", pair, kOneRounding, [](Sample const& in) { return Result(in(0) + in(1)); }},
      {"subtractFloat", pair, kOneRounding, [](Sample const& in) { return Result(in(0) - in(1)); }},
      {"multiplyFloat", pair, kOneRounding, [](Sample const& in) { return Result(in(0) * in(1)); }},
      {"divideFloat", pair, kDivision,
       [](Sample const& in) { return Result(in(1) == 0.0 ? 0.0 : in(0) / in(1)); }},
      {"moduloFloat",
       {number("a", -100, 100), number("b", -10, 10)},
       rounding(4, 100),
       [](Sample const& in) {
         if (in(1) == 0.0) {
           return Result(0.0);
         }
         double const rest = std::fmod(in(0), in(1));
         return Result(rest != 0.0 && (rest < 0.0) != (in(1) < 0.0) ? rest + in(1) : rest);
       },
       -1.0,
       {},
       [](Sample const& in) {
         double const turns = in(0) / in(1);
         return in(0) != 0.0 && std::fabs(turns - std::round(turns)) < 4.0 * kUlp * std::fabs(turns);
       }},
      {"powerFloat",
       {number("a", -1, 4), number("b", 0, 4)},
       {1e-6, 2e-5, "Vulkan's pow is exp2(b log2 a), log2 2^-21 off around 1"},
       [](Sample const& in) { return Result(std::pow(std::max(in(0), 0.0), in(1))); }},
      {"minFloat", pair, exactly(), [](Sample const& in) { return Result(std::min(in(0), in(1))); }},
      {"maxFloat", pair, exactly(), [](Sample const& in) { return Result(std::max(in(0), in(1))); }},
      {"stepFloat",
       {number("edge", -1, 1), number("a", -1, 1)},
       exactly(),
       [](Sample const& in) { return Result(in(1) >= in(0) ? 1.0 : 0.0); }},
      {"arcTangentFloat",
       {number("y", -3, 3), number("x", -3, 3)},
       kArcTangent,
       [](Sample const& in) { return Result(std::atan2(in(0), in(1))); },
       -1.0,
       {},
       [](Sample const& in) { return in(0) == 0.0 && in(1) == 0.0; }},
      {"biasFloat",
       {number("a", 0, 1), number("amount", 0.05, 0.95)},
       rounding(20, 1),
       [](Sample const& in) { return Result(schlickBias(in(0), in(1))); }},
      {"gainFloat",
       {number("a", 0, 1), number("amount", 0.05, 0.95)},
       rounding(20, 1),
       [](Sample const& in) { return Result(schlickGain(in(0), in(1))); }},
  };
}

std::vector<Row> widerRows() {
  return {
      {"clampFloat",
       {number("a", -2, 2), number("low", -1, 0), number("high", 0, 1)},
       exactly(),
       [](Sample const& in) { return Result(std::clamp(in(0), in(1), in(2))); }},
      {"mixFloat",
       {number("a", -10, 10), number("b", -10, 10), number("amount", -1, 2)},
       rounding(4, 10),
       [](Sample const& in) { return Result((1.0 - in(2)) * in(0) + in(2) * in(1)); }},
      {"smoothstepFloat",
       {number("low", -2, 0), number("high", 0.5, 2), number("a", -3, 3)},
       rounding(8, 1),
       [](Sample const& in) {
         double const t = rampPosition(in);
         return Result(3.0 * t * t - 2.0 * t * t * t);
       }},
      {"smootherstepFloat",
       {number("low", -2, 0), number("high", 0.5, 2), number("a", -3, 3)},
       rounding(30, 1),
       [](Sample const& in) {
         double const t = rampPosition(in);
         return Result(6.0 * std::pow(t, 5) - 15.0 * std::pow(t, 4) + 10.0 * std::pow(t, 3));
       }},
      {"remapFloat",
       {number("a", -3, 3), number("fromLow", -2, 0), number("fromHigh", 0.5, 2), number("toLow", -5, 5),
        number("toHigh", -5, 5)},
       rounding(8, 100),
       [](Sample const& in) { return Result(in(3) + (in(0) - in(1)) * (in(4) - in(3)) / (in(2) - in(1))); }},
      {"sineWave",
       {number("a", -0.5, 0.5), number("frequency", 0, 1), number("amplitude", -3, 3)},
       {3.0 * 0x1p-11, 0.0, "Vulkan's sine is off by up to 2^-11, times the amplitude"},
       [](Sample const& in) { return Result(in(2) * std::sin(2.0 * kPi * in(1) * in(0))); }},
      {"selectFloat",
       {number("condition", 0, 1), number("whenBelow", -5, 5), number("whenAbove", -5, 5)},
       exactly(),
       [](Sample const& in) { return Result(in(0) < 0.5 ? in(1) : in(2)); }},
  };
}

// Quilez 2013: the corner of radius k is lower than the minimum by k / 4 at most.
double roundedMin(double a, double b, double radius) {
  double const h = std::max(radius - std::fabs(a - b), 0.0) / radius;
  return std::min(a, b) - h * h * radius / 4.0;
}

std::vector<Row> functionRows() {
  return {
      {"arcSineFloat",
       {number("a", -1.5, 1.5)},
       kArcFunction,
       [](Sample const& in) { return Result(std::asin(std::clamp(in(0), -1.0, 1.0))); }},
      {"arcCosineFloat",
       {number("a", -1.5, 1.5)},
       kArcFunction,
       [](Sample const& in) { return Result(std::acos(std::clamp(in(0), -1.0, 1.0))); }},
      {"tangentFloat",
       {number("a", -1.2, 1.2)},
       {8.0 * 0x1p-11, 0.0, "the quotient of Vulkan's sine and cosine, each off by up to 2^-11"},
       [](Sample const& in) { return Result(std::tan(in(0))); }},
      {"roundFloat",
       {number("a", -50, 50)},
       exactly(),
       [](Sample const& in) { return Result(std::floor(in(0) + 0.5)); }},
      {"truncateFloat",
       {number("a", -50, 50)},
       exactly(),
       [](Sample const& in) { return Result(std::trunc(in(0))); }},
      {"reciprocalFloat",
       {number("a", -50, 50)},
       kDivision,
       [](Sample const& in) { return Result(in(0) == 0.0 ? 0.0 : 1.0 / in(0)); }},
      {"squareFloat",
       {number("a", -50, 50)},
       kOneRounding,
       [](Sample const& in) { return Result(in(0) * in(0)); }},
      {"exponentialTwoFloat",
       {number("a", -10, 10)},
       {0.0, 23.0 * kUlp, "Vulkan's exp2: 3 + 2 |a| units in the last place"},
       [](Sample const& in) { return Result(std::exp2(in(0))); }},
      {"logarithmTwoFloat",
       {number("a", -1, 100)},
       {0x1p-21, 3.0 * kUlp, "Vulkan's log2: 2^-21 around 1, else 3 units"},
       [](Sample const& in) { return Result(std::log2(std::max(in(0), 1e-30))); }},
      {"radiansFromDegrees",
       {number("degrees", -720, 720)},
       rounding(2, 1e-6),
       [](Sample const& in) { return Result(in(0) / 180.0 * kPi); }},
      {"degreesFromRadians",
       {number("radians", -10, 10)},
       rounding(2, 1e-6),
       [](Sample const& in) { return Result(in(0) * 180.0 / kPi); }},
      {"gaussianFloat",
       {number("a", -2, 2), number("deviation", 0.2, 3)},
       {1e-5, 0.0, "Vulkan's exp: 3 + 2 |a| units in the last place"},
       [](Sample const& in) { return Result(std::exp(-0.5 * in(0) * in(0) / (in(1) * in(1)))); }},
      {"multiplyAddFloat",
       {number("a", -10, 10), number("factor", -5, 5), number("offset", -10, 10)},
       rounding(2, 60),
       [](Sample const& in) { return Result(in(0) * in(1) + in(2)); }},
      {"smoothMinFloat",
       {number("a", -2, 2), number("b", -2, 2), number("radius", 0.1, 2)},
       rounding(8, 3),
       [](Sample const& in) { return Result(roundedMin(in(0), in(1), in(2))); }},
      {"smoothMaxFloat",
       {number("a", -2, 2), number("b", -2, 2), number("radius", 0.1, 2)},
       rounding(8, 3),
       [](Sample const& in) { return Result(-roundedMin(-in(0), -in(1), in(2))); }},
      {"inverseMixFloat",
       {number("low", -2, 0), number("high", 0.5, 2), number("a", -3, 3)},
       rounding(6, 10),
       [](Sample const& in) { return Result(rampPosition(in, false)); }},
  };
}

// Whether a wave of that period jumps next to a number, given the places of its jumps in periods.
bool nearJump(double turns, double jump) {
  double const off = turns - jump - std::round(turns - jump);
  return off != 0.0 && std::fabs(off) < 1e-5;
}

std::vector<Row> periodicRows() {
  return {
      {"wrapFloat",
       {number("a", -5, 5), number("low", -2, 0), number("high", 0.5, 2)},
       rounding(16, 4),
       [](Sample const& in) {
         double const period = in(2) - in(1);
         return Result(in(1) + period * fraction((in(0) - in(1)) / period));
       },
       -1.0,
       {},
       [](Sample const& in) {
         double const turns = (in(0) - in(1)) / (in(2) - in(1));
         return std::fabs(turns - std::round(turns)) < 1e-5 && in(0) != in(1);
       }},
      {"pingPongFloat",
       {number("a", -5, 5), number("reach", 0.5, 3)},
       rounding(16, 4),
       [](Sample const& in) {
         double const period = 2.0 * in(1);
         double const at = in(0) - period * std::floor(in(0) / period);
         return Result(at < in(1) ? at : period - at);
       }},
      {"snapFloat",
       {number("a", -5, 5), number("stride", 0.1, 2)},
       rounding(2, 5),
       [](Sample const& in) { return Result(std::floor(in(0) / in(1)) * in(1)); },
       -1.0,
       {},
       [](Sample const& in) { return nearJump(in(0) / in(1), 0.0) || in(0) == in(1); }},
      {"sawtoothWave",
       {number("a", -5, 5)},
       kOneRounding,
       [](Sample const& in) { return Result(fraction(in(0))); }},
      {"squareWave",
       {number("a", -5, 5), number("share", 0.01, 1)},
       exactly(),
       [](Sample const& in) { return Result(fraction(in(0)) < in(1) ? 1.0 : 0.0); },
       -1.0,
       {},
       [](Sample const& in) { return nearJump(in(0), in(1)) || nearJump(in(0), 0.0); }},
  };
}

std::vector<Row> inlineRows() {
  std::vector<Input> const pair = {vector3("a", -10, 10), vector3("b", -10, 10)};
  return {
      {"addInline", pair, kOneRounding, [](Sample const& in) { return Result(in.vec3(0) + in.vec3(1)); },
       -1.0, "float3"},
      {"subtractInline", pair, kOneRounding, [](Sample const& in) { return Result(in.vec3(0) - in.vec3(1)); },
       -1.0, "float3"},
      {"multiplyInline",
       {vector3("a", -10, 10), number("b", -10, 10)},
       kOneRounding,
       [](Sample const& in) { return Result(in.vec3(0) * in(1)); },
       -1.0,
       "float3"},
      {"mixInline",
       {vector3("a", -10, 10), vector3("b", -10, 10), number("amount", -1, 2)},
       rounding(4, 10),
       [](Sample const& in) { return Result(mix(in.vec3(0), in.vec3(1), in(2))); },
       -1.0,
       "float3"},
      {"oneMinusInline",
       {vector3("a", -10, 10)},
       kOneRounding,
       [](Sample const& in) { return Result(splat(1.0) - in.vec3(0)); },
       -1.0,
       "float3"},
      {"saturateInline",
       {vector3("a", -2, 3)},
       exactly(),
       [](Sample const& in) { return Result(each(in.vec3(0), clamp01)); },
       -1.0,
       "float3"},
      {"negateInline",
       {vector3("a", -10, 10)},
       exactly(),
       [](Sample const& in) { return Result(-in.vec3(0)); },
       -1.0,
       "float3"},
  };
}

}  // namespace

Topic mathTopic() {
  Topic topic{"math.fraglib", {}};
  for (std::vector<Row> const& rows :
       {unaryRows(), binaryRows(), widerRows(), functionRows(), periodicRows(), inlineRows()}) {
    topic.rows.insert(topic.rows.end(), rows.begin(), rows.end());
  }
  return topic;
}

}  // namespace numbers_test
