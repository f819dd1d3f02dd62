#include "host/build/shader_maker.h"

#include "host/build/build_fixture.h"
#include "sfg/host/compile.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class ShaderMakerTest : public BuildFixture {
protected:
  std::shared_ptr<const LibrarySet> libraries() const {
    return LibrarySet::load({{path("lib")}, {path("lib")}}, "dx11");
  }
  Document graph(const std::string& text) const {
    write("graph.json", text);
    return Document::fromFile(path("graph.json"));
  }
  static BuildTask assembledTask() {
    BuildTask task;
    task.target.reset();
    return task;
  }

  StepTimes times_;
};

TEST_F(ShaderMakerTest, MakesATextWithoutACompiler) {
  CompiledTexts texts(nullptr, times_);
  ShaderMaker maker(libraries(), texts, times_);
  ASSERT_TRUE(maker.collapse(graph(dimGraph(0.25)), std::nullopt, {}));
  const auto made = maker.make(assembledTask());
  ASSERT_TRUE(made);
  EXPECT_NE(made->bytes->find("#define HALF (DEEP * 0.5)"), std::string::npos);
  EXPECT_EQ(made->reflection, "");
  EXPECT_FALSE(made->isCompiled);
  EXPECT_EQ(texts.compiled(), 0u);
}

TEST_F(ShaderMakerTest, CompilesATextOnce) {
  if (!hasCompilers()) GTEST_SKIP() << "the library has no compilers";
  CompiledTexts texts(nullptr, times_);
  ShaderMaker maker(libraries(), texts, times_);
  ASSERT_TRUE(maker.collapse(graph(redGraph()), std::nullopt, {}));
  const auto first = maker.make(BuildTask());
  const auto second = maker.make(BuildTask());
  ASSERT_TRUE(first && second);
  EXPECT_TRUE(first->isCompiled);
  EXPECT_FALSE(second->isCompiled);
  EXPECT_EQ(*first->bytes, *second->bytes);
  EXPECT_EQ(texts.compiled(), 1u);
  EXPECT_EQ(wordsOf(*first->bytes).front(), 0x07230203u);
}

TEST_F(ShaderMakerTest, TellsWhyAGraphIsRefused) {
  CompiledTexts texts(nullptr, times_);
  ShaderMaker maker(libraries(), texts, times_);
  std::string text = redGraph();
  text.replace(text.find("\"red\""), 5, "\"rad\"");
  EXPECT_FALSE(maker.collapse(graph(text), std::nullopt, {}));
  const std::vector<Diagnostic> told = maker.takeDiagnostics();
  ASSERT_FALSE(told.empty());
  EXPECT_EQ(told.front().identifier, "unknown-fragment");
  EXPECT_TRUE(maker.takeDiagnostics().empty());
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
