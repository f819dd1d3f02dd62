#pragma once

// Room for the long texts of a collapse.

#include <algorithm>
#include <cstddef>

#include "sfg/size_limit.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

/// A kind of text that is written piece by piece, about as often as there are instances or lights.
struct TextRate {
  std::size_t pieces = 0;
  std::size_t length = 0;

  void add(std::size_t piece) {
    ++pieces;
    length += piece;
  }
  /// Length of what is still to come of `total` pieces that are as long as those before.
  double rest(std::size_t total) const {
    if (pieces == 0 || pieces >= total) return 0.0;
    return static_cast<double>(length) / static_cast<double>(pieces) * static_cast<double>(total - pieces);
  }
};

/// Whether a text that is long enough for a forecast to pay will soon have to grow.
inline bool isAlmostFull(const WString& text) {
  constexpr std::size_t kLongText = std::size_t{1} << 16;
  constexpr std::size_t kRoom = std::size_t{1} << 12;
  return text.size() >= kLongText && text.capacity() - text.size() < kRoom;
}

/// Gives a text room for `rest` more characters. A text that doubles whenever it is full is copied once more
/// in all, and the memory of every copy is new to the process. Room grows by a fixed part at least, so that a
/// wrong forecast costs no more than the doubling would.
inline void growTo(WString& text, double rest) {
  // Pieces vary, so some more than the rest.
  const double wanted = static_cast<double>(text.size()) + 1.02 * rest;
  const std::size_t capacity = text.capacity();
  WString roomier;
  roomier.reserve(
      std::clamp(static_cast<std::size_t>(std::min(wanted, static_cast<double>(kMaximumTextLength))),
                 capacity + capacity / 4, 16 * capacity));
  roomier += text;
  text.swap(roomier);
}

}  // namespace TolmSDK::Graphics::sfg
