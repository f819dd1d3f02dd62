#include "host/shader/module_names.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

using Words = std::vector<std::uint32_t>;

constexpr std::uint32_t kName = 5;
constexpr std::uint32_t kPointer = 32;
constexpr std::uint32_t kVariable = 59;

/// An instruction of these words behind its first.
void add(Words& module, std::uint32_t operation, const Words& operands) {
  module.push_back(static_cast<std::uint32_t>(operands.size() + 1) << 16 | operation);
  module.insert(module.end(), operands.begin(), operands.end());
}

/// Up to seven characters.
Words named(std::uint32_t id, const std::string& text) {
  Words words = {id, 0, 0};
  for (std::size_t i = 0; i < text.size(); ++i) {
    words[1 + i / 4] |= static_cast<std::uint32_t>(text[i]) << (8 * (i % 4));
  }
  if (text.size() < 4) words.pop_back();
  return words;
}

TEST(ModuleWordsTest, NameAttributesTargetsAndBlocks) {
  Words module = {0x07230203, 0x00010300, 0, 20, 0};
  Words expected = module;
  add(module, kName, named(1, "in.uv"));                          // an attribute
  add(module, kName, named(2, "o.c"));                            // a render target
  add(module, kName, named(3, "sfg_U"));                          // a block's type
  add(module, kName, named(4, ""));                               // its variable
  add(module, kName, named(5, "keep.me"));                        // something else
  add(expected, kName, {1, 0x5f676673, 0x755f6e69, 0x00000076});  // "sfg_in_uv"
  add(expected, kName, {2, 0x5f676673, 0x5f74756f, 0x00000063});  // "sfg_out_c"
  add(expected, kName, named(3, "sfg_U"));
  add(expected, kName, named(4, "sfg_u"));
  add(expected, kName, named(5, "keep.me"));
  for (Words* const words : {&module, &expected}) {
    add(*words, kPointer, {10, 2, 3});
    add(*words, kVariable, {9, 1, 1});
    add(*words, kVariable, {9, 2, 3});
    add(*words, kVariable, {10, 4, 2});
    add(*words, kVariable, {9, 5, 6});
  }
  EXPECT_EQ(nameModuleInterface(module), expected);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
