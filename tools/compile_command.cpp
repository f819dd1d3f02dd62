#include "sfg/host/compile.h"
#include "sfg/host/reflect.h"
#include "tools/collapse_options.h"
#include "tools/command.h"
#include "tools/output_file.h"
#include "tools/target_options.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

constexpr const char* kCompileNotes =
    "Example:\n\n"
    "  sfg compile brick.json -L library -I library --target spirv -o brick.spv\n"
    "  sfg compile brick.json -L library -I library --tool lightloop --environment sun.json --target glsl\n"
    "  sfg compile brick.json -L library -I library --stage vertex -o brick.vert.spv\n\n"
    "The shader is the one that `sfg collapse --names readable` writes. It is compiled to SPIR-V for Vulkan "
    "1.1, legalised, "
    "optimised\n"
    "and validated, and translated from there; HLSL, GLSL and ESSL are compiled once more to check them.\n"
    "GLSL 3.30 and GLSL ES 3.00 have no compute stage and number nothing but render targets: what a host "
    "binds there,\n"
    "it finds by name. A shader with anything that they lack is refused, with the targets that have it.\n"
    "Bindings in SPIR-V: constant buffer N is N, texture N is 16 + N, sampler N is 48 + N, output buffer N "
    "is 80 + N;\n"
    "`sfg reflect` tells them all, for every target.\n\n"
    "Exit status: 0 done; 1 the collapse or a compiler refused; 2 wrong usage or unreadable input.\n";

class CompileCommand : public Command {
public:
  explicit CompileCommand(CLI::App& parent)
      : Command(*parent.add_subcommand("compile", "Compile a graph of fragments for a graphics API")) {
    declareJobOptions(app(), options_);
    declareTargetOptions(app(), compiledTargets(),
                         "`spirv`: a module; `hlsl`: shader model 5.0 or 6.0; `glsl`: GLSL 4.50 or 3.30; "
                         "`essl`: GLSL ES 3.20; `msl`: Metal 2.1; `essl300`: GLSL ES 3.00, for WebGL 2",
                         target_);
    declareStageOption(app(), stage_);
    declareMeshOption(app(), mesh_);
    declareNamesOption(app(), names_);
    declareOutputOption(app(), output_);
    app()
        .add_option("--reflect", reflection_, "also write what the shader takes and gives, as `reflect` does")
        ->type_name("FILE");
    declareDepfileOptions(app(), depfile_);
    app().footer(kCompileNotes);
  }

  int run(Diagnostics& diagnostics) override {
    checkTargetOptions(target_, stage_);
    checkOutputs(options_, {output_, reflection_}, depfile_);
    ReadJob read = makeJob(options_, diagnostics);
    host::Job& job = read.job;
    if (collapse(job, true, diagnostics) != Outcome::done) return kRefused;
    const std::optional<host::Shader> shader =
        assemble(job, options_.graphFile, stage_, names_, mesh_, diagnostics);
    if (!shader) return kRefused;
    try {
      const host::CompileOptions options = target_.compileOptions();
      const std::vector<std::uint32_t> spirv = host::compileToSpirv(*shader, options);
      writeOutput(output_, host::translateSpirv(spirv, stage_, *target_.target, options));
      if (!reflection_.empty()) writeReflection(job, spirv);
    } catch (const host::CompileError& error) {
      diagnostics.show(job.explain(*shader, error));
      return kRefused;
    }
    writeDepfile(depfile_, output_, read);
    return kDone;
  }

private:
  void writeReflection(const host::Job& job, const std::vector<std::uint32_t>& spirv) const {
    host::ShaderInterface shader =
        host::interfaceFor(job.reflect(stage_, names_, mesh_), *target_.target, target_.compileOptions());
    host::markUsed(shader, spirv);
    writeOutput(reflection_, host::writeInterfaceJson(shader));
  }

  JobOptions options_;
  TargetOptions target_;
  host::ShaderStage stage_ = host::ShaderStage::pixel;
  host::MeshLayout mesh_;
  host::NameStyle names_ = host::NameStyle::readable;
  std::string output_;
  std::string reflection_;
  DepfileOptions depfile_;
};

}  // namespace

std::unique_ptr<Command> makeCompileCommand(CLI::App& parent) {
  return std::make_unique<CompileCommand>(parent);
}

}  // namespace TolmSDK::Graphics::sfg::tools
