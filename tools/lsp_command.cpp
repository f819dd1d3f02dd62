#include <csignal>
#include <iostream>

#include "tools/command.h"
#include "tools/lsp/server.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

constexpr const char* kLspNotes =
    "An editor starts it and talks to it over the standard streams: mistakes while you type, completion,\n"
    "descriptions, definitions, symbols, renaming, quick fixes. `docs/editors.md` shows how to set up VS "
    "Code and\n"
    "Neovim.\n\n"
    "Without -L it takes the folders of the workspace that hold fragment libraries. The editor may send, as\n"
    "initialization options or as settings under `sfg`:\n\n"
    "  { \"libraries\": [\"fragments\"], \"includes\": [\"fragments\"], \"environment\": \"scene.json\" }\n";

class LspCommand : public Command {
public:
  explicit LspCommand(CLI::App& parent)
      : Command(*parent.add_subcommand("lsp", "Serve an editor: the language server protocol")) {
    declareFolders(
        "-L,--library", settings_.libraryFolders,
        "take the fragment libraries (*.fraglib) of a folder; a later folder overrides an earlier one");
    declareFolders("-I,--include", settings_.includeFolders, "take the include files (*.h) of a folder");
    app()
        .add_option("--environment", settings_.environment, "environment document (JSON) that lights graphs")
        ->type_name("FILE");
    app()
        .add_option("--language", settings_.language, "language to generate")
        ->type_name("NAME")
        ->capture_default_str();
    app().add_flag("--no-standard-library", settings_.withoutStandard,
                   "leave out the fragments and include files that are installed with the command");
    app().add_flag("--stdio", isStdio_, "what some editors add: the standard streams, which it always takes");
    app().footer(kLspNotes);
  }

  int run(Diagnostics&) override {
    // An editor that is gone ends the input, too.
    std::signal(SIGPIPE, SIG_IGN);
    std::ios::sync_with_stdio(false);
    std::cin.tie(nullptr);
    return lsp::serve(std::cin, std::cout, settings_);
  }

private:
  void declareFolders(const char* names, std::vector<std::string>& folders, const char* help) {
    app().add_option(names, folders, help)->type_name("DIR")->allow_extra_args(false);
  }

  lsp::Settings settings_;
  bool isStdio_ = false;
};

}  // namespace

std::unique_ptr<Command> makeLspCommand(CLI::App& parent) { return std::make_unique<LspCommand>(parent); }

}  // namespace TolmSDK::Graphics::sfg::tools
