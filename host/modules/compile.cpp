#include "sfg/host/compile.h"

#include <cstring>

#include "host/modules/guarded_compiler.h"
#include "host/modules/isolation.h"
#include "host/modules/message_bytes.h"
#include "host/modules/shader_compiler.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// One step, as a process of its own is told of it.
struct Request {
  enum class Step { compileToSpirv, translate, compile };
  Step step = Step::compile;
  ShaderStage stage = ShaderStage::pixel;
  ShaderTarget target = ShaderTarget::spirv;
  CompileOptions options;
  std::string code;  ///< the text, or the bytes of the module
  std::string entryPoint;
};

std::string written(const Request& request) {
  ByteWriter writer;
  for (const int number :
       {static_cast<int>(request.step), static_cast<int>(request.stage), static_cast<int>(request.target),
        static_cast<int>(request.options.glslVersion), static_cast<int>(request.options.shaderModel),
        static_cast<int>(request.options.optimization), request.options.debug ? 1 : 0})
    writer.number(static_cast<std::uint64_t>(number));
  return writer.text(request.code).text(request.entryPoint).take();
}

Request readRequest(const std::string& bytes) {
  ByteReader reader(bytes);
  Request request;
  request.step = static_cast<Request::Step>(reader.number());
  request.stage = static_cast<ShaderStage>(reader.number());
  request.target = static_cast<ShaderTarget>(reader.number());
  request.options.glslVersion = static_cast<GlslVersion>(reader.number());
  request.options.shaderModel = static_cast<ShaderModel>(reader.number());
  request.options.optimization = static_cast<Optimization>(reader.number());
  request.options.debug = reader.number() != 0;
  request.code = reader.text();
  request.entryPoint = reader.text();
  return request;
}

std::vector<std::uint32_t> wordsOf(const std::string& bytes) {
  std::vector<std::uint32_t> words(bytes.size() / sizeof(std::uint32_t));
  if (!words.empty()) std::memcpy(words.data(), bytes.data(), words.size() * sizeof(std::uint32_t));
  return words;
}

std::string bytesOf(const std::vector<std::uint32_t>& words) {
  return {reinterpret_cast<const char*>(words.data()), words.size() * sizeof(std::uint32_t)};
}

std::string perform(const Request& request) {
  return guarded([&] {
    switch (request.step) {
    case Request::Step::compileToSpirv:
      return bytesOf(compileToSpirv(request.code, request.entryPoint, request.stage, request.options));
    case Request::Step::translate:
      return translate(wordsOf(request.code), request.stage, request.target, request.options);
    case Request::Step::compile: break;
    }
    return compileShader(request.code, request.entryPoint, request.stage, request.target, request.options);
  });
}

std::string performWritten(const std::string& bytes) { return perform(readRequest(bytes)); }

/// In a process of its own where that is asked for.
std::string answer(const Request& request) {
  return isIsolated() ? inIsolation(written(request), performWritten) : perform(request);
}

}  // namespace

std::vector<std::uint32_t> compileToSpirv(const Shader& shader, const CompileOptions& options) {
  return wordsOf(answer({Request::Step::compileToSpirv, shader.stage, ShaderTarget::spirv, options,
                         shader.text, shader.entryPoint}));
}

std::string translateSpirv(const std::vector<std::uint32_t>& spirv, ShaderStage stage, ShaderTarget target,
                           const CompileOptions& options) {
  return answer({Request::Step::translate, stage, target, options, bytesOf(spirv), {}});
}

std::string compile(const Shader& shader, ShaderTarget target, const CompileOptions& options) {
  return answer({Request::Step::compile, shader.stage, target, options, shader.text, shader.entryPoint});
}

void markUsed(ShaderInterface& shader, const std::vector<std::uint32_t>& spirv) {
  ShaderInterface marked = shader;
  guarded([&] { markUsedParts(marked, spirv); });
  shader = std::move(marked);
}

}  // namespace TolmSDK::Graphics::sfg::host
