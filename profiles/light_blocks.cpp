#include "profiles/light_blocks.h"

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

/// The text in front of a block, the text that each light repeats, and how often that calls the light.
struct Block {
  std::wstring_view before;
  std::wstring_view inner;
  std::size_t calls = 0;
};

std::size_t countCalls(std::wstring_view text) {
  std::size_t count = 0;
  for (std::size_t at = text.find(kLighting); at != text.npos;
       at = text.find(kLighting, at + kLighting.size()))
    ++count;
  return count;
}

/// Takes the next block off the front of `rest`; false when there is no more.
bool takeBlock(std::wstring_view& rest, Block& block) {
  const std::size_t begin = rest.find(kBegin);
  if (begin == rest.npos) return false;
  const std::size_t inner = begin + kBegin.size();
  const std::size_t end = rest.find(kEnd);
  if (end == rest.npos || end < inner || rest.substr(inner, end - inner).find(kBegin) != rest.npos)
    throw Exception(L"sfgError : light and shadow block is not closed!");
  block.before = rest.substr(0, begin);
  block.inner = rest.substr(inner, end - inner);
  block.calls = countCalls(block.inner);
  rest.remove_prefix(end + kEnd.size());
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

void appendForLight(CallerText& out, const CallerText& text, std::wstring_view inner,
                    std::wstring_view function) {
  out.code += kOpen;
  std::size_t from = 0;
  for (std::size_t at = inner.find(kLighting); at != inner.npos; at = inner.find(kLighting, from)) {
    out.append(text, inner.substr(from, at - from));
    out.code += function;
    from = at + kLighting.size();
  }
  out.append(text, inner.substr(from));
  out.code += kClose;
}

}  // namespace

WString sceneLightingName(std::size_t index) {
  WString name(kFunction);
  appendDecimal(name, index);
  return name;
}

void expandLightBlocks(CallerText& text, std::size_t numLights, std::size_t from) {
  // Cut the text and add up what it becomes.
  Array<Block> blocks;
  std::wstring_view rest = std::wstring_view(text.code).substr(from);
  std::size_t length = from;
  const std::size_t digits = digitsBelow(numLights);
  for (Block block; takeBlock(rest, block);) {
    const std::size_t copy = kOpen.size() + block.inner.size() - block.calls * kLighting.size() +
                             block.calls * kFunction.size() + kClose.size();
    if (numLights != 0 && copy > kMaximumTextLength / numLights) checkTextLength(kMaximumTextLength + 1);
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
      appendForLight(out, text, block.inner, function);
    }
  }
  out.append(text, rest);
  text = std::move(out);
}

}  // namespace TolmSDK::Graphics::sfg
