// A second table of mistakes: each in documents of its own, beside or without the standard library.

#include <ostream>
#include <utility>
#include <vector>

#include "sfg/host/compile.h"
#include "tools/command_test_support.h"

namespace TolmSDK::Graphics::sfg::tools {
namespace {

struct WrittenMistake {
  const char* name;
  std::vector<std::pair<const char*, const char*>> files;
  const char* command;  ///< with LIBRARY for the folder of the standard library
  int status;
  const char* told;
};

std::ostream& operator<<(std::ostream& out, const WrittenMistake& mistake) { return out << mistake.name; }

std::string withReplaced(std::string text, const std::string& old, const std::string& now) {
  for (std::size_t at = text.find(old); at != std::string::npos; at = text.find(old, at + now.size()))
    text.replace(at, old.size(), now);
  return text;
}

class WrittenMistakeTest : public CommandTest, public testing::WithParamInterface<WrittenMistake> {};

TEST_P(WrittenMistakeTest, IsToldWhereItWasMade) {
  const WrittenMistake& mistake = GetParam();
  const std::string command = mistake.command;
  if (!command.starts_with("collapse") && !host::hasCompilers()) GTEST_SKIP() << "built without compilers";
  for (const auto& [file, text] : mistake.files) write(file, text);
  const std::string library = repository("library");
  const CommandRun result = run(withReplaced(command, "LIBRARY", "'" + library + "'"));
  EXPECT_EQ(withReplaced(result.err, library, "LIBRARY"), mistake.told);
  EXPECT_EQ(result.status, mistake.status);
}

const WrittenMistake kMistakes[] = {@ROWS @};

std::string nameOf(const testing::TestParamInfo<WrittenMistake>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(Documents, WrittenMistakeTest, testing::ValuesIn(kMistakes), nameOf);

/// UTF-16 is full of zeros.
TEST_F(CommandTest, WrittenMistakeIncludeFileInUtf16) {
  if (!host::hasCompilers()) GTEST_SKIP() << "built without compilers";
  std::string text = "\xFF\xFE";
  for (const char c : std::string("float twice(float x) { return x + x; }\n")) text.append({c, '\0'});
  write("a.h", text);
  write("l.fraglib", R"json({ "f": { "language": ["dx11"], "includes": ["a.h"], "implementation": [
  "void f(out float r)", "{", "  r = twice(1.0);", "}" ] } })json");
  const CommandRun result = run("check l.fraglib -I .");
  EXPECT_EQ(result.err.substr(0, result.err.find('\n')),
            "./a.h:1:1: error: the include file is written in UTF-16; save it as UTF-8 [compile-error]");
  EXPECT_EQ(result.status, 1);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools
