#include "host/library/include_files.h"

#include <algorithm>
#include <filesystem>

#include "tolmsdk/files.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

namespace fs = std::filesystem;

/// The names in the `#include` lines of a text, as the registry reads them.
std::vector<IncludeFiles::Named> namesIn(std::wstring_view text) {
  constexpr std::wstring_view kDirective = L"#include";
  std::vector<IncludeFiles::Named> names;
  std::size_t line = 1;
  std::size_t counted = 0;
  for (std::size_t at = text.find(kDirective); at != text.npos; at = text.find(kDirective, at)) {
    const std::size_t end = std::min(text.find(L'\n', at), text.size());
    const std::size_t open = text.substr(0, end).find(L'"', at);
    const std::size_t close = open == text.npos ? open : text.substr(0, end).find(L'"', open + 1);
    line += static_cast<std::size_t>(std::count(text.begin() + static_cast<std::ptrdiff_t>(counted),
                                                text.begin() + static_cast<std::ptrdiff_t>(at), L'\n'));
    counted = at;
    if (close != text.npos && close != open + 1) {
      const std::size_t start = at == 0 ? 0 : text.rfind(L'\n', at - 1) + 1;
      names.push_back({WString(text.substr(open + 1, close - open - 1)), {line, open - start + 1}});
    }
    at = end;
  }
  return names;
}

}  // namespace

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
    const auto [known, isNew] =
        files_.try_emplace(fromUtf8(entry->path().filename().string()), File{entry->path().string(), {}, {}});
    File file{entry->path().string(), whyNoFile(entry->path().string()), {}};
    WString text;
    WString reason;
    if (file.fault.empty() && !GetUTF8TextFileString(fromUtf8(file.path), text, &reason)) {
      file.fault = toUtf8(reason);
    }
    file.includes = namesIn(text);
    // Of files of one name the registry joins the texts: one that can be read speaks for the others.
    if (isNew || (!known->second.fault.empty() && file.fault.empty())) known->second = std::move(file);
  }
}

const IncludeFiles::File* IncludeFiles::find(std::wstring_view name) const {
  const auto found = files_.find(name);
  return found != files_.end() ? &found->second : nullptr;
}

}  // namespace TolmSDK::Graphics::sfg::host
