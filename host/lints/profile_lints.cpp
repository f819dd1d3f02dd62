#include "host/lints/profile_lints.h"

#include <array>
#include <charconv>
#include <tuple>

#include "sfg/host/errors.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

void addText(const LintedCode& code, WString& text) {
  if (code.spelled != nullptr) {
    for (const CodeToken& token : code.spelled->tokens)
      text.append(token.in(code.spelled->text)).append(L" ");
  }
  text += L'\n';
}

/// Equal for profiles of equal code.
WString codeOf(const LintedProfile& profile) {
  WString text = profile.isInline() ? L"inline\n" : L"\n";
  addText(profile.predefine, text);
  addText(profile.implementation, text);
  Set<WString> includes;
  const IObjectDataNode* const list = profile.object->member(L"includes");
  for (std::size_t i = 0; list != nullptr && i < list->size(); ++i)
    includes.insert(list->elementOrNull(i)->asString());
  for (const WString& name : includes) text.append(name).append(L"\n");
  return text;
}

TextPosition placeOfLevel(const LintedProfile& profile) {
  const IObjectDataNode* const lod = profile.object->member(L"lod");
  return lod != nullptr ? lod->position() : profile.object->position();
}

std::string levelOf(const LintedProfile& profile) {
  std::array<char, 32> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), static_cast<float>(profile.lod));
  return {text.data(), end.ptr};
}

class ProfileLints {
public:
  ProfileLints(const LintedFile& file, const LintedFragment& fragment, LintList& lints)
      : file_(file), fragment_(fragment), lints_(lints) {}

  void run() {
    for (const LintedProfile& profile : fragment_.profiles) {
      if (profile.languages.empty()) {
        lints_.at(Finding::unreachableProfile, file_.name, profile.object->position(),
                  "this profile of " + named(fragment_) + " can never be chosen: it names no language");
      } else if (const LintedProfile* const first = findFirst(profile)) {
        lints_.at(Finding::unreachableProfile, file_.name, profile.object->position(),
                  "this profile of " + named(fragment_) + " can never be chosen: the one at " +
                      placeOf(*first) + " has the same language, name and level of detail");
      } else {
        compareLevels(profile);
      }
    }
  }

private:
  std::string placeOf(const LintedProfile& profile) const {
    return InputError(file_.name, profile.object->position(), std::string()).place();
  }

  /// An earlier profile that is taken in place of this one for its last language; null when this is taken for
  /// one of them.
  const LintedProfile* findFirst(const LintedProfile& profile) {
    const LintedProfile* first = nullptr;
    bool isTaken = false;
    for (const std::string& language : profile.languages) {
      const auto [known, isNew] =
          taken_.try_emplace({language, profile.name, static_cast<float>(profile.lod)}, &profile);
      if (isNew || known->second == &profile) {
        isTaken = true;
      } else {
        first = known->second;
      }
    }
    return isTaken ? nullptr : first;
  }

  void compareLevels(const LintedProfile& profile) {
    WString key = codeOf(profile);
    key.append(fromUtf8(profile.name)).append(L"\n");
    for (const std::string& language : Set<std::string>(profile.languages.begin(), profile.languages.end()))
      key.append(fromUtf8(language)).append(L"\n");
    const auto [known, isNew] = codes_.try_emplace(std::move(key), &profile);
    if (isNew) return;
    lints_.at(Finding::repeatedLevel, file_.name, placeOfLevel(profile),
              "level of detail " + levelOf(profile) + " of " + named(fragment_) +
                  " has the same code as level " + levelOf(*known->second) + ", at " +
                  placeOf(*known->second));
  }

  const LintedFile& file_;
  const LintedFragment& fragment_;
  LintList& lints_;
  Map<std::tuple<std::string, std::string, float>, const LintedProfile*> taken_;
  Map<WString, const LintedProfile*> codes_;
};

}  // namespace

void lintProfiles(const LintedFile& file, const LintedFragment& fragment, LintList& lints) {
  ProfileLints(file, fragment, lints).run();
}

}  // namespace TolmSDK::Graphics::sfg::host
