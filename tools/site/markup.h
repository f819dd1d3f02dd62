#pragma once

// Text of HTML pages in which nothing stands unescaped by oversight.

#include <concepts>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

namespace TolmSDK::Graphics::sfg::site {

/// HTML. Made of plain text, which is escaped, and of elements around it.
class Markup {
public:
  Markup() = default;
  /// Shows the text as it is.
  Markup(std::string_view text);  // NOLINT(google-explicit-constructor): content of an element
  Markup(const char* text) : Markup(std::string_view(text)) {}         // NOLINT
  Markup(const std::string& text) : Markup(std::string_view(text)) {}  // NOLINT

  Markup& operator<<(const Markup& more) {
    html_ += more.html_;
    return *this;
  }
  const std::string& html() const noexcept { return html_; }
  bool isEmpty() const noexcept { return html_.empty(); }

private:
  friend Markup element(std::string_view, std::initializer_list<std::pair<std::string_view, std::string>>,
                        const Markup&);
  std::string html_;
};

/// Name and value; one that has an empty value is written without it, `hidden`.
using Attributes = std::initializer_list<std::pair<std::string_view, std::string>>;

/// `content` between tags; `meta`, `link`, `img`, `input` have none.
Markup element(std::string_view name, Attributes attributes = {}, const Markup& content = {});
template <class Content>
requires std::convertible_to<Content, Markup> Markup element(std::string_view name, const Content& content) {
  return element(name, {}, Markup(content));
}

}  // namespace TolmSDK::Graphics::sfg::site
