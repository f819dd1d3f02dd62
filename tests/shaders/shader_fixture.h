#pragma once

// Graph documents of the standard fragments, collapsed, assembled and compiled in this process.

#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "host/job/collapse_job.h"
#include "host/shader/shader_assembly.h"
#include "tests/support/job_files.h"

namespace shaders_test {

namespace sfg = TolmSDK::Graphics::sfg;
using Json = nlohmann::ordered_json;

/// The standard fragments with the ports of their first profiles' functions; loaded once.
const sfg::host::LoadedLibraries& standardLibrary();
/// Their names, in order.
std::vector<std::string> fragmentNames();
/// The file that holds the fragment, without folder and extension.
std::string libraryFileOf(const std::string& fragment);
/// The "interface" that a library file gives for an inline fragment; null when there is none.
Json documentedInterface(const std::string& fragment);

class ShaderFixture : public testing::Test {
protected:
  ShaderFixture();
  ~ShaderFixture() override;

  /// Settings over the standard library for a document of the test.
  sfg::host::JobFiles settings(const Json& graph) const;
  /// Adds fragments of the test, as a fragment library file holds them, to those of the standard library.
  void define(sfg::host::JobFiles& settings, const Json& fragments) const;
  /// Makes it a light loop over an environment document.
  void light(sfg::host::JobFiles& settings, const Json& environment) const;

  /// Compiles for the stage: a valid SPIR-V module and, with `everyTarget`, every other language in all its
  /// versions. With a pixel stage the vertex stage that feeds it. Answers why it cannot, or what the host
  /// warns of but for inputs without a value.
  static std::string compile(const sfg::host::JobFiles& settings, sfg::host::ShaderStage stage,
                             bool everyTarget,
                             sfg::host::Optimization optimization = sfg::host::Optimization::speed);

private:
  std::filesystem::path folder_;
};

/// A target in one of its versions.
struct TargetVersion {
  sfg::host::ShaderTarget target;
  sfg::host::CompileOptions options;
};
/// All that shaders of the stage can be compiled for, the module first.
std::vector<TargetVersion> targetVersions(sfg::host::ShaderStage stage);

/// An environment of that many lights, of all kinds by turns.
Json environmentOf(std::size_t lights);

}  // namespace shaders_test
