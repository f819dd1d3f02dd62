// References of logic.fraglib and operators.fraglib.

#include "tests/numbers/reference_tools.h"
#include "tests/numbers/row.h"

namespace numbers_test {

namespace {

Tolerance const kOneRounding{1e-37, 0.5 * kUlp, "one correctly rounded operation"};
Tolerance const kDivision{1e-37, 3.0 * kUlp, "Vulkan divides to 2.5 units in the last place"};
Tolerance const kTrigonometry{0x1p-11, 0.0, "Vulkan's sine and cosine are off by up to 2^-11"};

Result truth(bool is) { return Result(is ? 1.0 : 0.0); }

std::vector<Row> comparisonRows() {
  std::vector<Input> const pair = {whole("a", -3, 3), whole("b", -3, 3)};
  std::vector<Input> const conditions = {number("first", 0, 1), number("second", 0, 1)};
  return {
      {"isLessFloat", pair, exactly(), [](Sample const& in) { return truth(in(0) < in(1)); }},
      {"isGreaterFloat", pair, exactly(), [](Sample const& in) { return truth(in(0) > in(1)); }},
      {"isEqualFloat",
       {whole("a", -3, 3), whole("b", -3, 3), number("tolerance", -1, 2)},
       exactly(),
       [](Sample const& in) { return truth(std::fabs(in(0) - in(1)) <= std::max(in(2), 0.0)); }},
      {"isBetweenFloat",
       {whole("a", -3, 3), whole("low", -3, 0), whole("high", 0, 3)},
       exactly(),
       [](Sample const& in) { return truth(in(0) >= in(1) && in(0) <= in(2)); }},
      {"andCondition", conditions, exactly(),
       [](Sample const& in) { return truth(in(0) >= 0.5 && in(1) >= 0.5); }},
      {"orCondition", conditions, exactly(),
       [](Sample const& in) { return truth(in(0) >= 0.5 || in(1) >= 0.5); }},
      {"eitherCondition", conditions, exactly(),
       [](Sample const& in) { return truth((in(0) >= 0.5) != (in(1) >= 0.5)); }},
      {"notCondition",
       {number("first", 0, 1)},
       exactly(),
       [](Sample const& in) { return truth(in(0) < 0.5); }},
  };
}

std::vector<Row> choiceRows() {
  return {
      {"selectFloat2",
       {number("condition", 0, 1), vector2("whenBelow", -5, 5), vector2("whenAbove", -5, 5)},
       exactly(),
       [](Sample const& in) { return Result(in(0) < 0.5 ? in.vec2(1) : in.vec2(2)); }},
      {"selectFloat3",
       {number("condition", 0, 1), vector3("whenBelow", -5, 5), vector3("whenAbove", -5, 5)},
       exactly(),
       [](Sample const& in) { return Result(in(0) < 0.5 ? in.vec3(1) : in.vec3(2)); }},
      {"selectFloat4",
       {number("condition", 0, 1), vector4("whenBelow", -5, 5), vector4("whenAbove", -5, 5)},
       exactly(),
       [](Sample const& in) { return Result(in(0) < 0.5 ? in.vec4(1) : in.vec4(2)); }},
      {"switchFloat3",
       {number("index", -2, 6), vector3("first", -5, 5), vector3("second", -5, 5), vector3("third", -5, 5),
        vector3("fourth", -5, 5)},
       exactly(),
       [](Sample const& in) {
         return Result(in.vec3(1 + static_cast<std::size_t>(std::clamp(std::floor(in(0)), 0.0, 3.0))));
       }},
  };
}

Row expression(std::string const& fragment, std::vector<Input> const& inputs, Tolerance const& tolerance,
               std::function<Result(Sample const&)> const& reference, std::string const& type = "float3") {
  return {fragment, inputs, tolerance, reference, -1.0, type, {}};
}

Row eachOf(std::string const& fragment, double low, double high, Tolerance const& tolerance,
           double (*f)(double)) {
  return expression(fragment, {vector3("a", low, high)}, tolerance,
                    [f](Sample const& in) { return Result(each(in.vec3(0), f)); });
}

Row eachOfTwo(std::string const& fragment, std::vector<Input> const& inputs, Tolerance const& tolerance,
              double (*f)(double, double)) {
  return expression(fragment, inputs, tolerance,
                    [f](Sample const& in) { return Result(each(in.vec3(0), in.vec3(1), f)); });
}

std::vector<Row> componentwiseRows() {
  std::vector<Input> const pair = {vector3("a", -10, 10), vector3("b", -10, 10)};
  std::vector<Input> const quotient = {vector3("a", -10, 10), vector3("b", 0.5, 10)};
  Row modulo = eachOfTwo("moduloInline", quotient, rounding(4, 20),
                         [](double a, double b) { return a - b * std::floor(a / b); });
  modulo.onEdge = [](Sample const& in) {
    Vec3 const turns = each(in.vec3(0), in.vec3(1), [](double a, double b) { return a / b; });
    Vec3 const off = each(turns, [](double t) { return std::fabs(t - std::round(t)); });
    return std::min({off.x, off.y, off.z}) < 1e-5 && turns.x * turns.y * turns.z != 0.0;
  };
  Row fractional = eachOf("fractInline", -50, 50, kOneRounding, fraction);
  return {
      eachOfTwo("divideInline", quotient, kDivision, [](double a, double b) { return a / b; }),
      eachOfTwo("minInline", pair, exactly(), [](double a, double b) { return std::min(a, b); }),
      eachOfTwo("maxInline", pair, exactly(), [](double a, double b) { return std::max(a, b); }),
      eachOfTwo("averageInline", pair, rounding(1, 10), [](double a, double b) { return (a + b) / 2.0; }),
      eachOfTwo("stepInline", {vector3("edge", -1, 1), vector3("a", -1, 1)}, exactly(),
                [](double edge, double a) { return a < edge ? 0.0 : 1.0; }),
      eachOfTwo("powerInline", {vector3("a", -1, 4), vector3("b", 0.1, 4)},
                {1e-6, 2e-5, "Vulkan's pow is exp2(b log2 a), log2 2^-21 off around 1"},
                [](double a, double b) { return a > 0.0 ? std::pow(a, b) : 0.0; }),
      modulo,
      fractional,
      eachOf("absoluteInline", -10, 10, exactly(), [](double v) { return std::fabs(v); }),
      eachOf("signInline", -10, 10, exactly(), [](double v) { return v > 0.0   ? 1.0
                                                                     : v < 0.0 ? -1.0
                                                                               : 0.0; }),
      eachOf("floorInline", -50, 50, exactly(), [](double v) { return std::floor(v); }),
      eachOf("ceilInline", -50, 50, exactly(), [](double v) { return std::ceil(v); }),
      eachOf("roundInline", -50, 50, exactly(), [](double v) { return std::floor(v + 0.5); }),
      eachOf("squareRootInline", -2, 100,
             {1e-7, 3.0 * kUlp, "Vulkan's square root: the reciprocal of a 2-unit root"},
             [](double v) { return std::sqrt(std::max(v, 0.0)); }),
      eachOf("squareInline", -10, 10, kOneRounding, [](double v) { return v * v; }),
      eachOf("sineInline", -kPi, kPi, kTrigonometry, [](double v) { return std::sin(v); }),
      eachOf("cosineInline", -kPi, kPi, kTrigonometry, [](double v) { return std::cos(v); }),
      eachOf("exponentialInline", -10, 10, {0.0, 23.0 * kUlp, "Vulkan's exp: 3 + 2 |a| units"},
             [](double v) { return std::exp(v); }),
      eachOf("logarithmInline", -1, 100, {0x1p-21, 3.0 * kUlp, "Vulkan's log: 2^-21 around 1, else 3 units"},
             [](double v) { return std::log(std::max(v, 1e-30)); }),
      expression("clampInline", {vector3("a", -2, 2), vector3("low", -1, 0), vector3("high", 0, 1)},
                 exactly(),
                 [](Sample const& in) {
                   Vec3 const above =
                       each(in.vec3(0), in.vec3(1), [](double a, double b) { return std::max(a, b); });
                   return Result(each(above, in.vec3(2), [](double a, double b) { return std::min(a, b); }));
                 }),
      expression("smoothstepInline", {vector3("low", -2, 0), vector3("high", 0.5, 2), vector3("a", -3, 3)},
                 rounding(12, 1),
                 [](Sample const& in) {
                   Vec3 const size = in.vec3(1) - in.vec3(0);
                   Vec3 const t =
                       each(in.vec3(2) - in.vec3(0), size, [](double a, double b) { return clamp01(a / b); });
                   return Result(each(t, [](double v) { return v * v * (3.0 - 2.0 * v); }));
                 }),
      expression("multiplyAddInline",
                 {vector3("a", -10, 10), vector3("factor", -2, 2), vector3("b", -10, 10)}, rounding(2, 30),
                 [](Sample const& in) { return Result(in.vec3(0) * in.vec3(1) + in.vec3(2)); }),
  };
}

std::vector<Row> vectorExpressionRows() {
  std::vector<Input> const pair = {vector3("a", -10, 10), vector3("b", -10, 10)};
  return {
      expression("crossInline", pair, rounding(4, 100),
                 [](Sample const& in) { return Result(cross(in.vec3(0), in.vec3(1))); }),
      expression(
          "lengthInline", {vector3("a", -10, 10)}, rounding(6, 1e-6),
          [](Sample const& in) { return Result(length(in.vec3(0))); }, "float"),
      expression(
          "distanceInline", pair, rounding(6, 10),
          [](Sample const& in) { return Result(length(in.vec3(0) - in.vec3(1))); }, "float"),
      expression("reflectInline", {vector3("a", -2, 2), unit3("normal")}, rounding(8, 4),
                 [](Sample const& in) {
                   return Result(in.vec3(0) - in.vec3(1) * (2.0 * dot(in.vec3(0), in.vec3(1))));
                 }),
      expression(
          "componentWInline", {vector4("a", -5, 5)}, exactly(),
          [](Sample const& in) { return Result(in.vec4(0).w); }, "float"),
      expression(
          "combineFloat2Inline", {number("x", -5, 5), number("y", -5, 5)}, exactly(),
          [](Sample const& in) { return Result(in(0), in(1)); }, "float2"),
      expression(
          "combineFloat4Inline",
          {number("x", -5, 5), number("y", -5, 5), number("z", -5, 5), number("w", -5, 5)}, exactly(),
          [](Sample const& in) { return Result(in(0), in(1), in(2), in(3)); }, "float4"),
      expression(
          "extendFloat4Inline", {vector3("xyz", -5, 5), number("w", -5, 5)}, exactly(),
          [](Sample const& in) { return Result(in.vec3(0), in(1)); }, "float4"),
  };
}

}  // namespace

Topic logicTopic() {
  Topic topic{"logic.fraglib", {}};
  for (std::vector<Row> const& rows : {comparisonRows(), choiceRows()}) {
    topic.rows.insert(topic.rows.end(), rows.begin(), rows.end());
  }
  return topic;
}

Topic operatorTopic() {
  Topic topic{"operators.fraglib", {}};
  for (std::vector<Row> const& rows : {componentwiseRows(), vectorExpressionRows()}) {
    topic.rows.insert(topic.rows.end(), rows.begin(), rows.end());
  }
  return topic;
}

}  // namespace numbers_test
