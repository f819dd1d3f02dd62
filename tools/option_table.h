#pragma once

// The declared options of the command as plain data, from which other forms of help are written.

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace TolmSDK::Graphics::sfg::tools {

/// What may stand behind an option, or for a positional argument.
struct ArgumentKind {
  std::string name;                  ///< "FILE", "a|b"; empty for a flag
  std::vector<std::string> choices;  ///< of "a|b"
  bool isFolder = false;
  bool isFile = false;
};

struct OptionEntry {
  std::vector<std::string> names;  ///< as written, "-L", "--library"; none for a positional argument
  ArgumentKind argument;
  std::string standard;  ///< the default; empty without one
  std::string help;
};

struct CommandEntry {
  std::string name;  ///< empty for the program itself
  std::string help;
  std::string notes;  ///< what help ends with
  std::vector<OptionEntry> options;
  std::vector<OptionEntry> positionals;
};

/// The program first, then its commands, in the order of help.
std::vector<CommandEntry> optionTable(const CLI::App& program);

}  // namespace TolmSDK::Graphics::sfg::tools
