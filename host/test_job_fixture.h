#pragma once

// Jobs over libraries and documents that a test writes down.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>

#include "host/job/collapse_job.h"

namespace TolmSDK::Graphics::sfg::host {

/// Each test has a folder of its own, which is library and include folder of its jobs.
class JobFixture : public testing::Test {
protected:
  JobFixture() {
    std::string pattern = (std::filesystem::temp_directory_path() / "sfg_fixture_XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
  }
  ~JobFixture() override { std::filesystem::remove_all(folder_); }

  std::string path(const std::string& name) const { return (folder_ / name).string(); }
  void write(const std::string& name, const std::string& text) const {
    std::ofstream(folder_ / name) << text;
  }
  void writeLibrary(const std::string& fragments) const { write("lib.fraglib", fragments); }

  std::shared_ptr<const LoadedLibraries> load() const {
    const std::vector<std::string> folders = {folder_.string()};
    return std::make_shared<const LoadedLibraries>(folders, folders, "dx11");
  }
  /// A job over the folder as it is now.
  std::unique_ptr<CollapseJob> job(const std::string& graph, CollapseTool tool = CollapseTool::standard,
                                   const std::string& environment = "{}") const {
    CollapseOptions options;
    options.tool = tool;
    return std::make_unique<CollapseJob>(load(), Document::fromText(graph, "graph.json"),
                                         Document::fromText(environment, "scene.json"), options);
  }
  /// The same, collapsed; the result may be null.
  std::unique_ptr<CollapseJob> collapsed(const std::string& graph, CollapseTool tool = CollapseTool::standard,
                                         const std::string& environment = "{}") const {
    std::unique_ptr<CollapseJob> made = job(graph, tool, environment);
    made->run();
    return made;
  }

  std::filesystem::path folder_;
};

/// "PLACE: TEXT", a line each.
inline std::string textOf(const std::vector<Diagnostic>& diagnostics) {
  std::string text;
  for (const Diagnostic& diagnostic : diagnostics) {
    text += diagnostic.place() + ": " + diagnostic.text + "\n";
  }
  return text;
}

/// A fragment object: "name": a function of the prototype's parameters and this body.
inline std::string fragment(const std::string& name, const std::string& parameters, const std::string& body,
                            const std::string& members = std::string()) {
  return "\"" + name + "\": { \"language\": [\"dx11\"], " + members + "\"implementation\": [ \"void " + name +
         "(" + parameters + ")\", \"{\", \"" + body + "\", \"}\" ] }";
}

}  // namespace TolmSDK::Graphics::sfg::host
