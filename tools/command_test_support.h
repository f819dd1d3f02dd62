#pragma once

// Runs the real command in a folder of its own.

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace TolmSDK::Graphics::sfg::tools {

struct CommandRun {
  int status = -1;
  std::string out;
  std::string err;
};

/// Each test has an empty folder, in which the command runs: paths in its output are short and the same
/// everywhere.
class CommandTest : public testing::Test {
protected:
  CommandTest();
  ~CommandTest() override;

  void write(const std::string& name, const std::string& text) const;
  std::string read(const std::string& name) const;
  bool exists(const std::string& name) const;
  /// Path of a file in the test's folder, and of one in the repository.
  std::string path(const std::string& name) const { return folder_ + "/" + name; }
  static std::string repository(const std::string& name);

  /// `arguments` as a shell would split them.
  CommandRun run(const std::string& arguments) const;

  /// Fragments that exercise every kind of port, under "lib"; see the source.
  void writeLibrary() const;

private:
  std::string folder_;
};

}  // namespace TolmSDK::Graphics::sfg::tools
