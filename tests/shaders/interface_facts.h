#pragma once

// What an interface says of a shader, and what compilers read from the shader itself, in the same words: one
// line for each number and name. Nothing here is shared with the code that makes interfaces.

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "sfg/host/reflect.h"

namespace shaders_test {

namespace sfg = TolmSDK::Graphics::sfg;

using Facts = std::set<std::string>;

/// Of the parts that the compiled shader still has.
Facts factsOf(const sfg::host::ShaderInterface& shader);

/// As SPIRV-Cross reads the module.
Facts factsOfModule(const std::vector<std::uint32_t>& spirv);

/// As SPIRV-Cross reads what glslang makes of the translation (HLSL, GLSL or ESSL); of GLSL 3.30 and
/// ESSL 3.00, which are too old for SPIR-V, as glslang itself reads the text. Throws std::runtime_error when
/// that does not compile.
Facts factsOfTranslation(const std::string& text, sfg::host::ShaderTarget target,
                         sfg::host::ShaderStage stage);

/// As the text of a translation to MSL says, laid out by Metal's rules.
Facts factsOfMetal(const std::string& text);

/// What of the pixel stage's inputs does not come from the vertex stage in name, place and type, and what
/// else the vertex stage gives; empty for a pair. The modules are read; `pixel` only tells what compilers
/// left out of the pixel stage.
std::string pairFaults(const Facts& vertexModule, const Facts& pixelModule,
                       const sfg::host::ShaderInterface& pixel);

/// Lines that are in one set only, with their side; empty for equal sets.
std::string difference(const Facts& expected, const Facts& found);

}  // namespace shaders_test
