#include "import/picture_size.h"

#include <string>

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::materialx {
namespace {

std::string sizeText(const std::string& bytes) {
  const std::optional<PictureSize> size = pictureSizeIn(bytes);
  return size ? std::to_string(size->width) + "x" + std::to_string(size->height) : "none";
}

const std::string kPng("\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\x01\x02\0\0\0\x03", 24);
const std::string kJpeg("\xff\xd8\xff\xe0\0\x04zz\xff\xff\xc2\0\x0b\x08\0\x20\x01\0zzzz", 22);
const std::string kExr =
    std::string("\x76\x2f\x31\x01\x02\0\0\0pad\0int\0\x04\0\0\0abcd", 24) +
    std::string("dataWindow\0box2i\0\x10\0\0\0\x01\0\0\0\x02\0\0\0\x04\0\0\0\x06\0\0\0", 37);
const std::string kHdr = "#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y 20 +X 40\nzz";

TEST(PictureSize, IsReadFromTheHeaderOfEachFormat) {
  EXPECT_EQ(sizeText(kPng), "258x3");
  EXPECT_EQ(sizeText(kJpeg), "256x32");
  EXPECT_EQ(sizeText(kExr), "4x5");
  EXPECT_EQ(sizeText(kHdr), "40x20");
}

TEST(PictureSize, IsNothingForBrokenAndUnknownFiles) {
  EXPECT_EQ(sizeText(""), "none");
  EXPECT_EQ(sizeText("BM and more of another format"), "none");
  EXPECT_EQ(sizeText(std::string("\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\0\0\0\0\0\x03", 24)), "none");
  EXPECT_EQ(sizeText("#?RADIANCE\n\n+Z 3 -W 4\n"), "none");
}

TEST(PictureSize, ReadsNothingBehindTheEnd) {
  for (const std::string& whole : {kPng, kJpeg, kExr, kHdr}) {
    for (std::size_t length = 0; length < whole.size(); ++length) {
      const std::string exact(whole.substr(0, length));
      const std::string answer = sizeText(exact);
      EXPECT_TRUE(answer == "none" || answer == sizeText(whole) || whole == kHdr) << length;
    }
  }
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::materialx
