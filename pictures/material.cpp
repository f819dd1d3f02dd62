#include "pictures/material.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <numbers>
#include <stdexcept>

#include "sfg/host/compile.h"
#include "sfg/host/suggest.h"

namespace pictures {

namespace host = TolmSDK::Graphics::sfg::host;

namespace {

std::atomic<std::size_t> compiledStages{0};
std::atomic<std::size_t> madePipelines{0};

using Refused = std::function<void(const host::Shader&, const host::CompileError&)>;

std::vector<std::uint32_t> compile(const host::Shader& shader, const Refused& refused) {
  try {
    ++compiledStages;
    return host::compileToSpirv(shader);
  } catch (const host::CompileError& error) {
    if (refused) refused(shader, error);
    throw;
  }
}

CompiledStage compileStage(const host::Job& job, host::ShaderStage stage, const Refused& refused,
                           Modules* known) {
  const host::Shader shader = job.assemble(stage, host::NameStyle::readable);
  CompiledStage made;
  const auto found = known != nullptr ? known->find(shader.text) : Modules::iterator();
  if (known != nullptr && found != known->end()) {
    made.module = found->second;
  } else {
    made.module = compile(shader, refused);
    if (known != nullptr) known->emplace(shader.text, made.module);
  }
  made.interface =
      host::interfaceFor(job.reflect(stage, host::NameStyle::readable), host::ShaderTarget::spirv);
  return made;
}

bool isState(const host::InterfaceMember& member) { return member.origin.kind == "stateVariable"; }

const host::ValueSetting* findSetting(const Settings& settings, const std::string& name) {
  const auto found = std::find_if(settings.rbegin(), settings.rend(),
                                  [&](const host::ValueSetting& setting) { return setting.name == name; });
  return found != settings.rend() ? &*found : nullptr;
}

std::size_t componentsOf(const std::string& type) {
  const char last = type.empty() ? '1' : type.back();
  return last >= '2' && last <= '4' ? static_cast<std::size_t>(last - '0') : 1;
}

bool isGraphInput(const host::InterfaceAttribute& attribute) { return attribute.origin.kind == "graphInput"; }

/// The numbers of an input of the graph, for each vertex.
std::vector<float> atEachVertex(const host::InterfaceAttribute& attribute, std::size_t vertices,
                                const std::vector<double>& numbers) {
  const std::size_t components = componentsOf(attribute.type);
  if (numbers.size() != components) {
    throw host::PackError("the graph's input `" + attribute.origin.name + "` takes " +
                          std::to_string(components) + " numbers, not " + std::to_string(numbers.size()));
  }
  std::vector<float> values;
  values.reserve(vertices * components);
  for (std::size_t i = 0; i < vertices; ++i) {
    for (const double number : numbers) values.push_back(static_cast<float>(number));
  }
  return values;
}

/// An input of the graph takes the value set for it, or what of a vertex has its type: two numbers are
/// texture coordinates, one called u the first of them, three a position or, by name, a normal.
std::vector<float> graphInput(const host::InterfaceAttribute& attribute, const Mesh& mesh,
                              const Settings& settings) {
  const std::string& name = attribute.origin.name;
  const std::size_t components = componentsOf(attribute.type);
  if (const host::ValueSetting* const given = findSetting(settings, name))
    return atEachVertex(attribute, mesh.vertices(), given->numbers);
  const auto has = [&name](const char* word) { return name.find(word) != std::string::npos; };
  if (components == 2) return mesh.parts.at("texCoord0");
  if (components == 1 && name == "u") {
    std::vector<float> values;
    for (std::size_t i = 0; i < mesh.vertices(); ++i) values.push_back(mesh.parts.at("texCoord0")[2 * i]);
    return values;
  }
  if (components == 3 && (has("ormal"))) return mesh.parts.at("normal");
  if (components == 3 && (has("osition") || name == "p")) return mesh.parts.at("position");
  if (components == 4 && has("olor")) return mesh.parts.at("color");
  throw host::PackError("nothing of a mesh stands for the graph's input `" + name +
                        "`: give it a value (`--set " + name + "=...`)");
}

std::vector<float> attributeValues(const host::InterfaceAttribute& attribute, const Mesh& mesh,
                                   const Settings& settings) {
  if (isGraphInput(attribute)) return graphInput(attribute, mesh, settings);
  const auto part = mesh.parts.find(attribute.origin.name);
  if (part == mesh.parts.end()) throw std::runtime_error("a mesh has no `" + attribute.origin.name + "`");
  return part->second;
}

/// Where the samples lie in a pixel, from -0.5 to 0.5: the additive recurrence of the plastic number, which
/// covers the square evenly for any count; one sample is in the middle.
std::pair<double, double> sampleAt(unsigned index) {
  constexpr double kPlastic = 1.32471795724474602596;
  const auto part = [index](double step) {
    const double at = 0.5 + step * index;
    return at - std::floor(at) - 0.5;
  };
  return {part(1 / kPlastic), part(1 / (kPlastic * kPlastic))};
}

/// Rows are the axes of the eye; z points backwards.
Matrix viewOf(const Camera& camera) {
  const Vector eye = camera.eye();
  const Vector back = unit(eye - camera.target);
  const double azimuth = camera.azimuth * std::numbers::pi / 180;
  const Vector right = {std::cos(azimuth), 0, -std::sin(azimuth)};
  const Vector axes[] = {right, cross(back, right), back};
  Matrix view;
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t column = 0; column < 3; ++column) view.at(row, column) = axes[row][column];
    view.at(row, 3) = -dot(axes[row], eye);
  }
  return view;
}

/// Depths become 0 to 1; y points down, as in the pictures of Vulkan. `x` and `y` move the picture, in
/// pixels.
Matrix projectionOf(const Camera& camera, vk::Extent2D size, double x, double y) {
  const double narrow = 1 / std::tan(camera.fieldOfView * std::numbers::pi / 360);
  const double shorter = std::min(size.width, size.height);
  const double near = 0.01 * camera.distance;
  const double far = 10 * camera.distance;
  Matrix projection;
  projection.at(0, 0) = narrow * shorter / size.width;
  projection.at(1, 1) = -narrow * shorter / size.height;
  projection.at(0, 2) = -2 * x / size.width;
  projection.at(1, 2) = -2 * y / size.height;
  projection.at(2, 2) = -far / (far - near);
  projection.at(2, 3) = -far * near / (far - near);
  projection.at(3, 2) = -1;
  projection.at(3, 3) = 0;
  return projection;
}

using State = std::map<std::string, std::vector<double>>;

State stateOf(const Moment& moment, vk::Extent2D size, double x, double y) {
  const Matrix view = viewOf(moment.camera);
  const Matrix projection = projectionOf(moment.camera, size, x, y);
  const Vector eye = moment.camera.eye();
  return {{"sfg_matWorld", moment.world.numbers()},
          {"sfg_matWorldInverse", inverse(moment.world).numbers()},
          {"sfg_matWorldInverseTranspose", transposed(inverse(moment.world)).numbers()},
          {"sfg_matView", view.numbers()},
          {"sfg_matViewInverse", inverse(view).numbers()},
          {"sfg_matProj", projection.numbers()},
          {"sfg_matProjInverse", inverse(projection).numbers()},
          {"sfg_matWorldView", (view * moment.world).numbers()},
          {"sfg_matWorldViewProj", (projection * view * moment.world).numbers()},
          {"sfg_matViewProj", (projection * view).numbers()},
          {"sfg_orthographic", {0}},
          {"sfg_eyePosition", {eye[0], eye[1], eye[2]}},
          {"sfg_time", {moment.time}},
          {"sfg_viewportSize", {static_cast<double>(size.width), static_cast<double>(size.height)}}};
}

bool isNamed(const host::InterfaceMember& member, const std::string& name) {
  const auto is = [&name](const std::string& known) {
    return name == known || (name.starts_with(known) && name[known.size()] == '.');
  };
  return is(member.name) || is(member.origin.path());
}

/// The buffer's bytes: state, and of the settings those that are its own.
std::vector<std::uint8_t> bytesOf(const host::InterfaceBuffer& buffer, const State& state,
                                  const Settings& settings) {
  Settings own;
  for (const host::InterfaceMember& member : buffer.members) {
    if (!isState(member)) continue;
    const auto known = state.find(member.origin.name);
    if (known == state.end()) throw std::runtime_error("a picture has no `" + member.origin.name + "`");
    own.push_back({member.name, known->second});
  }
  for (const host::ValueSetting& setting : settings) {
    const auto takes = [&](const host::InterfaceMember& member) { return isNamed(member, setting.name); };
    if (std::any_of(buffer.members.begin(), buffer.members.end(), takes)) own.push_back(setting);
  }
  return host::packBuffer(buffer, own);
}

template <class Visit>
void eachBuffer(const Material& material, const Visit& visit) {
  for (const CompiledStage* const stage : {&material.vertex, &material.pixel}) {
    for (const host::InterfaceBuffer& buffer : stage->interface.buffers) {
      visit(buffer, static_cast<std::uint32_t>(buffer.place.binding.value()));
    }
  }
}

/// Whole numbers are drawn as such.
vk::Format formatOf(const Material& material) {
  if (material.pixel.interface.renderTargets.empty())
    throw std::runtime_error("the graph has no output to show");
  const std::string& type = material.pixel.interface.renderTargets.front().type;
  if (type.starts_with("uint") || type == "bool") return vk::Format::eR32G32B32A32Uint;
  return type.starts_with("int") ? vk::Format::eR32G32B32A32Sint : vk::Format::eR32G32B32A32Sfloat;
}

template <class Number>
float numberAt(std::span<const std::byte> bytes, std::size_t index) {
  Number value{};
  std::memcpy(&value, bytes.data() + index * sizeof(Number), sizeof(Number));
  return static_cast<float>(value);
}

float colorAt(std::span<const std::byte> bytes, std::size_t index, vk::Format format) {
  if (format == vk::Format::eR32G32B32A32Uint) return numberAt<std::uint32_t>(bytes, index);
  if (format == vk::Format::eR32G32B32A32Sint) return numberAt<std::int32_t>(bytes, index);
  return numberAt<float>(bytes, index);
}

}  // namespace

Material compileMaterial(const host::Job& job, const Refused& refused, Modules* vertexStages) {
  return {compileStage(job, host::ShaderStage::vertex, refused, vertexStages),
          compileStage(job, host::ShaderStage::pixel, refused, nullptr)};
}

Compilations compilations() { return {compiledStages, madePipelines}; }

Vector Camera::eye() const {
  const double around = azimuth * std::numbers::pi / 180;
  const double up = elevation * std::numbers::pi / 180;
  return target +
         Vector{std::cos(up) * std::sin(around), std::sin(up), std::cos(up) * std::cos(around)} * distance;
}

Vector rayThrough(const Camera& camera, vk::Extent2D size, double x, double y) {
  const Matrix view = viewOf(camera);
  const double scale =
      std::tan(camera.fieldOfView * std::numbers::pi / 360) / std::min(size.width, size.height);
  const double right = (2 * x - size.width) * scale;
  const double up = (size.height - 2 * y) * scale;
  Vector ray{};
  for (std::size_t axis = 0; axis < 3; ++axis)
    ray[axis] = view.at(0, axis) * right + view.at(1, axis) * up - view.at(2, axis);
  return unit(ray);
}

Camera cameraFor(const Mesh& mesh, double azimuth, double elevation) {
  Camera camera;
  camera.target = mesh.middle();
  camera.azimuth = azimuth;
  camera.elevation = elevation;
  constexpr double kMargin = 1.08;
  camera.distance =
      kMargin * std::max(mesh.radius(), 1e-6) / std::sin(camera.fieldOfView * std::numbers::pi / 360);
  return camera;
}

std::vector<std::string> settableNames(const Material& material) {
  std::vector<std::string> names;
  eachBuffer(material, [&](const host::InterfaceBuffer& buffer, std::uint32_t) {
    for (const host::InterfaceMember& member : buffer.members) {
      if (!isState(member)) names.push_back(member.origin.kind.empty() ? member.name : member.origin.path());
    }
  });
  for (const host::InterfaceAttribute& attribute : material.vertex.interface.attributes) {
    if (isGraphInput(attribute)) names.push_back(attribute.origin.name);
  }
  std::sort(names.begin(), names.end());
  names.erase(std::unique(names.begin(), names.end()), names.end());
  return names;
}

void checkSettings(const Material& material, const Settings& settings) {
  for (const host::ValueSetting& setting : settings) {
    bool isKnown = false;
    eachBuffer(material, [&](const host::InterfaceBuffer& buffer, std::uint32_t) {
      for (const host::InterfaceMember& member : buffer.members) {
        isKnown = isKnown || (!isState(member) && isNamed(member, setting.name));
      }
    });
    for (const host::InterfaceAttribute& attribute : material.vertex.interface.attributes) {
      isKnown = isKnown || (isGraphInput(attribute) && attribute.origin.name == setting.name);
    }
    if (isKnown) continue;
    const std::vector<std::string> known = settableNames(material);
    const std::string near = host::suggest(setting.name, known);
    throw host::PackError("the shader has no value `" + setting.name + "`" +
                          (near.empty() ? std::string() : "; did you mean `" + near + "`?"));
  }
}

View::View(const render::Device& device, Material material, const Mesh& mesh, const Textures& textures,
           const Settings& settings, const ViewOptions& options)
    : material_(std::move(material)), vertices_(mesh.vertices()), options_(options) {
  checkSettings(material_, settings);
  settings_ = settings;
  render::Triangles triangles;
  triangles.vertexStage = material_.vertex.module;
  triangles.pixelStage = material_.pixel.module;
  triangles.vertices = static_cast<std::uint32_t>(vertices_);
  for (const host::InterfaceAttribute& attribute : material_.vertex.interface.attributes) {
    if (!attribute.location) continue;
    triangles.attributes[static_cast<std::uint32_t>(*attribute.location)] =
        attributeValues(attribute, mesh, settings);
  }
  const State state = stateOf(Moment(), options.size, 0, 0);
  eachBuffer(material_, [&](const host::InterfaceBuffer& buffer, std::uint32_t binding) {
    triangles.uniforms[binding] = bytesOf(buffer, state, settings_);
  });
  triangles.textures = textures;
  // As many samples see finer levels of a texture.
  const auto finer = static_cast<float>(-0.5 * std::log2(options.samples));
  for (const host::InterfaceSampler& sampler : material_.pixel.interface.samplers) {
    const auto& all = material_.pixel.interface.textures;
    const auto owner = std::find_if(all.begin(), all.end(), [&](const host::InterfaceTexture& texture) {
      return texture.name == sampler.texture;
    });
    const bool repeats = owner == all.end() || (owner->type != "texture1D" && owner->type != "textureCube");
    triangles.samplers[static_cast<std::uint32_t>(sampler.place.binding.value())] = {repeats, finer};
  }
  ++madePipelines;
  drawing_.emplace(device, triangles, options.size, formatOf(material_));
}

void View::set(const Settings& settings) {
  checkSettings(material_, settings);
  Settings all = settings_;
  for (const host::ValueSetting& setting : settings) {
    // Whoever drags a value sets it a thousand times.
    std::erase_if(all, [&](const host::ValueSetting& known) { return known.name == setting.name; });
    all.push_back(setting);
  }
  // Buffers are packed for each picture; here only what cannot be packed is told.
  const State state = stateOf(Moment(), options_.size, 0, 0);
  eachBuffer(material_,
             [&](const host::InterfaceBuffer& buffer, std::uint32_t) { bytesOf(buffer, state, all); });
  std::map<std::uint32_t, std::vector<float>> attributes;
  for (const host::InterfaceAttribute& attribute : material_.vertex.interface.attributes) {
    if (!attribute.location || !isGraphInput(attribute)) continue;
    if (const host::ValueSetting* const given = findSetting(settings, attribute.origin.name)) {
      attributes[static_cast<std::uint32_t>(*attribute.location)] =
          atEachVertex(attribute, vertices_, given->numbers);
    }
  }
  for (const auto& [location, values] : attributes) drawing_->setAttribute(location, values);
  settings_ = std::move(all);
}

void View::feed(const Moment& moment, double x, double y) {
  const State state = stateOf(moment, options_.size, x, y);
  eachBuffer(material_, [&](const host::InterfaceBuffer& buffer, std::uint32_t binding) {
    drawing_->setUniform(binding, bytesOf(buffer, state, settings_));
  });
}

Shot View::shoot(const Moment& moment, const std::function<void(unsigned)>& progress) {
  const vk::Format format = formatOf(material_);
  const std::size_t channels = componentsOf(material_.pixel.interface.renderTargets.front().type);
  Shot shot{Picture(options_.size.width, options_.size.height), {}};
  shot.coverage.resize(shot.colors.texels.size() / 4);
  for (unsigned sample = 0; sample < options_.samples; ++sample) {
    const auto [x, y] = sampleAt(sample);
    feed(moment, x, y);
    drawing_->draw();
    for (std::size_t pixel = 0; pixel < shot.coverage.size(); ++pixel) {
      if (numberAt<float>(drawing_->depths(), pixel) >= 1) continue;
      shot.coverage[pixel] += 1;
      float* const sum = &shot.colors.texels[4 * pixel];
      for (std::size_t i = 0; i < 4; ++i) {
        // One channel is shown as grey.
        const std::size_t from = channels == 1 && i < 3 ? 0 : i;
        const bool isThere = channels == 1 ? i < 3 : i < channels;
        float value = i == 3 ? 1.0f : 0.0f;
        if (isThere) value = colorAt(drawing_->colors(), 4 * pixel + from, format);
        sum[i] += options_.isEncoded && i < 3 ? decodeSrgb(value) : value;
      }
    }
    if (progress) progress(sample + 1);
  }
  // Means of the samples that hit.
  for (std::size_t pixel = 0; pixel < shot.coverage.size(); ++pixel) {
    for (std::size_t i = 0; i < 4 && shot.coverage[pixel] > 0; ++i) {
      shot.colors.texels[4 * pixel + i] /= shot.coverage[pixel];
    }
    shot.coverage[pixel] /= static_cast<float>(options_.samples);
  }
  return shot;
}

}  // namespace pictures
