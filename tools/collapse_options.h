#pragma once

// Options shared by the commands that collapse a graph.

#include <CLI/CLI.hpp>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "sfg/host/job.h"
#include "tools/diagnostics.h"
#include "tools/did_you_mean.h"

namespace TolmSDK::Graphics::sfg::tools {

std::vector<std::filesystem::path> pathsOf(const std::vector<std::string>& folders);

/// An option that takes one of a few words, each of which stands for a value; the first is the default.
template <class Value>
CLI::Option* declareChoice(CLI::App& app, const std::string& names,
                           std::vector<std::pair<std::string, Value>> choices, Value& value,
                           const std::string& help) {
  std::string bar;
  std::string list;
  std::vector<std::string> words;
  for (const auto& [word, unused] : choices) {
    bar += (bar.empty() ? "" : "|") + word;
    words.push_back(word);
    list += (list.empty() ? "`" : ", `") + word + "`";
  }
  const std::string standard = choices.front().first;
  return app
      .add_option_function<std::string>(
          names,
          [choices, list, words, names, &value](const std::string& given) {
            for (const auto& [word, meaning] : choices) {
              if (word == given) return void(value = meaning);
            }
            throw CLI::ValidationError(names,
                                       "`" + given + "` is none of " + list + didYouMean(given, words));
          },
          help)
      ->type_name(bar)
      ->default_str(standard);
}

/// Which libraries a command works on. Paths and names are UTF-8.
struct LibraryOptions {
  std::vector<std::string> libraryFolders;
  std::vector<std::string> includeFolders;
  std::string language = "dx11";
  bool withoutStandard = false;
  bool verbose = false;
  Detail detail = Detail::standard;
};
/// -L, -I, --language, --no-standard-library, -v and --diagnostics.
void declareLibraryOptions(CLI::App& app, LibraryOptions& options);
/// The folders that the options name, `more` behind them, the installed ones in front of all. How much the
/// diagnostics show is set, too.
host::LibraryFolders foldersOf(const LibraryOptions& options, const host::LibraryFolders& more,
                               Diagnostics& diagnostics);
/// The libraries, whose problems are told with what follows; the installed ones come first, so that others
/// override them. Throws InputError.
std::shared_ptr<const host::LibrarySet> loadLibraries(const LibraryOptions& options,
                                                      Diagnostics& diagnostics);

/// What to collapse, and how; an empty path is one not given.
struct JobOptions {
  std::string graphFile;
  std::string material;  ///< of a MaterialX document
  LibraryOptions libraries;
  std::string environmentFile;
  host::CollapseOptions collapse;
};
/// GRAPH and everything that decides how it is collapsed; the tool that it holds is the default.
void declareJobOptions(CLI::App& app, JobOptions& options);
/// A job with everything read, and the files of its graph that it does not know of itself: those that a
/// MaterialX document is made of.
struct ReadJob {
  host::Job job;
  std::vector<std::string> graphFiles;
};
/// Throws InputError.
ReadJob makeJob(const JobOptions& options, Diagnostics& diagnostics);

/// --stage.
void declareStageOption(CLI::App& app, host::ShaderStage& stage);
/// --mesh.
void declareMeshOption(CLI::App& app, host::MeshLayout& mesh);
/// --names; what it holds is the default.
void declareNamesOption(CLI::App& app, host::NameStyle& names);
/// -o.
void declareOutputOption(CLI::App& app, std::string& file);

/// Whether and where to write a dependency file.
struct DepfileOptions {
  bool wanted = false;
  std::string file;
};
/// -MD and -MF.
void declareDepfileOptions(CLI::App& app, DepfileOptions& options);
/// Throws InputError when the outputs (empty names are none) or the dependency file of the first one would
/// replace what is read, or each other, and when a dependency file is wanted for a result that is in no file.
void checkOutputs(const JobOptions& options, std::vector<std::string> outputs,
                  const DepfileOptions& depfile = {});
/// Writes the dependency file, if one is wanted.
void writeDepfile(const DepfileOptions& options, const std::string& output, const ReadJob& read);

/// How a collapse ended: with a result, with the answer null, or with an exception of the generator or about
/// the graph's wires.
enum class Outcome { done, null, thrown };

/// Collapses. A refusal is written: the generator's message as it stands, and the place in the documents in a
/// line of its own; or one line for each wire that cannot be followed.
Outcome collapse(host::Job& job, bool completeShader, Diagnostics& diagnostics);

/// The complete shader of a job that is done; nothing when it cannot be one, which is then written.
std::optional<host::Shader> assemble(const host::Job& job, const std::string& graphFile,
                                     host::ShaderStage stage, host::NameStyle names,
                                     const host::MeshLayout& mesh, Diagnostics& diagnostics);

}  // namespace TolmSDK::Graphics::sfg::tools
