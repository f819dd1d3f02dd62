#include "tools/lsp/document_check.h"

#include <memory>
#include <utility>

#include "sfg/host/check.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

namespace {

using host::Diagnostic;
using host::DocumentKind;
using Check = std::function<std::vector<Diagnostic>()>;

/// A library that is no JSON now is not the one that the checker has: it is told what any document is.
std::vector<Diagnostic> checkLibrary(const host::Checker& checker, const host::Document& document,
                                     const std::string& file) {
  const bool isWellFormed = Json::accept(*document.text());
  return (isWellFormed ? checker.checkLibrary(file) : checker.checkGraph(document)).diagnostics;
}

}  // namespace

Check makeCheck(const OpenDocument& document, Workspace& workspace) {
  const auto kind = document.kind();
  const std::shared_ptr<const host::Checker> checker = workspace.checker();
  if (!kind || !checker) return {};
  auto text = host::Document::fromText(document.text().buffer().text(), document.name());
  switch (*kind) {
  case DocumentKind::library:
    return [checker, text = std::move(text), file = workspace.pathInFolders(document.name())] {
      return checkLibrary(*checker, text, file);
    };
  case DocumentKind::graph:
    return [checker, text = std::move(text)] { return checker->checkGraph(text).diagnostics; };
  case DocumentKind::environment:
    return [checker, text = std::move(text)] { return checker->checkEnvironment(text).diagnostics; };
  case DocumentKind::manifest: break;
  }
  return {};
}

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
