#include <algorithm>
#include <cmath>
#include <filesystem>
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
    for (const std::string& text : request.settings) settings_.push_back(host::parseSetting(text));
    for (const std::string& text : request.textures) splitTexture(text);
    mesh_ = meshOf(request);
    moment_ = {cameraOf(request, mesh_), {}, request.time};
    steps.checkOutputs(
        {request.output, request.compared.empty() ? "" : withSuffix(request.output, "difference")});
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
