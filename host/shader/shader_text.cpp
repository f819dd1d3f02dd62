#include "host/shader/shader_text.h"

#include <algorithm>

namespace TolmSDK::Graphics::sfg::host {

void ShaderText::section(ShaderSection::Kind kind, std::wstring_view name, std::size_t predefine) {
  closeSection();
  ShaderSection next;
  next.kind = kind;
  next.name = name;
  next.predefine = predefine;
  next.firstLine = line_;
  sections_.push_back(next);
}

void ShaderText::write(std::wstring_view text) {
  text_ += text;
  line_ += static_cast<std::size_t>(std::count(text.begin(), text.end(), L'\n'));
}

void ShaderText::endLine() {
  if (!text_.empty() && text_.back() != L'\n') write(L"\n");
}

std::vector<ShaderSection> ShaderText::takeSections() {
  closeSection();
  return std::move(sections_);
}

void ShaderText::closeSection() {
  endLine();
  if (!sections_.empty()) sections_.back().lastLine = line_ - 1;
  if (!sections_.empty() && sections_.back().lastLine < sections_.back().firstLine) sections_.pop_back();
}

}  // namespace TolmSDK::Graphics::sfg::host
