#include "tests/numbers/reflection_models.h"

namespace numbers_test {

namespace {

using Settings = std::vector<std::vector<double>>;

// Three channels of one surface: white, grey and dark.
constexpr double kWhite = 1.0;
constexpr double kGrey = 0.5;
constexpr double kDark = 0.18;

// Each setting of `second` behind each of `first`.
Settings product(Settings const& first, Settings const& second) {
  Settings all;
  for (std::vector<double> const& a : first) {
    for (std::vector<double> const& b : second) {
      all.push_back(a);
      all.back().insert(all.back().end(), b.begin(), b.end());
    }
  }
  return all;
}

Settings numbers(std::vector<double> const& values) {
  Settings all;
  for (double const value : values) {
    all.push_back({value});
  }
  return all;
}

Settings const kColor = {{kWhite, kGrey, kDark}};
Settings const kRough = numbers({0.03, 0.05, 0.1, 0.15, 0.2, 0.3, 0.4, 0.5, 0.7, 0.85, 1.0});
Settings const kExponents = numbers({0, 1, 2, 4, 10, 50, 1000});
Settings const kSigmas = numbers({0, 0.2, 0.3, 0.6, 1.0, 1.5});
Settings const kBrushed = {{0.9, 0.2}, {0.2, 0.9}, {1, 0.05}, {0.5, 0.5}, {0.1, 1}, {0.3, 0.6}, {1, 1}};

Input scalar(std::string const& name) { return number(name, 0, 1); }
Input color(std::string const& name) { return vector3(name, 0, 1); }

ReflectionModel formula(std::string const& fragment, std::vector<Input> const& ports,
                        Settings const& settings, double least) {
  ReflectionModel model;
  model.fragment = fragment;
  model.ports = ports;
  model.settings = settings;
  model.isSurface = false;
  model.least = least;
  return model;
}

ReflectionModel highlight(ReflectionModel model, std::vector<std::size_t> const& roughnesses) {
  model.hasCosine = false;
  model.roughnesses = roughnesses;
  return model;
}

ReflectionModel surface(std::string const& fragment, double lod, std::string const& note,
                        std::vector<Input> const& ports, Settings const& settings, double least) {
  ReflectionModel model;
  model.fragment = fragment;
  model.lod = lod;
  model.note = note;
  model.ports = ports;
  model.settings = settings;
  model.least = least;
  return model;
}

void addFormulas(std::vector<ReflectionModel>& models) {
  models.push_back(formula("lambert", {}, {{}}, 0.99));
  models.push_back(formula("orenNayar", {scalar("sigma")}, kSigmas, 0.55));
  models.push_back(formula("burleyDiffuse", {scalar("roughness")}, numbers({0, 0.25, 0.5, 0.75, 1}), 0.0));
  models.push_back(highlight(formula("phong", {scalar("exponent")}, kExponents, 0.0), {}));
  models.push_back(highlight(formula("blinnPhong", {scalar("exponent")}, kExponents, 0.0), {}));
  for (double const lod : {100.0, 0.0}) {
    models.push_back(highlight(
        formula("ggxSpecular", {color("reflectance"), scalar("roughness")}, product(kColor, kRough), 0.29),
        {3}));
    models.back().lod = lod;
  }
  models.push_back(highlight(
      formula("ggxAnisotropic", {color("reflectance"), scalar("roughnessAlong"), scalar("roughnessAcross")},
              product(kColor, kBrushed), 0.29),
      {3, 4}));
  models.back().hasTangent = true;
}

void addPlainSurfaces(std::vector<ReflectionModel>& models) {
  models.push_back(surface("lambertSurface", 100, "", {color("albedo")}, kColor, 0.99));
  for (double const lod : {100.0, 0.0}) {
    models.push_back(surface("orenNayarSurface", lod, "", {color("albedo"), scalar("sigma")},
                             product(kColor, kSigmas), 0.99));
    models.back().isReciprocal = lod == 100.0;
  }
  Settings const colors = {
      {1, 0.5, 0.18, 0.04, 0.04, 0.04}, {1, 0.5, 0.18, 0.5, 0.5, 0.5}, {1, 1, 1, 1, 0, 0.2}};
  models.push_back(surface("blinnPhongSurface", 100, "",
                           {color("diffuse"), color("specular"), scalar("exponent")},
                           product(colors, kExponents), 0.0));
  models.push_back(surface(
      "toonSurface", 100, "", {color("albedo"), color("highlight"), scalar("steps"), scalar("softness")},
      product({{1, 0.5, 0.18, 1, 1, 1}}, {{1, 0}, {2, 0.5}, {2, 1}, {3, 0}, {3, 0.05}, {3, 1}, {6, 0.3}}),
      0.9));
  models.back().isReciprocal = false;
  models.back().skyApart = 0.25;  // no highlight of the sky
}

void addMetals(std::vector<ReflectionModel>& models) {
  for (double const lod : {100.0, 0.0}) {
    for (double const metallic : {1.0, 0.5, 0.0}) {
      std::string const note = metallic == 1.0 ? "metal" : metallic == 0.0 ? "dielectric" : "half metal";
      models.push_back(surface("ggxSurface", lod, note,
                               {color("albedo"), scalar("metallic"), scalar("roughness")},
                               product(product(kColor, {{metallic}}), kRough), metallic == 0.5 ? 0.0 : 0.9));
      models.back().roughnesses = {4};
      models.back().isReciprocal = lod == 100.0;
    }
  }
  for (double const lod : {100.0, 0.0}) {
    models.push_back(surface("brushedMetalSurface", lod, "",
                             {color("albedo"), scalar("roughnessAlong"), scalar("roughnessAcross")},
                             product(kColor, kBrushed), 0.9));
    models.back().roughnesses = {3, 4};
    models.back().hasTangent = true;
    models.back().isReciprocal = lod == 100.0;
    // In a sky, dark metal brightens at grazing angles as isotropic metal.
    models.back().skyApart = 0.2;
  }
}

void addLayers(std::vector<ReflectionModel>& models) {
  for (double const lod : {100.0, 0.0}) {
    Settings const colors = {{1, 0.5, 0.18, 1, 1, 1}, {0.2, 0.5, 1, 1, 0.5, 0.18}};
    Settings const flat = {{0, 0, 1, 0}, {0, 0, 1, 1}, {0, 0, 1, 0.5}};
    Settings const tilted = {{0.2, 0.1, 0.97, 1}, {-0.2, 0.3, 0.9, 0.5}};
    for (Settings const& flakes : {flat, tilted}) {
      models.push_back(surface("carPaintSurface", lod, flakes.size() == 3 ? "flat flakes" : "tilted flakes",
                               {color("baseColor"), color("flakeColor"), color("flakeNormal"),
                                scalar("flakeAmount"), scalar("coatRoughness")},
                               product(product(colors, flakes), numbers({0.05, 0.3, 1})), 0.0));
      models.back().roughnesses = {10};
      models.back().isReciprocal = lod == 100.0 && flakes.size() == 3;
      // The sky comes through the coat as its mean does; tilted flakes are turned away from the eye.
      models.back().skyApart = flakes.size() == 3 ? 0.15 : 0.35;
    }
  }
  for (double const lod : {100.0, 0.0}) {
    Settings const colors = {{1, 0.5, 0.18, 1, 1, 1}, {1, 1, 1, 0.8, 0.3, 0.0}, {0, 0, 0, 1, 1, 1}};
    models.push_back(surface("clothSurface", lod, "", {color("albedo"), color("sheen"), scalar("roughness")},
                             product(colors, numbers({0.05, 0.1, 0.2, 0.3, 0.4, 0.5, 0.7, 1})), 0.0));
    models.back().isReciprocal = lod == 100.0;
  }
}

// Light that arrives beyond the edge of the shadow is missed by lamps above the surface: a quarter of it
// where it gets to the far side.
void addScattering(std::vector<ReflectionModel>& models) {
  Settings const colors = {{1, 1, 1, 0, 0, 0}, {1, 0.5, 0.18, 0.5, 0.25, 0.1}, {1, 1, 1, 1, 0.5, 0}};
  models.push_back(surface("scatteringSurface", 100, "",
                           {color("albedo"), color("scatter"), scalar("roughness")}, product(colors, kRough),
                           0.0));
  models.back().roughnesses = {6};
  models.back().isReciprocal = false;
  models.back().skyApart = 0.26;
}

std::vector<Input> directionsOf(ReflectionModel const& model) {
  if (!model.isSurface) {
    std::vector<Input> inputs = {unit3("normal"), unit3("light")};
    if (model.fragment != "lambert") {
      inputs.push_back(unit3("view"));
    }
    if (model.hasTangent) {
      inputs.insert(inputs.begin() + 1, unit3("tangent"));
    }
    return inputs;
  }
  std::vector<Input> inputs = {unit3("normal"), vector3("sfg_worldPosition", 0, 0),
                               vector3("sfg_eyePosition", 0, 0)};
  if (model.hasTangent) {
    inputs.push_back(unit3("tangent"));
  }
  return inputs;
}

DeviceFragment compiled(ReflectionModel const& model, std::string const& environment) {
  std::vector<Input> inputs = directionsOf(model);
  inputs.insert(inputs.end(), model.ports.begin(), model.ports.end());
  if (!model.isSurface) {
    return DeviceFragment({model.fragment, "default", model.lod}, inputs);
  }
  std::vector<Input> const lamp = {unit3("light_axisSun"), color("light_colorSun"),
                                   scalar("light_intensitySun")};
  std::vector<Input> const even = {color("light_skySky"), color("light_groundSky")};
  std::vector<Input> const& light = environment == "sun.json" ? lamp : even;
  inputs.insert(inputs.end(), light.begin(), light.end());
  return DeviceFragment({model.fragment, "sfg_Light", model.lod}, inputs, environment);
}

// What stands in front of the light's uniforms.
void appendShared(std::vector<float>& samples, ReflectionModel const& model,
                  ReflectionOnDevice::Pair const& pair) {
  Vec3 const normal{0, 0, 1};
  Vec3 const tangent{1, 0, 0};
  append(samples, normal);
  if (model.isSurface) {
    append(samples, {});
    append(samples, pair.view);
    if (model.hasTangent) {
      append(samples, tangent);
    }
  } else {
    if (model.hasTangent) {
      append(samples, tangent);
    }
    append(samples, pair.light);
    if (directionsOf(model).size() > 2) {
      append(samples, pair.view);
    }
  }
  for (double const value : *pair.setting) {
    samples.push_back(static_cast<float>(value));
  }
}

std::vector<Vec3> colorsOf(std::vector<float> const& outputs, std::size_t components) {
  std::vector<Vec3> colors;
  for (std::size_t at = 0; at < outputs.size(); at += components) {
    double const first = static_cast<double>(outputs[at]);
    if (components == 1) {
      colors.push_back(splat(first));
    } else {
      colors.push_back({first, static_cast<double>(outputs[at + 1]), static_cast<double>(outputs[at + 2])});
    }
  }
  return colors;
}

}  // namespace

std::vector<ReflectionModel> reflectionModels() {
  std::vector<ReflectionModel> models;
  addFormulas(models);
  addPlainSurfaces(models);
  addMetals(models);
  addLayers(models);
  addScattering(models);
  return models;
}

std::string describe(ReflectionModel const& model) {
  return model.fragment + (model.note.empty() ? "" : " of " + model.note) +
         (model.lod == 0.0 ? ", low level of detail" : "");
}

ReflectionOnDevice::ReflectionOnDevice(ReflectionModel const& model)
    : model_(model), lamp_(compiled(model, "sun.json")) {
  if (model.isSurface) {
    sky_.push_back(compiled(model, "sky.json"));
  }
}

std::vector<Vec3> ReflectionOnDevice::reflected(VulkanCompute& compute,
                                                std::vector<Pair> const& pairs) const {
  std::vector<float> samples;
  for (Pair const& pair : pairs) {
    appendShared(samples, model_, pair);
    if (model_.isSurface) {
      append(samples, -pair.light);
      append(samples, splat(1.0));
      samples.push_back(1.0f);
    }
  }
  std::vector<Vec3> colors = colorsOf(lamp_.run(compute, samples), lamp_.outputCount());
  if (!model_.hasCosine) {
    for (std::size_t i = 0; i < colors.size(); ++i) {
      colors[i] = colors[i] * std::max(pairs[i].light.z, 0.0);
    }
  }
  return colors;
}

std::vector<Vec3> ReflectionOnDevice::inEvenLight(VulkanCompute& compute,
                                                  std::vector<Pair> const& pairs) const {
  std::vector<float> samples;
  for (Pair const& pair : pairs) {
    appendShared(samples, model_, pair);
    append(samples, splat(1.0));
    append(samples, splat(1.0));
  }
  return colorsOf(sky_.at(0).run(compute, samples), 3);
}

}  // namespace numbers_test
