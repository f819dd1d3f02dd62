#include "host/lints/name_lints.h"

#include "host/diagnostics/contained_names.h"
#include "host/diagnostics/raw_statements.h"
#include "sfg/code_snippet.h"
#include "tolmsdk/type_id.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// The identifiers of a profile, each as it stands first.
void addIdentifiers(const LintedCode& code, Set<std::wstring_view>& identifiers) {
  if (code.spelled == nullptr) return;
  for (const CodeToken& token : code.spelled->tokens)
    if (token.isName) identifiers.insert(token.in(code.spelled->text));
}

/// The code that the view points into, and its place in the file.
TextPosition placeOf(const LintedProfile& profile, std::wstring_view identifier) {
  for (const LintedCode* const code : {&profile.predefine, &profile.implementation}) {
    if (code->spelled == nullptr) continue;
    const WString& text = code->spelled->text;
    const std::less<const wchar_t*> isBefore;
    if (isBefore(identifier.data(), text.data()) || !isBefore(identifier.data(), text.data() + text.size()))
      continue;
    return code->spelled->placeOf(static_cast<std::size_t>(identifier.data() - text.data()));
  }
  return profile.object->position();
}

class NameLints {
public:
  NameLints(const LintedFile& file, const LintedFragment& fragment, LintList& lints)
      : file_(file), fragment_(fragment), lints_(lints) {}

  void run() {
    std::vector<ContainedNames::Name> uniforms;
    const IObjectDataNode* const list = fragment_.object->member(L"uniforms");
    for (std::size_t i = 0; list != nullptr && i < list->size(); ++i) {
      const IObjectDataNode* const name = list->elementOrNull(i)->member(L"name");
      const IObjectDataNode* const type = list->elementOrNull(i)->member(L"type");
      if (name == nullptr || name->asString().empty()) continue;
      const bool isSampler = type != nullptr && isSamplerType(ITypeTraits::findType(type->asString()));
      uniforms.push_back({name->asString(), isSampler});
    }
    ContainedNames uniformSearch(uniforms);
    for (const LintedProfile& profile : fragment_.profiles) {
      Set<std::wstring_view> identifiers;
      addIdentifiers(profile.predefine, identifiers);
      addIdentifiers(profile.implementation, identifiers);
      tell(profile, "uniform", uniforms, uniformSearch.find(identifiers));
      if (profile.predefine.spelled == nullptr) continue;
      const Set<WString> names = helperNames(profile.predefine.spelled->text);
      std::vector<ContainedNames::Name> helpers;
      for (const WString& name : names) helpers.push_back({name, false});
      tell(profile, "helper", helpers, ContainedNames(helpers).find(identifiers));
    }
  }

private:
  /// Names of the functions, structures and variables that are renamed when others have them, too.
  static Set<WString> helperNames(const WString& predefine) {
    CodeSnippet snippet;
    snippet.addCode(predefine);
    snippet.parse();
    Set<WString> names;
    for (std::size_t i = 0; i < snippet.getNumSymbols(); ++i) {
      const ScopedText name = snippet.getSymbol(i).getName();
      if (!name.empty()) names.insert(WString(name.view()));
    }
    return names;
  }

  void tell(const LintedProfile& profile, const char* kind, const std::vector<ContainedNames::Name>& names,
            const std::vector<ContainedNames::Found>& found) {
    for (const ContainedNames::Found& one : found) {
      const std::string text = named(fragment_) + ": the " + kind + " name " +
                               inTicks(WString(names[one.name].text)) + " occurs inside " +
                               inTicks(WString(one.inside)) + ", which is changed with it when it is renamed";
      if (told_.insert(text).second)
        lints_.at(Finding::nameInsideName, file_.name, placeOf(profile, one.inside), text);
    }
  }

  const LintedFile& file_;
  const LintedFragment& fragment_;
  LintList& lints_;
  Set<std::string> told_;
};

}  // namespace

void lintNames(const LintedFile& file, const LintedFragment& fragment, LintList& lints) {
  NameLints(file, fragment, lints).run();
}

void lintStatements(const LintedFile& file, const LintedFragment& fragment, LintList& lints) {
  for (const LintedProfile& profile : fragment.profiles) {
    if (profile.predefine.spelled == nullptr) continue;
    CodeSnippet snippet;
    snippet.addCode(profile.predefine.spelled->text);
    snippet.parse();
    const std::optional<std::size_t> place = findRawStatement(snippet);
    if (!place) continue;
    const std::wstring_view code = snippet.getCode();
    const std::wstring_view line = code.substr(*place, code.find(L'\n', *place) - *place);
    lints.at(Finding::repeatedStatement, file.name, profile.predefine.spelled->placeOf(*place),
             named(fragment) + ": " + inTicks(WString(line)) +
                 " is no function, structure or uniform, and so written once for every use of the fragment");
  }
}

}  // namespace TolmSDK::Graphics::sfg::host
