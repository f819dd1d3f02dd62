#include "tools/standard_library.h"

#include <gtest/gtest.h>

#include <fstream>

#include "tools/command_test_support.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

namespace fs = std::filesystem;
using Paths = std::vector<fs::path>;

class StandardLibraryTest : public CommandTest {};

TEST_F(StandardLibraryTest, IsFoundFromTheProgram) {
  write("prefix/share/sfg/library/math.fraglib", "{}");
  EXPECT_EQ(findStandardLibrary(path("prefix/bin/sfg")), fs::path(path("prefix/share/sfg/library")));
  EXPECT_EQ(findStandardLibrary(path("elsewhere/bin/sfg")), std::nullopt);
  EXPECT_EQ(findStandardLibrary(fs::path()), std::nullopt);
}

TEST_F(StandardLibraryTest, OfABuildTreeIsNotThere) { EXPECT_EQ(findStandardLibrary(), std::nullopt); }

TEST_F(StandardLibraryTest, ComesBeforeTheFoldersNamed) {
  write("standard/sfg_math.h", "");
  write("mine/own.h", "");
  host::LibraryFolders folders{{path("mine")}, {path("mine")}};
  addStandardLibrary(folders, path("standard"));
  EXPECT_EQ(folders.libraries, (Paths{path("standard"), path("mine")}));
  EXPECT_EQ(folders.includes, (Paths{path("standard"), path("mine")}));
  EXPECT_EQ(folders.standard, fs::path(path("standard")));
}

TEST_F(StandardLibraryTest, IsNotReadTwice) {
  write("standard/sfg_math.h", "");
  host::LibraryFolders folders{{path("standard/../standard")}, {path("standard/.")}};
  addStandardLibrary(folders, path("standard"));
  EXPECT_EQ(folders.libraries, (Paths{path("standard/../standard")}));
  EXPECT_EQ(folders.includes, (Paths{path("standard/.")}));
  EXPECT_EQ(folders.standard, fs::path());
}

TEST_F(StandardLibraryTest, LeavesItsIncludeFilesOutWhereAFolderHasItsOwn) {
  write("standard/sfg_math.h", "");
  write("standard/sfg_noise.h", "");
  write("checkout/sfg_noise.h", "");
  host::LibraryFolders folders{{}, {path("checkout")}};
  addStandardLibrary(folders, path("standard"));
  EXPECT_EQ(folders.libraries, (Paths{path("standard")}));
  EXPECT_EQ(folders.includes, (Paths{path("checkout")}));
}

TEST_F(StandardLibraryTest, IsLeftOutWhereThereIsNone) {
  host::LibraryFolders folders;
  addStandardLibrary(folders, std::nullopt);
  EXPECT_EQ(folders.libraries, Paths());
  EXPECT_EQ(folders.includes, Paths());
}

}  // namespace

}  // namespace TolmSDK::Graphics::sfg::tools
