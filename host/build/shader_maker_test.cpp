#include "host/build/shader_maker.h"

#include "host/build/build_fixture.h"
#include "sfg/host/version.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class Maker : public BuildFixture {
protected:
  std::shared_ptr<const LibrarySet> libraries() const {
    return LibrarySet::load({{path("lib")}, {path("lib")}});
  }
  Shader shader() const {
    Job job(libraries(), Document::fromText(redGraph(), "red"));
    job.collapse();
    return job.assemble();
  }
  StepTimes times_;
};

TEST_F(Maker, WordsAreLittleEndian) {
  const std::vector<std::uint32_t> words = {0x04030201u, 0xffu};
  EXPECT_EQ(wordsOf(std::string("\1\2\3\4\xff\0\0\0", 8)), words);
}

TEST_F(Maker, TextIsCompiledOnceForEachTarget) {
  if (!hasCompilers()) GTEST_SKIP() << "the library has no compilers";
  CompiledTexts texts(nullptr, times_);
  EXPECT_TRUE(texts.compile(shader(), ShaderTarget::glsl, {}).isMade);
  EXPECT_FALSE(texts.compile(shader(), ShaderTarget::glsl, {}).isMade);
  EXPECT_FALSE(texts.compile(shader(), ShaderTarget::spirv, {}).isMade);  // it was on the way
  EXPECT_EQ(texts.compiled(), 1u);
  EXPECT_TRUE(texts.compile(shader(), ShaderTarget::spirv, {.debug = true}).isMade);
  EXPECT_EQ(texts.compiled(), 2u);
}

TEST_F(Maker, RefusedTextIsRefusedAgain) {
  if (!hasCompilers()) GTEST_SKIP() << "the library has no compilers";
  CompiledTexts texts(nullptr, times_);
  Shader bad = shader();
  bad.text += "nonsense";
  EXPECT_THROW(texts.compile(bad, ShaderTarget::spirv, {}), CompileError);
  EXPECT_THROW(texts.compile(bad, ShaderTarget::spirv, {}), CompileError);
}

TEST_F(Maker, FailedCollapseIsTold) {
  CompiledTexts texts(nullptr, times_);
  ShaderMaker maker(libraries(), texts, times_);
  EXPECT_FALSE(maker.collapse(Document::fromText("{", "broken"), std::nullopt, {}));
  EXPECT_EQ(maker.takeDiagnostics().size(), 1u);
  EXPECT_TRUE(maker.takeDiagnostics().empty());
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
