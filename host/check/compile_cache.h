#pragma once

// What compilers said of texts, kept by hash.

#include <cstddef>
#include <deque>
#include <future>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/check/finding_list.h"
#include "sfg/host/check.h"
#include "sfg/host/errors.h"
#include "sfg/host/shader.h"

namespace TolmSDK::Graphics::sfg::host {

/// Values by key, the oldest of which are dropped. Used by one thread at a time.
template <class Value>
class BoundedMap {
public:
  explicit BoundedMap(std::size_t capacity) : capacity_(capacity) {}

  /// Null for an unknown key.
  const Value* find(const std::string& key) const {
    const auto found = values_.find(key);
    return found != values_.end() ? &found->second : nullptr;
  }
  void insert(const std::string& key, Value value) {
    if (capacity_ == 0 || !values_.try_emplace(key, std::move(value)).second) return;
    keys_.push_back(key);
    if (keys_.size() <= capacity_) return;
    values_.erase(keys_.front());
    keys_.pop_front();
  }

private:
  std::size_t capacity_;
  std::unordered_map<std::string, Value> values_;
  std::deque<std::string> keys_;  // the oldest first
};

/// Any number of threads may use it.
class CheckCache::Impl {
public:
  explicit Impl(std::size_t capacity) : texts_(capacity), libraries_(capacity) {}

  /// What the compilers have against the shader; null when they take it. A text that another thread is
  /// compiling is waited for.
  std::shared_ptr<const CompileError> compile(const Shader& shader);
  std::size_t compiledTexts() const;

  using Findings = std::shared_ptr<const std::vector<FindingGroup>>;
  /// What was found in a part of a library, or null; `key` holds the hash of all that it depends on.
  Findings findLibrary(const std::string& key) const;
  void keepLibrary(const std::string& key, Findings findings);

private:
  using Answer = std::shared_ptr<const CompileError>;

  mutable std::mutex mutex_;
  BoundedMap<std::shared_future<Answer>> texts_;
  BoundedMap<Findings> libraries_;
  std::size_t compiled_ = 0;
};

}  // namespace TolmSDK::Graphics::sfg::host
