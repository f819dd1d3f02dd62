#include "host/build/output_names.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

TEST(OutputNames, PlaceholdersAreFilled) {
  OutputName name;
  name.graph = "stone/wall";
  name.stage = "pixel";
  name.surfaceLod = "0.5";
  name.extension = "spv";
  EXPECT_EQ(name.fill("{graph}.{stage}-{surfaceLod}.{extension}"), "stone/wall.pixel-0.5.spv");
  EXPECT_EQ(name.fill("{graph"), "{graph");
  EXPECT_EQ(name.fill("a}{stage}{"), "a}pixel{");
}

TEST(OutputNames, UnknownPlaceholderIsTheFirst) {
  EXPECT_EQ(unknownPlaceholder("{graph}{target}"), "");
  EXPECT_EQ(unknownPlaceholder("{graph}{tagret}{x}"), "tagret");
}

TEST(OutputNames, FilesStayInTheOutputFolder) {
  EXPECT_EQ(outputFault("a/b.spv"), "");
  EXPECT_EQ(outputFault("a/../b.spv"), "");
  EXPECT_EQ(outputFault("../a"), "leads out of the output folder");
  EXPECT_EQ(outputFault("a/../../b"), "leads out of the output folder");
  EXPECT_EQ(outputFault("/a"), "leads out of the output folder");
  EXPECT_EQ(outputFault("a/"), "is a folder's");
  EXPECT_EQ(outputFault(".sfg-build/a"), "lies in a folder that builds keep for themselves");
}

TEST(OutputNames, ExtensionsAreThoseOfTargets) {
  EXPECT_EQ(extensionOf(std::nullopt), "hlsl");
  EXPECT_EQ(extensionOf(ShaderTarget::spirv), "spv");
  EXPECT_EQ(extensionOf(ShaderTarget::essl300), "essl");
  EXPECT_EQ(extensionOf(ShaderTarget::msl), "metal");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
