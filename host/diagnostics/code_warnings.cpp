#include "host/diagnostics/code_warnings.h"

#include <algorithm>
#include <optional>

#include "host/diagnostics/contained_names.h"
#include "host/diagnostics/raw_statements.h"
#include "host/documents/document_reader.h"
#include "host/documents/near_name.h"
#include "host/shader/identifiers.h"
#include "sfg/code_snippet.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// The statement of the predefines that is no symbol, to the end of its line.
struct RawStatement {
  std::size_t place = 0;  ///< in the predefines
  std::string line;
};

std::optional<RawStatement> rawStatement(const IShaderFragmentProfile& profile) {
  CodeSnippet snippet;
  snippet.addCode(profile.predefines());
  snippet.parse();
  const std::optional<std::size_t> place = findRawStatement(snippet);
  if (!place) return std::nullopt;
  const std::wstring_view code = snippet.getCode();
  const std::size_t start = code.rfind(L'\n', *place) + 1;
  return RawStatement{*place, toUtf8(code.substr(start, code.find(L'\n', *place) - start))};
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
  CodeWarnings(const CollapseFacts& facts, WarningList& warnings)
      : facts_(facts), warnings_(warnings), codes_(facts.job().libraries()) {}

  void run() {
    namesInsideOthers();
    rawStatements();
    unknownInputs();
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
          nameInsideOther(use, profile, "uniform", uniforms[found.name].text, found.inside, told);
        }
        const Set<WString> helperTexts = helperNames(*profile);
        std::vector<ContainedNames::Name> helpers;
        for (const WString& helper : helperTexts) helpers.push_back({helper, false});
        for (const ContainedNames::Found& found : ContainedNames(helpers).find(identifiers)) {
          nameInsideOther(use, profile, "helper", helpers[found.name].text, found.inside, told);
        }
      }
    }
  }

  void nameInsideOther(const FragmentUse& use, Profile profile, const char* kind, std::wstring_view name,
                       std::wstring_view other, Set<std::string>& told) {
    const std::string text = std::string("the ") + kind + " name " + inTicks(name) + " occurs inside " +
                             inTicks(other) + ", which is changed with it when it is renamed";
    if (!told.insert(text).second) return;
    for (const CodePart part : {CodePart::predefine, CodePart::implementation}) {
      const FragmentCode* const code = codeOf(use, profile, part);
      const CodeToken* const token = code != nullptr ? findName(*code, other) : nullptr;
      if (token == nullptr) continue;
      return warnings_.atCode(Finding::nameInsideName, *use.fragment, code, token->begin, text);
    }
    warnings_.atFragment(Finding::nameInsideName, *use.fragment, text);
  }

  static const CodeToken* findName(const FragmentCode& code, std::wstring_view name) {
    const auto found = std::find_if(code.tokens.begin(), code.tokens.end(), [&](const CodeToken& token) {
      return token.isName && token.in(code.text) == name;
    });
    return found != code.tokens.end() ? &*found : nullptr;
  }

  const FragmentCode* codeOf(const FragmentUse& use, Profile profile, CodePart part) {
    for (std::size_t i = 0; i < use.fragment->getNumProfiles(); ++i)
      if (use.fragment->getProfile(i) == profile) return codes_.find(use.fragment->key(), i, part);
    return nullptr;
  }

  void rawStatements() {
    for (const auto& [key, use] : facts_.uses()) {
      if (use.count < 2) continue;
      for (const Profile profile : use.profiles) {
        const std::optional<RawStatement> statement = rawStatement(*profile);
        if (!statement) continue;
        warnings_.atCode(Finding::repeatedStatement, *use.fragment, codeOf(use, profile, CodePart::predefine),
                         statement->place,
                         "it is used " + std::to_string(use.count) + " times, and so often `" +
                             statement->line + "` of its predefines is written");
        break;
      }
    }
  }

  /// Of no input `sfg_isConnected` is false for ever, and `sfg_shader` calls nothing.
  void unknownInputs() {
    for (const auto& [key, use] : facts_.uses()) {
      Set<std::string> inputs;
      for (std::size_t i = 0; i < use.fragment->getNumProfiles(); ++i) {
        const ITextParameterList& list = *use.fragment->getProfile(i)->getFunctionParameters();
        for (std::size_t k = 0; k < list.getNumInputs(); ++k) inputs.insert(toUtf8(list.getInputName(k)));
      }
      for (std::size_t i = 0; i < use.fragment->getNumProfiles(); ++i) {
        const Profile profile = use.fragment->getProfile(i);
        const bool isFunction = profile->getMode() == EShaderFragmentProfileMode::Function;
        if (!use.known.contains(profile) || !isFunction || profile->getProfilename() == L"msl_light")
          continue;
        // Most code asks nothing.
        const WString& body = profile->getFunctionBody();
        if (body.find(L"sfg_isConnected") == WString::npos && body.find(L"sfg_shader") == WString::npos)
          continue;
        const FragmentCode* const code = codes_.find(use.fragment->key(), i, CodePart::implementation);
        if (code != nullptr) unknownInputs(use, *code, inputs);
      }
    }
  }
  void unknownInputs(const FragmentUse& use, const FragmentCode& code, const Set<std::string>& inputs) {
    const auto is = [&](std::size_t i, std::wstring_view word) {
      return code.tokens[i].in(code.text) == word;
    };
    for (std::size_t i = 0; i + 3 < code.tokens.size(); ++i) {
      const bool asks = is(i, L"sfg_isConnected") && is(i + 3, L")");
      const bool calls = is(i, L"sfg_shader") && (is(i + 3, L",") || is(i + 3, L")"));
      if ((!asks && !calls) || !is(i + 1, L"(") || !code.tokens[i + 2].isName) continue;
      const std::string name = toUtf8(code.tokens[i + 2].in(code.text));
      if (inputs.contains(name)) continue;
      warnings_.atCode(Finding::unknownPort, *use.fragment, &code, code.tokens[i + 2].begin,
                       inTicks(code.tokens[i].in(code.text)) +
                           " names an input, and there is none of the name " +
                           inTicks(std::string_view(name)) + didYouMean(nearestName(name, inputs)));
    }
  }

  const CollapseFacts& facts_;
  WarningList& warnings_;
  FragmentCodes codes_;
};

}  // namespace

void warnOfCode(const CollapseFacts& facts, WarningList& warnings) { CodeWarnings(facts, warnings).run(); }

}  // namespace TolmSDK::Graphics::sfg::host
