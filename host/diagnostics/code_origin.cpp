#include "host/diagnostics/code_origin.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "host/diagnostics/prefix_index.h"
#include "host/documents/diagnose.h"
#include "host/documents/document_reader.h"
#include "host/shader/identifiers.h"
#include "sfg/code_snippet.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

constexpr std::wstring_view kResult = L"result_";
constexpr std::wstring_view kSum = L"accumulate_";
constexpr std::wstring_view kSampler = L"sampler_";

/// A fragment of the collapse, and the node, light or chain link that uses it.
struct User {
  std::string what;  ///< "node `mix`"
  const IShaderFragment* fragment = nullptr;
};

/// Whose a name is.
struct Owner {
  std::size_t user = kNotFound;
  const char* kind = "";
};

Owner firstOf(const Owner& a, const Owner& b) { return b.user < a.user ? b : a; }

/// What is named after one instance: uniforms, and variables for results.
struct InstanceNames {
  std::size_t user = kNotFound;          ///< the first of that name
  Map<WString, std::size_t> parameters;  ///< beginnings of names of uniforms, with the first user
};

WString reversed(std::wstring_view text) { return WString(text.rbegin(), text.rend()); }

std::string trimmed(std::wstring_view text) {
  const std::size_t start = text.find_first_not_of(L" \t");
  return start == text.npos ? std::string() : toUtf8(text.substr(start));
}

std::vector<std::size_t> startsOfLines(std::wstring_view text) {
  std::vector<std::size_t> starts{0};
  for (std::size_t end = text.find(L'\n'); end != text.npos; end = text.find(L'\n', end + 1)) {
    starts.push_back(end + 1);
  }
  return starts;
}

}  // namespace

/// The users of fragments, by the names that their code may have in the shader. Of several users with equal
/// claims the first counts.
class OriginFinder::Users {
public:
  explicit Users(const CollapseJob& job) : job_(job) {
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
    indexNames();
  }

  /// The user whose predefines or function hold the symbol.
  std::optional<Diagnostic> symbol(std::wstring_view name) const {
    return note(name, symbolOwner(name).second);
  }

  /// Users of all names in the line; `generated` holds the names that the collapse gave to uniforms that were
  /// renamed.
  std::vector<Diagnostic> names(std::wstring_view line, const Map<WString, WString>& generated) const {
    std::vector<Diagnostic> notes;
    Set<std::string> told;
    for (const std::wstring_view name : identifiersOf(line)) {
      const WString* const old = generatedName(name, generated);
      const std::optional<Diagnostic> found = note(name, old != nullptr ? uniformOwner(*old) : ownerOf(name));
      if (found && told.insert(found->text).second) notes.push_back(*found);
    }
    return notes;
  }

private:
  void add(const std::string& what, const IShaderFragment& fragment) {
    const std::size_t user = users_.size();
    users_.push_back({what, &fragment});
    // Uses of one fragment have its code in common.
    if (keys_.insert(fragment.key()).second) addSymbols(user, fragment);
    InstanceNames& names =
        instances_.try_emplace(fragment.instanceName(), InstanceNames{user, {}}).first->second;
    for (std::size_t i = 0; i < fragment.getNumUniforms(); ++i) {
      addParameter(names, user, *fragment.getUniform(i));
    }
    for (std::size_t i = 0; i < fragment.getNumInputs(); ++i)
      addParameter(names, user, *fragment.getInput(i));
  }

  /// A generated function's name is the profile's, then the profile's number, then what makes it unique; a
  /// helper's is its own, then what makes it unique.
  void addSymbols(std::size_t user, const IShaderFragment& fragment) {
    for (std::size_t i = 0; i < fragment.getNumProfiles(); ++i) {
      const IShaderFragmentProfile& profile = *fragment.getProfile(i);
      if (profile.getMode() != EShaderFragmentProfileMode::Inline) {
        addSymbol(profile.getFunctionName() + itos(static_cast<long long>(i + 1)), {user, "function"});
      }
      CodeSnippet snippet;
      snippet.addCode(profile.predefines());
      snippet.parse();
      for (std::size_t k = 0; k < snippet.getNumSymbols(); ++k) {
        const std::wstring_view helper = snippet.getSymbol(k).getName().view();
        if (!helper.empty()) addSymbol(WString(helper), {user, "helper"});
      }
    }
  }

  void addSymbol(const WString& name, const Owner& owner) {
    if (symbolTexts_.try_emplace(name, symbols_.size()).second) symbols_.push_back(owner);
  }

  /// A uniform's name is the parameter's, then the instance's.
  static void addParameter(InstanceNames& names, std::size_t user, const AParameter& parameter) {
    WString name = parameter.getName();
    std::replace(name.begin(), name.end(), L'.', L'_');
    names.parameters.try_emplace(std::move(name), user);
  }

  void indexNames() {
    symbolIndex_ = PrefixIndex(std::move(symbolTexts_));
    Map<WString, std::size_t> starts;
    Map<WString, std::size_t> ends;
    for (const auto& [instance, names] : instances_) {
      starts.emplace(instance + L"_", names.user);
      ends.emplace(reversed(instance), parameters_.size());
      parameters_.push_back(&names.parameters);
    }
    instanceStarts_ = PrefixIndex(std::move(starts));
    instanceEnds_ = PrefixIndex(std::move(ends));
  }

  /// A name that is exactly a symbol's is surest, then a variable's, then one that begins as a symbol's.
  Owner ownerOf(std::wstring_view name) const {
    const auto [length, symbol] = symbolOwner(name);
    if (length == name.size()) return symbol;
    const Owner variable = firstOf(valueOwner(name), uniformOwner(name));
    return variable.user != kNotFound ? variable : symbol;
  }

  /// Of the longest symbol with which the name begins, with its length.
  std::pair<std::size_t, Owner> symbolOwner(std::wstring_view name) const {
    std::pair<std::size_t, Owner> longest{0, {}};
    symbolIndex_.forEachPrefix(name, [&](std::wstring_view symbol, std::size_t number) {
      if (longest.first == 0) longest = {symbol.size(), symbols_[number]};
    });
    return longest;
  }

  /// Null for a name that is neither a renamed uniform nor its sampler.
  static const WString* generatedName(std::wstring_view name, const Map<WString, WString>& generated) {
    auto found = generated.find(WString(name));
    if (found == generated.end() && name.starts_with(kSampler)) {
      found = generated.find(WString(name.substr(kSampler.size())));
    }
    return found == generated.end() ? nullptr : &found->second;
  }

  Owner valueOwner(std::wstring_view name) const {
    Owner owner;
    for (const std::wstring_view start : {kResult, kSum}) {
      if (!name.starts_with(start)) continue;
      instanceStarts_.forEachPrefix(name.substr(start.size()), [&](std::wstring_view, std::size_t user) {
        owner = firstOf(owner, {user, "value"});
      });
    }
    return owner;
  }

  Owner uniformOwner(std::wstring_view name) const {
    Owner owner;
    instanceEnds_.forEachPrefix(reversed(name), [&](std::wstring_view instance, std::size_t number) {
      std::wstring_view parameter = name.substr(0, name.size() - instance.size());
      const auto look = [&] {
        const auto found = parameters_[number]->find(parameter);
        if (found != parameters_[number]->end()) owner = firstOf(owner, {found->second, "uniform"});
      };
      look();
      if (!parameter.starts_with(kSampler)) return;
      parameter.remove_prefix(kSampler.size());
      look();
    });
    return owner;
  }

  std::optional<Diagnostic> note(std::wstring_view name, const Owner& owner) const {
    if (owner.user == kNotFound) return std::nullopt;
    const User& user = users_[owner.user];
    const WString& key = user.fragment->key();
    const FragmentFiles::Entry* const entry = job_.libraries().files().find(key);
    return diagnose(Finding::codeOrigin, Severity::note, entry != nullptr ? entry->file : std::string(),
                    entry != nullptr ? entry->position : TextPosition(),
                    std::string(owner.kind) + " " + inTicks(name) + " is of fragment " + inTicks(key) + ", " +
                        user.what);
  }

  const CollapseJob& job_;
  std::vector<User> users_;
  Set<WString> keys_;  ///< of the fragments whose symbols are known
  Map<WString, std::size_t> symbolTexts_;
  std::vector<Owner> symbols_;
  PrefixIndex symbolIndex_;
  Map<WString, InstanceNames> instances_;
  std::vector<const Map<WString, std::size_t>*> parameters_;  ///< of each instance name
  PrefixIndex instanceStarts_;  ///< instance names with `_`, with the first user
  PrefixIndex instanceEnds_;    ///< instance names from their ends
};

OriginFinder::OriginFinder(const CollapseJob& job, const AssembledShader& assembled)
    : job_(job), assembled_(assembled),
      lineStarts_(startsOfLines(std::as_const(assembled.shader).getCompleteShader())),
      users_(std::make_unique<Users>(job)) {}

OriginFinder::~OriginFinder() = default;

std::vector<Diagnostic> OriginFinder::find(std::size_t line) const {
  std::vector<Diagnostic> notes;
  const auto section = std::partition_point(assembled_.sections.begin(), assembled_.sections.end(),
                                            [&](const ShaderSection& s) { return s.lastLine < line; });
  if (section == assembled_.sections.end() || line < section->firstLine) return notes;

  const std::wstring_view code = lineText(line);
  notes.push_back(diagnose(Finding::codeOrigin, Severity::note, std::string(), {},
                           "the line is `" + trimmed(code) + "`"));
  if (section->kind == ShaderSection::Kind::include) {
    notes.push_back(include(section->name));
  } else if (section->kind == ShaderSection::Kind::symbol) {
    if (const std::optional<Diagnostic> found = users_->symbol(section->name)) notes.push_back(*found);
  } else {
    const std::vector<Diagnostic> found = users_->names(code, assembled_.generatedNames);
    notes.insert(notes.end(), found.begin(), found.end());
  }
  return notes;
}

Diagnostic OriginFinder::include(const WString& name) const {
  const std::string file = job_.libraries().includeFile(name);
  if (!file.empty()) return diagnose(Finding::codeOrigin, Severity::note, file, {}, "in this include file");
  return diagnose(Finding::codeOrigin, Severity::note, std::string(), {},
                  "in the include file " + inTicks(name));
}

std::wstring_view OriginFinder::lineText(std::size_t line) const {
  const std::wstring_view text = assembled_.shader.getCompleteShader();
  const std::size_t start = lineStarts_[std::min(line, lineStarts_.size()) - 1];
  return text.substr(start, text.find(L'\n', start) - start);
}

}  // namespace TolmSDK::Graphics::sfg::host
