#pragma once

// A collapsed graph on a mesh, seen by a camera.

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "pictures/matrix.h"
#include "pictures/mesh.h"
#include "pictures/picture.h"
#include "render/renderer.h"
#include "sfg/host/job.h"
#include "sfg/host/reflect.h"

namespace pictures {

/// A stage, compiled, and what it is to be fed with.
struct CompiledStage {
  std::vector<std::uint32_t> module;
  TolmSDK::Graphics::sfg::host::ShaderInterface interface;
};

struct Material {
  CompiledStage vertex;
  CompiledStage pixel;
};

/// Modules by the text that they were compiled from.
using Modules = std::map<std::string, std::vector<std::uint32_t>>;

/// Both stages of a job that is collapsed. Throws AssemblyError, and CompileError behind `refused` was called
/// with the shader that the compiler refused. `vertexStages`, unless it is null, spares materials one after
/// another what most of them have in common: it is asked first, and gets what is compiled.
Material
compileMaterial(const TolmSDK::Graphics::sfg::host::Job& job,
                const std::function<void(const TolmSDK::Graphics::sfg::host::Shader&,
                                         const TolmSDK::Graphics::sfg::host::CompileError&)>& refused = {},
                Modules* vertexStages = nullptr);

/// What this process has compiled for pictures so far: what takes long.
struct Compilations {
  std::size_t stages = 0;     ///< shaders, to modules
  std::size_t pipelines = 0;  ///< both modules of a material, by the device's driver

  bool operator==(const Compilations&) const = default;
};
Compilations compilations();

/// Looks at a point from around it.
struct Camera {
  Vector target{};
  double azimuth = 0;    ///< degrees to the right
  double elevation = 0;  ///< degrees up
  double distance = 4;
  double fieldOfView = 30;  ///< degrees, of the shorter side of the picture

  Vector eye() const;
};

/// Away from the eye, through a point of a picture of that size; of length 1.
Vector rayThrough(const Camera& camera, vk::Extent2D size, double x, double y);

/// One that sees all of a mesh, from a side that suits it.
Camera cameraFor(const Mesh& mesh, double azimuth, double elevation);

/// What changes from one picture to the next.
struct Moment {
  Camera camera;
  Matrix world;
  double time = 0;
};

/// What the pixel stage gave for each pixel, the mean of all samples, in linear light.
struct Shot {
  Picture colors;               ///< opacity 1 where the first target has fewer than four channels
  std::vector<float> coverage;  ///< 0 to 1: how much of a pixel the mesh covers
};

/// Values for a material, by "node.input".
using Settings = std::vector<TolmSDK::Graphics::sfg::host::ValueSetting>;

/// Images by binding, as the textures of Material's pixel stage have it.
using Textures = std::map<std::uint32_t, render::Texture>;

struct ViewOptions {
  vk::Extent2D size{512, 512};
  unsigned samples = 8;    ///< in each pixel
  bool isEncoded = false;  ///< the shader writes colours as sRGB encodes them
};

/// A material on a mesh, on its way to any number of pictures: nothing is compiled between two of them. The
/// device outlives it.
class View {
public:
  /// Throws std::runtime_error for an input of the graph that nothing of the mesh stands for, and no setting.
  View(const render::Device& device, Material material, const Mesh& mesh, const Textures& textures,
       const Settings& settings, const ViewOptions& options);

  /// From now on. Throws PackError as checkSettings() does, and for numbers that do not fit; nothing is set
  /// then.
  void set(const Settings& settings);
  /// `progress` is told how many samples are done.
  Shot shoot(const Moment& moment, const std::function<void(unsigned samples)>& progress = {});

private:
  void feed(const Moment& moment, double x, double y);

  Material material_;
  std::size_t vertices_;
  Settings settings_;
  ViewOptions options_;
  std::optional<render::Drawing> drawing_;
};

/// The values that can be set, by name: those of buffers that are no state of the renderer, and inputs of the
/// graph.
std::vector<std::string> settableNames(const Material& material);
/// Throws PackError for a name that nothing has, with the one that was meant.
void checkSettings(const Material& material, const Settings& settings);

}  // namespace pictures
