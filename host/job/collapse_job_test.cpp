#include "host/job/collapse_job.h"

#include "host/job/called_expressions.h"
#include "host/job/collapse_json.h"
#include "host/job/input_files.h"
#include "host/test_job_fixture.h"
#include "tests/support/job_files.h"
#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

constexpr const char* kGraph = R"({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "tint", "inputs": { "amount": { "constant": 0.5 } } } ] })";

class CollapseJobTest : public JobFixture {
protected:
  CollapseJobTest() {
    writeLibrary("{" +
                 fragment("tint", "float amount, float3 color, out float3 result", "result = color * amount;",
                          "\"includes\": [\"b.h\"], ") +
                 "}");
    write("a.h", "float a;\n");
    write("b.h", "#include \"a.h\"\nfloat b;\n");
  }
};

TEST_F(CollapseJobTest, CollapsesWhatItHasRead) {
  const std::unique_ptr<CollapseJob> made = job(kGraph);
  EXPECT_EQ(made->graph(), nullptr);
  EXPECT_EQ(made->result(), nullptr);
  made->run();
  ASSERT_NE(made->result(), nullptr);
  EXPECT_EQ(made->graph()->getNumFragments(), 1u);
  EXPECT_EQ(made->result()->getProfile(0)->getFunctionName(), L"CollapsedFunction");
}

TEST_F(CollapseJobTest, TakesNamesFromItsOptions) {
  CollapseOptions options;
  options.functionName = "shade";
  options.profileName = "Surface";
  CollapseJob named(load(), Document::fromText(kGraph, "g"), std::nullopt, options);
  named.run();
  EXPECT_EQ(named.result()->getProfile(0)->getFunctionName(), L"shade");
  EXPECT_EQ(named.result()->getProfile(0)->getProfilename(), L"Surface");
}

TEST_F(CollapseJobTest, IsAsBeforeWhenTheGeneratorRefuses) {
  const std::unique_ptr<CollapseJob> made = job(R"({ "outputs": [ { "name": "x", "type": "float" } ] })");
  EXPECT_THROW(made->run(), Exception);
  EXPECT_EQ(made->graph(), nullptr);
  EXPECT_EQ(made->result(), nullptr);
}

TEST_F(CollapseJobTest, GivesConstantsToTheCode) {
  const std::unique_ptr<CollapseJob> made = collapsed(kGraph);
  EXPECT_NE(made->result()->getProfile(0)->getFunctionBody().find(L"0.5"), WString::npos);
  AValue value(TypeID_float);
  EXPECT_TRUE(made->options().getConstValue(value, made->document().node(0).getInput(0)));
  EXPECT_EQ(toShaderText(value), L"0.5");
  EXPECT_FALSE(made->options().getConstValue(value, made->document().node(0).getInput(1)));
  EXPECT_FALSE(made->options().getConstValue(value, nullptr));
}

TEST_F(CollapseJobTest, NamesTheFilesOfItsResult) {
  write("graph.json", kGraph);
  JobFiles settings;
  settings.graphFile = path("graph.json");
  settings.libraryFolders = settings.includeFolders = {folder_.string()};
  CollapseJob fromFiles = makeJob(settings);
  fromFiles.run();
  EXPECT_EQ(inputFiles(fromFiles),
            (std::vector<std::string>{path("graph.json"), path("lib.fraglib"), path("a.h"), path("b.h")}));
}

TEST_F(CollapseJobTest, WritesItsResultAsJson) {
  const std::unique_ptr<CollapseJob> made = collapsed(kGraph);
  EXPECT_EQ(writeCollapseJson(nullptr, made->libraries().includes()), "null\n");
  const std::string json = writeCollapseJson(made->result(), made->libraries().includes());
  EXPECT_EQ(json.substr(0, 42), "{\n  \"function\": {\n    \"name\": \"CollapsedFu");
  EXPECT_NE(json.find("  \"flatIncludes\": [\n    \"a.h\",\n    \"b.h\"\n  ],\n"), std::string::npos) << json;
  EXPECT_NE(json.find("  \"includes\": [\n    \"b.h\"\n  ],\n"), std::string::npos) << json;
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
