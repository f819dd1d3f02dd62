#include "tools/scene.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "pictures/texture.h"
#include "sfg/host/errors.h"
#include "sfg/host/suggest.h"
#include "sfg/shader_fragment.h"
#include "tolmsdk/unicode.h"
#include "tools/did_you_mean.h"
#include "tools/render_options.h"

namespace TolmSDK::Graphics::sfg::tools {

using pictures::Picture;
namespace fs = std::filesystem;

std::string textOf(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

namespace {

// The documents

constexpr const char* kMapLight = "environmentMapLight";

bool hasFragment(const host::LibrarySet& libraries, const char* name) {
  return libraries.library().acquireFragment(fromUtf8(name).c_str()) != nullptr;
}

}  // namespace

void readEnvironment(Documents& documents, const std::string& given, host::CollapseTool tool) {
  const bool isBuiltIn = given.empty() || ((given == "studio" || given == "sky") && !fs::exists(given));
  const bool hasMapLight = hasFragment(*documents.libraries, kMapLight);
  const auto addSurroundings = [&] {
    documents.environment =
        pictures::withLight(documents.environment, "surroundings", kMapLight, "sfg_Light");
  };
  if (isBuiltIn) {
    if (!given.empty()) documents.image = given;
    if (!hasMapLight || tool != host::CollapseTool::lightLoop) return;
    documents.environment = "{}";
    addSurroundings();
    documents.environmentDocument = host::Document::fromText(documents.environment, documents.image);
    return;
  }
  documents.environment = textOf(given);
  documents.environmentDocument = host::Document::fromFile(given);
  const host::Environment scene = host::readEnvironment(*documents.environmentDocument);
  if (scene.image.empty()) return;
  const bool isDrawn = scene.image == "studio" || scene.image == "sky";
  documents.image = isDrawn ? scene.image : (fs::path(given).parent_path() / scene.image).string();
  const bool hasSurroundings =
      std::any_of(scene.lights.begin(), scene.lights.end(), [](const host::Light& light) {
        return light.fragment == kMapLight || light.fragment == "imageLight";
      });
  if (!hasMapLight || hasSurroundings) return;
  addSurroundings();
  documents.environmentDocument = host::Document::fromText(documents.environment, given);
}

namespace {

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

}  // namespace

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

namespace {

vk::ImageViewType typeOf(const std::string& type) {
  if (type == "texture1D") return vk::ImageViewType::e1D;
  if (type == "texture3D") return vk::ImageViewType::e3D;
  return type == "textureCube" ? vk::ImageViewType::eCube : vk::ImageViewType::e2D;
}

}  // namespace

Picture readFor(const std::string& what, const std::string& file) {
  try {
    return pictures::readPicture(file);
  } catch (const std::runtime_error& error) {
    throw host::InputError(what + ": " + error.what());
  }
}

const Picture& Surroundings::panorama() {
  if (panorama_.width == 0) {
    panorama_ = image_ == "studio" ? pictures::studioPanorama()
                : image_ == "sky"  ? pictures::skyPanorama()
                                   : pictures::linearized(readFor("the environment's image", image_));
  }
  return panorama_;
}

const pictures::EnvironmentLight& Surroundings::light() {
  if (!light_) light_ = pictures::keptEnvironmentLight(panorama(), pictures::cacheFolder());
  return *light_;
}

namespace {

/// What the fragments for surroundings read, where nobody gives a file.
std::optional<render::Texture> surroundingsFor(const host::InterfaceOrigin& origin,
                                               Surroundings& surroundings) {
  if (origin.fragment == kMapLight || origin.fragment == "imageLight" ||
      origin.fragment == "environmentReflection")
    return surroundings.light().mirrored;
  if (origin.fragment == "environmentBrdf")
    return pictures::makeTexture(pictures::keptSplitSumTable(pictures::cacheFolder()),
                                 pictures::ColorSpace::data, vk::ImageViewType::e2D);
  return std::nullopt;
}

}  // namespace

pictures::Textures texturesOf(const std::vector<std::string>& given, const host::ShaderInterface& shader,
                              Surroundings& surroundings, Diagnostics* diagnostics) {
  std::map<std::string, std::string> files;
  for (const std::string& text : given) {
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
      if (diagnostics != nullptr)
        diagnostics->note(std::string(),
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

Range rangeOf(const pictures::Shot& shot, const ShownNode& shown) {
  const char last = shown.output.type.back();
  const std::size_t channels = last >= '2' && last <= '4' ? static_cast<std::size_t>(last - '0') : 1;
  Range range;
  for (std::size_t i = 0; i < shot.colors.texels.size(); ++i) {
    const float value = shot.colors.texels[i];
    if (shot.coverage[i / 4] <= 0 || i % 4 >= channels || !std::isfinite(value)) continue;
    range.low = std::min(range.low, value);
    range.high = std::max(range.high, value);
  }
  return range;
}

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

}  // namespace TolmSDK::Graphics::sfg::tools
