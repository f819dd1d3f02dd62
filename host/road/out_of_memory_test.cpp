// Memory that runs out anywhere on a job's road: std::bad_alloc, and everything as before.

#include <gtest/gtest.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <new>

#include "sfg/host/job.h"

// The C library's own allocator, behind the names below: defining malloc in the program puts every allocation
// of every library through it.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
}

namespace {

/// Allocations that succeed before one fails; negative: all do.
thread_local long long allocationsLeft = -1;

bool isOutOfMemory() noexcept {
  if (allocationsLeft < 0) return false;
  if (allocationsLeft-- != 0) return false;
  errno = ENOMEM;
  return true;
}

}  // namespace

// Hidden, as this project compiles its own names, they would serve the program alone.
#pragma GCC visibility push(default)
extern "C" {
void* malloc(std::size_t size) { return isOutOfMemory() ? nullptr : __libc_malloc(size); }
void* calloc(std::size_t count, std::size_t size) {
  return isOutOfMemory() ? nullptr : __libc_calloc(count, size);
}
void* realloc(void* memory, std::size_t size) {
  return isOutOfMemory() ? nullptr : __libc_realloc(memory, size);
}
}
#pragma GCC visibility pop

namespace TolmSDK::Graphics::sfg::host {
namespace {

constexpr const char* kLibrary = R"json({
  "tint": { "language": ["dx11"], "includes": ["tone.h"], "uniforms": [ { "name": "gain", "type": "float" } ],
    "implementation": [ "void tint(float3 color, float amount, out float3 result)", "{",
    "  result = tone(color) * amount * gain;", "}" ] }
})json";

constexpr const char* kGraph = R"json({
  "inputs":  [ { "name": "amount", "type": "float" } ],
  "outputs": [ { "name": "color", "type": "float3", "node": "second" } ],
  "nodes":   [ { "name": "first", "fragment": "tint", "inputs": {
                 "color": { "constant": [1, 0, 0] }, "amount": { "graphInput": "amount" } } },
               { "name": "second", "fragment": "tint", "inputs": { "color": { "node": "first" } } } ]
})json";

/// Does it with the first allocation failing, then the second and so on, until none of them does. Answers how
/// often it failed; `verify` runs after each failure.
template <class Action, class Verify>
std::size_t failEverywhere(Action&& action, Verify&& verify) {
  for (std::size_t failures = 0;; ++failures) {
    bool failed = false;
    allocationsLeft = static_cast<long long>(failures);
    try {
      action();
    } catch (const std::bad_alloc&) {
      failed = true;
    } catch (...) {
      allocationsLeft = -1;
      throw;
    }
    const bool isReached = allocationsLeft < 0;
    allocationsLeft = -1;
    if (!failed && !isReached) return failures;
    // A failure may be made up for, but is not taken for a result.
    verify(failed);
  }
}

/// How many allocations it makes.
template <class Action>
long long allocationsOf(Action&& action) {
  constexpr long long kMany = 1'000'000'000;
  allocationsLeft = kMany;
  action();
  const long long made = kMany - allocationsLeft;
  allocationsLeft = -1;
  return made;
}

/// A job keeps the shader that it assembled last.
void letGo(const Job& job) { static_cast<void>(job.assemble(ShaderStage::compute)); }

class OutOfMemoryTest : public testing::Test {
protected:
  OutOfMemoryTest() {
    std::string pattern = (std::filesystem::temp_directory_path() / "sfg_memory_XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
    std::ofstream(folder_ / "lib.fraglib") << kLibrary;
    std::ofstream(folder_ / "tone.h") << "float3 tone(float3 c)\n{\n  return c;\n}\n";
    libraries_ = LibrarySet::load({{folder_}, {folder_}});
  }
  ~OutOfMemoryTest() override { std::filesystem::remove_all(folder_); }

  static std::string shaderOf(const std::shared_ptr<const LibrarySet>& libraries) {
    Job job(libraries, Document::fromText(kGraph, "graph"));
    job.collapse();
    return job.assemble().text;
  }

  std::filesystem::path folder_;
  std::shared_ptr<const LibrarySet> libraries_;
};

TEST_F(OutOfMemoryTest, WhileAJobReads) {
  const Document graph = Document::fromText(kGraph, "graph");
  const std::size_t failures =
      failEverywhere([&] { const Job job(libraries_, graph); }, [](bool failed) { ASSERT_TRUE(failed); });
  EXPECT_GT(failures, 100u);
}

TEST_F(OutOfMemoryTest, WhileAJobCollapses) {
  const std::string expected = shaderOf(libraries_);
  Job job(libraries_, Document::fromText(kGraph, "graph"));
  const std::size_t failures =
      failEverywhere([&] { job.collapse(); }, [&](bool failed) { ASSERT_EQ(job.isCollapsed(), !failed); });
  EXPECT_GT(failures, 100u);
  EXPECT_EQ(job.assemble().text, expected);
  EXPECT_EQ(shaderOf(libraries_), expected);
}

TEST_F(OutOfMemoryTest, WhileAJobAssemblesAndTells) {
  Job job(libraries_, Document::fromText(kGraph, "graph"));
  job.collapse();
  const std::string expected = job.assemble().text;
  letGo(job);
  std::string text;
  const std::size_t failures = failEverywhere(
      [&] {
        const std::vector<Diagnostic> warnings = job.warnings();
        text = job.assemble().text;
      },
      [&](bool failed) {
        ASSERT_TRUE(failed || text == expected);
        letGo(job);
      });
  EXPECT_GT(failures, 100u);
  EXPECT_EQ(text, expected);
}

TEST_F(OutOfMemoryTest, WhileAJobAssemblesAnother) {
  Job job(libraries_, Document::fromText(kGraph, "graph"));
  job.collapse();
  const std::string expected = job.assemble().text;
  std::string text;
  const std::size_t failures = failEverywhere([&] { text = job.assemble(ShaderStage::compute).text; },
                                              [&](bool) { ASSERT_EQ(job.assemble().text, expected); });
  EXPECT_GT(failures, 100u);
  EXPECT_NE(text, expected);
}

TEST_F(OutOfMemoryTest, IsNotCalledForByAShaderThatIsThere) {
  Job job(libraries_, Document::fromText(kGraph, "graph"));
  job.collapse();
  static_cast<void>(job.assemble());
  static_cast<void>(job.reflect());
  letGo(job);
  const long long first = allocationsOf([&] { static_cast<void>(job.assemble()); });
  const long long again = allocationsOf([&] { static_cast<void>(job.assemble()); });
  EXPECT_GT(first, 100);
  EXPECT_LT(again, 10);
  const long long reflected = allocationsOf([&] { static_cast<void>(job.reflect()); });
  letGo(job);
  EXPECT_GT(allocationsOf([&] { static_cast<void>(job.reflect()); }), reflected + first / 2);
}

TEST_F(OutOfMemoryTest, WhileAJobNamesUniformsReadably) {
  Job job(libraries_, Document::fromText(kGraph, "graph"));
  job.collapse();
  const std::string expected = job.assemble(ShaderStage::pixel, NameStyle::readable).text;
  EXPECT_NE(expected, job.assemble().text);
  std::string text;
  const std::size_t failures =
      failEverywhere([&] { text = job.assemble(ShaderStage::pixel, NameStyle::readable).text; },
                     [&](bool failed) {
                       ASSERT_TRUE(failed || text == expected);
                       letGo(job);
                     });
  EXPECT_GT(failures, 100u);
  EXPECT_EQ(text, expected);
}

TEST_F(OutOfMemoryTest, WhileAJobTellsOfItsDocuments) {
  const Job job(libraries_,
                Document::fromText(R"({ "nodes": [], "node": 1, "inputs": [], "inputs": [] })", "graph"));
  const std::vector<Diagnostic> expected = job.problems();
  EXPECT_EQ(expected.size(), 2u);
  std::vector<Diagnostic> told;
  const std::size_t failures = failEverywhere(
      [&] {
        told = job.problems();
        static_cast<void>(job.errors());
      },
      [&](bool failed) { ASSERT_TRUE(failed || told == expected); });
  EXPECT_GT(failures, 2u);
  EXPECT_EQ(told, expected);
}

TEST_F(OutOfMemoryTest, WhileAJobExplains) {
  Job job(libraries_, Document::fromText(kGraph, "graph"));
  job.collapse();
  const Shader shader = job.assemble();
  const CompileError refusal("refused", {{3, "wrong"}}, true);
  const std::vector<Diagnostic> expected = job.explain(shader, refusal);
  EXPECT_GT(expected.size(), 1u);
  std::vector<Diagnostic> told;
  const std::size_t failures = failEverywhere([&] { told = job.explain(shader, refusal); },
                                              [&](bool failed) { ASSERT_TRUE(failed || told == expected); });
  EXPECT_GT(failures, 100u);
  EXPECT_EQ(told, expected);
  EXPECT_EQ(job.assemble().text, shader.text);
}

TEST_F(OutOfMemoryTest, WhileABufferIsPacked) {
  Job job(libraries_, Document::fromText(kGraph, "graph"));
  job.collapse();
  const ShaderInterface told = job.reflect();
  const InterfaceBuffer& buffer = findBuffer(told, "sfg_Uniforms");
  const std::vector<ValueSetting> settings = {{"first.gain", {2}}};
  const std::vector<std::uint8_t> expected = packBuffer(buffer, settings);
  std::vector<std::uint8_t> bytes;
  const std::size_t failures = failEverywhere([&] { bytes = packBuffer(buffer, settings); },
                                              [&](bool failed) { ASSERT_TRUE(failed || bytes == expected); });
  EXPECT_GT(failures, 1u);
  EXPECT_EQ(bytes, expected);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
