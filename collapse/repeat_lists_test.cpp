#include "collapse/repeat_lists.h"

#include <gtest/gtest.h>

#include "sfg/fragment_instance.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using Item = RepeatLists::Item;

TEST(RepeatLists, OfNothingAreTheEmptyOne) {
  RepeatLists lists;
  EXPECT_EQ(lists.add({}), RepeatLists::kEmpty);
  EXPECT_EQ(lists.size(RepeatLists::kEmpty), 0u);
}

TEST(RepeatLists, KeepTheirItemsInOrder) {
  RepeatLists lists;
  const FragmentInstance first;
  const FragmentInstance second;
  const Array<Item> calls{{RepeatLists::kEmpty, &first, 1}, {RepeatLists::kEmpty, &second, 2}};
  const RepeatLists::Number one = lists.add(calls);
  const Array<Item> both{{one, nullptr, 0}, {RepeatLists::kEmpty, &first, 3}};
  const RepeatLists::Number two = lists.add(both);
  EXPECT_NE(one, RepeatLists::kEmpty);
  EXPECT_NE(two, one);
  ASSERT_EQ(lists.size(one), 2u);
  EXPECT_EQ(lists.item(one, 0).caller, &first);
  EXPECT_EQ(lists.item(one, 0).input, 1u);
  EXPECT_EQ(lists.item(one, 1).caller, &second);
  ASSERT_EQ(lists.size(two), 2u);
  EXPECT_EQ(lists.item(two, 0).list, one);
  EXPECT_EQ(lists.item(two, 1).input, 3u);
}

TEST(RepeatLists, HandOnASingleList) {
  RepeatLists lists;
  const FragmentInstance caller;
  const Array<Item> call{{RepeatLists::kEmpty, &caller, 0}};
  const RepeatLists::Number list = lists.add(call);
  const Array<Item> single{{list, nullptr, 0}};
  EXPECT_EQ(lists.add(single), list);
  const Array<Item> twice{{list, nullptr, 0}, {list, nullptr, 0}};
  EXPECT_NE(lists.add(twice), list);
}

TEST(RepeatLists, OfOneItemAreRedoneAsThatItem) {
  RepeatLists lists;
  const FragmentInstance caller;
  const Array<Item> call{{RepeatLists::kEmpty, &caller, 2, 3}};
  const Item again = lists.again(lists.add(call), 9);
  EXPECT_EQ(again.list, RepeatLists::kEmpty);
  EXPECT_EQ(again.caller, &caller);
  EXPECT_EQ(again.input, 2u);
  EXPECT_EQ(again.time, 9u);
  const Array<Item> twice{call[0], call[0]};
  const RepeatLists::Number two = lists.add(twice);
  EXPECT_EQ(lists.again(two, 9).list, two);
  const Array<Item> single{lists.again(two, 9)};
  EXPECT_NE(lists.add(single), two) << "it has a time of its own";
}

TEST(RepeatLists, AreForgottenTogether) {
  RepeatLists lists;
  const FragmentInstance caller;
  const Array<Item> call{{RepeatLists::kEmpty, &caller, 0}};
  const RepeatLists::Number before = lists.add(call);
  lists.clear();
  EXPECT_EQ(lists.size(RepeatLists::kEmpty), 0u);
  EXPECT_EQ(lists.add(call), before) << "numbers start again";
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
