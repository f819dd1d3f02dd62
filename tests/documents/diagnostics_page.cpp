#include "tests/documents/diagnostics_page.h"

#include <sstream>
#include <utility>

namespace TolmSDK::test {

namespace {

/// What stands between backticks in a line, in order.
std::vector<std::string> ticked(const std::string& line) {
  std::vector<std::string> words;
  for (std::size_t open = line.find('`'); open != line.npos; open = line.find('`', open)) {
    const std::size_t close = line.find('`', open + 1);
    if (close == line.npos) break;
    words.push_back(line.substr(open + 1, close - open - 1));
    open = close + 1;
  }
  return words;
}

PageExample readExample(const std::string& line, std::size_t number) {
  constexpr const char* kCommand = "sfg ";
  PageExample example;
  example.isTold = line.rfind("Told", 0) == 0;
  example.line = number;
  for (const std::string& word : ticked(line)) {
    if (word.rfind(kCommand, 0) == 0) {
      example.command = word.substr(4);
    } else {
      example.beside.insert(word);
    }
  }
  return example;
}

}  // namespace

DiagnosticsPage readDiagnosticsPage(const std::string& text) {
  DiagnosticsPage page;
  std::istringstream lines(text);
  std::string line;
  std::string file;
  std::size_t number = 0;
  while (std::getline(lines, line)) {
    ++number;
    if (line.rfind("### `", 0) == 0) {
      page.sections.push_back({ticked(line).front(), false, {}});
    } else if (line.rfind("Told", 0) == 0 || line.rfind("Not told", 0) == 0) {
      if (!page.sections.empty()) page.sections.back().examples.push_back(readExample(line, number));
    } else if (line.size() > 3 && line.front() == '`' && line.substr(line.size() - 2) == "`:") {
      file = line.substr(1, line.size() - 3);
    } else if (line.rfind("```", 0) == 0) {
      std::string content;
      while (std::getline(lines, line) && line.rfind("```", 0) != 0) {
        ++number;
        content += line + "\n";
      }
      ++number;
      if (file.empty()) continue;
      auto& files = page.sections.empty() ? page.files : page.sections.back().examples.back().files;
      files[std::exchange(file, std::string())] = content;
    } else if (!line.empty() && !page.sections.empty()) {
      page.sections.back().hasText = true;
    }
  }
  return page;
}

}  // namespace TolmSDK::test
