#pragma once

#include <string>
#include <vector>

#include "tests/numbers/device_fragment.h"
#include "tests/numbers/reference_tools.h"

namespace numbers_test {

// A reflection model (brdf.fraglib) or a lit surface (surfaces.fraglib) with the settings to try it with.
struct ReflectionModel {
  std::string fragment;
  double lod = 100.0;
  std::string note;                           // tells two of one fragment apart
  std::vector<Input> ports = {};              // besides normal, tangent and directions
  std::vector<std::vector<double>> settings;  // values of the ports
  std::vector<std::size_t> roughnesses = {};  // which values are roughnesses; their highlights are sampled
  bool isSurface = true;                      // else a formula over `normal`, `light` and `view`
  bool hasCosine = true;                      // else the result is without the cosine of the light
  bool hasTangent = false;
  bool isReciprocal = true;
  double least = 0.0;      // the smallest albedo of a white one that its description allows
  double skyApart = 0.07;  // how far light of a sky may be from that of lamps all around
};

std::vector<ReflectionModel> reflectionModels();

std::string describe(ReflectionModel const& model);

// The model on the device, around the normal (0, 0, 1) and the tangent (1, 0, 0).
class ReflectionOnDevice {
public:
  explicit ReflectionOnDevice(ReflectionModel const& model);

  // Light and view of one sample, both unit vectors, at a setting.
  struct Pair {
    Vec3 light;
    Vec3 view;
    std::vector<double> const* setting = nullptr;
  };
  // Red, green and blue of what is reflected of a parallel light of irradiance 1; a formula of one number
  // gives it three times.
  std::vector<Vec3> reflected(VulkanCompute& compute, std::vector<Pair> const& pairs) const;
  // The same of a sky and a ground of radiance 1, whatever the pair's light. For surfaces only.
  std::vector<Vec3> inEvenLight(VulkanCompute& compute, std::vector<Pair> const& pairs) const;

private:
  ReflectionModel model_;
  DeviceFragment lamp_;
  std::vector<DeviceFragment> sky_;  // one, for a surface
};

}  // namespace numbers_test
