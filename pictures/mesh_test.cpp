#include "pictures/mesh.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "pictures/test_folder.h"

namespace pictures {
namespace {

Vector vectorAt(const Mesh& mesh, const std::string& part, std::size_t vertex, std::size_t width = 3) {
  const std::vector<float>& values = mesh.parts.at(part);
  return {values[vertex * width], values[vertex * width + 1], width > 2 ? values[vertex * width + 2] : 0};
}

/// Faces look outwards, tangents along growing u, and binormals along growing v.
void expectWhole(const Mesh& mesh) {
  std::size_t seen = 0;
  for (std::size_t i = 0; i + 2 < mesh.vertices(); i += 3) {
    const Vector a = vectorAt(mesh, "position", i);
    const Vector b = vectorAt(mesh, "position", i + 1) - a, c = vectorAt(mesh, "position", i + 2) - a;
    const Vector out = cross(b, c);
    if (length(out) < 1e-6) continue;  // where a sphere's columns meet
    ++seen;
    const Vector normal = vectorAt(mesh, "normal", i);
    ASSERT_NEAR(length(normal), 1, 1e-3);
    ASSERT_GT(dot(unit(out), normal), 0.8) << i;
    // Positions as functions of texture coordinates.
    const Vector uv = vectorAt(mesh, "texCoord0", i, 2);
    const Vector ub = vectorAt(mesh, "texCoord0", i + 1, 2) - uv,
                 uc = vectorAt(mesh, "texCoord0", i + 2, 2) - uv;
    const double area = ub[0] * uc[1] - uc[0] * ub[1];
    ASSERT_NE(area, 0);
    const Vector alongU = (b * uc[1] - c * ub[1]) * (1 / area), alongV = (c * ub[0] - b * uc[0]) * (1 / area);
    const Vector tangent = vectorAt(mesh, "tangent", i, 4);
    ASSERT_NEAR(length(tangent), 1, 1e-3);
    if (length(alongU) > 1e-3) {
      ASSERT_GT(dot(unit(alongU), tangent), 0.7) << i;
    }
    const float handedness = mesh.parts.at("tangent")[i * 4 + 3];
    ASSERT_GT(dot(unit(alongV), cross(normal, tangent) * handedness), 0.7) << i;
  }
  EXPECT_GT(seen, 0u);
}

TEST(MeshTest, ShapesLookOutwardsAndFollowTheirTextures) {
  ASSERT_THAT(shapeNames(), testing::ElementsAre("sphere", "plane", "cube", "torus", "cloth"));
  for (const std::string& name : shapeNames()) {
    SCOPED_TRACE(name);
    const Mesh mesh = makeShape(name);
    expectWhole(mesh);
    EXPECT_LE(mesh.radius(), 1.001);
    EXPECT_GT(mesh.radius(), 0.9);
    EXPECT_NEAR(length(mesh.middle()), 0, 0.05);
    for (const char* part : {"texCoord1", "texCoord2", "texCoord3"}) {
      EXPECT_EQ(mesh.parts.at(part), mesh.parts.at("texCoord0"));
    }
  }
}

TEST(MeshTest, ScalesTextureCoordinates) {
  Mesh mesh = makeShape("plane");
  mesh.scaleTexCoords(3, 0.5);
  const std::vector<float>& uv = mesh.parts.at("texCoord0");
  float u = 0;
  float v = 0;
  for (std::size_t i = 0; i < uv.size(); i += 2) {
    u = std::max(u, uv[i]);
    v = std::max(v, uv[i + 1]);
  }
  EXPECT_EQ(u, 3);
  EXPECT_EQ(v, 0.5f);
}

/// The v of such files runs up.
TEST(MeshTest, ReadsFiles) {
  const TestFolder folder;
  const auto file = folder.write("square.obj", "v -1 -1 0\nv 1 -1 0\nv 1 1 0\nv -1 1 0\n"
                                               "vt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\nf 1/1 2/2 3/3 4/4\n");
  const Mesh mesh = readMesh(file);
  ASSERT_EQ(mesh.vertices(), 6u);
  expectWhole(mesh);
  for (std::size_t i = 0; i < 6; ++i) {
    const Vector position = vectorAt(mesh, "position", i), uv = vectorAt(mesh, "texCoord0", i, 2);
    EXPECT_EQ(uv[0], (1 + position[0]) / 2);
    EXPECT_EQ(uv[1], (1 - position[1]) / 2);
    EXPECT_EQ(vectorAt(mesh, "normal", i), (Vector{0, 0, 1}));
  }
}

TEST(MeshTest, NamesFilesThatCannotBeRead) {
  const TestFolder folder;
  const auto refusalOf = [](const std::filesystem::path& file) -> std::string {
    try {
      readMesh(file);
    } catch (const std::runtime_error& error) {
      return error.what();
    }
    return "read";
  };
  const std::string bad = folder.write("bad.gltf", "{").string();
  EXPECT_THAT(refusalOf(bad), testing::StartsWith("cannot read `" + bad + "`: "));
  const std::string empty = folder.write("points.obj", "v 0 0 0\n").string();
  EXPECT_NE(refusalOf(empty), "read");
  const std::string endless = folder.write("endless.obj", "v nan 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n").string();
  EXPECT_EQ(refusalOf(endless), "cannot read `" + endless + "`: a position of it is not finite");
}

}  // namespace
}  // namespace pictures
