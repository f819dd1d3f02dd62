#include "host/build/build_state.h"

#include "host/build/build_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class State : public BuildFixture {
protected:
  State() { std::filesystem::create_directories(path(".sfg-build")); }
  static OutputNote noteOf(const std::string& key) { return {"inputs", key, {{{1, 2}, "hash"}}, "files"}; }
  std::string keyOf(const std::string& output) const {
    const BuildState state(path("."), "");
    const OutputNote* const note = state.find(output);
    return note != nullptr ? note->key : "none";
  }
};

TEST_F(State, LastNoteCounts) {
  BuildState state(path("."), "");
  state.note("a", noteOf("1"));
  state.note("odd\t%\nname", noteOf("2"));
  state.note("a", noteOf("3"));
  EXPECT_EQ(keyOf("a"), "3");
  EXPECT_EQ(keyOf("odd\t%\nname"), "2");
  EXPECT_EQ(keyOf("b"), "none");
}

TEST_F(State, LinesThatAreNotWholeCountAsNone) {
  BuildState(path("."), "").note("a", noteOf("1"));
  const std::string journal = read(".sfg-build/journal-1");
  for (std::size_t length = 0; length < journal.size(); ++length) {
    write(".sfg-build/journal-1", journal.substr(0, length));
    EXPECT_EQ(keyOf("a"), "none") << length;
    BuildState(path("."), "").note("b", noteOf("2"));
    EXPECT_EQ(keyOf("b"), "2") << length;
  }
}

TEST_F(State, JournalsOfAllShardsAreRead) {
  BuildState(path("."), "-1-of-2").note("a", noteOf("1"));
  BuildState(path("."), "-2-of-2").note("b", noteOf("2"));
  EXPECT_EQ(keyOf("a") + keyOf("b"), "12");
}

TEST_F(State, CompactedJournalSaysTheSame) {
  constexpr int kOutputs = 300;
  std::size_t before = 0;
  for (int round = 1; round <= 10; ++round) {
    BuildState state(path("."), "");
    for (int i = 0; i < kOutputs; ++i) state.note("a" + std::to_string(i), noteOf(std::to_string(round)));
    if (round == 10) before = read(".sfg-build/journal-1").size();
    if (round == 10) state.compact();
  }
  EXPECT_LT(read(".sfg-build/journal-1").size(), before / 8);
  EXPECT_EQ(keyOf("a0"), "10");
  EXPECT_EQ(keyOf("a299"), "10");
}

TEST_F(State, JournalWithoutOldLinesStaysAsItIs) {
  BuildState state(path("."), "");
  for (int i = 0; i < 2000; ++i) state.note("a" + std::to_string(i), noteOf("x"));
  const std::string before = read(".sfg-build/journal-1");
  state.compact();
  EXPECT_EQ(read(".sfg-build/journal-1"), before);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
