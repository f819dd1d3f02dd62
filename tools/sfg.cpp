#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <iostream>
#include <system_error>

#include "sfg/host/compile.h"
#include "sfg/host/errors.h"
#include "tools/collapse_options.h"
#include "tools/command.h"
#include "tools/version_line.h"

namespace {

namespace tools = TolmSDK::Graphics::sfg::tools;
namespace host = TolmSDK::Graphics::sfg::host;

constexpr const char* kExample =
    "Example: a material of the examples, first as HLSL, then as a SPIR-V module.\n\n"
    "  sfg collapse examples/materials/brick.json -L library -I library\n"
    "  sfg compile examples/materials/brick.json -L library -I library --target spirv -o brick.spv\n\n"
    "`sfg collapse --help` shows how fragments and graphs are written.\n";

/// The parser's messages in the form of all diagnostics.
std::string asDiagnostic(std::string text) {
  if (const std::size_t end = text.find_last_not_of(". \n"); end != text.npos) text.resize(end + 1);
  const auto isUpper = [&text](std::size_t i) { return i < text.size() && text[i] >= 'A' && text[i] <= 'Z'; };
  if (isUpper(0) && !isUpper(1)) text[0] = static_cast<char>(text[0] - 'A' + 'a');
  return text;
}

/// The compilers' spelling of two options: the parser knows one dash in front of one letter only.
std::vector<std::string> spelledForParser(int argc, char** argv) {
  std::vector<std::string> arguments(argv + 1, argv + argc);
  for (std::string& argument : arguments) {
    if (argument == "-MD" || argument == "-MF" || argument == "-MT") argument.insert(0, "-");
  }
  return arguments;
}

/// The first of the arguments that nobody expects, options in front of others: what follows an unknown option
/// may belong to it.
std::string unexpected(const std::vector<std::string>& arguments) {
  const auto option = std::find_if(arguments.begin(), arguments.end(),
                                   [](const std::string& argument) { return argument.starts_with("-"); });
  return option != arguments.end() ? option->substr(0, option->find('=')) : arguments.front();
}

/// What is unknown, and what was meant.
std::string describeUnexpected(const CLI::App& app) {
  const auto chosen = app.get_subcommands();
  const CLI::App& owner = chosen.empty() ? app : *chosen.front();
  std::vector<std::string> rest = app.remaining(true);
  if (rest.empty()) return "an argument was not expected";
  const std::string word = unexpected(rest);
  std::vector<std::string> known;
  if (word.starts_with("-")) {
    const bool isKnown = owner.get_option_no_throw(word) != nullptr;
    if (!chosen.empty() && isKnown)
      return "the option `" + word + "` stands in front of the command; write `sfg " + owner.get_name() +
             " " + word + " ..`";
    for (const CLI::Option* const option : owner.get_options()) {
      for (const std::string& name : option->get_lnames()) known.push_back("--" + name);
    }
    return "unknown option `" + word + "` of `sfg" + (chosen.empty() ? "" : " " + owner.get_name()) + "`" +
           tools::didYouMean(word, known);
  }
  if (!chosen.empty()) return "`" + word + "` was not expected behind the other arguments";
  for (const CLI::App* const command : app.get_subcommands({})) known.push_back(command->get_name());
  return "unknown command `" + word + "`" + tools::didYouMean(word, known);
}

/// Help and version leave through the parser's exceptions, too.
int answerParseError(const CLI::App& app, const CLI::ParseError& error, tools::Diagnostics& diagnostics) {
  if (error.get_exit_code() == 0) return app.exit(error, std::cout, std::cerr);
  const bool isUnexpected = dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr;
  diagnostics.error(std::string(), isUnexpected ? describeUnexpected(app) : asDiagnostic(error.what()),
                    "wrong-usage");
  diagnostics.plain("try `sfg --help`, or `sfg COMMAND --help`");
  return tools::kWrongUsage;
}

int runChosen(const std::vector<std::unique_ptr<tools::Command>>& commands,
              tools::Diagnostics& diagnostics) try {
  for (const auto& command : commands) {
    if (command->app().parsed()) return command->run(diagnostics);
  }
  return tools::kWrongUsage;
} catch (const host::InputError& error) {
  std::vector<host::Diagnostic> told(error.related().begin(), error.related().end());
  told.push_back(error.diagnostic());
  diagnostics.show(told);
  return tools::kWrongUsage;
} catch (const std::bad_alloc&) {
  diagnostics.error(std::string(), "out of memory", "out-of-memory");
  return tools::kRefused;
} catch (const std::exception& error) {
  diagnostics.error(std::string(), error.what(), "failure");
  return tools::kRefused;
}

int runProgram(int argc, char** argv, tools::Diagnostics& diagnostics) {
  CLI::App app("Collapses graphs of shader fragments into one shader function.", "sfg");
  app.set_version_flag("--version", tools::versionLine());
  app.footer(kExample);
  app.require_subcommand(0, 1);
  const auto commands = tools::makeCommands(app);
  try {
    // The parser takes them from the end.
    std::vector<std::string> arguments = spelledForParser(argc, argv);
    std::reverse(arguments.begin(), arguments.end());
    app.parse(arguments);
  } catch (const CLI::ParseError& error) {
    return answerParseError(app, error, diagnostics);
  }
  if (!app.get_subcommands().empty()) return runChosen(commands, diagnostics);
  std::cout << app.help();
  return tools::kDone;
}

/// Help, descriptions and dumps go to the standard output stream without looking back.
void checkStandardOutput() {
  std::string reason = "the stream is closed or full";
  errno = 0;
  if (std::cout.good() && std::cout.flush() && std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return;
  if (errno != 0) reason = std::error_code(errno, std::generic_category()).message();
  throw host::InputError("standard output", TolmSDK::TextPosition(), "cannot be written: " + reason,
                         "cannot-write");
}

}  // namespace

int main(int argc, char** argv) {
  tools::Diagnostics diagnostics = tools::Diagnostics::standard();
  // A compiler that crashes is told as what it is.
  host::isolateCompilers();
  const int status = runProgram(argc, argv, diagnostics);
  if (status != tools::kDone) return status;
  try {
    checkStandardOutput();
  } catch (const host::InputError& error) {
    diagnostics.show(error.diagnostic());
    return tools::kWrongUsage;
  }
  return status;
}
