#include "tools/collapse_options.h"
#include "tools/command.h"
#include "tools/manual_page.h"
#include "tools/option_table.h"
#include "tools/output_file.h"
#include "tools/shell_completion.h"
#include "tools/version_line.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

constexpr const char* kCompletionNotes =
    "Example:\n\n"
    "  source <(sfg completion bash)                        now, in bash\n"
    "  sfg completion zsh > \"${fpath[1]}/_sfg\"              from the next zsh on\n"
    "  sfg completion fish > ~/.config/fish/completions/sfg.fish\n\n"
    "An installation has them where the shells look.\n";

class CompletionCommand : public Command {
public:
  explicit CompletionCommand(CLI::App& parent)
      : Command(*parent.add_subcommand("completion",
                                       "Write a script that completes this command's line in a shell")),
        program_(parent) {
    declareChoice<Writer>(app(), "SHELL",
                          {{"bash", bashCompletion}, {"zsh", zshCompletion}, {"fish", fishCompletion}},
                          write_, "which shell")
        ->required();
    declareOutputOption(app(), output_);
    app().footer(kCompletionNotes);
  }

  int run(Diagnostics&) override {
    writeOutput(output_, write_(optionTable(program_)));
    return kDone;
  }

private:
  using Writer = std::string (*)(const std::vector<CommandEntry>&);

  const CLI::App& program_;
  Writer write_ = bashCompletion;
  std::string output_;
};

class ManualCommand : public Command {
public:
  explicit ManualCommand(CLI::App& parent)
      : Command(*parent.add_subcommand("manual", "Write the manual page (troff)")), program_(parent) {
    declareOutputOption(app(), output_);
    app().footer("Example:\n\n  sfg manual -o sfg.1 && man ./sfg.1\n");
  }

  int run(Diagnostics&) override {
    writeOutput(output_, manualPage(optionTable(program_), versionLine().substr(sizeof("sfg ") - 1)));
    return kDone;
  }

private:
  const CLI::App& program_;
  std::string output_;
};

}  // namespace

std::unique_ptr<Command> makeCompletionCommand(CLI::App& parent) {
  return std::make_unique<CompletionCommand>(parent);
}

std::unique_ptr<Command> makeManualCommand(CLI::App& parent) {
  return std::make_unique<ManualCommand>(parent);
}

}  // namespace TolmSDK::Graphics::sfg::tools
