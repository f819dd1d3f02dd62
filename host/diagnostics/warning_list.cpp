#include "host/diagnostics/warning_list.h"

#include "host/documents/diagnose.h"
#include "host/documents/document_reader.h"

namespace TolmSDK::Graphics::sfg::host {

void WarningList::atGraph(Finding kind, TextPosition position, const std::string& text) {
  warnings_.push_back(diagnose(kind, Severity::warning, job_.document().file(), position, text));
}

void WarningList::atEnvironment(Finding kind, TextPosition position, const std::string& text) {
  warnings_.push_back(diagnose(kind, Severity::warning, job_.environment().file(), position, text));
}

void WarningList::atLight(Finding kind, const ShadingEnvironment::Light& light, const std::string& text) {
  atEnvironment(kind, light.position, text);
}

void WarningList::atFragment(Finding kind, const IShaderFragment& fragment, const std::string& text) {
  const FragmentFiles::Entry* const entry = job_.libraries().files().find(fragment.key());
  warnings_.push_back(diagnose(kind, Severity::warning, entry != nullptr ? entry->file : std::string(),
                               entry != nullptr ? entry->position : TextPosition(),
                               "fragment " + inTicks(fragment.key()) + ": " + text));
}

void WarningList::atCode(Finding kind, const IShaderFragment& fragment, const FragmentCode* code,
                         std::size_t offset, const std::string& text) {
  atFragment(kind, fragment, text);
  if (code == nullptr) return;
  warnings_.back().file = *code->file;
  const TextPosition position = code->placeOf(offset);
  warnings_.back().line = position.line;
  warnings_.back().column = position.column;
}

std::string named(const GraphNode& node) { return "node " + inTicks(node.name()); }

}  // namespace TolmSDK::Graphics::sfg::host
