#include "host/documents/graph_document.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/documents/shading_environment.h"
#include "host/job/shader_options.h"
#include "host/library/language_dx11.h"
#include "sfg/host/errors.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class GraphDocumentTest : public testing::Test {
protected:
  GraphDocumentTest() {
    library_.addFragment(
        L"mix",
        L"void mix(float3 a, inout Surface s, sfg_sampler2D image, out float3 result, out float weight)",
        L"result = a;\n", nullptr, 0);
    library_.addFragment(L"clock", L"void clock(out float ticks)", L"ticks = 0;\n", nullptr, 0);
    library_.addFragment(L"post", L"void post(float3 color, out float3 result)", L"result = color;\n",
                         nullptr, 0);
    std::string pattern = (std::filesystem::temp_directory_path() / "sfg_document_XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
  }
  ~GraphDocumentTest() override { std::filesystem::remove_all(folder_); }

  std::string file(const std::string& text) const {
    std::ofstream(folder_ / "document.json") << text;
    return (folder_ / "document.json").string();
  }
  RefPtr<GraphDocument> load(const std::string& text) const {
    return loadGraphDocument(file(text), language_);
  }

  FragmentLibrary library_;
  LanguageDx11 language_{&library_};
  std::filesystem::path folder_;
};

TEST_F(GraphDocumentTest, TakesPortsFromTheFragment) {
  const RefPtr<GraphDocument> document = load(R"({ "nodes": [ { "name": "a", "fragment": "mix" } ] })");
  const GraphNode& node = document->node(0);
  ASSERT_EQ(node.getNumInputs(), 3u);
  EXPECT_EQ(node.getInput(0)->getName(), L"a");
  EXPECT_EQ(node.getInput(0)->getType(), TypeID_fvec3);
  EXPECT_EQ(node.getInput(1)->getType(), TypeID_struct);
  EXPECT_EQ(node.getInput(1)->getStructName(), L"Surface");
  EXPECT_EQ(node.getInput(2)->getType(), TypeID_sampler2D);
  ASSERT_EQ(node.getNumOutputs(), 2u);
  EXPECT_EQ(node.getOutput(1)->getName(), L"weight");
  EXPECT_EQ(node.getOutput(1)->getType(), TypeID_float);
}

TEST_F(GraphDocumentTest, NodesOfOneFragmentHaveValuesAndWiresOfTheirOwn) {
  const RefPtr<GraphDocument> document = load(R"({ "nodes": [
    { "name": "a", "fragment": "post" },
    { "name": "b", "fragment": "post", "inputs": { "color": { "value": [1, 2, 3] } } },
    { "name": "c", "fragment": "post", "inputs": { "color": { "constant": [4, 5, 6] } } },
    { "name": "d", "fragment": "post", "inputs": { "color": { "node": "a" } } } ] })");
  EXPECT_EQ(document->node(0).getInput(0)->getDefaultValue().get(0), 0.0);
  EXPECT_EQ(document->node(1).getInput(0)->getDefaultValue().get(0), 1.0);
  EXPECT_FALSE(document->node(1).getInput(0)->isConstant());
  EXPECT_EQ(document->node(2).getInput(0)->getDefaultValue().get(2), 6.0);
  EXPECT_TRUE(document->node(2).getInput(0)->isConstant());
  EXPECT_EQ(document->node(3).getInput(0), document->node(0).getInput(0));
  EXPECT_TRUE(document->node(0).wires().empty());
  EXPECT_FALSE(document->node(0).isWired(0));
  EXPECT_FALSE(document->node(1).isWired(0));
  ASSERT_EQ(document->node(3).wires().size(), 1u);
  EXPECT_TRUE(document->node(3).isWired(0));
  const INodeAccessor* source = nullptr;
  std::size_t output = kNotFound;
  EXPECT_FALSE(document->node(0).getInputConnection(0, source, output));
  EXPECT_TRUE(document->node(3).getInputConnection(0, source, output));
  EXPECT_EQ(source, &document->node(0));
}

TEST_F(GraphDocumentTest, ReadsValuesAsParameterObjectsDo) {
  struct Case {
    const char* type;
    const char* value;
    const char* text;  ///< null when it does not fit
  };
  for (const Case& c :
       {Case{"bool", "true", "true"}, Case{"bool", "1", "true"}, Case{"bool", "[0]", "false"},
        Case{"float", "-0.0", "-0.0"}, Case{"float", "[2]", "2.0"}, Case{"float", "true", nullptr},
        Case{"float", "1e39", nullptr}, Case{"int", "1.5", nullptr}, Case{"uint", "-1", nullptr},
        Case{"float", "\"1\"", nullptr}, Case{"float2", "[1, 2]", "float2(1.0, 2.0)"},
        Case{"float2", "1", nullptr}, Case{"float2", "[1]", nullptr}, Case{"float2", "[1, null]", nullptr},
        Case{"float2", "[1, \"2\"]", nullptr}, Case{"sfg_sampler2D", "[]", nullptr},
        Case{"float", "{}", nullptr}}) {
    const std::string text =
        std::string(R"({ "nodes": [ { "name": "a", "fragment": "f", "interface": { "inputs": [
      { "name": "x", "type": ")") +
        c.type + R"(" } ] }, "inputs": { "x": { "value": )" + c.value + " } } } ] }";
    if (c.text == nullptr) {
      EXPECT_THROW(load(text), InputError) << text;
    } else {
      EXPECT_EQ(toUtf8(toShaderText(load(text)->node(0).getInput(0)->getDefaultValue())), c.text) << text;
    }
  }
}

TEST_F(GraphDocumentTest, TakesPortsFromTheInterfaceInstead) {
  const RefPtr<GraphDocument> document = load(R"({ "nodes": [ { "name": "a", "fragment": "mix", "interface": {
    "inputs": [ { "name": "x", "type": "fvec2", "value": [1, 2], "semantic": "S" } ] } } ] })");
  const GraphNode& node = document->node(0);
  ASSERT_EQ(node.getNumInputs(), 1u);
  EXPECT_EQ(node.getInput(0)->getType(), TypeID_fvec2);
  EXPECT_EQ(node.getInput(0)->getDefaultValue().get(1), 2.0);
  EXPECT_EQ(node.getInput(0)->getSemantic(), UString(L"S"));
  EXPECT_EQ(node.getNumOutputs(), 0u);
}

TEST_F(GraphDocumentTest, ValueIsTheDefaultOfAUniformAndConstantIsAnswered) {
  const RefPtr<GraphDocument> document = load(R"({ "nodes": [
    { "name": "value", "fragment": "mix", "inputs": { "a": { "value": [1, 2, 3] } } },
    { "name": "constant", "fragment": "mix", "inputs": { "a": { "constant": [4, 5, 6] } } },
    { "name": "neither", "fragment": "mix" },
    { "name": "own", "fragment": "mix", "interface": {
      "inputs": [ { "name": "x", "type": "float", "value": 7, "constant": true } ] } },
    { "name": "value wins", "fragment": "mix", "interface": {
      "inputs": [ { "name": "x", "type": "float", "value": 7, "constant": true } ] }, "inputs": { "x": { "value": 8 } } } ] })");
  const ShaderOptions options(UString(L"dx11"), 100.0f, 100.0f, nullptr);
  AValue value;
  EXPECT_FALSE(options.getConstValue(value, document->node(0).getInput(0)));
  EXPECT_EQ(document->node(0).getInput(0)->getDefaultValue().get(2), 3.0);
  ASSERT_TRUE(options.getConstValue(value, document->node(1).getInput(0)));
  EXPECT_EQ(value.get(2), 6.0);
  EXPECT_FALSE(options.getConstValue(value, document->node(2).getInput(0)));
  ASSERT_TRUE(options.getConstValue(value, document->node(3).getInput(0)));
  EXPECT_EQ(value.get(0), 7.0);
  EXPECT_FALSE(options.getConstValue(value, document->node(4).getInput(0)));
  EXPECT_EQ(document->node(4).getInput(0)->getDefaultValue().get(0), 8.0);
  EXPECT_FALSE(options.getConstValue(value, nullptr));
}

TEST_F(GraphDocumentTest, PresentsWiresToTheBuilder) {
  const RefPtr<GraphDocument> document = load(R"({ "inputs": [ { "name": "seed", "type": "float3" } ],
    "outputs": [ { "name": "first", "type": "float3", "node": "a" },
      { "name": "second", "type": "float", "node": "a", "output": "weight" }, { "name": "third", "type": "float" } ],
    "nodes": [ { "name": "a", "fragment": "mix", "inputs": { "a": { "node": "b" } } },
      { "name": "b", "fragment": "mix", "inputs": { "a": { "graphInput": "seed" } } } ] })");
  const INodeAccessor* source = nullptr;
  std::size_t output = kNotFound;
  ASSERT_TRUE(document->getOutputConnection(0, source, output));
  EXPECT_EQ(source, document->getNode(0));
  EXPECT_EQ(output, 0u);
  ASSERT_TRUE(document->getOutputConnection(1, source, output));
  EXPECT_EQ(output, 1u);
  EXPECT_FALSE(document->getOutputConnection(2, source, output));
  ASSERT_TRUE(document->node(0).getInputConnection(0, source, output));
  EXPECT_EQ(source, document->getNode(1));
  EXPECT_FALSE(document->node(1).getInputConnection(0, source, output));
  EXPECT_FALSE(document->node(0).getInputConnection(1, source, output));
}

TEST_F(GraphDocumentTest, BuildsMembersInFileOrderThenPreprocess) {
  const RefPtr<GraphDocument> document = load(R"({ "inputs": [ { "name": "seed", "type": "float3" } ],
    "outputs": [ { "name": "x", "type": "float3", "node": "a" } ], "uniforms": [ { "name": "u", "type": "float" } ],
    "nodes": [ { "name": "b", "fragment": "mix" },
      { "name": "a", "fragment": "mix", "inputs": { "a": { "graphInput": "seed" } } } ],
    "preprocess": [ "clock", "clock" ], "postprocess": [ "post", "post" ] })");
  const RefPtr<AShaderFragmentGraph> graph = buildGraph(*document, language_);
  ASSERT_EQ(graph->getNumFragments(), 4u);
  EXPECT_EQ(graph->getFragment(0)->instanceName(), L"n0");
  EXPECT_EQ(graph->getFragment(1)->instanceName(), L"n1");
  EXPECT_EQ(graph->getFragment(2)->instanceName(), L"pre0");
  EXPECT_EQ(graph->getFragment(3)->instanceName(), L"pre1");
  EXPECT_EQ(graph->getPreprocessFragment(1), graph->getFragment(3));
  EXPECT_EQ(graph->getPreprocessFragment(1)->getOutputName(0), L"ticks");
  ASSERT_EQ(graph->getNumPostprocessFragments(), 2u);
  EXPECT_EQ(graph->getPostprocessFragment(1)->instanceName(), L"post1");
  EXPECT_EQ(graph->getFragment(1)->getInputConnections()[0], (ShaderFragmentConnection{nullptr, 0}));
  ASSERT_EQ(graph->getNumUniforms(), 1u);
  EXPECT_EQ(graph->getUniform(0)->getName(), L"u");
  EXPECT_EQ(document->findInstance(L"n1"), &document->node(1));
  EXPECT_EQ(document->findInstance(L"n2"), nullptr);
}

TEST_F(GraphDocumentTest, EnvironmentClonesLightsUnderTheirNames) {
  const RefPtr<ShadingEnvironment> environment = loadEnvironment(
      file(
          R"({ "lights": [ { "fragment": "clock" }, { "name": "key", "fragment": "clock", "profile": "Lamp" } ],
    "output": "post" })"),
      language_);
  ASSERT_EQ(environment->getNumLights(), 2u);
  EXPECT_EQ(environment->getLight(0)->instanceName(), L"light0");
  EXPECT_EQ(environment->getLight(1)->instanceName(), L"key");
  EXPECT_EQ(environment->getLight(1)->getOutputName(0), L"ticks");
  EXPECT_EQ(environment->getOutputFragment()->instanceName(), L"output");
  EXPECT_EQ(environment->getOutputFragment()->getInputName(0), L"color");
  const ShaderOptions options(UString(L"dx11"), 1.0f, 2.0f, environment.get());
  EXPECT_EQ(options.getLightProfile(environment->getLight(0))->getProfilename(), L"default");
  EXPECT_EQ(options.getLightProfile(environment->getLight(1))->getProfilename(), L"Lamp");
  EXPECT_EQ(options.getLightProfile(nullptr), nullptr);
  EXPECT_EQ(options.getSurfaceLOD(), 1.0f);
  EXPECT_EQ(options.getLightLOD(), 2.0f);
}

TEST_F(GraphDocumentTest, EnvironmentRefusesTooManyLightsBeforeItReadsThem) {
  std::string text = R"({ "lights": [)";
  for (int i = 0; i < 900'000; ++i) text += i == 0 ? "{}" : ",{}";
  try {
    loadEnvironment(file(text + "] }"), language_);
    FAIL();
  } catch (const InputError& error) {
    EXPECT_STREQ(error.what(), "900000 lights are too many; at most 100000 can be written");
    EXPECT_EQ(error.position().column, 13u);
  }
}

TEST_F(GraphDocumentTest, AnEmptyEnvironmentHasNothing) {
  const RefPtr<ShadingEnvironment> environment = loadEnvironment(file("{}"), language_);
  EXPECT_EQ(environment->getNumLights(), 0u);
  EXPECT_EQ(environment->getOutputFragment(), nullptr);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
