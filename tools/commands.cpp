#include "tools/command.h"

namespace TolmSDK::Graphics::sfg::tools {

std::vector<std::unique_ptr<Command>> makeCommands(CLI::App& parent) {
  std::vector<std::unique_ptr<Command>> commands;
  commands.push_back(makeCollapseCommand(parent));
  commands.push_back(makeCompileCommand(parent));
  commands.push_back(makeReflectCommand(parent));
  commands.push_back(makeGraphCommand(parent));
  commands.push_back(makeBuildCommand(parent));
  commands.push_back(makeWatchCommand(parent));
  commands.push_back(makeEmbedCommand(parent));
  commands.push_back(makeImportCommand(parent));
  commands.push_back(makeRenderCommand(parent));
  commands.push_back(makeDocsCommand(parent));
  commands.push_back(makeCheckCommand(parent));
  commands.push_back(makeSchemaCommand(parent));
  commands.push_back(makeReferenceCommand(parent));
  commands.push_back(makeListCommand(parent));
  commands.push_back(makeDumpCommand(parent));
  commands.push_back(makeLspCommand(parent));
  commands.push_back(makeNewCommand(parent));
  commands.push_back(makeCompletionCommand(parent));
  commands.push_back(makeManualCommand(parent));
  return commands;
}

}  // namespace TolmSDK::Graphics::sfg::tools
