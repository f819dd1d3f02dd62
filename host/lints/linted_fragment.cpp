#include "host/lints/linted_fragment.h"

#include <algorithm>

#include "text/ascii.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

std::string stringOf(const IObjectDataNode& object, std::wstring_view key, const char* otherwise) {
  const IObjectDataNode* const value = object.member(key);
  return value != nullptr ? std::string(value->asUtf8()) : otherwise;
}

EShaderFragmentProfileMode modeOf(const IObjectDataNode& profile) {
  const IObjectDataNode* const mode = profile.member(L"mode");
  std::wstring_view word;
  if (mode != nullptr) word = mode->asString();
  if (equalsIgnoringCase(word, L"inline")) return EShaderFragmentProfileMode::Inline;
  return equalsIgnoringCase(word, L"metaSL") ? EShaderFragmentProfileMode::MetaSL
                                             : EShaderFragmentProfileMode::Function;
}

LintedCode readPlain(const IObjectDataNode& fragment, const IObjectDataNode& profile, CodePart part,
                     const LintedFile& file) {
  LintedCode code{readCode(fragment, profile, part, file.name, file.places), {}};
  if (code.spelled != nullptr) code.plain = plainCode(code.spelled->text, code.spelled->tokens);
  return code;
}

/// Finds `void name(parameters) { body }`.
void readFunction(LintedProfile& profile) {
  const PlainCode& code = profile.implementation.plain;
  std::size_t open = 0;
  while (open < code.tokens.size() && !code.is(open, L'(')) ++open;
  if (open == code.tokens.size()) return;
  const std::size_t close = behindBrackets(code.text, code.tokens, open);
  profile.parameters = readParameters(code, open, close - 1);
  std::size_t begin = close;
  while (begin < code.tokens.size() && !code.is(begin, L'{')) ++begin;
  std::size_t end = code.tokens.size();
  while (end > begin && !code.is(end - 1, L'}')) --end;
  profile.bodyBegin = std::min(begin + 1, code.tokens.size());
  profile.bodyEnd = std::max(end, profile.bodyBegin + 1) - 1;
}

LintedProfile readProfile(const IObjectDataNode& fragment, const IObjectDataNode& object,
                          const LintedFile& file) {
  LintedProfile profile;
  profile.object = &object;
  profile.mode = modeOf(object);
  profile.name = stringOf(object, L"name", "default");
  if (const IObjectDataNode* const lod = object.member(L"lod")) profile.lod = lod->asNumber();
  if (const IObjectDataNode* const languages = object.member(L"language")) {
    for (std::size_t i = 0; i < languages->size(); ++i)
      profile.languages.emplace_back(languages->elementOrNull(i)->asUtf8());
  }
  profile.predefine = readPlain(fragment, object, CodePart::predefine, file);
  profile.implementation = readPlain(fragment, object, CodePart::implementation, file);
  if (!profile.isInline()) readFunction(profile);
  return profile;
}

const std::string& textOf(const LoadedLibraries& libraries, const std::string& file) {
  static const std::string none;
  const std::string* const text = libraries.texts().find(file);
  return text != nullptr ? *text : none;
}

}  // namespace

LintedFile::LintedFile(const LoadedLibraries& libraries, const std::string& file)
    : name(file), places(textOf(libraries, file)), document(createJsonNode()) {
  document->loadFromText(fromUtf8(textOf(libraries, file)));
  if (document->kind() != NodeKind::object) return;
  for (std::size_t i = 0; i < document->size(); ++i) {
    const IObjectDataNode* const object = document->element(i);
    const WString& key = document->memberName(i);
    const FragmentFiles::Entry* const entry = libraries.files().find(key);
    if (object == nullptr || entry == nullptr || entry->file != file) continue;
    if (libraries.language().findFragment(key) == nullptr) continue;
    LintedFragment fragment{key, object, {}};
    for (const IObjectDataNode* const profile : profileObjects(*object))
      fragment.profiles.push_back(readProfile(*object, *profile, *this));
    fragments.push_back(std::move(fragment));
  }
}

}  // namespace TolmSDK::Graphics::sfg::host
