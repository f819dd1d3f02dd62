#include "tools/collapse_options.h"

#include <algorithm>
#include <iterator>

#include "sfg/host/errors.h"
#include "tools/depfile.h"
#include "tools/material_graph.h"
#include "tools/output_file.h"
#include "tools/standard_library.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

/// A folder option: one folder each time, repeatable, in order.
void declareFolders(CLI::App& app, const char* names, std::vector<std::string>& folders, const char* help) {
  app.add_option(names, folders, help)->type_name("DIR")->allow_extra_args(false);
}

/// A level of detail: a finite number.
std::string checkFinite(const std::string& text) {
  char* end = nullptr;
  const float value = std::strtof(text.c_str(), &end);
  const bool finite = end != text.c_str() && *end == '\0' && value - value == 0.0f;
  return finite ? std::string() : "`" + text + "` is not a finite number";
}

struct MeshPart {
  const char* name;
  bool host::MeshLayout::*isGiven;
};
constexpr MeshPart kMeshParts[] = {
    {"normal", &host::MeshLayout::normal},       {"tangent", &host::MeshLayout::tangent},
    {"texCoord0", &host::MeshLayout::texCoord0}, {"texCoord1", &host::MeshLayout::texCoord1},
    {"texCoord2", &host::MeshLayout::texCoord2}, {"texCoord3", &host::MeshLayout::texCoord3},
    {"color", &host::MeshLayout::color}};

/// A mesh that has just these parts; "position" goes without saying.
host::MeshLayout meshOf(const std::vector<std::string>& parts) {
  host::MeshLayout mesh;
  for (const MeshPart& part : kMeshParts) mesh.*part.isGiven = false;
  for (const std::string& name : parts) {
    const auto* const part = std::find_if(std::begin(kMeshParts), std::end(kMeshParts),
                                          [&](const MeshPart& known) { return name == known.name; });
    if (part != std::end(kMeshParts)) {
      mesh.*part->isGiven = true;
    } else if (name != "position") {
      throw CLI::ValidationError("--mesh", "`" + name +
                                               "` is none of `position`, `normal`, `tangent`, `texCoord0` .. "
                                               "`texCoord3`, `color`");
    }
  }
  return mesh;
}

/// Those that are among the others, under whatever name, are left to them.
void addFolders(std::vector<std::filesystem::path>& folders, const std::vector<std::filesystem::path>& more) {
  std::erase_if(folders, [&](const std::filesystem::path& folder) {
    std::error_code error;
    return std::any_of(more.begin(), more.end(), [&](const std::filesystem::path& other) {
      return std::filesystem::equivalent(folder, other, error);
    });
  });
  folders.insert(folders.end(), more.begin(), more.end());
}

void tellFolders(const char* what, const std::vector<std::filesystem::path>& folders,
                 Diagnostics& diagnostics) {
  for (const std::filesystem::path& folder : folders) {
    diagnostics.note(std::string(), std::string(what) + " are read from `" + folder.string() + "`",
                     "folders-read");
  }
}

bool isWanted(const DepfileOptions& options) { return options.wanted || !options.file.empty(); }

std::string fileOf(const DepfileOptions& options, const std::string& output) {
  return options.file.empty() ? output + ".d" : options.file;
}

void addFiles(std::vector<std::string>& files, const std::vector<std::string>& folders,
              const char* extension) {
  for (const std::string& folder : folders) {
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
      if (entry.path().extension() == extension) files.push_back(entry.path().string());
    }
  }
}

}  // namespace

std::vector<std::filesystem::path> pathsOf(const std::vector<std::string>& folders) {
  return {folders.begin(), folders.end()};
}

void declareLibraryOptions(CLI::App& app, LibraryOptions& options) {
  declareFolders(
      app, "-L,--library", options.libraryFolders,
      "load the fragment libraries (*.fraglib) of a folder; a later folder overrides an earlier one");
  declareFolders(app, "-I,--include", options.includeFolders, "register the include files (*.h) of a folder");
  app.add_option("--language", options.language, "language to generate")
      ->type_name("NAME")
      ->capture_default_str();
  app.add_flag("--no-standard-library", options.withoutStandard,
               "leave out the fragments and include files that are installed with the command");
  app.add_flag("-v,--verbose", options.verbose, "say which folders are read");
  declareChoice<Detail>(
      app, "--diagnostics", {{"auto", Detail::standard}, {"short", Detail::brief}, {"full", Detail::full}},
      options.detail,
      "`short`: a line for each; `full`: also the line of the file, with a caret; `auto`: in "
      "full on a terminal");
}

host::LibraryFolders foldersOf(const LibraryOptions& options, const host::LibraryFolders& more,
                               Diagnostics& diagnostics) {
  diagnostics.setDetail(options.detail);
  host::LibraryFolders folders{pathsOf(options.libraryFolders), pathsOf(options.includeFolders)};
  addFolders(folders.libraries, more.libraries);
  addFolders(folders.includes, more.includes);
  if (!options.withoutStandard) addStandardLibrary(folders, findStandardLibrary());
  if (options.verbose) {
    tellFolders("fragments", folders.libraries, diagnostics);
    tellFolders("include files", folders.includes, diagnostics);
  }
  return folders;
}

std::shared_ptr<const host::LibrarySet> loadLibraries(const LibraryOptions& options,
                                                      Diagnostics& diagnostics) {
  auto libraries = host::LibrarySet::load(foldersOf(options, {}, diagnostics), options.language);
  diagnostics.hold(libraries->problems());
  return libraries;
}

void declareJobOptions(CLI::App& app, JobOptions& options) {
  app.add_option("GRAPH", options.graphFile,
                 "graph document (JSON) to collapse, or a MaterialX document (*.mtlx)")
      ->type_name("FILE")
      ->required();
  declareMaterialOption(app, options.material);
  declareLibraryOptions(app, options.libraries);
  std::vector<std::pair<std::string, host::CollapseTool>> tools = {
      {"default", host::CollapseTool::standard}, {"lightloop", host::CollapseTool::lightLoop}};
  if (options.collapse.tool == host::CollapseTool::lightLoop) std::swap(tools[0], tools[1]);
  declareChoice<host::CollapseTool>(
      app, "--tool", tools, options.collapse.tool,
      "`default`: one function of the graph's inputs and outputs; `lightloop`: a lit surface, accumulated "
      "over the "
      "lights of the environment");
  app.add_option("--environment", options.environmentFile,
                 "environment document (JSON): lights, output fragment")
      ->type_name("FILE");
  app.add_option("--surface-lod", options.collapse.surfaceLod, "level of detail of surface fragments")
      ->type_name("X")
      ->check(checkFinite)
      ->capture_default_str();
  app.add_option("--light-lod", options.collapse.lightLod, "level of detail of light fragments")
      ->type_name("X")
      ->check(checkFinite)
      ->capture_default_str();
  app.add_option("--function-name", options.collapse.functionName,
                 "name of the generated function (the light loop's is always `AccumulatedLitSurface`)")
      ->type_name("N")
      ->default_str("CollapsedFunction");
  app.add_option("--profile-name", options.collapse.profileName,
                 "profile name of the result (the light loop's is `default`)")
      ->type_name("N")
      ->default_str("default");
}

ReadJob makeJob(const JobOptions& options, Diagnostics& diagnostics) {
  std::optional<host::Document> environment;
  if (!options.environmentFile.empty()) environment = host::Document::fromFile(options.environmentFile);
  if (isMaterialDocument(options.graphFile)) {
    const auto libraries = loadMaterialLibraries(options.libraries, diagnostics);
    const MaterialGraph graph = importGraph(options.graphFile, options.material, libraries, diagnostics);
    host::CollapseOptions collapse = options.collapse;
    if (graph.isLit) collapse.tool = host::CollapseTool::lightLoop;
    return {host::Job(libraries, graph.document, collapse, environment), graph.files};
  }
  if (!options.material.empty()) {
    throw host::InputError("`--material` is for a MaterialX document (*.mtlx)");
  }
  return {host::Job(loadLibraries(options.libraries, diagnostics),
                    host::Document::fromFile(options.graphFile), options.collapse, environment),
          {}};
}

void declareStageOption(CLI::App& app, host::ShaderStage& stage) {
  declareChoice<host::ShaderStage>(
      app, "--stage",
      {{"pixel", host::ShaderStage::pixel},
       {"compute", host::ShaderStage::compute},
       {"vertex", host::ShaderStage::vertex}},
      stage,
      "stage of the complete shader; `vertex`: what feeds the pixel stage of the same graph from a mesh");
}

void declareMeshOption(CLI::App& app, host::MeshLayout& mesh) {
  app.add_option_function<std::vector<std::string>>(
         "--mesh", [&mesh](const std::vector<std::string>& parts) { mesh = meshOf(parts); },
         "for a vertex stage: what the vertices have besides a position, separated by commas; a graph that "
         "needs more is refused")
      ->type_name("PARTS")
      ->delimiter(',')
      ->allow_extra_args(false)
      ->default_str("normal,tangent,texCoord0,texCoord1,texCoord2,texCoord3,color");
}

void declareNamesOption(CLI::App& app, host::NameStyle& names) {
  std::vector<std::pair<std::string, host::NameStyle>> choices = {{"readable", host::NameStyle::readable},
                                                                  {"generated", host::NameStyle::generated}};
  if (names == host::NameStyle::generated) std::swap(choices[0], choices[1]);
  declareChoice<host::NameStyle>(app, "--names", choices, names,
                                 "uniforms of the complete shader: `readable`: after node and input, "
                                 "`bricks_mortar`; `generated`: as the "
                                 "collapse names them, `mortarn2`");
}

void declareOutputOption(CLI::App& app, std::string& file) {
  app.add_option("-o,--output", file, "write the result to a file, as a whole or not at all")
      ->type_name("FILE")
      ->default_str("standard output");
}

void declareDepfileOptions(CLI::App& app, DepfileOptions& options) {
  app.add_flag(
      "--MD", options.wanted,
      "also write a dependency file for Make or Ninja: the result's file name and `.d` (also spelled `-MD`)");
  app.add_option("--MF", options.file, "name of the dependency file (also spelled `-MF`)")->type_name("FILE");
}

void checkOutputs(const JobOptions& options, std::vector<std::string> outputs,
                  const DepfileOptions& depfile) {
  if (isWanted(depfile)) {
    if (outputs.front().empty()) throw host::InputError("a dependency file needs the result's name (`-o`)");
    outputs.push_back(fileOf(depfile, outputs.front()));
  }
  std::vector<std::string> inputs{options.graphFile, options.environmentFile};
  addFiles(inputs, options.libraries.libraryFolders, ".fraglib");
  addFiles(inputs, options.libraries.includeFolders, ".h");
  checkOutputs(outputs, inputs);
}

void writeDepfile(const DepfileOptions& options, const std::string& output, const ReadJob& read) {
  if (!isWanted(options)) return;
  std::vector<std::string> files = read.graphFiles;
  const std::vector<std::string> others = read.job.files();
  files.insert(files.end(), others.begin(), others.end());
  writeOutput(fileOf(options, output), writeDepfile(output, files));
}

Outcome collapse(host::Job& job, bool completeShader, Diagnostics& diagnostics) {
  diagnostics.hold(job.problems());
  if (const std::vector<host::Diagnostic> errors = job.errors(); completeShader && !errors.empty()) {
    diagnostics.show(errors);
    return Outcome::thrown;
  }
  try {
    job.collapse();
  } catch (const host::CollapseError& refusal) {
    diagnostics.show(refusal.diagnostics());
    return refusal.reason() == host::CollapseError::Reason::noResult ? Outcome::null : Outcome::thrown;
  }
  diagnostics.hold(job.warnings(completeShader));
  return Outcome::done;
}

std::optional<host::Shader> assemble(const host::Job& job, const std::string& graphFile,
                                     host::ShaderStage stage, host::NameStyle names,
                                     const host::MeshLayout& mesh, Diagnostics& diagnostics) {
  try {
    return job.assemble(stage, names, mesh);
  } catch (const host::AssemblyError& error) {
    diagnostics.error(graphFile, error.what(), "incomplete-shader");
    return std::nullopt;
  }
}

}  // namespace TolmSDK::Graphics::sfg::tools
