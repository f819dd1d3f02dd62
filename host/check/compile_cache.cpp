#include "host/check/compile_cache.h"

#include "sfg/host/compile.h"
#include "tolmsdk/sha1.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

std::string keyOf(const Shader& shader) {
  const std::string head = std::to_string(static_cast<int>(shader.stage)) + shader.entryPoint + "\n";
  return toUtf8(SHA1_GetStringHash(fromUtf8(head + shader.text)));
}

/// Nothing is made of the module: it need only be legal.
std::shared_ptr<const CompileError> complaintOf(const Shader& shader) {
  try {
    compileToSpirv(shader, {.optimization = Optimization::none});
  } catch (const CompileError& error) {
    return std::make_shared<const CompileError>(error);
  }
  return nullptr;
}

}  // namespace

std::shared_ptr<const CompileError> CheckCache::Impl::compile(const Shader& shader) {
  const std::string key = keyOf(shader);
  std::promise<Answer> promise;
  {
    std::unique_lock<std::mutex> lock(mutex_);
    if (const auto* const known = texts_.find(key)) {
      const std::shared_future<Answer> answer = *known;
      lock.unlock();
      return answer.get();
    }
    texts_.insert(key, promise.get_future().share());
    ++compiled_;
  }
  try {
    Answer answer = complaintOf(shader);
    promise.set_value(answer);
    return answer;
  } catch (...) {
    promise.set_exception(std::current_exception());
    throw;
  }
}

std::size_t CheckCache::Impl::compiledTexts() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return compiled_;
}

CheckCache::Impl::Findings CheckCache::Impl::findLibrary(const std::string& key) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  const Findings* const known = libraries_.find(key);
  return known != nullptr ? *known : nullptr;
}

void CheckCache::Impl::keepLibrary(const std::string& key, Findings findings) {
  const std::lock_guard<std::mutex> lock(mutex_);
  libraries_.insert(key, std::move(findings));
}

CheckCache::CheckCache(std::size_t capacity) : impl_(std::make_unique<Impl>(capacity)) {}
CheckCache::~CheckCache() = default;

std::size_t CheckCache::compiledTexts() const { return impl_->compiledTexts(); }

}  // namespace TolmSDK::Graphics::sfg::host
