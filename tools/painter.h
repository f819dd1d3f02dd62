#pragma once

// Pictures of many graphs, drawn one after another on one device.

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "pictures/material.h"
#include "pictures/mesh.h"
#include "pictures/picture.h"
#include "render/renderer.h"
#include "tools/scene.h"
#include "tools/thumbnails.h"

namespace TolmSDK::Graphics::sfg::tools {

class Painter final : public ThumbnailPainter {
public:
  /// Throws InputError and std::runtime_error where no device can draw.
  Painter(std::shared_ptr<const host::LibrarySet> libraries, const ThumbnailOptions& options);

  /// The picture, transparent around the shape. Nothing where nothing of a node varies. Throws what reading,
  /// collapsing, compiling and drawing throw.
  std::optional<pictures::Picture> draw(const ThumbnailRequest& request);

  std::optional<std::string> paint(const ThumbnailRequest& request) override;
  std::vector<std::string> nodesOf(const std::string& graph) const override;
  const std::string& why() const noexcept override { return why_; }

private:
  Surroundings& surroundingsOf(const std::string& image);
  const pictures::Mesh& meshNamed(const std::string& shape, float scale);

  std::shared_ptr<const host::LibrarySet> libraries_;
  ThumbnailOptions options_;
  render::Device device_;
  std::map<std::string, Surroundings> surroundings_;
  std::map<std::pair<std::string, float>, pictures::Mesh> meshes_;
  pictures::Modules vertexStages_;  ///< most graphs have one of a few
  std::string why_;
};

}  // namespace TolmSDK::Graphics::sfg::tools
