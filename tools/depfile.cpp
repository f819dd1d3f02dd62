#include "tools/depfile.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

/// What Make and Ninja both read as this path.
std::string escaped(const std::string& path) {
  std::string text;
  for (const char c : path) {
    if (c == ' ' || c == '#' || c == '\\') text += '\\';
    if (c == '$') text += '$';
    text += c;
  }
  return text;
}

}  // namespace

std::string writeDepfile(const std::string& target, std::span<const std::string> files) {
  std::string text = escaped(target) + ":";
  for (const std::string& file : files) text += " \\\n  " + escaped(file);
  return text + "\n";
}

}  // namespace TolmSDK::Graphics::sfg::tools
