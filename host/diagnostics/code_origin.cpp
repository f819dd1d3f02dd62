#include "host/diagnostics/code_origin.h"

#include <algorithm>
#include <optional>

#include "host/documents/diagnose.h"
#include "host/documents/document_reader.h"
#include "host/shader/identifiers.h"
#include "sfg/code_snippet.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// A fragment of the collapse, and the node, light or chain link that uses it.
struct User {
  WString instance;  ///< the instance name, which ends the names of uniforms and is in those of results
  std::string what;  ///< "node `mix`"
  const IShaderFragment* fragment = nullptr;
};

/// How sure a name points at a user: the longer the part of it that is the user's, the surer.
struct Match {
  const User* user = nullptr;
  std::size_t strength = 0;
  std::string reason;
};

std::wstring_view lineOf(const WString& text, std::size_t line) {
  std::size_t start = 0;
  for (std::size_t i = 1; i < line && start < text.size(); ++i) {
    start = std::min(text.find(L'\n', start), text.size() - 1) + 1;
  }
  return std::wstring_view(text).substr(start, text.find(L'\n', start) - start);
}

std::string trimmed(std::wstring_view text) {
  const std::size_t start = text.find_first_not_of(L" \t");
  return start == text.npos ? std::string() : toUtf8(text.substr(start));
}

class OriginSearch {
public:
  explicit OriginSearch(const CollapseJob& job) : job_(job) {
    const AShaderFragmentGraph& graph = *job.graph();
    const GraphDocument& document = job.document();
    for (std::size_t i = 0; i < document.getNumNodes(); ++i) {
      add("node " + inTicks(document.node(i).name()), *graph.getFragment(i));
    }
    for (std::size_t i = 0; i < graph.getNumPreprocessFragment(); ++i) {
      add("pre-process fragment", *graph.getPreprocessFragment(i));
    }
    for (std::size_t i = 0; i < graph.getNumPostprocessFragments(); ++i) {
      add("post-process fragment", *graph.getPostprocessFragment(i));
    }
    for (const ShadingEnvironment::Light& light : job.environment().lights()) {
      add("light " + inTicks(light.name), *light.fragment);
    }
  }

  Diagnostic include(const WString& name) const {
    const std::string file = job_.libraries().includeFile(name);
    if (!file.empty()) return diagnose(Severity::note, file, {}, "in this include file");
    return diagnose(Severity::note, std::string(), {}, "in the include file " + inTicks(name));
  }

  /// The user whose predefines or function hold the symbol.
  std::optional<Diagnostic> symbol(std::wstring_view name) const {
    Match best;
    for (const User& user : users_) keepBetter(best, matchSymbol(user, name));
    return note(best);
  }

  /// Users of all names in the line.
  std::vector<Diagnostic> names(std::wstring_view line) const {
    std::vector<Diagnostic> notes;
    for (const std::wstring_view name : identifiersOf(line)) {
      Match best;
      for (const User& user : users_) {
        keepBetter(best, matchSymbol(user, name));
        keepBetter(best, matchVariable(user, name));
      }
      const std::optional<Diagnostic> found = note(best);
      if (found && std::find(notes.begin(), notes.end(), *found) == notes.end()) notes.push_back(*found);
    }
    return notes;
  }

private:
  void add(const std::string& what, const IShaderFragment& fragment) {
    users_.push_back({fragment.instanceName(), what, &fragment});
  }

  static void keepBetter(Match& best, const Match& other) {
    if (other.strength > best.strength) best = other;
  }

  /// A generated function's name is the profile's, then the profile's number, then what makes it unique; a
  /// helper's is its own, then what makes it unique.
  static Match matchSymbol(const User& user, std::wstring_view name) {
    Match best;
    for (std::size_t i = 0; i < user.fragment->getNumProfiles(); ++i) {
      const IShaderFragmentProfile& profile = *user.fragment->getProfile(i);
      const WString function = profile.getFunctionName() + itos(static_cast<long long>(i + 1));
      if (profile.getMode() != EShaderFragmentProfileMode::Inline && name.starts_with(function)) {
        keepBetter(best,
                   {&user, 2 * function.size() + (name == function ? 1u : 0u), "function " + inTicks(name)});
      }
      CodeSnippet snippet;
      snippet.addCode(profile.predefines());
      snippet.parse();
      for (std::size_t k = 0; k < snippet.getNumSymbols(); ++k) {
        const std::wstring_view helper = snippet.getSymbol(k).getName().view();
        if (helper.empty() || !name.starts_with(helper)) continue;
        keepBetter(best, {&user, 2 * helper.size() + (name == helper ? 1u : 0u), "helper " + inTicks(name)});
      }
    }
    return best;
  }

  static Match matchVariable(const User& user, std::wstring_view name) {
    const WString& instance = user.instance;
    const WString result = L"result_" + instance + L"_";
    const WString sum = L"accumulate_" + instance + L"_";
    if (name.starts_with(result) || name.starts_with(sum))
      return {&user, 2 * name.size(), "value " + inTicks(name)};
    const auto isUniform = [&](const AParameter& parameter) {
      WString unique = parameter.getName();
      std::replace(unique.begin(), unique.end(), L'.', L'_');
      unique += instance;
      return name == unique || name == L"sampler_" + unique;
    };
    for (std::size_t i = 0; i < user.fragment->getNumUniforms(); ++i) {
      if (isUniform(*user.fragment->getUniform(i)))
        return {&user, 2 * name.size(), "uniform " + inTicks(name)};
    }
    for (std::size_t i = 0; i < user.fragment->getNumInputs(); ++i) {
      if (isUniform(*user.fragment->getInput(i))) return {&user, 2 * name.size(), "uniform " + inTicks(name)};
    }
    return {};
  }

  std::optional<Diagnostic> note(const Match& match) const {
    if (match.user == nullptr) return std::nullopt;
    const WString& key = match.user->fragment->key();
    const FragmentFiles::Entry* const entry = job_.libraries().files().find(key);
    return diagnose(Severity::note, entry != nullptr ? entry->file : std::string(),
                    entry != nullptr ? entry->position : TextPosition(),
                    match.reason + " is of fragment " + inTicks(key) + ", " + match.user->what);
  }

  const CollapseJob& job_;
  std::vector<User> users_;
};

}  // namespace

std::vector<Diagnostic> findOrigins(const CollapseJob& job, const AssembledShader& assembled,
                                    std::size_t line) {
  std::vector<Diagnostic> notes;
  const WString& text = assembled.shader.getCompleteShader();
  const auto section =
      std::find_if(assembled.sections.begin(), assembled.sections.end(),
                   [&](const ShaderSection& s) { return s.firstLine <= line && line <= s.lastLine; });
  if (section == assembled.sections.end()) return notes;

  const std::wstring_view code = lineOf(text, line);
  notes.push_back(diagnose(Severity::note, std::string(), {}, "the line is `" + trimmed(code) + "`"));
  const OriginSearch search(job);
  if (section->kind == ShaderSection::Kind::include) {
    notes.push_back(search.include(section->name));
  } else if (section->kind == ShaderSection::Kind::symbol) {
    if (const std::optional<Diagnostic> found = search.symbol(section->name)) notes.push_back(*found);
  } else {
    const std::vector<Diagnostic> found = search.names(code);
    notes.insert(notes.end(), found.begin(), found.end());
  }
  return notes;
}

}  // namespace TolmSDK::Graphics::sfg::host
