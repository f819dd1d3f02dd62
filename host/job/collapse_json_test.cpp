#include "host/job/collapse_json.h"

#include "host/job/tint_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class CollapseJsonTest : public TintFixture {};

TEST_F(CollapseJsonTest, IsNullWithoutAResult) {
  EXPECT_EQ(writeCollapseJson(nullptr, ShaderIncludes()), "null\n");
}

TEST_F(CollapseJsonTest, HoldsTheResultAsItIs) {
  const std::unique_ptr<CollapseJob> made = collapsed(kGraph);
  EXPECT_EQ(writeCollapseJson(made->result(), made->libraries().includes()), R"json({
  "function": {
    "name": "CollapsedFunction",
    "inputs": [],
    "outputs": [
      {
        "type": "float3",
        "name": "color"
      }
    ],
    "body": "    tint1(\n        0.5,\n        colorn0,\n        color);\n"
  },
  "profile": "default",
  "languages": [
    "dx11"
  ],
  "lod": 100.0,
  "predefines": "void tint1(\n    float amount,\n    float3 color,\n    out float3 result)\n{\n\tresult = color * amount;\n}\n",
  "includes": [
    "b.h"
  ],
  "flatIncludes": [
    "a.h",
    "b.h"
  ],
  "stateVariables": [],
  "customStateVariables": [],
  "uniforms": [
    {
      "type": "fvec3",
      "name": "colorn0"
    }
  ],
  "inputs": [],
  "outputs": [],
  "shaderInputTypes": []
}
)json");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
