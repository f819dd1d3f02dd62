#include "host/documents/load_error.h"

#include <charconv>
#include <optional>

#include "host/documents/type_names.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

constexpr std::string_view kNoType = "`type` names no type: `";

/// Takes `prefix` and the number behind it from the front of `text`; nothing when they do not stand there.
std::optional<std::size_t> takeNumber(std::string_view& text, std::string_view prefix) {
  if (!text.starts_with(prefix)) return std::nullopt;
  std::size_t number = 0;
  const char* const start = text.data() + prefix.size();
  const auto [end, error] = std::from_chars(start, text.data() + text.size(), number);
  if (error != std::errc()) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return number;
}

/// A load error says its place in words; diagnostics show it behind the file's name.
LoadError withPlace(std::string_view message) {
  std::string_view text = message;
  const std::optional<std::size_t> line = takeNumber(text, "line ");
  const std::optional<std::size_t> column = line ? takeNumber(text, ", column ") : std::nullopt;
  LoadError error;
  if (!column || !text.starts_with(": ")) {
    error.text = message;
  } else {
    error.position = {*line, *column};
    error.text = text.substr(2);
  }
  return error;
}

Finding kindOf(std::string_view text) {
  if (text.ends_with(" is missing")) return Finding::missingKey;
  if (text.starts_with(kNoType)) return Finding::unknownType;
  if (text.find("must be") != text.npos) return Finding::wrongKind;
  return Finding::wrongValue;
}

}  // namespace

LoadError documentError(std::string_view message) {
  LoadError error = withPlace(message);
  error.kind = error.position.line == 0 ? Finding::unreadableFile : Finding::malformedJson;
  return error;
}

LoadError parameterError(std::string_view message) {
  LoadError error = withPlace(message);
  error.kind = kindOf(error.text);
  if (error.kind == Finding::unknownType && error.text.ends_with('`')) {
    const std::string name = error.text.substr(kNoType.size(), error.text.size() - kNoType.size() - 1);
    error.text += typeHint(name);
    error.suggestion = meantType(name);
  }
  return error;
}

}  // namespace TolmSDK::Graphics::sfg::host
