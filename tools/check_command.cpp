#include <algorithm>
#include <filesystem>
#include <iostream>
#include <thread>

#include "sfg/host/check.h"
#include "sfg/host/errors.h"
#include "tools/check_materials.h"
#include "tools/collapse_options.h"
#include "tools/command.h"
#include "tools/material_graph.h"
#include "tools/output_file.h"
#include "tools/progress_line.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

namespace fs = std::filesystem;

constexpr const char* kCheckNotes =
    "Example:\n\n"
    "  sfg check library examples\n"
    "  sfg check materials -L library -I library --strict --format sarif -o findings.sarif\n\n"
    "PATH is a library (*.fraglib), a graph, an environment, or a folder, of which all of these are checked, "
    "with the\n"
    "folders in it. Libraries that are checked are also loaded, with the include files beside them: graphs "
    "may "
    "use them.\n"
    "Every profile of every fragment is compiled alone, with inputs connected and not where its code asks "
    "for "
    "that.\n"
    "Graphs are collapsed by the tools that they are meant for, under lights of the libraries unless "
    "`--environment` is\n"
    "given. A key that no reader knows is an error here.\n\n"
    "MaterialX documents (*.mtlx) are checked, too: every material is brought, collapsed and assembled, and "
    "nothing of it\n"
    "compiled.\n\n"
    "Exit status: 0 nothing but warnings, with `--strict` nothing at all but notes; 1 errors; 2 wrong usage, "
    "or "
    "a PATH\n"
    "that is not there.\n";

enum class CheckFormat { text, json, sarif };

/// How many per cent are done.
class CheckProgress {
public:
  explicit CheckProgress(bool isShown) : isShown_(isShown) {}

  void show(std::size_t done, std::size_t all) {
    const std::size_t percent = done * 100 / std::max<std::size_t>(all, 1);
    if (!isShown_ || percent == percent_) return;
    percent_ = percent;
    line_.show("checking: " + std::to_string(percent) + "%");
  }

private:
  static constexpr std::size_t kNone = 101;
  ProgressLine line_;
  bool isShown_;
  std::size_t percent_ = kNone;
};

std::string counted(std::size_t count, const char* what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::size_t countOf(const host::CheckResult& result, host::Severity severity) {
  return static_cast<std::size_t>(
      std::count_if(result.diagnostics.begin(), result.diagnostics.end(),
                    [&](const host::Diagnostic& diagnostic) { return diagnostic.severity == severity; }));
}

/// "412 profiles of 265 fragments, 16 graphs, 4 environments: 0 errors, 0 warnings", with what else was
/// counted in front of the colon.
std::string summaryOf(const host::CheckResult& result, const std::string& more) {
  const host::CheckCounts& counts = result.counts;
  std::string text =
      counted(counts.profiles, "profile") + " of " + counted(counts.fragments, "fragment") + ", ";
  text += counted(counts.graphs, "graph") + ", " + counted(counts.environments, "environment") + more + ": ";
  text += counted(countOf(result, host::Severity::error), "error") + ", ";
  return text + counted(countOf(result, host::Severity::warning), "warning") + "\n";
}

class CheckCommand : public Command {
public:
  explicit CheckCommand(CLI::App& parent)
      : Command(*parent.add_subcommand("check", "Find mistakes in libraries, graphs and environments")) {
    app()
        .add_option("PATH", paths_, "library, graph, environment, MaterialX document, or folder of these")
        ->type_name("PATH")
        ->required();
    declareLibraryOptions(app(), libraries_);
    declareChoice<std::optional<host::CollapseTool>>(
        app(), "--tool",
        {{"auto", std::nullopt},
         {"default", host::CollapseTool::standard},
         {"lightloop", host::CollapseTool::lightLoop}},
        tool_, "tool that collapses the graphs; `auto`: those that each graph is meant for");
    app()
        .add_option("--environment", environment_,
                    "environment document (JSON) whose lights light the graphs")
        ->type_name("FILE");
    declareChoice<CheckFormat>(
        app(), "--format",
        {{"text", CheckFormat::text}, {"json", CheckFormat::json}, {"sarif", CheckFormat::sarif}}, format_,
        "`text`: findings on the standard error stream, then a summary; `json`: findings "
        "and counts; `sarif`: "
        "SARIF 2.1.0");
    declareOutputOption(app(), output_);
    app().add_flag("--strict", isStrict_, "exit status 1 for warnings, too");
    app()
        .add_option("--jobs", jobs_, "how many threads check")
        ->type_name("N")
        ->check(CLI::Range(1, 1024))
        ->default_str("as many as the machine has");
    app().footer(kCheckNotes);
  }

  int run(Diagnostics& diagnostics) override {
    std::vector<std::string> others = paths_;
    const std::vector<std::string> materials = takeMaterialDocuments(others);
    const host::CheckPaths paths = host::findCheckPaths(others);
    std::vector<std::string> inputs = paths.files.libraries;
    inputs.insert(inputs.end(), paths.files.graphs.begin(), paths.files.graphs.end());
    inputs.insert(inputs.end(), paths.files.environments.begin(), paths.files.environments.end());
    inputs.insert(inputs.end(), materials.begin(), materials.end());
    inputs.push_back(environment_);
    checkOutputs(std::vector{output_}, inputs);

    host::CheckOptions options;
    options.folders = foldersOf(libraries_, paths.folders, diagnostics);
    options.language = libraries_.language;
    options.tool = tool_;
    if (!environment_.empty()) options.environment = host::Document::fromFile(environment_);
    host::CheckResult result = check(std::move(options), paths);
    std::string more;
    if (!materials.empty()) {
      const MaterialCheck found = checkMaterials(materials, loadMaterialLibraries(libraries_, diagnostics));
      result.diagnostics.insert(result.diagnostics.end(), found.diagnostics.begin(), found.diagnostics.end());
      more = ", " + counted(found.materials, "material");
      more += " of " + counted(found.documents, "MaterialX document");
    }
    write(result, more, diagnostics);
    const bool hasErrors = countOf(result, host::Severity::error) != 0;
    const bool hasWarnings = countOf(result, host::Severity::warning) != 0;
    return hasErrors || (isStrict_ && hasWarnings) ? kRefused : kDone;
  }

private:
  host::CheckResult check(host::CheckOptions options, const host::CheckPaths& paths) const {
    const host::Checker checker(std::move(options));
    CheckProgress progress(format_ == CheckFormat::text);
    host::CheckResult result = checker.check(
        paths.files, jobs_, [&](std::size_t done, std::size_t all) { progress.show(done, all); });
    return host::withProblems(std::move(result), paths.problems);
  }

  void write(const host::CheckResult& result, const std::string& more, Diagnostics& diagnostics) const {
    if (format_ == CheckFormat::json) return writeOutput(output_, host::toJson(result));
    if (format_ == CheckFormat::sarif) return writeOutput(output_, host::toSarif(result));
    diagnostics.show(result.diagnostics);
    writeOutput(output_, summaryOf(result, more));
  }

  std::vector<std::string> paths_;
  LibraryOptions libraries_;
  std::optional<host::CollapseTool> tool_;
  std::string environment_;
  CheckFormat format_ = CheckFormat::text;
  std::string output_;
  bool isStrict_ = false;
  std::size_t jobs_ = std::max(1u, std::thread::hardware_concurrency());
};

}  // namespace

std::unique_ptr<Command> makeCheckCommand(CLI::App& parent) { return std::make_unique<CheckCommand>(parent); }

}  // namespace TolmSDK::Graphics::sfg::tools
