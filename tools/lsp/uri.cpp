#include "tools/lsp/uri.h"

#include <string_view>

namespace TolmSDK::Graphics::sfg::tools::lsp {

namespace {

constexpr std::string_view kScheme = "file://";
constexpr std::string_view kDigits = "0123456789ABCDEF";

int digitOf(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

bool isPlain(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
         std::string_view("-._~/").find(c) != std::string_view::npos;
}

}  // namespace

std::optional<std::filesystem::path> pathOf(const std::string& uri) {
  if (!uri.starts_with(kScheme)) return std::nullopt;
  const std::size_t root = uri.find('/', kScheme.size());  // behind the host, which is this one
  if (root == uri.npos) return std::nullopt;
  std::string path;
  for (std::size_t i = root; i < uri.size(); ++i) {
    if (uri[i] == '%' && i + 2 < uri.size()) {
      const int high = digitOf(uri[i + 1]);
      const int low = digitOf(uri[i + 2]);
      if (high < 0 || low < 0) return std::nullopt;
      path += static_cast<char>(high * 16 + low);
      i += 2;
    } else {
      path += uri[i];
    }
  }
  if (path.find('\0') != path.npos) return std::nullopt;
  return std::filesystem::path(path);
}

std::string uriOf(const std::filesystem::path& path) {
  std::string uri(kScheme);
  for (const char c : path.string()) {
    if (isPlain(c)) {
      uri += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      uri += '%';
      uri += kDigits[byte >> 4];
      uri += kDigits[byte & 15];
    }
  }
  return uri;
}

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
