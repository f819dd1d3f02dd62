#include "sfg/host/library_set.h"

#include "host/test_job_fixture.h"
#include "sfg/host/errors.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class LibrarySetTest : public JobFixture {
protected:
  std::shared_ptr<const LibrarySet> set() const { return LibrarySet::load({{folder_}, {folder_}}); }
};

TEST_F(LibrarySetTest, ListsTheFragmentsThatDidLoad) {
  writeLibrary("{" + fragment("two", "out float x", "x = 2;", "\"description\": \"is 2\", ") + ",\n" +
               fragment("one", "out float x", "x = 1;") + ",\n \"bad\": 3 }");
  const auto libraries = set();
  const std::vector<FragmentInfo> fragments = libraries->fragments();
  ASSERT_EQ(fragments.size(), 2u);
  EXPECT_EQ(fragments[0].name, "one");
  EXPECT_EQ(fragments[0].place(), path("lib.fraglib") + ":2:8");
  EXPECT_EQ(fragments[1].name, "two");
  EXPECT_EQ(fragments[1].description, "is 2");
  EXPECT_FALSE(libraries->problems().empty());
  EXPECT_NE(libraries->library().acquireFragment(L"one"), nullptr);
  EXPECT_NE(libraries->language().findFragment(L"two"), nullptr);
}

TEST_F(LibrarySetTest, IsLoadedAnewFromItsFolders) {
  write("a.h", "float a;\n");
  const auto first = set();
  write("a.h", "float b;\n");
  const auto second = first->reload();
  EXPECT_EQ(first->includes().getIncludeContent(L"a.h"), L"float a;\n");
  EXPECT_EQ(second->includes().getIncludeContent(L"a.h"), L"float b;\n");
  EXPECT_EQ(second->folders().libraries, first->folders().libraries);
}

TEST_F(LibrarySetTest, RefusesFoldersThatAreGone) {
  const auto first = set();
  std::filesystem::remove_all(folder_);
  EXPECT_THROW(first->reload(), InputError);
  EXPECT_THROW(LibrarySet::load({}, "glsl"), InputError);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
