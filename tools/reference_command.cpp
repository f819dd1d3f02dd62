#include "sfg/host/reference.h"
#include "tools/collapse_options.h"
#include "tools/command.h"
#include "tools/output_file.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

using Topic = host::ReferenceTopic;

class ReferenceCommand : public Command {
public:
  explicit ReferenceCommand(CLI::App& parent)
      : Command(*parent.add_subcommand("reference",
                                       "Tell the keys of a document, the types, the state variables")) {
    declareChoice<Topic>(app(), "TOPIC",
                         {{"library", Topic::library},
                          {"graph", Topic::graph},
                          {"environment", Topic::environment},
                          {"manifest", Topic::manifest},
                          {"types", Topic::types},
                          {"state", Topic::state}},
                         topic_, "a document, `types`, or the `state` that code reads");
    app().get_option("TOPIC")->required()->default_str("");
    declareOutputOption(app(), output_);
    app().footer("Example:\n\n  sfg reference graph\n\nWritten is Markdown. For editors: `sfg schema`.\n");
  }

  int run(Diagnostics&) override {
    writeOutput(output_, host::referenceText(topic_));
    return kDone;
  }

private:
  Topic topic_ = Topic::library;
  std::string output_;
};

}  // namespace

std::unique_ptr<Command> makeReferenceCommand(CLI::App& parent) {
  return std::make_unique<ReferenceCommand>(parent);
}

}  // namespace TolmSDK::Graphics::sfg::tools
