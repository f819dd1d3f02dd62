#include "sfg/shader_includes.h"

#include <set>

#include "tolmsdk/files.h"
#include "tolmsdk/sha1.h"

namespace TolmSDK::Graphics::sfg {

namespace {

bool isHeader(std::wstring_view path) {
  const WString extension = GetExtension(path);
  return extension == L"h" || extension == L"H";
}

/// The text between the first two double quotes of a directive's line; empty when there are no two.
std::wstring_view quotedName(std::wstring_view line) {
  const std::size_t open = line.find(L'"');
  if (open == std::wstring_view::npos) return {};
  const std::size_t close = line.find(L'"', open + 1);
  if (close == std::wstring_view::npos) return {};
  return line.substr(open + 1, close - open - 1);
}

/// Appends the text without its `#include` lines, whose names are gathered.
void readIncludes(WString& content, Set<WString>& includes, std::wstring_view text) {
  constexpr std::wstring_view kDirective = L"#include";
  std::size_t cursor = 0;
  for (std::size_t at = text.find(kDirective); at != std::wstring_view::npos;
       at = text.find(kDirective, cursor)) {
    content.append(text.substr(cursor, at - cursor));
    const std::size_t lineFeed = text.find(L'\n', at);
    cursor = lineFeed == std::wstring_view::npos ? text.size() : lineFeed + 1;
    const std::wstring_view name = quotedName(text.substr(at, cursor - at));
    if (!name.empty()) includes.emplace(name);
  }
  content.append(text.substr(cursor));
}

}  // namespace

ShaderIncludes& ShaderIncludes::Singleton() {
  // No test meets the guard of threads that come at the same time.
  static ShaderIncludes instance;  // GCOVR_EXCL_BR_LINE
  return instance;
}

ShaderIncludes::ShaderIncludes() = default;
ShaderIncludes::~ShaderIncludes() = default;

void ShaderIncludes::addIncludePath(const wchar_t* path) {
  if (path == nullptr) return;
  for (const WString& file : EnumFiles(path)) {
    if (!isHeader(file)) continue;
    WString text;
    if (!GetUTF8TextFileString(file, text)) continue;
    Include& include = includes_[GetFilename(file)];
    readIncludes(include.content, include.includes, text);
  }
}

void ShaderIncludes::clear() { includes_.clear(); }

const ShaderIncludes::Include* ShaderIncludes::findInclude(std::wstring_view name) const {
  const auto found = includes_.find(name);
  return found == includes_.end() ? nullptr : &found->second;
}

const WString& ShaderIncludes::getIncludeContent(const wchar_t* name) const {
  const Include* include = name == nullptr ? nullptr : findInclude(name);
  return include == nullptr ? emptyContent_ : include->content;
}

const Set<WString>& ShaderIncludes::getAncestorIncludes(const wchar_t* name) const {
  const Include* include = name == nullptr ? nullptr : findInclude(name);
  return include == nullptr ? emptySet_ : include->includes;
}

/// A depth-first walk with its own stack, which visits each name once: a second visit would append nothing,
/// and one that is still under way is a cycle.
class ShaderIncludes::FlatWalk {
public:
  FlatWalk(const ShaderIncludes& includes, Array<WString>& out, Set<WString>& done)
      : includes_(includes), out_(out), done_(done) {}

  /// The name outlives the walk.
  void visit(std::wstring_view name) {
    enter(name);
    while (!stack_.empty()) {
      Level& level = stack_.back();
      if (level.next != level.end) {
        enter(*level.next++);
      } else {
        leave(level.name);
        stack_.pop_back();
      }
    }
  }

private:
  struct Level {
    std::wstring_view name;
    Set<WString>::const_iterator next;
    Set<WString>::const_iterator end;
  };

  void enter(std::wstring_view name) {
    if (!entered_.insert(name).second) return;
    const Include* include = includes_.findInclude(name);
    const Set<WString>& names = include == nullptr ? includes_.emptySet_ : include->includes;
    stack_.push_back({name, names.begin(), names.end()});
  }

  void leave(std::wstring_view name) {
    if (done_.find(name) != done_.end()) return;
    out_.emplace_back(name);
    done_.emplace(name);
  }

  const ShaderIncludes& includes_;
  Array<WString>& out_;
  Set<WString>& done_;
  std::set<std::wstring_view> entered_;
  Array<Level> stack_;
};

void ShaderIncludes::createFlatIncludeArray(Array<WString>& out, Set<WString>& done,
                                            const WString& name) const {
  // The caller's name may be an element of `out`, which grows.
  const WString root = name;
  FlatWalk(*this, out, done).visit(root);
}

void ShaderIncludes::createFlatIncludeArray(Array<WString>& out, Set<WString>& done,
                                            const Set<WString>& names) const {
  FlatWalk walk(*this, out, done);
  for (const WString& name : names) walk.visit(name);
}

WString ShaderIncludes::getIncludesHash(const Set<WString>& names) {
  Array<WString> flat;
  Set<WString> done;
  createFlatIncludeArray(flat, done, names);

  WString result;
  const std::lock_guard lock(hashCacheMutex_);
  for (const WString& name : flat) {
    auto cached = hashCache_.find(name);
    if (cached == hashCache_.end())
      cached = hashCache_.emplace(name, SHA1_GetStringHash(getIncludeContent(name.c_str()))).first;
    result += cached->second;
  }
  return result;
}

}  // namespace TolmSDK::Graphics::sfg
