#include <algorithm>
#include <clocale>
#include <iomanip>
#include <iostream>
#include <sstream>

#include "sfg/host/errors.h"
#include "sfg/shader_fragment.h"
#include "tolmsdk/unicode.h"
#include "tools/collapse_options.h"
#include "tools/command.h"
#include "tools/output_file.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

class ListCommand : public Command {
public:
  explicit ListCommand(CLI::App& parent)
      : Command(*parent.add_subcommand("list", "List the fragments of libraries: name, place, description")) {
    declareLibraryOptions(app(), options_);
    app()
        .add_option("WORD", word_, "only fragments whose name or description holds this text")
        ->type_name("TEXT");
    app().footer("Example:\n\n  sfg list -L library noise\n");
  }

  int run(Diagnostics& diagnostics) override {
    std::vector<std::array<std::string, 3>> rows;
    const auto libraries = loadLibraries(options_, diagnostics);
    if (libraries->folders().libraries.empty()) {
      throw host::InputError("no folder of libraries is given (`-L DIR`)");
    }
    for (const host::FragmentInfo& fragment : libraries->fragments()) {
      const std::string text = fragment.name + " " + fragment.description;
      if (text.find(word_) == text.npos) continue;
      rows.push_back({fragment.name, fragment.place(), fragment.description});
    }
    writeOutput(std::string(), table(rows));
    const auto isError = [](const host::Diagnostic& problem) {
      return problem.severity == host::Severity::error;
    };
    const auto problems = libraries->problems();
    return std::any_of(problems.begin(), problems.end(), isError) ? kRefused : kDone;
  }

private:
  static std::string table(const std::vector<std::array<std::string, 3>>& rows) {
    std::size_t widths[2] = {0, 0};
    for (const auto& row : rows) {
      for (std::size_t i = 0; i < 2; ++i) widths[i] = std::max(widths[i], row[i].size());
    }
    std::string text;
    for (const auto& row : rows) {
      std::string line = row[0] + std::string(widths[0] - row[0].size() + 2, ' ') + row[1];
      if (!row[2].empty()) line += std::string(widths[1] - row[1].size() + 2, ' ') + row[2];
      text += line + "\n";
    }
    return text;
  }

  LibraryOptions options_;
  std::string word_;
};

class DumpCommand : public Command {
public:
  explicit DumpCommand(CLI::App& parent)
      : Command(*parent.add_subcommand("dump",
                                       "Describe fragments: uniforms, ports and the code of every profile")) {
    declareLibraryOptions(app(), options_);
    app().add_option("FRAGMENT", names_, "name of a fragment")->type_name("NAME")->required();
    app().footer("Example:\n\n  sfg dump -L library mixFloat3\n");
  }

  int run(Diagnostics& diagnostics) override {
    const auto libraries = loadLibraries(options_, diagnostics);
    // The description is wide text on the standard output stream.
    if (std::setlocale(LC_CTYPE, "C.UTF-8") == nullptr) std::setlocale(LC_CTYPE, "");
    int status = kDone;
    for (const std::string& name : names_) {
      const IShaderFragment* const fragment = libraries->language().findFragment(fromUtf8(name));
      if (fragment != nullptr) {
        dump(*fragment, libraries->language());
      } else {
        diagnostics.error(std::string(),
                          "unknown fragment `" + name + "`" + didYouMean(name, namesOf(*libraries)),
                          "unknown-fragment");
        status = kWrongUsage;
      }
    }
    return status;
  }

private:
  static std::vector<std::string> namesOf(const host::LibrarySet& libraries) {
    std::vector<std::string> names;
    for (const host::FragmentInfo& fragment : libraries.fragments()) names.push_back(fragment.name);
    return names;
  }

  /// With the ports that a node of it has.
  static void dump(const IShaderFragment& fragment, const ILanguageTraits& language) {
    const RefPtr<IShaderFragment> clone(fragment.clone(WString()));
    if (auto* const ours = dynamic_cast<AShaderFragment*>(clone.get()))
      ours->generateAutoInputsOutputs(&language);
    clone->debugDump();
  }

  LibraryOptions options_;
  std::vector<std::string> names_;
};

}  // namespace

std::unique_ptr<Command> makeListCommand(CLI::App& parent) { return std::make_unique<ListCommand>(parent); }

std::unique_ptr<Command> makeDumpCommand(CLI::App& parent) { return std::make_unique<DumpCommand>(parent); }

}  // namespace TolmSDK::Graphics::sfg::tools
