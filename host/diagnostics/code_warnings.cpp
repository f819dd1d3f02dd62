#include "host/diagnostics/code_warnings.h"

#include <optional>

#include "host/diagnostics/contained_names.h"
#include "host/diagnostics/raw_statements.h"
#include "host/documents/document_reader.h"
#include "host/shader/identifiers.h"
#include "sfg/code_snippet.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// The line of the predefines in which a raw statement starts, or nothing.
std::optional<std::string> rawStatement(const IShaderFragmentProfile& profile) {
  CodeSnippet snippet;
  snippet.addCode(profile.predefines());
  snippet.parse();
  const std::optional<std::size_t> place = findRawStatement(snippet);
  if (!place) return std::nullopt;
  const std::wstring_view code = snippet.getCode();
  const std::size_t start = code.rfind(L'\n', *place) + 1;
  return toUtf8(code.substr(start, code.find(L'\n', *place) - start));
}

/// Names of the functions, structures and variables that the predefines declare.
Set<WString> helperNames(const IShaderFragmentProfile& profile) {
  CodeSnippet snippet;
  snippet.addCode(profile.predefines());
  snippet.parse();
  Set<WString> names;
  for (std::size_t i = 0; i < snippet.getNumSymbols(); ++i) {
    const ScopedText name = snippet.getSymbol(i).getName();
    if (!name.empty()) names.insert(WString(name.view()));
  }
  return names;
}

class CodeWarnings {
public:
  CodeWarnings(const CollapseFacts& facts, WarningList& warnings) : facts_(facts), warnings_(warnings) {}

  void run() {
    namesInsideOthers();
    rawStatements();
  }

private:
  /// Renames replace text inside identifiers, too.
  void namesInsideOthers() {
    for (const auto& [key, use] : facts_.uses()) {
      Set<std::string> told;
      std::vector<ContainedNames::Name> uniforms;
      for (std::size_t i = 0; i < use.fragment->getNumUniforms(); ++i) {
        const AParameter& uniform = *use.fragment->getUniform(i);
        uniforms.push_back({uniform.getName(), isSamplerType(uniform.getType())});
      }
      ContainedNames uniformSearch(uniforms);
      for (const Profile profile : use.profiles) {
        const WString code = profile->predefines() + L"\n" + profile->getFunctionBody();
        const Set<std::wstring_view> identifiers = identifiersOf(code);
        for (const ContainedNames::Found& found : uniformSearch.find(identifiers)) {
          nameInsideOther(use, "uniform", uniforms[found.name].text, found.inside, told);
        }
        const Set<WString> helperTexts = helperNames(*profile);
        std::vector<ContainedNames::Name> helpers;
        for (const WString& helper : helperTexts) helpers.push_back({helper, false});
        for (const ContainedNames::Found& found : ContainedNames(helpers).find(identifiers)) {
          nameInsideOther(use, "helper", helpers[found.name].text, found.inside, told);
        }
      }
    }
  }

  void nameInsideOther(const FragmentUse& use, const char* kind, std::wstring_view name,
                       std::wstring_view other, Set<std::string>& told) {
    const std::string text = std::string("the ") + kind + " name " + inTicks(name) + " occurs inside " +
                             inTicks(other) + ", which is changed with it when it is renamed";
    if (told.insert(text).second) warnings_.atFragment(Finding::nameInsideName, *use.fragment, text);
  }

  void rawStatements() {
    for (const auto& [key, use] : facts_.uses()) {
      if (use.count < 2) continue;
      for (const Profile profile : use.profiles) {
        const std::optional<std::string> statement = rawStatement(*profile);
        if (!statement) continue;
        warnings_.atFragment(Finding::repeatedStatement, *use.fragment,
                             "it is used " + std::to_string(use.count) + " times, and so often `" +
                                 *statement + "` of its predefines is written");
        break;
      }
    }
  }

  const CollapseFacts& facts_;
  WarningList& warnings_;
};

}  // namespace

void warnOfCode(const CollapseFacts& facts, WarningList& warnings) { CodeWarnings(facts, warnings).run(); }

}  // namespace TolmSDK::Graphics::sfg::host
