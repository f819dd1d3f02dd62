#include "pictures/picture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "pictures/test_folder.h"

namespace pictures {
namespace {

/// Numbers of all sizes, the first pixel red.
Picture makePicture() {
  Picture picture(3, 2);
  for (std::size_t i = 0; i < picture.texels.size(); ++i) picture.texels[i] = static_cast<float>(i) * 0.37f;
  const float red[] = {1, 0, 0, 1};
  std::copy(std::begin(red), std::end(red), picture.at(0, 0));
  return picture;
}

std::string refusalOf(const std::filesystem::path& file) {
  try {
    readPicture(file);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "read";
}

TEST(PictureTest, ExrKeepsEveryNumber) {
  const TestFolder folder;
  const Picture written = makePicture();
  const Picture read = readPicture(folder.write("a.exr", writePicture(written, PictureFormat::exr)));
  EXPECT_EQ(read.width, 3u);
  EXPECT_EQ(read.height, 2u);
  EXPECT_FALSE(read.isEncoded);
  ASSERT_EQ(read.texels.size(), written.texels.size());
  // Reading goes through numbers of 16 bits.
  for (std::size_t i = 0; i < read.texels.size(); ++i)
    EXPECT_NEAR(read.texels[i], written.texels[i], 0.005) << i;
}

TEST(PictureTest, HdrKeepsColorsAboveOneToAHundredth) {
  const TestFolder folder;
  const Picture written = makePicture();
  const Picture read = readPicture(folder.write("a.hdr", writePicture(written, PictureFormat::hdr)));
  EXPECT_FALSE(read.isEncoded);
  ASSERT_EQ(read.texels.size(), written.texels.size());
  for (std::size_t i = 0; i < read.texels.size(); ++i) {
    if (i % 4 != 3) {
      EXPECT_NEAR(read.texels[i], written.texels[i], 0.01f * std::max(written.texels[i], 8.0f)) << i;
    }
  }
}

TEST(PictureTest, PngIsEncodedAndClamped) {
  const TestFolder folder;
  Picture picture(4, 1);
  picture.texels = {0.5f, 0, 1, 1, 7, -1, 0.001f, 0.5f, NAN, 0, 0, 1, INFINITY, 0, 0, 0};
  const Picture read = readPicture(folder.write("a.png", writePicture(picture, PictureFormat::png)));
  EXPECT_TRUE(read.isEncoded);
  std::vector<int> bytes;
  for (const float value : read.texels) bytes.push_back(static_cast<int>(std::lround(value * 255)));
  EXPECT_THAT(bytes, testing::ElementsAre(188, 0, 255, 255, 255, 0, 3, 128, 0, 0, 0, 255, 255, 0, 0, 0));
}

TEST(PictureTest, EncodingIsTheStandards) {
  EXPECT_NEAR(encodeSrgb(0.18f), 0.4613f, 0.0001f);
  EXPECT_NEAR(decodeSrgb(0.5f), 0.2140f, 0.0001f);
  EXPECT_NEAR(encodeSrgb(0.002f), 0.02584f, 0.00001f);
  for (const float value : {0.0f, 0.001f, 0.01f, 0.3f, 1.0f})
    EXPECT_NEAR(decodeSrgb(encodeSrgb(value)), value, 1e-6f);
}

TEST(PictureTest, AnimationsHoldAllPictures) {
  const TestFolder folder;
  const std::string bytes = writeAnimation({makePicture(), Picture(3, 2), makePicture()}, 24);
  const auto count = [&bytes](const std::string& word) {
    std::size_t found = 0;
    for (std::size_t at = bytes.find(word); at != bytes.npos; at = bytes.find(word, at + 1)) ++found;
    return found;
  };
  EXPECT_EQ(count("acTL"), 1u);
  EXPECT_EQ(count("fcTL"), 3u);
  EXPECT_EQ(count("IDAT"), 1u);
  EXPECT_EQ(count("fdAT"), 2u);
  // The count of pictures, big-endian.
  EXPECT_EQ(bytes.substr(bytes.find("acTL") + 4, 4), std::string("\0\0\0\3", 4));
  // Who knows nothing of animations shows the first.
  const Picture first = readPicture(folder.write("a.png", bytes));
  EXPECT_EQ(first.texels,
            readPicture(folder.write("b.png", writePicture(makePicture(), PictureFormat::png))).texels);
}

TEST(PictureTest, NamesFilesThatCannotBeRead) {
  const TestFolder folder;
  const std::string name = (folder.path() / "a.png").string();
  EXPECT_EQ(refusalOf(name), "cannot read `" + name + "`: there is no such file, or it may not be read");
  EXPECT_EQ(refusalOf(folder.path()), "cannot read `" + folder.path().string() + "`: it is a folder");
  folder.write("a.png", "no picture at all");
  EXPECT_EQ(refusalOf(name),
            "cannot read `" + name + "`: unknown image type (PNG, JPEG, HDR and EXR can be read)");
  const std::string whole = writePicture(makePicture(), PictureFormat::exr);
  folder.write("a.png", whole.substr(0, 40));
  EXPECT_THAT(refusalOf(name), testing::StartsWith("cannot read `" + name + "`: "));
}

}  // namespace
}  // namespace pictures
