// Files that break off, come in pieces or cannot be read to their end: told at the file, and the next call
// works.

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <string>

#include "sfg/host/job.h"

namespace {

enum class Fault {
  none,
  error,        ///< of the device, from some call on
  end,          ///< from some call on, as of a file that was cut short meanwhile
  bytes,        ///< one for each call
  interrupted,  ///< every second call, by a signal
};

struct Reads {
  Fault fault = Fault::none;
  int healthy = 0;  ///< calls before the fault
  int calls = 0;
};
Reads reads;

}  // namespace

// Hidden, as this project compiles its own names, it would serve the program alone.
#pragma GCC visibility push(default)
extern "C" ssize_t read(int file, void* bytes, std::size_t count) {
  static const auto systemRead =
      reinterpret_cast<ssize_t (*)(int, void*, std::size_t)>(dlsym(RTLD_NEXT, "read"));
  ++reads.calls;
  const bool isFaulty = reads.calls > reads.healthy;
  if (reads.fault == Fault::error && isFaulty) {
    errno = EIO;
    return -1;
  }
  if (reads.fault == Fault::interrupted && reads.calls % 2 == 1) {
    errno = EINTR;
    return -1;
  }
  if (reads.fault == Fault::end && isFaulty) return 0;
  return systemRead(file, bytes, reads.fault == Fault::bytes && count > 1 ? 1 : count);
}
#pragma GCC visibility pop

namespace TolmSDK::Graphics::sfg::host {
namespace {

constexpr const char* kLibrary = R"json({
  "tint": { "language": ["dx11"], "includes": ["tone.h"],
    "implementation": [ "void tint(float3 color, out float3 result)", "{", "  result = tone(color);", "}" ] }
})json";
constexpr const char* kInclude = "float3 tone(float3 c)\n{\n  return c;\n}\n";
constexpr const char* kGraph = R"json({
  "outputs": [ { "name": "color", "type": "float3", "node": "n" } ],
  "nodes":   [ { "name": "n", "fragment": "tint", "inputs": { "color": { "constant": [1, 0, 0] } } } ]
})json";

struct Outcome {
  std::string shader;  ///< or, where there is none:
  std::string told;
  int calls = 0;  ///< of read()
};

class ReadFaultsTest : public testing::Test {
protected:
  ReadFaultsTest() {
    std::string pattern = (std::filesystem::temp_directory_path() / "sfg_reads_XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
    std::ofstream(folder_ / "lib.fraglib") << kLibrary;
    std::ofstream(folder_ / "tone.h") << kInclude;
    std::ofstream(folder_ / "graph.json") << kGraph;
  }
  ~ReadFaultsTest() override { std::filesystem::remove_all(folder_); }

  Outcome read(Fault fault, int healthy = 0) const {
    reads = {fault, healthy, 0};
    Outcome outcome = readThrough();
    outcome.calls = reads.calls;
    reads = {};
    return outcome;
  }

  std::filesystem::path folder_;

private:
  Outcome readThrough() const {
    try {
      const auto libraries = LibrarySet::load({{folder_}, {folder_}});
      for (const Diagnostic& problem : libraries->problems())
        if (problem.severity == Severity::error) return {{}, problem.place() + ": " + problem.text};
      Job job(libraries, Document::fromFile((folder_ / "graph.json").string()));
      job.collapse();
      for (const Diagnostic& warning : job.warnings()) return {{}, warning.place() + ": " + warning.text};
      return {job.assemble().text, {}};
    } catch (const InputError& error) {
      return {{}, error.place() + ": " + error.what()};
    }
  }
};

TEST_F(ReadFaultsTest, PiecesAndInterruptionsChangeNothing) {
  const Outcome whole = read(Fault::none);
  EXPECT_NE(whole.shader.find("tone("), whole.shader.npos) << whole.told;
  EXPECT_GE(whole.calls, 6);  // three files, each read until its end
  const Outcome interrupted = read(Fault::interrupted);
  EXPECT_EQ(interrupted.shader, whole.shader) << interrupted.told;
  EXPECT_GT(interrupted.calls, whole.calls);
  const Outcome pieces = read(Fault::bytes);
  EXPECT_EQ(pieces.shader, whole.shader) << pieces.told;
  EXPECT_GT(pieces.calls, 300);
}

TEST_F(ReadFaultsTest, ErrorsAreToldAtTheFile) {
  const Outcome whole = read(Fault::none);
  for (int healthy = 0; healthy < whole.calls; ++healthy) {
    const Outcome broken = read(Fault::error, healthy);
    EXPECT_TRUE(broken.told.starts_with(folder_.string() + "/")) << healthy << ": " << broken.told;
    EXPECT_NE(broken.told.find("the file cannot be read"), broken.told.npos) << broken.told;
    EXPECT_EQ(read(Fault::none).shader, whole.shader) << healthy;
  }
}

TEST_F(ReadFaultsTest, FilesThatEndEarlyAreToldOrRead) {
  const Outcome whole = read(Fault::none);
  for (int healthy = 0; healthy < whole.calls; ++healthy) {
    const Outcome cut = read(Fault::end, healthy);
    // The end of a file that was read whole changes nothing.
    if (cut.shader == whole.shader) continue;
    EXPECT_TRUE(cut.told.starts_with(folder_.string() + "/")) << healthy << ": " << cut.told;
    EXPECT_EQ(read(Fault::none).shader, whole.shader) << healthy;
  }
}

TEST_F(ReadFaultsTest, FilesThatAreCutShortAreToldOrRead) {
  const Outcome whole = read(Fault::none);
  const std::string include = kInclude;
  for (const auto& [name, text] :
       {std::pair{"lib.fraglib", std::string(kLibrary)}, std::pair{"graph.json", std::string(kGraph)}}) {
    for (std::size_t length = 0; length < text.size(); ++length) {
      std::ofstream(folder_ / name) << text.substr(0, length);
      const Outcome cut = read(Fault::none);
      ASSERT_EQ(cut.shader, "") << name << " " << length;
      ASSERT_TRUE(cut.told.starts_with((folder_ / name).string() + ":")) << name << " " << length << cut.told;
    }
    std::ofstream(folder_ / name) << text;
  }
  EXPECT_EQ(read(Fault::none).shader, whole.shader);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
