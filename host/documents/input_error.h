#pragma once

// What an unreadable or wrong input file is refused with.

#include <stdexcept>
#include <string>

#include "tolmsdk/object_data_node.h"

namespace TolmSDK::Graphics::sfg::host {

/// An input that cannot be used: a file, the place in it (zero where there is none) and what was expected.
/// Texts are UTF-8. The command answers exit status 2.
class InputError : public std::runtime_error {
public:
  InputError(std::string file, TextPosition position, const std::string& reason)
      : std::runtime_error(reason), file_(std::move(file)), position_(position) {}
  /// A wrong argument: no file.
  explicit InputError(const std::string& reason) : InputError(std::string(), TextPosition(), reason) {}

  /// Empty when no file is at fault.
  const std::string& file() const noexcept { return file_; }
  TextPosition position() const noexcept { return position_; }
  /// "graph.json:3:14", "graph.json", or empty: how a diagnostic starts.
  std::string place() const;

private:
  std::string file_;
  TextPosition position_;
};

}  // namespace TolmSDK::Graphics::sfg::host
