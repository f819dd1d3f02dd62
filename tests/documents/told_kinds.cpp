#include "tests/documents/told_kinds.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>

#include "host/lints/lints.h"
#include "sfg/host/compile.h"
#include "sfg/host/job.h"
#include "sfg/host/library_set.h"

namespace TolmSDK::test {

namespace {

namespace fs = std::filesystem;
namespace host = Graphics::sfg::host;

class Told {
public:
  explicit Told(fs::path folder) : folder_(std::move(folder)) {}

  std::set<std::string> run() {
    try {
      const auto set = host::LibrarySet::load({{folder_}, {folder_}});
      add(set->problems());
      add(host::lintLibraries(*set->loaded()));
      if (fs::exists(folder_ / "graph.json")) runGraph(set);
    } catch (const host::InputError& error) {
      add(error.related());
      kinds_.insert(error.identifier());
    }
    return kinds_;
  }

private:
  template <class Diagnostics>
  void add(const Diagnostics& diagnostics) {
    for (const host::Diagnostic& diagnostic : diagnostics) kinds_.insert(diagnostic.identifier);
  }

  void runGraph(const std::shared_ptr<const host::LibrarySet>& set) {
    const host::Document graph = host::Document::fromFile(folder_ / "graph.json");
    host::CollapseOptions options;
    std::optional<host::Document> scene;
    if (fs::exists(folder_ / "scene.json")) {
      scene = host::Document::fromFile(folder_ / "scene.json");
      options.tool = host::CollapseTool::lightLoop;
    }
    add(host::lintGraph(*set->loaded(), graph));
    host::Job job(set, graph, options, scene);
    add(job.problems());
    add(job.errors());
    try {
      job.collapse();
      add(job.warnings());
      if (job.errors().empty()) compile(job);
    } catch (const host::CollapseError& error) {
      add(error.diagnostics());
    }
  }

  void compile(const host::Job& job) {
    try {
      const host::Shader shader = job.assemble();
      compile(job, shader);
    } catch (const host::AssemblyError&) {
      kinds_.insert("incomplete-shader");
    }
  }

  void compile(const host::Job& job, const host::Shader& shader) {
    try {
      host::compile(shader, host::ShaderTarget::spirv);
    } catch (const host::CompileError& error) {
      add(job.explain(shader, error));
    }
  }

  fs::path folder_;
  std::set<std::string> kinds_;
};

}  // namespace

std::set<std::string> toldOfFiles(const std::string& folder) { return Told(folder).run(); }

std::set<std::string> toldByCommand(const std::string& folder, const std::string& arguments) {
  const std::string output = folder + "/told.txt";
  const std::string line =
      "cd '" + folder + "' && '" SFG_COMMAND "' " + arguments + " >/dev/null 2>'" + output + "'";
  (void)std::system(line.c_str());
  std::set<std::string> kinds;
  std::ifstream text(output);
  for (std::string told; std::getline(text, told);) {
    const std::size_t open = told.rfind(" [");
    if (open != told.npos && told.back() == ']') kinds.insert(told.substr(open + 2, told.size() - open - 3));
  }
  return kinds;
}

}  // namespace TolmSDK::test
