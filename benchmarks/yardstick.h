#pragma once

// What a collapse is measured against: one pass that copies the text it wrote while renaming its identifiers.

#include <string_view>
#include <unordered_map>

#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg::benchmarks {

/// Copies one text, every identifier looked up in a hash map and written under the name found there. Making
/// it builds the map; copy() is the pass.
class Yardstick {
public:
  /// `text` must outlive this.
  explicit Yardstick(std::wstring_view text);
  WString copy() const;

private:
  std::wstring_view text_;
  std::unordered_map<std::wstring_view, WString> names_;
};

}  // namespace TolmSDK::Graphics::sfg::benchmarks
