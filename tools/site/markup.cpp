#include "tools/site/markup.h"

#include <algorithm>
#include <array>

namespace TolmSDK::Graphics::sfg::site {

namespace {

/// Control characters have no place in HTML, escaped or not.
void appendEscaped(std::string& html, std::string_view text) {
  for (const char c : text) {
    switch (c) {
    case '&': html += "&amp;"; break;
    case '<': html += "&lt;"; break;
    case '>': html += "&gt;"; break;
    case '"': html += "&quot;"; break;
    case '\'': html += "&#39;"; break;
    default:
      if (static_cast<unsigned char>(c) >= 0x20 || c == '\n' || c == '\t') html += c;
    }
  }
}

bool isVoid(std::string_view name) {
  constexpr std::array<std::string_view, 4> kVoid = {"img", "input", "link", "meta"};
  return std::find(kVoid.begin(), kVoid.end(), name) != kVoid.end();
}

}  // namespace

Markup::Markup(std::string_view text) { appendEscaped(html_, text); }

Markup element(std::string_view name, Attributes attributes, const Markup& content) {
  Markup made;
  std::string& html = made.html_;
  html.append("<").append(name);
  for (const auto& [key, value] : attributes) {
    html.append(" ").append(key);
    // An empty alternative text says that a picture only repeats what stands beside it.
    if (value.empty() && key != "alt") continue;
    html += "=\"";
    appendEscaped(html, value);
    html += '"';
  }
  html += ">";
  if (isVoid(name)) return made;
  html.append(content.html_).append("</").append(name).append(">");
  return made;
}

}  // namespace TolmSDK::Graphics::sfg::site
