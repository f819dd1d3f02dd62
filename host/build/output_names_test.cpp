#include "host/build/output_names.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

TEST(OutputNamesTest, FillPatterns) {
  OutputName name;
  name.graph = "brick";
  name.stage = "pixel";
  name.extension = "spv";
  EXPECT_EQ(name.fill("{graph}.{stage}.{extension}"), "brick.pixel.spv");
  EXPECT_EQ(name.fill("{environment}/{graph}"), "/brick");
  EXPECT_EQ(name.fill("a{graph"), "a{graph");
  EXPECT_EQ(name.fill("a}{graph}"), "a}brick");
}

TEST(OutputNamesTest, KnowTheirPlaceholders) {
  for (const std::string& placeholder : placeholders())
    EXPECT_EQ(unknownPlaceholder("x{" + placeholder + "}"), "") << placeholder;
  EXPECT_EQ(unknownPlaceholder("{graph}.{stge}.{other}"), "stge");
  EXPECT_EQ(unknownPlaceholder("plain"), "");
}

TEST(OutputNamesTest, HaveTheExtensionOfTheTarget) {
  EXPECT_EQ(extensionOf(std::nullopt), "hlsl");
  EXPECT_EQ(extensionOf(ShaderTarget::spirv), "spv");
  EXPECT_EQ(extensionOf(ShaderTarget::essl300), "essl");
  EXPECT_EQ(extensionOf(ShaderTarget::msl), "metal");
}

TEST(OutputNamesTest, StayInTheOutputFolder) {
  EXPECT_EQ(outputFault("a/b.spv"), "");
  EXPECT_EQ(outputFault("a/../b.spv"), "");
  for (const char* const out : {"../b.spv", "a/../../b.spv", "/b.spv", ""})
    EXPECT_EQ(outputFault(out), "leads out of the output folder") << out;
  for (const char* const folder : {"a/", "."}) EXPECT_EQ(outputFault(folder), "is a folder's") << folder;
  EXPECT_EQ(outputFault(".sfg-build/b.spv"), "lies in a folder that builds keep for themselves");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
