#include "host/library/include_files.h"

#include <algorithm>
#include <filesystem>

#include "host/library/prototype_fault.h"
#include "tolmsdk/files.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

namespace fs = std::filesystem;

/// What stands behind the directive, or nothing when it is a comment's.
std::string behindDirective(std::wstring_view text, std::size_t at, std::size_t end) {
  constexpr std::size_t kDirective = std::wstring_view(L"#include").size();
  const WString line = withBlankComments(text.substr(at, end - at));
  return toUtf8(std::wstring_view(line).substr(std::min(kDirective, line.size())));
}

std::string namelessText(std::string_view written) {
  const std::string name = bareIncludeName(written);
  if (name.empty()) return "`#include` names no file";
  const std::string_view word = written.substr(written.find_first_not_of(" \t"));
  return "`#include " + std::string(word.substr(0, word.find_last_not_of(" \t\r") + 1)) +
         "` names no file: write `#include \"" + name + "\"`";
}

/// The `#include` lines of a text, as the registry reads them.
void readDirectives(std::wstring_view text, IncludeFiles::File& file) {
  constexpr std::wstring_view kDirective = L"#include";
  const WString code = withBlankComments(text);
  std::size_t line = 1;
  std::size_t counted = 0;
  for (std::size_t at = text.find(kDirective); at != text.npos; at = text.find(kDirective, at)) {
    const std::size_t end = std::min(text.find(L'\n', at), text.size());
    const std::size_t open = text.substr(0, end).find(L'"', at);
    const std::size_t close = open == text.npos ? open : text.substr(0, end).find(L'"', open + 1);
    line += static_cast<std::size_t>(std::count(text.begin() + static_cast<std::ptrdiff_t>(counted),
                                                text.begin() + static_cast<std::ptrdiff_t>(at), L'\n'));
    counted = at;
    const std::size_t start = at == 0 ? 0 : text.rfind(L'\n', at - 1) + 1;
    if (code[at] != L'#' && text.substr(start, at - start).find(L"//") != text.npos) {
      file.nameless.push_back(
          {"`#include` counts in comments, too, and takes the line's end with it: what stands "
           "below becomes a part of this comment",
           {line, at - start + 1}});
    }
    if (close != text.npos && close != open + 1) {
      file.includes.push_back({WString(text.substr(open + 1, close - open - 1)), {line, open - start + 1}});
    } else if (code[at] == L'#') {
      file.nameless.push_back({namelessText(behindDirective(text, at, end)), {line, at - start + 1}});
    }
    at = end;
  }
}

}  // namespace

std::string bareIncludeName(std::string_view written) {
  constexpr std::string_view kMarks = " \t\r<>\"'";
  const std::size_t first = written.find_first_not_of(kMarks);
  if (first == written.npos) return {};
  return std::string(written.substr(first, written.find_last_not_of(kMarks) + 1 - first));
}

std::string whyNoFile(const std::string& path) {
  std::error_code error;
  switch (fs::status(path, error).type()) {
  case fs::file_type::regular: return {};
  case fs::file_type::directory: return "it is a folder";
  case fs::file_type::fifo: return "it is a pipe";
  case fs::file_type::socket: return "it is a socket";
  case fs::file_type::block:
  case fs::file_type::character: return "it is a device";
  case fs::file_type::not_found:
    return fs::is_symlink(path, error) ? "it is a link to nothing" : "it does not exist";
  default: return "it cannot be reached";
  }
}

void IncludeFiles::addFolder(const std::string& folder) {
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    const std::string extension = entry->path().extension().string();
    if (extension != ".h" && extension != ".H") continue;
    const auto [known, isNew] = files_.try_emplace(fromUtf8(entry->path().filename().string()),
                                                   File{entry->path().string(), {}, {}, {}});
    File file{entry->path().string(), whyNoFile(entry->path().string()), {}, {}};
    WString text;
    WString reason;
    if (file.fault.empty() && !GetUTF8TextFileString(fromUtf8(file.path), text, &reason)) {
      file.fault = toUtf8(reason);
    }
    readDirectives(text, file);
    // Of files of one name the registry joins the texts: one that can be read speaks for the others.
    if (isNew || (!known->second.fault.empty() && file.fault.empty())) known->second = std::move(file);
  }
}

const IncludeFiles::File* IncludeFiles::find(std::wstring_view name) const {
  const auto found = files_.find(name);
  return found != files_.end() ? &found->second : nullptr;
}

}  // namespace TolmSDK::Graphics::sfg::host
