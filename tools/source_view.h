#pragma once

// A line of a file with a mark under one character.

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace TolmSDK::Graphics::sfg::tools {

/// Shows lines of files as they are when they are first asked for. Keeps the last few files.
class SourceView {
public:
  /// Two lines: the source, and a caret under the character at `column`, both counted from 1 in code points.
  /// Tabs become blanks, what is no text is shown as such, and of a long line what is near the caret. Empty
  /// for a place that is not there.
  std::string show(const std::string& file, std::size_t line, std::size_t column);

private:
  struct File {
    std::string text;
    std::vector<std::size_t> lineStarts;
  };
  const File& read(const std::string& file);

  std::map<std::string, File> files_;
};

/// The two lines for a line of text (UTF-8, without its end).
std::string markedLine(std::string_view text, std::size_t line, std::size_t column);

}  // namespace TolmSDK::Graphics::sfg::tools
