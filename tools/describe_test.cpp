#include <gtest/gtest.h>

#include <cstdlib>

#include "tools/command_test_support.h"
#include "tools/manual_page.h"
#include "tools/shell_completion.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

class DescribeTest : public CommandTest {
protected:
  /// What a shell program of the test's folder prints; its standard error stream with it.
  std::string shell(const std::string& command) const {
    const std::string line = "cd '" + path("") + "' && " + command + " >.shell 2>&1 </dev/null";
    const int status = std::system(line.c_str());
    return read(".shell") + (status == 0 ? "" : "(failed)\n");
  }

  static bool isInstalled(const std::string& program) {
    return std::system(("command -v " + program + " >/dev/null").c_str()) == 0;
  }

  /// What bash offers for a line whose last word is being typed.
  std::string offered(const std::string& line) const {
    write("ask.bash",
          "source ./sfg.bash\nread -ra COMP_WORDS <<<\"$1\"\n[[ $1 != *' ' ]] || COMP_WORDS+=('')\n"
          "COMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n_sfg\nprintf '%s\\n' \"${COMPREPLY[@]}\"\n");
    return shell("bash ask.bash '" + line + "'");
  }
};

class BashCompletion : public DescribeTest {
protected:
  BashCompletion() { write("sfg.bash", run("completion bash").out); }
};

TEST_F(BashCompletion, OffersCommands) {
  EXPECT_EQ(offered("sfg co"), "collapse\ncompile\ncompletion\n");
  EXPECT_EQ(offered("sfg li"), "list\n");
}

TEST_F(BashCompletion, OffersOptionsOfTheCommand) {
  EXPECT_EQ(offered("sfg compile --ta"), "--target\n");
  EXPECT_EQ(offered("sfg list --ta"), "\n");
  EXPECT_EQ(offered("sfg --ve"), "--version\n");
}

TEST_F(BashCompletion, OffersChoicesOfAnOption) {
  EXPECT_EQ(offered("sfg collapse --tool "), "default\nlightloop\n");
  EXPECT_EQ(offered("sfg collapse --tool l"), "lightloop\n");
  EXPECT_EQ(offered("sfg collapse --function-name x"), "\n");
}

TEST_F(BashCompletion, OffersFoldersAndFiles) {
  write("fragments/a.fraglib", "");
  write("front.json", "");
  EXPECT_EQ(offered("sfg collapse -L f"), "fragments\n");
  EXPECT_EQ(offered("sfg collapse fro"), "front.json\n");
}

TEST_F(DescribeTest, EveryShellReadsItsCompletion) {
  for (const std::string shellName : {"bash", "zsh", "fish"}) {
    SCOPED_TRACE(shellName);
    const CommandRun script = run("completion " + shellName);
    EXPECT_EQ(script.status, 0);
    EXPECT_EQ(script.err, "");
    if (!isInstalled(shellName)) GTEST_SKIP() << shellName << " is not installed";
    write("script", script.out);
    EXPECT_EQ(shell(shellName + " -n script"), "");
  }
}

TEST_F(DescribeTest, FishOffersWhatIsDeclared) {
  if (!isInstalled("fish")) GTEST_SKIP() << "fish is not installed";
  write("sfg.fish", run("completion fish").out);
  const std::string offered =
      shell("HOME=\"$PWD\" fish -c 'source sfg.fish; complete -C \"sfg collapse --tool l\"'");
  EXPECT_EQ(offered.substr(0, offered.find('\t')), "lightloop");
  EXPECT_EQ(offered.find('\n'), offered.size() - 1) << offered;
}

TEST_F(DescribeTest, RefusesAnUnknownShell) {
  const CommandRun result = run("completion csh");
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err, "sfg: error: SHELL: `csh` is none of `bash`, `zsh`, `fish`; did you mean `zsh`? "
                        "[wrong-usage]\ntry `sfg --help`, or "
                        "`sfg COMMAND --help`\n");
}

TEST_F(DescribeTest, TheManualPageIsReadWithoutAWarning) {
  const CommandRun page = run("manual");
  EXPECT_EQ(page.status, 0);
  if (!isInstalled("groff")) GTEST_SKIP() << "groff is not installed";
  write("sfg.1", page.out);
  EXPECT_EQ(shell("groff -man -Tascii -ww -z sfg.1"), "");
  const std::string text = shell("groff -man -Tascii -P-cbou sfg.1");
  EXPECT_NE(text.find("--surface-lod X"), std::string::npos) << text;
}

CommandEntry sample() {
  CommandEntry command;
  command.name = "make";
  command.help = "Make it [all]: it's done";
  command.options.push_back({{"-k", "--kind"}, {"a|b", {"a", "b"}, false, false}, "a", "what to make"});
  command.options.push_back({{"--dry"}, {}, "", "-not really"});
  return command;
}

TEST(Completion, QuotesHelpForEachShell) {
  const std::vector<CommandEntry> table{CommandEntry(), sample()};
  EXPECT_NE(zshCompletion(table).find("'*'{-k,--kind}'[what to make]:a|b:(a b)'"), std::string::npos)
      << zshCompletion(table);
  EXPECT_NE(zshCompletion(table).find("'make:Make it \\[all\\]\\: it'\\''s done'"), std::string::npos);
  EXPECT_NE(fishCompletion(table).find("complete -c sfg -n '__fish_seen_subcommand_from make' -s k -l kind "
                                       "-x -a 'a b' -d 'what to make'\n"),
            std::string::npos)
      << fishCompletion(table);
}

TEST(ManualPage, ShowsTextAsItStands) {
  CommandEntry command = sample();
  command.notes = ".x\n'y \\";
  const std::string page = manualPage({CommandEntry(), command}, "1.2.3");
  EXPECT_NE(page.find(".TH SFG 1 \"\" \"sfg 1.2.3\""), std::string::npos);
  EXPECT_NE(page.find(".TP\n\\fB\\-k\\fR, \\fB\\-\\-kind\\fR \\fIa|b\\fR\nwhat to make (default: a)\n"),
            std::string::npos)
      << page;
  EXPECT_NE(page.find("\\&.x\n\\&'y \\e\n"), std::string::npos) << page;
}

}  // namespace

}  // namespace TolmSDK::Graphics::sfg::tools
