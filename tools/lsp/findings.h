#pragma once

// Diagnostics as an editor shows them.

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "sfg/host/diagnostic.h"
#include "tools/lsp/documents.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

/// An editor is told no more of one document.
inline constexpr std::size_t kMostFindings = 1000;

/// What is underlined for a diagnostic: the key, text or number at its place, the word inside a line of code.
Span findSpan(const ScannedText& text, const host::Diagnostic& diagnostic);

/// What a quick fix does: a name in place of another one.
struct Replacement {
  Span span;
  std::string name;
  bool isWhole = true;  ///< a whole text or key; else a word in code
};
/// Of a diagnostic that says what was meant; nothing where that is not near what stands there now.
std::optional<Replacement> findReplacement(const ScannedText& text, const host::Diagnostic& diagnostic);

/// Texts of files that notes are about; null for one that cannot be read.
using TextOf = std::function<const ScannedText*(const std::string& file)>;

/// One Diagnostic of the protocol; `notes` become related information.
Json jsonOf(const host::Diagnostic& diagnostic, std::span<const host::Diagnostic> notes,
            const ScannedText& text, Encoding encoding, const TextOf& textOf);

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
