#include "tools/option_table.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

ArgumentKind argumentOf(const CLI::Option& option) {
  ArgumentKind kind;
  if (option.get_items_expected_max() == 0) return kind;
  kind.name = option.get_type_name();
  kind.isFile = kind.name == "FILE";
  kind.isFolder = kind.name == "DIR";
  if (kind.name.find('|') == kind.name.npos) return kind;
  kind.choices = CLI::detail::split(kind.name, '|');
  return kind;
}

OptionEntry entryOf(const CLI::Option& option) {
  OptionEntry entry;
  for (const std::string& name : option.get_snames()) entry.names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) entry.names.push_back("--" + name);
  entry.argument = argumentOf(option);
  entry.standard = option.get_default_str();
  entry.help = option.get_description();
  return entry;
}

CommandEntry entryOf(const CLI::App& command, const std::string& name) {
  CommandEntry entry;
  entry.name = name;
  entry.help = command.get_description();
  entry.notes = command.get_footer();
  for (const CLI::Option* option : command.get_options()) {
    (option->get_positional() ? entry.positionals : entry.options).push_back(entryOf(*option));
    if (option->get_positional()) entry.positionals.back().argument.name = option->get_name(true);
  }
  return entry;
}

}  // namespace

std::vector<CommandEntry> optionTable(const CLI::App& program) {
  std::vector<CommandEntry> table{entryOf(program, std::string())};
  for (const CLI::App* command : program.get_subcommands([](const CLI::App*) { return true; })) {
    table.push_back(entryOf(*command, command->get_name()));
  }
  return table;
}

}  // namespace TolmSDK::Graphics::sfg::tools
