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
  BuildState state(path("."), "");
  for (int i = 0; i < 3000; ++i) state.note("a" + std::to_string(i % 7), noteOf(std::to_string(i)));
  const std::size_t before = read(".sfg-build/journal-1").size();
  state.compact();
  EXPECT_LT(read(".sfg-build/journal-1").size(), before / 100);
  EXPECT_EQ(keyOf("a0"), "2996");
  EXPECT_EQ(keyOf("a6"), "2995");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
