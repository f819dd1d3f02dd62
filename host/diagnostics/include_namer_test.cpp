#include "host/diagnostics/include_namer.h"

#include "host/test_job_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

constexpr const char* kGraph = R"({ "outputs": [ { "name": "o", "type": "float", "node": "a" } ],
"nodes": [ { "name": "a", "fragment": "bent" } ] })";

class IncludeNamerTest : public JobFixture {
protected:
  IncludeNamerTest() {
    write("outer.h", "// first\n#include \"inner.h\"\nfloat outer() { return inner(); }\n");
    write("inner.h", "float inner() { return 1.0; }\n");
    writeLibrary(
        "{" + fragment("bent", "out float result", "result = outer();", "\n\"includes\": [\"outer.h\"], ") +
        "}");
  }
  /// "PLACE: who", a line each.
  static std::string textOf(const std::vector<IncludeNamer>& chain) {
    std::string text;
    for (const IncludeNamer& namer : chain)
      text += namer.file + ":" + std::to_string(namer.position.line) + ": " + namer.who + "\n";
    return text;
  }
};

TEST_F(IncludeNamerTest, GoesFromAFileUpToTheFragment) {
  const std::unique_ptr<CollapseJob> made = collapsed(kGraph);
  const IncludeNamers namers(*made);
  EXPECT_EQ(namers.names(), (Array<WString>{L"inner.h", L"outer.h"}));
  EXPECT_EQ(textOf(namers.chain(L"inner.h", 5)),
            path("outer.h") + ":2: this include file\n" + path("lib.fraglib") + ":2: fragment `bent`\n");
  EXPECT_EQ(textOf(namers.chain(L"inner.h", 1)), path("outer.h") + ":2: this include file\n");
  EXPECT_EQ(textOf(namers.chain(L"outer.h", 5)), path("lib.fraglib") + ":2: fragment `bent`\n");
}

TEST_F(IncludeNamerTest, KnowsNobodyWhoNamesAnotherFile) {
  const std::unique_ptr<CollapseJob> made = collapsed(kGraph);
  EXPECT_FALSE(IncludeNamers(*made).find(L"other.h").has_value());
}

TEST_F(IncludeNamerTest, EndsWhereFilesIncludeEachOther) {
  write("inner.h", "#include \"outer.h\"\nfloat inner() { return 1.0; }\n");
  const std::unique_ptr<CollapseJob> made = collapsed(kGraph);
  EXPECT_EQ(textOf(IncludeNamers(*made).chain(L"inner.h", 9)),
            path("outer.h") + ":2: this include file\n" + path("lib.fraglib") + ":2: fragment `bent`\n");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
