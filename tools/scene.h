#pragma once

// What a picture of a graph is made of besides the graph: its environment, textures, and what a single node
// shows.

#include <array>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "pictures/documents.h"
#include "pictures/environment.h"
#include "pictures/material.h"
#include "pictures/picture.h"
#include "sfg/host/document.h"
#include "sfg/host/job.h"
#include "sfg/host/library_set.h"
#include "sfg/host/reflect.h"
#include "tools/diagnostics.h"

namespace TolmSDK::Graphics::sfg::tools {

/// Empty for a file that cannot be read: its reader tells.
std::string textOf(const std::string& file);

struct Documents {
  std::shared_ptr<const host::LibrarySet> libraries;
  std::string graph;
  std::string environment;  ///< text; empty without one
  host::Document graphDocument = host::Document::fromText({}, {});
  std::optional<host::Document> environmentDocument;
  std::string image = "studio";  ///< what lights of images show
};

/// Of a file, `studio` or `sky`; without one the studio, where the libraries have its light.
void readEnvironment(Documents& documents, const std::string& given, host::CollapseTool tool);

/// What a library says of a port.
pictures::PortWords wordsOf(const Documents& documents, const std::string& fragment, const std::string& port);

/// What of a graph is shown alone.
struct ShownNode {
  std::string node;
  pictures::OutputPort output;
  pictures::PortWords words;
};
/// Of "NAME" or "NAME.OUTPUT". Throws InputError.
ShownNode findNode(const Documents& documents, const std::string& given);

/// The light around, computed when something first asks for it.
class Surroundings {
public:
  /// Of `studio`, `sky` or a file.
  explicit Surroundings(std::string image) : image_(std::move(image)) {}

  const pictures::Picture& panorama();
  const pictures::EnvironmentLight& light();

private:
  std::string image_;
  pictures::Picture panorama_;
  std::optional<pictures::EnvironmentLight> light_;
};

/// A picture file. Throws InputError that begins with `what`.
pictures::Picture readFor(const std::string& what, const std::string& file);
/// Those of the files ("node.input=file"), and stand-ins for the others, of which `diagnostics` are told
/// unless they are null.
pictures::Textures texturesOf(const std::vector<std::string>& given, const host::ShaderInterface& shader,
                              Surroundings& surroundings, Diagnostics* diagnostics);
/// The nine colours of diffuse light, for those fragments that take them.
pictures::Settings diffuseSettings(const host::ShaderInterface& shader, Surroundings& surroundings);

/// What lies behind a pixel: a colour and its opacity.
using Behind = std::function<std::array<float, 4>(std::size_t x, std::size_t y)>;
pictures::Picture composed(const pictures::Shot& shot, const Behind& behind);

struct Range {
  float low = std::numeric_limits<float>::infinity();
  float high = -std::numeric_limits<float>::infinity();
};
/// Of the finite numbers that a shot shows of a node.
Range rangeOf(const pictures::Shot& shot, const ShownNode& shown);
/// Colours as they are; else the least number becomes black and the greatest white, of vectors that point in
/// all directions -1 and 1.
void showNumbers(pictures::Shot& shot, const ShownNode& shown, Range range);

}  // namespace TolmSDK::Graphics::sfg::tools
