#include "host/shader/value_origin.h"

#include "host/test_job_fixture.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class ValueOriginTest : public JobFixture {};

TEST_F(ValueOriginTest, IsFoundForEveryUniformOfAResult) {
  writeLibrary("{" +
               fragment("f", "float a, float b, out float result", "result = a * b * gain;",
                        R"("ports": { "a": "first" }, "uniforms": [ { "name": "gain", "type": "float",
                        "description": "of it" } ], )") +
               "," + fragment("lit", "float x, out float result", "result = x * sfg_currentLight.c;") + "," +
               fragment("lamp", "float power, out Lamp light", "light.c = power;",
                        "\"predefine\": [\"struct Lamp { float c; };\"], ") +
               "}");
  const auto made =
      collapsed(R"({ "uniforms": [ { "name": "free", "type": "float" } ],
    "outputs": [ { "name": "result", "type": "float", "node": "shown" } ], "nodes": [
    { "name": "first", "fragment": "f", "inputs": { "b": { "constant": 2 } } },
    { "name": "shown", "fragment": "lit", "inputs": { "x": { "node": "first" } } } ] })",
                CollapseTool::lightLoop, R"({ "lights": [ { "name": "key", "fragment": "lamp" } ] })");
  const ValueOrigins origins(*made);
  std::string text;
  for (std::size_t i = 0; i < made->result()->getNumUniforms(); ++i) {
    const AParameter& uniform = *made->result()->getUniform(i);
    const ValueOrigin origin = origins.find(uniform);
    text += toUtf8(uniform.getName()) + " " + std::to_string(static_cast<int>(origin.kind)) + " " +
            toUtf8(origin.path()) + " " + toUtf8(origin.fragment) + " " +
            (origin.port != nullptr ? origin.port->description : "-") + "\n";
  }
  EXPECT_EQ(text, R"(powerkey 2 key.power lamp -
gainn0 1 first.gain f of it
an0 1 first.a f first
free 6 free  -
)");
  EXPECT_EQ(origins.find(*makeRef<AParameter>(TypeID_float, L"nobody's")).kind, ValueOrigin::Kind::unknown);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
