#pragma once

// Small pictures of many graphs, drawn one after another on one device.

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "sfg/host/job.h"
#include "sfg/host/library_set.h"

namespace TolmSDK::Graphics::sfg::tools {

struct ThumbnailRequest {
  std::string graph;        ///< JSON
  std::string graphFile;    ///< as diagnostics would call it
  std::string environment;  ///< a file, `studio` or `sky`
  /// A name or a mesh file; empty: a plane for what only texture coordinates change, else a sphere.
  std::string shape;
  std::string node = {};  ///< "NAME.OUTPUT" to show one node; empty for the whole graph
  float scale = 1;        ///< how large the shape is, and how often texture coordinates go through it
  host::CollapseOptions collapse = {};
  bool showsUniform = false;               ///< a node of which nothing varies has a picture, too
  std::string camera = {};                 ///< as `sfg render` takes it; empty: what suits the shape
  std::vector<std::string> textures = {};  ///< "node.input=FILE"; stand-ins for the others
};

struct ThumbnailOptions {
  std::string device;  ///< part of its name; empty for the best
  unsigned side = 112;
  unsigned samples = 8;
};

/// Used by one thread at a time.
class ThumbnailPainter {
public:
  virtual ~ThumbnailPainter() = default;
  /// A PNG file's bytes, transparent around the shape. Nothing for a graph of which nothing varies over the
  /// shape, and for what cannot be drawn: `why()` says that.
  virtual std::optional<std::string> paint(const ThumbnailRequest& request) = 0;
  /// The names of a graph's nodes, in order.
  virtual std::vector<std::string> nodesOf(const std::string& graph) const = 0;
  /// Why the last answer was nothing; empty where nothing varies.
  virtual const std::string& why() const noexcept = 0;
};

/// Throws InputError and std::runtime_error where no device can draw.
std::unique_ptr<ThumbnailPainter> makeThumbnailPainter(std::shared_ptr<const host::LibrarySet> libraries,
                                                       const ThumbnailOptions& options);

}  // namespace TolmSDK::Graphics::sfg::tools
