#include "host/lints/lints.h"

#include "host/lints/lint_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

TEST(Lints, AreNoneOfTheStandardLibrary) {
  const LoadedLibraries libraries({"library"}, {"library"}, "dx11");
  EXPECT_EQ(textOf(lintLibraries(libraries)), "");
}

TEST(Lints, AreNoneOfTheExamples) {
  const LoadedLibraries libraries({"library", "examples/first/fragments"}, {"library"}, "dx11");
  EXPECT_EQ(textOf(lintLibraries(libraries)), "");
  std::size_t count = 0;
  for (const auto& entry : std::filesystem::directory_iterator("examples/materials")) {
    EXPECT_EQ(textOf(lintGraph(libraries, Document::fromFile(entry.path()))), "");
    ++count;
  }
  EXPECT_GT(count, 10u);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
