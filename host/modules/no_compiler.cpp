// What takes the compilers' place in a library that is built without them.

#include "host/modules/shader_compiler.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

[[noreturn]] void refuse() { throw CompileError("this library was built without compilers", {}, false); }

}  // namespace

bool hasCompilers() noexcept { return false; }

std::vector<std::uint32_t> compileToSpirv(const std::string&, const std::string&, ShaderStage,
                                          const CompileOptions&) {
  refuse();
}
std::string translate(const std::vector<std::uint32_t>&, ShaderStage, ShaderTarget, const CompileOptions&) {
  refuse();
}
std::string compileShader(const std::string&, const std::string&, ShaderStage, ShaderTarget,
                          const CompileOptions&) {
  refuse();
}
std::string compilerVersions() { return "none"; }
void markUsedParts(ShaderInterface&, const std::vector<std::uint32_t>&) { refuse(); }

}  // namespace TolmSDK::Graphics::sfg::host
