// References of coordinates.fraglib and inputs.fraglib.

#include "tests/numbers/reference_tools.h"
#include "tests/numbers/row.h"

namespace numbers_test {

namespace {

Tolerance const kTurn{0x1p-9, 0.0,
                      "Vulkan's sine and cosine are off by up to 2^-11, times distances of up to 4"};
Tolerance const kAngle{1e-5, 4096.0 * kUlp,
                       "Vulkan's arc functions are off by up to 4096 units in the last place"};
Tolerance const kUnitLength{16.0 * kUlp, 0.0, "Vulkan's reciprocal square root: 2 units in the last place"};

Vec2 turned(Vec2 p, Vec2 center, double angle) {
  Vec2 const d = p - center;
  double const distance = length(d);
  double const direction = std::atan2(d.y, d.x) + angle;
  return center + Vec2{distance * std::cos(direction), distance * std::sin(direction)};
}

// The angle of (x, y) in turns, 0.5 towards positive x.
double turnsOf(double y, double x) { return 0.5 + std::atan2(y, x) / (2.0 * kPi); }

// The cut of the angle runs along negative x; a zero has no angle at all.
bool onCut(double y, double x) { return x <= 0.0 && std::fabs(y) < 1e-6; }

Result flipbook(Sample const& in) {
  int const columns = static_cast<int>(in(1));
  int const rows = static_cast<int>(in(2));
  int const count = columns * rows;
  int const frame = ((static_cast<int>(std::floor(in(3))) % count) + count) % count;
  return Result((std::clamp(in.vec2(0).x, 0.0, 0.9999) + frame % columns) / columns,
                (std::clamp(in.vec2(0).y, 0.0, 0.9999) + frame / columns) / rows);
}

Result boxProjection(Vec3 p, Vec3 n) {
  double const x = std::fabs(n.x);
  double const y = std::fabs(n.y);
  double const z = std::fabs(n.z);
  // Seen from outside with y upwards, or with z downwards from above and upwards from below.
  if (x >= y && x >= z) {
    return Result(n.x > 0.0 ? -p.z : p.z, -p.y);
  }
  if (y >= z) {
    return Result(p.x, n.y > 0.0 ? p.z : -p.z);
  }
  return Result(n.z > 0.0 ? p.x : -p.x, -p.y);
}

bool twoAxesAreEqual(Vec3 n) {
  double const x = std::fabs(n.x);
  double const y = std::fabs(n.y);
  double const z = std::fabs(n.z);
  return (std::fabs(x - y) < 1e-6 && x > z) || (std::fabs(y - z) < 1e-6 && y > x) ||
         (std::fabs(x - z) < 1e-6 && z > y);
}

Result triplanar(Sample const& in) {
  Vec3 const w = each(in.vec3(0), [&](double v) { return std::pow(std::fabs(v), in(1)); });
  return Result(w * (1.0 / (w.x + w.y + w.z)));
}

// Inputs 1 .. of a row: eye, position, tangent, binormal, normal, from `first` on.
Vec3 viewInTangentSpace(Sample const& in, std::size_t first) {
  Vec3 const view = unit(in.vec3(first) - in.vec3(first + 1));
  return {dot(view, in.vec3(first + 2)), dot(view, in.vec3(first + 3)), dot(view, in.vec3(first + 4))};
}

std::vector<Input> withFrame(std::vector<Input> inputs) {
  inputs.insert(inputs.end(),
                {vector3("sfg_eyePosition", 2, 8), vector3("sfg_worldPosition", -2, 2),
                 unit3("sfg_worldTangent"), unit3("sfg_worldBinormal"), unit3("sfg_worldNormal")});
  return inputs;
}

std::vector<Row> planeRows() {
  Input const uv = vector2("uv", -2, 2);
  return {
      {"transformUv",
       {uv, vector2("scale", -4, 4), vector2("offset", -2, 2)},
       rounding(4, 8),
       [](Sample const& in) { return Result(in.vec2(0) * in.vec2(1) + in.vec2(2)); }},
      // Unconnected, the first texture coordinates.
      {"transformUv",
       {vector2("scale", -4, 4), vector2("offset", -2, 2), vector2("sfg_texCoord0", -2, 2)},
       rounding(4, 8),
       [](Sample const& in) { return Result(in.vec2(2) * in.vec2(0) + in.vec2(1)); }},
      {"rotateUv",
       {uv, vector2("center", 0, 1), number("angle", -kPi, kPi)},
       kTurn,
       [](Sample const& in) { return Result(turned(in.vec2(0), in.vec2(1), in(2))); }},
      {"tileUv",
       {uv, {"count", "float2", Draw::kWhole, 1, 8}},
       rounding(4, 16),
       [](Sample const& in) {
         Vec2 const q = in.vec2(0) * in.vec2(1);
         return Result(fraction(q.x), fraction(q.y), std::floor(q.x), std::floor(q.y));
       },
       -1.0,
       {},
       [](Sample const& in) {
         Vec2 const q = in.vec2(0) * in.vec2(1);
         return (q.x != std::round(q.x) && std::fabs(q.x - std::round(q.x)) < 1e-5) ||
                (q.y != std::round(q.y) && std::fabs(q.y - std::round(q.y)) < 1e-5);
       }},
      {"mirrorUv",
       {uv},
       rounding(4, 2),
       [](Sample const& in) {
         auto const mirrored = [](double v) { return 2.0 * std::fabs(v / 2.0 - std::round(v / 2.0)); };
         return Result(mirrored(in.vec2(0).x), mirrored(in.vec2(0).y));
       }},
      {"scrollUv",
       {uv, vector2("speed", -1, 1), number("sfg_time", 0, 100)},
       rounding(4, 100),
       [](Sample const& in) { return Result(in.vec2(0) + in.vec2(1) * in(2)); }},
      {"twirlUv",
       {uv, vector2("center", 0, 1), number("radius", 0.5, 3), number("angle", -kPi, kPi)},
       kTurn,
       [](Sample const& in) {
         double const share = clamp01(1.0 - length(in.vec2(0) - in.vec2(1)) / in(2));
         return Result(turned(in.vec2(0), in.vec2(1), in(3) * share * share));
       }},
      {"distortUv",
       {uv, vector2("direction", -1, 1), number("amount", -1, 1)},
       rounding(4, 2),
       [](Sample const& in) { return Result(in.vec2(0) + in.vec2(1) * in(2)); }},
      {"flipbookUv",
       {uv, whole("columns", 1, 6), whole("rows", 1, 6), number("frame", -10, 50)},
       rounding(8, 1),
       flipbook},
      {"polarUv",
       {uv, vector2("center", 0, 1)},
       kAngle,
       [](Sample const& in) {
         Vec2 const d = in.vec2(0) - in.vec2(1);
         return Result(length(d), turnsOf(d.y, d.x));
       },
       -1.0,
       {},
       [](Sample const& in) {
         Vec2 const d = in.vec2(0) - in.vec2(1);
         return onCut(d.y, d.x);
       }},
      {"directionFromUv",
       {vector2("uv", 0, 1)},
       {2.0 * 0x1p-11, 0.0, "Vulkan's sine and cosine are off by up to 2^-11"},
       [](Sample const& in) {
         double const longitude = 2.0 * kPi * (0.5 - in.vec2(0).x);
         double const fromTop = kPi * in.vec2(0).y;
         return Result(std::sin(fromTop) * std::cos(longitude), std::cos(fromTop),
                       std::sin(fromTop) * std::sin(longitude));
       }},
      {"parallaxUv", withFrame({uv, number("height", 0, 1), number("depth", 0, 0.2)}), rounding(16, 2),
       [](Sample const& in) {
         Vec3 const view = viewInTangentSpace(in, 3);
         return Result(in.vec2(0) + Vec2{view.x, view.y} * ((in(1) - 0.5) * in(2)));
       }},
  };
}

std::vector<Row> spaceRows() {
  Input const position = vector3("position", -3, 3);
  return {
      {"planarUv",
       {position, vector3("alongU", -1, 1), vector3("alongV", -1, 1)},
       rounding(6, 9),
       [](Sample const& in) { return Result(dot(in.vec3(0), in.vec3(1)), dot(in.vec3(0), in.vec3(2))); }},
      {"sphericalUv",
       {position},
       {1e-4, 0.0, "Vulkan's arc functions; an arc cosine near 0 and pi"},
       [](Sample const& in) {
         Vec3 const d = unit(in.vec3(0));
         return Result(turnsOf(-d.z, d.x), std::acos(d.y) / kPi);
       },
       -1.0,
       {},
       [](Sample const& in) { return onCut(in.vec3(0).z, in.vec3(0).x); }},
      {"cylindricalUv",
       {position, number("height", 0.5, 4)},
       kAngle,
       [](Sample const& in) {
         return Result(turnsOf(-in.vec3(0).z, in.vec3(0).x), 0.5 - in.vec3(0).y / in(1));
       },
       -1.0,
       {},
       [](Sample const& in) { return onCut(in.vec3(0).z, in.vec3(0).x); }},
      {"boxUv",
       {position, unit3("normal")},
       exactly(),
       [](Sample const& in) { return boxProjection(in.vec3(0), in.vec3(1)); },
       -1.0,
       {},
       [](Sample const& in) { return twoAxesAreEqual(in.vec3(1)); }},
      // Unconnected, position and normal of the object.
      {"boxUv",
       {unit3("sfg_objectNormal"), vector3("sfg_objectPosition", -3, 3)},
       exactly(),
       [](Sample const& in) { return boxProjection(in.vec3(1), in.vec3(0)); },
       -1.0,
       {},
       [](Sample const& in) { return twoAxesAreEqual(in.vec3(0)); }},
      {"matcapUv",
       {unit3("normal"), matrix4("sfg_matView", -3, 3)},
       {1e-4, 0.0, "rounding before a normalisation of vectors longer than 0.1"},
       [](Sample const& in) {
         Vec3 const seen = unit(transformed(in, 1, 4, {in.vec3(0).x, in.vec3(0).y, in.vec3(0).z, 0.0}));
         return Result((1.0 + seen.x) / 2.0, (1.0 - seen.y) / 2.0);
       },
       -1.0,
       {},
       [](Sample const& in) {
         return length(transformed(in, 1, 4, {in.vec3(0).x, in.vec3(0).y, in.vec3(0).z, 0.0})) < 0.1;
       }},
      {"triplanarWeights",
       {unit3("normal"), number("sharpness", 0.5, 8)},
       {1e-5, 1e-4, "Vulkan's pow is exp2(b log2 a), log2 2^-21 off around 1"},
       triplanar},
      {"tangentViewVector", withFrame({}), kUnitLength,
       [](Sample const& in) { return Result(viewInTangentSpace(in, 0)); }},
  };
}

std::vector<Row> inputRows() {
  Input const eye = vector3("sfg_eyePosition", 2, 8);
  Input const point = vector3("sfg_worldPosition", -2, 2);
  auto const sameVector = [](Sample const& in) { return Result(in.vec3(0)); };
  auto const unitVector = [](Sample const& in) { return Result(unit(in.vec3(0))); };
  return {
      {"worldPosition", {point}, exactly(), sameVector},
      {"objectPosition", {vector3("sfg_objectPosition", -2, 2)}, exactly(), sameVector},
      {"worldNormal", {vector3("sfg_worldNormal", -2, 2)}, kUnitLength, unitVector},
      {"objectNormal", {vector3("sfg_objectNormal", -2, 2)}, kUnitLength, unitVector},
      {"worldTangent", {vector3("sfg_worldTangent", -2, 2)}, kUnitLength, unitVector},
      {"worldBinormal", {vector3("sfg_worldBinormal", -2, 2)}, kUnitLength, unitVector},
      {"viewVector",
       {eye, point},
       kUnitLength,
       [](Sample const& in) { return Result(unit(in.vec3(0) - in.vec3(1))); }},
      {"eyePosition", {eye}, exactly(), sameVector},
      {"texCoord",
       {vector2("sfg_texCoord0", -2, 2)},
       exactly(),
       [](Sample const& in) { return Result(in.vec2(0)); }},
      {"texCoordSecond",
       {vector2("sfg_texCoord1", -2, 2)},
       exactly(),
       [](Sample const& in) { return Result(in.vec2(0)); }},
      {"vertexColor",
       {vector4("sfg_vertexColor", 0, 1)},
       exactly(),
       [](Sample const& in) { return Result(in.vec4(0)); }},
      {"screenUv",
       {{"sfg_viewportSize", "float2", Draw::kWhole, 1, 4000}, vector4("sfg_screenPosition", 0, 4000)},
       rounding(3, 1e-3),
       [](Sample const& in) { return Result(in.vec4(1).x / in.vec2(0).x, in.vec4(1).y / in.vec2(0).y); }},
      {"frontFacing",
       {{"sfg_frontFacing", "bool", Draw::kWhole, 0, 1}},
       exactly(),
       [](Sample const& in) { return Result(in(0)); }},
      {"sceneTime",
       {number("speed", -2, 2), number("sfg_time", 0, 100)},
       rounding(1, 1e-30),
       [](Sample const& in) { return Result(in(0) * in(1)); }},
      {"eyeDistance",
       {eye, point},
       rounding(6, 8),
       [](Sample const& in) { return Result(length(in.vec3(0) - in.vec3(1))); }},
      {"facingRatio",
       {unit3("normal"), eye, point},
       kUnitLength,
       [](Sample const& in) { return Result(clamp01(dot(in.vec3(0), unit(in.vec3(1) - in.vec3(2))))); }},
      {"facingRatio",
       {unit3("sfg_worldNormal"), eye, point},
       kUnitLength,
       [](Sample const& in) { return Result(clamp01(dot(in.vec3(0), unit(in.vec3(1) - in.vec3(2))))); }},
      {"constantFloat",
       {number("constant_number", -5, 5)},
       exactly(),
       [](Sample const& in) { return Result(in(0)); }},
      {"constantColor", {vector3("constant_tint", 0, 1)}, exactly(), sameVector},
  };
}

}  // namespace

Topic coordinateTopic() {
  Topic topic{"coordinates.fraglib", {}};
  for (std::vector<Row> const& rows : {planeRows(), spaceRows()}) {
    topic.rows.insert(topic.rows.end(), rows.begin(), rows.end());
  }
  return topic;
}

Topic inputTopic() { return {"inputs.fraglib", inputRows()}; }

}  // namespace numbers_test
