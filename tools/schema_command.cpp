#include "sfg/host/schema.h"
#include "tools/collapse_options.h"
#include "tools/command.h"
#include "tools/output_file.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

class SchemaCommand : public Command {
public:
  explicit SchemaCommand(CLI::App& parent)
      : Command(
            *parent.add_subcommand("schema", "Write the JSON Schema of a kind of document, for editors")) {
    using Kind = host::DocumentKind;
    declareChoice<Kind>(
        app(), "KIND",
        {{"library", Kind::library}, {"graph", Kind::graph}, {"environment", Kind::environment}}, kind_,
        "what to describe");
    app().get_option("KIND")->required();
    declareOutputOption(app(), output_);
    app().footer("Example:\n\n  sfg schema graph -o graph.schema.json\n\n"
                 "An editor follows the key `$schema` of a document: \"$schema\": \"graph.schema.json\".\n");
  }

  int run(Diagnostics&) override {
    writeOutput(output_, host::documentSchema(kind_));
    return kDone;
  }

private:
  host::DocumentKind kind_ = host::DocumentKind::graph;
  std::string output_;
};

}  // namespace

std::unique_ptr<Command> makeSchemaCommand(CLI::App& parent) {
  return std::make_unique<SchemaCommand>(parent);
}

}  // namespace TolmSDK::Graphics::sfg::tools
