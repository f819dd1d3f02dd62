#include "host/modules/new_operations.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

using Words = std::vector<std::uint32_t>;
using Names = std::vector<std::string>;

/// A module of these instructions; their lengths are put in.
Words moduleOf(const std::vector<Words>& instructions) {
  Words module = {0x07230203u, 0x00010300u, 0, 100, 0};
  for (const Words& instruction : instructions) {
    module.push_back(static_cast<std::uint32_t>(instruction.size()) << 16 | instruction[0]);
    module.insert(module.end(), instruction.begin() + 1, instruction.end());
  }
  return module;
}

/// Of type 1, with result 2, from the set of functions 3.
Words extended(std::uint32_t function) { return {12, 1, 2, 3, function, 4}; }

TEST(NewOperationsTest, NamesEachOperation) {
  EXPECT_EQ(findNewOperations(moduleOf({{96, 1}, {105, 1}, {204, 1}, {205, 1}, {210}, {211}, {213}, {214}})),
            (Names{"Gather", "CalculateLevelOfDetail", "reversebits", "countbits", "ddx_fine", "ddy_fine",
                   "ddx_coarse", "ddy_coarse"}));
  EXPECT_EQ(findNewOperations(moduleOf({extended(76), extended(75), extended(73)})),
            (Names{"EvaluateAttributeAtCentroid", "firstbithigh", "firstbitlow"}));
}

TEST(NewOperationsTest, NamesEachOnceInTheOrderOfTheModule) {
  EXPECT_EQ(findNewOperations(moduleOf({{205}, extended(74), {96}, {205}, extended(75)})),
            (Names{"countbits", "firstbithigh", "Gather"}));
}

TEST(NewOperationsTest, TakesNoOperandsForOperations) {
  EXPECT_EQ(findNewOperations(moduleOf({})), Names());
  EXPECT_EQ(findNewOperations(moduleOf({{87, 0x00010000u | 205, 204}, extended(31), {12, 1, 2, 3}})),
            Names());
  EXPECT_EQ(findNewOperations(moduleOf({{73}, {74}, {76}})), Names());
}

TEST(NewOperationsTest, EndsWithTheModule) {
  Words cut = moduleOf({{205}, {96, 1, 2}});
  cut.pop_back();
  EXPECT_EQ(findNewOperations(cut), Names{"countbits"});
  cut = moduleOf({{205}});
  cut.insert(cut.end(), {0, 96u | 1u << 16});
  EXPECT_EQ(findNewOperations(cut), Names{"countbits"});
  EXPECT_EQ(findNewOperations({}), Names());
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
