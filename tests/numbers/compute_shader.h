#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace numbers_test {

// A value that a fragment takes or gives, by its name and type in the shader language.
struct Port {
  std::string name;
  std::string type;
};

// The number of floats a value of this type takes in a buffer: 3 for float3, 16 for float4x4, 1 for bool.
// Throws std::invalid_argument for a type that is no number, vector or matrix.
std::size_t componentCount(std::string const& type);

// A value that the code takes from the sample, as a local of the entry point or as a global.
struct SampledPort : Port {
  bool isGlobal = false;
};

// Code to run once per sample, with everything it needs to compile.
struct Function {
  std::string code;                 // includes, predefines, definitions
  std::string call;                 // statements over the names of the ports
  std::vector<SampledPort> inputs;  // filled from the sample, in order
  std::vector<Port> zeros;          // further locals that the call names
  std::vector<Port> outputs;        // written behind one another
};

// Samples per work group of the shaders made here.
constexpr std::size_t kGroupSize = 64;

// The text of a compute shader that runs `function` once per sample, over the buffers of VulkanCompute.
std::string computeShader(Function const& function);

}  // namespace numbers_test
