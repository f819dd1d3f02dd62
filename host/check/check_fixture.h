#pragma once

// Checks over libraries and documents that a test writes down.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "sfg/host/check.h"
#include "sfg/host/version.h"

namespace TolmSDK::Graphics::sfg::host {

/// Each test has a folder of its own, which is library and include folder of its checks.
class CheckFixture : public testing::Test {
protected:
  CheckFixture() {
    std::string pattern = (std::filesystem::temp_directory_path() / "sfg_check_XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
  }
  ~CheckFixture() override { std::filesystem::remove_all(folder_); }

  std::string path(const std::string& name) const { return (folder_ / name).string(); }
  void write(const std::string& name, const std::string& text) const {
    std::filesystem::create_directories((folder_ / name).parent_path());
    std::ofstream(folder_ / name, std::ios::binary) << text;
  }

  CheckOptions options() const {
    CheckOptions options;
    options.folders = {{folder_}, {folder_}};
    options.cache = cache_;
    return options;
  }
  /// What a library of these fragments is told.
  std::string checkLibrary(const std::string& fragments) const {
    write("lib.fraglib", fragments);
    return textOf(Checker(options()).checkLibrary(path("lib.fraglib")));
  }
  std::string checkGraph(const std::string& graph) const {
    return textOf(Checker(options()).checkGraph(Document::fromText(graph, "graph.json")));
  }
  std::string checkEnvironment(const std::string& environment) const {
    return textOf(Checker(options()).checkEnvironment(Document::fromText(environment, "scene.json")));
  }

  /// "PLACE: error: TEXT [identifier]", a line each, the folder's name left out.
  std::string textOf(const CheckResult& result) const {
    std::string text;
    for (const Diagnostic& diagnostic : result.diagnostics) {
      const char* const severity = diagnostic.severity == Severity::error     ? "error"
                                   : diagnostic.severity == Severity::warning ? "warning"
                                                                              : "note";
      text += diagnostic.place() + ": " + severity + ": " + diagnostic.text + " [" + diagnostic.identifier +
              "]\n";
    }
    const std::string prefix = folder_.string() + "/";
    for (std::size_t at = text.find(prefix); at != std::string::npos; at = text.find(prefix, at))
      text.erase(at, prefix.size());
    return text;
  }

  std::filesystem::path folder_;
  std::shared_ptr<CheckCache> cache_ = std::make_shared<CheckCache>();
};

/// For checks that compile.
class CompilingCheckFixture : public CheckFixture {
protected:
  void SetUp() override {
    if (!hasCompilers()) GTEST_SKIP() << "the library has no compilers";
  }
};

}  // namespace TolmSDK::Graphics::sfg::host
