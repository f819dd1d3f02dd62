#include "host/input_error.h"
#include "host/output_file.h"
#include "host/shader/buffer_packing.h"
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
    app().footer(kNotes);
  }

  int run(host::Diagnostics& diagnostics) override {
    host::CollapseJob job(settings_);
    if (collapse(job, true, diagnostics) != Outcome::done) return kRefused;
    const std::optional<host::AssembledShader> assembled = assemble(job, stage_, names_, diagnostics);
    if (!assembled) return kRefused;
    try {
      if (!packed_.empty()) {
        host::writeOutput(packed_, pack(assembled->reflection));
        return kDone;
      }
      const host::ShaderInterface shader = reflect(*assembled);
      host::writeOutput(output_, host::writeInterfaceJson(shader, sourceFiles(job, shader.includes)));
    } catch (const host::CompileError& error) {
      reportCompileError(job, *assembled, error, diagnostics);
      return kRefused;
    } catch (const host::PackError& error) {
      throw host::InputError(error.what());
    }
    return kDone;
  }

private:
  /// Offsets are the same in every target.
  std::string pack(const host::ShaderInterface& shader) const {
    std::vector<host::ValueSetting> settings;
    for (const std::string& text : settingTexts_) settings.push_back(host::parseSetting(text));
    const std::vector<std::uint8_t> bytes = host::packBuffer(findBuffer(shader), settings);
    return {bytes.begin(), bytes.end()};
  }

  const host::InterfaceBuffer& findBuffer(const host::ShaderInterface& shader) const {
    std::vector<std::string> names;
    for (const host::InterfaceBuffer& buffer : shader.buffers) {
      if (buffer.name == bufferName_) return buffer;
      names.push_back(buffer.name);
    }
    throw host::PackError("the shader has no buffer `" + bufferName_ + "`" +
                          host::knownNamesHint(bufferName_, names));
  }

  host::ShaderInterface reflect(const host::AssembledShader& assembled) const {
    host::ShaderInterface shader = host::reflectShader(assembled, target_);
    if (!target_) return shader;
    host::markUsed(shader, host::compileToSpirv(toUtf8(assembled.shader.getCompleteShader()),
                                                assembled.entryPoint, stage_));
    return shader;
  }

  host::CollapseSettings settings_;
  std::optional<host::ShaderTarget> target_ = host::ShaderTarget::spirv;
  host::ShaderStage stage_ = host::ShaderStage::pixel;
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
