#pragma once

// Chains of lit and unlit fragments, for tests of what a person is told of them.

#include "host/test_job_fixture.h"

namespace TolmSDK::Graphics::sfg::host {

inline constexpr const char* kLit = R"json(
  "lamp": { "name": "Lamp", "language": ["dx11"], "predefine": ["struct Lamp { float c; };"], "implementation": [
    "void lamp(out Lamp light)", "{", "light.c = 1;", "}" ] },
  "lit": { "profiles": [
    { "name": "default", "language": ["dx11"], "implementation": [
      "void lit(float x, out float result)", "{", "result = x;", "}" ] },
    { "name": "Lamp", "language": ["dx11"], "implementation": [
      "void lit(float x, out float result)", "{", "result = x * sfg_currentLight.c;", "}" ] } ] },)json";
inline constexpr const char* kTwoLamps =
    R"({ "lights": [ { "name": "key", "fragment": "lamp", "profile": "Lamp" },
  { "name": "fill", "fragment": "lamp", "profile": "Lamp" } ] })";

/// Over a library of lit and unlit fragments and a lamp.
class LitChainFixture : public JobFixture {
protected:
  LitChainFixture() {
    writeLibrary("{" + std::string(kLit) + fragment("pass", "float x, out float result", "result = x;") +
                 "," + fragment("change", "inout float x, out float result", "result = x;") + "," +
                 fragment("helped", "float x, out float result", "result = x;",
                          "\"ports\": { \"x\": { \"value\": 0 } }, \"predefine\": [\"int n = 3;\"], ") +
                 "}");
  }
};

/// A chain of nodes `a`, `b`, .. of these fragments, each fed by the one before; the last is the output.
inline std::string chain(const std::vector<std::string>& fragments) {
  std::string nodes;
  for (std::size_t i = 0; i < fragments.size(); ++i) {
    const std::string name(1, static_cast<char>('a' + i));
    const std::string source(1, static_cast<char>('a' + i - 1));
    nodes += std::string(i == 0 ? "" : ",") + "\n{ \"name\": \"" + name + "\", \"fragment\": \"" +
             fragments[i] + "\", \"inputs\": { " +
             (i == 0 ? "" : "\"x\": { \"node\": \"" + source + "\" } ") + "} }";
  }
  const std::string last(1, static_cast<char>('a' + fragments.size() - 1));
  return R"({ "outputs": [ { "name": "o", "type": "float", "node": ")" + last + "\" } ], \"nodes\": [" +
         nodes + "] }";
}

}  // namespace TolmSDK::Graphics::sfg::host
