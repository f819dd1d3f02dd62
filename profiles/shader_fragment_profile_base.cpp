#include "sfg/shader_fragment_profile_base.h"

#include <algorithm>
#include <iostream>
#include <string_view>
#include <utility>

#include "profiles/kept_code.h"
#include "profiles/object_reader.h"
#include "profiles/shader_temporaries.h"
#include "sfg/code_formatter.h"
#include "sfg/fragment_profile_instance.h"
#include "sfg/shader_fragment_profile_function.h"
#include "sfg/shader_fragment_profile_inline.h"
#include "sfg/shader_fragment_profile_metasl.h"
#include "sfg/shader_symbol.h"
#include "text/ascii.h"
#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics::sfg {
namespace {

RefPtr<AShaderFragmentProfile> makeProfile(std::wstring_view mode) {
  if (equalsIgnoringCase(mode, L"inline")) return makeRef<AShaderFragmentProfileInline>();
  if (equalsIgnoringCase(mode, L"metaSL")) return makeRef<AShaderFragmentProfileMetaSL>();
  return makeRef<AShaderFragmentProfileFunction>();
}

/// Whether the brace in front of a body, as definitions have it, is closed by the one behind it.
bool isBalancedInBraces(const WString& body) {
  const WString block = L"{\n" + body + L"}\n";
  std::size_t pos = 0;
  getBracketBody(block, pos, L'{', L'}');
  return pos + 1 == block.size();
}

template <class Names, class Text>
void dumpNames(const wchar_t* indent, const wchar_t* title, const Names& names, Text&& text) {
  if (names.empty()) return;
  std::wcout << indent << title << std::endl;
  for (const auto& name : names) std::wcout << indent << L"    " << text(name) << std::endl;
}

std::atomic<std::uint64_t> levelChanges{0};

}  // namespace

AShaderFragmentProfile::AShaderFragmentProfile(EShaderFragmentProfileMode mode)
    : mode_(mode), functionBody_(std::make_shared<WString>()),
      functionParameters_(makeRef<ATextParameterList>()) {}

AShaderFragmentProfile::~AShaderFragmentProfile() = default;

RefPtr<AShaderFragmentProfile> AShaderFragmentProfile::loadProfile(const IObjectDataNode* node) {
  const IObjectDataNode* mode = node == nullptr ? nullptr : node->member(L"mode");
  const std::wstring_view name = mode == nullptr ? std::wstring_view() : readString(L"mode", *mode);
  RefPtr<AShaderFragmentProfile> profile = makeProfile(name);
  if (!profile->load(node)) return nullptr;
  return profile;
}

void AShaderFragmentProfile::setLOD(float lod) {
  lod_ = lod;
  if (isLevelIndexed_.load(std::memory_order_relaxed)) levelChanges.fetch_add(1, std::memory_order_relaxed);
}

std::uint64_t AShaderFragmentProfile::countLevelChanges() noexcept {
  return levelChanges.load(std::memory_order_relaxed);
}

void AShaderFragmentProfile::clear() {
  languages_.clear();
  predefines_.clear();
  profileName_.clear();
  stateVariables_.clear();
  customStateVariables_.clear();
  includes_.clear();
  functionName_.clear();
  replaceBodyText(WString());
  predefineSnippet_.reset();
  predefinesParsed_ = false;
  predefinesLoaded_ = false;
  functionParameters_->clear();
  AShaderFragmentProfile::setLOD(100.0f);
}

bool AShaderFragmentProfile::load(const IObjectDataNode* node) {
  clear();
  if (node == nullptr) return false;

  const IObjectDataNode* name = node->member(L"name");
  profileName_ = name == nullptr ? WString(L"default") : readString(L"name", *name);

  const IObjectDataNode* lod = node->member(L"lod");
  AShaderFragmentProfile::setLOD(lod == nullptr ? 100.0f : readFloat(L"lod", *lod));

  const IObjectDataNode* languages = node->member(L"language");
  if (languages == nullptr) throw Exception(L"Profile doesn't specify the language version. ");
  readStrings(L"language", *languages, [this](const WString& text) { languages_.insert(UString(text)); });

  if (const IObjectDataNode* variables = node->member(L"stateVariables"))
    readStrings(L"stateVariables", *variables,
                [this](const WString& text) { customStateVariables_.insert(text); });

  if (const IObjectDataNode* lines = node->member(L"predefine")) loadPredefines(*lines);

  // Of the includes, null and the empty text are passed over.
  if (const IObjectDataNode* includes = node->member(L"includes")) {
    requireKind(NodeKind::array, L"includes", L"an array of strings", *includes);
    for (std::size_t i = 0, count = includes->size(); i < count; ++i) {
      const IObjectDataNode* include = includes->element(i);
      if (include == nullptr) continue;
      requireKind(NodeKind::string, L"includes", L"an array of strings", *include);
      if (!include->asString().empty()) includes_.insert(include->asString());
    }
  }

  return loadImplementation(node->member(L"implementation"));
}

void AShaderFragmentProfile::loadPredefines(const IObjectDataNode& lines) {
  WString text;
  CodeFormatter formatter(0);
  formatter.setResult(&text);
  readStrings(L"predefine", lines, [&formatter](WString line) { formatter.addLine(line); });

  predefines_ = text;

  // Of a library few fragments are collapsed, so the parse is made again for those instead of kept for all.
  predefinesLoaded_ = true;
  CodeSnippet snippet;
  snippet.addCode(predefines_);
  snippet.parse();
  stateVariables_.insert(snippet.getStateVariables().begin(), snippet.getStateVariables().end());
  predefineBuiltinFunctions_ = snippet.getBuiltinFunctions();
  registerShaderFunctions(snippet.getShaderFunctions());
  if (!snippet.getBuiltinFunctions().empty() || !snippet.getShaderFunctions().empty())
    viewedTexts_.push_back(snippet.shareCode());
}

bool AShaderFragmentProfile::setFunctionPrototype(const WString& prototype) {
  forgetKeptCode();
  constexpr std::wstring_view kResult = L"void ";
  if (!prototype.starts_with(kResult)) throw Exception(L"sfgError : Function result type is not void!");

  const std::size_t open = prototype.find(L'(');
  if (open == WString::npos) throw Exception(L"sfgError : Incorrect function declaration!");
  functionName_.assign(prototype, kResult.size(), open - kResult.size());

  const std::size_t close = prototype.find(L')', open);
  if (close == WString::npos) throw Exception(L"sfgError : Incorrect function declaration!");
  const std::wstring_view parameters = std::wstring_view(prototype).substr(open + 1, close - open - 1);
  if (!functionParameters_->parseParameters(parameters))
    throw Exception(L"sfgError : Incorrect function declaration!");
  return true;
}

void AShaderFragmentProfile::setFunctionBody(const WString& body) {
  replaceBodyText(body);
  ShaderSymbol symbol;
  symbol.parseKeywords(ScopedText(*functionBody_));
  stateVariables_.insert(symbol.getStateVariables().begin(), symbol.getStateVariables().end());
  bodyBuiltinFunctions_ = symbol.getBuiltinFunctions();
  registerShaderFunctions(symbol.getShaderFunctions());
  if (!symbol.getBuiltinFunctions().empty() || !symbol.getShaderFunctions().empty())
    viewedTexts_.push_back(functionBody_);
  hasPlainBody_ = symbol.getBuiltinFunctions().empty() && symbol.getShaderFunctions().empty() &&
                  isBalancedInBraces(*functionBody_);
}

WString& AShaderFragmentProfile::getFunctionBody() {
  openDefinition();
  hasPlainBody_ = false;
  // A text that built-in calls view stays as it is: the caller gets a copy to write to.
  if (functionBody_.use_count() > 1) functionBody_ = std::make_shared<WString>(*functionBody_);
  return *functionBody_;
}

void AShaderFragmentProfile::replaceBodyText(const WString& body) {
  functionBody_ = std::make_shared<WString>(body);
  hasPlainBody_ = false;
  forgetKeptCode();
}

void AShaderFragmentProfile::registerShaderFunctions(const Array<BuiltinFunction>& uses) {
  for (const BuiltinFunction& use : uses) {
    if (use.arguments.empty()) continue;
    shaderFunctions_[WString(use.arguments.front().view())].push_back(use);
  }
}

bool AShaderFragmentProfile::GetShaderFunctions(const WString& name, Array<BuiltinFunction>& out) const {
  const auto found = shaderFunctions_.find(name);
  if (found == shaderFunctions_.end()) return false;
  if (&out != &found->second) out = found->second;
  return true;
}

const KeywordReplacePattern& AShaderFragmentProfile::GetDefaultShaderRepalcePattern() const {
  static const KeywordReplacePattern none;
  if (defaultShaderPatternBuilt_.load(std::memory_order_acquire)) return *defaultShaderReplacePattern_;
  if (shaderFunctions_.empty()) return none;
  const std::lock_guard<std::mutex> lock(lazyMutex_);
  if (!defaultShaderPatternBuilt_.load(std::memory_order_relaxed)) {
    defaultShaderReplacePattern_ = std::make_unique<KeywordReplacePattern>();
    for (const auto& [name, uses] : shaderFunctions_)
      for (const BuiltinFunction& use : uses)
        defaultShaderReplacePattern_->addReplacePattern(WString(use.range.view()), WString());
    defaultShaderPatternBuilt_.store(true, std::memory_order_release);
  }
  return *defaultShaderReplacePattern_;
}

const std::shared_ptr<const CodeSnippet>& AShaderFragmentProfile::predefineSnippet() const {
  static const std::shared_ptr<const CodeSnippet> none;
  if (predefinesParsed_.load(std::memory_order_acquire)) return predefineSnippet_;
  if (predefines_.empty()) return none;
  const std::lock_guard<std::mutex> lock(lazyMutex_);
  // A text without any symbol (blanks only) is parsed once too, unless it was changed since.
  if (!predefinesParsed_.load(std::memory_order_relaxed) &&
      (!predefineSnippet_ || predefineSnippet_->getCode() != predefines_)) {
    auto snippet = std::make_shared<CodeSnippet>();
    snippet->addCode(predefines_);
    snippet->parse();
    predefineSnippet_ = std::move(snippet);
    if (predefineSnippet_->getNumSymbols() != 0) predefinesParsed_.store(true, std::memory_order_release);
  }
  return predefineSnippet_;
}

bool AShaderFragmentProfile::writePredefines(CodeSnippetInstance& out, AShaderCollapseContext&,
                                             FragmentProfileInstance& instance) const {
  const Array<WString>& values = instance.getBuiltinFunctionValueInPredefine();
  if (!instance.hasReplacements()) {
    out.construct(predefineSnippet(), values);
    return true;
  }
  if (predefines_.empty()) return true;

  KeywordReplacer replacer;
  instance.addReplacements(replacer);
  CodeKey key;
  const bool isKept = keepsPredefines() && canKeepCode(replacer, instance);
  if (isKept) addRules(key, replacer);
  constructCode(out, *this, isKept ? &key : nullptr, values, [&](bool) {
    CallerText text;
    appendWithCalls(text, replacer, predefines_, instance);
    numberTemporaries(text);
    return parseCode(text.code);
  });
  return true;
}

void AShaderFragmentProfile::constructOwned(CodeSnippetInstance& out, const WString& code,
                                            const Array<WString>& renames) {
  if (std::unique_ptr<CodeSnippet> snippet = parseCode(code)) out.construct(snippet.release(), renames, true);
}

// What is kept between collapses.

/// The first code is noted without memory of its own: of most profiles it stays the only one.
std::pair<std::shared_ptr<const CodeSnippet>, bool>
AShaderFragmentProfile::findKeptCode(const CodeKey& key) const {
  const std::size_t hash = std::max<std::size_t>(key.hash(), 1);
  KeptCode* kept = keptCode_.load(std::memory_order_acquire);
  if (kept == nullptr) {
    std::size_t first = 0;
    if (firstKeyHash_.compare_exchange_strong(first, hash, std::memory_order_relaxed)) return {};
    const std::lock_guard<std::mutex> lock(lazyMutex_);
    if (!ownedCode_) ownedCode_ = std::make_unique<KeptCode>(first);
    kept = ownedCode_.get();
    keptCode_.store(kept, std::memory_order_release);
  }
  KeptCode::Answer answer = kept->find(key.text(), hash);
  return {std::move(answer.snippet), answer.isWanted};
}

void AShaderFragmentProfile::keepCode(const CodeKey& key,
                                      const std::shared_ptr<const CodeSnippet>& snippet) const {
  keptCode_.load(std::memory_order_acquire)->keep(key.text(), std::max<std::size_t>(key.hash(), 1), snippet);
}

void AShaderFragmentProfile::forgetKeptCode() noexcept {
  firstKeyHash_.store(0, std::memory_order_relaxed);
  keptCode_.store(nullptr, std::memory_order_relaxed);
  ownedCode_.reset();
}

void AShaderFragmentProfile::debugDump(const wchar_t* indent) const {
  std::wcout << indent << L"profile name: " << profileName_ << std::endl;
  if (!predefines_.empty()) {
    std::wcout << indent << L"required code: " << std::endl;
    std::wcout << predefines_ << std::endl;
  }
  const auto itself = [](const WString& name) -> const WString& { return name; };
  dumpNames(indent, L"state variables: ", stateVariables_, [](const UString& name) { return name.view(); });
  dumpNames(indent, L"custom state variables: ", customStateVariables_, itself);
  dumpNames(indent, L"includes: ", includes_, itself);

  WString parameters;
  functionParameters_->writeParameters(parameters, WString(indent) + L"    ", true);
  std::wcout << indent << L"void " << functionName_ << L"(" << parameters << L")" << std::endl;
  std::wcout << indent << L"{" << std::endl;
  std::wcout << *functionBody_ << std::endl;
  std::wcout << indent << L"}" << std::endl;
}

}  // namespace TolmSDK::Graphics::sfg
