#pragma once

// The subcommands of `sfg`. Each declares its options once, bound to where they go: parsing, help and the
// manual come from that declaration.

#include <CLI/CLI.hpp>

#include <memory>
#include <string>
#include <vector>

#include "tools/diagnostics.h"

namespace TolmSDK::Graphics::sfg::tools {

// Exit statuses.
inline constexpr int kDone = 0;
inline constexpr int kRefused = 1;
inline constexpr int kWrongUsage = 2;

class Command {
public:
  virtual ~Command() = default;
  /// Runs with the options parsed; answers the exit status. May throw host::InputError.
  virtual int run(Diagnostics& diagnostics) = 0;
  /// The parser that declares this command.
  CLI::App& app() const noexcept { return app_; }

protected:
  explicit Command(CLI::App& app) : app_(app) {}

private:
  CLI::App& app_;
};

std::unique_ptr<Command> makeCollapseCommand(CLI::App& parent);
std::unique_ptr<Command> makeCompileCommand(CLI::App& parent);
std::unique_ptr<Command> makeDocsCommand(CLI::App& parent);
std::unique_ptr<Command> makeGraphCommand(CLI::App& parent);
std::unique_ptr<Command> makeImportCommand(CLI::App& parent);
std::unique_ptr<Command> makeRenderCommand(CLI::App& parent);
std::unique_ptr<Command> makeReflectCommand(CLI::App& parent);
std::unique_ptr<Command> makeBuildCommand(CLI::App& parent);
std::unique_ptr<Command> makeCheckCommand(CLI::App& parent);
std::unique_ptr<Command> makeReferenceCommand(CLI::App& parent);
std::unique_ptr<Command> makeSchemaCommand(CLI::App& parent);
std::unique_ptr<Command> makeListCommand(CLI::App& parent);
std::unique_ptr<Command> makeDumpCommand(CLI::App& parent);
std::unique_ptr<Command> makeLspCommand(CLI::App& parent);
std::unique_ptr<Command> makeWatchCommand(CLI::App& parent);
std::unique_ptr<Command> makeEmbedCommand(CLI::App& parent);
std::unique_ptr<Command> makeNewCommand(CLI::App& parent);
std::unique_ptr<Command> makeCompletionCommand(CLI::App& parent);
std::unique_ptr<Command> makeManualCommand(CLI::App& parent);

/// All commands, in the order in which help lists them.
std::vector<std::unique_ptr<Command>> makeCommands(CLI::App& parent);

}  // namespace TolmSDK::Graphics::sfg::tools
