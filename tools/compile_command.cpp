#include "host/diagnostics/code_origin.h"
#include "host/modules/shader_compiler.h"
#include "tolmsdk/unicode.h"
#include "tools/collapse_options.h"
#include "tools/command.h"
#include "tools/output_file.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

constexpr const char* kNotes =
    "Example:\n\n"
    "  sfg compile brick.json -L library -I library --target spirv -o brick.spv\n"
    "  sfg compile brick.json -L library -I library --tool lightloop --environment sun.json --target glsl\n\n"
    "The shader is the one that `sfg collapse` writes. It is compiled to SPIR-V for Vulkan 1.1, legalised, "
    "optimised\n"
    "and validated, and translated from there; HLSL, GLSL and ESSL are compiled once more to check them.\n"
    "Bindings in SPIR-V: constant buffer N is N, texture N is 16 + N, sampler N is 48 + N, output buffer N "
    "is 80 + N.\n\n"
    "Exit status: 0 done; 1 the collapse or a compiler refused; 2 wrong usage or unreadable input.\n";

class CompileCommand : public Command {
public:
  explicit CompileCommand(CLI::App& parent)
      : Command(*parent.add_subcommand("compile", "Compile a graph of fragments for a graphics API")) {
    declareCollapseOptions(app(), settings_);
    declareChoice<host::ShaderTarget>(
        app(), "--target",
        {{"spirv", host::ShaderTarget::spirv},
         {"hlsl", host::ShaderTarget::hlsl},
         {"glsl", host::ShaderTarget::glsl},
         {"essl", host::ShaderTarget::essl},
         {"msl", host::ShaderTarget::msl}},
        target_,
        "`spirv`: a module; `hlsl`: shader model 5.0; `glsl`: GLSL 4.50; `essl`: GLSL ES "
        "3.20; `msl`: Metal 2.1");
    declareStageOption(app(), stage_);
    declareOutputOption(app(), output_);
    declareDepfileOptions(app(), depfile_);
    app().footer(kNotes);
  }

  int run(Diagnostics& diagnostics) override {
    checkDepfile(depfile_, output_);
    host::CollapseJob job(settings_);
    if (collapse(job, true, diagnostics) != Outcome::done) return kRefused;
    const std::optional<host::AssembledShader> assembled = assemble(job, stage_, diagnostics);
    if (!assembled) return kRefused;
    try {
      writeOutput(output_, host::compileShader(toUtf8(assembled->shader.getCompleteShader()),
                                               assembled->entryPoint, stage_, target_));
    } catch (const host::CompileError& error) {
      report(job, *assembled, error, diagnostics);
      return kRefused;
    }
    writeDepfile(depfile_, output_, job);
    return kDone;
  }

private:
  /// A compiler's complaint, the line it is about, and the fragment that the line comes from.
  static void report(const host::CollapseJob& job, const host::AssembledShader& assembled,
                     const host::CompileError& error, Diagnostics& diagnostics) {
    diagnostics.error(job.document().file(), error.what());
    for (std::size_t i = 0; i < error.messages().size(); ++i) {
      const host::CompilerMessage& message = error.messages()[i];
      const bool hasLine = error.inAssembledText() && message.line != 0;
      const std::string place =
          hasLine ? "generated:" + std::to_string(message.line) : std::string("generated");
      diagnostics.error(place, message.text);
      // Where the line comes from is said once, behind all that is said about it.
      const bool moreOfTheLine =
          i + 1 < error.messages().size() && error.messages()[i + 1].line == message.line;
      if (!hasLine || moreOfTheLine) continue;
      for (const host::OriginNote& note : host::findOrigins(job, assembled, message.line)) {
        diagnostics.note(note.place.empty() ? place : note.place, note.text);
      }
    }
  }

  host::CollapseSettings settings_;
  host::ShaderTarget target_ = host::ShaderTarget::spirv;
  host::ShaderStage stage_ = host::ShaderStage::pixel;
  std::string output_;
  DepfileOptions depfile_;
};

}  // namespace

std::unique_ptr<Command> makeCompileCommand(CLI::App& parent) {
  return std::make_unique<CompileCommand>(parent);
}

}  // namespace TolmSDK::Graphics::sfg::tools
