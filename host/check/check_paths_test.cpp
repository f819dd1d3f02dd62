#include <sys/stat.h>

#include "host/check/check_fixture.h"
#include "sfg/host/errors.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class CheckPathsTest : public CheckFixture {
protected:
  CheckPaths find(const std::string& name = std::string()) const {
    const std::string given = name.empty() ? folder_.string() : path(name);
    return findCheckPaths(std::vector{given});
  }
  std::string shown(const std::vector<std::string>& paths) const {
    std::string text;
    for (const std::string& each : paths) text += each.substr(folder_.string().size() + 1) + " ";
    return text;
  }
  std::string shownProblems(const CheckPaths& paths) const { return textOf({paths.problems, {}}); }
};

TEST_F(CheckPathsTest, FolderGivesAllDocumentsInOrder) {
  write("b/graph.json", R"json({"nodes": []})json");
  write("a/scene.json", R"json({"lights": []})json");
  write("a/z.fraglib", "{}");
  write("a/deep/c.FRAGLIB", "{}");
  write("other.json", R"json({"name": "package"})json");
  write("list.json", "[]");
  write("text.txt", "text");
  write("a/inc.h", "");
  write("b/inc.h", "");
  const CheckPaths found = find();
  EXPECT_EQ(shown(found.files.libraries), "a/deep/c.FRAGLIB a/z.fraglib ");
  EXPECT_EQ(shown(found.files.graphs), "b/graph.json ");
  EXPECT_EQ(shown(found.files.environments), "a/scene.json ");
  EXPECT_EQ(found.folders.libraries, (std::vector<std::filesystem::path>{path("a"), path("a/deep")}));
  EXPECT_EQ(found.folders.includes, std::vector<std::filesystem::path>{path("a")});
  EXPECT_EQ(shownProblems(found), "");
}

TEST_F(CheckPathsTest, KeysTellTheKindMistypedOnesToo) {
  EXPECT_EQ(documentKindOf(Document::fromText(R"json({"ligths": []})json", "x")), DocumentKind::environment);
  EXPECT_EQ(documentKindOf(Document::fromText(R"json({"nodse": []})json", "x")), DocumentKind::graph);
  EXPECT_EQ(documentKindOf(Document::fromText(R"json({"output": "x"})json", "x")), DocumentKind::environment);
  EXPECT_EQ(documentKindOf(Document::fromText(R"json({"outputs": []})json", "x")), DocumentKind::graph);
  EXPECT_EQ(documentKindOf(Document::fromText("{}", "x.fraglib")), DocumentKind::library);
  EXPECT_EQ(documentKindOf(Document::fromText("{}", "x")), std::nullopt);
  EXPECT_EQ(documentKindOf(Document::fromText("[", "x")), std::nullopt);
  EXPECT_EQ(documentKindOf(Document::fromFile(path("none.json"))), std::nullopt);
}

TEST_F(CheckPathsTest, BrokenJsonAndWhatIsNoFileIsTold) {
  write("broken.json", "{\n  \"nodes\": [,]\n}");
  ASSERT_EQ(mkfifo(path("pipe.json").c_str(), 0600), 0);
  std::filesystem::create_symlink("nowhere", path("link.json"));
  std::filesystem::create_directory(path("folder.json"));
  EXPECT_EQ(shownProblems(find()),
            "broken.json:2:13: error: expected a value or `]`, found `,` [malformed-json]\n"
            "link.json: error: it cannot be read: it is a link to nothing [unreadable-file]\n"
            "pipe.json: error: it cannot be read: it is a pipe [unreadable-file]\n");
}

TEST_F(CheckPathsTest, NamedFileOfNoKindIsTold) {
  write("other.json", R"json({"name": "package"})json");
  EXPECT_EQ(shownProblems(find("other.json")),
            "other.json:1:1: error: this is no fragment library (`*.fraglib`), no graph and no environment "
            "[wrong-kind]\n");
}

TEST_F(CheckPathsTest, MissingPathIsRefused) {
  try {
    find("none");
    FAIL();
  } catch (const InputError& error) {
    EXPECT_EQ(error.place() + ": " + error.what(), path("none") + ": there is no such file or folder");
  }
}

TEST_F(CheckPathsTest, LinksToFoldersAreNotFollowed) {
  write("a/graph.json", R"json({"nodes": []})json");
  std::filesystem::create_directory_symlink(folder_, path("a/loop"));
  EXPECT_EQ(shown(find().files.graphs), "a/graph.json ");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
