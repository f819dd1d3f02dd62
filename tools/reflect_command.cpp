#include "sfg/host/compile.h"
#include "sfg/host/reflect.h"
#include "tools/collapse_options.h"
#include "tools/command.h"
#include "tools/output_file.h"
#include "tools/target_options.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

constexpr const char* kReflectNotes =
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
    "  sfg reflect brick.json -L library -I library --pack brick.bin --set pattern.mortar=0.1\n\n"
    "writes what the buffer `sfg_Uniforms` holds with another width of mortar: nothing is compiled, and the "
    "bytes "
    "are the\n"
    "same for every target. Each value takes as many numbers as it has components, a matrix row by row.\n\n"
    "Exit status: 0 done; 1 the collapse or a compiler refused; 2 wrong usage or unreadable input.\n";

class ReflectCommand : public Command {
public:
  explicit ReflectCommand(CLI::App& parent)
      : Command(*parent.add_subcommand(
            "reflect", "Tell what a shader takes and gives, and where, for the host that feeds it")) {
    declareJobOptions(app(), options_);
    TargetChoices targets = compiledTargets();
    targets.emplace_back("assembled", std::nullopt);
    declareTargetOptions(app(), targets, "as for `compile`; `assembled`: before any compiler", target_);
    declareStageOption(app(), stage_);
    declareMeshOption(app(), mesh_);
    declareNamesOption(app(), names_);
    declareOutputOption(app(), output_);
    CLI::Option* const pack =
        app()
            .add_option("--pack", packed_,
                        "write the bytes of a constant buffer to a file, instead of the description")
            ->type_name("FILE");
    app()
        .add_option("--set", settingTexts_,
                    "a value in the packed buffer: `node.input=1,2,3`, `light.input=true`; others are as the "
                    "graph gives them; repeatable")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false)
        ->needs(pack);
    app()
        .add_option("--buffer", bufferName_, "the buffer to pack")
        ->type_name("NAME")
        ->capture_default_str()
        ->needs(pack);
    app().footer(kReflectNotes);
  }

  int run(Diagnostics& diagnostics) override {
    checkTargetOptions(target_, stage_);
    if (const std::string given = givenTargetOption(target_); !packed_.empty() && !given.empty()) {
      throw host::InputError("`--pack` compiles nothing, and its bytes are the same with `" + given + "`");
    }
    checkOutputs(options_, {output_, packed_});
    ReadJob read = makeJob(options_, diagnostics);
    host::Job& job = read.job;
    if (collapse(job, true, diagnostics) != Outcome::done) return kRefused;
    const std::optional<host::Shader> shader =
        assemble(job, options_.graphFile, stage_, names_, mesh_, diagnostics);
    if (!shader) return kRefused;
    try {
      if (!packed_.empty()) {
        writeOutput(packed_, pack(job.reflect(stage_, names_, mesh_)));
      } else {
        writeOutput(output_, host::writeInterfaceJson(reflect(job, *shader)));
      }
    } catch (const host::CompileError& error) {
      diagnostics.show(job.explain(*shader, error));
      return kRefused;
    } catch (const host::PackError& error) {
      throw host::InputError(std::string(), TextPosition(), error.what(), "bad-setting");
    }
    return kDone;
  }

private:
  /// Offsets are the same in every target.
  std::string pack(const host::ShaderInterface& shader) const {
    std::vector<host::ValueSetting> settings;
    for (const std::string& text : settingTexts_) settings.push_back(host::parseSetting(text));
    const std::vector<std::uint8_t> bytes = host::packBuffer(host::findBuffer(shader, bufferName_), settings);
    return {bytes.begin(), bytes.end()};
  }

  host::ShaderInterface reflect(const host::Job& job, const host::Shader& shader) const {
    host::ShaderInterface assembled = job.reflect(stage_, names_, mesh_);
    if (!target_.target) return assembled;
    const host::CompileOptions options = target_.compileOptions();
    host::ShaderInterface compiled = host::interfaceFor(assembled, *target_.target, options);
    host::markUsed(compiled, host::compileToSpirv(shader, options));
    return compiled;
  }

  JobOptions options_;
  TargetOptions target_;
  host::ShaderStage stage_ = host::ShaderStage::pixel;
  host::MeshLayout mesh_;
  host::NameStyle names_ = host::NameStyle::readable;
  std::string output_;
  std::string packed_;
  std::string bufferName_ = "sfg_Uniforms";
  std::vector<std::string> settingTexts_;
};

}  // namespace

std::unique_ptr<Command> makeReflectCommand(CLI::App& parent) {
  return std::make_unique<ReflectCommand>(parent);
}

}  // namespace TolmSDK::Graphics::sfg::tools
