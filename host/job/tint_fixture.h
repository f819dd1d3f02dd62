#pragma once

// Jobs over one fragment that needs include files.

#include "host/test_job_fixture.h"

namespace TolmSDK::Graphics::sfg::host {

inline constexpr const char* kGraph = R"({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "tint", "inputs": { "amount": { "constant": 0.5 } } } ] })";

/// Over a library of `tint`.
class TintFixture : public JobFixture {
protected:
  TintFixture() {
    writeLibrary("{" +
                 fragment("tint", "float amount, float3 color, out float3 result", "result = color * amount;",
                          "\"includes\": [\"b.h\"], ") +
                 "}");
    write("a.h", "float a;\n");
    write("b.h", "#include \"a.h\"\nfloat b;\n");
  }
};

}  // namespace TolmSDK::Graphics::sfg::host
