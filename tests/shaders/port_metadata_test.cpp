// The descriptions of inputs, outputs and uniforms in the standard fragments.

#include "tests/shaders/port_metadata.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace shaders_test {
namespace {

using testing::ElementsAreArray;
using testing::IsEmpty;

TEST(PortMetadataTest, DescribesEveryPortOfTheStandardFragments) {
  std::size_t count = 0;
  for (const auto& file : std::filesystem::directory_iterator("library")) {
    if (file.path().extension() != ".fraglib") continue;
    std::ifstream stream(file.path());
    const Json fragments = Json::parse(stream);
    for (const auto& [name, fragment] : fragments.items()) {
      EXPECT_THAT(portFaults(fragment), IsEmpty()) << file.path() << ", " << name;
      ++count;
    }
  }
  EXPECT_GT(count, 0u);
}

/// A fragment without faults, with every kind of port.
Json probe() {
  return Json::parse(R"json({
    "ports": {
      "axis": { "description": "unit vector", "value": [0.0, 0.6, 0.8], "kind": "direction", "space": "world" },
      "count": { "description": "stripes", "label": "Stripes", "value": 4, "min": 1, "max": 12, "step": 1 },
      "image": { "description": "picture", "space": "srgb" },
      "tint": { "description": "colour", "value": [1.0, 1.0, 1.0], "min": 0.0, "kind": "color", "space": "linear" },
      "turned": { "description": "whether it is turned", "value": false },
      "source": "called with other coordinates",
      "light": "what arrives",
      "height": { "description": "how high it is", "kind": "distance" }
    },
    "uniforms": [{ "name": "probe_amount", "type": "float", "value": 0.5, "description": "share", "kind": "factor" }],
    "language": ["dx11"],
    "implementation": [
      "void probe(float3 axis, int count, sfg_sampler2D image, float3 tint, bool turned, float source, Lamp light,",
      "  out float3 result, out float height)",
      "{",
      "  sfg_shader(source, axis, tint, height);",
      "}"
    ]
  })json");
}

struct FaultCase {
  const char* name;
  const char* patch;  ///< of the fragment without faults; null takes a member away
  std::vector<std::string> faults;
};

class PortFaultTest : public testing::TestWithParam<FaultCase> {};

TEST_P(PortFaultTest, IsFound) {
  Json fragment = probe();
  fragment.merge_patch(Json::parse(GetParam().patch));
  EXPECT_THAT(portFaults(fragment), ElementsAreArray(GetParam().faults));
}

const FaultCase kFaults[] = {
    {"None", "{}", {}},
    {"NoPorts",
     R"({ "ports": null })",
     {"input `axis`: no description", "input `axis`: no value", "input `count`: no description",
      "input `count`: no value", "input `image`: no description", "input `tint`: no description",
      "input `tint`: no value", "input `turned`: no description", "input `turned`: no value",
      "input `source`: no description", "input `light`: no description", "output `height`: no description"}},
    {"TextForAnInput", R"({ "ports": { "axis": "unit vector" } })", {"input `axis`: no value"}},
    {"NoDescription",
     R"({ "ports": { "count": { "description": null } } })",
     {"input `count`: no description"}},
    {"NoDescriptionOfAnOutput", R"({ "ports": { "height": null } })", {"output `height`: no description"}},
    {"NoValue", R"({ "ports": { "count": { "value": null } } })", {"input `count`: no value"}},
    {"NoSuchPort",
     R"({ "ports": { "depth": { "description": "how deep" } } })",
     {"`depth` is neither an input nor an output"}},
    {"UnknownMember",
     R"({ "ports": { "count": { "unit": "m" } } })",
     {"input `count`: unknown member \"unit\""}},
    {"MemberOfUniformsOnly",
     R"({ "ports": { "count": { "type": "int" } } })",
     {"input `count`: unknown member \"type\""}},
    {"DescriptionOfNoText",
     R"({ "ports": { "count": { "description": 1 } } })",
     {"input `count`: \"description\" is not a text"}},
    {"EmptyLabel",
     R"({ "ports": { "count": { "label": "" } } })",
     {"input `count`: \"label\" is not a text"}},
    {"RangeOfNoNumber",
     R"({ "ports": { "count": { "min": "1" } } })",
     {"input `count`: \"min\" is not a number"}},
    {"UnknownKind",
     R"({ "ports": { "height": { "kind": "mass" } } })",
     {"output `height`: unknown kind \"mass\""}},
    {"UnknownSpace",
     R"({ "ports": { "axis": { "space": "screen" } } })",
     {"input `axis`: unknown space \"screen\""}},
    {"SpaceOfADirectionForAColour",
     R"({ "ports": { "tint": { "space": "world" } } })",
     {"input `tint`: \"world\" is no space of its kind"}},
    {"SpaceOfAColourForADirection",
     R"({ "ports": { "axis": { "space": "linear" } } })",
     {"input `axis`: \"linear\" is no space of its kind"}},
    {"SpaceOfNoKind",
     R"({ "ports": { "count": { "space": "data" } } })",
     {"input `count`: \"data\" is no space of its kind"}},
    {"MinAboveMax",
     R"({ "ports": { "height": { "min": 2.0, "max": 1.0 } } })",
     {"output `height`: \"min\" is above \"max\""}},
    {"StepOfZero", R"({ "ports": { "count": { "step": 0 } } })", {"input `count`: \"step\" is not above 0"}},
    {"ValueBelowMin",
     R"({ "ports": { "tint": { "value": [1.0, -0.1, 1.0] } } })",
     {"input `tint`: the value is outside of its range"}},
    {"ValueAboveMax",
     R"({ "ports": { "count": { "value": 13 } } })",
     {"input `count`: the value is outside of its range"}},
    {"TooFewComponents",
     R"({ "ports": { "tint": { "value": [1.0, 1.0] } } })",
     {"input `tint`: the value is not a float3"}},
    {"NumberForAVector",
     R"({ "ports": { "tint": { "value": 1.0 } } })",
     {"input `tint`: the value is not a float3"}},
    {"VectorForANumber",
     R"({ "ports": { "count": { "value": [4] } } })",
     {"input `count`: the value is not a int"}},
    {"BrokenNumberForAnInt",
     R"({ "ports": { "count": { "value": 4.5 } } })",
     {"input `count`: the value is not a int"}},
    {"NumberForABool",
     R"({ "ports": { "turned": { "value": 1 } } })",
     {"input `turned`: the value is not a bool"}},
    {"TextInAVector",
     R"({ "ports": { "tint": { "value": [1.0, "1", 1.0] } } })",
     {"input `tint`: the value is not a float3"}},
    {"LongDirection",
     R"({ "ports": { "axis": { "value": [0.0, 0.6, 0.802] } } })",
     {"input `axis`: the value is not of unit length"}},
    {"ShortNormal",
     R"({ "ports": { "axis": { "value": [0.0, 0.0, 0.0], "kind": "normal" } } })",
     {"input `axis`: the value is not of unit length"}},
    {"ValueOfATexture", R"({ "ports": { "image": { "value": 1 } } })", {"input `image`: it takes no value"}},
    {"ValueOfAStructure",
     R"({ "ports": { "light": { "description": "what arrives", "value": 1 } } })",
     {"input `light`: it takes no value"}},
    {"ValueOfACalledInput",
     R"({ "ports": { "source": { "description": "called", "value": 1.0 } } })",
     {"input `source`: it takes no value"}},
    {"ValueOfAnOutput",
     R"({ "ports": { "height": { "value": 1.0 } } })",
     {"output `height`: it takes no value"}},
    {"UniformWithoutAnything",
     R"({ "uniforms": [{ "name": "probe_amount", "type": "float" }] })",
     {"uniform `probe_amount`: no description", "uniform `probe_amount`: no value"}},
    {"UniformOutOfRange",
     R"({ "uniforms": [{ "name": "probe_amount", "type": "float", "value": 2.0, "description": "share", "max": 1.0 }] })",
     {"uniform `probe_amount`: the value is outside of its range"}},
};

std::string nameOf(const testing::TestParamInfo<FaultCase>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(Ports, PortFaultTest, testing::ValuesIn(kFaults), nameOf);

TEST(PortMetadataTest, TakesThePortsOfAnExpressionFromItsInterface) {
  const Json half = Json::parse(R"json({
    "ports": { "a": { "description": "number", "value": [1.0] }, "c": "unknown" },
    "interface": { "inputs": [{ "name": "a", "type": "float" }], "outputs": [{ "name": "b", "type": "float" }] },
    "mode": "inline",
    "implementation": ["0.5 * {{a}}"]
  })json");
  EXPECT_THAT(portFaults(half),
              ElementsAreArray({"input `a`: the value is not a float", "output `b`: no description",
                                "`c` is neither an input nor an output"}));
}

TEST(PortMetadataTest, TakesThePortsOfTheFirstProfile) {
  const Json fragment = Json::parse(R"json({
    "ports": { "a": { "description": "number", "value": 1.0 } },
    "profiles": [
      { "language": ["dx11"], "implementation": ["void first(float a, out float result)", "{", "}"] },
      { "language": ["dx11"], "implementation": ["void second(float2 b, out float result)", "{", "}"] }
    ]
  })json");
  EXPECT_THAT(portFaults(fragment), IsEmpty());
}

}  // namespace
}  // namespace shaders_test
