// Memory that runs out anywhere on a job's road: std::bad_alloc, and everything as before.

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <new>

#include "sfg/fragment_library.h"
#include "sfg/host/check.h"
#include "sfg/host/job.h"
#include "sfg/shader_includes.h"
#include "tolmsdk/files.h"
#include "tolmsdk/sha1.h"
#include "tolmsdk/unicode.h"

// The C library's own allocator, behind the names below: defining malloc in the program puts every allocation
// of every library through it.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* memory);
}

namespace {

/// Allocations that succeed before one fails; negative: all do.
thread_local long long allocationsLeft = -1;

/// Blocks that are not freed yet.
std::atomic<long long> blocksInUse = 0;

void* counted(void* memory) noexcept {
  if (memory != nullptr) ++blocksInUse;
  return memory;
}

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
void* malloc(std::size_t size) { return isOutOfMemory() ? nullptr : counted(__libc_malloc(size)); }
void* calloc(std::size_t count, std::size_t size) {
  return isOutOfMemory() ? nullptr : counted(__libc_calloc(count, size));
}
void* realloc(void* memory, std::size_t size) {
  if (isOutOfMemory()) return nullptr;
  return memory == nullptr ? counted(__libc_malloc(size)) : __libc_realloc(memory, size);
}
void* aligned_alloc(std::size_t alignment, std::size_t size) {
  return isOutOfMemory() ? nullptr : counted(__libc_memalign(alignment, size));
}
void* memalign(std::size_t alignment, std::size_t size) { return aligned_alloc(alignment, size); }
int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
  *memory = aligned_alloc(alignment, size);
  return *memory == nullptr ? ENOMEM : 0;
}
void free(void* memory) {
  if (memory != nullptr) --blocksInUse;
  __libc_free(memory);
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

constexpr const char* kLitLibrary = R"json({
  "lamp": { "name": "Lamp", "language": ["dx11"], "predefine": [ "struct Lamp", "{", "  float3 c;", "};" ],
    "implementation": [ "void lamp(out Lamp light)", "{", "  light.c = 1;", "}" ] },
  "matte": { "name": "Lamp", "language": ["dx11"], "uniforms": [ { "name": "tone", "type": "float3" } ],
    "implementation": [ "void matte(float3 albedo, out float3 result)", "{",
    "  result = albedo * sfg_currentLight.c * tone;", "}" ] }
})json";

constexpr const char* kLitGraph = R"json({
  "inputs":  [ { "name": "albedo", "type": "float3" } ],
  "outputs": [ { "name": "color", "type": "float3", "node": "surface" } ],
  "nodes":   [ { "name": "surface", "fragment": "matte", "inputs": { "albedo": { "graphInput": "albedo" } } } ]
})json";

constexpr const char* kLights = R"json({
  "lights": [ { "name": "key", "fragment": "lamp", "profile": "Lamp" },
              { "name": "fill", "fragment": "lamp", "profile": "Lamp" } ]
})json";

constexpr const char* kGraph = R"json({
  "inputs":  [ { "name": "amount", "type": "float" } ],
  "outputs": [ { "name": "color", "type": "float3", "node": "second" } ],
  "nodes":   [ { "name": "first", "fragment": "tint", "inputs": {
                 "color": { "constant": [1, 0, 0] }, "amount": { "graphInput": "amount" } } },
               { "name": "second", "fragment": "tint", "inputs": { "color": { "node": "first" } } } ]
})json";

struct Attempt {
  bool failed = false;     ///< by std::bad_alloc
  bool isReached = false;  ///< the allocation that fails
};

/// Does it with the allocation behind so many others failing.
template <class Action>
Attempt failAfter(long long allocations, Action&& action) {
  Attempt attempt;
  allocationsLeft = allocations;
  try {
    action();
  } catch (const std::bad_alloc&) {
    attempt.failed = true;
  } catch (...) {
    allocationsLeft = -1;
    throw;
  }
  attempt.isReached = allocationsLeft < 0;
  allocationsLeft = -1;
  return attempt;
}

/// Does it with the first allocation failing, then the second and so on, until none of them does. Answers how
/// often it failed; `verify` runs after each failure.
template <class Action, class Verify>
std::size_t failEverywhere(Action&& action, Verify&& verify) {
  for (std::size_t failures = 0;; ++failures) {
    const Attempt attempt = failAfter(static_cast<long long>(failures), action);
    if (!attempt.failed && !attempt.isReached) return failures;
    // A failure may be made up for, but is not taken for a result.
    verify(attempt.failed);
  }
}

/// The same, twice: what the first round left behind is kept for later calls, what the second leaves is lost.
template <class Action>
std::size_t failWithoutLeaks(Action&& action) {
  failEverywhere(action, [](bool) {});
  long long before = 0;
  return failEverywhere(
      [&] {
        before = blocksInUse;
        action();
      },
      [&](bool) { ASSERT_EQ(blocksInUse, before); });
}

/// The same for some of the allocations only, spread over all: of what makes many.
template <class Action, class Verify>
std::size_t failSomewhere(std::size_t samples, long long allocations, Action&& action, Verify&& verify) {
  std::size_t failures = 0;
  for (std::size_t sample = 0; sample < samples; ++sample) {
    const Attempt attempt =
        failAfter(allocations * static_cast<long long>(sample) / static_cast<long long>(samples), action);
    failures += attempt.isReached ? 1 : 0;
    verify(attempt.failed);
  }
  return failures;
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
    std::ofstream(folder_ / "lit.fraglib") << kLitLibrary;
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

/// A chain of nodes.
std::string chainOf(std::size_t count) {
  std::string nodes = R"({ "name": "n0", "fragment": "tint" })";
  for (std::size_t i = 1; i < count; ++i) {
    nodes += R"(, { "name": "n)" + std::to_string(i) +
             R"(", "fragment": "tint", "inputs": { "color": { "node": "n)" + std::to_string(i - 1) +
             "\" } } }";
  }
  return R"({ "outputs": [ { "name": "color", "type": "float3", "node": "n)" + std::to_string(count - 1) +
         R"(" } ], "nodes": [ )" + nodes + " ] }";
}

// OpenSSL's own start, at the first hash of a process, does not outlive it: the fixture has been there.
TEST_F(OutOfMemoryTest, WhileATextIsHashed) {
  WString hash;
  const std::size_t failures =
      failEverywhere([&] { hash = SHA1_GetStringHash(L"abc"); }, [](bool failed) { ASSERT_TRUE(failed); });
  EXPECT_GT(failures, 1u);
  EXPECT_EQ(hash, L"a9993e364706816aba3e25717850c26c9cd0d89d");
}

TEST_F(OutOfMemoryTest, WhileAFileIsRead) {
  const WString path = fromUtf8((folder_ / "lib.fraglib").string());
  WString text;
  WString error;
  bool isRead = false;
  const std::size_t failures = failEverywhere([&] { isRead = GetUTF8TextFileString(path, text, &error); },
                                              [&](bool failed) {
                                                if (failed) return;
                                                ASSERT_EQ(text, isRead ? fromUtf8(kLibrary) : WString());
                                                ASSERT_EQ(error.empty(), isRead);
                                              });
  EXPECT_GT(failures, 3u);
  EXPECT_TRUE(isRead);
  EXPECT_EQ(text, fromUtf8(kLibrary));
}

TEST_F(OutOfMemoryTest, WhileAJobLivesAndDies) {
  const Document graph = Document::fromText(kGraph, "graph");
  const std::size_t failures = failWithoutLeaks([&] {
    Job job(libraries_, graph);
    job.collapse();
    static_cast<void>(job.warnings());
    static_cast<void>(job.reflect());
  });
  EXPECT_GT(failures, 500u);
}

TEST_F(OutOfMemoryTest, WhileAJobReadsABrokenGraph) {
  const Document graph =
      Document::fromText(R"({ "nodes": [ { "name": "a", "fragment": "tinnt" } ] })", "graph");
  bool isRefused = false;
  const std::size_t failures = failWithoutLeaks([&] {
    try {
      Job job(libraries_, graph);
      job.collapse();
    } catch (const std::bad_alloc&) {
      throw;
    } catch (const std::exception& refusal) {
      isRefused = std::string_view(refusal.what()).find("tinnt") != std::string_view::npos;
    }
  });
  EXPECT_GT(failures, 50u);
  EXPECT_TRUE(isRefused);
}

TEST_F(OutOfMemoryTest, WhileDocumentsAreChecked) {
  std::ofstream(folder_ / "broken.fraglib")
      << R"json({ "broken": { "language": ["dx11"], "implementation": [ "void f(float a)" ], "tset": 1 } })json";
  CheckOptions options;
  options.folders = {{folder_}, {folder_}};
  options.compiles = false;
  const Checker checker(options);
  const Document graph = Document::fromText(kGraph, "graph");
  std::size_t found = 0;
  const std::size_t failures = failWithoutLeaks([&] {
    found = 0;
    for (const std::string& file : checker.libraryFiles())
      found += checker.checkLibrary(file).diagnostics.size();
    found += checker.checkGraph(graph).diagnostics.size();
  });
  EXPECT_GT(failures, 300u);
  EXPECT_GT(found, 0u);
}

TEST_F(OutOfMemoryTest, WhileFragmentsLoad) {
  const WString text = fromUtf8(kLibrary);
  ShaderIncludes includes;
  bool isTold = false;
  FragmentLoading loading;
  loading.includes = &includes;
  loading.onFailure = [&](const FragmentLoadFailure&) { isTold = true; };
  bool isLoaded = false;
  const auto load = [&] {
    isTold = isLoaded = false;
    FragmentLibrary library;
    library.loadText(L"lib.fraglib", text, loading);
    isLoaded = library.acquireFragment(L"tint") != nullptr;
  };
  const std::size_t failures =
      failEverywhere(load, [&](bool failed) { ASSERT_TRUE(failed || isTold != isLoaded); });
  EXPECT_GT(failures, 50u);
  load();
  EXPECT_TRUE(isLoaded);
}

TEST_F(OutOfMemoryTest, WhileManyFragmentsLoad) {
  constexpr std::size_t kCount = 200;
  WString text = L"{";
  for (std::size_t i = 0; i < kCount; ++i) {
    text += i == 0 ? L"\"f" : L", \"f";
    text +=
        fromUtf8(std::to_string(i)) +
        L"\": { \"language\": [\"dx11\"], \"implementation\": [ \"void f(out float r)\", \"{ r = 1; }\" ] }";
  }
  text += L" }";
  ShaderIncludes includes;
  std::size_t told = 0;
  std::size_t loaded = 0;
  FragmentLoading loading;
  loading.includes = &includes;
  loading.onFailure = [&](const FragmentLoadFailure&) { ++told; };
  loading.onLoaded = [&](const IObjectDataNode&, const IShaderFragment&) { ++loaded; };
  const auto load = [&] {
    told = loaded = 0;
    FragmentLibrary library;
    library.loadText(L"lib.fraglib", text, loading);
  };
  const std::size_t failures = failSomewhere(300, allocationsOf(load), load, [&](bool failed) {
    ASSERT_TRUE(failed || loaded == kCount || told != 0);
  });
  EXPECT_EQ(failures, 300u);
  load();
  EXPECT_EQ(loaded, kCount);
}

TEST_F(OutOfMemoryTest, WhileALitSurfaceCollapses) {
  const auto lit = [&] {
    CollapseOptions options;
    options.tool = CollapseTool::lightLoop;
    return Job(libraries_, Document::fromText(kLitGraph, "graph"), options,
               Document::fromText(kLights, "lights"));
  };
  const std::size_t read =
      failEverywhere([&] { static_cast<void>(lit()); }, [](bool failed) { ASSERT_TRUE(failed); });
  EXPECT_GT(read, 100u);
  Job whole = lit();
  whole.collapse();
  const std::string expected = whole.assemble().text;
  EXPECT_NE(expected.find("result_fill_01"), expected.npos);

  Job job = lit();
  const std::size_t failures =
      failEverywhere([&] { job.collapse(); }, [&](bool failed) { ASSERT_EQ(job.isCollapsed(), !failed); });
  EXPECT_GT(failures, 100u);
  EXPECT_EQ(job.assemble().text, expected);
}

TEST_F(OutOfMemoryTest, WhileALargeGraphCollapses) {
  const Document graph = Document::fromText(chainOf(300), "graph");
  const auto make = [&] { return Job(libraries_, graph); };
  Job whole = make();
  const long long allocations = allocationsOf([&] { whole.collapse(); });
  const std::string expected = whole.assemble().text;
  Job job = make();
  const std::size_t failures = failSomewhere(
      200, allocations,
      [&] {
        if (job.isCollapsed()) job = make();
        job.collapse();
      },
      [&](bool failed) { ASSERT_EQ(job.isCollapsed(), !failed); });
  // Code that is kept from one collapse to the next saves the later ones some.
  EXPECT_GT(failures, 190u);
  job.collapse();
  EXPECT_EQ(job.assemble().text, expected);
}

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

TEST_F(OutOfMemoryTest, WhileAJobReflects) {
  Job job(libraries_, Document::fromText(kGraph, "graph"));
  job.collapse();
  const std::string expected = writeInterfaceJson(job.reflect());
  letGo(job);
  std::string told;
  const std::size_t failures = failEverywhere([&] { told = writeInterfaceJson(job.reflect()); },
                                              [&](bool failed) {
                                                ASSERT_TRUE(failed || told == expected);
                                                letGo(job);
                                              });
  EXPECT_GT(failures, 100u);
  EXPECT_EQ(told, expected);
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
