#include "collapse/result_writer.h"

#include <memory>
#include <utility>

#include "sfg/code_snippet.h"
#include "sfg/scoped_text.h"
#include "sfg/size_limit.h"
#include "text/scan.h"

namespace TolmSDK::Graphics::sfg {

namespace {

/// Whether a text holds blanks and comments only.
bool isBlankCode(const WString& code) {
  const ScopedText text(code);
  std::size_t pos = 0;
  scan::skipBlanksAndComments(text, pos);
  return pos >= text.length;
}

}  // namespace

void ResultWriter::writeCode(std::wstring_view text) {
  WString& body = profile_->getFunctionBody();
  checkTextLength(body.size() + text.size());
  body += text;
}

void ResultWriter::writePredefine(const WString& text) {
  if (isBlankCode(text)) return;
  auto snippet = std::make_unique<CodeSnippet>();
  snippet->addCode(text);
  snippet->parse();
  if (snippet->getNumSymbols() == 0) return;
  CodeSnippetInstance code;
  code.construct(snippet.release(), {}, true);
  KeywordReplacePattern renames;
  writePredefine(code, {}, renames);
}

void ResultWriter::writePredefine(const CodeSnippetInstance& code, const KeywordReplacePattern& pattern,
                                  KeywordReplacePattern& localPattern) {
  accumulator_.append(profile_->predefines(), code, pattern, localPattern);
}

void ResultWriter::writeDefinition(const CodeSnippetInstance& code, const KeywordReplacePattern& pattern,
                                   FragmentProfileInstance& instance) {
  WString& name = definitions_.soughtText();
  instance.appendFunctionName(name);
  KeywordReplacePattern renames;
  KeywordReplacePattern* const own = instance.findKeywordReplacePattern();
  const WString& rename = accumulator_.appendDefinition(profile_->predefines(), code, pattern,
                                                        own != nullptr ? *own : renames, name);
  if (!renames.empty()) instance.getKeywordReplacePattern() = std::move(renames);
  if (rename != name) instance.setFunctionName(rename);
}

bool ResultWriter::takeWrittenDefinition(FragmentProfileInstance& instance, const ILanguageTraits* language) {
  WString& key = definitions_.soughtText();
  instance.appendDefinitionKey(key);
  const WrittenDefinitions::Definition& found = definitions_.get(instance.getProfile(), language, key);
  if (!found.isWritten) return false;
  if (!found.rename.empty()) instance.setFunctionName(found.rename);
  return true;
}

void ResultWriter::rememberWrittenDefinition(const FragmentProfileInstance& instance) {
  WString& name = definitions_.soughtText();
  instance.appendFunctionName(name);
  WrittenDefinitions::Definition& written = definitions_.last();
  const std::wstring_view key = written.key;
  const bool isRenamed = !key.starts_with(name) || (key.size() > name.size() && key[name.size()] != L' ');
  if (isRenamed) written.rename = name;
  written.isWritten = true;
}

}  // namespace TolmSDK::Graphics::sfg
