#include "profiles/light_blocks.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "sfg/size_limit.h"
#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics::sfg {
namespace {

constexpr std::wstring_view kBegin = L"TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN";
constexpr std::wstring_view kEnd = L"TOLM_VESSOR_LIGHT_AND_SHADOW_END";
constexpr std::wstring_view kLighting = L"TOLM_SCENE_LIGHTING";
constexpr std::wstring_view kFunction = L"TolmSceneLighting";
constexpr std::wstring_view kOpen = L"\n    {";
constexpr std::wstring_view kClose = L"}\n";

constexpr std::wstring_view kMarkerStem =
    kBegin.substr(0, kBegin.size() - std::wstring_view(L"BEGIN").size());

enum class Marker { begin, end };

struct MarkerPlace {
  Marker marker;
  std::size_t position;
  std::size_t size() const { return marker == Marker::begin ? kBegin.size() : kEnd.size(); }
  std::size_t behind() const { return position + size(); }
};

[[noreturn]] void refuseOpenBlock() { throw Exception(L"sfgError : light and shadow block is not closed!"); }

/// The first marker of either kind at or behind `from`.
std::optional<MarkerPlace> findMarker(std::wstring_view text, std::size_t from) {
  for (std::size_t at = text.find(kMarkerStem, from); at != text.npos;
       at = text.find(kMarkerStem, at + kMarkerStem.size())) {
    const std::wstring_view rest = text.substr(at);
    if (rest.starts_with(kBegin)) return MarkerPlace{Marker::begin, at};
    if (rest.starts_with(kEnd)) return MarkerPlace{Marker::end, at};
  }
  return std::nullopt;
}

/// The text in front of a block, the text that each light repeats, and what of it is replaced. With one light
/// the text may hold markers: see takeBlock.
struct Block {
  std::wstring_view before;
  std::wstring_view inner;
  std::size_t calls = 0;
  std::size_t markerPairs = 0;

  std::size_t copyLength() const {
    return (1 + markerPairs) * (kOpen.size() + kClose.size()) + inner.size() -
           markerPairs * (kBegin.size() + kEnd.size()) - calls * kLighting.size() + calls * kFunction.size();
  }
};

std::size_t countCalls(std::wstring_view text) {
  std::size_t count = 0;
  for (std::size_t at = text.find(kLighting); at != text.npos;
       at = text.find(kLighting, at + kLighting.size()))
    ++count;
  return count;
}

/// Takes the next block off the front of `rest`; false when there is no more. A begin marker inside a block
/// stands in each of its copies, which are looked through again: with several lights there are then ever more
/// begin markers than end markers. With one light the copy's begin marker opens a block that goes up to the
/// next end marker. All that hang together so are one block here, whose inner markers become braces as well.
bool takeBlock(std::wstring_view& rest, bool mayNest, Block& block) {
  std::optional<MarkerPlace> place = findMarker(rest, 0);
  if (!place) return false;
  if (place->marker == Marker::end) {
    if (rest.find(kBegin, place->behind()) != rest.npos) refuseOpenBlock();
    return false;
  }
  const MarkerPlace begin = *place;
  block.markerPairs = 0;
  for (std::size_t open = 1; open != 0;) {
    place = findMarker(rest, place->behind());
    if (!place || (place->marker == Marker::begin && !mayNest)) refuseOpenBlock();
    if (place->marker == Marker::begin) {
      ++open;
      ++block.markerPairs;
    } else {
      --open;
    }
  }
  block.before = rest.substr(0, begin.position);
  block.inner = rest.substr(begin.behind(), place->position - begin.behind());
  block.calls = countCalls(block.inner);
  rest.remove_prefix(place->behind());
  return true;
}

/// Number of digits of all indexes below `count`.
std::size_t digitsBelow(std::size_t count) {
  std::size_t digits = count;
  for (std::size_t power = 10; power < count; power *= 10) {
    digits += count - power;
    if (power > count / 10) break;
  }
  return digits;
}

void appendWithCalls(CallerText& out, const CallerText& text, std::wstring_view inner,
                     std::wstring_view function) {
  std::size_t from = 0;
  for (std::size_t at = inner.find(kLighting); at != inner.npos; at = inner.find(kLighting, from)) {
    out.append(text, inner.substr(from, at - from));
    out.code += function;
    from = at + kLighting.size();
  }
  out.append(text, inner.substr(from));
}

void appendForLight(CallerText& out, const CallerText& text, const Block& block, std::wstring_view function) {
  out.code += kOpen;
  std::size_t from = 0;
  for (std::size_t pairs = 2 * block.markerPairs; pairs != 0; --pairs) {
    const MarkerPlace place = *findMarker(block.inner, from);
    appendWithCalls(out, text, block.inner.substr(from, place.position - from), function);
    out.code += place.marker == Marker::begin ? kOpen : kClose;
    from = place.behind();
  }
  appendWithCalls(out, text, block.inner.substr(from), function);
  out.code += kClose;
}

/// Without lights every block disappears. What then stands side by side may be a marker again.
void removeBlocks(CallerText& text, std::size_t from) {
  CallerText kept;
  kept.append(text, std::wstring_view(text.code).substr(0, from));
  std::wstring_view rest = std::wstring_view(text.code).substr(from);
  for (;;) {
    // The first marker of all: across the seam, or in the rest.
    constexpr std::size_t kReach = kBegin.size() - 1;
    const std::size_t back = std::min(kept.code.size() - from, kReach);
    const WString seam = kept.code.substr(kept.code.size() - back) + WString(rest.substr(0, kReach));
    std::optional<MarkerPlace> place = findMarker(seam, 0);
    if (!place && (place = findMarker(rest, 0))) place->position += back;
    if (place && place->marker == Marker::end && rest.find(kBegin) != rest.npos) refuseOpenBlock();
    if (!place || place->marker == Marker::end) break;

    const std::size_t end = rest.find(kEnd, place->behind() - back);
    if (end == rest.npos) refuseOpenBlock();
    if (place->position < back) {
      kept.cut(kept.code.size() - (back - place->position));
    } else {
      kept.append(text, rest.substr(0, place->position - back));
    }
    rest.remove_prefix(end + kEnd.size());
  }
  kept.append(text, rest);
  text = std::move(kept);
}

}  // namespace

WString sceneLightingName(std::size_t index) {
  WString name(kFunction);
  appendDecimal(name, index);
  return name;
}

void expandLightBlocks(CallerText& text, std::size_t numLights, std::size_t from) {
  if (numLights == 0) return removeBlocks(text, from);
  // Cut the text and add up what it becomes.
  Array<Block> blocks;
  std::wstring_view rest = std::wstring_view(text.code).substr(from);
  std::size_t length = from;
  const std::size_t digits = digitsBelow(numLights);
  for (Block block; takeBlock(rest, numLights == 1, block);) {
    const std::size_t copy = block.copyLength();
    if (copy > kMaximumTextLength / numLights) checkTextLength(kMaximumTextLength + 1);
    length += block.before.size() + copy * numLights + block.calls * digits;
    checkTextLength(length);
    blocks.push_back(block);
  }
  if (blocks.empty()) return;
  checkTextLength(length + rest.size());

  CallerText out;
  out.code.reserve(length + rest.size());
  out.append(text, std::wstring_view(text.code).substr(0, from));
  WString function(kFunction);
  for (const Block& block : blocks) {
    out.append(text, block.before);
    for (std::size_t i = 0; i < numLights; ++i) {
      function.resize(kFunction.size());
      appendDecimal(function, i);
      appendForLight(out, text, block, function);
    }
  }
  out.append(text, rest);
  text = std::move(out);
}

}  // namespace TolmSDK::Graphics::sfg
