#pragma once

// Builds of graphs that a test writes down.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>

#include "sfg/host/build.h"

namespace TolmSDK::Graphics::sfg::host {

/// Each test has a folder of its own: libraries and include files in "lib", graphs where it puts them, a
/// cache in "cache". What is assembled need not be compiled, so most tests are of that.
class BuildFixture : public testing::Test {
protected:
  BuildFixture() {
    std::string pattern = (std::filesystem::temp_directory_path() / "sfg_build_XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
    write("lib/test.fraglib", R"json({
  "red": { "language": ["dx11"], "implementation": [
    "void red(out float3 result)", "{", "result = float3(1.0, 0.0, 0.0);", "}" ] },
  "dim": { "language": ["dx11"], "includes": ["half.h"], "implementation": [
    "void dim(float3 color, float amount, out float3 result)", "{", "result = color * amount * HALF;", "}" ],
    "ports": { "color": { "value": [1, 1, 1] }, "amount": { "value": 1 } } },
  "unused": { "language": ["dx11"], "implementation": [
    "void unused(out float3 result)", "{", "result = float3(0.0, 0.0, 0.0);", "}" ] } }
)json");
    write("lib/half.h", "#include \"deep.h\"\n#define HALF (DEEP * 0.5)\n");
    write("lib/deep.h", "#define DEEP 1.0\n");
    write("lib/alone.h", "#define ALONE\n");
  }
  ~BuildFixture() override { std::filesystem::remove_all(folder_); }

  std::string path(const std::string& name) const { return (folder_ / name).string(); }
  void write(const std::string& name, const std::string& text) const {
    std::filesystem::create_directories((folder_ / name).parent_path());
    std::ofstream(folder_ / name, std::ios::binary) << text;
  }
  std::string read(const std::string& name) const {
    std::ostringstream text;
    text << std::ifstream(folder_ / name, std::ios::binary).rdbuf();
    return text.str();
  }

  /// A graph of one "dim" with this amount.
  static std::string dimGraph(double amount) {
    return R"({"outputs": [{"name": "color", "type": "float3", "node": "a"}],
  "nodes": [{"name": "a", "fragment": "dim", "inputs": {"amount": {"constant": )" +
           std::to_string(amount) + "}}}]}\n";
  }
  static std::string redGraph() {
    return R"({"outputs": [{"name": "color", "type": "float3", "node": "a"}],
  "nodes": [{"name": "a", "fragment": "red"}]})";
  }

  /// A manifest of one set of shaders; `set` are its keys.
  BuildPlan plan(const std::string& set) const {
    write("build.json", R"({"libraries": ["lib"], "output": "out", "shaders": [{)" + set + "}]}");
    return readManifest(Document::fromFile(path("build.json")));
  }
  BuildPlan assembledPlan() const { return plan(R"("graphs": ["graphs"], "targets": ["assembled"])"); }

  /// "1 built, 2 reused, 3 unchanged, 4 failed"; what is told stands in told().
  std::string build(const BuildPlan& plan, BuildOptions options = {}) {
    told_.clear();
    const auto add = [&](std::span<const Diagnostic> diagnostics) {
      for (const Diagnostic& diagnostic : diagnostics) told_ += withoutFolder(diagnostic) + "\n";
    };
    options.onProblems = add;
    options.onResult = [&, next = options.onResult](const BuildResult& result, std::size_t done,
                                                    std::size_t all) {
      add(result.diagnostics);
      files_[result.task] = result.files;
      if (next) next(result, done, all);
    };
    report_ = host::build(plan, options);
    return std::to_string(report_.built) + " built, " + std::to_string(report_.reused) + " reused, " +
           std::to_string(report_.unchanged) + " unchanged, " + std::to_string(report_.failed) + " failed";
  }
  const std::string& told() const { return told_; }
  BuildOptions withCache() const {
    BuildOptions options;
    options.cache = std::make_shared<BuildCache>(path("cache"));
    return options;
  }

  /// By name, of everything below a folder but what builds keep for themselves.
  std::map<std::string, std::string> contents(const std::string& folder) const {
    std::map<std::string, std::string> all;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_ / folder)) {
      const std::string name = entry.path().lexically_relative(folder_).string();
      if (entry.is_regular_file() && name.find(".sfg-build") == name.npos) all[name] = read(name);
    }
    return all;
  }

  std::string withoutFolder(const Diagnostic& diagnostic) const {
    std::string text = diagnostic.place() + ": " + diagnostic.text + " [" + diagnostic.identifier + "]";
    for (std::size_t at = 0; (at = text.find(folder_.string() + "/")) != text.npos;)
      text.erase(at, folder_.string().size() + 1);
    return text;
  }
  /// What reading a plan is refused with.
  template <class Call>
  std::string refusal(const Call& call) const {
    try {
      call();
    } catch (const InputError& error) {
      return withoutFolder(error.diagnostic());
    }
    return "accepted";
  }

  std::filesystem::path folder_;
  std::string told_;
  BuildReport report_;
  std::map<std::size_t, std::vector<std::string>> files_;
};

}  // namespace TolmSDK::Graphics::sfg::host
