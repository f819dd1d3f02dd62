#include "host/diagnostics/compile_explanation.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <utility>

#include "host/diagnostics/compile_messages.h"
#include "host/diagnostics/include_namer.h"
#include "host/diagnostics/include_warnings.h"
#include "host/documents/diagnose.h"
#include "host/documents/document_reader.h"
#include "host/documents/near_name.h"
#include "sfg/host/source_map.h"
#include "tolmsdk/state_variables.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

using PlaceKind = SourcePlace::Kind;

bool isCode(const SourcePlace& place) {
  return place.kind == PlaceKind::implementation || place.kind == PlaceKind::predefine ||
         place.kind == PlaceKind::include;
}

std::string trimmed(std::wstring_view text) {
  const std::size_t start = text.find_first_not_of(L" \t\r");
  if (start == text.npos) return std::string();
  return toUtf8(text.substr(start, text.find_last_not_of(L" \t\r") + 1 - start));
}

std::string withReplaced(std::string text, const std::string& old, const std::string& now) {
  for (std::size_t at = text.find(old); at != std::string::npos; at = text.find(old, at + now.size()))
    text.replace(at, old.size(), now);
  return text;
}

/// Names that a text declares: those behind another name.
void addDeclared(std::set<std::string>& names, std::wstring_view code) {
  const CodeTokens tokens = tokensOf(code);
  for (std::size_t i = 1; i < tokens.size(); ++i) {
    if (tokens[i].isName && tokens[i - 1].isName && tokens[i - 1].in(code) != L"return")
      names.insert(toUtf8(tokens[i].in(code)));
  }
}

class Explainer {
public:
  Explainer(const CollapseJob& job, const AssembledShader& assembled, const CompileError& error)
      : job_(job), error_(error), text_(std::as_const(assembled.shader).getCompleteShader()),
        messages_(text_), map_(job, assembled) {}

  std::vector<Diagnostic> explain() {
    if (error_.messages().empty()) return explainSilence();
    ToldMistake told = messages_.describe(error_.messages());
    if (!told.unknown.empty()) {
      if (std::vector<Diagnostic> includes = lackingIncludes(); !includes.empty()) return includes;
    }
    const SourcePlace& unbalanced = map_.findUnbalanced();
    const bool hasPlace = told.token < messages_.tokens().size();
    if (told.isSyntax && unbalanced.kind != PlaceKind::unknown) {
      tell(unbalanced, wordsOf(unbalanced));
    } else if (!hasPlace) {
      tellDocument(told.text);
    } else {
      const SourcePlace place = placeOf(told);
      const std::size_t first = diagnostics_.size();
      const Words words = wordsOf(told, place);
      tell(place, words.text);
      if (diagnostics_.size() > first) diagnostics_[first].suggestion = words.meant;
    }
    tellLine();
    return std::move(diagnostics_);
  }

private:
  /// Of a compiler that crashed: brackets are what it is most often about.
  std::vector<Diagnostic> explainSilence() {
    const SourcePlace& unbalanced = map_.findUnbalanced();
    const bool isKnown = unbalanced.kind != PlaceKind::unknown;
    if (isKnown) tell(unbalanced, wordsOf(unbalanced));
    add(isKnown ? Severity::note : Severity::error, job_.document().file(), 0, 0, error_.what());
    return std::move(diagnostics_);
  }

  /// Where one is missing, so is what it declares.
  std::vector<Diagnostic> lackingIncludes() const {
    std::vector<Diagnostic> includes = findIncludeWarnings(job_);
    for (Diagnostic& include : includes) include.severity = Severity::error;
    return includes;
  }

  void add(Severity severity, const std::string& file, std::size_t line, std::size_t column,
           std::string text) {
    const Finding kind = severity == Severity::error ? Finding::compileError : Finding::codeOrigin;
    diagnostics_.push_back(diagnose(kind, severity, file, {line, column}, std::move(text)));
  }

  SourcePlace placeOf(const ToldMistake& told) const {
    const CodeToken& token = messages_.tokens()[told.token];
    const auto [line, column] = messages_.placeOf(token.begin);
    SourcePlace place = map_.find(line, column);
    // Of a declaration that the host writes the name tells whose it is.
    for (std::size_t i = told.token + 1; place.file.empty() && i < messages_.tokens().size(); ++i) {
      const auto [otherLine, otherColumn] = messages_.placeOf(messages_.tokens()[i].begin);
      if (otherLine != line) break;
      const SourcePlace other = map_.find(otherLine, otherColumn);
      if (other.kind == PlaceKind::input) place = other;
    }
    if (!told.isBehind || !place.isExact) return place;
    SourcePlace last = map_.find(line, column + token.size() - 1);
    ++last.column;
    return last;
  }

  static std::string wordsOf(const SourcePlace& unbalanced) {
    if (unbalanced.token == "/*") return "the comment is not closed";
    if (unbalanced.token == "#") return "a conditional is not closed by `#endif`";
    const bool closes = unbalanced.token == ")" || unbalanced.token == "]" || unbalanced.token == "}";
    return inTicks(std::string_view(unbalanced.token)) + (closes ? " closes nothing" : " is not closed");
  }

  struct Words {
    std::string text;
    std::string meant;
  };

  /// Names as the source spells them, and what may have been meant.
  Words wordsOf(const ToldMistake& told, const SourcePlace& place) const {
    const std::string generated = toUtf8(messages_.tokens()[told.token].in(text_));
    std::string text = told.text;
    std::string unknown = told.unknown;
    if (place.isExact && !place.token.empty() && place.token != generated) {
      text = withReplaced(std::move(text), inTicks(std::string_view(generated)),
                          inTicks(std::string_view(place.token)));
      if (unknown == generated) unknown = place.token;
    }
    if (unknown.empty()) return {text, std::string()};
    const CodeTokens& tokens = messages_.tokens();
    const bool isCalled = told.token + 1 < tokens.size() && tokens[told.token + 1].in(text_) == L"(";
    const std::string meant(meantName(unknown, visibleNames(place, isCalled)));
    return {text + didYouMean(meant), meant};
  }

  /// What code at the place can name.
  std::vector<std::string> visibleNames(const SourcePlace& place, bool isCalled) const {
    std::set<std::string> names;
    const IShaderFragment* const fragment =
        job_.libraries().language().findFragment(fromUtf8(place.fragment));
    if (fragment != nullptr) addNames(names, *fragment);
    if (place.kind == PlaceKind::include) addDeclared(names, text_);
    std::vector<std::string> all(names.begin(), names.end());
    for (const std::string_view name : languageNames()) all.emplace_back(name);
    // What only stands in front of a bracket.
    if (isCalled)
      for (const char* const name : {"for", "sfg_isConnected", "sfg_shader", "while"}) all.emplace_back(name);
    if (fragment != nullptr && hasMetaSL(*fragment)) {
      for (const char* const name :
           {"TOLM_SCENE_LIGHTING", "TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN", "TOLM_VESSOR_LIGHT_AND_SHADOW_END"})
        all.emplace_back(name);
    }
    for (const StateVariableInfo& variable : allStateVariables()) all.push_back(toUtf8(variable.name.view()));
    return all;
  }

  static bool hasMetaSL(const IShaderFragment& fragment) {
    for (std::size_t i = 0; i < fragment.getNumProfiles(); ++i)
      if (fragment.getProfile(i)->getMode() == EShaderFragmentProfileMode::MetaSL) return true;
    return false;
  }

  void addNames(std::set<std::string>& names, const IShaderFragment& fragment) const {
    for (std::size_t i = 0; i < fragment.getNumUniforms(); ++i)
      names.insert(toUtf8(fragment.getUniform(i)->getName()));
    Set<WString> includes;
    for (std::size_t i = 0; i < fragment.getNumProfiles(); ++i) {
      const IShaderFragmentProfile& profile = *fragment.getProfile(i);
      const ITextParameterList& parameters = *profile.getFunctionParameters();
      for (std::size_t k = 0; k < parameters.getNumInputs(); ++k)
        names.insert(toUtf8(parameters.getInputName(k)));
      for (std::size_t k = 0; k < parameters.getNumOutputs(); ++k)
        names.insert(toUtf8(parameters.getOutputName(k)));
      for (const UString& variable : profile.stateVariables()) names.insert(toUtf8(variable.view()));
      addDeclared(names, profile.predefines());
      addDeclared(names, profile.getFunctionBody());
      includes.insert(profile.includes().begin(), profile.includes().end());
    }
    const ShaderIncludes& registry = job_.libraries().includes();
    Array<WString> flat;
    Set<WString> done;
    registry.createFlatIncludeArray(flat, done, includes);
    for (const WString& include : flat) addDeclared(names, registry.getIncludeContent(include.c_str()));
  }

  void tell(const SourcePlace& place, const std::string& text) {
    if (place.file.empty()) {
      const bool isPlaced = !error_.messages().empty() && error_.messages().front().line != 0;
      if (!isPlaced) return tellDocument(text);
      add(Severity::error, "generated", error_.messages().front().line, 0, text);
      return;
    }
    if (place.kind == PlaceKind::include && isUtf16(place)) {
      add(Severity::error, place.file, 1, 1, "the include file is written in UTF-16; save it as UTF-8");
    } else {
      add(Severity::error, place.file, place.line, place.column, text);
    }
    if (place.kind == PlaceKind::include) tellIncluders(place);
    if (!isCode(place)) tellFragment(place);
    tellUsers(place);
  }

  /// No text for shaders has a zero.
  bool isUtf16(const SourcePlace& place) const {
    const std::string* const bytes = job_.libraries().texts().find(place.file);
    return bytes != nullptr && bytes->find('\0') != bytes->npos;
  }

  void tellDocument(const std::string& text) {
    add(Severity::error, job_.document().file(), 0, 0, error_.what() + std::string(": ") + text);
  }

  void tellFragment(const SourcePlace& place) {
    const FragmentFiles::Entry* const entry = job_.libraries().files().find(fromUtf8(place.fragment));
    if (entry == nullptr) return;
    add(Severity::note, entry->file, entry->position.line, entry->position.column,
        "the fragment " + inTicks(std::string_view(place.fragment)) + " is here");
  }

  /// From the file that the place is in up to a fragment.
  void tellIncluders(const SourcePlace& place) {
    constexpr std::size_t kMostIncluders = 4;
    const WString name = fromUtf8(std::filesystem::path(place.file).filename().string());
    const std::vector<IncludeNamer> chain = IncludeNamers(job_).chain(name, kMostIncluders);
    for (const IncludeNamer& by : chain) {
      add(Severity::note, by.file, by.position.line, by.position.column,
          by.byInclude.empty() ? by.who + " includes it" : "it is included here");
    }
  }

  /// Those of code; a node is named by its own place.
  void tellUsers(const SourcePlace& place) {
    constexpr std::size_t kMostUsers = 3;
    if (!isCode(place)) return;
    for (std::size_t i = 0; i < std::min(place.users.size(), kMostUsers); ++i) {
      const SourceUser& user = place.users[i];
      std::string text = user.kind + " " + inTicks(std::string_view(user.name)) + " uses the fragment " +
                         inTicks(std::string_view(place.fragment));
      if (i + 1 == kMostUsers && place.users.size() > kMostUsers)
        text += ", as " + std::to_string(place.users.size() - kMostUsers) + " more do";
      add(Severity::note, user.file, user.line, user.column, std::move(text));
    }
  }

  void tellLine() {
    if (error_.messages().empty() || error_.messages().front().line == 0) return;
    const CompilerMessage& first = error_.messages().front();
    std::wstring_view line = text_;
    for (std::size_t i = 1; i < first.line && !line.empty(); ++i) {
      const std::size_t end = line.find(L'\n');
      line.remove_prefix(end == line.npos ? line.size() : end + 1);
    }
    add(Severity::note, "generated", first.line, first.column,
        "the compiler says \"" + first.text + "\" of the line `" + trimmed(line.substr(0, line.find(L'\n'))) +
            "`");
  }

  const CollapseJob& job_;
  const CompileError& error_;
  const WString text_;
  const CompileMessages messages_;
  const SourceMap map_;
  std::vector<Diagnostic> diagnostics_;
};

}  // namespace

std::vector<Diagnostic> explainCompileError(const CollapseJob& job, const AssembledShader& assembled,
                                            const CompileError& error) {
  return Explainer(job, assembled, error).explain();
}

}  // namespace TolmSDK::Graphics::sfg::host
