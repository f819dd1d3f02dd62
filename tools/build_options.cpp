#include "tools/build_options.h"

#include <algorithm>
#include <charconv>
#include <filesystem>

#include "sfg/host/check.h"
#include "sfg/host/errors.h"
#include "tools/standard_library.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

namespace fs = std::filesystem;

/// Nothing but digits; false for anything else.
bool readNumber(std::string_view text, std::uint64_t& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size();
}

host::BuildShard shardOf(const std::string& text) {
  const std::size_t slash = text.find('/');
  std::uint64_t index = 0;
  std::uint64_t count = 0;
  if (slash == text.npos || !readNumber(text.substr(0, slash), index) ||
      !readNumber(text.substr(slash + 1), count) || index == 0 || index > count) {
    throw CLI::ValidationError("--shard", "`" + text + "` is no shard; expected `I/N`, from `1/N` to `N/N`");
  }
  return {index, count};
}

/// "500M": with a letter for 2^10, 2^20, 2^30 or 2^40.
std::uint64_t sizeOf(const std::string& text) {
  constexpr std::string_view kLetters = "KMGT";
  const std::size_t letter = text.empty() ? kLetters.npos : kLetters.find(text.back());
  const unsigned shift = letter == kLetters.npos ? 0 : 10 * (static_cast<unsigned>(letter) + 1);
  std::uint64_t number = 0;
  const std::string digits = shift == 0 ? text : text.substr(0, text.size() - 1);
  if (!readNumber(digits, number) || number > (~std::uint64_t{0} >> shift))
    throw CLI::ValidationError("--cache-size", "`" + text + "` is no size; expected `2G`, `500M`, ..");
  return number << shift;
}

void declareWords(CLI::App& app, const char* names, std::vector<std::string>& words, const char* type,
                  const char* help) {
  app.add_option(names, words, help)->type_name(type)->delimiter(',')->allow_extra_args(false);
}

/// The first option that stands for something that a manifest says; empty without one.
std::string givenWord(const host::ManifestWords& words) {
  if (!words.environments.empty()) return "--environment";
  if (!words.stages.empty()) return "--stage";
  if (!words.targets.empty()) return "--target";
  return words.tool.empty() ? "" : "--tool";
}

/// What cannot be read, as while it is edited, is what the other options take it for.
bool isManifest(const BuildCommandOptions& options) {
  std::error_code error;
  if (fs::is_directory(options.manifest, error)) return false;
  const auto kind = host::documentKindOf(host::Document::fromFile(options.manifest));
  if (!kind) return givenWord(options.words).empty();
  return *kind != host::DocumentKind::graph;
}

host::Document documentOf(const BuildCommandOptions& options) {
  if (isManifest(options)) {
    if (const std::string given = givenWord(options.words); !given.empty()) {
      throw host::InputError("`" + given + "` is for graphs and folders; a manifest says it itself");
    }
    return host::Document::fromFile(options.manifest);
  }
  host::ManifestWords words = options.words;
  words.graphs = {options.manifest};
  return host::makeManifest(words);
}

}  // namespace

host::BuildOptions BuildCommandOptions::buildOptions() const {
  host::BuildOptions options;
  options.threads = threads;
  options.shard = shard;
  const fs::path folder = cacheFolder.empty() ? host::BuildCache::usualFolder() : fs::path(cacheFolder);
  if (!withoutCache && !folder.empty()) options.cache = std::make_shared<host::BuildCache>(folder, cacheSize);
  return options;
}

void declareBuildOptions(CLI::App& app, BuildCommandOptions& options) {
  app.add_option("MANIFEST", options.manifest, "manifest (JSON); or a graph, or a folder of graphs")
      ->type_name("PATH")
      ->required();
  app.add_option("-o,--output", options.outputFolder, "folder of the results, in place of the manifest's")
      ->type_name("DIR")
      ->default_str("shaders");
  declareLibraryOptions(app, options.libraries);
  declareWords(app, "--target", options.words.targets, "WORDS",
               "without a manifest: what shaders are compiled to, separated by commas: `spirv`, `hlsl`, "
               "`hlsl60`, `glsl`, `glsl330`, `essl`, `essl300`, `msl`, or `assembled` HLSL");
  declareWords(app, "--stage", options.words.stages, "WORDS",
               "without a manifest: the stages: `pixel`, `compute`, `vertex`");
  declareWords(app, "--environment", options.words.environments, "FILE",
               "without a manifest: an environment document (JSON); repeatable");
  app.add_option("--tool", options.words.tool, "without a manifest: what collapses the graphs")
      ->type_name("default|lightloop")
      ->check(CLI::IsMember({"default", "lightloop"}))
      ->default_str("default");
  app.add_option("--jobs", options.threads, "how many threads build")
      ->type_name("N")
      ->check(CLI::Range(1, 1024))
      ->default_str("as many as the machine has");
  app.add_option_function<std::string>(
         "--shard", [&options](const std::string& text) { options.shard = shardOf(text); },
         "build the I-th of N parts; all parts together are the whole")
      ->type_name("I/N");
  app.add_option("--cache", options.cacheFolder, "folder of the cache, which machines may share")
      ->type_name("DIR")
      ->default_str("$XDG_CACHE_HOME/sfg, or ~/.cache/sfg");
  app.add_option_function<std::string>(
         "--cache-size", [&options](const std::string& text) { options.cacheSize = sizeOf(text); },
         "how large the cache may be; what was used longest ago leaves")
      ->type_name("SIZE")
      ->default_str("2G");
  app.add_flag("--no-cache", options.withoutCache, "neither take from a cache nor keep anything there");
}

host::BuildPlan makePlan(const BuildCommandOptions& options, Diagnostics& diagnostics) {
  host::PlanOptions planOptions;
  foldersOf(options.libraries, {}, diagnostics);
  planOptions.folders.libraries = pathsOf(options.libraries.libraryFolders);
  planOptions.folders.includes = pathsOf(options.libraries.includeFolders);
  planOptions.language = options.libraries.language;
  planOptions.outputFolder = options.outputFolder;
  host::BuildPlan plan = host::readManifest(documentOf(options), planOptions);
  if (!options.libraries.withoutStandard) addStandardLibrary(plan.folders, findStandardLibrary());
  diagnostics.show(plan.problems);
  return plan;
}

}  // namespace TolmSDK::Graphics::sfg::tools
