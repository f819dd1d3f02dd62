#include "tolmsdk/ustring.h"

#include <array>
#include <mutex>
#include <shared_mutex>
#include <unordered_set>

#include "platform/never_destroyed.h"

namespace TolmSDK {

namespace {

/// A text with its hash, so that one computation serves both the choice of the shard and the look-up in it.
struct HashedText {
  std::wstring_view text;
  std::size_t hash;
};

struct PoolHash {
  using is_transparent = void;
  std::size_t operator()(const WString& text) const noexcept { return std::hash<std::wstring_view>()(text); }
  std::size_t operator()(const HashedText& text) const noexcept { return text.hash; }
};

struct PoolEqual {
  using is_transparent = void;
  bool operator()(const WString& a, const WString& b) const noexcept { return a == b; }
  bool operator()(const HashedText& a, const WString& b) const noexcept { return a.text == b; }
  bool operator()(const WString& a, const HashedText& b) const noexcept { return a == b.text; }
};

/// A part of the pool with a lock of its own. Nodes of the set never move, so addresses of texts stay valid.
class Shard {
public:
  const WString* intern(const HashedText& key) {
    {
      const std::shared_lock lock(mutex_);
      if (const auto found = texts_.find(key); found != texts_.end()) return &*found;
    }
    const std::unique_lock lock(mutex_);
    if (const auto found = texts_.find(key); found != texts_.end()) return &*found;
    return &*texts_.emplace(key.text).first;
  }

private:
  std::shared_mutex mutex_;
  std::unordered_set<WString, PoolHash, PoolEqual, StlAllocator<WString>> texts_;
};

constexpr std::size_t kShards = 16;

Shard& shardOf(std::size_t hash) {
  static NeverDestroyed<std::array<Shard, kShards>> shards;
  // The set inside uses the low bits.
  return shards.get()[(hash >> 24) % kShards];
}

const WString* emptyText() noexcept {
  static const NeverDestroyed<WString> text;
  return &text.get();
}

const WString* intern(std::wstring_view text) {
  if (text.empty()) return emptyText();
  const HashedText key{text, std::hash<std::wstring_view>()(text)};
  return shardOf(key.hash).intern(key);
}

}  // namespace

UString::UString() noexcept : text_(emptyText()) {}

UString::UString(std::wstring_view text) : text_(intern(text)) {}

}  // namespace TolmSDK
