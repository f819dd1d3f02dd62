#pragma once

// From a graph's text to the bytes of its shaders.

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/build/step_timer.h"
#include "host/check/compile_cache.h"
#include "sfg/host/build.h"

namespace TolmSDK::Graphics::sfg::host {

/// What compilers made of texts, each once: kept in the cache, the last of them in memory, too. Any number of
/// threads may use it.
class CompiledTexts {
public:
  /// `cache` may be null.
  CompiledTexts(BuildCache* cache, StepTimes& times) : cache_(cache), times_(times) {}

  struct Answer {
    std::shared_ptr<const std::string> bytes;
    bool isMade = false;  ///< by this call
  };
  /// The text of the shader in the target; of none its own. Throws CompileError. A text that another thread
  /// compiles is waited for.
  Answer compile(const Shader& shader, const std::optional<ShaderTarget>& target,
                 const CompileOptions& options);

  /// Under which the cache holds what compile() answers.
  static std::string keyOf(const Shader& shader, const std::optional<ShaderTarget>& target,
                           const CompileOptions& options);
  std::size_t compiled() const noexcept { return compiled_; }

private:
  template <class Make>
  Answer once(const std::string& key, const Make& make);
  std::shared_ptr<const std::string> find(const std::string& key);

  BuildCache* cache_;
  StepTimes& times_;
  std::mutex mutex_;
  BoundedMap<std::shared_future<std::shared_ptr<const std::string>>> texts_{512};
  std::atomic<std::size_t> compiled_{0};
};

/// "word by word": a module's bytes are little-endian.
std::vector<std::uint32_t> wordsOf(const std::string& bytes);

/// One collapse, and the shaders made of it. Used by one thread.
class ShaderMaker {
public:
  ShaderMaker(std::shared_ptr<const LibrarySet> libraries, CompiledTexts& texts, StepTimes& times)
      : libraries_(std::move(libraries)), texts_(texts), times_(times) {}

  /// Collapses; false when that fails. What is told is among the diagnostics(), now and later.
  bool collapse(const Document& graph, const std::optional<Document>& environment,
                const CollapseOptions& options);

  struct Made {
    std::shared_ptr<const std::string> bytes;
    std::string reflection;
    std::string textKey;  ///< under which the cache holds the bytes
    bool isCompiled = false;
  };
  /// Nothing when it fails. The graph is collapsed.
  std::optional<Made> make(const BuildTask& task);

  std::vector<Diagnostic> takeDiagnostics() { return std::exchange(diagnostics_, {}); }

private:
  void tell(std::span<const Diagnostic> diagnostics) {
    diagnostics_.insert(diagnostics_.end(), diagnostics.begin(), diagnostics.end());
  }
  std::string reflectionOf(const BuildTask& task, const Shader& shader) const;

  std::shared_ptr<const LibrarySet> libraries_;
  CompiledTexts& texts_;
  StepTimes& times_;
  std::optional<Job> job_;
  std::vector<Diagnostic> diagnostics_;
};

}  // namespace TolmSDK::Graphics::sfg::host
