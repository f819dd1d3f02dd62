#include "pictures/mesh.h"

#include <algorithm>
#include <functional>
#include <numbers>
#include <stdexcept>

namespace pictures {

namespace {

/// A vertex at texture coordinates, without them.
struct Corner {
  Vector position;
  Vector normal;
  Vector tangent;  ///< towards growing u
};

using Numbers = std::initializer_list<double>;

void add(Mesh& mesh, const char* part, const Numbers& values) {
  auto& to = mesh.parts[part];
  for (const double value : values) to.push_back(static_cast<float>(value));
}

/// `at` tells the corner at (u, v). In all shapes here v runs down where u runs right, so that the direction
/// of growing v is the tangent turned clockwise.
void addGrid(Mesh& mesh, int columns, int rows, const std::function<Corner(double u, double v)>& at) {
  constexpr int kCorners[6][2] = {{0, 1}, {1, 1}, {1, 0}, {0, 1}, {1, 0}, {0, 0}};
  for (int i = 0; i < rows * columns * 6; ++i) {
    const double u = static_cast<double>(i / 6 % columns + kCorners[i % 6][0]) / columns;
    const double v = static_cast<double>(i / 6 / columns + kCorners[i % 6][1]) / rows;
    const Corner corner = at(u, v);
    add(mesh, "position", {corner.position[0], corner.position[1], corner.position[2]});
    add(mesh, "normal", {corner.normal[0], corner.normal[1], corner.normal[2]});
    add(mesh, "tangent", {corner.tangent[0], corner.tangent[1], corner.tangent[2], -1});
    for (const char* part : {"texCoord0", "texCoord1", "texCoord2", "texCoord3"}) add(mesh, part, {u, v});
    add(mesh, "color", {1, 1, 1, 1});
  }
}

Mesh makeSphere() {
  Mesh mesh;
  addGrid(mesh, 96, 48, [](double u, double v) {
    // The seam is behind.
    const double around = 2 * std::numbers::pi * (u - 0.5);
    const double up = std::numbers::pi * (0.5 - v);
    const Vector out = {std::cos(up) * std::sin(around), std::sin(up), std::cos(up) * std::cos(around)};
    return Corner{out, out, {std::cos(around), 0, -std::sin(around)}};
  });
  return mesh;
}

/// Upright, towards the eye.
Mesh makePlane() {
  constexpr double kHalf = 0.7;
  Mesh mesh;
  addGrid(mesh, 1, 1, [](double u, double v) {
    return Corner{{kHalf * (2 * u - 1), kHalf * (1 - 2 * v), 0}, {0, 0, 1}, {1, 0, 0}};
  });
  return mesh;
}

Mesh makeCube() {
  constexpr double kHalf = 0.57;
  constexpr Vector kSides[6][2] = {{{0, 0, 1}, {1, 0, 0}},  {{1, 0, 0}, {0, 0, -1}}, {{0, 0, -1}, {-1, 0, 0}},
                                   {{-1, 0, 0}, {0, 0, 1}}, {{0, 1, 0}, {1, 0, 0}},  {{0, -1, 0}, {1, 0, 0}}};
  Mesh mesh;
  for (const auto& side : kSides) {
    const Vector normal = side[0];
    const Vector tangent = side[1];
    addGrid(mesh, 1, 1, [&](double u, double v) {
      const Vector down = cross(tangent, normal);
      const Vector from = normal + tangent * (2 * u - 1) + down * (2 * v - 1);
      return Corner{from * kHalf, normal, tangent};
    });
  }
  return mesh;
}

/// Around the y axis.
Mesh makeTorus() {
  constexpr double kRing = 0.68;
  constexpr double kTube = 0.3;
  Mesh mesh;
  addGrid(mesh, 128, 48, [](double u, double v) {
    const double around = 2 * std::numbers::pi * (u - 0.5);
    const double up = 2 * std::numbers::pi * (0.5 - v);
    const Vector ring = {std::sin(around), 0, std::cos(around)};
    const Vector out = ring * std::cos(up) + Vector{0, std::sin(up), 0};
    return Corner{ring * kRing + out * kTube, out, {std::cos(around), 0, -std::sin(around)}};
  });
  return mesh;
}

/// A hanging cloth with folds.
Mesh makeCloth() {
  const auto depthAt = [](double x, double y) {
    const double loose = 0.5 * (0.7 - y);
    return 0.13 * loose * std::sin(9 * x + 2 * y) + 0.05 * loose * std::sin(17 * x - 3 * y + 1);
  };
  Mesh mesh;
  addGrid(mesh, 96, 96, [&](double u, double v) {
    const double x = 0.7 * (2 * u - 1);
    const double y = 0.7 * (1 - 2 * v);
    constexpr double kStep = 1e-4;
    const double slopeX = (depthAt(x + kStep, y) - depthAt(x - kStep, y)) / (2 * kStep);
    const double slopeY = (depthAt(x, y + kStep) - depthAt(x, y - kStep)) / (2 * kStep);
    return Corner{{x, y, depthAt(x, y)}, unit({-slopeX, -slopeY, 1}), unit({1, 0, slopeX})};
  });
  return mesh;
}

struct Shape {
  const char* name;
  Mesh (*make)();
};
constexpr Shape kShapes[] = {{"sphere", makeSphere},
                             {"plane", makePlane},
                             {"cube", makeCube},
                             {"torus", makeTorus},
                             {"cloth", makeCloth}};

}  // namespace

Vector Mesh::middle() const {
  const std::vector<float>& positions = parts.at("position");
  Vector sum{};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    double low = positions[axis];
    double high = low;
    for (std::size_t i = axis; i < positions.size(); i += 3) {
      low = std::min<double>(low, positions[i]);
      high = std::max<double>(high, positions[i]);
    }
    sum[axis] = 0.5 * (low + high);
  }
  return sum;
}

double Mesh::radius() const {
  const std::vector<float>& positions = parts.at("position");
  const Vector from = middle();
  double farthest = 0;
  for (std::size_t i = 0; i + 2 < positions.size(); i += 3) {
    farthest = std::max(farthest, length(Vector{positions[i], positions[i + 1], positions[i + 2]} - from));
  }
  return farthest;
}

void Mesh::scaleTexCoords(double u, double v) {
  for (auto& [name, values] : parts) {
    if (!name.starts_with("texCoord")) continue;
    for (std::size_t i = 0; i < values.size(); ++i) values[i] *= static_cast<float>(i % 2 == 0 ? u : v);
  }
}

const std::vector<std::string>& shapeNames() {
  static const std::vector<std::string> names = [] {
    std::vector<std::string> made;
    for (const Shape& shape : kShapes) made.emplace_back(shape.name);
    return made;
  }();
  return names;
}

Mesh makeShape(const std::string& name) {
  for (const Shape& shape : kShapes) {
    if (name == shape.name) return shape.make();
  }
  throw std::runtime_error("there is no shape `" + name + "`");
}

}  // namespace pictures
