#include "host/origins/token_origins.h"

#include "host/origins/tone_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class TokenOriginsTest : public ToneFixture {
protected:
  TokenOriginsTest() : job_(collapsed(kTones)), codes_(job_->libraries()) {
    job_->observe(record_);
    record_.placeCalls(result().getFunctionBody());
  }

  const IShaderFragmentProfile& result() const { return *job_->result()->getProfile(0); }
  TokenOrigins origins() { return TokenOrigins(record_, codes_, 0); }

  /// Each token and, behind a colon, its source: the token of the code, the instance, the number of an input;
  /// `~` in front of what is not the very token. Lines are those of the text.
  std::string told(const WString& text, const OriginText& found) const {
    std::string all;
    std::size_t line = 0;
    for (const CodeToken& token : tokensOf(text)) {
      const std::size_t lineOf = static_cast<std::size_t>(
          std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(token.begin), L'\n'));
      if (!all.empty()) all += lineOf == line ? " " : "\n";
      line = lineOf;
      all += toUtf8(token.in(text));
      if (const TokenOrigin* const origin = found.find(token.begin)) all += ":" + source(*origin);
    }
    return all + "\n";
  }

  std::string source(const TokenOrigin& origin) const {
    const std::string mark = origin.isExact ? "" : "~";
    const std::string name = toUtf8(record_.writers()[origin.writer].fragment->instanceName());
    switch (origin.kind) {
    case TokenOrigin::Kind::code: {
      const CodeToken& token = origin.code->tokens[tokenAt(origin.code->tokens, origin.offset)];
      return mark + toUtf8(token.in(origin.code->text));
    }
    case TokenOrigin::Kind::node: return mark + "<" + name + ">";
    case TokenOrigin::Kind::input: return mark + "<" + name + " " + std::to_string(origin.offset) + ">";
    case TokenOrigin::Kind::none: break;
    }
    return "-";
  }

  std::unique_ptr<CollapseJob> job_;
  FragmentCodes codes_;
  CollapseRecord record_;
};

TEST_F(TokenOriginsTest, FollowsPredefinesToTheirCode) {
  const WString& text = result().predefines();
  EXPECT_EQ(told(text, origins().ofPredefines(text)),
            R"(float:float tone:tone (:( float:float x:x ):) {:{ return:return x:x *:* x:x ;:; }:}
void:void tint1:tint (:(
float:float amount:amount ,:,
float3:float3 color:color ,:,
out:out float3:float3 result:result ):)
{:{
result:result =:= color:color *:* tone:tone (:( amount:amount ):) ;:;
}:}
)");
}

TEST_F(TokenOriginsTest, FollowsTheBodyToNodesInputsAndExpressions) {
  const WString& text = result().getFunctionBody();
  EXPECT_EQ(told(text, origins().ofBody(text)), R"(float3:~<n1> result_n1_01:<n1> ;:~<n1>
tint1:<n1> (:~<n1>
(:~{ xn0:<n0 0> *:* 0.5:0.5 ):~0.5 ,:~<n1>
colorn1:<n1 1> ,:~<n1>
result_n1_01:~<n1> ):~<n1> ;:~<n1>
tint1:<n2> (:~<n2>
amountn2:<n2 0> ,:~<n2>
result_n1_01:<n2 1> ,:~<n2>
color:~<n2> ):~<n2> ;:~<n2>
)");
}

TEST_F(TokenOriginsTest, KnowsNothingOfOtherPlaces) {
  const OriginText found = origins().ofBody(result().getFunctionBody());
  ASSERT_FALSE(found.begins.empty());
  EXPECT_NE(found.find(found.begins[0]), nullptr);
  EXPECT_EQ(found.find(found.begins[0] + 1), nullptr);
  EXPECT_EQ(found.find(found.begins.back() + 1), nullptr);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
