#include "host/output_file.h"
#include "host/shader_compiler.h"
#include "tolmsdk/unicode.h"
#include "tools/collapse_options.h"
#include "tools/command.h"
#include "tools/compile_report.h"
#include "tools/source_files.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

constexpr const char* kNotes =
    "Example:\n\n"
    "  sfg reflect brick.json -L library -I library\n"
    "  sfg reflect brick.json -L library -I library --target glsl -o brick.glsl.json\n\n"
    "Written are the attributes, buffers with their members, textures, samplers and render targets of the "
    "shader that\n"
    "`sfg compile` writes for the same target: where each is, what it is called there, and what it stands "
    "for "
    "in graph\n"
    "and scene. Parts that the compilers left out are told by `\"used\": false`. `assembled` is the shader "
    "of "
    "`sfg collapse`.\n\n"
    "Exit status: 0 done; 1 the collapse or a compiler refused; 2 wrong usage or unreadable input.\n";

class ReflectCommand : public Command {
public:
  explicit ReflectCommand(CLI::App& parent)
      : Command(*parent.add_subcommand(
            "reflect", "Tell what a shader takes and gives, and where, for the host that feeds it")) {
    declareCollapseOptions(app(), settings_);
    declareChoice<std::optional<host::ShaderTarget>>(app(), "--target",
                                                     {{"spirv", host::ShaderTarget::spirv},
                                                      {"hlsl", host::ShaderTarget::hlsl},
                                                      {"glsl", host::ShaderTarget::glsl},
                                                      {"essl", host::ShaderTarget::essl},
                                                      {"msl", host::ShaderTarget::msl},
                                                      {"assembled", std::nullopt}},
                                                     target_,
                                                     "as for `compile`; `assembled`: before any compiler");
    declareStageOption(app(), stage_);
    declareNamesOption(app(), names_);
    declareOutputOption(app(), output_);
    app().footer(kNotes);
  }

  int run(host::Diagnostics& diagnostics) override {
    host::CollapseJob job(settings_);
    if (collapse(job, true, diagnostics) != Outcome::done) return kRefused;
    const std::optional<host::AssembledShader> assembled = assemble(job, stage_, names_, diagnostics);
    if (!assembled) return kRefused;
    try {
      const host::ShaderInterface shader = target_ ? compiledInterface(*assembled) : assembled->reflection;
      host::writeOutput(output_, host::writeInterfaceJson(shader, sourceFiles(job, shader.includes)));
    } catch (const host::CompileError& error) {
      reportCompileError(job, *assembled, error, diagnostics);
      return kRefused;
    }
    return kDone;
  }

private:
  host::ShaderInterface compiledInterface(const host::AssembledShader& assembled) const {
    host::ShaderInterface shader = host::interfaceFor(assembled.reflection, *target_);
    host::markUsed(shader, host::compileToSpirv(toUtf8(assembled.shader.getCompleteShader()),
                                                assembled.entryPoint, stage_));
    return shader;
  }

  host::CollapseSettings settings_;
  std::optional<host::ShaderTarget> target_ = host::ShaderTarget::spirv;
  host::ShaderStage stage_ = host::ShaderStage::pixel;
  host::NameStyle names_ = host::NameStyle::readable;
  std::string output_;
};

}  // namespace

std::unique_ptr<Command> makeReflectCommand(CLI::App& parent) {
  return std::make_unique<ReflectCommand>(parent);
}

}  // namespace TolmSDK::Graphics::sfg::tools
