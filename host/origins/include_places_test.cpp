#include "host/origins/include_places.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace TolmSDK::Graphics::sfg::host {
namespace {

class IncludePlacesTest : public testing::Test {
protected:
  IncludePlacesTest() {
    std::string pattern = (std::filesystem::temp_directory_path() / "sfg_places_XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
  }
  ~IncludePlacesTest() override { std::filesystem::remove_all(folder_); }

  /// One more file of the include `name.h`.
  void add(const std::string& file, const std::string& bytes) {
    const std::string path = (folder_ / file).string();
    std::ofstream(path, std::ios::binary) << bytes;
    texts_.addInclude(L"name.h", path);
  }

  /// "FILE:LINE:COLUMN", or "nowhere".
  std::string placeOf(std::size_t offset) const {
    const IncludePlaces::Place place = IncludePlaces(texts_, L"name.h").find(offset);
    if (place.file.empty()) return "nowhere";
    return std::filesystem::path(place.file).filename().string() + ":" + std::to_string(place.position.line) +
           ":" + std::to_string(place.position.column);
  }

  std::filesystem::path folder_;
  SourceTexts texts_;
};

TEST_F(IncludePlacesTest, CountsLinesAndCharacters) {
  add("a.h", "ab\n\xC3\xA4"
             "c\n");
  EXPECT_EQ(placeOf(0), "a.h:1:1");
  EXPECT_EQ(placeOf(2), "a.h:1:3");
  EXPECT_EQ(placeOf(3), "a.h:2:1");
  EXPECT_EQ(placeOf(4), "a.h:2:2");
  EXPECT_EQ(placeOf(5), "a.h:2:3");
  EXPECT_EQ(placeOf(6), "nowhere");
}

TEST_F(IncludePlacesTest, PassesOverLinesThatIncludeOthers) {
  add("a.h", "#include \"x.h\"\nab\n#include <y.h>\nc\n#include \"z.h\"");
  EXPECT_EQ(placeOf(0), "a.h:2:1");
  EXPECT_EQ(placeOf(2), "a.h:2:3");
  EXPECT_EQ(placeOf(3), "a.h:4:1");
  EXPECT_EQ(placeOf(4), "a.h:4:2");
  EXPECT_EQ(placeOf(5), "nowhere");
}

TEST_F(IncludePlacesTest, PutsFilesOfOneNameBehindEachOther) {
  add("a.h", "a\n");
  add("empty.h", "");
  add("b.h", "#include \"x.h\"\nb\n");
  EXPECT_EQ(placeOf(1), "a.h:1:2");
  EXPECT_EQ(placeOf(2), "b.h:2:1");
  EXPECT_EQ(placeOf(3), "b.h:2:2");
  EXPECT_EQ(placeOf(4), "nowhere");
}

TEST_F(IncludePlacesTest, KnowsNothingOfOtherNames) { EXPECT_EQ(placeOf(0), "nowhere"); }

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
