#include "host/job/input_files.h"

#include "host/job/tint_fixture.h"
#include "tests/support/job_files.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class InputFilesTest : public TintFixture {};

TEST_F(InputFilesTest, NameTheFilesOfAResult) {
  write("graph.json", kGraph);
  JobFiles settings;
  settings.graphFile = path("graph.json");
  settings.libraryFolders = settings.includeFolders = {folder_.string()};
  CollapseJob fromFiles = makeJob(settings);
  fromFiles.run();
  EXPECT_EQ(inputFiles(fromFiles),
            (std::vector<std::string>{path("graph.json"), path("lib.fraglib"), path("a.h"), path("b.h")}));
}

TEST_F(InputFilesTest, OfAShaderAreThoseOfItsFragmentsAndIncludes) {
  write("other.fraglib", "{" + fragment("other", "out float x", "x = 1;") + "}");
  const auto made = collapsed(kGraph);
  EXPECT_EQ(inputFiles(*made),
            (std::vector<std::string>{path("lib.fraglib"), path("other.fraglib"), path("a.h"), path("b.h")}));
  EXPECT_EQ(sourceFiles(*made, {"b.h", "missing.h"}),
            (std::vector<std::string>{path("lib.fraglib"), path("b.h")}));
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
