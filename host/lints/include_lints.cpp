#include "host/lints/include_lints.h"

#include <algorithm>

#include "host/documents/near_name.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

using Words = Set<std::wstring_view>;

void addWords(const PlainCode& code, Words& words) {
  const auto add = [&](const CodeToken& token) {
    if (token.isName) words.insert(token.in(code.text));
  };
  std::for_each(code.tokens.begin(), code.tokens.end(), add);
  for (const PlainCode::Directive& directive : code.directives) {
    if (directive.name != L"include") std::for_each(directive.tokens.begin(), directive.tokens.end(), add);
  }
}

/// Macros may put names together that stand nowhere.
bool joinsNames(const PlainCode& code) { return code.text.find(L"##") != code.text.npos; }

void tellMissing(const LoadedLibraries& libraries, const std::string& who, const WString& name,
                 const std::string& file, TextPosition position, LintList& lints) {
  std::string text = who + " includes " + inTicks(name) + ", which is in no include folder";
  if (libraries.includeFolders().empty()) {
    text += "; none is given (see -I)";
  } else {
    std::vector<std::string> known;
    for (const auto& [other, found] : libraries.includeFiles().files()) known.push_back(toUtf8(other));
    const std::string bare = bareIncludeName(toUtf8(name));
    const bool isKnown = libraries.includeFiles().find(fromUtf8(bare)) != nullptr;
    text += didYouMean(isKnown ? bare : std::string(nearestName(bare, known)));
  }
  lints.at(Finding::missingInclude, file, position, text);
}

/// Whether the line of the name ends with the comment "// keep": whoever includes the file may count on it.
bool isKept(const IncludeIndex::File& file, const IncludeFiles::Named& name) {
  if (name.position.line > file.lines.size()) return false;  // the file was changed meanwhile
  const std::size_t begin = file.lines[name.position.line - 1];
  const std::wstring_view line =
      std::wstring_view(file.text).substr(begin, file.text.find(L'\n', begin) - begin);
  constexpr std::wstring_view kMark = L"// keep";
  const std::size_t end = line.find_last_not_of(L" \t\r") + 1;
  return line.substr(0, end).ends_with(kMark);
}

/// All that is included through the file, itself among them.
Set<const IncludeIndex::File*> allOf(const IncludeIndex& includes, const IncludeIndex::File& file) {
  std::vector<const IncludeIndex::File*> open = {&file};
  Set<const IncludeIndex::File*> all;
  while (!open.empty()) {
    const IncludeIndex::File* const next = open.back();
    open.pop_back();
    if (next == nullptr || !all.insert(next).second) continue;
    for (const IncludeFiles::Named& named : next->includes) open.push_back(includes.find(named.name));
  }
  return all;
}

/// The code of one profile, and what it includes.
class ProfileIncludes {
public:
  ProfileIncludes(const LintedProfile& profile, const IncludeIndex& includes) : includes_(includes) {
    addWords(profile.predefine.plain, words_);
    addWords(profile.implementation.plain, words_);
    used_ = includes.filesOf(words_);
    const IObjectDataNode* const list = profile.object->member(L"includes");
    for (std::size_t i = 0; list != nullptr && i < list->size(); ++i) {
      if (list->elementOrNull(i)->kind() == NodeKind::string) named_.push_back(list->elementOrNull(i));
    }
    isCertain_ = profile.predefine.plain.isCertain && profile.implementation.plain.isCertain &&
                 !joinsNames(profile.predefine.plain);
  }

  const std::vector<const IObjectDataNode*>& named() const { return named_; }

  bool isUnused(const IObjectDataNode& name) const {
    const IncludeIndex::File* const file = includes_.find(name.asString());
    if (!isCertain_ || file == nullptr || !includes_.isComplete(file->name)) return false;
    if (used_.contains(file) || file->declared.names.empty()) return false;
    // Another include file may build on this one without including it.
    const Set<const IncludeIndex::File*> own = allOf(includes_, *file);
    Words others;
    for (const IObjectDataNode* const other : named_) {
      const IncludeIndex::File* const found = includes_.find(other->asString());
      if (found == nullptr) continue;
      for (const IncludeIndex::File* const part : allOf(includes_, *found))
        if (!own.contains(part)) addWords(part->code, others);
    }
    return !includes_.filesOf(others).contains(file);
  }

private:
  const IncludeIndex& includes_;
  Words words_;
  Set<const IncludeIndex::File*> used_;
  std::vector<const IObjectDataNode*> named_;
  bool isCertain_ = true;
};

}  // namespace

void lintIncludes(const LoadedLibraries& libraries, const LintedFile& file, const LintedFragment& fragment,
                  const IncludeIndex& includes, LintList& lints) {
  for (const LintedProfile& profile : fragment.profiles) {
    const ProfileIncludes all(profile, includes);
    for (const IObjectDataNode* const name : all.named()) {
      if (name->asString().empty()) continue;
      if (libraries.includeFiles().find(name->asString()) == nullptr) {
        tellMissing(libraries, named(fragment), name->asString(), file.name, name->position(), lints);
      } else if (all.isUnused(*name)) {
        lints.at(Finding::unusedInclude, file.name, name->position(),
                 named(fragment) + " uses nothing of " + inTicks(name->asString()));
      }
    }
  }
}

void lintIncludeFile(const LoadedLibraries& libraries, const IncludeIndex::File& file,
                     const IncludeIndex& includes, LintList& lints) {
  Words words;
  addWords(file.code, words);
  const Set<const IncludeIndex::File*> used = includes.filesOf(words);
  // A file that declares nothing is there for what it includes.
  const bool isCollection = file.declared.names.empty();
  if (const IncludeFiles::File* const read = libraries.includeFiles().find(file.name)) {
    for (const IncludeFiles::Nameless& line : read->nameless)
      lints.at(Finding::missingInclude, file.path, line.position, line.text);
  }
  for (const IncludeFiles::Named& name : file.includes) {
    if (libraries.includeFiles().find(name.name) == nullptr) {
      tellMissing(libraries, "this include file", name.name, file.path, name.position, lints);
      continue;
    }
    const IncludeIndex::File* const included = includes.find(name.name);
    if (isCollection || included == nullptr || included == &file || !file.declared.isCertain) continue;
    if (joinsNames(file.code) || !includes.isComplete(name.name) || included->declared.names.empty())
      continue;
    if (used.contains(included) || isKept(file, name)) continue;
    lints.at(Finding::unusedInclude, file.path, name.position,
             "this include file uses nothing of " + inTicks(name.name));
  }
}

}  // namespace TolmSDK::Graphics::sfg::host
