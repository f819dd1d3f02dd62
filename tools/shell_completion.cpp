#include "tools/shell_completion.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

std::string joined(const std::vector<std::string>& words, const char* between) {
  std::string text;
  for (const std::string& word : words) {
    if (!text.empty()) text += between;
    text += word;
  }
  return text;
}

/// In single quotes, which both zsh and fish read; the quote itself is left, entered again around a quoted
/// one.
std::string inQuotes(const std::string& text) {
  std::string result = "'";
  for (const char c : text) {
    if (c == '\'') {
      result += "'\\''";
    } else {
      result += c;
    }
  }
  return result + "'";
}

/// The help in one line without the signs that zsh reads as its own.
std::string zshHelp(const std::string& help) {
  std::string text;
  for (const char c : help) {
    if (c == '[' || c == ']' || c == ':' || c == '\\') text += '\\';
    text += c;
  }
  return text;
}

std::vector<std::string> commandNames(const std::vector<CommandEntry>& table) {
  std::vector<std::string> names;
  for (const CommandEntry& command : table) {
    if (!command.name.empty()) names.push_back(command.name);
  }
  return names;
}

/// Bash: what completes the word behind an option.
std::string bashWords(const ArgumentKind& argument) {
  std::string generator;
  if (!argument.choices.empty()) generator = "-W '" + joined(argument.choices, " ") + "'";
  if (argument.isFile) generator = "-f";
  if (argument.isFolder) generator = "-d";
  if (generator.empty()) return "COMPREPLY=()";
  return "mapfile -t COMPREPLY < <(compgen " + generator + " -- \"$word\")";
}

std::string bashCommand(const CommandEntry& command) {
  std::vector<std::string> names;
  std::string text = "    " + (command.name.empty() ? "''" : command.name) + ")\n";
  text += "      case \"$before\" in\n";
  for (const OptionEntry& option : command.options) {
    names.insert(names.end(), option.names.begin(), option.names.end());
    if (option.argument.name.empty()) continue;
    text += "        " + joined(option.names, " | ") + ") " + bashWords(option.argument) + "; return ;;\n";
  }
  text += "      esac\n";
  text += "      options='" + joined(names, " ") + "' ;;\n";
  return text;
}

/// zsh: what completes the word behind an option, and how it is called.
std::string zshWords(const ArgumentKind& argument) {
  std::string text = ":" + zshHelp(argument.name) + ":";
  if (!argument.choices.empty()) text += "(" + joined(argument.choices, " ") + ")";
  if (argument.isFile) text += "_files";
  if (argument.isFolder) text += "_files -/";
  return text;
}

std::string zshOption(const OptionEntry& option) {
  const std::string names =
      option.names.size() == 1 ? option.names.front() : "{" + joined(option.names, ",") + "}";
  std::string rest = "[" + zshHelp(option.help) + "]";
  if (!option.argument.name.empty()) rest += zshWords(option.argument);
  return "'*'" + names + inQuotes(rest);
}

std::string zshCommand(const CommandEntry& command) {
  std::string text = "    " + (command.name.empty() ? "''" : command.name) + ")\n      _arguments";
  for (const OptionEntry& option : command.options) text += " \\\n        " + zshOption(option);
  if (command.name.empty()) {
    text += " \\\n        '1:command:->command'";
  } else {
    text += " \\\n        '*:file:_files'";
  }
  return text + " ;;\n";
}

std::string fishOption(const std::string& command, const OptionEntry& option) {
  std::string line = "complete -c sfg -n ";
  line += inQuotes(command.empty() ? "__fish_use_subcommand" : "__fish_seen_subcommand_from " + command);
  for (const std::string& name : option.names) {
    line += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
  }
  if (!option.argument.choices.empty()) line += " -x -a " + inQuotes(joined(option.argument.choices, " "));
  if (option.argument.isFolder) line += " -x -a '(__fish_complete_directories)'";
  if (option.argument.isFile) line += " -r -F";
  if (option.argument.choices.empty() && !option.argument.isFile && !option.argument.isFolder &&
      !option.argument.name.empty()) {
    line += " -x";
  }
  return line + " -d " + inQuotes(option.help) + "\n";
}

}  // namespace

std::string bashCompletion(const std::vector<CommandEntry>& table) {
  std::string text =
      "# Completion of sfg for bash.\n"
      "_sfg() {\n"
      "  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} command='' options='' i\n"
      "  COMPREPLY=()\n"
      "  for ((i = 1; i < COMP_CWORD; ++i)); do\n"
      "    case ${COMP_WORDS[i]} in\n"
      "      " +
      joined(commandNames(table), " | ") +
      ") command=${COMP_WORDS[i]}; break ;;\n"
      "    esac\n"
      "  done\n"
      "  case \"$command\" in\n";
  for (const CommandEntry& command : table) text += bashCommand(command);
  return text +
         "  esac\n"
         "  if [[ $word == -* ]]; then\n"
         "    mapfile -t COMPREPLY < <(compgen -W \"$options\" -- \"$word\")\n"
         "  elif [ -z \"$command\" ]; then\n"
         "    mapfile -t COMPREPLY < <(compgen -W '" +
         joined(commandNames(table), " ") +
         "' -- \"$word\")\n"
         "  else\n"
         "    mapfile -t COMPREPLY < <(compgen -f -- \"$word\")\n"
         "  fi\n"
         "}\n"
         "complete -o filenames -F _sfg sfg\n";
}

std::string zshCompletion(const std::vector<CommandEntry>& table) {
  std::string text = "#compdef sfg\n"
                     "# Completion of sfg for zsh.\n"
                     "_sfg() {\n"
                     "  local state command='' word\n"
                     "  for word in ${words[2,CURRENT-1]}; do\n"
                     "    case $word in\n"
                     "      " +
                     joined(commandNames(table), " | ") +
                     ") command=$word; break ;;\n"
                     "    esac\n"
                     "  done\n"
                     "  case \"$command\" in\n";
  for (const CommandEntry& command : table) text += zshCommand(command);
  text += "  esac\n  [[ $state == command ]] || return\n  local -a commands=(";
  for (const CommandEntry& command : table) {
    if (!command.name.empty()) text += "\n    " + inQuotes(command.name + ":" + zshHelp(command.help));
  }
  return text + "\n  )\n  _describe command commands\n}\n_sfg \"$@\"\n";
}

std::string fishCompletion(const std::vector<CommandEntry>& table) {
  std::string text = "# Completion of sfg for fish.\n";
  for (const CommandEntry& command : table) {
    if (command.name.empty()) continue;
    text += "complete -c sfg -f -n '__fish_use_subcommand' -a " + command.name + " -d " +
            inQuotes(command.help) + "\n";
  }
  for (const CommandEntry& command : table) {
    for (const OptionEntry& option : command.options) text += fishOption(command.name, option);
  }
  return text;
}

}  // namespace TolmSDK::Graphics::sfg::tools
