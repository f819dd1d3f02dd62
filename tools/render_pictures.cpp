#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <numbers>
#include <sstream>

#include "pictures/material.h"
#include "pictures/mesh.h"
#include "pictures/picture.h"
#include "pictures/texture.h"
#include "render/renderer.h"
#include "sfg/host/compile.h"
#include "tools/command.h"
#include "tools/output_file.h"
#include "tools/progress_line.h"
#include "tools/render_options.h"
#include "tools/render_request.h"
#include "tools/scene.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

using pictures::Picture;
using pictures::PictureFormat;
namespace fs = std::filesystem;

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

/// As a PNG holds it, from 0 to 255; what is not a number is 0 there.
float stored(float value) { return std::isnan(value) ? 0 : std::round(255 * std::clamp(value, 0.0f, 1.0f)); }

/// How far two numbers of files without limits are from each other; infinitely where one is not a number.
float distance(float a, float b) {
  if (a == b || (std::isnan(a) && std::isnan(b))) return 0;
  const float far = std::abs(a - b);
  return std::isnan(far) ? std::numeric_limits<float>::infinity() : far;
}

/// The picture to compare with. Throws InputError when it cannot be read or has another size.
Picture comparedPicture(const std::string& file, const vk::Extent2D& size) {
  Picture other = readFor("`--compare`", file);
  if (other.width == size.width && other.height == size.height) return other;
  throw host::InputError(file, TextPosition(),
                         "is a picture of " + std::to_string(other.width) + "x" +
                             std::to_string(other.height) + ", not of " + std::to_string(size.width) + "x" +
                             std::to_string(size.height),
                         "wrong-value");
}

/// Tells the differences of two pictures of one size, and gives them as a picture: those of linear numbers
/// without limits where both files hold such, else of encoded colours, from 0 to 1.
Picture compare(const Picture& picture, const Picture& other, PictureFormat format) {
  const bool isLinear = format != PictureFormat::png && !other.isEncoded;
  const Picture seen = isLinear ? pictures::linearized(picture) : pictures::encoded(picture);
  const Picture expected = isLinear ? other : pictures::encoded(other);
  Picture difference(seen.width, seen.height);
  difference.isEncoded = !isLinear;
  double sum = 0;
  double squares = 0;
  double greatest = 0;
  std::size_t different = 0;
  for (std::size_t i = 0; i < seen.texels.size(); ++i) {
    const float a = seen.texels[i];
    const float b = expected.texels[i];
    const float far = isLinear ? distance(a, b) : distance(stored(a), stored(b)) / 255;
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

std::optional<pictures::Material> compileFor(host::Job& job, const RenderSteps& steps,
                                             const std::string& graphFile, Diagnostics& diagnostics) {
  if (!steps.collapse(job)) return std::nullopt;
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
  Rendering(const RenderRequest& request, const RenderSteps& steps, Diagnostics& diagnostics)
      : request_(request), steps_(steps), diagnostics_(diagnostics) {
    format_ = formatOf(request.output);
    options_.size = sizeOf(request.size);
    options_.samples = request.samples;
    background_ = backgroundOf(request.background);
    if (!std::isfinite(request.time)) throw host::InputError("`--time`: expected a finite number");
    for (const std::string& text : request.settings) settings_.push_back(host::parseSetting(text));
    checkFiles();
    mesh_ = meshOf(request);
    moment_ = {cameraOf(request, mesh_), {}, request.time};
    if (!request.compared.empty()) compared_ = comparedPicture(request.compared, options_.size);
    deviceIndex_ = deviceOf(request.device);
  }

  int run() {
    readDocuments();
    host::Job job(documents_.libraries, documents_.graphDocument, request_.job.collapse,
                  documents_.environmentDocument);
    options_.isEncoded = !shown_ && job.colorSpace() == "srgb";
    std::optional<pictures::Material> material =
        compileFor(job, steps_, request_.job.graphFile, diagnostics_);
    if (!material) return kRefused;
    Surroundings surroundings(documents_.image);
    const auto textures =
        texturesOf(request_.textures, material->pixel.interface, surroundings, &diagnostics_);
    pictures::checkSettings(*material, settings_);
    pictures::Settings settings = diffuseSettings(material->pixel.interface, surroundings);
    settings.insert(settings.end(), settings_.begin(), settings_.end());
    const render::Device device(deviceIndex_);
    pictures::View view(device, std::move(*material), mesh_, textures, settings, options_);
    shoot(view, surroundings);
    return kDone;
  }

private:
  bool isAnimated() const { return request_.output.ends_with(".apng"); }
  unsigned count() const { return std::max(request_.turntable, 1u); }
  std::string fileOf(unsigned picture) const {
    return request_.turntable > 0 && !isAnimated() ? numbered(request_.output, picture, count())
                                                   : request_.output;
  }
  std::string differenceFile() const { return withSuffix(request_.output, "difference"); }

  /// Nothing that is read is written over, and drawing is not for nothing.
  void checkFiles() const {
    std::vector<std::string> inputs{request_.shape, request_.compared};
    for (const std::string& text : request_.textures) inputs.push_back(splitTexture(text).second);
    std::vector<std::string> outputs{fileOf(0)};
    for (unsigned i = 1; i < count() && !isAnimated(); ++i) outputs.push_back(fileOf(i));
    if (!request_.compared.empty()) outputs.push_back(differenceFile());
    steps_.checkOutputs(outputs);
    checkOutputs(outputs, inputs);
    checkFolder(request_.output);
  }

  void readDocuments() {
    documents_.libraries = steps_.loadLibraries();
    documents_.graph = textOf(request_.job.graphFile);
    documents_.graphDocument = host::Document::fromFile(request_.job.graphFile);
    readEnvironment(documents_, request_.job.environmentFile, request_.job.collapse.tool);
    if (!request_.node.empty()) {
      shown_ = findNode(documents_, request_.node);
      documents_.graphDocument = host::Document::fromText(
          pictures::withOutput(documents_.graph, shown_->node, shown_->output.name, shown_->output.type),
          request_.job.graphFile);
    }
  }

  Picture develop(pictures::Shot shot, Surroundings& surroundings) const {
    if (shown_) {
      const Range range = rangeOf(shot, *shown_);
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
    std::vector<Picture> frames;
    for (unsigned i = 0; i < count(); ++i) {
      moment_.world = pictures::turnedAroundY(2 * std::numbers::pi * i / count());
      Picture picture;
      {
        Progress progress(count(), options_.samples);
        picture =
            develop(view.shoot(moment_, [&](unsigned sample) { progress.tell(i, sample); }), surroundings);
      }
      if (!isAnimated()) writeOutput(fileOf(i), pictures::writePicture(picture, format_));
      if (i == 0 && compared_)
        writeOutput(differenceFile(), pictures::writePicture(compare(picture, *compared_, format_), format_));
      if (isAnimated()) frames.push_back(std::move(picture));
    }
    if (isAnimated()) writeOutput(request_.output, pictures::writeAnimation(frames, 24));
  }

  const RenderRequest& request_;
  const RenderSteps& steps_;
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
  std::optional<Picture> compared_;
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

int renderPictures(const RenderRequest& request, const RenderSteps& steps, Diagnostics& diagnostics) try {
  return Rendering(request, steps, diagnostics).run();
} catch (const host::PackError& error) {
  throw host::InputError(std::string(), TextPosition(), error.what(), "bad-setting");
}

}  // namespace TolmSDK::Graphics::sfg::tools
