#pragma once

// Jobs over a function with a helper, and an expression.

#include "host/test_job_fixture.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

/// Two nodes of one function, the first with an expression for a value.
inline constexpr const char* kTones =
    R"({ "outputs": [ { "name": "color", "type": "float3", "node": "b" } ],
  "nodes": [
    { "name": "in", "fragment": "half", "inputs": { "x": { "value": 2 } }, "interface": {
      "inputs": [ { "name": "x", "type": "float" } ], "outputs": [ { "name": "r", "type": "float" } ] } },
    { "name": "a", "fragment": "tint", "inputs": { "amount": { "node": "in" } } },
    { "name": "b", "fragment": "tint", "inputs": { "color": { "node": "a" } } } ] })";

/// Over a library of `tint` and `half`.
class ToneFixture : public JobFixture {
protected:
  ToneFixture() {
    writeLibrary("{ " +
                 fragment("tint", "float amount, float3 color, out float3 result",
                          "result = color * tone(amount);",
                          "\"predefine\": [\"float tone(float x) { return x * x; }\"],\n  ") +
                 ",\n\"half\": { \"language\": [\"dx11\"], \"mode\": \"inline\", \"implementation\": "
                 "[\"{{x}} * 0.5\"] } }");
  }
};

}  // namespace TolmSDK::Graphics::sfg::host
