#include "host/library/source_texts.h"

#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <utility>

namespace TolmSDK::Graphics::sfg::host {

namespace {

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

std::optional<std::string> readBytes(const std::string& path) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  if (error) return std::nullopt;
  const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "rb"));
  if (!file) return std::nullopt;
  std::string bytes(static_cast<std::size_t>(size), '\0');
  bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file.get()));
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.erase(0, 3);
  return bytes;
}

}  // namespace

void SourceTexts::add(const std::string& file) {
  if (std::optional<std::string> bytes = readBytes(file)) texts_.insert_or_assign(file, std::move(*bytes));
}

void SourceTexts::add(const std::string& file, std::string text) {
  if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
  texts_.insert_or_assign(file, std::move(text));
}

void SourceTexts::addInclude(const WString& name, const std::string& file) {
  add(file);
  if (texts_.contains(file)) includes_[name].push_back(file);
}

const std::string* SourceTexts::find(const std::string& file) const {
  const auto found = texts_.find(file);
  return found != texts_.end() ? &found->second : nullptr;
}

const std::vector<std::string>& SourceTexts::includeFiles(const WString& name) const {
  static const std::vector<std::string> none;
  const auto found = includes_.find(name);
  return found != includes_.end() ? found->second : none;
}

}  // namespace TolmSDK::Graphics::sfg::host
