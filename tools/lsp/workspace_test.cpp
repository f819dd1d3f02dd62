#include "tools/lsp/workspace.h"

#include "tools/lsp/session_fixture.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {
namespace {

class WorkspaceTest : public SessionTest {
protected:
  static std::string listed(const std::vector<std::filesystem::path>& folders, const std::string& root) {
    std::string text;
    for (const std::filesystem::path& folder : folders)
      text += (text.empty() ? "" : " ") + folder.lexically_relative(root).string();
    return text;
  }
  static Settings alone() {
    Settings settings;
    settings.withoutStandard = true;
    return settings;
  }

  OpenDocuments documents_;
};

TEST_F(WorkspaceTest, FindsTheFoldersThatHoldLibraries) {
  write("deep/er/x.fraglib", "{}");
  write("other/y.h", "");
  write("build/z.fraglib", "{}");
  write(".hidden/z.fraglib", "{}");
  Workspace workspace(alone(), documents_);
  workspace.setRoots({folder_});
  EXPECT_EQ(listed(workspace.folders().libraries, folder_), "deep/er fragments");
  EXPECT_EQ(listed(workspace.folders().includes, folder_), "fragments");
}

TEST_F(WorkspaceTest, TakesTheFoldersThatAreNamed) {
  write("deep/er/x.fraglib", "{}");
  Settings settings =
      withOptions(alone(), {{"libraries", Json::array({"deep/er/", 1})}, {"language", "dx11"}});
  EXPECT_EQ(settings.libraryFolders, std::vector<std::string>{"deep/er/"});
  Workspace workspace(settings, documents_);
  workspace.setRoots({folder_});
  EXPECT_EQ(listed(workspace.folders().libraries, folder_), "deep/er");
  EXPECT_EQ(listed(workspace.folders().includes, folder_), "");
}

TEST_F(WorkspaceTest, TakesTheFoldersOfOpenLibraries) {
  write("elsewhere/x.fraglib", "{}");
  Workspace workspace(withOptions(alone(), {{"libraries", Json::array({"fragments"})}}), documents_);
  workspace.setRoots({folder_});
  documents_.emplace("u", OpenDocument(uri("elsewhere/x.fraglib"), "json", 1, "{}"));
  EXPECT_EQ(listed(workspace.folders().libraries, folder_), "fragments elsewhere");
}

TEST_F(WorkspaceTest, KnowsAFileByAnotherPath) {
  std::filesystem::create_directory_symlink(path("fragments"), path("link"));
  Workspace workspace(withOptions(alone(), {{"libraries", Json::array({"fragments"})}}), documents_);
  workspace.setRoots({folder_});
  EXPECT_EQ(workspace.pathInFolders(path("link/first.fraglib")), path("fragments/first.fraglib"));
  documents_.emplace("u", OpenDocument(uri("link/first.fraglib"), "json", 1, R"({ "new": {} })"));
  ASSERT_NE(workspace.textOf(path("fragments/first.fraglib")), nullptr);
  EXPECT_EQ(workspace.textOf(path("fragments/first.fraglib"))->buffer().text(), R"({ "new": {} })");
  EXPECT_EQ(workspace.textOf(path("nothing")), nullptr);
  EXPECT_EQ(workspace.textOf(path("fragments")), nullptr);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools::lsp
