#include "tools/manual_page.h"

#include <string_view>

namespace TolmSDK::Graphics::sfg::tools {

namespace {

/// Text that troff shows as it stands: no escapes, no hyphens of its own, no line that looks like a request.
std::string shown(std::string_view text) {
  std::string result;
  bool atLineStart = true;
  for (const char c : text) {
    if (atLineStart && (c == '.' || c == '\'')) result += "\\&";
    if (c == '\\') {
      result += "\\e";
    } else if (c == '-') {
      result += "\\-";
    } else {
      result += c;
    }
    atLineStart = c == '\n';
  }
  return result;
}

std::string optionText(const OptionEntry& option) {
  std::string names;
  for (const std::string& name : option.names) {
    names += (names.empty() ? "\\fB" : ", \\fB") + shown(name) + "\\fR";
  }
  if (!option.argument.name.empty()) names += " \\fI" + shown(option.argument.name) + "\\fR";
  std::string text = ".TP\n" + names + "\n" + shown(option.help);
  if (!option.standard.empty()) text += " (default: " + shown(option.standard) + ")";
  return text + "\n";
}

std::string commandText(const CommandEntry& command) {
  std::string text = ".SS sfg " + command.name + " [\\fIOPTIONS\\fR]";
  for (const OptionEntry& positional : command.positionals) {
    text += " \\fI" + shown(positional.argument.name) + "\\fR";
  }
  text += "\n" + shown(command.help) + ".\n";
  for (const OptionEntry& positional : command.positionals) text += optionText(positional);
  for (const OptionEntry& option : command.options) text += optionText(option);
  if (!command.notes.empty()) text += ".PP\n.nf\n" + shown(command.notes) + "\n.fi\n";
  return text;
}

}  // namespace

std::string manualPage(const std::vector<CommandEntry>& table, const std::string& version) {
  std::string text = ".TH SFG 1 \"\" \"sfg " + version + "\" \"User commands\"\n.SH NAME\n";
  text += "sfg \\- " + shown("write shaders from graphs of shader fragments") + "\n";
  text += ".SH SYNOPSIS\n.B sfg\n\\fICOMMAND\\fR [\\fIOPTIONS\\fR]\n.SH OPTIONS\n";
  for (const OptionEntry& option : table.front().options) text += optionText(option);
  text += ".SH COMMANDS\n";
  for (const CommandEntry& command : table) {
    if (!command.name.empty()) text += commandText(command);
  }
  text += ".SH EXIT STATUS\n.TP\n0\ndone\n.TP\n1\nthe graph or a shader was refused\n.TP\n2\n"
          "wrong usage or unreadable input\n";
  return text;
}

}  // namespace TolmSDK::Graphics::sfg::tools
