#include "host/shader/predefine_parts.h"

#include "host/shader/identifiers.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

std::vector<PredefinePart> split(const WString& predefines) {
  std::vector<PredefinePart> parts;
  const ScopedText whole(predefines);
  ScopedText rest = whole;
  std::size_t start = 0;
  ShaderSymbol symbol;
  while (!rest.empty() && ShaderSymbol::findFirstSymbol(symbol, rest)) {
    std::size_t end = whole.length - rest.length;
    if (end < predefines.size() && predefines[end] == L'\n') ++end;
    PredefinePart part;
    if (!symbol.getRange().empty()) {
      part.type = symbol.getType();
      part.name = WString(symbol.getName().view());
    }
    part.text = std::wstring_view(predefines).substr(start, end - start);
    if (!part.text.empty()) parts.push_back(part);
    start = end;
    symbol.clear();
  }
  if (start < predefines.size())
    parts.push_back({EShaderSymbolType::unknown, {}, std::wstring_view(predefines).substr(start)});
  return parts;
}

}  // namespace

PredefineParts::PredefineParts(const WString& predefines)
    : parts_(split(predefines)), isTaken_(parts_.size()) {
  for (std::size_t i = 0; i < parts_.size(); ++i) {
    if (parts_[i].type == EShaderSymbolType::structure) structures_.emplace(parts_[i].name, i);
  }
}

std::vector<std::size_t> PredefineParts::takeStructures(const Array<WString>& names) {
  std::vector<std::size_t> taken;
  for (const WString& name : names) {
    std::vector<OpenStructure> stack;
    open(stack, name);
    while (!stack.empty()) {
      OpenStructure& structure = stack.back();
      if (structure.next != structure.identifiers.size()) {
        open(stack, structure.identifiers[structure.next++]);
        continue;
      }
      taken.push_back(structure.part);
      stack.pop_back();
    }
  }
  return taken;
}

void PredefineParts::open(std::vector<OpenStructure>& stack, std::wstring_view name) {
  const auto found = structures_.find(name);
  if (found == structures_.end() || isTaken_[found->second]) return;
  isTaken_[found->second] = true;
  const Set<std::wstring_view> identifiers = identifiersOf(parts_[found->second].text);
  stack.push_back({found->second, {identifiers.begin(), identifiers.end()}});
}

std::vector<std::size_t> PredefineParts::takeRest() {
  std::vector<std::size_t> taken;
  for (std::size_t i = 0; i < parts_.size(); ++i) {
    if (!isTaken_[i]) taken.push_back(i);
    isTaken_[i] = true;
  }
  return taken;
}

}  // namespace TolmSDK::Graphics::sfg::host
