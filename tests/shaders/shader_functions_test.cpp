// Fragments that call another one from their own code.

#include "tests/shaders/shader_fixture.h"
#include "tests/support/job_files.h"

namespace shaders_test {
namespace {

using sfg::host::JobFiles;
using sfg::host::ShaderStage;

Json fragment(const Json& implementation) {
  return {{"language", {"dx11"}}, {"implementation", implementation}};
}

class ShaderFunctionsTest : public ShaderFixture {
protected:
  /// Compiles a consumer whose code calls a fragment of two outputs.
  std::string compileConsumer(const Json& body) const {
    Json consumer = {"void consumer(float source, float2 position, out float result)", "{", "float a = 0.0;"};
    for (const Json& line : body) consumer.push_back(line);
    consumer.insert(consumer.end(), {"result = a;", "}"});
    const Json source = {"void source(float2 position, out float height, out float slope)", "{",
                         "height = position.x;", "slope = position.y;", "}"};
    JobFiles chosen = settings({{"outputs", {{{"name", "color"}, {"type", "float"}, {"node", "consumer"}}}},
                                {"nodes",
                                 {{{"name", "source"}, {"fragment", "testSource"}},
                                  {{"name", "consumer"},
                                   {"fragment", "testConsumer"},
                                   {"inputs", {{"source", {{"node", "source"}, {"output", "height"}}}}}}}}});
    define(chosen, {{"testSource", fragment(source)}, {"testConsumer", fragment(consumer)}});
    return compile(chosen, ShaderStage::pixel, true);
  }
};

TEST_F(ShaderFunctionsTest, MayBeCalledMoreThanOnceInABlock) {
  EXPECT_EQ(compileConsumer({"float b = 0.0;", "sfg_shader(source, position, position, height, a);",
                             "sfg_shader(source, position, position, height, b);", "if (b > 0.5) {",
                             "sfg_shader(source, position, position, slope, a);",
                             "sfg_shader(source, position, position, slope, b);", "}",
                             "sfg_shader(source, position, position, slope, b);", "a = a + b;"}),
            "");
}

}  // namespace
}  // namespace shaders_test
