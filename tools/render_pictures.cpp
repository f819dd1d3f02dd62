#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <numbers>
#include <sstream>

#include "pictures/documents.h"
#include "pictures/environment.h"
#include "pictures/material.h"
#include "pictures/mesh.h"
#include "pictures/picture.h"
#include "pictures/texture.h"
#include "render/renderer.h"
#include "sfg/host/compile.h"
#include "sfg/host/suggest.h"
#include "sfg/shader_fragment.h"
#include "tolmsdk/unicode.h"
#include "tools/command.h"
#include "tools/output_file.h"
#include "tools/progress_line.h"
#include "tools/render_options.h"
#include "tools/render_request.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

using pictures::Picture;
using pictures::PictureFormat;
namespace fs = std::filesystem;

/// Empty for one that cannot be read: its reader tells.
std::string textOf(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

// The documents

constexpr const char* kMapLight = "environmentMapLight";

struct Documents {
  std::shared_ptr<const host::LibrarySet> libraries;
  std::string graph;
  std::string environment;  ///< text; empty without one
  host::Document graphDocument = host::Document::fromText({}, {});
  std::optional<host::Document> environmentDocument;
  std::string image = "studio";  ///< what lights of images show
};

bool hasFragment(const host::LibrarySet& libraries, const char* name) {
  return libraries.library().acquireFragment(fromUtf8(name).c_str()) != nullptr;
}

/// Without a file a studio or sky, where the libraries have its light.
void readEnvironment(Documents& documents, const JobOptions& options) {
  const std::string& given = options.environmentFile;
  const bool isBuiltIn = given.empty() || ((given == "studio" || given == "sky") && !fs::exists(given));
  const bool hasMapLight = hasFragment(*documents.libraries, kMapLight);
  const auto addSurroundings = [&] {
    documents.environment =
        pictures::withLight(documents.environment, "surroundings", kMapLight, "sfg_Light");
  };
  if (isBuiltIn) {
    if (!given.empty()) documents.image = given;
    if (!hasMapLight || options.collapse.tool != host::CollapseTool::lightLoop) return;
    documents.environment = "{}";
    addSurroundings();
    documents.environmentDocument = host::Document::fromText(documents.environment, documents.image);
    return;
  }
  documents.environment = textOf(given);
  documents.environmentDocument = host::Document::fromFile(given);
  const std::optional<std::string> image = pictures::imageOf(documents.environment);
  if (!image) return;
  documents.image =
      *image == "studio" || *image == "sky" ? *image : (fs::path(given).parent_path() / *image).string();
  if (!hasMapLight || pictures::hasLight(documents.environment, {kMapLight, "imageLight"})) return;
  addSurroundings();
  documents.environmentDocument = host::Document::fromText(documents.environment, given);
}

std::vector<pictures::OutputPort> outputsOf(const Documents& documents, const pictures::NodeName& node) {
  std::vector<pictures::OutputPort> outputs = pictures::interfaceOutputs(documents.graph, node.name);
  const auto* const found = documents.libraries->library().acquireFragment(fromUtf8(node.fragment).c_str());
  if (!outputs.empty() || found == nullptr) return outputs;
  const RefPtr<IShaderFragment> copy(found->clone(L"shown"));
  auto* const fragment = dynamic_cast<AShaderFragment*>(copy.get());
  if (fragment == nullptr) return outputs;
  fragment->generateAutoInputsOutputs(&documents.libraries->language());
  for (std::size_t i = 0; i < fragment->getNumOutputs(); ++i) {
    const AParameter& output = *fragment->getOutput(i);
    outputs.push_back({toUtf8(output.getName()), toUtf8(output.getType().toString())});
  }
  return outputs;
}

/// What of a graph is shown alone.
struct ShownNode {
  std::string node;
  pictures::OutputPort output;
  pictures::PortWords words;
};

pictures::PortWords wordsOf(const Documents& documents, const std::string& fragment,
                            const std::string& port) {
  for (const host::FragmentInfo& info : documents.libraries->fragments()) {
    if (info.name == fragment) return pictures::portWords(textOf(info.file), fragment, port);
  }
  return {};
}

/// A node's name may hold dots: the whole text is tried first.
ShownNode findNode(const Documents& documents, const std::string& given) {
  const std::vector<pictures::NodeName> nodes = pictures::nodesOf(documents.graph);
  std::vector<std::string> names;
  for (const pictures::NodeName& node : nodes) names.push_back(node.name);
  const std::size_t dot = given.rfind('.');
  const bool isWhole = dot == given.npos || std::find(names.begin(), names.end(), given) != names.end();
  const std::string name = isWhole ? given : given.substr(0, dot);
  const std::string wanted = isWhole ? std::string() : given.substr(dot + 1);
  const auto node =
      std::find_if(nodes.begin(), nodes.end(), [&](const auto& known) { return known.name == name; });
  if (node == nodes.end())
    throw host::InputError("`--node`: the graph has no node `" + name + "`" + didYouMean(name, names));
  const auto outputs = outputsOf(documents, *node);
  std::vector<std::string> outputNames;
  for (const pictures::OutputPort& output : outputs) {
    if (wanted.empty() || output.name == wanted)
      return {name, output, wordsOf(documents, node->fragment, output.name)};
    outputNames.push_back(output.name);
  }
  throw host::InputError(
      "`--node`: node `" + name + "` has no output" +
      (wanted.empty() ? std::string() : " `" + wanted + "`" + didYouMean(wanted, outputNames)));
}

// Textures

vk::ImageViewType typeOf(const std::string& type) {
  if (type == "texture1D") return vk::ImageViewType::e1D;
  if (type == "texture3D") return vk::ImageViewType::e3D;
  return type == "textureCube" ? vk::ImageViewType::eCube : vk::ImageViewType::e2D;
}

Picture readFor(const std::string& what, const std::string& file) {
  try {
    return pictures::readPicture(file);
  } catch (const std::runtime_error& error) {
    throw host::InputError(what + ": " + error.what());
  }
}

/// The light around, computed when something first asks for it.
class Surroundings {
public:
  explicit Surroundings(std::string image) : image_(std::move(image)) {}

  const Picture& panorama() {
    if (panorama_.width == 0) {
      panorama_ = image_ == "studio" ? pictures::studioPanorama()
                  : image_ == "sky"  ? pictures::skyPanorama()
                                     : pictures::linearized(readFor("the environment's image", image_));
    }
    return panorama_;
  }
  const pictures::EnvironmentLight& light() {
    if (!light_) light_ = pictures::keptEnvironmentLight(panorama(), pictures::cacheFolder());
    return *light_;
  }

private:
  std::string image_;
  Picture panorama_;
  std::optional<pictures::EnvironmentLight> light_;
};

/// What the fragments for surroundings read, where nobody gives a file.
std::optional<render::Texture> surroundingsFor(const host::InterfaceOrigin& origin,
                                               Surroundings& surroundings) {
  if (origin.fragment == kMapLight || origin.fragment == "imageLight" ||
      origin.fragment == "environmentReflection")
    return surroundings.light().mirrored;
  if (origin.fragment == "environmentBrdf")
    return pictures::makeTexture(pictures::splitSumTable(), pictures::ColorSpace::data,
                                 vk::ImageViewType::e2D);
  return std::nullopt;
}

/// Those of the files, and stand-ins for the others.
pictures::Textures texturesOf(const RenderRequest& request, const host::ShaderInterface& shader,
                              Surroundings& surroundings, Diagnostics& diagnostics) {
  std::map<std::string, std::string> files;
  for (const std::string& text : request.textures) {
    const auto [name, file] = splitTexture(text);
    files.insert_or_assign(name, file);
  }
  std::vector<std::string> names;
  for (const host::InterfaceTexture& texture : shader.textures) names.push_back(texture.origin.path());
  for (const auto& [name, file] : files) {
    const bool isKnown =
        std::any_of(shader.textures.begin(), shader.textures.end(), [&wanted = name](const auto& texture) {
          return wanted == texture.origin.path() || wanted == texture.name;
        });
    if (!isKnown)
      throw host::InputError("the shader has no texture `" + name + "`" + didYouMean(name, names));
  }
  pictures::Textures made;
  for (const host::InterfaceTexture& texture : shader.textures) {
    const auto binding = static_cast<std::uint32_t>(texture.place.binding.value());
    const auto space =
        pictures::colorSpaceOf(texture.origin.port ? texture.origin.port->space : std::string());
    auto file = files.find(texture.origin.path());
    if (file == files.end()) file = files.find(texture.name);
    if (file == files.end()) {
      if (auto known = surroundingsFor(texture.origin, surroundings)) {
        made.emplace(binding, std::move(*known));
        continue;
      }
      const char* const shown = space == pictures::ColorSpace::data ? "flat" : "a coloured board";
      diagnostics.note(std::string(),
                       "texture `" + texture.origin.path() + "` has no file (`--texture`): it is " + shown,
                       "unconnected-input");
      made.emplace(binding, pictures::makeTexture(pictures::standIn(space), space, typeOf(texture.type)));
      continue;
    }
    const Picture picture = readFor("`--texture " + file->first + "`", file->second);
    made.emplace(binding, pictures::makeTexture(picture, space, typeOf(texture.type)));
  }
  return made;
}

/// The nine colours of diffuse light, for those fragments that take them.
pictures::Settings diffuseSettings(const host::ShaderInterface& shader, Surroundings& surroundings) {
  pictures::Settings settings;
  for (const host::InterfaceBuffer& buffer : shader.buffers) {
    for (const host::InterfaceMember& member : buffer.members) {
      const std::string prefix = member.origin.fragment == kMapLight              ? "light_sh"
                                 : member.origin.fragment == "environmentDiffuse" ? "diffuse"
                                                                                  : "";
      const std::string& name = member.origin.name;
      if (prefix.empty() || !name.starts_with(prefix) || name.size() != prefix.size() + 1) continue;
      const auto index = static_cast<std::size_t>(name.back() - '0');
      if (index >= 9) continue;
      const pictures::Vector& color = surroundings.light().diffuse[index];
      settings.push_back({member.origin.path(), {color[0], color[1], color[2]}});
    }
  }
  return settings;
}

// Pictures

/// What the shot shows, over what `behind` gives for a pixel: a colour and its opacity.
template <class Behind>
Picture composed(const pictures::Shot& shot, const Behind& behind) {
  Picture picture = shot.colors;
  for (std::size_t pixel = 0; pixel < shot.coverage.size(); ++pixel) {
    const std::array<float, 4> background = behind(pixel % picture.width, pixel / picture.width);
    float* const texel = &picture.texels[4 * pixel];
    const float above =
        shot.coverage[pixel] > 0 ? shot.coverage[pixel] * std::clamp(texel[3], 0.0f, 1.0f) : 0.0f;
    const float below = (1 - above) * background[3];
    const float all = above + below;
    for (std::size_t i = 0; i < 3; ++i) {
      const float seen = above > 0 ? above * texel[i] : 0.0f;
      texel[i] = all > 0 ? (seen + below * background[i]) / all : 0.0f;
    }
    texel[3] = all;
  }
  return picture;
}

struct Range {
  float low = std::numeric_limits<float>::infinity();
  float high = -std::numeric_limits<float>::infinity();
};

Range rangeOf(const pictures::Shot& shot, std::size_t channels) {
  Range range;
  for (std::size_t i = 0; i < shot.colors.texels.size(); ++i) {
    const float value = shot.colors.texels[i];
    if (shot.coverage[i / 4] <= 0 || i % 4 >= channels || !std::isfinite(value)) continue;
    range.low = std::min(range.low, value);
    range.high = std::max(range.high, value);
  }
  return range;
}

/// Colours as they are; else the least number becomes black and the greatest white, of vectors that point in
/// all directions -1 and 1.
void showNumbers(pictures::Shot& shot, const ShownNode& shown, Range range) {
  if (shown.words.kind == "color" && shown.words.space != "data") {
    shot.colors.isEncoded = shown.words.space == "srgb";
    return;
  }
  const bool isVector = shown.output.type.back() >= '2' && shown.output.type.back() <= '4';
  if (isVector && range.low >= -1.001f && range.high <= 1.001f) range = {range.low < 0 ? -1.0f : 0.0f, 1};
  const float span = range.high > range.low ? range.high - range.low : 1;
  for (std::size_t i = 0; i < shot.colors.texels.size(); ++i) {
    float& value = shot.colors.texels[i];
    value = i % 4 == 3 ? 1.0f : (value - range.low) / span;
  }
  shot.colors.isEncoded = true;
}

std::string rangeLine(const ShownNode& shown, const Range& range) {
  std::ostringstream line;
  line << shown.node << '.' << shown.output.name << ": " << shown.output.type << ", ";
  if (range.low > range.high) {
    line << "nothing seen\n";
  } else {
    line << "from " << range.low << " to " << range.high << '\n';
  }
  return line.str();
}

/// How much is drawn, in per cent.
class Progress {
public:
  Progress(unsigned pictures, unsigned samples) : all_(pictures * samples), samples_(samples) {}

  void tell(unsigned picture, unsigned sample) {
    line_.show("  " + std::to_string(100 * (picture * samples_ + sample) / all_) + " %");
  }

private:
  unsigned all_;
  unsigned samples_;
  ProgressLine line_;
};

/// "picture-suffix.png".
std::string withSuffix(const std::string& file, const std::string& suffix) {
  const fs::path path(file);
  return (path.parent_path() / (path.stem().string() + "-" + suffix + path.extension().string())).string();
}

/// With as many digits as the last one has.
std::string numbered(const std::string& file, unsigned index, unsigned count) {
  std::string digits = std::to_string(index);
  digits.insert(0, std::to_string(count - 1).size() - digits.size(), '0');
  return withSuffix(file, digits);
}

/// As a PNG holds them, from 0 to 255.
float stored(float value) { return std::round(255 * std::clamp(value, 0.0f, 1.0f)); }

/// Tells the differences of encoded colours, from 0 to 1, and gives them as a picture.
Picture compare(const Picture& picture, const Picture& other, const std::string& name) {
  if (other.width != picture.width || other.height != picture.height) {
    throw host::InputError(name, TextPosition(),
                           "is a picture of " + std::to_string(other.width) + "x" +
                               std::to_string(other.height) + ", not of " + std::to_string(picture.width) +
                               "x" + std::to_string(picture.height),
                           "wrong-value");
  }
  const Picture seen = pictures::encoded(picture);
  const Picture expected = pictures::encoded(other);
  Picture difference(seen.width, seen.height);
  difference.isEncoded = true;
  double sum = 0;
  double squares = 0;
  double greatest = 0;
  std::size_t different = 0;
  for (std::size_t i = 0; i < seen.texels.size(); ++i) {
    const float far = std::abs(stored(seen.texels[i]) - stored(expected.texels[i])) / 255;
    difference.texels[i] = i % 4 == 3 ? 1.0f : far;
    sum += far;
    squares += static_cast<double>(far) * far;
    greatest = std::max<double>(greatest, far);
    if (far > 0) ++different;
  }
  const auto count = static_cast<double>(seen.texels.size());
  std::ostringstream line;
  line << "differences: mean " << sum / count << ", root mean square " << std::sqrt(squares / count)
       << ", greatest " << greatest << "; " << 100.0 * static_cast<double>(different) / count
       << " % of the numbers differ\n";
  writeOutput({}, line.str());
  return difference;
}

std::optional<pictures::Material> compileFor(host::Job& job, const std::string& graphFile,
                                             Diagnostics& diagnostics) {
  if (collapse(job, true, diagnostics) != Outcome::done) return std::nullopt;
  std::vector<host::Diagnostic> why;
  try {
    return pictures::compileMaterial(job, [&](const host::Shader& shader, const host::CompileError& error) {
      why = job.explain(shader, error);
    });
  } catch (const host::AssemblyError& error) {
    diagnostics.error(graphFile, error.what(), "incomplete-shader");
  } catch (const host::CompileError&) {
    diagnostics.show(why);
  }
  return std::nullopt;
}

/// The picture, or pictures, of a request whose options are read.
class Rendering {
public:
  Rendering(const RenderRequest& request, Diagnostics& diagnostics)
      : request_(request), diagnostics_(diagnostics) {
    format_ = formatOf(request.output);
    options_.size = sizeOf(request.size);
    options_.samples = request.samples;
    background_ = backgroundOf(request.background);
    for (const std::string& text : request.settings) settings_.push_back(host::parseSetting(text));
    for (const std::string& text : request.textures) splitTexture(text);
    mesh_ = meshOf(request);
    moment_ = {cameraOf(request, mesh_), {}, request.time};
    checkOutputs(request.job,
                 {request.output, request.compared.empty() ? "" : withSuffix(request.output, "difference")});
    deviceIndex_ = deviceOf(request.device);
  }

  int run() {
    readDocuments();
    host::Job job(documents_.libraries, documents_.graphDocument, request_.job.collapse,
                  documents_.environmentDocument);
    std::optional<pictures::Material> material = compileFor(job, request_.job.graphFile, diagnostics_);
    if (!material) return kRefused;
    Surroundings surroundings(documents_.image);
    const auto textures = texturesOf(request_, material->pixel.interface, surroundings, diagnostics_);
    pictures::checkSettings(*material, settings_);
    pictures::Settings settings = diffuseSettings(material->pixel.interface, surroundings);
    settings.insert(settings.end(), settings_.begin(), settings_.end());
    const render::Device device(deviceIndex_);
    pictures::View view(device, std::move(*material), mesh_, textures, settings, options_);
    shoot(view, surroundings);
    return kDone;
  }

private:
  void readDocuments() {
    documents_.libraries = loadLibraries(request_.job.libraries, diagnostics_);
    documents_.graph = textOf(request_.job.graphFile);
    documents_.graphDocument = host::Document::fromFile(request_.job.graphFile);
    readEnvironment(documents_, request_.job);
    if (!request_.node.empty()) {
      shown_ = findNode(documents_, request_.node);
      documents_.graphDocument = host::Document::fromText(
          pictures::withOutput(documents_.graph, shown_->node, shown_->output.name, shown_->output.type),
          request_.job.graphFile);
      return;
    }
    const std::string last = pictures::lastFragment(documents_.graph, documents_.environment);
    options_.isEncoded = !last.empty() && wordsOf(documents_, last, "result").space == "srgb";
  }

  Picture develop(pictures::Shot shot, Surroundings& surroundings) const {
    if (shown_) {
      const bool isVector = shown_->output.type.back() >= '2' && shown_->output.type.back() <= '4';
      const std::size_t channels = isVector ? static_cast<std::size_t>(shown_->output.type.back() - '0') : 1;
      const Range range = rangeOf(shot, channels);
      writeOutput({}, rangeLine(*shown_, range));
      if (format_ == PictureFormat::png) showNumbers(shot, *shown_, range);
    }
    const bool showsAround = request_.background == "environment";
    const bool isEncoded = shot.colors.isEncoded;
    return composed(shot, [&](std::size_t x, std::size_t y) {
      std::array<float, 4> color = background_;
      if (showsAround) {
        const auto ray = pictures::rayThrough(moment_.camera, options_.size, static_cast<double>(x) + 0.5,
                                              static_cast<double>(y) + 0.5);
        pictures::samplePanorama(surroundings.panorama(), ray.data(), color.data());
        color[3] = 1;
      }
      for (std::size_t i = 0; isEncoded && i < 3; ++i) color[i] = pictures::encodeSrgb(color[i]);
      return color;
    });
  }

  void shoot(pictures::View& view, Surroundings& surroundings) {
    const unsigned count = std::max(request_.turntable, 1u);
    const bool isAnimated = request_.output.ends_with(".apng");
    std::vector<Picture> frames;
    for (unsigned i = 0; i < count; ++i) {
      moment_.world = pictures::turnedAroundY(2 * std::numbers::pi * i / count);
      Picture picture;
      {
        Progress progress(count, options_.samples);
        picture =
            develop(view.shoot(moment_, [&](unsigned sample) { progress.tell(i, sample); }), surroundings);
      }
      if (isAnimated) {
        frames.push_back(std::move(picture));
        continue;
      }
      const std::string file = request_.turntable > 0 ? numbered(request_.output, i, count) : request_.output;
      writeOutput(file, pictures::writePicture(picture, format_));
      if (i == 0 && !request_.compared.empty()) {
        const Picture difference =
            compare(picture, readFor("`--compare`", request_.compared), request_.compared);
        writeOutput(withSuffix(request_.output, "difference"), pictures::writePicture(difference, format_));
      }
    }
    if (isAnimated) writeOutput(request_.output, pictures::writeAnimation(frames, 24));
  }

  const RenderRequest& request_;
  Diagnostics& diagnostics_;
  PictureFormat format_ = PictureFormat::png;
  pictures::ViewOptions options_;
  std::array<float, 4> background_{};
  pictures::Settings settings_;
  pictures::Mesh mesh_;
  pictures::Moment moment_;
  std::size_t deviceIndex_ = 0;
  Documents documents_;
  std::optional<ShownNode> shown_;
};

}  // namespace

std::string deviceLines() {
  const auto devices = render::listDevices();
  if (devices.empty())
    throw std::runtime_error("no device can draw: install Mesa's software driver (mesa-vulkan-drivers)");
  const std::size_t taken = deviceOf({});
  std::string lines;
  for (std::size_t i = 0; i < devices.size(); ++i) {
    const std::string line = devices[i].name + (devices[i].isProcessor ? " (software)" : "") + "\n";
    lines = i == taken ? line + lines : lines + line;
  }
  return lines;
}

int renderPictures(const RenderRequest& request, Diagnostics& diagnostics) try {
  return Rendering(request, diagnostics).run();
} catch (const host::PackError& error) {
  throw host::InputError(std::string(), TextPosition(), error.what(), "bad-setting");
}

}  // namespace TolmSDK::Graphics::sfg::tools
