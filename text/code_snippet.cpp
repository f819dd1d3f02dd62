#include "sfg/code_snippet.h"

#include <cstdint>
#include <utility>

#include "text/scan.h"
#include "text/symbol_rings.h"

namespace TolmSDK::Graphics::sfg {

CodeSnippet::CodeSnippet() : code_(std::make_shared<WString>()) {}
CodeSnippet::~CodeSnippet() = default;

void CodeSnippet::addCode(const wchar_t* code) {
  if (code != nullptr) addCode(std::wstring_view(code));
}

void CodeSnippet::addCode(const WString& code) { addCode(std::wstring_view(code)); }

void CodeSnippet::addCode(std::wstring_view code) {
  // Text that others view never changes: it is copied, and kept as long as symbols of this parse view it.
  if (!symbols_.empty() || code_.use_count() > 1) {
    retiredCode_.push_back(code_);
    code_ = std::make_shared<WString>(*code_);
  }
  code_->append(code);
}

bool CodeSnippet::parse() {
  clearParse();
  const ScopedText all(*code_);
  ScopedText rest = all;
  const wchar_t* gapStart = all.text;
  ShaderSymbol symbol;
  while (ShaderSymbol::findFirstSymbol(symbol, rest) && !symbol.getRange().empty()) {
    const std::size_t gapLength = static_cast<std::size_t>(symbol.getRange().text - gapStart);
    // A symbol never starts in front of the gap, so this refuses nothing but gaps of 2^31 characters.
    if (static_cast<std::int32_t>(gapLength) < 0) return false;  // GCOVR_EXCL_BR_LINE
    ScopedText gap(gapStart, gapLength);
    trimWhiteSpaces(gap);
    addSymbol(gap);
    takeSymbol(std::move(symbol));
    gapStart = rest.text;
  }
  ScopedText gap(gapStart, static_cast<std::size_t>(all.text + all.length - gapStart));
  trimWhiteSpaces(gap);
  addSymbol(gap);
  return true;
}

void CodeSnippet::takePlainFunction(WString&& code, std::size_t name, std::size_t nameLength,
                                    std::size_t body) {
  clearParse();
  code_ = std::make_shared<WString>(std::move(code));
  const ScopedText all(*code_);
  const std::size_t behindName = name + nameLength;
  symbols_.emplace_back().constructPlainFunction(all.substr(0, name), all.substr(name, nameLength),
                                                 all.substr(behindName, body - behindName),
                                                 all.substr(body, all.length - body));
}

void CodeSnippet::addSymbol(ScopedText text) {
  if (text.empty()) return;
  forgetLookups();
  rawTexts_.push_back(symbols_.size());
  symbols_.emplace_back().setRange(text);
}

void CodeSnippet::addSymbol(const ShaderSymbol& symbol) {
  if (!symbol.getRange().empty()) takeSymbol(ShaderSymbol(symbol));
}

void CodeSnippet::takeSymbol(ShaderSymbol&& symbol) {
  forgetLookups();
  const ShaderSymbol& added = symbols_.emplace_back(std::move(symbol));
  stateVariables_.insert(added.getStateVariables().begin(), added.getStateVariables().end());
  builtinFunctions_.insert(builtinFunctions_.end(), added.getBuiltinFunctions().begin(),
                           added.getBuiltinFunctions().end());
  shaderFunctions_.insert(shaderFunctions_.end(), added.getShaderFunctions().begin(),
                          added.getShaderFunctions().end());
}

std::size_t CodeSnippet::findSymbol(std::wstring_view key) const {
  const SymbolIndex& index = symbolIndex();
  const auto found = index.find(key);
  return found != index.end() ? found->second : kNotFound;
}

/// Its keys view those of the symbols, which stay as they are while the index lives.
const CodeSnippet::SymbolIndex& CodeSnippet::symbolIndex() const {
  const std::lock_guard<std::mutex> lock(indexMutex_);
  if (index_) return *index_;
  auto index = std::make_unique<SymbolIndex>();
  auto rawText = rawTexts_.begin();
  for (std::size_t i = 0; i < symbols_.size(); ++i) {
    if (rawText != rawTexts_.end() && *rawText == i) {
      ++rawText;
    } else {
      index->insert_or_assign(symbols_[i].getKey(), i);
    }
  }
  index_ = std::move(index);
  return *index_;
}

void CodeSnippet::keepGroups(const SymbolGroups& groups) const {
  if (!wasGrouped_.exchange(true, std::memory_order_relaxed)) return;
  // Renames give such a symbol an instance key, and with that a family.
  for (const ShaderSymbol& symbol : symbols_)
    if (!symbol.hasKey() && !symbol.getBuiltinFunctions().empty()) return;
  const std::lock_guard<std::mutex> lock(indexMutex_);
  // Another thread may have kept them since the caller looked, which no test can time.
  if (keptGroups_) return;  // GCOVR_EXCL_BR_LINE
  keptGroups_ = std::make_unique<const SymbolGroups>(groups);
  groups_.store(keptGroups_.get(), std::memory_order_release);
}

void CodeSnippet::clear() {
  code_ = std::make_shared<WString>();
  clearParse();
}

/// What was found of the symbols before they change.
void CodeSnippet::forgetLookups() noexcept {
  index_.reset();
  groups_.store(nullptr, std::memory_order_relaxed);
  keptGroups_.reset();
}

void CodeSnippet::clearParse() {
  forgetLookups();
  rawTexts_.clear();
  symbols_.clear();
  stateVariables_.clear();
  builtinFunctions_.clear();
  shaderFunctions_.clear();
  retiredCode_.clear();
}

void CodeSnippet::dump(std::wostream& os) const {
  for (const ShaderSymbol& symbol : symbols_) {
    os << L"[ " << symbol.getTypeString() << L" ]\n";
    os << (symbol.getKey().empty() ? symbol.getRange().view() : std::wstring_view(symbol.getKey()))
       << L"\n\n";
  }
}

CodeSnippetInstance::CodeSnippetInstance() = default;
CodeSnippetInstance::~CodeSnippetInstance() = default;

void CodeSnippetInstance::construct(const CodeSnippet* snippet, const Array<WString>& renames,
                                    bool ownsSnippet) {
  symbols_.clear();
  shared_.reset();
  // A snippet that was owned already is not destroyed when it is handed over again.
  if (snippet == owned_.get()) owned_.release();
  owned_.reset(ownsSnippet ? snippet : nullptr);
  constructSymbols(snippet, renames);
}

void CodeSnippetInstance::construct(std::shared_ptr<const CodeSnippet> snippet,
                                    const Array<WString>& renames) {
  symbols_.clear();
  owned_.reset();
  shared_ = std::move(snippet);
  constructSymbols(shared_.get(), renames);
}

void CodeSnippetInstance::constructSymbols(const CodeSnippet* snippet, const Array<WString>& renames) {
  if (snippet == nullptr) return;
  symbols_.reserve(snippet->getNumSymbols());
  std::size_t firstRename = 0;
  for (std::size_t i = 0; i < snippet->getNumSymbols(); ++i) {
    const ShaderSymbol& symbol = snippet->getSymbol(i);
    symbols_.emplace_back().construct(&symbol, renames, firstRename);
    firstRename += symbol.getBuiltinFunctions().size();
  }
}

}  // namespace TolmSDK::Graphics::sfg
