#pragma once

// Memory for many short texts that live equally long.

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

namespace TolmSDK::Graphics::sfg {

/// Keeps copies of texts; their views stay valid as long as the store.
class TextStore {
public:
  std::wstring_view add(std::wstring_view text) {
    if (free_ < text.size()) addBlock(text.size());
    wchar_t* const copy = next_;
    std::copy(text.begin(), text.end(), copy);
    next_ += text.size();
    free_ -= text.size();
    return {copy, text.size()};
  }

private:
  void addBlock(std::size_t atLeast) {
    constexpr std::size_t kLargest = std::size_t{1} << 16;
    blockSize_ = std::min(blockSize_ * 2, kLargest);
    free_ = std::max(blockSize_, atLeast);
    blocks_.push_back(std::make_unique_for_overwrite<wchar_t[]>(free_));
    next_ = blocks_.back().get();
  }

  std::vector<std::unique_ptr<wchar_t[]>> blocks_;
  wchar_t* next_ = nullptr;
  std::size_t free_ = 0;
  std::size_t blockSize_ = 256;
};

}  // namespace TolmSDK::Graphics::sfg
