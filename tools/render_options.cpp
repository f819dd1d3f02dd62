#include "tools/render_options.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <optional>
#include <stdexcept>

#include "sfg/host/errors.h"
#include "sfg/host/suggest.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace fs = std::filesystem;
using pictures::PictureFormat;

namespace {

host::InputError badValue(const std::string& option, const std::string& text, const std::string& expected) {
  return host::InputError("`" + option + " " + text + "`: expected " + expected);
}

/// As many numbers as there are between commas; nothing where one is none.
std::optional<std::vector<double>> numbersOf(const std::string& text) {
  std::vector<double> numbers;
  const char* at = text.data();
  const char* const end = at + text.size();
  for (;; ++at) {
    double value = 0;
    const auto [behind, error] = std::from_chars(at, end, value);
    if (error != std::errc() || !std::isfinite(value)) return std::nullopt;
    numbers.push_back(value);
    at = behind;
    if (at == end) return numbers;
    if (*at != ',') return std::nullopt;
  }
}

}  // namespace

vk::Extent2D sizeOf(const std::string& text) {
  constexpr std::uint32_t kLargest = 8192;
  const auto side = [&](std::size_t from, std::size_t to) {
    std::uint32_t value = 0;
    const auto [behind, error] = std::from_chars(text.data() + from, text.data() + to, value);
    if (error != std::errc() || behind != text.data() + to || value == 0 || value > kLargest)
      throw badValue("--size", text, "`N` or `WxH`, each from 1 to " + std::to_string(kLargest));
    return value;
  };
  const std::size_t cross = text.find('x');
  if (cross == text.npos) return {side(0, text.size()), side(0, text.size())};
  return {side(0, cross), side(cross + 1, text.size())};
}

PictureFormat formatOf(const std::string& file) {
  const std::string extension = fs::path(file).extension().string();
  if (extension == ".png" || extension == ".apng") return PictureFormat::png;
  if (extension == ".exr") return PictureFormat::exr;
  if (extension == ".hdr") return PictureFormat::hdr;
  throw badValue("-o", file, "a name that ends in `.png`, `.apng`, `.exr` or `.hdr`");
}

namespace {

pictures::Mesh readMeshFor(const std::string& file) {
  try {
    return pictures::readMesh(file);
  } catch (const std::runtime_error& error) {
    throw host::InputError(std::string("`--shape`: ") + error.what());
  }
}

}  // namespace

pictures::Mesh meshOf(const RenderRequest& request) {
  const std::vector<std::string>& names = pictures::shapeNames();
  const bool isKnown = std::find(names.begin(), names.end(), request.shape) != names.end();
  const bool isFile = request.shape.find_first_of("./\\") != std::string::npos;
  if (!isKnown && !isFile) {
    throw host::InputError("there is no shape `" + request.shape + "`" + didYouMean(request.shape, names) +
                           (host::suggest(request.shape, names).empty()
                                ? " (`sphere`, `plane`, `cube`, `torus`, `cloth`, or a file)"
                                : ""));
  }
  if (isFile && !fs::is_regular_file(request.shape))
    throw host::InputError(request.shape, TextPosition(), "there is no such file", "unreadable-file");
  pictures::Mesh mesh = isKnown ? pictures::makeShape(request.shape) : readMeshFor(request.shape);
  const auto scale = numbersOf(request.uvScale);
  if (!scale || scale->size() > 2) throw badValue("--uv-scale", request.uvScale, "one number, or two");
  mesh.scaleTexCoords(scale->front(), scale->back());
  return mesh;
}

pictures::Camera cameraOn(const std::string& shape, const pictures::Mesh& mesh) {
  const bool isFlat = shape == "plane" || shape == "cloth";
  const bool isBall = shape == "sphere";
  return isFlat || isBall ? pictures::cameraFor(mesh, 0, 0) : pictures::cameraFor(mesh, 35, 28);
}

pictures::Camera cameraOf(const RenderRequest& request, const pictures::Mesh& mesh) {
  pictures::Camera camera = cameraOn(request.shape, mesh);
  if (request.camera.empty()) return camera;
  const auto given = numbersOf(request.camera);
  const bool isGood = given && given->size() >= 2 && given->size() <= 4 && std::abs((*given)[1]) <= 90 &&
                      (given->size() < 3 || (*given)[2] > 0) &&
                      (given->size() < 4 || ((*given)[3] > 0 && (*given)[3] < 170));
  if (!isGood) {
    throw badValue(
        "--camera", request.camera,
        "`AZIMUTH,ELEVATION[,DISTANCE[,ANGLE]]`: an elevation from -90 to 90, a distance above 0, an "
        "angle between 0 and 170");
  }
  camera.azimuth = (*given)[0];
  camera.elevation = (*given)[1];
  if (given->size() > 2) camera.distance = (*given)[2];
  if (given->size() > 3) camera.fieldOfView = (*given)[3];
  return camera;
}

/// Linear colour and opacity.
std::array<float, 4> backgroundOf(const std::string& text) {
  if (text == "transparent" || text == "environment") return {0, 0, 0, 0};
  const auto given = numbersOf(text);
  if (!given || given->size() < 3 || given->size() > 4)
    throw badValue("--background", text, "`R,G,B`, `R,G,B,A`, `transparent` or `environment`");
  std::array<float, 4> color{0, 0, 0, 1};
  for (std::size_t i = 0; i < given->size(); ++i) color[i] = static_cast<float>((*given)[i]);
  return color;
}

/// The device of that name, or the first graphics card, or the first that draws in software.
std::size_t deviceOf(const std::string& name) {
  const auto devices = render::listDevices();
  std::size_t best = devices.size();
  std::vector<std::string> names;
  for (std::size_t i = devices.size(); i-- > 0;) {
    names.push_back(devices[i].name);
    if (name.empty() ? best == devices.size() || !devices[i].isProcessor || devices[best].isProcessor
                     : devices[i].name.find(name) != std::string::npos)
      best = i;
  }
  if (!name.empty() && best == devices.size()) {
    std::string list;
    for (const std::string& known : names) list += (list.empty() ? " (there is `" : "`, `") + known;
    throw host::InputError("no device has `" + name + "` in its name" +
                           (list.empty() ? " (there is none)" : list + "`)"));
  }
  return best;
}

/// What follows a name and an equals sign.
std::pair<std::string, std::string> splitTexture(const std::string& text) {
  const std::size_t equals = text.find('=');
  if (equals == 0 || equals == text.npos || equals + 1 == text.size())
    throw badValue("--texture", text, "`NAME=FILE`");
  return {text.substr(0, equals), text.substr(equals + 1)};
}

}  // namespace TolmSDK::Graphics::sfg::tools
