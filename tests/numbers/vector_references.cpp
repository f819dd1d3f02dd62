// References of vectors.fraglib.

#include "tests/numbers/reference_tools.h"
#include "tests/numbers/row.h"

namespace numbers_test {

namespace {

Tolerance const kOneRounding{1e-37, 0.5 * kUlp, "one correctly rounded operation"};
Tolerance const kUnitLength{8.0 * kUlp, 0.0, "Vulkan's reciprocal square root: 2 units in the last place"};

Vec4 extended(Vec3 v, double w) { return {v.x, v.y, v.z, w}; }

// Snell's law: the angles from the geometry, not from the closed formula.
Result refracted(Sample const& in) {
  Vec3 const i = in.vec3(0);
  Vec3 const n = in.vec3(1);
  double const eta = in(2);
  Vec3 const along = i - n * dot(i, n);
  Vec3 const refractedAlong = along * eta;
  double const sine = length(refractedAlong);
  if (sine > 1.0) {
    return Result(Vec3{}, 0.0);
  }
  return Result(refractedAlong - n * std::cos(std::asin(sine)), 1.0);
}

bool refractionOnEdge(Sample const& in) {
  Vec3 const along = in.vec3(0) - in.vec3(1) * dot(in.vec3(0), in.vec3(1));
  double const sine = length(along) * in(2);
  return std::fabs(1.0 - sine * sine) < 1e-3;
}

// Duff et al. 2017.
Result duffBasis(Sample const& in) {
  Vec3 const n = in.vec3(0);
  double const sign = std::copysign(1.0, n.z);
  double const a = -1.0 / (sign + n.z);
  double const b = n.x * n.y * a;
  return Result(Vec3{1.0 + sign * n.x * n.x * a, sign * b, -sign * n.x}, Vec3{b, sign + n.y * n.y * a, -n.y});
}

// Rodrigues' formula, applied to the three axes: the columns of the matrix.
Result rodrigues(Sample const& in) {
  Vec3 const k = unit(in.vec3(0));
  double const angle = in(1);
  auto const turn = [&](Vec3 v) {
    return v * std::cos(angle) + cross(k, v) * std::sin(angle) + k * (dot(k, v) * (1.0 - std::cos(angle)));
  };
  Vec3 const x = turn({1, 0, 0});
  Vec3 const y = turn({0, 1, 0});
  Vec3 const z = turn({0, 0, 1});
  return Result(x.x, y.x, z.x, x.y, y.y, z.y, x.z, y.z, z.z);
}

Result matrixProduct(Sample const& in) {
  Result result;
  for (std::size_t r = 0; r < 3; ++r) {
    for (std::size_t c = 0; c < 3; ++c) {
      double sum = 0.0;
      for (std::size_t k = 0; k < 3; ++k) {
        sum += in.at(0, 3 * r + k) * in.at(1, 3 * k + c);
      }
      result.add(sum);
    }
  }
  return result;
}

Result transposed(Sample const& in) {
  Result result;
  for (std::size_t r = 0; r < 3; ++r) {
    for (std::size_t c = 0; c < 3; ++c) {
      result.add(in.at(0, 3 * c + r));
    }
  }
  return result;
}

Vec3 matrixRow(Sample const& in, std::size_t m, std::size_t row) {
  return {in.at(m, 3 * row), in.at(m, 3 * row + 1), in.at(m, 3 * row + 2)};
}

std::vector<Row> arithmeticRows() {
  std::vector<Input> const pair = {vector3("a", -10, 10), vector3("b", -10, 10)};
  return {
      {"addFloat3", pair, kOneRounding, [](Sample const& in) { return Result(in.vec3(0) + in.vec3(1)); }},
      {"subtractFloat3", pair, kOneRounding,
       [](Sample const& in) { return Result(in.vec3(0) - in.vec3(1)); }},
      {"multiplyFloat3", pair, kOneRounding,
       [](Sample const& in) { return Result(in.vec3(0) * in.vec3(1)); }},
      {"scaleFloat3",
       {vector3("a", -10, 10), number("factor", -5, 5)},
       kOneRounding,
       [](Sample const& in) { return Result(in.vec3(0) * in(1)); }},
      {"addFloat2",
       {vector2("a", -10, 10), vector2("b", -10, 10)},
       kOneRounding,
       [](Sample const& in) { return Result(in.vec2(0) + in.vec2(1)); }},
      {"scaleFloat2",
       {vector2("a", -10, 10), number("factor", -5, 5)},
       kOneRounding,
       [](Sample const& in) { return Result(in.vec2(0) * in(1)); }},
      {"mixFloat3",
       {vector3("a", -10, 10), vector3("b", -10, 10), number("amount", -1, 2)},
       rounding(4, 10),
       [](Sample const& in) { return Result(mix(in.vec3(0), in.vec3(1), in(2))); }},
      {"saturateFloat3",
       {vector3("a", -2, 3)},
       exactly(),
       [](Sample const& in) { return Result(each(in.vec3(0), clamp01)); }},
      {"combineFloat2",
       {number("x", -5, 5), number("y", -5, 5)},
       exactly(),
       [](Sample const& in) { return Result(in(0), in(1)); }},
      {"combineFloat3",
       {number("x", -5, 5), number("y", -5, 5), number("z", -5, 5)},
       exactly(),
       [](Sample const& in) { return Result(in(0), in(1), in(2)); }},
      {"combineFloat4",
       {number("x", -5, 5), number("y", -5, 5), number("z", -5, 5), number("w", -5, 5)},
       exactly(),
       [](Sample const& in) { return Result(in(0), in(1), in(2), in(3)); }},
      {"splitFloat2", {vector2("a", -5, 5)}, exactly(), [](Sample const& in) { return Result(in.vec2(0)); }},
      {"splitFloat3", {vector3("a", -5, 5)}, exactly(), [](Sample const& in) { return Result(in.vec3(0)); }},
      {"splitFloat4", {vector4("a", -5, 5)}, exactly(), [](Sample const& in) { return Result(in.vec4(0)); }},
      {"splatFloat3", {number("a", -5, 5)}, exactly(), [](Sample const& in) { return Result(splat(in(0))); }},
      {"extendFloat4",
       {vector3("xyz", -5, 5), number("w", -5, 5)},
       exactly(),
       [](Sample const& in) { return Result(in.vec3(0), in(1)); }},
      {"extendFloat3",
       {vector2("xy", -5, 5), number("z", -5, 5)},
       exactly(),
       [](Sample const& in) { return Result(in.vec2(0), in(1)); }},
  };
}

std::vector<Row> widthRows() {
  std::vector<Input> const pair2 = {vector2("a", -10, 10), vector2("b", -10, 10)};
  std::vector<Input> const pair3 = {vector3("a", -10, 10), vector3("b", -10, 10)};
  std::vector<Input> const pair4 = {vector4("a", -10, 10), vector4("b", -10, 10)};
  auto const each4 = [](double (*f)(double, double)) {
    return [f](Sample const& in) {
      Vec4 const a = in.vec4(0);
      Vec4 const b = in.vec4(1);
      return Result(f(a.x, b.x), f(a.y, b.y), f(a.z, b.z), f(a.w, b.w));
    };
  };
  return {
      {"subtractFloat2", pair2, kOneRounding,
       [](Sample const& in) { return Result(in.vec2(0) - in.vec2(1)); }},
      {"multiplyFloat2", pair2, kOneRounding,
       [](Sample const& in) { return Result(in.vec2(0) * in.vec2(1)); }},
      {"mixFloat2",
       {vector2("a", -10, 10), vector2("b", -10, 10), number("amount", -1, 2)},
       rounding(4, 10),
       [](Sample const& in) { return Result(mix(in.vec2(0), in.vec2(1), in(2))); }},
      {"dotFloat2", pair2, rounding(3, 100),
       [](Sample const& in) { return Result(dot(in.vec2(0), in.vec2(1))); }},
      {"lengthFloat2",
       {vector2("a", -10, 10)},
       rounding(6, 1e-6),
       [](Sample const& in) { return Result(length(in.vec2(0))); }},
      {"distanceFloat2", pair2, rounding(6, 10),
       [](Sample const& in) { return Result(length(in.vec2(0) - in.vec2(1))); }},
      {"addFloat4", pair4, kOneRounding, each4([](double a, double b) { return a + b; })},
      {"subtractFloat4", pair4, kOneRounding, each4([](double a, double b) { return a - b; })},
      {"multiplyFloat4", pair4, kOneRounding, each4([](double a, double b) { return a * b; })},
      {"scaleFloat4",
       {vector4("a", -10, 10), number("factor", -5, 5)},
       kOneRounding,
       [](Sample const& in) {
         Vec4 const a = in.vec4(0);
         return Result(a.x * in(1), a.y * in(1), a.z * in(1), a.w * in(1));
       }},
      {"mixFloat4",
       {vector4("a", -10, 10), vector4("b", -10, 10), number("amount", -1, 2)},
       rounding(4, 10),
       [](Sample const& in) {
         Vec4 const a = in.vec4(0);
         Vec4 const b = in.vec4(1);
         return Result(mix(a.x, b.x, in(2)), mix(a.y, b.y, in(2)), mix(a.z, b.z, in(2)),
                       mix(a.w, b.w, in(2)));
       }},
      {"divideFloat3",
       pair3,
       {1e-37, 3.0 * kUlp, "Vulkan divides to 2.5 units in the last place"},
       [](Sample const& in) {
         return Result(
             each(in.vec3(0), in.vec3(1), [](double a, double b) { return b == 0.0 ? 0.0 : a / b; }));
       }},
      {"negateFloat3",
       {vector3("a", -10, 10)},
       exactly(),
       [](Sample const& in) { return Result(-in.vec3(0)); }},
      {"absoluteFloat3",
       {vector3("a", -10, 10)},
       exactly(),
       [](Sample const& in) { return Result(each(in.vec3(0), [](double v) { return std::fabs(v); })); }},
      {"minFloat3", pair3, exactly(),
       [](Sample const& in) {
         return Result(each(in.vec3(0), in.vec3(1), [](double a, double b) { return std::min(a, b); }));
       }},
      {"maxFloat3", pair3, exactly(),
       [](Sample const& in) {
         return Result(each(in.vec3(0), in.vec3(1), [](double a, double b) { return std::max(a, b); }));
       }},
      {"clampFloat3",
       {vector3("a", -2, 2), vector3("low", -1, 0), vector3("high", 0, 1)},
       exactly(),
       [](Sample const& in) {
         Vec3 const above = each(in.vec3(0), in.vec3(1), [](double a, double b) { return std::max(a, b); });
         return Result(each(above, in.vec3(2), [](double a, double b) { return std::min(a, b); }));
       }},
      {"floorFloat3",
       {vector3("a", -50, 50)},
       exactly(),
       [](Sample const& in) { return Result(each(in.vec3(0), [](double v) { return std::floor(v); })); }},
      {"projectVector",
       {vector3("a", -10, 10), vector3("onto", 0.1, 3)},
       rounding(16, 20),
       [](Sample const& in) {
         Vec3 const along = unit(in.vec3(1));
         return Result(along * dot(in.vec3(0), along));
       }},
      {"rejectVector",
       {vector3("a", -10, 10), vector3("onto", 0.1, 3)},
       rounding(16, 20),
       [](Sample const& in) {
         Vec3 const along = unit(in.vec3(1));
         return Result(in.vec3(0) - along * dot(in.vec3(0), along));
       }},
  };
}

std::vector<Row> geometryRows() {
  std::vector<Input> const pair = {vector3("a", -10, 10), vector3("b", -10, 10)};
  return {
      {"dotProduct", pair, rounding(4, 100),
       [](Sample const& in) { return Result(dot(in.vec3(0), in.vec3(1))); }},
      {"crossProduct", pair, rounding(4, 100),
       [](Sample const& in) { return Result(cross(in.vec3(0), in.vec3(1))); }},
      {"vectorLength",
       {vector3("a", -10, 10)},
       rounding(6, 1e-6),
       [](Sample const& in) { return Result(length(in.vec3(0))); }},
      {"pointDistance", pair, rounding(6, 10),
       [](Sample const& in) { return Result(length(in.vec3(0) - in.vec3(1))); }},
      {"unitVector",
       {vector3("a", -10, 10)},
       kUnitLength,
       [](Sample const& in) { return Result(unit(in.vec3(0))); }},
      {"reflectVector",
       {vector3("incident", -2, 2), unit3("normal")},
       rounding(8, 4),
       [](Sample const& in) {
         Vec3 const along = in.vec3(1) * dot(in.vec3(0), in.vec3(1));
         return Result((in.vec3(0) - along) - along);
       }},
      {"refractVector",
       {unit3("incident"), unit3("normal"), number("eta", 0.4, 2.5)},
       {1e-4, 0.0, "the square root of a difference, down to 1e-3, of rounded squares"},
       refracted,
       -1.0,
       {},
       // The closed formula bends towards -n, as a ray that comes from the side of the normal.
       refractionOnEdge},
      {"faceForwardVector",
       {unit3("normal"), unit3("incident")},
       exactly(),
       [](Sample const& in) { return Result(dot(in.vec3(0), in.vec3(1)) < 0.0 ? in.vec3(0) : -in.vec3(0)); },
       -1.0,
       {},
       [](Sample const& in) { return std::fabs(dot(in.vec3(0), in.vec3(1))) < 1e-6; }},
      {"angleBetween",
       {vector3("a", 0.1, 3), vector3("b", -3, -0.1)},
       {1e-6, 4096.0 * kUlp, "Vulkan's arc functions are off by up to 4096 units in the last place"},
       [](Sample const& in) {
         return Result(std::atan2(length(cross(in.vec3(0), in.vec3(1))), dot(in.vec3(0), in.vec3(1))));
       }},
      {"orthonormalBasis", {unit3("normal")}, rounding(8, 1), duffBasis},
  };
}

std::vector<Row> matrixRows() {
  return {
      {"transformPoint",
       {matrix4("transform", -3, 3), vector3("position", -10, 10)},
       rounding(6, 90),
       [](Sample const& in) { return Result(transformed(in, 0, 4, extended(in.vec3(1), 1.0))); }},
      {"transformDirection",
       {matrix4("transform", -3, 3), vector3("direction", -10, 10)},
       rounding(6, 90),
       [](Sample const& in) { return Result(transformed(in, 0, 4, extended(in.vec3(1), 0.0))); }},
      {"objectToWorldPoint",
       {vector3("position", -10, 10), matrix4("sfg_matWorld", -3, 3)},
       rounding(6, 90),
       [](Sample const& in) { return Result(transformed(in, 1, 4, extended(in.vec3(0), 1.0))); }},
      {"worldToObjectPoint",
       {vector3("position", -10, 10), matrix4("sfg_matWorldInverse", -3, 3)},
       rounding(6, 90),
       [](Sample const& in) { return Result(transformed(in, 1, 4, extended(in.vec3(0), 1.0))); }},
      {"worldToViewPoint",
       {vector3("position", -10, 10), matrix4("sfg_matView", -3, 3)},
       rounding(6, 90),
       [](Sample const& in) { return Result(transformed(in, 1, 4, extended(in.vec3(0), 1.0))); }},
      {"objectToWorldNormal",
       {unit3("normal"), matrix4("sfg_matWorldInverseTranspose", -3, 3)},
       {1e-4, 0.0, "rounding before a normalisation of vectors longer than 0.1"},
       [](Sample const& in) { return Result(unit(transformed(in, 1, 4, extended(in.vec3(0), 0.0)))); },
       -1.0,
       {},
       [](Sample const& in) { return length(transformed(in, 1, 4, extended(in.vec3(0), 0.0))) < 0.1; }},
      {"rotationMatrix",
       {vector3("axis", 0.1, 3), number("angle", -kPi, kPi)},
       {2.5 * 0x1p-11, 0.0, "Vulkan's sine and cosine are off by up to 2^-11 each"},
       rodrigues},
      {"rotateVector",
       {matrix3("rotation", -2, 2), vector3("a", -5, 5)},
       rounding(6, 30),
       [](Sample const& in) { return Result(transformed(in, 0, 3, extended(in.vec3(1), 0.0))); }},
      {"multiplyMatrix3", {matrix3("a", -2, 2), matrix3("b", -2, 2)}, rounding(6, 12), matrixProduct},
      {"transposeMatrix3", {matrix3("a", -2, 2)}, exactly(), transposed},
      {"determinantMatrix3",
       {matrix3("a", -2, 2)},
       rounding(10, 24),
       [](Sample const& in) {
         return Result(dot(matrixRow(in, 0, 0), cross(matrixRow(in, 0, 1), matrixRow(in, 0, 2))));
       }},
  };
}

// Row by row, of any size.
std::vector<double> flatMatrix(Sample const& in, std::size_t m, std::size_t size) {
  std::vector<double> values;
  for (std::size_t i = 0; i < size * size; ++i) values.push_back(in.at(m, i));
  return values;
}

double determinantOf(std::vector<double> const& a, std::size_t size) {
  if (size == 1) return a[0];
  double sum = 0.0;
  for (std::size_t column = 0; column < size; ++column) {
    std::vector<double> minor;
    for (std::size_t i = size; i < size * size; ++i) {
      if (i % size != column) minor.push_back(a[i]);
    }
    sum += (column % 2 == 0 ? 1.0 : -1.0) * a[column] * determinantOf(minor, size - 1);
  }
  return sum;
}

// Cramer's rule: each column of the identity in place of each column of the matrix.
Result inverseOf(Sample const& in, std::size_t size) {
  std::vector<double> const a = flatMatrix(in, 0, size);
  double const whole = determinantOf(a, size);
  Result result;
  for (std::size_t row = 0; row < size; ++row) {
    for (std::size_t column = 0; column < size; ++column) {
      std::vector<double> replaced = a;
      for (std::size_t i = 0; i < size; ++i) replaced[i * size + row] = i == column ? 1.0 : 0.0;
      result.add(whole == 0.0 ? 0.0 : determinantOf(replaced, size) / whole);
    }
  }
  return result;
}

// So near to a matrix without an inverse that rounding decides.
bool isNearlyFlat(Sample const& in, std::size_t size) {
  return std::fabs(determinantOf(flatMatrix(in, 0, size), size)) < 0.05;
}

std::vector<Row> makingRows() {
  std::vector<Input> const three = {vector3("first", -5, 5), vector3("second", -5, 5),
                                    vector3("third", -5, 5)};
  Tolerance const inverted{2e-3, 1e-3, "differences of products, divided by a determinant from 0.05 on"};
  return {
      {"matrixFromRows3", three, exactly(),
       [](Sample const& in) { return Result(in.vec3(0), in.vec3(1), in.vec3(2)); }},
      {"matrixFromColumns3", three, exactly(),
       [](Sample const& in) {
         Vec3 const a = in.vec3(0);
         Vec3 const b = in.vec3(1);
         Vec3 const c = in.vec3(2);
         return Result(Vec3{a.x, b.x, c.x}, Vec3{a.y, b.y, c.y}, Vec3{a.z, b.z, c.z});
       }},
      {"scaleMatrix3",
       {vector3("factors", -5, 5)},
       exactly(),
       [](Sample const& in) {
         Vec3 const f = in.vec3(0);
         return Result(Vec3{f.x, 0, 0}, Vec3{0, f.y, 0}, Vec3{0, 0, f.z});
       }},
      {"affineMatrix4",
       {matrix3("linearPart", -2, 2), vector3("offset", -5, 5)},
       exactly(),
       [](Sample const& in) {
         Vec3 const o = in.vec3(1);
         return Result(extended(matrixRow(in, 0, 0), o.x), extended(matrixRow(in, 0, 1), o.y),
                       extended(matrixRow(in, 0, 2), o.z), Vec4{0, 0, 0, 1});
       }},
      {"multiplyMatrix4",
       {matrix4("a", -2, 2), matrix4("b", -2, 2)},
       rounding(8, 16),
       [](Sample const& in) {
         Result result;
         for (std::size_t i = 0; i < 16; ++i) {
           double sum = 0.0;
           for (std::size_t k = 0; k < 4; ++k) sum += in.at(0, i / 4 * 4 + k) * in.at(1, k * 4 + i % 4);
           result.add(sum);
         }
         return result;
       }},
      {"inverseMatrix3",
       {matrix3("a", -2, 2)},
       inverted,
       [](Sample const& in) { return inverseOf(in, 3); },
       -1.0,
       {},
       [](Sample const& in) { return isNearlyFlat(in, 3); }},
      {"inverseMatrix4",
       {matrix4("a", -2, 2)},
       inverted,
       [](Sample const& in) { return inverseOf(in, 4); },
       -1.0,
       {},
       [](Sample const& in) { return isNearlyFlat(in, 4); }},
  };
}

std::vector<Row> inlineRows() {
  return {
      {"dotInline",
       {vector3("a", -10, 10), vector3("b", -10, 10)},
       rounding(4, 100),
       [](Sample const& in) { return Result(dot(in.vec3(0), in.vec3(1))); },
       -1.0,
       "float"},
      {"normalizeInline",
       {vector3("a", 0.1, 5)},
       kUnitLength,
       [](Sample const& in) { return Result(unit(in.vec3(0))); },
       -1.0,
       "float3"},
      {"normalizeInline",
       {vector3("a", 0, 0)},
       exactly(),
       [](Sample const&) { return Result(Vec3{}); },
       -1.0,
       "float3"},
      {"componentXInline",
       {vector3("a", -5, 5)},
       exactly(),
       [](Sample const& in) { return Result(in.vec3(0).x); },
       -1.0,
       "float"},
      {"componentYInline",
       {vector3("a", -5, 5)},
       exactly(),
       [](Sample const& in) { return Result(in.vec3(0).y); },
       -1.0,
       "float"},
      {"componentZInline",
       {vector3("a", -5, 5)},
       exactly(),
       [](Sample const& in) { return Result(in.vec3(0).z); },
       -1.0,
       "float"},
      {"componentsXYInline",
       {vector3("a", -5, 5)},
       exactly(),
       [](Sample const& in) { return Result(in.vec3(0).x, in.vec3(0).y); },
       -1.0,
       "float2"},
      {"componentsXYZInline",
       {vector4("a", -5, 5)},
       exactly(),
       [](Sample const& in) { return Result(in.vec3(0)); },
       -1.0,
       "float3"},
      {"combineFloat3Inline",
       {number("x", -5, 5), number("y", -5, 5), number("z", -5, 5)},
       exactly(),
       [](Sample const& in) { return Result(in(0), in(1), in(2)); },
       -1.0,
       "float3"},
  };
}

}  // namespace

Topic vectorTopic() {
  Topic topic{"vectors.fraglib", {}};
  for (std::vector<Row> const& rows :
       {arithmeticRows(), widthRows(), geometryRows(), matrixRows(), makingRows(), inlineRows()}) {
    topic.rows.insert(topic.rows.end(), rows.begin(), rows.end());
  }
  return topic;
}

}  // namespace numbers_test
