#include "tools/painter.h"

#include <algorithm>
#include <map>
#include <numbers>
#include <stdexcept>

#include "pictures/material.h"
#include "pictures/mesh.h"
#include "render/renderer.h"
#include "sfg/host/compile.h"
#include "sfg/host/errors.h"
#include "tools/render_options.h"
#include "tools/scene.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

/// What changes from place to place in a pixel stage.
bool takes(const pictures::Material& material, const auto& isWanted) {
  const auto& taken = material.pixel.interface.attributes;
  return std::any_of(taken.begin(), taken.end(),
                     [&](const host::InterfaceAttribute& attribute) { return isWanted(attribute); });
}

bool isCoordinate(const host::InterfaceAttribute& attribute) {
  return attribute.origin.name.starts_with("sfg_texCoord") ||
         (attribute.origin.kind == "graphInput" && (attribute.type == "float2" || attribute.type == "float"));
}

/// Whether all of the shape has one colour, up to what rounding does.
bool isUniform(const pictures::Shot& shot) {
  std::array<float, 4> low{};
  std::array<float, 4> high{};
  bool isFirst = true;
  for (std::size_t pixel = 0; pixel < shot.coverage.size(); ++pixel) {
    if (shot.coverage[pixel] <= 0) continue;
    for (std::size_t i = 0; i < 4; ++i) {
      const float value = shot.colors.texels[4 * pixel + i];
      low[i] = isFirst ? value : std::min(low[i], value);
      high[i] = isFirst ? value : std::max(high[i], value);
    }
    isFirst = false;
  }
  for (std::size_t i = 0; i < 4; ++i) {
    if (high[i] - low[i] > 1e-4f * std::max(1.0f, std::max(high[i], -low[i]))) return false;
  }
  return true;
}

std::optional<pictures::Picture> finish(pictures::Shot& shot, const std::optional<ShownNode>& shown,
                                        bool showsUniform) {
  if (shown) {
    if (!showsUniform && isUniform(shot)) return std::nullopt;
    showNumbers(shot, *shown, rangeOf(shot, *shown));
  }
  return composed(shot, [](std::size_t, std::size_t) { return std::array<float, 4>{}; });
}

std::size_t deviceFor(const std::string& name) {
  if (render::listDevices().empty())
    throw std::runtime_error("no device can draw: install Mesa's software driver (mesa-vulkan-drivers)");
  return deviceOf(name);
}

}  // namespace

Painter::Painter(std::shared_ptr<const host::LibrarySet> libraries, const ThumbnailOptions& options)
    : libraries_(std::move(libraries)), options_(options), device_(deviceFor(options.device)) {}

std::optional<std::string> Painter::paint(const ThumbnailRequest& request) {
  why_.clear();
  try {
    const std::optional<pictures::Picture> picture = draw(request);
    if (!picture) return std::nullopt;
    return pictures::writePicture(*picture, pictures::PictureFormat::png);
  } catch (const std::exception& error) {
    why_ = error.what();
    if (why_.empty()) why_ = "it cannot be drawn";
    return std::nullopt;
  }
}

std::optional<pictures::Picture> Painter::draw(const ThumbnailRequest& request) {
  Documents documents;
  documents.libraries = libraries_;
  documents.graph = request.graph;
  documents.graphDocument = host::Document::fromText(request.graph, request.graphFile);
  readEnvironment(documents, request.environment, request.collapse.tool);
  std::optional<ShownNode> shown;
  pictures::ViewOptions view{{options_.side, options_.side}, options_.samples, false};
  if (!request.node.empty()) {
    shown = findNode(documents, request.node);
    documents.graphDocument = host::Document::fromText(
        pictures::withOutput(documents.graph, shown->node, shown->output.name, shown->output.type),
        request.graphFile);
  }
  host::Job job(libraries_, documents.graphDocument, request.collapse, documents.environmentDocument);
  view.isEncoded = !shown && job.colorSpace() == "srgb";
  job.collapse();
  if (!request.showsUniform &&
      job.reflect(host::ShaderStage::pixel, host::NameStyle::readable).attributes.empty())
    return std::nullopt;
  pictures::Material material = pictures::compileMaterial(job, {}, &vertexStages_);
  const bool isFlat = !takes(material, [](const auto& attribute) { return !isCoordinate(attribute); });
  const std::string shape = !request.shape.empty() ? request.shape : isFlat ? "plane" : "sphere";
  Surroundings& surroundings = surroundingsOf(documents.image);
  const auto textures = texturesOf(request.textures, material.pixel.interface, surroundings, nullptr);
  const auto settings = diffuseSettings(material.pixel.interface, surroundings);
  const pictures::Mesh& mesh = meshNamed(shape, request.scale);
  pictures::Moment moment;
  RenderRequest placed;
  placed.shape = shape;
  placed.camera = request.camera;
  moment.camera = cameraOf(placed, mesh);
  // Its sides are at the border of the picture, not its corners.
  if (shape == "plane" && request.camera.empty()) moment.camera.distance /= std::numbers::sqrt2;
  pictures::Shot shot =
      pictures::View(device_, std::move(material), mesh, textures, settings, view).shoot(moment);
  return finish(shot, shown, request.showsUniform);
}

std::vector<std::string> Painter::nodesOf(const std::string& graph) const {
  std::vector<std::string> names;
  for (const pictures::NodeName& node : pictures::nodesOf(graph)) names.push_back(node.name);
  return names;
}

Surroundings& Painter::surroundingsOf(const std::string& image) {
  return surroundings_.try_emplace(image, image).first->second;
}
const pictures::Mesh& Painter::meshNamed(const std::string& shape, float scale) {
  const auto [known, isNew] = meshes_.try_emplace({shape, scale});
  if (isNew) {
    const auto& names = pictures::shapeNames();
    const bool isName = std::find(names.begin(), names.end(), shape) != names.end();
    known->second = isName ? pictures::makeShape(shape) : pictures::readMesh(shape);
    known->second.scaleTexCoords(scale, scale);
    for (float& number : known->second.parts.at("position")) number *= scale;
  }
  return known->second;
}

std::unique_ptr<ThumbnailPainter> makeThumbnailPainter(std::shared_ptr<const host::LibrarySet> libraries,
                                                       const ThumbnailOptions& options) {
  return std::make_unique<Painter>(std::move(libraries), options);
}

}  // namespace TolmSDK::Graphics::sfg::tools
