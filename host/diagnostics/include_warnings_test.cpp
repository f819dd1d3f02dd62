#include "host/diagnostics/include_warnings.h"

#include "host/test_job_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class IncludeWarningsTest : public JobFixture {
protected:
  /// Of a graph of one fragment that includes this file.
  std::string warningsOf(const std::string& include) const {
    writeLibrary("{" +
                 fragment("one", "out float result", "result = 1;", "\"includes\": [\"" + include + "\"], ") +
                 "}");
    std::string text = textOf(findIncludeWarnings(*collapsed(
        R"({ "outputs": [ { "name": "o", "type": "float", "node": "a" } ],
      "nodes": [ { "name": "a", "fragment": "one" } ] })")));
    for (std::size_t at = 0; (at = text.find(folder_.string(), at)) != text.npos;) {
      text.replace(at, folder_.string().size(), "DIR");
    }
    return text;
  }
};

TEST_F(IncludeWarningsTest, TellNothingOfFilesThatGiveText) {
  write("noise.h", "float noise() { return 1; }\n");
  EXPECT_EQ(warningsOf("noise.h"), "");
}

TEST_F(IncludeWarningsTest, TellNothingOfFilesThatOnlyIncludeOthers) {
  write("noise.h", "float noise() { return 1; }\n");
  write("all.h", "#include \"noise.h\"\n");
  EXPECT_EQ(warningsOf("all.h"), "");
}

TEST_F(IncludeWarningsTest, TellWhoNamesAFileThatIsNowhere) {
  write("noise.h", "float noise() { return 1; }\n");
  EXPECT_EQ(warningsOf("nosie.h"),
            "DIR/lib.fraglib:1:46: fragment `one` includes `nosie.h`, which is in no include folder; did you "
            "mean `noise.h`?\n");
}

TEST_F(IncludeWarningsTest, TellOfFilesThatIncludeOneThatIsNowhere) {
  write("all.h", "float all() { return 1; }\n  #include \"gone.h\"\n");
  EXPECT_EQ(warningsOf("all.h"),
            "DIR/all.h:2:12: this include file includes `gone.h`, which is in no include folder\n");
}

TEST_F(IncludeWarningsTest, TellOfEmptyFiles) {
  write("empty.h", "");
  EXPECT_EQ(warningsOf("empty.h"), "DIR/empty.h: the include file is empty; fragment `one` includes it\n");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
