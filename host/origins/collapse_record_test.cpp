#include "host/origins/collapse_record.h"

#include "host/origins/tone_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class CollapseRecordTest : public ToneFixture {
protected:
  CollapseRecordTest() {
    job_ = collapsed(kTones);
    job_->observe(record_);
  }

  /// The names of the writers' instances.
  std::string namesOf(const std::vector<std::size_t>& writers) const {
    std::string text;
    for (const std::size_t writer : writers)
      text += toUtf8(record_.writers()[writer].fragment->instanceName()) + " ";
    return text;
  }
  std::string joined(const Array<WString>& texts) const {
    std::string text;
    for (const WString& one : texts) text += (text.empty() ? "" : ", ") + toUtf8(one);
    return text;
  }
  const WString& body() const { return job_->result()->getProfile(0)->getFunctionBody(); }

  std::unique_ptr<CollapseJob> job_;
  CollapseRecord record_;
};

TEST_F(CollapseRecordTest, ListsWritersOnce) {
  std::string text;
  for (const CollapseRecord::Writer& writer : record_.writers()) {
    text += toUtf8(writer.fragment->instanceName()) + " " + toUtf8(writer.fragment->key()) + " " +
            std::to_string(writer.profileIndex) + (writer.isInline ? " inline" : "") + " [" +
            joined(writer.outputs) + "]\n";
  }
  EXPECT_EQ(text, "n0 half 0 inline []\n"
                  "n1 tint 0 [result_n1_01]\n"
                  "n2 tint 0 [result_n2_01]\n");
}

TEST_F(CollapseRecordTest, KeepsCodeThatTheResultTook) {
  const WString& predefines = job_->result()->getProfile(0)->predefines();
  std::string text;
  for (const CollapseRecord::Code& code : record_.codes()) {
    text += code.isDefinition ? "definition " + toUtf8(code.functionName) : std::string("predefines");
    text += " of " + namesOf({code.writer}) + "\n";
    for (const WrittenSymbol& symbol : code.symbols) {
      EXPECT_EQ(code.text.substr(symbol.codeBegin, symbol.codeEnd - symbol.codeBegin),
                predefines.substr(symbol.begin, symbol.end - symbol.begin));
      text += toUtf8(predefines.substr(symbol.begin, symbol.end - symbol.begin)) + "\n";
    }
  }
  EXPECT_EQ(text, "predefines of n1 \n"
                  "float tone(float x) { return x * x; }\n\n"
                  "definition tint1 of n1 \n"
                  "void tint1(\n    float amount,\n    float3 color,\n    out float3 result)\n"
                  "{\n\tresult = color * tone(amount);\n}\n\n");
}

TEST_F(CollapseRecordTest, PlacesCallsInTheBody) {
  record_.placeCalls(body());
  std::string text;
  for (const CollapseRecord::Call& call : record_.calls()) {
    EXPECT_EQ(body().substr(call.place, call.text.size()), call.text);
    text += namesOf({call.writer}) + "(" + joined(call.inputs) + ")\n";
  }
  EXPECT_EQ(text, "n1 ((xn0 * 0.5), colorn1)\n"
                  "n2 (amountn2, result_n1_01)\n");
}

TEST_F(CollapseRecordTest, DropsCallsThatAreNotInTheBody) {
  ASSERT_EQ(record_.calls().size(), 2u);
  CollapseRecord shorter = record_;
  shorter.placeCalls(L"another body");
  EXPECT_TRUE(shorter.calls().empty());
  CollapseRecord changed = record_;
  changed.placeCalls(WString(body().size(), L'x'));
  EXPECT_TRUE(changed.calls().empty());
}

TEST_F(CollapseRecordTest, FindsExpressionsByTheirText) {
  const CollapseRecord::Expression* const found = record_.findExpression(L"(xn0 * 0.5)");
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(namesOf({found->writer}), "n0 ");
  EXPECT_EQ(joined(found->inputs), "xn0");
  EXPECT_EQ(record_.findExpression(L"x"), nullptr);
}

TEST_F(CollapseRecordTest, KnowsCallersAndUsers) {
  EXPECT_EQ(namesOf(record_.callersOf(L"tint1")), "n1 n2 ");
  EXPECT_EQ(namesOf(record_.callersOf(L"nobody")), "");
  EXPECT_EQ(namesOf(record_.usersOf(record_.writers()[1].profile)), "n1 n2 ");
  EXPECT_EQ(namesOf(record_.usersOf(nullptr)), "");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
