// The page of all diagnostics: every kind has its section, and its examples deserve what they say.

#include "tests/documents/diagnostics_page.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "sfg/host/diagnostic.h"
#include "tests/documents/told_kinds.h"

namespace TolmSDK::test {
namespace {

namespace fs = std::filesystem;

DiagnosticsPage thePage() {
  std::ostringstream text;
  text << std::ifstream("docs/diagnostics.md").rdbuf();
  return readDiagnosticsPage(text.str());
}

/// What only a broken machine or a program can deserve.
const std::set<std::string> kWithoutExample = {"unreadable-folder", "too-many-lights", "no-result",
                                               "out-of-memory",     "failure",         "collapse-place"};

/// What can be told of sound documents, and so has an example that does not deserve it.
const std::set<std::string> kLints = {
    "unassigned-output",   "unread-input",     "unused-uniform",     "two-structures",     "unused-include",
    "unreachable-profile", "repeated-level",   "interface-mismatch", "unused-graph-input", "unused-node",
    "missing-include",     "name-inside-name", "repeated-statement", "encoded-twice"};

std::string joined(const std::set<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += word + " ";
  return text;
}

TEST(DiagnosticsPage, HasASectionWithTextForEachKindInTheirOrder) {
  std::string expected;
  for (const auto& kind : Graphics::sfg::host::diagnosticKinds())
    expected += std::string(kind.identifier) + "\n";
  std::string found;
  for (const PageSection& section : thePage().sections) {
    found += section.identifier + "\n";
    EXPECT_TRUE(section.hasText) << section.identifier;
  }
  EXPECT_EQ(found, expected);
}

TEST(DiagnosticsPage, HasExamplesOfEachKind) {
  for (const PageSection& section : thePage().sections) {
    const auto count = [&](bool isTold) {
      return std::count_if(section.examples.begin(), section.examples.end(),
                           [&](const PageExample& example) { return example.isTold == isTold; });
    };
    if (kWithoutExample.contains(section.identifier)) {
      EXPECT_TRUE(section.examples.empty()) << section.identifier;
    } else {
      EXPECT_GT(count(true), 0) << section.identifier;
    }
    if (kLints.contains(section.identifier)) {
      EXPECT_GT(count(false), 0) << section.identifier;
    }
  }
}

TEST(DiagnosticsPage, TellsOfEachExampleWhatItSays) {
  const DiagnosticsPage page = thePage();
  std::size_t count = 0;
  for (const PageSection& section : page.sections) {
    for (const PageExample& example : section.examples) {
      SCOPED_TRACE("docs/diagnostics.md:" + std::to_string(example.line) + ": " + section.identifier);
      std::string folder = (fs::temp_directory_path() / "sfg_page_XXXXXX").string();
      ASSERT_NE(mkdtemp(folder.data()), nullptr);
      std::map<std::string, std::string> files = example.files;
      files.insert(page.files.begin(), page.files.end());
      for (const auto& [name, text] : files) {
        fs::create_directories((fs::path(folder) / name).parent_path());
        std::ofstream(fs::path(folder) / name) << text;
      }
      const std::set<std::string> told =
          example.command.empty() ? toldOfFiles(folder) : toldByCommand(folder, example.command);
      std::set<std::string> expected = example.beside;
      if (example.isTold) expected.insert(section.identifier);
      EXPECT_EQ(joined(told), joined(expected));
      fs::remove_all(folder);
      ++count;
    }
  }
  EXPECT_GE(count, page.sections.size());
}

TEST(DiagnosticsPage, IsReadAsItIsWritten) {
  const DiagnosticsPage page = readDiagnosticsPage("`lib`:\n\n```json\n{}\n```\n\n### `one`\n\nText.\n\nTold "
                                                   "by `sfg list`, beside `two`:\n\n`a/b.json`:\n```\n### "
                                                   "`no`\nx\n```\n\nNot told:\n\n### `two`\n");
  EXPECT_EQ(page.files, (std::map<std::string, std::string>{{"lib", "{}\n"}}));
  ASSERT_EQ(page.sections.size(), 2u);
  EXPECT_EQ(page.sections[0].identifier, "one");
  EXPECT_TRUE(page.sections[0].hasText);
  ASSERT_EQ(page.sections[0].examples.size(), 2u);
  const PageExample& told = page.sections[0].examples[0];
  EXPECT_TRUE(told.isTold);
  EXPECT_EQ(told.line, 11u);
  EXPECT_EQ(told.command, "list");
  EXPECT_EQ(told.beside, (std::set<std::string>{"two"}));
  EXPECT_EQ(told.files, (std::map<std::string, std::string>{{"a/b.json", "### `no`\nx\n"}}));
  EXPECT_FALSE(page.sections[0].examples[1].isTold);
  EXPECT_FALSE(page.sections[1].hasText);
}

}  // namespace
}  // namespace TolmSDK::test
