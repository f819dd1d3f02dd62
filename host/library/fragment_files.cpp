#include "host/library/fragment_files.h"

#include <algorithm>
#include <utility>

#include "host/library/string_places.h"
#include "sfg/host/errors.h"
#include "sfg/shader_fragment_profile.h"
#include "tolmsdk/type_id.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

void addIncludes(std::vector<FragmentFiles::NamedPlace>& places, const IObjectDataNode& profile) {
  const IObjectDataNode* const includes = profile.member(L"includes");
  for (std::size_t i = 0; includes != nullptr && i < includes->size(); ++i) {
    const IObjectDataNode& name = *includes->elementOrNull(i);
    if (name.kind() == NodeKind::string) places.push_back({name.asString(), name.position()});
  }
}

std::vector<FragmentFiles::NamedPlace> includesOf(const IObjectDataNode& fragment) {
  std::vector<FragmentFiles::NamedPlace> places;
  addIncludes(places, fragment);
  const IObjectDataNode* const profiles = fragment.member(L"profiles");
  for (std::size_t i = 0; profiles != nullptr && i < profiles->size(); ++i)
    addIncludes(places, *profiles->elementOrNull(i));
  return places;
}

bool isWordCharacter(wchar_t c) {
  return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || (c >= L'0' && c <= L'9') || c == L'_';
}

/// Where the word stands in the text by itself, from `start` on.
std::size_t findWord(std::wstring_view text, std::wstring_view word, std::size_t start = 0) {
  for (std::size_t at = text.find(word, start); at != text.npos; at = text.find(word, at + 1)) {
    const std::size_t end = at + word.size();
    if ((at == 0 || !isWordCharacter(text[at - 1])) && (end == text.size() || !isWordCharacter(text[end])))
      return at;
  }
  return text.npos;
}

/// Where the code of the fragment or of one of its profiles declares the parameter.
TextPosition findParameter(const IObjectDataNode& profile, const WString& type, const WString& parameter) {
  const IObjectDataNode* const code = profile.member(L"implementation");
  for (std::size_t i = 0; code != nullptr && i < code->size(); ++i) {
    const IObjectDataNode& line = *code->elementOrNull(i);
    const std::wstring_view text = line.asString();
    for (std::size_t at = findWord(text, type); at != text.npos; at = findWord(text, type, at + 1)) {
      const std::size_t name = text.find_first_not_of(L" \t", at + type.size());
      if (name != text.npos && findWord(text, parameter, name) == name) return positionIn(line, at);
    }
  }
  return code != nullptr ? code->position() : profile.position();
}

/// A type text that could be a structure's name.
bool isStructure(std::wstring_view type) {
  const bool isWord = !type.empty() && std::all_of(type.begin(), type.end(), isWordCharacter);
  return isWord && ITypeTraits::findType(type) == TypeID_nil && type != TypeID_nil.toString();
}

}  // namespace

std::string FragmentFiles::Entry::place() const { return InputError(file, position, std::string()).place(); }

void FragmentFiles::addFile(const WString& file) { files_.push_back(toUtf8(file)); }

void FragmentFiles::addFragment(const WString& file, const WString& name, const IObjectDataNode& object) {
  const IObjectDataNode* const description = object.member(L"description");
  entries_.insert_or_assign(name, Entry{toUtf8(file),
                                        object.position(),
                                        description != nullptr ? description->asString() : WString(),
                                        includesOf(object),
                                        {}});
}

void FragmentFiles::addCode(const IObjectDataNode& object, const IShaderFragment& fragment) {
  constexpr std::wstring_view kInout = L"inout ";
  std::vector<TypedPlace> structures;
  const IObjectDataNode* const profiles = object.member(L"profiles");
  std::size_t next = 0;
  for (std::size_t i = 0; i < fragment.getNumProfiles(); ++i) {
    const IObjectDataNode* profile = nullptr;
    while (profiles != nullptr && next < profiles->size() && profile == nullptr)
      profile = profiles->element(next++);
    const auto add = [&](std::wstring_view text, const WString& parameter) {
      if (text.starts_with(kInout)) text.remove_prefix(kInout.size());
      if (!isStructure(text)) return;
      const WString type(text);
      structures.push_back(
          {type, parameter, findParameter(profile != nullptr ? *profile : object, type, parameter)});
    };
    const ITextParameterList& list = *fragment.getProfile(i)->getFunctionParameters();
    for (std::size_t k = 0; k < list.getNumInputs(); ++k) add(list.getInputType(k), list.getInputName(k));
    for (std::size_t k = 0; k < list.getNumOutputs(); ++k) add(list.getOutputType(k), list.getOutputName(k));
  }
  const IObjectDataNode* const uniforms = object.member(L"uniforms");
  for (std::size_t i = 0; uniforms != nullptr && i < uniforms->size(); ++i) {
    const IObjectDataNode* const type = uniforms->elementOrNull(i)->member(L"struct");
    const IObjectDataNode* const name = uniforms->elementOrNull(i)->member(L"name");
    if (type == nullptr || name == nullptr || !isStructure(type->asString())) continue;
    structures.push_back({type->asString(), name->asString(), type->position()});
  }
  const auto entry = entries_.find(fragment.key());
  if (entry != entries_.end()) entry->second.structures = std::move(structures);
}

const FragmentFiles::Entry* FragmentFiles::find(const WString& fragment) const {
  const auto found = entries_.find(fragment);
  return found != entries_.end() ? &found->second : nullptr;
}

}  // namespace TolmSDK::Graphics::sfg::host
