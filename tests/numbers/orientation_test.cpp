// The one convention of projected texture coordinates: seen from outside, u runs to the right and v down.

#include <gtest/gtest.h>

#include "tests/numbers/device_fragment.h"
#include "tests/numbers/reference_tools.h"

namespace numbers_test {
namespace {

// A place on a surface as somebody in front of it sees it.
struct Place {
  Vec3 point;
  Vec3 normal;
  Vec3 up;  // of the one who looks
};

class Orientation : public testing::Test {
protected:
  void SetUp() override {
    if (isVulkanSkipped()) {
      GTEST_SKIP() << "SFG_SKIP_VULKAN_TESTS is set";
    }
  }

  // Checks the coordinates of the fragment, whose inputs `samplesOf` makes of a point and a normal.
  template <typename Samples>
  void check(std::string const& fragment, std::vector<Input> const& inputs, std::vector<Place> const& places,
             Samples const& samplesOf) {
    DeviceFragment const device({fragment, "default", 100.0}, inputs);
    for (Place const& place : places) {
      constexpr double kStep = 0.01;
      Vec3 const right = unit(cross(place.up, place.normal));
      Vec3 const down = unit(cross(right, place.normal));
      std::vector<float> samples;
      for (Vec3 const& shift : {Vec3{}, right * kStep, down * kStep}) {
        for (float const value : samplesOf(place.point + shift, place.normal)) {
          samples.push_back(value);
        }
      }
      std::vector<float> const uv = device.run(compute_, samples);
      std::string const where = fragment + " seen along " + std::to_string(place.normal.x) + " " +
                                std::to_string(place.normal.y) + " " + std::to_string(place.normal.z);
      EXPECT_GT(uv[2], uv[0] + 1e-4f) << where << ": u to the right";
      EXPECT_NEAR(uv[3], uv[1], 1e-4f) << where << ": v to the right";
      EXPECT_NEAR(uv[4], uv[0], 1e-4f) << where << ": u downwards";
      EXPECT_GT(uv[5], uv[1] + 1e-4f) << where << ": v downwards";
    }
  }

  static std::vector<Place> aroundTheEquator() {
    std::vector<Place> places;
    for (int i = 0; i < 12; ++i) {
      double const angle = 0.1 + i * kPi / 6.0;  // not on the seam
      Vec3 const normal{std::cos(angle), 0.0, std::sin(angle)};
      places.push_back({normal, normal, {0, 1, 0}});
    }
    return places;
  }

  VulkanCompute compute_;
};

std::vector<float> floats(std::initializer_list<double> values) {
  std::vector<float> result;
  for (double const value : values) {
    result.push_back(static_cast<float>(value));
  }
  return result;
}

TEST_F(Orientation, OfASphere) {
  check("sphericalUv", {vector3("position", -1, 1)}, aroundTheEquator(), [](Vec3 p, Vec3) {
    return floats({p.x, p.y, p.z});
  });
}

TEST_F(Orientation, OfACylinder) {
  check("cylindricalUv", {vector3("position", -1, 1), number("height", 0, 2)}, aroundTheEquator(),
        [](Vec3 p, Vec3) {
          return floats({p.x, p.y, p.z, 2.0});
        });
}

TEST_F(Orientation, OfTheSixSidesOfABox) {
  Vec3 const point{0.3, 0.2, -0.4};
  check("boxUv", {vector3("position", -1, 1), unit3("normal")},
        {{point, {1, 0, 0}, {0, 1, 0}},
         {point, {-1, 0, 0}, {0, 1, 0}},
         {point, {0, 0, 1}, {0, 1, 0}},
         {point, {0, 0, -1}, {0, 1, 0}},
         {point, {0, 1, 0}, {0, 0, -1}},
         {point, {0, -1, 0}, {0, 0, 1}}},
        [](Vec3 p, Vec3 n) {
          return floats({p.x, p.y, p.z, n.x, n.y, n.z});
        });
}

TEST_F(Orientation, OfDirectionsIsThatOfTheirCoordinates) {
  DeviceFragment const toUv({"sphericalUv", "default", 100.0}, {vector3("position", -1, 1)});
  DeviceFragment const toDirection({"directionFromUv", "default", 100.0}, {vector2("uv", 0, 1)});
  std::vector<float> directions;
  for (int i = 0; i < 24; ++i) {
    double const angle = 0.1 + i * kPi / 12.0;
    append(directions, unit({std::cos(angle), std::sin(3.0 * angle), std::sin(angle)}));
  }
  std::vector<float> const back = toDirection.run(compute_, toUv.run(compute_, directions));
  for (std::size_t i = 0; i < directions.size(); ++i) {
    EXPECT_NEAR(back[i], directions[i], 2e-3f) << "component " << i;
  }
}

}  // namespace
}  // namespace numbers_test
