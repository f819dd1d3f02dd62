#include "sfg/host/reflect.h"
#include "tools/collapse_options.h"
#include "tools/command.h"
#include "tools/output_file.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

enum class Schema { reflection };

class SchemaCommand : public Command {
public:
  explicit SchemaCommand(CLI::App& parent)
      : Command(*parent.add_subcommand("schema", "Print the JSON Schema of a document that sfg writes")) {
    declareChoice<Schema>(app(), "DOCUMENT", {{"reflection", Schema::reflection}}, schema_,
                          "`reflection`: what `sfg reflect` writes");
    app().get_option("DOCUMENT")->required()->default_str("");
    declareOutputOption(app(), output_);
    app().footer("Example:\n\n  sfg schema reflection -o reflection.schema.json\n");
  }

  int run(Diagnostics&) override {
    writeOutput(output_, host::interfaceSchemaJson());
    return kDone;
  }

private:
  Schema schema_ = Schema::reflection;
  std::string output_;
};

}  // namespace

std::unique_ptr<Command> makeSchemaCommand(CLI::App& parent) {
  return std::make_unique<SchemaCommand>(parent);
}

}  // namespace TolmSDK::Graphics::sfg::tools
