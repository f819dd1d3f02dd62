#include "tolmsdk/files.h"

#include <algorithm>
#include <fstream>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/named_pipe.h"
#include "platform/text_file.h"
#include "platform/utf.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/read_limits.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK {

namespace fs = std::filesystem;

namespace {

std::string_view asBytes(const std::u8string& text) {
  return {reinterpret_cast<const char*>(text.data()), text.size()};
}

/// Appends the rest of a stream to `bytes`, at most one byte more than may be read. Answers false for a read
/// error.
bool appendRest(std::ifstream& file, std::string& bytes) {
  constexpr std::size_t kStep = std::size_t{1} << 16;
  const std::size_t most = readLimits().fileBytes;
  while (bytes.size() <= most) {
    // Files grow by doubling, so that a stream of unknown length costs no more than its own size again.
    const std::size_t before = bytes.size();
    const std::size_t room = std::max(bytes.capacity() - before, kStep);
    bytes.resize(before + room);
    file.read(bytes.data() + before, static_cast<std::streamsize>(room));
    bytes.resize(before + static_cast<std::size_t>(file.gcount()));
    if (!file) return file.eof() && !file.bad();
  }
  return true;
}

bool fail(std::string& bytes, WString& error, WString message) {
  bytes.clear();
  bytes.shrink_to_fit();
  error = std::move(message);
  return false;
}

}  // namespace

fs::path toPath(std::wstring_view path) {
  const std::string bytes = toUtf8(path);
  return fs::path(std::u8string(bytes.begin(), bytes.end()));
}

WString tooLargeMessage() {
  constexpr std::size_t kMebibyte = std::size_t{1} << 20;
  const std::size_t most = readLimits().fileBytes;
  if (most % kMebibyte == 0) return formatted(L"the file is larger than %Iu MiB", most / kMebibyte);
  return formatted(L"the file is larger than %Iu bytes", most);
}

bool readTextFile(std::wstring_view path, std::string& bytes, WString& error) {
  bytes.clear();
  error.clear();
  // The system would silently take a path up to its first null character.
  if (path.find(L'\0') != std::wstring_view::npos) return fail(bytes, error, L"no such file");
  const fs::path file = toPath(path);

  // What can be told without reading: missing, a folder, too large.
  std::error_code code;
  const fs::file_status status = fs::status(file, code);
  if (status.type() == fs::file_type::not_found) return fail(bytes, error, L"no such file");
  if (status.type() == fs::file_type::directory) return fail(bytes, error, L"this is a folder, not a file");
  if (status.type() == fs::file_type::regular) {
    const std::uintmax_t size = fs::file_size(file, code);
    if (!code && size > readLimits().fileBytes) return fail(bytes, error, tooLargeMessage());
    if (!code) bytes.reserve(static_cast<std::size_t>(size) + 1);
  }

  if (isNamedPipe(file)) {
    const PipeEnd end = readNamedPipe(file, bytes);
    if (end == PipeEnd::noWriter) return fail(bytes, error, L"nobody writes into this pipe");
    if (end == PipeEnd::failed) return fail(bytes, error, L"the file cannot be read");
  } else {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) return fail(bytes, error, L"the file cannot be opened");
    if (!appendRest(stream, bytes)) return fail(bytes, error, L"the file cannot be read");
  }
  if (bytes.size() > readLimits().fileBytes) return fail(bytes, error, tooLargeMessage());
  if (withoutByteOrderMark(bytes).size() != bytes.size()) bytes.erase(0, 3);
  return true;
}

bool GetUTF8TextFileString(std::wstring_view path, WString& text, WString* error) {
  std::string bytes;
  WString message;
  const bool succeeded = readTextFile(path, bytes, message);
  assignFromUtf8(text, bytes);
  if (error != nullptr) *error = std::move(message);
  return succeeded;
}

Array<WString> EnumFiles(std::wstring_view folder) {
  struct File {
    std::u8string name;
    fs::path path;
  };
  std::vector<File> files;
  std::error_code code;
  for (fs::directory_iterator entry(toPath(folder), code), end; !code && entry != end;
       entry.increment(code)) {
    std::error_code ignored;
    if (entry->is_regular_file(ignored))
      files.push_back({entry->path().filename().u8string(), entry->path()});
  }
  std::sort(files.begin(), files.end(), [](const File& a, const File& b) { return a.name < b.name; });

  Array<WString> paths;
  paths.reserve(files.size());
  for (const File& file : files) paths.push_back(fromUtf8(asBytes(file.path.u8string())));
  return paths;
}

namespace {

std::wstring_view fileName(std::wstring_view path) {
  const std::size_t separator = path.find_last_of(L"/\\");
  return separator == std::wstring_view::npos ? path : path.substr(separator + 1);
}

}  // namespace

WString GetFilename(std::wstring_view path) { return WString(fileName(path)); }

WString GetBaseName(std::wstring_view path) {
  const std::wstring_view name = fileName(path);
  return WString(name.substr(0, name.rfind(L'.')));
}

WString GetExtension(std::wstring_view path) {
  const std::wstring_view name = fileName(path);
  const std::size_t dot = name.rfind(L'.');
  return dot == std::wstring_view::npos ? WString() : WString(name.substr(dot + 1));
}

}  // namespace TolmSDK
