#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <mutex>
#include <set>
#include <utility>

#include "host/build/file_stamps.h"
#include "host/documents/diagnose.h"
#include "sfg/host/build.h"
#include "sfg/host/output.h"
#include "tolmsdk/sha1.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

namespace fs = std::filesystem;

/// Of the folder's layout and its entries.
constexpr std::string_view kVersion = "sfg build cache 1\n";
constexpr const char* kVersionFile = "version";
constexpr const char* kEntries = "entries";
/// What an entry starts with, in front of its key, the hash of its bytes, and a line feed.
constexpr std::string_view kMagic = "sfg-entry ";

/// An entry counts as used again only so often: reading writes nothing but its time.
constexpr std::chrono::minutes kUseStep{10};

std::string headOf(const std::string& key, std::string_view bytes) {
  return std::string(kMagic) + key + " " + SHA1_GetBytesHash(bytes) + "\n";
}

}  // namespace

class BuildCache::Impl {
public:
  Impl(fs::path folder, std::uint64_t limit) : folder_(std::move(folder)), limit_(limit) {
    std::error_code error;
    fs::create_directories(folder_ / kEntries, error);
    const std::string reason = error.message();
    const std::string version = (folder_ / kVersionFile).string();
    const std::optional<std::string> found = readBytes(version);
    if (found && *found != kVersion) {
      tell("the cache is one of another version of sfg, and is left alone: nothing is reused or kept; "
           "another folder can be named with `--cache`");
      canRead_ = canWrite_ = false;
    } else if (!found && error) {
      cannotWrite(reason);
    } else if (!found) {
      if (const std::optional<std::string> fault = replaceFile(version, kVersion)) cannotWrite(*fault);
    }
  }

  std::optional<std::string> find(const std::string& key) {
    if (!canRead_) return std::nullopt;
    const fs::path file = fileOf(key);
    std::optional<std::string> entry = readBytes(file.string());
    if (!entry) return std::nullopt;
    const std::size_t end = entry->find('\n');
    const std::string_view bytes =
        end != entry->npos ? std::string_view(*entry).substr(end + 1) : std::string_view();
    if (end == entry->npos || headOf(key, bytes) != std::string_view(*entry).substr(0, end + 1)) {
      tell("the entry `" + file.string() + "` is damaged, and is made again");
      std::error_code ignored;
      fs::remove(file, ignored);
      return std::nullopt;
    }
    touch(file);
    return std::string(bytes);
  }

  void keep(const std::string& key, std::string_view bytes) {
    if (!canWrite_) return;
    const fs::path file = fileOf(key);
    std::error_code error;
    fs::create_directories(file.parent_path(), error);
    std::string entry = headOf(key, bytes);
    entry += bytes;
    if (const std::optional<std::string> reason = replaceFile(file, entry)) return cannotWrite(*reason);
    hasKept_ = true;
  }

  void shrink() {
    if (!hasKept_) return;
    std::vector<Entry> entries;
    std::uint64_t size = 0;
    std::error_code error;
    for (fs::recursive_directory_iterator entry(folder_ / kEntries, error), end; !error && entry != end;
         entry.increment(error)) {
      std::error_code ignored;
      if (!entry->is_regular_file(ignored)) continue;
      entries.push_back({entry->last_write_time(ignored), entry->file_size(ignored), entry->path()});
      if (ignored) entries.pop_back();
      if (!ignored) size += entries.back().size;
    }
    if (size <= limit_) return;
    std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
      return std::tie(a.used, a.path) < std::tie(b.used, b.path);
    });
    // Some room is left, so that the next build need not look again for each of its entries.
    for (const Entry& entry : entries) {
      if (size <= limit_ - limit_ / 10) return;
      std::error_code ignored;
      if (fs::remove(entry.path, ignored)) size -= entry.size;
    }
  }

  std::vector<Diagnostic> takeProblems() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return std::exchange(problems_, {});
  }

private:
  struct Entry {
    fs::file_time_type used;
    std::uint64_t size;
    fs::path path;
  };

  fs::path fileOf(const std::string& key) const {
    return folder_ / kEntries / key.substr(0, 2) / key.substr(std::min<std::size_t>(2, key.size()));
  }

  void touch(const fs::path& file) const {
    if (!canWrite_) return;
    std::error_code error;
    const auto now = fs::file_time_type::clock::now();
    const auto used = fs::last_write_time(file, error);
    if (!error && now - used > kUseStep) fs::last_write_time(file, now, error);
  }

  void cannotWrite(const std::string& reason) {
    canWrite_ = false;
    tell("nothing can be kept in the cache: " + reason);
  }

  void tell(const std::string& text) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (told_.insert(text).second)
      problems_.push_back(diagnose(Finding::cacheTrouble, Severity::warning, folder_.string(), {}, text));
  }

  fs::path folder_;
  std::uint64_t limit_;
  std::atomic<bool> canRead_{true};
  std::atomic<bool> canWrite_{true};
  std::atomic<bool> hasKept_{false};
  std::mutex mutex_;
  std::vector<Diagnostic> problems_;
  std::set<std::string> told_;
};

BuildCache::BuildCache(fs::path folder, std::uint64_t limit)
    : impl_(std::make_unique<Impl>(std::move(folder), limit)) {}
BuildCache::~BuildCache() = default;

fs::path BuildCache::usualFolder() {
  const auto folderOf = [](const char* name) -> fs::path {
    const char* const value = std::getenv(name);
    return value != nullptr && *value == '/' ? value : "";
  };
  if (const fs::path cache = folderOf("XDG_CACHE_HOME"); !cache.empty()) return cache / "sfg";
  const fs::path home = folderOf("HOME");
  return home.empty() ? fs::path() : home / ".cache" / "sfg";
}

std::optional<std::string> BuildCache::find(const std::string& key) { return impl_->find(key); }
void BuildCache::keep(const std::string& key, std::string_view bytes) { impl_->keep(key, bytes); }
void BuildCache::shrink() { impl_->shrink(); }
std::vector<Diagnostic> BuildCache::takeProblems() { return impl_->takeProblems(); }

}  // namespace TolmSDK::Graphics::sfg::host
