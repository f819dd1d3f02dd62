#include "host/lints/include_index.h"

#include <algorithm>

#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

TextPosition IncludeIndex::File::placeOf(std::size_t offset) const {
  const auto line = std::upper_bound(lines.begin(), lines.end(), offset) - 1;
  return {static_cast<std::size_t>(line - lines.begin()) + 1, offset - *line + 1};
}

IncludeIndex::IncludeIndex(const LoadedLibraries& libraries) {
  for (const auto& [name, file] : libraries.includeFiles().files()) add(name, file, libraries);
  for (const File& file : files_) {
    byName_.emplace(file.name, &file);
    for (const std::wstring_view name : file.declared.names) declaring_[name].push_back(&file);
    for (const IncludeFiles::Named& included : file.includes) including_[included.name].push_back(&file);
    for (const auto& [name, writes] : file.declared.functions) {
      std::vector<bool>& all = functions_[name];
      if (all.size() < writes.size()) all.resize(writes.size());
      for (std::size_t i = 0; i < writes.size(); ++i) all[i] = all[i] || writes[i];
    }
    for (const auto& [name, structure] : file.declared.structures) {
      const auto [known, isNew] = structures_.emplace(name, &structure);
      if (!isNew && known->second != nullptr && known->second->members != structure.members)
        known->second = nullptr;
    }
    for (const auto& [name, macro] : file.declared.macros) {
      Declarations::Macro& all = macros_[name];
      all.names.insert(macro.names.begin(), macro.names.end());
      all.isExpression = all.isExpression && macro.isExpression;
    }
  }
  findIncomplete();
}

void IncludeIndex::add(const WString& name, const IncludeFiles::File& file,
                       const LoadedLibraries& libraries) {
  const std::vector<std::string>& paths = libraries.texts().includeFiles(name);
  // Of several files of one name nobody knows which is meant.
  if (!file.fault.empty() || paths.size() != 1) return;
  File& added = files_.emplace_back();
  added.name = name;
  added.path = paths.front();
  added.text = fromUtf8(*libraries.texts().find(added.path));
  added.tokens = tokensOf(added.text);
  added.code = plainCode(added.text, added.tokens);
  added.declared = declarationsOf(added.code);
  added.includes = file.includes;
  added.lines = {0};
  for (std::size_t end = added.text.find(L'\n'); end != added.text.npos;
       end = added.text.find(L'\n', end + 1))
    added.lines.push_back(end + 1);
}

/// Files that name what is not there, and those that include them.
void IncludeIndex::findIncomplete() {
  std::vector<std::wstring_view> open;
  for (const File& file : files_) {
    if (!file.declared.isCertain) open.push_back(file.name);
    for (const IncludeFiles::Named& included : file.includes)
      if (!byName_.contains(included.name)) open.push_back(file.name);
  }
  while (!open.empty()) {
    const std::wstring_view name = open.back();
    open.pop_back();
    if (!incomplete_.insert(name).second) continue;
    const auto users = including_.find(name);
    if (users == including_.end()) continue;
    for (const File* const user : users->second) open.push_back(user->name);
  }
}

const IncludeIndex::File* IncludeIndex::find(std::wstring_view name) const {
  const auto found = byName_.find(name);
  return found != byName_.end() ? found->second : nullptr;
}

bool IncludeIndex::isComplete(std::wstring_view name) const {
  return byName_.contains(name) && !incomplete_.contains(name);
}

const std::vector<bool>* IncludeIndex::findFunction(std::wstring_view name) const {
  const auto found = functions_.find(name);
  return found != functions_.end() ? &found->second : nullptr;
}

const Declarations::Structure* IncludeIndex::findStructure(std::wstring_view name) const {
  const auto found = structures_.find(name);
  return found != structures_.end() ? found->second : nullptr;
}

const Declarations::Macro* IncludeIndex::findMacro(std::wstring_view name) const {
  const auto found = macros_.find(name);
  return found != macros_.end() ? &found->second : nullptr;
}

Set<const IncludeIndex::File*> IncludeIndex::filesOf(const Set<std::wstring_view>& names) const {
  std::vector<const File*> open;
  for (const std::wstring_view name : names) {
    const auto found = declaring_.find(name);
    if (found != declaring_.end()) open.insert(open.end(), found->second.begin(), found->second.end());
  }
  Set<const File*> files;
  while (!open.empty()) {
    const File* const file = open.back();
    open.pop_back();
    if (!files.insert(file).second) continue;
    const auto users = including_.find(file->name);
    if (users != including_.end()) open.insert(open.end(), users->second.begin(), users->second.end());
  }
  return files;
}

}  // namespace TolmSDK::Graphics::sfg::host
