// Every example under every environment, and every pattern, looks as it did: docs/pictures holds what is
// expected. SFG_UPDATE_PICTURES=1 writes those files instead.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "pictures/difference.h"
#include "pictures/picture.h"
#include "tools/fragment_thumbnail.h"
#include "tools/painter.h"
#include "tools/site/read_library.h"

namespace TolmSDK::Graphics::sfg::tools {
namespace {

namespace fs = std::filesystem;
using pictures::Picture;

// Devices round differently: half a per cent of the pixels may be noticed, none at all may look like another
// colour.
constexpr double kNoticed = 0.005;
constexpr double kMean = 0.5;

bool isSet(const char* variable) {
  const char* const value = std::getenv(variable);
  return value != nullptr && std::string_view(value) == "1";
}

bool isUpdate() { return isSet("SFG_UPDATE_PICTURES"); }

void writeFile(const fs::path& file, const std::string& bytes) {
  fs::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << bytes;
}

/// Pictures of one height, from left to right.
Picture besideEachOther(const std::vector<Picture>& pictures) {
  std::uint32_t width = 0;
  for (const Picture& picture : pictures) width += picture.width;
  Picture strip(width, pictures.front().height);
  strip.isEncoded = true;
  std::uint32_t left = 0;
  for (const Picture& picture : pictures) {
    const Picture shown = pictures::encoded(picture);
    for (std::uint32_t y = 0; y < shown.height; ++y)
      std::copy_n(shown.at(0, y), 4 * shown.width, strip.at(left, y));
    left += shown.width;
  }
  return strip;
}

/// As a PNG file holds it.
Picture stored(const Picture& picture) {
  Picture copy = pictures::encoded(picture);
  for (float& value : copy.texels) value = std::round(255 * std::clamp(value, 0.0f, 1.0f)) / 255;
  return copy;
}

/// The square at that place of a file of squares beside each other.
Picture tileOf(const fs::path& file, std::size_t index) {
  const Picture strip = pictures::readPicture(file);
  Picture tile(strip.height, strip.height);
  tile.isEncoded = strip.isEncoded;
  if ((index + 1) * tile.width > strip.width) throw std::runtime_error(file.string() + ": too narrow");
  for (std::uint32_t y = 0; y < tile.height; ++y)
    std::copy_n(strip.at(index * tile.width, y), 4 * tile.width, tile.at(0, y));
  return tile;
}

fs::path fileOf(const std::string& name) { return fs::path("docs/pictures") / (name + ".png"); }

/// Compares one of a file's pictures; of one that differs it leaves what was expected, what is seen and the
/// difference beside each other.
void expectLook(const std::string& name, std::size_t index, const Picture& seen, const std::string& label) {
  const fs::path file = fileOf(name);
  ASSERT_TRUE(fs::exists(file)) << file << " is not there: scripts/update-pictures draws it";
  const Picture then = tileOf(file, index);
  const Picture now = stored(seen);
  ASSERT_EQ(then.width, now.width) << file;
  const pictures::Difference difference = pictures::differenceOf(then, now);
  if (difference.noticed <= kNoticed && difference.mean <= kMean) return;
  const fs::path left = fs::path(SFG_PICTURE_FAULTS) / (label + ".png");
  writeFile(left,
            pictures::writePicture(besideEachOther({then, now, pictures::pictureOfDifference(then, now)}),
                                   pictures::PictureFormat::png));
  ADD_FAILURE() << label << " looks different: " << 100 * difference.noticed
                << " % of its pixels are noticed, mean distance " << difference.mean
                << "\nexpected, seen and difference: " << left.string() << "\nscripts/update-pictures draws "
                << file.string() << " anew";
}

void writeLook(const std::string& name, const std::vector<Picture>& seen) {
  writeFile(fileOf(name), pictures::writePicture(besideEachOther(seen), pictures::PictureFormat::png));
}

class Looks : public testing::Test {
protected:
  void SetUp() override {
    const char* const skip = std::getenv("SFG_SKIP_VULKAN_TESTS");
    if (skip != nullptr && *skip != '\0' && std::string_view(skip) != "0") GTEST_SKIP();
    setenv("XDG_CACHE_HOME", (fs::path(SFG_PICTURE_FAULTS) / "cache").c_str(), 1);
  }

  const std::shared_ptr<const host::LibrarySet> libraries_ =
      host::LibrarySet::load({{"library"}, {"library"}});
};

std::string textOfFile(const fs::path& file) {
  std::ostringstream text;
  text << std::ifstream(file, std::ios::binary).rdbuf();
  return text.str();
}

std::vector<fs::path> documentsIn(const char* folder) {
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(folder)) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

/// The lights that every example is seen under.
constexpr std::array<std::string_view, 4> kInStrips = {"no_lights", "outdoor", "studio", "sun"};

bool isInStrips(const fs::path& environment) {
  return std::find(kInStrips.begin(), kInStrips.end(), environment.stem().string()) != kInStrips.end();
}

TEST_F(Looks, ExamplesUnderEveryEnvironment) {
  Painter painter(libraries_, {"", 128, 8});
  std::vector<std::string> environments = {"studio", "sky"};
  for (const fs::path& file : documentsIn("examples/environments"))
    if (isInStrips(file)) environments.push_back(file.string());
  ASSERT_EQ(environments.size(), 2 + kInStrips.size());
  const std::vector<fs::path> materials = documentsIn("examples/materials");
  EXPECT_GT(materials.size(), 10u);
  for (std::size_t i = 0; i < materials.size(); ++i) {
    const std::string name = materials[i].stem().string();
    std::vector<Picture> seen;
    for (std::size_t k = 0; k < environments.size(); ++k) {
      if (!isUpdate() && !isSet("SFG_ALL_PICTURES") && k != i % environments.size()) continue;
      ThumbnailRequest request{textOfFile(materials[i]), materials[i].string(), environments[k], "sphere"};
      request.collapse.tool = host::CollapseTool::lightLoop;
      if (name == "terrain") {
        request.shape = "tests/pictures/ground.obj";
        request.camera = "20,40,5";
      }
      const std::optional<Picture> picture = painter.draw(request);
      ASSERT_TRUE(picture.has_value()) << name << " under " << environments[k];
      if (isUpdate()) {
        seen.push_back(*picture);
      } else {
        expectLook(name, k, *picture, name + "_under_" + fs::path(environments[k]).filename().string());
      }
    }
    if (isUpdate()) writeLook(name, seen);
  }
}

/// Every other environment, on the ground and on spheres.
TEST_F(Looks, SomeExamplesUnderOtherLamps) {
  Painter painter(libraries_, {"", 128, 8});
  std::size_t count = 0;
  for (const fs::path& environment : documentsIn("examples/environments")) {
    if (isInStrips(environment)) continue;
    const std::string name = "lamps/" + environment.stem().string();
    std::vector<Picture> seen;
    for (const char* const material : {"wood", "marble", "hair"}) {
      const fs::path file = fs::path("examples/materials") / (std::string(material) + ".json");
      ThumbnailRequest request{textOfFile(file), file.string(), environment.string(), "sphere"};
      request.collapse.tool = host::CollapseTool::lightLoop;
      if (seen.empty()) {
        request.shape = "tests/pictures/ground.obj";
        request.camera = "20,40,5";
      }
      if (environment.stem() == "downlight") request.textures = {"lamp.candela=tests/pictures/downlight.png"};
      const std::optional<Picture> picture = painter.draw(request);
      ASSERT_TRUE(picture.has_value()) << file << " under " << environment;
      if (!isUpdate())
        expectLook(name, seen.size(), *picture, environment.stem().string() + "_on_" + material);
      seen.push_back(*picture);
    }
    if (isUpdate()) writeLook(name, seen);
    ++count;
  }
  EXPECT_GE(count, 3u);
}

TEST_F(Looks, Patterns) {
  Painter painter(libraries_, {"", 64, 8});
  std::size_t count = 0;
  std::vector<std::string> without;
  for (const site::Fragment& fragment : site::readSite(*libraries_, {}).fragments) {
    if (fragment.topic != "patterns" && fragment.topic != "noise") continue;
    std::optional<Picture> picture;
    for (const bool isFed : {false, true}) {
      const auto request = showingFragment(fragment, 100, isFed);
      if (request && !picture) picture = painter.draw(*request);
    }
    if (picture) {
      if (isUpdate()) writeLook("patterns/" + fragment.name, {*picture});
      expectLook("patterns/" + fragment.name, 0, *picture, fragment.name);
      ++count;
    } else {
      without.push_back(fragment.name);
    }
  }
  EXPECT_GT(count, 20u);
  // It takes a number that is no place.
  EXPECT_EQ(without, std::vector<std::string>{"randomColor"});
}

/// The measure itself: pictures of other patterns are far beyond the tolerance.
TEST_F(Looks, OtherPicturesAreTold) {
  const auto far = [](const char* a, const char* b) {
    return pictures::differenceOf(tileOf(fileOf(a), 0), tileOf(fileOf(b), 0));
  };
  EXPECT_EQ(far("patterns/dotPattern", "patterns/dotPattern").noticed, 0);
  EXPECT_GT(far("patterns/dotPattern", "patterns/gridPattern").noticed, 10 * kNoticed);
  EXPECT_GT(far("patterns/fbmNoise2", "patterns/perlinNoise2").mean, 10 * kMean);
  EXPECT_GT(far("patterns/brickPattern", "patterns/brickFiltered").noticed, kNoticed);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools
