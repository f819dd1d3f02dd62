#include "host/documents/port_metadata.h"

#include <gtest/gtest.h>

#include "host/library/language_dx11.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

constexpr const char* kCode = R"json("language": ["dx11"], "implementation": [
  "void probe(float3 axis, int count, sfg_sampler2D image, bool turned, Lamp light, float4x4 place,",
  "           out float3 result, out float height)", "{", "}" ])json";

/// Reads a fragment "probe" with these members, and tells of each problem in a line.
class PortMetadataReaderTest : public testing::Test {
protected:
  FragmentPorts read(const std::string& members, const std::string& code = kCode) {
    told_.clear();
    const std::string text = "{ " + members + ",\n" + code + " }";
    object_ = RefPtr<IObjectDataNode>(createJsonNode());
    EXPECT_TRUE(object_->loadFromText(WString(text.begin(), text.end()))) << text;
    fragment_ = makeRef<AShaderFragment>();
    fragment_->load(object_.get());
    fragment_->key() = L"probe";
    return readPorts(*object_, *fragment_, *language_,
                     [&](Finding kind, TextPosition position, const std::string& problem) {
                       told_ += std::to_string(position.line) + ":" + std::to_string(position.column) + ": " +
                                problem + " [" + std::string(identifierOf(kind)) + "]\n";
                     });
  }
  /// What is told of one port, without place and name.
  std::string problemOf(const std::string& port, const std::string& object) {
    read("\"ports\": { \"" + port + "\": " + object + " }");
    const std::string intro = "port `" + port + "` of fragment `probe`: ";
    const std::size_t start = told_.find(intro);
    return start == told_.npos ? told_ : told_.substr(start + intro.size());
  }

  const RefPtr<LanguageDx11> language_ = makeRef<LanguageDx11>(nullptr);
  RefPtr<IObjectDataNode> object_;
  RefPtr<AShaderFragment> fragment_;
  std::string told_;
};

TEST_F(PortMetadataReaderTest, ReadsEveryMember) {
  const FragmentPorts read = this->read(R"json("ports": {
    "axis": { "label": "Axis", "description": "around which it turns", "value": [0.0, 0.5, 1],
              "min": -1, "max": [1, 2, 3], "step": 0.25, "kind": "direction", "space": "world" },
    "height": { "description": "how high", "kind": "distance" } },
  "uniforms": [ { "name": "share", "type": "float", "value": 0.5, "kind": "factor", "max": 1 },
                { "name": "plain", "type": "float" } ])json");
  EXPECT_EQ(told_, "");
  EXPECT_EQ(read.ports, (Map<WString, PortMetadata>{
                            {L"axis",
                             {"Axis",
                              "around which it turns",
                              "direction",
                              "world",
                              {0.0, 0.5, 1.0},
                              {-1.0, -1.0, -1.0},
                              {1.0, 2.0, 3.0},
                              {0.25, 0.25, 0.25}}},
                            {L"height", {"", "how high", "distance", "", {}, {}, {}, {}}},
                        }));
  EXPECT_EQ(read.uniforms,
            (Map<WString, PortMetadata>{{L"share", {"", "", "factor", "", {0.5}, {}, {1.0}, {}}}}));
}

TEST_F(PortMetadataReaderTest, TakesATextAsTheDescription) {
  const FragmentPorts read = this->read(R"json("ports": { "image": "a picture" })json");
  EXPECT_EQ(told_, "");
  EXPECT_EQ(read.ports.at(L"image").description, "a picture");
}

TEST_F(PortMetadataReaderTest, PassesOverComments) {
  const FragmentPorts read =
      this->read(R"json("ports": { "// old": 1, "count": { "// why": [], "value": 2 } })json");
  EXPECT_EQ(told_, "");
  EXPECT_EQ(read.ports.at(L"count").value, std::vector<double>{2.0});
}

TEST_F(PortMetadataReaderTest, TellsOfUnknownPortsWhereTheyStand) {
  const FragmentPorts read = this->read("\"ports\": {\n \"axes\": \"x\",\n \"hight\": {} }");
  EXPECT_EQ(
      told_,
      "2:10: fragment `probe`: it has no port `axes`; its ports are `axis`, `count`, `height`, `image`, "
      "`light`, `place`, `result`, `turned` [unknown-port]\n"
      "3:11: fragment `probe`: it has no port `hight` [unknown-port]\n");
  EXPECT_TRUE(read.ports.empty());
}

TEST_F(PortMetadataReaderTest, KeepsWhatIsRightOfAPortThatHoldsMistakes) {
  const FragmentPorts read = this->read(R"json("ports": {
    "count": { "value": 3, "min": 0.5, "label": "Count" } })json");
  EXPECT_EQ(told_, "2:35: port `count` of fragment `probe`: `min` does not fit the type `int`: expected an "
                   "integer [wrong-value]\n");
  EXPECT_EQ(read.ports.at(L"count"), (PortMetadata{"Count", "", "", "", {3.0}, {}, {}, {}}));
}

struct Mistake {
  const char* name;
  const char* port;
  const char* object;
  const char* told;
};

class PortMistakeTest : public PortMetadataReaderTest, public testing::WithParamInterface<Mistake> {};

TEST_P(PortMistakeTest, IsTold) { EXPECT_EQ(problemOf(GetParam().port, GetParam().object), GetParam().told); }

const Mistake kMistakes[] = {
    {"NoObject", "count", "3",
     "1:23: fragment `probe`: port `count` must be a text or an object [wrong-kind]\n"},
    {"NoText", "count", R"({ "label": 1 })", "`label` must be a string that is not empty [wrong-kind]\n"},
    {"EmptyText", "count", R"({ "description": "" })",
     "`description` must be a string that is not empty [wrong-kind]\n"},
    {"EmptyDescription", "count", R"("")", "`description` must be a string that is not empty [wrong-kind]\n"},
    {"UnknownKind", "count", R"({ "kind": "mass" })",
     "unknown kind `mass`; known are `angle`, `color`, `direction`, `distance`, `factor`, `normal`, "
     "`position`, "
     "`uv` [unknown-word]\n"},
    {"UnknownSpace", "axis", R"({ "kind": "normal", "space": "screen" })",
     "unknown space `screen`; known are `object`, `tangent`, `view`, `world`, `data`, `linear`, `srgb` "
     "[unknown-word]\n"},
    {"SpaceOfVectorsForAColor", "axis", R"({ "space": "world", "kind": "color" })",
     "`world` is a space of directions, normals and positions (`kind`) [wrong-value]\n"},
    {"SpaceOfColorsForADirection", "axis", R"({ "space": "srgb", "kind": "direction" })",
     "`srgb` is a space of colors (`kind`) and textures [wrong-value]\n"},
    {"SpaceOfATexture", "image", R"({ "space": "srgb" })", ""},
    {"ValueOfAnOutput", "height", R"({ "value": 1 })", "an output takes no value [wrong-value]\n"},
    {"ValueOfATexture", "image", R"({ "value": 1 })",
     "`value` cannot be given: a texture or structure has no value [wrong-value]\n"},
    {"ValueOfAStructure", "light", R"({ "value": 1 })",
     "`value` cannot be given: a texture or structure has no value [wrong-value]\n"},
    {"NumberForAVector", "axis", R"({ "value": 1 })",
     "`value` does not fit the type `float3`: expected an array of 3 numbers [wrong-value]\n"},
    {"ShortVector", "axis", R"({ "value": [1, 2] })",
     "`value` does not fit the type `float3`: expected an array of 3 numbers [wrong-value]\n"},
    {"TextForABool", "turned", R"({ "value": "true" })",
     "`value` does not fit the type `bool`: expected `true` or `false` [wrong-value]\n"},
    {"RangeOfABool", "turned", R"({ "max": 1 })", "a bool has no `max` [wrong-value]\n"},
    {"RangeOfATexture", "image", R"({ "max": 1 })",
     "`max` cannot be given: a texture or structure has no value [wrong-value]\n"},
    {"ShortRange", "axis", R"({ "max": [1, 2] })",
     "`max` does not fit the type `float3`: expected an array of 3 numbers [wrong-value]\n"},
    {"RangeOfAText", "count", R"({ "min": "1" })",
     "`min` does not fit the type `int`: expected an integer [wrong-value]\n"},
    {"StepOfZero", "axis", R"({ "step": [1, 0, 1] })", "`step` must be above 0 [wrong-value]\n"},
    {"MinAboveMax", "axis", R"({ "min": [0, 2, 0], "max": 1 })", "`min` is above `max` [wrong-value]\n"},
    {"ValueBelowMin", "axis", R"({ "min": 0, "value": [0, 0, -1] })",
     "`value` is below `min` [wrong-value]\n"},
    {"ValueAboveMax", "count", R"({ "max": 4, "value": 5 })", "`value` is above `max` [wrong-value]\n"},
};

std::string nameOf(const testing::TestParamInfo<Mistake>& info) { return info.param.name; }
INSTANTIATE_TEST_SUITE_P(Ports, PortMistakeTest, testing::ValuesIn(kMistakes), nameOf);

TEST_F(PortMetadataReaderTest, TellsOfPortsThatAreNoObject) {
  read(R"json("ports": [])json");
  EXPECT_EQ(told_, "1:12: fragment `probe`: `ports` must be an object [wrong-kind]\n");
}

TEST_F(PortMetadataReaderTest, TellsOfUniforms) {
  read(R"json("uniforms": [ { "name": "u", "type": "int", "unit": "m", "min": 0.5 } ])json");
  EXPECT_EQ(told_, "1:67: uniform `u` of fragment `probe`: `min` does not fit the type `int`: expected an "
                   "integer [wrong-value]\n");
}

constexpr const char* kExpression =
    R"json("mode": "inline", "language": ["dx11"], "implementation": ["{{a}} * {{b}}"])json";

TEST_F(PortMetadataReaderTest, TakesTheTypesOfAnExpressionFromItsInterface) {
  const FragmentPorts read = this->read(R"json("ports": { "a": { "value": [1, 2] }, "c": "product" },
    "interface": { "inputs": [ { "name": "a", "type": "float2" }, { "name": "x", "type": "float" } ],
                   "outputs": [ { "name": "c", "type": "float2" } ] })json",
                                        kExpression);
  EXPECT_EQ(told_, "");
  EXPECT_EQ(read.ports.at(L"a").value, (std::vector<double>{1.0, 2.0}));
  EXPECT_EQ(read.ports.at(L"c").description, "product");
}

TEST_F(PortMetadataReaderTest, TellsThatAnExpressionWithoutInterfaceHasNoTypes) {
  read(R"json("ports": { "a": { "value": 1 }, "c": "product" })json", kExpression);
  EXPECT_EQ(told_,
            "1:30: port `a` of fragment `probe`: `value` needs a type, which the `interface` of an inline "
            "fragment gives [wrong-value]\n"
            "1:40: fragment `probe`: it has no port `c`; its ports are `a`, `b` [unknown-port]\n");
}

TEST(PortValueTest, IsOfTheTypeThatIsAskedFor) {
  PortMetadata port;
  EXPECT_FALSE(portValue(nullptr, TypeID_float));
  EXPECT_FALSE(portValue(&port, TypeID_float));
  port.value = {0.5, 1.0};
  EXPECT_FALSE(portValue(&port, TypeID_float));
  EXPECT_FALSE(portValue(&port, TypeID_ivec2));
  ASSERT_TRUE(portValue(&port, TypeID_fvec2));
  EXPECT_EQ(toShaderText(*portValue(&port, TypeID_fvec2)), L"float2(0.5, 1.0)");
}

TEST(PortValueTest, IsFoundByFragmentAndName) {
  LibraryPorts libraries;
  libraries[L"f"].ports[L"a"].label = "port";
  libraries[L"f"].uniforms[L"a"].label = "uniform";
  EXPECT_EQ(findPort(libraries, L"f", L"a")->label, "port");
  EXPECT_EQ(findUniform(libraries, L"f", L"a")->label, "uniform");
  EXPECT_EQ(findPort(libraries, L"f", L"b"), nullptr);
  EXPECT_EQ(findPort(libraries, L"g", L"a"), nullptr);
  EXPECT_EQ(findUniform(libraries, L"g", L"a"), nullptr);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
