#pragma once

// How far a command is.

#include <iostream>
#include <string_view>

#include "tools/diagnostics.h"

namespace TolmSDK::Graphics::sfg::tools {

/// One line of the standard error stream that is written over again, and gone at the end. Nothing where the
/// stream is no terminal.
class ProgressLine {
public:
  ProgressLine() = default;
  ~ProgressLine() { clear(); }
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  bool isTerminal() const noexcept { return isTerminal_; }
  void show(std::string_view text) {
    if (!isTerminal_) return;
    std::cerr << kErase << text << std::flush;
    isShown_ = true;
  }
  /// In front of other output.
  void clear() {
    if (isShown_) std::cerr << kErase << std::flush;
    isShown_ = false;
  }

private:
  static constexpr std::string_view kErase = "\r\x1b[K";
  bool isTerminal_ = Diagnostics::isTerminal();
  bool isShown_ = false;
};

}  // namespace TolmSDK::Graphics::sfg::tools
