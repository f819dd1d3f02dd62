#include "sfg/host/reflect.h"
#include "sfg/host/schema.h"
#include "tools/collapse_options.h"
#include "tools/command.h"
#include "tools/output_file.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

enum class Schema { library, graph, environment, manifest, reflection };

std::string textOf(Schema schema) {
  switch (schema) {
  case Schema::library: return host::documentSchema(host::DocumentKind::library);
  case Schema::graph: return host::documentSchema(host::DocumentKind::graph);
  case Schema::environment: return host::documentSchema(host::DocumentKind::environment);
  case Schema::manifest: return host::documentSchema(host::DocumentKind::manifest);
  case Schema::reflection: return host::interfaceSchemaJson();
  }
  return std::string();
}

class SchemaCommand : public Command {
public:
  explicit SchemaCommand(CLI::App& parent)
      : Command(*parent.add_subcommand("schema", "Print the JSON Schema of a document")) {
    declareChoice<Schema>(
        app(), "DOCUMENT",
        {{"library", Schema::library},
         {"graph", Schema::graph},
         {"environment", Schema::environment},
         {"manifest", Schema::manifest},
         {"reflection", Schema::reflection}},
        schema_,
        "what `sfg` reads: `library`, `graph`, `environment`, `manifest`; what `sfg reflect` writes: "
        "`reflection`");
    app().get_option("DOCUMENT")->required()->default_str("");
    declareOutputOption(app(), output_);
    app().footer("Example:\n\n  sfg schema graph -o graph.schema.json\n\n"
                 "An editor follows the key `$schema` of a document: \"$schema\": \"graph.schema.json\".\n");
  }

  int run(Diagnostics&) override {
    writeOutput(output_, textOf(schema_));
    return kDone;
  }

private:
  Schema schema_ = Schema::graph;
  std::string output_;
};

}  // namespace

std::unique_ptr<Command> makeSchemaCommand(CLI::App& parent) {
  return std::make_unique<SchemaCommand>(parent);
}

}  // namespace TolmSDK::Graphics::sfg::tools
