#include "tools/collapse_options.h"
#include "tools/command.h"
#include "tools/output_file.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

constexpr const char* kExample =
    "Example: one fragment, used by one node of a graph.\n\n"
    "  lib/tint.fraglib:\n"
    "    { \"tint\": { \"language\": [\"dx11\"], \"implementation\": [\n"
    "        \"void tint(float3 color, float amount, out float3 result)\",\n"
    "        \"{\",\n"
    "        \"  result = color * amount;\",\n"
    "        \"}\" ] } }\n\n"
    "  red.json:\n"
    "    { \"inputs\":  [ { \"name\": \"amount\", \"type\": \"float\" } ],\n"
    "      \"outputs\": [ { \"name\": \"color\", \"type\": \"float3\", \"node\": \"red\" } ],\n"
    "      \"nodes\":   [ { \"name\": \"red\", \"fragment\": \"tint\", \"inputs\": {\n"
    "                     \"color\": { \"constant\": [1, 0, 0] }, \"amount\": { \"graphInput\": \"amount\" } "
    "} } ] }\n\n"
    "  sfg collapse red.json -L lib                 a complete shader\n"
    "  sfg collapse red.json -L lib --format json   the generated function and what it needs\n\n"
    "Exit status: 0 done; 1 the collapse was refused; 2 wrong usage or unreadable input.\n";

enum class CollapseFormat { shader, json };

class CollapseCommand : public Command {
public:
  explicit CollapseCommand(CLI::App& parent)
      : Command(
            *parent.add_subcommand("collapse", "Collapse a graph of fragments into one shader function")) {
    declareJobOptions(app(), options_);
    declareChoice<CollapseFormat>(
        app(), "--format", {{"shader", CollapseFormat::shader}, {"json", CollapseFormat::json}}, format_,
        "`shader`: a complete shader; `json`: the generated function and what it needs, nothing assembled");
    declareStageOption(app(), stage_);
    declareMeshOption(app(), mesh_);
    declareNamesOption(app(), names_);
    declareOutputOption(app(), output_);
    declareDepfileOptions(app(), depfile_);
    app().footer(kExample);
  }

  int run(Diagnostics& diagnostics) override {
    checkOutputs(options_, {output_}, depfile_);
    ReadJob read = makeJob(options_, diagnostics);
    host::Job& job = read.job;
    switch (collapse(job, format_ == CollapseFormat::shader, diagnostics)) {
    case Outcome::thrown: return kRefused;
    case Outcome::null:
      if (format_ == CollapseFormat::json) writeOutput(output_, job.resultJson());
      return kRefused;
    case Outcome::done: break;
    }
    if (format_ == CollapseFormat::json) {
      writeOutput(output_, job.resultJson());
    } else {
      const std::optional<host::Shader> shader =
          assemble(job, options_.graphFile, stage_, names_, mesh_, diagnostics);
      if (!shader) return kRefused;
      writeOutput(output_, shader->text);
    }
    writeDepfile(depfile_, output_, read);
    return kDone;
  }

private:
  JobOptions options_;
  CollapseFormat format_ = CollapseFormat::shader;
  host::ShaderStage stage_ = host::ShaderStage::pixel;
  host::MeshLayout mesh_;
  host::NameStyle names_ = host::NameStyle::generated;
  std::string output_;
  DepfileOptions depfile_;
};

}  // namespace

std::unique_ptr<Command> makeCollapseCommand(CLI::App& parent) {
  return std::make_unique<CollapseCommand>(parent);
}

}  // namespace TolmSDK::Graphics::sfg::tools
